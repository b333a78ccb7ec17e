/*
 * typo_step.h -- one decision of the typographical measure, shared by the
 * measure itself (typo_score.cpp) and the walks that run it incrementally
 * (suggest_walk.cpp, segment_walk.cpp), so that each can have it inline.
 */
#ifndef ORTO_SUGGEST_TYPO_STEP_H
#define ORTO_SUGGEST_TYPO_STEP_H

#include "engine/charclass.h"
#include "engine/types.h"
#include "suggest/suggest.h"

/* The cost of the pair under the cursors, and the extra step that a letter
 * too many, too few or a swap gives.  Both cursors stand on a character;
 * either may be the last one before the NUL. */
__attribute__((always_inline)) inline void typoStep(const unsigned char *&w,
                                                    const unsigned char *&c, i32 &points)
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

/* Runs the loop on from `state` and stops at the first top of it where the
 * candidate cursor is at `candStop` or beyond, or when the word or the
 * candidate has ended, or the points are below `minPoints`.  The state at
 * a top of the loop depends on the candidate's characters up to the cursor
 * and no further. */
__attribute__((always_inline)) inline void typoAdvance(const char *word, const char *candidate, TypoState *state, i32 minPoints,
                 i32 candStop)
{
    const unsigned char *w = (const unsigned char *)word + state->w;
    const unsigned char *c = (const unsigned char *)candidate + state->c;
    i32 points = state->points;
    if (*c) {
        for (;;) {
            if (!*w || points < minPoints || c - (const unsigned char *)candidate >= candStop)
                break;
            typoStep(w, c, points);
            w++;
            c++;
            if (!*c)
                break;
        }
    }
    state->w = (i16)(w - (const unsigned char *)word);
    state->c = (i16)(c - (const unsigned char *)candidate);
    state->points = points;
}

#endif
