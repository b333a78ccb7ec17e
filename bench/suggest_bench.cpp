/* Suggestions per second, and the median and 99th-percentile time of one
 * ORTO_Suggest, at depths 25, 50, 75 and 100, by spelling alone and by
 * spelling and sound, over real misspellings (bench/data/sample.txt, made
 * by bench/fetch_misspellings.sh).  Also how often the intended word comes
 * first, and among the first five, at depth 50.
 *
 * The lexicon is the bundled en-US one (<build>/data/en-US.clx); without it,
 * a text lexicon of /usr/share/dict/words.  Every word is suggested for once
 * before timing, so that the segments it needs are in memory, as they are
 * in a session that has run for a while.  Times are the thread's CPU time:
 * the machine may be shared with other work.  Compare with
 * bench/compare_aspell.sh, which times `aspell -a` on the same sample. */
#include <benchmark/benchmark.h>

#include <time.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "orto.h"

namespace {

struct Fixture {
    int16_t sid = -1;
    std::string lexicon;                                /* what was opened */
    std::vector<std::pair<std::string, std::string>> pairs; /* misspelling, intended */
    std::string problem;                                /* why nothing can run */
};

Fixture &fixture()
{
    static Fixture f = [] {
        Fixture f;
        std::ifstream sample(std::string(ORTO_SOURCE_DIR) + "/bench/data/sample.txt");
        std::string line;
        while (std::getline(sample, line)) {
            size_t tab = line.find('\t');
            if (tab != std::string::npos)
                f.pairs.emplace_back(line.substr(0, tab), line.substr(tab + 1));
        }
        if (f.pairs.empty()) {
            f.problem = "no misspellings: run bench/fetch_misspellings.sh first";
            return f;
        }
        f.sid = ORTO_OpenSession();
        for (std::string path : {std::string(ORTO_BINARY_DIR) + "/data/en-US.clx",
                                 std::string("/usr/share/dict/words")}) {
            if (ORTO_OpenLex(f.sid, path.c_str(), 0) >= 0) {
                f.lexicon = path;
                break;
            }
        }
        if (f.lexicon.empty())
            f.problem = "no lexicon: build the bundled en-US one, or install wamerican";
        return f;
    }();
    return f;
}

double threadSeconds()
{
    timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return (double)ts.tv_sec + ts.tv_nsec * 1e-9;
}

void setMeasures(int16_t sid, bool phonetic)
{
    ORTO_SetOption(sid, ORTO_TypographicalSuggestions, 1);
    ORTO_SetOption(sid, ORTO_PhoneticSuggestions, phonetic ? 1 : 0);
}

void BM_Suggest(benchmark::State &state)
{
    Fixture &f = fixture();
    if (!f.problem.empty()) {
        state.SkipWithError(f.problem.c_str());
        return;
    }
    int16_t depth = (int16_t)state.range(0);
    setMeasures(f.sid, state.range(1) != 0);
    char buffer[2048];
    int16_t scores[10];
    for (auto &p : f.pairs) /* bring the segments in */
        ORTO_Suggest(f.sid, p.first.c_str(), depth, buffer, sizeof buffer, scores, 10);

    std::vector<double> times;
    size_t next = 0;
    for (auto _ : state) {
        const std::string &word = f.pairs[next].first;
        next = (next + 1) % f.pairs.size();
        double start = threadSeconds();
        int16_t rc = ORTO_Suggest(f.sid, word.c_str(), depth, buffer, sizeof buffer, scores, 10);
        times.push_back(threadSeconds() - start);
        benchmark::DoNotOptimize(rc);
    }
    std::sort(times.begin(), times.end());
    state.SetItemsProcessed((int64_t)state.iterations());
    state.counters["median_us"] = times[times.size() / 2] * 1e6;
    state.counters["p99_us"] = times[std::min(times.size() - 1, times.size() * 99 / 100)] * 1e6;
    state.SetLabel(f.lexicon);
}

/* Rank of the intended word over the whole sample at depth 50. */
void BM_FirstAndTopFive(benchmark::State &state)
{
    Fixture &f = fixture();
    if (!f.problem.empty()) {
        state.SkipWithError(f.problem.c_str());
        return;
    }
    setMeasures(f.sid, state.range(0) != 0);
    char buffer[2048];
    int16_t scores[10];
    int first = 0, topFive = 0;
    for (auto _ : state) {
        first = topFive = 0;
        for (auto &p : f.pairs) {
            if (ORTO_Suggest(f.sid, p.first.c_str(), 50, buffer, sizeof buffer, scores, 10) < 0)
                continue;
            int rank = 0;
            for (const char *s = buffer; *s && rank < 5; s += std::char_traits<char>::length(s) + 1, rank++)
                if (p.second == s) {
                    first += rank == 0;
                    topFive++;
                    break;
                }
        }
    }
    state.counters["first_pct"] = 100.0 * first / f.pairs.size();
    state.counters["top5_pct"] = 100.0 * topFive / f.pairs.size();
    state.counters["words"] = (double)f.pairs.size();
    state.SetLabel(f.lexicon);
}

} // namespace

BENCHMARK(BM_Suggest)
    ->ArgNames({"depth", "phonetic"})
    ->ArgsProduct({{25, 50, 75, 100}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FirstAndTopFive)->ArgNames({"phonetic"})->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
