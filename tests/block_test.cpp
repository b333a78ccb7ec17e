// Text blocks through the C API: the word scanner, the block check with
// its doubled-word and first-word rules, and editing of a host's buffer.
#include <gtest/gtest.h>

#include <string.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "orto.h"
#include "support/test_support.h"

namespace {

// A session with a temporary lexicon of a few words.
struct BlockFixture : ::testing::Test {
    int16_t sid = -1;
    int16_t lex = -1;

    void SetUp() override
    {
        sid = ORTO_OpenSession();
        ASSERT_GE(sid, 0);
        lex = ORTO_CreateLex(sid, nullptr, ORTO_LangAny);
        ASSERT_GE(lex, 0);
        for (const char *w : {"the", "cat", "hello", "there", "again", "dog", "dogs", "one", "two",
                              "three", "well", "known", "a", "b", "end"})
            ASSERT_EQ(ORTO_AddToLex(sid, lex, w, ORTO_Ignore, nullptr), 0) << w;
    }
    void TearDown() override { ORTO_CloseSession(sid); }

    // Opens a block on a copy of `text` with room to spare.
    int16_t open(const std::string &text, uint32_t spare = 64)
    {
        return ORTO_OpenBlock(sid, const_cast<char *>(text.data()), (uint32_t)text.size(),
                              (uint32_t)text.size() + spare, 1);
    }
    std::string text(int16_t block)
    {
        uint32_t len = 0;
        ORTO_GetBlockInfo(sid, block, &len, nullptr, nullptr, nullptr);
        std::string out(len, '\0');
        EXPECT_EQ(ORTO_GetBlock(sid, block, out.data(), len), (int32_t)len);
        return out;
    }
    uint32_t cursor(int16_t block)
    {
        uint32_t c = 0;
        ORTO_GetBlockInfo(sid, block, nullptr, nullptr, &c, nullptr);
        return c;
    }
    // Every word of the text with the byte behind it, by the scanner's walk.
    std::vector<std::pair<std::string, int>> words(const std::string &t)
    {
        std::vector<std::pair<std::string, int>> out;
        int16_t b = open(t);
        EXPECT_GE(b, 0);
        char word[64];
        for (;;) {
            int16_t behind = ORTO_GetBlockWord(sid, b, word, sizeof word);
            if (behind < 0)
                break;
            out.emplace_back(word, behind);
            if (ORTO_NextBlockWord(sid, b) < 0)
                break;
        }
        ORTO_CloseBlock(sid, b);
        return out;
    }
    std::vector<std::string> wordTexts(const std::string &t)
    {
        std::vector<std::string> out;
        for (auto &w : words(t))
            out.push_back(w.first);
        return out;
    }
};

using Words = std::vector<std::string>;

TEST_F(BlockFixture, ScannerFindsWordsByTheContinuationRules)
{
    struct Case {
        const char *text;
        Words hyphensSplit; // SplitHyphenatedWords on (the default)
        Words hyphensJoin;  // and off
    };
    const Case cases[] = {
        {"well-known", {"well", "known"}, {"well-known"}},
        {"a--b -c d-", {"a", "b", "c", "d"}, {"a", "b", "c", "d"}},
        {"a..b", {"a", "b"}, {"a", "b"}},
        {"x.y.z.", {"x.y.z."}, {"x.y.z."}},
        {"The end. Next", {"The", "end", "Next"}, {"The", "end", "Next"}},
        {"e.g. U.S.A. a.b.c. go", {"e.g.", "U.S.A.", "a.b.c.", "go"}, {"e.g.", "U.S.A.", "a.b.c.", "go"}},
        {"x.y..z", {"x.y.", "z"}, {"x.y.", "z"}},
        {"'tis cat' dogs'", {"tis", "cat'", "dogs"}, {"tis", "cat'", "dogs"}},
        {"3.14 1,000", {"3.14", "1", "000"}, {"3.14", "1", "000"}},
        {"ab-", {"ab"}, {"ab"}},
        {"ab.", {"ab"}, {"ab"}},
        {"don\x92t dogs\x92 x", {"don\x92t", "dogs", "x"}, {"don\x92t", "dogs", "x"}},
        {"caf\xE9 na\xEFve \xC9t\xE9", {"caf\xE9", "na\xEFve", "\xC9t\xE9"},
         {"caf\xE9", "na\xEFve", "\xC9t\xE9"}},
        {"re-.do x-'y", {"re", "do", "x", "y"}, {"re", "do", "x-'y"}},
        {"...", {}, {}},
        {"", {}, {}},
    };
    for (const Case &c : cases) {
        ORTO_SetOption(sid, ORTO_SplitHyphenatedWords, 1);
        EXPECT_EQ(wordTexts(c.text), c.hyphensSplit) << "split: " << c.text;
        ORTO_SetOption(sid, ORTO_SplitHyphenatedWords, 0);
        EXPECT_EQ(wordTexts(c.text), c.hyphensJoin) << "joined: " << c.text;
    }
}

TEST_F(BlockFixture, GetBlockWordReturnsTheByteBehindAndTakesAnyByte)
{
    using W = std::vector<std::pair<std::string, int>>;
    EXPECT_EQ(words("dogs' x"), (W{{"dogs", ' '}, {"x", 0}}));
    EXPECT_EQ(words("Hello, world"), (W{{"Hello", ','}, {"world", 0}}));
    EXPECT_EQ(words("well-known"), (W{{"well", '-'}, {"known", 0}}));
    EXPECT_EQ(words("caf\xE9\xA0x"), (W{{"caf\xE9", 0xA0}, {"x", 0}}));

    // NUL bytes are text like any other: they end words, not the text.
    const std::string withNul("ab\0cd\0", 6);
    EXPECT_EQ(words(withNul), (W{{"ab", 0}, {"cd", 0}}));
    int16_t b = open(withNul);
    uint32_t count = 0, len = 0;
    EXPECT_EQ(ORTO_GetBlockInfo(sid, b, &len, nullptr, nullptr, &count), 0);
    EXPECT_EQ(len, 6u);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(text(b), withNul);
    ORTO_CloseBlock(sid, b);

    // The scanner stops at the length, whatever the host's buffer holds behind it.
    for (uint32_t split : {0u, 1u}) {
        ORTO_SetOption(sid, ORTO_SplitHyphenatedWords, split);
        for (const char *host : {"ab.cd", "ab-cd"}) {
            char buf[8];
            strcpy(buf, host);
            b = ORTO_OpenBlock(sid, buf, 3, 8, 0);
            char word[64];
            EXPECT_EQ(ORTO_GetBlockWord(sid, b, word, sizeof word), buf[2]) << host;
            EXPECT_EQ(std::string(word), std::string(host, 2)) << host;
            ORTO_CloseBlock(sid, b);
        }
    }

    // A word of 70 letters is read as its first 63; the rest is a word of its own.
    const std::string longWord(70, 'q');
    EXPECT_EQ(wordTexts(longWord + " x"), (Words{std::string(63, 'q'), "qqqqqqq", "x"}));

    // A small buffer cuts the word and leaves the cursor alone.
    b = open("hello world");
    char small[4];
    EXPECT_EQ(ORTO_GetBlockWord(sid, b, small, sizeof small), 'l');
    EXPECT_STREQ(small, "hel");
    EXPECT_EQ(ORTO_GetBlockWord(sid, b, small, 1), 'h');
    EXPECT_STREQ(small, "");
    EXPECT_EQ(ORTO_GetBlockWord(sid, b, nullptr, 64), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_GetBlockWord(sid, b, small, 0), ORTO_BufferTooSmall);
    EXPECT_EQ(cursor(b), 0u);
    ORTO_CloseBlock(sid, b);
}

TEST_F(BlockFixture, TextsWithoutWordsAndTheEndOfTheText)
{
    char word[64] = "untouched";
    int16_t b = open("...");
    uint32_t len = 0, cur = 99, count = 99;
    ORTO_GetBlockInfo(sid, b, &len, nullptr, &cur, &count);
    EXPECT_EQ(cur, len); // the cursor stands on the length
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(ORTO_GetBlockWord(sid, b, word, sizeof word), ORTO_NotFound);
    EXPECT_STREQ(word, "untouched");
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_EndOfBlock);
    EXPECT_EQ(ORTO_NextBlockWord(sid, b), ORTO_NotFound);
    ORTO_CloseBlock(sid, b);

