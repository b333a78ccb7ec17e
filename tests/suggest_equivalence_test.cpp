/* The bounded scoring of the walks against the plain algorithms: the
 * bounded measures against the plain ones pair by pair, the segment bounds
 * against the words they claim to rule out, and whole runs of the driver
 * with the bounds against runs with a literal transcription of the
 * typographical measure, on text and compressed lexicons of generated
 * words and, when it has been built, on the bundled en-US lexicon. */
#include <gtest/gtest.h>

#include <stdlib.h>

#include <random>
#include <set>
#include <string>
#include <vector>

#include "engine/charclass.h"
#include "engine/session.h"
#include "orto.h"
#include "suggest/suggest.h"
#include "suggest_test_support.h"
#include "support/test_support.h"

/* typoScore as the steps read, index by index; no bound of any kind. */
static i16 literalTypoScore(const char *word, const char *candidate)
{
    const unsigned char *w = (const unsigned char *)word, *c = (const unsigned char *)candidate;
    int wordLength = (int)strlen(word), candLength = (int)strlen(candidate);
    int full = wordLength ? 100 * wordLength : 1, points = full;
    if (abs(wordLength - candLength) > wordLength / 2)
        return 0;
    int i = 0, j = 0;
    while (candLength > 0) {
        if (w[i] == 0 || points < 1)
            break;
        unsigned fw = baseLetter[w[i]], fc = baseLetter[c[j]];
        if (fw == fc) {
            if (IsLower(w[i]) != IsLower(c[j]))
                points -= 1;
            int lw = IsUpper(w[i]) ? w[i] + 32 : w[i], lc = IsUpper(c[j]) ? c[j] + 32 : c[j];
            if (lw != lc)
                points -= 5;
        } else {
            unsigned fw1 = baseLetter[w[i + 1]], fc1 = baseLetter[c[j + 1]];
            bool wMore = w[i + 1] != 0, cMore = c[j + 1] != 0;
            if (fw1 == fc && fc1 == fw) {
                points -= 50;
                i += wMore;
                j += cMore;
            } else if (fw1 == fc) {
                points -= 40;
                i += wMore;
            } else if (fc1 == fw) {
                points -= 40;
                j += cMore;
            } else {
                points -= IsVowel((unsigned char)fw) == IsVowel((unsigned char)fc) ? 50 : 100;
            }
        }
        i++;
        j++;
        if (c[j] == 0)
            break;
    }
    points -= 40 * (candLength - j) + 40 * (wordLength - i);
    return (i16)((points < 1 ? 0 : points) * 100 / full);
}

static i16 plainPhonetic(const char *word, const char *candidate)
{
    return phoneticScore(word, candidate);
}

/* Generated words: syllables that make many words share their first three
 * letters and their sounds, with capitals, accents and marks now and then. */
struct WordMaker {
    std::mt19937 rng{20240511u};
    unsigned pick(unsigned n) { return rng() % n; }
    std::string word()
    {
        static const char *syllables[] = {"ca", "te", "ro", "an", "in", "st", "ph", "ck", "ge",
                                          "ea", "ou", "qu", "kn", "dg", "ps", "ce", "ci", "sh",
                                          "th", "er", "o", "a", "wr", "ly", "e", "i", "s", "bo"};
        std::string w;
        unsigned n = 1 + pick(5);
        for (unsigned i = 0; i < n; i++)
            w += syllables[pick(sizeof syllables / sizeof *syllables)];
        switch (pick(20)) {
        case 0: w[0] = (char)ToUpper((unsigned char)w[0]); break;
        case 1: w.insert(pick((unsigned)w.size() + 1), 1, '\''); break;
        case 2: w.insert(pick((unsigned)w.size() + 1), 1, '-'); break;
        case 3: w[pick((unsigned)w.size())] = (char)0xE9; break;
        case 4: for (char &ch : w) ch = (char)ToUpper((unsigned char)ch); break;
        default: break;
        }
        return w.substr(0, 20);
    }
    /* One to three slips of a typist or a speller. */
    std::string misspell(std::string w)
    {
        unsigned slips = 1 + pick(3);
        for (unsigned k = 0; k < slips && !w.empty(); k++) {
            unsigned at = pick((unsigned)w.size());
            char letter = "aeioustrnhkcyw'"[pick(15)];
            switch (pick(6)) {
            case 0: if (at + 1 < w.size()) std::swap(w[at], w[at + 1]); break;
            case 1: w.erase(at, 1); break;
            case 2: w.insert(at, 1, letter); break;
            case 3: w[at] = letter; break;
            case 4: w[at] = (char)(IsUpper((unsigned char)w[at]) ? ToLower((unsigned char)w[at]) : ToUpper((unsigned char)w[at])); break;
            default: w.insert(at, 1, w[at]); break;
            }
        }
        return w.empty() ? std::string("x") : w;
    }
};

