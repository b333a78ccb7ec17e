/*
 * block_open.cpp -- opening and closing blocks.
 *
 * A block opened with a copy owns that copy; one opened without edits the
 * host's buffer in place, which the host keeps alive until the close.  The
 * copy is zero-filled past the text, so the byte that an insertion carries
 * along behind the text is always a defined one.
 */
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "engine/block.h"
#include "engine/charclass.h"
#include "engine/debug_log.h"
#include "engine/session.h"
#include "orto.h"

i16 BlockOpen(char *text, u32 textLength, u32 blockSize, u16 copyText, const u32 *options,
              Block *block)
{
    /* A null text can only stand for an empty one that nothing is written
     * into; it has no room, whatever `blockSize` claims. */
    bool nullText = !text && (textLength || (!copyText && blockSize));
    if (blockSize < textLength || nullText) {
        DebugLog("BlockOpen: buffer too small");
        return ORTO_BufferTooSmall;
    }
    /* Lengths and positions come back as i32, so a block stays below 2 GiB. */
    if (blockSize > (u32)INT32_MAX) {
        DebugLog("BlockOpen: buffer too large");
        return ORTO_BufferTooSmall;
    }
    if (copyText) {
        /* at least one byte, so that an empty block has a buffer of its own */
        char *copy = (char *)calloc(blockSize ? blockSize : 1, 1);
        if (!copy) {
            DebugLog("BlockOpen: out of memory");
            return ORTO_OutOfMemory;
        }
        if (textLength)
            memcpy(copy, text, textLength);
        block->text = copy;
        block->ownsText = 1;
    } else {
        block->text = text;
        block->ownsText = 0;
    }
    block->length = textLength;
    block->size = blockSize;
    block->previousWord = blockSize;
    block->cursor = 0;
    block->atFirstWord = 1;
    block->options = options;
    while (block->cursor < block->length && !IsWordChar((unsigned char)block->text[block->cursor]))
        block->cursor++;
    return 0;
}

void BlockClose(Block *block)
{
    if (block->ownsText)
        free(block->text);
    block->text = nullptr;
}

extern "C" int16_t ORTO_OpenBlock(int16_t sid, char *text, uint32_t textLength, uint32_t blockSize,
                                  uint16_t copyText)
{
    Session *s = sessionFromId(sid, "ORTO_OpenBlock");
    if (!s)
        return ORTO_BadSessionId;
    i16 id = 0;
    while (id < MaxBlocks && s->blockSlots[id])
        id++;
    if (id == MaxBlocks) {
        DebugLog("ORTO_OpenBlock: too many blocks");
        return ORTO_TooManyBlocks;
    }
    Block *b = (Block *)calloc(1, sizeof(Block));
    if (!b) {
        DebugLog("ORTO_OpenBlock: out of memory");
        return ORTO_OutOfMemory;
    }
    s->blockSlots[id] = b;
    i16 rc = BlockOpen(text, textLength, blockSize, copyText, &s->options, b);
    if (rc < 0) {
        free(b);
        s->blockSlots[id] = nullptr;
        return rc;
    }
    return id;
}

extern "C" int16_t ORTO_CloseBlock(int16_t sid, int16_t block)
{
    Session *s = sessionFromId(sid, "ORTO_CloseBlock");
    if (!s)
        return ORTO_BadSessionId;
    Block *b = blockFromId(s, block, "ORTO_CloseBlock");
    if (!b)
        return ORTO_BadBlockId;
    BlockClose(b);
    free(b);
    s->blockSlots[block] = nullptr;
    return 0;
}
