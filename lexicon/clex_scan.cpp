/*
 * clex_scan.cpp -- decoding of segment text: the record decoder, its check
 * at load time, CLex_ScanSegment, and the word-by-word cursor.
 *
 * A record is a shared count n, then codes: the word is the key, the first
 * n tail characters of the word before, and what the codes add (literals
 * 20..FF, closed by 00 or by a suffix code 01 x / 02..1F).  Words exist
 * decoded only one at a time, in a 64-byte buffer on the stack.
 *
 * The exact search does not decode every word.  It keeps m, the number of
 * tail characters that the last word shares with the sought one while that
 * word sorts below it.  A record with n > m repeats the character where the
 * two parted, so it sorts below as well and is skipped without decoding;
 * later records only ever need the first m characters of the buffer, which
 * stay valid.  A record with n <= m is compared as it is decoded, from n on.
 * The same reasoning, with equality under case folding instead of order,
 * serves the case-blind match.  The passing over records without decoding
 * them is in clex_skip.h.
 *
 * Whatever the text holds, no write passes the word buffer and no read
 * passes the segment: every decoder checks its bounds, and loadSeg refuses
 * a segment that CLex_CheckSegmentText doesn't accept, so that damaged text
 * never gives a half-decoded word to a caller.
 */
#include <string.h>

#include "engine/charclass.h"
#include "engine/string_helpers.h"
#include "lexicon/clex.h"
#include "lexicon/clex_skip.h"

/* Characters of a tail: the word less its three key characters. */
constexpr u32 MaxTail = WordSize - 1 - SegKeySize;

/* The suffix of a suffix code at p (p behind the code byte), or null when
 * its number passes the table or the extended number is cut off. */
static inline const char *suffixOf(const CLex *clex, unsigned char code, const unsigned char **p,
                                   const unsigned char *end)
{
    if (code == SegCodeExtended) {
        if (*p >= end)
            return nullptr;
        unsigned i = *(*p)++;
        return i < clex->extendedCount ? clex->extendedSuffixes[i] : nullptr;
    }
    unsigned i = code - SegCodeSimpleFirst;
    return i < clex->simpleCount ? clex->simpleSuffixes[i] : nullptr;
}

/* Decodes the record at p (p < end) onto `tail`, whose first *tailLength
 * characters are the word before.  Result the next record, or null when the
 * record is damaged; `tail` is then not a word. */
static const unsigned char *decodeRecord(const CLex *clex, const unsigned char *p,
                                         const unsigned char *end, char *tail, u16 *tailLength)
{
    u32 q = *p++;
    if (q > *tailLength)
        return nullptr;
    for (;;) {
        if (p >= end)
            return nullptr;
        unsigned char c = *p++;
        if (c >= SegCodeLiteralFirst) {
            if (q >= MaxTail)
                return nullptr;
            tail[q++] = (char)c;
            continue;
        }
        if (c != SegCodeEnd) {
            const char *s = suffixOf(clex, c, &p, end);
            if (!s)
                return nullptr;
            for (; *s; s++) {
                if (q >= MaxTail)
                    return nullptr;
                tail[q++] = *s;
            }
        }
        tail[q] = 0;
        *tailLength = (u16)q;
        return p;
    }
}

int CLex_CheckSegmentText(const CLex *clex, const unsigned char *text, u32 length)
{
    char tail[MaxTail + 1];
    u16 tailLength = 0;
    const unsigned char *p = text;
    const unsigned char *end = text + length;
    while (p < end) {
        p = decodeRecord(clex, p, end, tail, &tailLength);
        if (!p)
            return 0;
    }
    return 1;
}

/* One character of a decoded word against the sought one, exactly.  State
 * of the comparison: `m` tail characters equal so far, `q` the position of
 * c.  Result -1 (the word is below the sought one from here on), 0 (still
 * equal), 1 (the word sorts after the sought one: stop). */
static inline int stepExact(unsigned char c, const unsigned char *target, u32 q, u32 *m)
{
    if (*m != q)
        return -1;
    unsigned char t = target[q];
    if (c == t) {
        (*m)++;
        return 0;
    }
    return c > t ? 1 : -1;
}

/* The exact search in a segment of three-character key, as described at the
 * top.  In a long segment, the search starts behind the last checkpoint
 * below the word (clex_index.cpp); it needs no end of its own, since the
 * next checkpoint sorts above the word and stops it like any other word.
 * An index that isn't over this very text (a copy of the record given
 * other text) is not used.  1 found, 0 not. */
