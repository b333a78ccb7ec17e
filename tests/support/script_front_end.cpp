#include "support/script_front_end.h"

#include <stdio.h>
#include <string.h>

static int32_t nextCommand(void *context, ORTO_HWND dialog)
{
    ScriptFrontEnd *s = (ScriptFrontEnd *)context;
    s->captions.push_back(windowText(dialog));
    if (s->next >= s->acts.size())
        return -1;
    return s->acts[s->next++](dialog);
}

static void messageBox(void *context, ORTO_HWND, const char *text, const char *title)
{
    ((ScriptFrontEnd *)context)->messages.push_back(std::string(title) + "|" + text);
}

static int32_t fileDialog(void *context, ORTO_HWND, const ORTO_FileRequest *r, char *path, uint32_t size)
{
    ScriptFrontEnd *s = (ScriptFrontEnd *)context;
    std::string filter;
    for (const char *p = r->filter; p && *p; p += strlen(p) + 1)
        filter += std::string(p) + "|";
    s->fileRequests.push_back({r->save, r->title ? r->title : "", filter, r->startFolder ? r->startFolder : "",
                               r->defaultExtension ? r->defaultExtension : "", r->flags});
    if (s->fileAnswers.empty() || s->fileAnswers.front().empty()) {
        if (!s->fileAnswers.empty())
            s->fileAnswers.erase(s->fileAnswers.begin());
        return 0;
    }
    snprintf(path, size, "%s", s->fileAnswers.front().c_str());
    s->fileAnswers.erase(s->fileAnswers.begin());
    return 1;
}

static void help(void *context, ORTO_HWND, const char *file, uint32_t topic)
{
    ((ScriptFrontEnd *)context)->helpCalls.push_back({file, topic});
}

static void waitCursor(void *context, int32_t on)
{
    ScriptFrontEnd *s = (ScriptFrontEnd *)context;
    (on ? s->waitCursorOn : s->waitCursorOff)++;
}

static void workArea(void *context, int32_t rect[4])
{
    memcpy(rect, ((ScriptFrontEnd *)context)->area, 4 * sizeof(int32_t));
}

ScriptFrontEnd::ScriptFrontEnd()
{
    ORTO_FrontEnd fe = {this, nextCommand, messageBox, fileDialog, help, waitCursor, workArea};
    ORTO_SetFrontEnd(&fe);
}

ScriptFrontEnd::~ScriptFrontEnd()
{
    ORTO_FrontEnd none = {};
    ORTO_SetFrontEnd(&none);
}

int32_t command(int32_t id, int32_t code) { return (int32_t)(((uint32_t)code << 16) | ((uint32_t)id & 0xFFFF)); }

Act click(int32_t id)
{
    return [id](ORTO_HWND) { return command(id, ORTO_BN_CLICKED); };
}

static bool isCombo(ORTO_HWND control)
{
    char name[16];
    ORTO_GetClassName(control, name, sizeof name);
    return strcmp(name, "COMBOBOX") == 0;
}

Act typeText(int32_t id, const std::string &text)
{
    return [id, text](ORTO_HWND dialog) {
        ORTO_HWND control = ORTO_GetDlgItem(dialog, id);
        if (isCombo(control)) {
            ORTO_SendMessage(control, ORTO_CB_SETCURSEL, (uintptr_t)-1, 0);
            ORTO_SetWindowText(control, text.c_str());
            return command(id, ORTO_CBN_EDITCHANGE);
        }
        ORTO_SetWindowText(control, text.c_str());
        return command(id, ORTO_EN_CHANGE);
    };
}

Act selectItem(int32_t id, int index)
{
    return [id, index](ORTO_HWND dialog) {
        ORTO_HWND control = ORTO_GetDlgItem(dialog, id);
        bool combo = isCombo(control);
        ORTO_SendMessage(control, combo ? ORTO_CB_SETCURSEL : ORTO_LB_SETCURSEL, (uintptr_t)index, 0);
        return command(id, combo ? ORTO_CBN_SELCHANGE : ORTO_LBN_SELCHANGE);
    };
}

Act doubleClickItem(int32_t id, int index)
{
    return [id, index](ORTO_HWND dialog) {
        ORTO_SendMessage(ORTO_GetDlgItem(dialog, id), ORTO_LB_SETCURSEL, (uintptr_t)index, 0);
        return command(id, ORTO_LBN_DBLCLK);
    };
}

Act closeDialog()
{
    return [](ORTO_HWND) { return -1; };
}

Act inspect(std::function<void(ORTO_HWND)> check, Act then)
{
    return [check, then](ORTO_HWND dialog) {
        check(dialog);
        return then(dialog);
    };
}

std::string windowText(ORTO_HWND window)
{
    int32_t length = (int32_t)ORTO_SendMessage(window, ORTO_WM_GETTEXTLENGTH, 0, 0);
    std::string text((size_t)length + 1, '\0');
    ORTO_GetWindowText(window, &text[0], length + 1);
    text.resize(strlen(text.c_str()));
    return text;
}

std::string itemText(ORTO_HWND dialog, int32_t id) { return windowText(ORTO_GetDlgItem(dialog, id)); }

std::vector<std::string> listEntries(ORTO_HWND dialog, int32_t id)
{
    ORTO_HWND control = ORTO_GetDlgItem(dialog, id);
    bool combo = isCombo(control);
    std::vector<std::string> entries;
    intptr_t count = ORTO_SendMessage(control, combo ? ORTO_CB_GETCOUNT : ORTO_LB_GETCOUNT, 0, 0);
    for (intptr_t i = 0; i < count; i++) {
        intptr_t length = ORTO_SendMessage(control, combo ? ORTO_CB_GETLBTEXTLEN : ORTO_LB_GETTEXTLEN, (uintptr_t)i, 0);
        std::string text((size_t)length + 1, '\0');
        ORTO_SendMessage(control, combo ? ORTO_CB_GETLBTEXT : ORTO_LB_GETTEXT, (uintptr_t)i, (intptr_t)&text[0]);
        text.resize((size_t)length);
        entries.push_back(text);
    }
    return entries;
}

bool enabled(ORTO_HWND dialog, int32_t id) { return ORTO_IsWindowEnabled(ORTO_GetDlgItem(dialog, id)) != 0; }

bool checked(ORTO_HWND dialog, int32_t id)
{
    return ORTO_SendMessage(ORTO_GetDlgItem(dialog, id), ORTO_BM_GETCHECK, 0, 0) == ORTO_BST_CHECKED;
}
