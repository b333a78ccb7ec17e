/*
 * suggest_walk.cpp -- the two lexicon walks that feed the suggestion list:
 * walkTLex over the entries of a text lexicon, walkCLex over the segments
 * of a compressed one, with scoreCandidate as the callback of the segment
 * scan.
 *
 * A text lexicon is small and walked whole.  A compressed one is walked by
 * segments: a segment is opened only when its three-character key scores
 * at least 100 - depth against the first three characters of the word,
 * under the walk's own measure; keys of one or two characters are whole
 * words and are scored as candidates.  Under the typographical measure the
 * key test of a block of keys is worked out first, mostly from outcomes
 * kept by the state of its run, and the segments of the keys that pass
 * are walked after, in key order.
 *
 * Every candidate is scored against the list's current floor (ScoreProbe):
 * the walk only asks whether it can still get in, which the list would
 * otherwise refuse at its first test.  Under the typographical measure the
 * segment's decoded words go through segment_walk.cpp, which puts the same
 * question to the segment and each word before it scores one;
 * other measures put it to the segment by its key and decode through the
 * scanner's callback.  Under the typographical measure a segment that an
 * earlier walk decoded is weighed by its summary before it is loaded, and
 * stays on disk when it can't score; any other segment that passes the key
 * test is loaded, so that a load failure comes out as it would without the
 * bounds.
 */
#include <string.h>

#include "engine/charclass.h"
#include "engine/string_helpers.h"
#include "lexicon/clex.h"
#include "lexicon/lexicon.h"
#include "suggest/suggest.h"
#include "suggest/typo_step.h"

/* What scoreCandidate needs; lives for one walkCLex. */
struct WalkContext {
    SuggestionList *list;     /* where candidates go */
    Measure measure;          /* the measure of this walk */
    const ScoreProbe *probe;  /* the word prepared for `measure` */
};

void walkTLex(TLex *tlex, const char *word, Measure measure, SuggestionList *list)
{
    ScoreProbe probe;
    probeInit(&probe, measure, word);
    for (u32 i = 0; i < tlex->count; i++) {
        const TLexEntry *entry = &tlex->table.base[i];
        switch (entry->info[0]) {
        case 'a': case 'A': case 'c': case 'C':
            if (StrCompare(entry->word, word) == 0)
                addSuggestion(entry->info + 1, 99, list);
            break;
        case 'i': {
            i16 score = probeScore(&probe, entry->word, listFloor(list));
            if (score >= 1)
                addSuggestion(entry->word, score, list);
            break;
        }
        default:
            break;
        }
    }
}

static i32 scoreCandidate(const char *word, const char *candidate, void *context)
{
    (void)word; /* the probe holds it, prepared */
    WalkContext *walk = (WalkContext *)context;
    i16 score = probeScore(walk->probe, candidate, listFloor(walk->list));
    if (score >= 1)
        addSuggestion(candidate, score, walk->list);
    return 1;
}

/* Under the typographical measure, many pairs of first two characters
 * leave the run of the key test in the same state ("ba", "ca" and "da"
 * against a word that begins with "fa", say), and from there on the
 * outcome depends on the third character alone.  Outcomes are kept by
 * state and third character, so that each is worked out once in a walk,
 * and a key is then tested by one bit, without a branch. */
constexpr u32 KeyStateBits = 6;
constexpr u32 KeyStateRoom = 1u << KeyStateBits; /* places for states, at most half taken */
constexpr u32 KeyRowPass = KeyStateRoom, KeyRowFail = KeyStateRoom + 1; /* rows of fixed outcome */
constexpr u32 KeyRowEach = KeyStateRoom + 2; /* no row: each key is tested on its own */
struct KeyStateMemo {
    u32 state[KeyStateRoom];             /* packed state, 0 for a free place */
    unsigned char second[KeyStateRoom];  /* a second character that leaves that state */
    uint64_t known[KeyStateRoom][4];     /* third characters worked out, by bit */
    uint64_t passes[KeyStateRoom + 2][4]; /* those that pass; then all, and none */
    u32 used;                            /* places taken */
};

