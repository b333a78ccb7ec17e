// The golden files of the compressed lexicon format (fuzz/corpus/clex,
// made by fuzz/make_clex_corpus.py): every file goes through the fuzz
// target's open, lookup and walk, and gives what the table below states.
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

struct Golden {
    int16_t open;         // the lexicon's format when it opens, else the code
    uint16_t language;    // of a file that opens
    int16_t walk;         // what a lookup of "walk" gives
    const char *message;  // the log line, %s for the file; null for none
};

const int16_t Compressed = ORTO_LexCompressed, Text = ORTO_LexText;
const uint16_t Am = ORTO_LangAmerican, Br = ORTO_LangBritish;
const char *const Damaged = "loadSeg: damaged segment in %s";

} // namespace

TEST(ClexCorpus, EveryFileGivesItsStatedResult)
{
    const std::map<std::string, Golden> golden = {
        {"valid-example", {Compressed, Am, 'i', nullptr}},
        {"valid-suffixes", {Compressed, Am, 'i', nullptr}},
        {"valid-no-suffixes", {Compressed, Am, 'i', nullptr}},
        {"valid-long-words", {Compressed, Am, ORTO_NotFound, nullptr}},
        {"valid-empty", {Compressed, Am, ORTO_NotFound, nullptr}},
        {"valid-magic-only", {Compressed, Am, ORTO_NotFound, nullptr}},
        {"valid-unknown-section", {Compressed, Br, 'i', nullptr}},
        {"valid-directory-first", {Compressed, Am, 'i', nullptr}}, // and no language section
        {"valid-text-reordered", {Compressed, Br, 'i', nullptr}},
        {"cut-segment-text", {Compressed, Br, ORTO_NotFound, nullptr}},
        {"bad-truncated-header", {Text, Am, ORTO_NotFound, "%s: error reading section length"}},
        {"bad-truncated-half", {ORTO_BadFormat, 0, 0, "%s: directory runs past the end of the file"}},
        {"bad-count-beyond-file", {ORTO_BadFormat, 0, 0, "%s: directory runs past the end of the file"}},
        {"bad-unicode", {ORTO_Unsupported, 0, 0, "%s: Unicode lexicon not supported"}},
        {"bad-charsize-3", {ORTO_BadFormat, 0, 0, "%s: character size 3 not supported"}},
        {"bad-tables-first", {ORTO_BadFormat, 0, 0, "%s: suffix tables before character size"}},
        {"bad-tables-twice", {ORTO_BadFormat, 0, 0, "%s: section 3 twice"}},
        {"bad-directory-twice", {ORTO_BadFormat, 0, 0, "%s: section 4 twice"}},
        {"bad-table-huge", {ORTO_OutOfMemory, 0, 0, "%s: simple suffix table too large (2147483647)"}},
        {"bad-extended-huge", {ORTO_OutOfMemory, 0, 0, "%s: extended suffix table too large (65536)"}},
        {"bad-table-cut", {ORTO_ReadError, 0, 0, "%s: read error"}},
        {"bad-too-many-segments", {ORTO_OutOfMemory, 0, 0, "%s: too many segments (1)"}},
        {"bad-record-outside", {ORTO_BadFormat, 0, 0, "%s: segment 0 lies outside the segment text"}},
        {"bad-no-text", {ORTO_BadFormat, 0, 0, "%s: segment 0 lies outside the segment text"}},
        {"bad-text-cut-under-directory",
         {ORTO_BadFormat, 0, 0, "%s: segment 0 lies outside the segment text"}},
        {"bad-directory-order", {ORTO_BadFormat, 0, 0, "%s: directory out of order at segment 1"}},
        {"bad-directory-repeat", {ORTO_BadFormat, 0, 0, "%s: directory out of order at segment 1"}},
        {"bad-segment-shared-count", {Compressed, Br, ORTO_BadFormat, Damaged}},
        {"bad-segment-shared-count-only", {Compressed, Br, ORTO_BadFormat, Damaged}},
        {"bad-segment-first-shares", {Compressed, Br, ORTO_BadFormat, Damaged}},
        {"bad-segment-literal-run", {Compressed, Br, ORTO_BadFormat, Damaged}},
        {"bad-segment-suffix-number", {Compressed, Br, ORTO_BadFormat, Damaged}},
        {"bad-segment-suffix-passes-63", {Compressed, Br, ORTO_BadFormat, Damaged}},
        {"bad-segment-extended-number", {Compressed, Br, ORTO_BadFormat, Damaged}},
        {"bad-segment-extended-cut", {Compressed, Br, ORTO_BadFormat, Damaged}},
        {"bad-segment-record-runs-past", {Compressed, Br, ORTO_BadFormat, Damaged}},
    };
    TempDir dir;
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(CorpusDir))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names.size(), golden.size());
    int16_t sid = ORTO_OpenSession();
    for (const std::string &name : names) {
        SCOPED_TRACE(name);
        std::string path = CorpusDir + "/" + name, bytes = readFile(path);
        clexfuzz::runOne((const uint8_t *)bytes.data(), bytes.size(), dir.file("scratch").c_str());
        ASSERT_EQ(golden.count(name), 1u) << "no stated result for this file";
        const Golden &g = golden.at(name);
        DebugCapture log;
        ORTO_SetOption(sid, ORTO_CaseSensitive, 1);
        int16_t lex = ORTO_OpenLex(sid, path.c_str(), 0);
        if (g.open < 0) {
            EXPECT_EQ(lex, g.open);
        } else {
            ASSERT_GE(lex, 0);
            uint16_t format = 9, language = 0;
            ORTO_GetLexInfo(sid, lex, nullptr, &format, &language);
            EXPECT_EQ(format, g.open);
            EXPECT_EQ(language, g.language);
            EXPECT_EQ(ORTO_FindLexWord(sid, lex, "walk", nullptr, 0), g.walk);
        }
        if (g.message) {
            std::string m = g.message;
            EXPECT_TRUE(log.has(m.replace(m.find("%s"), 2, path))) << m;
        }
        if (g.walk == ORTO_BadFormat) {
            // a damaged segment stays out of memory, case-blind too; the
            // rest is sound, and the word check counts the word as not there
            ORTO_SetOption(sid, ORTO_CaseSensitive, 0);
            EXPECT_EQ(ORTO_FindLexWord(sid, lex, "WALK", nullptr, 0), ORTO_BadFormat);
            CLex *clex = SessionTable[sid]->lexSlots[lex]->clex;
            CLexSegment *wal = CLex_FindSegment(clex, "wal");
            EXPECT_EQ(wal->text, nullptr);
            EXPECT_EQ(ORTO_FindLexWord(sid, lex, "abck", nullptr, 0), 'i');
            EXPECT_EQ(ORTO_CheckWord(sid, "walk", nullptr, 0), ORTO_MisspelledWord);
            // the decoders on the raw text, as if it had been let in
            std::string text = bytes.substr(clex->textOffset + wal->offset, wal->length);
            CLexSegment raw = *wal;
            raw.text = (unsigned char *)&text[0];
            EXPECT_EQ(CLex_ScanSegment(clex, &raw, "walq", nullptr, nullptr), 0);
            EXPECT_EQ(CLex_ScanSegment(clex, &raw, "walq", CLex_MatchNoCase, nullptr), 0);
            CLexCursor cur;
            CLex_StartSegment(&cur, clex, &raw);
            int n = 0;
            while (CLex_NextWord(&cur))
                n++;
            EXPECT_EQ(cur.damaged, 1);
            EXPECT_LE(n, 1);
        }
        if (lex >= 0)
            ORTO_CloseLex(sid, lex);
    }
    ORTO_CloseSession(sid);
}
