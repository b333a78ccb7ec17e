/*
 * clex_find.cpp -- whether a compressed lexicon holds a word.
 *
 * The word's first three characters pick a segment by binary search in the
 * sorted directory; loadSeg brings its text in and the scanner decodes it.
 * A case-blind lookup can't know the capitals of the stored key, so it
 * tries the eight case patterns of the key in a fixed order (all small
 * first, all capitals last) and matches each segment that exists
 * case-blind.  A word of one or two characters is its own key: the
 * directory alone answers, without reading the file.
 */
#include "engine/charclass.h"
#include "engine/string_helpers.h"
#include "lexicon/clex.h"
#include "orto.h"

/* Keys compare as three unsigned bytes. */
static inline u32 keyValue(const char *key)
{
    const unsigned char *k = (const unsigned char *)key;
    return ((u32)k[0] << 16) | ((u32)k[1] << 8) | (u32)k[2];
}

void CLex_IndexKeys(CLex *clex)
{
    u32 i = 0;
    for (u32 b = 0; b < 256; b++) {
        clex->firstSegment[b] = i;
        while (i < clex->segmentCount && (unsigned char)clex->segments[i]->key[0] == b)
            i++;
    }
    clex->firstSegment[256] = clex->segmentCount;
    for (u32 k = 0; k < clex->segmentCount; k++)
        clex->keyValues[k] = keyValue(clex->segments[k]->key);
}

/* A binary search in the keys that share the first byte: a small array of
 * numbers that stays in the first-level cache, where the records would
 * cost a pointer and three loads a step.  The halving has no branch on the
 * comparison (it becomes a conditional move), since the way a search goes
 * can't be predicted. */
CLexSegment *CLex_FindSegment(const CLex *clex, const char *key)
{
    u32 want = keyValue(key);
    u32 base = clex->firstSegment[want >> 16];
    u32 n = clex->firstSegment[(want >> 16) + 1] - base;
    if (n == 0)
        return nullptr;
    const u32 *keys = clex->keyValues;
    while (n > 1) {
        u32 half = n / 2;
        base = keys[base + half] <= want ? base + half : base;
        n -= half;
    }
    return keys[base] == want ? clex->segments[base] : nullptr;
}

/* The word's key: its first three characters, NUL-padded; and whether the
 * word is shorter than that.  A word of 63+ characters still has a key. */
static bool makeKey(const char *word, char *key)
{
    bool shortWord = false;
    for (int i = 0; i < SegKeySize; i++) {
        if (shortWord || !word[i]) {
            shortWord = true;
            key[i] = 0;
        } else {
            key[i] = word[i];
        }
    }
    return shortWord;
}

i16 CLex_Find(const char *word, int caseSensitive, CLex *clex)
{
    word = orEmpty(word);
    if (!word[0])
        return ORTO_NotFound; /* the empty word is in no lexicon, whatever its directory says */
    char key[SegKeySize];
    bool shortWord = makeKey(word, key);

    if (caseSensitive) {
        CLexSegment *segment = CLex_FindSegment(clex, key);
        if (!segment)
            return ORTO_NotFound;
        if (shortWord)
            return ORTO_Ignore;
        RETURN_IF_NEG(loadSeg(clex, segment));
        return CLex_ScanSegment(clex, segment, word, nullptr, nullptr) == 1 ? ORTO_Ignore
                                                                             : ORTO_NotFound;
    }

    for (int pattern = 0; pattern < 8; pattern++) {
        char cased[SegKeySize];
        for (int c = 0; c < SegKeySize; c++) {
            unsigned char k = (unsigned char)key[c];
            cased[c] = (char)((pattern & (1 << c)) ? ToUpper(k) : ToLower(k));
        }
        CLexSegment *segment = CLex_FindSegment(clex, cased);
        if (!segment)
            continue;
        if (shortWord)
            return ORTO_Ignore;
        RETURN_IF_NEG(loadSeg(clex, segment));
        if (CLex_ScanSegment(clex, segment, word, CLex_MatchNoCase, nullptr) == 1)
            return ORTO_Ignore;
    }
    return ORTO_NotFound;
}
