// Compressed lexicons read from real files: opening, the segment cache,
// exact and case-blind lookup, the word-by-word walk, damaged files.
#include <gtest/gtest.h>

#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "engine/charclass.h"
#include "engine/session.h"
#include "lexicon/clex.h"
#include "lexicon/lexicon.h"
#include "orto.h"
#include "support/test_support.h"

namespace {

std::string exampleBytes() { return exampleLexicon(); }

struct ClexFile : ::testing::Test {
    TempDir dir;
    int16_t sid = -1;
    void SetUp() override { sid = ORTO_OpenSession(); }
    void TearDown() override { ORTO_CloseSession(sid); }

    std::string put(const std::string &bytes, const std::string &name = "lex.clx")
    {
        std::string path = dir.file(name);
        writeFile(path, bytes);
        return path;
    }
    int16_t open(const std::string &bytes, uint32_t budget = 0)
    {
        return ORTO_OpenLex(sid, put(bytes).c_str(), budget);
    }
    CLex *clex(int16_t lex) { return SessionTable[sid]->lexSlots[lex]->clex; }
    void caseSensitive(bool on) { ORTO_SetOption(sid, ORTO_CaseSensitive, on ? 1 : 0); }
    int16_t find(int16_t lex, const char *word)
    {
        return ORTO_FindLexWord(sid, lex, word, nullptr, 0);
    }
    CLexSegment *segment(int16_t lex, const char *key)
    {
        char k[3] = {0, 0, 0};
        memcpy(k, key, strnlen(key, 3));
        return CLex_FindSegment(clex(lex), k);
    }
};

std::vector<std::string> wordsOf(const CLex *clex, const CLexSegment *seg)
{
    std::vector<std::string> out;
    CLexCursor cur;
    CLex_StartSegment(&cur, clex, seg);
    while (const char *w = CLex_NextWord(&cur))
        out.push_back(w);
    return out;
}

} // namespace

TEST_F(ClexFile, DocumentedExampleReadsBackReadOnly)
{
    int16_t lex = open(exampleBytes());
    ASSERT_GE(lex, 0);
    uint32_t size = 7;
    uint16_t format = 9, language = 0;
    EXPECT_EQ(ORTO_GetLexInfo(sid, lex, &size, &format, &language), 0);
    EXPECT_EQ(size + format * 10 + language * 100u, 0 + ORTO_LexCompressed * 10 + 0x616D * 100u);
    EXPECT_EQ(clex(lex)->textOffset, 58u);
    // exact, then case-blind: found, and not found
    const std::vector<std::string> found[2] = {{"a", "walk", "walked", "walking", "walks", "wall"},
                                               {"WALKS", "A", "Walking", "wALL"}};
    const std::vector<std::string> missing[2] = {
        {"A", "walke", "walz", "wal", "walkings", "wa", "b", "", "Walk"}, {"WALKZ"}};
    for (int blind = 0; blind < 2; blind++) {
        caseSensitive(!blind);
        for (const std::string &w : found[blind])
            EXPECT_EQ(find(lex, w.c_str()), 'i') << w;
        for (const std::string &w : missing[blind])
            EXPECT_EQ(find(lex, w.c_str()), ORTO_NotFound) << w;
    }
    EXPECT_EQ(wordsOf(clex(lex), segment(lex, "wal")),
              (std::vector<std::string>{"walk", "walked", "walking", "walks", "wall"}));
    EXPECT_EQ(wordsOf(clex(lex), segment(lex, "a")), (std::vector<std::string>{"a"}));
    // no segment of the key: no file access at all
    uint32_t loads = clex(lex)->fileLoads;
    EXPECT_EQ(find(lex, "wax"), ORTO_NotFound);
    EXPECT_EQ(clex(lex)->fileLoads, loads);
    // no other word, and it says so; no change, no listing
    char other[8] = "old";
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "walk", other, sizeof other), 'i');
    EXPECT_STREQ(other, "");
    EXPECT_EQ(ORTO_AddToLex(sid, lex, "word", 'x', nullptr), ORTO_ReadOnlyLex);
    EXPECT_EQ(ORTO_DelFromLex(sid, lex, "walk"), ORTO_ReadOnlyLex);
    EXPECT_EQ(ORTO_ClearLex(sid, lex), ORTO_ReadOnlyLex);
    EXPECT_EQ(ORTO_GetLex(sid, lex, other, sizeof other), ORTO_Unsupported);
    // the word check consults it like any lexicon
    EXPECT_EQ(ORTO_CheckWord(sid, "walking", nullptr, 0), 0);
    EXPECT_EQ(ORTO_CheckWord(sid, "walkign", nullptr, 0), ORTO_MisspelledWord);
}

