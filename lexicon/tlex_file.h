/*
 * tlex_file.h -- the file side of a text lexicon: reading, rewriting,
 * locking, and keeping clients of one file in step.
 */
#ifndef ORTO_LEXICON_TLEX_FILE_H
#define ORTO_LEXICON_TLEX_FILE_H

#include "engine/types.h"
#include "lexicon/lexicon.h"

/* Writes all entries to a new file that replaces the old one whole. */
i16 TLex_WriteFile(TLex *tlex);
/* Reloads the table when the file is newer than this client's copy. */
i16 syncLexFile(TLex *tlex);
/* Exclusive lock on a lexicon file: a lock number (0 or more), or a
 * negative number when it can't be had in time. */
i16 lockFile(const char *fileName);
void unlockFile(i16 lock);
/* fileTime (and its fine-grained twin) from the file that now stands. */
void TLex_StampFile(TLex *tlex);
/* The file part of TLex_Create: refuse an existing file, else write the
 * empty lexicon. */
i16 TLex_CreateFile(TLex *tlex);

#endif
