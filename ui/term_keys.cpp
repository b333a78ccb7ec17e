/*
 * term_keys.cpp -- a person's keys and clicks on the dialog on top, turned
 * into the commands a user of the original dialogs sends.
 *
 *   Tab, Shift-Tab          the next or previous control in tab order
 *   Alt+letter, Esc letter  the control whose label marks that letter; the
 *                           plain letter too, where the focus is not in a
 *                           field; a label hands the focus to its field
 *   Enter                   the focused push button, else the default one;
 *                           in a list, a second Enter is a double click
 *   Escape                  close (the dialog's Cancel or Close)
 *   Space                   press a button, switch a check box
 *   arrows, Page, Home/End  move in lists, fields, radio groups
 *   F4, Alt+Down            open a drop-down list
 *   Ctrl-L                  draw the screen again
 *
 * Changes the user makes to a control are made silently (the window layer
 * knows the front end is at work); the command returned is their one
 * notification.
 */
#define NCURSES_WIDECHAR 1
#include <ncursesw/curses.h>

#include <ctype.h>

#include "ui/term.h"

enum { NoCommand = -2 };

static int32_t commandOf(Window *w, uint32_t code)
{
    return (int32_t)((code << 16) | ((uint32_t)w->id & 0xFFFF));
}

static std::vector<Window *> focusOrder(Window *d)
{
    std::vector<Window *> order;
    for (HWND h : d->children)
        if (Window *c = windowOf(h))
            if (takesFocus(c) && (c->style & WS_TABSTOP))
                order.push_back(c);
    return order;
}

/* Opens or closes a drop-down list; Escape gives back the selection it
 * had when it opened. */
static void dropDown(Window *w, bool open)
{
    if (open && !w->dropped)
        term.selectionAtDrop[w->handle] = w->curSel;
    w->dropped = open;
}

static int32_t cancelDropDown(Window *w)
{
    w->dropped = 0;
    int32_t before = term.selectionAtDrop.count(w->handle) ? term.selectionAtDrop[w->handle] : w->curSel;
    if (before == w->curSel)
        return NoCommand;
    SendMessageA(w->handle, ORTO_CB_SETCURSEL, (uintptr_t)(intptr_t)before, 0);
    return commandOf(w, ORTO_CBN_SELCHANGE);
}

static void setFocus(Window *d, Window *w)
{
    /* a drop-down list closes when the focus leaves its box */
    Window *before = windowOf(d->focus);
    if (before && before != w && before->kind == KindComboBox)
        before->dropped = 0;
    d->focus = w ? w->handle : nullptr;
    term.enterOnList = nullptr;
    if (w && editsText(w))
        term.caret[w->handle] = (uint32_t)w->text.size();
}

static Window *focused(Window *d)
{
    Window *f = windowOf(d->focus);
    if (f && takesFocus(f))
        return f;
    std::vector<Window *> order = focusOrder(d);
    if (order.empty())
        return nullptr;
    setFocus(d, order[0]);
    return order[0];
}

static void moveFocus(Window *d, int step)
{
    std::vector<Window *> order = focusOrder(d);
    if (order.empty())
        return;
    Window *f = windowOf(d->focus);
    int at = -1;
    for (size_t i = 0; i < order.size(); i++)
        if (order[i] == f)
            at = (int)i;
    int n = (int)order.size();
    int next = at < 0 ? (step > 0 ? 0 : n - 1) : ((at + step) % n + n) % n;
    setFocus(d, order[(size_t)next]);
}

static int32_t click(Window *d, Window *w)
{
    setFocus(d, w);
    return commandOf(w, ORTO_BN_CLICKED);
}

static bool isButtonOfKind(Window *w, uint32_t kind)
{
    return w && w->kind == KindButton && (w->style & BS_TYPEMASK) == kind;
}

static bool isPushButton(Window *w)
{
    return isButtonOfKind(w, BS_PUSHBUTTON) || isButtonOfKind(w, BS_DEFPUSHBUTTON);
}

static bool isRadio(Window *w)
{
    return isButtonOfKind(w, BS_AUTORADIOBUTTON) || isButtonOfKind(w, BS_RADIOBUTTON);
}

/* The control a marked label or button stands for: a label hands the
 * focus to the next control that takes it. */
static Window *markTarget(Window *d, Window *marked)
{
    if (marked->kind != KindStatic && !isButtonOfKind(marked, BS_GROUPBOX))
        return marked;
    bool after = false;
    for (HWND h : d->children) {
        Window *c = windowOf(h);
        if (c == marked)
            after = true;
        else if (after && c && takesFocus(c))
            return c;
    }
    return nullptr;
}

