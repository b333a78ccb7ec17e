// Temporary text lexicons through the exported lexicon calls.
#include <gtest/gtest.h>

#include <stdio.h>
#include <string.h>

#include <string>
#include <vector>

#include "engine/session.h"
#include "engine/string_helpers.h"
#include "lexicon/lexicon.h"
#include "orto.h"
#include "support/test_support.h"

namespace {

struct TempLex : ::testing::Test {
    int16_t sid = -1, lex = -1;
    void SetUp() override
    {
        sid = ORTO_OpenSession();
        lex = ORTO_CreateLex(sid, nullptr, ORTO_LangAny);
        ASSERT_GE(lex, 0);
    }
    void TearDown() override { ORTO_CloseSession(sid); }

    // the listing of ORTO_GetLex, sized by ORTO_GetLexInfo
    std::string listing()
    {
        uint32_t size = 0;
        EXPECT_EQ(ORTO_GetLexInfo(sid, lex, &size, nullptr, nullptr), 0);
        std::string buf(size, '\x7f');
        int32_t n = ORTO_GetLex(sid, lex, &buf[0], size);
        EXPECT_GE(n, 0);
        return buf;
    }
    uint32_t count() { return SessionTable[sid]->lexSlots[lex]->tlex.count; }
};

} // namespace

TEST_F(TempLex, EmptyLexicon)
{
    char other[8] = "keep";
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "word", other, sizeof other), ORTO_NotFound);
    EXPECT_STREQ(other, "keep");
    uint32_t size = 0;
    uint16_t format = 9, language = 9;
    EXPECT_EQ(ORTO_GetLexInfo(sid, lex, &size, &format, &language), 0);
    EXPECT_EQ(size, 1u);
    EXPECT_EQ(format, ORTO_LexText);
    EXPECT_EQ(language, 0x7878);
    char buf[4] = "xxx";
    EXPECT_EQ(ORTO_GetLex(sid, lex, buf, 1), 0);
    EXPECT_EQ(buf[0], 0);
    EXPECT_EQ(buf[1], 'x');
    EXPECT_EQ(ORTO_DelFromLex(sid, lex, "word"), ORTO_NotFound);
}

TEST_F(TempLex, ListingHasTheDocumentedBytes)
{
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "teh", 'A', "the"), 0);
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "Ada", 'i', nullptr), 0);
    const unsigned char expected[] = {0x41, 0x64, 0x61, 0x09, 0x69, 0x00, 0x74, 0x65,
                                      0x68, 0x09, 0x41, 0x74, 0x68, 0x65, 0x00, 0x00};
    EXPECT_EQ(listing(), std::string((const char *)expected, sizeof expected));

    // exactly the size works, one byte less fails and keeps what fitted
    DebugCapture log;
    std::string buf(15, '\x7f');
    EXPECT_EQ(ORTO_GetLex(sid, lex, &buf[0], 15), ORTO_BufferTooSmall);
    EXPECT_EQ(buf.substr(0, 6), std::string("Ada\ti\0", 6));
    EXPECT_TRUE(log.has("buffer too small"));
    EXPECT_EQ(ORTO_GetLex(sid, lex, nullptr, 100), ORTO_BufferTooSmall);
}

TEST_F(TempLex, AddingAgainReplacesTheEntry)
{
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "colour", 'i', nullptr), 0);
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "colour", 'c', "color"), 0);
    EXPECT_EQ(count(), 1u);
    char other[64];
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "colour", other, sizeof other), 'c');
    EXPECT_STREQ(other, "color");
    // an action with no other word stores the letter alone
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "colour", 'a', nullptr), 0);
    EXPECT_EQ(listing(), std::string("colour\ta\0\0", 10));
}

TEST_F(TempLex, WordsThatDifferInCaseAreTwoEntries)
{
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "ada", 'e', nullptr), 0);
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "Ada", 'i', nullptr), 0);
    EXPECT_EQ(count(), 2u);
    ORTO_SetOption(sid, ORTO_CaseSensitive, 0);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "ADA", nullptr, 0), 'i'); // Ada comes first
    ORTO_SetOption(sid, ORTO_CaseSensitive, 1);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "ADA", nullptr, 0), ORTO_NotFound);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "ada", nullptr, 0), 'e');

    DebugCapture log;
    EXPECT_EQ(ORTO_DelFromLex(sid, lex, "ADA"), ORTO_NotFound);
    EXPECT_TRUE(log.has("ADA not found"));
    ORTO_SetOption(sid, ORTO_CaseSensitive, 0);
    EXPECT_EQ(ORTO_DelFromLex(sid, lex, "ADA"), ORTO_NotFound);
    EXPECT_EQ(ORTO_DelFromLex(sid, lex, "Ada"), 0);
    EXPECT_EQ(count(), 1u);
}

