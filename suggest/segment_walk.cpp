/*
 * segment_walk.cpp -- the typographical walk over the words of one
 * resident segment of a compressed lexicon, from its decoded form
 * (lexicon/clex_words.cpp).
 *
 * The words of a segment are sorted.  Three facts of the measure make the
 * order pay:
 *   - the state of the measure's loop when the candidate cursor reaches
 *     position j depends on the candidate's characters 0..j alone, so a
 *     word takes up the run of the last word scored (the trail) where
 *     their shared beginning ends;
 *   - once a run is cut at position j (too few points left to get into the
 *     list, whatever follows), every word that shares characters 0..j with
 *     it is out as well;
 *   - every mismatch of the measure costs 40 points or more and leaves at
 *     most one character of each string without a partner of the same
 *     letter, and every pair it makes is of the same letter.  So from a
 *     state of the run on, a word that lacks m of the letters left in the
 *     checked word, and is d characters shorter than what is left of it,
 *     costs at least 40 * max(m, d), or 40 * (m - d) when it is longer:
 *     a segment is weighed by the letters and lengths of all its words,
 *     then every word by its own against the state of the key, a block at
 *     a time and without a branch, and the few that pass against the state
 *     their run would start from, before any of their characters is read.
 */
#include <limits.h>
#include <string.h>

#include <atomic>
#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

#include "lexicon/clex.h"
#include "lexicon/clex_format.h"
#include "suggest/suggest.h"
#include "suggest/typo_step.h"

/* The states of the last run, by candidate position.  Position 0 always
 * holds the start (word cursor 0, all points). */
struct TypoTrail {
    i16 wordAt[WordSize];     /* word cursor when the candidate cursor stood there */
    i32 pointsAt[WordSize];   /* points at that moment */
    i16 resumeFrom[WordSize]; /* the last position at or before this one that the run stood on */
    i32 length;               /* positions the last run reached */
};

/*
 * The measure, in points, of a candidate whose characters 0..j are those of
 * the candidate of the trail's run, starting from the state recorded at j
 * and recording from there on.  A run that can no longer keep `minPoints`
 * gives a value below them; if that is known from the candidate's
 * characters 0..i alone, *cutAt is i, and every candidate that shares them
 * is out too.
 */
static inline i32 runTrail(const unsigned char *word, i32 wordLength, const unsigned char *cand,
                           i32 candLength, i32 minPoints, TypoTrail *trail, i32 j, i32 *cutAt)
{
    i32 wi = trail->wordAt[j], ci = j, points = trail->pointsAt[j];
    for (;;) {
        trail->wordAt[ci] = (i16)wi;
        trail->pointsAt[ci] = points;
        trail->resumeFrom[ci] = (i16)ci;
        trail->length = ci + 1;
        unsigned wc = word[wi];
        /* a pair of two letters costs 40 or more whatever follows, and so
         * does a candidate character left over: c[ci] is all that counts */
        if (points < minPoints ||
            (points - 40 < minPoints && (!wc || baseLetter[wc] != baseLetter[cand[ci]]))) {
            *cutAt = ci;
            return minPoints - 1;
        }
        /* what is left of the two differs in length by d: 40 * d more; as
         * this depends on the whole candidate, it rules out no other */
        i32 d = (wordLength - wi) - (candLength - ci);
        if (points - 40 * (d < 0 ? -d : d) < minPoints) {
            *cutAt = -1;
            return minPoints - 1;
        }
        if (!wc)
            break;
        const unsigned char *w = word + wi, *c = cand + ci;
        typoStep(w, c, points);
        i32 next = (i32)(c - cand) + 1;
        if (next == ci + 2) {
            trail->resumeFrom[ci + 1] = (i16)ci; /* stepped over */
            trail->length = ci + 2;
        }
        wi = (i32)(w - word) + 1;
        ci = next;
        if (!cand[ci])
            break;
    }
    *cutAt = -1;
    return points - 40 * (candLength - ci) - 40 * (wordLength - wi);
}

/* The states of the run on a segment key at candidate positions 0 to 2,
 * as far as the three characters decide them (the decision at position 2
 * looks at the fourth).  The decision at position 0 looks at the key's
 * first two characters alone, and keys come in order: what it gives is
 * kept in `seed` for the next key with the same two. */
