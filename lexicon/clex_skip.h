/*
 * clex_skip.h -- the fast part of a segment search: passing over the
 * records that can't be the word sought without decoding them.  Included
 * by clex_scan.cpp alone; every function is inline for its loops.
 *
 * Most of a lookup is spent passing records, one after the other, since a
 * record's end is only known by reading it.  Three levels, fastest first:
 * skipRun reads 64 bytes as bit masks and settles many records at once
 * (SSE2), skipRepeated settles one record with one 8-byte load (little-
 * endian hosts), skipRecord finds a record's end 8 bytes at a time.  Each
 * stops where it can't be sure, and the careful decoder of clex_scan.cpp
 * takes that record; so each is checked against the plain decoding by the
 * tests, and none reads outside the segment.
 */
#ifndef ORTO_LEXICON_CLEX_SKIP_H
#define ORTO_LEXICON_CLEX_SKIP_H

#include <stdint.h>
#include <string.h>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "engine/charclass.h"
#include "lexicon/clex.h"

/* Moves p behind the rest of a record whose shared count is read; null
 * when the record runs past the segment.  Skipping is most of a lookup's
 * work, so on little-endian hosts it looks at 8 bytes at once: a byte below
 * 0x20 (a code) sets the top bit of its lane in (x - 0x20..) & ~x & 0x80..,
 * and since a borrow only runs towards later bytes, the lowest lane set is
 * exactly the first code. */
static inline const unsigned char *skipRecord(const unsigned char *p, const unsigned char *end)
{
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    while (end - p >= 8) {
        uint64_t x;
        memcpy(&x, p, 8);
        uint64_t codes = (x - 0x2020202020202020ull) & ~x & 0x8080808080808080ull;
        if (!codes) {
            p += 8;
            continue;
        }
        p += (__builtin_ctzll(codes) >> 3);
        if (*p++ == SegCodeExtended) {
            if (p >= end)
                return nullptr;
            p++;
        }
        return p;
    }
#endif
    while (p < end) {
        unsigned char c = *p++;
        if (c >= SegCodeLiteralFirst)
            continue;
        if (c == SegCodeExtended) {
            if (p >= end)
                return nullptr;
            p++;
        }
        return p;
    }
    return nullptr;
}

/* The common case of both searches in one step: the record at *pp repeats
 * more than m characters of the word before, so it can't be the word
 * sought, and it is skipped.  One 8-byte load gives the shared count (lane
 * 0, made 0xFF so that it neither counts as a code nor borrows) and the
 * place of the closing code, so that the step depends on no other load.
 * False when the slow path must take the record: a shared count of m or
 * less, fewer than 8 bytes left, or no code in the 7 bytes behind the
 * count. */
static inline bool skipRepeated(const unsigned char **pp, const unsigned char *end, u32 m)
{
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    const unsigned char *p = *pp;
    if (end - p < 8 || *p <= m)
        return false;
    uint64_t x;
    memcpy(&x, p, 8);
    uint64_t y = x | 0xFF;
    uint64_t codes = (y - 0x2020202020202020ull) & ~y & 0x8080808080808080ull;
    if (!codes)
        return false;
    unsigned shift = (unsigned)__builtin_ctzll(codes) - 7;
    unsigned char code = (unsigned char)(x >> shift);
    p += (shift >> 3) + 1 + (code == SegCodeExtended);
    if (p > end)
        return false; /* an extended number cut off: the slow path says so */
    *pp = p;
    return true;
#else
    (void)pp;
    (void)end;
    (void)m;
    return false;
#endif
}

#if defined(__SSE2__)
/* Bit i of the result: the parity of bits 0..i of x. */
static inline uint64_t prefixXor(uint64_t x)
{
    x ^= x << 1;
    x ^= x << 2;
    x ^= x << 4;
    x ^= x << 8;
    x ^= x << 16;
    x ^= x << 32;
    return x;
}

/* 64 bytes of segment text in four registers. */
struct SkipWindow {
    __m128i v[4];
};

static inline void loadWindow(SkipWindow *w, const unsigned char *p)
{
    w->v[0] = _mm_loadu_si128((const __m128i *)p);
    w->v[1] = _mm_loadu_si128((const __m128i *)(p + 16));
    w->v[2] = _mm_loadu_si128((const __m128i *)(p + 32));
    w->v[3] = _mm_loadu_si128((const __m128i *)(p + 48));
}

static inline uint64_t maskOf(__m128i a, __m128i b, __m128i c, __m128i d)
{
    return (uint64_t)(unsigned)_mm_movemask_epi8(a) |
           ((uint64_t)(unsigned)_mm_movemask_epi8(b) << 16) |
           ((uint64_t)(unsigned)_mm_movemask_epi8(c) << 32) |
           ((uint64_t)(unsigned)_mm_movemask_epi8(d) << 48);
}

/* The bytes of the window that are `max` or below. */
static inline uint64_t bytesAtMost(const SkipWindow *w, unsigned char max)
{
    const __m128i l = _mm_set1_epi8((char)max);
    return maskOf(_mm_cmpeq_epi8(_mm_min_epu8(w->v[0], l), w->v[0]),
                  _mm_cmpeq_epi8(_mm_min_epu8(w->v[1], l), w->v[1]),
                  _mm_cmpeq_epi8(_mm_min_epu8(w->v[2], l), w->v[2]),
                  _mm_cmpeq_epi8(_mm_min_epu8(w->v[3], l), w->v[3]));
}