TEST_F(ClexFile, ScanCallbackStopsAndGoesOn)
{
    int16_t lex = open(exampleBytes());
    ASSERT_GE(lex, 0);
    CLexSegment *wal = segment(lex, "wal");
    ASSERT_EQ(loadSeg(clex(lex), wal), 0);
    struct Ctx {
        int seen;
        int stopAt;
        int answer;
        std::vector<std::string> words;
    };
    auto cb = [](const char *, const char *decoded, void *context) -> i32 {
        Ctx *c = (Ctx *)context;
        c->words.push_back(decoded);
        return ++c->seen == c->stopAt ? c->answer : 1;
    };
    Ctx match{0, 3, 0, {}};
    EXPECT_EQ(CLex_ScanSegment(clex(lex), wal, "x", cb, &match), 1);
    EXPECT_EQ(match.words, (std::vector<std::string>{"walk", "walked", "walking"}));
    Ctx over{0, 3, -1, {}};
    EXPECT_EQ(CLex_ScanSegment(clex(lex), wal, "x", cb, &over), 0);
    EXPECT_EQ(over.seen, 3);
    Ctx all{0, 99, 0, {}};
    EXPECT_EQ(CLex_ScanSegment(clex(lex), wal, "x", cb, &all), 0);
    EXPECT_EQ(all.seen, 5);
}

// The eight spellings of a key, in their order: all small, first capital,
// second, first two, third, first and third, second and third, all capitals.
TEST_F(ClexFile, CaseBlindLookupTriesTheKeyPatternsInOrder)
{
    const char *keys[8] = {"abc", "Abc", "aBc", "ABc", "abC", "AbC", "aBC", "ABC"};
    // each pattern alone is found, from a word in any case
    for (int p = 0; p < 8; p++) {
        std::string word = std::string(keys[p]) + "de";
        int16_t lex = open(compressedLexicon({word}));
        ASSERT_GE(lex, 0);
        caseSensitive(false);
        EXPECT_EQ(find(lex, "abcDE"), 'i') << keys[p];
        EXPECT_EQ(find(lex, "ABCde"), 'i') << keys[p];
        EXPECT_EQ(find(lex, "abcdf"), ORTO_NotFound) << keys[p];
        caseSensitive(true);
        EXPECT_EQ(find(lex, word.c_str()), 'i');
        EXPECT_EQ(find(lex, "abcde"), p == 0 ? 'i' : ORTO_NotFound) << keys[p];
        ORTO_CloseLex(sid, lex);
    }

    // all eight present: a miss loads them in pattern order
    std::vector<std::string> words;
    for (const char *k : keys)
        words.push_back(std::string(k) + "x");
    std::sort(words.begin(), words.end());
    int16_t lex = open(compressedLexicon(words));
    ASSERT_GE(lex, 0);
    caseSensitive(false);
    EXPECT_EQ(find(lex, "abcy"), ORTO_NotFound);
    for (int p = 1; p < 8; p++)
        EXPECT_LT(segment(lex, keys[p - 1])->lastUse, segment(lex, keys[p])->lastUse) << p;
    // a hit stops at the first pattern whose segment holds the word
    ORTO_CloseLex(sid, lex);
    lex = open(compressedLexicon({"ABcd", "Abcd", "abCd"}));
    ASSERT_GE(lex, 0);
    EXPECT_EQ(find(lex, "abcd"), 'i');
    EXPECT_NE(segment(lex, "Abc")->text, nullptr);
    EXPECT_EQ(segment(lex, "ABc")->text, nullptr);
    EXPECT_EQ(segment(lex, "abC")->text, nullptr);
}

