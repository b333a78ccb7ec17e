// The Check Spelling dialog over 1 MB of real prose, with a user who
// presses Ignore at every problem: problems shown per second, each with
// its suggestion list at the dialogs' depth of 50.
//
// Data: bench/fetch_block_data.sh puts bench/data/block_prose.txt (Perl's
// manual pages as prose); the first megabyte of it is checked against the
// bundled en-US lexicon.  The settings store is a file of the benchmark's
// own in a temporary folder.
#include <benchmark/benchmark.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "orto.h"
#include "orto_ui.h"

static long problems;

static int32_t pressIgnore(void *, ORTO_HWND)
{
    problems++;
    return 1001; /* Ignore, BN_CLICKED */
}

static bool readProse(std::string *text)
{
    std::ifstream in(std::string(ORTO_SOURCE_DIR) + "/bench/data/block_prose.txt", std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    *text = s.str().substr(0, 1 << 20);
    return text->size() == (1u << 20);
}

static void BM_CheckDialogIgnoreAll(benchmark::State &state)
{
    std::string prose;
    if (!readProse(&prose)) {
        state.SkipWithError("no data: run bench/fetch_block_data.sh");
        return;
    }
    char folder[] = "/tmp/orto-check-bench-XXXXXX";
    if (!mkdtemp(folder)) {
        state.SkipWithError("no temporary folder");
        return;
    }
    std::string ini = std::string(folder) + "/ORTO.INI";
    std::ofstream(ini) << "[ORTO]\nMainLexPath=" ORTO_BINARY_DIR "/data\nMainLexFiles=en-US.clx\n";
    ORTO_SetIniFile(ini.c_str());
    ORTO_FrontEnd user = {};
    user.nextCommand = pressIgnore;
    ORTO_SetFrontEnd(&user);
    std::vector<char> buffer(prose.size() + 4096);
    long total = 0;
    for (auto _ : state) {
        memcpy(buffer.data(), prose.data(), prose.size());
        problems = 0;
        ORTO_ResetLex();
        int32_t r = ORTO_CheckBlockDlg(nullptr, buffer.data(), (uint32_t)prose.size(), (uint32_t)buffer.size(), 0);
        if (r != (int32_t)prose.size())
            state.SkipWithError("the check did not run to its end");
        total += problems;
    }
    state.counters["problems"] = (double)problems;
    state.counters["problems/s"] = benchmark::Counter((double)total, benchmark::Counter::kIsRate);
    ORTO_SetIniFile(""); /* saves the session's options into the benchmark's file */
    unlink(ini.c_str());
    rmdir(folder);
}

BENCHMARK(BM_CheckDialogIgnoreAll)->Unit(benchmark::kMillisecond)->Iterations(3);

BENCHMARK_MAIN();