/* The key test of one walk: the first three characters of the word
 * against each three-character key, passed at `minScore` or more.  Keys
 * come sorted, so that many follow a key with the same first two
 * characters; under the typographical measure the state of the run before
 * the decision on the second character depends on those two alone and is
 * kept for the next key. */
struct KeyTest {
    ScoreProbe probe;      /* the three characters, for other measures */
    char wordKey[4];       /* the first three characters of the word */
    i32 minScore;          /* 100 - depth, at most 101 */
    bool typo;             /* typographical: the kept states serve */
    bool lengthFails;      /* typo: no three-character key passes the length test */
    i32 minPoints;         /* typo: points of wordKey to keep */
    char pair[2];          /* typo: first two characters of the key last seen */
    bool paired;           /* typo: `pair` and the states are set */
    TypoState keyRun;      /* typo: wordKey against the key, before its second decision */
    KeyStateMemo memo;     /* typo: outcomes by state and third character */
};

static void keyTestInit(KeyTest *test, Measure measure, const char *word, i16 depth)
{
    StrCopyN(test->wordKey, sizeof test->wordKey, word, 3);
    probeInit(&test->probe, measure, test->wordKey);
    test->minScore = 100 - (i32)depth;
    if (test->minScore > 101)
        test->minScore = 101; /* no key can score that much */
    test->typo = test->probe.kind == ProbeTypo;
    i32 length = test->probe.length;
    test->lengthFails = 3 - length > length / 2;
    test->minPoints = typoPointsToBeat(typoFullPoints(length), (i16)(test->minScore - 1));
    test->paired = false;
    memset(test->memo.state, 0, sizeof test->memo.state);
    memset(test->memo.passes[KeyRowPass], 0xFF, sizeof test->memo.passes[KeyRowPass]);
    memset(test->memo.passes[KeyRowFail], 0, sizeof test->memo.passes[KeyRowFail]);
    test->memo.used = 0;
}

/* `key` holds three characters and a NUL.  False when the key's first two
 * characters already cost too much for any third: the keys that share
 * them need no test of their own. */
static bool keyTestPair(KeyTest *test, const char *key)
{
    if (test->paired && test->pair[0] == key[0] && test->pair[1] == key[1])
        return true;
    test->pair[0] = key[0];
    test->pair[1] = key[1];
    test->paired = true;
    test->keyRun = {0, 0, typoFullPoints(test->probe.length)};
    typoAdvance(test->wordKey, key, &test->keyRun, 1, 1);
    if (test->minScore <= 0 || test->lengthFails)
        return true;
    /* what is left differs in length by d, 40 points each; and if the
     * second character stands against another letter, that costs 40 or
     * more whatever the third is, and mends d by one at most */
    const TypoState &run = test->keyRun;
    i32 d = (test->probe.length - run.w) - (3 - run.c);
    i32 events = d < 0 ? -d : d;
    if (run.c == 1 && run.w < test->probe.length &&
        baseLetter[(unsigned char)test->wordKey[run.w]] != baseLetter[(unsigned char)key[1]])
        events = events > 1 ? events : 1;
    return run.points - 40 * events >= test->minPoints;
}

static bool keyPasses(KeyTest *test, const char *key)
{
    if (test->minScore <= 0)
        return true;
    if (!test->typo)
        return probeScore(&test->probe, key, (i16)(test->minScore - 1)) >= test->minScore;
    if (test->lengthFails)
        return false;
    TypoState state = test->keyRun;
    typoAdvance(test->wordKey, key, &state, test->minPoints, WordSize);
    i32 points = state.points - 40 * (3 - state.c) - 40 * (test->probe.length - state.w);
    return points >= test->minPoints;
}