static std::string folded(std::string s)
{
    for (char &c : s)
        c = (char)ToLower((unsigned char)c);
    return s;
}

// Encodes `words` (sorted), then holds the reader to the plain definition:
// the walk yields the list, and each probe is found exactly when it is in
// the list, case-blind when it is there in some case.  The scanner skips
// records it can tell apart without decoding them; this checks it on many
// shapes of segment.
static void expectReadsBack(ClexFile &t, const std::vector<std::string> &words,
                            const std::vector<std::string> &simple,
                            const std::vector<std::string> &extended,
                            const std::vector<std::string> &probes)
{
    int16_t lex = t.open(compressedLexicon(words, simple, extended));
    ASSERT_GE(lex, 0);
    CLex *c = t.clex(lex);
    std::vector<std::string> walked;
    for (u32 i = 0; i < c->segmentCount; i++) {
        if (c->segments[i]->key[2]) {
            ASSERT_EQ(loadSeg(c, c->segments[i]), 0);
        }
        for (const std::string &w : wordsOf(c, c->segments[i]))
            walked.push_back(w);
    }
    EXPECT_EQ(walked, words);
    std::set<std::string> exact(words.begin(), words.end()), blind;
    for (const std::string &w : words)
        blind.insert(folded(w));
    for (const std::string &w : probes) {
        t.caseSensitive(true);
        EXPECT_EQ(t.find(lex, w.c_str()), exact.count(w) ? 'i' : ORTO_NotFound) << w;
        t.caseSensitive(false);
        EXPECT_EQ(t.find(lex, w.c_str()), blind.count(folded(w)) ? 'i' : ORTO_NotFound) << w;
    }
    ORTO_CloseLex(t.sid, lex);
}

TEST_F(ClexFile, RandomListsReadBackExactly)
{
    // short words and keys that aren't letters, then random lists
    const std::string longWord = "Paris" + std::string(70, 's');
    expectReadsBack(*this, {"3rd", "3rds", "Paris", "a", "of"}, {}, {},
                    {"a", "A", "OF", "Paris", "paris", "3rd", "3RDS", "3rdx", longWord});
    std::mt19937 rng(12345);
    const std::vector<std::string> simple = {"s", "ing", "ed", "es", "er", "ly", ""};
    const std::vector<std::string> extended = {"ation", "ness", "ment", "able"};
    const std::string alphabet = "abAB'- \xe9\xc9";
    auto pick = [&](size_t n) { return (size_t)(rng() % n); };
    for (int round = 0; round < 12; round++) {
        std::set<std::string> set;
        size_t n = 1 + pick(400);
        while (set.size() < n) {
            std::string w = "ab" + std::string(1, alphabet[pick(3)]);
            size_t len = pick(round % 3 == 0 ? 60 : 8);
            for (size_t i = 0; i < len; i++)
                w += alphabet[pick(alphabet.size())];
            if (pick(3) == 0)
                w += pick(2) ? simple[pick(simple.size())] : extended[pick(extended.size())];
            if (w.size() <= 63)
                set.insert(w);
        }
        std::vector<std::string> words(set.begin(), set.end()), probes;
        for (int i = 0; i < 600; i++) {
            std::string w = words[pick(words.size())];
            size_t at = pick(w.size() + 1);
            switch (i % 4) { // the word, or a neighbour: a byte changed, cut or added
            case 1: if (at < w.size()) w[at] = alphabet[pick(alphabet.size())]; break;
            case 2: w = w.substr(0, at); break;
            case 3: w.insert(at, 1, alphabet[pick(alphabet.size())]); break;
            }
            probes.push_back(w);
        }
        expectReadsBack(*this, words, simple, extended, probes);
    }
}

