// Checkpoints into long segments of a compressed lexicon: built at the
// second use of a resident long segment, used by the exact search, freed
// with the text; the search with them finds what the search without them
// finds.
#include <gtest/gtest.h>

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

const std::vector<std::string> Suffixes = {"s", "ing", "ed"};

// About `n` words of key "con": random tails (Latin-1 letters among them, so
// that bytes above 0x7F sort as unsigned), the key itself, and a run of
// words that share their first 8 tail characters and more, so that several
// checkpoints have the same prefix.
std::set<std::string> conWords(size_t n)
{
    std::mt19937 rng(12345);
    const std::string letters = "abcdefghijklmnopqrstuvwxyz\xE9\xF6";
    std::set<std::string> words = {"con"};
    for (char a = 'a'; a <= 'z'; a++)
        for (char b = 'a'; b <= 'k'; b++)
            words.insert(std::string("constitutional") + a + b);
    while (words.size() < n) {
        std::string w = "con";
        size_t len = rng() % 14;
        for (size_t i = 0; i < len; i++)
            w += letters[rng() % letters.size()];
        if (rng() % 4 == 0)
            w += Suffixes[rng() % Suffixes.size()];
        words.insert(w);
    }
    return words;
}

// Words near each listed one: one character changed, added or taken away.
std::set<std::string> nearMisses(const std::set<std::string> &words)
{
    std::set<std::string> out;
    for (const std::string &w : words) {
        std::string changed = w;
        changed.back() = (char)(changed.back() + 1);
        out.insert(changed);
        out.insert(w + "a");
        out.insert(w + "\xFF");
        if (w.size() > 3)
            out.insert(w.substr(0, w.size() - 1));
        if (w.size() > 11) {
            std::string mid = w;
            mid[11] = (char)(mid[11] - 1);
            out.insert(mid);
        }
    }
    out.insert("co");
    for (const std::string &w : words)
        out.erase(w);
    return out;
}

struct ClexIndex : ::testing::Test {
    TempDir dir;
    int16_t sid = -1;
    void SetUp() override
    {
        sid = ORTO_OpenSession();
        ORTO_SetOption(sid, ORTO_CaseSensitive, 1);
    }
    void TearDown() override { ORTO_CloseSession(sid); }

    int16_t open(const std::set<std::string> &words, uint32_t budget = 0)
    {
        std::string path = dir.file("lex.clx");
        std::vector<std::string> list(words.begin(), words.end());
        writeFile(path, compressedLexicon(list, Suffixes));
        return ORTO_OpenLex(sid, path.c_str(), budget);
    }
    // With a budget that holds only the larger of the segments "con" and
    // "dog", so that each evicts the other.
    int16_t openRoomForOne(const std::set<std::string> &words)
    {
        int16_t lex = open(words, 0);
        if (lex < 0)
            return lex;
        uint32_t room = std::max(segment(lex, "con")->length, segment(lex, "dog")->length);
        ORTO_CloseLex(sid, lex);
        return open(words, room);
    }
    CLex *clex(int16_t lex) { return SessionTable[sid]->lexSlots[lex]->clex; }
    CLexSegment *segment(int16_t lex, const char *key) { return CLex_FindSegment(clex(lex), key); }
    const CLexSummary *summary(int16_t lex, const CLexSegment *seg)
    {
        CLex *c = clex(lex);
        for (u32 i = 0; i < c->segmentCount; i++)
            if (c->segments[i] == seg)
                return &c->summaries[i];
        return nullptr;
    }
    int16_t find(int16_t lex, const std::string &word)
    {
        return ORTO_FindLexWord(sid, lex, word.c_str(), nullptr, 0);
    }
};

} // namespace

