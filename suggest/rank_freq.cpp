/*
 * rank_freq.cpp -- the word frequencies of a lexicon: how common each word
 * is, in a few classes, read from a frequency file.
 *
 * The file is text (docs/frequency_format.md): a line "=N" sets the class
 * of the words on the lines after it.  In memory a table keeps no words,
 * only a 32-bit hash of each with the class in its low four bits, sorted,
 * so that a lookup is a binary search and 100,000 words take 400 KB in one
 * allocation.  Two words whose hashes agree in the other 28 bits share one
 * entry, the more common class; a word that isn't in the file can meet a
 * listed word's entry the same way.  Either costs a little ranking, never a
 * wrong answer of the checker.
 */
#include "suggest/rank.h"

#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "engine/debug_log.h"
#include "orto.h"
#include "platform/file.h"

/* Larger files are refused before anything is allocated for them. */
constexpr i32 MaxFrequencyFile = 64 * 1024 * 1024;

u32 RankFreq_Hash(const char *word)
{
    u32 h = 2166136261u;
    for (const unsigned char *p = (const unsigned char *)word; *p; p++)
        h = (h ^ *p) * 16777619u;
    return h;
}

/* The whole file in one buffer, with a NUL behind it. */
static i16 readWhole(const char *fileName, char **text, i32 *length)
{
    int h = fileOpen(fileName, FileReadMode);
    if (h < 0)
        return ORTO_FileOpenError;
    i32 size = fileSize(h);
    if (size < 0 || size >= MaxFrequencyFile) {
        fileClose(h);
        return size < 0 ? ORTO_FileOpenError : ORTO_BadFormat;
    }
    char *buffer = (char *)malloc((size_t)size + 1);
    if (!buffer) {
        fileClose(h);
        return ORTO_OutOfMemory;
    }
    i32 got = size ? fileRead(h, buffer, size) : 0;
    fileClose(h);
    if (got != size) {
        free(buffer);
        return ORTO_FileOpenError;
    }
    buffer[size] = 0;
    *text = buffer;
    *length = size;
    return 0;
}

/* Each line of the file in turn, without its CR LF or LF; false at the
 * end. */
static bool nextLine(char **at, char *end, char **line, i32 *lineLength)
{
    if (*at >= end)
        return false;
    char *p = *at, *eol = (char *)memchr(p, '\n', (size_t)(end - p));
    char *stop = eol ? eol : end;
    *at = eol ? eol + 1 : end;
    if (stop > p && stop[-1] == '\r')
        stop--;
    *line = p;
    *lineLength = (i32)(stop - p);
    return true;
}

static i16 parse(char *text, i32 length, RankFrequencies **out)
{
    /* the entries can't outnumber the lines */
    u32 lines = 1;
    for (i32 i = 0; i < length; i++)
        lines += text[i] == '\n';
    RankFrequencies *table =
        (RankFrequencies *)malloc(sizeof(RankFrequencies) + (size_t)lines * sizeof(u32));
    if (!table)
        return ORTO_OutOfMemory;
    u32 *entries = (u32 *)(table + 1);
    u32 count = 0;
    int klass = -1, highest = 0;
    char *at = text, *end = text + length, *line = nullptr;
    i32 n;
    char word[WordSize];
    bool bad = false;
    while (!bad && nextLine(&at, end, &line, &n)) {
        if (n == 0 || line[0] == '#')
            continue;
        if (line[0] == '=') {
            bad = n < 2 || n > 3 || line[1] < '0' || line[1] > '9' ||
                  (n == 3 && (line[2] < '0' || line[2] > '9'));
            klass = bad ? -1 : n == 2 ? line[1] - '0' : (line[1] - '0') * 10 + (line[2] - '0');
            bad = bad || klass >= RankClassCount;
            highest = klass > highest ? klass : highest;
            continue;
        }
        bad = klass < 0 || n >= WordSize || memchr(line, 0, (size_t)n);
        if (bad)
            break;
        memcpy(word, line, (size_t)n);
        word[n] = 0;
        entries[count++] = (RankFreq_Hash(word) & ~0xFu) | (u32)klass;
    }
    if (bad) {
        free(table);
        return ORTO_BadFormat;
    }
    /* one entry a hash, the most common class (the smallest value) first */
    std::sort(entries, entries + count);
    u32 kept = 0;
    for (u32 i = 0; i < count; i++)
        if (kept == 0 || (entries[kept - 1] & ~0xFu) != (entries[i] & ~0xFu))
            entries[kept++] = entries[i];
    table->count = kept;
    table->unlistedClass = (u16)(highest + 1 < RankClassCount ? highest + 1 : RankClassCount - 1);
    table->reserved = 0;
    *out = table;
    return 0;
}

i16 RankFreq_Load(const char *fileName, RankFrequencies **table)
{
    char *text;
    i32 length;
    RETURN_IF_NEG(readWhole(fileName, &text, &length));
    i16 rc = parse(text, length, table);
    free(text);
    return rc;
}

int RankFreq_Class(const RankFrequencies *table, const char *word)
{
    u32 key = RankFreq_Hash(word) & ~0xFu;
    const u32 *entries = RankFreq_Entries(table);
    const u32 *p = std::lower_bound(entries, entries + table->count, key);
    if (p != entries + table->count && (*p & ~0xFu) == key)
        return (int)(*p & 0xFu);
    return table->unlistedClass;
}
