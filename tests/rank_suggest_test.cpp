/*
 * rank_suggest_test.cpp -- ORTO_SuggestRanked and ORTO_SetLexFrequencies
 * through the C API: the contract of the call, the frequency file's
 * reader on damaged input, ORTO_Suggest untouched by either, and the
 * ranking regression table on the bundled lexicon.
 */
#include <gtest/gtest.h>
#include <string.h>

#include "orto.h"
#include "suggest_test_support.h"
#include "support/test_support.h"

namespace {

SuggestResult ranked(int16_t sid, const char *word, int16_t max = 10, int16_t depth = 50)
{
    SuggestResult r;
    std::vector<char> buffer(4096, 'z');
    std::vector<int16_t> scores(max, -1);
    r.rc = ORTO_SuggestRanked(sid, word, depth, buffer.data(), (int32_t)buffer.size(), scores.data(), max);
    if (r.rc < 0)
        return r;
    for (const char *p = buffer.data(); *p; p += strlen(p) + 1) {
        r.words.push_back(p);
        r.scores.push_back(scores[r.words.size() - 1]);
    }
    return r;
}

/* A compressed lexicon of `words` (sorted) in `dir`, opened in `sid`. */
int16_t openCompressed(int16_t sid, const TempDir &dir, const std::string &words)
{
    writeFile(dir.file("words.txt"), words);
    std::string out = dir.file("words.clx");
    EXPECT_EQ(ORTO_CompressLexInit(sid, out.c_str(), nullptr, ORTO_LangAmerican, nullptr), 0);
    EXPECT_EQ(ORTO_CompressLexFile(sid, dir.file("words.txt").c_str(), nullptr), 0);
    EXPECT_EQ(ORTO_CompressLexEnd(sid), 0);
    return ORTO_OpenLex(sid, out.c_str(), 0);
}

std::string bundled(const char *name)
{
    return std::string(ORTO_BINARY_DIR) + "/data/" + name;
}

} // namespace

TEST(RankedSuggest, ContractOfTheCall)
{
    SessionHolder s;
    s.addWords({"the", "then", "they", "world", "word", "Paris"});
    s.addWords({"teh"}, "a", 1, "tea");

    // the word meant first; scores fall and stay on the 0..100 scale; the
    // auto-change of exactly this word comes before anything, with 99
    SuggestResult r = ranked(s.sid, "teh");
    ASSERT_EQ(r.rc, 0);
    ASSERT_EQ(r.words.size(), 2u); /* a word of three letters: one edit */
    EXPECT_EQ(r.words[0], "tea");
    EXPECT_EQ(r.scores[0], 99);
    EXPECT_EQ(r.words[1], "the");
    for (size_t i = 1; i < r.scores.size(); i++) {
        EXPECT_LE(r.scores[i], r.scores[i - 1]);
        EXPECT_GE(r.scores[i], 40);
    }

    struct Case {
        const char *word;
        const char *expected; /* the list, "word score, ..." */
    } cases[] = {
        {"the", "the 100, then 80, they 80"},  /* the word itself, 100 */
        {"Wrold", "World 88, Word 69"},        /* its case carried over */
        {"WROLD", "WORLD 88, WORD 69"},
        {"wrold's", "world 88, word 69"},      /* the possessive ending is not put back */
        {"paris", "Paris 96"},                 /* a capital costs the word little */
        {"qzxqzxqzxqzx", ""},                  /* nothing close: no candidate */
        {"", ""},
    };
    for (const Case &c : cases) {
        r = ranked(s.sid, c.word);
        EXPECT_EQ(r.rc, 0) << c.word;
        EXPECT_EQ(r.text(), c.expected) << c.word;
    }

    // buffers: as ORTO_Suggest
    char small[4];
    int16_t scores[3];
    EXPECT_EQ(ORTO_SuggestRanked(s.sid, "wrold", 50, small, sizeof small, scores, 3), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_SuggestRanked(s.sid, "wrold", 50, small, 0, scores, 3), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_SuggestRanked(s.sid, "wrold", 50, small, sizeof small, scores, 0), ORTO_BufferTooSmall);
    EXPECT_EQ(ORTO_SuggestRanked(99, "wrold", 50, small, sizeof small, scores, 3), ORTO_BadSessionId);
    EXPECT_EQ(ranked(s.sid, "wrold", 1).text(), "world 88");
}

