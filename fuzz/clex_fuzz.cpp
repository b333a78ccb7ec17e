/*
 * clex_fuzz.cpp -- libFuzzer target: arbitrary bytes as a compressed lexicon
 * file, opened, looked up and walked (see clex_fuzz_one.h).
 */
#include "fuzz/clex_fuzz_one.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const std::string scratch = fuzzsupport::scratchDir() + "/lex.clx";
    clexfuzz::runOne(data, size, scratch.c_str());
    return 0;
}
