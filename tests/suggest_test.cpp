/* Ranked suggestions: the two measures as tables, the list's order and
 * tie rules, ORTO_Suggest through the C API on text lexicons and on
 * compressed lexicon files written by a small writer of the test's own. */
#include <gtest/gtest.h>

#include <string.h>

#include <string>
#include <utility>
#include <vector>

#include "lexicon/clex.h"
#include "lexicon/lexicon.h"
#include "orto.h"
#include "suggest/suggest.h"
#include "suggest_test_support.h"
#include "support/test_support.h"

/* ---- the measures ---- */

struct PairScore {
    const char *word, *candidate;
    int score;
};

TEST(TypoScore, SampleTable)
{
    static const PairScore cases[] = {
        {"the", "the", 100},       {"The", "the", 99},          {"teh", "the", 83},
        {"TEH", "the", 83},        {"wrod", "word", 87},        {"speling", "spelling", 94},
        {"spellling", "spelling", 95}, {"word", "words", 90},   {"abcd", "ab", 80},
        {"cat", "cut", 83},        {"abc", "abe", 66},          {"cat", "dog", 50},
        {"a", "b", 0},             {"a", "an", 0},              {"ab", "abcd", 0},
        {"alot", "a lot", 90},     {"don't", "dont", 90},       {"it's", "it-s", 98},
        {"caf\xE9", "cafe", 98},   {"colour", "color", 93},     {"color", "colour", 92},
        {"ab", "a b", 75},         {"abc", "a bc", 86},         {"abc", "ab c", 83},
        {"a", "a", 100},           {"a", "A", 99},              {"wro", "wor", 83},
        {"abc", "", 0},            {"x", "y", 50},
    };
    for (const PairScore &c : cases)
        EXPECT_EQ(typoScore(c.word, c.candidate), c.score) << c.word << " / " << c.candidate;
}

TEST(Phonetic, CodesAndScores)
{
    static const std::pair<const char *, const char *> codes[] = {
        {"phone", "fm"}, {"fone", "fm"},   {"night", "mcd"}, {"knight", "mcd"}, {"nite", "md"},
        {"city", "sd"},  {"sity", "sd"},   {"cat", "cd"},    {"kat", "cd"},     {"acid", "asd"},
        {"asid", "asd"}, {"edge", "aj"},   {"ej", "aj"},     {"judge", "j"},    {"bridge", "brj"},
        {"psalm", "slm"}, {"salm", "slm"}, {"ceiling", "slmc"}, {"quick", "c"}, {"kwik", "c"},
        {"ghost", "csd"}, {"PHONE", "bme"}, {"Eat", "ed"},   {"eat", "ad"},     {"cid", "sd"},
        {"knot", "md"},  {"bob", "b"},     {"y", ""},        {"", ""},          {"ADEPT", "adebd"},
        {"adept", "adbd"}, {"Ph", "b"},    {"\xC7" "a\xF1" "o", "sm"},
    };
    char code[WordSize];
    for (const auto &c : codes) {
        phoneticCode(c.first, code);
        EXPECT_STREQ(code, c.second) << c.first;
    }
    static const PairScore scores[] = {
        {"abc", "abc", 100}, {"psalm", "salm", 88}, {"their", "there", 80}, {"city", "sity", 75},
        {"acid", "asid", 75}, {"tale", "tail", 75}, {"phone", "fone", 66},  {"cat", "kat", 66},
        {"quick", "kwik", 44}, {"night", "nite", 0}, {"Eat", "eat", 0},     {"y", "w", 0},
        {"y", "y", 100},      {"ADEPT", "adept", 0}, {"\xFF" "b", "b", 100},
    };
    for (const PairScore &c : scores)
        EXPECT_EQ(phoneticScore(c.word, c.candidate), c.score) << c.word << " / " << c.candidate;
}

