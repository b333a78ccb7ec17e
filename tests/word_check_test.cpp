// The check of one word through ORTO_CheckWord: option tests, the three
// lookup passes, pieces, run-together words, and what `replacement` holds.
// Each row sets options on top of a new session's, checks a word against
// the lexicons of its group, and states the mask and the replacement.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orto.h"

namespace {

struct Entry {
    const char *word;
    char action;
    const char *other;
};

struct Row {
    uint32_t on, off;        // options set and cleared
    const char *word;
    int mask;
    const char *replacement; // null: not looked at
};

struct Group {
    std::vector<std::vector<Entry>> lexicons; // in slot order
    std::vector<Row> rows;
};

const uint32_t Poss = ORTO_StripPossessives, Contracted = ORTO_SplitContractedWords,
               Hyphens = ORTO_SplitHyphenatedWords, RunTogether = ORTO_SplitWords,
               Case = ORTO_CaseSensitive, Uncapped = ORTO_ReportUncappedWords,
               Mixed = ORTO_ReportMixedCase, Digits = ORTO_ReportMixedDigits;
const int Miss = ORTO_MisspelledWord, Auto = ORTO_AutoChangeWord, Offer = ORTO_ConditionalChangeWord;

std::vector<Entry> accepted(std::vector<const char *> words)
{
    std::vector<Entry> out;
    for (const char *w : words)
        out.push_back({w, 'i', nullptr});
    return out;
}

} // namespace

