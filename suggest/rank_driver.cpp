/*
 * rank_driver.cpp -- ORTO_SuggestRanked, the second way to rank
 * suggestions, and ORTO_SetLexFrequencies, which gives a lexicon the word
 * frequencies that ranking reads.
 *
 * One call keeps the best RankPoolSize candidates by cost in a pool on its
 * stack, from every lexicon (slot 31 first, so that the higher slot wins a
 * tie, as in ORTO_Suggest), walked a second time with one edit more when
 * the first walk found nothing that scores 80, and from the word split in
 * two, sorts them and writes them out as ORTO_Suggest does: the case of
 * the caller's word carried over, a candidate that then equals the one
 * before it left out.
 * Its one allocation is the caller's capacity of entries for that write,
 * freed before it returns.
 */
#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "engine/word_check.h"
#include "lexicon/lexicon.h"
#include "orto.h"
#include "suggest/rank.h"
#include "suggest/suggest.h"

/* What a candidate may cost at most: 60 hundredths of an edit for each
 * character of the word, a score of 40. */
static i32 costCap(const RankWord *word)
{
    return word->full * 60 / 100;
}

i32 rankPoolLimit(const RankPool *pool)
{
    if (pool->count < RankPoolSize)
        return pool->cap;
    i32 worst = pool->items[0].cost;
    for (u32 i = 1; i < pool->count; i++)
        worst = pool->items[i].cost > worst ? pool->items[i].cost : worst;
    return worst - 1;
}

void rankOffer(RankPool *pool, const char *text, i32 cost, i16 score)
{
    u32 order = pool->arrived++;
    for (u32 i = 0; i < pool->count; i++) {
        if (strncmp(pool->items[i].word, text, WordSize - 1) != 0)
            continue;
        if (cost < pool->items[i].cost) {
            pool->items[i].cost = cost;
            pool->items[i].score = score;
        }
        return;
    }
    u32 place = pool->count;
    if (place == RankPoolSize) {
        /* the worst goes, the latest of equals first */
        place = 0;
        for (u32 i = 1; i < pool->count; i++) {
            const RankCandidate &a = pool->items[i], &b = pool->items[place];
            if (a.cost > b.cost || (a.cost == b.cost && a.order > b.order))
                place = i;
        }
        if (pool->items[place].cost <= cost)
            return;
    } else {
        pool->count++;
    }
    RankCandidate *c = &pool->items[place];
    StrCopy(c->word, WordSize, text);
    c->cost = cost;
    c->order = order;
    c->score = score;
}

static bool halfIsWord(Session *session, const char *half)
{
    char scratch[WordSize];
    return !(CheckWordMask(session, ORTO_ReportSpelling, half, scratch, WordSize) &
             ORTO_MisspelledWord);
}

/* The word cut in two where both halves are words.  Run-together words
 * are seldom what a misspelling means, unless both halves are common: a
 * split costs more than a plain edit, and each half twice its rarity; a half of
 * one or two letters, which nearly any cut makes a word of, costs 80 more
 * unless it is one of the short words that run into others. */
static void offerSplits(Session *session, const RankWord *word,
                        const RankFrequencies *frequencies, RankPool *pool)
{
    static const char *const ShortWords[] = {"a", "I", "an", "as", "at", "be", "by", "do",
                                             "go", "he", "if", "in", "is", "it", "me", "my",
                                             "no", "of", "on", "or", "so", "to", "up", "us",
                                             "we"};
    char candidate[WordSize + 1];
    char halves[2][WordSize];
    for (i32 cut = 1; cut < word->length && word->length < WordSize - 1; cut++) {
        StrCopyN(halves[0], WordSize, word->text, (u16)cut);
        StrCopy(halves[1], WordSize, word->text + cut);
        i32 cost = 120;
        for (const char *half : halves) {
            cost += 2 * rankFrequencyCost(frequencies ? RankFreq_Class(frequencies, half) : -1);
            if (StrLen(half) > 2)
                continue;
            bool common = false;
            for (const char *s : ShortWords)
                common = common || StrCompareNoCase(s, half) == 0;
            cost += common ? 0 : 80;
        }
        if (cost > rankPoolLimit(pool))
            continue;
        if (!halfIsWord(session, halves[0]) || !halfIsWord(session, halves[1]))
            continue;
        memcpy(candidate, word->text, (size_t)cut);
        candidate[cut] = ' ';
        StrCopy(candidate + cut + 1, WordSize - cut - 1, word->text + cut);
        rankOffer(pool, candidate, cost, rankScore(word, cost, false));
    }
}

