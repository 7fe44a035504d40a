// Images in memory: ZVBitmap, a typed pixel buffer in one of ten formats, and ZVNativeBitmap, a buffer in a
// display format. A bitmap has no lock and belongs to one thread at a time; allocation may run on any thread.
// Null bitmaps are accepted everywhere and do nothing.
#pragma once

#include "ZVPixel.h"
#include "ZVRect.h"

enum ZVBitmapType : uint8_t {
    ZV_BITMAP_NONE = 0,
    ZV_BITMAP_RGBA8 = 1,
    ZV_BITMAP_RGBA10 = 2,
    ZV_BITMAP_RGBA12 = 3,
    ZV_BITMAP_RGBA16 = 4,
    ZV_BITMAP_RGBAFLOAT = 5,
    ZV_BITMAP_MONO8 = 6,
    ZV_BITMAP_MONO10 = 7,
    ZV_BITMAP_MONO12 = 8,
    ZV_BITMAP_MONO16 = 9,
    ZV_BITMAP_MONOFLOAT = 10
};

/// Base of all bitmaps. Rows run from top to bottom without padding, pixels from left to right.
class ZV_API ZVBitmap {
public:
    virtual ~ZVBitmap() = default;
    ZVBitmap(ZVBitmap const&) = delete;
    ZVBitmap& operator=(ZVBitmap const&) = delete;

    int32_t Width = 0;   ///< pixels
    int32_t Height = 0;  ///< pixels
    ZVBitmapType Type = ZV_BITMAP_NONE;
    int32_t RowBytes = 0;  ///< always Width times PackSize
    int32_t PackSize = 0;  ///< bytes of a pixel
    /// First pixel, or null. Owned by the bitmap when the library allocated it; who points it at other memory
    /// sets it back to null before FreeBitmapZV.
    unsigned char* Pixels = nullptr;
    int32_t Size = 0;  ///< bytes of pixel memory
    double const* ByteToFrac = nullptr;
    int32_t Reserved1 = 0;
    int32_t Reserved2 = 0;

protected:
    ZVBitmap() = default;
};

/// A bitmap seen as pixels of one class.
template <typename Pixel, typename Channel> class ZVFormattedBuffer : public ZVBitmap {
public:
    using PixelType = Pixel;
    using ChannelType = Channel;

    /// Address of pixel (x, y), without a range check.
    Pixel* GetIterator(long x, long y) { return reinterpret_cast<Pixel*>(Pixels) + y * Width + x; }
    Pixel const* GetIterator(long x, long y) const
    {
        return reinterpret_cast<Pixel const*>(Pixels) + y * Width + x;
    }
};

class ZVBufferRGBA8 : public ZVFormattedBuffer<ZVPixelRGBA8, unsigned char> {};
class ZVBufferRGBA10 : public ZVFormattedBuffer<ZVPixelRGBA10, unsigned short> {};
class ZVBufferRGBA12 : public ZVFormattedBuffer<ZVPixelRGBA12, unsigned short> {};
class ZVBufferRGBA16 : public ZVFormattedBuffer<ZVPixelRGBA16, unsigned short> {};
class ZVBufferRGBAFloat : public ZVFormattedBuffer<ZVPixelRGBAFloat, float> {};
class ZVBufferMono8 : public ZVFormattedBuffer<ZVPixelMono8, unsigned char> {};
class ZVBufferMono10 : public ZVFormattedBuffer<ZVPixelMono10, unsigned short> {};
class ZVBufferMono12 : public ZVFormattedBuffer<ZVPixelMono12, unsigned short> {};
class ZVBufferMono16 : public ZVFormattedBuffer<ZVPixelMono16, unsigned short> {};
class ZVBufferMonoFloat : public ZVFormattedBuffer<ZVPixelMonoFloat, float> {};

