/*
 * edit_lex_dialog.cpp -- the Dictionaries dialog: the user lexicons of the
 * shared session, the words of the one selected, and the buttons that add
 * and delete words and add, create and remove lexicon files.
 *
 * The dialog keeps no copy of its own: the file box holds the names of the
 * table's user lexicons with each entry's table index as the item's
 * number, and the word box is read anew from the lexicon whenever the
 * selected file or its words change.  Every change goes to the lexicon and
 * to the store's UserLexFiles at once; there is nothing to cancel, so the
 * dialog's last button is Close.
 */
#include "dialogs/edit_lex_dialog.h"

#include <stdlib.h>
#include <string.h>

#include "dialogs/dialog_look.h"
#include "dialogs/language_choices.h"
#include "engine/string_helpers.h"
#include "host/dialog_services.h"
#include "host/profile.h"
#include "host/shared_session.h"
#include "orto.h"

HBRUSH editLexBrush;
HFONT editLexFont;

enum {
    WordBox = 1001, FileBox = 1002, AddFileButton = 1003, RemoveFileButton = 1004, AddWordButton = 1014,
    DeleteWordButton = 1015, NewFileButton = 1016, ImportButton = 1024, ExportButton = 1025,
    LanguageCaption = 1029, HelpButton = 1055, OtherWordField = 1057, ActionBox = 1058
};
enum { EditLexHelpTopic = 300, UserLexListSize = 16512 };

/* The Action box: its rows in order, with their string ids and texts. */
struct ActionChoice {
    char action;
    const char *stringId;
    const char *defaultText;
};

static const ActionChoice ActionChoices[] = {
    {ORTO_AutoChange, "AutoChangeActionStr", "Auto change (use case of other word)"},
    {ORTO_AutoChangePreserveCase, "AutoChangePreserveCaseActionStr", "Auto change (use case of checked word)"},
    {ORTO_ConditionalChange, "ConditionalChangeActionStr", "Conditionally change (use case of other word)"},
    {ORTO_ConditionalChangePreserveCase, "ConditionalChangePreserveCaseActionStr",
     "Conditionally change (use case of checked word)"},
    {ORTO_Ignore, "IgnoreActionStr", "Ignore (skip)"},
    {ORTO_Exclude, "ExcludeActionStr", "Exclude (treat as misspelled)"},
};
enum { ActionChoiceCount = sizeof ActionChoices / sizeof ActionChoices[0] };

/* (action, index in the box) and (index in the box, action), made when the
 * box is filled. */
static i32 actionToIndex[ActionChoiceCount][2];
static i32 indexToAction[ActionChoiceCount][2];

static const EditLexParams *editLexParams;

static void showMessage(HWND dialog, const char *textId, const char *textDefault, const char *titleDefault,
                        const char *arg)
{
    dialogMessage(dialog, textId, textDefault, "EditLexiconStr", titleDefault, arg, nullptr);
}

static intptr_t fileBoxMessage(HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    return SendDlgItemMessageA(dialog, FileBox, message, wParam, lParam);
}

static intptr_t wordBoxMessage(HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    return SendDlgItemMessageA(dialog, WordBox, message, wParam, lParam);
}

/* The table index of the selected file, negative when none is selected. */
static i32 selectedLexSlot(HWND dialog)
{
    intptr_t item = fileBoxMessage(dialog, ORTO_CB_GETCURSEL, 0, 0);
    if (item < 0)
        return -1;
    return (i32)fileBoxMessage(dialog, ORTO_CB_GETITEMDATA, (uintptr_t)item, 0);
}

static i16 selectedLexId(HWND dialog)
{
    i32 slot = selectedLexSlot(dialog);
    return slot >= 0 && slot < MaxLexicons ? dialogLexTable[slot].lexId : (i16)-1;
}

static void showWordAction(HWND dialog)
{
    intptr_t item = wordBoxMessage(dialog, ORTO_CB_GETCURSEL, 0, 0);
    if (item < 0)
        return;
    intptr_t length = wordBoxMessage(dialog, ORTO_CB_GETLBTEXTLEN, (uintptr_t)item, 0);
    std::string word(length > 0 ? (size_t)length + 1 : 1, '\0');
    wordBoxMessage(dialog, ORTO_CB_GETLBTEXT, (uintptr_t)item, (intptr_t)&word[0]);
    char otherWord[WordSize] = "";
    i16 action = ORTO_FindLexWord(sharedSid, selectedLexId(dialog), word.c_str(), otherWord, sizeof otherWord);
    i32 row = lookupPair(actionToIndex, ActionChoiceCount, action);
    SendDlgItemMessageA(dialog, ActionBox, ORTO_CB_SETCURSEL, (uintptr_t)(intptr_t)row, 0);
    SetDlgItemTextA(dialog, OtherWordField, otherWord);
}

