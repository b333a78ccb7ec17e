/*
 * window_messages.cpp -- SendMessageA: a message to a dialog goes to its
 * procedure first, and to the class's own answer when the procedure
 * answers 0 (as a dialog's default procedure does); a message to a control
 * goes to its class.  The messages that every window answers alike (text
 * and font) are here; the rest is in the file of each class.
 */
#include <string.h>

#include "ui/controls.h"

static intptr_t copyText(const std::string &text, char *buffer, uintptr_t size)
{
    if (!buffer || size == 0)
        return 0;
    size_t n = text.size() < size - 1 ? text.size() : size - 1;
    memcpy(buffer, text.data(), n);
    buffer[n] = '\0';
    return (intptr_t)n;
}

intptr_t controlMessage(Window *w, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    switch (message) {
    case ORTO_WM_GETTEXT:
        return copyText(w->text, (char *)lParam, wParam);
    case ORTO_WM_GETTEXTLENGTH:
        return (intptr_t)w->text.size();
    case ORTO_WM_SETFONT:
        w->font = (HFONT)wParam;
        return 0;
    case ORTO_WM_GETFONT:
        return (intptr_t)w->font;
    case ORTO_WM_SETTEXT:
        if (w->kind == KindEdit)
            return editSetText(w, (const char *)lParam);
        w->text = lParam ? (const char *)lParam : "";
        return 1;
    default:
        break;
    }
    switch (w->kind) {
    case KindEdit:
        return editMessage(w, message, wParam, lParam);
    case KindListBox:
        return listBoxMessage(w, message, wParam, lParam);
    case KindComboBox:
        return comboBoxMessage(w, message, wParam, lParam);
    case KindButton:
        return buttonMessage(w, message, wParam, lParam);
    default:
        return 0;
    }
}

intptr_t SendMessageA(HWND window, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    Window *w = windowOf(window);
    if (!w)
        return 0;
    if (w->kind == KindDialog && w->proc) {
        intptr_t answer = w->proc(window, message, wParam, lParam);
        if (answer || message == ORTO_WM_INITDIALOG || message == ORTO_WM_COMMAND ||
            (message >= ORTO_WM_CTLCOLOREDIT && message <= ORTO_WM_CTLCOLORSTATIC))
            return answer;
        w = windowOf(window); /* the procedure may have ended it */
        if (!w)
            return 0;
    }
    return controlMessage(w, message, wParam, lParam);
}
