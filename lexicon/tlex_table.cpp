/*
 * tlex_table.cpp -- the sorted table of a text lexicon in memory.
 *
 * Entries stand in StrCompare order (unsigned bytes), so an exact lookup is
 * a binary search.  A case-blind lookup answers with the first entry in
 * table order that matches, so a capitalised spelling is met before a small
 * one.  It walks the table, until a table that stays unchanged has been
 * walked a number of times: it then gets a second order, entry numbers
 * sorted case-blind with ties in table order, whose first match is the
 * entry the walk would find.  All-capital words of a text are looked up
 * case-blind, so a large text lexicon would otherwise be walked for each.  Insertion finds its
 * place and moves the tail up by one entry.
 * Counters are 32 bits wide so that no walk can wrap at 65,536 entries.
 */
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <algorithm>

#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "lexicon/lexicon.h"
#include "lexicon/tlex_file.h"
#include "orto.h"

enum { TableInitialRequest = 16, TableStep = 32 };

bool TLexTable_Reserve(TLexTable *table, u32 n)
{
    if (table->capacity >= n)
        return true;
    u32 want = n + table->step;
    /* realloc keeps the contents and lets large tables move by remapping
     * pages, so growing in small steps doesn't copy the table each time */
    TLexEntry *grown = (TLexEntry *)realloc(table->base, (size_t)want * sizeof(TLexEntry));
    if (!grown)
        return false;
    table->base = grown;
    table->capacity = want;
    return true;
}

int64_t TLex_FindIndex(const TLex *tlex, const char *word)
{
    int64_t lo = 0, hi = (int64_t)tlex->count - 1;
    while (lo <= hi) {
        int64_t mid = lo + (hi - lo) / 2;
        i16 c = StrCompare(tlex->table.base[mid].word, word);
        if (c == 0)
            return mid;
        if (c < 0)
            lo = mid + 1;
        else
            hi = mid - 1;
    }
    return -1;
}

/* The case-blind order is made after this many walks of an unchanged
 * table, and only for tables where a walk costs more than the sort. */
constexpr u16 FoldWalksBeforeIndex = 16;
constexpr u32 FoldIndexMinEntries = 64;

static bool buildFoldIndex(TLex *tlex)
{
    u32 *index = (u32 *)realloc(tlex->foldIndex, (size_t)tlex->count * sizeof(u32));
    if (!index)
        return false; /* the walk still answers */
    tlex->foldIndex = index;
    for (u32 i = 0; i < tlex->count; i++)
        index[i] = i;
    const TLexEntry *base = tlex->table.base;
    std::sort(index, index + tlex->count, [base](u32 a, u32 b) {
        i16 c = StrCompareNoCase(base[a].word, base[b].word);
        return c != 0 ? c < 0 : a < b;
    });
    tlex->foldValid = 1;
    return true;
}

/* The first entry in table order equal to `word` under case folding. */
static const TLexEntry *findNoCase(TLex *tlex, const char *word)
{
    const TLexEntry *base = tlex->table.base;
    if (!tlex->foldValid && tlex->count >= FoldIndexMinEntries &&
        ++tlex->foldWalks > FoldWalksBeforeIndex)
        buildFoldIndex(tlex);
    if (!tlex->foldValid) {
        for (u32 i = 0; i < tlex->count; i++)
            if (StrCompareNoCase(base[i].word, word) == 0)
                return &base[i];
        return nullptr;
    }
    u32 lo = 0, end = tlex->count;
    while (lo < end) {
        u32 mid = lo + (end - lo) / 2;
        if (StrCompareNoCase(base[tlex->foldIndex[mid]].word, word) < 0)
            lo = mid + 1;
        else
            end = mid;
    }
    if (lo < tlex->count && StrCompareNoCase(base[tlex->foldIndex[lo]].word, word) == 0)
        return &base[tlex->foldIndex[lo]];
    return nullptr;
}

i16 TLex_Find(TLex *tlex, const char *word, int caseSensitive, char *otherWord, i16 otherWordSize)
{
    if (tlex->count == 0)
        return ORTO_NotFound;
    const TLexEntry *hit = nullptr;
    if (caseSensitive) {
        int64_t i = TLex_FindIndex(tlex, word);
        if (i >= 0)
            hit = &tlex->table.base[i];
    } else {
        hit = findNoCase(tlex, word);
    }
    if (!hit)
        return ORTO_NotFound;
    if (otherWord && otherWordSize > 0)
        StrCopy(otherWord, (u16)otherWordSize, hit->info + 1);
    return (unsigned char)hit->info[0];
}

