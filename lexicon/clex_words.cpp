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
 * and the letters it holds in arrays of their own, so a walk weighs all of
 * them by their lengths and letters, a block at a time, before it reads
 * the characters of the few that pass.
 *
 * The table is built from text that CLex_CheckSegmentText accepted, at the
 * first walk that wants it, and lives and dies with that text.  Like the
 * checkpoint index, it is not counted against the cache budget, which
 * bounds segment text as the file holds it: it takes the decoded words
 * plus 13 bytes each (for the bundled en-US lexicon, about 25 bytes a
 * word, 1.9 MB once every segment has been walked, against 200 KB of
 * text).  Without memory for it, the walk decodes the text itself.
 */
#include <stdlib.h>
#include <string.h>

#include "engine/charclass.h"
#include "lexicon/clex.h"

void CLex_BuildWords(CLex *clex, u32 index)
{
    CLexSegment *segment = clex->segments[index];
    segment->words = nullptr;
    if (!segment->text || segment->key[2] == 0)
        return;
    CLexCursor cur;
    u32 count = 0, chars = 0;
    CLex_StartSegment(&cur, clex, segment);
    while (const char *w = CLex_NextWord(&cur)) {
        count++;
        /* as a string: a damaged key may hold a NUL */
        chars += (u32)strlen(w) + 1;
    }
    if (cur.damaged || count == 0)
        return;
    size_t bytes = sizeof(CLexWords) + 3 * count * sizeof(u32) + count + chars + CLexWordsPad;
    CLexWords *words = (CLexWords *)malloc(bytes);
    if (!words)
        return;
    words->text = segment->text;
    words->count = count;
    words->bytes = (u32)bytes;
    u32 *letters = (u32 *)CLex_WordsLetters(words);
    u32 *tailLetters = (u32 *)CLex_WordsTailLetters(words);
    u32 *at = (u32 *)CLex_WordsAt(words);
    unsigned char *length = (unsigned char *)CLex_WordsLength(words);
    char *text = (char *)CLex_WordsChars(words);
    u32 allLetters = 0;
    unsigned char shortest = 255, longest = 0;

    u32 i = 0, used = 0;
    CLex_StartSegment(&cur, clex, segment);
    while (const char *w = CLex_NextWord(&cur)) {
        u32 n = (u32)strlen(w);
        at[i] = used;
        tailLetters[i] = 0;
        for (u32 k = SegKeySize; k < n; k++)
            tailLetters[i] |= CLex_LetterBit(baseLetter[(unsigned char)w[k]]);
        letters[i] = tailLetters[i];
        for (u32 k = 0; k < SegKeySize && k < n; k++)
            letters[i] |= CLex_LetterBit(baseLetter[(unsigned char)w[k]]);
        length[i] = (unsigned char)n;
        allLetters |= letters[i];
        if (n < shortest)
            shortest = (unsigned char)n;
        if (n > longest)
            longest = (unsigned char)n;
        memcpy(text + used, w, n + 1);
        used += n + 1;
        i++;
    }
    /* the padding lets a reader load a few bytes past a word's NUL */
    memset(text + used, 0, CLexWordsPad);
    segment->words = words;
    clex->summaries[index] = {allLetters, shortest, longest};
}

void CLex_DropWords(CLexSegment *segment)
{
    free(segment->words);
    segment->words = nullptr;
}
