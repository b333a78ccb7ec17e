/*
 * check_commands.cpp -- what each button and list of the Check Spelling
 * dialog does.  Every command that moves on ends in checkNextProblem;
 * Suggest, the suggestion list and edits of the two fields stay on the
 * problem shown.
 *
 * Change and Change All write an entry into the temporary lexicon (C and
 * A), so later places of the word come up with the same answer; Undo
 * takes an A entry back out.
 */
#include <string.h>

#include "dialogs/check_commands.h"
#include "dialogs/edit_lex_dialog.h"
#include "host/dialog_services.h"
#include "host/shared_session.h"
#include "orto.h"

static void ignoreAll(HWND dialog)
{
    if (ORTO_AddToLex(sharedSid, tempLexId(), problemWord, ORTO_Ignore, nullptr) < 0)
        checkMessage(dialog, "ErrorSavingLexStr", "Can't add word to temporary dictionary");
    ORTO_NextBlockWord(sharedSid, checkParams->block);
    checkNextProblem(dialog);
}

/* Change (action C) and Change All (action A) with text in Change To. */
static void changeWord(HWND dialog, char action)
{
    char replacement[WordSize];
    GetDlgItemTextA(dialog, ChangeToField, replacement, sizeof replacement);
    uint32_t cursor = 0;
    ORTO_GetBlockInfo(sharedSid, checkParams->block, nullptr, nullptr, &cursor, nullptr);
    if (!replaceProblemWord(dialog, cursor, replacement))
        return;
    wordsChanged++;
    if (strcmp(replacement, problemWord) != 0) {
        i16 rc = ORTO_AddToLex(sharedSid, tempLexId(), problemWord, (uint16_t)action, replacement);
        if (rc < 0 && action == ORTO_AutoChangePreserveCase)
            checkMessage(dialog, "ErrorSavingLexStr", "Can't add word to temporary dictionary");
    }
    checkNextProblem(dialog); /* the replacement is checked in its turn */
}

/* Change with an empty Change To: the word goes with the white space
 * before it. */
static void deleteWord(HWND dialog)
{
    i16 block = checkParams->block;
    uint32_t before = 0, after = 0;
    ORTO_GetBlockInfo(sharedSid, block, &before, nullptr, nullptr, nullptr);
    char deleted[128];
    int32_t offset = ORTO_DelBlockWord(sharedSid, block, deleted, sizeof deleted);
    if (offset < 0) {
        checkNextProblem(dialog);
        return;
    }
    ORTO_GetBlockInfo(sharedSid, block, &after, nullptr, nullptr, nullptr);
    if (replaceInMirror((u32)offset, before - after, "") < 0) {
        checkMessage(dialog, "ErrorReplacingWordStr", "Can't replace word; probably out of space");
        endCheckDialog(dialog, ORTO_BufferTooSmall);
        return;
    }
    logChange((u32)offset, deleted, 0);
    SetFocus(dialog);
    wordsChanged++;
    checkNextProblem(dialog);
}

static void change(HWND dialog, char action)
{
    if (GetWindowTextLengthA(GetDlgItem(dialog, ChangeToField)) > 0)
        changeWord(dialog, action);
    else if (action == ORTO_ConditionalChangePreserveCase)
        deleteWord(dialog);
}

/* Add: the word field, as the user may have edited it, into the user
 * lexicon chosen under "Add words to". */
static void addWord(HWND dialog)
{
    intptr_t item = SendDlgItemMessageA(dialog, AddWordsBox, ORTO_CB_GETCURSEL, 0, 0);
    if (item >= 0) {
        intptr_t slot = SendDlgItemMessageA(dialog, AddWordsBox, ORTO_CB_GETITEMDATA, (uintptr_t)item, 0);
        char word[WordSize];
        GetDlgItemTextA(dialog, WordField, word, sizeof word);
        i16 lexId = slot >= 0 && slot < MaxLexicons ? dialogLexTable[slot].lexId : (i16)-1;
        if (ORTO_AddToLex(sharedSid, lexId, word, ORTO_Ignore, nullptr) < 0)
            checkMessage(dialog, "ErrorSavingLexStr", "Can't add word to user dictionary");
    }
    ORTO_NextBlockWord(sharedSid, checkParams->block);
    checkNextProblem(dialog);
}

