/*
 * suggest.h -- ranked suggestions: the working list, the two measures, the
 * lexicon walks and the driver of ORTO_Suggest.
 *
 * A measure is a plain function (word, candidate) -> 0..100.  The walks
 * take it as a parameter; for the two measures of this library they swap in
 * a bounded form of it (a ScoreProbe) that gives up on a candidate as soon
 * as it can no longer beat the last entry of a full list.  That changes no
 * result: addSuggestion would refuse such a candidate anyway.  Any other
 * measure is called as it is, which is what the tests use as the reference.
 */
#ifndef ORTO_SUGGEST_SUGGEST_H
#define ORTO_SUGGEST_SUGGEST_H

#include "engine/session.h"
#include "engine/types.h"

struct Lexicon;
struct TLex;
struct CLex;
struct CLexSegment;

struct SuggestionEntry {
    char word[WordSize]; /* candidate text, at most 63 characters */
    i16 score;           /* 0..100, higher is better */
};

/* The working list of one call: sorted by score, first arrival first among
 * equals, no text twice. */
struct SuggestionList {
    SuggestionEntry *entries; /* `capacity` entries, one allocation */
    u16 count;                /* entries in use */
    u16 capacity;             /* the caller's maxSuggestions */
};

typedef i16 (*Measure)(const char *word, const char *candidate);

/* ---- the list ---- */
void addSuggestion(const char *text, i16 score, SuggestionList *list);
/* The score a new candidate must pass to change the list: the last score
 * of a full list, else 0 (a walk adds nothing below 1). */
inline i16 listFloor(const SuggestionList *list)
{
    return list->count >= list->capacity && list->count > 0
               ? list->entries[list->count - 1].score
               : 0;
}

/* ---- the measures ---- */
i16 typoScore(const char *word, const char *candidate);
i16 phoneticScore(const char *word, const char *candidate);
void phoneticCode(const char *word, char *code);
extern const unsigned char phoneticLetters[256];

/* The checked word prepared once for a walk, and the bounded scoring of
 * candidates against it.  `measure` is what the walk was given; `kind`
 * says whether a bounded form of it exists. */
enum ProbeKind : u16 { ProbePlain, ProbeTypo, ProbePhonetic };

struct ScoreProbe {
    Measure measure;             /* the walk's measure */
    ProbeKind kind;              /* which bounded form serves it */
    const char *word;            /* the working copy of the checked word */
    i16 length;                  /* its length */
    char code[WordSize];         /* its phonetic code (ProbePhonetic) */
    u16 counts[256];             /* its bytes by value (ProbePhonetic) */
    u32 restLetters[WordSize + 1]; /* CLex_LetterBit of word[i..], or-ed, by i (ProbeTypo) */
};

void probeInit(ScoreProbe *probe, Measure measure, const char *word);
/* The measure of `candidate`, exact when it is above `floor`; 0 when it is
 * not (the candidate then can't change the list). */
i16 probeScore(const ScoreProbe *probe, const char *candidate, i16 floor);
/* False when no word that begins with the three characters of `key` can
 * score above `floor`: the segment need not be decoded. */
bool probeSegmentMayScore(const ScoreProbe *probe, const char *key, i16 floor);

/* What a word of `wordLength` characters is worth, and the fewest of those
 * points that a candidate must keep to score above `floor`. */
inline i32 typoFullPoints(i32 wordLength) { return wordLength ? 100 * wordLength : 1; }
inline i32 typoPointsToBeat(i32 full, i16 floor)
{
    i32 f = floor < 0 ? 0 : floor;
    return ((f + 1) * full + 99) / 100;
}

/* Bounded forms, exact above `floor`, 0 at or below it. */
i16 typoScoreAbove(const char *word, i16 wordLength, const char *candidate, i16 floor);
i16 phoneticScoreAbove(const ScoreProbe *probe, const char *candidate, i16 floor);

/* The walk of typoScore at the top of its loop: cursor positions in the
 * word and the candidate, and the points kept so far.  typoAdvance
 * (suggest/typo_step.h) runs the loop on from such a state. */
struct TypoState {
    i16 w;      /* word cursor */
    i16 c;      /* candidate cursor */
    i32 points; /* points kept */
};
/* A lower bound of the points typoScore takes off any candidate that
 * begins with the three characters of `key` (which needs no NUL). */
i32 typoPrefixCost(const char *word, i16 wordLength, const char *key);
/* Segment bounds: false when no word that begins with `key` can score
 * above `floor` (typographical), or can have the word's code (phonetic). */
bool typoSegmentMayScore(const char *word, i16 wordLength, const char *key, i16 floor);
bool phoneticPrefixMatches(const ScoreProbe *probe, const char *key);

/* ---- the walks ---- */
/* The start of the typographical run on the last segment key walked, as
 * far as its first two characters decide it, for the next key that
 * shares them (segment_walk.cpp).  `pair` is ~0 before the first. */
struct TypoSeed {
    u32 pair;          /* the key's first two characters */
    i32 length;        /* positions set below */
    bool open;         /* the decision at position 1 is still to make */
    i16 wordAt[3];
    i32 pointsAt[3];
    i16 resumeFrom[3];
};

/* The typographical walk of the segment segments[index] of `clex`, whose
 * key has three characters and passed the key test, over its decoded words
 * (segment_walk.cpp), with the bounds of the typographical ScoreProbe.
 * Candidates at or below `lowestFloor` are known not to matter, whatever
 * the list's own floor.  A segment that can't score above the floor is not
 * loaded, once an earlier walk has decoded it; one that `residentOnly` finds
 * out of memory is passed over.  0 when done; 1 when its words could not be
 * decoded, and the caller must scan its text; or the code of a failed load.
 * `seed` serves the walks of one word, in key order. */
i16 walkSegmentTypo(CLex *clex, u32 index, const ScoreProbe *probe, SuggestionList *list,
                    i16 lowestFloor, bool residentOnly, TypoSeed *seed);
/* The builds of the segment walk, which give the same lists: the best the
 * processor has (the default), or, for tests, one of the others.  False
 * when the processor can't run the build asked for (nothing changes). */
enum SegmentWalkBuild { SegmentWalkBest, SegmentWalkWide, SegmentWalkCounting, SegmentWalkPlain };
bool segmentWalkBuild(int build);
void walkTLex(TLex *tlex, const char *word, Measure measure, SuggestionList *list);
i16 walkCLex(i16 depth, const char *word, Measure measure, SuggestionList *list, CLex *clex);

/* ---- the driver ---- */
i16 suggestFromLex(Session *session, Lexicon *lexicon, const char *word, i16 depth,
                   SuggestionList *list);
i16 gatherSuggestions(Session *session, const char *word, i16 depth, SuggestionList *list);
/* The list into the caller's buffers, best first, each entry with the case
 * of `word` carried over and left out when it then equals the one before;
 * ORTO_BufferTooSmall, logged under `call`, when a string and the closing
 * empty string don't both fit. */
i16 writeSuggestions(SuggestionList *list, const char *word, char *suggestions,
                     i32 suggestionsSize, int16_t *scores, const char *call);
/* The same run with the measures given: the driver passes typoScore and
 * phoneticScore; a test passes stand-ins to run the unbounded path. */
i16 gatherSuggestionsWith(Session *session, const char *word, i16 depth, SuggestionList *list,
                          Measure typo, Measure phonetic);

#endif
