/*
 * clex_words.cpp -- a resident segment decoded once, for walks that read
 * every word of it again and again.
 *
 * A suggestion walk weighs each word of a segment against the checked word
 * and rejects nearly all of them after a glance at their length or first
 * differing character.  On front-coded text even a rejected record must be
 * stepped over byte by byte, and a word that builds on rejected ones must
 * have them decoded first; that cost, and not the scoring, was most of a
 * walk.  Decoded, each word stands whole at a known place, with its length
 * and the characters it shares with the word before in two byte arrays, so
 * a walk tests a record with two loads and passes a run of words that
 * share a rejected beginning by scanning bytes.
 *
 * The table is built from text that CLex_CheckSegmentText accepted, at the
 * first walk that wants it, and lives and dies with that text.  Like the
 * checkpoint index, it is not counted against the cache budget, which
 * bounds segment text as the file holds it: it takes about the decoded
 * size of the words plus 6 bytes each (for the bundled en-US lexicon, about
 * 1.2 MB once every segment has been walked).  Without memory for it, the
 * walk decodes the text itself.
 */
#include <stdlib.h>
#include <string.h>

#include "lexicon/clex.h"

void CLex_BuildWords(const CLex *clex, CLexSegment *segment)
{
    segment->words = nullptr;
    if (!segment->text || segment->key[2] == 0)
        return;
    CLexCursor cur;
    u32 count = 0, chars = 0;
    CLex_StartSegment(&cur, clex, segment);
    while (CLex_NextWord(&cur)) {
        count++;
        chars += SegKeySize + cur.tailLength + 1;
    }
    if (cur.damaged || count == 0)
        return;
    size_t bytes = sizeof(CLexWords) + count * sizeof(u32) + (count + CLexWordsPad) +
                   count + chars + CLexWordsPad;
    CLexWords *words = (CLexWords *)malloc(bytes);
    if (!words)
        return;
    words->text = segment->text;
    words->count = count;
    words->bytes = (u32)bytes;
    u32 *at = (u32 *)(words + 1);
    unsigned char *shared = (unsigned char *)(at + count);
    unsigned char *length = shared + count + CLexWordsPad;
    char *text = (char *)(length + count);
    words->minLength = 255;
    words->maxLength = 0;

    u32 i = 0, used = 0;
    const char *before = "";
    CLex_StartSegment(&cur, clex, segment);
    while (const char *w = CLex_NextWord(&cur)) {
        u32 n = SegKeySize + cur.tailLength;
        u32 s = 0;
        while (s < n && before[s] == w[s])
            s++;
        at[i] = used;
        shared[i] = (unsigned char)s;
        length[i] = (unsigned char)n;
        if (n < words->minLength)
            words->minLength = (unsigned char)n;
        if (n > words->maxLength)
            words->maxLength = (unsigned char)n;
        memcpy(text + used, w, n + 1);
        before = text + used;
        used += n + 1;
        i++;
    }
    /* a shared count of 0 behind the last word ends every run, and the
     * padding lets a reader load a few bytes past a word's NUL */
    memset(shared + count, 0, CLexWordsPad);
    memset(text + used, 0, CLexWordsPad);
    segment->words = words;
}

void CLex_DropWords(CLexSegment *segment)
{
    free(segment->words);
    segment->words = nullptr;
}
