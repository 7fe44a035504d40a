// Zeroed blocks that may fail: what a clip holds is sized by files and modules, so running out of memory is
// an answer here and no assertion.
#pragma once

#include "ZVLibInternal.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

/// `count` zeroed records, released by FreeMemZV; never null for a count of 0. Null when memory runs out, and
/// for a count that is negative or does not fit.
template <typename T> T* Alloc_Zeroed(long count)
{
    if (count < 0 || static_cast<unsigned long>(count) > PTRDIFF_MAX / sizeof(T)) return nullptr;
    unsigned long const size = static_cast<unsigned long>(count) * sizeof(T);
    void* block = Alloc_Aligned(size ? size : 1, alignof(std::max_align_t));
    if (block) std::memset(block, 0, size);
    return static_cast<T*>(block);
}

/// A copy of an array with its count; both stay as they are for an empty one. False when memory runs out.
template <typename T> bool Copy_Array(T const* source, long count, T*& out, long& outCount)
{
    if (count == 0) return true;
    out = Alloc_Zeroed<T>(count);
    if (!out) return false;
    std::copy_n(source, count, out);
    outCount = count;
    return true;
}
