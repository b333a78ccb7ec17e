/*
 * check_dialog.cpp -- the frame of the Check Spelling dialog: one run over
 * a buffer, the opening, the walk to the next problem, the suggestion and
 * lexicon lists, the enabled state of the buttons, and the end.
 *
 * The dialog holds no checking logic: the block's cursor is the only
 * position there is, ORTO_CheckBlock finds the next problem from it, and
 * every command that moves on ends in checkNextProblem.  The commands
 * themselves are in check_commands.cpp.
 */
#include "dialogs/check_commands.h"

#include <stdlib.h>
#include <string.h>

#include "dialogs/dialog_look.h"
#include "engine/string_helpers.h"
#include "host/dialog_services.h"
#include "host/profile.h"
#include "host/shared_session.h"
#include "orto.h"

CheckDlgParams *checkParams;
char problemWord[WordSize];
char suggestedFor[WordSize];
i16 scores[MaxSuggestions];

static HBRUSH checkBrush;
static HFONT checkFont;

enum { SuggestBufferSize = 2049, MaxAutoChanges = 4, CheckHelpTopic = 100 };

i16 tempLexId(void)
{
    for (const DialogLexEntry &e : dialogLexTable)
        if (e.state == LexEntryTemporary)
            return e.lexId;
    return -1;
}

void checkMessage(HWND dialog, const char *textId, const char *textDefault)
{
    dialogMessage(dialog, textId, textDefault, "CheckSpellingStr", "Check spelling", nullptr, nullptr);
}

int fillSuggestionList(const char *word, HWND list, i32 depth)
{
    waitCursor(1);
    SendMessageA(list, ORTO_LB_RESETCONTENT, 0, 0);
    char buffer[SuggestBufferSize];
    int16_t rc = ORTO_Suggest(sharedSid, word, (int16_t)depth, buffer, sizeof buffer, scores, MaxSuggestions);
    if (rc < 0) {
        waitCursor(0);
        return 0;
    }
    int count = 0;
    i16 best = scores[0];
    const char *s = buffer;
    for (int i = 0; i < MaxSuggestions && *s; i++, s += strlen(s) + 1) {
        if (scores[i] < 50 || scores[i] < best - 20)
            break;
        SendMessageA(list, ORTO_LB_ADDSTRING, 0, (intptr_t)s);
        count++;
    }
    waitCursor(0);
    return count;
}

void fillAddWordsList(HWND dialog)
{
    HWND box = GetDlgItem(dialog, AddWordsBox);
    intptr_t remembered = SendMessageA(box, ORTO_CB_GETCURSEL, 0, 0);
    SendMessageA(box, ORTO_CB_RESETCONTENT, 0, 0);
    for (i32 slot = 0; slot < MaxLexicons; slot++) {
        if (dialogLexTable[slot].state != LexEntryUser)
            continue;
        char name[PathSize];
        userLexName(dialogLexTable[slot].name, name, sizeof name);
        intptr_t item = SendMessageA(box, ORTO_CB_ADDSTRING, 0, (intptr_t)name);
        SendMessageA(box, ORTO_CB_SETITEMDATA, (uintptr_t)item, slot);
    }
    intptr_t count = SendMessageA(box, ORTO_CB_GETCOUNT, 0, 0);
    if (remembered < 0 || remembered >= count)
        remembered = 0;
    SendMessageA(box, ORTO_CB_SETCURSEL, (uintptr_t)remembered, 0);
}

static void enable(HWND dialog, int32_t id, bool on) { EnableWindow(GetDlgItem(dialog, id), on); }

