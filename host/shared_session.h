/*
 * shared_session.h -- the one session that all dialogs of a process share,
 * its table of lexicons, and the flag that keeps a second dialog and the
 * settings calls out while a dialog runs.
 *
 * The session starts at the first call that needs it, from the settings
 * store: the temporary lexicon in slot 0, then the user lexicons, then the
 * main lexicons, then the options.  It stops when the library is unloaded
 * and when a settings call changes what it was started from, and then
 * writes its options back to the store.
 */
#ifndef ORTO_HOST_SHARED_SESSION_H
#define ORTO_HOST_SHARED_SESSION_H

#include "engine/types.h"
#include "ui/window.h"

/* What an entry of dialogLexTable holds. */
enum DialogLexState : u32 {
    LexEntryMain = 0,       /* a main lexicon */
    LexEntryUser = 1,       /* a user lexicon */
    LexEntryTemporary = 2,  /* the temporary lexicon, which has no file */
    LexEntryFree = 3
};

struct DialogLexEntry {
    char name[PathSize];  /* as its list names it, no folder added; empty for the temporary lexicon */
    i16 lexId;            /* id in the shared session; negative: the file didn't open; -1 once closed */
    u32 state;            /* a DialogLexState */
};

enum { HelpFileSize = PathSize, DebugFileSize = 260 };

extern i16 sharedSid;                        /* negative: not open */
extern DialogLexEntry dialogLexTable[MaxLexicons]; /* meaningful once a start has run */
extern u32 busyFlag;                         /* non-zero while a dialog of the shared session runs */
extern i16 minSuggestDepth;                  /* search depth of the dialogs' suggestions */
extern i32 autoCorrect;                      /* dialogs apply auto-change entries without asking */
extern u32 wordsChecked, wordsChanged, errorsFound; /* of the last check dialog */
extern char mainLexPath[PathSize];           /* folder of the main lexicons */
extern char userLexPath[PathSize];           /* folder of the user lexicons */
extern char helpFile[HelpFileSize];          /* help file of the dialogs */
extern char debugFile[DebugFileSize];        /* file of dialogLog; empty: silent */

/* The library's own dialog templates. */
inline HINSTANCE moduleHandle(void) { return ORTO_LibraryModule(); }

/* Opens the shared session from the store unless it is open.  Result 0,
 * or the code of the ORTO_OpenSession or ORTO_CreateLex that failed. */
i16 startSharedSession(void);
/* Closes the shared session after writing its options to the store; a
 * session that isn't open is left alone. */
void stopSharedSession(void);

/* Index of the first free entry, or -1. */
i16 findFreeLexEntry(void);
/* Index of the first used entry whose name equals `name` without regard
 * to case, or -1. */
i16 findLexEntry(const char *name);
/* The value of the first of the `count` (key, value) pairs with `key`, or
 * -1: list positions to action or language codes and back. */
i32 lookupPair(const i32 (*pairs)[2], i32 count, i32 key);

#endif