    // an empty text in a buffer of size 0, with and without a copy
    for (uint16_t copy : {0, 1}) {
        b = ORTO_OpenBlock(sid, nullptr, 0, 0, copy);
        ASSERT_GE(b, 0) << copy;
        EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_EndOfBlock);
        EXPECT_EQ(ORTO_InsertBlockText(sid, b, ""), ORTO_BufferTooSmall);
        EXPECT_EQ(ORTO_GetBlock(sid, b, nullptr, 0), 0);
        EXPECT_EQ(ORTO_DelBlockWord(sid, b, nullptr, 0), ORTO_NotFound);
        ORTO_CloseBlock(sid, b);
    }

    // NextBlockWord on the last word: -3 and the cursor at the end
    b = open("one two");
    EXPECT_EQ(ORTO_NextBlockWord(sid, b), 0);
    EXPECT_EQ(cursor(b), 4u);
    EXPECT_EQ(ORTO_NextBlockWord(sid, b), ORTO_NotFound);
    EXPECT_EQ(cursor(b), 7u);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_EndOfBlock);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_EndOfBlock);
    // setting the cursor back makes the words reachable again
    EXPECT_EQ(ORTO_SetBlockCursor(sid, b, 0), 0);
    EXPECT_EQ(ORTO_GetBlockWord(sid, b, word, sizeof word), ' ');
    EXPECT_STREQ(word, "one");
    ORTO_CloseBlock(sid, b);
}

