/*
 * clex_open.cpp -- telling a compressed lexicon file, opening it, closing it.
 *
 * Opening is one pass over the section headers: the language, the
 * character size, the suffix tables and the directory are read; the
 * segment text is skipped by seeking and only its place is noted, so the
 * cost depends on the number of segments and not of words.  The directory
 * is read in a single read, since a read per record would cost more than
 * the rest of the opening.
 *
 * A file ends where its bytes end: one that stops after a whole section,
 * or inside the id of the next one, or inside the language, the character
 * size, the segment text or a section we don't know, opens with what came
 * before.  What can't be read that way has its own answer: a length field
 * cut off is no format of ours, a suffix table cut off a read error.
 *
 * Nothing read from the file is trusted for a size: every table, count and
 * directory record is held against the bytes the file really has before
 * anything is allocated, and a directory record must lie inside the
 * segment text that is there.  A damaged file is refused here, so that
 * loadSeg never seeks outside the text.
 */
#include <stdlib.h>
#include <string.h>

#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "lexicon/clex.h"
#include "lexicon/lexicon.h"
#include "orto.h"
#include "platform/file.h"

/* A lexicon whose file names no language is taken for American English,
 * the language a word list without a sentinel line gets too. */
constexpr u16 CLexDefaultLanguage = ORTO_LangAmerican;

/* Reads a big-endian value.  Result the bytes that came (4 when all did). */
static int32_t readValue(int handle, u32 *value)
{
    unsigned char bytes[4];
    int32_t n = fileRead(handle, bytes, 4);
    if (n == 4)
        *value = readBE32(bytes);
    return n;
}

i16 CLex_Probe(const char *fileName, Lexicon *lexicon)
{
    int handle = fileOpen(fileName, FileReadMode);
    if (handle < 0) {
        DebugLog("%s: file open failed", fileName);
        return ORTO_FileOpenError;
    }
    u32 value = 0;
    if (readValue(handle, &value) != 4 || value != CLexMagic) {
        fileClose(handle);
        return ORTO_BadFormat;
    }
    lexicon->language = CLexDefaultLanguage;
    int64_t size = fileSize(handle);
    int64_t pos = 4;
    for (;;) {
        u32 id = 0;
        u32 length = 0;
        /* fewer than 4 bytes of an id: the file's end */
        if (readValue(handle, &id) != 4)
            break;
        if (readValue(handle, &length) != 4) {
            DebugLog("%s: error reading section length", fileName);
            fileClose(handle);
            return ORTO_BadFormat;
        }
        pos += SectionHeaderSize;
        if (id == SectionLanguage) {
            if (readValue(handle, &value) == 4)
                lexicon->language = (u16)value;
            break;
        }
        pos += length;
        /* past the end: nothing more to see here; CLex_Open judges it */
        if (pos > size || fileSeek(handle, (int32_t)pos, FileFromStart) < 0)
            break;
    }
    fileClose(handle);
    return 0;
}

/* ---- the pool of segment records ---- */

static CLexSegment *poolTake(CLexPool *pool)
{
    if (!pool->head || pool->head->used == CLexPoolChunkRecords) {
        CLexPoolChunk *chunk = (CLexPoolChunk *)malloc(sizeof(CLexPoolChunk));
        if (!chunk)
            return nullptr;
        chunk->next = pool->head;
        chunk->used = 0;
        pool->head = chunk;
    }
    return &pool->head->records[pool->head->used++];
}

static void poolFree(CLexPool *pool)
{
    while (pool->head) {
        CLexPoolChunk *next = pool->head->next;
        free(pool->head);
        pool->head = next;
    }
}

void CLex_Close(CLex *clex)
{
    for (u32 i = 0; i < clex->segmentCount; i++) {
        CLex_DropIndex(clex->segments[i]);
        CLex_DropWords(clex->segments[i]);
        free(clex->segments[i]->text);
        clex->segments[i]->text = nullptr;
    }
    free(clex->segments);
    free(clex->keyValues);
    free(clex->summaries);
    clex->segments = nullptr;
    clex->keyValues = nullptr;
    clex->summaries = nullptr;
    clex->segmentCount = 0;
    poolFree(&clex->segmentPool);
    free(clex->simpleSuffixes);
    free(clex->simpleText);
    free(clex->extendedSuffixes);
    free(clex->extendedText);
    clex->simpleSuffixes = clex->extendedSuffixes = nullptr;
    clex->simpleText = clex->extendedText = nullptr;
    clex->simpleCount = clex->extendedCount = 0;
}

/* ---- the sections ---- */

/* What one CLex_Open has read so far, for the checks across sections. */
struct OpenState {
    int handle;
    int64_t size;       /* bytes in the file */
    bool seen[6];       /* section ids met, 1..5 */
};

static int64_t bytesLeft(const OpenState *st)
{
    int32_t pos = fileTell(st->handle);
    return pos < 0 ? 0 : st->size - pos;
}

/* One suffix table: its size, its strings, and a pointer to each string.
 * The text gets a NUL of its own behind the last byte, so that a table
 * that doesn't end in one can't lead a reader out of it; strings are
 * counted by the NUL bytes of the file alone. */
