/*
 * block_scan.cpp -- the word scanner of a block and the moves of its cursor.
 *
 * A word begins at a letter or digit and runs on over letters, digits and
 * apostrophes; a period, and a hyphen while hyphens don't split words, stay
 * inside only between two word characters (or apostrophes).  Two rules then
 * touch the end: a word with a period inside takes one more period that
 * follows it (e.g., U.S.A.), and an apostrophe after s or S is dropped
 * (dogs' reads as dogs).
 *
 * The scanner goes by `length` and looks only at bytes before it, so the
 * text may hold any byte, NUL included; a NUL simply ends a word.
 *
 * `previousWord` feeds the doubled-word test: BlockNextWord sets it to the
 * word it leaves and resets it (to `size`) when punctuation stands between
 * that word and the next, so only white space or bytes of no class can
 * join two words into a doubled pair.
 */
#include "engine/block.h"
#include "engine/charclass.h"
#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "orto.h"

static bool joinsWord(unsigned char c) { return IsWordChar(c) || IsApostrophe(c); }

/* Whether the byte at `pos` (inside a word that began before it) carries
 * the word on. */
static bool continuesWord(const Block *block, u32 pos, bool splitHyphens)
{
    const unsigned char *t = (const unsigned char *)block->text;
    unsigned char c = t[pos];
    if (joinsWord(c))
        return true;
    if (c == '.' || (c == '-' && !splitHyphens))
        return pos > 0 && pos + 1 < block->length && joinsWord(t[pos - 1]) && joinsWord(t[pos + 1]);
    return false;
}

/* The scanner proper.  Copies the word at or after the cursor into `word`
 * and leaves in `*start` and `*length` where the word as read lies in the
 * text (the dropped apostrophe not counted), so that a caller who needs
 * both the word and the step over it scans only once. */
static i16 scanWord(const Block *block, char *word, u16 wordSize, u32 *start, u32 *length)
{
    const unsigned char *t = (const unsigned char *)block->text;
    u32 end = block->length;
    u32 pos = block->cursor;
    while (pos < end && !IsWordChar(t[pos]))
        pos++;
    if (pos >= end)
        return ORTO_NotFound;
    *start = pos;

    bool splitHyphens = block->options && (*block->options & ORTO_SplitHyphenatedWords);
    u32 max = wordSize ? (u32)wordSize - 1 : 0;
    u32 n = 0;
    bool hasPeriod = false;
    /* With room for no character the word stays empty and the cursor's
     * word start is what comes back. */
    if (wordSize >= 2)
        word[n++] = (char)t[pos++];
    /* n and pos rise together, so one bound stands for both limits */
    u32 stop = (n < max && end - pos > max - n) ? pos + (max - n) : (n < max ? end : pos);
    while (pos < stop) {
        unsigned char c = t[pos];
        if (!joinsWord(c)) {
            if (!continuesWord(block, pos, splitHyphens))
                break;
            if (c == '.')
                hasPeriod = true;
        }
        word[n++] = (char)c;
        pos++;
    }
    if (hasPeriod && pos < end && t[pos] == '.' && n < max)
        word[n++] = (char)t[pos++];
    if (n >= 2 && IsApostrophe((unsigned char)word[n - 1]) && (word[n - 2] == 's' || word[n - 2] == 'S'))
        n--; /* `pos` stays behind the dropped apostrophe */
    if (wordSize)
        word[n] = 0;
    *length = n;
    return pos < end ? (i16)t[pos] : 0;
}

i16 BlockGetWord(Block *block, char *word, u16 wordSize)
{
    u32 start, length;
    return scanWord(block, word, wordSize, &start, &length);
}

i16 BlockReadWord(Block *block, char *word, BlockSpan *span)
{
    return scanWord(block, word, WordSize, &span->start, &span->length);
}

/* Moves the cursor to the next word start; punctuation on the way cuts the
 * link to the word before. */
static void skipToWord(Block *block)
{
    const unsigned char *t = (const unsigned char *)block->text;
    while (block->cursor < block->length && !IsWordChar(t[block->cursor])) {
        if (IsPunct(t[block->cursor]))
            block->previousWord = block->size;
        block->cursor++;
    }
}

/* The move of BlockNextWord, once the word at the cursor is known to lie
 * at `start` and to read as `length` characters. */
static i16 stepOver(Block *block, u32 start, u32 length)
{
    block->previousWord = block->cursor;
    skipToWord(block); /* stops at `start`, cutting the link on the way */
    if (block->cursor >= block->length)
        return ORTO_NotFound;
    /* The word as read: the rest of an overlong word is the next word, and
     * a dropped apostrophe is left to the skip below as punctuation. */
    block->cursor = start + length;
    if (block->cursor >= block->length)
        return ORTO_NotFound;
    skipToWord(block);
    if (block->cursor >= block->length)
        return ORTO_NotFound;
    block->atFirstWord = 0;
    return 0;
}

i16 BlockNextWord(Block *block)
{
    char word[WordSize];
    u32 start = block->length, length = 0;
    scanWord(block, word, WordSize, &start, &length);
    return stepOver(block, start, length);
}

i16 BlockPassWord(Block *block, const BlockSpan *span)
{
    return stepOver(block, span->start, span->length);
}

i16 BlockSetCursor(Block *block, u32 cursor)
{
    if (cursor > block->length) {
        DebugLog("BlockSetCursor: cursor %lu > text length %lu", (unsigned long)cursor,
                 (unsigned long)block->length);
        return ORTO_BufferTooSmall;
    }
    block->cursor = cursor;
    block->previousWord = block->size;
    return 0;
}

i16 BlockGetInfo(Block *block, u32 *textLength, u32 *blockSize, u32 *cursor, u32 *wordCount)
{
    if (textLength)
        *textLength = block->length;
    if (blockSize)
        *blockSize = block->size;
    if (cursor)
        *cursor = block->cursor;
    if (wordCount) {
        /* A walk of the whole text like any other: it leaves previousWord
         * and atFirstWord as it set them, and only the cursor comes back. */
        u32 saved = block->cursor;
        u32 count = 0;
        char word[WordSize];
        block->cursor = 0;
        while (BlockGetWord(block, word, WordSize) >= 0) {
            count++;
            BlockNextWord(block);
        }
        block->cursor = saved;
        *wordCount = count;
    }
    return 0;
}

u16 BlockAtFirstWord(const Block *block) { return block->atFirstWord; }

i16 BlockIsDoubled(Block *block, int caseSensitive)
{
    if (block->previousWord >= block->length || block->previousWord == block->cursor)
        return 0;
    char current[WordSize], previous[WordSize];
    if (BlockGetWord(block, current, WordSize) < 0)
        return 0;
    u32 saved = block->cursor;
    block->cursor = block->previousWord;
    i16 behind = BlockGetWord(block, previous, WordSize);
    block->cursor = saved;
    if (behind < 0 || IsPunct((unsigned char)behind))
        return 0;
    i16 cmp = caseSensitive ? StrCompare(current, previous) : StrCompareNoCase(current, previous);
    return cmp == 0 ? 1 : 0;
}
