/*
 * system_services.cpp -- the system's services that the dialogs call:
 * message boxes, help, the file dialogs, the cursor, and the geometry of
 * the screen.  Each goes to the front end; where the front end has no
 * answer, the service does what a session without a user needs (the text
 * of a message box goes to the debug log, a file dialog is cancelled).
 */
#include <stdio.h>
#include <string.h>

#include "engine/debug_log.h"
#include "ui/window.h"

int32_t MessageBoxA(HWND owner, const char *text, const char *title, uint32_t type)
{
    (void)type; /* always one OK button */
    const ORTO_FrontEnd *fe = currentFrontEnd();
    if (fe->messageBox)
        fe->messageBox(fe->context, owner, text ? text : "", title ? title : "");
    else
        DebugLog("MessageBoxA: %s: %s", title ? title : "", text ? text : "");
    return ORTO_IDOK;
}

int32_t WinHelpA(HWND window, const char *helpFile, uint32_t command, uintptr_t data)
{
    const ORTO_FrontEnd *fe = currentFrontEnd();
    if (command == HELP_CONTEXT && fe->help)
        fe->help(fe->context, window, helpFile ? helpFile : "", (uint32_t)data);
    return 1;
}

/* The name part of a path: behind the last '/'. */
static const char *fileNamePart(const char *path)
{
    const char *slash = strrchr(path, '/');
    return slash ? slash + 1 : path;
}

static int32_t runFileDialog(OPENFILENAMEA *request, int32_t save)
{
    const ORTO_FrontEnd *fe = currentFrontEnd();
    if (!request || !request->lpstrFile || request->nMaxFile == 0 || !fe->fileDialog)
        return 0;
    ORTO_FileRequest r{save, request->lpstrTitle, request->lpstrFilter, request->lpstrInitialDir,
                       request->lpstrDefExt, request->Flags};
    frontEndDepth++;
    int32_t chosen = fe->fileDialog(fe->context, request->hwndOwner, &r, request->lpstrFile, request->nMaxFile);
    frontEndDepth--;
    if (!chosen)
        return 0;
    request->lpstrFile[request->nMaxFile - 1] = '\0';
    /* a name typed without an extension gets the default one, as far as it fits */
    const char *ext = request->lpstrDefExt;
    if (ext && *ext && !strchr(fileNamePart(request->lpstrFile), '.')) {
        size_t used = strlen(request->lpstrFile);
        if (used + 1 + strlen(ext) < request->nMaxFile)
            snprintf(request->lpstrFile + used, request->nMaxFile - used, ".%s", ext);
    }
    return 1;
}

int32_t GetOpenFileNameA(OPENFILENAMEA *request) { return runFileDialog(request, 0); }

int32_t GetSaveFileNameA(OPENFILENAMEA *request) { return runFileDialog(request, 1); }

static HCURSOR currentCursor = IDC_ARROW;
static int32_t cursorShowCount;

HCURSOR LoadCursorA(HINSTANCE module, intptr_t id)
{
    (void)module;
    return id;
}

HCURSOR SetCursor(HCURSOR cursor)
{
    HCURSOR before = currentCursor;
    currentCursor = cursor;
    const ORTO_FrontEnd *fe = currentFrontEnd();
    if (fe->waitCursor && (before == IDC_WAIT) != (cursor == IDC_WAIT))
        fe->waitCursor(fe->context, cursor == IDC_WAIT);
    return before;
}

int32_t ShowCursor(int32_t show)
{
    cursorShowCount += show ? 1 : -1;
    return cursorShowCount;
}

/* A terminal window has no sizing frame outside its cells. */
int32_t GetSystemMetrics(int32_t index)
{
    (void)index;
    return 0;
}

/* The version word of the platform whose rules the placement follows:
 * the high bit and major version 4, so the work area is asked for. */
uint32_t GetVersion(void) { return 0x80000004u; }

int32_t SystemParametersInfoA(uint32_t action, uint32_t uiParam, void *pvParam, uint32_t winIni)
{
    (void)uiParam;
    (void)winIni;
    if (action != SPI_GETWORKAREA || !pvParam)
        return 0;
    int32_t r[4] = {0, 0, 80, 24};
    const ORTO_FrontEnd *fe = currentFrontEnd();
    if (fe->workArea)
        fe->workArea(fe->context, r);
    SetRect((RECT *)pvParam, r[0], r[1], r[2], r[3]);
    return 1;
}

/* The desktop is a window of the size of the work area. */
HWND GetDesktopWindow(void)
{
    static HWND desktop;
    if (!windowOf(desktop))
        desktop = createWindow(KindStatic, "#32769", nullptr);
    RECT area;
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
    MoveWindow(desktop, area.left, area.top, area.right - area.left, area.bottom - area.top, 0);
    return desktop;
}

int32_t SetRect(RECT *rect, int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    if (!rect)
        return 0;
    rect->left = left;
    rect->top = top;
    rect->right = right;
    rect->bottom = bottom;
    return 1;
}

/* The common part of two rectangles; an empty one is all zeros. */
int32_t IntersectRect(RECT *out, const RECT *a, const RECT *b)
{
    if (!out || !a || !b)
        return 0;
    RECT r = {a->left > b->left ? a->left : b->left, a->top > b->top ? a->top : b->top,
              a->right < b->right ? a->right : b->right, a->bottom < b->bottom ? a->bottom : b->bottom};
    if (r.left >= r.right || r.top >= r.bottom) {
        SetRect(out, 0, 0, 0, 0);
        return 0;
    }
    *out = r;
    return 1;
}
