/*
 * block.h -- a text with a cursor, owned by a session, walked word by word.
 */
#ifndef ORTO_ENGINE_BLOCK_H
#define ORTO_ENGINE_BLOCK_H

#include "engine/types.h"

struct Block {
    char *text;        /* the text; no terminator as far as the block goes */
    u32 length;        /* characters of text in use */
    u32 size;          /* capacity of the buffer; length never exceeds it */
    u32 cursor;        /* position of the current word */
    u16 atFirstWord;   /* 1 until BlockNextWord has succeeded once */
    u32 previousWord;  /* position of the word before, or `size` for none */
    u16 ownsText;      /* 1 if the block allocated `text` */
    const u32 *options; /* the owning session's option mask */
};

i16 BlockOpen(char *text, u32 textLength, u32 blockSize, u16 copyText, const u32 *options,
              Block *block);
void BlockClose(Block *block);

#endif