static i16 bestScore(const RankPool *pool)
{
    i16 best = 0;
    for (u32 i = 0; i < pool->count; i++)
        best = pool->items[i].score > best ? pool->items[i].score : best;
    return best;
}

/* The words of every lexicon within the word's plain edits; the
 * frequencies of the highest slot that has them are left in *frequencies,
 * for the halves of a split. */
static i16 gatherRanked(Session *session, const RankWord *word, RankPool *pool,
                        const RankFrequencies **frequencies)
{
    *frequencies = nullptr;
    for (int slot = MaxLexicons - 1; slot >= 0; slot--) {
        Lexicon *lexicon = session->lexSlots[slot];
        if (!lexicon)
            continue;
        if (!*frequencies)
            *frequencies = lexicon->frequencies;
        if (lexicon->format == LexCompressed && lexicon->clex)
            RETURN_IF_NEG(rankWalkCLex(word, lexicon->clex, lexicon->frequencies, pool));
        else if (lexicon->format == LexText)
            rankWalkTLex(word, &lexicon->tlex, pool);
    }
    return 0;
}

extern "C" int16_t ORTO_SuggestRanked(int16_t sid, const char *word, int16_t depth,
                                      char *suggestions, int32_t suggestionsSize,
                                      int16_t *scores, int16_t maxSuggestions)
{
    Session *session = sessionFromId(sid, "ORTO_SuggestRanked");
    if (!session)
        return ORTO_BadSessionId;
    if (!suggestions || !scores || suggestionsSize < 1 || maxSuggestions < 1) {
        DebugLog("ORTO_SuggestRanked: buffer too small");
        return ORTO_BufferTooSmall;
    }
    suggestions[0] = 0;
    word = orEmpty(word);
    char stripped[WordSize];
    if (StripPossessive(word, session->options, stripped) < 1)
        return 0;

    RankWord ranked;
    rankWordInit(&ranked, stripped, depth);
    RankPool pool;
    pool.count = 0;
    pool.arrived = 0;
    pool.cap = costCap(&ranked);
    const RankFrequencies *frequencies = nullptr;
    i16 rc = gatherRanked(session, &ranked, &pool, &frequencies);
    if (rc < 0)
        return rc;
    /* Where nothing scores 80 or more, the word may lie an edit further
     * from what was meant (appropropreately, becuz): a second walk with one
     * plain edit more, which the common case doesn't pay for. */
    if (depth >= 25 && ranked.length >= 4 && bestScore(&pool) < 80) {
        rankWordWiden(&ranked);
        if ((rc = gatherRanked(session, &ranked, &pool, &frequencies)) < 0)
            return rc;
    }
    offerSplits(session, &ranked, frequencies, &pool);
    std::sort(pool.items, pool.items + pool.count, [](const RankCandidate &a, const RankCandidate &b) {
        return a.cost != b.cost ? a.cost < b.cost : a.order < b.order;
    });

    SuggestionList list;
    list.entries = (SuggestionEntry *)malloc((size_t)maxSuggestions * sizeof(SuggestionEntry));
    if (!list.entries) {
        DebugLog("ORTO_SuggestRanked: out of memory");
        return ORTO_OutOfMemory;
    }
    list.capacity = (u16)maxSuggestions;
    list.count = 0;
    for (u32 i = 0; i < pool.count && list.count < list.capacity; i++) {
        SuggestionEntry *entry = &list.entries[list.count++];
        StrCopy(entry->word, WordSize, pool.items[i].word);
        entry->score = pool.items[i].score;
    }
    rc = writeSuggestions(&list, word, suggestions, suggestionsSize, scores, "ORTO_SuggestRanked");
    free(list.entries);
    return rc;
}

extern "C" int16_t ORTO_SetLexFrequencies(int16_t sid, int16_t lex, const char *fileName)
{
    Session *session = sessionFromId(sid, "ORTO_SetLexFrequencies");
    if (!session)
        return ORTO_BadSessionId;
    Lexicon *lexicon = lexFromId(session, lex, "ORTO_SetLexFrequencies");
    if (!lexicon)
        return ORTO_BadLexId;
    RankFrequencies *table = nullptr;
    if (fileName && *fileName) {
        i16 rc = RankFreq_Load(fileName, &table);
        if (rc < 0) {
            DebugLog("ORTO_SetLexFrequencies: can't read %s", fileName);
            return rc;
        }
    }
    free(lexicon->frequencies);
    lexicon->frequencies = table;
    return 0;
}
