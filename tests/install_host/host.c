/* host.c -- a host of an installed ORTO: the Check Spelling dialog over a
 * buffer of its own, with the bundled en-US lexicon.
 *   host SETTINGS-FILE [--terminal]
 * Without --terminal a front end of the host's own plays the user: at the
 * first problem it types "checks" into Change To and presses Change; any
 * later dialog it closes.  With --terminal the terminal front end lets a
 * person (or tmux) play.  The host prints each word the dialog asked about
 * and the text it gave back.  ORTO_LEXICON_DIR comes from the build: from
 * pkg-config's lexicondir, or CMake's orto_LEXICON_DIR. */
#include <stdio.h>
#include <string.h>

#include <orto_ui.h>

enum { ChangeButton = 1003, ChangeTo = 1010, Word = 1012 };

static int32_t nextCommand(void *context, ORTO_HWND dialog)
{
    int *acts = (int *)context;
    char word[64];
    ORTO_GetWindowText(ORTO_GetDlgItem(dialog, Word), word, sizeof word);
    printf("asked: %s\n", word);
    if ((*acts)++ > 0)
        return -1;
    ORTO_SetWindowText(ORTO_GetDlgItem(dialog, ChangeTo), "checks");
    return ChangeButton | ORTO_BN_CLICKED << 16;
}

int main(int argc, char **argv)
{
    if (argc < 2)
        return 2;
    int acts = 0;
    ORTO_FrontEnd user;
    memset(&user, 0, sizeof user);
    user.context = &acts;
    user.nextCommand = nextCommand;
    ORTO_SetFrontEnd(argc > 2 && strcmp(argv[2], "--terminal") == 0 ? NULL : &user);

    ORTO_SetIniFile(argv[1]);
    ORTO_SetMainLexPath(ORTO_LEXICON_DIR);
    ORTO_SetMainLexFiles("en-US.clx");
    char text[64] = "A host that cheks its text.";
    int32_t r = ORTO_CheckBlockDlg(NULL, text, (uint32_t)strlen(text), sizeof text, 0);
    if (r >= 0)
        text[r] = '\0';
    printf("result %d: %s\n", (int)r, text);
    return r >= 0 ? 0 : 1;
}
