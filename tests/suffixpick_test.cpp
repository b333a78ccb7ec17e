// The suffix picker's size model against the real compressor, its search,
// and the bundled lists and suffix tables it made: files as big as the
// model says, tables that are not stale, and lists without case variants
// that the checker accepts from another entry.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "orto.h"
#include "support/test_support.h"

// The picker is built on demand only, so its model and search are compiled
// into this test.
#include "tools/suffixpick/suffix_model.cpp"
#include "tools/suffixpick/suffix_search.cpp"
#include "tools/suffixpick/suffix_tree.cpp"

namespace {

struct Table {
    std::vector<std::string> simple, extended;
};

std::string crlf(const std::vector<std::string> &lines)
{
    std::string text;
    for (const std::string &l : lines)
        text += l + "\r\n";
    return text;
}

// A suffix file as the compressor reads it: empty lines keep the extended
// suffixes at line 31.
std::string tableText(const Table &t)
{
    std::vector<std::string> lines{"# test table"};
    lines.insert(lines.end(), t.simple.begin(), t.simple.end());
    if (!t.extended.empty())
        lines.resize(1 + SimpleMax);
    lines.insert(lines.end(), t.extended.begin(), t.extended.end());
    return crlf(lines);
}

Table tableOf(const SuffixModel &m)
{
    Table t;
    for (uint32_t c = 0; c < m.cands.size(); c++)
        if (m.tier[c])
            (m.tier[c] == 1 ? t.simple : t.extended).push_back(m.cands[c].text);
    return t;
}

// Reads a suffix file into the model as its table.  A suffix that ends no
// tail (it may hide in the part a word shares with the one before) is no
// candidate; its bytes in the table come back as the result (right for the
// extended table; a simple one would also take the place of an empty line).
uint32_t loadTable(SuffixModel &m, const std::string &text)
{
    std::vector<std::string> lines;
    splitLines(text, lines);
    uint32_t n = 0, unused = 0;
    for (std::string line : lines) {
        if (!line.empty() && line[0] == '#')
            continue;
        uint8_t tier = n++ < SimpleMax ? 1 : 2;
        if (line.empty())
            continue;
        int64_t c = SuffixModel_Find(m, line.substr(0, SuffixMax));
        if (c < 0 || m.tier[c])
            unused += (uint32_t)line.size() + 1;
        else
            SuffixModel_Add(m, (uint32_t)c, tier);
    }
    return unused;
}

long compressedSize(const TempDir &dir, const std::string &list, const std::string &suffixes)
{
    std::string out = dir.file("out.clx");
    int16_t sid = ORTO_OpenSession();
    uint32_t line = 0;
    bool ok = ORTO_CompressLexInit(sid, out.c_str(), suffixes.empty() ? nullptr : suffixes.c_str(),
                                   ORTO_LangAmerican, &line) == 0 &&
              ORTO_CompressLexFile(sid, list.c_str(), &line) == 0 && ORTO_CompressLexEnd(sid) == 0;
    ORTO_CloseSession(sid);
    return ok ? (long)readFile(out).size() : -1;
}

// Words with short forms (under three bytes, exactly three), shared parts
// that reach into a suffix, a phrase, and '#' inside a tail (an ending that
// no suffix line can hold).
const std::vector<std::string> fixtureWords = {
    "I", "a", "ad hoc", "an", "ask", "asked", "asking", "asks", "ate", "hash#ed", "hash#s",
    "nation", "national", "nationalism", "nationalist", "nationalists", "nationality", "nations",
    "station", "stationed", "stations", "wantonness", "walkway", "walkways",
    "walk", "walked", "walker", "walkers", "walking", "walkings", "walks", "wall", "walls", "wan",
    "wanted", "wanting", "wants", "zoo", "zoos"};

TEST(SuffixModel, PredictsTheCompressorsFileSizeToTheByte)
{
    TempDir dir;
    std::vector<std::string> words = fixtureWords;
    std::sort(words.begin(), words.end());
    std::string list = dir.file("words.txt");
    writeFile(list, "# fixture\r\n" + crlf(words) + "\r\n");

    const std::vector<Table> tables = {
        {},                                        // every tail literal
        {{"s", "ing", "ed"}, {}},                  // few simple ones: no empty lines
        {{"s"}, {"ing", "ed", "ism", "tion"}},     // 29 empty lines before the extended ones
        {{"ed", "s"}, {"ted", "d", "ion", "ty"}},  // a longer extended one beside a simple one
        {{"ing", "on"}, {"s", "ed", "alist", "ings", "ism", "ways"}}, // some in shared parts
    };
    for (size_t n = 0; n < tables.size(); n++) {
        const Table &t = tables[n];
        SuffixModel m;
        std::string error;
        ASSERT_TRUE(SuffixModel_Read(m, {list}, error)) << error;
        EXPECT_EQ(m.words, words.size());
        std::string suffixes = dir.file("suffixes.txt");
        writeFile(suffixes, tableText(t));
        uint32_t unused = loadTable(m, tableText(t));
        EXPECT_EQ((long)(SuffixModel_Total(m) + unused), compressedSize(dir, list, n ? suffixes : ""))
            << "table " << n;
        // taking the suffixes out again gives back the literal cost
        for (uint32_t c = 0; c < m.cands.size(); c++)
            SuffixModel_Remove(m, c);
        EXPECT_EQ((long)SuffixModel_Total(m), compressedSize(dir, list, "")) << "table " << n;
        if (n == 4) {
            EXPECT_EQ(unused, 6u + 5u + 5u) << "alist, ings and ways hide in shared parts";
        }
    }
}

TEST(SuffixModel, RefusesWhatTheCompressorRefuses)
{
    TempDir dir;
    struct Case {
        std::vector<std::string> lists;
        const char *message;
    };
    writeFile(dir.file("long.txt"), crlf({"abc", std::string(64, 'x')}));
    writeFile(dir.file("order.txt"), crlf({"apple", "zoo", "bee"}));
    writeFile(dir.file("twice.txt"), crlf({"apple", "apple"}));
    writeFile(dir.file("tab.txt"), crlf({"ab\tc"}));
    writeFile(dir.file("one.txt"), crlf({"walk", "zoo"}));
    writeFile(dir.file("two.txt"), crlf({"walls"}));
    const std::vector<Case> cases = {
        {{dir.file("long.txt")}, "long.txt, line 2: word too long"},
        {{dir.file("order.txt")}, "order.txt, line 3: word out of sequence"},
        {{dir.file("twice.txt")}, "twice.txt, line 2: word out of sequence"},
        {{dir.file("tab.txt")}, "tab.txt, line 1: control byte in a word"},
        {{dir.file("one.txt"), dir.file("two.txt")}, "two.txt, line 1: first three letters also in an earlier list"},
        {{dir.file("missing.txt")}, "can't read"},
    };
    for (const Case &c : cases) {
        SuffixModel m;
        std::string error;
        EXPECT_FALSE(SuffixModel_Read(m, c.lists, error)) << c.message;
        EXPECT_NE(error.find(c.message), std::string::npos) << error;
    }
    // lists with disjoint first letters make one lexicon, in either order
    SuffixModel m;
    std::string error;
    writeFile(dir.file("three.txt"), crlf({"ask", "asks"}));
    ASSERT_TRUE(SuffixModel_Read(m, {dir.file("one.txt"), dir.file("three.txt")}, error)) << error;
    EXPECT_EQ(m.words, 4u);
    EXPECT_EQ(m.segments, 3u);
}

// A list big enough for the limits of 30 and 255 places to bind: the first
// words of the bundled American list.
std::string bundledPrefix(const TempDir &dir, size_t words)
{
    std::string text = readFile(std::string(ORTO_SOURCE_DIR) + "/data/en-US.txt");
    size_t at = 0;
    for (size_t n = 0; n < words && at != std::string::npos; n++)
        at = text.find("\r\n", at) + 2;
    std::string path = dir.file("prefix.txt");
    writeFile(path, text.substr(0, at));
    return path;
}

TEST(SuffixSearch, BeatsGreedyFitsTheLimitsAndRepeatsItself)
{
    TempDir dir;
    std::string list = bundledPrefix(dir, 20000);
    std::string error;

    SuffixModel greedy;
    ASSERT_TRUE(SuffixModel_Read(greedy, {list}, error)) << error;
    uint64_t plain = SuffixModel_Total(greedy);
    Search_Greedy(greedy);
    Search_Local(greedy);

    SuffixModel picked[2];
    for (SuffixModel &m : picked) {
        ASSERT_TRUE(SuffixModel_Read(m, {list}, error)) << error;
        Search_Lagrange(m);
        Search_Local(m);
        Search_Iterate(m, 5, 7, nullptr);
    }
    SuffixModel &m = picked[0];
    EXPECT_EQ(m.tier, picked[1].tier);
    EXPECT_LT(SuffixModel_Total(m), plain);
    EXPECT_LT(SuffixModel_Total(m), SuffixModel_Total(greedy)); // by 137 bytes when written
    EXPECT_LE(m.simpleCount, (uint32_t)SimpleMax);
    EXPECT_LE(m.extendedCount, (uint32_t)ExtendedMax);
    EXPECT_EQ(m.simpleCount, (uint32_t)SimpleMax); // so many words fill both tiers
    EXPECT_EQ(m.extendedCount, (uint32_t)ExtendedMax);

    // every suffix pays for its place: taking any one out makes it bigger
    uint64_t total = SuffixModel_Total(m);
    for (uint32_t c = 0; c < m.cands.size(); c++) {
        uint8_t tier = m.tier[c];
        if (!tier)
            continue;
        SuffixModel_Remove(m, c);
        EXPECT_GT(SuffixModel_Total(m), total) << m.cands[c].text;
        SuffixModel_Add(m, c, tier);
    }
    std::string suffixes = dir.file("suffixes.txt");
    writeFile(suffixes, tableText(tableOf(m)));
    EXPECT_EQ((long)total, compressedSize(dir, list, suffixes));
}

/* ---- the bundled lists and tables ---- */

struct Bundled {
    const char *name;
    bool target; // at most 3.5 bytes a word
};

TEST(BundledLexicons, AreAsSmallAsThePickerMakesThem)
{
    for (Bundled b : {Bundled{"en-US", true}, Bundled{"en-GB", false}}) {
        std::string list = std::string(ORTO_SOURCE_DIR) + "/data/" + b.name + ".txt";
        std::string table = readFile(std::string(ORTO_SOURCE_DIR) + "/data/" + b.name + "-suffixes.txt");
        std::string built = std::string(ORTO_BINARY_DIR) + "/data/" + b.name + ".clx";
        if (!fileExists(built))
            GTEST_SKIP() << "the bundled lexicon " << built << " isn't built";
        SuffixModel shipped;
        std::string error;
        ASSERT_TRUE(SuffixModel_Read(shipped, {list}, error)) << error;
        ASSERT_EQ(loadTable(shipped, table), 0u) << b.name << ": a suffix that ends no word";
        EXPECT_EQ(SuffixModel_Total(shipped), readFile(built).size()) << b.name;
        if (b.target) {
            EXPECT_LE(SuffixModel_Total(shipped) * 2, shipped.words * 7ull) << b.name << ": above 3.5 bytes a word";
        }

        // a table that the picker now beats is stale: the list changed
        SuffixModel fresh;
        ASSERT_TRUE(SuffixModel_Read(fresh, {list}, error)) << error;
        Search_Lagrange(fresh);
        Search_Local(fresh);
        EXPECT_LE(SuffixModel_Total(shipped), SuffixModel_Total(fresh))
            << b.name << "-suffixes.txt is stale: remake it with orto_suffixpick";
    }
}

std::vector<std::string> listWords(const std::string &path)
{
    std::vector<std::string> lines, words;
    splitLines(readFile(path), lines);
    for (const std::string &l : lines)
        if (!l.empty() && l[0] != '#')
            words.push_back(l);
    return words;
}

bool isUpperByte(unsigned char c) { return (c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDF && c != 0xD7); }
bool isLowerByte(unsigned char c) { return c >= 0x61 && isUpperByte((unsigned char)(c - 0x20)); }
std::string folded(std::string w)
{
    for (char &c : w)
        if (isUpperByte((unsigned char)c))
            c = (char)(c + 0x20);
    return w;
}

// The lists leave out the case variants that another entry accepts; the
// checker must go on accepting them.  For every entry, its capitalised
// form (if it begins in small letters) and its all-capitals form are
// found, with case-sensitive lookups and without.
TEST(BundledLexicons, CaseVariantsLeftOutOfTheListsAreStillAccepted)
{
    for (const char *name : {"en-US", "en-GB"}) {
        std::string built = std::string(ORTO_BINARY_DIR) + "/data/" + name + ".clx";
        if (!fileExists(built))
            GTEST_SKIP() << "the bundled lexicon " << built << " isn't built";
        std::vector<std::string> words = listWords(std::string(ORTO_SOURCE_DIR) + "/data/" + name + ".txt");
        ASSERT_GT(words.size(), 70000u);

        // none of the entries is itself such a variant
        std::vector<std::string> sorted = words, folds;
        for (const std::string &w : words)
            folds.push_back(folded(w));
        std::sort(folds.begin(), folds.end());
        std::string redundant;
        for (const std::string &w : words) {
            std::string lowered = w;
            lowered[0] = (char)(isUpperByte((unsigned char)w[0]) ? w[0] + 0x20 : w[0]);
            bool hasLower = std::any_of(w.begin(), w.end(), [](char c) { return isLowerByte((unsigned char)c); });
            bool hasUpper = std::any_of(w.begin(), w.end(), [](char c) { return isUpperByte((unsigned char)c); });
            auto range = std::equal_range(folds.begin(), folds.end(), folded(w));
            if ((lowered != w && std::binary_search(sorted.begin(), sorted.end(), lowered)) ||
                (!hasLower && hasUpper && range.second - range.first > 1))
                redundant += w + " ";
        }
        EXPECT_EQ(redundant, "") << name;

        int16_t sid = ORTO_OpenSession();
        ASSERT_GE(sid, 0);
        ASSERT_GE(ORTO_OpenLex(sid, built.c_str(), 0), 0);
        for (uint32_t caseSensitive : {1u, 0u}) {
            ORTO_SetOption(sid, ORTO_CaseSensitive, caseSensitive);
            std::string rejected;
            size_t checked = 0;
            for (const std::string &w : words) {
                std::string caps = w, capitalised = w;
                for (char &c : caps)
                    if (isLowerByte((unsigned char)c))
                        c = (char)(c - 0x20);
                if (isLowerByte((unsigned char)w[0]))
                    capitalised[0] = (char)(w[0] - 0x20);
                for (const std::string &form : {caps, capitalised}) {
                    char replacement[64];
                    if (ORTO_CheckWord(sid, form.c_str(), replacement, sizeof replacement) & ORTO_MisspelledWord)
                        rejected += form + " ";
                    checked++;
                }
            }
            EXPECT_EQ(rejected, "") << name << ", CaseSensitive " << caseSensitive;
            EXPECT_EQ(checked, 2 * words.size());
        }
        ORTO_CloseSession(sid);
    }
}

} // namespace