static void seedTrail(TypoTrail *trail, const unsigned char *word, const char *key, i32 full,
                      TypoSeed *seed)
{
    const unsigned char piece[4] = {(unsigned char)key[0], (unsigned char)key[1],
                                    (unsigned char)key[2], 0};
    u32 pair = (u32)piece[0] << 8 | piece[1];
    if (seed->pair != pair) {
        seed->pair = pair;
        seed->wordAt[0] = 0;
        seed->pointsAt[0] = full;
        seed->resumeFrom[0] = 0;
        seed->length = 1;
        seed->open = word[0] && full >= 1;
        if (seed->open) {
            const unsigned char *w = word, *c = piece;
            i32 points = full;
            typoStep(w, c, points);
            i32 next = (i32)(c - piece) + 1;
            if (next == 2) {
                seed->wordAt[1] = 0;
                seed->pointsAt[1] = 0;
                seed->resumeFrom[1] = 0; /* stepped over */
            }
            seed->wordAt[next] = (i16)(w - word + 1);
            seed->pointsAt[next] = points;
            seed->resumeFrom[next] = (i16)next;
            seed->length = next + 1;
            seed->open = next == 1;
        }
    }
    for (i32 k = 0; k < seed->length; k++) {
        trail->wordAt[k] = seed->wordAt[k];
        trail->pointsAt[k] = seed->pointsAt[k];
        trail->resumeFrom[k] = seed->resumeFrom[k];
    }
    trail->length = seed->length;
    if (!seed->open)
        return;
    /* the decision at position 1, which looks at the key's third character */
    i32 wi = trail->wordAt[1], points = trail->pointsAt[1];
    if (!word[wi] || points < 1)
        return;
    const unsigned char *w = word + wi, *c = piece + 1;
    typoStep(w, c, points);
    i32 next = (i32)(c - piece) + 1;
    if (next == 3) {
        trail->resumeFrom[2] = 1; /* stepped over; position 3 is no longer the key's alone */
        trail->length = 3;
        return;
    }
    trail->wordAt[2] = (i16)(w - word + 1);
    trail->pointsAt[2] = points;
    trail->resumeFrom[2] = 2;
    trail->length = 3;
}

/*
 * Mismatches that a word must still pay for, at the least, from a state of
 * the run: `wordRest` holds the letters left in the checked word, `candAll`
 * at least the letters left in the candidate and `candSure` at most them,
 * and the checked word has `d` characters more left than the candidate.
 * Each letter of one that the other lacks is a character without partner
 * (one at least per such letter), and those of the candidate number those
 * of the word less d; the mismatches are at least as many as the larger.
 * Least at d = 0, it grows away from 0 on either side.
 */
static inline i32 eventsAtLeast(u32 wordRest, u32 candAll, u32 candSure, i32 d)
{
    i32 word = __builtin_popcount(wordRest & ~candAll);
    i32 cand = __builtin_popcount(candSure & ~wordRest) + d;
    word = word > cand ? word : cand;
    word = word > d ? word : d;
    return word + (d < 0 ? -d : 0);
}

/* Characters that the words a and b share at their start; each can be
 * read 16 bytes on from its NUL. */
static inline i32 commonLength(const char *a, const char *b)
{
#if defined(__x86_64__)
    const __m128i zero = _mm_setzero_si128();
    for (i32 k = 0;; k += 16) {
        __m128i x = _mm_loadu_si128((const __m128i *)(a + k));
        __m128i y = _mm_loadu_si128((const __m128i *)(b + k));
        u32 stop = ~(u32)_mm_movemask_epi8(_mm_cmpeq_epi8(x, y)) |
                   (u32)_mm_movemask_epi8(_mm_cmpeq_epi8(x, zero));
        if (stop & 0xFFFF)
            return k + __builtin_ctz(stop);
    }
#else
    i32 k = 0;
    while (a[k] && a[k] == b[k])
        k++;
    return k;
#endif
}

/* What each word of a segment is weighed against, from the state of the
 * run at the key: it passes when its length is in [shortest, longest] and
 * eventsAtLeast(rest, its letters, its letters behind the key, reach - its
 * length) is at most maxEvents. */
struct WordBound {
    i32 shortest, longest; /* lengths the floor lets in */
    i32 reach;             /* what the key's state has left of the word, plus the key's position */
    u32 rest;              /* the letters left in the checked word */
    i32 maxEvents;         /* mismatches the key's points can still pay for, -1 for none */
};

/* One bit for each of the n words (n at most 64) that passes `bound`. */
__attribute__((always_inline)) static inline uint64_t passMask(const WordBound *bound,
                                                          const unsigned char *lengths,
                                                          const u32 *letters,
                                                          const u32 *tailLetters, u32 n)
{
    uint64_t mask = 0;
    for (u32 k = 0; k < n; k++) {
        i32 length = lengths[k];
        bool pass = (length >= bound->shortest) & (length <= bound->longest) &
                    (eventsAtLeast(bound->rest, letters[k], tailLetters[k],
                                   bound->reach - length) <= bound->maxEvents);
        mask |= (uint64_t)pass << k;
    }
    return mask;
}