TEST_F(BlockFixture, CheckBlockWalksToTheNextProblem)
{
    char word[64], repl[64];
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "teh", ORTO_AutoChangePreserveCase, "the"), 0);
    int16_t b = open("the cat xyzzy dog Teh end");
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, repl, sizeof repl), ORTO_MisspelledWord);
    EXPECT_STREQ(word, "xyzzy");
    EXPECT_STREQ(repl, "xyzzy");
    EXPECT_EQ(cursor(b), 8u);
    // again without moving: the same word
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_MisspelledWord);
    EXPECT_EQ(cursor(b), 8u);
    EXPECT_EQ(ORTO_NextBlockWord(sid, b), 0);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, repl, sizeof repl), ORTO_AutoChangeWord);
    EXPECT_STREQ(word, "Teh");
    EXPECT_STREQ(repl, "The");
    // the replacement takes the word's place and is checked in its turn
    EXPECT_EQ(ORTO_ReplaceBlockWord(sid, b, repl), 3);
    EXPECT_EQ(cursor(b), 18u);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, repl, sizeof repl), ORTO_EndOfBlock);
    EXPECT_EQ(text(b), "the cat xyzzy dog The end");
    ORTO_CloseBlock(sid, b);

    // words of digits alone are skipped, a number with a period is looked up
    ORTO_SetOption(sid, ORTO_ReportMixedDigits | ORTO_ReportDoubledWords, 1);
    b = open("1 1 2024 3.14");
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0),
              ORTO_MisspelledWord | ORTO_MixedDigitsWord);
    EXPECT_STREQ(word, "3.14");
    ORTO_CloseBlock(sid, b);

    // null word buffer or size 0: refused, nothing walked
    b = open("xyzzy");
    EXPECT_EQ(ORTO_CheckBlock(sid, b, nullptr, 64, repl, sizeof repl), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, 0, repl, sizeof repl), ORTO_BufferTooSmall);
    // a negative replacement size means none is wanted
    strcpy(repl, "keep");
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, repl, -5), ORTO_MisspelledWord);
    EXPECT_STREQ(repl, "keep");
    ORTO_CloseBlock(sid, b);
}

