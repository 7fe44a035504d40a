// Moving many rows of pixels: raw, or through a row converter.
#pragma once

#include "ConvertRows.h"

/// Pixels to read: the first of the first row, and the bytes from one row to the next.
struct ZVSourceRows {
    unsigned char const* first;
    long rowBytes;
};

/// Pixels to write.
struct ZVTargetRows {
    unsigned char* first;
    long rowBytes;
};

/// The rows of a bitmap from pixel (x, y) on.
inline ZVSourceRows Source_Rows(ZVBitmap const& bitmap, long x, long y)
{
    return {bitmap.Pixels + (y * bitmap.Width + x) * bitmap.PackSize, long{bitmap.Width} * bitmap.PackSize};
}
inline ZVSourceRows Source_Rows(ZVNativeBitmap const& bitmap, long x, long y)
{
    return {bitmap.Pixels + bitmap.Offset + y * bitmap.RowBytes + x * bitmap.PackSize, bitmap.RowBytes};
}
template <typename Bitmap> ZVTargetRows Target_Rows(Bitmap& bitmap, long x, long y)
{
    ZVSourceRows const rows = Source_Rows(bitmap, x, y);
    return {bitmap.Pixels + (rows.first - bitmap.Pixels), rows.rowBytes};
}

/// Copies `height` rows of `bytes` bytes. Source and target may overlap when their rows are equally far
/// apart.
void Copy_Rows(ZVSourceRows source, ZVTargetRows target, long bytes, long height);

/// Converts `height` rows of `width` pixels; nothing when a format has no conversions. No overlap.
void Convert_Rows(ZVSourceRows source, ZVRowFormat from, ZVTargetRows target, ZVRowFormat to, long width,
                  long height);
