// The check of one word through ORTO_CheckWord: option tests, the three
// lookup passes, pieces, run-together words, and what `replacement` holds.
#include <gtest/gtest.h>

#include <string.h>

#include <string>
#include <vector>

#include "orto.h"
#include "support/test_support.h"

namespace {

struct Entry {
    const char *word;
    char action;
    const char *other;
};

struct WordCheck : ::testing::Test {
    int16_t sid = -1;
    void SetUp() override { sid = ORTO_OpenSession(); }
    void TearDown() override { ORTO_CloseSession(sid); }

    int16_t lexicon(std::vector<Entry> entries)
    {
        int16_t lex = ORTO_CreateLex(sid, nullptr, ORTO_LangAny);
        // entries go in as given, without possessives cut
        uint32_t saved = ORTO_GetOption(sid, ORTO_StripPossessives);
        ORTO_SetOption(sid, ORTO_StripPossessives, 0);
        for (const Entry &e : entries)
            EXPECT_EQ(ORTO_AddToLex(sid, lex, e.word, (uint16_t)e.action, e.other), 0) << e.word;
        ORTO_SetOption(sid, ORTO_StripPossessives, saved);
        return lex;
    }
    int16_t words(std::vector<const char *> list)
    {
        std::vector<Entry> entries;
        for (const char *w : list)
            entries.push_back({w, 'i', nullptr});
        return lexicon(entries);
    }
    void set(uint32_t option, bool on) { ORTO_SetOption(sid, option, on ? 1 : 0); }

    // result and replacement; the replacement starts as "?" so that an
    // untouched buffer shows
    std::pair<int, std::string> check(const char *word)
    {
        char replacement[64] = "?";
        int16_t r = ORTO_CheckWord(sid, word, replacement, sizeof replacement);
        return {r, replacement};
    }
};

using Result = std::pair<int, std::string>;

} // namespace

TEST_F(WordCheck, EmptyWordsAndBarePossessivesSayNothingAndWriteNothing)
{
    words({"dog"});
    EXPECT_EQ(check(""), Result(0, "?"));
    EXPECT_EQ(check("'s"), Result(0, "?"));
    EXPECT_EQ(ORTO_CheckWord(sid, nullptr, nullptr, 10), 0); // null word, null buffer
    set(ORTO_StripPossessives, false);
    EXPECT_EQ(check("'s").first, ORTO_MisspelledWord);
}

TEST_F(WordCheck, PossessiveEndingsComeOffBeforeLookup)
{
    words({"dog", "bos", "he", "s"});
    EXPECT_EQ(check("dog's"), Result(0, "")); // a text lexicon hit leaves its other word
    EXPECT_EQ(check("dogs'").first, 0);        // looked up as dog
    EXPECT_EQ(check("boss'").first, 0);            // looked up as bos
    EXPECT_EQ(check("dog\x92s").first, 0);         // the typographic apostrophe too
    EXPECT_EQ(check("DOG'S").first, 0);
    set(ORTO_StripPossessives, false);
    EXPECT_EQ(check("dog's"), Result(ORTO_MisspelledWord, "dog's"));
    set(ORTO_SplitContractedWords, true);
    EXPECT_EQ(check("dog's").first, 0); // dog + s
    set(ORTO_StripPossessives, true);
    EXPECT_EQ(check("he's").first, 0); // he, before any splitting
}

