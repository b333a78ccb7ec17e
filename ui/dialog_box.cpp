/*
 * dialog_box.cpp -- modal dialogs: a dialog made from its template, the
 * opening event, and the loop that asks the front end for the user's next
 * act until the dialog's own code calls EndDialog.
 *
 * Nesting comes for free: a command handler that runs another dialog calls
 * DialogBoxParamA, whose loop runs inside the handler, and the outer loop
 * goes on when it returns.  The stack of running dialogs is what the front
 * end draws, the innermost on top.
 *
 * A template's dialog font is made with the weight the template gives,
 * else bold, the weight of dialog text in the system these dialogs come
 * from; the dialogs' FontBold step then decides what the user sees.
 */
#include <stdio.h>
#include <string.h>

#include "ui/controls.h"

static std::vector<HWND> dialogStack;

const std::vector<HWND> &runningDialogs() { return dialogStack; }

static bool isRunning(HWND dialog)
{
    for (HWND h : dialogStack)
        if (h == dialog)
            return true;
    return false;
}

static void workAreaRect(RECT *area)
{
    SystemParametersInfoA(SPI_GETWORKAREA, 0, area, 0);
}

/* The dialog stands at its template position, counted from its owner's
 * top left corner (or the work area's), and is moved back inside the work
 * area where it would stick out on the right or at the bottom. */
static void placeFromTemplate(Window *d, const DialogTemplate *t, HWND owner)
{
    RECT area;
    workAreaRect(&area);
    RECT base = area;
    if (windowOf(owner))
        GetWindowRect(owner, &base);
    d->width = unitsToColumns(t->cx, 1) + 2;
    d->height = unitsToRows(t->cy, 1) + 1;
    d->x = base.left + unitsToColumns(t->x, 0);
    d->y = base.top + unitsToRows(t->y, 0);
    if (d->x + d->width > area.right)
        d->x = area.right - d->width;
    if (d->y + d->height > area.bottom)
        d->y = area.bottom - d->height;
    if (d->x < area.left)
        d->x = area.left;
    if (d->y < area.top)
        d->y = area.top;
}

/* True for a control of one line of text: a label, a field, a button, a
 * check box, a drop-down combo box (its list drops over the rest). */
static bool isOneLine(const ControlTemplate &c)
{
    switch (c.kind) {
    case KindListBox:
        return false;
    case KindEdit:
        return !(c.style & ES_MULTILINE);
    case KindComboBox:
        return (c.style & CBS_TYPEMASK) != CBS_SIMPLE;
    case KindButton:
        return (c.style & BS_TYPEMASK) != BS_GROUPBOX;
    default:
        return c.cy <= 16;
    }
}

/* A control's cells: its edges are rounded, so neighbours stay neighbours;
 * a control of one line stands on the row of its middle, so a label and
 * the field beside it share a row, as they share a middle in the template
 * (a drop-down combo box's middle is that of its field, 12 units high); a
 * middle on the edge between two rows takes the upper one, so a label
 * just above a list stays above it. */
static void placeControl(Window *w, const ControlTemplate &c)
{
    int32_t left = unitsToColumns(c.x, 0), right = unitsToColumns(c.x + c.cx, 0);
    w->x = left;
    w->width = c.cx > 0 && right - left < 1 ? 1 : right - left;
    if (isOneLine(c)) {
        int32_t lineHeight = c.kind == KindComboBox ? 12 : c.cy;
        int32_t middle = 2 * c.y + lineHeight - 1; /* twice the middle, a middle on a row's edge goes up */
        w->y = middle >= 0 ? middle / 16 : -((-middle + 15) / 16);
        w->height = 1;
    } else {
        int32_t top = unitsToRows(c.y, 0), bottom = unitsToRows(c.y + c.cy, 0);
        w->y = top;
        w->height = c.cy > 0 && bottom - top < 1 ? 1 : bottom - top;
    }
}

static HWND createDialog(const DialogTemplate *t, HWND owner, DLGPROC proc)
{
    HWND h = createWindow(KindDialog, "#32770", owner);
    Window *d = windowOf(h);
    if (!d)
        return nullptr;
    d->style = t->style | WS_VISIBLE;
    d->text = t->caption;
    d->proc = proc;
    placeFromTemplate(d, t, owner);
    if (!t->fontFace.empty()) {
        LOGFONTA font{};
        font.lfHeight = t->fontSize;
        font.lfWeight = t->fontWeight ? t->fontWeight : FW_BOLD;
        snprintf(font.lfFaceName, sizeof font.lfFaceName, "%s", t->fontFace.c_str());
        d->templateFont = CreateFontIndirectA(&font);
        d->font = d->templateFont;
    }
    for (const ControlTemplate &c : t->controls) {
        HWND ch = createWindow(c.kind, c.className, h);
        Window *cw = windowOf(ch);
        d = windowOf(h); /* the table may have grown */
        if (!cw || !d) {
            destroyWindow(h);
            return nullptr;
        }
        cw->id = c.id;
        cw->style = c.style;
        if (c.kind != KindListBox && c.kind != KindComboBox && c.kind != KindEdit)
            cw->text = c.text;
        placeControl(cw, c);
        cw->font = d->font;
        d->children.push_back(ch);
    }
    return h;
}

