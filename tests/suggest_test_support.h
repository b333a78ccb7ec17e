/* What the suggestion tests share: a session with text lexicons, a call of
 * ORTO_Suggest read back as "word score, word score", and a writer of small
 * compressed lexicon files (no suffixes, literal tails), so that the walks
 * can be tested on files whose every byte the test decides. */
#ifndef ORTO_SUGGEST_TEST_SUPPORT_H
#define ORTO_SUGGEST_TEST_SUPPORT_H

#include <stdint.h>

#include <algorithm>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "orto.h"
#include "suggest/suggest.h"

struct SessionHolder {
    int16_t sid;
    SessionHolder() : sid(ORTO_OpenSession()) {}
    ~SessionHolder() { ORTO_CloseSession(sid); }
    SessionHolder(const SessionHolder &) = delete;
    SessionHolder &operator=(const SessionHolder &) = delete;
    /* Adds words to the temporary text lexicon of id `lex`, creating the
     * lexicons up to it as needed. */
    void addWords(std::initializer_list<const char *> words, const char *action = "i", int lex = 0,
                  const char *other = nullptr)
    {
        while (ORTO_GetLexInfo(sid, (int16_t)lex, nullptr, nullptr, nullptr) != 0)
            ORTO_CreateLex(sid, nullptr, ORTO_LangAny);
        for (const char *w : words)
            ORTO_AddToLex(sid, (int16_t)lex, w, (uint16_t)action[0], other);
    }
};

struct SuggestResult {
    int16_t rc = 0;
    std::vector<std::string> words;
    std::vector<int> scores;
    std::string text() const
    {
        std::string s;
        for (size_t i = 0; i < words.size(); i++)
            s += (i ? ", " : "") + words[i] + " " + std::to_string(scores[i]);
        return s;
    }
};

inline SuggestResult suggest(int16_t sid, const char *word, int16_t depth = 50, int16_t max = 10)
{
    SuggestResult r;
    std::vector<char> buffer(4096, 'z');
    std::vector<int16_t> scores(max > 0 ? max : 1, -1);
    r.rc = ORTO_Suggest(sid, word, depth, buffer.data(), (int32_t)buffer.size(), scores.data(),
                        max);
    if (r.rc < 0)
        return r;
    for (const char *p = buffer.data(); *p; p += r.words.back().size() + 1) {
        r.words.push_back(p);
        r.scores.push_back(scores[r.words.size() - 1]);
    }
    return r;
}

inline std::string listText(const SuggestionList &list)
{
    std::string s;
    for (u16 i = 0; i < list.count; i++)
        s += (i ? ", " : "") + std::string(list.entries[i].word) + " " +
             std::to_string(list.entries[i].score);
    return s;
}

/* ---- a compressed lexicon writer ---- */

inline std::string bigEndian(uint32_t v)
{
    return std::string{(char)(v >> 24), (char)(v >> 16), (char)(v >> 8), (char)v};
}

/* Segment text for `words`, all of one key and sorted: shared count, the
 * rest of the tail as literals, 00. */
inline std::string segmentText(const std::vector<std::string> &words)
{
    std::string text, before;
    for (const std::string &w : words) {
        std::string tail = w.substr(3);
        size_t n = 0;
        while (n < tail.size() && n < before.size() && tail[n] == before[n])
            n++;
        text += (char)n;
        text += tail.substr(n);
        text += '\0';
        before = tail;
    }
    return text;
}

/* The file bytes of a lexicon of `words` (any order; sorted here by
 * unsigned bytes). */
inline std::string clexBytes(std::vector<std::string> words)
{
    std::sort(words.begin(), words.end());
    words.erase(std::unique(words.begin(), words.end()), words.end());
    std::map<std::string, std::vector<std::string>> groups; /* key (3 bytes) -> words */
    for (const std::string &w : words) {
        std::string key = w.size() >= 3 ? w.substr(0, 3) : w + std::string(3 - w.size(), '\0');
        groups[key].push_back(w);
    }
    std::string text, directory;
    uint32_t count = 0;
    for (auto &g : groups) {
        std::string body = g.first[2] ? segmentText(g.second) : std::string(2, '\0');
        directory += g.first + bigEndian((uint32_t)text.size()) + bigEndian((uint32_t)body.size());
        text += body;
        count++;
    }
    std::string file = bigEndian(0x57000501);
    file += bigEndian(1) + bigEndian(4) + bigEndian(0x616D);
    file += bigEndian(2) + bigEndian(4) + bigEndian(1);
    file += bigEndian(3) + bigEndian(8) + bigEndian(0) + bigEndian(0);
    file += bigEndian(5) + bigEndian((uint32_t)text.size()) + text;
    file += bigEndian(4) + bigEndian(11 * count + 4) + bigEndian(count) + directory;
    return file;
}

#endif
