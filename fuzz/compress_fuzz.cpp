/*
 * compress_fuzz.cpp -- libFuzzer target: arbitrary word lists and suffix
 * files through the compressor, and its lexicon read back (see
 * compress_fuzz_one.h).
 */
#include "fuzz/compress_fuzz_one.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    compressfuzz::runOne(data, size);
    return 0;
}
