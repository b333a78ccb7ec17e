/*
 * ini_fuzz.cpp -- libFuzzer target: arbitrary bytes as an INI file, read
 * and written in memory (see ini_fuzz_one.h).
 */
#include "fuzz/ini_fuzz_one.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    inifuzz::runOne(data, size);
    return 0;
}
