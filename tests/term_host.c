/* A small host in C that runs one of the dialogs in the terminal, for the
 * tests that play a person at its keys:
 *   term_host INI options | dictionaries | check TEXT
 * It prints the dialog's result (and the checked text) when it ends. */
#include <stdio.h>
#include <string.h>

#include "orto_ui.h"

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
    } else {
        return 2;
    }
    ORTO_SetIniFile(""); /* the shared session's options go to the store now */
    return 0;
}
