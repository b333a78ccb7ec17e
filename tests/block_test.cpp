// Text blocks through the C API: the word scanner, the block check with
// its doubled-word and first-word rules, and editing of a host's buffer.
// Most cases are walks: a text, then steps on its block, each with what it
// must give.
#include <gtest/gtest.h>

#include <stdlib.h>
#include <string.h>

#include <string>
#include <utility>
#include <vector>

#include "orto.h"
#include "support/test_support.h"

namespace {

// One call on the block and what it must give.  `out` is the word read
// ("word|replacement" for a check) or the deleted text, "?" when the call
// must not write it; null, and a cursor or text of -1 or null, are not
// looked at.
struct Step {
    char call; // c check, n next word, g get word, s set cursor, r replace, i insert,
               // d delete word, x delete bytes
    const char *arg; // text given, or the number for s and x
    int32_t result;
    const char *out = nullptr;
    int32_t cursor = -1;
    const char *text = nullptr;
};

struct BlockFixture : ::testing::Test {
    int16_t sid = -1, lex = -1;

    void SetUp() override
    {
        sid = ORTO_OpenSession();
        lex = ORTO_CreateLex(sid, nullptr, ORTO_LangAny);
        for (const char *w : {"the", "cat", "hello", "there", "again", "dog", "dogs", "one", "two",
                              "three", "well", "known", "a", "b", "end"})
            ASSERT_EQ(ORTO_AddToLex(sid, lex, w, ORTO_Ignore, nullptr), 0) << w;
    }
    void TearDown() override { ORTO_CloseSession(sid); }

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
        EXPECT_EQ(ORTO_GetBlock(sid, block, &out[0], len), (int32_t)len);
        return out;
    }
    uint32_t cursor(int16_t block)
    {
        uint32_t c = 0;
        ORTO_GetBlockInfo(sid, block, nullptr, nullptr, &c, nullptr);
        return c;
    }
    void play(int16_t block, const std::vector<Step> &steps)
    {
        for (size_t i = 0; i < steps.size(); i++) {
            const Step &s = steps[i];
            SCOPED_TRACE("step " + std::to_string(i) + " '" + s.call + "'");
            char out[64] = "?", replacement[64] = "?";
            int32_t rc = 0;
            switch (s.call) {
            case 'c':
                rc = ORTO_CheckBlock(sid, block, out, sizeof out, replacement, sizeof replacement);
                break;
            case 'n': rc = ORTO_NextBlockWord(sid, block); break;
            case 'g': rc = ORTO_GetBlockWord(sid, block, out, sizeof out); break;
            case 's': rc = ORTO_SetBlockCursor(sid, block, (uint32_t)atoi(s.arg)); break;
            case 'r': rc = ORTO_ReplaceBlockWord(sid, block, s.arg); break;
            case 'i': rc = ORTO_InsertBlockText(sid, block, s.arg); break;
            case 'd': rc = ORTO_DelBlockWord(sid, block, out, sizeof out); break;
            case 'x': rc = ORTO_DelBlockText(sid, block, (uint32_t)atoi(s.arg)); break;
            }
            EXPECT_EQ(rc, s.result);
            std::string got = s.call == 'c' ? std::string(out) + "|" + replacement : out;
            if (s.out) {
                EXPECT_EQ(got.substr(0, strchr(s.out, '|') ? std::string::npos : got.find('|')), s.out);
            }
            if (s.cursor >= 0) {
                EXPECT_EQ(cursor(block), (uint32_t)s.cursor);
            }
            if (s.text) {
                EXPECT_EQ(text(block), s.text);
            }
        }
    }
    void walk(const std::string &t, const std::vector<Step> &steps)
    {
        SCOPED_TRACE(t);
        int16_t b = open(t);
        ASSERT_GE(b, 0);
        play(b, steps);
        ORTO_CloseBlock(sid, b);
    }
    // Every word of the text with the byte behind it, by the scanner's walk.
    std::vector<std::pair<std::string, int>> words(const std::string &t)
    {
        std::vector<std::pair<std::string, int>> out;
        int16_t b = open(t);
        char word[64];
        for (int16_t behind; (behind = ORTO_GetBlockWord(sid, b, word, sizeof word)) >= 0;) {
            out.emplace_back(word, behind);
            if (ORTO_NextBlockWord(sid, b) < 0)
                break;
        }
        ORTO_CloseBlock(sid, b);
        return out;
    }
};

