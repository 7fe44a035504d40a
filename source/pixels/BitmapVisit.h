// The one switch over bitmap types. Work on pixels is a template that sees one class; a caller dispatches
// here, once, outside its loops. Each visit tells whether the type was among those it knows.
#pragma once

#include "ZVBitmap.h"

#include <type_traits>
#include <utility>

/// Calls `work` with a std::type_identity of the class of an RGBA type.
template <typename Work> bool Visit_RGBA_Type(ZVBitmapType type, Work&& work)
{
    switch (type) {
    case ZV_BITMAP_RGBA8: work(std::type_identity<ZVBufferRGBA8>{}); return true;
    case ZV_BITMAP_RGBA10: work(std::type_identity<ZVBufferRGBA10>{}); return true;
    case ZV_BITMAP_RGBA12: work(std::type_identity<ZVBufferRGBA12>{}); return true;
    case ZV_BITMAP_RGBA16: work(std::type_identity<ZVBufferRGBA16>{}); return true;
    case ZV_BITMAP_RGBAFLOAT: work(std::type_identity<ZVBufferRGBAFloat>{}); return true;
    default: return false;
    }
}

/// The same for the mono types.
template <typename Work> bool Visit_Mono_Type(ZVBitmapType type, Work&& work)
{
    switch (type) {
    case ZV_BITMAP_MONO8: work(std::type_identity<ZVBufferMono8>{}); return true;
    case ZV_BITMAP_MONO10: work(std::type_identity<ZVBufferMono10>{}); return true;
    case ZV_BITMAP_MONO12: work(std::type_identity<ZVBufferMono12>{}); return true;
    case ZV_BITMAP_MONO16: work(std::type_identity<ZVBufferMono16>{}); return true;
    case ZV_BITMAP_MONOFLOAT: work(std::type_identity<ZVBufferMonoFloat>{}); return true;
    default: return false;
    }
}

/// The same for all ten types.
template <typename Work> bool Visit_Type(ZVBitmapType type, Work&& work)
{
    return Visit_RGBA_Type(type, work) || Visit_Mono_Type(type, work);
}

/// ZVBitmap or ZVBitmap const.
template <typename Bitmap>
concept ZVAnyBitmap = std::is_same_v<std::remove_const_t<Bitmap>, ZVBitmap>;

/// The visitor of a type made one of a bitmap: it hands the bitmap to `work` as its own class, const if it
/// is.
template <ZVAnyBitmap Bitmap, typename Work> auto Bitmap_Visitor(Bitmap& bitmap, Work& work)
{
    return [&]<typename Buffer>(std::type_identity<Buffer>) {
        using Seen = std::conditional_t<std::is_const_v<Bitmap>, Buffer const, Buffer>;
        work(static_cast<Seen&>(bitmap));
    };
}

/// Calls `work` with a bitmap of an RGBA type as its own class.
template <ZVAnyBitmap Bitmap, typename Work> bool Visit_RGBA(Bitmap& bitmap, Work&& work)
{
    return Visit_RGBA_Type(bitmap.Type, Bitmap_Visitor(bitmap, work));
}

/// The same for a bitmap of a mono type.
template <ZVAnyBitmap Bitmap, typename Work> bool Visit_Mono(Bitmap& bitmap, Work&& work)
{
    return Visit_Mono_Type(bitmap.Type, Bitmap_Visitor(bitmap, work));
}

/// The same for a bitmap of any type.
template <ZVAnyBitmap Bitmap, typename Work> bool Visit_All(Bitmap& bitmap, Work&& work)
{
    return Visit_Type(bitmap.Type, Bitmap_Visitor(bitmap, work));
}
