/*
 * typo_score.cpp -- the typographical measure: how much a candidate looks
 * like a mistyping of the checked word.
 *
 * Each character of the word is worth 100 points.  Two cursors walk the
 * word and the candidate side by side; a pair that stands for the same
 * letter costs at most a point for case and five for an accent, and a pair
 * that doesn't is read, by one character of lookahead, as a swap (50), a
 * letter too many or too few (40, with an extra step of one cursor), or a
 * substitution (50 within vowels or consonants, 100 across).  What is left
 * over at the end costs 40 a character.  The score is the share of points
 * kept, in whole percent.
 *
 * Points only ever go down, which gives the bounded form used by the walks:
 * to beat a score `floor`, a candidate must keep a known number of points,
 * so the walk stops as soon as it falls below that.  A length difference of
 * d costs at least 40 * d (every step that changes the difference between
 * what is left of the two strings costs 40 or more, and so does each
 * character left over), so many candidates are refused on their length
 * alone.  Words of one segment share their first three characters; the cost
 * that the walk runs up while its candidate cursor is on the first two of
 * them depends on those three alone, and bounds the whole segment.
 */
#include "suggest/suggest.h"

#include "engine/charclass.h"
#include "engine/string_helpers.h"
#include "suggest/typo_step.h"

typedef const unsigned char *Cursor;

/* Steps 4 to 8 of the walk.  Leaves the cursors where the walk left them
 * and returns the points kept.  Stops early when the points fall below
 * `minPoints`, and with `Prefix` when the candidate cursor reaches
 * `candStop`. */
template <bool Prefix>
static inline i32 runCursors(Cursor &w, Cursor &c, i32 points, i32 minPoints, Cursor candStop)
{
    if (!*c)
        return points;
    for (;;) {
        if (!*w || points < minPoints || (Prefix && c >= candStop))
            return points;
        typoStep(w, c, points);
        w++;
        c++;
        if (!*c)
            return points;
    }
}


static i32 remaining(Cursor p)
{
    i32 n = 0;
    while (p[n])
        n++;
    return n;
}

i16 typoScore(const char *word, const char *candidate)
{
    i32 wordLength = StrLen(word), candLength = StrLen(candidate);
    i32 full = typoFullPoints(wordLength);
    i32 diff = candLength > wordLength ? candLength - wordLength : wordLength - candLength;
    if (diff > wordLength / 2)
        return 0;
    Cursor w = (Cursor)word, c = (Cursor)candidate;
    i32 points = runCursors<false>(w, c, full, 1, nullptr);
    points -= 40 * remaining(c);
    points -= 40 * remaining(w);
    if (points < 1)
        points = 0;
    return (i16)(points * 100 / full);
}

i16 typoScoreAbove(const char *word, i16 wordLength, const char *candidate, i16 floor)
{
    i32 full = typoFullPoints(wordLength);
    i32 minPoints = typoPointsToBeat(full, floor);
    i32 slack = full - minPoints;
    if (slack < 0)
        return 0;
    i32 maxDiff = wordLength / 2;
    if (slack / 40 < maxDiff)
        maxDiff = slack / 40;
    /* the length, counted no further than it can be of use */
    i32 longest = wordLength + maxDiff;
    i32 candLength = 0;
    while (candidate[candLength] && candLength <= longest)
        candLength++;
    if (candLength > longest || candLength < wordLength - maxDiff)
        return 0;

    Cursor w = (Cursor)word, c = (Cursor)candidate;
    i32 points = runCursors<false>(w, c, full, minPoints, nullptr);
    if (points < minPoints)
        return 0;
    points -= 40 * (candLength - (i32)(c - (Cursor)candidate));
    points -= 40 * (wordLength - (i32)(w - (Cursor)word));
    if (points < minPoints)
        return 0;
    return (i16)(points * 100 / full);
}

i32 typoPrefixCost(const char *word, i16 wordLength, const char *key)
{
    if (!key[0] || !key[1] || !key[2])
        return 0;
    TypoState state = {0, 0, typoFullPoints(wordLength)};
    /* the run while the candidate cursor is on the first two characters:
     * its lookahead reaches the third and no further */
    char piece[4] = {key[0], key[1], key[2], 0};
    i32 full = typoFullPoints(wordLength);
    typoAdvance(word, piece, &state, 1, 2);
    i32 cost = full - state.points;
    if (state.points >= 1 && state.c <= 2) {
        Cursor w = (Cursor)word + state.w, c = (Cursor)piece + state.c;
        if (!*w) {
            cost += 40 * (3 - state.c); /* left over, at the least */
        } else if (state.c == 2) {
            /* the third pair: the same letter costs what it costs, another
             * costs 40 or more whatever follows */
            i32 third = 0;
            if (baseLetter[*w] == baseLetter[*c])
                typoStep(w, c, third);
            else
                third = -40;
            cost -= third;
        }
    }
    /* a word of the segment has three characters or more */
    i32 lengthCost = wordLength < 3 ? 40 * (3 - wordLength) : 0;
    return cost > lengthCost ? cost : lengthCost;
}

bool typoSegmentMayScore(const char *word, i16 wordLength, const char *key, i16 floor)
{
    if (!key[0] || !key[1] || !key[2])
        return true; /* no such key in a sound file: no bound is claimed */
    if (3 - wordLength > wordLength / 2)
        return false; /* every word of the segment fails the length test */
    i32 full = typoFullPoints(wordLength);
    return full - typoPrefixCost(word, wordLength, key) >= typoPointsToBeat(full, floor);
}
