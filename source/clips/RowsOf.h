// What the alpha and field operations share: whether a bitmap is of the class it came as, and its rows.
#pragma once

#include "ZVBitmap.h"

#include <type_traits>

/// Whether a bitmap has pixels of the class of `Buffer`, one of the RGBA ones. A caller may hand any bitmap
/// to the instance of another type.
template <typename Buffer> bool Is_Of(ZVBitmap const* bitmap)
{
    using Pixel = typename Buffer::PixelType;
    constexpr ZVBitmapType type = Pixel::bits == 8    ? ZV_BITMAP_RGBA8
                                  : Pixel::bits == 10 ? ZV_BITMAP_RGBA10
                                  : Pixel::bits == 12 ? ZV_BITMAP_RGBA12
                                  : Pixel::bits == 16 ? ZV_BITMAP_RGBA16
                                                      : ZV_BITMAP_RGBAFLOAT;
    return bitmap && bitmap->Pixels && bitmap->Type == type;
}

/// Whether two bitmaps have pixels of one type and are of one size.
inline bool Are_Alike(ZVBitmap const* a, ZVBitmap const* b)
{
    return a && b && a->Pixels && b->Pixels && a->Type == b->Type && a->Width == b->Width &&
           a->Height == b->Height;
}

inline unsigned char* Row_Of(ZVBitmap const& bitmap, long y)
{
    return bitmap.Pixels + y * bitmap.RowBytes;
}
