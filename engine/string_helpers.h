/*
 * string_helpers.h -- the engine's string routines.
 *
 * Lengths and counts are 16 bits wide: text of 32,768 bytes or more is no
 * string in this sense (a block's text is handled by length instead).
 * `size` is always the whole size of the destination, terminator included,
 * at least 1.  Nothing here allocates except StrDup.
 */
#ifndef ORTO_ENGINE_STRING_HELPERS_H
#define ORTO_ENGINE_STRING_HELPERS_H

#include "engine/types.h"

u16 StrLen(const char *s);
void StrCopy(char *dest, u16 size, const char *src);
void StrCopyN(char *dest, u16 size, const char *src, u16 n);
void StrAppend(char *dest, u16 size, const char *src);
void StrAppendChar(char *dest, u16 size, char c);
char *StrFindChar(const char *s, char c);
char *StrFindLastChar(const char *s, char c);
i16 StrCompare(const char *a, const char *b);
i16 StrCompareNoCase(const char *a, const char *b);
char *StrDup(const char *s);
void IntToDecimal(i32 value, char *buffer, u16 size);

/* Case pattern of a word and its transfer to a replacement. */
bool IsMixedCase(const char *word);
bool IsAllCaps(const char *word);
void MatchCase(const char *word, char *other);

/* A null string pointer from a host reads as the empty string. */
inline const char *orEmpty(const char *s) { return s ? s : ""; }

#endif
