/*
 * clex.h -- the compressed lexicon reader: a read-only word store of which
 * only the directory and the suffix tables stay in memory.
 *
 * Words are grouped in segments by their first three characters.  A
 * segment's text is read from the file by loadSeg when a lookup or a
 * suggestion walk needs it, and kept in a cache bounded by `budget` bytes,
 * evicting the least recently used segment first.  Segment text is checked
 * once when it is loaded, so that the decoders below never leave their
 * buffers, whatever the file holds.
 *
 * Files: clex_open.cpp (probe, open, close, the pool), clex_cache.cpp
 * (loadSeg), clex_scan.cpp (decoding, CLex_ScanSegment, the cursor),
 * clex_skip.h (passing over records without decoding them), clex_index.cpp
 * (checkpoints into long segments), clex_words.cpp (segments decoded for
 * walks), clex_find.cpp (CLex_Find, its key
 * patterns, the directory search).
 */
#ifndef ORTO_LEXICON_CLEX_H
#define ORTO_LEXICON_CLEX_H

#include "engine/types.h"
#include "lexicon/clex_format.h"

struct Lexicon;

struct CLexIndex;
struct CLexWords;

/* One directory record and, while resident, its text. */
struct CLexSegment {
    u32 offset;          /* start of the text within section 5's payload */
    u32 length;          /* bytes of text */
    unsigned char *text; /* the text while resident, else null */
    CLexIndex *index;    /* checkpoints over the resident text of a long segment, else null */
    CLexWords *words;    /* the resident text decoded, once a walk has asked for it, else null */
    u32 lastUse;         /* useClock at the last loadSeg */
    char key[SegKeySize]; /* first three characters; a 1-2 character word padded with NUL */
    unsigned char indexTried; /* 1 once CLex_BuildIndex ran over the resident text */
};

/* Segment records come from chunks of this many; records are never freed
 * one by one, the whole pool goes at CLex_Close. */
constexpr u32 CLexPoolChunkRecords = 1000;

/* What a walk may know of a segment's words without its text: CLex_LetterBit
 * of every character of them, or-ed together, and their shortest and
 * longest length.  Known (maxLength above 0) once the text has been
 * decoded, and kept when it is evicted.  Apart from the records, so that a
 * walk that rules a segment out reads eight bytes of a packed array. */
struct CLexSummary {
    u32 letters;
    unsigned char minLength, maxLength;
};

struct CLexPoolChunk {
    CLexPoolChunk *next;                         /* the chunk allocated before */
    u32 used;                                    /* records handed out */
    CLexSegment records[CLexPoolChunkRecords];
};

struct CLexPool {
    CLexPoolChunk *head; /* newest chunk; null before the first record */
};

struct CLex {
    CLexSegment **segments;    /* directory order, so sorted by key */
    u32 segmentCount;          /* entries in segments */
    u32 textOffset;            /* file position of section 5's payload */
    u32 textLength;            /* length of section 5's payload */
    u32 budget;                /* most bytes of resident text; 0: no limit */
    u32 budgetLeft;            /* what is left of budget (unused when budget is 0) */
    u32 useClock;              /* counts the calls of loadSeg */
    u16 language;              /* from section 1 */
    u16 charSize;              /* from section 2 */
    char **simpleSuffixes;     /* into simpleText */
    u16 simpleCount;           /* strings in simpleSuffixes */
    char **extendedSuffixes;   /* into extendedText */
    u16 extendedCount;         /* strings in extendedSuffixes */
    char fileName[PathSize];   /* segments are read from it by name */
    CLexPool segmentPool;      /* holds every CLexSegment */
    char *simpleText;          /* the simple suffix table as read */
    char *extendedText;        /* the extended suffix table as read */
    u32 fileLoads;             /* times loadSeg went to the file: shows cache hits to tests */
    u32 *keyValues;            /* key of segments[i] as a 24-bit number, for the search */
    CLexSummary *summaries;    /* of segments[i], zero until known */
    u32 firstSegment[257];     /* segments whose key begins with byte b: [firstSegment[b], firstSegment[b + 1]) */
};

/* ---- Loading (clex_open.cpp, clex_cache.cpp) ---- */

