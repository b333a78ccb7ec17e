/*
 * report_rules.h -- what the program makes of a word the engine reports.
 */
#ifndef ORTO_REPORT_RULES_H
#define ORTO_REPORT_RULES_H

#include <stdint.h>
#include <stdio.h>

#include <string>
#include <vector>

#include "check_walk.h"

/* Adds to `words` what the user is to see of `w`, a word of `text` (engine
 * text) that session `sid` reported: `w` itself; nothing, or with
 * `allWords` the word as a clean one, when it is part of an address or
 * path, a host name, or passes by its parts; or its parts, the failing ones
 * only unless `allWords`.  Words reported for more than their spelling are
 * added as they are. */
void addReportedWord(int16_t sid, const std::string &text, const WalkWord &w, bool allWords,
                     std::vector<WalkWord> *words);

/* The rules above as `list`, the pipe and the other commands that check a
 * text tell them in their --help. */
void printReportRulesHelp(FILE *out);

#endif
