// The alpha conventions of files: from a clip's convention to straight alpha on reading, and back on writing.
// The arithmetic of rows is in pixels/RowMath.h.
#include "RowsOf.h"
#include "ZVLibInternal.h"
#include "pixels/BitmapVisit.h"
#include "pixels/ConvertRows.h"
#include "pixels/RowMath.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

std::array<double, 3> Matte_Of(ZVClip const& clip)
{
    return {clip.MatteRed, clip.MatteGreen, clip.MatteBlue};
}

// ---- reading ----------------------------------------------------------------------------------------------

void Read_Row(ZVClip const& clip, ZVRowMath const& math, ZVMatteRemoval const& removal, void* row,
              long pixels)
{
    bool const isInverted = clip.AlphaInvert != 0;
    switch (clip.AlphaType) {
    case ZV_ALPHA_NONE: math.setAlpha(row, true, pixels); break;
    case ZV_ALPHA_LUMINANCE:
        math.takeLuminance(row, static_cast<uint32_t>(GetColorZV(clip.Background)), isInverted, pixels);
        break;
    case ZV_ALPHA_CHANNEL:
        if (clip.AlphaPremultiplied)
            math.removeMatte(row, removal, pixels);
        else if (isInverted)
            math.invertAlpha(row, pixels);
        break;
    default: break;
    }
}

// ---- writing ----------------------------------------------------------------------------------------------

/// The exact reverse, on a row that already holds the source's pixels.
void Write_Row(ZVClip const& clip, ZVRowMath const& math, void* row, long pixels)
{
    bool const isInverted = clip.AlphaInvert != 0;
    if (clip.AlphaType == ZV_ALPHA_LUMINANCE) {
        math.showAlpha(row, isInverted, pixels);
        return;
    }
    if (clip.AlphaPremultiplied) math.addMatte(row, Matte_Of(clip).data(), pixels);
    if (clip.AlphaType == ZV_ALPHA_NONE)
        math.setAlpha(row, !isInverted, pixels);
    else if (isInverted)
        math.invertAlpha(row, pixels);
}

void Copy_Row(ZVBitmap const& source, ZVBitmap& destination, long y)
{
    if (&source != &destination)
        std::memcpy(Row_Of(destination, y), Row_Of(source, y), static_cast<std::size_t>(source.RowBytes));
}

/// A pixel of InterpretAlpha2ZV. Mattes are within 0 to 1 here, as the pixel class does not clamp.
template <typename Pixel>
void Write_Fourth_Channel(Pixel& pixel, std::array<double, 3> const& matte, bool isPremultiplied,
                          bool isInverted)
{
    double r, g, b, a;
    pixel.GetFloat(r, g, b, a);
    double const alpha = isInverted ? 1.0 - a : a;
    if (isPremultiplied) {
        pixel.SetFloat(r * a + matte[0] * (1.0 - a), g * a + matte[1] * (1.0 - a),
                       b * a + matte[2] * (1.0 - a), alpha);
    } else {
        pixel.AlphaFloat(alpha);
    }
}

// ---- writing to the screen --------------------------------------------------------------------------------

/// Shows rows in 8 bits, with the colours mixed or replaced as for writing.
void Show_Rows(ZVClip const& clip, ZVBitmap const& source, ZVNativeBitmap& destination)
{
    constexpr long stage = 256;
    ZVRowFormat const from = Row_Format(source.Type), to = Row_Format(destination);
    ZVRowConverter const toBytes = Get_Row_Converter(from, ROW_RGBA8);
    ZVRowConverter const toNative = Get_Row_Converter(ROW_RGBA8, to);
    if (!toBytes || !toNative || !source.Pixels || !destination.Pixels) return;
    ZVRowMath const& math = *Get_Row_Math(ZV_BITMAP_RGBA8);
    std::array<double, 3> const matte = Matte_Of(clip);
    unsigned char rgba[stage * 4];
    long const width = std::min(source.Width, destination.Width);
    for (long y = 0; y < std::min(source.Height, destination.Height); ++y) {
        unsigned char* const row = destination.Pixels + destination.Offset + y * destination.RowBytes;
        for (long x = 0; x < width; x += stage) {
            long const count = std::min(stage, width - x);
            toBytes(Row_Of(source, y) + x * source.PackSize, rgba, count);
            if (clip.AlphaType == ZV_ALPHA_LUMINANCE)
                math.showAlpha(rgba, clip.AlphaInvert != 0, count);
            else
                math.addMatte(rgba, matte.data(), count);
            toNative(rgba, row + x * Row_Pack_Size(to), count);
        }
    }
}

}  // namespace