/* Looks into a file for Lex_Identify.  0 with lexicon->language set when the
 * file is compressed; ORTO_BadFormat when it isn't (the caller then tries
 * the text path); ORTO_FileOpenError when it can't be opened. */
i16 CLex_Probe(const char *fileName, Lexicon *lexicon);

/* Fills `clex` from the file: directory and suffix tables, no segment text.
 * 0, or a negative code with nothing left allocated. */
i16 CLex_Open(const char *fileName, u32 memoryBudget, CLex *clex);

/* Frees all segment text, the tables and the pool; the CLex is then empty. */
void CLex_Close(CLex *clex);

/* The body of a LexCompressed Lexicon: allocates lexicon->clex and opens
 * it, or frees it again and returns the code. */
i16 CLex_OpenBody(Lexicon *lexicon, const char *fileName, u32 memoryBudget);
/* Closes and frees lexicon->clex, if any. */
void CLex_CloseBody(Lexicon *lexicon);

/* Makes segment->text resident and marks the segment as just used.  0, or
 * a negative code with segment->text null: ORTO_NotFound (empty segment),
 * ORTO_OutOfMemory, ORTO_OpenError, ORTO_BadFormat (seek or read failed,
 * or the text is damaged). */
i16 loadSeg(CLex *clex, CLexSegment *segment);

/* ---- Lookup (clex_find.cpp, clex_scan.cpp) ---- */

/* The segment with exactly this three-byte key, or null. */
CLexSegment *CLex_FindSegment(const CLex *clex, const char *key);
/* Fills keyValues and firstSegment from a sorted directory. */
void CLex_IndexKeys(CLex *clex);

/* 'i' when the lexicon holds `word`, ORTO_NotFound when it doesn't, or the
 * code of a failed loadSeg.  Case-blind lookups try the eight case patterns
 * of the key. */
i16 CLex_Find(const char *word, int caseSensitive, CLex *clex);

/* Per decoded word: 0 a match (the scan stops with 1), below 0 stop
 * (the scan gives 0), above 0 go on.  `decoded` lives until the callback
 * returns. */
typedef i32 (*CLexScanCallback)(const char *word, const char *decoded, void *context);

/* Decodes the words of a resident segment in order.  With a null callback,
 * compares them with `word` exactly and stops once the order has passed
 * it.  1 when stopped by a match, else 0.  A segment whose text is not
 * resident or is damaged gives 0, and so does one whose key is a whole
 * word (third key byte NUL): such a key is read from the directory. */
i16 CLex_ScanSegment(const CLex *clex, const CLexSegment *segment, const char *word,
                     CLexScanCallback callback, void *context);

/* The case-blind callback: 0 if StrCompareNoCase finds the two equal,
 * else 1. */
i32 CLex_MatchNoCase(const char *word, const char *decoded, void *context);

/* ---- Checkpoints into a long segment (clex_index.cpp) ---- */

/* Records between two checkpoints. */
constexpr u32 CLexIndexStep = 16;
/* Segments of this many records or fewer get no index. */
constexpr u32 CLexIndexMinRecords = 32;

/* Every CLexIndexStep-th record of a segment, first one included.  The
 * header is followed in the same allocation by two arrays:
 *   uint64_t prefix[count]    first 8 tail characters, big-endian, NUL-padded
 *   u32 recordAt[count + 1]   offset of each checkpoint record; [count] the text's length */
struct CLexIndex {
    const unsigned char *text; /* the segment text it was built over */
    u32 count;                 /* checkpoints */
    u32 bytes;                 /* size of the allocation, for memory reports */
};
inline const uint64_t *CLex_IndexPrefix(const CLexIndex *index)
{
    return (const uint64_t *)(index + 1);
}
inline const u32 *CLex_IndexRecordAt(const CLexIndex *index)
{
    return (const u32 *)(CLex_IndexPrefix(index) + index->count);
}

/* Sets segment->index over its resident, checked text when the segment has
 * more than CLexIndexMinRecords records; else, or without memory, to null.
 * Sets indexTried either way. */
void CLex_BuildIndex(const CLex *clex, CLexSegment *segment);
/* Frees segment->index, if any, and clears indexTried. */
void CLex_DropIndex(CLexSegment *segment);