void updateCheckControls(HWND dialog)
{
    char word[WordSize];
    GetDlgItemTextA(dialog, WordField, word, sizeof word);
    if (strcmp(word, suggestedFor) != 0)
        checkParams->suggestDepth = minSuggestDepth;
    bool haveWord = word[0] != '\0';
    bool haveChangeTo = GetWindowTextLengthA(GetDlgItem(dialog, ChangeToField)) > 0;
    char label[LabelSize];
    if (haveChangeTo)
        Profile_GetText("ReplaceStr", "&Change", label, sizeof label);
    else
        Profile_GetText("DeleteStr", "&Delete", label, sizeof label);
    SetDlgItemTextA(dialog, ChangeButton, label);
    enable(dialog, ChangeToField, true);
    enable(dialog, IgnoreButton, true);
    enable(dialog, IgnoreAllButton, true);
    enable(dialog, ChangeButton, haveWord);
    enable(dialog, ChangeAllButton, haveChangeTo);
    enable(dialog, AddButton, haveWord && SendDlgItemMessageA(dialog, AddWordsBox, ORTO_CB_GETCOUNT, 0, 0) >= 1);
    enable(dialog, SuggestButton, haveWord && checkParams->suggestDepth <= 100);
    enable(dialog, UndoButton, changeLog.count > 0);
    enable(dialog, ORTO_IDCANCEL, true);
}

bool replaceProblemWord(HWND dialog, u32 cursor, const char *text)
{
    /* a block that refused the word has lost it; the mirror keeps it */
    if (ORTO_ReplaceBlockWord(sharedSid, checkParams->block, text) < 0 ||
        replaceInMirror(cursor, (u32)strlen(problemWord), text) < 0) {
        checkMessage(dialog, "ErrorReplacingWordStr", "Can't replace word; probably out of space");
        endCheckDialog(dialog, ORTO_BufferTooSmall);
        return false;
    }
    logChange(cursor, problemWord, (i16)strlen(text));
    SetFocus(dialog);
    return true;
}

/* The problem's label, by string id, on control 1011. */
static void showLabel(HWND dialog, const char *id, const char *defaultText)
{
    char label[LabelSize];
    Profile_GetText(id, defaultText, label, sizeof label);
    SetDlgItemTextA(dialog, ProblemLabel, label);
}

/* Makes at most four automatic changes, then stops at the next problem
 * or at the end of the block. */
void checkNextProblem(HWND dialog)
{
    CheckDlgParams *p = checkParams;
    int autoChanges = 0;
    HWND list = GetDlgItem(dialog, SuggestionList);
    SendMessageA(list, ORTO_LB_RESETCONTENT, 0, 0);
    SetDlgItemTextA(dialog, ChangeToField, "");
    suggestedFor[0] = '\0';
    updateCheckControls(dialog);
    char otherWord[WordSize];
    int16_t result;
    for (;;) {
        waitCursor(1);
        result = ORTO_CheckBlock(sharedSid, p->block, problemWord, sizeof problemWord, otherWord, sizeof otherWord);
        waitCursor(0);
        if (result < 0) {
            dialogLog("ORTO_CheckBlock returned %hd", result);
            result = ORTO_EndOfBlock;
        }
        if (!((result & ORTO_AutoChangeWord) && autoCorrect))
            break;
        if (++autoChanges > MaxAutoChanges) {
            ORTO_NextBlockWord(sharedSid, p->block); /* left as it is, and not shown */
            continue;
        }
        uint32_t cursor = 0;
        ORTO_GetBlockInfo(sharedSid, p->block, nullptr, nullptr, &cursor, nullptr);
        if (!replaceProblemWord(dialog, cursor, otherWord))
            return;
        ORTO_NextBlockWord(sharedSid, p->block);
        wordsChanged++;
    }
    if (result & ORTO_EndOfBlock) {
        endCheckDialog(dialog, 0);
        return;
    }
    uint32_t cursor = 0;
    ORTO_GetBlockInfo(sharedSid, p->block, nullptr, nullptr, &cursor, nullptr);
    if (result & ORTO_MisspelledWord) {
        showLabel(dialog, "MisspelledWordStr", "Not in Dictionary:");
        SetDlgItemTextA(dialog, WordField, problemWord);
        SetDlgItemTextA(dialog, ChangeToField, otherWord);
        p->suggestDepth = minSuggestDepth;
        if (fillSuggestionList(problemWord, list, p->suggestDepth) > 0) {
            char first[WordSize * 2];
            if (SendMessageA(list, ORTO_LB_GETTEXTLEN, 0, 0) < (intptr_t)sizeof first) {
                SendMessageA(list, ORTO_LB_GETTEXT, 0, (intptr_t)first);
                SetDlgItemTextA(dialog, ChangeToField, first);
            }
        }
        errorsFound++;
    } else if ((result & ORTO_ConditionalChangeWord) || (result & ORTO_AutoChangeWord)) {
        showLabel(dialog, "ConsiderReplacingStr", "Consider changing:");
        SetDlgItemTextA(dialog, WordField, problemWord);
        SetDlgItemTextA(dialog, ChangeToField, otherWord);
        p->suggestDepth = minSuggestDepth;
        fillSuggestionList(problemWord, list, p->suggestDepth);
    } else if (result & ORTO_UncappedWord) {
        showLabel(dialog, "CapitalizationStr", "Capitalization:");
        SetDlgItemTextA(dialog, WordField, problemWord);
        SetDlgItemTextA(dialog, ChangeToField, otherWord);
        errorsFound++;
    } else if (result & ORTO_DoubledWord) {
        showLabel(dialog, "DoubledWordStr", "Doubled word:");
        SetDlgItemTextA(dialog, WordField, problemWord);
        SetDlgItemTextA(dialog, ChangeToField, "");
        errorsFound++;
    }
    /* A result of none of these bits (a mixed-case word alone, when a host
     * asks for those) keeps the last label and word on show, with an empty
     * list: the user decides, as for any other problem. */
    selectInMirror(cursor, (u32)strlen(problemWord));
    updateCheckControls(dialog);
}

