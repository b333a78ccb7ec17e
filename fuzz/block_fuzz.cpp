/*
 * block_fuzz.cpp -- libFuzzer target: arbitrary text and options through the
 * block check and the edits at its cursor (see block_fuzz_one.h).
 */
#include "fuzz/block_fuzz_one.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    blockfuzz::runOne(data, size);
    return 0;
}