/// An image in a display format, in host-order words: 32 bits hold red in bits 16 to 23, green in 8 to 15,
/// blue in 0 to 7 (the top byte is padding); 16 bits hold red in bits 10 to 14, green in 5 to 9, blue in 0 to
/// 4; 8 bits are one grey or index byte. Pixel loops also take a depth of 24 (bytes blue, green, red) in a
/// record that a caller filled in by hand.
struct ZVNativeBitmap {
    int32_t Width;     ///< pixels
    int32_t Height;    ///< pixels
    int32_t Depth;     ///< bits of a pixel: 8, 16 or 32
    int32_t RowBytes;  ///< rows may be padded
    int32_t PackSize;  ///< bytes of a pixel: 1, 2 or 4
    unsigned char* Pixels;
    int32_t Offset;  ///< bytes added to Pixels by every pixel loop
    int32_t Size;    ///< RowBytes times Height
    ZVPort* World;   ///< draws into the pixels and owns them; null when they are the caller's
    void* PixMap;
    int32_t Reserved1;
    int32_t Reserved2;
};

/// Channels, bits of a channel, bits of a pixel (10 for mono 10, although it takes two bytes) and bytes of a
/// pixel. 0 for ZV_BITMAP_NONE and for a null bitmap; a type above 10 must not be passed.
ZV_API long GetChannelsZV(ZVBitmapType type);
ZV_API long GetChannelsZV(ZVBitmap const* bitmap);
ZV_API long GetBitsPerChannelZV(ZVBitmapType type);
ZV_API long GetBitsPerChannelZV(ZVBitmap const* bitmap);
ZV_API long GetBitsPerPixelZV(ZVBitmapType type);
ZV_API long GetBitsPerPixelZV(ZVBitmap const* bitmap);
ZV_API long GetPackSizeZV(ZVBitmapType type);
ZV_API long GetPackSizeZV(ZVBitmap const* bitmap);

/// A bitmap without pixels, all other members filled in.
/// @return  null for type 0 or above 10, and for a size that is negative or does not fit 31 bits of bytes
///          (error 1)
ZV_API ZVBitmap* AllocBitmapNoPixelsZV(long width, long height, ZVBitmapType type);

/// The bitmap's pixels, allocated uninitialised when it has none.
ZV_API void* AllocBitmapPixelsZV(ZVBitmap* bitmap, char const* name);

/// A bitmap with uninitialised pixels, released by FreeBitmapZV; null as for AllocBitmapNoPixelsZV. The name
/// is a label of which nothing is kept. A shared bitmap is an ordinary one.
ZV_API ZVBitmap* AllocBitmapZV(long width, long height, ZVBitmapType type, char const* name);
ZV_API ZVBitmap* AllocSharedBitmapZV(long width, long height, ZVBitmapType type, char const* name);

/// Frees the bitmap and its pixels.
ZV_API void FreeBitmapZV(ZVBitmap* bitmap);

/// A block for pixels, uninitialised. From 307200 bytes on, or with `always`, its pages are locked in memory
/// as far as RLIMIT_MEMLOCK allows; beyond that it is an ordinary block, quietly. Large blocks are aligned
/// for huge pages, and the ones freed last are kept for the next allocation of their size.
ZV_API void* AllocateResidentBlock(long length, bool always);

/// Releases a block of AllocateResidentBlock, with the arguments it was made with.
ZV_API void DeallocateResidentBlock(void* block, long length, bool always);

/// One pixel as fractions. For a mono type red, green and blue hold the value, alpha is 1; writing stores
/// red. Coordinates outside the bitmap do nothing.
ZV_API void ReadFloatPixelZV(ZVBitmap const* bitmap, long x, long y, ZVFloatRGB* out);
ZV_API void WriteFloatPixelZV(ZVBitmap* bitmap, long x, long y, ZVFloatRGB const* in);

/// A native bitmap with cleared pixels; a depth of 24 becomes 32.
/// @return  null with error 16 for another depth than 8, 16, 24, 32, and with error 1 when it cannot be had
ZV_API ZVNativeBitmap* AllocNativeBitmapZV(long width, long height, long depth);
ZV_API ZVNativeBitmap* AllocDDBitmapZV(long width, long height, long depth);
ZV_API long ConvertDDBitmapZV(ZVNativeBitmap* bitmap);  ///< Returns 1; there is nothing to convert.
ZV_API void FreeBitmapZV(ZVNativeBitmap* bitmap);

/// Depth of the main display, but 32 when that is 8; 32 without a display.
ZV_API long SuggestedDepthZV();