TEST_F(WordCheck, IgnoreTestsComeFirstAndReturnTheWord)
{
    words({});
    set(ORTO_IgnoreCappedWords, true);
    EXPECT_EQ(check("Xyzzy"), Result(0, "Xyzzy"));
    set(ORTO_IgnoreCappedWords, false);

    set(ORTO_IgnoreAllCapsWords, true);
    EXPECT_EQ(check("XYZZY"), Result(0, "XYZZY"));
    EXPECT_EQ(check("XYZZY'S").first, ORTO_MisspelledWord); // apostrophe fails the test
    EXPECT_EQ(check("XYZ9").first, ORTO_MisspelledWord);
    set(ORTO_IgnoreAllCapsWords, false);

    set(ORTO_IgnoreMixedDigits, true);
    EXPECT_EQ(check("b4d").first, 0);
    set(ORTO_IgnoreMixedDigits, false);
    set(ORTO_ReportMixedDigits, true);
    EXPECT_EQ(check("b4d"), Result(0x21, "b4d"));
    EXPECT_EQ(check("bad").first, ORTO_MisspelledWord); // no digit, no 0x20

    set(ORTO_IgnoreMixedCase, true);
    set(ORTO_ReportMixedCase, true);
    EXPECT_EQ(check("McDonald").first, 0); // the ignore wins over the report
}

TEST_F(WordCheck, WithoutReportSpellingNothingIsLookedUp)
{
    words({});
    set(ORTO_ReportSpelling, false);
    EXPECT_EQ(check("xyzzy"), Result(0, "xyzzy"));
    set(ORTO_ReportMixedCase, true);
    EXPECT_EQ(check("McDonald"), Result(ORTO_MixedCaseWord, "Mcdonald"));
}

TEST_F(WordCheck, CaseReportsMendTheReplacement)
{
    words({"hello", "3rd"});
    set(ORTO_ReportUncappedWords, true);
    // a text lexicon's hit leaves its (empty) other word in the buffer
    EXPECT_EQ(check("hello"), Result(ORTO_UncappedWord, ""));
    EXPECT_EQ(check("3rd"), Result(ORTO_UncappedWord, ""));
    EXPECT_EQ(check("Hello"), Result(0, ""));
    EXPECT_EQ(check("zebra"), Result(ORTO_UncappedWord | ORTO_MisspelledWord, "Zebra"));
    EXPECT_EQ(check("9lives"), Result(ORTO_UncappedWord | ORTO_MisspelledWord, "9lives"));
    set(ORTO_ReportUncappedWords, false);

    set(ORTO_ReportMixedCase, true);
    EXPECT_EQ(check("mcDonald"), Result(ORTO_MixedCaseWord | ORTO_MisspelledWord, "mcdonald"));
    EXPECT_EQ(check("McDonald"), Result(ORTO_MixedCaseWord | ORTO_MisspelledWord, "Mcdonald"));
}

TEST_F(WordCheck, CaseSensitiveLookupPasses)
{
    words({"hello", "Hello2", "HELLO3", "NASA"});
    struct Row {
        const char *word;
        bool foundOn, foundOff;
    } rows[] = {
        {"hello", true, true},    {"Hello", true, true},    {"HELLO", true, true},
        {"hELLO", false, true},   {"hello2", false, true},  {"HELLO2", true, true},
        {"Hello3", false, true},  {"NASA", true, true},     {"Nasa", false, true},
    };
    for (const Row &row : rows) {
        set(ORTO_CaseSensitive, true);
        EXPECT_EQ(check(row.word).first, row.foundOn ? 0 : ORTO_MisspelledWord) << row.word;
        set(ORTO_CaseSensitive, false);
        EXPECT_EQ(check(row.word).first, row.foundOff ? 0 : ORTO_MisspelledWord) << row.word;
    }
}

