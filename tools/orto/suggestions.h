/*
 * suggestions.h -- ranked suggestions for one word.
 */
#ifndef ORTO_SUGGESTIONS_H
#define ORTO_SUGGESTIONS_H

#include <stdint.h>

#include <string>
#include <vector>

struct Suggestion {
    std::string word; /* engine text */
    int16_t score;    /* 0..100 */
};

/* How suggestions are ranked: by ORTO_SuggestRanked (the program's
 * default), or by ORTO_Suggest (--exact). */
enum SuggestOrder {
    SuggestRanked,
    SuggestExact,
};

/* The suggestions for `word` (engine text), best first, at most
 * `maxSuggestions`, each with the possessive ending of `word` put back.
 * Returns 0 or the engine's negative code. */
int16_t suggestWord(int16_t sid, const std::string &word, int depth, int maxSuggestions,
                    std::vector<Suggestion> *out, SuggestOrder order = SuggestRanked);

/* Keeps the head of the list that an editor should offer: scores of 50 or
 * more and at most 20 behind the best, as the Check Spelling dialog of
 * the library shows them. */
void keepLikelySuggestions(std::vector<Suggestion> *list);

#endif