// The shapes that the fast skipping has to get right: shared counts of 0x20
// and more (long words that differ late), extended suffixes whose numbers
// look like codes (below 0x20), records of every length, across the
// 64-byte windows at every offset.
TEST_F(ClexFile, LongSharedCountsAndExtendedNumbers)
{
    std::vector<std::string> extended;
    for (int i = 0; i < 40; i++)
        extended.push_back({(char)('A' + i % 26), (char)('a' + i / 26), 'x'});
    std::sort(extended.begin(), extended.end());
    std::mt19937 rng(99);
    auto pick = [&](size_t n) { return (size_t)(rng() % n); };
    for (int round = 0; round < 30; round++) {
        std::set<std::string> set;
        std::string stem = "key" + std::string(20 + pick(38), 'm');
        while (set.size() < 150) {
            std::string w;
            switch (pick(4)) {
            case 0: w = stem.substr(0, 3 + pick(stem.size() - 2)) + (char)('a' + pick(26)); break;
            case 1: w = "key" + std::string(1, (char)('a' + pick(3))) + extended[pick(32)]; break;
            case 2: w = "key" + extended[pick(extended.size())]; break;
            default: w = "key" + std::string(pick(4), (char)('a' + pick(26)));
            }
            if (w.size() <= 63)
                set.insert(w);
        }
        std::vector<std::string> words(set.begin(), set.end()), probes;
        for (const std::string &w : words)
            for (std::string p : {w, w + "a", w.substr(0, w.size() - 1)}) {
                probes.push_back(p);
                for (char &c : p)
                    c = (char)ToUpper((unsigned char)c);
                probes.push_back(p);
            }
        expectReadsBack(*this, words, {"s"}, extended, probes);
    }
}

// Three segments of 10, 10 and 14 bytes.
static std::string threeSegments()
{
    return compressedLexicon({"aaabcdefghi", "bbbbcdefghi", "cccbcdefghijklm"});
}

TEST_F(ClexFile, BudgetBoundsTheLongestSegment)
{
    EXPECT_GE(open(threeSegments(), 14), 0);
    DebugCapture log;
    EXPECT_EQ(open(threeSegments(), 13), ORTO_OutOfMemory);
    EXPECT_TRUE(log.has(dir.file("lex.clx") + ": segment size 14 > budget 13"));
    int16_t lex = open(threeSegments(), 0);
    ASSERT_GE(lex, 0);
    for (const char *w : {"aaabcdefghi", "bbbbcdefghi", "cccbcdefghijklm"})
        EXPECT_EQ(find(lex, w), 'i') << w;
    for (const char *k : {"aaa", "bbb", "ccc"})
        EXPECT_NE(segment(lex, k)->text, nullptr) << k;
}

