// Bitmaps in a display format: allocation, release, single pixels.
#include "ZVBitmap.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

// ---- allocation -------------------------------------------------------------------------------------------

// Rows start at a multiple of this, which suits vector loads and every surface that may be laid over the
// pixels.
static constexpr long rowAlignment = 16;

ZVNativeBitmap* AllocNativeBitmapZV(long width, long height, long depth)
{
    if (depth == 24) depth = 32;
    if (depth != 8 && depth != 16 && depth != 32) {
        SetError(ZV_ERR_DEPTH);
        return nullptr;
    }
    constexpr long limit = std::numeric_limits<int32_t>::max();
    long const packSize = depth / 8;
    bool const isInRange = width >= 0 && height >= 0 && width <= limit && height <= limit;
    long const rowBytes = isInRange ? (width * packSize + rowAlignment - 1) / rowAlignment * rowAlignment : 0;
    bool const fits = isInRange && rowBytes <= limit && rowBytes * height <= limit;
    auto const size = static_cast<unsigned long>(fits ? rowBytes * height : 0);
    void* const record = Alloc_Aligned(sizeof(ZVNativeBitmap), alignof(ZVNativeBitmap));
    if (!record) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
    auto* const bitmap = new (record) ZVNativeBitmap{};
    void* const pixels = fits ? Alloc_Aligned(std::max(size, 1UL), rowAlignment) : nullptr;
    if (pixels) std::memset(pixels, 0, size);
    bitmap->Pixels = static_cast<unsigned char*>(pixels);
    bitmap->World = pixels ? Make_SysPort(bitmap->Pixels, width, height, depth, rowBytes) : nullptr;
    if (!bitmap->World) {
        FreeMemZV(pixels);
        FreeMemZV(bitmap);
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
    bitmap->Width = static_cast<int32_t>(width);
    bitmap->Height = static_cast<int32_t>(height);
    bitmap->Depth = static_cast<int32_t>(depth);
    bitmap->RowBytes = static_cast<int32_t>(rowBytes);
    bitmap->PackSize = static_cast<int32_t>(packSize);
    bitmap->Size = static_cast<int32_t>(size);
    return bitmap;
}

ZVNativeBitmap* AllocDDBitmapZV(long width, long height, long depth)
{
    return AllocNativeBitmapZV(width, height, depth);
}

long ConvertDDBitmapZV(ZVNativeBitmap* /*bitmap*/)
{
    return 1;
}

void FreeBitmapZV(ZVNativeBitmap* bitmap)
{
    if (!bitmap) return;
    Free_SysPort(bitmap->World);
    FreeMemZV(bitmap);
}

long SuggestedDepthZV()
{
    // What a window shows is held in 32 bits whatever the display has.
    return 32;
}

// ---- single pixels ----------------------------------------------------------------------------------------

namespace {

/// Address of a pixel that the single-pixel operations handle, else null.
unsigned char* Pixel_Address(ZVNativeBitmap const* bitmap, long x, long y)
{
    if (!bitmap || !bitmap->Pixels || x < 0 || y < 0 || x >= bitmap->Width || y >= bitmap->Height)
        return nullptr;
    if (bitmap->Depth != 8 && bitmap->Depth != 16 && bitmap->Depth != 32) return nullptr;
    return bitmap->Pixels + bitmap->Offset + y * bitmap->RowBytes + x * (bitmap->Depth / 8);
}

struct Components {
    unsigned red, green, blue;
};

/// Components of a pixel as bytes, at 8 bits in red alone.
Components Load_Bytes(unsigned char const* pixel, long depth)
{
    if (depth == 8) return {*pixel, 0, 0};
    if (depth == 16) {
        uint16_t word;
        std::memcpy(&word, pixel, sizeof word);
        return {word >> 7 & 0xF8U, word >> 2 & 0xF8U, word << 3 & 0xF8U};
    }
    uint32_t word;
    std::memcpy(&word, pixel, sizeof word);
    return {word >> 16 & 0xFFU, word >> 8 & 0xFFU, word & 0xFFU};
}

/// Stores components that are already of the size of the pixel's fields.
void Store_Fields(unsigned char* pixel, long depth, Components fields)
{
    if (depth == 8) {
        *pixel = static_cast<unsigned char>(fields.red);
    } else if (depth == 16) {
        auto const word = static_cast<uint16_t>(fields.red << 10 | fields.green << 5 | fields.blue);
        std::memcpy(pixel, &word, sizeof word);
    } else {
        uint32_t const word = 0xFF000000U | fields.red << 16 | fields.green << 8 | fields.blue;
        std::memcpy(pixel, &word, sizeof word);
    }
}

}  // namespace

void ReadPixelZV(ZVNativeBitmap const* bitmap, long x, long y, ZVRGB* out)
{
    unsigned char const* const pixel = Pixel_Address(bitmap, x, y);
    if (!pixel || !out) return;
    auto const [red, green, blue] = Load_Bytes(pixel, bitmap->Depth);
    out->extra = 1;
    out->red = static_cast<uint16_t>(red * 257);
    if (bitmap->Depth == 8) return;
    out->green = static_cast<uint16_t>(green * 257);
    out->blue = static_cast<uint16_t>(blue * 257);
}

void WritePixelZV(ZVNativeBitmap* bitmap, long x, long y, ZVRGB const* in)
{
    unsigned char* const pixel = Pixel_Address(bitmap, x, y);
    if (!pixel || !in) return;
    int const shift = bitmap->Depth == 16 ? 11 : 8;
    Store_Fields(pixel, bitmap->Depth,
                 {static_cast<unsigned>(in->red) >> shift, static_cast<unsigned>(in->green) >> shift,
                  static_cast<unsigned>(in->blue) >> shift});
}

void ReadFloatPixelZV(ZVNativeBitmap const* bitmap, long x, long y, ZVFloatRGB* out)
{
    unsigned char const* const pixel = Pixel_Address(bitmap, x, y);
    if (!pixel || !out) return;
    auto const [red, green, blue] = Load_Bytes(pixel, bitmap->Depth);
    out->alpha = 65535.0;
    out->red = ZVPixelBase::_byteToFracTbl[red];
    if (bitmap->Depth == 8) return;
    out->green = ZVPixelBase::_byteToFracTbl[green];
    out->blue = ZVPixelBase::_byteToFracTbl[blue];
}

void WriteFloatPixelZV(ZVNativeBitmap* bitmap, long x, long y, ZVFloatRGB const* in)
{
    unsigned char* const pixel = Pixel_Address(bitmap, x, y);
    if (!pixel || !in) return;
    double const max = bitmap->Depth == 16 ? 31.0 : 255.0;
    auto const field = [max](double fraction) {
        return fraction > 0.0 ? static_cast<unsigned>(std::min(fraction, 1.0) * max + 0.5) : 0U;
    };
    Store_Fields(pixel, bitmap->Depth, {field(in->red), field(in->green), field(in->blue)});
}
