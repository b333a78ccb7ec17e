/*
 * clex_format.h -- the layout of a compressed lexicon file, shared by the
 * reader (clex_*.cpp) and the writer (lexsq_*.cpp).
 *
 * A file is the magic number followed by sections, each an id, a payload
 * length and the payload.  Every integer is 32 bits, big-endian, whatever
 * the host: the file must read the same on every machine.
 *
 *   offset  size  field
 *   0       4     magic 0x57000501 (bytes 57 00 05 01)
 *   4       ...   sections: id (4), length (4), payload (length)
 *
 * Sections as the writer places them: 1 language, 2 character size,
 * 3 suffix tables, 5 segment text, 4 segment directory.  A reader skips
 * unknown ids by their length.
 *
 *   section 3: S (4), simple table (S bytes of NUL-ended strings),
 *              E (4), extended table (E bytes of NUL-ended strings)
 *   section 4: count (4), then count records of 11 bytes:
 *              key (3), offset into section 5's payload (4), length (4)
 *
 * Segment text is a run of word records: a shared count byte, then codes
 * (SegCode* below) closed by the end code or a suffix code.
 */
#ifndef ORTO_LEXICON_CLEX_FORMAT_H
#define ORTO_LEXICON_CLEX_FORMAT_H

#include <string.h>

#include "engine/types.h"

constexpr u32 CLexMagic = 0x57000501;

/* Section ids. */
constexpr u32 SectionLanguage = 1;  /* payload 4: language in the low 16 bits */
constexpr u32 SectionCharSize = 2;  /* payload 4: bytes per character, 1 */
constexpr u32 SectionSuffixes = 3;  /* payload: the two suffix tables */
constexpr u32 SectionDirectory = 4; /* payload: count and directory records */
constexpr u32 SectionText = 5;      /* payload: all segment text, back to back */

constexpr u32 SectionHeaderSize = 8; /* id and length */
constexpr u32 DirRecordSize = 11;    /* key 3, offset 4, length 4 */
constexpr int SegKeySize = 3;        /* characters of a segment key */

/* Limits both sides keep: the reader walks counts and table sizes in
 * 16 bits, the writer numbers suffixes in one byte. */
constexpr u32 MaxSegments = 65535;
constexpr u32 MaxSuffixTableSize = 65535;
constexpr int MaxSimpleSuffixes = 30;
constexpr int MaxExtendedSuffixes = 255;
constexpr int MaxSuffixLength = 8;

/* The character size of the only lexicons we read; 2 marks a Unicode one. */
constexpr u32 CharSizeByte = 1;
constexpr u32 CharSizeUnicode = 2;

/* Codes of segment text; every byte value has exactly one meaning. */
constexpr unsigned char SegCodeEnd = 0x00;         /* word ends */
constexpr unsigned char SegCodeExtended = 0x01;    /* next byte: extended suffix number */
constexpr unsigned char SegCodeSimpleFirst = 0x02; /* simple suffix (code - 2), 0..29 */
constexpr unsigned char SegCodeSimpleLast = 0x1F;
constexpr unsigned char SegCodeLiteralFirst = 0x20; /* 20..FF: a literal character */

/* A 32-bit value between file order (big-endian) and the host's order; the
 * same swap serves both ways.  The host is told by the first byte of 0x1234
 * in memory. */
inline u32 fromFileOrder(u32 value)
{
    const u16 probe = 0x1234;
    unsigned char first;
    memcpy(&first, &probe, 1);
    if (first == 0x12)
        return value;
    return (value >> 24) | ((value >> 8) & 0xFF00u) | ((value << 8) & 0xFF0000u) | (value << 24);
}

/* Big-endian 32-bit value at p, and its inverse: for parsing and building
 * byte buffers without a detour through host order. */
inline u32 readBE32(const unsigned char *p)
{
    return ((u32)p[0] << 24) | ((u32)p[1] << 16) | ((u32)p[2] << 8) | (u32)p[3];
}

inline void writeBE32(unsigned char *p, u32 value)
{
    p[0] = (unsigned char)(value >> 24);
    p[1] = (unsigned char)(value >> 16);
    p[2] = (unsigned char)(value >> 8);
    p[3] = (unsigned char)value;
}

#endif
