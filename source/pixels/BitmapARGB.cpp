// Pixels rewritten with alpha first, as some file formats and codecs want them.
#include "BitmapVisit.h"
#include "ZVLibInternal.h"

#include <algorithm>

/// Rotates the channels of a pixel. The pixel is read whole before it is written, so both may be one memory.
template <typename Pixel> static void Rotate_Pixels(void const* source, void* target, long bytes)
{
    auto const* from = static_cast<Pixel const*>(source);
    auto* to = static_cast<Pixel*>(target);
    for (long count = bytes / Pixel::packSize; count > 0; --count, ++from, ++to) {
        typename Pixel::Channel red, green, blue, alpha;
        from->GetRGBA(red, green, blue, alpha);
        to->SetRGBA(alpha, red, green, blue);
    }
}

template <typename Buffer, typename Pixel, typename Channel>
void RGBA_To_ARGB(Buffer const* source, void* out, long bytes)
{
    if (source && source->Pixels && out) Rotate_Pixels<Pixel>(source->Pixels, out, bytes);
}

template ZV_API void RGBA_To_ARGB<ZVBufferRGBA10, ZVPixelRGBA10, unsigned short>(ZVBufferRGBA10 const*, void*,
                                                                                 long);
template ZV_API void RGBA_To_ARGB<ZVBufferRGBA12, ZVPixelRGBA12, unsigned short>(ZVBufferRGBA12 const*, void*,
                                                                                 long);

void ConvertRGBAToARGBZV(ZVBitmap const* src, void* out, long bytes)
{
    if (!src || !src->Pixels || !out) return;
    Visit_RGBA(*src, [&]<typename Buffer>(Buffer& source) {
        using Pixel = typename Buffer::PixelType;
        Rotate_Pixels<Pixel>(source.Pixels, out, bytes);
    });
}

void ConvertRGBAToARGBZV(ZVBitmap const* src, ZVBitmap* dst)
{
    if (dst) ConvertRGBAToARGBZV(src, dst->Pixels, dst->Size);
}
