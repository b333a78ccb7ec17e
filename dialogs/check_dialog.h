/*
 * check_dialog.h -- the Check Spelling dialog and its companions: the
 * record of one run, the change log behind Undo, the mirror control that
 * shows the text being checked, and the placement of the dialog.
 *
 * One run of the dialog checks one block of text on the shared session.
 * Its state exists once in the process: the dialog is modal, and the busy
 * flag keeps a second one out.
 */
#ifndef ORTO_DIALOGS_CHECK_DIALOG_H
#define ORTO_DIALOGS_CHECK_DIALOG_H

#include "engine/types.h"
#include "ui/window.h"

/* What a caller hands to one run of the dialog. */
struct CheckDlgParams {
    i16 block;                    /* the block being checked, set by runCheckDialog */
    i32 suggestDepth;             /* depth of the next ORTO_Suggest */
    HWND mirrorCtrl;              /* the window that shows the text, or null */
    u32 mirrorBase;               /* position in the mirror control of the block's first character */
    i32 showContext;              /* the context pane is shown and is the mirror control */
    HINSTANCE instance;           /* where the host's templates lie */
    const char *checkDlgTemplate; /* host's templates, each null for the library's own */
    const char *optionsDlgTemplate;
    const char *editLexDlgTemplate;
    const char *newLexDlgTemplate;
};

/* One change that Undo can take back. */
struct ChangeRecord {
    u32 offset;                   /* where in the block the change was made */
    char oldText[128];            /* what stood there, cut to 127 characters */
    i16 newLen;                   /* length of what stands there now; 0 after a deletion */
};

/* The changes of one run, oldest first.  It starts with room for 32 and
 * grows by 16 at a time, with no limit but memory. */
struct ChangeLog {
    ChangeRecord *records;
    u32 count;
    u32 capacity;
};
enum { ChangeLogStart = 32, ChangeLogGrowth = 16 };

/* The running dialog. */
extern CheckDlgParams *checkParams;
extern ChangeLog changeLog;

/* Where the dialog stood at its last end, and whether it opens there. */
extern i16 lastLeft, lastTop;
extern i32 lockPosition;

/* Part of the dialog frame that the change log needs: the temporary
 * lexicon's id, or -1. */
i16 tempLexId(void);

/* The change log (change_log.cpp). */
void startChangeLog(void);
void freeChangeLog(void);
void logChange(u32 offset, const char *oldText, i16 newLen);
/* Takes back the last change.  Result 0, or -8 if the mirror control
 * refused the old text. */
int undoLastChange(void);

/* The mirror control (change_log.cpp): positions are the block's. */
void selectInMirror(u32 offset, u32 length);
/* Result 0, or -1 if the control did not take the whole text. */
int replaceInMirror(u32 offset, u32 oldLength, const char *newText);

/* Moves the dialog clear of `ctrl`, or where the user locked it. */
void placeCheckDialog(HWND dialog, HWND ctrl);

/* One run of the dialog over a buffer: the new text length, or a negative
 * code (ORTO_Cancelled, ORTO_BufferTooSmall, the code of ORTO_OpenBlock). */
i32 runCheckDialog(CheckDlgParams *params, HWND parent, char *text, u32 textLen, u32 blockSize);

#endif