TEST_F(ClexIndex, LongSegmentFindsEveryWordAndNoNearMiss)
{
    std::set<std::string> words = conWords(1000);
    std::set<std::string> misses = nearMisses(words);
    int16_t lex = open(words);
    ASSERT_GE(lex, 0);
    // built at the second use of the resident segment, not at the first
    ASSERT_EQ(find(lex, "con"), 'i');
    CLexSegment *con = segment(lex, "con");
    EXPECT_EQ(con->index, nullptr);
    ASSERT_EQ(find(lex, "con"), 'i');
    ASSERT_NE(con->index, nullptr);
    EXPECT_EQ(con->index->count, (uint32_t)((words.size() + CLexIndexStep - 1) / CLexIndexStep));
    EXPECT_EQ(CLex_IndexRecordAt(con->index)[con->index->count], con->length);
    for (const std::string &w : words)
        EXPECT_EQ(find(lex, w), 'i') << w;
    for (const std::string &w : misses)
        EXPECT_EQ(find(lex, w), ORTO_NotFound) << w;

    // the same answers from the first record on, without the index
    CLexSegment plain = *con;
    plain.index = nullptr;
    for (const std::set<std::string> *list : {&words, &misses})
        for (const std::string &w : *list)
            EXPECT_EQ(CLex_ScanSegment(clex(lex), &plain, w.c_str(), nullptr, nullptr),
                      CLex_ScanSegment(clex(lex), con, w.c_str(), nullptr, nullptr))
                << w;
    ORTO_CloseLex(sid, lex);
}

// Where each search starts, for every word and every near miss: behind a
// record that sorts below the word and shares exactly m characters with it,
// and not behind the word itself; a checkpoint with a short tail answers
// alone.
TEST_F(ClexIndex, EverySearchStartsBelowTheWord)
{
    std::set<std::string> words = conWords(400);
    int16_t lex = open(words);
    ASSERT_GE(lex, 0);
    ASSERT_EQ(find(lex, "con"), 'i');
    ASSERT_EQ(find(lex, "con"), 'i');
    CLexSegment *con = segment(lex, "con");
    ASSERT_NE(con->index, nullptr);
    std::vector<std::string> tails; // of each record
    std::vector<u32> after;         // offset behind each record
    CLexCursor cur;
    CLex_StartSegment(&cur, clex(lex), con);
    while (const char *w = CLex_NextWord(&cur)) {
        tails.push_back(w + 3);
        after.push_back((u32)(cur.p - con->text));
    }
    ASSERT_EQ(tails.size(), words.size());

    std::set<std::string> probes = nearMisses(words);
    probes.insert(words.begin(), words.end());
    for (const std::string &w : probes) {
        if (w.compare(0, 3, "con") != 0)
            continue;
        std::string tail = w.substr(3);
        u32 from = 0, m = 99;
        int start = CLex_IndexStart(con->index, (const unsigned char *)tail.c_str(), &from, &m);
        size_t below = 0; // records that sort below the word
        while (below < tails.size() && tails[below] < tail)
            below++;
        bool listed = words.count(w) > 0;
        if (start == 1) {
            EXPECT_TRUE(listed) << w;
            EXPECT_EQ(below % CLexIndexStep, 0u) << w;
            EXPECT_LT(tail.size(), 8u) << w;
            continue;
        }
        if (start == -1) {
            EXPECT_EQ(below, 0u) << w;
            continue;
        }
        ASSERT_EQ(start, 0) << w;
        if (from == 0) {
            EXPECT_EQ(m, 0u) << w;
            continue;
        }
        size_t r = 0;
        while (r < after.size() && after[r] != from)
            r++;
        ASSERT_LT(r, after.size()) << w << ": not a record boundary";
        EXPECT_LT(r, below == 0 ? 0 : below) << w;
        EXPECT_EQ(r % CLexIndexStep, 0u) << w;
        size_t shared = 0;
        while (shared < tails[r].size() && shared < tail.size() && tails[r][shared] == tail[shared])
            shared++;
        EXPECT_EQ(m, shared) << w;
    }
    ORTO_CloseLex(sid, lex);
}

