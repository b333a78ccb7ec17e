/*
 * lexsq_write.cpp -- the words of one list into segment text, and the
 * sorted list of finished segments.
 *
 * A segment holds the words that share their first three bytes; those
 * bytes live in the directory only.  Each word is written as the count of
 * tail characters it shares with the word before (front coding), then the
 * rest of its tail: literal bytes, until the rest from some position on is
 * exactly a suffix of the tables, which ends the word in one code (two for
 * an extended suffix); else an end code.  Positions are tried from the
 * left, so the longest suffix that ends the word wins, and the simple table
 * before the extended one.
 *
 * One record is built in a local buffer and written at once, so the output
 * goes out word by word, with nothing held across words.
 */
#include "lexicon/lexsq.h"

#include <stdlib.h>
#include <string.h>

#include "engine/charclass.h"
#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "orto.h"
#include "platform/file.h"

static const int WordLineSize = 128;

/* A byte a word may hold.  Below 0x20 every byte is a code of the segment
 * text, so TAB, LF and CR are refused although they count as space. */
static bool storableByte(unsigned char c)
{
    return c >= SegCodeLiteralFirst && (IsLetter(c) || IsDigit(c) || IsPunct(c) || IsSpace(c));
}

/* Encodes one word of three or more characters into `out`; its length. */
static u32 encodeWord(const LexSq *lexSq, const u16 *simpleLen, const u16 *extendedLen,
                      const char *current, u16 currentLen, const char *previous,
                      u16 previousLen, unsigned char *out)
{
    u16 n = 0;
    while (SegKeySize + n < currentLen && SegKeySize + n < previousLen &&
           current[SegKeySize + n] == previous[SegKeySize + n])
        n++;
    u32 used = 0;
    out[used++] = (unsigned char)n;
    for (u16 p = (u16)(SegKeySize + n); p < currentLen; p++) {
        u16 rest = (u16)(currentLen - p);
        for (u16 i = 0; i < lexSq->simpleCount; i++) {
            if (simpleLen[i] == rest && memcmp(current + p, lexSq->simple[i], rest) == 0) {
                out[used++] = (unsigned char)(SegCodeSimpleFirst + i);
                return used;
            }
        }
        for (u16 i = 0; i < lexSq->extendedCount; i++) {
            if (extendedLen[i] == rest && memcmp(current + p, lexSq->extended[i], rest) == 0) {
                out[used++] = SegCodeExtended;
                out[used++] = (unsigned char)i;
                return used;
            }
        }
        out[used++] = (unsigned char)current[p];
    }
    out[used++] = SegCodeEnd;
    return used;
}

/* Ends the segment in the making at the current file position. */
static i16 closeSegment(LexSq *lexSq, LexSqSegment *segment)
{
    int32_t position = fileTell(lexSq->handle);
    if (position < 0) {
        DebugLog("error writing to %s", lexSq->fileName);
        return ORTO_WriteError;
    }
    segment->length = (u32)position - segment->offset;
    return addSegment(lexSq, segment);
}

