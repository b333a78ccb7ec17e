/*
 * charclass.h -- every test and conversion of a character.
 *
 * The engine works in Windows Latin-1.  Each test is one lookup in
 * CharClass by the unsigned value of the byte; case conversion is a plain
 * +/- 0x20 on letters of the other case, nothing more (so 0xFF and 0xDF
 * convert into each other, as the table pairs them).
 */
#ifndef ORTO_ENGINE_CHARCLASS_H
#define ORTO_ENGINE_CHARCLASS_H

#include "engine/types.h"

enum {
    CC_Letter = 0x01,
    CC_Digit = 0x02,
    CC_Punct = 0x04,
    CC_Space = 0x08,
    CC_Lower = 0x10,
    CC_Upper = 0x20,
    CC_Vowel = 0x40
};

extern const unsigned char CharClass[256];
/* Lower-case unaccented base letter of each letter, 0 for all else.  Read
 * only by the typographical measure of the suggestions. */
extern const unsigned char baseLetter[256];

inline bool IsLetter(unsigned char c) { return CharClass[c] & CC_Letter; }
inline bool IsDigit(unsigned char c) { return CharClass[c] & CC_Digit; }
inline bool IsPunct(unsigned char c) { return CharClass[c] & CC_Punct; }
inline bool IsSpace(unsigned char c) { return CharClass[c] & CC_Space; }
inline bool IsLower(unsigned char c) { return CharClass[c] & CC_Lower; }
inline bool IsUpper(unsigned char c) { return CharClass[c] & CC_Upper; }
inline bool IsVowel(unsigned char c) { return CharClass[c] & CC_Vowel; }
/* Where a word can begin. */
inline bool IsWordChar(unsigned char c) { return CharClass[c] & (CC_Letter | CC_Digit); }
/* The ASCII and the typographic apostrophe. */
inline bool IsApostrophe(unsigned char c) { return c == 0x27 || c == 0x92; }
inline unsigned char ToLower(unsigned char c) { return IsUpper(c) ? (unsigned char)(c + 0x20) : c; }
inline unsigned char ToUpper(unsigned char c) { return IsLower(c) ? (unsigned char)(c - 0x20) : c; }

#endif
