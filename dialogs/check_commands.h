/*
 * check_commands.h -- the controls of the Check Spelling dialog and the
 * operations that its frame (check_dialog.cpp) and its commands
 * (check_commands.cpp) share.
 */
#ifndef ORTO_DIALOGS_CHECK_COMMANDS_H
#define ORTO_DIALOGS_CHECK_COMMANDS_H

#include "dialogs/check_dialog.h"

enum CheckControl {
    IgnoreButton = 1001, IgnoreAllButton = 1002, ChangeButton = 1003, ChangeAllButton = 1004,
    AddButton = 1005, SuggestButton = 1006, UndoButton = 1007, SuggestionList = 1009, ChangeToField = 1010,
    ProblemLabel = 1011, WordField = 1012, AddWordsBox = 1013, DictionariesButton = 1014,
    OptionsButton = 1031, LockPosBox = 1046, ContextPane = 1050, HelpButton = 1055
};
enum { MaxSuggestions = 32 };

extern char problemWord[WordSize];   /* the word ORTO_CheckBlock reported last */
extern char suggestedFor[WordSize];  /* the word field at the last Suggest; empty at each new problem */
extern i16 scores[MaxSuggestions];   /* of the last ORTO_Suggest */

void checkNextProblem(HWND dialog);
void updateCheckControls(HWND dialog);
void fillAddWordsList(HWND dialog);
/* Fills `list` with the suggestions for `word` of score 50 or better and
 * at most 20 behind the best.  Result how many. */
int fillSuggestionList(const char *word, HWND list, i32 depth);
void endCheckDialog(HWND dialog, i32 code);
/* Puts `text` in the place of the problem word at `cursor`, in the block
 * and the mirror control, and logs the change; on a refusal the dialog
 * says so and ends with ORTO_BufferTooSmall, and the result is false. */
bool replaceProblemWord(HWND dialog, u32 cursor, const char *text);
/* A message box of the dialog, titled "Check spelling". */
void checkMessage(HWND dialog, const char *textId, const char *textDefault);

/* Carries out one command of the dialog. */
void runCheckCommand(HWND dialog, int32_t id, uint32_t code);

#endif