/* Alt+letter: the control whose label marks the letter.  A push button is
 * pressed where the focus is; a check box or radio button takes the focus
 * and is clicked; a label gives the focus to its field.  Where several
 * controls mark one letter, the focus goes from one to the next, as in the
 * system's dialogs, and nothing is pressed. */
static int32_t mnemonic(Window *d, wint_t key)
{
    if (key > 0xFF)
        return NoCommand;
    int letter = tolower((int)key);
    std::vector<Window *> targets;
    for (HWND h : d->children) {
        Window *c = windowOf(h);
        if (!c || !(c->style & WS_VISIBLE) || (c->kind != KindStatic && c->kind != KindButton))
            continue;
        char m;
        labelWithoutMarks(c->text, &m, nullptr);
        if (!m || tolower((unsigned char)m) != letter)
            continue;
        Window *t = markTarget(d, c);
        if (t && takesFocus(t))
            targets.push_back(t);
    }
    if (targets.empty())
        return NoCommand;
    if (targets.size() > 1) {
        Window *f = windowOf(d->focus);
        Window *next = targets[0];
        for (size_t i = 0; i < targets.size(); i++)
            if (targets[i] == f)
                next = targets[(i + 1) % targets.size()];
        setFocus(d, next);
        return NoCommand;
    }
    Window *t = targets[0];
    if (isPushButton(t))
        return commandOf(t, ORTO_BN_CLICKED);
    if (t->kind == KindButton)
        return click(d, t);
    setFocus(d, t);
    return NoCommand;
}

static int32_t moveInList(Window *w, int step, bool toEnd)
{
    int count = (int)w->items.size();
    if (count == 0)
        return NoCommand;
    int at = w->curSel;
    if (toEnd)
        at = step < 0 ? 0 : count - 1;
    else if (at < 0) /* from no selection: the first entry shown, or a page on */
        at = step > 1 ? w->topIndex + step - 1 : w->topIndex;
    else
        at += step;
    at = at < 0 ? 0 : at >= count ? count - 1 : at;
    if (at == w->curSel)
        return NoCommand;
    term.enterOnList = nullptr;
    if (w->kind == KindListBox) {
        SendMessageA(w->handle, ORTO_LB_SETCURSEL, (uintptr_t)at, 0);
        return commandOf(w, ORTO_LBN_SELCHANGE);
    }
    SendMessageA(w->handle, ORTO_CB_SETCURSEL, (uintptr_t)at, 0);
    term.caret[w->handle] = (uint32_t)w->text.size();
    return commandOf(w, ORTO_CBN_SELCHANGE);
}

/* The next or previous radio button of the group, pressed.  The group
 * runs from the control with WS_GROUP at or before `w` to the next one. */
static int32_t moveInGroup(Window *d, Window *w, int step)
{
    std::vector<Window *> group;
    bool reached = false;
    for (HWND h : d->children) {
        Window *c = windowOf(h);
        if (!c)
            continue;
        if (c->style & WS_GROUP) {
            if (reached)
                break;
            group.clear();
        }
        if (c == w)
            reached = true;
        if (isRadio(c) && takesFocus(c))
            group.push_back(c);
    }
    for (size_t i = 0; i < group.size(); i++)
        if (group[i] == w && i + step < group.size())
            return click(d, group[(size_t)((int)i + step)]);
    return NoCommand;
}

/* Typing in a field: the text changed silently, the notification back. */
static int32_t editField(Window *w, wint_t key, bool isCode)
{
    uint32_t &caret = term.caret[w->handle];
    if (caret > w->text.size())
        caret = (uint32_t)w->text.size();
    std::string text = w->text;
    if (isCode) {
        switch (key) {
        case KEY_LEFT:
            if (caret > 0)
                caret--;
            return NoCommand;
        case KEY_RIGHT:
            if (caret < text.size())
                caret++;
            return NoCommand;
        case KEY_HOME:
            caret = 0;
            return NoCommand;
        case KEY_END:
            caret = (uint32_t)text.size();
            return NoCommand;
        case KEY_BACKSPACE:
            if (caret == 0)
                return NoCommand;
            text.erase(--caret, 1);
            break;
        case KEY_DC:
            if (caret >= text.size())
                return NoCommand;
            text.erase(caret, 1);
            break;
        default:
            return NoCommand;
        }
    } else if (key == 127 || key == 8) {
        if (caret == 0)
            return NoCommand;
        text.erase(--caret, 1);
    } else {
        int byte = wideToLatin1((wchar_t)key);
        if (byte < 0 || (w->textLimit && text.size() >= w->textLimit)) {
            beep();
            return NoCommand;
        }
        text.insert(caret++, 1, (char)byte);
    }
    if (w->kind == KindComboBox) {
        SendMessageA(w->handle, ORTO_CB_SETCURSEL, (uintptr_t)-1, 0);
        SetWindowTextA(w->handle, text.c_str());
        return commandOf(w, ORTO_CBN_EDITCHANGE);
    }
    uint32_t keep = caret;
    SetWindowTextA(w->handle, text.c_str());
    caret = keep;
    return commandOf(w, ORTO_EN_CHANGE);
}

