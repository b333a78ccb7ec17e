// The compressor on the bundled American list: time for the whole list,
// and the size of what comes out in bytes per word (target: at most 3.5),
// beside the plain list's.
#include <benchmark/benchmark.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "orto.h"

static const std::string listFile = std::string(ORTO_SOURCE_DIR) + "/data/en-US.txt";
static const std::string suffixFile = std::string(ORTO_SOURCE_DIR) + "/data/en-US-suffixes.txt";

static long fileSize(const std::string &path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 ? (long)st.st_size : -1;
}

static long countLines(const std::string &path)
{
    FILE *f = fopen(path.c_str(), "rb");
    long lines = 0;
    for (int c; f && (c = fgetc(f)) != EOF;)
        lines += c == '\n';
    if (f)
        fclose(f);
    return lines;
}

static void BM_CompressEnUS(benchmark::State &state)
{
    if (fileSize(listFile) < 0 || fileSize(suffixFile) < 0) {
        state.SkipWithError("data/en-US.txt or data/en-US-suffixes.txt missing");
        return;
    }
    char dir[] = "/tmp/orto-bench-XXXXXX";
    if (!mkdtemp(dir)) {
        state.SkipWithError("no temporary folder");
        return;
    }
    std::string out = std::string(dir) + "/en-US.clx";
    int16_t sid = ORTO_OpenSession();
    uint32_t line = 0;
    for (auto _ : state) {
        if (ORTO_CompressLexInit(sid, out.c_str(), suffixFile.c_str(), ORTO_LangAmerican, &line) < 0 ||
            ORTO_CompressLexFile(sid, listFile.c_str(), &line) < 0 ||
            ORTO_CompressLexEnd(sid) < 0) {
            state.SkipWithError("compression failed");
            break;
        }
    }
    ORTO_CloseSession(sid);
    long words = countLines(listFile);
    state.counters["words"] = (double)words;
    state.counters["bytes_per_word"] = (double)fileSize(out) / (double)words;
    state.counters["plain_bytes_per_word"] = (double)fileSize(listFile) / (double)words;
    state.SetItemsProcessed((int64_t)state.iterations() * words);
    unlink(out.c_str());
    rmdir(dir);
}
BENCHMARK(BM_CompressEnUS)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