/// One native pixel as 16-bit components, each byte in both halves; the fourth word becomes 1. At 8 bits only
/// red is written. Depths other than 8, 16 and 32, and coordinates outside, do nothing.
ZV_API void ReadPixelZV(ZVNativeBitmap const* bitmap, long x, long y, ZVRGB* out);
ZV_API void WritePixelZV(ZVNativeBitmap* bitmap, long x, long y, ZVRGB const* in);

/// One native pixel as fractions; alpha becomes 65535.0. At 8 bits only red is read and written. At 16 bits
/// each 5-bit field, shifted left 3, is read through the byte table, as ReadPixelZV expands it. Fractions
/// outside 0 to 1 are stored as the nearer end.
ZV_API void ReadFloatPixelZV(ZVNativeBitmap const* bitmap, long x, long y, ZVFloatRGB* out);
ZV_API void WriteFloatPixelZV(ZVNativeBitmap* bitmap, long x, long y, ZVFloatRGB const* in);

/// No effect.
ZV_API void DisplayRamInBitmapZV(ZVBitmap* bitmap);

// ---- copy -------------------------------------------------------------------------------------------------
//
// A negative width or height takes the source's. A negative destination origin moves the source origin in and
// shrinks the size; the size is cut at the destination's edges. The source rectangle is the caller's to keep
// inside the source. Going up in depth scales by the ratio of the maxima, truncated; going down drops bits;
// from float, 8 bits truncate and the others round. Colours from float are clamped to 0 to 1, and so is an
// 8-bit alpha; alpha in 10, 12 and 16 bits keeps the low bits of what f_round gives. NaN becomes 0. There is
// no conversion from or to the mono types but ConvertMonoToRGBA: such a copy does nothing. Copies of one
// type, and those between native bitmaps of one depth, take overlapping rectangles of one bitmap.

ZV_API void CopyBitmapZV(ZVBitmap const* src, ZVBitmap* dst, long sx, long sy, long w, long h, long dx,
                         long dy);

/// To a native bitmap of depth 16, 24 or 32: alpha is dropped and the pad byte stays as it is.
ZV_API void CopyBitmapZV(ZVBitmap const* src, ZVNativeBitmap* dst, long sx, long sy, long w, long h, long dx,
                         long dy);

/// From a native bitmap of depth 16, 24 or 32. Components are shifted up into 10 and 12 bits (255 becomes
/// 1020, 4080) with alpha likewise, and fill 8, 16 bits and float with full alpha.
ZV_API void CopyBitmapZV(ZVNativeBitmap const* src, ZVBitmap* dst, long sx, long sy, long w, long h, long dx,
                         long dy);

/// Between native bitmaps of any depth; 8 bits are copied only to 8 bits. The clip rectangle, null for none,
/// limits what is written. Both rectangles are kept inside their bitmaps.
ZV_API void CopyBitmapZV(ZVNativeBitmap const* src, ZVNativeBitmap* dst, long sx, long sy, long w, long h,
                         long dx, long dy);
ZV_API void CopyBitmapZV(ZVNativeBitmap const* src, ZVNativeBitmap* dst, ZVRectT<long> const* clip, long sx,
                         long sy, long w, long h, long dx, long dy);

/// Copies `area` without `exclude`, which must lie inside it, at the same coordinates in both bitmaps.
ZV_API void CopyBitmapExcludeZV(ZVBitmap const* src, ZVBitmap* dst, ZVRectT<long> const* area,
                                ZVRectT<long> const* exclude);

/// Expands a mono bitmap into an RGBA bitmap of the same size; other sizes do nothing. A source of another
/// type than ZV_BITMAP_MONO8 is an assertion failure.
ZV_API void ConvertMonoToRGBA(ZVBufferMono8 const* src, ZVBitmap* dst);

/// Rewrites the pixels with alpha first, for the five RGBA types; another type does nothing. The byte count
/// is the destination's Size, or `bytes`, a whole number of pixels; source and destination may be one memory.
ZV_API void ConvertRGBAToARGBZV(ZVBitmap const* src, ZVBitmap* dst);
ZV_API void ConvertRGBAToARGBZV(ZVBitmap const* src, void* out, long bytes);

