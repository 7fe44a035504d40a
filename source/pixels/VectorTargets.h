// The instruction sets that pixel loops are compiled for, chosen among at run time. A file with such loops
// includes this header before those of Highway, names itself in HWY_TARGET_INCLUDE, and keeps them in a
// HWY_NAMESPACE: plain loops there are vectorised for the instruction set by the compiler, and where it does
// not do well, calls of Highway stand under ZV_HAS_VECTORS beside a plain loop that gives the same bits.
#pragma once

// Only what the tests can run: on x86 everything better than AVX2 (those targets are the lower bits), on ARM
// everything but NEON.
#define ZV_UNTESTED_TARGETS ((HWY_AVX2 - 1) | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128)

// Code with sanitizers in it takes minutes to compile for each of them, so there only the first and the last
// are left.
#if defined(ZV_SANITIZED)
#define HWY_DISABLED_TARGETS (ZV_UNTESTED_TARGETS | HWY_SSSE3 | HWY_SSE4)
#else
#define HWY_DISABLED_TARGETS ZV_UNTESTED_TARGETS
#endif

// False for the two targets that stand in for a missing instruction set: there the compiler's own code is
// faster than emulated vectors.
#define ZV_HAS_VECTORS (HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128)
