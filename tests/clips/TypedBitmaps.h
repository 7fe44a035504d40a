// What tests of the typed operations of clips share: calls by the class of a bitmap, and channels as numbers.
#pragma once

#include "pixels/PixelTestTools.h"

namespace PixelTest {

/// Calls `work` with a bitmap of an RGBA type as its own class.
template <typename Work> void Visit_Typed(ZVBitmap* bitmap, Work work)
{
    switch (bitmap->Type) {
    case ZV_BITMAP_RGBA8: return work(static_cast<ZVBufferRGBA8*>(bitmap));
    case ZV_BITMAP_RGBA10: return work(static_cast<ZVBufferRGBA10*>(bitmap));
    case ZV_BITMAP_RGBA12: return work(static_cast<ZVBufferRGBA12*>(bitmap));
    case ZV_BITMAP_RGBA16: return work(static_cast<ZVBufferRGBA16*>(bitmap));
    case ZV_BITMAP_RGBAFLOAT: return work(static_cast<ZVBufferRGBAFloat*>(bitmap));
    default: return;  // there is no instance to call
    }
}

inline bool Is_Float(ZVBitmapType type)
{
    return type == ZV_BITMAP_RGBAFLOAT;
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

inline BitmapPtr Copy_Of(ZVBitmap const& bitmap)
{
    BitmapPtr copy = PixelTest::Make_Bitmap(bitmap.Width, bitmap.Height, bitmap.Type);
    std::memcpy(copy->Pixels, bitmap.Pixels, static_cast<std::size_t>(bitmap.Size));
    return copy;
}

}  // namespace PixelTest
