/*
 * dialog_look.h -- what every dialog does alike: the normal-weight font
 * (the FontBold key), the background brush of the button-face colour and
 * its answer to the colour requests, the filters of the file dialogs, and
 * the short name of a lexicon file in the user lexicon folder.
 */
#ifndef ORTO_DIALOGS_DIALOG_LOOK_H
#define ORTO_DIALOGS_DIALOG_LOOK_H

#include "engine/types.h"
#include "ui/window.h"

enum { FilterSize = 256 };

/* True when the store's FontBold is 0: the dialogs then show their
 * controls in a normal-weight copy of the template's font. */
bool wantNormalWeight(void);
/* A copy of the dialog's font with the weight 400, or null if the dialog
 * has no font or the copy can't be made. */
HFONT copyFontNormalWeight(HWND dialog);
/* The normal-weight font for a dialog being opened, given to all its
 * controls; null when FontBold keeps the template's font. */
HFONT applyNormalWeightFont(HWND dialog);

/* A solid brush of the button-face colour. */
HBRUSH makeFaceBrush(void);
/* The answer to a colour request: the text background set to the
 * button-face colour, and the brush. */
intptr_t answerColourRequest(uintptr_t deviceContext, HBRUSH brush);
bool isColourRequest(uint32_t message);

/* The filter text of string id `id` with every occurrence of its last
 * character turned into a NUL, as the file dialogs want it. */
void loadFileFilter(const char *id, const char *defaultText, char *buffer);

/* The filter texts of the dialogs' file dialogs. */
extern const char lexFileFilterDefault[];
extern const char importFileFilterDefault[];

/* Runs an open (save = false) or save file dialog that starts in the user
 * lexicon folder, with the filter of string id `filterId` and the title of
 * string id `titleId`.  `path` (PathSize bytes) holds the name to start
 * with and gets the answer.  False if the user cancelled. */
bool askForFile(HWND dialog, bool save, const char *filterId, const char *filterDefault, const char *titleId,
                const char *titleDefault, uint32_t flags, const char *defaultExtension, char *path);

/* The name of a lexicon file as the lists keep it: the part behind the
 * last '/' when the folder is the user lexicon folder (without regard to
 * case), else the whole path. */
void userLexName(const char *path, char *name, u16 size);

/* A path and its name for the user lexicon folder: `userLexPath`, '/' and
 * the name, cut to 515 characters. */
void pathInUserFolder(const char *name, char *path, u16 size);

#endif