TEST(BoundedMeasures, AgreeWithThePlainOnesAboveTheFloor)
{
    WordMaker make;
    int phoneticPairs = 0;
    for (int n = 0; n < 20000; n++) {
        std::string w = make.word();
        std::string c = make.pick(3) ? make.misspell(w) : make.word();
        i16 typo = typoScore(w.c_str(), c.c_str());
        ASSERT_EQ(typo, literalTypoScore(w.c_str(), c.c_str())) << w << " / " << c;
        ScoreProbe probe;
        probeInit(&probe, phoneticScore, w.c_str());
        ASSERT_EQ(probe.kind, ProbePhonetic);
        i16 sound = phoneticScore(w.c_str(), c.c_str());
        phoneticPairs += sound > 0;
        for (int floor : {0, 1, 30, 50, 66, 75, 80, 90, 99, 100, typo - 1, (int)typo, sound - 1, (int)sound}) {
            if (floor < 0)
                continue;
            ASSERT_EQ(typoScoreAbove(w.c_str(), (i16)w.size(), c.c_str(), (i16)floor),
                      typo > floor ? typo : 0)
                << w << " / " << c << " floor " << floor;
            ASSERT_EQ(phoneticScoreAbove(&probe, c.c_str(), (i16)floor), sound > floor ? sound : 0)
                << w << " / " << c << " floor " << floor;
        }
    }
    EXPECT_GT(phoneticPairs, 1000); /* the phonetic side was really put to work */
}

TEST(BoundedMeasures, SegmentBoundsRuleOutOnlyWhatCantScore)
{
    WordMaker make;
    int typoRuledOut = 0, soundRuledOut = 0;
    for (int n = 0; n < 4000; n++) {
        std::string w = make.word();
        std::string start = make.misspell(w) + make.word();
        if (start.size() < 3 || start.find('\0') != std::string::npos)
            continue;
        std::string key = start.substr(0, 3);
        i16 floor = (i16)make.pick(100);
        ScoreProbe probe;
        probeInit(&probe, phoneticScore, w.c_str());
        bool typoMay = typoSegmentMayScore(w.c_str(), (i16)w.size(), key.c_str(), floor);
        bool soundMay = phoneticPrefixMatches(&probe, key.c_str());
        typoRuledOut += !typoMay;
        soundRuledOut += !soundMay;
        for (int k = 0; k < 40; k++) {
            std::string candidate = key + (k ? make.word().substr(0, make.pick(8)) : std::string());
            if (!typoMay) {
                ASSERT_LE(typoScore(w.c_str(), candidate.c_str()), floor) << w << " / " << candidate;
            }
            if (!soundMay) {
                ASSERT_EQ(phoneticScore(w.c_str(), candidate.c_str()), 0) << w << " / " << candidate;
            }
        }
    }
    EXPECT_GT(typoRuledOut, 200);
    EXPECT_GT(soundRuledOut, 500);
}

/* Runs the driver both ways over `words` and compares the lists entry by
 * entry. */
