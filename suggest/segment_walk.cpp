/*
 * segment_walk.cpp -- the typographical walk over the words of one
 * resident segment of a compressed lexicon, decoding and scoring in one
 * pass.
 *
 * The words of a segment are sorted and front-coded: each record says how
 * many characters the word shares with the one before.  Two facts of the
 * measure make the order pay (see typoRunTrail): a word that shares its
 * beginning with the last word scored takes up that word's run where the
 * shared part ends, and once a run has been cut at candidate position j
 * (too few points left to get into the list), every word that shares
 * characters 0..j with it is cut there as well.  Such words aren't even
 * decoded: their records are stepped over, which is why this walk has a
 * decoder of its own rather than the scanner's callback.
 *
 * Buffer rule: after a skipped record the word buffer is only good for
 * its first `valid` characters; a record that needs more shares the cut
 * beginning and is skipped too, so no word is ever built on stale text.
 * The segment text is checked when it is loaded; the bounds are kept here
 * all the same, and a record that breaks them ends the segment.
 */
#include <limits.h>
#include <string.h>

#include "lexicon/clex.h"
#include "lexicon/clex_format.h"
#include "suggest/suggest.h"
#include "suggest/typo_step.h"

/* Past the rest of a record whose shared count is read; null when the
 * record runs past the segment. */
static const unsigned char *skipRecord(const unsigned char *p, const unsigned char *end)
{
    while (p < end) {
        unsigned char code = *p++;
        if (code >= SegCodeLiteralFirst)
            continue;
        if (code == SegCodeExtended) {
            if (p >= end)
                return nullptr;
            p++;
        }
        return p;
    }
    return nullptr;
}

/* Decodes the codes of a record onto word[*length...]; null when the
 * record is damaged. */
static const unsigned char *decodeTail(const CLex *clex, const unsigned char *p,
                                       const unsigned char *end, char *word, i32 *length)
{
    i32 q = *length;
    for (;;) {
        if (p >= end)
            return nullptr;
        unsigned char code = *p++;
        if (code >= SegCodeLiteralFirst) {
            if (q >= WordSize - 1)
                return nullptr;
            word[q++] = (char)code;
            continue;
        }
        if (code != SegCodeEnd) {
            const char *suffix = nullptr;
            if (code == SegCodeExtended) {
                if (p >= end)
                    return nullptr;
                unsigned i = *p++;
                suffix = i < clex->extendedCount ? clex->extendedSuffixes[i] : nullptr;
            } else {
                unsigned i = code - SegCodeSimpleFirst;
                suffix = i < clex->simpleCount ? clex->simpleSuffixes[i] : nullptr;
            }
            if (!suffix)
                return nullptr;
            for (; *suffix; suffix++) {
                if (q >= WordSize - 1)
                    return nullptr;
                word[q++] = *suffix;
            }
        }
        word[q] = 0;
        *length = q;
        return p;
    }
}

/* The states of the last run, by candidate position. */
struct TypoTrail {
    i16 wordAt[WordSize];   /* word cursor when the candidate cursor stood there; -1: stepped over */
    i32 pointsAt[WordSize]; /* points at that moment */
    i32 length;             /* positions recorded by the last run */
};

/*
 * The measure, in points, of a candidate that shares its first `common`
 * characters with the candidate of the run recorded in `trail`.  The state
 * at the top of the measure's loop with the candidate cursor on position j
 * (word cursor and points) depends on the candidate's characters 0..j
 * alone, so the run takes up the last recorded state below `common` and
 * records from there on.  A run that can no longer keep `minPoints` gives
 * a value below them; if that is known from the candidate's characters
 * 0..j alone, *cutAt is j, and every candidate that shares them is out too.
 */
static inline i32 runTrail(const unsigned char *word, i32 wordLength, const unsigned char *cand,
                           i32 candLength, i32 full, i32 minPoints, TypoTrail *trail, i32 common,
                           i32 *cutAt)
{
    i32 j = (common < trail->length ? common : trail->length) - 1;
    while (j >= 0 && trail->wordAt[j] < 0)
        j--;
    i32 wi = 0, ci = 0, points = full;
    if (j >= 0) {
        wi = trail->wordAt[j];
        ci = j;
        points = trail->pointsAt[j];
    }
    for (;;) {
        trail->wordAt[ci] = (i16)wi;
        trail->pointsAt[ci] = points;
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
        if (next == ci + 2)
            trail->wordAt[ci + 1] = -1; /* stepped over */
        wi = (i32)(w - word) + 1;
        ci = next;
        if (!cand[ci])
            break;
    }
    *cutAt = -1;
    return points - 40 * (candLength - ci) - 40 * (wordLength - wi);
}

void walkSegmentTypo(const CLex *clex, const CLexSegment *segment, const ScoreProbe *probe,
                     SuggestionList *list, i16 lowestFloor)
{
    if (!segment->text || !segment->key[2])
        return;
    const unsigned char *p = segment->text;
    const unsigned char *end = p + segment->length;
    char word[WordSize];
    memcpy(word, segment->key, SegKeySize);
    i32 length = SegKeySize; /* of the word last decoded */
    i32 valid = SegKeySize;  /* characters of `word` good for the last record */

    TypoTrail trail;
    trail.length = 0;
    i32 common = 0;         /* characters the last record shares with the trail's word */
    i32 sealed = INT32_MAX; /* a word sharing this many with the trail's word is cut */

    i32 wordLength = probe->length;
    i32 full = typoFullPoints(wordLength);
    i16 floor = -1;
    i32 minPoints = 0, shortest = 0, longest = 0;

    while (p < end) {
        i32 shared = SegKeySize + *p++;
        if (shared < common)
            common = shared;
        if (common >= sealed || shared > valid) {
            p = skipRecord(p, end);
            if (!p)
                return;
            if (shared < valid)
                valid = shared;
            continue;
        }
        length = shared;
        p = decodeTail(clex, p, end, word, &length);
        if (!p)
            return;
        valid = length;

        i16 now = listFloor(list) > lowestFloor ? listFloor(list) : lowestFloor;
        if (now != floor) {
            floor = now;
            minPoints = typoPointsToBeat(full, floor);
            if (minPoints > full)
                return; /* a full list of 100s takes nothing more */
            i32 maxDiff = wordLength / 2;
            if ((full - minPoints) / 40 < maxDiff)
                maxDiff = (full - minPoints) / 40;
            shortest = wordLength - maxDiff;
            longest = wordLength + maxDiff;
        }
        if (length < shortest || length > longest)
            continue;

        i32 cutAt;
        i32 points = runTrail((const unsigned char *)probe->word, wordLength,
                              (const unsigned char *)word, length, full, minPoints, &trail, common,
                              &cutAt);
        common = length;
        sealed = cutAt >= 0 ? cutAt + 1 : INT32_MAX;
        if (points >= minPoints)
            addSuggestion(word, (i16)(points * 100 / full), list);
    }
}
