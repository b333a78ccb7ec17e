/*
 * block.h -- a text with a cursor, owned by a session, walked word by word.
 *
 * The text is counted by `length`, never by a terminator, so it may hold
 * any byte.  Every word the block code reads for itself goes into a local
 * 64-byte buffer; nothing here allocates after the open.
 */
#ifndef ORTO_ENGINE_BLOCK_H
#define ORTO_ENGINE_BLOCK_H

#include "engine/types.h"

struct Block {
    char *text;         /* the text; no terminator as far as the block goes */
    u32 length;         /* characters of text in use */
    u32 size;           /* capacity of the buffer; length never exceeds it */
    u32 cursor;         /* position of the current word */
    u16 atFirstWord;    /* 1 until BlockNextWord has succeeded once */
    u32 previousWord;   /* position of the word before, or `size` for none */
    u16 ownsText;       /* 1 if the block allocated `text` */
    const u32 *options; /* the owning session's option mask */
};

/* Opening and closing (block_open.cpp). */
i16 BlockOpen(char *text, u32 textLength, u32 blockSize, u16 copyText, const u32 *options,
              Block *block);
void BlockClose(Block *block);

/* The scanner (block_scan.cpp).  BlockGetWord copies the word at or after
 * the cursor into `word` (`wordSize` at least 1) without moving the cursor
 * and returns the byte behind it (0 at the end of the text), or
 * ORTO_NotFound. */
i16 BlockGetWord(Block *block, char *word, u16 wordSize);
i16 BlockNextWord(Block *block);

/* Where the word at the cursor lies, as BlockReadWord found it. */
struct BlockSpan {
    u32 start;  /* position of its first character */
    u32 length; /* characters read (at most WordSize - 1) */
};
/* BlockGetWord into a WordSize buffer, telling also where the word lies.
 * BlockPassWord then makes the move of BlockNextWord without reading the
 * word again; it is only right while the text, the cursor and the options
 * are as they were at the read, so the span is never kept past one call. */
i16 BlockReadWord(Block *block, char *word, BlockSpan *span);
i16 BlockPassWord(Block *block, const BlockSpan *span);
i16 BlockSetCursor(Block *block, u32 cursor);
i16 BlockGetInfo(Block *block, u32 *textLength, u32 *blockSize, u32 *cursor, u32 *wordCount);
u16 BlockAtFirstWord(const Block *block);
/* 1 if the word at the cursor repeats the word at `previousWord`. */
i16 BlockIsDoubled(Block *block, int caseSensitive);

/* Editing at the cursor (block_edit.cpp). */
i32 BlockGetText(Block *block, char *buffer, u32 bufferSize);
i16 BlockDelText(Block *block, u32 count);
i16 BlockInsertText(Block *block, const char *newText);
i16 BlockReplaceWord(Block *block, const char *newWord);
i32 BlockDelWord(Block *block, char *deletedText, i16 deletedSize);

#endif