/* The row of `memo` that holds the outcomes of the keys with the pair of
 * keyTestPair, taken now if its state is new; KeyRowFail when the pair
 * is hopeless, KeyRowPass when every key passes, and KeyRowEach when the
 * memo is too full to take it. */
static u32 keyRow(KeyTest *test, const char *key, bool pairMay)
{
    if (!pairMay)
        return KeyRowFail;
    if (test->minScore <= 0)
        return KeyRowPass;
    if (test->lengthFails)
        return KeyRowFail;
    const TypoState &run = test->keyRun;
    /* What the rest of the run reads: the state, and when the decision on
     * the key's second character is still to make, what that decision
     * makes of it: whether it is the word's letter there (and then what
     * case and accent cost), whether it is the word's next letter, and
     * whether it is of the same sort.  Characters alike in all of that
     * give the same outcome for every third character. */
    u32 kind = 0;
    if (run.c == 1) {
        unsigned char wc = (unsigned char)test->wordKey[run.w];
        unsigned char next = run.w < 3 ? (unsigned char)test->wordKey[run.w + 1] : 0;
        unsigned char second = (unsigned char)key[1];
        unsigned fw = baseLetter[wc], fc = baseLetter[second];
        if (second == 0)
            kind = 15; /* a damaged key: the run ends there */
        else if (fw == fc)
            kind = 1 + (IsLower(wc) != IsLower(second)) +
                   2 * ((IsUpper(wc) ? wc + 32u : wc) != (IsUpper(second) ? second + 32u : second));
        else
            kind = 8 + (baseLetter[next] == fc) + 2 * (IsVowel((unsigned char)fw) == IsVowel((unsigned char)fc));
    }
    u32 packed = 1 + ((u32)run.w | (u32)run.c << 2 | kind << 4 | (u32)(run.points + 1024) << 12);
    KeyStateMemo *memo = &test->memo;
    u32 at = (packed * 2654435761u) >> (32 - KeyStateBits);
    for (;; at = (at + 1) & (KeyStateRoom - 1)) {
        if (memo->state[at] == packed)
            return at;
        if (memo->state[at] == 0)
            break;
    }
    if (memo->used >= KeyStateRoom / 2)
        return KeyRowEach;
    memo->used++;
    memo->state[at] = packed;
    memo->second[at] = (unsigned char)key[1];
    memset(memo->known[at], 0, sizeof memo->known[at]);
    memset(memo->passes[at], 0, sizeof memo->passes[at]);
    return at;
}

/* Most candidates a first look keeps count of. */
constexpr int EstimateRoom = 64;

/*
 * A floor that the list is sure to reach by the end of a typographical walk
 * that starts on an empty list, from a first walk into a list of its own
 * over the segments whose keys begin with the word's first two characters,
 * or its first and third (as written, and with the first in small
 * letters): the best candidates of most words stand there, and the rest of
 * the walk then weighs every word against that floor from its first
 * segment on.
 *
 * Why it is safe: with an empty list at the start, and one text always
 * bearing one score within a walk, the list after any number of offers is
 * the best `capacity` of them (by score, then arrival).  So once the walk
 * has offered `capacity` candidates of score F or more, nothing below F
 * stands in the list at its end, and nothing below F decides what else
 * does: such candidates need not be scored.  The first walk only counts
 * candidates that the walk offers (their segment passes the key test) and
 * only reads segments already in memory, so that the cache sees nothing of
 * it.  0 when it learns nothing.
 */
