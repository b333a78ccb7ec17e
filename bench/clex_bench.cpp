// The compressed lexicon reader on the bundled en-US lexicon
// (<build>/data/en-US.clx with its list data/en-US.txt): file size per word,
// time and memory of ORTO_OpenLex, lookups per second for hits and misses,
// CaseSensitive on and off, with the segments resident (warm) or read from
// the file on each lookup (cold).  Without the bundled files it falls back
// to a synthetic lexicon of 100,000 words, and says so.
#include <benchmark/benchmark.h>

#include <malloc.h>
#include <stdint.h>
#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "engine/session.h"
#include "lexicon/clex.h"
#include "lexicon/lexicon.h"
#include "orto.h"
#include "bench/clex_builder.h"

namespace {

std::string readAll(const std::string &path)
{
    std::string s;
    FILE *f = fopen(path.c_str(), "rb");
    if (!f)
        return s;
    char buf[65536];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, f)) > 0)
        s.append(buf, n);
    fclose(f);
    return s;
}

std::vector<std::string> linesOf(const std::string &text)
{
    std::vector<std::string> out;
    size_t at = 0;
    while (at < text.size()) {
        size_t end = text.find('\n', at);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(at, end - at);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty() && line[0] != '#')
            out.push_back(line);
        at = end + 1;
    }
    return out;
}

std::vector<std::string> syntheticWords(size_t n)
{
    std::set<std::string> words;
    uint64_t x = 88172645463325252ull;
    while (words.size() < n) {
        x ^= x << 13;
        x ^= x >> 7;
        x ^= x << 17;
        std::string w;
        size_t len = 3 + x % 9;
        for (size_t i = 0; i < len; i++)
            w += (char)('a' + (x >> (5 * i % 60)) % 26);
        words.insert(w);
    }
    return std::vector<std::string>(words.begin(), words.end());
}

struct Data {
    std::string path;
    std::vector<std::string> words;  // the lexicon's words
    std::vector<std::string> hits;   // shuffled sample of words
    std::vector<std::string> misses; // near misses, in no case in the list
    long fileSize = 0;
    int16_t sid = -1;
    Data()
    {
        path = std::string(ORTO_BINARY_DIR) + "/data/en-US.clx";
        words = linesOf(readAll(std::string(ORTO_SOURCE_DIR) + "/data/en-US.txt"));
        fileSize = (long)readAll(path).size();
        if (fileSize == 0 || words.empty()) {
            fprintf(stderr, "clex_bench: %s or data/en-US.txt missing; "
                            "using a synthetic lexicon of 100,000 words\n", path.c_str());
            char tmpl[] = "/tmp/orto-clex-bench-XXXXXX";
            path = std::string(mkdtemp(tmpl)) + "/synthetic.clx";
            words = syntheticWords(100000);
            std::string bytes = clexb::fileOfWords(0x616D, words, {"s", "ing", "ed", "er"});
            FILE *f = fopen(path.c_str(), "wb");
            fwrite(bytes.data(), 1, bytes.size(), f);
            fclose(f);
            fileSize = (long)bytes.size();
        }
        std::set<std::string> folded;
        for (const std::string &w : words) {
            std::string l = w;
            for (char &c : l)
                c = (char)tolower((unsigned char)c);
            folded.insert(l);
        }
        uint64_t x = 0x9E3779B97F4A7C15ull;
        auto next = [&x] {
            x ^= x << 13;
            x ^= x >> 7;
            x ^= x << 17;
            return x;
        };
        while (hits.size() < 4096)
            hits.push_back(words[next() % words.size()]);
        while (misses.size() < 4096) {
            std::string w = words[next() % words.size()];
            if (w.size() < 4)
                continue;
            w[3 + next() % (w.size() - 3)] = (char)('a' + next() % 26);
            std::string l = w;
            for (char &c : l)
                c = (char)tolower((unsigned char)c);
            if (!folded.count(l))
                misses.push_back(w);
        }
        sid = ORTO_OpenSession();
    }
};

Data &data()
{
    static Data d;
    return d;
}

void BM_OpenLex(benchmark::State &state)
{
    Data &d = data();
    size_t heap = 0;
    for (auto _ : state) {
        size_t before = mallinfo2().uordblks;
        int16_t lex = ORTO_OpenLex(d.sid, d.path.c_str(), 0);
        if (lex < 0) {
            state.SkipWithError("ORTO_OpenLex failed");
            return;
        }
        heap = mallinfo2().uordblks - before;
        ORTO_CloseLex(d.sid, lex);
    }
    state.counters["file_bytes"] = (double)d.fileSize;
    state.counters["words"] = (double)d.words.size();
    state.counters["bytes_per_word"] = (double)d.fileSize / (double)d.words.size();
    state.counters["heap_bytes"] = (double)heap;
}
BENCHMARK(BM_OpenLex)->Unit(benchmark::kMicrosecond);

