/*
 * dialog_services.cpp -- wait cursor, message box, the dialogs' log, and a
 * message to every control of a dialog.
 *
 * Message texts come from the string table of the settings store, which a
 * user can edit, so they are never used as printf formats: only "%s" (the
 * arguments in turn) and "%%" mean anything in them, every other byte is
 * text, and the result is cut to its buffer.
 */
#include "host/dialog_services.h"

#include <stdarg.h>

#include "engine/debug_log.h"
#include "host/profile.h"
#include "host/shared_session.h"

enum { MessageTextSize = 256 };

static HCURSOR cursorBeforeWait; /* the cursor the wait cursor replaced */

void waitCursor(int on)
{
    if (on) {
        cursorBeforeWait = SetCursor(LoadCursorA(nullptr, IDC_WAIT));
        ShowCursor(1);
    } else {
        ShowCursor(0);
        SetCursor(cursorBeforeWait);
    }
}

/* `format` with its "%s" replaced by the arguments, cut to `size` - 1. */
static void formatMessage(char *out, size_t size, const char *format, const char *arg1, const char *arg2)
{
    const char *args[2] = {arg1, arg2};
    int used = 0;
    size_t n = 0;
    auto put = [&](char c) {
        if (n + 1 < size)
            out[n++] = c;
    };
    for (const char *p = format; *p; p++) {
        if (p[0] == '%' && p[1] == 's') {
            const char *arg = used < 2 ? args[used++] : nullptr;
            for (; arg && *arg; arg++)
                put(*arg);
            p++;
        } else if (p[0] == '%' && p[1] == '%') {
            put('%');
            p++;
        } else {
            put(*p);
        }
    }
    out[n] = 0;
}

void dialogMessage(HWND owner, const char *textId, const char *textDefault, const char *titleId,
                   const char *titleDefault, const char *arg1, const char *arg2)
{
    char format[LabelSize];
    char title[LabelSize] = "";
    char text[MessageTextSize];
    Profile_GetText(textId, textDefault, format, sizeof format);
    if (titleId)
        Profile_GetText(titleId, titleDefault, title, sizeof title);
    formatMessage(text, sizeof text, format, arg1, arg2);
    MessageBoxA(owner, text, title, MB_OK);
}

void dialogLog(const char *format, ...)
{
    if (!debugFile[0])
        return;
    va_list args;
    va_start(args, format);
    DebugLogTo(debugFile, format, args);
    va_end(args);
}

extern "C" int32_t SndMsgEnumCb(ORTO_HWND window, intptr_t lParam)
{
    const ChildMessage *m = (const ChildMessage *)lParam;
    if (m)
        SendMessageA(window, m->message, m->wParam, m->lParam);
    return 1; /* on to the next child, whatever this one answered */
}

void sendToChildren(HWND window, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    ChildMessage m = {message, wParam, lParam};
    EnumChildWindows(window, SndMsgEnumCb, (intptr_t)&m);
}
