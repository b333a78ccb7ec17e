/*
 * Cost of a text lexicon with a file: one ORTO_AddToLex (lock, check for a
 * newer file, rewrite of the whole file, fsync, rename), and one
 * ORTO_OpenLex (the whole file read into the table).  The words are made
 * up, in a temporary folder, so no data has to be fetched.
 */
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "orto.h"

namespace {

struct Folder {
    std::string path;
    Folder()
    {
        char tmpl[] = "/tmp/orto-bench-XXXXXX";
        path = mkdtemp(tmpl) ? tmpl : "/tmp";
    }
    ~Folder()
    {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
};

/* A made-up word for every number: letters from a scrambled counter, 4 to
 * 12 of them, distinct for distinct numbers. */
std::string madeUpWord(uint32_t n)
{
    uint32_t x = n * 2654435761u;
    std::string w;
    for (uint32_t v = n;; v /= 26) {
        w += (char)('a' + v % 26);
        if (v < 26)
            break;
    }
    while (w.size() < 4 + x % 9) {
        w += (char)('a' + x % 26);
        x = x / 26 + 7;
    }
    return w;
}

/* A lexicon file of `count` entries, in no particular order. */
std::string writeLexicon(const Folder &dir, int count)
{
    std::string name = dir.path + "/bench" + std::to_string(count) + ".tlx";
    FILE *f = fopen(name.c_str(), "wb");
    fputs("#LID 24941\r\n", f);
    for (int i = 0; i < count; i++)
        fprintf(f, "%s\t%c\r\n", madeUpWord((uint32_t)i).c_str(), i % 7 ? 'i' : 'e');
    fclose(f);
    return name;
}

void BM_AddToFileLex(benchmark::State &state)
{
    Folder dir;
    std::string name = writeLexicon(dir, (int)state.range(0));
    int16_t sid = ORTO_OpenSession();
    int16_t lex = ORTO_OpenLex(sid, name.c_str(), 0);
    if (lex < 0) {
        state.SkipWithError("can't open the lexicon");
        return;
    }
    uint32_t n = 0;
    for (auto _ : state) {
        std::string w = "new" + madeUpWord(n++ % 64);
        if (ORTO_AddToLex(sid, lex, w.c_str(), 'i', nullptr) != 0) {
            state.SkipWithError("add failed");
            break;
        }
    }
    ORTO_CloseSession(sid);
}
BENCHMARK(BM_AddToFileLex)->Arg(1000)->Arg(50000)->Unit(benchmark::kMillisecond);

void BM_OpenFileLex(benchmark::State &state)
{
    Folder dir;
    std::string name = writeLexicon(dir, (int)state.range(0));
    int16_t sid = ORTO_OpenSession();
    for (auto _ : state) {
        int16_t lex = ORTO_OpenLex(sid, name.c_str(), 0);
        if (lex < 0) {
            state.SkipWithError("can't open the lexicon");
            break;
        }
        ORTO_CloseLex(sid, lex);
    }
    ORTO_CloseSession(sid);
}
BENCHMARK(BM_OpenFileLex)->Arg(50000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