TEST_F(BlockFixture, DoubledWords)
{
    ORTO_SetOption(sid, ORTO_ReportDoubledWords, 1);
    char word[64];
    auto firstReport = [&](const std::string &t, uint32_t *at = nullptr) {
        int16_t b = open(t);
        int16_t r = ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0);
        if (at)
            *at = cursor(b);
        ORTO_CloseBlock(sid, b);
        return r;
    };

    // the the the: the second, and after a step the third
    int16_t b = open("the the the");
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_DoubledWord);
    EXPECT_EQ(cursor(b), 4u);
    EXPECT_STREQ(word, "the");
    EXPECT_EQ(ORTO_NextBlockWord(sid, b), 0);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_DoubledWord);
    EXPECT_EQ(cursor(b), 8u);
    EXPECT_EQ(ORTO_NextBlockWord(sid, b), ORTO_NotFound);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_EndOfBlock);
    // after setting the cursor the word there has no word before it
    EXPECT_EQ(ORTO_SetBlockCursor(sid, b, 4), 0);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_DoubledWord);
    EXPECT_EQ(cursor(b), 8u); // the third, not the second
    ORTO_CloseBlock(sid, b);

    uint32_t at = 0;
    EXPECT_EQ(firstReport("the\r\n\tthe", &at), ORTO_DoubledWord);
    EXPECT_EQ(at, 6u);
    EXPECT_EQ(firstReport("the\x01the"), ORTO_DoubledWord); // a byte of no class joins them
    EXPECT_EQ(firstReport("the, the"), ORTO_EndOfBlock);
    EXPECT_EQ(firstReport("the. the"), ORTO_EndOfBlock);
    EXPECT_EQ(firstReport("dogs' dogs"), ORTO_EndOfBlock);
    EXPECT_EQ(firstReport("1 1"), ORTO_EndOfBlock);
    EXPECT_EQ(firstReport("the cat"), ORTO_EndOfBlock);
    EXPECT_EQ(firstReport("The the"), ORTO_EndOfBlock);
    ORTO_SetOption(sid, ORTO_CaseSensitive, 0);
    EXPECT_EQ(firstReport("The the"), ORTO_DoubledWord);
    ORTO_SetOption(sid, ORTO_CaseSensitive, 1);

    // a misspelled doubled word carries both bits
    b = open("xyz xyz");
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_MisspelledWord);
    EXPECT_EQ(ORTO_NextBlockWord(sid, b), 0);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0),
              ORTO_MisspelledWord | ORTO_DoubledWord);
    ORTO_CloseBlock(sid, b);

    // after edits the word before is read afresh: punctuation behind it
    // parts the two words even when no walk has passed over it
    for (const char *inserted : {" the", ",the"}) {
        b = open("the cat");
        ASSERT_EQ(ORTO_NextBlockWord(sid, b), 0);
        EXPECT_EQ(ORTO_DelBlockWord(sid, b, nullptr, 0), 3);
        EXPECT_EQ(ORTO_InsertBlockText(sid, b, inserted), 4);
        EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0),
                  inserted[0] == ' ' ? ORTO_DoubledWord : ORTO_EndOfBlock)
            << inserted;
        ORTO_CloseBlock(sid, b);
    }

    // the option takes effect on an open block at once
    b = open("the the");
    ORTO_SetOption(sid, ORTO_ReportDoubledWords, 0);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_EndOfBlock);
    ORTO_CloseBlock(sid, b);
}

