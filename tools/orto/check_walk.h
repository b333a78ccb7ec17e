/*
 * check_walk.h -- a text through the engine as a block, word by word.
 */
#ifndef ORTO_CHECK_WALK_H
#define ORTO_CHECK_WALK_H

#include <stdint.h>

#include <string>
#include <vector>

#include "program.h"

struct WalkWord {
    uint32_t offset;         /* position in the engine text */
    std::string word;        /* the word as the engine read it, or a part of it (engine text) */
    int16_t mask;            /* result bits; 0 for a clean word */
    std::string replacement; /* what the check gave for a reported word */
};

/* Checks `text` (engine text) as one block of session `sid` and stores its
 * words in text order: the reported ones only, or with `allWords` every
 * word, the clean ones with mask 0.  Pieces of words that touch a foreign
 * letter are left out.  A reported word may pass or stand as its failing
 * parts by the rules of report_rules.h.  Returns 0 or the engine's negative
 * code. */
int16_t walkText(int16_t sid, std::string &text, bool allWords, std::vector<WalkWord> *words);

#endif