void updateLexControls(HWND dialog)
{
    bool fileSelected = selectedLexSlot(dialog) >= 0;
    bool wordSelected = wordBoxMessage(dialog, ORTO_CB_GETCURSEL, 0, 0) >= 0;
    bool wordTyped = GetWindowTextLengthA(GetDlgItem(dialog, WordBox)) > 0;
    bool room = findFreeLexEntry() >= 0;
    EnableWindow(GetDlgItem(dialog, AddWordButton), fileSelected && (wordTyped || wordSelected));
    EnableWindow(GetDlgItem(dialog, DeleteWordButton), fileSelected && wordSelected);
    EnableWindow(GetDlgItem(dialog, ImportButton), fileSelected);
    EnableWindow(GetDlgItem(dialog, ExportButton), fileSelected);
    EnableWindow(GetDlgItem(dialog, AddFileButton), room);
    EnableWindow(GetDlgItem(dialog, NewFileButton), room);
    EnableWindow(GetDlgItem(dialog, RemoveFileButton), fileSelected);
}

void reloadWordList(HWND dialog)
{
    wordBoxMessage(dialog, ORTO_CB_RESETCONTENT, 0, 0);
    if (selectedLexSlot(dialog) < 0)
        return;
    i16 id = selectedLexId(dialog);
    waitCursor(1);
    uint32_t size = 0;
    uint16_t language = 0;
    if (ORTO_GetLexInfo(sharedSid, id, &size, nullptr, &language) == 0 && size > 0) {
        char *listing = (char *)malloc(size);
        if (listing && ORTO_GetLex(sharedSid, id, listing, size) >= 0) {
            for (char *entry = listing; *entry; entry += strlen(entry) + 1) {
                char *tab = strchr(entry, '\t');
                if (!tab)
                    continue;
                std::string word(entry, (size_t)(tab - entry));
                wordBoxMessage(dialog, ORTO_CB_ADDSTRING, 0, (intptr_t)word.c_str());
            }
        }
        free(listing);
    }
    wordBoxMessage(dialog, ORTO_CB_SETCURSEL, 0, 0);
    showWordAction(dialog);
    char name[LanguageNameSize];
    languageName(language, name, sizeof name);
    SetDlgItemTextA(dialog, LanguageCaption, name);
    updateLexControls(dialog);
    waitCursor(0);
}

/* Writes the names of the user lexicons, in table order, to UserLexFiles. */
static void saveUserLexFiles(void)
{
    char *list = (char *)malloc(UserLexListSize);
    if (!list) {
        dialogLog("out of memory");
        return;
    }
    list[0] = '\0';
    for (const DialogLexEntry &e : dialogLexTable)
        if (e.state == LexEntryUser) {
            StrAppend(list, UserLexListSize, e.name);
            StrAppend(list, UserLexListSize, ",");
        }
    size_t length = strlen(list);
    if (length > 0)
        list[length - 1] = '\0';
    Profile_SetString("UserLexFiles", ProfileUser, list);
    free(list);
}

static intptr_t addFileItem(HWND dialog, i32 slot)
{
    intptr_t item = fileBoxMessage(dialog, ORTO_CB_ADDSTRING, 0, (intptr_t)dialogLexTable[slot].name);
    fileBoxMessage(dialog, ORTO_CB_SETITEMDATA, (uintptr_t)item, slot);
    return item;
}

static void openEditLexDialog(HWND dialog, const EditLexParams *params)
{
    editLexParams = params;
    for (int row = 0; row < ActionChoiceCount; row++) {
        char text[LabelSize];
        Profile_GetText(ActionChoices[row].stringId, ActionChoices[row].defaultText, text, sizeof text);
        intptr_t index = SendDlgItemMessageA(dialog, ActionBox, ORTO_CB_ADDSTRING, 0, (intptr_t)text);
        actionToIndex[row][0] = indexToAction[row][1] = ActionChoices[row].action;
        actionToIndex[row][1] = indexToAction[row][0] = (i32)index;
    }
    SendDlgItemMessageA(dialog, ActionBox, ORTO_CB_SETCURSEL,
                        (uintptr_t)(intptr_t)lookupPair(actionToIndex, ActionChoiceCount, ORTO_Ignore), 0);
    editLexFont = applyNormalWeightFont(dialog);
    for (i32 slot = 0; slot < MaxLexicons; slot++)
        if (dialogLexTable[slot].state == LexEntryUser)
            addFileItem(dialog, slot);
    fileBoxMessage(dialog, ORTO_CB_SETCURSEL, 0, 0);
    updateLexControls(dialog);
    reloadWordList(dialog);
    editLexBrush = makeFaceBrush();
    updateLexControls(dialog);
}