static Window *defaultButton(Window *d)
{
    for (HWND h : d->children)
        if (Window *c = windowOf(h))
            if (isButtonOfKind(c, BS_DEFPUSHBUTTON) && takesFocus(c))
                return c;
    return nullptr;
}

static int32_t enter(Window *d, Window *f)
{
    if (f && isPushButton(f))
        return click(d, f);
    if (f && f->kind == KindListBox && f->curSel >= 0) {
        if (term.enterOnList == f->handle) {
            term.enterOnList = nullptr;
            return commandOf(f, ORTO_LBN_DBLCLK);
        }
        term.enterOnList = f->handle;
        return commandOf(f, ORTO_LBN_SELCHANGE);
    }
    if (f && f->kind == KindComboBox && f->dropped) {
        f->dropped = 0;
        return f->curSel >= 0 ? commandOf(f, ORTO_CBN_SELCHANGE) : NoCommand;
    }
    Window *b = defaultButton(d);
    return b ? click(d, b) : NoCommand;
}

/* A click of the mouse on the dialog on top. */
static int32_t mouseClick(Window *d)
{
    MEVENT event;
    if (getmouse(&event) != OK)
        return NoCommand;
    bool twice = (event.bstate & BUTTON1_DOUBLE_CLICKED) != 0;
    /* an open drop-down list lies over the controls below its box: a click
     * there picks an entry, a click elsewhere closes it */
    Window *f = windowOf(d->focus);
    if (f && f->kind == KindComboBox && f->dropped) {
        RECT r = screenRect(f);
        int row = event.y - r.bottom, index = f->topIndex + row;
        f->dropped = 0;
        if (event.x >= r.left && event.x < r.right && row >= 0 && row < droppedRows(f) &&
            index < (int)f->items.size()) {
            SendMessageA(f->handle, ORTO_CB_SETCURSEL, (uintptr_t)index, 0);
            term.caret[f->handle] = (uint32_t)f->text.size();
            return commandOf(f, ORTO_CBN_SELCHANGE);
        }
    }
    for (HWND h : d->children) {
        Window *c = windowOf(h);
        if (!c || !takesFocus(c))
            continue;
        RECT r = screenRect(c);
        if (event.y < r.top || event.y >= r.bottom || event.x < r.left || event.x >= r.right)
            continue;
        if (c->kind == KindButton)
            return click(d, c);
        setFocus(d, c);
        if (c->kind == KindListBox) {
            int index = c->topIndex + (event.y - r.top);
            if (index >= (int)c->items.size())
                return NoCommand;
            SendMessageA(c->handle, ORTO_LB_SETCURSEL, (uintptr_t)index, 0);
            return commandOf(c, twice ? ORTO_LBN_DBLCLK : ORTO_LBN_SELCHANGE);
        }
        if (c->kind == KindComboBox && (c->style & CBS_TYPEMASK) == CBS_SIMPLE && event.y > r.top) {
            int index = c->topIndex + (event.y - r.top - 1);
            if (index >= (int)c->items.size())
                return NoCommand;
            SendMessageA(c->handle, ORTO_CB_SETCURSEL, (uintptr_t)index, 0);
            return commandOf(c, ORTO_CBN_SELCHANGE);
        }
        if (c->kind == KindComboBox)
            dropDown(c, !c->dropped);
        if (editsText(c)) {
            uint32_t at = term.scroll[c->handle] + (uint32_t)(event.x - r.left);
            term.caret[c->handle] = at < c->text.size() ? at : (uint32_t)c->text.size();
        }
        return NoCommand;
    }
    return NoCommand;
}

/* A dialog that doesn't fit gets a line saying the size it needs. */
static bool tooSmall(void)
{
    int needWidth = 0, needHeight = 0;
    for (HWND h : runningDialogs()) {
        Window *d = windowOf(h);
        if (!d)
            continue;
        if (d->width > needWidth)
            needWidth = d->width;
        if (d->height > needHeight)
            needHeight = d->height;
    }
    if (needWidth <= term.cols && needHeight <= term.rows)
        return false;
    erase();
    char line[160];
    snprintf(line, sizeof line, "ORTO needs a terminal of at least %dx%d; this one is %dx%d.", needWidth,
             needHeight, term.cols, term.rows);
    putText(0, 0, line, term.cols);
    refresh();
    return true;
}

