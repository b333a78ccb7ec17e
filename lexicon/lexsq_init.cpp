/*
 * lexsq_init.cpp -- the frame of a compression: creating the output,
 * the sections before the words (language, character size, suffix tables,
 * the header of the text), and at the end the directory.
 *
 * The file is written front to back.  Only the length of section 5 is not
 * known until the end: LexSq_Init leaves four bytes for it, and LexSq_End
 * seeks back and fills them in before it appends the directory.
 *
 * The output is a temporary file "<output>.<pid>-<n>.tmp" beside the target,
 * created exclusively so that two compressions never share it, and renamed
 * over the target only when the whole file stands.  Every write is checked:
 * a full disk gives ORTO_WriteError here rather than a damaged lexicon later.
 */
#include "lexicon/lexsq.h"

#include <stdio.h>
#include <string.h>

#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "orto.h"
#include "platform/file.h"

/* Suffix lines are read like word lines. */
static const int SuffixLineSize = 128;
/* Names tried for the temporary file before giving up. */
static const int TempNameTries = 100;

void LexSq_Clear(LexSq *lexSq)
{
    memset(lexSq, 0, sizeof *lexSq);
    lexSq->handle = -1;
}

i16 LexSq_Write(LexSq *lexSq, const void *bytes, u32 count)
{
    if (fileWrite(lexSq->handle, bytes, (int32_t)count) != (int32_t)count) {
        DebugLog("error writing to %s", lexSq->fileName);
        return ORTO_WriteError;
    }
    return 0;
}

i16 LexSq_WriteValue(LexSq *lexSq, u32 value)
{
    u32 fileValue = fromFileOrder(value);
    return LexSq_Write(lexSq, &fileValue, 4);
}

/* Creates the temporary file; the handle, or -1. */
static int createTemp(LexSq *lexSq)
{
    for (int n = 0; n < TempNameTries; n++) {
        snprintf(lexSq->tempName, sizeof lexSq->tempName, "%s.%ld-%d.tmp", lexSq->fileName,
                 (long)fileProcessId(), n);
        int handle = fileCreateNew(lexSq->tempName, lexSq->fileName);
        if (handle >= 0 || !fileLastErrorWasExists())
            return handle;
    }
    return -1;
}

static i16 writeHeaderSections(LexSq *lexSq, i16 language)
{
    u32 magic = fromFileOrder(CLexMagic);
    if (fileWrite(lexSq->handle, &magic, 4) != 4) {
        DebugLog("can't write to %s", lexSq->fileName);
        return ORTO_WriteError;
    }
    RETURN_IF_NEG(LexSq_WriteValue(lexSq, SectionLanguage));
    RETURN_IF_NEG(LexSq_WriteValue(lexSq, 4));
    /* The i16 widened with its sign: readers look at the low 16 bits only. */
    RETURN_IF_NEG(LexSq_WriteValue(lexSq, (u32)(i32)language));
    RETURN_IF_NEG(LexSq_WriteValue(lexSq, SectionCharSize));
    RETURN_IF_NEG(LexSq_WriteValue(lexSq, 4));
    return LexSq_WriteValue(lexSq, CharSizeByte);
}

i16 LexSq_Init(LexSq *lexSq, const char *outputFile, const char *suffixFile, i16 language,
               u32 *lineNumber)
{
    LexSq_FreeSegments(lexSq);
    LexSq_Clear(lexSq);
    /* A name that doesn't fit is refused rather than cut: a cut name would
     * put the lexicon somewhere the caller never asked for. */
    if (!outputFile[0] || StrLen(outputFile) >= PathSize) {
        DebugLog("can't open %s", outputFile);
        return ORTO_OpenError;
    }
    StrCopy(lexSq->fileName, PathSize, outputFile);

    lexSq->handle = createTemp(lexSq);
    if (lexSq->handle < 0) {
        DebugLog("can't open %s", outputFile);
        lexSq->handle = -1;
        return ORTO_OpenError;
    }
    lexSq->fileIsOpen = 1;

    i16 rc = writeHeaderSections(lexSq, language);
    if (rc == 0 && suffixFile)
        rc = LexSq_ReadSuffixes(lexSq, suffixFile, lineNumber);
    if (rc == 0)
        rc = LexSq_WriteSuffixes(lexSq);
    if (rc == 0) {
        rc = LexSq_WriteValue(lexSq, SectionText);
        if (rc == 0)
            rc = LexSq_WriteValue(lexSq, 0); /* length, filled in by LexSq_End */
    }
    int32_t position = rc == 0 ? fileTell(lexSq->handle) : 0;
    if (rc == 0 && position < 0) {
        DebugLog("error writing to %s", lexSq->fileName);
        rc = ORTO_WriteError;
    }
    if (rc < 0) {
        /* Nothing of a failed start stays open or on the disk. */
        LexSq_Abort(lexSq);
        return rc;
    }
    lexSq->textStart = (u32)position;
    return 0;
}

