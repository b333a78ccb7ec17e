/* Fuzz target: dialog templates.  Any bytes go to the template reader; a
 * script that reads runs each of its dialogs once, without a user, with a
 * procedure that fills and reads every control. */
#include <stdint.h>
#include <string.h>

#include <string>

#include "ui/window.h"

static intptr_t fuzzDlgProc(ORTO_HWND dialog, uint32_t message, uintptr_t, intptr_t)
{
    if (message == ORTO_WM_INITDIALOG) {
        EnumChildWindows(dialog, [](HWND child, intptr_t) -> int32_t {
            SendMessageA(child, ORTO_LB_ADDSTRING, 0, (intptr_t)"entry");
            SendMessageA(child, ORTO_CB_ADDSTRING, 0, (intptr_t)"entry");
            SendMessageA(child, ORTO_CB_SETCURSEL, 0, 0);
            SetWindowTextA(child, "text");
            SendMessageA(child, ORTO_EM_SETSEL, 1, 3);
            SendMessageA(child, ORTO_EM_REPLACESEL, 0, (intptr_t)"xyz");
            char buffer[16];
            GetWindowTextA(child, buffer, sizeof buffer);
            RECT r;
            GetWindowRect(child, &r);
            return 1;
        }, 0);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string script((const char *)data, size); /* a C string ends at the first NUL */
    char error[128];
    ORTO_HINSTANCE module = ORTO_LoadTemplates(script.c_str(), error, sizeof error);
    if (!module)
        return 0;
    std::vector<DialogTemplate> dialogs;
    if (parseTemplates(script.c_str(), &dialogs, error, sizeof error) == 0)
        for (const DialogTemplate &t : dialogs)
            DialogBoxParamA(module, t.name.c_str(), nullptr, fuzzDlgProc, 0);
    ORTO_FreeTemplates(module);
    return 0;
}
