// The desktop layer stands on code that throws when memory runs out. What the library promises of it, an
// answer of nothing with error 1, is made here.
#pragma once

#include "ZVMemory.h"

#include <new>

/// What `work` answers; 0, null, false or an empty record with error 1 when memory runs out in it.
template <typename Work> auto Guarded(Work&& work) -> decltype(work())
{
    try {
        return work();
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
    }
    return decltype(work())();
}
