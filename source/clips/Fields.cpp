// Frames of two fields: one field rebuilt from the other, both softened into each other, and frames weighed
// into an average. The arithmetic of rows is in pixels/RowMath.h; here stands which rows it mixes.
#include "RowsOf.h"
#include "ZVLibInternal.h"
#include "foundation/HeapBlock.h"
#include "pixels/RowMath.h"

#include <cstring>
#include <memory>

namespace {

using RowBlock = HeapBlock<void>;

void Copy_Row(ZVBitmap& bitmap, long from, long to)
{
    std::memcpy(Row_Of(bitmap, to), Row_Of(bitmap, from), static_cast<std::size_t>(bitmap.RowBytes));
}

/// Rebuilds every second row from `first` on out of its neighbours; a row at an edge copies its only one.
void Rebuild_Field(ZVBitmap* bitmap, long first)
{
    if (!bitmap || !bitmap->Pixels || bitmap->Height < 2) return;
    ZVRowMath const* const math = Get_Row_Math(bitmap->Type);
    if (!math) return;
    long const last = bitmap->Height - 1;
    for (long y = first; y <= last; y += 2) {
        if (y == 0)
            Copy_Row(*bitmap, 1, 0);
        else if (y == last)
            Copy_Row(*bitmap, last - 1, last);
        else
            math->average(Row_Of(*bitmap, y - 1), Row_Of(*bitmap, y + 1), Row_Of(*bitmap, y), bitmap->Width);
    }
}

void Smooth_Rows(ZVBitmap& bitmap)
{
    if (bitmap.Height < 2) return;
    auto const rowBytes = static_cast<std::size_t>(bitmap.RowBytes);
    RowBlock const block(Alloc_Aligned(2 * rowBytes, 64));
    if (!block) return;
    auto* const held = static_cast<unsigned char*>(block.get());  // what the row above becomes
    unsigned char* const lowest = held + rowBytes;
    ZVRowMath const& math = *Get_Row_Math(bitmap.Type);
    long const last = bitmap.Height - 1;
    math.average(Row_Of(bitmap, 0), Row_Of(bitmap, 1), held, bitmap.Width);
    for (long y = 1; y < last; ++y)
        math.smooth(Row_Of(bitmap, y - 1), Row_Of(bitmap, y), Row_Of(bitmap, y + 1), held, bitmap.Width);
    math.average(Row_Of(bitmap, last - 1), Row_Of(bitmap, last), lowest, bitmap.Width);
    std::memcpy(Row_Of(bitmap, last - 1), held, rowBytes);
    std::memcpy(Row_Of(bitmap, last), lowest, rowBytes);
}

long Pixels_Of(ZVBitmap const& bitmap)
{
    return static_cast<long>(bitmap.Width) * bitmap.Height;
}

void Weigh_Rows(ZVBitmap const& source, ZVBitmap& destination, double weight, bool isAdded)
{
    ZVRowMath const& math = *Get_Row_Math(source.Type);
    auto const weigh = isAdded ? math.addWeighed : math.weigh;
    ZVRowWeight const rowWeight(weight, source.Type, Pixels_Of(source));
    for (long y = 0; y < source.Height; ++y)
        weigh(Row_Of(source, y), rowWeight, Row_Of(destination, y), source.Width);
}

void Weigh_Field_Rows(ZVBitmap const& source, ZVBitmap& destination, ZVClip const* clip, double first,
                      double second, bool isAdded)
{
    if (!clip || source.Height < 2) return;
    ZVRowMath const& math = *Get_Row_Math(source.Type);
    auto const mix = isAdded ? math.addFields : math.mixFields;
    bool const isLowerFirst = clip->FieldOrder == ZV_FIELDS_LOWER_FIRST;
    ZVRowWeight const upper(isLowerFirst ? second : first, source.Type, Pixels_Of(source));
    ZVRowWeight const lower(isLowerFirst ? first : second, source.Type, Pixels_Of(source));
    long const last = source.Height - 1;
    for (long y = 0; y <= last; ++y) {
        // At the edges the other field has one neighbour, whose average with itself it is.
        unsigned char const* const above = Row_Of(source, y > 0 ? y - 1 : 1);
        unsigned char const* const below = Row_Of(source, y < last ? y + 1 : last - 1);
        mix(Row_Of(source, y), above, below, y % 2 ? lower : upper, y % 2 ? upper : lower,
            Row_Of(destination, y), source.Width);
    }
}

}  // namespace

void Interpolate_Lower_Field(ZVBitmap* bitmap)
{
    Rebuild_Field(bitmap, 1);
}

void Interpolate_Upper_Field(ZVBitmap* bitmap)
{
    Rebuild_Field(bitmap, 0);
}

template <typename Buffer, typename Pixel, typename Channel> void Blend_Fields(Buffer* bitmap)
{
    if (Is_Of<Buffer>(bitmap)) Smooth_Rows(*bitmap);
}

template <typename Buffer, typename Pixel, typename Channel>
void Copy_Opacity(Buffer const* source, ZVBitmap* destination, double weight)
{
    if (Is_Of<Buffer>(source) && Are_Alike(source, destination))
        Weigh_Rows(*source, *destination, weight, false);
}

template <typename Buffer, typename Pixel, typename Channel>
void Merge_Opacity(Buffer const* source, ZVBitmap* destination, double weight)
{
    if (Is_Of<Buffer>(source) && Are_Alike(source, destination))
        Weigh_Rows(*source, *destination, weight, true);
}

template <typename Buffer, typename Pixel, typename Channel>
void Copy_Fields_With_Opacity(Buffer const* source, Buffer* destination, ZVClip const* clip, double first,
                              double second)
{
    if (Is_Of<Buffer>(source) && Are_Alike(source, destination))
        Weigh_Field_Rows(*source, *destination, clip, first, second, false);
}

template <typename Buffer, typename Pixel, typename Channel>
void Merge_Fields_With_Opacity(Buffer const* source, Buffer* destination, ZVClip const* clip, double first,
                               double second)
{
    if (Is_Of<Buffer>(source) && Are_Alike(source, destination))
        Weigh_Field_Rows(*source, *destination, clip, first, second, true);
}

#define ZV_FIELD_INSTANCES(Buffer, Pixel, Channel)                                                           \
    template ZV_API void Blend_Fields<Buffer, Pixel, Channel>(Buffer*);                                      \
    template ZV_API void Copy_Opacity<Buffer, Pixel, Channel>(Buffer const*, ZVBitmap*, double);             \
    template ZV_API void Merge_Opacity<Buffer, Pixel, Channel>(Buffer const*, ZVBitmap*, double);            \
    template ZV_API void Copy_Fields_With_Opacity<Buffer, Pixel, Channel>(Buffer const*, Buffer*,            \
                                                                          ZVClip const*, double, double);    \
    template ZV_API void Merge_Fields_With_Opacity<Buffer, Pixel, Channel>(Buffer const*, Buffer*,           \
                                                                           ZVClip const*, double, double);

ZV_FIELD_INSTANCES(ZVBufferRGBA8, ZVPixelRGBA8, unsigned char)
ZV_FIELD_INSTANCES(ZVBufferRGBA10, ZVPixelRGBA10, unsigned short)
ZV_FIELD_INSTANCES(ZVBufferRGBA12, ZVPixelRGBA12, unsigned short)
ZV_FIELD_INSTANCES(ZVBufferRGBA16, ZVPixelRGBA16, unsigned short)
ZV_FIELD_INSTANCES(ZVBufferRGBAFloat, ZVPixelRGBAFloat, float)

#undef ZV_FIELD_INSTANCES
