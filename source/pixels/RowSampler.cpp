// Taking pixels out of a row at even steps.
#include "RowSampler.h"

#include "VectorTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixels/RowSampler.cpp"
#include <hwy/foreach_target.h>

#include <algorithm>
#include <cstring>
#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

#if ZV_HAS_VECTORS

/// Copies blocks of pixels: a shuffle takes them out of WINDOWS vectors, and the next block overwrites what
/// is left of the vector that is stored.
template <int WINDOWS>
void Sample_Windows(ZVSampleBlocks blocks, uint8_t const* row, uint8_t const* next, uint8_t* target)
{
    namespace hn = hwy::HWY_NAMESPACE;
    hn::FixedTag<uint8_t, 16> const d;
    for (long i = 0; i < blocks.count; ++i) {
        uint8_t const* const from = row + blocks.offsets[i];
        uint8_t const* const shuffle = blocks.shuffles + i * WINDOWS * 16;
        hwy::Prefetch(next + blocks.offsets[i]);
        auto pixels = hn::TableLookupBytesOr0(hn::LoadU(d, from), hn::LoadU(d, shuffle));
        if constexpr (WINDOWS == 2)
            pixels =
                hn::Or(pixels, hn::TableLookupBytesOr0(hn::LoadU(d, from + 16), hn::LoadU(d, shuffle + 16)));
        hn::StoreU(pixels, d, target);
        target += blocks.bytes;
    }
}

/// Tells how many blocks were copied.
long Sample_Blocks(ZVSampleBlocks blocks, uint8_t const* row, uint8_t const* next, uint8_t* target)
{
    if (blocks.windows == 1)
        Sample_Windows<1>(blocks, row, next, target);
    else
        Sample_Windows<2>(blocks, row, next, target);
    return blocks.count;
}

#else

long Sample_Blocks(ZVSampleBlocks /*blocks*/, uint8_t const* /*row*/, uint8_t const* /*next*/,
                   uint8_t* /*target*/)
{
    return 0;
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace Rows {
HWY_EXPORT(Sample_Blocks);
}

namespace {

constexpr long windowBytes = 16;

template <typename T> HeapBlock<T> Alloc_Table(long count)
{
    return HeapBlock<T>(static_cast<T*>(AllocMemZV(static_cast<unsigned long>(count) * sizeof(T), 0)));
}

template <int PACK>
void Sample_Single(int32_t const* offsets, long count, uint8_t const* row, uint8_t const* next,
                   uint8_t* target)
{
#pragma GCC unroll 4
    for (long i = 0; i < count; ++i) {
        hwy::Prefetch(next + offsets[i]);
        std::memcpy(target + i * PACK, row + offsets[i], PACK);
    }
}

}  // namespace

RowSampler::RowSampler(long packSize, long position, long step, long count, long rowPixels)
    : packSize_(packSize), count_(count), isRun_(step == ZV_SCALE_ONE), offsets_(Alloc_Table<int32_t>(count))
{
    for (long i = 0; i < count; ++i, position += step)
        offsets_.get()[i] = static_cast<int32_t>((position >> 16) * packSize);
    bool const isNarrow = step >= 0 && step <= 2 * ZV_SCALE_ONE;
    if (!isRun_ && isNarrow && 2 * packSize <= windowBytes)
        Plan_Blocks(step <= ZV_SCALE_ONE ? 1 : 2, rowPixels);
}

void RowSampler::Plan_Blocks(long windows, long rowPixels)
{
    long const pixels = windowBytes / packSize_;
    long const bytes = pixels * packSize_;
    // Each block loads all its windows and stores a whole vector; what cannot is left to single pixels.
    long const lastLoad = rowPixels * packSize_ - windows * windowBytes;
    long const lastStore = count_ * packSize_ - windowBytes;
    long const most = lastStore >= 0 ? lastStore / bytes + 1 : 0;
    blockOffsets_ = Alloc_Table<int32_t>(most);
    shuffles_ = Alloc_Table<uint8_t>(most * windows * windowBytes);
    long count = 0;
    for (; count < most; ++count) {
        int32_t const* const wanted = offsets_.get() + count * pixels;
        if (wanted[0] > lastLoad) break;
        blockOffsets_.get()[count] = wanted[0];
        uint8_t* const shuffle = shuffles_.get() + count * windows * windowBytes;
        std::memset(shuffle, 0x80, static_cast<std::size_t>(windows * windowBytes));
        uint8_t* slot = shuffle;
        for (long i = 0; i < pixels; ++i)
            for (long from = wanted[i] - wanted[0], end = from + packSize_; from < end; ++from, ++slot)
                slot[from & ~(windowBytes - 1)] = static_cast<uint8_t>(from & (windowBytes - 1));
    }
    blocks_ = {blockOffsets_.get(), shuffles_.get(), windows, count, bytes};
}

void RowSampler::Sample(unsigned char const* row, unsigned char const* next, unsigned char* target) const
{
    using namespace Rows;
    if (isRun_) {
        std::memcpy(target, row + offsets_.get()[0], static_cast<std::size_t>(count_ * packSize_));
        return;
    }
    long done = 0;
    if (blocks_.count)
        done = HWY_DYNAMIC_DISPATCH(Sample_Blocks)(blocks_, row, next, target) * blocks_.bytes / packSize_;
    int32_t const* const offsets = offsets_.get() + done;
    long const count = count_ - done;
    target += done * packSize_;
    switch (packSize_) {
    case 1: Sample_Single<1>(offsets, count, row, next, target); break;
    case 2: Sample_Single<2>(offsets, count, row, next, target); break;
    case 3: Sample_Single<3>(offsets, count, row, next, target); break;
    case 4: Sample_Single<4>(offsets, count, row, next, target); break;
    case 5: Sample_Single<5>(offsets, count, row, next, target); break;
    case 6: Sample_Single<6>(offsets, count, row, next, target); break;
    case 8: Sample_Single<8>(offsets, count, row, next, target); break;
    default: Sample_Single<16>(offsets, count, row, next, target); break;
    }
}

#endif
