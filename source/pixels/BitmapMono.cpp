// Mono bitmaps as RGBA.
#include "BitmapVisit.h"
#include "ZVLibInternal.h"

#include <array>

/// Each byte becomes the grey of its fraction: rounded, where the depth conversions truncate.
template <typename Buffer> static void Expand_Mono(ZVBufferMono8 const& source, Buffer& target)
{
    using Pixel = typename Buffer::PixelType;
    std::array<Pixel, 256> greys;
    for (std::size_t i = 0; i < greys.size(); ++i) {
        double const fraction = ZVPixelBase::_byteToFracTbl[i];
        greys[i].SetFloat(fraction, fraction, fraction, 1.0);
    }
    Pixel* pixel = target.GetIterator(0, 0);
    for (long i = 0; i < source.Size; ++i)
        pixel[i] = greys[source.Pixels[i]];
}

void ConvertMonoToRGBA(ZVBufferMono8 const* src, ZVBitmap* dst)
{
    if (!src || !dst || src->Width != dst->Width || src->Height != dst->Height) return;
    if (src->Type != ZV_BITMAP_MONO8) Assert_Fail("Bitmap", __LINE__);
    if (!src->Pixels || !dst->Pixels) return;
    Visit_RGBA(*dst, [&](auto& target) { Expand_Mono(*src, target); });
}