TEST_F(TempLex, AddCutsPossessivesAndOtherWordsDeleteDoesNot)
{
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "dog's", 'i', nullptr), 0);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "dog", nullptr, 0), 'i');
    EXPECT_EQ(ORTO_DelFromLex(sid, lex, "dog's"), ORTO_NotFound);

    std::string seventy(70, 'o');
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "long", 'c', seventy.c_str()), 0);
    char other[80];
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "long", other, sizeof other), 'c');
    EXPECT_EQ(std::string(other), std::string(63, 'o'));
    char small[4];
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "long", small, sizeof small), 'c');
    EXPECT_STREQ(small, "ooo");
}

TEST_F(TempLex, RefusalsChangeNothing)
{
    DebugCapture log;
    EXPECT_EQ(ORTO_AddToLex(sid, lex, "word", 'x', nullptr), ORTO_UnknownAction);
    EXPECT_TRUE(log.has("ORTO_AddToLex: unknown action 120"));
    EXPECT_EQ(ORTO_AddToLex(sid, lex, "", 'i', nullptr), ORTO_InvalidWord);
    EXPECT_EQ(ORTO_AddToLex(sid, lex, nullptr, 'i', nullptr), ORTO_InvalidWord);
    EXPECT_EQ(ORTO_AddToLex(sid, lex, "'s", 'i', nullptr), ORTO_InvalidWord);
    EXPECT_EQ(count(), 0u);

    EXPECT_EQ(ORTO_AddToLex(sid, 31, "w", 'i', nullptr), ORTO_BadLexId);
    EXPECT_EQ(ORTO_DelFromLex(sid, 32, "w"), ORTO_BadLexId);
    EXPECT_EQ(ORTO_ClearLex(sid, -1), ORTO_BadLexId);
    EXPECT_TRUE(log.has("ORTO_AddToLex: bad lex id 31"));
    EXPECT_TRUE(log.has("ORTO_DelFromLex: bad lex id 32"));
    EXPECT_TRUE(log.has("ORTO_ClearLex: bad lex id -1"));
}

TEST_F(TempLex, ClosedIdsAreBadAndComeBackLowestFirst)
{
    DebugCapture log;
    int16_t second = ORTO_CreateLex(sid, nullptr, ORTO_LangBritish);
    EXPECT_EQ(second, lex + 1);
    EXPECT_TRUE(log.has("ORTO_CreateLex: temp. lex created; id=1"));
    EXPECT_EQ(ORTO_CloseLex(sid, lex), 0);
    EXPECT_TRUE(log.has("ORTO_CloseLex: 0 closed"));
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "x", nullptr, 0), ORTO_BadLexId);
    EXPECT_TRUE(log.has("ORTO_FindLexWord: bad lex id 0"));
    EXPECT_EQ(ORTO_CreateLex(sid, nullptr, ORTO_LangAny), lex);

    for (int i = 2; i < 32; i++)
        ASSERT_EQ(ORTO_CreateLex(sid, nullptr, ORTO_LangAny), i);
    EXPECT_EQ(ORTO_CreateLex(sid, nullptr, ORTO_LangAny), ORTO_TooManyLexicons);
    EXPECT_TRUE(log.has("ORTO_CreateLex: too many lexicons"));
}

TEST_F(TempLex, ClearEmptiesWithoutEnding)
{
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "one", 'i', nullptr), 0);
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "two", 'e', nullptr), 0);
    EXPECT_EQ(ORTO_ClearLex(sid, lex), 0);
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(listing(), std::string(1, '\0'));
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "three", 'i', nullptr), 0);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "three", nullptr, 0), 'i');
}

TEST_F(TempLex, TablesPastSixteenBitsWork)
{
    const uint32_t n = 70000;
    char word[16];
    for (uint32_t i = 0; i < n; i++) {
        snprintf(word, sizeof word, "w%06u", (i + 5) % n); // the last five go to the front
        ASSERT_EQ(ORTO_AddToLex(sid, lex, word, 'i', nullptr), 0);
    }
    EXPECT_EQ(count(), n);
    const TLex &t = SessionTable[sid]->lexSlots[lex]->tlex;
    for (uint32_t i = 1; i < n; i++)
        ASSERT_LT(strcmp(t.table.base[i - 1].word, t.table.base[i].word), 0);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "w069999", nullptr, 0), 'i');
    uint32_t size = 0;
    ORTO_GetLexInfo(sid, lex, &size, nullptr, nullptr);
    EXPECT_EQ(size, n * (7 + 1 + 1 + 1) + 1);
    EXPECT_EQ((uint32_t)ORTO_GetLex(sid, lex, &std::string(size, 0)[0], size), n);
    EXPECT_EQ(ORTO_ClearLex(sid, lex), 0);
    EXPECT_EQ(count(), 0u);
}

