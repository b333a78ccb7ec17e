/*
 * segment_walk.cpp -- the typographical walk over the words of one
 * resident segment of a compressed lexicon, decoding and scoring in one
 * pass.
 *
 * The words of a segment are sorted and front-coded: each record says how
 * many characters the word shares with the one before.  Three facts of the
 * measure make the order pay:
 *   - the state of the measure's loop when the candidate cursor reaches
 *     position j depends on the candidate's characters 0..j alone, so a
 *     word takes up the run of the last word scored (the trail) where
 *     their shared beginning ends;
 *   - once a run is cut at position j (too few points left to get into the
 *     list, whatever follows), every word that shares characters 0..j with
 *     it is out as well: such records are stepped over;
 *   - a length difference of d costs at least 40 * d, so a record is
 *     weighed by its length, read from its codes, against the state it
 *     would start from before it is decoded at all.
 * Records that are stepped over are not decoded.  The word buffer then
 * lags behind; the records since the last one decoded are kept, and when a
 * later record builds on more than the buffer still holds, they are
 * decoded in order first.  This is why the walk has a decoder of its own
 * rather than the scanner's callback.
 *
 * The segment text is checked when it is loaded; the bounds are kept here
 * all the same, and a record that breaks them ends the segment.
 */
#include <limits.h>
#include <string.h>

#include "lexicon/clex.h"
#include "lexicon/clex_format.h"
#include "suggest/suggest.h"
#include "suggest/typo_step.h"

void suffixTableInit(SuffixTable *table, const CLex *clex)
{
    table->simpleCount = clex->simpleCount < 30 ? clex->simpleCount : 30;
    table->extendedCount = clex->extendedCount < 256 ? clex->extendedCount : 256;
    for (u16 i = 0; i < table->simpleCount + table->extendedCount; i++) {
        const char *s = i < table->simpleCount ? clex->simpleSuffixes[i]
                                               : clex->extendedSuffixes[i - table->simpleCount];
        size_t n = strlen(s);
        table->text[i] = s;
        table->length[i] = (unsigned char)(n < 255 ? n : 255);
        memset(table->padded[i], 0, SuffixPad);
        memcpy(table->padded[i], s, n < SuffixPad ? n : SuffixPad);
    }
}

/* The suffix that closes a record at code `code` (p behind it, moved past
 * an extended number), as an index into the table; -1 for the end code,
 * -2 when the record is damaged. */
static inline i32 suffixAt(const SuffixTable *table, unsigned char code, const unsigned char **p,
                           const unsigned char *end)
{
    if (code == SegCodeEnd)
        return -1;
    if (code == SegCodeExtended) {
        if (*p >= end)
            return -2;
        unsigned i = *(*p)++;
        return i < table->extendedCount ? (i32)(table->simpleCount + i) : -2;
    }
    unsigned i = code - SegCodeSimpleFirst;
    return i < table->simpleCount ? (i32)i : -2;
}

/* The first code byte below the literals at p (or `end`), eight bytes at a
 * time where eight are left: a byte below 0x20 is found by the borrow that
 * subtracting 0x20 leaves in its top bit (bytes of 0x80 and up are ruled
 * out by their own top bit); the lowest such byte is exact. */
static inline const unsigned char *pastLiterals(const unsigned char *p, const unsigned char *end)
{
    while (end - p >= 8) {
        uint64_t x;
        memcpy(&x, p, 8);
        uint64_t codes = (x - 0x2020202020202020ull) & ~x & 0x8080808080808080ull;
        if (codes) {
            if (__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__)
                return p + (__builtin_ctzll(codes) >> 3);
            break; /* elsewhere, byte by byte below */
        }
        p += 8;
    }
    while (p < end && *p >= SegCodeLiteralFirst)
        p++;
    return p;
}

/* Writes the record at `rec` (its shared count) onto `word`, whose first
 * characters are the word before; false when the record is damaged. */
static bool decodeRecord(const SuffixTable *table, const unsigned char *rec,
                         const unsigned char *end, char *word, i32 *length)
{
    i32 q = SegKeySize + *rec++;
    if (q > *length)
        return false;
    while (rec < end && *rec >= SegCodeLiteralFirst) {
        if (q >= WordSize - 1)
            return false;
        word[q++] = (char)*rec++;
    }
    if (rec >= end)
        return false;
    unsigned char code = *rec++;
    i32 s = suffixAt(table, code, &rec, end);
    if (s == -2 || (s >= 0 && q + table->length[s] > WordSize - 1))
        return false;
    if (s >= 0) {
        if (table->length[s] <= SuffixPad)
            memcpy(word + q, table->padded[s], SuffixPad); /* the buffer has room behind */
        else
            memcpy(word + q, table->text[s], table->length[s]);
        q += table->length[s];
    }
    word[q] = 0;
    *length = q;
    return true;
}

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

