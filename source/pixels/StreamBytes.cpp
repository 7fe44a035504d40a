// Writing past the cache.
#include "StreamBytes.h"

#include "VectorTargets.h"
#include "ZVLibInternal.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixels/StreamBytes.cpp"
#include <hwy/foreach_target.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

/// Streams whole lines; `target` starts one.
void Stream_Lines(uint8_t* HWY_RESTRICT target, uint8_t const* HWY_RESTRICT source, long lines)
{
    constexpr long lineBytes = 64;
#if ZV_HAS_VECTORS
    namespace hn = hwy::HWY_NAMESPACE;
    hn::CappedTag<uint8_t, lineBytes> const d;
    auto const step = static_cast<long>(hn::Lanes(d));
    for (long i = 0; i < lines * lineBytes; i += step)
        hn::Stream(hn::LoadU(d, source + i), d, target + i);
#else
    std::memcpy(target, source, static_cast<std::size_t>(lines * lineBytes));
#endif
}

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace Rows {
HWY_EXPORT(Stream_Lines);
}

bool Is_Beyond_Cache(long bytes)
{
    static long const cacheBytes = [] {
        constexpr long usual = 8L << 20;
        auto const known = static_cast<long>(OS_Cache_Size());
        return known > 0 ? known : usual;
    }();
    return bytes > cacheBytes;
}

void Stream_Bytes(void* target, void const* source, long bytes)
{
    using namespace Rows;
    constexpr long lineBytes = 64;
    auto* const to = static_cast<uint8_t*>(target);
    auto const* const from = static_cast<uint8_t const*>(source);
    long const misplaced = static_cast<long>(reinterpret_cast<uintptr_t>(to) % lineBytes);
    long const head = std::min(misplaced ? lineBytes - misplaced : 0, bytes);
    long const lines = (bytes - head) / lineBytes;
    long const streamed = head + lines * lineBytes;
    std::memcpy(to, from, static_cast<std::size_t>(head));
    HWY_DYNAMIC_DISPATCH(Stream_Lines)(to + head, from + head, lines);
    std::memcpy(to + streamed, from + streamed, static_cast<std::size_t>(bytes - streamed));
}

void Finish_Stream()
{
    hwy::FlushStream();
}

#endif