TEST(TLexTable, GrowsToThirtyTwoAboveTheRequest)
{
    TLex t;
    ASSERT_EQ(TLex_Create(nullptr, ORTO_LangAny, &t), 0);
    EXPECT_EQ(t.table.capacity, 48u);
    char word[8];
    for (int i = 0; i < 49; i++) {
        snprintf(word, sizeof word, "w%02d", i);
        ASSERT_EQ(TLex_Insert(&t, word, 'i', nullptr), 0);
    }
    EXPECT_EQ(t.table.capacity, 49u + 32u);
    // an equal word goes in front of the one there: the first keeps its place
    ASSERT_EQ(TLex_Insert(&t, "w10", 'e', nullptr), 0);
    EXPECT_STREQ(t.table.base[10].info, "e");
    EXPECT_STREQ(t.table.base[11].info, "i");
    TLex_Close(&t);
    EXPECT_EQ(t.table.capacity, 0u);
}

namespace {

// The entries in table order, from the listing: word and action.
std::vector<std::pair<std::string, char>> entriesOf(int16_t sid, int16_t lex)
{
    uint32_t size = 0;
    ORTO_GetLexInfo(sid, lex, &size, nullptr, nullptr);
    std::string buf(size, 0);
    ORTO_GetLex(sid, lex, &buf[0], size);
    std::vector<std::pair<std::string, char>> out;
    for (size_t at = 0; buf[at];) {
        std::string entry(buf.c_str() + at);
        size_t tab = entry.find('\t');
        out.push_back({entry.substr(0, tab), entry[tab + 1]});
        at += entry.size() + 1;
    }
    return out;
}

bool sameNoCase(const std::string &a, const std::string &b)
{
    return StrCompareNoCase(a.c_str(), b.c_str()) == 0;
}

} // namespace

// Case-blind lookups answer with the first entry in table order that
// matches, whether they walk the table or use the case-blind order that a
// table read often gets; every change must drop that order.
TEST_F(TempLex, CaseBlindLookupsFindTheFirstMatchInTableOrder)
{
    const char actions[] = "aAcCei";
    unsigned seed = 7;
    auto randomWord = [&seed]() {
        std::string w;
        size_t len = 1 + rand_r(&seed) % 3;
        for (size_t i = 0; i < len; i++) {
            char c = (char)('a' + rand_r(&seed) % 3);
            w += rand_r(&seed) % 2 ? (char)(c - 32) : c;
        }
        return w;
    };
    ORTO_SetOption(sid, ORTO_StripPossessives, 0);
    for (int i = 0; i < 300; i++)
        ASSERT_EQ(ORTO_AddToLex(sid, lex, randomWord().c_str(), (uint16_t)actions[i % 6], nullptr), 0);
    ORTO_SetOption(sid, ORTO_CaseSensitive, 0);
    for (int round = 0; round < 6; round++) {
        auto entries = entriesOf(sid, lex);
        for (int probe = 0; probe < 100; probe++) {
            std::string w = randomWord() + (probe % 10 == 0 ? "x" : "");
            int expected = ORTO_NotFound;
            for (const auto &e : entries)
                if (sameNoCase(e.first, w)) {
                    expected = e.second;
                    break;
                }
            ASSERT_EQ(ORTO_FindLexWord(sid, lex, w.c_str(), nullptr, 0), expected)
                << w << " in round " << round;
        }
        // a change between rounds: a new word, a word again with another
        // action, a deletion
        if (round % 3 == 0)
            ORTO_AddToLex(sid, lex, ("A" + std::to_string(round)).c_str(), 'e', nullptr);
        else if (round % 3 == 1)
            ORTO_AddToLex(sid, lex, entries[round * 7].first.c_str(), 'c', "x");
        else
            ORTO_DelFromLex(sid, lex, entries[round * 5].first.c_str());
    }
    EXPECT_EQ(ORTO_ClearLex(sid, lex), 0);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "a", nullptr, 0), ORTO_NotFound);
}