static int32_t handleKey(Window *d, wint_t key, bool isCode)
{
    Window *f = focused(d);
    if (isCode) {
        switch (key) {
        case KEY_RESIZE:
            termResized();
            return NoCommand;
        case KEY_MOUSE:
            return mouseClick(d);
        case KEY_BTAB:
            moveFocus(d, -1);
            return NoCommand;
        case KEY_ENTER:
            return enter(d, f);
        case KEY_F(4):
            if (f && f->kind == KindComboBox && (f->style & CBS_TYPEMASK) != CBS_SIMPLE)
                dropDown(f, !f->dropped);
            return NoCommand;
        default:
            break;
        }
        if (f && (f->kind == KindListBox || f->kind == KindComboBox)) {
            int page = f->kind == KindListBox ? f->height : 8;
            switch (key) {
            case KEY_UP:
                return moveInList(f, -1, false);
            case KEY_DOWN:
                return moveInList(f, 1, false);
            case KEY_PPAGE:
                return moveInList(f, -page, false);
            case KEY_NPAGE:
                return moveInList(f, page, false);
            default:
                break;
            }
            if (f->kind == KindListBox && (key == KEY_HOME || key == KEY_END))
                return moveInList(f, key == KEY_HOME ? -1 : 1, true);
        }
        if (f && f->kind == KindEdit && (f->style & ES_MULTILINE) && !editsText(f)) {
            /* a pane to read: the keys scroll it */
            int page = f->height > 3 ? f->height - 2 : 1;
            int32_t step = key == KEY_UP ? -1 : key == KEY_DOWN ? 1 : key == KEY_PPAGE ? -page
                         : key == KEY_NPAGE ? page : 0;
            if (step) {
                term.paneShift[f->handle] += step;
                return NoCommand;
            }
        }
        if (f && isRadio(f) && (key == KEY_UP || key == KEY_LEFT || key == KEY_DOWN || key == KEY_RIGHT))
            return moveInGroup(d, f, key == KEY_UP || key == KEY_LEFT ? -1 : 1);
        if (f && editsText(f))
            return editField(f, key, true);
        if (key == KEY_UP || key == KEY_LEFT)
            moveFocus(d, -1);
        else if (key == KEY_DOWN || key == KEY_RIGHT)
            moveFocus(d, 1);
        return NoCommand;
    }
    switch (key) {
    case '\t':
        moveFocus(d, 1);
        return NoCommand;
    case 12: /* Ctrl-L: the whole screen sent again, as in other programs */
        clearok(curscr, TRUE);
        return NoCommand;
    case '\r':
    case '\n':
        return enter(d, f);
    case 27: {
        wint_t next;
        bool nextIsCode;
        if (!readKey(&next, &nextIsCode, 60)) { /* Escape alone: close */
            if (f && f->kind == KindComboBox && f->dropped)
                return cancelDropDown(f);
            return -1;
        }
        if (nextIsCode && next == KEY_DOWN && f && f->kind == KindComboBox) {
            dropDown(f, true);
            return NoCommand;
        }
        return nextIsCode ? NoCommand : mnemonic(d, next);
    }
    case ' ':
        if (f && f->kind == KindButton)
            return click(d, f);
        break;
    default:
        break;
    }
    if (f && editsText(f))
        return editField(f, key, false);
    if (key > ' ' && key < 0x7F)
        return mnemonic(d, key);
    return NoCommand;
}

/* A pasted character goes into the field with the focus, a line end or
 * tab as one blank (a CR LF too); with no field to take it, a paste does
 * nothing, so that no letter of it works as a mnemonic. */
static int32_t pastedKey(Window *d, wint_t key, bool isCode)
{
    static wint_t last;
    wint_t before = last;
    last = key;
    Window *f = focused(d);
    if (isCode || !f || !editsText(f) || (key == '\n' && before == '\r'))
        return NoCommand;
    if (key == '\r' || key == '\n' || key == '\t')
        key = ' ';
    else if (key < ' ' || key == 127)
        return NoCommand;
    return editField(f, key, false);
}

int32_t termNextCommand(HWND dialog)
{
    if (!termStart())
        return -1;
    for (;;) {
        Window *d = windowOf(dialog);
        if (!d)
            return -1;
        if (!tooSmall()) {
            focused(d);
            drawScreen(dialog);
            refresh();
        }
        wint_t key;
        bool isCode;
        if (!readKey(&key, &isCode))
            continue;
        if (isCode && (key == KeyPasteStart || key == KeyPasteEnd)) {
            term.pasting = key == KeyPasteStart;
            continue;
        }
        if (term.pasting) {
            int32_t command = pastedKey(d, key, isCode);
            if (command != NoCommand)
                return command;
            continue;
        }
        if (tooSmall() && !(isCode && key == KEY_RESIZE) && key != 27)
            continue;
        int32_t command = handleKey(d, key, isCode);
        if (command != NoCommand)
            return command;
    }
}
