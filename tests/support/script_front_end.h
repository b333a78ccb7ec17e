/*
 * script_front_end.h -- a front end that plays the user from a script, for
 * the tests of the window layer and the dialogs.
 *
 * A script is a list of acts; each act gets the dialog on top, may change
 * its controls as a user would (through orto_ui.h only) and returns the
 * command of that act.  When the script runs out, the user closes the
 * dialog.  Message boxes, file dialogs, help and the wait cursor are
 * recorded; file dialogs answer from a queue of paths ("" cancels).
 */
#ifndef ORTO_SCRIPT_FRONT_END_H
#define ORTO_SCRIPT_FRONT_END_H

#include <functional>
#include <string>
#include <vector>

#include "orto_ui.h"

typedef std::function<int32_t(ORTO_HWND dialog)> Act;

struct FileRequestSeen {
    int save;
    std::string title, filter, startFolder, defaultExtension;
    uint32_t flags;
};

struct ScriptFrontEnd {
    std::vector<Act> acts;
    size_t next = 0;
    std::vector<std::string> messages;          /* "title|text" */
    std::vector<std::string> fileAnswers;       /* one per file dialog, "" cancels */
    std::vector<FileRequestSeen> fileRequests;
    std::vector<std::pair<std::string, uint32_t>> helpCalls;
    int waitCursorOn = 0, waitCursorOff = 0;
    int32_t area[4] = {0, 0, 80, 24};
    std::vector<std::string> captions;          /* caption of the dialog at each act */

    ScriptFrontEnd();                            /* installs itself */
    ~ScriptFrontEnd();                           /* back to no user */
    ScriptFrontEnd(const ScriptFrontEnd &) = delete;
    ScriptFrontEnd &operator=(const ScriptFrontEnd &) = delete;
    void then(Act act) { acts.push_back(std::move(act)); }
};

int32_t command(int32_t id, int32_t code);

/* Acts of a user. */
Act click(int32_t id);                               /* BN_CLICKED */
Act typeText(int32_t id, const std::string &text);   /* EN_CHANGE, or CBN_EDITCHANGE in a combo box */
Act selectItem(int32_t id, int index);               /* LBN_SELCHANGE / CBN_SELCHANGE */
Act doubleClickItem(int32_t id, int index);          /* LBN_DBLCLK */
Act closeDialog();                                   /* -1 */
/* Runs `check` on the dialog (with gtest assertions), then gives `then`. */
Act inspect(std::function<void(ORTO_HWND)> check, Act then);

/* Reading controls back. */
std::string windowText(ORTO_HWND window);
std::string itemText(ORTO_HWND dialog, int32_t id);
std::vector<std::string> listEntries(ORTO_HWND dialog, int32_t id);  /* list or combo box */
bool enabled(ORTO_HWND dialog, int32_t id);
bool checked(ORTO_HWND dialog, int32_t id);

#endif
