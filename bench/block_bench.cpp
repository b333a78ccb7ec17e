// Checking a large text block against a text lexicon: the host's loop of
// ORTO_CheckBlock and ORTO_NextBlockWord over about 6 MB of English prose.
//
//   Scan        the scanner alone: the word count of ORTO_GetBlockInfo
//   Clean       every word of the text is in the lexicon: one call
//   Misspelled  the lexicon is the plain word list and every 10th word of
//               four letters or more has two letters swapped, so the loop
//               stops at every unknown word and steps over it
//
// Data: bench/fetch_block_data.sh puts bench/data/block_prose.txt and
// bench/data/block_words.txt in place; without them each benchmark skips.
// CaseSensitive stays on: a case-blind text lexicon lookup walks the table.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "orto.h"

namespace {

const std::string dataDir = std::string(ORTO_SOURCE_DIR) + "/bench/data/";

bool readWhole(const std::string &path, std::string *out)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    std::stringstream ss;
    ss << in.rdbuf();
    *out = ss.str();
    return !out->empty();
}

// Swaps the 2nd and 3rd letter of every 10th run of four letters or more.
std::string mangle(const std::string &text)
{
    std::string out = text;
    size_t run = 0, runs = 0;
    for (size_t i = 0; i <= out.size(); i++) {
        bool letter = i < out.size() && ((out[i] | 0x20) >= 'a' && (out[i] | 0x20) <= 'z');
        if (letter) {
            run++;
            continue;
        }
        if (run >= 4 && ++runs % 10 == 0) {
            size_t start = i - run;
            if (out[start + 1] != out[start + 2])
                std::swap(out[start + 1], out[start + 2]);
        }
        run = 0;
    }
    return out;
}

// Opens a session with one temporary lexicon of `words`.
int16_t sessionWithWords(const std::vector<std::string> &words, int16_t *lex)
{
    int16_t sid = ORTO_OpenSession();
    *lex = ORTO_CreateLex(sid, nullptr, ORTO_LangAmerican);
    for (const std::string &w : words)
        ORTO_AddToLex(sid, *lex, w.c_str(), ORTO_Ignore, nullptr);
    return sid;
}

// Walks the whole text and returns the number of reported words; with
// `learn` each reported word goes into the lexicon, so that the next walk
// finds the text clean.
long checkAll(int16_t sid, int16_t lex, std::string &text, bool learn)
{
    int16_t block = ORTO_OpenBlock(sid, text.data(), (uint32_t)text.size(),
                                   (uint32_t)text.size(), 0);
    if (block < 0)
        return -1;
    char word[64], replacement[64];
    long reports = 0;
    for (;;) {
        int16_t r = ORTO_CheckBlock(sid, block, word, sizeof word, replacement, sizeof replacement);
        if (r < 0 || r == ORTO_EndOfBlock)
            break;
        reports++;
        if (learn)
            ORTO_AddToLex(sid, lex, word, ORTO_Ignore, nullptr);
        if (ORTO_NextBlockWord(sid, block) < 0)
            break;
    }
    ORTO_CloseBlock(sid, block);
    return reports;
}

// Loaded once for all benchmarks of the run.
struct BenchData {
    bool ok = false;
    std::string prose, mangled;
    uint32_t words = 0;          // words of the prose by the block scanner
    int16_t cleanSid = -1;       // word list plus every word of the prose
    int16_t listSid = -1;        // the word list alone
};

const BenchData &data()
{
    static BenchData d;
    static bool loaded = false;
    if (loaded)
        return d;
    loaded = true;
    std::string list;
    if (!readWhole(dataDir + "block_prose.txt", &d.prose) ||
        !readWhole(dataDir + "block_words.txt", &list))
        return d;
    std::vector<std::string> words;
    std::istringstream in(list);
    for (std::string w; std::getline(in, w);)
        if (!w.empty())
            words.push_back(w);
    std::sort(words.begin(), words.end());
    d.mangled = mangle(d.prose);

    int16_t lex = -1;
    d.listSid = sessionWithWords(words, &lex);
    d.cleanSid = sessionWithWords(words, &lex);
    checkAll(d.cleanSid, lex, d.prose, true);
    int16_t block = ORTO_OpenBlock(d.listSid, d.prose.data(), (uint32_t)d.prose.size(),
                                   (uint32_t)d.prose.size(), 0);
    ORTO_GetBlockInfo(d.listSid, block, nullptr, nullptr, nullptr, &d.words);
    ORTO_CloseBlock(d.listSid, block);
    d.ok = d.listSid >= 0 && d.cleanSid >= 0 && d.words > 0;
    return d;
}

bool skipWithoutData(benchmark::State &state)
{
    if (data().ok)
        return false;
    state.SkipWithError("no data: run bench/fetch_block_data.sh to put block_prose.txt and "
                        "block_words.txt into bench/data/");
    return true;
}

void setRates(benchmark::State &state, size_t bytes, uint32_t words)
{
    state.SetBytesProcessed((int64_t)state.iterations() * (int64_t)bytes);
    state.counters["words/s"] =
        benchmark::Counter((double)words * (double)state.iterations(), benchmark::Counter::kIsRate);
    state.counters["MB"] = (double)bytes / 1e6;
}

void BM_Scan(benchmark::State &state)
{
    if (skipWithoutData(state))
        return;
    std::string text = data().prose;
    int16_t sid = data().listSid;
    int16_t block = ORTO_OpenBlock(sid, text.data(), (uint32_t)text.size(), (uint32_t)text.size(), 0);
    uint32_t count = 0;
    for (auto _ : state) {
        ORTO_GetBlockInfo(sid, block, nullptr, nullptr, nullptr, &count);
        benchmark::DoNotOptimize(count);
    }
    ORTO_CloseBlock(sid, block);
    setRates(state, text.size(), count);
}

void BM_CheckClean(benchmark::State &state)
{
    if (skipWithoutData(state))
        return;
    std::string text = data().prose;
    long reports = 0;
    for (auto _ : state)
        reports = checkAll(data().cleanSid, -1, text, false);
    setRates(state, text.size(), data().words);
    state.counters["reports"] = (double)reports;
}

void BM_CheckMisspelled(benchmark::State &state)
{
    if (skipWithoutData(state))
        return;
    std::string text = data().mangled;
    long reports = 0;
    for (auto _ : state)
        reports = checkAll(data().listSid, -1, text, false);
    setRates(state, text.size(), data().words);
    state.counters["reports"] = (double)reports;
}

BENCHMARK(BM_Scan)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CheckClean)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CheckMisspelled)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