TEST_F(BlockFixture, OnlyTheFirstWordOfABlockIsHeldToACapital)
{
    ORTO_SetOption(sid, ORTO_ReportUncappedWords, 1);
    char word[64], repl[64];
    int16_t b = open("hello there. again");
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, repl, sizeof repl), ORTO_UncappedWord);
    EXPECT_STREQ(word, "hello");
    EXPECT_EQ(ORTO_NextBlockWord(sid, b), 0);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, repl, sizeof repl), ORTO_EndOfBlock);
    // setting the cursor back does not make it the first word again
    EXPECT_EQ(ORTO_SetBlockCursor(sid, b, 0), 0);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, repl, sizeof repl), ORTO_EndOfBlock);
    ORTO_CloseBlock(sid, b);

    // a first word of digits has nothing to report either
    b = open("2024 hello");
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_EndOfBlock);
    ORTO_CloseBlock(sid, b);

    // counting the words walks the text, and the first word loses its status
    b = open("hello there");
    uint32_t count = 0, cur = 99;
    EXPECT_EQ(ORTO_GetBlockInfo(sid, b, nullptr, nullptr, &cur, &count), 0);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(cur, 0u);
    EXPECT_EQ(cursor(b), 0u);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_EndOfBlock);
    ORTO_CloseBlock(sid, b);

    // without the count the status stays for as many calls as it takes
    b = open("hello there");
    uint32_t len = 0, size = 0;
    EXPECT_EQ(ORTO_GetBlockInfo(sid, b, &len, &size, nullptr, nullptr), 0);
    EXPECT_EQ(len, 11u);
    EXPECT_EQ(size, 75u);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_UncappedWord);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, nullptr, 0), ORTO_UncappedWord);
    ORTO_CloseBlock(sid, b);
}

TEST_F(BlockFixture, DeletingWordsAndText)
{
    char deleted[64];
    int16_t b = open("one two three");
    ASSERT_EQ(ORTO_NextBlockWord(sid, b), 0);
    EXPECT_EQ(ORTO_DelBlockWord(sid, b, deleted, sizeof deleted), 3);
    EXPECT_STREQ(deleted, " two");
    EXPECT_EQ(text(b), "one three");
    EXPECT_EQ(cursor(b), 4u);
    // undo: back to the start, insert what went away
    EXPECT_EQ(ORTO_SetBlockCursor(sid, b, 3), 0);
    EXPECT_EQ(ORTO_InsertBlockText(sid, b, deleted), 4);
    EXPECT_EQ(text(b), "one two three");
    ORTO_CloseBlock(sid, b);

    b = open("hello world");
    EXPECT_EQ(ORTO_DelBlockWord(sid, b, deleted, sizeof deleted), 0);
    EXPECT_STREQ(deleted, "hello");
    EXPECT_EQ(text(b), " world");
    EXPECT_EQ(cursor(b), 1u);
    ORTO_CloseBlock(sid, b);

    // hyphens and periods end the deleted word, whatever the option
    for (uint32_t split : {0u, 1u}) {
        ORTO_SetOption(sid, ORTO_SplitHyphenatedWords, split);
        b = open("well-known");
        EXPECT_EQ(ORTO_DelBlockWord(sid, b, deleted, sizeof deleted), 0);
        EXPECT_STREQ(deleted, "well");
        EXPECT_EQ(text(b), "-known");
        EXPECT_EQ(cursor(b), 1u);
        ORTO_CloseBlock(sid, b);
    }
    b = open("e.g. x");
    EXPECT_EQ(ORTO_DelBlockWord(sid, b, deleted, sizeof deleted), 0);
    EXPECT_STREQ(deleted, "e");
    EXPECT_EQ(text(b), ".g. x");
    ORTO_CloseBlock(sid, b);

    // the deleted text is cut to the buffer; apostrophes stay in the word
    b = open("a don't b");
    ORTO_NextBlockWord(sid, b);
    char small[4];
    EXPECT_EQ(ORTO_DelBlockWord(sid, b, small, sizeof small), 1);
    EXPECT_STREQ(small, " do");
    EXPECT_EQ(text(b), "a b");
    EXPECT_EQ(ORTO_DelBlockWord(sid, b, nullptr, 10), 1); // nothing handed back, no crash
    EXPECT_EQ(text(b), "a");
    // no word left: -3, text unchanged, cursor in front of the white space
    ORTO_CloseBlock(sid, b);
    b = open("one  ...");
    ASSERT_EQ(ORTO_SetBlockCursor(sid, b, 5), 0);
    strcpy(deleted, "untouched");
    EXPECT_EQ(ORTO_DelBlockWord(sid, b, deleted, sizeof deleted), ORTO_NotFound);
    EXPECT_STREQ(deleted, "untouched");
    EXPECT_EQ(text(b), "one  ...");
    EXPECT_EQ(cursor(b), 3u);
    ORTO_CloseBlock(sid, b);

    // DelBlockText: up to the end of the text, not one byte more, silently
    DebugCapture log;
    b = open("abc def");
    ASSERT_EQ(ORTO_SetBlockCursor(sid, b, 3), 0);
    EXPECT_EQ(ORTO_DelBlockText(sid, b, 5), ORTO_BufferTooSmall);
    EXPECT_EQ(text(b), "abc def");
    EXPECT_EQ(ORTO_DelBlockText(sid, b, 4), 0);
    EXPECT_EQ(text(b), "abc");
    EXPECT_EQ(cursor(b), 3u);
    EXPECT_EQ(ORTO_DelBlockText(sid, b, 0), 0);
    ORTO_CloseBlock(sid, b);
    for (const std::string &line : log.lines())
        EXPECT_EQ(line.find("DelBlock"), std::string::npos) << line;
}