static void compareRuns(int16_t sid, const std::vector<std::string> &words,
                        const std::vector<int> &depths, const std::vector<u16> &capacities)
{
    Session *session = SessionTable[sid];
    static const u32 optionSets[] = {
        ORTO_TypographicalSuggestions, ORTO_PhoneticSuggestions,
        ORTO_TypographicalSuggestions | ORTO_PhoneticSuggestions,
        ORTO_TypographicalSuggestions | ORTO_PhoneticSuggestions | ORTO_SuggestSplitWords};
    u32 keep = session->options & ~(ORTO_TypographicalSuggestions | ORTO_PhoneticSuggestions |
                                    ORTO_SuggestSplitWords);
    SuggestionEntry fastRoom[20], plainRoom[20];
    for (const std::string &word : words)
        for (u32 options : optionSets)
            for (int depth : depths)
                for (u16 capacity : capacities) {
                    session->options = keep | options;
                    SuggestionList fast = {fastRoom, 0, capacity};
                    SuggestionList plain = {plainRoom, 0, capacity};
                    ASSERT_EQ(gatherSuggestions(session, word.c_str(), (i16)depth, &fast), 0);
                    ASSERT_EQ(gatherSuggestionsWith(session, word.c_str(), (i16)depth, &plain,
                                                    literalTypoScore, plainPhonetic),
                              0);
                    ASSERT_EQ(listText(fast), listText(plain))
                        << word << " depth " << depth << " options " << std::hex << options
                        << std::dec << " capacity " << capacity;
                }
    session->options = keep | ORTO_TypographicalSuggestions;
}

TEST(BoundedWalks, GiveTheListsOfThePlainWalks)
{
    WordMaker make;
    std::set<std::string> lexicon;
    while (lexicon.size() < 2500)
        lexicon.insert(make.word());
    while (lexicon.size() < 2900) /* one big segment, with long runs of records stepped over */
        lexicon.insert("sta" + make.word());
    std::vector<std::string> words(lexicon.begin(), lexicon.end());
    std::vector<std::string> misspelled;
    for (int n = 0; n < 80; n++)
        misspelled.push_back(n % 4 ? make.misspell(words[make.pick((unsigned)words.size())]) : make.word());

    SessionHolder text;
    ASSERT_EQ(ORTO_CreateLex(text.sid, nullptr, ORTO_LangAny), 0);
    for (const std::string &w : words)
        ORTO_AddToLex(text.sid, 0, w.c_str(), 'i', nullptr);
    for (int n = 0; n < 40; n += 3) /* change entries meet the floor too */
        ORTO_AddToLex(text.sid, 0, misspelled[n].c_str(), n % 2 ? 'a' : 'C', words[n].c_str());
    compareRuns(text.sid, misspelled, {50}, {1, 5, 20});

    SessionHolder packed;
    TempDir dir;
    writeFile(dir.file("gen.lex"), clexBytes(words));
    ASSERT_EQ(ORTO_OpenLex(packed.sid, dir.file("gen.lex").c_str(), 0), 0);
    compareRuns(packed.sid, misspelled, {0, 40, 75, 100}, {1, 5, 20});

    /* the same words by the library's compressor, whose records end in
     * suffix codes */
    SessionHolder suffixed;
    std::string list;
    for (const std::string &w : words)
        list += w + "\r\n";
    writeFile(dir.file("words.txt"), list);
    writeFile(dir.file("suffixes.txt"), "s\r\ning\r\ned\r\ner\r\nly\r\nte\r\nca\r\nst\r\n");
    ASSERT_EQ(ORTO_CompressLexInit(suffixed.sid, dir.file("suffixed.lex").c_str(),
                                   dir.file("suffixes.txt").c_str(), ORTO_LangAny, nullptr), 0);
    ASSERT_EQ(ORTO_CompressLexFile(suffixed.sid, dir.file("words.txt").c_str(), nullptr), 0);
    ASSERT_EQ(ORTO_CompressLexEnd(suffixed.sid), 0);
    ASSERT_EQ(ORTO_OpenLex(suffixed.sid, dir.file("suffixed.lex").c_str(), 0), 0);
    compareRuns(suffixed.sid, misspelled, {50}, {1, 10});
}

