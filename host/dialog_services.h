/*
 * dialog_services.h -- the small services every dialog uses: the wait
 * cursor, the message box with its texts from the string table, the
 * dialogs' log, and a message sent to all controls of a dialog.
 */
#ifndef ORTO_HOST_DIALOG_SERVICES_H
#define ORTO_HOST_DIALOG_SERVICES_H

#include "engine/types.h"
#include "ui/window.h"

/* On: the wait cursor replaces the cursor, which is remembered; off: the
 * remembered cursor comes back.  One place to remember: calls don't nest. */
void waitCursor(int on);

/* Shows a message box over `owner` (or none): the text of string id
 * `textId` (default `textDefault`) with each "%s" replaced by `arg1`, then
 * `arg2` (null: empty), under the title of `titleId` (null: no title).
 * The text is cut to 255 characters. */
void dialogMessage(HWND owner, const char *textId, const char *textDefault, const char *titleId,
                   const char *titleDefault, const char *arg1, const char *arg2);

/* One line in the file `debugFile` names, after the local time; nothing
 * while it is empty. */
void dialogLog(const char *format, ...) __attribute__((format(printf, 1, 2)));

/* The message that SndMsgEnumCb sends: its lParam points to one. */
typedef ORTO_ChildMessage ChildMessage;
/* Sends the message to every child window of `window`. */
void sendToChildren(HWND window, uint32_t message, uintptr_t wParam, intptr_t lParam);

#endif