TEST(Phonetic, LetterTableRows)
{
    /* the capital E alone among vowels has a letter of its own */
    EXPECT_EQ(phoneticLetters['E'], 'e');
    for (unsigned char c : {'a', 'e', 'i', 'o', 'u', 'A', 'I', 'O', 'U'})
        EXPECT_EQ(phoneticLetters[c], 'a') << c;
    for (unsigned char c : {'h', 'w', 'y', 'H', 'W', 'Y', '0', '\'', ' '})
        EXPECT_EQ(phoneticLetters[c], 0) << c;
    for (int c : {0xD0, 0xD7, 0xF0, 0xF7, 0xFF, 0x80, 0xBF})
        EXPECT_EQ(phoneticLetters[c], 0) << c;
    for (int c : {0xC7, 0xDF, 0xE7})
        EXPECT_EQ(phoneticLetters[c], 's') << c;
    for (int c : {0xC0, 0xC6, 0xC8, 0xCF, 0xD2, 0xD6, 0xD8, 0xDE, 0xE0, 0xFE})
        EXPECT_EQ(phoneticLetters[c], 'a') << c;
}

/* ---- the list ---- */

TEST(SuggestionList, OrderTiesAndDuplicates)
{
    SuggestionEntry room[3];
    SuggestionList list = {room, 0, 3};
    addSuggestion("ninety", 90, &list);
    addSuggestion("seventy", 70, &list);
    addSuggestion("eighty", 80, &list);
    addSuggestion("other", 70, &list); /* full, ties the last: refused */
    EXPECT_EQ(listText(list), "ninety 90, eighty 80, seventy 70");
    addSuggestion("more", 71, &list);
    EXPECT_EQ(listText(list), "ninety 90, eighty 80, more 71");
    addSuggestion("ninety", 95, &list); /* held already: keeps its own score */
    EXPECT_EQ(listText(list), "ninety 90, eighty 80, more 71");

    SuggestionList open = {room, 0, 3};
    addSuggestion("first", 50, &open);
    addSuggestion("second", 50, &open);
    addSuggestion("top", 60, &open);
    EXPECT_EQ(listText(open), "top 60, first 50, second 50");

    /* text is cut to 63 characters, and the cut text counts as held */
    std::string longWord(70, 'x');
    SuggestionList cut = {room, 0, 3};
    addSuggestion(longWord.c_str(), 40, &cut);
    addSuggestion(longWord.c_str(), 45, &cut);
    ASSERT_EQ(cut.count, 1);
    EXPECT_EQ(std::string(cut.entries[0].word), std::string(63, 'x'));
}

/* ---- ORTO_Suggest on text lexicons ---- */

TEST(Suggest, EmptyResultsAndRefusedArguments)
{
    SessionHolder s;
    EXPECT_EQ(suggest(s.sid, "wrod").text(), "");
    ORTO_SetOption(s.sid, ORTO_SuggestSplitWords, 1);
    EXPECT_EQ(suggest(s.sid, "wrod").text(), "");
    s.addWords({"a", "b"});
    SuggestResult one = suggest(s.sid, "x");
    EXPECT_EQ(one.rc, 0);
    EXPECT_EQ(one.text(), "b 50"); /* one character: no split; a consonant for a consonant */
    EXPECT_EQ(suggest(s.sid, "'s").text(), "");
    EXPECT_EQ(suggest(s.sid, nullptr).text(), "");

    char buffer[16];
    int16_t scores[4] = {7, 7, 7, 7};
    memset(buffer, 'z', sizeof buffer);
    DebugCapture log;
    EXPECT_EQ(ORTO_Suggest(s.sid, "ab", 50, buffer, sizeof buffer, scores, 0), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_Suggest(s.sid, "ab", 50, buffer, 0, scores, 4), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_Suggest(s.sid, "ab", 50, buffer, sizeof buffer, nullptr, 4), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_Suggest(s.sid, "ab", 50, nullptr, 100, scores, 4), ORTO_BufferTooSmall);
    EXPECT_EQ(buffer[0], 'z');
    EXPECT_EQ(scores[0], 7);
    EXPECT_TRUE(log.has("ORTO_Suggest: buffer too small"));
    EXPECT_EQ(ORTO_Suggest(16, "ab", 50, buffer, sizeof buffer, scores, 4), ORTO_BadSessionId);
    EXPECT_EQ(ORTO_Suggest(-1, "ab", 50, buffer, sizeof buffer, scores, 4), ORTO_BadSessionId);
    EXPECT_TRUE(log.has("ORTO_Suggest: bad session id 16"));
    EXPECT_TRUE(log.has("ORTO_Suggest: bad session id -1"));
    EXPECT_EQ(buffer[0], 'z');
}