TEST_F(WordCheck, ChangeEntriesGiveTheirOtherWordInTheRightCase)
{
    int16_t lex = lexicon({{"teh", 'A', "the"}, {"recieve", 'c', "receive"}, {"adn", 'C', "and"}});
    EXPECT_EQ(check("teh"), Result(ORTO_AutoChangeWord, "the"));
    EXPECT_EQ(check("Teh"), Result(ORTO_AutoChangeWord, "The"));
    EXPECT_EQ(check("TEH"), Result(ORTO_AutoChangeWord, "THE"));
    EXPECT_EQ(check("Teh's"), Result(ORTO_AutoChangeWord, "The's"));
    EXPECT_EQ(check("Recieve"), Result(ORTO_ConditionalChangeWord, "receive"));
    EXPECT_EQ(check("ADN"), Result(ORTO_ConditionalChangeWord, "AND"));

    ASSERT_EQ(ORTO_AddToLex(sid, lex, "teh", 'a', "the"), 0);
    EXPECT_EQ(check("teh"), Result(ORTO_AutoChangeWord, "the"));
    EXPECT_EQ(check("Teh"), Result(ORTO_AutoChangeWord, "the"));
    EXPECT_EQ(check("TEH"), Result(ORTO_AutoChangeWord, "the"));

    // a short buffer cuts the replacement; size 0 leaves a null buffer alone
    char small[3] = "??";
    EXPECT_EQ(ORTO_CheckWord(sid, "recieve", small, sizeof small), ORTO_ConditionalChangeWord);
    EXPECT_STREQ(small, "re");
    EXPECT_EQ(ORTO_CheckWord(sid, "recieve", nullptr, 0), ORTO_ConditionalChangeWord);
}

TEST_F(WordCheck, TheFirstLexiconInSlotOrderDecides)
{
    lexicon({{"colour", 'e', nullptr}});
    words({"colour", "col", "our"});
    EXPECT_EQ(check("colour").first, ORTO_MisspelledWord);
    set(ORTO_SplitWords, true); // col + our pass all the same
    EXPECT_EQ(check("colour").first, 0);
}

TEST_F(WordCheck, PiecesAtHyphensAndApostrophes)
{
    lexicon({{"well", 'i', nullptr}, {"known", 'i', nullptr}, {"teh", 'a', "the"},
             {"don", 'i', nullptr}, {"t", 'i', nullptr}});
    EXPECT_EQ(check("well-known").first, 0);
    EXPECT_EQ(check("well-knwon").first, ORTO_MisspelledWord);
    EXPECT_EQ(check("well-teh"), Result(ORTO_AutoChangeWord, "the"));
    EXPECT_EQ(check("well-").first, 0);                      // no piece behind the end
    EXPECT_EQ(check("well--known").first, ORTO_MisspelledWord); // the empty piece is no word
    EXPECT_EQ(check("don't").first, ORTO_MisspelledWord);
    set(ORTO_SplitContractedWords, true);
    EXPECT_EQ(check("don't").first, 0);
    EXPECT_EQ(check("don\x92t").first, 0);
    set(ORTO_SplitHyphenatedWords, false);
    EXPECT_EQ(check("well-known").first, ORTO_MisspelledWord);
}

TEST_F(WordCheck, RunTogetherWordsTakeTheLongestPrefixWithoutASecondTry)
{
    int16_t lex = words({"the", "then", "dog", "theo", "ogre"});
    set(ORTO_SplitWords, true);
    EXPECT_EQ(check("thedog").first, 0);
    EXPECT_EQ(check("thendog").first, 0);
    EXPECT_EQ(check("theogre").first, ORTO_MisspelledWord); // theo + gre
    EXPECT_EQ(check("theDOG").first, 0);   // later parts are case-blind
    EXPECT_EQ(check("THEdog").first, 0);   // pass 3 of the first part
    EXPECT_EQ(check("Thedog").first, 0);   // pass 2 of the first part
    EXPECT_EQ(check("ThEdog").first, ORTO_MisspelledWord);
    ORTO_AddToLex(sid, lex, "dgo", 'A', "dog");
    EXPECT_EQ(check("thedgo"), Result(ORTO_AutoChangeWord, "dog")); // the last part's answer
}

TEST_F(WordCheck, WordsAreLookedUpAsGivenAndCutAt63)
{
    std::string longWord(63, 'a');
    words({"e.g.", longWord.c_str()});
    EXPECT_EQ(check("e.g.").first, 0);
    EXPECT_EQ(check("e.g").first, ORTO_MisspelledWord);
    std::string longer = longWord + "bbbb";
    EXPECT_EQ(check(longer.c_str()).first, 0);
}

TEST_F(WordCheck, ASessionWithoutLexiconsFindsNothing)
{
    EXPECT_EQ(check("the"), Result(ORTO_MisspelledWord, "the"));
}
