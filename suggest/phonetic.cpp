/*
 * phonetic.cpp -- the phonetic measure: two words are close when they
 * sound alike.
 *
 * phoneticCode reduces a word to a short string of consonant classes: each
 * byte gets a code letter from phoneticLetters (or a pair of small letters
 * one from phoneticDigraphs), vowels count only in first place, and a run
 * of one code letter is written once.  The tables are fixed and don't
 * depend on a lexicon's language.  Words whose codes differ score 0; words
 * with one code score by how many byte values they hold the same number
 * of times.
 *
 * For the walks, the word's code and byte counts are made once (see
 * ScoreProbe), and a candidate's code is compared letter by letter while it
 * is built, so that the usual candidate, whose code differs, costs a few
 * table reads.  A code only ever grows at its end, so the part of it that
 * the first two characters of a segment key decide is a prefix of the code
 * of every word in the segment.
 */
#include "suggest/suggest.h"

#include <string.h>

#include "engine/string_helpers.h"

/* Code letter of each byte; 0 for none. */
const unsigned char phoneticLetters[256] = {
    /* 00 */ 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    /* 10 */ 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    /* 20 */ 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    /* 30 */ 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    /* 40 */ 0, 'a', 'b', 'c', 'd', 'e', 'f', 'c', 0, 'a', 'j', 'c', 'l', 'm', 'm', 'a',
    /* 50 */ 'b', 'c', 'r', 's', 'd', 'a', 'f', 0, 's', 0, 's', 0, 0, 0, 0, 0,
    /* 60 */ 0, 'a', 'b', 'c', 'd', 'a', 'f', 'c', 0, 'a', 'j', 'c', 'l', 'm', 'm', 'a',
    /* 70 */ 'b', 'c', 'r', 's', 'd', 'a', 'f', 0, 's', 0, 's', 0, 0, 0, 0, 0,
    /* 80 */ 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    /* 90 */ 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    /* A0 */ 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    /* B0 */ 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    /* C0 */ 'a', 'a', 'a', 'a', 'a', 'a', 'a', 's', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a',
    /* D0 */ 0, 'm', 'a', 'a', 'a', 'a', 'a', 0, 'a', 'a', 'a', 'a', 'a', 'a', 'a', 's',
    /* E0 */ 'a', 'a', 'a', 'a', 'a', 'a', 'a', 's', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a',
    /* F0 */ 0, 'm', 'a', 'a', 'a', 'a', 'a', 0, 'a', 'a', 'a', 'a', 'a', 'a', 'a', 0,
};

struct PhoneticDigraph {
    char pair[2]; /* two small letters */
    char stored;  /* goes through phoneticLetters on its way out */
};

/* Searched in this order. */
static const PhoneticDigraph phoneticDigraphs[8] = {
    {{'c', 'e'}, 's'}, {{'c', 'i'}, 's'}, {{'c', 'k'}, 'c'}, {{'d', 'g'}, 'j'},
    {{'g', 'e'}, 'j'}, {{'k', 'n'}, 'n'}, {{'p', 'h'}, 'f'}, {{'p', 's'}, 's'},
};

/* What the character at `p` offers the code, before the repeat test: the
 * letter of a pair that starts here, else its own letter, with a vowel
 * dropped unless it is the first character.  0 for nothing. */
static inline unsigned char codeLetterAt(const unsigned char *p, bool first)
{
    unsigned char c0 = p[0], c1 = p[1];
    for (const PhoneticDigraph &d : phoneticDigraphs)
        if (c0 == (unsigned char)d.pair[0] && c1 == (unsigned char)d.pair[1])
            return phoneticLetters[(unsigned char)d.stored];
    unsigned char letter = phoneticLetters[c0];
    if (letter == 'a' && !first)
        return 0;
    return letter;
}

/* The code is cut at 63 letters, which a word of 63 characters never
 * reaches. */
void phoneticCode(const char *word, char *code)
{
    const unsigned char *p = (const unsigned char *)word;
    int n = 0;
    unsigned char last = 0;
    for (int pos = 0; p[pos]; pos++) {
        unsigned char letter = codeLetterAt(p + pos, pos == 0);
        if (letter && letter != last && n < WordSize - 1) {
            code[n++] = (char)letter;
            last = letter;
        }
    }
    code[n] = 0;
}

static void countBytes(const char *s, u16 *counts, i32 *length)
{
    i32 n = 0;
    for (const unsigned char *p = (const unsigned char *)s; *p; p++, n++)
        counts[*p]++;
    *length = n;
}

/* Score of two words with one code, from their byte counts.  Two empty
 * words have nothing in common to count: 0. */
static i16 countScore(const u16 *a, i32 lengthA, const u16 *b, i32 lengthB)
{
    i32 total = lengthA + lengthB;
    if (total == 0)
        return 0;
    i32 kept = total;
    for (int v = 0; v < 255; v++) /* 0xFF takes no part */
        if (a[v] != b[v])
            kept--;
    return (i16)(kept * 100 / total);
}

i16 phoneticScore(const char *word, const char *candidate)
{
    char wordCode[WordSize], candCode[WordSize];
    phoneticCode(word, wordCode);
    phoneticCode(candidate, candCode);
    if (strcmp(wordCode, candCode) != 0)
        return 0;
    u16 wordCounts[256] = {0}, candCounts[256] = {0};
    i32 wordLength, candLength;
    countBytes(word, wordCounts, &wordLength);
    countBytes(candidate, candCounts, &candLength);
    return countScore(wordCounts, wordLength, candCounts, candLength);
}

i16 phoneticScoreAbove(const ScoreProbe *probe, const char *candidate, i16 floor)
{
    if (floor >= 100)
        return 0;
    const unsigned char *p = (const unsigned char *)candidate;
    int n = 0;
    unsigned char last = 0;
    int pos = 0;
    for (; p[pos]; pos++) {
        unsigned char letter = codeLetterAt(p + pos, pos == 0);
        if (letter && letter != last && n < WordSize - 1) {
            if ((unsigned char)probe->code[n] != letter)
                return 0;
            n++;
            last = letter;
        }
    }
    if (probe->code[n])
        return 0;
    u16 candCounts[256] = {0};
    i32 candLength;
    countBytes(candidate, candCounts, &candLength);
    i16 score = countScore(probe->counts, probe->length, candCounts, candLength);
    return score > floor ? score : 0;
}

bool phoneticPrefixMatches(const ScoreProbe *probe, const char *key)
{
    if (!key[0] || !key[1] || !key[2])
        return true;
    unsigned char piece[4] = {(unsigned char)key[0], (unsigned char)key[1],
                              (unsigned char)key[2], 0};
    int n = 0;
    unsigned char last = 0;
    for (int pos = 0; pos < 2; pos++) {
        unsigned char letter = codeLetterAt(piece + pos, pos == 0);
        if (letter && letter != last) {
            if ((unsigned char)probe->code[n] != letter)
                return false;
            n++;
            last = letter;
        }
    }
    return true;
}
