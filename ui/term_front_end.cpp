/*
 * term_front_end.cpp -- the terminal front end as the window layer sees
 * it: the ORTO_FrontEnd whose acts are a person's at the terminal.
 */
#include "ui/term.h"

static int32_t nextCommand(void *, ORTO_HWND dialog) { return termNextCommand(dialog); }

static void messageBox(void *, ORTO_HWND, const char *text, const char *title) { termMessageBox(text, title); }

static int32_t fileDialog(void *, ORTO_HWND, const ORTO_FileRequest *request, char *path, uint32_t pathSize)
{
    return termFileDialog(request, path, pathSize);
}

static void help(void *, ORTO_HWND, const char *helpFile, uint32_t topic) { termHelp(helpFile, topic); }

static void waitCursor(void *, int32_t on)
{
    if (on)
        drawWaitNotice();
}

static void workArea(void *, int32_t rect[4])
{
    bool started = termStart();
    rect[0] = 0;
    rect[1] = 0;
    rect[2] = started ? term.cols : 80;
    rect[3] = started ? term.rows : 24;
}

extern const ORTO_FrontEnd terminalFrontEnd;
const ORTO_FrontEnd terminalFrontEnd = {nullptr, nextCommand, messageBox, fileDialog, help, waitCursor, workArea};