template <typename Buffer, typename Pixel>
void Interpret_Alpha(Buffer* bitmap, ZVClip* clip, long left, long top, long right, long bottom)
{
    if (!clip || !Is_Of<Buffer>(bitmap)) return;
    if (!(clip->Flags & ZV_CLIP_ALPHA_KNOWN)) GuessAlphaZV(clip, bitmap);
    left = std::max(left, 0L);
    top = std::max(top, 0L);
    right = std::min<long>(right, bitmap->Width);
    bottom = std::min<long>(bottom, bitmap->Height);
    if (left >= right) return;
    ZVRowMath const& math = *Get_Row_Math(bitmap->Type);
    ZVMatteRemoval const removal(Matte_Of(*clip).data(), clip->AlphaInvert != 0, bitmap->Type);
    for (long y = top; y < bottom; ++y)
        Read_Row(*clip, math, removal, Row_Of(*bitmap, y) + left * bitmap->PackSize, right - left);
}

template ZV_API void Interpret_Alpha<ZVBufferRGBA8, ZVPixelRGBA8>(ZVBufferRGBA8*, ZVClip*, long, long, long,
                                                                  long);
template ZV_API void Interpret_Alpha<ZVBufferRGBA10, ZVPixelRGBA10>(ZVBufferRGBA10*, ZVClip*, long, long,
                                                                    long, long);
template ZV_API void Interpret_Alpha<ZVBufferRGBA12, ZVPixelRGBA12>(ZVBufferRGBA12*, ZVClip*, long, long,
                                                                    long, long);
template ZV_API void Interpret_Alpha<ZVBufferRGBA16, ZVPixelRGBA16>(ZVBufferRGBA16*, ZVClip*, long, long,
                                                                    long, long);
template ZV_API void Interpret_Alpha<ZVBufferRGBAFloat, ZVPixelRGBAFloat>(ZVBufferRGBAFloat*, ZVClip*, long,
                                                                          long, long, long);

void InterpretAlphaZV(ZVClip const* clip, ZVBitmap const* source, ZVBitmap* destination, ZVRectT<long> const*)
{
    if (!clip || !Are_Alike(source, destination)) return;
    ZVRowMath const* const math = Get_Row_Math(source->Type);
    for (long y = 0; y < source->Height; ++y) {
        Copy_Row(*source, *destination, y);
        if (math) Write_Row(*clip, *math, Row_Of(*destination, y), source->Width);
    }
}

void InterpretAlphaZV(ZVClip const* clip, ZVBitmap const* source, ZVNativeBitmap* destination,
                      ZVRectT<long> const*)
{
    if (!clip || !source || !destination) return;
    if (clip->AlphaType == ZV_ALPHA_LUMINANCE || clip->AlphaPremultiplied)
        Show_Rows(*clip, *source, *destination);
    else
        CopyBitmapZV(source, destination, 0, 0, -1, -1, 0, 0);
}

void InterpretAlpha2ZV(ZVClip const* clip, ZVBitmap const* source, ZVBitmap* destination,
                       ZVRectT<long> const*)
{
    if (!clip || !Are_Alike(source, destination)) return;
    std::array<double, 3> matte = Matte_Of(*clip);
    if (source->Type != ZV_BITMAP_RGBAFLOAT)
        for (double& m : matte)
            m = std::clamp(m, 0.0, 1.0);
    bool const isPremultiplied = clip->AlphaPremultiplied != 0, isInverted = clip->AlphaInvert != 0;
    for (long y = 0; y < source->Height; ++y) {
        Copy_Row(*source, *destination, y);
        Visit_RGBA(*destination, [&](auto& buffer) {
            auto* const pixels = buffer.GetIterator(0, y);
            for (long x = 0; x < buffer.Width; ++x)
                Write_Fourth_Channel(pixels[x], matte, isPremultiplied, isInverted);
        });
    }
}
