/*
 * button_control.cpp -- push buttons, check boxes, radio buttons and group
 * boxes.  Only automatic check boxes and radio buttons change by a click:
 * the others leave their state to the dialog.
 *
 * A radio button's group runs from the nearest control at or before it
 * with WS_GROUP to the control before the next one with WS_GROUP, in tab
 * order.
 */
#include "ui/controls.h"

static void clearOtherRadios(Window *button)
{
    Window *dialog = windowOf(button->parent);
    if (!dialog)
        return;
    const std::vector<HWND> &children = dialog->children;
    size_t at = 0;
    while (at < children.size() && children[at] != button->handle)
        at++;
    if (at == children.size())
        return;
    size_t first = at;
    while (first > 0) {
        Window *c = windowOf(children[first]);
        if (c && (c->style & WS_GROUP))
            break;
        first--;
    }
    for (size_t k = first; k < children.size(); k++) {
        Window *c = windowOf(children[k]);
        if (!c)
            continue;
        if (k > first && (c->style & WS_GROUP))
            break;
        uint32_t type = c->style & BS_TYPEMASK;
        if (c != button && c->kind == KindButton && (type == BS_AUTORADIOBUTTON || type == BS_RADIOBUTTON))
            c->check = ORTO_BST_UNCHECKED;
    }
}

void autoButtonClick(Window *button)
{
    if (button->kind != KindButton)
        return;
    switch (button->style & BS_TYPEMASK) {
    case BS_AUTOCHECKBOX:
        button->check = button->check == ORTO_BST_CHECKED ? ORTO_BST_UNCHECKED : ORTO_BST_CHECKED;
        break;
    case BS_AUTO3STATE:
        button->check = (button->check + 1) % 3;
        break;
    case BS_AUTORADIOBUTTON:
        button->check = ORTO_BST_CHECKED;
        clearOtherRadios(button);
        break;
    default:
        break;
    }
}

intptr_t buttonMessage(Window *w, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    (void)lParam;
    switch (message) {
    case ORTO_BM_GETCHECK:
        return w->check;
    case ORTO_BM_SETCHECK:
        w->check = (int32_t)wParam;
        return 0;
    case ORTO_BM_CLICK:
        if (!(w->style & WS_DISABLED)) {
            autoButtonClick(w);
            notifyParent(w, ORTO_BN_CLICKED);
        }
        return 0;
    default:
        return 0;
    }
}
