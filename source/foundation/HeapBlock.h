// Guards for what the library hands out: released on every way out of a function unless it was handed on by
// release().
#pragma once

#include "ZVMemory.h"

#include <memory>

/// Deleter that calls a function of the library.
template <auto function> struct Released_By {
    template <typename T> void operator()(T* object) const { function(object); }
};

/// A block of AllocMemZV.
template <typename T> using HeapBlock = std::unique_ptr<T, Released_By<FreeMemZV>>;
