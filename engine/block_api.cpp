/*
 * block_api.cpp -- the exported block calls, and ORTO_CheckBlock, the loop
 * that walks a block until a word has something to report.
 *
 * Each call validates session then block id and makes one step on the
 * block record.  Host buffers are taken as the header promises: a null
 * string reads as empty, a null output buffer has size 0.  A word buffer
 * of size 0 can't take even the terminator, so the calls that must hand a
 * word back refuse it with ORTO_BufferTooSmall (silently, before touching
 * the block) rather than scan into nothing.
 *
 * The block check holds only the first word of a block to a capital, and
 * lets a word of digits alone pass without lookup and without the
 * doubled-word test.
 */
#include "engine/block.h"
#include "engine/charclass.h"
#include "engine/session.h"
#include "engine/string_helpers.h"
#include "engine/word_check.h"
#include "orto.h"

/* Session and block of a call, or null after the validation has logged;
 * `*rc` then holds the code to return. */
static Block *blockOfCall(int16_t sid, int16_t block, const char *call, Session **session, i16 *rc)
{
    Session *s = sessionFromId(sid, call);
    if (!s) {
        *rc = ORTO_BadSessionId;
        return nullptr;
    }
    Block *b = blockFromId(s, block, call);
    if (!b) {
        *rc = ORTO_BadBlockId;
        return nullptr;
    }
    if (session)
        *session = s;
    return b;
}

/* Empty, or nothing but digits: such a word is neither looked up nor
 * compared with the word before it. */
static bool nothingToCheck(const char *word)
{
    for (; *word; word++)
        if (!IsDigit((unsigned char)*word))
            return false;
    return true;
}

extern "C" int16_t ORTO_CheckBlock(int16_t sid, int16_t block, char *word, uint16_t wordSize,
                                   char *replacement, int16_t replacementSize)
{
    Session *s = nullptr;
    i16 rc = 0;
    Block *b = blockOfCall(sid, block, "ORTO_CheckBlock", &s, &rc);
    if (!b)
        return rc;
    if (!word || wordSize == 0)
        return ORTO_BufferTooSmall;
    if (!replacement || replacementSize < 0)
        replacementSize = 0;
    /* With a buffer of the engine's own word size, the word read for the
     * check also gives the step to the next word (no second scan); the
     * span lives only within this loop, where nothing edits the block. */
    bool ownSize = wordSize == WordSize;
    BlockSpan span;
    for (;;) {
        i16 behind = ownSize ? BlockReadWord(b, word, &span) : BlockGetWord(b, word, wordSize);
        if (behind < 0)
            return ORTO_EndOfBlock;
        u32 mask = s->options;
        if ((mask & ORTO_ReportUncappedWords) && !BlockAtFirstWord(b))
            mask &= ~ORTO_ReportUncappedWords;
        if (!nothingToCheck(word)) {
            i16 result = CheckWordMask(s, mask, word, replacement, replacementSize);
            if ((mask & ORTO_ReportDoubledWords) &&
                BlockIsDoubled(b, (mask & ORTO_CaseSensitive) ? 1 : 0))
                result |= ORTO_DoubledWord;
            if (result)
                return result;
        }
        if ((ownSize ? BlockPassWord(b, &span) : BlockNextWord(b)) < 0)
            return ORTO_EndOfBlock;
    }
}

extern "C" int16_t ORTO_GetBlockWord(int16_t sid, int16_t block, char *word, uint16_t wordSize)
{
    i16 rc = 0;
    Block *b = blockOfCall(sid, block, "ORTO_GetBlockWord", nullptr, &rc);
    if (!b)
        return rc;
    if (!word || wordSize == 0)
        return ORTO_BufferTooSmall;
    return BlockGetWord(b, word, wordSize);
}

extern "C" int16_t ORTO_NextBlockWord(int16_t sid, int16_t block)
{
    i16 rc = 0;
    Block *b = blockOfCall(sid, block, "ORTO_NextBlockWord", nullptr, &rc);
    if (!b)
        return rc;
    return BlockNextWord(b);
}

extern "C" int16_t ORTO_SetBlockCursor(int16_t sid, int16_t block, uint32_t cursor)
{
    i16 rc = 0;
    Block *b = blockOfCall(sid, block, "ORTO_SetBlockCursor", nullptr, &rc);
    if (!b)
        return rc;
    return BlockSetCursor(b, cursor);
}

extern "C" int16_t ORTO_GetBlockInfo(int16_t sid, int16_t block, uint32_t *textLength,
                                     uint32_t *blockSize, uint32_t *cursor, uint32_t *wordCount)
{
    i16 rc = 0;
    Block *b = blockOfCall(sid, block, "ORTO_GetBlockInfo", nullptr, &rc);
    if (!b)
        return rc;
    return BlockGetInfo(b, textLength, blockSize, cursor, wordCount);
}

extern "C" int32_t ORTO_GetBlock(int16_t sid, int16_t block, char *buffer, uint32_t bufferSize)
{
    i16 rc = 0;
    Block *b = blockOfCall(sid, block, "ORTO_GetBlock", nullptr, &rc);
    if (!b)
        return rc;
    return BlockGetText(b, buffer, buffer ? bufferSize : 0);
}

extern "C" int16_t ORTO_ReplaceBlockWord(int16_t sid, int16_t block, const char *newWord)
{
    i16 rc = 0;
    Block *b = blockOfCall(sid, block, "ORTO_ReplaceBlockWord", nullptr, &rc);
    if (!b)
        return rc;
    return BlockReplaceWord(b, orEmpty(newWord));
}

extern "C" int16_t ORTO_InsertBlockText(int16_t sid, int16_t block, const char *newText)
{
    i16 rc = 0;
    Block *b = blockOfCall(sid, block, "ORTO_InsertBlockText", nullptr, &rc);
    if (!b)
        return rc;
    return BlockInsertText(b, orEmpty(newText));
}

extern "C" int32_t ORTO_DelBlockWord(int16_t sid, int16_t block, char *deletedText,
                                     int16_t deletedSize)
{
    i16 rc = 0;
    Block *b = blockOfCall(sid, block, "ORTO_DelBlockWord", nullptr, &rc);
    if (!b)
        return rc;
    return BlockDelWord(b, deletedText, deletedText ? deletedSize : 0);
}

extern "C" int16_t ORTO_DelBlockText(int16_t sid, int16_t block, uint32_t count)
{
    i16 rc = 0;
    Block *b = blockOfCall(sid, block, "ORTO_DelBlockText", nullptr, &rc);
    if (!b)
        return rc;
    return BlockDelText(b, count);
}