using Words = std::vector<std::pair<std::string, int>>;

} // namespace

TEST_F(BlockFixture, ScannerFindsWordsByTheContinuationRules)
{
    struct Case {
        std::string text;
        Words split;   // SplitHyphenatedWords on (the default): words and the bytes behind
        Words joined;  // off, where it differs
    };
    const Case cases[] = {
        {"well-known", {{"well", '-'}, {"known", 0}}, {{"well-known", 0}}},
        {"a--b -c d-", {{"a", '-'}, {"b", ' '}, {"c", ' '}, {"d", '-'}}, {}},
        {"a..b", {{"a", '.'}, {"b", 0}}, {}},
        {"x.y.z.", {{"x.y.z.", 0}}, {}},
        {"The end. Next", {{"The", ' '}, {"end", '.'}, {"Next", 0}}, {}},
        {"e.g. U.S.A. a.b.c. go", {{"e.g.", ' '}, {"U.S.A.", ' '}, {"a.b.c.", ' '}, {"go", 0}}, {}},
        {"x.y..z", {{"x.y.", '.'}, {"z", 0}}, {}},
        {"'tis cat' dogs' DOGS' x",
         {{"tis", ' '}, {"cat'", ' '}, {"dogs", ' '}, {"DOGS", ' '}, {"x", 0}}, {}},
        {"3.14 1,000", {{"3.14", ' '}, {"1", ','}, {"000", 0}}, {}},
        {"ab- ab.", {{"ab", '-'}, {"ab", '.'}}, {}},
        {"don\x92t dogs\x92 x", {{"don\x92t", ' '}, {"dogs", ' '}, {"x", 0}}, {}},
        {"caf\xE9\xA0na\xEFve \xC9t\xE9", {{"caf\xE9", 0xA0}, {"na\xEFve", ' '}, {"\xC9t\xE9", 0}}, {}},
        {"re-.do x-'y", {{"re", '-'}, {"do", ' '}, {"x", '-'}, {"y", 0}},
         {{"re", '-'}, {"do", ' '}, {"x-'y", 0}}},
        {std::string("ab\0cd\0", 6), {{"ab", 0}, {"cd", 0}}, {}}, // a NUL ends words, not the text
        {std::string(70, 'q') + " x", {{std::string(63, 'q'), 'q'}, {"qqqqqqq", ' '}, {"x", 0}}, {}},
        {"...", {}, {}},
        {"", {}, {}},
    };
    for (const Case &c : cases) {
        ORTO_SetOption(sid, ORTO_SplitHyphenatedWords, 1);
        EXPECT_EQ(words(c.text), c.split) << "split: " << c.text;
        ORTO_SetOption(sid, ORTO_SplitHyphenatedWords, 0);
        EXPECT_EQ(words(c.text), c.joined.empty() ? c.split : c.joined) << "joined: " << c.text;
    }
    ORTO_SetOption(sid, ORTO_SplitHyphenatedWords, 1);

    // the scanner stops at the length, whatever the host's buffer holds behind it
    for (const char *host : {"ab.cd", "ab-cd"}) {
        char buf[8], word[64];
        strcpy(buf, host);
        int16_t b = ORTO_OpenBlock(sid, buf, 3, 8, 0);
        EXPECT_EQ(ORTO_GetBlockWord(sid, b, word, sizeof word), buf[2]) << host;
        EXPECT_STREQ(word, std::string(host, 2).c_str());
        ORTO_CloseBlock(sid, b);
    }
    // a small buffer cuts the word and leaves the cursor alone; none is refused
    int16_t b = open("hello world");
    char small[4];
    EXPECT_EQ(ORTO_GetBlockWord(sid, b, small, sizeof small), 'l');
    EXPECT_STREQ(small, "hel");
    EXPECT_EQ(ORTO_GetBlockWord(sid, b, small, 1), 'h');
    EXPECT_STREQ(small, "");
    EXPECT_EQ(ORTO_GetBlockWord(sid, b, nullptr, 64), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_GetBlockWord(sid, b, small, 0), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, nullptr, 64, nullptr, 0), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_CheckBlock(sid, b, small, 0, nullptr, 0), ORTO_BufferTooSmall);
    EXPECT_EQ(cursor(b), 0u);
    uint32_t len = 0, size = 0, count = 0;
    EXPECT_EQ(ORTO_GetBlockInfo(sid, b, &len, &size, nullptr, &count), 0);
    EXPECT_EQ(len * 100 + size * 10 + count, 11u * 100 + 75 * 10 + 2);
    ORTO_CloseBlock(sid, b);
}