/* After a word was added or deleted: the list read again, the selection
 * kept by its index where that still exists. */
static void refreshAfterWordChange(HWND dialog)
{
    intptr_t selected = wordBoxMessage(dialog, ORTO_CB_GETCURSEL, 0, 0);
    reloadWordList(dialog);
    wordBoxMessage(dialog, ORTO_CB_SETCURSEL, (uintptr_t)selected, 0);
    showWordAction(dialog);
    updateLexControls(dialog);
}

static void addWord(HWND dialog)
{
    char word[WordSize];
    char otherWord[WordSize];
    GetDlgItemTextA(dialog, WordBox, word, sizeof word);
    intptr_t row = SendDlgItemMessageA(dialog, ActionBox, ORTO_CB_GETCURSEL, 0, 0);
    i32 action = row >= 0 ? lookupPair(indexToAction, ActionChoiceCount, (i32)row) : ORTO_Ignore;
    if (action < 0)
        action = ORTO_Ignore;
    GetDlgItemTextA(dialog, OtherWordField, otherWord, sizeof otherWord);
    i16 rc = ORTO_AddToLex(sharedSid, selectedLexId(dialog), word, (uint16_t)action, otherWord);
    if (rc == ORTO_OutOfMemory) {
        showMessage(dialog, "LexFullErrorStr", "Dictionary is full", "Edit dictionaries", nullptr);
        return;
    }
    if (rc < 0) {
        showMessage(dialog, "ErrorAddingWordStr", "Can't add word", "Edit dictionaries", nullptr);
        return;
    }
    refreshAfterWordChange(dialog);
}

static void deleteWord(HWND dialog)
{
    char word[WordSize];
    GetDlgItemTextA(dialog, WordBox, word, sizeof word);
    ORTO_DelFromLex(sharedSid, selectedLexId(dialog), word);
    refreshAfterWordChange(dialog);
}

static void selectFileItem(HWND dialog, intptr_t item)
{
    fileBoxMessage(dialog, ORTO_CB_SETCURSEL, (uintptr_t)item, 0);
    reloadWordList(dialog);
    saveUserLexFiles();
}

static void addFile(HWND dialog)
{
    char path[PathSize] = "";
    if (!askForFile(dialog, false, "LexFileFilterStr", lexFileFilterDefault, "OpenLexFileStr", "Add Dictionary File",
                    ORTO_OFN_HIDEREADONLY | ORTO_OFN_NOCHANGEDIR | ORTO_OFN_PATHMUSTEXIST | ORTO_OFN_FILEMUSTEXIST,
                    "tlx", path))
        return;
    char name[PathSize];
    userLexName(path, name, sizeof name);
    i16 slot = findLexEntry(name);
    if (slot >= 0) {
        intptr_t count = fileBoxMessage(dialog, ORTO_CB_GETCOUNT, 0, 0);
        intptr_t item = 0;
        while (item < count && fileBoxMessage(dialog, ORTO_CB_GETITEMDATA, (uintptr_t)item, 0) != slot)
            item++;
        if (item == count) { /* a main lexicon, or the temporary one */
            showMessage(dialog, "ErrorAddingLexStr", "%s cannot be added", "Edit dictionaries", path);
            return;
        }
        selectFileItem(dialog, item);
        return;
    }
    slot = findFreeLexEntry();
    if (slot < 0)
        return; /* the button is disabled then */
    DialogLexEntry &e = dialogLexTable[slot];
    StrCopy(e.name, sizeof e.name, name);
    e.lexId = ORTO_OpenLex(sharedSid, path, 0);
    if (e.lexId < 0) {
        showMessage(dialog, "ErrorOpeningLexStr", "Error opening dictionary file %s", "Edit dictionary", path);
        return;
    }
    uint16_t format = ORTO_LexCompressed;
    ORTO_GetLexInfo(sharedSid, e.lexId, nullptr, &format, nullptr);
    if (format != ORTO_LexText) {
        showMessage(dialog, "BadLexFormatStr", "%s is not a user dictionary", "Edit dictionary", path);
        ORTO_CloseLex(sharedSid, e.lexId);
        e.lexId = -1;
        return;
    }
    e.state = LexEntryUser;
    selectFileItem(dialog, addFileItem(dialog, slot));
}

