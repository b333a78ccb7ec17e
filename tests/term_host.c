/* A small host in C that runs one of the dialogs in the terminal, for the
 * tests that play a person at its keys:
 *   term_host INI options | dictionaries | check TEXT
 *   term_host INI template SCRIPT LOG
 *   term_host INI control FILE
 * It prints the dialog's result (and the checked text) when it ends.  The
 * control form checks the text of FILE in a text control that fills the
 * top 9 rows of an 80-column screen, the document behind the dialog, and
 * prints the text and then the result.  The
 * template form runs the dialog TESTDLG of a resource script of the
 * test's own, and writes each command it hears, and at OK the state of
 * its controls, to LOG (the terminal is the dialog's while it runs). */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "orto_ui.h"

static FILE *logFile;

static intptr_t send(ORTO_HWND dialog, int id, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    return ORTO_SendMessage(ORTO_GetDlgItem(dialog, id), message, wParam, lParam);
}

static void logText(ORTO_HWND dialog, const char *name, int id)
{
    char text[256];
    ORTO_GetWindowText(ORTO_GetDlgItem(dialog, id), text, sizeof text);
    fprintf(logFile, "%s=%s\n", name, text);
}

/* The controls of the test template: a field (102), a list (104), a
 * drop-down list (106), a field over an open list (108), check boxes
 * (109, 110), radio buttons (111 to 113), a disabled button (114), a
 * button for the mouse (115). */
static intptr_t testDialog(ORTO_HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    (void)lParam;
    if (message == ORTO_WM_INITDIALOG) {
        char item[32];
        ORTO_SetWindowText(ORTO_GetDlgItem(dialog, 102), "caf\xE9");
        for (int i = 1; i <= 30; i++) {
            snprintf(item, sizeof item, "item %d", i);
            send(dialog, 104, ORTO_LB_ADDSTRING, 0, (intptr_t)item);
        }
        send(dialog, 106, ORTO_CB_ADDSTRING, 0, (intptr_t) "Apple");
        send(dialog, 106, ORTO_CB_ADDSTRING, 0, (intptr_t) "Banana");
        send(dialog, 106, ORTO_CB_ADDSTRING, 0, (intptr_t) "Cherry");
        send(dialog, 106, ORTO_CB_SETCURSEL, 0, 0);
        send(dialog, 108, ORTO_CB_ADDSTRING, 0, (intptr_t) "na\xEFve");
        send(dialog, 108, ORTO_CB_ADDSTRING, 0, (intptr_t) "plain");
        send(dialog, 111, ORTO_BM_SETCHECK, ORTO_BST_CHECKED, 0);
        return 1;
    }
    if (message != ORTO_WM_COMMAND)
        return 0;
    int id = (int)(wParam & 0xFFFF), code = (int)(wParam >> 16);
    fprintf(logFile, "command %d %d", id, code);
    if (id == 104)
        fprintf(logFile, " at %d", (int)send(dialog, id, ORTO_LB_GETCURSEL, 0, 0));
    if (id == 106 || id == 108)
        fprintf(logFile, " at %d", (int)send(dialog, id, ORTO_CB_GETCURSEL, 0, 0));
    fputc('\n', logFile);
    if (id == ORTO_IDOK) {
        logText(dialog, "name", 102);
        fprintf(logFile, "items=%d\n", (int)send(dialog, 104, ORTO_LB_GETCURSEL, 0, 0));
        logText(dialog, "kind", 106);
        logText(dialog, "word", 108);
        fprintf(logFile, "checks=%d%d radios=%d%d%d\n", (int)send(dialog, 109, ORTO_BM_GETCHECK, 0, 0),
                (int)send(dialog, 110, ORTO_BM_GETCHECK, 0, 0), (int)send(dialog, 111, ORTO_BM_GETCHECK, 0, 0),
                (int)send(dialog, 112, ORTO_BM_GETCHECK, 0, 0), (int)send(dialog, 113, ORTO_BM_GETCHECK, 0, 0));
    }
    if (id == ORTO_IDOK || id == ORTO_IDCANCEL)
        ORTO_EndDialog(dialog, id);
    fflush(logFile);
    return 1;
}

static int runTemplate(const char *scriptPath, const char *logPath)
{
    static char script[65536];
    FILE *in = fopen(scriptPath, "rb");
    size_t n = in ? fread(script, 1, sizeof script - 1, in) : 0;
    if (in)
        fclose(in);
    script[n] = '\0';
    char error[256];
    ORTO_HINSTANCE module = ORTO_LoadTemplates(script, error, sizeof error);
    logFile = fopen(logPath, "w");
    if (!module || !logFile) {
        fprintf(stderr, "term_host: %s\n", module ? logPath : error);
        return 2;
    }
    printf("result %d\n", (int)ORTO_DialogBoxParam(module, "TESTDLG", NULL, testDialog, 0));
    fclose(logFile);
    ORTO_FreeTemplates(module);
    return 0;
}

static void runControl(const char *path)
{
    static char text[65536];
    FILE *in = fopen(path, "rb");
    size_t n = in ? fread(text, 1, sizeof text - 1, in) : 0;
    if (in)
        fclose(in);
    text[n] = '\0';
    ORTO_HWND control = ORTO_CreateTextControl("EDIT", text);
    ORTO_MoveWindow(control, 0, 0, 80, 9);
    int result = ORTO_CheckCtrlDlg(NULL, control, 0);
    ORTO_GetWindowText(control, text, sizeof text);
    printf("%s\nresult %d\n", text, result);
    ORTO_DestroyWindow(control);
}

int main(int argc, char **argv)
{
    if (argc < 3)
        return 2;
    ORTO_SetIniFile(argv[1]);
    if (strcmp(argv[2], "options") == 0) {
        printf("result %d\n", ORTO_OptionsDlg(NULL));
    } else if (strcmp(argv[2], "dictionaries") == 0) {
        printf("result %d\n", ORTO_EditLexDlg(NULL));
    } else if (strcmp(argv[2], "check") == 0 && argc > 3) {
        char text[4096];
        snprintf(text, sizeof text, "%s", argv[3]);
        int32_t r = ORTO_CheckBlockDlg(NULL, text, (uint32_t)strlen(text), sizeof text, 1);
        if (r >= 0)
            text[r] = '\0';
        printf("result %d: %s\n", r, text);
    } else if (strcmp(argv[2], "template") == 0 && argc > 4) {
        return runTemplate(argv[3], argv[4]);
    } else if (strcmp(argv[2], "control") == 0 && argc > 3) {
        runControl(argv[3]);
    } else {
        return 2;
    }
    ORTO_SetIniFile(""); /* the shared session's options go to the store now */
    return 0;
}
