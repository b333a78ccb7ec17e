/*
 * block_edit.cpp -- reading the text out of a block and editing it at the
 * cursor.
 *
 * Edits move the tail of the text in the block's own buffer, which may be
 * the host's: nothing is ever written at or past `size`.  An insertion keeps
 * one byte to spare and carries the byte behind the text along with the
 * tail, so that a terminator the host keeps there stays behind the text; a
 * deletion leaves that byte where it was, and only `length` then tells where
 * the text ends.
 *
 * A replacement is a deletion followed by an insertion.  When the insertion
 * finds no room the old word is already gone: the caller learns it from
 * ORTO_BufferTooSmall, and the text is shorter by the old word.
 */
#include <stdint.h>
#include <string.h>

#include "engine/block.h"
#include "engine/charclass.h"
#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "orto.h"

i32 BlockGetText(Block *block, char *buffer, u32 bufferSize)
{
    if (bufferSize < block->length) {
        DebugLog("BlockGetText: buffer too small");
        return ORTO_BufferTooSmall;
    }
    if (block->length)
        memcpy(buffer, block->text, block->length);
    return (i32)block->length;
}

i16 BlockDelText(Block *block, u32 count)
{
    if (count > block->length - block->cursor)
        return ORTO_BufferTooSmall;
    u32 tail = block->length - block->cursor - count;
    if (count && tail)
        memmove(block->text + block->cursor, block->text + block->cursor + count, tail);
    block->length -= count;
    return 0;
}

i16 BlockInsertText(Block *block, const char *newText)
{
    size_t n = strlen(newText);
    /* The length comes back as an i16, so a longer text is refused like one
     * that doesn't fit. */
    if ((uint64_t)block->length + n >= block->size || n > INT16_MAX) {
        DebugLog("BlockInsertText: buffer too small");
        return ORTO_BufferTooSmall;
    }
    /* length + n < size: the byte behind the text moves to a place inside
     * the buffer. */
    memmove(block->text + block->cursor + n, block->text + block->cursor,
            block->length - block->cursor + 1);
    memcpy(block->text + block->cursor, newText, n);
    block->length += (u32)n;
    return (i16)n;
}

i16 BlockReplaceWord(Block *block, const char *newWord)
{
    char word[WordSize];
    if (BlockGetWord(block, word, WordSize) < 0)
        return ORTO_NotFound;
    /* The deletion starts at the cursor, which stands on the word's first
     * character after every call that moves it to a word. */
    RETURN_IF_NEG(BlockDelText(block, StrLen(word)));
    return BlockInsertText(block, newWord);
}

i32 BlockDelWord(Block *block, char *deletedText, i16 deletedSize)
{
    const unsigned char *t = (const unsigned char *)block->text;
    while (block->cursor > 0 && IsSpace(t[block->cursor - 1]))
        block->cursor--;
    u32 start = block->cursor;

    /* Narrower than the scanner's word: hyphens and periods end it. */
    u32 pos = start;
    bool metWord = false;
    while (pos < block->length) {
        unsigned char c = t[pos];
        if (IsWordChar(c))
            metWord = true;
        else if (metWord && !IsApostrophe(c))
            break;
        pos++;
    }
    /* Without a word, `deletedText` is left untouched. */
    if (!metWord)
        return ORTO_NotFound;
    u32 count = pos - start;
    if (deletedSize > 0) {
        u32 copied = count < (u32)(deletedSize - 1) ? count : (u32)(deletedSize - 1);
        memcpy(deletedText, block->text + start, copied);
        deletedText[copied] = 0;
    }
    RETURN_IF_NEG(BlockDelText(block, count));
    while (block->cursor < block->length && !IsWordChar(t[block->cursor]))
        block->cursor++;
    return (i32)start;
}
