/*
 * clex_fuzz.cpp -- libFuzzer target: arbitrary bytes as a compressed lexicon
 * file, opened, looked up and walked (see clex_fuzz_one.h).
 */
#include <stdlib.h>
#include <unistd.h>

#include <string>

#include "fuzz/clex_fuzz_one.h"

static std::string scratchPath()
{
    const char *tmp = getenv("TMPDIR");
    std::string dir = std::string(tmp && *tmp ? tmp : "/tmp") + "/orto-clex-fuzz-XXXXXX";
    if (!mkdtemp(&dir[0]))
        abort();
    return dir + "/lex.clx";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const std::string path = scratchPath();
    clexfuzz::runOne(data, size, path.c_str());
    return 0;
}
