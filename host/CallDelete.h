// Owners of what a C library hands out.
#pragma once

#include <memory>

/// Deletes by one function of a C library.
template <auto function> struct CallDelete {
    template <typename T> void operator()(T* object) const { function(object); }
};
template <typename T, auto function> using Handle = std::unique_ptr<T, CallDelete<function>>;
