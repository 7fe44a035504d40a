// What the tests of pixel work share: bitmaps that free themselves, fills, pixels read and written one bit at
// a time by the layout alone, and a run on every vector path.
#pragma once

#include "ZVBitmap.h"
#include "pixels/VectorTargets.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <hwy/targets.h>
#include <memory>
#include <random>
#include <span>
#include <vector>

namespace PixelTest {

inline constexpr std::array rgbaTypes = {ZV_BITMAP_RGBA8, ZV_BITMAP_RGBA10, ZV_BITMAP_RGBA12,
                                         ZV_BITMAP_RGBA16, ZV_BITMAP_RGBAFLOAT};
inline constexpr std::array monoTypes = {ZV_BITMAP_MONO8, ZV_BITMAP_MONO10, ZV_BITMAP_MONO12,
                                         ZV_BITMAP_MONO16, ZV_BITMAP_MONOFLOAT};
inline constexpr std::array nativeDepths = {16L, 24L, 32L};

struct BitmapDeleter {
    void operator()(ZVBitmap* bitmap) const { FreeBitmapZV(bitmap); }
    void operator()(ZVNativeBitmap* bitmap) const { FreeBitmapZV(bitmap); }
};
using BitmapPtr = std::unique_ptr<ZVBitmap, BitmapDeleter>;
using NativePtr = std::unique_ptr<ZVNativeBitmap, BitmapDeleter>;

/// A bitmap filled with one byte.
inline BitmapPtr Make_Bitmap(long width, long height, ZVBitmapType type, int byte = 0)
{
    BitmapPtr bitmap(AllocBitmapZV(width, height, type, nullptr));
    std::memset(bitmap->Pixels, byte, static_cast<std::size_t>(bitmap->Size));
    return bitmap;
}

/// A native bitmap filled with one byte, padding too. Depth 24 is cut out of an allocated one of 32 bits.
inline NativePtr Make_Native(long width, long height, long depth, int byte = 0)
{
    NativePtr bitmap(AllocNativeBitmapZV(width, height, depth));
    std::memset(bitmap->Pixels, byte, static_cast<std::size_t>(bitmap->Size));
    bitmap->Depth = static_cast<int32_t>(depth);
    bitmap->PackSize = static_cast<int32_t>(depth / 8);
    return bitmap;
}

/// All bytes of a bitmap's pixels.
template <typename Bitmap> std::span<unsigned char> Bytes(Bitmap const& bitmap)
{
    return {bitmap.Pixels, static_cast<std::size_t>(bitmap.Size)};
}

/// Random bits in every pixel, unused bits of 10- and 12-bit mono pixels excepted; a float pixel may hold
/// anything, infinities and NaN included.
inline void Fill_Random(std::span<unsigned char> bytes, unsigned seed)
{
    std::mt19937 random(seed);
    for (unsigned char& byte : bytes)
        byte = static_cast<unsigned char>(random());
}
inline void Fill_Random(ZVNativeBitmap& bitmap, unsigned seed)
{
    Fill_Random(Bytes(bitmap), seed);
}
inline void Fill_Random(ZVBitmap& bitmap, unsigned seed)
{
    Fill_Random(Bytes(bitmap), seed);
    if (bitmap.Type != ZV_BITMAP_MONO10 && bitmap.Type != ZV_BITMAP_MONO12) return;
    for (std::size_t high = 1; high < Bytes(bitmap).size(); high += 2)  // little-endian
        bitmap.Pixels[high] &= bitmap.Type == ZV_BITMAP_MONO10 ? 0x03 : 0x0F;
}

/// Float channels as pictures have them and as they must be survived: 0 to 1 in steps, beyond both ends, and
/// a few that are no numbers.
inline void Fill_Floats(ZVBitmap& bitmap, unsigned seed)
{
    static constexpr float odd[] = {-0.0F,
                                    -1e-30F,
                                    1e-40F,
                                    -3.0F,
                                    1.0000001F,
                                    300.0F,
                                    1e20F,
                                    -1e20F,
                                    std::numeric_limits<float>::infinity(),
                                    -std::numeric_limits<float>::infinity(),
                                    std::numeric_limits<float>::quiet_NaN()};
    std::mt19937 random(seed);
    auto* const channels = reinterpret_cast<float*>(bitmap.Pixels);
    for (long i = 0; i < bitmap.Size / 4; ++i) {
        auto const word = static_cast<unsigned>(random());
        channels[i] =
            word % 8 ? static_cast<float>(word >> 8) / 16777215.0F : odd[(word >> 3) % std::size(odd)];
    }
}

// Single pixels by the told layouts, independent of ZVPixel: packed pixels as a string of bits, highest
// first.

inline unsigned char* Pixel_Bytes(ZVBitmap const& bitmap, long x, long y)
{
    return bitmap.Pixels + (y * bitmap.Width + x) * bitmap.PackSize;
}

inline bool Is_Packed(ZVBitmapType type)
{
    return type == ZV_BITMAP_RGBA10 || type == ZV_BITMAP_RGBA12;
}

/// The raw value of a channel; for the float types its bit pattern.
inline uint32_t Get_Raw(ZVBitmap const& bitmap, long x, long y, long channel)
{
    unsigned char const* const pixel = Pixel_Bytes(bitmap, x, y);
    uint32_t value = 0;
    if (Is_Packed(bitmap.Type)) {
        long const bits = bitmap.Type == ZV_BITMAP_RGBA10 ? 10 : 12;
        for (long bit = channel * bits; bit < (channel + 1) * bits; ++bit)
            value = value << 1 | (pixel[bit / 8] >> (7 - bit % 8) & 1U);
        return value;
    }
    long const size = bitmap.PackSize / GetChannelsZV(&bitmap);
    std::memcpy(&value, pixel + channel * size, static_cast<std::size_t>(size));  // little-endian
    return value;
}

inline void Set_Raw(ZVBitmap& bitmap, long x, long y, long channel, uint32_t value)
{
    unsigned char* const pixel = Pixel_Bytes(bitmap, x, y);
    if (Is_Packed(bitmap.Type)) {
        long const bits = bitmap.Type == ZV_BITMAP_RGBA10 ? 10 : 12;
        for (long bit = (channel + 1) * bits; bit-- > channel * bits; value >>= 1) {
            unsigned const mask = 0x80U >> bit % 8;
            pixel[bit / 8] = static_cast<unsigned char>((pixel[bit / 8] & ~mask) | (value & 1 ? mask : 0));
        }
        return;
    }
    long const size = bitmap.PackSize / GetChannelsZV(&bitmap);
    std::memcpy(pixel + channel * size, &value, static_cast<std::size_t>(size));
}

inline float Get_Float(ZVBitmap const& bitmap, long x, long y, long channel)
{
    return std::bit_cast<float>(Get_Raw(bitmap, x, y, channel));
}

inline void Set_Float(ZVBitmap& bitmap, long x, long y, long channel, float value)
{
    Set_Raw(bitmap, x, y, channel, std::bit_cast<uint32_t>(value));
}

/// A native pixel's word: 16 bits, or 24 or 32 bits with red in bits 16 to 23.
inline uint32_t Get_Native(ZVNativeBitmap const& bitmap, long x, long y)
{
    uint32_t word = 0;
    std::memcpy(&word, bitmap.Pixels + bitmap.Offset + y * bitmap.RowBytes + x * bitmap.PackSize,
                static_cast<std::size_t>(bitmap.PackSize));
    return word;
}

inline void Set_Native(ZVNativeBitmap& bitmap, long x, long y, uint32_t word)
{
    std::memcpy(bitmap.Pixels + bitmap.Offset + y * bitmap.RowBytes + x * bitmap.PackSize, &word,
                static_cast<std::size_t>(bitmap.PackSize));
}

/// Runs a check on every vector path that this processor has.
template <typename Check> void On_Each_Target(Check&& check)
{
    for (int64_t const target : hwy::SupportedAndGeneratedTargets()) {
        SCOPED_TRACE(hwy::TargetName(target));
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        check();
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

}  // namespace PixelTest
