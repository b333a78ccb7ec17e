/*
 * clex_fuzz.cpp -- libFuzzer target: arbitrary bytes as a compressed lexicon
 * file, opened, looked up and walked (see clex_fuzz_one.h).
 */
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

#include "fuzz/clex_fuzz_one.h"

static std::string scratchDir;
static std::string scratchFile;

static void removeScratch()
{
    remove(scratchFile.c_str());
    rmdir(scratchDir.c_str());
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (scratchFile.empty()) {
        const char *tmp = getenv("TMPDIR");
        scratchDir = std::string(tmp && *tmp ? tmp : "/tmp") + "/orto-clex-fuzz-XXXXXX";
        if (!mkdtemp(&scratchDir[0]))
            abort();
        scratchFile = scratchDir + "/lex.clx";
        atexit(removeScratch);
    }
    clexfuzz::runOne(data, size, scratchFile.c_str());
    return 0;
}
