// Memory for pixels. Blocks from a size on are locked in memory as far as the user's limit allows, so that
// playback does not fault, and the ones freed last are kept for the next allocation of their size: the kernel
// clears fresh pages at a cost above that of filling them.
#include "ZVBitmap.h"
#include "ZVLibInternal.h"

#include <mutex>
#include <utility>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZV_ADDRESS_SANITIZER 1
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define ZV_ADDRESS_SANITIZER 1
#endif

namespace {

constexpr long residentSize = 640 * 480;  // blocks of this size and above are locked

constexpr long hugePageSize = 2 << 20;

// Pages are locked whole, so no two locked blocks may share one: the largest page of the machines we run on.
constexpr long lockAlignment = 64 << 10;

#if defined(ZV_ADDRESS_SANITIZER)
constexpr long keptBlocks = 0;  // a freed block must be poisoned, or its use goes unseen
#else
constexpr long keptBlocks = 4;
#endif
constexpr long keptBytes = 128L << 20;  // four buffers of 1080p at 128 bits a pixel

/// Stands in the first bytes of a kept block.
struct KeptBlock {
    KeptBlock* next;
    long length;
};

std::mutex keptMutex;
constinit KeptBlock* keptFirst = nullptr;  // the one freed last

/// Takes a block of exactly this length out of the kept ones; null when there is none.
void* Take_Kept_Block(long length)
{
    std::lock_guard const guard(keptMutex);
    for (KeptBlock** link = &keptFirst; *link; link = &(*link)->next)
        if ((*link)->length == length) return std::exchange(*link, (*link)->next);
    return nullptr;
}

/// Frees a chain of blocks that is no longer kept; false when there is none.
bool Free_Kept_Chain(KeptBlock* first)
{
    bool const isAny = first;
    while (first)
        FreeMemZV(std::exchange(first, first->next));
    return isAny;
}

/// Takes over a block of at least residentSize bytes, and frees the oldest ones beyond the bounds.
void Keep_Block(void* block, long length)
{
    KeptBlock* tooMany = nullptr;
    {
        std::lock_guard const guard(keptMutex);
        keptFirst = new (block) KeptBlock{keptFirst, length};
        long count = 0, bytes = 0;
        for (KeptBlock** link = &keptFirst; *link; link = &(*link)->next) {
            bytes += (*link)->length;
            if (++count <= keptBlocks && bytes <= keptBytes) continue;
            tooMany = std::exchange(*link, nullptr);
            break;
        }
    }
    Free_Kept_Chain(tooMany);
}

void* Fresh_Block(long length)
{
    bool const isHuge = length >= hugePageSize;
    auto const allocate = [=] {
        return Alloc_Aligned(static_cast<unsigned long>(length),
                             static_cast<unsigned long>(isHuge ? hugePageSize : lockAlignment));
    };
    void* block = allocate();
    if (!block && Empty_Block_Cache()) block = allocate();
    if (!block) Assert_Fail("Bitmap", __LINE__);
    if (isHuge) OS_Advise_Huge_Pages(block, static_cast<unsigned long>(length));
    return block;
}

/// Whether the memory that the process leaves of the machine's has fallen below the reserve. A process larger
/// than the machine's size as the environment holds it, which is capped, is no sign of that: the difference
/// wraps.
bool Is_Reserve_Reached()
{
    uint64_t const reserve = ZVEnv ? ZVEnv->residentLimit : 0;
    return reserve != 0 && AvailableMemoryZV(ZV_MEM_TOTAL) - GetAppMemUsageZV() < reserve;
}

bool Is_Resident(long length, bool always)
{
    return always || length >= residentSize;
}

}  // namespace

bool Empty_Block_Cache()
{
    KeptBlock* first = nullptr;
    {
        std::lock_guard const guard(keptMutex);
        std::swap(first, keptFirst);
    }
    return Free_Kept_Chain(first);
}

void* AllocateResidentBlock(long length, bool always)
{
    if (length < 0) return nullptr;
    auto const size = static_cast<unsigned long>(length);
    if (!Is_Resident(length, always)) return AllocMemZV(size, 0);
    void* block = Take_Kept_Block(length);
    if (!block) block = Fresh_Block(length);
    if (Is_Reserve_Reached() && call_newhandler_zvlib(size) == 0) {
        UserMessageZV("Maximum available memory reached");
        return block;
    }
    if (OS_Lock_Pages(block, size) < 0) {
        FreeMemZV(block);
        Assert_Fail("Bitmap", __LINE__);
    }
    return block;
}

void DeallocateResidentBlock(void* block, long length, bool always)
{
    if (!block) return;
    if (Is_Resident(length, always) && !OS_Unlock_Pages(block, static_cast<unsigned long>(length)))
        Assert_Fail("Bitmap", __LINE__);
    if (length >= residentSize)
        Keep_Block(block, length);
    else
        FreeMemZV(block);
}
