// ORTO_CheckWord against a temporary lexicon of 100,000 words: a hit, a
// miss, with CaseSensitive on (binary search) and off (a walk of the table).
#include <benchmark/benchmark.h>

#include <stdint.h>
#include <stdio.h>

#include <string>
#include <vector>

#include "orto.h"

namespace {

// Deterministic word-like strings of 4 to 11 letters.
std::vector<std::string> makeWords(size_t n)
{
    std::vector<std::string> words;
    uint64_t x = 88172645463325252ull;
    while (words.size() < n) {
        x ^= x << 13;
        x ^= x >> 7;
        x ^= x << 17;
        std::string w;
        size_t len = 4 + x % 8;
        uint64_t y = x;
        for (size_t i = 0; i < len; i++) {
            w += (char)('a' + y % 26);
            y /= 26;
            if (!y)
                y = x * 2654435761u + i;
        }
        words.push_back(w);
    }
    return words;
}

struct Fixture {
    int16_t sid;
    std::vector<std::string> words;
    Fixture()
    {
        sid = ORTO_OpenSession();
        int16_t lex = ORTO_CreateLex(sid, nullptr, ORTO_LangAny);
        words = makeWords(100000);
        for (const std::string &w : words)
            ORTO_AddToLex(sid, lex, w.c_str(), 'i', nullptr);
    }
};

Fixture &fixture()
{
    static Fixture f;
    return f;
}

void run(benchmark::State &state, bool hit, bool caseSensitive)
{
    Fixture &f = fixture();
    ORTO_SetOption(f.sid, ORTO_CaseSensitive, caseSensitive);
    std::vector<std::string> probes;
    for (size_t i = 0; i < 1000; i++) {
        std::string w = f.words[(i * 97) % f.words.size()];
        probes.push_back(hit ? w : w + "qz");
    }
    char replacement[64];
    size_t i = 0;
    for (auto _ : state) {
        int16_t r = ORTO_CheckWord(f.sid, probes[i].c_str(), replacement, sizeof replacement);
        benchmark::DoNotOptimize(r);
        if (++i == probes.size())
            i = 0;
    }
    state.SetItemsProcessed(state.iterations());
    ORTO_SetOption(f.sid, ORTO_CaseSensitive, 1);
}

void BM_CheckWord_Hit_CaseSensitive(benchmark::State &s) { run(s, true, true); }
void BM_CheckWord_Miss_CaseSensitive(benchmark::State &s) { run(s, false, true); }
void BM_CheckWord_Hit_CaseBlind(benchmark::State &s) { run(s, true, false); }
void BM_CheckWord_Miss_CaseBlind(benchmark::State &s) { run(s, false, false); }

} // namespace

BENCHMARK(BM_CheckWord_Hit_CaseSensitive);
BENCHMARK(BM_CheckWord_Miss_CaseSensitive);
BENCHMARK(BM_CheckWord_Hit_CaseBlind);
BENCHMARK(BM_CheckWord_Miss_CaseBlind);
BENCHMARK_MAIN();
