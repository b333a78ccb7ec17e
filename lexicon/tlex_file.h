/*
 * tlex_file.h -- the file side of a text lexicon: reading, rewriting,
 * locking, and keeping clients of one file in step; and the look into a
 * file by which ORTO_OpenLex tells its kind.
 */
#ifndef ORTO_LEXICON_TLEX_FILE_H
#define ORTO_LEXICON_TLEX_FILE_H

#include "engine/types.h"
#include "lexicon/lexicon.h"

/* Size of the reader's line buffer: the longest line the writer writes
 * (TLexLineMax characters) with its CR LF and a NUL, so that every line
 * written reads back whole. */
constexpr int TLexLineSize = 131;
constexpr int TLexLineMax = 128;

/* Sets format and language of a new Lexicon by looking into the file. */
i16 Lex_Identify(const char *fileName, Lexicon *lexicon);
/* The look at a file that isn't compressed: sets the Lexicon's language
 * from the first line. */
i16 TLex_Probe(const char *fileName, Lexicon *lexicon);
/* Reads the file into a new TLex (the TLex need not be set up). */
i16 TLex_Open(const char *fileName, TLex *tlex);
/* Replaces all entries by what the open file holds. */
i16 TLex_ReadFile(int handle, TLex *tlex);
/* The language stated by a first line: Windows language ids become
 * language codes, other numbers stay as they are, no number gives 0. */
void TLex_ParseSentinel(const char *line, u16 *language);

/* Writes all entries to a new file that replaces the old one whole. */
i16 TLex_WriteFile(TLex *tlex);
/* Reloads the table when the file is newer than this client's copy. */
i16 syncLexFile(TLex *tlex);
/* Exclusive lock on a lexicon file: a lock number (0 or more), -1 when the
 * lock file can't be made, -2 when the lock wasn't had in time. */
i16 lockFile(const char *fileName);
void unlockFile(i16 lock);
/* fileTime (and its fine-grained twin) from the file that now stands. */
void TLex_StampFile(TLex *tlex);
/* The file part of TLex_Create: refuse an existing file, else write the
 * empty lexicon. */
i16 TLex_CreateFile(TLex *tlex);

/* True when `word` can stand on a line of a lexicon file and read back as
 * itself (no leading '#', no TAB, CR or LF); `otherWord` (may be null) must
 * hold no TAB, CR or LF within its first 63 characters. */
bool TLex_FitsFile(const char *word, const char *otherWord);

#endif
