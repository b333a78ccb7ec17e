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
 * a walk tests a record with a few loads and passes a run of words that
 * share a rejected beginning by scanning bytes.  Words that share their
 * first four characters form a group, with the letters and the lengths of
 * all its words, so that a walk can pass a whole group at one test.
 *
 * The table is built from text that CLex_CheckSegmentText accepted, at the
 * first walk that wants it, and lives and dies with that text.  Like the
 * checkpoint index, it is not counted against the cache budget, which
 * bounds segment text as the file holds it: it takes the decoded words
 * plus 14 bytes each and 16 a group (for the bundled en-US lexicon, about
 * 31 bytes a word, 2.3 MB once every segment has been walked, against
 * 200 KB of text).  Without memory for it, the walk decodes the text
 * itself.
 */
#include <stdlib.h>
#include <string.h>

#include "engine/charclass.h"
#include "lexicon/clex.h"

/* Characters shared by two words, up to the end of the shorter. */
static u32 sharedLength(const char *a, const char *b)
{
    u32 s = 0;
    while (a[s] && a[s] == b[s])
        s++;
    return s;
}

void CLex_BuildWords(CLex *clex, u32 index)
{
    CLexSegment *segment = clex->segments[index];
    segment->words = nullptr;
    if (!segment->text || segment->key[2] == 0)
        return;
    CLexCursor cur;
    u32 count = 0, chars = 0, groups = 0;
    char before[WordSize] = "";
    CLex_StartSegment(&cur, clex, segment);
    while (const char *w = CLex_NextWord(&cur)) {
        if (count == 0 || sharedLength(w, before) < CLexGroupShared)
            groups++;
        count++;
        /* as a string: a damaged key may hold a NUL */
        u32 n = (u32)strlen(w);
        chars += n + 1;
        memcpy(before, w, n + 1);
    }
    if (cur.damaged || count == 0)
        return;
    size_t bytes = sizeof(CLexWords) + groups * sizeof(CLexWordsGroup) +
                   3 * count * sizeof(u32) + (count + CLexWordsPad) + count + chars +
                   CLexWordsPad;
    CLexWords *words = (CLexWords *)malloc(bytes);
    if (!words)
        return;
    words->text = segment->text;
    words->count = count;
    words->groupCount = groups;
    words->bytes = (u32)bytes;
    CLexWordsGroup *group = (CLexWordsGroup *)CLex_WordsGroups(words);
    u32 *at = (u32 *)CLex_WordsAt(words);
    u32 *letters = (u32 *)CLex_WordsLetters(words);
    u32 *tailLetters = (u32 *)CLex_WordsTailLetters(words);
    unsigned char *shared = (unsigned char *)CLex_WordsShared(words);
    unsigned char *length = (unsigned char *)CLex_WordsLength(words);
    char *text = (char *)CLex_WordsChars(words);
    u32 allLetters = 0;
    unsigned char shortest = 255, longest = 0;

    u32 i = 0, used = 0, g = 0;
    const char *previous = "";
    CLex_StartSegment(&cur, clex, segment);
    while (const char *w = CLex_NextWord(&cur)) {
        u32 n = (u32)strlen(w);
        u32 s = sharedLength(w, previous);
        if (i == 0 || s < CLexGroupShared) {
            if (i > 0)
                g++;
            group[g] = {i, 0, 0, ~0u, 255, 0, (unsigned char)w[SegKeySize]};
        }
        at[i] = used;
        tailLetters[i] = 0;
        for (u32 k = SegKeySize; k < n; k++)
            tailLetters[i] |= CLex_LetterBit(baseLetter[(unsigned char)w[k]]);
        letters[i] = tailLetters[i];
        for (u32 k = 0; k < SegKeySize && k < n; k++)
            letters[i] |= CLex_LetterBit(baseLetter[(unsigned char)w[k]]);
        shared[i] = (unsigned char)s;
        length[i] = (unsigned char)n;
        group[g].end = i + 1;
        group[g].letters |= letters[i];
        group[g].tailLetters |= tailLetters[i];
        group[g].sureLetters &= tailLetters[i];
        if (n < group[g].minLength)
            group[g].minLength = (unsigned char)n;
        if (n > group[g].maxLength)
            group[g].maxLength = (unsigned char)n;
        allLetters |= letters[i];
        if (n < shortest)
            shortest = (unsigned char)n;
        if (n > longest)
            longest = (unsigned char)n;
        memcpy(text + used, w, n + 1);
        previous = text + used;
        used += n + 1;
        i++;
    }
    /* a shared count of 0 behind the last word ends every run, and the
     * padding lets a reader load a few bytes past a word's NUL */
    memset(shared + count, 0, CLexWordsPad);
    memset(text + used, 0, CLexWordsPad);
    segment->words = words;
    clex->summaries[index] = {allLetters, shortest, longest};
}

void CLex_DropWords(CLexSegment *segment)
{
    free(segment->words);
    segment->words = nullptr;
}