TEST_F(BlockFixture, AFullBlockRefusesInsertionAndLosesTheReplacedWord)
{
    DebugCapture log;
    std::string t = "one abc";
    int16_t b = ORTO_OpenBlock(sid, t.data(), 7, 7, 1); // length = size
    ASSERT_GE(b, 0);
    EXPECT_EQ(ORTO_InsertBlockText(sid, b, ""), ORTO_BufferTooSmall);
    EXPECT_TRUE(log.has("BlockInsertText: buffer too small"));
    EXPECT_EQ(text(b), "one abc");
    ASSERT_EQ(ORTO_NextBlockWord(sid, b), 0);
    log.clear();
    EXPECT_EQ(ORTO_ReplaceBlockWord(sid, b, "xyz"), ORTO_BufferTooSmall);
    EXPECT_TRUE(log.has("BlockInsertText: buffer too small"));
    EXPECT_EQ(text(b), "one "); // the old word is gone, the new one isn't in
    // now there is room for three bytes and the spare one
    EXPECT_EQ(ORTO_InsertBlockText(sid, b, "xy"), 2);
    EXPECT_EQ(text(b), "one xy");
    ORTO_CloseBlock(sid, b);

    // no word to replace: -3, nothing logged, text unchanged
    b = open("one ...");
    ORTO_SetBlockCursor(sid, b, 3);
    log.clear();
    EXPECT_EQ(ORTO_ReplaceBlockWord(sid, b, "x"), ORTO_NotFound);
    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(text(b), "one ...");
    // a null new word deletes
    ORTO_SetBlockCursor(sid, b, 0);
    EXPECT_EQ(ORTO_ReplaceBlockWord(sid, b, nullptr), 0);
    EXPECT_EQ(text(b), " ...");
    ORTO_CloseBlock(sid, b);
}