TEST_F(BlockFixture, TheEndOfTheTextAndTextsWithoutWords)
{
    walk("...", {{'g', "", ORTO_NotFound, "?", 3}, {'c', "", ORTO_EndOfBlock, nullptr, 3},
                 {'n', "", ORTO_NotFound}, {'d', "", ORTO_NotFound, "?"}});
    walk("one two", {{'n', "", 0, nullptr, 4}, {'n', "", ORTO_NotFound, nullptr, 7},
                     {'c', "", ORTO_EndOfBlock}, {'c', "", ORTO_EndOfBlock},
                     {'s', "0", 0}, {'g', "", ' ', "one"}}); // setting the cursor back reaches them again
    // an empty text in a buffer of size 0, with and without a copy
    for (uint16_t copy : {0, 1}) {
        int16_t b = ORTO_OpenBlock(sid, nullptr, 0, 0, copy);
        ASSERT_GE(b, 0) << copy;
        play(b, {{'c', "", ORTO_EndOfBlock}, {'i', "", ORTO_BufferTooSmall}, {'d', "", ORTO_NotFound}});
        EXPECT_EQ(ORTO_GetBlock(sid, b, nullptr, 0), 0);
        ORTO_CloseBlock(sid, b);
    }
}

TEST_F(BlockFixture, CheckBlockWalksToTheNextProblem)
{
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "teh", ORTO_AutoChangePreserveCase, "the"), 0);
    walk("the cat xyzzy dog Teh end", {
        {'c', "", ORTO_MisspelledWord, "xyzzy|xyzzy", 8},
        {'c', "", ORTO_MisspelledWord, "xyzzy", 8}, // again without moving: the same word
        {'n', "", 0},
        {'c', "", ORTO_AutoChangeWord, "Teh|The"},
        {'r', "The", 3, nullptr, 18}, // the replacement is checked in its turn
        {'c', "", ORTO_EndOfBlock, nullptr, -1, "the cat xyzzy dog The end"},
    });
    // words of digits alone pass; a number with a period is looked up
    ORTO_SetOption(sid, ORTO_ReportMixedDigits | ORTO_ReportDoubledWords, 1);
    walk("1 1 2024 3.14", {{'c', "", ORTO_MisspelledWord | ORTO_MixedDigitsWord, "3.14"}});
    // a negative replacement size means none is wanted
    int16_t b = open("xyzzy");
    char word[64], repl[8] = "keep";
    EXPECT_EQ(ORTO_CheckBlock(sid, b, word, sizeof word, repl, -5), ORTO_MisspelledWord);
    EXPECT_STREQ(repl, "keep");
    ORTO_CloseBlock(sid, b);
}

TEST_F(BlockFixture, DoubledWords)
{
    ORTO_SetOption(sid, ORTO_ReportDoubledWords, 1);
    walk("the the the", {
        {'c', "", ORTO_DoubledWord, "the", 4},
        {'n', "", 0},
        {'c', "", ORTO_DoubledWord, nullptr, 8},
        {'n', "", ORTO_NotFound},
        {'c', "", ORTO_EndOfBlock},
        {'s', "4", 0}, // the word at a cursor set has no word before it
        {'c', "", ORTO_DoubledWord, nullptr, 8},
    });
    struct {
        const char *text;
        int16_t first; // the first report
    } pairs[] = {
        {"the\r\n\tthe", ORTO_DoubledWord}, {"the\x01the", ORTO_DoubledWord}, // a byte of no class joins
        {"the, the", ORTO_EndOfBlock},      {"the. the", ORTO_EndOfBlock},
        {"dogs' dogs", ORTO_EndOfBlock},    {"1 1", ORTO_EndOfBlock},
        {"the cat", ORTO_EndOfBlock},       {"The the", ORTO_EndOfBlock},
    };
    for (const auto &p : pairs)
        walk(p.text, {{'c', "", p.first}});
    ORTO_SetOption(sid, ORTO_CaseSensitive, 0);
    walk("The the", {{'c', "", ORTO_DoubledWord, nullptr, 4}});
    ORTO_SetOption(sid, ORTO_CaseSensitive, 1);
    // a misspelled doubled word carries both bits
    walk("xyz xyz", {{'c', "", ORTO_MisspelledWord}, {'n', "", 0},
                     {'c', "", ORTO_MisspelledWord | ORTO_DoubledWord}});
    // after edits the word before is read afresh: punctuation behind it
    // parts the two even when no walk has passed over it
    walk("the cat", {{'n', "", 0}, {'d', "", 3}, {'i', " the", 4}, {'c', "", ORTO_DoubledWord}});
    walk("the cat", {{'n', "", 0}, {'d', "", 3}, {'i', ",the", 4}, {'c', "", ORTO_EndOfBlock}});
    // the option takes effect on an open block at once
    int16_t b = open("the the");
    ORTO_SetOption(sid, ORTO_ReportDoubledWords, 0);
    play(b, {{'c', "", ORTO_EndOfBlock}});
    ORTO_CloseBlock(sid, b);
}

