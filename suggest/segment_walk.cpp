/*
 * segment_walk.cpp -- the typographical walk over the words of one
 * resident segment of a compressed lexicon, from its decoded form
 * (lexicon/clex_words.cpp).
 *
 * The words of a segment are sorted, and each is stored with the number of
 * characters it shares with the one before.  Three facts of the measure
 * make the order pay:
 *   - the state of the measure's loop when the candidate cursor reaches
 *     position j depends on the candidate's characters 0..j alone, so a
 *     word takes up the run of the last word scored (the trail) where
 *     their shared beginning ends;
 *   - once a run is cut at position j (too few points left to get into the
 *     list, whatever follows), every word that shares characters 0..j with
 *     it is out as well: the run of such words is passed by scanning their
 *     shared counts;
 *   - every mismatch of the measure costs 40 points or more and leaves at
 *     most one character of each string without a partner of the same
 *     letter, and every pair it makes is of the same letter.  So from a
 *     state of the run on, a word that lacks m of the letters left in the
 *     checked word, and is d characters shorter than what is left of it,
 *     costs at least 40 * max(m, d), or 40 * (m - d) when it is longer:
 *     a word is weighed by its length and its letters against the state
 *     it would start from before any of its characters is read, and a
 *     segment by the letters and lengths of all its words.
 */
#include <limits.h>
#include <string.h>

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
 * looks at the fourth). */