// Lookups through ORTO_FindLexWord, all segments resident.
void BM_FindWarm(benchmark::State &state)
{
    Data &d = data();
    bool hit = state.range(0), caseSensitive = state.range(1);
    const std::vector<std::string> &words = hit ? d.hits : d.misses;
    int16_t lex = ORTO_OpenLex(d.sid, d.path.c_str(), 0);
    ORTO_SetOption(d.sid, ORTO_CaseSensitive, caseSensitive);
    for (const std::string &w : words) // bring the segments in
        ORTO_FindLexWord(d.sid, lex, w.c_str(), nullptr, 0);
    int16_t want = hit ? 'i' : ORTO_NotFound;
    size_t i = 0, wrong = 0;
    for (auto _ : state) {
        wrong += ORTO_FindLexWord(d.sid, lex, words[i].c_str(), nullptr, 0) != want;
        i = (i + 1) & 4095;
    }
    if (wrong)
        state.SkipWithError("a lookup gave the wrong answer");
    state.SetItemsProcessed(state.iterations());
    // memory of the resident segments: their text and their checkpoints
    const CLex *clex = SessionTable[d.sid]->lexSlots[lex]->clex;
    double textBytes = 0, indexBytes = 0;
    for (u32 k = 0; k < clex->segmentCount; k++) {
        const CLexSegment *seg = clex->segments[k];
        textBytes += seg->text ? seg->length : 0;
        indexBytes += seg->index ? seg->index->bytes : 0;
    }
    state.counters["text_bytes"] = textBytes;
    state.counters["index_bytes"] = indexBytes;
    ORTO_CloseLex(d.sid, lex);
}
BENCHMARK(BM_FindWarm)
    ->ArgNames({"hit", "case"})
    ->Args({1, 1})->Args({0, 1})->Args({1, 0})->Args({0, 0});

// Each lookup reads its segment from the file: the budget is the longest
// segment, so that every load evicts the segment before.
void BM_FindCold(benchmark::State &state)
{
    Data &d = data();
    bool caseSensitive = state.range(0);
    int16_t lex = ORTO_OpenLex(d.sid, d.path.c_str(), 0);
    CLex *clex = SessionTable[d.sid]->lexSlots[lex]->clex;
    u32 longest = 0;
    for (u32 i = 0; i < clex->segmentCount; i++)
        longest = std::max(longest, clex->segments[i]->length);
    ORTO_CloseLex(d.sid, lex);
    lex = ORTO_OpenLex(d.sid, d.path.c_str(), longest);
    clex = SessionTable[d.sid]->lexSlots[lex]->clex;
    ORTO_SetOption(d.sid, ORTO_CaseSensitive, caseSensitive);
    size_t i = 0;
    u32 loads = clex->fileLoads;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ORTO_FindLexWord(d.sid, lex, d.hits[i].c_str(), nullptr, 0));
        i = (i + 1) & 4095;
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["loads_per_lookup"] =
        (double)(clex->fileLoads - loads) / (double)state.iterations();
    ORTO_CloseLex(d.sid, lex);
}
BENCHMARK(BM_FindCold)->ArgName("case")->Arg(1)->Arg(0);

// The segment walk that suggestions make: every word of every segment.
void BM_WalkAll(benchmark::State &state)
{
    Data &d = data();
    int16_t lex = ORTO_OpenLex(d.sid, d.path.c_str(), 0);
    CLex *clex = SessionTable[d.sid]->lexSlots[lex]->clex;
    size_t words = 0;
    for (auto _ : state) {
        words = 0;
        for (u32 i = 0; i < clex->segmentCount; i++) {
            CLexSegment *seg = clex->segments[i];
            if (seg->key[2] && loadSeg(clex, seg) < 0)
                continue;
            CLexCursor cur;
            CLex_StartSegment(&cur, clex, seg);
            while (CLex_NextWord(&cur))
                words++;
        }
    }
    if (words != d.words.size())
        state.SkipWithError("the walk didn't yield every word");
    state.SetItemsProcessed(state.iterations() * words);
    ORTO_CloseLex(d.sid, lex);
}
BENCHMARK(BM_WalkAll)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