TEST(Suggest, SplitWordScoresAndOrder)
{
    SessionHolder s;
    s.addWords({"a", "b", "c", "ab", "bc"});
    ORTO_SetOption(s.sid, ORTO_SuggestSplitWords, 1);
    ORTO_SetOption(s.sid, ORTO_TypographicalSuggestions, 0);
    EXPECT_EQ(suggest(s.sid, "ab").text(), "a b 75");
    EXPECT_EQ(suggest(s.sid, "abc").text(), "a bc 86, ab c 83");
    /* a failing half gives no candidate */
    EXPECT_EQ(suggest(s.sid, "ax").text(), "");
    /* split words come last, behind lexicon candidates of equal score */
    ORTO_SetOption(s.sid, ORTO_TypographicalSuggestions, 1);
    s.addWords({"aab", "ax"}, "i", 1);
    EXPECT_EQ(suggest(s.sid, "ab").text(), "ab 100, aab 80, a 80, b 80, ax 75, a b 75, bc 60, c 30");
}

TEST(Suggest, WalkOrderAndMeasures)
{
    SessionHolder s;
    s.addWords({"dot"});        /* slot 0 */
    s.addWords({"dig"}, "i", 1); /* slot 1 */
    s.addWords({"log"}, "i", 2); /* slot 2 */
    /* equal scores: the highest slot first */
    EXPECT_EQ(suggest(s.sid, "dog").text(), "log 83, dig 83, dot 83");

    SessionHolder both;
    both.addWords({"Chile"});
    ORTO_SetOption(both.sid, ORTO_PhoneticSuggestions, 1);
    EXPECT_EQ(suggest(both.sid, "Celia").text(), "Chile 60"); /* 80 by sound, found first by spelling */
    ORTO_SetOption(both.sid, ORTO_TypographicalSuggestions, 0);
    EXPECT_EQ(suggest(both.sid, "Celia").text(), "Chile 80");
    ORTO_SetOption(both.sid, ORTO_PhoneticSuggestions, 0);
    both.addWords({"Celia"}, "a", 0, "Cecilia");
    EXPECT_EQ(suggest(both.sid, "Celia").text(), ""); /* no walk at all */
}

TEST(Suggest, ActionsOfTextEntries)
{
    SessionHolder s;
    s.addWords({"teh"}, "a", 0, "the");
    s.addWords({"wrod"}, "C", 0, "word");
    s.addWords({"spel"}, "e");
    s.addWords({"the"});
    EXPECT_EQ(suggest(s.sid, "teh").text(), "the 99");
    EXPECT_EQ(suggest(s.sid, "Teh").text(), "The 83"); /* only the i entry, by spelling */
    EXPECT_EQ(suggest(s.sid, "wrod").text(), "word 99, the 52");
    EXPECT_EQ(suggest(s.sid, "spel").text(), "the 65"); /* e: never offered */
    /* the checked word itself comes back, with 100 */
    EXPECT_EQ(suggest(s.sid, "the").text(), "the 100");
    ORTO_SetOption(s.sid, ORTO_PhoneticSuggestions, 1);
    ORTO_SetOption(s.sid, ORTO_TypographicalSuggestions, 0);
    EXPECT_EQ(suggest(s.sid, "teh").text(), "the 99"); /* also in the phonetic walk */
}

TEST(Suggest, CaseCarryOverAndPossessives)
{
    SessionHolder s;
    s.addWords({"cat"});
    s.addWords({"Cat"}, "i", 1);
    /* both 83, neighbours, equal after the carry-over: one string */
    EXPECT_EQ(suggest(s.sid, "Cta").text(), "Cat 83");
    EXPECT_EQ(suggest(s.sid, "cta").text(), "Cat 83, cat 83");
    EXPECT_EQ(suggest(s.sid, "CTA").text(), "CAT 83");

    SessionHolder p;
    p.addWords({"dog", "dogs"});
    /* scored without the ending, which doesn't come back */
    EXPECT_EQ(suggest(p.sid, "dgo's").text(), "dog 83, dogs 70");
    EXPECT_EQ(suggest(p.sid, "Dgo'S").text(), "Dog 83, Dogs 69");
    ORTO_SetOption(p.sid, ORTO_StripPossessives, 0);
    EXPECT_EQ(suggest(p.sid, "dog's").text(), "dogs 90, dog 84");
}