static i16 readSuffixTable(CLex *clex, OpenState *st, const char *which, char **text,
                           char ***strings, u16 *count)
{
    u32 n = 0;
    if (readValue(st->handle, &n) != 4) {
        DebugLog("%s: read error", clex->fileName);
        return ORTO_ReadError;
    }
    if (n > MaxSuffixTableSize) {
        DebugLog("%s: %s suffix table too large (%lu)", clex->fileName, which, (unsigned long)n);
        return ORTO_OutOfMemory;
    }
    if ((int64_t)n > bytesLeft(st)) {
        DebugLog("%s: read error", clex->fileName);
        return ORTO_ReadError;
    }
    *text = (char *)malloc(n + 1);
    if (!*text) {
        DebugLog("%s: out of memory", clex->fileName);
        return ORTO_OutOfMemory;
    }
    if (fileRead(st->handle, *text, (int32_t)n) != (int32_t)n) {
        DebugLog("%s: read error", clex->fileName);
        return ORTO_ReadError;
    }
    (*text)[n] = 0;
    u16 nuls = 0;
    for (u32 i = 0; i < n; i++)
        if (!(*text)[i])
            nuls++;
    *strings = (char **)malloc((nuls ? nuls : 1) * sizeof(char *));
    if (!*strings) {
        DebugLog("%s: out of memory", clex->fileName);
        return ORTO_OutOfMemory;
    }
    char *s = *text;
    for (u16 i = 0; i < nuls; i++) {
        (*strings)[i] = s;
        s += strlen(s) + 1;
    }
    *count = nuls;
    return 0;
}

static i16 readSuffixes(CLex *clex, OpenState *st)
{
    RETURN_IF_NEG(readSuffixTable(clex, st, "simple", &clex->simpleText, &clex->simpleSuffixes,
                                  &clex->simpleCount));
    return readSuffixTable(clex, st, "extended", &clex->extendedText, &clex->extendedSuffixes,
                           &clex->extendedCount);
}

static i16 readDirectory(CLex *clex, OpenState *st)
{
    /* A directory cut off holds records that lie outside the file: refused
     * here rather than left to fail at a lookup. */
    u32 count = 0;
    if (readValue(st->handle, &count) != 4) {
        DebugLog("%s: directory runs past the end of the file", clex->fileName);
        return ORTO_BadFormat;
    }
    if (count > MaxSegments) {
        DebugLog("%s: too many segments (%hu)", clex->fileName, (u16)count);
        return ORTO_OutOfMemory;
    }
    int64_t bytes = (int64_t)count * DirRecordSize;
    if (bytes > bytesLeft(st)) {
        DebugLog("%s: directory runs past the end of the file", clex->fileName);
        return ORTO_BadFormat;
    }
    if (count == 0)
        return 0;
    unsigned char *records = (unsigned char *)malloc((size_t)bytes);
    clex->segments = (CLexSegment **)malloc(count * sizeof(CLexSegment *));
    clex->keyValues = (u32 *)malloc(count * sizeof(u32));
    clex->summaries = (CLexSummary *)calloc(count, sizeof(CLexSummary));
    if (!records || !clex->segments || !clex->keyValues || !clex->summaries) {
        free(records);
        DebugLog("%s: out of memory", clex->fileName);
        return ORTO_OutOfMemory;
    }
    if (fileRead(st->handle, records, (int32_t)bytes) != (int32_t)bytes) {
        free(records);
        DebugLog("%s: read error", clex->fileName);
        return ORTO_ReadError;
    }
    for (u32 i = 0; i < count; i++) {
        CLexSegment *segment = poolTake(&clex->segmentPool);
        if (!segment) {
            free(records);
            DebugLog("%s: out of memory", clex->fileName);
            return ORTO_OutOfMemory;
        }
        const unsigned char *r = records + i * DirRecordSize;
        memcpy(segment->key, r, SegKeySize);
        segment->offset = readBE32(r + 3);
        segment->length = readBE32(r + 7);
        segment->text = nullptr;
        segment->index = nullptr;
        segment->words = nullptr;
        segment->indexTried = 0;
        segment->lastUse = 0;
        clex->segments[clex->segmentCount++] = segment;
    }
    free(records);
    return 0;
}

/* Sections 1 to 4 are read field by field, and their length isn't used;
 * the text and unknown sections are passed by their length.  A value cut
 * off by the file's end is not stored: the next id finds the end. */