TEST_F(ClexFile, EvictsTheLeastRecentlyUsed)
{
    int16_t lex = open(threeSegments(), 24);
    ASSERT_GE(lex, 0);
    CLex *c = clex(lex);
    EXPECT_EQ(find(lex, "aaabcdefghi"), 'i'); // A
    EXPECT_EQ(find(lex, "bbbbcdefghi"), 'i'); // B
    EXPECT_EQ(c->budgetLeft, 4u);
    uint32_t loads = c->fileLoads;
    EXPECT_EQ(find(lex, "aaabcdefghi"), 'i'); // A again: a hit, no file
    EXPECT_EQ(c->fileLoads, loads);
    EXPECT_EQ(find(lex, "cccbcdefghijklm"), 'i'); // C: B goes
    EXPECT_NE(segment(lex, "aaa")->text, nullptr);
    EXPECT_EQ(segment(lex, "bbb")->text, nullptr);
    EXPECT_NE(segment(lex, "ccc")->text, nullptr);
    EXPECT_EQ(c->budgetLeft, 0u);
    EXPECT_EQ(c->fileLoads, loads + 1);

    // resident segments answer without their file; others can't be read
    remove(dir.file("lex.clx").c_str());
    DebugCapture log;
    EXPECT_EQ(find(lex, "aaabcdefghi"), 'i');
    EXPECT_EQ(find(lex, "cccbcdefghijklm"), 'i');
    EXPECT_EQ(find(lex, "bbbbcdefghi"), ORTO_OpenError);
    EXPECT_TRUE(log.has("loadSeg: error opening " + dir.file("lex.clx")));
    // what was evicted for the failed load stays evicted; the rest is sound
    EXPECT_EQ(segment(lex, "bbb")->text, nullptr);
    EXPECT_EQ(segment(lex, "aaa")->text, nullptr);
    EXPECT_EQ(c->budgetLeft, 10u);
}

// The example cut at every length: where it ends, field by field, and what
// opening gives then.  Opened: a text lexicon (the compressed reader
// doesn't claim the file) or an empty compressed one (the file ends before
// a section, or inside the language, the character size or the segment
// text); else the code and the log line behind "<file>: ".
TEST_F(ClexFile, ExampleCutAtEveryLength)
{
    const int16_t AsText = 1, Empty = 2;
    const struct {
        size_t below; // cuts up to here
        int16_t outcome;
        const char *message;
    } fields[] = {
        {4, AsText, ""},                                              // magic number
        {8, Empty, ""},                                               // id of section 1
        {12, AsText, "error reading section length"},                 // the probe hands it on
        {16, Empty, ""},                                              // language
        {20, Empty, ""},                                              // id of section 2
        {24, ORTO_BadFormat, "error reading section length"},
        {28, Empty, ""},                                              // character size
        {32, Empty, ""},                                              // id of section 3
        {36, ORTO_BadFormat, "error reading section length"},
        {50, ORTO_ReadError, "read error"},                           // S, the simple table, E
        {54, Empty, ""},                                              // id of section 5
        {58, ORTO_BadFormat, "error reading section length"},
        {74, Empty, ""},                                              // segment text
        {78, Empty, ""},                                              // id of section 4
        {82, ORTO_BadFormat, "error reading section length"},
        {108, ORTO_BadFormat, "directory runs past the end of the file"}, // count, records
    };
    const std::string path = dir.file("lex.clx");
    size_t field = 0;
    for (size_t cut = 0; cut < exampleBytes().size(); cut++) {
        while (cut >= fields[field].below)
            field++;
        SCOPED_TRACE("cut at " + std::to_string(cut));
        DebugCapture log;
        log.clear();
        int16_t lex = open(exampleBytes().substr(0, cut));
        std::vector<std::string> expected;
        if (*fields[field].message)
            expected.push_back(path + ": " + fields[field].message);
        if (fields[field].outcome < 0) {
            EXPECT_EQ(lex, fields[field].outcome);
        } else {
            ASSERT_GE(lex, 0);
            uint16_t format = 9;
            ORTO_GetLexInfo(sid, lex, nullptr, &format, nullptr);
            EXPECT_EQ(format, fields[field].outcome == AsText ? ORTO_LexText : ORTO_LexCompressed);
            EXPECT_EQ(find(lex, "walk"), ORTO_NotFound);
            expected.push_back("ORTO_OpenLex: " + path + " opened; id=" + std::to_string(lex));
            EXPECT_EQ(log.lines(), expected);
            ORTO_CloseLex(sid, lex);
            continue;
        }
        EXPECT_EQ(log.lines(), expected);
    }
    EXPECT_EQ(field, sizeof fields / sizeof *fields - 1);
    EXPECT_EQ(ORTO_OpenLex(sid, dir.file("missing.clx").c_str(), 0), ORTO_FileOpenError);
}