i16 LexSq_ReadSuffixes(LexSq *lexSq, const char *suffixFile, u32 *lineNumber)
{
    *lineNumber = 0;
    int handle = fileOpen(suffixFile, 3);
    if (handle < 0) {
        DebugLog("can't open %s", suffixFile);
        return ORTO_OpenError;
    }
    char line[SuffixLineSize];
    while (lexSq->simpleCount < MaxSimpleSuffixes && fileReadLine(handle, line, sizeof line) >= 0) {
        (*lineNumber)++;
        if (line[0] != '#')
            StrCopy(lexSq->simple[lexSq->simpleCount++], MaxSuffixLength + 1, line);
    }
    while (lexSq->extendedCount < MaxExtendedSuffixes &&
           fileReadLine(handle, line, sizeof line) >= 0) {
        if (line[0] != '#')
            StrCopy(lexSq->extended[lexSq->extendedCount++], MaxSuffixLength + 1, line);
    }
    fileClose(handle);
    return 0;
}

/* Appends a table's strings with their NULs at `out`; the bytes used. */
static u32 packTable(const char (*table)[MaxSuffixLength + 1], u16 count, unsigned char *out)
{
    u32 used = 0;
    for (u16 i = 0; i < count; i++) {
        u16 len = StrLen(table[i]);
        memcpy(out + used, table[i], len + 1u);
        used += len + 1u;
    }
    return used;
}

i16 LexSq_WriteSuffixes(LexSq *lexSq)
{
    /* The whole section fits a small buffer: at most 285 strings of 9. */
    unsigned char section[3 * 4 + 4 + (MaxSimpleSuffixes + MaxExtendedSuffixes) * (MaxSuffixLength + 1)];
    u32 simpleSize = packTable(lexSq->simple, lexSq->simpleCount, section + 12);
    u32 at = 12 + simpleSize;
    u32 extendedSize = packTable(lexSq->extended, lexSq->extendedCount, section + at + 4);
    writeBE32(section, SectionSuffixes);
    writeBE32(section + 4, simpleSize + extendedSize + 8);
    writeBE32(section + 8, simpleSize);
    writeBE32(section + at, extendedSize);
    return LexSq_Write(lexSq, section, at + 4 + extendedSize);
}

/* Section 4: its header, the count, then one record per segment. */
static i16 writeDirectory(LexSq *lexSq)
{
    RETURN_IF_NEG(LexSq_WriteValue(lexSq, SectionDirectory));
    RETURN_IF_NEG(LexSq_WriteValue(lexSq, DirRecordSize * lexSq->segmentCount + 4));
    RETURN_IF_NEG(LexSq_WriteValue(lexSq, lexSq->segmentCount));
    /* Records go out a hundred at a time rather than one write each. */
    unsigned char chunk[100 * DirRecordSize];
    u32 used = 0;
    for (LexSqSegment *seg = lexSq->segments; seg; seg = seg->next) {
        memcpy(chunk + used, seg->key, SegKeySize);
        writeBE32(chunk + used + 3, seg->offset - lexSq->textStart);
        writeBE32(chunk + used + 7, seg->length);
        used += DirRecordSize;
        if (used == sizeof chunk) {
            RETURN_IF_NEG(LexSq_Write(lexSq, chunk, used));
            used = 0;
        }
    }
    return used ? LexSq_Write(lexSq, chunk, used) : 0;
}

static i16 finishFile(LexSq *lexSq)
{
    int32_t end = fileTell(lexSq->handle);
    if (end < 0 || fileSeek(lexSq->handle, (int32_t)lexSq->textStart - 4, FileFromStart) < 0) {
        DebugLog("error writing to %s", lexSq->fileName);
        return ORTO_WriteError;
    }
    RETURN_IF_NEG(LexSq_WriteValue(lexSq, (u32)end - lexSq->textStart));
    if (fileSeek(lexSq->handle, end, FileFromStart) < 0) {
        DebugLog("error writing to %s", lexSq->fileName);
        return ORTO_WriteError;
    }
    RETURN_IF_NEG(writeDirectory(lexSq));
    /* On the disk before it takes the target's name, or a crash could leave
     * an empty lexicon in place of the old one. */
    if (fileSync(lexSq->handle) < 0) {
        DebugLog("error writing to %s", lexSq->fileName);
        return ORTO_WriteError;
    }
    return 0;
}

i16 LexSq_End(LexSq *lexSq)
{
    if (lexSq->handle == -1 || !lexSq->fileIsOpen) {
        DebugLog("LexSq_Init not called");
        return ORTO_Unsupported;
    }
    i16 rc = finishFile(lexSq);
    if (rc < 0) {
        LexSq_Abort(lexSq);
        return rc;
    }
    int closed = fileClose(lexSq->handle);
    lexSq->handle = -1;
    lexSq->fileIsOpen = 0;
    if (closed < 0) {
        DebugLog("error writing to %s", lexSq->fileName);
        fileDelete(lexSq->tempName);
        LexSq_FreeSegments(lexSq);
        return ORTO_WriteError;
    }
    if (fileRename(lexSq->tempName, lexSq->fileName) < 0) {
        DebugLog("LexSq_End: can't rename %s to %s", lexSq->tempName, lexSq->fileName);
        fileDelete(lexSq->tempName);
        LexSq_FreeSegments(lexSq);
        return ORTO_WriteError;
    }
    fileSyncDir(lexSq->fileName); /* best effort: the lexicon stands either way */
    LexSq_FreeSegments(lexSq);
    return 0;
}

void LexSq_Abort(LexSq *lexSq)
{
    if (lexSq->fileIsOpen) {
        fileClose(lexSq->handle);
        fileDelete(lexSq->tempName);
        lexSq->fileIsOpen = 0;
    }
    lexSq->handle = -1;
    LexSq_FreeSegments(lexSq);
}