i16 TLexEntry_Make(TLexEntry *entry, const char *word, char action, const char *otherWord)
{
    /* info: the action byte and the other word cut to 63 characters, copied
     * by length rather than as a string, so that an action byte of 0 (a
     * file line without one) still leaves the other word readable */
    char info[1 + MaxOtherWord + 1];
    info[0] = action;
    StrCopy(info + 1, MaxOtherWord + 1, otherWord ? otherWord : "");
    size_t infoSize = 1 + strlen(info + 1) + 1;
    char *wordCopy = StrDup(word);
    char *infoCopy = wordCopy ? (char *)malloc(infoSize) : nullptr;
    if (!infoCopy) {
        free(wordCopy);
        DebugLog("out of memory");
        return ORTO_OutOfMemory;
    }
    memcpy(infoCopy, info, infoSize);
    entry->word = wordCopy;
    entry->info = infoCopy;
    return 0;
}

i16 TLex_Insert(TLex *tlex, const char *word, char action, const char *otherWord)
{
    if (!TLexTable_Reserve(&tlex->table, tlex->count + 1)) {
        DebugLog("out of memory");
        return ORTO_OutOfMemory;
    }
    TLexEntry entry;
    if (TLexEntry_Make(&entry, word, action, otherWord) < 0)
        return ORTO_OutOfMemory; /* the table is left exactly as it was */
    /* The first entry not less than the word, so a new entry goes in front
     * of an equal one.  Halving finds the same place a walk from the front
     * would, without making a file of n words cost n squared compares. */
    u32 at = 0, end = tlex->count;
    while (at < end) {
        u32 mid = at + (end - at) / 2;
        if (StrCompare(tlex->table.base[mid].word, word) < 0)
            at = mid + 1;
        else
            end = mid;
    }
    memmove(&tlex->table.base[at + 1], &tlex->table.base[at],
            (size_t)(tlex->count - at) * sizeof(TLexEntry));
    tlex->table.base[at] = entry;
    tlex->count++;
    TLex_Changed(tlex);
    return 0;
}

i16 TLex_Remove(TLex *tlex, const char *word)
{
    int64_t i = TLex_FindIndex(tlex, word);
    if (i < 0) {
        DebugLog("%s not found", word);
        return ORTO_NotFound;
    }
    free(tlex->table.base[i].word);
    free(tlex->table.base[i].info);
    memmove(&tlex->table.base[i], &tlex->table.base[i + 1],
            (size_t)(tlex->count - (u32)i - 1) * sizeof(TLexEntry));
    tlex->count--;
    TLex_Changed(tlex);
    return 0;
}

void TLexTable_FreeEntries(TLex *tlex)
{
    for (u32 i = 0; i < tlex->count; i++) {
        free(tlex->table.base[i].word);
        free(tlex->table.base[i].info);
    }
    tlex->count = 0;
    TLex_Changed(tlex);
}

i16 TLex_Create(const char *fileName, u16 language, TLex *tlex)
{
    tlex->language = language;
    tlex->count = 0;
    tlex->plainList = 0;
    tlex->fileTime = (i32)time(nullptr);
    tlex->fileTimeNs = 0;
    StrCopy(tlex->fileName, PathSize, fileName ? fileName : "");
    tlex->table.base = nullptr;
    tlex->table.capacity = 0;
    tlex->table.step = TableStep;
    tlex->foldIndex = nullptr;
    TLex_Changed(tlex);
    if (!TLexTable_Reserve(&tlex->table, TableInitialRequest))
        return ORTO_OutOfMemory;
    if (!tlex->fileName[0])
        return 0;
    return TLex_CreateFile(tlex);
}

void TLex_Close(TLex *tlex)
{
    TLexTable_FreeEntries(tlex);
    free(tlex->table.base);
    tlex->table.base = nullptr;
    tlex->table.capacity = 0;
    free(tlex->foldIndex);
    tlex->foldIndex = nullptr;
}

i32 TLex_GetAll(TLex *tlex, char *buffer, u32 bufferSize)
{
    u32 used = 0;
    for (u32 i = 0; i < tlex->count; i++) {
        const TLexEntry *e = &tlex->table.base[i];
        size_t wl = strlen(e->word), il = strlen(e->info);
        /* this entry, its NUL and the closing NUL must still fit */
        if ((uint64_t)used + wl + 1 + il + 1 + 1 > bufferSize) {
            DebugLog("buffer too small");
            return ORTO_BufferTooSmall;
        }
        memcpy(buffer + used, e->word, wl);
        used += (u32)wl;
        buffer[used++] = '\t';
        memcpy(buffer + used, e->info, il + 1);
        used += (u32)il + 1;
    }
    if (used + 1 > bufferSize) {
        DebugLog("buffer too small");
        return ORTO_BufferTooSmall;
    }
    buffer[used] = 0;
    return (i32)tlex->count;
}

void TLex_GetSize(TLex *tlex, u32 *size)
{
    uint64_t total = 1;
    for (u32 i = 0; i < tlex->count; i++)
        total += strlen(tlex->table.base[i].word) + 1 + strlen(tlex->table.base[i].info) + 1;
    *size = total > 0xFFFFFFFFu ? 0xFFFFFFFFu : (u32)total;
}