TEST(WordCheck, RowsOfWordsOptionsAndAnswers)
{
    const std::string a63(63, 'a'), a67 = a63 + "bbbb";
    const Group groups[] = {
        // empty words and possessive endings
        {{accepted({"dog", "bos", "he", "s"})},
         {{0, 0, "", 0, "?"}, {0, 0, "'s", 0, "?"}, {0, Poss, "'s", Miss, nullptr},
          {0, 0, "dog's", 0, ""}, // a text lexicon's hit leaves its other word
          {0, 0, "dogs'", 0, nullptr}, {0, 0, "boss'", 0, nullptr}, {0, 0, "dog\x92s", 0, nullptr},
          {0, 0, "DOG'S", 0, nullptr}, {0, Poss, "dog's", Miss, "dog's"},
          {Contracted, Poss, "dog's", 0, nullptr}, {Contracted, 0, "he's", 0, nullptr}}},
        // the ignore tests come first and give the word back
        {{},
         {{ORTO_IgnoreCappedWords, 0, "Xyzzy", 0, "Xyzzy"},
          {ORTO_IgnoreAllCapsWords, 0, "XYZZY", 0, "XYZZY"},
          {ORTO_IgnoreAllCapsWords, 0, "XYZZY'S", Miss, nullptr},
          {ORTO_IgnoreAllCapsWords, 0, "XYZ9", Miss, nullptr},
          {ORTO_IgnoreMixedDigits, 0, "b4d", 0, nullptr},
          {Digits, 0, "b4d", Miss | ORTO_MixedDigitsWord, "b4d"}, {Digits, 0, "bad", Miss, nullptr},
          {ORTO_IgnoreMixedCase | Mixed, 0, "McDonald", 0, nullptr},
          {0, ORTO_ReportSpelling, "xyzzy", 0, "xyzzy"},
          {Mixed, ORTO_ReportSpelling, "McDonald", ORTO_MixedCaseWord, "Mcdonald"},
          {0, 0, "the", Miss, "the"}}},
        // case reports mend the replacement; the three lookup passes
        {{accepted({"hello", "3rd", "Hello2", "HELLO3", "NASA"})},
         {{Uncapped, 0, "hello", ORTO_UncappedWord, ""}, {Uncapped, 0, "3rd", ORTO_UncappedWord, ""},
          {Uncapped, 0, "Hello", 0, ""}, {Uncapped, 0, "zebra", ORTO_UncappedWord | Miss, "Zebra"},
          {Uncapped, 0, "9lives", ORTO_UncappedWord | Miss, "9lives"},
          {Mixed, 0, "mcDonald", ORTO_MixedCaseWord | Miss, "mcdonald"},
          {Mixed, 0, "McDonald", ORTO_MixedCaseWord | Miss, "Mcdonald"},
          {0, 0, "HELLO", 0, nullptr}, {0, 0, "hELLO", Miss, nullptr}, {0, Case, "hELLO", 0, nullptr},
          {0, 0, "hello2", Miss, nullptr}, {0, Case, "hello2", 0, nullptr}, {0, 0, "HELLO2", 0, nullptr},
          {0, 0, "Hello3", Miss, nullptr}, {0, Case, "Hello3", 0, nullptr}, {0, 0, "Nasa", Miss, nullptr},
          {0, Case, "Nasa", 0, nullptr}}},
        // change entries give their other word in the right case
        {{{{"teh", 'A', "the"}, {"recieve", 'c', "receive"}, {"adn", 'C', "and"}, {"hte", 'a', "the"}}},
         {{0, 0, "teh", Auto, "the"}, {0, 0, "Teh", Auto, "The"}, {0, 0, "TEH", Auto, "THE"},
          {0, 0, "Teh's", Auto, "The's"}, {0, 0, "Recieve", Offer, "receive"}, {0, 0, "ADN", Offer, "AND"},
          {0, 0, "Hte", Auto, "the"}, {0, 0, "HTE", Auto, "the"}}},
        // the first lexicon in slot order decides, unless the word passes in pieces
        {{{{"colour", 'e', nullptr}}, accepted({"colour", "col", "our"})},
         {{0, 0, "colour", Miss, nullptr}, {RunTogether, 0, "colour", 0, nullptr}}},
        // pieces at hyphens and apostrophes
        {{{{"well", 'i', nullptr}, {"known", 'i', nullptr}, {"teh", 'a', "the"}, {"don", 'i', nullptr},
           {"t", 'i', nullptr}}},
         {{0, 0, "well-known", 0, nullptr}, {0, 0, "well-knwon", Miss, nullptr},
          {0, 0, "well-teh", Auto, "the"}, {0, 0, "well-", 0, nullptr}, {0, 0, "well--known", Miss, nullptr},
          {0, 0, "don't", Miss, nullptr}, {Contracted, 0, "don't", 0, nullptr},
          {Contracted, 0, "don\x92t", 0, nullptr}, {0, Hyphens, "well-known", Miss, nullptr},
          {Contracted, Hyphens, "well-known", Miss, nullptr}}}, // pieces at apostrophes only
        // run-together words: the longest first part, no second try
        {{{{"the", 'i', nullptr}, {"then", 'i', nullptr}, {"dog", 'i', nullptr}, {"theo", 'i', nullptr},
           {"ogre", 'i', nullptr}, {"dgo", 'A', "dog"}}},
         {{RunTogether, 0, "thedog", 0, nullptr}, {RunTogether, 0, "thendog", 0, nullptr},
          {RunTogether, 0, "theogre", Miss, nullptr}, {RunTogether, 0, "theDOG", 0, nullptr},
          {RunTogether, 0, "THEdog", 0, nullptr}, {RunTogether, 0, "Thedog", 0, nullptr},
          {RunTogether, 0, "ThEdog", Miss, nullptr}, {RunTogether, 0, "thedOG", 0, nullptr},
          {RunTogether, 0, "thedgo", Auto, "dog"}}},
        // words are looked up as given, cut at 63
        {{accepted({"e.g.", a63.c_str()})},
         {{0, 0, "e.g.", 0, nullptr}, {0, 0, "e.g", Miss, nullptr}, {0, 0, a67.c_str(), 0, nullptr}}},
    };
    for (const Group &g : groups) {
        int16_t sid = ORTO_OpenSession();
        ORTO_SetOption(sid, Poss, 0); // entries go in as given
        for (const auto &lexicon : g.lexicons) {
            int16_t lex = ORTO_CreateLex(sid, nullptr, ORTO_LangAny);
            for (const Entry &e : lexicon)
                ASSERT_EQ(ORTO_AddToLex(sid, lex, e.word, (uint16_t)e.action, e.other), 0) << e.word;
        }
        for (const Row &r : g.rows) {
            ORTO_SetOption(sid, 0xFFFFFFFFu, 0);
            ORTO_SetOption(sid, (ORTO_DefaultOptions | r.on) & ~r.off, 1);
            char replacement[64] = "?";
            EXPECT_EQ(ORTO_CheckWord(sid, r.word, replacement, sizeof replacement), r.mask) << r.word;
            if (r.replacement) {
                EXPECT_STREQ(replacement, r.replacement) << r.word;
            }
        }
        ORTO_CloseSession(sid);
    }
}

TEST(WordCheck, NullsAndShortReplacementBuffers)
{
    int16_t sid = ORTO_OpenSession();
    int16_t lex = ORTO_CreateLex(sid, nullptr, ORTO_LangAny);
    ORTO_AddToLex(sid, lex, "recieve", 'c', "receive");
    EXPECT_EQ(ORTO_CheckWord(sid, nullptr, nullptr, 10), 0);
    char small[3] = "??";
    EXPECT_EQ(ORTO_CheckWord(sid, "recieve", small, sizeof small), Offer);
    EXPECT_STREQ(small, "re");
    EXPECT_EQ(ORTO_CheckWord(sid, "recieve", nullptr, 0), Offer);
    ORTO_CloseSession(sid);
}