static inline uint64_t bytesEqual(const SkipWindow *w, unsigned char value)
{
    const __m128i e = _mm_set1_epi8((char)value);
    return maskOf(_mm_cmpeq_epi8(w->v[0], e), _mm_cmpeq_epi8(w->v[1], e),
                  _mm_cmpeq_epi8(w->v[2], e), _mm_cmpeq_epi8(w->v[3], e));
}

/* Characters of a word's tail: the word less its three key characters. */
constexpr unsigned MaxSkipTail = WordSize - 1 - SegKeySize;

/* The first character that the codes at p add to a word: a literal, the
 * first character of a suffix, or 0 for the end of the word (so that a word
 * that ends there sorts below any longer one).  Above 0xFF when the suffix
 * number is out of its table: the careful path then judges the record.
 * The caller makes sure that an extended number lies in the segment. */
static inline unsigned firstAdded(const CLex *clex, const unsigned char *codes)
{
    unsigned c = codes[0];
    if (c >= SegCodeLiteralFirst || c == SegCodeEnd)
        return c;
    unsigned i = c == SegCodeExtended ? codes[1] : c - SegCodeSimpleFirst;
    u16 count = c == SegCodeExtended ? clex->extendedCount : clex->simpleCount;
    if (i >= count)
        return 0x100;
    return (unsigned char)(c == SegCodeExtended ? clex->extendedSuffixes : clex->simpleSuffixes)[i][0];
}

/* Skips, from the record at p, the records that can't be the word sought,
 * and returns the first record that needs a closer look (or one near the
 * end, where the other paths go on).  A record is settled here when its
 * shared count is above m, or when it is m or less and its characters
 * part from the sought word's before its suffix or end (below them for
 * the exact search, unequal under case folding for the case-blind one);
 * *m then becomes the number of characters they share.
 *
 * 64 bytes are looked at as bit masks.  Shared counts are below 0x20 as a
 * rule, so the bytes below 0x20 of a window are, in order: a count, an end
 * code, a count, an end code...  A prefix parity of that mask tells record
 * starts from end codes for all records at once, and the next start whose
 * count is m or less is one AND away.  Two things break the alternation:
 * the number behind an extended code (01 x) when x is below 0x20, which is
 * taken out of the mask one at a time from the left, and a shared count of
 * 0x20 or more, which leaves an end code without a code behind it; the
 * window is then only trusted up to that record.  Records are at most 63
 * bytes, so a window that starts at a record holds that record's end. */
template <bool NoCase>
static const unsigned char *skipRun(const CLex *clex, const unsigned char *p,
                                    const unsigned char *end, u32 *m,
                                    const unsigned char *target)
{
    SkipWindow w;
    while (end - p >= 66) {
        loadWindow(&w, p);
        uint64_t codes = bytesAtMost(&w, SegCodeLiteralFirst - 1) | 1; /* p is a start */
        uint64_t ones = bytesEqual(&w, SegCodeExtended);
        uint64_t starts, terms, exts;
        for (;;) {
            uint64_t parity = prefixXor(codes);
            starts = codes & parity;
            terms = codes & ~parity;
            exts = terms & ones;
            uint64_t numbered = exts & (codes >> 1); /* 01 x with x counted as a code */
            if (!numbered)
                break;
            codes &= ~((numbered & (0 - numbered)) << 1);
        }
        /* where each record after an end code must start, and doesn't */
        uint64_t expected = ((terms & ~exts) << 1) | (exts << 2);
        uint64_t broken = expected & ~codes;
        uint64_t live = starts & (broken ? (broken & (0 - broken)) - 1 : ~0ull);
        uint64_t near = bytesAtMost(&w, (unsigned char)*m);
        for (;;) {
            uint64_t hit = live & near;
            if (!hit)
                break;
            unsigned at = (unsigned)__builtin_ctzll(hit);
            /* pass the characters that agree with the sought word's */
            const unsigned char *r = p + at + 1;
            unsigned q = p[at];
            while (r < end && *r >= SegCodeLiteralFirst && q < MaxSkipTail &&
                   (NoCase ? ToLower(*r) == ToLower(target[q]) : *r == target[q])) {
                r++;
                q++;
            }
            if (r >= end || q >= MaxSkipTail || (*r == SegCodeExtended && r + 1 >= end))
                return p + at;
            unsigned first = firstAdded(clex, r);
            if (first > 0xFF)
                return p + at;
            bool settled = NoCase ? ToLower((unsigned char)first) != ToLower(target[q])
                                  : first < target[q];
            if (!settled)
                return p + at; /* equal so far at a suffix or the end, or above it */
            *m = q;
            live &= ~((2ull << at) - 1); /* the starts behind this one */
            near = bytesAtMost(&w, (unsigned char)q);
        }
        if (broken) {
            p += __builtin_ctzll(broken); /* a record with a long shared count */
            continue;
        }
        if (!terms)
            return p; /* damaged; the careful path will say so */
        unsigned last = 63u - (unsigned)__builtin_clzll(terms);
        p += last + 1 + ((exts >> last) & 1);
    }
    return p;
}
#endif

#endif