/* Records not decoded since the buffer's word, at most this many; more
 * are decoded at once. */
constexpr int PendingRoom = 64;

void walkSegmentTypo(const SuffixTable *suffixes, const CLexSegment *segment,
                     const ScoreProbe *probe, SuggestionList *list, i16 lowestFloor)
{
    if (!segment->text || !segment->key[2])
        return;
    const unsigned char *p = segment->text;
    const unsigned char *end = p + segment->length;
    char word[WordSize + SuffixPad]; /* room for a padded suffix behind the word */
    memcpy(word, segment->key, SegKeySize);
    word[SegKeySize] = 0;
    i32 length = SegKeySize; /* of the word in the buffer */
    i32 valid = SegKeySize;  /* characters of the buffer good for the latest record */
    const unsigned char *pending[PendingRoom]; /* records since the buffer's word */
    int pendingCount = 0;

    const unsigned char *checked = (const unsigned char *)probe->word;
    i32 wordLength = probe->length;
    i32 full = typoFullPoints(wordLength);
    /* The trail starts as the run on the key, which every word of the
     * segment shares: its states up to candidate position 2 hold for all. */
    TypoTrail trail;
    seedTrail(&trail, checked, segment->key, full);
    i32 common = SegKeySize; /* characters the latest record shares with the trail's word */
    i32 sealed = INT32_MAX; /* a word sharing this many with the trail's word is out */

    i16 floor = -1;
    i32 minPoints = 0, shortest = 0, longest = 0;

    while (p < end) {
        const unsigned char *record = p;
        i32 shared = SegKeySize + *p++;
        const unsigned char *literals = p;
        p = pastLiterals(p, end);
        if (p >= end)
            return;
        i32 candLength = shared + (i32)(p - literals);
        i32 s = suffixAt(suffixes, *p++, &p, end);
        if (s == -2)
            return;
        if (s >= 0)
            candLength += suffixes->length[s];
        if (candLength > WordSize - 1)
            return;
        if (shared < common)
            common = shared;

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
        /* the tests in one go, with the length weighed against the state
         * the run would start from */
        i32 reach = common < trail.length ? common : trail.length; /* 0 before any run */
        i32 j = trail.resumeFrom[reach > 0 ? reach - 1 : 0];
        i32 d = (wordLength - trail.wordAt[j]) - (candLength - j);
        bool skip = (common >= sealed) | (candLength < shortest) | (candLength > longest) |
                    (trail.pointsAt[j] - 40 * (d < 0 ? -d : d) < minPoints);
        if (skip) {
            pending[pendingCount++] = record;
            if (shared < valid)
                valid = shared;
            if (pendingCount == PendingRoom) {
                for (int i = 0; i < pendingCount; i++)
                    if (!decodeRecord(suffixes, pending[i], end, word, &length))
                        return;
                pendingCount = 0;
                valid = length;
            }
            continue;
        }

        /* this one is scored: decode it, on top of the records it builds on
         * whose characters last until it (a record whose new characters a
         * later one overwrites, down to its own beginning, is left out) */
        if (shared > valid) {
            bool needed[PendingRoom];
            i32 need = shared; /* characters still to come from the records before */
            for (int i = pendingCount - 1; i >= 0; i--) {
                i32 from = SegKeySize + *pending[i];
                needed[i] = from < need;
                if (from < need)
                    need = from;
            }
            for (int i = 0; i < pendingCount; i++)
                if (needed[i] && !decodeRecord(suffixes, pending[i], end, word, &length))
                    return;
        }
        pendingCount = 0;
        if (!decodeRecord(suffixes, record, end, word, &length))
            return;
        valid = length;

        i32 cutAt;
        i32 points = runTrail(checked, wordLength, (const unsigned char *)word, length, minPoints,
                              &trail, j, &cutAt);
        common = length;
        sealed = cutAt >= 0 ? cutAt + 1 : INT32_MAX;
        if (points >= minPoints)
            addSuggestion(word, (i16)(points * 100 / full), list);

        /* the records that follow and share the cut beginning, in a tight
         * loop: none of them is scored, and none is ever decoded, since a
         * later record that builds on their own characters shares that
         * beginning too */
        while (p < end && SegKeySize + *p >= sealed) {
            p = pastLiterals(p + 1, end);
            if (p >= end)
                return;
            if (*p++ == SegCodeExtended && p++ >= end)
                return;
        }
    }
}
