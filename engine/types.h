/*
 * types.h -- widths and fixed sizes shared by every part of the engine.
 *
 * The sizes are part of the behaviour: a word is cut at 63 characters
 * because every working copy is a 64-byte buffer, a path at 515.
 */
#ifndef ORTO_ENGINE_TYPES_H
#define ORTO_ENGINE_TYPES_H

#include <stddef.h>
#include <stdint.h>

typedef int16_t i16;
typedef uint16_t u16;
typedef int32_t i32;
typedef uint32_t u32;

constexpr int MaxSessions = 16; /* sessions in a process, ids 0..15 */
constexpr int MaxLexicons = 32; /* lexicon slots in a session, ids 0..31 */
constexpr int MaxBlocks = 4;    /* block slots in a session, ids 0..3 */
constexpr int WordSize = 64;    /* every working copy of a word */
constexpr int PathSize = 516;   /* file names */
constexpr int LabelSize = 81;   /* dialog labels */

/* Keep the happy path readable: pass a negative code straight up. */
#define RETURN_IF_NEG(expr)            \
    do {                               \
        long orto_rc_ = (long)(expr);  \
        if (orto_rc_ < 0)              \
            return (i16)orto_rc_;      \
    } while (0)

#endif