/* Each press looks 10 deeper than the one before. */
static void suggest(HWND dialog)
{
    GetDlgItemTextA(dialog, WordField, suggestedFor, sizeof suggestedFor);
    HWND list = GetDlgItem(dialog, SuggestionList);
    if (fillSuggestionList(suggestedFor, list, checkParams->suggestDepth) > 0) {
        char first[WordSize * 2];
        if (SendMessageA(list, ORTO_LB_GETTEXTLEN, 0, 0) < (intptr_t)sizeof first) {
            SendMessageA(list, ORTO_LB_GETTEXT, 0, (intptr_t)first);
            SetDlgItemTextA(dialog, ChangeToField, first);
        }
    }
    checkParams->suggestDepth += 10;
    updateCheckControls(dialog);
}

static void undo(HWND dialog)
{
    if (undoLastChange() == ORTO_BufferTooSmall) {
        endCheckDialog(dialog, ORTO_BufferTooSmall);
        return;
    }
    updateCheckControls(dialog);
    checkNextProblem(dialog);
}

static void suggestionListCommand(HWND dialog, uint32_t code)
{
    HWND list = GetDlgItem(dialog, SuggestionList);
    intptr_t item = SendMessageA(list, ORTO_LB_GETCURSEL, 0, 0);
    if (item < 0)
        return;
    char entry[WordSize * 2];
    if (SendMessageA(list, ORTO_LB_GETTEXTLEN, (uintptr_t)item, 0) >= (intptr_t)sizeof entry)
        return;
    SendMessageA(list, ORTO_LB_GETTEXT, (uintptr_t)item, (intptr_t)entry);
    SetDlgItemTextA(dialog, ChangeToField, entry);
    if (code == ORTO_LBN_DBLCLK)
        change(dialog, ORTO_ConditionalChangePreserveCase);
}

static void openDictionaries(HWND dialog)
{
    CheckDlgParams *p = checkParams;
    EditLexParams editParams = {p->instance, p->newLexDlgTemplate};
    if (p->editLexDlgTemplate)
        DialogBoxParamA(p->instance, p->editLexDlgTemplate, dialog, EditLexDlgProc, (intptr_t)&editParams);
    else
        DialogBoxParamA(moduleHandle(), "EditLexDlg", dialog, EditLexDlgProc, (intptr_t)&editParams);
    fillAddWordsList(dialog);
    updateCheckControls(dialog);
}

static void openOptions(HWND dialog)
{
    CheckDlgParams *p = checkParams;
    if (p->optionsDlgTemplate)
        DialogBoxParamA(p->instance, p->optionsDlgTemplate, dialog, OptionsDlgProc, 0);
    else
        DialogBoxParamA(moduleHandle(), "OptionsDlg", dialog, OptionsDlgProc, 0);
    updateCheckControls(dialog);
}

void runCheckCommand(HWND dialog, int32_t id, uint32_t code)
{
    if (sharedSid < 0 || !checkParams) {
        endCheckDialog(dialog, ORTO_Cancelled);
        return;
    }
    switch (id) {
    case IgnoreButton:
        ORTO_NextBlockWord(sharedSid, checkParams->block);
        checkNextProblem(dialog);
        break;
    case IgnoreAllButton:
        ignoreAll(dialog);
        break;
    case ChangeButton:
        change(dialog, ORTO_ConditionalChangePreserveCase);
        break;
    case ChangeAllButton:
        change(dialog, ORTO_AutoChangePreserveCase);
        break;
    case AddButton:
        addWord(dialog);
        break;
    case SuggestButton:
        suggest(dialog);
        break;
    case UndoButton:
        undo(dialog);
        break;
    case SuggestionList:
        suggestionListCommand(dialog, code);
        break;
    case ChangeToField:
    case WordField:
        if (code == ORTO_EN_CHANGE)
            updateCheckControls(dialog);
        break;
    case DictionariesButton:
        openDictionaries(dialog);
        break;
    case OptionsButton:
        openOptions(dialog);
        break;
    case HelpButton:
        WinHelpA(dialog, helpFile, HELP_CONTEXT, 100);
        break;
    case ORTO_IDCANCEL:
        endCheckDialog(dialog, ORTO_Cancelled);
        break;
    default:
        break; /* Lock Pos. works by itself; the lexicon box needs nothing */
    }
}