/* Keys of every mix of vowels, consonants, capitals, accents and marks:
 * the key test meets more states of its run than it keeps outcomes for. */
TEST(BoundedWalks, KeysOfEveryKindGiveThePlainLists)
{
    const std::string alphabet = "eE\xE9\xC9" "aA\xE1\xC1" "tTuo'-";
    std::vector<std::string> words;
    for (char a : alphabet)
        for (char b : alphabet)
            for (char c : alphabet) {
                words.push_back(std::string{a, b, c});
                words.push_back(std::string{a, b, c, 'e', 'r'});
            }
    SessionHolder packed;
    TempDir dir;
    writeFile(dir.file("kinds.lex"), clexBytes(words));
    ASSERT_EQ(ORTO_OpenLex(packed.sid, dir.file("kinds.lex").c_str(), 0), 0);
    compareRuns(packed.sid, {"eat", "Eat", "\xE9" "at", "aet", "tea", "o'ut", "EAT-", "-ta"},
                {30, 50, 75}, {1, 8});
}

/* Each build of the segment walk that the processor can run, not only the
 * one it picks: words weighed eight at a time, one at a time with the
 * processor's bit count, and with the library's. */
TEST(BoundedWalks, EveryBuildOfTheSegmentWalkGivesThePlainLists)
{
    WordMaker make;
    std::set<std::string> lexicon;
    while (lexicon.size() < 2500)
        lexicon.insert(make.word());
    while (lexicon.size() < 2700) /* segments of more than 64 words */
        lexicon.insert("sta" + make.word());
    std::vector<std::string> words(lexicon.begin(), lexicon.end());
    std::vector<std::string> misspelled;
    for (int n = 0; n < 30; n++)
        misspelled.push_back(make.misspell(words[make.pick((unsigned)words.size())]));
    SessionHolder packed;
    TempDir dir;
    writeFile(dir.file("gen.lex"), clexBytes(words));
    ASSERT_EQ(ORTO_OpenLex(packed.sid, dir.file("gen.lex").c_str(), 0), 0);
    int ran = 0;
    for (int build : {SegmentWalkWide, SegmentWalkCounting, SegmentWalkPlain}) {
        if (!segmentWalkBuild(build))
            continue;
        ran++;
        compareRuns(packed.sid, misspelled, {50, 100}, {1, 10});
    }
    segmentWalkBuild(SegmentWalkBest);
    EXPECT_GE(ran, 1);
}

TEST(BoundedWalks, GiveTheListsOfThePlainWalksOnTheBundledLexicon)
{
    std::string path = std::string(ORTO_BINARY_DIR) + "/data/en-US.clx";
    if (!fileExists(path))
        GTEST_SKIP() << "the bundled lexicon " << path << " isn't built";
    SessionHolder s;
    ASSERT_EQ(ORTO_OpenLex(s.sid, path.c_str(), 0), 0);
    WordMaker make;
    std::vector<std::string> words = {"speling", "recieve", "teh", "wrod", "Acommodate",
                                      "SEPERATE", "definately", "occured", "alot", "thier",
                                      "goverment", "becuase"};
    for (int n = 0; n < 6; n++)
        words.push_back(make.misspell(words[n]));
    /* and slips in words of the list itself, with their capitals, accents
     * and apostrophes, so that the letter bounds meet real segments */
    std::vector<std::string> listed;
    std::string text = readFile(std::string(ORTO_SOURCE_DIR) + "/data/en-US.txt");
    for (size_t at = 0, eol; (eol = text.find("\r\n", at)) != std::string::npos; at = eol + 2)
        listed.push_back(text.substr(at, eol - at));
    ASSERT_GT(listed.size(), 1000u);
    for (int n = 0; n < 40; n++)
        words.push_back(make.misspell(listed[make.pick((unsigned)listed.size())]));
    compareRuns(s.sid, words, {30, 60}, {1, 10});
}