static i16 estimateFloor(CLex *clex, const char *word, const ScoreProbe *probe,
                         const KeyTest *keyTest, const SuggestionList *list)
{
    if (list->count != 0 || list->capacity > EstimateRoom || probe->length < 2)
        return 0;
    SuggestionEntry room[EstimateRoom];
    SuggestionList first = {room, 0, list->capacity};
    TypoSeed seed;
    seed.pair = ~0u;
    /* the first two characters, the first also in small letters; then the
     * first and the third, as in a swap of the second and third */
    unsigned char w0 = (unsigned char)word[0], l0 = (unsigned char)ToLower(w0);
    unsigned char w1 = (unsigned char)word[1], w2 = (unsigned char)word[2];
    u32 pairs[4] = {(u32)w0 << 8 | w1, (u32)l0 << 8 | w1, (u32)w0 << 8 | w2, (u32)l0 << 8 | w2};
    int count = w2 ? 4 : 2;
    for (int v = 0; v < count; v++) {
        u32 pair = pairs[v];
        bool seen = false;
        for (int u = 0; u < v; u++)
            seen |= pairs[u] == pair;
        if (seen)
            continue;
        for (u32 i = clex->firstSegment[pair >> 8]; i < clex->firstSegment[(pair >> 8) + 1]; i++) {
            u32 value = clex->keyValues[i];
            if (value >> 8 != pair || (value & 0xFF) == 0)
                continue;
            char key[4] = {(char)(value >> 16), (char)(value >> 8), (char)value, 0};
            if (keyTest->minScore > 0 &&
                keyTest->probe.measure(keyTest->wordKey, key) < keyTest->minScore)
                continue;
            walkSegmentTypo(clex, i, probe, &first, 0, true, &seed);
        }
    }
    return first.count == first.capacity ? first.entries[first.count - 1].score : 0;
}

/* Keys handled at a time by walkKeysTypo. */
constexpr u32 KeyBlock = 512;

/* The keys of a walk under the typographical measure, a block at a time:
 * first the row of each key's pair, then the outcomes that no row holds
 * yet, then the keys that pass, gathered by one bit each without a
 * branch; and last, in the order of the keys, the walks of their
 * segments and the keys that are words. */
