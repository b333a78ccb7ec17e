// The seed corpora of the fuzz targets, replayed without libFuzzer: every
// file goes through its target's run, whose rules abort when broken.  The
// compressed lexicon reader's corpus has its own test (clex_corpus_test).
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "fuzz/block_fuzz_one.h"
#include "fuzz/compress_fuzz_one.h"
#include "fuzz/pipe_fuzz_one.h"
#include "fuzz/tlex_fuzz_one.h"
#include "support/test_support.h"

namespace {

void replay(const std::string &target, void (*runOne)(const uint8_t *, size_t))
{
    std::string dir = std::string(ORTO_SOURCE_DIR) + "/fuzz/corpus/" + target;
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(dir))
        names.push_back(entry.path().string());
    std::sort(names.begin(), names.end());
    ASSERT_GE(names.size(), 8u) << dir;
    for (const std::string &name : names) {
        SCOPED_TRACE(name);
        std::string bytes = readFile(name);
        runOne((const uint8_t *)bytes.data(), bytes.size());
    }
}

} // namespace

TEST(FuzzCorpus, TextLexicons) { replay("tlex", tlexfuzz::runOne); }
TEST(FuzzCorpus, Blocks) { replay("block", blockfuzz::runOne); }
TEST(FuzzCorpus, Compressor) { replay("compress", compressfuzz::runOne); }
TEST(FuzzCorpus, Pipe) { replay("pipe", pipefuzz::runOne); }
