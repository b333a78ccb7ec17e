/*
 * window_table.cpp -- the table of windows, and the operations on a window
 * as a whole: handles, children, text, enabled and shown state, focus,
 * rectangles.  What a window answers to messages of its class lives in the
 * control files (edit_control, list_control, button_control).
 *
 * A handle is (generation << 16 | slot + 1) turned into a pointer.  Freed
 * slots are taken again with a new generation, so an old handle never
 * names a new window.
 */
#include <stdio.h>
#include <string.h>
#include <strings.h>

#include "ui/window.h"

struct WindowSlot {
    Window *window;               /* null: free */
    uint32_t generation;
};

static std::vector<WindowSlot> windowSlots;
int frontEndDepth;

static HWND handleOf(size_t slot, uint32_t generation)
{
    return (HWND)(uintptr_t)(((uintptr_t)(generation & 0x7FFF) << 16) | (slot + 1));
}

Window *windowOf(HWND handle)
{
    uintptr_t value = (uintptr_t)handle;
    if (value == 0 || value > 0x7FFFFFFFu)
        return nullptr;
    size_t slot = (value & 0xFFFF) - 1;
    uint32_t generation = (uint32_t)(value >> 16);
    if ((value & 0xFFFF) == 0 || slot >= windowSlots.size())
        return nullptr;
    const WindowSlot &s = windowSlots[slot];
    if (!s.window || (s.generation & 0x7FFF) != generation)
        return nullptr;
    return s.window;
}

/* Class names and the kinds they make; rich edit controls go by many names,
 * all beginning with "RICH". */
int windowKindOfClass(const char *className)
{
    static const struct {
        const char *name;
        WindowKind kind;
    } classes[] = {
        {"STATIC", KindStatic}, {"EDIT", KindEdit},         {"LISTBOX", KindListBox},
        {"COMBOBOX", KindComboBox}, {"BUTTON", KindButton}, {"#32770", KindDialog},
    };
    if (!className)
        return -1;
    for (const auto &c : classes)
        if (strcasecmp(className, c.name) == 0)
            return c.kind;
    if (strncasecmp(className, "RICH", 4) == 0)
        return KindEdit;
    return -1;
}

HWND createWindow(WindowKind kind, const char *className, HWND parent)
{
    size_t slot = 0;
    while (slot < windowSlots.size() && windowSlots[slot].window)
        slot++;
    if (slot == windowSlots.size()) {
        if (slot >= 0xFFFF)
            return nullptr; /* the handle has 16 bits for the slot */
        windowSlots.push_back(WindowSlot{nullptr, 0});
    }
    WindowSlot &s = windowSlots[slot];
    s.generation++;
    Window *w = new Window();
    w->handle = handleOf(slot, s.generation);
    w->kind = kind;
    snprintf(w->className, sizeof w->className, "%s", className ? className : "");
    w->style = WS_VISIBLE;
    w->parent = parent;
    w->curSel = -1;
    s.window = w;
    return w->handle;
}

void destroyWindow(HWND handle)
{
    Window *w = windowOf(handle);
    if (!w)
        return;
    for (HWND child : w->children)
        destroyWindow(child);
    if (w->templateFont)
        DeleteObject(w->templateFont);
    size_t slot = ((uintptr_t)handle & 0xFFFF) - 1;
    windowSlots[slot].window = nullptr;
    delete w;
}

void listTopLevelWindows(std::vector<HWND> *out)
{
    out->clear();
    for (const WindowSlot &s : windowSlots)
        if (s.window && !s.window->parent && s.window->kind != KindDialog)
            out->push_back(s.window->handle);
}

void notifyParent(Window *control, uint32_t code)
{
    if (frontEndDepth > 0 || !control->parent)
        return;
    Window *dialog = windowOf(control->parent);
    if (!dialog || dialog->kind != KindDialog || !dialog->proc)
        return;
    uintptr_t wParam = ((uintptr_t)(code & 0xFFFF) << 16) | ((uint32_t)control->id & 0xFFFF);
    dialog->proc(dialog->handle, ORTO_WM_COMMAND, wParam, (intptr_t)control->handle);
}

/* ---- Children, text, state ---- */