static i16 readSection(CLex *clex, OpenState *st, u32 id, u32 length)
{
    int32_t start = fileTell(st->handle);
    if (start < 0) {
        DebugLog("%s: read error", clex->fileName);
        return ORTO_ReadError;
    }
    if (id >= SectionSuffixes && id <= SectionText) {
        /* a second table or directory would leave the first one behind */
        if (st->seen[id]) {
            DebugLog("%s: section %lu twice", clex->fileName, (unsigned long)id);
            return ORTO_BadFormat;
        }
    }
    if (id <= SectionText)
        st->seen[id] = true;
    u32 value = 0;
    switch (id) {
    case SectionLanguage:
        if (readValue(st->handle, &value) == 4)
            clex->language = (u16)value;
        return 0;
    case SectionCharSize:
        if (readValue(st->handle, &value) != 4)
            return 0;
        clex->charSize = (u16)value;
        if (clex->charSize == CharSizeUnicode) {
            DebugLog("%s: Unicode lexicon not supported", clex->fileName);
            return ORTO_Unsupported;
        }
        /* the decoder knows one-byte characters only */
        if (clex->charSize != CharSizeByte) {
            DebugLog("%s: character size %hu not supported", clex->fileName, clex->charSize);
            return ORTO_BadFormat;
        }
        return 0;
    case SectionSuffixes:
        /* without the character size the tables can't be read */
        if (clex->charSize != CharSizeByte) {
            DebugLog("%s: suffix tables before character size", clex->fileName);
            return ORTO_BadFormat;
        }
        return readSuffixes(clex, st);
    case SectionDirectory:
        return readDirectory(clex, st);
    case SectionText:
        /* only the text that is there: a record beyond it is refused */
        clex->textOffset = (u32)start;
        clex->textLength = (u32)((int64_t)length < st->size - start ? length : st->size - start);
        break;
    default:
        break;
    }
    int64_t next = start + (int64_t)length;
    if (fileSeek(st->handle, (int32_t)(next < st->size ? next : st->size), FileFromStart) < 0) {
        DebugLog("%s: read error", clex->fileName);
        return ORTO_ReadError;
    }
    return 0;
}

/* The directory must be sorted for the binary search, and every record
 * must lie inside the segment text. */
static i16 checkDirectory(CLex *clex)
{
    for (u32 i = 0; i < clex->segmentCount; i++) {
        const CLexSegment *s = clex->segments[i];
        if ((uint64_t)s->offset + s->length > clex->textLength) {
            DebugLog("%s: segment %lu lies outside the segment text", clex->fileName,
                     (unsigned long)i);
            return ORTO_BadFormat;
        }
        if (i > 0 && memcmp(clex->segments[i - 1]->key, s->key, SegKeySize) >= 0) {
            DebugLog("%s: directory out of order at segment %lu", clex->fileName,
                     (unsigned long)i);
            return ORTO_BadFormat;
        }
    }
    CLex_IndexKeys(clex);
    return 0;
}

static i16 openSections(CLex *clex, OpenState *st)
{
    u32 magic = 0;
    if (readValue(st->handle, &magic) != 4) {
        DebugLog("error reading magic number from %s", clex->fileName);
        return ORTO_BadFormat;
    }
    if (magic != CLexMagic) {
        DebugLog("%s: magic number 0x%lx != 0x%lx", clex->fileName, (unsigned long)magic,
                 (unsigned long)CLexMagic);
        return ORTO_BadFormat;
    }
    for (;;) {
        u32 id = 0;
        u32 length = 0;
        if (readValue(st->handle, &id) != 4)
            break; /* the file's end, also inside an id */
        if (readValue(st->handle, &length) != 4) {
            DebugLog("%s: error reading section length", clex->fileName);
            return ORTO_BadFormat;
        }
        RETURN_IF_NEG(readSection(clex, st, id, length));
    }
    return checkDirectory(clex);
}

i16 CLex_Open(const char *fileName, u32 memoryBudget, CLex *clex)
{
    int handle = fileOpen(fileName, FileReadMode);
    if (handle < 0) {
        DebugLog("file open(%s) failed", fileName);
        return ORTO_FileOpenError;
    }
    memset(clex, 0, sizeof(*clex));
    StrCopy(clex->fileName, PathSize, fileName);
    clex->language = CLexDefaultLanguage;

    OpenState st = {};
    st.handle = handle;
    st.size = fileSize(handle);
    i16 rc = openSections(clex, &st);
    fileClose(handle);
    if (rc < 0) {
        CLex_Close(clex);
        return rc;
    }
    clex->budget = clex->budgetLeft = memoryBudget;
    clex->useClock = 0;
    if (memoryBudget != 0) {
        for (u32 i = 0; i < clex->segmentCount; i++) {
            if (clex->segments[i]->length > memoryBudget) {
                DebugLog("%s: segment size %lu > budget %lu", clex->fileName,
                         (unsigned long)clex->segments[i]->length, (unsigned long)memoryBudget);
                CLex_Close(clex);
                return ORTO_OutOfMemory;
            }
        }
    }
    return 0;
}

i16 CLex_OpenBody(Lexicon *lexicon, const char *fileName, u32 memoryBudget)
{
    lexicon->clex = (CLex *)calloc(1, sizeof(CLex));
    if (!lexicon->clex) {
        DebugLog("%s: out of memory", fileName);
        return ORTO_OutOfMemory;
    }
    i16 rc = CLex_Open(fileName, memoryBudget, lexicon->clex);
    if (rc < 0) {
        free(lexicon->clex);
        lexicon->clex = nullptr;
    }
    return rc;
}

void CLex_CloseBody(Lexicon *lexicon)
{
    if (!lexicon->clex)
        return;
    CLex_Close(lexicon->clex);
    free(lexicon->clex);
    lexicon->clex = nullptr;
}
