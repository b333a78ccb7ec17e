/*
 * clex_fuzz_one.h -- one run of the compressed lexicon reader over arbitrary
 * bytes: the bytes become a file, which is opened as a lexicon (under two
 * budgets), looked up in both case modes, walked segment by segment, with
 * each segment also decoded as the suggestion walks read it, and asked for
 * suggestions.
 * Shared by the libFuzzer target and the corpus replay test, so that the
 * saved corpus runs in ordinary test builds too.
 *
 * Besides the sanitizers, it checks what must hold for any file that
 * opens: the resident text stays within the budget and matches budgetLeft,
 * every word that a clean, ascending segment yields is found again,
 * exactly and case-blind, and a segment's decoded form holds the words the
 * cursor gives.  A broken rule aborts.
 */
#ifndef ORTO_FUZZ_CLEX_FUZZ_ONE_H
#define ORTO_FUZZ_CLEX_FUZZ_ONE_H

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "engine/charclass.h"
#include "engine/session.h"
#include "lexicon/clex.h"
#include "lexicon/lexicon.h"
#include "orto.h"

namespace clexfuzz {

inline void require(bool ok, const char *what)
{
    if (!ok) {
        fprintf(stderr, "clex fuzz: %s\n", what);
        abort();
    }
}

inline void checkBudget(const CLex *clex)
{
    uint64_t resident = 0;
    for (u32 i = 0; i < clex->segmentCount; i++)
        if (clex->segments[i]->text)
            resident += clex->segments[i]->length;
    if (clex->budget != 0) {
        require(resident <= clex->budget, "resident text above the budget");
        require(resident == clex->budget - clex->budgetLeft, "budgetLeft out of step");
    }
}

inline void lookups(int16_t sid, int16_t lex, const CLex *clex)
{
    static const char *const fixed[] = {"a", "A", "of", "walk", "walking", "WALKS", "3rd",
                                        "", "zzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzz"};
    static const char *const tails[] = {"", "s", "k", "ing", "ed"};
    std::vector<std::string> words(fixed, fixed + sizeof fixed / sizeof *fixed);
    for (u32 i = 0; i < clex->segmentCount && i < 6; i++)
        for (const char *t : tails)
            words.push_back(std::string(clex->segments[i]->key, strnlen(clex->segments[i]->key, 3)) + t);
    for (int cs = 0; cs < 2; cs++) {
        ORTO_SetOption(sid, ORTO_CaseSensitive, (uint32_t)cs);
        for (const std::string &w : words) {
            char other[8];
            int16_t rc = ORTO_FindLexWord(sid, lex, w.c_str(), other, sizeof other);
            require(rc == 'i' || rc < 0, "lookup answer");
            checkBudget(clex);
        }
    }
}

/* The decoded form of a resident segment against the cursor's words. */
inline void checkDecoded(CLex *clex, u32 index, const std::vector<std::string> &words)
{
    CLexSegment *seg = clex->segments[index];
    if (!seg->text || seg->key[2] == 0)
        return;
    if (!seg->words)
        CLex_BuildWords(clex, index);
    const CLexSummary *summary = &clex->summaries[index];
    const CLexWords *d = seg->words;
    if (!d)
        return; /* out of memory: the walks decode the text themselves */
    require(d->count == words.size(), "decoded word count");
    const unsigned char *length = CLex_WordsLength(d);
    for (size_t k = 0; k < words.size(); k++) {
        require(words[k] == CLex_WordsChars(d) + CLex_WordsAt(d)[k], "decoded word");
        require(length[k] == words[k].size(), "decoded length");
        require(summary->minLength <= length[k] && length[k] <= summary->maxLength, "segment lengths");
        u32 all = 0, tail = 0;
        for (size_t c = 0; c < words[k].size(); c++) {
            u32 bit = CLex_LetterBit(baseLetter[(unsigned char)words[k][c]]);
            all |= bit;
            tail |= c >= SegKeySize ? bit : 0;
        }
        require(CLex_WordsLetters(d)[k] == all && CLex_WordsTailLetters(d)[k] == tail,
                "decoded letters");
        require((summary->letters & all) == all, "segment letters");
    }
}

/* Suggestions at every depth the walks know, typographical and phonetic:
 * any answer but a crash is fine. */
inline void suggestions(int16_t sid, const std::vector<std::string> &probes)
{
    char list[512];
    int16_t scores[8];
    ORTO_SetOption(sid, ORTO_PhoneticSuggestions, 1);
    for (const std::string &w : probes)
        for (int16_t depth : {0, 50, 100}) {
            int16_t rc = ORTO_Suggest(sid, w.c_str(), depth, list, sizeof list, scores, 8);
            require(rc <= 0, "suggestion result");
        }
}

/* The walk, and the found-again rule for ascending segments. */
inline void walk(int16_t sid, int16_t lex, CLex *clex)
{
    for (u32 i = 0; i < clex->segmentCount; i++) {
        CLexSegment *seg = clex->segments[i];
        if (seg->key[2] != 0 && loadSeg(clex, seg) < 0)
            continue;
        checkBudget(clex);
        std::vector<std::string> words;
        CLexCursor cur;
        CLex_StartSegment(&cur, clex, seg);
        while (const char *w = CLex_NextWord(&cur))
            words.push_back(w);
        require(!cur.damaged || seg->key[2] == 0 || !seg->text, "loaded segment doesn't decode");
        checkDecoded(clex, i, words);
        bool ascending = seg->key[2] != 0 && memchr(seg->key, 0, 3) == nullptr;
        for (size_t k = 1; k < words.size() && ascending; k++)
            ascending = strcmp(words[k - 1].c_str(), words[k].c_str()) < 0;
        if (!ascending || words.size() > 64)
            continue;
        for (const std::string &w : words) {
            ORTO_SetOption(sid, ORTO_CaseSensitive, 1);
            require(ORTO_FindLexWord(sid, lex, w.c_str(), nullptr, 0) == 'i',
                    "walked word not found exactly");
            ORTO_SetOption(sid, ORTO_CaseSensitive, 0);
            int16_t rc = ORTO_FindLexWord(sid, lex, w.c_str(), nullptr, 0);
            require(rc == 'i' || rc < 0, "walked word not found case-blind");
        }
    }
}

/* Runs the bytes through open, lookup and walk.  `path` is a scratch file
 * name that the run may overwrite. */
inline void runOne(const uint8_t *data, size_t size, const char *path)
{
    FILE *f = fopen(path, "wb");
    if (!f)
        return;
    if (size)
        fwrite(data, 1, size, f);
    fclose(f);

    int16_t sid = ORTO_OpenSession();
    if (sid < 0)
        return;
    static const uint32_t budgets[] = {0, 24};
    for (uint32_t budget : budgets) {
        int16_t lex = ORTO_OpenLex(sid, path, budget);
        if (lex < 0)
            continue;
        Lexicon *l = SessionTable[sid]->lexSlots[lex];
        if (l->format == LexCompressed) {
            require(l->clex != nullptr, "compressed lexicon without body");
            checkBudget(l->clex);
            lookups(sid, lex, l->clex);
            walk(sid, lex, l->clex);
            lookups(sid, lex, l->clex);
            std::vector<std::string> probes = {"walkng", "Wlak", "a"};
            if (l->clex->segmentCount > 0)
                probes.push_back(std::string(l->clex->segments[0]->key,
                                             strnlen(l->clex->segments[0]->key, 3)) + "x");
            suggestions(sid, probes);
            checkBudget(l->clex);
        }
        ORTO_CloseLex(sid, lex);
    }
    ORTO_CloseSession(sid);
}

} // namespace clexfuzz

#endif
