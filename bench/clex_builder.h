/*
 * clex_builder.h -- compressed lexicon files built byte by byte, for the
 * benchmarks of the reader: whole files from a word list, and the
 * pieces (sections, tables, directory, segment text) to assemble damaged
 * ones.  It encodes as the writer does: the shared count is the common
 * tail of two neighbours, and the first suffix that is the whole rest of a
 * word replaces it, simple table first.
 */
#ifndef ORTO_BENCH_CLEX_BUILDER_H
#define ORTO_BENCH_CLEX_BUILDER_H

#include <stdint.h>

#include <string>
#include <vector>

namespace clexb {

inline std::string be32(uint32_t v)
{
    std::string s(4, '\0');
    s[0] = (char)(v >> 24);
    s[1] = (char)(v >> 16);
    s[2] = (char)(v >> 8);
    s[3] = (char)v;
    return s;
}

inline std::string magic() { return be32(0x57000501); }

inline std::string section(uint32_t id, const std::string &payload)
{
    return be32(id) + be32((uint32_t)payload.size()) + payload;
}

inline std::string strings(const std::vector<std::string> &list)
{
    std::string s;
    for (const std::string &x : list)
        s += x + std::string(1, '\0');
    return s;
}

/* Payload of the suffix section. */
inline std::string tables(const std::vector<std::string> &simple,
                          const std::vector<std::string> &extended)
{
    std::string a = strings(simple), b = strings(extended);
    return be32((uint32_t)a.size()) + a + be32((uint32_t)b.size()) + b;
}

struct Seg {
    std::string key;  /* 3 bytes, NUL-padded for a word of 1 or 2 characters */
    std::string text; /* the segment's text */
};

inline std::string keyOf(const std::string &word)
{
    std::string k = word.substr(0, 3);
    k.resize(3, '\0');
    return k;
}

/* Text of one segment from its words, sorted, all with the same key. */
inline std::string encodeSegment(const std::vector<std::string> &words,
                                 const std::vector<std::string> &simple,
                                 const std::vector<std::string> &extended)
{
    std::string out, prev;
    for (const std::string &w : words) {
        if (w.size() < 3)
            return std::string(2, '\0');
        std::string tail = w.substr(3);
        size_t n = 0;
        while (n < tail.size() && n < prev.size() && tail[n] == prev[n])
            n++;
        out += (char)n;
        size_t p = n;
        bool done = false;
        while (p < tail.size() && !done) {
            std::string rest = tail.substr(p);
            for (size_t i = 0; i < simple.size() && !done; i++)
                if (rest == simple[i]) {
                    out += (char)(i + 2);
                    done = true;
                }
            for (size_t i = 0; i < extended.size() && !done; i++)
                if (rest == extended[i]) {
                    out += '\x01';
                    out += (char)i;
                    done = true;
                }
            if (!done)
                out += tail[p++];
        }
        if (!done)
            out += '\0';
        prev = tail;
    }
    return out;
}

/* Segments of a sorted word list (words of at most 63 bytes, no byte below
 * 0x20). */
inline std::vector<Seg> encodeWords(const std::vector<std::string> &words,
                                    const std::vector<std::string> &simple = {},
                                    const std::vector<std::string> &extended = {})
{
    std::vector<Seg> segs;
    size_t i = 0;
    while (i < words.size()) {
        std::string key = keyOf(words[i]);
        std::vector<std::string> group;
        while (i < words.size() && keyOf(words[i]) == key)
            group.push_back(words[i++]);
        segs.push_back({key, encodeSegment(group, simple, extended)});
    }
    return segs;
}

/* The text section's payload and the directory payload for segments laid
 * out in their order. */
inline std::string textPayload(const std::vector<Seg> &segs)
{
    std::string t;
    for (const Seg &s : segs)
        t += s.text;
    return t;
}

inline std::string directory(const std::vector<Seg> &segs)
{
    std::string d = be32((uint32_t)segs.size());
    uint32_t offset = 0;
    for (const Seg &s : segs) {
        d += s.key + be32(offset) + be32((uint32_t)s.text.size());
        offset += (uint32_t)s.text.size();
    }
    return d;
}

/* A whole file in the writer's order: sections 1, 2, 3, 5, 4. */
inline std::string file(uint16_t language, const std::vector<Seg> &segs,
                        const std::vector<std::string> &simple = {},
                        const std::vector<std::string> &extended = {})
{
    return magic() + section(1, be32(language)) + section(2, be32(1)) +
           section(3, tables(simple, extended)) + section(5, textPayload(segs)) +
           section(4, directory(segs));
}

inline std::string fileOfWords(uint16_t language, const std::vector<std::string> &words,
                               const std::vector<std::string> &simple = {},
                               const std::vector<std::string> &extended = {})
{
    return file(language, encodeWords(words, simple, extended), simple, extended);
}

} // namespace clexb

#endif