TEST_F(ClexIndex, ShortSegmentsHaveNoneAndEvictionFreesIt)
{
    std::set<std::string> words = conWords(200);
    for (int i = 0; i < (int)CLexIndexMinRecords; i++)
        words.insert("dog" + std::string(1, (char)('a' + i % 26)) + std::to_string(i));
    std::string probe = *words.rbegin();
    int16_t lex = openRoomForOne(words);
    ASSERT_GE(lex, 0);
    CLexSegment *con = segment(lex, "con");
    CLexSegment *dog = segment(lex, "dog");
    for (int round = 0; round < 3; round++) {
        EXPECT_EQ(find(lex, "constitutionalab"), 'i');
        EXPECT_EQ(find(lex, "constitutionalzk"), 'i');
        EXPECT_NE(con->index, nullptr);
        EXPECT_EQ(con->index->text, con->text);
        EXPECT_EQ(find(lex, probe), 'i');
        EXPECT_EQ(find(lex, probe), 'i');
        EXPECT_EQ(dog->index, nullptr); // CLexIndexMinRecords records: too short
        EXPECT_EQ(con->text, nullptr);
        EXPECT_EQ(con->index, nullptr);
    }
    ORTO_CloseLex(sid, lex);
}

// The decoded form that suggestion walks read: every word whole, its
// length and its letters, as the cursor gives them;
// made by the first walk that opens the segment, and gone with the text.
TEST_F(ClexIndex, DecodedWordsMatchTheCursorAndGoWithTheText)
{
    std::set<std::string> words = conWords(300);
    for (int i = 0; i < 40; i++)
        words.insert("dog" + std::string(1, (char)('a' + i % 26)) + std::to_string(i));
    int16_t lex = openRoomForOne(words);
    ASSERT_GE(lex, 0);
    CLexSegment *con = segment(lex, "con");
    CLexSegment *dog = segment(lex, "dog");
    char list[1024];
    int16_t scores[8];
    for (int round = 0; round < 2; round++) {
        ASSERT_EQ(ORTO_Suggest(sid, "conz", 0, list, sizeof list, scores, 8), 0);
        ASSERT_NE(con->words, nullptr);
        EXPECT_EQ(con->words->text, con->text);
        EXPECT_EQ(dog->words, nullptr);

        std::vector<std::string> expected;
        CLexCursor cur;
        CLex_StartSegment(&cur, clex(lex), con);
        while (const char *w = CLex_NextWord(&cur))
            expected.push_back(w);
        const CLexWords *decoded = con->words;
        ASSERT_EQ(decoded->count, expected.size());
        size_t shortest = 64, longest = 0;
        for (size_t i = 0; i < expected.size(); i++) {
            const std::string &w = expected[i];
            u32 all = 0, tail = 0;
            for (size_t c = 0; c < w.size(); c++) {
                u32 bit = CLex_LetterBit(baseLetter[(unsigned char)w[c]]);
                all |= bit;
                tail |= c >= 3 ? bit : 0;
            }
            EXPECT_EQ(CLex_WordsChars(decoded) + CLex_WordsAt(decoded)[i], w);
            EXPECT_EQ(CLex_WordsLength(decoded)[i], w.size()) << w;
            EXPECT_EQ(CLex_WordsLetters(decoded)[i], all) << w;
            EXPECT_EQ(CLex_WordsTailLetters(decoded)[i], tail) << w;
            shortest = std::min(shortest, w.size());
            longest = std::max(longest, w.size());
        }
        const CLexSummary *known = summary(lex, con);
        EXPECT_EQ(known->minLength, shortest);
        EXPECT_EQ(known->maxLength, longest);

        // opening "dog" evicts "con", and its decoded words with it
        ASSERT_EQ(ORTO_Suggest(sid, "dogz", 0, list, sizeof list, scores, 8), 0);
        EXPECT_EQ(con->text, nullptr);
        EXPECT_EQ(con->words, nullptr);
        EXPECT_EQ(known->maxLength, longest); // the summary outlives the text
        EXPECT_NE(dog->words, nullptr);
    }
    ORTO_CloseLex(sid, lex);
}