static HWND firstTabStop(Window *d)
{
    for (HWND child : d->children) {
        Window *c = windowOf(child);
        if (c && (c->style & WS_TABSTOP) && (c->style & WS_VISIBLE) && !(c->style & WS_DISABLED))
            return child;
    }
    return nullptr;
}

/* The control a command names, if a user could have given it. */
static Window *commandControl(HWND dialog, int32_t command)
{
    Window *d = windowOf(dialog);
    if (!d)
        return nullptr;
    for (HWND child : d->children) {
        Window *c = windowOf(child);
        if (c && ((uint32_t)c->id & 0xFFFF) == ((uint32_t)command & 0xFFFF))
            return (c->style & WS_VISIBLE) && !(c->style & WS_DISABLED) ? c : nullptr;
    }
    return nullptr;
}

static void sendCommand(HWND dialog, uint32_t id, uint32_t code, HWND control)
{
    SendMessageA(dialog, ORTO_WM_COMMAND, ((uintptr_t)code << 16) | (id & 0xFFFF), (intptr_t)control);
}

/* Asks the front end for one act and carries it out. */
static void runOneAct(HWND dialog)
{
    const ORTO_FrontEnd *fe = currentFrontEnd();
    int32_t command = -1;
    if (fe->nextCommand) {
        frontEndDepth++;
        command = fe->nextCommand(fe->context, dialog);
        frontEndDepth--;
    }
    Window *d = windowOf(dialog);
    if (!d)
        return;
    if (command == -1) {
        sendCommand(dialog, ORTO_IDCANCEL, ORTO_BN_CLICKED, GetDlgItem(dialog, ORTO_IDCANCEL));
        d = windowOf(dialog);
        /* nobody at the keys: a dialog that won't close by its Cancel ends here */
        if (d && !d->ending && !fe->nextCommand)
            EndDialog(dialog, -1);
        return;
    }
    Window *c = commandControl(dialog, command);
    if (!c)
        return;
    uint32_t code = ((uint32_t)command >> 16) & 0xFFFF;
    if (c->kind == KindButton && code == ORTO_BN_CLICKED)
        autoButtonClick(c);
    sendCommand(dialog, (uint32_t)c->id, code, c->handle);
    /* a user's pick in a combo box's list is taken at once */
    if (c->kind == KindComboBox && code == ORTO_CBN_SELCHANGE && windowOf(c->handle))
        sendCommand(dialog, (uint32_t)c->id, ORTO_CBN_SELENDOK, c->handle);
}

intptr_t DialogBoxParamA(HINSTANCE module, const char *templateName, HWND parent, DLGPROC proc, intptr_t param)
{
    if (!module)
        module = ORTO_LibraryModule();
    const DialogTemplate *t = findTemplate(module, templateName);
    if (!t || !proc)
        return -1;
    HWND dialog = createDialog(t, parent, proc);
    if (!dialog)
        return -1;
    dialogStack.push_back(dialog);
    HWND focus = firstTabStop(windowOf(dialog));
    intptr_t answer = proc(dialog, ORTO_WM_INITDIALOG, (uintptr_t)focus, param);
    Window *d = windowOf(dialog);
    if (d && answer && focus)
        d->focus = focus;
    while (d && !d->ending) {
        d->shown = 1;
        runOneAct(dialog);
        d = windowOf(dialog);
    }
    intptr_t result = d ? d->result : -1;
    dialogStack.pop_back();
    destroyWindow(dialog);
    if (dialogStack.empty())
        frontEndIdle();
    return result;
}

int32_t EndDialog(HWND dialog, intptr_t result)
{
    Window *d = windowOf(dialog);
    if (!d || d->kind != KindDialog || !isRunning(dialog))
        return 0;
    d->result = result;
    d->ending = 1;
    return 1;
}

extern "C" {

ORTO_API intptr_t ORTO_DialogBoxParam(ORTO_HINSTANCE module, const char *templateName, ORTO_HWND parent,
                                      ORTO_DLGPROC proc, intptr_t param)
{
    return DialogBoxParamA(module, templateName, parent, proc, param);
}

ORTO_API int32_t ORTO_EndDialog(ORTO_HWND dialog, intptr_t result) { return EndDialog(dialog, result); }

} /* extern "C" */