HWND GetDlgItem(HWND dialog, int32_t id)
{
    Window *d = windowOf(dialog);
    if (!d)
        return nullptr;
    for (HWND child : d->children) {
        Window *c = windowOf(child);
        if (c && c->id == id)
            return child;
    }
    return nullptr;
}

int32_t EnumChildWindows(HWND parent, WNDENUMPROC callback, intptr_t lParam)
{
    Window *d = windowOf(parent);
    if (!d || !callback)
        return 0;
    std::vector<HWND> children = d->children; /* a callback may change the list */
    for (HWND child : children)
        if (IsWindow(child) && !callback(child, lParam))
            break;
    return 1;
}

int32_t IsWindow(HWND window) { return windowOf(window) != nullptr; }

int32_t GetWindowTextA(HWND window, char *buffer, int32_t size)
{
    return (int32_t)SendMessageA(window, ORTO_WM_GETTEXT, (uintptr_t)(size > 0 ? size : 0), (intptr_t)buffer);
}

int32_t SetWindowTextA(HWND window, const char *text)
{
    return (int32_t)SendMessageA(window, ORTO_WM_SETTEXT, 0, (intptr_t)text);
}

int32_t GetWindowTextLengthA(HWND window)
{
    return (int32_t)SendMessageA(window, ORTO_WM_GETTEXTLENGTH, 0, 0);
}

uint32_t GetDlgItemTextA(HWND dialog, int32_t id, char *buffer, int32_t size)
{
    HWND item = GetDlgItem(dialog, id);
    if (!item) {
        if (buffer && size > 0)
            buffer[0] = '\0';
        return 0;
    }
    return (uint32_t)GetWindowTextA(item, buffer, size);
}

int32_t SetDlgItemTextA(HWND dialog, int32_t id, const char *text)
{
    HWND item = GetDlgItem(dialog, id);
    return item ? SetWindowTextA(item, text) : 0;
}

intptr_t SendDlgItemMessageA(HWND dialog, int32_t id, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    return SendMessageA(GetDlgItem(dialog, id), message, wParam, lParam);
}

int32_t GetClassNameA(HWND window, char *buffer, int32_t size)
{
    Window *w = windowOf(window);
    if (!buffer || size <= 0)
        return 0;
    buffer[0] = '\0';
    if (!w)
        return 0;
    int32_t n = (int32_t)strlen(w->className);
    if (n > size - 1)
        n = size - 1;
    memcpy(buffer, w->className, (size_t)n);
    buffer[n] = '\0';
    return n;
}

int32_t EnableWindow(HWND window, int32_t enable)
{
    Window *w = windowOf(window);
    if (!w)
        return 0;
    int32_t wasDisabled = (w->style & WS_DISABLED) != 0;
    if (enable)
        w->style &= ~WS_DISABLED;
    else
        w->style |= WS_DISABLED;
    return wasDisabled;
}

int32_t IsWindowEnabled(HWND window)
{
    Window *w = windowOf(window);
    return w && !(w->style & WS_DISABLED);
}

int32_t ShowWindow(HWND window, int32_t command)
{
    Window *w = windowOf(window);
    if (!w)
        return 0;
    int32_t wasVisible = (w->style & WS_VISIBLE) != 0;
    if (command == SW_HIDE)
        w->style &= ~WS_VISIBLE;
    else
        w->style |= WS_VISIBLE;
    return wasVisible;
}

int32_t IsWindowVisible(HWND window)
{
    Window *w = windowOf(window);
    return w && (w->style & WS_VISIBLE);
}

/* The focus lives in the innermost running dialog; a dialog given the
 * focus keeps the control it had, or takes its first tab stop. */
HWND SetFocus(HWND window)
{
    Window *w = windowOf(window);
    HWND before = GetFocus();
    if (!w)
        return before;
    if (w->kind == KindDialog) {
        if (!windowOf(w->focus)) {
            for (HWND child : w->children) {
                Window *c = windowOf(child);
                if (c && (c->style & WS_TABSTOP) && (c->style & WS_VISIBLE) && !(c->style & WS_DISABLED)) {
                    w->focus = child;
                    break;
                }
            }
        }
        return before;
    }
    Window *d = windowOf(w->parent);
    if (d && d->kind == KindDialog)
        d->focus = window;
    return before;
}

