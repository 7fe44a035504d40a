// Bitmaps of the size that benchmarks work on, and copies of as many bytes to measure them by.
#pragma once

#include "ZVBitmap.h"

#include <cstring>
#include <memory>

namespace Bench {

inline constexpr long width = 1920, height = 1080;

struct Deleter {
    void operator()(ZVBitmap* bitmap) const { FreeBitmapZV(bitmap); }
    void operator()(ZVNativeBitmap* bitmap) const { FreeBitmapZV(bitmap); }
};
using BitmapPtr = std::shared_ptr<ZVBitmap>;
using NativePtr = std::shared_ptr<ZVNativeBitmap>;

/// The RGBA types as benchmarks name them.
struct Type {
    char const* name;
    ZVBitmapType type;
};
inline constexpr Type types[] = {{"8", ZV_BITMAP_RGBA8},
                                 {"10", ZV_BITMAP_RGBA10},
                                 {"12", ZV_BITMAP_RGBA12},
                                 {"16", ZV_BITMAP_RGBA16},
                                 {"float", ZV_BITMAP_RGBAFLOAT}};

/// Its pixels are written once, so that they are in memory.
inline BitmapPtr Make_Bitmap(ZVBitmapType type, long w = width, long h = height)
{
    BitmapPtr const bitmap(AllocBitmapZV(w, h, type, nullptr), Deleter());
    std::memset(bitmap->Pixels, 0x11, static_cast<std::size_t>(bitmap->Size));
    return bitmap;
}

inline NativePtr Make_Native(long depth)
{
    NativePtr const bitmap(AllocNativeBitmapZV(width, height, depth), Deleter());
    bitmap->Depth = static_cast<int32_t>(depth);
    bitmap->PackSize = static_cast<int32_t>(depth / 8);
    return bitmap;
}

/// A memcpy that reads and writes so many bytes together, in memory of the same kind.
inline auto Make_Memcpy(long bytesReadAndWritten)
{
    long const half = bytesReadAndWritten / 2;
    return [half, from = Make_Bitmap(ZV_BITMAP_MONO8, half, 1), to = Make_Bitmap(ZV_BITMAP_MONO8, half, 1)] {
        std::memcpy(to->Pixels, from->Pixels, static_cast<std::size_t>(half));
    };
}

}  // namespace Bench