static void seedTrail(TypoTrail *trail, const unsigned char *word, const char *key, i32 full)
{
    const unsigned char piece[4] = {(unsigned char)key[0], (unsigned char)key[1],
                                    (unsigned char)key[2], 0};
    i32 wi = 0, ci = 0, points = full;
    for (;;) {
        trail->wordAt[ci] = (i16)wi;
        trail->pointsAt[ci] = points;
        trail->resumeFrom[ci] = (i16)ci;
        trail->length = ci + 1;
        if (ci == 2 || !word[wi] || points < 1)
            return;
        const unsigned char *w = word + wi, *c = piece + ci;
        typoStep(w, c, points);
        i32 next = (i32)(c - piece) + 1;
        if (next == ci + 2) {
            trail->resumeFrom[ci + 1] = (i16)ci;
            trail->length = ci + 2;
        }
        if (next > 2)
            return; /* position 3 is no longer the key's alone */
        wi = (i32)(w - word) + 1;
        ci = next;
    }
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

/* The walk proper, inlined into the two builds below. */
__attribute__((always_inline)) static inline i16 walkWords(CLex *clex, u32 index,
                                                           const ScoreProbe *probe,
                                                           SuggestionList *list, i16 lowestFloor,
                                                           bool residentOnly)
{
    u32 keyValue = clex->keyValues[index];
    const char key[SegKeySize] = {(char)(keyValue >> 16), (char)(keyValue >> 8), (char)keyValue};
    const unsigned char *checked = (const unsigned char *)probe->word;
    i32 wordLength = probe->length;
    i32 full = typoFullPoints(wordLength);
    /* The trail starts as the run on the key, which every word of the
     * segment shares: its states up to candidate position 2 hold for all. */
    TypoTrail trail;
    seedTrail(&trail, checked, key, full);
    i32 common = SegKeySize; /* characters the current word shares with the trail's word */

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

    /* The segment as a whole, and then each group of words that share
     * their first four characters, from the last state that the key
     * decides: the letters and the lengths of all their words. */
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
    const CLexWordsGroup *groups = CLex_WordsGroups(words);
    const u32 *at = CLex_WordsAt(words);
    const u32 *letters = CLex_WordsLetters(words);
    const u32 *tailLetters = CLex_WordsTailLetters(words);
    const unsigned char *shared = CLex_WordsShared(words);
    const unsigned char *lengths = CLex_WordsLength(words);
    const char *chars = CLex_WordsChars(words);

    /* A group's fourth character is known, and with it the decision of the
     * run at the third, when the key leaves one to make: from the state
     * behind it, a fourth character that stands against another letter
     * costs 40 or more, whatever follows. */
    const bool thirdOpen = trail.length == 3 && trail.resumeFrom[2] == 2 && checked[trail.wordAt[2]];
    auto groupMayScore = [&](const CLexWordsGroup *group) __attribute__((always_inline)) {
        if (!thirdOpen || group->minLength <= SegKeySize)
            return true;
        /* the key's last character and the group's fourth: all that the
         * step at the third looks at */
        const unsigned char first[2] = {(unsigned char)key[2], group->fourth};
        const unsigned char *w = checked + trail.wordAt[2], *c = first;
        i32 points = trail.pointsAt[2];
        typoStep(w, c, points);
        i32 wi = (i32)(w - checked) + 1, ci = (i32)(c - first) + 3;
        i32 rest = wordLength - wi;
        i32 dLow = rest - (group->maxLength - ci), dHigh = rest - (group->minLength - ci);
        i32 d = dHigh < 0 ? dHigh : dLow > 0 ? dLow : 0;
        i32 events = eventsAtLeast(probe->restLetters[wi], group->tailLetters,
                                   ci == (i32)SegKeySize ? group->sureLetters : 0, d);
        if (ci == (i32)SegKeySize && checked[wi] && baseLetter[checked[wi]] != baseLetter[group->fourth])
            events = events > 1 ? events : 1;
        return points - 40 * events >= minPoints;
    };

    u32 i = 0;
    for (u32 g = 0; g < words->groupCount; g++) {
        const CLexWordsGroup *group = &groups[g];
        if (i >= group->end)
            continue; /* passed with a run of shared words */
        if (!mayScore(group->letters, group->sureLetters, group->minLength, group->maxLength) ||
            !groupMayScore(group)) {
            if (shared[i] < common)
                common = shared[i]; /* the rest of the group shares more */
            i = group->end;
            continue;
        }
        for (; i < group->end; i++) {
            if (shared[i] < common)
                common = shared[i];
            i32 candLength = lengths[i];
            /* the length and the letters, weighed first against the state
             * of the key (the same for all), then against the state the
             * run would start from; from a state at the fourth character,
             * the characters behind the key are all that is left */
            if ((candLength < shortest) | (candLength > longest) |
                (keyPoints - 40 * eventsAtLeast(keyRestLetters, letters[i], tailLetters[i],
                                                keyRest - (candLength - keyAt)) <
                 minPoints))
                continue;
            i32 reach = common < trail.length ? common : trail.length;
            i32 j = trail.resumeFrom[reach > 0 ? reach - 1 : 0];
            i32 wi = trail.wordAt[j];
            u32 all = j >= (i32)SegKeySize ? tailLetters[i] : letters[i];
            u32 sure = j <= (i32)SegKeySize ? tailLetters[i] : 0;
            if (trail.pointsAt[j] - 40 * eventsAtLeast(probe->restLetters[wi], all, sure,
                                                       (wordLength - wi) - (candLength - j)) <
                minPoints)
                continue;

            const char *candidate = chars + at[i];
            i32 cutAt;
            i32 points = runTrail(checked, wordLength, (const unsigned char *)candidate,
                                  candLength, minPoints, &trail, j, &cutAt);
            common = candLength;
            if (points >= minPoints) {
                addSuggestion(candidate, (i16)(points * 100 / full), list);
                if (listFloor(list) > floor) {
                    raiseFloor();
                    if (minPoints > full)
                        return 0; /* a full list of 100s takes nothing more */
                }
            }
            /* the words that follow and share the cut beginning are out;
             * the shared count 0 behind the last word ends the run */
            if (cutAt >= 0) {
                u32 sealed = (u32)cutAt + 1;
                while (shared[i + 1] >= sealed)
                    i++;
            }
        }
    }
    return 0;
}

/* On x86 built twice, and the build with the processor's own bit count
 * serves where it has one: without it, each count is a library call. */
#if defined(__x86_64__) || defined(__i386__)
__attribute__((target("popcnt"))) static i16 walkWordsCounting(CLex *clex, u32 index,
                                                               const ScoreProbe *probe,
                                                               SuggestionList *list,
                                                               i16 lowestFloor, bool residentOnly)
{
    return walkWords(clex, index, probe, list, lowestFloor, residentOnly);
}

static i16 walkWordsPlain(CLex *clex, u32 index, const ScoreProbe *probe, SuggestionList *list,
                          i16 lowestFloor, bool residentOnly)
{
    return walkWords(clex, index, probe, list, lowestFloor, residentOnly);
}

i16 walkSegmentTypo(CLex *clex, u32 index, const ScoreProbe *probe, SuggestionList *list,
                    i16 lowestFloor, bool residentOnly)
{
    static const bool counting = __builtin_cpu_supports("popcnt");
    return counting ? walkWordsCounting(clex, index, probe, list, lowestFloor, residentOnly)
                    : walkWordsPlain(clex, index, probe, list, lowestFloor, residentOnly);
}
#else
i16 walkSegmentTypo(CLex *clex, u32 index, const ScoreProbe *probe, SuggestionList *list,
                    i16 lowestFloor, bool residentOnly)
{
    return walkWords(clex, index, probe, list, lowestFloor, residentOnly);
}
#endif
