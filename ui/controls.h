/*
 * controls.h -- what each class of control answers to its messages, for
 * SendMessageA and for the modal loop's handling of a user's click.
 */
#ifndef ORTO_UI_CONTROLS_H
#define ORTO_UI_CONTROLS_H

#include "ui/window.h"

intptr_t editMessage(Window *w, uint32_t message, uintptr_t wParam, intptr_t lParam);
/* WM_SETTEXT of a text control: the whole text, no limit, no selection. */
intptr_t editSetText(Window *w, const char *text);
intptr_t listBoxMessage(Window *w, uint32_t message, uintptr_t wParam, intptr_t lParam);
intptr_t comboBoxMessage(Window *w, uint32_t message, uintptr_t wParam, intptr_t lParam);
intptr_t buttonMessage(Window *w, uint32_t message, uintptr_t wParam, intptr_t lParam);

/* What a click does to an automatic check box or radio button by itself:
 * the box flips; the radio button is checked and the others of its group
 * are cleared.  Other buttons stay as they are. */
void autoButtonClick(Window *button);

#endif