static i16 walkKeysTypo(CLex *clex, const char *word, KeyTest *keyTest, WalkContext *context,
                        i16 lowestFloor, TypoSeed *seed)
{
    const u32 *keys = clex->keyValues;
    KeyStateMemo *memo = &keyTest->memo;
    /* a key of one or two characters can't pass the length test of a
     * word of more than four characters */
    const u32 shortRow = context->probe->length <= 4 ? KeyRowPass : KeyRowFail;
    unsigned short rows[KeyBlock];
    u32 passing[KeyBlock];
    uint64_t wanted[KeyStateRoom][4]; /* third characters met in the block, by row */
    u32 touched[KeyStateRoom], touchedCount;
    u32 touchedIn[KeyStateRoom]; /* block (from + 1) that last touched each row */
    memset(touchedIn, 0, sizeof touchedIn);
    for (u32 from = 0; from < clex->segmentCount; from += KeyBlock) {
        u32 to = clex->segmentCount - from > KeyBlock ? from + KeyBlock : clex->segmentCount;
        u32 row = KeyRowFail, pair = ~0u;
        touchedCount = 0;
        for (u32 k = from; k < to; k++) {
            u32 value = keys[k];
            char key[4] = {(char)(value >> 16), (char)(value >> 8), (char)value, 0};
            if (key[2] == 0) {
                rows[k - from] = (unsigned short)shortRow;
                pair = ~0u;
                continue;
            }
            if (value >> 8 != pair) {
                pair = value >> 8;
                row = keyRow(keyTest, key, keyTestPair(keyTest, key));
                if (row < KeyStateRoom && touchedIn[row] != from + 1) {
                    touchedIn[row] = from + 1;
                    touched[touchedCount++] = row;
                    memset(wanted[row], 0, sizeof wanted[row]);
                }
            }
            if (row == KeyRowEach) {
                rows[k - from] = (unsigned short)(keyPasses(keyTest, key) ? KeyRowPass : KeyRowFail);
                continue;
            }
            rows[k - from] = (unsigned short)row;
            if (row < KeyStateRoom)
                wanted[row][(value & 0xFF) >> 6] |= 1ull << (value & 63);
        }
        /* the outcomes still to work out */
        for (u32 t = 0; t < touchedCount; t++) {
            u32 at = touched[t];
            for (u32 part = 0; part < 4; part++) {
                uint64_t open = wanted[at][part] & ~memo->known[at][part];
                while (open) {
                    unsigned third = part * 64 + (unsigned)__builtin_ctzll(open);
                    open &= open - 1;
                    /* any key of the state serves: the pair's characters
                     * the rest of the run reads are in the state */
                    u32 packed = memo->state[at] - 1;
                    TypoState run = {(i16)(packed & 3), (i16)((packed >> 2) & 3),
                                     (i32)(packed >> 12) - 1024};
                    char key[4] = {0, (char)memo->second[at], (char)third, 0};
                    typoAdvance(keyTest->wordKey, key, &run, keyTest->minPoints, WordSize);
                    i32 points = run.points - 40 * (3 - run.c) -
                                 40 * (keyTest->probe.length - run.w);
                    memo->known[at][part] |= 1ull << (third & 63);
                    memo->passes[at][part] |= points >= keyTest->minPoints ? 1ull << (third & 63) : 0;
                }
            }
        }
        u32 count = 0;
        for (u32 k = from; k < to; k++) {
            u32 third = keys[k] & 0xFF;
            passing[count] = k;
            count += (u32)(memo->passes[rows[k - from]][third >> 6] >> (third & 63)) & 1;
        }
        for (u32 q = 0; q < count; q++) {
            u32 k = passing[q], value = keys[k];
            if ((value & 0xFF) == 0) {
                char key[4] = {(char)(value >> 16), (char)(value >> 8), 0, 0};
                scoreCandidate(word, key, context);
                continue;
            }
            i16 rc = walkSegmentTypo(clex, k, context->probe, context->list, lowestFloor, false,
                                     seed);
            if (rc == 1) {
                CLexSegment *segment = clex->segments[k];
                rc = loadSeg(clex, segment);
                if (rc == 0)
                    CLex_ScanSegment(clex, segment, word, scoreCandidate, context);
            }
            if (rc < 0)
                return rc;
        }
    }
    return 0;
}

i16 walkCLex(i16 depth, const char *word, Measure measure, SuggestionList *list, CLex *clex)
{
    ScoreProbe probe;
    probeInit(&probe, measure, word);
    WalkContext context = {list, measure, &probe};
    KeyTest keyTest;
    keyTestInit(&keyTest, measure, word, depth);
    if (probe.kind == ProbeTypo) {
        i16 estimate = estimateFloor(clex, word, &probe, &keyTest, list);
        /* what the list will hold at least, less one: nothing at or below it counts */
        i16 lowestFloor = estimate > 0 ? (i16)(estimate - 1) : 0;
        TypoSeed seed;
        seed.pair = ~0u;
        return walkKeysTypo(clex, word, &keyTest, &context, lowestFloor, &seed);
    }

    /* the keys are read from their packed copy, which stays in the cache,
     * and a segment's record only when its key passes */
    char key[4] = {0, 0, 0, 0};
    for (u32 i = 0; i < clex->segmentCount; i++) {
        u32 value = clex->keyValues[i];
        key[0] = (char)(value >> 16);
        key[1] = (char)(value >> 8);
        key[2] = (char)value;
        if (key[2] == 0) {
            scoreCandidate(word, key, &context);
            continue;
        }
        if (!keyPasses(&keyTest, key))
            continue;
        CLexSegment *segment = clex->segments[i];
        i16 rc = loadSeg(clex, segment);
        if (rc < 0)
            return rc;
        if (!probeSegmentMayScore(&probe, key, listFloor(list)))
            continue;
        CLex_ScanSegment(clex, segment, word, scoreCandidate, &context);
    }
    return 0;
}
