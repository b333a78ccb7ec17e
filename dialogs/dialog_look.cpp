/*
 * dialog_look.cpp -- the font, brush and file dialog details that the
 * four dialogs share.
 */
#include "dialogs/dialog_look.h"

#include <stdio.h>
#include <string.h>

#include "engine/string_helpers.h"
#include "host/dialog_services.h"
#include "host/profile.h"
#include "host/shared_session.h"

bool wantNormalWeight(void) { return Profile_GetInt("FontBold", ProfileMachine, 0) == 0; }

HFONT copyFontNormalWeight(HWND dialog)
{
    HFONT font = (HFONT)SendMessageA(dialog, ORTO_WM_GETFONT, 0, 0);
    if (!font)
        return nullptr;
    LOGFONTA description;
    if (GetObjectA(font, sizeof description, &description) == 0)
        return nullptr;
    description.lfWeight = FW_NORMAL;
    return CreateFontIndirectA(&description);
}

HFONT applyNormalWeightFont(HWND dialog)
{
    if (!wantNormalWeight())
        return nullptr;
    HFONT font = copyFontNormalWeight(dialog);
    if (font)
        sendToChildren(dialog, ORTO_WM_SETFONT, (uintptr_t)font, 0);
    return font;
}

HBRUSH makeFaceBrush(void) { return CreateSolidBrush(GetSysColor(COLOR_BTNFACE)); }

intptr_t answerColourRequest(uintptr_t deviceContext, HBRUSH brush)
{
    SetBkColor((HDC)deviceContext, GetSysColor(COLOR_BTNFACE));
    return (intptr_t)brush;
}

bool isColourRequest(uint32_t message)
{
    return message == ORTO_WM_CTLCOLORBTN || message == ORTO_WM_CTLCOLORDLG || message == ORTO_WM_CTLCOLORSTATIC;
}

void loadFileFilter(const char *id, const char *defaultText, char *buffer)
{
    memset(buffer, 0, FilterSize);
    Profile_GetText(id, defaultText, buffer, FilterSize);
    size_t length = strlen(buffer);
    if (length == 0)
        return;
    char separator = buffer[length - 1];
    for (size_t i = 0; i < length; i++)
        if (buffer[i] == separator)
            buffer[i] = '\0';
}

const char lexFileFilterDefault[] =
    "Dictionary files (*.tlx)|*.tlx|External dictionaries (*.dic)|*.dic|Text files (*.txt)|*.txt|"
    "All files (*.*)|*.*|";
const char importFileFilterDefault[] = "Text files (*.txt)|*.txt|All files (*.*)|*.*|";

bool askForFile(HWND dialog, bool save, const char *filterId, const char *filterDefault, const char *titleId,
                const char *titleDefault, uint32_t flags, const char *defaultExtension, char *path)
{
    char filter[FilterSize];
    char title[LabelSize];
    loadFileFilter(filterId, filterDefault, filter);
    Profile_GetText(titleId, titleDefault, title, sizeof title);
    OPENFILENAMEA request = {dialog, filter, 1, path, PathSize, userLexPath, title, flags, defaultExtension};
    return save ? GetSaveFileNameA(&request) != 0 : GetOpenFileNameA(&request) != 0;
}

void userLexName(const char *path, char *name, u16 size)
{
    const char *slash = strrchr(path, '/');
    if (slash) {
        std::string folder(path, (size_t)(slash - path));
        if (StrCompareNoCase(folder.c_str(), userLexPath) == 0) {
            StrCopy(name, size, slash + 1);
            return;
        }
    }
    StrCopy(name, size, path);
}

void pathInUserFolder(const char *name, char *path, u16 size)
{
    snprintf(path, size, "%s/%s", userLexPath, name);
}