HWND GetFocus(void)
{
    const std::vector<HWND> &dialogs = runningDialogs();
    if (dialogs.empty())
        return nullptr;
    Window *d = windowOf(dialogs.back());
    return d && windowOf(d->focus) ? d->focus : nullptr;
}

/* A control of a dialog sits in the dialog's client area: one column in
 * from the left edge, one row down from the top (the caption). */
int32_t GetWindowRect(HWND window, RECT *rect)
{
    Window *w = windowOf(window);
    if (!w || !rect)
        return 0;
    int32_t left = w->x, top = w->y;
    Window *p = windowOf(w->parent);
    if (w->kind != KindDialog && p && p->kind == KindDialog) {
        left += p->x + 1;
        top += p->y + 1;
    }
    SetRect(rect, left, top, left + w->width, top + w->height);
    return 1;
}

int32_t MoveWindow(HWND window, int32_t x, int32_t y, int32_t width, int32_t height, int32_t repaint)
{
    (void)repaint; /* the front end draws everything before each act of the user */
    Window *w = windowOf(window);
    if (!w)
        return 0;
    w->x = x;
    w->y = y;
    w->width = width > 0 ? width : 0;
    w->height = height > 0 ? height : 0;
    return 1;
}

/* ---- The exported forms ---- */

extern "C" {

ORTO_API ORTO_HWND ORTO_CreateTextControl(const char *className, const char *text)
{
    if (windowKindOfClass(className) != KindEdit)
        return nullptr;
    HWND h = createWindow(KindEdit, className, nullptr);
    Window *w = windowOf(h);
    if (!w)
        return nullptr;
    w->style |= ES_MULTILINE | WS_VSCROLL | ES_AUTOVSCROLL;
    w->text = text ? text : "";
    return h;
}

ORTO_API int32_t ORTO_SetShownCharacters(ORTO_HWND control, unsigned char byte, const char *const *chars,
                                         uint32_t count)
{
    Window *w = windowOf(control);
    if (!w || w->kind != KindEdit || w->parent || (count && !chars))
        return 0;
    std::vector<std::string> shown;
    for (uint32_t k = 0; k < count; k++) {
        if (!chars[k])
            return 0;
        shown.emplace_back(chars[k]);
    }
    w->shownByte = byte;
    w->shownChars.swap(shown);
    return 1;
}

ORTO_API void ORTO_MoveWindow(ORTO_HWND window, int32_t x, int32_t y, int32_t width, int32_t height)
{
    MoveWindow(window, x, y, width, height, 1);
}

ORTO_API void ORTO_DestroyWindow(ORTO_HWND window)
{
    Window *w = windowOf(window);
    if (w && !w->parent && w->kind != KindDialog)
        destroyWindow(window);
}

ORTO_API ORTO_HWND ORTO_GetDlgItem(ORTO_HWND dialog, int32_t id) { return GetDlgItem(dialog, id); }

ORTO_API int32_t ORTO_GetWindowText(ORTO_HWND window, char *buffer, int32_t size)
{
    if (!windowOf(window)) {
        if (buffer && size > 0)
            buffer[0] = '\0';
        return 0;
    }
    return GetWindowTextA(window, buffer, size);
}

ORTO_API int32_t ORTO_SetWindowText(ORTO_HWND window, const char *text)
{
    return windowOf(window) ? SetWindowTextA(window, text) : 0;
}

ORTO_API int32_t ORTO_GetClassName(ORTO_HWND window, char *buffer, int32_t size)
{
    return GetClassNameA(window, buffer, size);
}

ORTO_API int32_t ORTO_IsWindowEnabled(ORTO_HWND window) { return IsWindowEnabled(window); }

ORTO_API int32_t ORTO_IsWindowVisible(ORTO_HWND window) { return IsWindowVisible(window); }

ORTO_API void ORTO_GetWindowRect(ORTO_HWND window, int32_t rect[4])
{
    RECT r = {0, 0, 0, 0};
    GetWindowRect(window, &r);
    if (rect) {
        rect[0] = r.left;
        rect[1] = r.top;
        rect[2] = r.right;
        rect[3] = r.bottom;
    }
}

ORTO_API intptr_t ORTO_SendMessage(ORTO_HWND window, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    return SendMessageA(window, message, wParam, lParam);
}

} /* extern "C" */
