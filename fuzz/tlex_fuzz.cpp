/*
 * tlex_fuzz.cpp -- libFuzzer target: arbitrary bytes as a text lexicon file,
 * opened, listed, looked up and rewritten (see tlex_fuzz_one.h).
 */
#include "fuzz/tlex_fuzz_one.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    tlexfuzz::runOne(data, size);
    return 0;
}
