// What the tests of pixel work share: bitmaps that free themselves, fills, pixels read and written one bit at
// a time by the layout alone, comparisons, and a run on every vector path.
#pragma once

#include "ZVBitmap.h"
#include "pixels/ConvertRows.h"
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
inline constexpr std::array allTypes = {
    ZV_BITMAP_RGBA8, ZV_BITMAP_RGBA10, ZV_BITMAP_RGBA12, ZV_BITMAP_RGBA16, ZV_BITMAP_RGBAFLOAT,
    ZV_BITMAP_MONO8, ZV_BITMAP_MONO10, ZV_BITMAP_MONO12, ZV_BITMAP_MONO16, ZV_BITMAP_MONOFLOAT};
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

/// Whether all bytes of a bitmap's pixels are one.
template <typename Bitmap> bool Is_All(Bitmap const& bitmap, int byte)
{
    return std::ranges::all_of(Bytes(bitmap), [=](int each) { return each == byte; });
}

template <typename Bitmap> bool Are_Equal(Bitmap const& a, Bitmap const& b)
{
    return std::ranges::equal(Bytes(a), Bytes(b));
}

inline BitmapPtr Copy_Of(ZVBitmap const& bitmap)
{
    BitmapPtr copy = Make_Bitmap(bitmap.Width, bitmap.Height, bitmap.Type);
    std::ranges::copy(Bytes(bitmap), copy->Pixels);
    return copy;
}
inline NativePtr Copy_Of(ZVNativeBitmap const& bitmap)
{
    NativePtr copy = Make_Native(bitmap.Width, bitmap.Height, bitmap.Depth);
    std::ranges::copy(Bytes(bitmap), copy->Pixels);
    return copy;
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

/// A bitmap of random pixels.
inline BitmapPtr Make_Random(long width, long height, ZVBitmapType type, unsigned seed)
{
    BitmapPtr bitmap = Make_Bitmap(width, height, type);
    Fill_Random(*bitmap, seed);
    return bitmap;
}
inline NativePtr Make_Random_Native(long width, long height, long depth, unsigned seed)
{
    NativePtr bitmap = Make_Native(width, height, depth);
    Fill_Random(*bitmap, seed);
    return bitmap;
}

/// A bitmap of any format, behind one face: the ten types under their numbers, then the native depths.
struct Picture {
    static constexpr int native16 = ZV_BITMAP_MONOFLOAT + 1, kinds = native16 + 2;

    BitmapPtr bitmap;
    NativePtr native;

    Picture(int kind, long width, long height, int byte = 0)
    {
        if (kind < native16)
            bitmap = Make_Bitmap(width, height, static_cast<ZVBitmapType>(kind), byte);
        else
            native =
                Make_Native(width, height, nativeDepths[static_cast<std::size_t>(kind - native16)], byte);
    }
    std::span<unsigned char> All() const { return native ? Bytes(*native) : Bytes(*bitmap); }
    long Width() const { return native ? native->Width : bitmap->Width; }
    long Height() const { return native ? native->Height : bitmap->Height; }
    long Pack() const { return native ? native->PackSize : bitmap->PackSize; }
    ZVRowFormat Format() const { return native ? Row_Format(*native) : Row_Format(bitmap->Type); }
    unsigned char* Pixel(long x, long y) const
    {
        return native ? native->Pixels + y * native->RowBytes + x * Pack()
                      : bitmap->Pixels + y * bitmap->RowBytes + x * Pack();
    }
};

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

inline bool Is_Float(ZVBitmapType type)
{
    return GetBitsPerChannelZV(type) == 32;
}

/// The maximum of a channel; 1 for float.
inline long Max_Of(ZVBitmapType type)
{
    return Is_Float(type) ? 1 : (1L << GetBitsPerChannelZV(type)) - 1;
}

/// A channel as a number: integers whole, floats as they are.
inline double Number_Of(ZVBitmap const& bitmap, long x, long y, long channel)
{
    uint32_t const raw = Get_Raw(bitmap, x, y, channel);
    return Is_Float(bitmap.Type) ? static_cast<double>(std::bit_cast<float>(raw)) : raw;
}

inline void Set_Number(ZVBitmap& bitmap, long x, long y, long channel, double value)
{
    Set_Raw(bitmap, x, y, channel,
            Is_Float(bitmap.Type) ? std::bit_cast<uint32_t>(static_cast<float>(value))
                                  : static_cast<uint32_t>(value));
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

/// Compares every raw channel with `expected(x, y, channel)`, and shows the first that differs.
template <typename Expected> void Expect_Channels(ZVBitmap const& bitmap, Expected expected)
{
    for (long y = 0; y < bitmap.Height; ++y)
        for (long x = 0; x < bitmap.Width; ++x)
            for (long channel = 0; channel < GetChannelsZV(&bitmap); ++channel)
                ASSERT_EQ(Get_Raw(bitmap, x, y, channel), expected(x, y, channel))
                    << "type " << int{bitmap.Type} << " at " << x << ", " << y << ", channel " << channel;
}

/// The same for the words of a native bitmap and `expected(x, y)`.
template <typename Expected> void Expect_Words(ZVNativeBitmap const& bitmap, Expected expected)
{
    for (long y = 0; y < bitmap.Height; ++y)
        for (long x = 0; x < bitmap.Width; ++x)
            ASSERT_EQ(Get_Native(bitmap, x, y), expected(x, y))
                << "depth " << bitmap.Depth << " at " << x << ", " << y;
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
