// Heap blocks. A failed allocation asks the application's new-handler for memory once, and is tried once
// more.
#include "ZVMemory.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

static std::atomic<ZVNewHandler> newHandler{nullptr};

namespace {
/// How an allocation ended: with a block, or null and which of the two failures it was.
struct Outcome {
    void* block;
    bool handlerGaveUp;
};
}  // namespace

template <typename Allocate> static Outcome Allocate_With_Retry(unsigned long size, Allocate allocate)
{
    if (void* block = allocate()) return {block, false};
    if (!call_newhandler_zvlib(size)) return {nullptr, true};
    return {allocate(), false};
}

void* AllocMemZV(unsigned long size, unsigned long flags)
{
    Outcome const outcome = Allocate_With_Retry(
        size, [=] { return flags & ZV_MEM_CLEAR ? std::calloc(size, 1) : std::malloc(size); });
    // The place of an assertion is part of its message; these two are fixed for all builds.
    if (!outcome.block) Assert_Fail("Memory", outcome.handlerGaveUp ? 124 : 132);
    return outcome.block;
}

void* Alloc_Aligned(unsigned long size, unsigned long alignment)
{
    auto const allocate = [size, alignment = std::max(alignment, sizeof(void*))]() -> void* {
        void* block = nullptr;
        return posix_memalign(&block, alignment, size) == 0 ? block : nullptr;
    };
    return Allocate_With_Retry(size, allocate).block;
}

void FreeMemZV(void* block)
{
    std::free(block);
}

uint64_t AvailableMemoryZV(unsigned long flags)
{
    // The heap grows into whatever is free, so the largest block and the free memory are the same.
    if (flags & ZV_MEM_LARGEST) return OS_Free_Memory();
    if (flags & ZV_MEM_TOTAL) return ZVEnv ? ZVEnv->physicalMemory : 0;
    return OS_Free_Memory();
}

ZVNewHandler set_new_handler(ZVNewHandler handler)
{
    return newHandler.exchange(handler);
}

long call_newhandler_zvlib(unsigned long size)
{
    ZVNewHandler const handler = newHandler.load();
    return handler && handler(size);
}
