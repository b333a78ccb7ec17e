/*
 * rank.h -- the second ranking of suggestions (ORTO_SuggestRanked): the
 * word frequencies of a lexicon, the error model, the candidate search and
 * the pool that keeps the best candidates of one call.
 *
 * The ranking weighs what people get wrong rather than what a keyboard
 * does: a candidate's cost is a weighted edit distance from the checked
 * word (rank_cost.cpp) plus a cost for how rare the candidate is (its
 * frequency class, rank_freq.cpp) and for capitals the word doesn't have.
 * Candidates are the words of every lexicon within a few plain edits of the
 * word (rank_walk.cpp), one more where that finds nothing that scores 80,
 * and the word split in two.  The score tells the cost as the share of the
 * word it spends, on the engine's 0..100 scale.
 */
#ifndef ORTO_SUGGEST_RANK_H
#define ORTO_SUGGEST_RANK_H

#include "engine/charclass.h"
#include "engine/session.h"
#include "engine/types.h"

struct Lexicon;
struct CLex;
struct TLex;

/* ---- word frequencies (rank_freq.cpp) ---- */

/* Classes 0 (the most common words) to RankClassCount - 1. */
constexpr int RankClassCount = 16;

/* One allocation: this header, then `count` entries, each the word's hash
 * with its low four bits replaced by its class, strictly ascending. */
struct RankFrequencies {
    u32 count;         /* entries behind the header */
    u16 unlistedClass; /* the class of a word the table doesn't name */
    u16 reserved;
};
inline const u32 *RankFreq_Entries(const RankFrequencies *table)
{
    return (const u32 *)(table + 1);
}

/* The hash of a word that the table keys by (FNV-1a, 32 bits). */
u32 RankFreq_Hash(const char *word);
/* Reads a frequency file (docs/frequency_format.md) into one allocation.
 * 0 with *table set, or ORTO_FileOpenError, ORTO_BadFormat (a line that is
 * no class line and no word, a class out of range, a word before the first
 * class line, or a file of 64 MB or more), ORTO_OutOfMemory. */
i16 RankFreq_Load(const char *fileName, RankFrequencies **table);
/* The class of `word`: its own, or the table's unlisted class. */
int RankFreq_Class(const RankFrequencies *table, const char *word);

/* ---- the checked word and the error model (rank_cost.cpp) ---- */

/* The checked word prepared once for a call. */
struct RankWord {
    const char *text;             /* the working copy of the word */
    i32 length;                   /* its length, 1..63 */
    unsigned char fold[WordSize]; /* each character without case or accent */
    u32 letters;                  /* CLex_LetterBit of each character, or-ed */
    i32 maxEdits;                 /* plain edits a candidate may lie away */
    i32 full;                     /* what the whole word is worth: 100 a character */
    bool lowerOnly;               /* no capital in the word */
};

/* Folds a character as the candidate search compares them: small letters
 * without accent; any other byte stays itself. */
inline unsigned char rankFold(unsigned char c)
{
    return baseLetter[c] ? baseLetter[c] : c;
}
void rankWordInit(RankWord *word, const char *text, i16 depth);
/* Turns the word to a second, wider search: one plain edit more. */
void rankWordWiden(RankWord *word);
/* The weighted edit distance from the word to `candidate`, in points (100
 * for a plain edit), or a value above `limit` once it is sure to pass it. */
i32 rankErrorCost(const RankWord *word, const char *candidate, i32 limit);
/* What capitals of the candidate that the word lacks cost. */
i32 rankCaseCost(const RankWord *word, const char *candidate);
/* What a candidate of frequency class `klass` costs; class -1: the lexicon
 * has no frequency data. */
i32 rankFrequencyCost(int klass);
/* The score of a total cost: 100 less the share of the word it spends,
 * 1..99; 100 only for the word itself. */
i16 rankScore(const RankWord *word, i32 cost, bool same);

/* ---- the pool of one call ---- */

constexpr int RankPoolSize = 64;

struct RankCandidate {
    char word[WordSize]; /* candidate text as the lexicon holds it */
    i32 cost;            /* total cost; lower is better */
    u32 order;           /* arrival, which breaks ties */
    i16 score;           /* for the caller, from the cost */
};

/* The best candidates so far, at most RankPoolSize, none twice. */
struct RankPool {
    RankCandidate items[RankPoolSize];
    u32 count;   /* items in use */
    u32 arrived; /* offers so far */
    i32 cap;     /* the most a candidate may cost */
};

/* The cost a new candidate must stay below to get in. */
i32 rankPoolLimit(const RankPool *pool);
void rankOffer(RankPool *pool, const char *text, i32 cost, i16 score);

/* ---- the candidate search (rank_walk.cpp) ---- */

/* Offers the words of a compressed lexicon that lie within word->maxEdits
 * plain edits of the word, with the lexicon's frequencies (may be null).
 * 0, or the code of a segment that can't be loaded. */
i16 rankWalkCLex(const RankWord *word, CLex *clex, const RankFrequencies *frequencies,
                 RankPool *pool);
/* The same over a text lexicon, whose words count as common; an a/A/c/C
 * entry of exactly the word offers its other word first. */
void rankWalkTLex(const RankWord *word, TLex *tlex, RankPool *pool);

#endif
