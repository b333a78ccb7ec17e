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
        EXPECT_GE(ORTO_GetLex(sid, lex, &buf[0], size), 0);
        return buf;
    }
    uint32_t count() { return SessionTable[sid]->lexSlots[lex]->tlex.count; }
};

} // namespace

TEST_F(TempLex, EntriesListingAndRefusals)
{
    DebugCapture log;
    // empty: nothing found, a listing of one NUL
    char other[80] = "keep";
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "word", other, sizeof other), ORTO_NotFound);
    EXPECT_STREQ(other, "keep");
    uint16_t format = 9, language = 9;
    EXPECT_EQ(ORTO_GetLexInfo(sid, lex, nullptr, &format, &language), 0);
    EXPECT_EQ(format * 0x10000 + language, ORTO_LexText * 0x10000 + 0x7878);
    EXPECT_EQ(listing(), std::string(1, '\0'));
    EXPECT_EQ(ORTO_DelFromLex(sid, lex, "word"), ORTO_NotFound);

    // the listing's bytes; exactly the size works, one less keeps what fitted
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "teh", 'A', "the"), 0);
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "Ada", 'i', nullptr), 0);
    EXPECT_EQ(listing(), std::string("Ada\ti\0teh\tAthe\0\0", 16));
    std::string buf(15, '\x7f');
    EXPECT_EQ(ORTO_GetLex(sid, lex, &buf[0], 15), ORTO_BufferTooSmall);
    EXPECT_EQ(buf.substr(0, 6), std::string("Ada\ti\0", 6));
    EXPECT_TRUE(log.has("buffer too small"));
    EXPECT_EQ(ORTO_GetLex(sid, lex, nullptr, 100), ORTO_BufferTooSmall);

    // adding again replaces; an action alone stores the letter alone
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "teh", 'c', "tea"), 0);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "teh", other, sizeof other), 'c');
    EXPECT_STREQ(other, "tea");
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "teh", 'a', nullptr), 0);
    EXPECT_EQ(listing(), std::string("Ada\ti\0teh\ta\0\0", 13));

    // words that differ in case are two entries; case-blind finds the capital first
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "ada", 'e', nullptr), 0);
    EXPECT_EQ(count(), 3u);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "ADA", nullptr, 0), ORTO_NotFound);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "ada", nullptr, 0), 'e');
    EXPECT_EQ(ORTO_DelFromLex(sid, lex, "ADA"), ORTO_NotFound);
    EXPECT_TRUE(log.has("ADA not found"));
    ORTO_SetOption(sid, ORTO_CaseSensitive, 0);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "ADA", nullptr, 0), 'i');
    EXPECT_EQ(ORTO_DelFromLex(sid, lex, "ADA"), ORTO_NotFound); // deletion is exact anyway
    EXPECT_EQ(ORTO_DelFromLex(sid, lex, "Ada"), 0);
    ORTO_SetOption(sid, ORTO_CaseSensitive, 1);

    // add cuts a possessive, delete doesn't; other words are cut to 63
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "dog's", 'i', nullptr), 0);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "dog", nullptr, 0), 'i');
    EXPECT_EQ(ORTO_DelFromLex(sid, lex, "dog's"), ORTO_NotFound);
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "long", 'c', std::string(70, 'o').c_str()), 0);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "long", other, sizeof other), 'c');
    EXPECT_EQ(std::string(other), std::string(63, 'o'));
    char small[4];
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "long", small, sizeof small), 'c');
    EXPECT_STREQ(small, "ooo");

    // refusals change nothing
    uint32_t before = count();
    EXPECT_EQ(ORTO_AddToLex(sid, lex, "word", 'x', nullptr), ORTO_UnknownAction);
    EXPECT_TRUE(log.has("ORTO_AddToLex: unknown action 120"));
    for (const char *bad : {"", "'s"})
        EXPECT_EQ(ORTO_AddToLex(sid, lex, bad, 'i', nullptr), ORTO_InvalidWord) << bad;
    EXPECT_EQ(ORTO_AddToLex(sid, lex, nullptr, 'i', nullptr), ORTO_InvalidWord);
    EXPECT_EQ(count(), before);

    // clear empties without ending the lexicon
    EXPECT_EQ(ORTO_ClearLex(sid, lex), 0);
    EXPECT_EQ(listing(), std::string(1, '\0'));
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "three", 'i', nullptr), 0);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "three", nullptr, 0), 'i');

    // closed ids come back lowest first, up to 32
    EXPECT_EQ(ORTO_CreateLex(sid, nullptr, ORTO_LangBritish), 1);
    EXPECT_TRUE(log.has("ORTO_CreateLex: temp. lex created; id=1"));
    EXPECT_EQ(ORTO_CloseLex(sid, lex), 0);
    EXPECT_TRUE(log.has("ORTO_CloseLex: 0 closed"));
    EXPECT_EQ(ORTO_CreateLex(sid, nullptr, ORTO_LangAny), 0);
    for (int i = 2; i < 32; i++)
        ASSERT_EQ(ORTO_CreateLex(sid, nullptr, ORTO_LangAny), i);
    EXPECT_EQ(ORTO_CreateLex(sid, nullptr, ORTO_LangAny), ORTO_TooManyLexicons);
    EXPECT_TRUE(log.has("ORTO_CreateLex: too many lexicons"));
}