TEST_F(ClexFile, FileCutAfterOpening)
{
    std::string bytes = compressedLexicon({"cat", "cats", "dog", "dogs"});
    int16_t lex = open(bytes);
    ASSERT_GE(lex, 0);
    // the text of dog lies at the end of section 5; cut the file inside it
    size_t cut = clex(lex)->textOffset + segment(lex, "dog")->offset + 1;
    writeFile(dir.file("lex.clx"), bytes.substr(0, cut));
    DebugCapture log;
    EXPECT_EQ(find(lex, "dogs"), ORTO_BadFormat);
    EXPECT_TRUE(log.has("loadSeg: read error"));
    EXPECT_EQ(find(lex, "cats"), 'i');
}

// The bundled lexicons that the build makes from data/: every word of a
// list is found, exactly and case-blind (through the checkpoints that the
// lookups make), a word one letter longer only when it is listed too, and
// the walk gives the list back in order.
TEST(ClexBundled, HoldTheirListsAndNothingElse)
{
    const struct {
        const char *name;
        uint16_t language;
        const char *spelling, *otherSpelling;
    } bundles[] = {{"en-US", ORTO_LangAmerican, "color", "colour"},
                   {"en-GB", ORTO_LangBritish, "colour", "color"}};
    for (const auto &b : bundles) {
        std::string path = std::string(ORTO_BINARY_DIR) + "/data/" + b.name + ".clx";
        std::string list = readFile(std::string(ORTO_SOURCE_DIR) + "/data/" + b.name + ".txt");
        ASSERT_TRUE(fileExists(path)) << path;
        std::vector<std::string> words;
        for (size_t at = 0, end; at < list.size(); at = end + 2) {
            end = std::min(list.find("\r\n", at), list.size());
            words.push_back(list.substr(at, end - at));
        }
        std::set<std::string> listed(words.begin(), words.end());
        CLex c{};
        ASSERT_EQ(CLex_Open(path.c_str(), 0, &c), 0);
        EXPECT_EQ(c.language, b.language);
        size_t missing = 0, missingNoCase = 0, extra = 0;
        for (const std::string &w : words) {
            missing += CLex_Find(w.c_str(), 1, &c) != 'i';
            std::string upper = w;
            for (char &ch : upper)
                ch = (char)ToUpper((unsigned char)ch);
            missingNoCase += CLex_Find(upper.c_str(), 0, &c) != 'i';
            extra += !listed.count(w + "q") && CLex_Find((w + "q").c_str(), 1, &c) != ORTO_NotFound;
        }
        EXPECT_EQ(missing + missingNoCase + extra, 0u) << missing << " " << missingNoCase << " " << extra;
        EXPECT_GT(words.size(), 70000u);
        EXPECT_EQ(CLex_Find(b.spelling, 1, &c), 'i');
        EXPECT_EQ(CLex_Find(b.otherSpelling, 1, &c), ORTO_NotFound);
        std::vector<std::string> walked;
        for (u32 i = 0; i < c.segmentCount; i++) {
            if (c.segments[i]->key[2]) {
                ASSERT_EQ(loadSeg(&c, c.segments[i]), 0);
            }
            for (const std::string &w : wordsOf(&c, c.segments[i]))
                walked.push_back(w);
        }
        EXPECT_TRUE(walked == words) << walked.size() << " words walked, " << words.size() << " listed";
        // the lookups made checkpoints into the long segments, well below their text
        uint64_t text = 0, index = 0;
        for (u32 i = 0; i < c.segmentCount; i++) {
            text += c.segments[i]->length;
            index += c.segments[i]->index ? c.segments[i]->index->bytes : 0;
        }
        EXPECT_GT(index, 0u);
        EXPECT_LT(index * 3, text);
        CLex_Close(&c);
    }
}
