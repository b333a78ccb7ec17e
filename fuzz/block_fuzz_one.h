/*
 * block_fuzz_one.h -- one run of the block scanner and the block check over
 * arbitrary text with arbitrary options.  The input gives the option mask,
 * the room behind the text, whether the block copies the text, a script of
 * edits, and the text.  The check walks the block to its end (a bounded
 * number of steps), and at each stop the script picks the next move: pass
 * the word, replace it, delete it (and put it back), delete or insert
 * bytes, or move the cursor.  The session has the small compressed
 * lexicon and a text lexicon with an entry of every action.
 *
 * Rules: no call fails but by its stated codes; length, cursor and size
 * keep their order; a deleted word put back where its deletion began gives
 * the text as it was; the caller's buffer is the block's text, and nothing
 * behind the block's size is touched.
 */
#ifndef ORTO_FUZZ_BLOCK_FUZZ_ONE_H
#define ORTO_FUZZ_BLOCK_FUZZ_ONE_H

#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

namespace blockfuzz {

using fuzzsupport::require;

const size_t Guard = 16;          /* bytes behind the block's size that stay as they are */
const unsigned char GuardByte = 0xA5;

inline std::string blockText(int16_t sid, int16_t block)
{
    uint32_t length = 0;
    require(ORTO_GetBlockInfo(sid, block, &length, nullptr, nullptr, nullptr) == 0, "block info");
    std::string text(length, '\0');
    require(ORTO_GetBlock(sid, block, &text[0], length) == (int32_t)length, "block text");
    return text;
}

inline void checkInfo(int16_t sid, int16_t block)
{
    uint32_t length = 0, size = 0, cursor = 0;
    require(ORTO_GetBlockInfo(sid, block, &length, &size, &cursor, nullptr) == 0, "block info");
    require(cursor <= length && length <= size, "cursor, length and size out of order");
}

/* Deletes the word at the cursor and puts it back where the deletion began. */
inline void deleteAndUndo(int16_t sid, int16_t block, bool undo)
{
    std::string before = blockText(sid, block);
    uint32_t size = 0;
    ORTO_GetBlockInfo(sid, block, nullptr, &size, nullptr, nullptr);
    char deleted[4096];
    int32_t at = ORTO_DelBlockWord(sid, block, deleted, sizeof deleted);
    require(at >= 0 || at == ORTO_NotFound, "word deletion");
    if (at < 0)
        return;
    std::string after = blockText(sid, block);
    size_t count = before.size() - after.size();
    require(after.size() <= before.size() && (size_t)at + count <= before.size(), "deleted range");
    require(before.substr(0, at) + before.substr(at + count) == after, "deletion took other bytes");
    if (!undo || count != strlen(deleted) || before.size() >= size)
        return; /* cut, holds a NUL, or wouldn't fit with a byte to spare */
    require(before.compare(at, count, deleted) == 0, "deleted text handed back");
    require(ORTO_SetBlockCursor(sid, block, (uint32_t)at) == 0, "cursor to the deletion");
    require(ORTO_InsertBlockText(sid, block, deleted) == (int16_t)count, "deleted text put back");
    require(blockText(sid, block) == before, "undo gives another text");
}

inline void step(int16_t sid, int16_t block, uint32_t move, const char *word, const char *replacement)
{
    static const char *const inserts[] = {"", "the ", " teh", "walk-ing", "x", "\x92s", "..",
                                          "Colour", "  ", "receive"};
    uint32_t length = 0;
    ORTO_GetBlockInfo(sid, block, &length, nullptr, nullptr, nullptr);
    int32_t rc = 0;
    switch (move % 8) {
    case 0:
    case 1:
        rc = ORTO_NextBlockWord(sid, block);
        require(rc == 0 || rc == ORTO_NotFound, "next word");
        break;
    case 2: {
        std::string w = *replacement ? replacement : std::string(word) + "s";
        rc = ORTO_ReplaceBlockWord(sid, block, w.c_str());
        require(rc == (int32_t)w.size() || rc == ORTO_NotFound || rc == ORTO_BufferTooSmall,
                "replacement");
        break;
    }
    case 3:
        deleteAndUndo(sid, block, (move >> 3) & 1);
        break;
    case 4:
        rc = ORTO_DelBlockText(sid, block, (move >> 3) % 4);
        require(rc == 0 || rc == ORTO_BufferTooSmall, "deleting bytes");
        break;
    case 5: {
        const char *text = inserts[(move >> 3) % 10];
        rc = ORTO_InsertBlockText(sid, block, text);
        require(rc == (int32_t)strlen(text) || rc == ORTO_BufferTooSmall, "inserting bytes");
        break;
    }
    case 6:
        rc = ORTO_SetBlockCursor(sid, block, (move >> 3) % (length + 2));
        require(rc == 0 || rc == ORTO_BufferTooSmall, "setting the cursor");
        break;
    default: {
        char w[8];
        rc = ORTO_GetBlockWord(sid, block, w, sizeof w);
        require(rc >= 0 || rc == ORTO_NotFound, "reading the word");
        break;
    }
    }
    checkInfo(sid, block);
}

inline void runOne(const uint8_t *data, size_t size)
{
    fuzzsupport::Input in = {data, size, 0};
    uint32_t options = fuzzsupport::takeValue(&in);
    uint32_t room = fuzzsupport::takeByte(&in);
    bool copy = fuzzsupport::takeByte(&in) & 1;
    std::string script = fuzzsupport::takeBytes(&in, fuzzsupport::takeByte(&in) % 32);
    std::string text = fuzzsupport::rest(&in);
    if (script.empty())
        script = std::string(1, 0);

    int16_t sid = ORTO_OpenSession();
    require(ORTO_OpenLex(sid, fuzzsupport::smallLexicon().c_str(), 64) >= 0, "small lexicon");
    int16_t user = ORTO_CreateLex(sid, nullptr, ORTO_LangAmerican);
    static const char *const entries[][3] = {
        {"teh", "A", "the"}, {"recieve", "a", "receive"}, {"colour", "c", "color"},
        {"Colour", "C", "Color"}, {"bad", "e", ""}, {"orto", "i", ""}};
    for (const auto &e : entries)
        ORTO_AddToLex(sid, user, e[0], (uint16_t)e[1][0], e[2]);
    ORTO_SetOption(sid, 0xFFFFFFFFu, 0);
    ORTO_SetOption(sid, options & 0x1FFFF, 1);

    uint32_t blockSize = (uint32_t)text.size() + room;
    std::vector<char> buffer(blockSize + Guard, (char)GuardByte);
    memcpy(buffer.data(), text.data(), text.size());
    int16_t block = ORTO_OpenBlock(sid, buffer.data(), (uint32_t)text.size(), blockSize, copy);
    require(block >= 0, "opening a block");
    size_t steps = 4 * text.size() + 64;
    for (size_t i = 0; i < steps; i++) {
        char word[64] = "", replacement[64] = "";
        int16_t mask = ORTO_CheckBlock(sid, block, word, sizeof word, replacement, sizeof replacement);
        require(mask >= 0 && mask <= 0xFF, "block check");
        checkInfo(sid, block);
        if (mask & ORTO_EndOfBlock)
            break;
        step(sid, block, (uint8_t)script[i % script.size()] + (uint32_t)i / script.size(), word,
             replacement);
    }
    std::string final = blockText(sid, block);
    if (!copy)
        require(memcmp(buffer.data(), final.data(), final.size()) == 0, "the caller's buffer");
    for (size_t i = blockSize; i < buffer.size(); i++)
        require((unsigned char)buffer[i] == GuardByte, "a byte behind the block's size");
    uint32_t words = 0;
    require(ORTO_GetBlockInfo(sid, block, nullptr, nullptr, nullptr, &words) == 0 &&
                words <= final.size(),
            "word count");
    require(ORTO_CloseBlock(sid, block) == 0, "closing the block");
    ORTO_CloseSession(sid);
}

} // namespace blockfuzz

#endif