TEST(RankedSuggest, FrequenciesDecideAndDamagedFilesAreRefused)
{
    TempDir dir;
    SessionHolder s;
    int16_t lex = openCompressed(s.sid, dir, "card\r\ncart\r\n");
    ASSERT_GE(lex, 0);
    // without frequencies, the error model alone: equal costs stand in
    // lexicon order
    EXPECT_EQ(ranked(s.sid, "carx").text(), "card 68, cart 68");
    std::string path = dir.file("words.freq");
    writeFile(path, "# classes\r\n=0\r\ncart\r\n\r\n=3\r\ncard\r\n");
    ASSERT_EQ(ORTO_SetLexFrequencies(s.sid, lex, path.c_str()), 0);
    EXPECT_EQ(ranked(s.sid, "carx").text(), "cart 75, card 68");

    const std::string damaged[] = {
        "card\n=0\ncart\n", /* a word before the first class */
        "=16\ncard\n",       /* a class out of range */
        "=x\ncard\n",
        "=\ncard\n",
        "=100\ncard\n",
        std::string("=0\ncard\0x\n", 10), /* a NUL in a word */
        "=0\n" + std::string(64, 'w') + "\n", /* longer than a word can be */
    };
    for (const std::string &bytes : damaged) {
        writeFile(path, bytes);
        EXPECT_EQ(ORTO_SetLexFrequencies(s.sid, lex, path.c_str()), ORTO_BadFormat) << bytes;
        // the lexicon keeps what it had
        EXPECT_EQ(ranked(s.sid, "carx").text(), "cart 75, card 68") << bytes;
    }
    EXPECT_EQ(ORTO_SetLexFrequencies(s.sid, lex, dir.file("none.freq").c_str()), ORTO_FileOpenError);
    EXPECT_EQ(ORTO_SetLexFrequencies(s.sid, 7, path.c_str()), ORTO_BadLexId);
    EXPECT_EQ(ORTO_SetLexFrequencies(99, lex, path.c_str()), ORTO_BadSessionId);
    // the longest word a lexicon holds is fine, and so is an empty file
    writeFile(path, "=1\n" + std::string(63, 'w') + "\n");
    EXPECT_EQ(ORTO_SetLexFrequencies(s.sid, lex, path.c_str()), 0);
    writeFile(path, "");
    EXPECT_EQ(ORTO_SetLexFrequencies(s.sid, lex, path.c_str()), 0);
    // a null name takes the frequencies away
    EXPECT_EQ(ORTO_SetLexFrequencies(s.sid, lex, nullptr), 0);
    EXPECT_EQ(ranked(s.sid, "carx").text(), "card 68, cart 68");
}