void endCheckDialog(HWND dialog, i32 code)
{
    DeleteObject(checkBrush);
    checkBrush = nullptr;
    if (checkFont)
        DeleteObject(checkFont);
    checkFont = nullptr;
    HWND box = GetDlgItem(dialog, AddWordsBox);
    intptr_t selected = SendMessageA(box, ORTO_CB_GETCURSEL, 0, 0);
    if (selected >= 0) {
        intptr_t length = SendMessageA(box, ORTO_CB_GETLBTEXTLEN, (uintptr_t)selected, 0);
        std::string name((size_t)(length > 0 ? length : 0) + 1, '\0');
        SendMessageA(box, ORTO_CB_GETLBTEXT, (uintptr_t)selected, (intptr_t)&name[0]);
        Profile_SetString("LastSelectedLex", ProfileUser, name.c_str());
    }
    RECT r;
    if (GetWindowRect(dialog, &r)) {
        lastLeft = (i16)r.left;
        lastTop = (i16)r.top;
    }
    lockPosition = SendDlgItemMessageA(dialog, LockPosBox, ORTO_BM_GETCHECK, 0, 0) == ORTO_BST_CHECKED;
    freeChangeLog();
    EndDialog(dialog, code);
}

static void showContextPane(HWND dialog, CheckDlgParams *p)
{
    HWND pane = GetDlgItem(dialog, ContextPane);
    EnableWindow(pane, 1);
    ShowWindow(pane, SW_SHOW);
    uint32_t length = 0;
    ORTO_GetBlockInfo(sharedSid, p->block, &length, nullptr, nullptr, nullptr);
    char *text = (char *)malloc((size_t)length + 1);
    if (!text) {
        dialogLog("No memory for block context display");
        return;
    }
    int32_t got = ORTO_GetBlock(sharedSid, p->block, text, length + 1);
    text[got > 0 ? got : 0] = '\0';
    SetWindowTextA(pane, text);
    free(text);
    p->mirrorCtrl = pane;
}

/* Without the context pane the dialog ends where the pane begins. */
static void cutOffContextPane(HWND dialog)
{
    RECT d, pane;
    GetWindowRect(dialog, &d);
    GetWindowRect(GetDlgItem(dialog, ContextPane), &pane);
    MoveWindow(dialog, d.left, d.top, d.right - d.left, pane.top - d.top, 1);
}

