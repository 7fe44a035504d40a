// A guard for blocks of AllocMemZV: freed on every way out of a function unless they were handed on by
// release().
#pragma once

#include "ZVMemory.h"

#include <memory>

struct Free_Mem {
    void operator()(void* block) const { FreeMemZV(block); }
};
template <typename T> using HeapBlock = std::unique_ptr<T, Free_Mem>;