TEST(RankedSuggest, CompressedLexiconIsWalkedWhereTheWordMayBegin)
{
    TempDir dir;
    SessionHolder s;
    ASSERT_GE(openCompressed(s.sid, dir, "Thebes\r\ncharisma\r\nincludes\r\nphoto\r\nthe\r\nwith\r\nworld\r\n"), 0);
    struct Case {
        const char *word;
        int16_t depth;
        const char *first; /* the first candidate, "" for none */
    } cases[] = {
        {"ncludes", 50, "includes"},  /* the first letter lost */
        {"tthe", 50, "the"},          /* one too many at the start */
        {"hte", 50, "the"},           /* the first two swapped */
        {"rith", 50, "with"},         /* the first letter changed */
        {"foto", 50, "photo"},        /* the first sound spelled another way */
        {"karisma", 50, "charisma"},
        {"wrdl", 50, "world"},        /* two edits for a word of four */
        {"wrdl", 10, ""},             /* one at a low depth */
        {"thebes", 50, "Thebes"},     /* a capital the word lacks */
        {"rowld", 50, "world"},       /* the first and the third swapped */
        {"fotoe", 50, "photo"},       /* an edit more than the first walk */
        {"karismuh", 50, "charisma"}, /* takes: the second finds them */
        {"karismuh", 10, ""},         /* which a low depth doesn't run */
    };
    for (const Case &c : cases) {
        SuggestResult r = ranked(s.sid, c.word, 10, c.depth);
        ASSERT_EQ(r.rc, 0) << c.word;
        EXPECT_EQ(r.words.empty() ? "" : r.words[0], c.first) << c.word << " at " << c.depth;
    }
}

TEST(RankedSuggest, LeavesORTO_SuggestAsItWas)
{
    std::string lexicon = bundled("en-US.clx");
    if (!fileExists(lexicon))
        GTEST_SKIP() << "the bundled lexicon " << lexicon << " isn't built";
    const char *words[] = {"teh", "recieve", "wrold", "Acommodate", "alot", "qzxqzx"};
    SessionHolder plain, mixed;
    ASSERT_EQ(ORTO_OpenLex(plain.sid, lexicon.c_str(), 0), 0);
    ASSERT_EQ(ORTO_OpenLex(mixed.sid, lexicon.c_str(), 0), 0);
    ASSERT_EQ(ORTO_SetLexFrequencies(mixed.sid, 0, bundled("en-US.freq").c_str()), 0);
    for (const char *w : words) {
        ranked(mixed.sid, w);
        SuggestResult a = suggest(plain.sid, w), b = suggest(mixed.sid, w);
        EXPECT_EQ(a.rc, 0);
        EXPECT_EQ(a.text(), b.text()) << w;
    }
}

/* The ranking regression table: misspelling, intended word, its place in
 * ORTO_SuggestRanked's list on the bundled en-US lexicon with its
 * frequencies.  The classic slips at its head must stay first. */
TEST(RankedSuggest, PlacesOfIntendedWordsHold)
{
    std::string lexicon = bundled("en-US.clx");
    if (!fileExists(lexicon))
        GTEST_SKIP() << "the bundled lexicon " << lexicon << " isn't built";
    SessionHolder s;
    ASSERT_EQ(ORTO_OpenLex(s.sid, lexicon.c_str(), 0), 0);
    ASSERT_EQ(ORTO_SetLexFrequencies(s.sid, 0, bundled("en-US.freq").c_str()), 0);
    std::string table = readFile(std::string(ORTO_SOURCE_DIR) + "/tests/data/suggest/ranked.txt");
    std::string moved;
    int rows = 0;
    for (size_t at = 0; at < table.size();) {
        size_t eol = table.find('\n', at);
        std::string line = table.substr(at, eol - at);
        at = eol == std::string::npos ? table.size() : eol + 1;
        if (line.empty() || line[0] == '#')
            continue;
        size_t t1 = line.find('\t'), t2 = line.find('\t', t1 + 1);
        std::string word = line.substr(0, t1), intended = line.substr(t1 + 1, t2 - t1 - 1);
        int expected = std::stoi(line.substr(t2 + 1));
        SuggestResult r = ranked(s.sid, word.c_str());
        ASSERT_EQ(r.rc, 0) << word;
        int place = 0;
        for (size_t i = 0; i < r.words.size() && !place; i++)
            place = r.words[i] == intended ? (int)i + 1 : 0;
        if (place != expected)
            moved += word + " -> " + intended + ": " + std::to_string(expected) + " became " +
                     std::to_string(place) + "\n";
        rows++;
    }
    EXPECT_GT(rows, 40);
    EXPECT_EQ(moved, "");
}