TEST(Suggest, BufferSizeIsExact)
{
    SessionHolder s;
    s.addWords({"dot", "dig", "log"});
    /* "log dig dot": 3 strings of 3 + their NULs + the closing one = 13 */
    std::vector<char> buffer(13);
    int16_t scores[10];
    ASSERT_EQ(ORTO_Suggest(s.sid, "dog", 50, buffer.data(), 13, scores, 10), 0);
    EXPECT_EQ(std::string(buffer.data(), 13), std::string("dig\0dot\0log\0\0", 13));
    EXPECT_EQ(scores[2], 83);

    DebugCapture log;
    std::vector<char> short12(12, 'z');
    int16_t shortScores[10] = {0};
    EXPECT_EQ(ORTO_Suggest(s.sid, "dog", 50, short12.data(), 12, shortScores, 10),
              ORTO_BufferTooSmall);
    /* what fitted stands, without the closing string */
    EXPECT_EQ(std::string(short12.data(), 8), std::string("dig\0dot\0", 8));
    EXPECT_EQ(shortScores[1], 83);
    EXPECT_TRUE(log.has("ORTO_Suggest: buffer too small"));

    /* the list is bounded by maxSuggestions; scores behind it stay untouched */
    int16_t two[4] = {-1, -1, -1, -1};
    ASSERT_EQ(ORTO_Suggest(s.sid, "dog", 50, buffer.data(), 13, two, 2), 0);
    EXPECT_EQ(std::string(buffer.data(), 9), std::string("dig\0dot\0\0", 9));
    EXPECT_EQ(two[2], -1);
}

/* ---- compressed lexicons: the key test against depth ---- */

struct CompressedSession : SessionHolder {
    TempDir dir;
    int16_t lex = -1;
    CompressedSession()
    {
        std::string path = dir.file("small.lex");
        writeFile(path, clexBytes({"a", "an", "y", "abet", "aeixyzxyz", "phone", "word", "words",
                                   "wore", "work"}));
        lex = ORTO_OpenLex(sid, path.c_str(), 0);
    }
    int residentSegments() const
    {
        CLex *clex = SessionTable[sid]->lexSlots[lex]->clex;
        int n = 0;
        for (u32 i = 0; i < clex->segmentCount; i++)
            n += clex->segments[i]->text != nullptr;
        return n;
    }
};

TEST(SuggestCompressed, DepthOpensSegmentsByKeyScore)
{
    CompressedSession s;
    ASSERT_EQ(s.lex, 0);
    /* wro / wor scores 83 */
    EXPECT_EQ(suggest(s.sid, "wrod", 25).text(), "word 87, words 77, work 75, wore 62, an 42");
    EXPECT_EQ(s.residentSegments(), 1);
    EXPECT_EQ(suggest(s.sid, "wrod", 100).text(),
              "word 87, words 77, work 75, wore 62, phone 52, an 42, abet 37");
    /* abc / abe scores 66 */
    EXPECT_EQ(suggest(s.sid, "abc", 25).text(), "an 70");
    EXPECT_EQ(suggest(s.sid, "abc", 50).text(), "an 70, abet 53");
    /* Wor / wor scores 99: not enough at depth 0 */
    EXPECT_EQ(suggest(s.sid, "Worx", 0).text(), "An 30");
    EXPECT_EQ(suggest(s.sid, "Worx", 1).text(), "Word 87, Work 87, Words 77, Wore 74, An 30");
    /* xyz / aei scores 0: only depth 100 opens it */
    EXPECT_EQ(suggest(s.sid, "xyzxyzxyz", 99).text(), "words 48, phone 43");
    EXPECT_EQ(suggest(s.sid, "xyzxyzxyz", 100).text(), "aeixyzxyz 66, words 48, phone 43");
    EXPECT_EQ(suggest(s.sid, "xyzxyzxyz", 1000).text(), "aeixyzxyz 66, words 48, phone 43");
}