// The host lends its buffer: every edit shows in it at once, byte for
// byte, and nothing is written at or behind blockSize.
TEST_F(BlockFixture, EditingTheHostsBufferInPlace)
{
    char host[32];
    memset(host, 'G', sizeof host); // bytes 24..31 lie behind the block
    memcpy(host, "one two three", 13);
    host[13] = 0;
    memset(host + 14, 'X', 10);
    auto bytes = [&] { return std::string(host, 24); };
    auto expect = [](const char *s) { return std::string(s, 24); };
    const std::string guard(8, 'G');

    int16_t b = ORTO_OpenBlock(sid, host, 13, 24, 0);
    ASSERT_GE(b, 0);
    // insertion carries the terminator along
    EXPECT_EQ(ORTO_InsertBlockText(sid, b, "so "), 3);
    EXPECT_EQ(bytes(), expect("so one two three\0XXXXXXX"));
    EXPECT_EQ(cursor(b), 0u);
    // replacement: the deletion leaves stale bytes, the insertion moves one of them
    ASSERT_EQ(ORTO_NextBlockWord(sid, b), 0);
    ASSERT_EQ(ORTO_NextBlockWord(sid, b), 0);
    EXPECT_EQ(ORTO_ReplaceBlockWord(sid, b, "2"), 1);
    EXPECT_EQ(bytes(), expect("so one 2 threere\0XXXXXXX"));
    // deletion of a word with its white space
    char deleted[16];
    EXPECT_EQ(ORTO_DelBlockWord(sid, b, deleted, sizeof deleted), 6);
    EXPECT_STREQ(deleted, " 2");
    EXPECT_EQ(bytes(), expect("so one threeeere\0XXXXXXX"));
    EXPECT_EQ(cursor(b), 7u);
    // undo of it
    EXPECT_EQ(ORTO_SetBlockCursor(sid, b, 6), 0);
    EXPECT_EQ(ORTO_InsertBlockText(sid, b, deleted), 2);
    EXPECT_EQ(bytes(), expect("so one 2 threeee\0XXXXXXX"));
    // fill up to one byte short of the buffer: 14 + 9 = 23
    EXPECT_EQ(ORTO_SetBlockCursor(sid, b, 14), 0);
    EXPECT_EQ(ORTO_InsertBlockText(sid, b, " and four"), 9);
    EXPECT_EQ(bytes(), expect("so one 2 three and foure"));
    EXPECT_EQ(ORTO_InsertBlockText(sid, b, "!"), ORTO_BufferTooSmall);
    EXPECT_EQ(bytes(), expect("so one 2 three and foure"));
    // the text is the block's length, whatever stands behind it
    char out[32];
    memset(out, '#', sizeof out);
    EXPECT_EQ(ORTO_GetBlock(sid, b, out, 22), ORTO_BufferTooSmall);
    EXPECT_EQ(out[0], '#');
    EXPECT_EQ(ORTO_GetBlock(sid, b, out, 23), 23);
    EXPECT_EQ(std::string(out, 24), "so one 2 three and four#"); // no terminator written
    EXPECT_EQ(ORTO_CloseBlock(sid, b), 0);
    EXPECT_EQ(bytes(), expect("so one 2 three and foure"));
    EXPECT_EQ(std::string(host + 24, 8), guard);
}

TEST_F(BlockFixture, ACopyLeavesTheHostsBufferAlone)
{
    char host[16] = "cat dog";
    int16_t b = ORTO_OpenBlock(sid, host, 7, 16, 1);
    ASSERT_GE(b, 0);
    EXPECT_EQ(ORTO_ReplaceBlockWord(sid, b, "tiger"), 5);
    EXPECT_EQ(text(b), "tiger dog");
    EXPECT_STREQ(host, "cat dog");
    ORTO_CloseBlock(sid, b);
}

