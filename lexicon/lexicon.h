/*
 * lexicon.h -- the lexicon record and the in-memory text lexicon (TLex).
 *
 * A Lexicon is what a session's lexicon slot points to.  It is read-only
 * exactly when its format isn't LexText.  A TLex is a sorted table of
 * entries, each a word and an info string whose first byte is the action
 * and whose rest is the other word; it either mirrors a text file, which is
 * rewritten after every change, or has no file and dies with its session.
 */
#ifndef ORTO_LEXICON_LEXICON_H
#define ORTO_LEXICON_LEXICON_H

#include "engine/types.h"

struct CLex;
struct RankFrequencies;

enum LexFormat : u16 {
    LexCompressed = 0,
    LexText = 1
};

struct TLexEntry {
    char *word; /* heap string, owned by the table */
    char *info; /* heap string: action byte, then the other word */
};

/* Growable array: a request for room for n entries reallocates to n + step
 * when the capacity is short.  It never shrinks while the TLex lives. */
struct TLexTable {
    TLexEntry *base; /* the entries */
    u32 capacity;    /* entries allocated */
    u32 step;        /* growth beyond the request, 32 */
};

struct TLex {
    u16 language;              /* code for the file's sentinel line */
    TLexTable table;           /* the entries in StrCompare order */
    u32 count;                 /* entries in use */
    i32 fileTime;              /* file's modification time as last known, seconds */
    char fileName[PathSize];   /* path of the file; empty for a temporary lexicon */
    u16 plainList;             /* 1: the file is a word list without sentinel line */
    int64_t fileTimeNs;        /* same moment in nanoseconds, to see rewrites within a second */
    u32 *foldIndex;            /* entry numbers in case-blind order, or null */
    u16 foldValid;             /* 1 while foldIndex matches the table */
    u16 foldWalks;             /* case-blind walks since the table last changed */
};

/* One open lexicon.  `body` is the TLex or the CLex, by format. */
struct Lexicon {
    u16 format;   /* a LexFormat */
    u16 language; /* as ORTO_GetLexInfo reports it */
    TLex tlex;    /* body of a LexText lexicon */
    CLex *clex;   /* body of a LexCompressed lexicon */
    RankFrequencies *frequencies; /* word frequencies for ORTO_SuggestRanked, one allocation, or null */
};

/* The words a lexicon entry never holds more of. */
constexpr int MaxOtherWord = WordSize - 1;

i16 TLex_Find(TLex *tlex, const char *word, int caseSensitive, char *otherWord, i16 otherWordSize);
i16 TLex_Insert(TLex *tlex, const char *word, char action, const char *otherWord);
i16 TLex_Remove(TLex *tlex, const char *word);
i16 TLex_Add(TLex *tlex, const char *word, char action, const char *otherWord);
i16 TLex_Del(TLex *tlex, const char *word);
i16 TLex_Clear(TLex *tlex);
i16 TLex_Create(const char *fileName, u16 language, TLex *tlex);
void TLex_Close(TLex *tlex);
i32 TLex_GetAll(TLex *tlex, char *buffer, u32 bufferSize);
void TLex_GetSize(TLex *tlex, u32 *size);

/* Index of the entry with exactly this word (binary search), or -1. */
int64_t TLex_FindIndex(const TLex *tlex, const char *word);
/* Heap copies of a word and its info string (action byte, other word cut
 * to 63 characters); ORTO_OutOfMemory with nothing allocated. */
i16 TLexEntry_Make(TLexEntry *entry, const char *word, char action, const char *otherWord);
/* Room for n entries in the table; false when memory runs out, the table
 * then as it was. */
bool TLexTable_Reserve(TLexTable *table, u32 n);
/* Frees every entry's strings; the table itself stays. */
void TLexTable_FreeEntries(TLex *tlex);
/* To be called by every change to the table's entries. */
inline void TLex_Changed(TLex *tlex)
{
    tlex->foldValid = 0;
    tlex->foldWalks = 0;
}

#endif