TEST(SuggestCompressed, ShortKeysAreWordsWhateverTheDepth)
{
    CompressedSession s;
    EXPECT_EQ(suggest(s.sid, "x", -5).text(), "y 50");
    EXPECT_EQ(suggest(s.sid, "ax", 0).text(), "a 80, an 75, y 30");
    /* a one-letter word opens no three-letter segment below depth 100 */
    EXPECT_EQ(suggest(s.sid, "w", 99).text(), "y 50");
    EXPECT_EQ(s.residentSegments(), 0);
}

TEST(SuggestCompressed, PhoneticWalkTestsKeysBySound)
{
    CompressedSession s;
    ORTO_SetOption(s.sid, ORTO_TypographicalSuggestions, 0);
    ORTO_SetOption(s.sid, ORTO_PhoneticSuggestions, 1);
    /* fon and pho code differently: the segment is opened only at 100 */
    EXPECT_EQ(suggest(s.sid, "fone", 99).text(), "");
    EXPECT_EQ(suggest(s.sid, "fone", 100).text(), "phone 66");
    EXPECT_EQ(suggest(s.sid, "ax", 0).text(), "");
    EXPECT_EQ(suggest(s.sid, "ax", 100).text(), "aeixyzxyz 54");
}

TEST(SuggestCompressed, SegmentThatCantBeReadEndsTheRun)
{
    CompressedSession s;
    ASSERT_EQ(s.lex, 0);
    EXPECT_EQ(suggest(s.sid, "wrod", 25).text(), "word 87, words 77, work 75, wore 62, an 42");
    std::string path = s.dir.file("small.lex");
    ASSERT_EQ(remove(path.c_str()), 0);
    /* what is resident needs no file */
    EXPECT_EQ(suggest(s.sid, "wrod", 25).text(), "word 87, words 77, work 75, wore 62, an 42");
    DebugCapture log;
    char buffer[64];
    int16_t scores[10];
    memset(buffer, 'z', sizeof buffer);
    EXPECT_EQ(ORTO_Suggest(s.sid, "abc", 50, buffer, sizeof buffer, scores, 10), ORTO_OpenError);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_TRUE(log.has("loadSeg: error opening " + path));
}

/* ---- ranking regression table on the bundled lexicon ---- */

TEST(SuggestRanking, PlacesOfIntendedWordsHold)
{
    std::string lexicon = std::string(ORTO_BINARY_DIR) + "/data/en-US.clx";
    if (!fileExists(lexicon))
        GTEST_SKIP() << "the bundled lexicon " << lexicon << " isn't built";
    SessionHolder s;
    ASSERT_EQ(ORTO_OpenLex(s.sid, lexicon.c_str(), 0), 0);
    std::string table = readFile(std::string(ORTO_SOURCE_DIR) + "/tests/data/suggest/ranking.txt");
    ASSERT_FALSE(table.empty());
    std::string moved;
    int rows = 0;
    size_t at = 0;
    while (at < table.size()) {
        size_t eol = table.find('\n', at);
        std::string line = table.substr(at, eol == std::string::npos ? std::string::npos : eol - at);
        at = eol == std::string::npos ? table.size() : eol + 1;
        if (line.empty() || line[0] == '#')
            continue;
        size_t t1 = line.find('\t'), t2 = line.find('\t', t1 + 1);
        std::string word = line.substr(0, t1), intended = line.substr(t1 + 1, t2 - t1 - 1);
        int expected = std::stoi(line.substr(t2 + 1));
        SuggestResult r = suggest(s.sid, word.c_str(), 50, 10);
        ASSERT_EQ(r.rc, 0) << word;
        int place = 0;
        for (size_t i = 0; i < r.words.size() && !place; i++)
            if (r.words[i] == intended)
                place = (int)i + 1;
        if (place != expected)
            moved += word + " -> " + intended + ": " + std::to_string(expected) + " became " +
                     std::to_string(place) + "\n";
        rows++;
    }
    EXPECT_GT(rows, 40);
    EXPECT_EQ(moved, "");
}
