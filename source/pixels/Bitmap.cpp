// Bitmaps: what a type is made of, allocation and release, single pixels.
#include "ZVBitmap.h"

#include "BitmapVisit.h"
#include "ZVLibInternal.h"

#include <limits>
#include <memory>
#include <new>

// ---- types ------------------------------------------------------------------------------------------------

namespace {

struct TypeInfo {
    long channels = 0;
    long bitsPerChannel = 0;
    long packSize = 0;
};

TypeInfo Type_Info(ZVBitmapType type)
{
    TypeInfo info;
    Visit_Type(type, [&]<typename Buffer>(std::type_identity<Buffer>) {
        using Pixel = typename Buffer::PixelType;
        info = {Pixel::channels, Pixel::bits, Pixel::packSize};
    });
    return info;
}

ZVBitmapType Type_Of(ZVBitmap const* bitmap)
{
    return bitmap ? bitmap->Type : ZV_BITMAP_NONE;
}

}  // namespace

long GetChannelsZV(ZVBitmapType type)
{
    return Type_Info(type).channels;
}

long GetChannelsZV(ZVBitmap const* bitmap)
{
    return GetChannelsZV(Type_Of(bitmap));
}

long GetBitsPerChannelZV(ZVBitmapType type)
{
    return Type_Info(type).bitsPerChannel;
}

long GetBitsPerChannelZV(ZVBitmap const* bitmap)
{
    return GetBitsPerChannelZV(Type_Of(bitmap));
}

long GetBitsPerPixelZV(ZVBitmapType type)
{
    TypeInfo const info = Type_Info(type);
    return info.channels * info.bitsPerChannel;
}

long GetBitsPerPixelZV(ZVBitmap const* bitmap)
{
    return GetBitsPerPixelZV(Type_Of(bitmap));
}

long GetPackSizeZV(ZVBitmapType type)
{
    return Type_Info(type).packSize;
}

long GetPackSizeZV(ZVBitmap const* bitmap)
{
    return GetPackSizeZV(Type_Of(bitmap));
}

// ---- allocation -------------------------------------------------------------------------------------------

/// Whether a bitmap of this size has at most 2^31 - 1 bytes, a row being counted even when there are no rows.
static bool Fits(long width, long height, long packSize)
{
    constexpr long limit = std::numeric_limits<int32_t>::max();
    if (width < 0 || height < 0 || width > limit / packSize || height > limit) return false;
    long const rowBytes = width * packSize;
    return rowBytes == 0 || height <= limit / rowBytes;
}

ZVBitmap* AllocBitmapNoPixelsZV(long width, long height, ZVBitmapType type)
{
    long const packSize = GetPackSizeZV(type);
    if (packSize == 0) return nullptr;
    ZVBitmap* bitmap = nullptr;
    if (Fits(width, height, packSize))
        Visit_Type(type,
                   [&]<typename Buffer>(std::type_identity<Buffer>) { bitmap = new (std::nothrow) Buffer; });
    if (!bitmap) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
    bitmap->Width = static_cast<int32_t>(width);
    bitmap->Height = static_cast<int32_t>(height);
    bitmap->Type = type;
    bitmap->RowBytes = static_cast<int32_t>(width * packSize);
    bitmap->PackSize = static_cast<int32_t>(packSize);
    bitmap->Size = bitmap->RowBytes * bitmap->Height;
    bitmap->ByteToFrac = ZVPixelBase::_byteToFracTbl;
    return bitmap;
}

void* AllocBitmapPixelsZV(ZVBitmap* bitmap, char const* /*name*/)
{
    if (!bitmap) return nullptr;
    if (!bitmap->Pixels)
        bitmap->Pixels = static_cast<unsigned char*>(AllocateResidentBlock(bitmap->Size, false));
    return bitmap->Pixels;
}

ZVBitmap* AllocBitmapZV(long width, long height, ZVBitmapType type, char const* name)
{
    std::unique_ptr<ZVBitmap> bitmap(AllocBitmapNoPixelsZV(width, height, type));
    return AllocBitmapPixelsZV(bitmap.get(), name) ? bitmap.release() : nullptr;
}

ZVBitmap* AllocSharedBitmapZV(long width, long height, ZVBitmapType type, char const* name)
{
    return AllocBitmapZV(width, height, type, name);
}

void FreeBitmapZV(ZVBitmap* bitmap)
{
    if (!bitmap) return;
    if (bitmap->Pixels) DeallocateResidentBlock(bitmap->Pixels, bitmap->Size, false);
    delete bitmap;
}

// ---- single pixels ----------------------------------------------------------------------------------------

static bool Has_Pixel(ZVBitmap const* bitmap, long x, long y)
{
    return bitmap && bitmap->Pixels && x >= 0 && y >= 0 && x < bitmap->Width && y < bitmap->Height;
}

void ReadFloatPixelZV(ZVBitmap const* bitmap, long x, long y, ZVFloatRGB* out)
{
    if (!Has_Pixel(bitmap, x, y) || !out) return;
    Visit_All(*bitmap, [&](auto& buffer) {
        using Pixel = typename std::remove_reference_t<decltype(buffer)>::PixelType;
        Pixel const* pixel = buffer.GetIterator(x, y);
        if constexpr (Pixel::isMono) {
            double const value = pixel->Rf();
            *out = {value, value, value, 1.0};
        } else {
            pixel->GetFloat(out->red, out->green, out->blue, out->alpha);
        }
    });
}

void WriteFloatPixelZV(ZVBitmap* bitmap, long x, long y, ZVFloatRGB const* in)
{
    if (!Has_Pixel(bitmap, x, y) || !in) return;
    Visit_All(*bitmap, [&](auto& buffer) {
        using Pixel = typename std::remove_reference_t<decltype(buffer)>::PixelType;
        Pixel* pixel = buffer.GetIterator(x, y);
        if constexpr (Pixel::isMono)
            pixel->Rf(in->red);
        else
            pixel->SetFloat(in->red, in->green, in->blue, in->alpha);
    });
}

void DisplayRamInBitmapZV(ZVBitmap* /*bitmap*/) {}