TEST_F(BlockFixture, OnlyTheFirstWordOfABlockIsHeldToACapital)
{
    ORTO_SetOption(sid, ORTO_ReportUncappedWords, 1);
    walk("hello there. again", {{'c', "", ORTO_UncappedWord, "hello|"}, {'c', "", ORTO_UncappedWord},
                                {'n', "", 0}, {'c', "", ORTO_EndOfBlock},
                                {'s', "0", 0}, {'c', "", ORTO_EndOfBlock}}); // not first again
    walk("2024 hello", {{'c', "", ORTO_EndOfBlock}});
    // counting the words walks the text: the first word loses its status
    int16_t b = open("hello there");
    uint32_t count = 0;
    EXPECT_EQ(ORTO_GetBlockInfo(sid, b, nullptr, nullptr, nullptr, &count), 0);
    EXPECT_EQ(count, 2u);
    play(b, {{'g', "", ' ', "hello", 0}, {'c', "", ORTO_EndOfBlock}}); // the cursor stays
    ORTO_CloseBlock(sid, b);
}

TEST_F(BlockFixture, DeletingReplacingAndInserting)
{
    DebugCapture log;
    walk("one two three", {
        {'n', "", 0},
        {'d', "", 3, " two", 4, "one three"},
        {'s', "3", 0},
        {'i', " two", 4, nullptr, 3, "one two three"}, // the undo
    });
    walk("hello world", {{'d', "", 0, "hello", 1, " world"}});
    // hyphens and periods end the deleted word, whatever the option
    for (uint32_t split : {0u, 1u}) {
        ORTO_SetOption(sid, ORTO_SplitHyphenatedWords, split);
        walk("well-known", {{'d', "", 0, "well", 1, "-known"}});
    }
    walk("e.g. x", {{'d', "", 0, "e", -1, ".g. x"}});
    // apostrophes stay in; a small buffer cuts what comes back
    int16_t b = open("a don't b");
    ORTO_NextBlockWord(sid, b);
    char small[4];
    EXPECT_EQ(ORTO_DelBlockWord(sid, b, small, sizeof small), 1);
    EXPECT_STREQ(small, " do");
    EXPECT_EQ(ORTO_DelBlockWord(sid, b, nullptr, 10), 1);
    EXPECT_EQ(text(b), "a");
    ORTO_CloseBlock(sid, b);
    walk("one  ...", {{'s', "5", 0}, {'d', "", ORTO_NotFound, "?", 3, "one  ..."}}); // no word left
    // bytes up to the end of the text, not one more, silently
    walk("abc def", {{'s', "3", 0}, {'x', "5", ORTO_BufferTooSmall, nullptr, 3, "abc def"},
                     {'x', "4", 0, nullptr, 3, "abc"}, {'x', "0", 0}});
    for (const std::string &line : log.lines())
        EXPECT_EQ(line.find("DelBlock"), std::string::npos) << line;
    // no word to replace: nothing logged; a null new word deletes
    log.clear();
    walk("one ...", {{'s', "3", 0}, {'r', "x", ORTO_NotFound, nullptr, -1, "one ..."},
                     {'s', "0", 0}, {'r', nullptr, 0, nullptr, -1, " ..."}});
    EXPECT_TRUE(log.lines().empty());

    // a full block refuses insertion, and a replacement loses the old word
    std::string full = "one abc";
    b = ORTO_OpenBlock(sid, &full[0], 7, 7, 1);
    play(b, {{'i', "", ORTO_BufferTooSmall, nullptr, -1, "one abc"}, {'n', "", 0},
             {'r', "xyz", ORTO_BufferTooSmall, nullptr, -1, "one "},
             {'i', "xy", 2, nullptr, -1, "one xy"}}); // room for two and the spare byte
    EXPECT_TRUE(log.has("BlockInsertText: buffer too small"));
    ORTO_CloseBlock(sid, b);
    // a copy leaves the host's buffer alone
    char host[16] = "cat dog";
    b = ORTO_OpenBlock(sid, host, 7, 16, 1);
    play(b, {{'r', "tiger", 5, nullptr, -1, "tiger dog"}});
    EXPECT_STREQ(host, "cat dog");
    ORTO_CloseBlock(sid, b);
}

