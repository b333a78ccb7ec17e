/*
 * pipe_fuzz.cpp -- libFuzzer target: arbitrary lines through the ispell pipe
 * of the orto program (see pipe_fuzz_one.h).
 */
#include "fuzz/pipe_fuzz_one.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    pipefuzz::runOne(data, size);
    return 0;
}