TEST_F(BlockFixture, OpenFailuresAndIdValidation)
{
    DebugCapture log;
    std::string t = "a b";
    std::vector<int16_t> ids;
    for (int i = 0; i < 4; i++)
        ids.push_back(open(t));
    EXPECT_EQ(ids, (std::vector<int16_t>{0, 1, 2, 3}));
    EXPECT_EQ(open(t), ORTO_TooManyBlocks);
    EXPECT_TRUE(log.has("ORTO_OpenBlock: too many blocks"));
    EXPECT_EQ(ORTO_CloseBlock(sid, 1), 0);
    EXPECT_EQ(open(t), 1);

    // a failed open leaves the slot free
    ORTO_CloseBlock(sid, 2);
    EXPECT_EQ(ORTO_OpenBlock(sid, t.data(), 3, 2, 0), ORTO_BufferTooSmall);
    EXPECT_TRUE(log.has("BlockOpen: buffer too small"));
    EXPECT_EQ(ORTO_OpenBlock(sid, nullptr, 3, 3, 1), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_OpenBlock(sid, nullptr, 0, 8, 0), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_OpenBlock(sid, t.data(), 3, 3, 1), 2); // length = size is allowed
    for (int16_t id : {0, 1, 2, 3})
        ORTO_CloseBlock(sid, id);

    // the cursor can't pass the text
    int16_t b = open("hello");
    ORTO_NextBlockWord(sid, b);
    uint32_t before = cursor(b);
    log.clear();
    EXPECT_EQ(ORTO_SetBlockCursor(sid, b, 20), ORTO_BufferTooSmall);
    EXPECT_TRUE(log.has("BlockSetCursor: cursor 20 > text length 5"));
    EXPECT_EQ(cursor(b), before);
    EXPECT_EQ(ORTO_SetBlockCursor(sid, b, 5), 0);
    char buf[8];
    log.clear();
    EXPECT_EQ(ORTO_GetBlock(sid, b, buf, 4), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_GetBlock(sid, b, nullptr, 100), ORTO_BufferTooSmall);
    EXPECT_TRUE(log.has("BlockGetText: buffer too small"));

    // every block call names itself; a bad session id hides a bad block id
    char word[64];
    uint32_t u = 0;
    struct Call {
        const char *name;
        std::function<int32_t(int16_t, int16_t)> run;
    };
    const Call calls[] = {
        {"ORTO_CheckBlock", [&](int16_t s, int16_t k) { return ORTO_CheckBlock(s, k, word, 64, word, 64); }},
        {"ORTO_CloseBlock", [&](int16_t s, int16_t k) { return ORTO_CloseBlock(s, k); }},
        {"ORTO_DelBlockText", [&](int16_t s, int16_t k) { return ORTO_DelBlockText(s, k, 0); }},
        {"ORTO_DelBlockWord", [&](int16_t s, int16_t k) { return ORTO_DelBlockWord(s, k, word, 64); }},
        {"ORTO_GetBlock", [&](int16_t s, int16_t k) { return ORTO_GetBlock(s, k, word, 64); }},
        {"ORTO_GetBlockInfo", [&](int16_t s, int16_t k) { return ORTO_GetBlockInfo(s, k, &u, &u, &u, &u); }},
        {"ORTO_GetBlockWord", [&](int16_t s, int16_t k) { return ORTO_GetBlockWord(s, k, word, 64); }},
        {"ORTO_InsertBlockText", [&](int16_t s, int16_t k) { return ORTO_InsertBlockText(s, k, "x"); }},
        {"ORTO_NextBlockWord", [&](int16_t s, int16_t k) { return ORTO_NextBlockWord(s, k); }},
        {"ORTO_ReplaceBlockWord", [&](int16_t s, int16_t k) { return ORTO_ReplaceBlockWord(s, k, "x"); }},
        {"ORTO_SetBlockCursor", [&](int16_t s, int16_t k) { return ORTO_SetBlockCursor(s, k, 0); }},
    };
    for (const Call &c : calls) {
        log.clear();
        EXPECT_EQ(c.run(sid, 2), ORTO_BadBlockId) << c.name; // slot free
        EXPECT_EQ(c.run(sid, 4), ORTO_BadBlockId) << c.name;
        EXPECT_EQ(c.run(sid, -1), ORTO_BadBlockId) << c.name;
        EXPECT_EQ(log.lines(), (std::vector<std::string>{
                                   std::string(c.name) + ": bad block id 2",
                                   std::string(c.name) + ": bad block id 4",
                                   std::string(c.name) + ": bad block id -1"}));
        log.clear();
        EXPECT_EQ(c.run(16, 9), ORTO_BadSessionId) << c.name;
        EXPECT_EQ(log.lines(), (std::vector<std::string>{std::string(c.name) + ": bad session id 16"}));
    }
    log.clear();
    EXPECT_EQ(ORTO_OpenBlock(-3, word, 0, 0, 0), ORTO_BadSessionId);
    EXPECT_TRUE(log.has("ORTO_OpenBlock: bad session id -3"));
    EXPECT_EQ(text(b), "hello"); // none of it touched the open block

    // closing the session closes its blocks
    EXPECT_EQ(ORTO_CloseSession(sid), 0);
    sid = ORTO_OpenSession();
    EXPECT_EQ(ORTO_GetBlockWord(sid, b, word, 64), ORTO_BadBlockId);
}

} // namespace
