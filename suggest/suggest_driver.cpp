/*
 * suggest_driver.cpp -- ORTO_Suggest: one run from a word to a ranked list
 * of replacements.
 *
 * The run owns one allocation, the working list of the caller's capacity.
 * It asks the lexicons from slot 31 down to 0 (the highest slot wins ties,
 * since a newcomer of equal score goes behind), each by its typographical
 * and then its phonetic walk as the options say, and at the end the word
 * cut in two, whose halves must both be words.  The write-out carries the
 * case of the caller's word over to each candidate and drops a candidate
 * that has become equal to the one before it.
 */
#include <stdlib.h>
#include <string.h>

#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "engine/word_check.h"
#include "lexicon/lexicon.h"
#include "orto.h"
#include "suggest/suggest.h"

static i16 suggestFromLexWith(Session *session, Lexicon *lexicon, const char *word, i16 depth,
                              SuggestionList *list, Measure typo, Measure phonetic)
{
    bool byTypo = session->options & ORTO_TypographicalSuggestions;
    bool byPhonetic = session->options & ORTO_PhoneticSuggestions;
    if (lexicon->format == LexCompressed) {
        if (!lexicon->clex)
            return 0;
        if (byTypo)
            RETURN_IF_NEG(walkCLex(depth, word, typo, list, lexicon->clex));
        if (byPhonetic)
            RETURN_IF_NEG(walkCLex(depth, word, phonetic, list, lexicon->clex));
    } else if (lexicon->format == LexText) {
        if (byTypo)
            walkTLex(&lexicon->tlex, word, typo, list);
        if (byPhonetic)
            walkTLex(&lexicon->tlex, word, phonetic, list);
    }
    return 0;
}

i16 suggestFromLex(Session *session, Lexicon *lexicon, const char *word, i16 depth,
                   SuggestionList *list)
{
    return suggestFromLexWith(session, lexicon, word, depth, list, typoScore, phoneticScore);
}

static bool halfIsWord(Session *session, const char *half)
{
    char scratch[WordSize];
    return !(CheckWordMask(session, ORTO_ReportSpelling, half, scratch, WordSize) &
             ORTO_MisspelledWord);
}

/* The word cut in two at each place, shortest left half first.  The score
 * is known before the halves are looked up, so a candidate that the list
 * would refuse costs no lookup. */
static void addSplitWords(Session *session, const char *word, SuggestionList *list, Measure typo)
{
    char halves[WordSize + 1]; /* left half, NUL, right half, NUL */
    u16 length = StrLen(word);
    if (length > WordSize - 1)
        length = WordSize - 1;
    if (length < 2)
        return;
    halves[0] = word[0];
    halves[1] = 0;
    memcpy(halves + 2, word + 1, length - 1);
    halves[length + 1] = 0;
    char candidate[WordSize + 1]; /* 63 characters and a blank */
    for (u16 cut = 1; halves[cut + 1]; cut++) {
        const char *left = halves, *right = halves + cut + 1;
        memcpy(candidate, word, cut);
        candidate[cut] = ' ';
        memcpy(candidate + cut + 1, right, length - cut + 1);
        i16 score = typo(word, candidate);
        bool refused = list->count >= list->capacity && list->entries[list->count - 1].score >= score;
        if (!refused && halfIsWord(session, left) && halfIsWord(session, right))
            addSuggestion(candidate, score, list);
        /* one character over from the right half to the left */
        halves[cut] = halves[cut + 1];
        halves[cut + 1] = 0;
    }
}

i16 gatherSuggestionsWith(Session *session, const char *word, i16 depth, SuggestionList *list,
                          Measure typo, Measure phonetic)
{
    for (int slot = MaxLexicons - 1; slot >= 0; slot--) {
        Lexicon *lexicon = session->lexSlots[slot];
        if (lexicon)
            RETURN_IF_NEG(suggestFromLexWith(session, lexicon, word, depth, list, typo, phonetic));
    }
    if (session->options & ORTO_SuggestSplitWords)
        addSplitWords(session, word, list, typo);
    return 0;
}

i16 gatherSuggestions(Session *session, const char *word, i16 depth, SuggestionList *list)
{
    return gatherSuggestionsWith(session, word, depth, list, typoScore, phoneticScore);
}

i16 writeSuggestions(SuggestionList *list, const char *word, char *suggestions,
                     i32 suggestionsSize, int16_t *scores, const char *call)
{
    i32 written = 0;
    i16 n = 0;
    const char *before = nullptr;
    for (u16 i = 0; i < list->count; i++) {
        SuggestionEntry *entry = &list->entries[i];
        MatchCase(word, entry->word);
        bool repeat = before && StrCompare(entry->word, before) == 0;
        before = entry->word;
        if (repeat)
            continue;
        i32 length = StrLen(entry->word);
        i32 total = written + length + 1;
        if (total >= suggestionsSize) {
            DebugLog("%s: buffer too small", call);
            return ORTO_BufferTooSmall;
        }
        memcpy(suggestions + written, entry->word, (size_t)length + 1);
        scores[n++] = entry->score;
        written = total;
    }
    suggestions[written] = 0;
    return 0;
}

extern "C" int16_t ORTO_Suggest(int16_t sid, const char *word, int16_t depth, char *suggestions,
                                int32_t suggestionsSize, int16_t *scores, int16_t maxSuggestions)
{
    Session *session = sessionFromId(sid, "ORTO_Suggest");
    if (!session)
        return ORTO_BadSessionId;
    /* Sizes below 1 (or a missing buffer) leave no room for even the empty
     * list: refused before anything is written. */
    if (!suggestions || !scores || suggestionsSize < 1 || maxSuggestions < 1) {
        DebugLog("ORTO_Suggest: buffer too small");
        return ORTO_BufferTooSmall;
    }
    suggestions[0] = 0;
    word = orEmpty(word);
    char stripped[WordSize];
    if (StripPossessive(word, session->options, stripped) < 1)
        return 0;

    SuggestionList list;
    list.entries = (SuggestionEntry *)malloc((size_t)maxSuggestions * sizeof(SuggestionEntry));
    if (!list.entries) {
        DebugLog("ORTO_Suggest: out of memory");
        return ORTO_OutOfMemory;
    }
    list.count = 0;
    list.capacity = (u16)maxSuggestions;
    i16 rc = gatherSuggestions(session, stripped, depth, &list);
    if (rc >= 0)
        rc = writeSuggestions(&list, word, suggestions, suggestionsSize, scores, "ORTO_Suggest");
    free(list.entries);
    return rc;
}
