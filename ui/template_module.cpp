/*
 * template_module.cpp -- modules: sets of dialog templates.  The library's
 * own module is read from the template script built into the library
 * (dialogs.rc) at its first use; a host's come from ORTO_LoadTemplates.
 */
#include <string.h>
#include <strings.h>

#include "engine/debug_log.h"
#include "ui/window.h"

struct ORTO_Module {
    std::vector<DialogTemplate> dialogs;
    bool library;                 /* the library's own: never freed */
};

extern const char libraryTemplateScript[]; /* dialogs.rc, built in */

const DialogTemplate *findTemplate(HINSTANCE module, const char *name)
{
    if (!module || !name)
        return nullptr;
    for (const DialogTemplate &t : module->dialogs)
        if (strcasecmp(t.name.c_str(), name) == 0)
            return &t;
    DebugLog("DialogBoxParamA: no dialog template %s", name);
    return nullptr;
}

extern "C" {

ORTO_API ORTO_HINSTANCE ORTO_LoadTemplates(const char *scriptText, char *error, uint16_t errorSize)
{
    ORTO_Module *module = new ORTO_Module();
    if (parseTemplates(scriptText, &module->dialogs, error, errorSize) != 0) {
        delete module;
        return nullptr;
    }
    return module;
}

ORTO_API void ORTO_FreeTemplates(ORTO_HINSTANCE module)
{
    if (module && !module->library)
        delete module;
}

ORTO_API ORTO_HINSTANCE ORTO_LibraryModule(void)
{
    static ORTO_Module *library;
    if (!library) {
        char error[256];
        library = new ORTO_Module();
        library->library = true;
        if (parseTemplates(libraryTemplateScript, &library->dialogs, error, sizeof error) != 0)
            DebugLog("ORTO_LibraryModule: %s", error);
    }
    return library;
}

} /* extern "C" */
