// Rows of pixels in another format: the one place where a channel changes its depth. Copy, scale and whatever
// else needs pixels of another type stand on it.
#pragma once

#include "ZVBitmap.h"

/// The formats of a row that convert: the RGBA types under their bitmap numbers, and the native layouts.
enum ZVRowFormat : uint8_t {
    ROW_NONE = 0,
    ROW_RGBA8 = ZV_BITMAP_RGBA8,
    ROW_RGBA10 = ZV_BITMAP_RGBA10,
    ROW_RGBA12 = ZV_BITMAP_RGBA12,
    ROW_RGBA16 = ZV_BITMAP_RGBA16,
    ROW_RGBAFLOAT = ZV_BITMAP_RGBAFLOAT,
    ROW_NATIVE16,
    ROW_NATIVE24,
    ROW_NATIVE32
};

/// Format of a bitmap's rows; ROW_NONE for a type or depth without conversions: the mono types, 8 bits.
ZV_API ZVRowFormat Row_Format(ZVBitmapType type);
ZV_API ZVRowFormat Row_Format(ZVNativeBitmap const& bitmap);

/// Bytes of a pixel; 0 for ROW_NONE.
ZV_API long Row_Pack_Size(ZVRowFormat format);

/// Converts `count` pixels that stand side by side. Both rows may lie at any address; they must not overlap.
/// Nothing beyond the pixels is read or written, and the pad byte of a 32-bit native pixel stays as it is.
using ZVRowConverter = void (*)(void const* source, void* target, long count);

/// The converter for two formats, equal ones included, compiled for the best instruction set of this
/// processor; null when one is ROW_NONE. Ask for it once, outside the loop over rows.
///
/// Between RGBA types integers widen by the ratio of the maxima, truncated, and narrow by dropping bits. From
/// float, 8 bits truncate and the others round halves to even; colours are clamped to 0 to 1 and so is an
/// 8-bit alpha, while the alpha of 10, 12 and 16 bits keeps the low bits of f_round; NaN becomes 0. Native
/// components are 8-bit ones; those of a native source are shifted up into 10 and 12 bits, alpha (255)
/// likewise.
ZV_API ZVRowConverter Get_Row_Converter(ZVRowFormat from, ZVRowFormat to);
inline ZVRowConverter Get_Row_Converter(ZVBitmapType from, ZVBitmapType to)
{
    return Get_Row_Converter(Row_Format(from), Row_Format(to));
}