#if defined(__x86_64__) || defined(__i386__)
/* Bits set in each 32-bit lane: the counts of the two halves of each byte
 * from a table of 16, summed over the four bytes of the lane. */
__attribute__((target("avx2"), always_inline)) static inline __m256i lanePopcount(__m256i v)
{
    const __m256i table = _mm256_setr_epi8(0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4, 0, 1, 1,
                                           2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4);
    const __m256i low = _mm256_set1_epi8(0x0F);
    __m256i counts = _mm256_add_epi8(
        _mm256_shuffle_epi8(table, _mm256_and_si256(v, low)),
        _mm256_shuffle_epi8(table, _mm256_and_si256(_mm256_srli_epi16(v, 4), low)));
    return _mm256_madd_epi16(_mm256_maddubs_epi16(counts, _mm256_set1_epi8(1)),
                             _mm256_set1_epi16(1));
}

/* passMask, eight words at a time (a call of its own, since the walk that
 * calls it is built for other processors too).  The loads of the last
 * eight may run past the n words into the padding of the decoded
 * segment; the bits of those lanes are dropped. */
__attribute__((target("avx2"), noinline)) static uint64_t
passMaskWide(const WordBound *bound, const unsigned char *lengths, const u32 *letters,
             const u32 *tailLetters, u32 n)
{
    const __m256i zero = _mm256_setzero_si256();
    const __m256i rest = _mm256_set1_epi32((int)bound->rest);
    const __m256i reach = _mm256_set1_epi32(bound->reach);
    const __m256i belowShortest = _mm256_set1_epi32(bound->shortest - 1);
    const __m256i aboveLongest = _mm256_set1_epi32(bound->longest + 1);
    const __m256i tooMany = _mm256_set1_epi32(bound->maxEvents + 1);
    uint64_t mask = 0;
    for (u32 k = 0; k < n; k += 8) {
        __m256i length = _mm256_cvtepu8_epi32(_mm_loadl_epi64((const __m128i *)(lengths + k)));
        __m256i all = _mm256_loadu_si256((const __m256i *)(letters + k));
        __m256i sure = _mm256_loadu_si256((const __m256i *)(tailLetters + k));
        /* eventsAtLeast, lane by lane */
        __m256i d = _mm256_sub_epi32(reach, length);
        __m256i word = lanePopcount(_mm256_andnot_si256(all, rest));
        __m256i cand = _mm256_add_epi32(lanePopcount(_mm256_andnot_si256(rest, sure)), d);
        __m256i events = _mm256_max_epi32(_mm256_max_epi32(word, cand), d);
        events = _mm256_add_epi32(events, _mm256_max_epi32(_mm256_sub_epi32(zero, d), zero));
        __m256i pass = _mm256_and_si256(
            _mm256_and_si256(_mm256_cmpgt_epi32(length, belowShortest),
                             _mm256_cmpgt_epi32(aboveLongest, length)),
            _mm256_cmpgt_epi32(tooMany, events));
        mask |= (uint64_t)(u32)_mm256_movemask_ps(_mm256_castsi256_ps(pass)) << k;
    }
    return n < 64 ? mask & ((1ull << n) - 1) : mask;
}
#endif

/* The walk proper, inlined into the builds below; Wide ones weigh words
 * eight at a time. */