TEST_F(TempLex, TablesPastSixteenBitsAndTheirGrowth)
{
    const uint32_t n = 70000;
    char word[16];
    for (uint32_t i = 0; i < n; i++) {
        snprintf(word, sizeof word, "w%06u", (i + 5) % n); // the last five go to the front
        ASSERT_EQ(ORTO_AddToLex(sid, lex, word, 'i', nullptr), 0);
    }
    const TLex &t = SessionTable[sid]->lexSlots[lex]->tlex;
    EXPECT_EQ(t.count, n);
    for (uint32_t i = 1; i < n; i++)
        ASSERT_LT(strcmp(t.table.base[i - 1].word, t.table.base[i].word), 0);
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "w069999", nullptr, 0), 'i');
    EXPECT_EQ(listing().size(), n * (7 + 1 + 1 + 1) + 1);
    EXPECT_EQ(ORTO_ClearLex(sid, lex), 0);

    TLex small;
    ASSERT_EQ(TLex_Create(nullptr, ORTO_LangAny, &small), 0);
    EXPECT_EQ(small.table.capacity, 48u);
    for (int i = 0; i < 49; i++) {
        snprintf(word, sizeof word, "w%02d", i);
        ASSERT_EQ(TLex_Insert(&small, word, 'i', nullptr), 0);
    }
    EXPECT_EQ(small.table.capacity, 49u + 32u); // thirty-two above the request
    // an equal word goes in front of the one there
    ASSERT_EQ(TLex_Insert(&small, "w10", 'e', nullptr), 0);
    EXPECT_STREQ(small.table.base[10].info, "e");
    EXPECT_STREQ(small.table.base[11].info, "i");
    TLex_Close(&small);
    EXPECT_EQ(small.table.capacity, 0u);
}

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
        std::string list = listing();
        std::vector<std::pair<std::string, char>> entries; // word and action, in table order
        for (size_t at = 0; list[at]; at += strlen(&list[at]) + 1) {
            std::string e(&list[at]);
            entries.push_back({e.substr(0, e.find('\t')), e[e.find('\t') + 1]});
        }
        for (int probe = 0; probe < 100; probe++) {
            std::string w = randomWord() + (probe % 10 == 0 ? "x" : "");
            int expected = ORTO_NotFound;
            for (const auto &e : entries)
                if (StrCompareNoCase(e.first.c_str(), w.c_str()) == 0) {
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
}
