/*
 * score_probe.cpp -- the checked word prepared once per walk, and the
 * choice between a measure's bounded form and the measure itself.
 *
 * A walk scores thousands of candidates against one word; what depends on
 * the word alone (its length, its phonetic code, its byte counts) is worked
 * out here once.  The bounded forms give the measure's exact score whenever
 * that score could change the list, and 0 otherwise, so the list comes out
 * the same as with the plain measure.  A measure this file doesn't know is
 * called as it is, with no bound.
 */
#include "suggest/suggest.h"

#include <string.h>

#include "engine/charclass.h"
#include "engine/string_helpers.h"
#include "lexicon/clex.h"

void probeInit(ScoreProbe *probe, Measure measure, const char *word)
{
    probe->measure = measure;
    probe->word = word;
    probe->length = (i16)StrLen(word);
    probe->code[0] = 0;
    if (measure == typoScore) {
        probe->kind = ProbeTypo;
        probe->restLetters[probe->length] = 0;
        for (i32 i = probe->length - 1; i >= 0; i--)
            probe->restLetters[i] =
                probe->restLetters[i + 1] | CLex_LetterBit(baseLetter[(unsigned char)word[i]]);
    } else if (measure == phoneticScore) {
        probe->kind = ProbePhonetic;
        phoneticCode(word, probe->code);
        memset(probe->counts, 0, sizeof probe->counts);
        for (const unsigned char *p = (const unsigned char *)word; *p; p++)
            probe->counts[*p]++;
    } else {
        probe->kind = ProbePlain;
    }
}

i16 probeScore(const ScoreProbe *probe, const char *candidate, i16 floor)
{
    switch (probe->kind) {
    case ProbeTypo:
        return typoScoreAbove(probe->word, probe->length, candidate, floor);
    case ProbePhonetic:
        return phoneticScoreAbove(probe, candidate, floor);
    default:
        return probe->measure(probe->word, candidate);
    }
}

bool probeSegmentMayScore(const ScoreProbe *probe, const char *key, i16 floor)
{
    switch (probe->kind) {
    case ProbeTypo:
        return typoSegmentMayScore(probe->word, probe->length, key, floor);
    case ProbePhonetic:
        return phoneticPrefixMatches(probe, key);
    default:
        return true;
    }
}