static i16 scanExact(const CLex *clex, const CLexSegment *segment, const char *word)
{
    if (!word[0] || !word[1] || !word[2] || memcmp(word, segment->key, SegKeySize) != 0)
        return 0;
    const unsigned char *target = (const unsigned char *)word + SegKeySize;
    const unsigned char *p = segment->text;
    const unsigned char *end = p + segment->length;
    u32 m = 0;
    const CLexIndex *index = segment->index;
    if (index && index->text == segment->text &&
        CLex_IndexRecordAt(index)[index->count] == segment->length) {
        u32 from;
        int start = CLex_IndexStart(index, target, &from, &m);
        if (start != 0)
            return start > 0 ? 1 : 0;
        p += from;
    }
    while (p < end) {
#if defined(__SSE2__)
        p = skipRun<false>(clex, p, end, &m, target);
        if (p >= end)
            break;
#endif
        if (skipRepeated(&p, end, m))
            continue;
        u32 n = *p++;
        if (n > m) {
            p = skipRecord(p, end);
            if (!p)
                return 0;
            continue;
        }
        u32 q = n;
        m = n;
        int state = 0;
        for (;;) {
            if (p >= end)
                return 0;
            unsigned char c = *p++;
            if (c >= SegCodeLiteralFirst) {
                if (q >= MaxTail)
                    return 0;
                state = stepExact(c, target, q++, &m);
                if (state == 1)
                    return 0;
                if (state < 0) {
                    p = skipRecord(p, end);
                    if (!p)
                        return 0;
                    break;
                }
                continue;
            }
            if (c != SegCodeEnd) {
                const unsigned char *s = (const unsigned char *)suffixOf(clex, c, &p, end);
                if (!s)
                    return 0;
                for (; *s && state == 0; s++) {
                    if (q >= MaxTail)
                        return 0;
                    state = stepExact(*s, target, q++, &m);
                }
                if (state == 1)
                    return 0;
                if (state < 0)
                    break;
            }
            /* the word ends with all its characters equal to the sought one's */
            if (target[q] == 0)
                return 1;
            break; /* a proper prefix of the sought word sorts below it */
        }
    }
    return 0;
}

/* The case-blind equality search, the scan of CLex_MatchNoCase done without
 * decoding the words that can't be equal.  1 found, 0 not. */
static i16 scanNoCase(const CLex *clex, const CLexSegment *segment, const char *word)
{
    for (int i = 0; i < SegKeySize; i++)
        if (!word[i] || ToLower((unsigned char)word[i]) != ToLower((unsigned char)segment->key[i]))
            return 0;
    const unsigned char *target = (const unsigned char *)word + SegKeySize;
    const unsigned char *p = segment->text;
    const unsigned char *end = p + segment->length;
    u32 m = 0; /* tail characters of the last word equal to the sought one's */
    while (p < end) {
#if defined(__SSE2__)
        p = skipRun<true>(clex, p, end, &m, target);
        if (p >= end)
            break;
#endif
        if (skipRepeated(&p, end, m))
            continue;
        u32 n = *p++;
        if (n > m) {
            p = skipRecord(p, end);
            if (!p)
                return 0;
            continue;
        }
        u32 q = n;
        bool equal = true;
        for (;;) {
            if (p >= end)
                return 0;
            unsigned char c = *p++;
            if (c >= SegCodeLiteralFirst) {
                if (q >= MaxTail)
                    return 0;
                if (ToLower(c) != ToLower(target[q])) {
                    equal = false;
                    p = skipRecord(p, end);
                    if (!p)
                        return 0;
                    break;
                }
                q++;
                continue;
            }
            if (c != SegCodeEnd) {
                const unsigned char *s = (const unsigned char *)suffixOf(clex, c, &p, end);
                if (!s)
                    return 0;
                for (; *s && equal; s++) {
                    if (q >= MaxTail)
                        return 0;
                    if (ToLower(*s) == ToLower(target[q]))
                        q++;
                    else
                        equal = false;
                }
            }
            if (equal && target[q] == 0)
                return 1;
            break;
        }
        m = q;
    }
    return 0;
}

i32 CLex_MatchNoCase(const char *word, const char *decoded, void *context)
{
    (void)context;
    return StrCompareNoCase(word, decoded) == 0 ? 0 : 1;
}

i16 CLex_ScanSegment(const CLex *clex, const CLexSegment *segment, const char *word,
                     CLexScanCallback callback, void *context)
{
    if (!segment->text || segment->key[2] == 0)
        return 0;
    word = orEmpty(word);
    if (!callback)
        return scanExact(clex, segment, word);
    if (callback == CLex_MatchNoCase)
        return scanNoCase(clex, segment, word);
    char buffer[WordSize];
    memcpy(buffer, segment->key, SegKeySize);
    u16 tailLength = 0;
    const unsigned char *p = segment->text;
    const unsigned char *end = p + segment->length;
    while (p < end) {
        p = decodeRecord(clex, p, end, buffer + SegKeySize, &tailLength);
        if (!p)
            return 0;
        i32 answer = callback(word, buffer, context);
        if (answer == 0)
            return 1;
        if (answer < 0)
            return 0;
    }
    return 0;
}

void CLex_StartSegment(CLexCursor *cursor, const CLex *clex, const CLexSegment *segment)
{
    cursor->clex = clex;
    cursor->tailLength = 0;
    cursor->damaged = 0;
    memcpy(cursor->word, segment->key, SegKeySize);
    cursor->word[SegKeySize] = 0;
    if (segment->key[2] == 0) {
        /* the key is the word; its text is never decoded */
        static const unsigned char none = 0;
        cursor->p = &none;
        cursor->end = &none + 1;
        return;
    }
    cursor->p = segment->text;
    cursor->end = segment->text ? segment->text + segment->length : nullptr;
}

const char *CLex_NextWord(CLexCursor *cursor)
{
    if (!cursor->p || cursor->p >= cursor->end)
        return nullptr;
    if (cursor->word[2] == 0) {
        cursor->p = cursor->end;
        return cursor->word;
    }
    cursor->p = decodeRecord(cursor->clex, cursor->p, cursor->end, cursor->word + SegKeySize,
                             &cursor->tailLength);
    if (!cursor->p) {
        cursor->damaged = 1;
        cursor->word[SegKeySize] = 0;
        return nullptr;
    }
    return cursor->word;
}
