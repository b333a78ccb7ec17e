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

typedef const unsigned char *Cursor;

/* Steps 5 to 7: the cost of the pair under the cursors, and the extra
 * step that a letter too many, too few or a swap gives.  Both cursors
 * stand on a character; the word's may be the last one. */
__attribute__((always_inline)) static inline void typoStep(Cursor &w, Cursor &c, i32 &points)
{
    unsigned wc = *w, cc = *c;
    unsigned fw = baseLetter[wc], fc = baseLetter[cc];
    if (fw == fc) {
        if (IsLower((unsigned char)wc) != IsLower((unsigned char)cc))
            points -= 1;
        unsigned lw = IsUpper((unsigned char)wc) ? wc + 32 : wc;
        unsigned lc = IsUpper((unsigned char)cc) ? cc + 32 : cc;
        if (lw != lc)
            points -= 5;
        return;
    }
    unsigned w1 = w[1], c1 = c[1];
    unsigned fw1 = baseLetter[w1], fc1 = baseLetter[c1];
    if (fw1 == fc && fc1 == fw) {
        points -= 50;
        if (w1)
            w++;
        if (c1)
            c++;
    } else if (fw1 == fc) {
        points -= 40;
        if (w1)
            w++;
    } else if (fc1 == fw) {
        points -= 40;
        if (c1)
            c++;
    } else if (IsVowel((unsigned char)fw) == IsVowel((unsigned char)fc)) {
        points -= 50;
    } else {
        points -= 100;
    }
}

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
    /* the run while the candidate cursor is on the first two characters:
     * its lookahead reaches the third and no further */
    unsigned char piece[4] = {(unsigned char)key[0], (unsigned char)key[1],
                              (unsigned char)key[2], 0};
    i32 full = typoFullPoints(wordLength);
    Cursor w = (Cursor)word, c = piece;
    i32 points = runCursors<true>(w, c, full, 1, piece + 2);
    i32 cost = full - points;
    if (points >= 1 && c - piece <= 2) {
        if (!*w) {
            cost += 40 * (i32)(3 - (c - piece)); /* left over, at the least */
        } else if (c == piece + 2) {
            /* the third pair: the same letter costs what it costs, another
             * costs 40 or more whatever follows */
            i32 third = 0;
            Cursor w2 = w, c2 = c;
            if (baseLetter[*w] == baseLetter[*c])
                typoStep(w2, c2, third);
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

/* The whole measure, in points, for a candidate that shares its first
 * `common` characters with the candidate of the run recorded in `trail`.
 * The state at the top of the loop with the candidate cursor on position j
 * (word cursor and points) depends on the candidate's characters 0..j
 * alone, so the run takes up the last recorded state below `common` and
 * records from there on.  A run that can no longer keep `minPoints` is cut
 * and gives a value below them: *cutAt is then the candidate position of
 * the cut, and every candidate that shares characters 0..*cutAt with this
 * one is cut there too. */
i32 typoRunTrail(const char *word, i32 wordLength, const char *candidate, i32 candLength,
                 i32 full, i32 minPoints, TypoTrail *trail, i32 common, i32 *cutAt)
{
    *cutAt = -1;
    Cursor w = (Cursor)word, c = (Cursor)candidate;
    i32 points = full;
    i32 j = (common < trail->length ? common : trail->length) - 1;
    while (j >= 0 && trail->wordAt[j] < 0)
        j--;
    if (j >= 0) {
        w += trail->wordAt[j];
        c += j;
        points = trail->pointsAt[j];
    }
    trail->length = 0;
    while (*c) {
        i32 at = (i32)(c - (Cursor)candidate);
        trail->wordAt[at] = (i16)(w - (Cursor)word);
        trail->pointsAt[at] = points;
        trail->length = (i16)(at + 1);
        /* a pair of two letters costs 40 or more whatever follows, and so
         * does a candidate character left over: knowing c[at] is enough */
        if (points < minPoints ||
            (points - 40 < minPoints && (!*w || baseLetter[*w] != baseLetter[*c]))) {
            *cutAt = at;
            return minPoints - 1;
        }
        if (!*w)
            break;
        typoStep(w, c, points);
        w++;
        c++;
        if ((i32)(c - (Cursor)candidate) == at + 2)
            trail->wordAt[at + 1] = -1; /* stepped over */
    }
    points -= 40 * (candLength - (i32)(c - (Cursor)candidate));
    points -= 40 * (wordLength - (i32)(w - (Cursor)word));
    return points;
}