static void newFile(HWND dialog)
{
    const EditLexParams *p = editLexParams;
    intptr_t answer = p && p->newLexDlgTemplate
                          ? DialogBoxParamA(p->instance, p->newLexDlgTemplate, dialog, NewLexDlgProc, 0)
                          : DialogBoxParamA(moduleHandle(), "NewLexDlg", dialog, NewLexDlgProc, 0);
    if (answer < 0)
        return;
    char path[PathSize];
    char name[PathSize];
    if (strchr(newLexName, '/')) {
        StrCopy(path, sizeof path, newLexName);
        userLexName(newLexName, name, sizeof name);
    } else {
        pathInUserFolder(newLexName, path, sizeof path);
        StrCopy(name, sizeof name, newLexName);
    }
    i16 slot = findFreeLexEntry();
    if (slot < 0)
        return; /* the button is disabled then */
    DialogLexEntry &e = dialogLexTable[slot];
    StrCopy(e.name, sizeof e.name, name);
    i16 id = ORTO_CreateLex(sharedSid, path, newLexLanguage);
    if (id < 0) {
        showMessage(dialog, "ErrorCreatingLexStr", "Can't create dictionary %s", "Edit dictionary", path);
        return;
    }
    e.lexId = id;
    e.state = LexEntryUser;
    selectFileItem(dialog, addFileItem(dialog, slot));
}

static void removeFile(HWND dialog)
{
    i32 slot = selectedLexSlot(dialog);
    if (slot < 0 || slot >= MaxLexicons)
        return;
    fileBoxMessage(dialog, ORTO_CB_DELETESTRING, (uintptr_t)fileBoxMessage(dialog, ORTO_CB_GETCURSEL, 0, 0), 0);
    fileBoxMessage(dialog, ORTO_CB_SETCURSEL, 0, 0);
    ORTO_CloseLex(sharedSid, dialogLexTable[slot].lexId);
    dialogLexTable[slot].state = LexEntryFree;
    dialogLexTable[slot].lexId = -1;
    reloadWordList(dialog);
    saveUserLexFiles();
}

static void endEditLexDialog(HWND dialog)
{
    DeleteObject(editLexBrush);
    editLexBrush = nullptr;
    if (editLexFont)
        DeleteObject(editLexFont);
    editLexFont = nullptr;
    EndDialog(dialog, 0);
}

extern "C" ORTO_API intptr_t EditLexDlgProc(ORTO_HWND dialog, uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    if (message == ORTO_WM_INITDIALOG) {
        openEditLexDialog(dialog, (const EditLexParams *)lParam);
        return 1;
    }
    if (message == ORTO_WM_CTLCOLORDLG || message == ORTO_WM_CTLCOLORSTATIC)
        return answerColourRequest(wParam, editLexBrush);
    if (message != ORTO_WM_COMMAND)
        return 0;
    uint32_t code = (uint32_t)(wParam >> 16) & 0xFFFF;
    switch (wParam & 0xFFFF) {
    case WordBox:
        if (code == ORTO_CBN_SELCHANGE)
            showWordAction(dialog);
        else if (code == ORTO_CBN_EDITCHANGE || code == ORTO_CBN_SELENDOK)
            updateLexControls(dialog);
        break;
    case FileBox:
        if (code == ORTO_CBN_SELCHANGE)
            reloadWordList(dialog);
        break;
    case AddWordButton:
        addWord(dialog);
        break;
    case DeleteWordButton:
        deleteWord(dialog);
        break;
    case ImportButton:
        importWords(dialog, selectedLexId(dialog));
        break;
    case ExportButton:
        exportWords(dialog, selectedLexId(dialog));
        break;
    case AddFileButton:
        addFile(dialog);
        break;
    case NewFileButton:
        newFile(dialog);
        break;
    case RemoveFileButton:
        removeFile(dialog);
        break;
    case HelpButton:
        WinHelpA(dialog, helpFile, HELP_CONTEXT, EditLexHelpTopic);
        break;
    case ORTO_IDCANCEL:
        endEditLexDialog(dialog);
        break;
    default:
        break;
    }
    return 1;
}

extern "C" ORTO_API int16_t ORTO_EditLexDlgTmplt(ORTO_HWND parent, ORTO_HINSTANCE instance,
                                                 const char *editLexDlgTemplate, const char *newLexDlgTemplate)
{
    if (busyFlag)
        return ORTO_DialogActive;
    i16 rc = startSharedSession();
    if (rc < 0)
        return rc;
    EditLexParams params = {instance, newLexDlgTemplate};
    busyFlag = 1;
    intptr_t result = editLexDlgTemplate
                          ? DialogBoxParamA(instance, editLexDlgTemplate, parent, EditLexDlgProc, (intptr_t)&params)
                          : DialogBoxParamA(moduleHandle(), "EditLexDlg", parent, EditLexDlgProc, (intptr_t)&params);
    busyFlag = 0;
    return (int16_t)result;
}

extern "C" ORTO_API int16_t ORTO_EditLexDlg(ORTO_HWND parent)
{
    return ORTO_EditLexDlgTmplt(parent, moduleHandle(), nullptr, nullptr);
}
