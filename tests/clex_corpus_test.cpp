// The fuzz corpus of the compressed lexicon reader, replayed without
// libFuzzer: every file goes through the fuzz target's open, lookup and
// walk, and the named files give their stated results.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "fuzz/clex_fuzz_one.h"
#include "orto.h"
#include "support/test_support.h"

namespace {

const std::string CorpusDir = std::string(ORTO_SOURCE_DIR) + "/fuzz/corpus/clex";

std::vector<std::string> corpusFiles()
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(CorpusDir))
        if (entry.is_regular_file())
            names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

TEST(ClexCorpus, EveryFileRunsClean)
{
    TempDir dir;
    std::vector<std::string> names = corpusFiles();
    ASSERT_GE(names.size(), 20u);
    for (const std::string &name : names) {
        SCOPED_TRACE(name);
        std::string bytes = readFile(CorpusDir + "/" + name);
        clexfuzz::runOne((const uint8_t *)bytes.data(), bytes.size(), dir.file("scratch").c_str());
    }
}

// valid-*: open as compressed lexicons; cut-*: open as compressed
// lexicons that hold no word; bad-segment-*: open, and the segment "wal"
// can't be read; other bad-*: refused with their code, or handed to the
// text path (a code of 100 below).
TEST(ClexCorpus, GoldenResults)
{
    const std::map<std::string, int> refused = {
        {"bad-charsize-3", ORTO_BadFormat},
        {"bad-count-beyond-file", ORTO_BadFormat},
        {"bad-directory-order", ORTO_BadFormat},
        {"bad-record-outside", ORTO_BadFormat},
        {"bad-table-huge", ORTO_OutOfMemory},
        {"bad-tables-first", ORTO_BadFormat},
        {"bad-too-many-segments", ORTO_OutOfMemory},
        {"bad-truncated-half", ORTO_BadFormat},
        {"bad-truncated-header", 100},
        {"bad-unicode", ORTO_Unsupported},
    };
    int16_t sid = ORTO_OpenSession();
    ASSERT_GE(sid, 0);
    for (const std::string &name : corpusFiles()) {
        SCOPED_TRACE(name);
        std::string path = CorpusDir + "/" + name;
        int16_t lex = ORTO_OpenLex(sid, path.c_str(), 0);
        uint16_t format = 9;
        if (lex >= 0)
            ORTO_GetLexInfo(sid, lex, nullptr, &format, nullptr);
        if (name.rfind("valid-", 0) == 0 || name.rfind("cut-", 0) == 0) {
            ASSERT_GE(lex, 0);
            EXPECT_EQ(format, ORTO_LexCompressed);
            if (name[0] == 'c') {
                EXPECT_EQ(ORTO_FindLexWord(sid, lex, "walk", nullptr, 0), ORTO_NotFound);
            }
        } else if (name.rfind("bad-segment-", 0) == 0) {
            ASSERT_GE(lex, 0);
            EXPECT_EQ(format, ORTO_LexCompressed);
            EXPECT_EQ(ORTO_FindLexWord(sid, lex, "walk", nullptr, 0), ORTO_BadFormat);
            EXPECT_EQ(ORTO_FindLexWord(sid, lex, "abck", nullptr, 0), 'i');
        } else {
            ASSERT_EQ(refused.count(name), 1u) << "no stated result for this file";
            if (refused.at(name) == 100) {
                ASSERT_GE(lex, 0);
                EXPECT_EQ(format, ORTO_LexText);
            } else {
                EXPECT_EQ(lex, refused.at(name));
            }
        }
        if (lex >= 0)
            ORTO_CloseLex(sid, lex);
    }
    // the documented example, from its file
    int16_t lex = ORTO_OpenLex(sid, (CorpusDir + "/valid-example").c_str(), 0);
    ASSERT_GE(lex, 0);
    for (const char *w : {"a", "walk", "walked", "walking", "walks", "wall"})
        EXPECT_EQ(ORTO_FindLexWord(sid, lex, w, nullptr, 0), 'i') << w;
    ORTO_CloseSession(sid);
}