template <bool Wide>
__attribute__((always_inline)) static inline i16 walkWords(CLex *clex, u32 index,
                                                           const ScoreProbe *probe,
                                                           SuggestionList *list, i16 lowestFloor,
                                                           bool residentOnly,
                                                           TypoSeed *seed)
{
    u32 keyValue = clex->keyValues[index];
    const char key[SegKeySize] = {(char)(keyValue >> 16), (char)(keyValue >> 8), (char)keyValue};
    const unsigned char *checked = (const unsigned char *)probe->word;
    i32 wordLength = probe->length;
    i32 full = typoFullPoints(wordLength);
    /* The trail starts as the run on the key, which every word of the
     * segment shares: its states up to candidate position 2 hold for all. */
    TypoTrail trail;
    seedTrail(&trail, checked, key, full, seed);

    i16 floor = -1;
    i32 minPoints = 0, shortest = 0, longest = 0;
    auto raiseFloor = [&]() __attribute__((always_inline)) {
        floor = listFloor(list) > lowestFloor ? listFloor(list) : lowestFloor;
        minPoints = typoPointsToBeat(full, floor);
        i32 maxDiff = wordLength / 2;
        if ((full - minPoints) / 40 < maxDiff)
            maxDiff = (full - minPoints) / 40;
        shortest = wordLength - maxDiff;
        longest = wordLength + maxDiff;
    };
    raiseFloor();

    /* The segment as a whole, from the last state that the key decides:
     * the letters and the lengths of all its words. */
    const i32 keyAt = trail.resumeFrom[trail.length - 1];
    const i32 keyPoints = trail.pointsAt[keyAt];
    const u32 keyRestLetters = probe->restLetters[trail.wordAt[keyAt]];
    const i32 keyRest = wordLength - trail.wordAt[keyAt];
    auto mayScore = [&](u32 allLetters, u32 sureLetters, i32 minLength,
                        i32 maxLength) __attribute__((always_inline)) {
        i32 dLow = keyRest - (maxLength - keyAt), dHigh = keyRest - (minLength - keyAt);
        i32 d = dHigh < 0 ? dHigh : dLow > 0 ? dLow : 0;
        return keyPoints - 40 * eventsAtLeast(keyRestLetters, allLetters, sureLetters, d) >=
               minPoints;
    };
    /* a segment decoded before is weighed by its summary, and not even
     * loaded when it fails */
    const CLexSummary *summary = &clex->summaries[index];
    if (summary->maxLength &&
        !mayScore(summary->letters, 0, summary->minLength, summary->maxLength))
        return 0;
    CLexSegment *segment = clex->segments[index];
    if (residentOnly && !segment->text)
        return 0;
    if (!residentOnly) {
        i16 rc = loadSeg(clex, segment);
        if (rc < 0)
            return rc;
    }
    if (!segment->words) {
        CLex_BuildWords(clex, index);
        if (!segment->words)
            return 1;
        if (!mayScore(summary->letters, 0, summary->minLength, summary->maxLength))
            return 0;
    }
    const CLexWords *words = segment->words;
    const u32 *at = CLex_WordsAt(words);
    const u32 *letters = CLex_WordsLetters(words);
    const u32 *tailLetters = CLex_WordsTailLetters(words);
    const unsigned char *lengths = CLex_WordsLength(words);
    const char *chars = CLex_WordsChars(words);

    /* Every word is weighed first by its length and letters against the
     * state of the key, 64 at a time and without a branch; only the few
     * that pass are looked at one by one. */
    WordBound bound;
    auto setBound = [&]() __attribute__((always_inline)) {
        bound.shortest = shortest;
        bound.longest = longest;
        bound.reach = keyRest + keyAt;
        bound.rest = keyRestLetters;
        bound.maxEvents = keyPoints >= minPoints ? (keyPoints - minPoints) / 40 : -1;
    };
    setBound();
    /* The word of the trail's run, at first the key; both it and the
     * words of the segment may be read 32 bytes on from their start. */
    char keyWord[32] = {key[0], key[1], key[2]};
    const char *trailWord = keyWord;
    i32 trailLength = !key[0] ? 0 : !key[1] ? 1 : !key[2] ? 2 : 3;
    i32 sealed = WordSize; /* a cut run's beginning: words that share it are out */
    const u32 count = words->count;
    for (u32 base = 0; base < count; base += 64) {
        u32 n = count - base < 64 ? count - base : 64;
        uint64_t pass;
#if defined(__x86_64__) || defined(__i386__)
        if constexpr (Wide)
            pass = passMaskWide(&bound, lengths + base, letters + base, tailLetters + base, n);
        else
#endif
            pass = passMask(&bound, lengths + base, letters + base, tailLetters + base, n);
        while (pass) {
            u32 i = base + (u32)__builtin_ctzll(pass);
            pass &= pass - 1;
            const char *candidate = chars + at[i];
            i32 candLength = lengths[i];
            /* characters it shares with the trail's word */
            i32 common = commonLength(trailWord, candidate);
            common = common < candLength ? common : candLength;
            common = common < trailLength ? common : trailLength;
            if (common >= sealed)
                continue;
            if (candLength < shortest || candLength > longest)
                continue; /* the floor rose since the mask was made */
            /* the letters again, against the state the run would start
             * from; from a state at the fourth character, the characters
             * behind the key are all that is left */
            i32 reach = common < trail.length ? common : trail.length;
            i32 j = trail.resumeFrom[reach > 0 ? reach - 1 : 0];
            i32 wi = trail.wordAt[j];
            u32 all = j >= (i32)SegKeySize ? tailLetters[i] : letters[i];
            u32 sure = j <= (i32)SegKeySize ? tailLetters[i] : 0;
            if (trail.pointsAt[j] - 40 * eventsAtLeast(probe->restLetters[wi], all, sure,
                                                       (wordLength - wi) - (candLength - j)) <
                minPoints)
                continue;

            i32 cutAt;
            i32 points = runTrail(checked, wordLength, (const unsigned char *)candidate,
                                  candLength, minPoints, &trail, j, &cutAt);
            trailWord = candidate;
            trailLength = candLength;
            /* the words that follow and share the cut beginning are out */
            sealed = cutAt >= 0 ? cutAt + 1 : WordSize;
            if (points >= minPoints) {
                addSuggestion(candidate, (i16)(points * 100 / full), list);
                if (listFloor(list) > floor) {
                    raiseFloor();
                    if (minPoints > full)
                        return 0; /* a full list of 100s takes nothing more */
                    setBound();
                }
            }
        }
    }
    return 0;
}

