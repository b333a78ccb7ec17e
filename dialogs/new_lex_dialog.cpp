/*
 * new_lex_dialog.cpp -- the New Dictionary dialog: the file name and the
 * language of a new user lexicon.  It creates nothing; the Dictionaries
 * dialog reads its two answers after an OK and makes the lexicon.
 */
#include "dialogs/edit_lex_dialog.h"

#include <string.h>

#include "dialogs/dialog_look.h"
#include "dialogs/language_choices.h"
#include "engine/string_helpers.h"
#include "host/dialog_services.h"
#include "host/profile.h"
#include "host/shared_session.h"
#include "orto.h"

char newLexName[PathSize];
u16 newLexLanguage;

enum { NameField = 1027, BrowseButton = 1028, LanguageBox = 1023, HelpButton = 1055 };
enum { NewLexHelpTopic = 400 };

static int32_t languageIndex[LanguageChoiceCount]; /* each row's index in the box */

static void openNewLexDialog(HWND dialog)
{
    newLexName[0] = '\0';
    for (int i = 0; i < LanguageChoiceCount; i++) {
        char name[LabelSize];
        Profile_GetText(LanguageChoices[i].stringId, LanguageChoices[i].defaultText, name, sizeof name);
        languageIndex[i] = (int32_t)SendDlgItemMessageA(dialog, LanguageBox, ORTO_CB_ADDSTRING, 0, (intptr_t)name);
    }
    SendDlgItemMessageA(dialog, LanguageBox, ORTO_CB_SETCURSEL, 0, 0);
    if (wantNormalWeight()) {
        if (!editLexFont)
            editLexFont = copyFontNormalWeight(dialog); /* the Dictionaries dialog deletes it */
        if (editLexFont)
            sendToChildren(dialog, ORTO_WM_SETFONT, (uintptr_t)editLexFont, 0);
    }
}

static void acceptNewLex(HWND dialog)
{
    newLexLanguage = ORTO_LangAny;
    GetDlgItemTextA(dialog, NameField, newLexName, sizeof newLexName);
    if (!strchr(newLexName, '.'))
        StrAppend(newLexName, sizeof newLexName, ".TLX");
    int32_t selected = (int32_t)SendDlgItemMessageA(dialog, LanguageBox, ORTO_CB_GETCURSEL, 0, 0);
    for (int i = 0; i < LanguageChoiceCount; i++)
        if (selected >= 0 && languageIndex[i] == selected)
            newLexLanguage = LanguageChoices[i].code;
    EndDialog(dialog, 0);
}

static void browseForNewLex(HWND dialog)
{
    if (!askForFile(dialog, true, "LexFileFilterStr", lexFileFilterDefault, "NewLexFileStr", "Create Dictionary File",
                    ORTO_OFN_OVERWRITEPROMPT | ORTO_OFN_HIDEREADONLY | ORTO_OFN_NOCHANGEDIR | ORTO_OFN_PATHMUSTEXIST,
                    "tlx", newLexName))
        return;
    char name[PathSize];
    userLexName(newLexName, name, sizeof name);
    SetDlgItemTextA(dialog, NameField, name);
}

extern "C" ORTO_API intptr_t NewLexDlgProc(ORTO_HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    (void)lParam;
    if (message == ORTO_WM_INITDIALOG) {
        openNewLexDialog(dialog);
        return 1;
    }
    if (isColourRequest(message))
        return answerColourRequest(wParam, editLexBrush);
    if (message != ORTO_WM_COMMAND)
        return 0;
    switch (wParam & 0xFFFF) {
    case ORTO_IDOK:
        acceptNewLex(dialog);
        break;
    case BrowseButton:
        browseForNewLex(dialog);
        break;
    case HelpButton:
        WinHelpA(dialog, helpFile, HELP_CONTEXT, NewLexHelpTopic);
        break;
    case ORTO_IDCANCEL:
        EndDialog(dialog, ORTO_Cancelled);
        break;
    default:
        break;
    }
    return 1;
}