/* Where the exact search for the tail `target` (the word less its key)
 * starts: 1 when a checkpoint is the word, -1 when the word sorts below the
 * first record, else 0 with *from the offset of the first record to look
 * at and *m the characters that the word before it, which sorts below
 * target, shares with target. */
int CLex_IndexStart(const CLexIndex *index, const unsigned char *target, u32 *from, u32 *m);

/* ---- A segment decoded (clex_words.cpp) ---- */

/* Zero bytes behind the last word: a reader may load 32 bytes from any
 * word, or eight elements from any array, and stay within the allocation. */
constexpr u32 CLexWordsPad = 32;

/* The words of a resident segment, in order.  The header is followed in the
 * same allocation by:
 *   u32 letters[count]                    CLex_LetterBit of each character
 *                                         of each word, or-ed together
 *   u32 tailLetters[count]                the same of the characters behind
 *                                         the key
 *   u32 at[count]                         where each word starts in `chars`
 *   unsigned char length[count]           length of each word
 *   char chars[]                          the words, whole and NUL-ended,
 *                                         then CLexWordsPad zero bytes
 * The arrays that every walk reads whole come first, next to the header. */
struct CLexWords {
    const unsigned char *text; /* the segment text it was built from */
    u32 count;                 /* words */
    u32 bytes;                 /* size of the allocation, for memory reports */
};
/* One bit for each letter as baseLetter gives it, without case or accent,
 * and bit 0 for every character that is no letter. */
inline u32 CLex_LetterBit(unsigned char baseLetterValue) { return 1u << (baseLetterValue & 31); }
inline const u32 *CLex_WordsLetters(const CLexWords *w) { return (const u32 *)(w + 1); }
inline const u32 *CLex_WordsTailLetters(const CLexWords *w)
{
    return CLex_WordsLetters(w) + w->count;
}
inline const u32 *CLex_WordsAt(const CLexWords *w) { return CLex_WordsTailLetters(w) + w->count; }
inline const unsigned char *CLex_WordsLength(const CLexWords *w)
{
    return (const unsigned char *)(CLex_WordsAt(w) + w->count);
}
inline const char *CLex_WordsChars(const CLexWords *w)
{
    return (const char *)(CLex_WordsLength(w) + w->count);
}

/* Sets words of segments[index] from its resident, checked text, and its
 * summary; words stays null when the segment has no text, is a one- or
 * two-character key, or no memory is left. */
void CLex_BuildWords(CLex *clex, u32 index);
/* Frees segment->words, if any. */
void CLex_DropWords(CLexSegment *segment);

/* ---- Word by word (for walks that want a loop rather than a callback) ----
 *
 *   if (loadSeg(clex, seg) == 0) {
 *       CLexCursor cur;
 *       CLex_StartSegment(&cur, clex, seg);
 *       while (const char *w = CLex_NextWord(&cur)) ...
 *   }
 *
 * No allocation; the cursor is valid while the segment stays resident (no
 * loadSeg of another segment in between when a budget is set). */
struct CLexCursor {
    const CLex *clex;         /* for the suffix tables */
    const unsigned char *p;   /* next record */
    const unsigned char *end; /* end of the segment's text */
    u16 tailLength;           /* characters behind the key in `word` */
    u16 damaged;              /* 1 once a record could not be decoded */
    char word[WordSize];      /* the current word, NUL-terminated */
};

/* Places the cursor before the first word.  A segment whose key is a whole
 * word (third key byte NUL) yields that word once; a segment without
 * resident text yields nothing. */
void CLex_StartSegment(CLexCursor *cursor, const CLex *clex, const CLexSegment *segment);

/* The next word (in cursor->word), or null at the end of the segment or at
 * damaged text (cursor->damaged is then 1). */
const char *CLex_NextWord(CLexCursor *cursor);

/* 1 when the text decodes cleanly to its end under the clex's suffix
 * tables: no record passes the segment or the 63-character word, no suffix
 * number passes its table, no shared count passes the word before. */
int CLex_CheckSegmentText(const CLex *clex, const unsigned char *text, u32 length);

#endif
