/*
 * clex_cache.cpp -- the segment cache of a compressed lexicon: loadSeg.
 *
 * A segment's text is read from the file the first time it is needed and
 * stays resident.  With a budget, the resident text never passes `budget`
 * bytes: before a load, the least recently used segments (lowest lastUse,
 * the first in directory order on a tie) are evicted until the new one
 * fits.  Finding that segment is a walk over the whole directory, once per
 * eviction: evictions are rare next to hits, and the walk needs no list to
 * keep in step.  A hit touches no file.
 *
 * The file is opened by name for each load and closed at once, since no
 * handle may stay open between two calls.  Text that comes in is checked
 * once, here, so that the decoders can rely on its records; a segment that
 * doesn't decode cleanly is refused like one that can't be read.  A long
 * segment gets its checkpoint index here too (clex_index.cpp), at its
 * first hit, and loses it with its text, as it loses the decoded words a
 * walk may have made of it (clex_words.cpp).
 */
#include <stdlib.h>

#include "engine/debug_log.h"
#include "lexicon/clex.h"
#include "orto.h"
#include "platform/file.h"

/* Frees the least recently used resident segment.  False when none is
 * resident. */
static bool evictOne(CLex *clex)
{
    CLexSegment *oldest = nullptr;
    for (u32 i = 0; i < clex->segmentCount; i++) {
        CLexSegment *s = clex->segments[i];
        if (s->text && (!oldest || s->lastUse < oldest->lastUse))
            oldest = s;
    }
    if (!oldest)
        return false;
    CLex_DropIndex(oldest);
    CLex_DropWords(oldest);
    free(oldest->text);
    oldest->text = nullptr;
    clex->budgetLeft += oldest->length;
    return true;
}

static i16 dropText(CLexSegment *segment, int handle, i16 rc)
{
    free(segment->text);
    segment->text = nullptr;
    if (handle >= 0)
        fileClose(handle);
    return rc;
}

i16 loadSeg(CLex *clex, CLexSegment *segment)
{
    clex->useClock++;
    if (segment->text) {
        segment->lastUse = clex->useClock;
        if (!segment->indexTried)
            CLex_BuildIndex(clex, segment);
        return 0;
    }
    if (segment->length == 0)
        return ORTO_NotFound;
    if (clex->budget != 0) {
        while (segment->length > clex->budgetLeft)
            if (!evictOne(clex))
                break; /* can't happen while every segment fits the budget */
        if (segment->length > clex->budgetLeft)
            return ORTO_OutOfMemory;
    }
    segment->text = (unsigned char *)malloc(segment->length);
    if (!segment->text) {
        DebugLog("loadSeg: out of memory");
        return ORTO_OutOfMemory;
    }
    int handle = fileOpen(clex->fileName, FileReadMode);
    if (handle < 0) {
        DebugLog("loadSeg: error opening %s", clex->fileName);
        return dropText(segment, -1, ORTO_OpenError);
    }
    clex->fileLoads++;
    /* CLex_Open saw offset + length inside the text, and the text inside the
     * file, so the sum stays below the file's 32-bit size */
    if (fileSeek(handle, (int32_t)(clex->textOffset + segment->offset), FileFromStart) < 0) {
        DebugLog("loadSeg: seek error");
        return dropText(segment, handle, ORTO_BadFormat);
    }
    if (fileRead(handle, segment->text, (int32_t)segment->length) != (int32_t)segment->length) {
        DebugLog("loadSeg: read error");
        return dropText(segment, handle, ORTO_BadFormat);
    }
    fileClose(handle);
    /* a key of one or two characters is the word; its text is never decoded */
    if (segment->key[2] != 0 &&
        !CLex_CheckSegmentText(clex, segment->text, segment->length)) {
        DebugLog("loadSeg: damaged segment in %s", clex->fileName);
        return dropText(segment, -1, ORTO_BadFormat);
    }
    segment->lastUse = clex->useClock;
    if (clex->budget != 0)
        clex->budgetLeft -= segment->length;
    return 0;
}