/* On x86 built three times: with the vector instructions of AVX2, with
 * the processor's own bit count, and for any x86.  The best that the
 * processor has serves: without a bit count of its own, each count is a
 * library call. */
#if defined(__x86_64__) || defined(__i386__)
__attribute__((target("avx2,popcnt"))) static i16 walkWordsWide(CLex *clex, u32 index,
                                                                const ScoreProbe *probe,
                                                                SuggestionList *list,
                                                                i16 lowestFloor, bool residentOnly, TypoSeed *seed)
{
    return walkWords<true>(clex, index, probe, list, lowestFloor, residentOnly, seed);
}

__attribute__((target("popcnt"))) static i16 walkWordsCounting(CLex *clex, u32 index,
                                                               const ScoreProbe *probe,
                                                               SuggestionList *list,
                                                               i16 lowestFloor, bool residentOnly, TypoSeed *seed)
{
    return walkWords<false>(clex, index, probe, list, lowestFloor, residentOnly, seed);
}

static i16 walkWordsPlain(CLex *clex, u32 index, const ScoreProbe *probe, SuggestionList *list,
                          i16 lowestFloor, bool residentOnly, TypoSeed *seed)
{
    return walkWords<false>(clex, index, probe, list, lowestFloor, residentOnly, seed);
}

typedef i16 (*WalkWords)(CLex *, u32, const ScoreProbe *, SuggestionList *, i16, bool, TypoSeed *);

static WalkWords pickWalk()
{
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt"))
        return walkWordsWide;
    return __builtin_cpu_supports("popcnt") ? walkWordsCounting : walkWordsPlain;
}

/* The best build the processor has, chosen once: the first call, on
 * whichever thread, makes the choice and every other waits for it. */
static WalkWords bestWalk()
{
    static const WalkWords best = pickWalk();
    return best;
}

/* A build that a test asked for with segmentWalkBuild; null for the best.
 * Atomic, since walks on every thread read it. */
static std::atomic<WalkWords> askedWalk{nullptr};

bool segmentWalkBuild(int build)
{
    bool counting = __builtin_cpu_supports("popcnt");
    bool wide = counting && __builtin_cpu_supports("avx2");
    WalkWords asked = nullptr;
    switch (build) {
    case SegmentWalkBest: break;
    case SegmentWalkWide: asked = walkWordsWide; break;
    case SegmentWalkCounting: asked = walkWordsCounting; break;
    case SegmentWalkPlain: asked = walkWordsPlain; break;
    default: return false;
    }
    if ((asked == walkWordsWide && !wide) || (asked == walkWordsCounting && !counting))
        return false;
    askedWalk.store(asked, std::memory_order_relaxed);
    return true;
}

i16 walkSegmentTypo(CLex *clex, u32 index, const ScoreProbe *probe, SuggestionList *list,
                    i16 lowestFloor, bool residentOnly, TypoSeed *seed)
{
    WalkWords walk = askedWalk.load(std::memory_order_relaxed);
    if (!walk)
        walk = bestWalk();
    return walk(clex, index, probe, list, lowestFloor, residentOnly, seed);
}
#else
bool segmentWalkBuild(int build)
{
    return build == SegmentWalkBest || build == SegmentWalkPlain;
}

i16 walkSegmentTypo(CLex *clex, u32 index, const ScoreProbe *probe, SuggestionList *list,
                    i16 lowestFloor, bool residentOnly, TypoSeed *seed)
{
    return walkWords<false>(clex, index, probe, list, lowestFloor, residentOnly, seed);
}
#endif
