/*
 * tlex_fuzz_one.h -- one run of the text lexicon reader over arbitrary
 * bytes: the bytes become a file, which is opened as a lexicon, listed
 * (ORTO_GetLex) into a buffer of the size ORTO_GetLexInfo tells and into
 * one too small, looked up entry by entry, and rewritten by an add.
 *
 * Rules: any file that isn't compressed opens as a text lexicon; the list
 * fills exactly the size told; every listed entry of a storable word is
 * found with its action; and the rewritten file, read by a second client,
 * lists the very entries that its writer holds (for a plain word list, the
 * same words).  Lines too long for the writer's limit are cut by it, so a
 * table with such an entry is spared that last rule.
 */
#ifndef ORTO_FUZZ_TLEX_FUZZ_ONE_H
#define ORTO_FUZZ_TLEX_FUZZ_ONE_H

#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

namespace tlexfuzz {

using fuzzsupport::require;

struct Entry {
    std::string word;
    std::string info; /* action letter and other word */
};

/* The table of a lexicon as ORTO_GetLex lists it. */
inline std::vector<Entry> listing(int16_t sid, int16_t lex)
{
    uint32_t size = 0;
    require(ORTO_GetLexInfo(sid, lex, &size, nullptr, nullptr) == 0, "lexicon info");
    std::vector<char> buffer(size + 1, '\x7f');
    int32_t count = ORTO_GetLex(sid, lex, buffer.data(), size);
    require(count >= 0, "listing into the size told");
    std::vector<Entry> entries;
    size_t at = 0;
    for (int32_t i = 0; i < count; i++) {
        std::string line(buffer.data() + at);
        at += line.size() + 1;
        size_t tab = line.find('\t');
        require(tab != std::string::npos, "listed entry without TAB");
        entries.push_back({line.substr(0, tab), line.substr(tab + 1)});
    }
    require(at + 1 == size && buffer[at] == 0 && buffer[size] == '\x7f', "listing size");
    if (size > 1) {
        int32_t cut = ORTO_GetLex(sid, lex, buffer.data(), size - 1);
        require(cut == ORTO_BufferTooSmall, "listing into a buffer too small");
    }
    return entries;
}

inline bool storable(const std::string &word)
{
    if (word.empty() || word.size() > 63 || word[0] == '#')
        return false;
    for (unsigned char c : word)
        if (c == '\t' || c == '\r' || c == '\n')
            return false;
    return true;
}

inline void runOne(const uint8_t *data, size_t size)
{
    std::string path = fuzzsupport::scratchDir() + "/lex.tlx";
    std::string bytes((const char *)data, size);
    fuzzsupport::writeBytes(path, bytes);
    if (bytes.compare(0, 4, std::string("\x57\x00\x05\x01", 4)) == 0)
        return; /* the compressed reader's: clex_fuzz */

    int16_t sid = ORTO_OpenSession();
    int16_t lex = ORTO_OpenLex(sid, path.c_str(), 0);
    require(lex >= 0, "a text file that doesn't open");
    uint16_t format = 9;
    ORTO_GetLexInfo(sid, lex, nullptr, &format, nullptr);
    require(format == ORTO_LexText, "a text file opened as another kind");
    std::vector<Entry> entries = listing(sid, lex);
    ORTO_SetOption(sid, ORTO_CaseSensitive, 1);
    for (size_t i = 0; i < entries.size() && i < 64; i++) {
        const Entry &e = entries[i];
        bool twice = (i > 0 && entries[i - 1].word == e.word) ||
                     (i + 1 < entries.size() && entries[i + 1].word == e.word);
        if (!storable(e.word) || e.info.empty() || twice)
            continue; /* of two equal words, the search may meet either */
        int16_t rc = ORTO_FindLexWord(sid, lex, e.word.c_str(), nullptr, 0);
        require(rc == (unsigned char)e.info[0], "listed word not found with its action");
    }

    // the rewrite, read back by another client
    bool plain = bytes.empty() || bytes[0] != '#';
    require(ORTO_AddToLex(sid, lex, "fuzzmarker", 'i', nullptr) == 0, "add to a lexicon file");
    std::vector<Entry> written = listing(sid, lex);
    int16_t other = ORTO_OpenSession();
    int16_t reread = ORTO_OpenLex(other, path.c_str(), 0);
    require(reread >= 0, "the rewritten file doesn't open");
    std::vector<Entry> read = listing(other, reread);
    // entries of one word come back in another order (a new entry goes in
    // front of its equal), so the tables are compared sorted
    bool cut = false;
    std::vector<std::string> before, after;
    for (const Entry &e : written) {
        cut = cut || e.word.size() + 1 + e.info.size() > 128;
        if (!plain || !e.word.empty())
            before.push_back(e.word + (plain ? "" : "\t" + e.info));
    }
    for (const Entry &e : read)
        after.push_back(e.word + (plain ? "" : "\t" + e.info));
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    require(cut || before == after, "the rewritten file reads back another table");
    require(ORTO_DelFromLex(sid, lex, "fuzzmarker") == 0, "delete from a lexicon file");
    ORTO_CloseSession(other);
    ORTO_CloseSession(sid);
}

} // namespace tlexfuzz

#endif
