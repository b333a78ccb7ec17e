/*
 * edit_lex_dialog.h -- the Dictionaries dialog and the New Dictionary
 * dialog it opens: their parameter, the window resources they share, and
 * the New Dictionary dialog's answers.
 */
#ifndef ORTO_DIALOGS_EDIT_LEX_DIALOG_H
#define ORTO_DIALOGS_EDIT_LEX_DIALOG_H

#include <stdio.h>

#include "engine/types.h"
#include "orto_ui.h"
#include "ui/window.h"

/* Where the New Dictionary dialog comes from. */
struct EditLexParams {
    HINSTANCE instance;           /* where a host's template lies */
    const char *newLexDlgTemplate; /* host's template, or null for the library's own */
};

extern HBRUSH editLexBrush;       /* background of the Dictionaries and New Dictionary dialogs */
extern HFONT editLexFont;         /* their normal-weight font, if made; the Dictionaries dialog deletes it */

/* The New Dictionary dialog's answers, valid after it ended with 0. */
extern char newLexName[PathSize];
extern u16 newLexLanguage;

/* The Dictionaries dialog's Import and Export buttons, on the lexicon
 * `lexId` of the shared session. */
void importWords(HWND dialog, i16 lexId);
void exportWords(HWND dialog, i16 lexId);
/* Reads the next word of an import file into `word` (at most `size` - 1
 * characters), passing over other bytes and "#" or ";" comments.  Result
 * its length, or -1 at the end of the file. */
int readImportWord(FILE *file, char *word, int size);

/* Refreshes the word box after the lexicon changed (Import). */
void reloadWordList(HWND dialog);
void updateLexControls(HWND dialog);

#endif
