/*
 * suggestions.cpp -- ranked suggestions for one word, as the commands show
 * them.
 *
 * ORTO_SuggestRanked (the default) or ORTO_Suggest (--exact) looks a word up without its possessive ending and hands the
 * candidates back without it.  An editor replaces the whole word it sent,
 * so the ending the user wrote ('s, s') goes back onto every candidate;
 * "dgo's" offers "dog's".
 */
#include <string.h>

#include "orto.h"
#include "suggestions.h"

static bool isApostropheByte(unsigned char c)
{
    return c == '\'' || c == 0x92;
}

/* The possessive ending that the engine cuts off `word`, or "". */
static std::string possessiveEnding(int16_t sid, const std::string &word)
{
    if (word.size() < 2 || ORTO_GetOption(sid, ORTO_StripPossessives) != 1)
        return std::string();
    unsigned char a = (unsigned char)word[word.size() - 2];
    unsigned char b = (unsigned char)word[word.size() - 1];
    if ((isApostropheByte(a) && (b == 's' || b == 'S')) || ((a == 's' || a == 'S') && isApostropheByte(b)))
        return word.substr(word.size() - 2);
    return std::string();
}

int16_t suggestWord(int16_t sid, const std::string &word, int depth, int maxSuggestions,
                    std::vector<Suggestion> *out, SuggestOrder order)
{
    out->clear();
    std::vector<char> buffer((size_t)maxSuggestions * 64 + 1);
    std::vector<int16_t> scores((size_t)maxSuggestions);
    int16_t rc = (order == SuggestExact ? ORTO_Suggest : ORTO_SuggestRanked)(sid, word.c_str(), (int16_t)depth, buffer.data(), (int32_t)buffer.size(),
                              scores.data(), (int16_t)maxSuggestions);
    if (rc < 0)
        return rc;
    std::string ending = possessiveEnding(sid, word);
    const char *p = buffer.data();
    for (size_t i = 0; *p && i < scores.size(); i++) {
        Suggestion s;
        s.word = p;
        s.score = scores[i];
        if (!ending.empty() && s.word.size() + ending.size() <= 63)
            s.word += ending;
        out->push_back(s);
        p += strlen(p) + 1;
    }
    return 0;
}

void keepLikelySuggestions(std::vector<Suggestion> *list)
{
    if (list->empty())
        return;
    int best = (*list)[0].score;
    size_t keep = 0;
    while (keep < list->size() && (*list)[keep].score >= 50 && (*list)[keep].score >= best - 20)
        keep++;
    list->resize(keep);
}
