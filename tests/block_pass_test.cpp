// The one-scan walk of the block check (BlockReadWord + BlockPassWord)
// against the plain walk (BlockGetWord + BlockNextWord): same words, same
// cursor, same link to the word before, on texts that exercise every rule
// of the scanner, with hyphens splitting words and not.
#include <gtest/gtest.h>

#include <string.h>

#include <string>
#include <vector>

#include "engine/block.h"
#include "engine/types.h"
#include "orto.h"

namespace {

const std::string Overlong(100, 'x');

const std::vector<std::string> Texts = {
    "",
    "  ,;  ",
    "the cat",
    "  the  cat, the cat. ",
    "well-known self--made -x y- a-b-c",
    "the U.S.A. and e.g. etc. x.y.z... 3.14 end.",
    "dogs' tails and Chris' hat, its' own s'",
    std::string("rock\x92n roll dogs\x92 o\x92") + "clock",
    std::string("nul\0inside the text", 19),
    Overlong + " tail " + Overlong + "'s",
    "end",
    "a",
    "trailing-",
    "x.",
};

struct Step {
    std::string word;
    i16 behind;
    i16 moved;
    u32 cursor;
    u32 previousWord;
    u16 atFirstWord;
};

bool operator==(const Step &a, const Step &b)
{
    return a.word == b.word && a.behind == b.behind && a.moved == b.moved &&
           a.cursor == b.cursor && a.previousWord == b.previousWord &&
           a.atFirstWord == b.atFirstWord;
}

std::ostream &operator<<(std::ostream &os, const Step &s)
{
    return os << "{" << s.word << " behind " << s.behind << " moved " << s.moved << " cursor "
              << s.cursor << " previous " << s.previousWord << " first " << s.atFirstWord << "}";
}

// The walk from `from` (the open itself moves the cursor to the first word;
// a cursor set elsewhere can stand on spaces or punctuation).
std::vector<Step> walk(const std::string &text, u32 options, bool oneScan, u32 from = 0)
{
    std::vector<Step> steps;
    Block block;
    std::string copy = text;
    if (BlockOpen(&copy[0], (u32)copy.size(), (u32)copy.size() + 1, 1, &options, &block) < 0) {
        ADD_FAILURE() << "open failed";
        return steps;
    }
    if (from)
        BlockSetCursor(&block, from);
    for (int guard = 0; guard < 1000; guard++) {
        char word[WordSize];
        Step s;
        if (oneScan) {
            BlockSpan span;
            s.behind = BlockReadWord(&block, word, &span);
            s.moved = s.behind < 0 ? 0 : BlockPassWord(&block, &span);
        } else {
            s.behind = BlockGetWord(&block, word, WordSize);
            s.moved = s.behind < 0 ? 0 : BlockNextWord(&block);
        }
        s.word = s.behind < 0 ? "" : word;
        s.cursor = block.cursor;
        s.previousWord = block.previousWord;
        s.atFirstWord = block.atFirstWord;
        steps.push_back(s);
        if (s.behind < 0 || s.moved < 0)
            break;
    }
    BlockClose(&block);
    return steps;
}

TEST(BlockPass, OneScanWalkMatchesThePlainWalk)
{
    for (u32 options : {(u32)ORTO_DefaultOptions, (u32)(ORTO_DefaultOptions & ~ORTO_SplitHyphenatedWords)}) {
        for (const std::string &text : Texts) {
            for (u32 from = 0; from <= text.size(); from++) {
                std::vector<Step> plain = walk(text, options, false, from);
                std::vector<Step> fast = walk(text, options, true, from);
                EXPECT_EQ(plain, fast) << "text \"" << text << "\" from " << from << " options "
                                       << std::hex << options;
                ASSERT_FALSE(plain.empty());
            }
        }
    }
    // the walks saw the rules at work: an overlong word in two, a dropped
    // apostrophe that cuts the link, a cursor set on punctuation
    std::vector<Step> longWords = walk(Overlong + " tail", ORTO_DefaultOptions, true);
    EXPECT_EQ(longWords[1].word, std::string(100 - (WordSize - 1), 'x'));
    EXPECT_EQ(walk("dogs' tail", ORTO_DefaultOptions, true)[0].previousWord, 11u);
    EXPECT_EQ(walk("x , dog cat", ORTO_DefaultOptions, true, 1)[0].previousWord, 12u);
}

// ORTO_CheckBlock takes the one-scan walk with a buffer of the engine's
// word size and the plain walk with any other; both must report alike.
TEST(BlockPass, CheckBlockReportsAlikeWithAnyBufferSize)
{
    int16_t sid = ORTO_OpenSession();
    ASSERT_GE(sid, 0);
    int16_t lex = ORTO_CreateLex(sid, nullptr, ORTO_LangAny);
    ASSERT_GE(lex, 0);
    for (const char *w : {"the", "cat", "sat", "on", "mat", "well", "known", "dogs"})
        ASSERT_EQ(ORTO_AddToLex(sid, lex, w, ORTO_Ignore, nullptr), 0);
    ASSERT_GE(ORTO_SetOption(sid, ORTO_ReportDoubledWords, 1), 0);
    ASSERT_GE(ORTO_SetOption(sid, ORTO_ReportUncappedWords, 1), 0);
    const std::string text = "the the cat sat on on the matt, well-known dogs' dogs Xyz. 42 42 zz";

    std::vector<std::string> reports[2];
    for (int pass = 0; pass < 2; pass++) {
        std::string copy = text;
        int16_t block = ORTO_OpenBlock(sid, &copy[0], (uint32_t)copy.size(), (uint32_t)copy.size(), 0);
        ASSERT_GE(block, 0);
        char word[WordSize + 1];
        uint16_t size = pass == 0 ? WordSize : WordSize + 1;
        for (int guard = 0; guard < 100; guard++) {
            char replacement[64] = "";
            int16_t rc = ORTO_CheckBlock(sid, block, word, size, replacement, sizeof replacement);
            uint32_t cursor = 0;
            ORTO_GetBlockInfo(sid, block, nullptr, nullptr, &cursor, nullptr);
            reports[pass].push_back(std::to_string(rc) + " " + (rc & ORTO_EndOfBlock ? "" : word) +
                                    " @" + std::to_string(cursor) + " " + replacement);
            if (rc < 0 || (rc & ORTO_EndOfBlock) || ORTO_NextBlockWord(sid, block) < 0)
                break;
        }
        ORTO_CloseBlock(sid, block);
    }
    ORTO_CloseSession(sid);
    EXPECT_EQ(reports[0], reports[1]);
    // uncapped first word, doubled "the", "matt", doubled "on", "Xyz", "zz"
    ASSERT_GE(reports[0].size(), 5u);
    EXPECT_EQ(reports[0][0].rfind(std::to_string(ORTO_UncappedWord) + " the @0", 0), 0u) << reports[0][0];
    EXPECT_EQ(reports[0][1].rfind(std::to_string(ORTO_DoubledWord) + " the @4", 0), 0u) << reports[0][1];
}

} // namespace
