/*
 * lexsq.h -- the lexicon compressor: sorted word lists in, a compressed
 * lexicon file out.
 *
 * One LexSq per session (Session::compressor).  LexSq_Init writes the
 * sections that come before the words, LexSq_File appends the segment text
 * of one list, LexSq_End writes the directory and puts the file in place.
 * Only one node per segment stays in memory, however long the lists.
 *
 * The output goes to a temporary file beside the target, renamed over it by
 * LexSq_End: a failed or abandoned compression never leaves half a lexicon
 * under the output name, nor spoils a lexicon that stood there before.
 *
 * Files: lexsq_init.cpp (Init, suffix tables, End, Abort), lexsq_write.cpp
 * (LexSq_File, addSegment), lexsq_api.cpp (the exported calls).
 */
#ifndef ORTO_LEXICON_LEXSQ_H
#define ORTO_LEXICON_LEXSQ_H

#include "engine/types.h"
#include "lexicon/clex_format.h"

/* A finished segment, waiting for the directory. */
struct LexSqSegment {
    u32 offset;           /* absolute file position of the segment's text */
    u32 length;           /* bytes of text */
    LexSqSegment *next;   /* next node, in ascending key order */
    char key[SegKeySize]; /* as in the directory: first three characters, NUL-padded */
};

/* Room for the temporary name: the output name, a dot, the process id and
 * a try number. */
constexpr int LexSqTempNameSize = PathSize + 32;

struct LexSq {
    char fileName[PathSize];               /* the output file */
    char tempName[LexSqTempNameSize];      /* where the output is written until LexSq_End */
    LexSqSegment *segments;                /* finished segments, ascending by key */
    LexSqSegment *lastSegment;             /* tail of `segments`: lists in order append in O(1) */
    u16 segmentCount;                      /* nodes in `segments` */
    u32 textStart;                         /* file position of section 5's payload */
    char simple[MaxSimpleSuffixes][MaxSuffixLength + 1];     /* the simple suffixes */
    u16 simpleCount;                       /* entries in `simple` */
    char extended[MaxExtendedSuffixes][MaxSuffixLength + 1]; /* the extended suffixes */
    u16 extendedCount;                     /* entries in `extended` */
    u16 fileIsOpen;                        /* 1 while the output file is open */
    int handle;                            /* the output file; -1 when none is open */
};

/* A LexSq with no file and no segments, as a session first gets it. */
void LexSq_Clear(LexSq *lexSq);

/* Creates the output (as a temporary file) and writes sections 1 to 3 and
 * the header of section 5.  `suffixFile` may be null.  0 or a negative
 * code; on failure no file is left open and the temporary file is gone. */
i16 LexSq_Init(LexSq *lexSq, const char *outputFile, const char *suffixFile, i16 language,
               u32 *lineNumber);
/* Reads the suffix file into the tables; `*lineNumber` counts the lines
 * read up to the end of the simple table. */
i16 LexSq_ReadSuffixes(LexSq *lexSq, const char *suffixFile, u32 *lineNumber);
/* Writes section 3 from the tables. */
i16 LexSq_WriteSuffixes(LexSq *lexSq);
/* Compresses one word list; `*lineNumber` is the last line read. */
i16 LexSq_File(LexSq *lexSq, const char *wordFile, u32 *lineNumber);
/* Writes the directory and the length of section 5, closes the file and
 * renames it into place. */
i16 LexSq_End(LexSq *lexSq);
/* Closes and deletes the temporary file, frees the list. */
void LexSq_Abort(LexSq *lexSq);

/* Stores a copy of a finished segment in the sorted list. */
i16 addSegment(LexSq *lexSq, const LexSqSegment *segment);
/* Frees every node of the list. */
void LexSq_FreeSegments(LexSq *lexSq);

/* Writes `count` bytes to the output, checked: ORTO_WriteError with a log
 * line on a short write. */
i16 LexSq_Write(LexSq *lexSq, const void *bytes, u32 count);
/* One 32-bit value in file order. */
i16 LexSq_WriteValue(LexSq *lexSq, u32 value);

#endif
