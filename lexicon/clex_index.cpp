/*
 * clex_index.cpp -- checkpoints over a long resident segment, so that the
 * exact search starts near the word sought instead of at the first record.
 *
 * Front coding makes a segment readable only from its start, and a few
 * keys (con, pro, int...) hold hundreds of words, so a lookup in them
 * passed most of its time skipping records.  When such a segment is used
 * a second time while resident (loadSeg), every CLexIndexStep-th record is
 * noted with its offset and the first 8 characters of its tail (the word
 * less its key) as a big-endian number; a binary search over these numbers
 * picks the last checkpoint below the word sought, and the search starts
 * behind it instead of at the first record.  Whole tails are not kept: 8
 * characters settle nearly every search, and the rare word that shares
 * them with a checkpoint is searched from an earlier one.
 *
 * The index is built by the cursor from text that CLex_CheckSegmentText
 * accepted, and lives and dies with that text.  It waits for the second
 * use because building it costs a few lookups' worth of decoding, which a
 * segment read for one lookup and evicted again would never earn back.
 *
 * Its memory is not counted against the cache budget: the budget bounds
 * segment text, as the caller sees it in the file, and eviction stays as
 * it was.  The index is kept small instead: 12 bytes per CLexIndexStep
 * records, and only segments of more than CLexIndexMinRecords records get
 * one (for the bundled en-US lexicon, about a quarter of its text).
 * Without memory for it, the search simply starts at the first record.
 */
#include <stdlib.h>
#include <string.h>

#include "lexicon/clex.h"
#include "lexicon/clex_skip.h"

/* The first 8 characters of a tail, NUL-padded, as a number that orders
 * like the bytes. */
static inline uint64_t tailPrefix(const unsigned char *tail)
{
    uint64_t v = 0;
    int i = 0;
    for (; i < 8 && tail[i]; i++)
        v = (v << 8) | tail[i];
    return i == 0 ? 0 : v << (8 * (8 - i)); /* a shift by 64 would be undefined */
}

void CLex_BuildIndex(const CLex *clex, CLexSegment *segment)
{
    segment->index = nullptr;
    segment->indexTried = 1;
    if (!segment->text || segment->key[2] == 0)
        return;
    CLexCursor cur;
    u32 records = 0;
    CLex_StartSegment(&cur, clex, segment);
    while (CLex_NextWord(&cur))
        records++;
    if (cur.damaged || records <= CLexIndexMinRecords)
        return;
    u32 count = (records + CLexIndexStep - 1) / CLexIndexStep;
    size_t bytes = sizeof(CLexIndex) + count * sizeof(uint64_t) + (count + 1) * sizeof(u32);
    CLexIndex *index = (CLexIndex *)malloc(bytes);
    if (!index)
        return; /* the search starts at the first record, as without an index */
    index->text = segment->text;
    index->count = count;
    index->bytes = (u32)bytes;
    uint64_t *prefix = (uint64_t *)(index + 1);
    u32 *recordAt = (u32 *)(prefix + count);

    u32 r = 0, k = 0;
    CLex_StartSegment(&cur, clex, segment);
    for (;;) {
        u32 offset = (u32)(cur.p - segment->text);
        if (!CLex_NextWord(&cur))
            break;
        if (r++ % CLexIndexStep != 0)
            continue;
        recordAt[k] = offset;
        prefix[k] = tailPrefix((const unsigned char *)cur.word + SegKeySize);
        k++;
    }
    recordAt[count] = segment->length;
    segment->index = index;
}

void CLex_DropIndex(CLexSegment *segment)
{
    free(segment->index);
    segment->index = nullptr;
    segment->indexTried = 0;
}

/* The search starts behind the last checkpoint below the sought tail, with
 * m the characters they share.  The prefixes alone tell both, except when
 * a checkpoint's first 8 characters are the sought ones: equal prefixes
 * with a NUL in them are equal tails, and longer ones send the search back
 * to the last checkpoint whose prefix is below (or to the first record). */
int CLex_IndexStart(const CLexIndex *index, const unsigned char *target, u32 *from, u32 *m)
{
    uint64_t want = tailPrefix(target);
    const uint64_t *prefix = CLex_IndexPrefix(index);
    const u32 *recordAt = CLex_IndexRecordAt(index);
    u32 base = 0, n = index->count;
    while (n > 1) {
        u32 half = n / 2;
        base = prefix[base + half] <= want ? base + half : base;
        n -= half;
    }
    if (prefix[base] > want)
        return -1; /* below the first word */
    if (prefix[base] == want) {
        if ((want & 0xFF) == 0)
            return 1;
        while (base > 0 && prefix[base] == want)
            base--;
        if (prefix[base] == want) {
            *from = 0;
            *m = 0;
            return 0;
        }
    }
    *m = (u32)__builtin_clzll(prefix[base] ^ want) / 8;
    const unsigned char *record = index->text + recordAt[base];
    const unsigned char *next = skipRecord(record + 1, index->text + recordAt[base + 1]);
    if (!next)
        return -1; /* can't happen on checked text */
    *from = (u32)(next - index->text);
    return 0;
}