// ---- scale ------------------------------------------------------------------------------------------------
//
// Point sampling with 16.16 positions: a target pixel takes the source pixel under its top left corner. A
// null rectangle is the whole bitmap. The target rectangle is cut at the target's edges, the source rectangle
// is the caller's to keep inside the source. Pixel conversion is that of the copy; bitmaps of one type, mono
// included, are sampled raw.

ZV_API void ScaleBitmapZV(ZVBitmap const* src, ZVBitmap* dst, ZVRectT<long> const* srcRect,
                          ZVRectT<long> const* dstRect);
ZV_API void ScaleBitmapZV(ZVBitmap const* src, ZVNativeBitmap* dst, ZVRectT<long> const* srcRect,
                          ZVRectT<long> const* dstRect);
ZV_API void ScaleBitmapZV(ZVNativeBitmap const* src, ZVBitmap* dst, ZVRectT<long> const* srcRect,
                          ZVRectT<long> const* dstRect);
ZV_API void ScaleBitmapZV(ZVNativeBitmap const* src, ZVNativeBitmap* dst, ZVRectT<long> const* srcRect,
                          ZVRectT<long> const* dstRect);

/// Steps, exclusive limits and start positions of a scale; steps and source positions are 16.16 fixed point.
ZV_API void ScaleSetup(long srcWidth, long srcHeight, long dstWidth, long dstHeight,
                       ZVRectT<long> const* srcRect, ZVRectT<long> const* dstRect, long& stepX, long& stepY,
                       long& endX, long& endY, long& startX, long& startY, long& sourceX, long& sourceY);

// ---- fill, composite, disable -----------------------------------------------------------------------------
//
// An 8-bit component c fills a channel with c / 255.0 * MAX, truncated (a float channel with the quotient).

/// All channels; the word 0 clears every type. A mono type gets the red component by the rule above.
ZV_API void FillBitmapZV(ZVBitmap* bitmap, unsigned long colour);

/// Red, green and blue; alpha stays. ZV_BITMAP_MONO8 gets the blue component, and so do the other mono types.
ZV_API void FillColorZV(ZVBitmap* bitmap, unsigned long colour);

/// The alpha channel, or the one channel of a mono type. The rectangle must lie inside the bitmap.
ZV_API void FillAlphaZV(ZVBitmap* bitmap, unsigned char alpha);
ZV_API void FillAlphaRectZV(ZVBitmap* bitmap, unsigned long alpha, ZVRectT<long> const* rect);

/// A native bitmap of depth 16, 24 or 32 with the colour (the pad byte becomes 0xFF), of depth 8 with the low
/// byte.
ZV_API void FillBitmapZV(ZVNativeBitmap* bitmap, unsigned long colour);

/// Blends straight-alpha pixels over what the destination holds (depth 16, 24, 32); its pad byte stays.
/// Source types other than the five RGBA types do nothing.
/// @param clip  null for the whole destination. Its third and fourth members are RIGHT AND BOTTOM LIMITS in
///              destination coordinates, not a size.
ZV_API void AlphaBlendBitmapZV(ZVBitmap const* src, ZVNativeBitmap* dst, long sx, long sy, long w, long h,
                               long dx, long dy, ZVRectT<long> const* clip);

/// Blends over a solid colour and writes that to the destination. Clips like CopyBitmapZV.
ZV_API void AlphaCopyBitmapZV(ZVBitmap const* src, ZVNativeBitmap* dst, unsigned long background, long sx,
                              long sy, long w, long h, long dx, long dy);

/// Red, green and blue times `factor`, rounded and clamped; alpha becomes 0.
ZV_API unsigned long ShadeColorZV(unsigned long colour, double factor);

/// The disabled form of a colour: three tenths of the way from the shade of the interface background to it.
ZV_API unsigned long DisableColorZV(unsigned long colour);

/// Dims a rectangle, or the whole bitmap for null; alpha and pad bytes stay. A ZVBitmap of another RGBA type
/// than 8 bits is dimmed by the same formula with the shade scaled to its channels as a fill does, and a mono
/// type by the red component of the shade. The rectangle is cut at the bitmap's edges.
ZV_API void DisableBitmapZV(ZVNativeBitmap* bitmap, ZVRectT<long> const* rect);
ZV_API void DisableBitmapZV(ZVBitmap* bitmap, ZVRectT<long> const* rect);