// The host lends its buffer: every edit shows in it at once, byte for
// byte, and nothing is written at or behind blockSize.
TEST_F(BlockFixture, EditingTheHostsBufferInPlace)
{
    char host[32];
    memset(host, 'G', sizeof host); // bytes 24..31 lie behind the block
    memcpy(host, "one two three\0XXXXXXXXXX", 24);
    struct {
        Step step;
        const char *bytes; // the first 24 bytes of the buffer after it
    } steps[] = {
        {{'i', "so ", 3, nullptr, 0}, "so one two three\0XXXXXXX"}, // the terminator moves along
        {{'n', "", 0}, nullptr},
        {{'n', "", 0}, nullptr},
        {{'r', "2", 1}, "so one 2 threere\0XXXXXXX"}, // the deletion leaves stale bytes
        {{'d', "", 6, " 2", 7}, "so one threeeere\0XXXXXXX"},
        {{'s', "6", 0}, nullptr},
        {{'i', " 2", 2}, "so one 2 threeee\0XXXXXXX"},
        {{'s', "14", 0}, nullptr},
        {{'i', " and four", 9}, "so one 2 three and foure"}, // one byte short of the size
        {{'i', "!", ORTO_BufferTooSmall}, "so one 2 three and foure"},
    };
    int16_t b = ORTO_OpenBlock(sid, host, 13, 24, 0);
    for (const auto &s : steps) {
        play(b, {s.step});
        if (s.bytes) {
            EXPECT_EQ(std::string(host, 24), std::string(s.bytes, 24));
        }
    }
    // the text is the block's length, copied without a terminator
    char out[32];
    memset(out, '#', sizeof out);
    EXPECT_EQ(ORTO_GetBlock(sid, b, out, 22), ORTO_BufferTooSmall);
    EXPECT_EQ(out[0], '#');
    EXPECT_EQ(ORTO_GetBlock(sid, b, out, 23), 23);
    EXPECT_EQ(std::string(out, 24), "so one 2 three and four#");
    EXPECT_EQ(ORTO_CloseBlock(sid, b), 0);
    EXPECT_EQ(std::string(host + 24, 8), std::string(8, 'G'));
}

TEST_F(BlockFixture, OpenAndCursorFailures)
{
    DebugCapture log;
    std::string t = "a b";
    for (int16_t i = 0; i < 4; i++)
        EXPECT_EQ(open(t), i);
    EXPECT_EQ(open(t), ORTO_TooManyBlocks);
    EXPECT_TRUE(log.has("ORTO_OpenBlock: too many blocks"));
    ORTO_CloseBlock(sid, 1);
    EXPECT_EQ(ORTO_OpenBlock(sid, &t[0], 3, 2, 0), ORTO_BufferTooSmall); // a failed open takes no slot
    EXPECT_TRUE(log.has("BlockOpen: buffer too small"));
    EXPECT_EQ(ORTO_OpenBlock(sid, nullptr, 3, 3, 1), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_OpenBlock(sid, nullptr, 0, 8, 0), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_OpenBlock(sid, &t[0], 3, 3, 1), 1); // length = size is allowed
    ORTO_CloseBlock(sid, 1);

    int16_t b = open("hello");
    play(b, {{'n', "", ORTO_NotFound, nullptr, 5}, {'s', "20", ORTO_BufferTooSmall, nullptr, 5},
             {'s', "5", 0}});
    EXPECT_TRUE(log.has("BlockSetCursor: cursor 20 > text length 5"));
    char buf[8];
    EXPECT_EQ(ORTO_GetBlock(sid, b, buf, 4), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_GetBlock(sid, b, nullptr, 100), ORTO_BufferTooSmall);
    EXPECT_TRUE(log.has("BlockGetText: buffer too small"));
}
