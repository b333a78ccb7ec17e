/*
 * suffix_model.h -- the exact size of a compressed lexicon as a function of
 * its suffix table, for orto_suffixpick.
 *
 * The compressor writes each word of three or more bytes as one shared-count
 * byte and then its "tail": the bytes after the key and after what it shares
 * with the word before.  From the left of the tail, the first position whose
 * rest is exactly a table suffix ends the word with that suffix's code (one
 * byte for a simple suffix, two for an extended one); a tail with no suffix
 * costs its bytes plus the end code.  Everything else in the file (headers,
 * directory, shared counts, the 00 00 of short words) is fixed by the lists,
 * so the file size is fixed bytes + tail costs + table bytes, and all three
 * are counted here exactly.
 *
 * Identical tails are kept once with a weight.  Each distinct tail lists its
 * endings of 1 to 8 bytes ("candidates"), longest first; each candidate lists
 * where it occurs.  A candidate's tier is 0 (not in the table), 1 (simple) or
 * 2 (extended); the cost of a tail is the position of its longest ending in
 * the table plus that ending's tier, else its length plus one.
 */
#ifndef ORTO_SUFFIX_MODEL_H
#define ORTO_SUFFIX_MODEL_H

#include <stdint.h>

#include <string>
#include <vector>

enum {
    SimpleMax = 30,     /* one-byte codes */
    ExtendedMax = 255,  /* two-byte codes */
    SuffixMax = 8,      /* the compressor cuts suffixes to this */
    WordMax = 63
};

struct TailEnding {
    uint32_t cand; /* candidate id of the ending */
    uint8_t pos;   /* where in the tail it starts */
};

struct Tail {
    uint32_t firstEnding; /* into SuffixModel::endings, longest ending first */
    uint8_t endingCount;
    uint8_t literal; /* cost with no suffix: length + end code */
    uint32_t weight; /* how many words have this tail */
};

struct CandidateUse {
    uint32_t tail;
    uint8_t pos;
};

struct Candidate {
    std::string text;
    uint32_t firstUse; /* into SuffixModel::uses */
    uint32_t useCount;
};

struct SuffixModel {
    std::vector<Tail> tails;
    std::vector<TailEnding> endings;
    std::vector<Candidate> cands;
    std::vector<CandidateUse> uses; /* grouped by candidate */
    uint64_t fixedBytes = 0;        /* file bytes that no table changes */
    uint32_t words = 0;
    uint32_t segments = 0;

    /* The table in force and what it costs. */
    std::vector<uint8_t> tier;  /* per candidate: 0, 1 simple, 2 extended */
    std::vector<uint8_t> cost;  /* per tail, under the table in force */
    uint32_t simpleCount = 0;
    uint32_t extendedCount = 0;
    uint32_t simpleBytes = 0;   /* sum of length + 1 over the simple members */
    uint32_t extendedBytes = 0; /* the same over the extended ones */
    uint64_t tailBytes = 0;     /* sum of weight * cost */
};

/* Reads sorted word lists (CR LF lines, '#' comments and empty lines
 * skipped) the way the compressor cuts them, as the lists of one lexicon.
 * False with a message in `error` for a word that the compressor would
 * refuse. */
bool SuffixModel_Read(SuffixModel &model, const std::vector<std::string> &lists, std::string &error);

/* Size of the table in the file: S + E, with the empty lines that keep the
 * extended suffixes at line 31 when there are fewer than 30 simple ones. */
uint32_t SuffixModel_TableBytes(uint32_t simpleCount, uint32_t simpleBytes, uint32_t extendedCount,
                                uint32_t extendedBytes);
/* The whole file size under the table in force. */
uint64_t SuffixModel_Total(const SuffixModel &model);

/* Puts candidate `c` into tier 1 or 2, or takes it out; costs follow. */
void SuffixModel_Add(SuffixModel &model, uint32_t c, uint8_t tier);
void SuffixModel_Remove(SuffixModel &model, uint32_t c);

/* For every candidate outside the table, what the tails would save if it
 * joined as simple (gain1) or extended (gain2). */
void SuffixModel_Gains(const SuffixModel &model, std::vector<int64_t> &gain1, std::vector<int64_t> &gain2);

/* Looks up a suffix among the candidates; -1 if no tail ends in it. */
int64_t SuffixModel_Find(const SuffixModel &model, const std::string &text);

/* Words of the lists whose tail ends in candidate `c` under the table in
 * force: how often it would be written. */
uint32_t SuffixModel_Uses(const SuffixModel &model, uint32_t c);

#endif
