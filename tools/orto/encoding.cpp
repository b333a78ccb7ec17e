/*
 * encoding.cpp -- UTF-8 to the engine's Windows Latin-1 and back.
 *
 * The engine sees one byte a character, in Windows code page 1252: ISO
 * Latin-1 plus the typographic characters that cp1252 puts in 0x80-0x9F
 * (0x92 is the typographic apostrophe, which the engine takes for an
 * apostrophe).  Each input character becomes exactly one byte, also the
 * characters that cp1252 lacks, so that a position in engine text is the
 * position in characters of the user's line; that is what the ispell pipe
 * reports as offsets.  A small table of our own does it: no locale or
 * iconv state, and a malformed byte is found where it stands.
 *
 * Characters outside cp1252 become one of two stand-ins (program.h): a
 * letter of another script, or a combining mark, the foreign-letter byte,
 * which is no word character for the engine; a symbol, punctuation byte.
 * The line between the two is drawn by Unicode blocks: the blocks of
 * punctuation, arrows, mathematical and technical signs, box drawing,
 * dingbats and emoji are symbols, all else counts as letters.
 */
#include <string.h>

#include "program.h"

/* cp1252 0x80-0x9F; 0 where cp1252 has no character. */
static const uint16_t Cp1252High[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

bool parseEncoding(const char *name, TextEncoding *encoding)
{
    static const char *const utf8Names[] = {"utf-8", "utf8"};
    static const char *const latin1Names[] = {"latin1", "latin-1", "iso-8859-1", "iso8859-1",
                                              "cp1252", "windows-1252"};
    for (const char *n : utf8Names)
        if (strcasecmp(name, n) == 0) {
            *encoding = EncodingUtf8;
            return true;
        }
    for (const char *n : latin1Names)
        if (strcasecmp(name, n) == 0) {
            *encoding = EncodingLatin1;
            return true;
        }
    return false;
}

static bool isSymbolCodePoint(uint32_t cp)
{
    return (cp >= 0x2000 && cp <= 0x2BFF) || (cp >= 0x2E00 && cp <= 0x2E7F) ||
           (cp >= 0x3000 && cp <= 0x303F) || (cp >= 0xFE00 && cp <= 0xFE1F) ||
           (cp >= 0xFE30 && cp <= 0xFE6F) || (cp >= 0xFF01 && cp <= 0xFF0F) ||
           (cp >= 0x1F000 && cp <= 0x1FAFF) || cp == 0xFEFF;
}

static unsigned char engineByte(uint32_t cp)
{
    if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF))
        return (unsigned char)cp;
    for (int i = 0; i < 32; i++)
        if (Cp1252High[i] == cp)
            return (unsigned char)(0x80 + i);
    return isSymbolCodePoint(cp) ? ForeignSymbolByte : ForeignLetterByte;
}

/* Decodes one UTF-8 character at s[i]; returns its length, or 0 when the
 * bytes there aren't well-formed (overlong forms and surrogates included). */
static size_t decodeUtf8(const unsigned char *s, size_t n, size_t i, uint32_t *cp)
{
    unsigned char b = s[i];
    size_t len;
    uint32_t min;
    if (b < 0x80) {
        *cp = b;
        return 1;
    } else if (b >= 0xC2 && b <= 0xDF) {
        len = 2, min = 0x80, *cp = b & 0x1F;
    } else if (b >= 0xE0 && b <= 0xEF) {
        len = 3, min = 0x800, *cp = b & 0x0F;
    } else if (b >= 0xF0 && b <= 0xF4) {
        len = 4, min = 0x10000, *cp = b & 0x07;
    } else {
        return 0;
    }
    if (i + len > n)
        return 0;
    for (size_t k = 1; k < len; k++) {
        if ((s[i + k] & 0xC0) != 0x80)
            return 0;
        *cp = (*cp << 6) | (s[i + k] & 0x3F);
    }
    if (*cp < min || *cp > 0x10FFFF || (*cp >= 0xD800 && *cp <= 0xDFFF))
        return 0;
    return len;
}

bool toEngineText(const std::string &in, TextEncoding encoding, std::string *out, size_t *foreign,
                  std::vector<std::string> *kept)
{
    out->clear();
    if (foreign)
        *foreign = 0;
    if (kept)
        kept->clear();
    if (encoding == EncodingLatin1) {
        *out = in;
        return true;
    }
    out->reserve(in.size());
    const unsigned char *s = (const unsigned char *)in.data();
    size_t n = in.size();
    for (size_t i = 0; i < n;) {
        /* ASCII, most of any text, goes over as it stands, a run at a time */
        size_t run = i;
        while (run < n && s[run] < 0x80)
            run++;
        if (run > i) {
            out->append((const char *)s + i, run - i);
            i = run;
            continue;
        }
        uint32_t cp;
        size_t len = decodeUtf8(s, n, i, &cp);
        if (len == 0)
            return false;
        unsigned char b = engineByte(cp);
        bool standIn = (b == ForeignLetterByte || b == ForeignSymbolByte) && cp != b;
        if (foreign && standIn)
            ++*foreign;
        if (kept && (standIn || b == ForeignLetterByte)) {
            /* one stand-in byte that no other character gives */
            b = ForeignLetterByte;
            kept->emplace_back((const char *)s + i, len);
        }
        out->push_back((char)b);
        i += len;
    }
    return true;
}

static void appendUtf8(std::string *out, uint32_t cp)
{
    if (cp < 0x80) {
        out->push_back((char)cp);
    } else if (cp < 0x800) {
        out->push_back((char)(0xC0 | (cp >> 6)));
        out->push_back((char)(0x80 | (cp & 0x3F)));
    } else {
        out->push_back((char)(0xE0 | (cp >> 12)));
        out->push_back((char)(0x80 | ((cp >> 6) & 0x3F)));
        out->push_back((char)(0x80 | (cp & 0x3F)));
    }
}

std::string fromEngineText(const std::string &in, TextEncoding encoding)
{
    if (encoding == EncodingLatin1)
        return in;
    std::string out;
    out.reserve(in.size() + in.size() / 4);
    for (unsigned char c : in) {
        uint32_t cp = c;
        /* the holes of cp1252 go back as the C1 controls of the same number */
        if (c >= 0x80 && c < 0xA0 && Cp1252High[c - 0x80] != 0)
            cp = Cp1252High[c - 0x80];
        appendUtf8(&out, cp);
    }
    return out;
}

bool isForeignLetter(unsigned char c)
{
    switch (c) {
    case ForeignLetterByte:
    case 0x83: case 0x8A: case 0x8C: case 0x8E:
    case 0x9A: case 0x9C: case 0x9E: case 0x9F:
        return true;
    default:
        return false;
    }
}
