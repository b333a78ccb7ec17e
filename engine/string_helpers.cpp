/*
 * string_helpers.cpp -- bounded copies, comparisons and conversions.
 *
 * Comparisons take bytes as unsigned, so capitals sort before small letters
 * and accented letters after both: the order of every lexicon table.
 */
#include "engine/string_helpers.h"

#include <stdlib.h>
#include <string.h>

#include "engine/charclass.h"

u16 StrLen(const char *s)
{
    u16 n = 0;
    while (s[n] && n < 0xFFFF)
        n++;
    return n;
}

void StrCopyN(char *dest, u16 size, const char *src, u16 n)
{
    u16 i = 0;
    while (i + 1 < size && i < n && src[i]) {
        dest[i] = src[i];
        i++;
    }
    dest[i] = 0;
}

void StrCopy(char *dest, u16 size, const char *src)
{
    StrCopyN(dest, size, src, 0xFFFF);
}

void StrAppend(char *dest, u16 size, const char *src)
{
    u16 len = StrLen(dest);
    if (len + 1 >= size)
        return;
    StrCopy(dest + len, (u16)(size - len), src);
}

void StrAppendChar(char *dest, u16 size, char c)
{
    u16 len = StrLen(dest);
    if (size > len + 1) {
        dest[len] = c;
        dest[len + 1] = 0;
    }
}

char *StrFindChar(const char *s, char c)
{
    for (;; s++) {
        if (*s == c)
            return (char *)s;
        if (!*s)
            return nullptr;
    }
}

char *StrFindLastChar(const char *s, char c)
{
    const char *found = nullptr;
    for (;; s++) {
        if (*s == c)
            found = s;
        if (!*s)
            return (char *)found;
    }
}

static i16 compareWith(const char *a, const char *b, bool noCase)
{
    const unsigned char *p = (const unsigned char *)a;
    const unsigned char *q = (const unsigned char *)b;
    for (;; p++, q++) {
        unsigned char x = noCase ? ToLower(*p) : *p;
        unsigned char y = noCase ? ToLower(*q) : *q;
        if (x != y)
            return x > y ? 1 : -1;
        if (!x)
            return 0;
    }
}

i16 StrCompare(const char *a, const char *b) { return compareWith(a, b, false); }
i16 StrCompareNoCase(const char *a, const char *b) { return compareWith(a, b, true); }

char *StrDup(const char *s)
{
    size_t n = strlen(s) + 1;
    char *p = (char *)malloc(n);
    if (p)
        memcpy(p, s, n);
    return p;
}

void IntToDecimal(i32 value, char *buffer, u16 size)
{
    /* Digits come from the low end, so a short buffer keeps the low-order
     * digits; the sign goes in only if there is room left for it. */
    char digits[16];
    int n = 0;
    int64_t v = value < 0 ? -(int64_t)value : value;
    if (size < 2) {
        buffer[0] = 0;
        return;
    }
    do {
        digits[n++] = (char)('0' + v % 10);
        v /= 10;
    } while (v && n < size - 1);
    int pos = 0;
    if (value < 0 && n < size - 1)
        buffer[pos++] = '-';
    while (n > 0)
        buffer[pos++] = digits[--n];
    buffer[pos] = 0;
}

bool IsMixedCase(const char *word)
{
    const unsigned char *p = (const unsigned char *)word;
    if (!*p)
        return false;
    p++; /* the first character can be either case */
    while (*p && !IsLetter(*p))
        p++;
    if (!*p)
        return false;
    bool upper = IsUpper(*p);
    for (p++; *p; p++)
        if (IsLetter(*p) && IsUpper(*p) != upper)
            return true;
    return false;
}

bool IsAllCaps(const char *word)
{
    for (const unsigned char *p = (const unsigned char *)word; *p; p++)
        if (IsLower(*p))
            return false;
    return true;
}

void MatchCase(const char *word, char *other)
{
    unsigned char first = (unsigned char)word[0];
    if (StrCompareNoCase(word, other) == 0 && !IsUpper(first))
        return;
    if (IsAllCaps(word)) {
        for (char *p = other; *p; p++)
            *p = (char)ToUpper((unsigned char)*p);
        return;
    }
    if (IsUpper(first) && other[0])
        other[0] = (char)ToUpper((unsigned char)other[0]);
}