/* The word loop, on an open list; the caller closes it. */
static i16 compressList(LexSq *lexSq, int list, const char *wordFile, u32 *lineNumber)
{
    u16 simpleLen[MaxSimpleSuffixes];
    u16 extendedLen[MaxExtendedSuffixes];
    for (u16 i = 0; i < lexSq->simpleCount; i++)
        simpleLen[i] = StrLen(lexSq->simple[i]);
    for (u16 i = 0; i < lexSq->extendedCount; i++)
        extendedLen[i] = StrLen(lexSq->extended[i]);

    LexSqSegment segment = {};
    char buffers[2][WordSize] = {};
    char *current = buffers[0];
    char *previous = buffers[1];
    u16 previousLen = 0;
    char line[WordLineSize];
    unsigned char record[2 + WordSize];

    for (;;) {
        int32_t len = fileReadLine(list, line, sizeof line);
        if (len < 0)
            break;
        (*lineNumber)++;
        if (len == 0 || line[0] == '#')
            continue;
        if (len > WordSize - 1) {
            DebugLog("word at line %lu in %s too long", (unsigned long)*lineNumber, wordFile);
            return ORTO_InvalidWord;
        }
        memcpy(current, line, (size_t)len + 1);
        if (StrCompare(current, previous) <= 0) {
            DebugLog("word at line %lu in %s out of sequence ", (unsigned long)*lineNumber,
                     wordFile);
            return ORTO_OutOfSequence;
        }
        for (int32_t i = 0; i < len; i++) {
            if (!storableByte((unsigned char)current[i])) {
                DebugLog("invalid word at line %lu in %s", (unsigned long)*lineNumber, wordFile);
                return ORTO_InvalidWord;
            }
        }

        char key[SegKeySize] = {};
        memcpy(key, current, len < SegKeySize ? (size_t)len : (size_t)SegKeySize);
        if (memcmp(key, segment.key, SegKeySize) != 0) {
            if (segment.key[0])
                RETURN_IF_NEG(closeSegment(lexSq, &segment));
            int32_t position = fileTell(lexSq->handle);
            if (position < 0) {
                DebugLog("error writing to %s", lexSq->fileName);
                return ORTO_WriteError;
            }
            segment.offset = (u32)position;
            segment.length = 0;
            memcpy(segment.key, key, SegKeySize);
            previous[0] = '\0';
            previousLen = 0;
        }

        u32 used;
        if (len < SegKeySize) {
            record[0] = 0;
            record[1] = SegCodeEnd;
            used = 2;
        } else {
            used = encodeWord(lexSq, simpleLen, extendedLen, current, (u16)len, previous,
                              previousLen, record);
        }
        RETURN_IF_NEG(LexSq_Write(lexSq, record, used));

        char *swap = previous;
        previous = current;
        current = swap;
        previousLen = (u16)len;
    }
    if (segment.key[0])
        RETURN_IF_NEG(closeSegment(lexSq, &segment));
    return 0;
}

i16 LexSq_File(LexSq *lexSq, const char *wordFile, u32 *lineNumber)
{
    *lineNumber = 0;
    /* After a failed start no file is open: nothing may be written. */
    if (lexSq->handle == -1 || !lexSq->fileIsOpen) {
        DebugLog("LexSq_Init not called");
        return ORTO_Unsupported;
    }
    int list = fileOpen(wordFile, 3);
    if (list < 0) {
        DebugLog("can't open %s", wordFile);
        return ORTO_OpenError;
    }
    i16 rc = compressList(lexSq, list, wordFile, lineNumber);
    fileClose(list);
    return rc;
}

i16 addSegment(LexSq *lexSq, const LexSqSegment *segment)
{
    /* The directory count is 16 bits wide in every reader. */
    if (lexSq->segmentCount >= MaxSegments) {
        DebugLog("addSegment: too many segments");
        return ORTO_OutOfMemory;
    }
    LexSqSegment *node = (LexSqSegment *)malloc(sizeof *node);
    if (!node) {
        DebugLog("addSegment: out of memory");
        return ORTO_OutOfMemory;
    }
    *node = *segment;
    node->next = nullptr;

    /* Lists usually come in key order: then the new node goes last at once. */
    LexSqSegment *tail = lexSq->lastSegment;
    if (!tail || memcmp(tail->key, node->key, SegKeySize) < 0) {
        if (tail)
            tail->next = node;
        else
            lexSq->segments = node;
        lexSq->lastSegment = node;
        lexSq->segmentCount++;
        return 0;
    }
    LexSqSegment **link = &lexSq->segments;
    while (memcmp((*link)->key, node->key, SegKeySize) < 0)
        link = &(*link)->next;
    if (memcmp((*link)->key, node->key, SegKeySize) == 0) {
        DebugLog("addSegment: duplicate segment");
        free(node);
        return ORTO_OutOfSequence;
    }
    node->next = *link;
    *link = node;
    lexSq->segmentCount++;
    return 0;
}

void LexSq_FreeSegments(LexSq *lexSq)
{
    LexSqSegment *seg = lexSq->segments;
    while (seg) {
        LexSqSegment *next = seg->next;
        free(seg);
        seg = next;
    }
    lexSq->segments = nullptr;
    lexSq->lastSegment = nullptr;
    lexSq->segmentCount = 0;
}