static void openCheckDialog(HWND dialog, CheckDlgParams *p)
{
    checkParams = p;
    if (p->showContext)
        showContextPane(dialog, p);
    else
        cutOffContextPane(dialog);
    placeCheckDialog(dialog, p->mirrorCtrl);
    checkFont = applyNormalWeightFont(dialog);
    checkBrush = makeFaceBrush();
    fillAddWordsList(dialog);
    char last[PathSize];
    Profile_GetString("LastSelectedLex", ProfileUser, "", last, sizeof last);
    intptr_t found = SendDlgItemMessageA(dialog, AddWordsBox, ORTO_CB_FINDSTRING, 0, (intptr_t)last);
    if (found >= 0)
        SendDlgItemMessageA(dialog, AddWordsBox, ORTO_CB_SETCURSEL, (uintptr_t)found, 0);
    SendDlgItemMessageA(dialog, LockPosBox, ORTO_BM_SETCHECK, lockPosition ? ORTO_BST_CHECKED : ORTO_BST_UNCHECKED, 0);
    startChangeLog();
    checkNextProblem(dialog);
}

extern "C" ORTO_API intptr_t SpellCheckDlgProc(ORTO_HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    if (message == ORTO_WM_INITDIALOG) {
        openCheckDialog(dialog, (CheckDlgParams *)lParam);
        return 1;
    }
    if (message == ORTO_WM_CTLCOLORDLG || message == ORTO_WM_CTLCOLORSTATIC)
        return answerColourRequest(wParam, checkBrush);
    if (message != ORTO_WM_COMMAND)
        return 0;
    runCheckCommand(dialog, (int32_t)(wParam & 0xFFFF), (uint32_t)(wParam >> 16) & 0xFFFF);
    return 1;
}

i32 runCheckDialog(CheckDlgParams *params, HWND parent, char *text, u32 textLen, u32 blockSize)
{
    i16 block = ORTO_OpenBlock(sharedSid, text, textLen, blockSize, 0);
    params->block = block;
    if (block < 0) {
        dialogLog("ORTO_OpenBlock returned %hd", block);
        return block;
    }
    intptr_t value = params->checkDlgTemplate
                         ? DialogBoxParamA(params->instance, params->checkDlgTemplate, parent, SpellCheckDlgProc,
                                           (intptr_t)params)
                         : DialogBoxParamA(moduleHandle(), "CheckSpellingDlg", parent, SpellCheckDlgProc,
                                           (intptr_t)params);
    checkParams = nullptr;
    uint32_t length = 0, words = 0;
    ORTO_GetBlockInfo(sharedSid, block, &length, nullptr, nullptr, &words);
    wordsChecked += words;
    ORTO_CloseBlock(sharedSid, block);
    return value < 0 ? (i32)value : (i32)length;
}

extern "C" ORTO_API int32_t ORTO_CheckBlockDlgTmplt(ORTO_HWND parent, char *text, uint32_t textLen,
                                                    uint32_t blockSize, int16_t showContext,
                                                    ORTO_HINSTANCE instance, const char *checkDlgTemplate,
                                                    const char *editLexDlgTemplate,
                                                    const char *optionsDlgTemplate,
                                                    const char *newLexDlgTemplate)
{
    if (busyFlag)
        return ORTO_DialogActive;
    i16 rc = startSharedSession();
    if (rc < 0)
        return rc;
    if (!text && textLen > 0) {
        dialogLog("ORTO_CheckBlockDlg: no text");
        return ORTO_BufferTooSmall;
    }
    char empty[1] = "";
    CheckDlgParams params = {-1, minSuggestDepth, nullptr, 0, showContext, instance, checkDlgTemplate,
                             optionsDlgTemplate, editLexDlgTemplate, newLexDlgTemplate};
    wordsChecked = wordsChanged = errorsFound = 0;
    busyFlag = 1;
    i32 result = runCheckDialog(&params, parent, text ? text : empty, textLen, text ? blockSize : 0);
    busyFlag = 0;
    return result;
}

extern "C" ORTO_API int32_t ORTO_CheckBlockDlg(ORTO_HWND parent, char *text, uint32_t textLen, uint32_t blockSize,
                                               int16_t showContext)
{
    return ORTO_CheckBlockDlgTmplt(parent, text, textLen, blockSize, showContext, nullptr, nullptr, nullptr,
                                   nullptr, nullptr);
}
