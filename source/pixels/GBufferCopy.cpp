// Copying and cropping G-buffers: front planes by stretches of rows, further samples by whole runs.
#include "GBufferRows.h"

#include <algorithm>

void CopyGBufferZV(ZVGBuffer const* src, ZVGBuffer* dst)
{
    if (!src || !dst || src == dst) return;
    bool const fits = Has_Size_Of(*src, *dst) && src->Format == dst->Format;
    if (!fits && !Shape_GBuffer(*dst, src->Width, src->Height, src->Format)) return;
    ByteMover const move(2 * Byte_Count(*src));
    move(dst->Data, src->Data, src->DataSize);
    for (long y = 0; y < src->Height; ++y) {
        ZVGBufferLayerData const& from = src->Layers[y];
        ZVGBufferLayerData& to = dst->Layers[y];
        long const count = Sample_Count(from);
        if (to.set_layer_recs(static_cast<unsigned long>(count)))
            move(to.Records, from.Records, count * src->Stride);
    }
}

namespace {

/// The stretch of a source of `sourceSize` that is seen in a target of `size` when it is placed at `offset`.
struct SeenStretch {
    long first, last;

    SeenStretch(long offset, long size, long sourceSize)
        : first(std::clamp(-offset, 0L, sourceSize)),
          last(std::clamp(std::min(size - offset, sourceSize), first, sourceSize))
    {
    }
    long Length() const { return last - first; }
};

/// A crop under way.
class Cropper {
public:
    Cropper(ZVGBuffer const& source, ZVGBuffer& target, long dx, long dy, unsigned char const* fill)
        : source_(source), target_(target), fill_(fill), columns_(dx, target.Width, source.Width),
          left_(std::clamp(dx, 0L, long{target.Width})), move_(Moved_Bytes(dy))
    {
    }

    void Fill_Front(long y) const
    {
        Fill_Samples(Front_Row(target_, y), target_.Width, fill_, target_.Stride);
    }

    void Crop_Front(long sourceY, long y) const
    {
        long const stride = target_.Stride, right = left_ + columns_.Length();
        unsigned char* const row = Front_Row(target_, y);
        Fill_Samples(row, left_, fill_, stride);
        move_(row + left_ * stride, Front_Row(source_, sourceY) + columns_.first * stride,
              columns_.Length() * stride);
        Fill_Samples(row + right * stride, target_.Width - right, fill_, stride);
    }

    void Crop_Samples(long sourceY, uint16_t const* xValues, long y) const
    {
        ZVGBufferLayerData const& from = source_.Layers[sourceY];
        ZVGBufferLayerData& row = target_.Layers[y];
        long const known = Sample_Count(from);
        long const begin = std::min<long>(xValues[columns_.first], known);
        long const count = std::max(std::min<long>(xValues[columns_.last], known) - begin, 0L);
        if (row.set_layer_recs(static_cast<unsigned long>(count)))
            move_(row.Records, from.Records + begin * source_.Stride, count * source_.Stride);
    }

private:
    /// About what the crop reads and writes together: samples are taken to be spread evenly.
    long Moved_Bytes(long dy) const
    {
        long const pixels = long{source_.Width} * source_.Height;
        long const seen = columns_.Length() * SeenStretch(dy, target_.Height, source_.Height).Length();
        return pixels ? static_cast<long>(2.0 * static_cast<double>(Byte_Count(source_)) *
                                          static_cast<double>(seen) / static_cast<double>(pixels))
                      : 0;
    }

    ZVGBuffer const& source_;
    ZVGBuffer& target_;
    unsigned char const* fill_;
    SeenStretch columns_;
    long left_;
    ByteMover move_;
};

}  // namespace

void CropGBufferZV(ZVGBuffer const* src, ZVGBuffer* dst, int dx, int dy, ZVGBuffer const* xValues,
                   unsigned char const* fill)
{
    if (!src || !dst || !fill || src == dst || src->Format != dst->Format) return;
    Cropper const cropper(*src, *dst, dx, dy, fill);
    XValueRows const rows(xValues, *src);
    for (long y = 0; y < dst->Height; ++y) {
        long const sourceY = y - long{dy};
        bool const isInside = sourceY >= 0 && sourceY < src->Height;
        if (isInside)
            cropper.Crop_Front(sourceY, y);
        else
            cropper.Fill_Front(y);
        if (!rows.Exist()) continue;
        if (isInside)
            cropper.Crop_Samples(sourceY, rows.Seen(sourceY), y);
        else
            dst->Layers[y].set_layer_recs(0);
    }
}

/// A row of X values seen through a crop: the last element is the number of samples that the row keeps, since
/// those of pixels outside go with their pixels.
static void Crop_XValues(uint16_t const* from, SeenStretch const& pixels, long dx, uint16_t* to,
                         long elements)
{
    long const left = std::clamp(dx + pixels.first, 0L, elements);
    long const right = std::clamp(dx + pixels.last + 1, left, elements);
    uint16_t const base = from[pixels.first];
    std::fill(to, to + left, uint16_t{0});
    for (long x = left; x < right; ++x)
        to[x] = static_cast<uint16_t>(from[x - dx] - base);
    std::fill(to + right, to + elements, static_cast<uint16_t>(from[pixels.last] - base));
}

void CropGBufferXValsZV(ZVGBuffer const* src, ZVGBuffer* dst, int dx, int dy)
{
    if (!src || !dst || src == dst || src->Format != GB_FORMAT_SHORT || dst->Format != GB_FORMAT_SHORT ||
        src->Width < 1 || dst->Width < 1)
        return;
    SeenStretch const pixels(dx, dst->Width - 1L, src->Width - 1L);
    XValueRows rows(*src);
    for (long y = 0; y < dst->Height; ++y) {
        long const sourceY = y - long{dy};
        uint16_t* const row = Short_Row(*dst, y);
        if (sourceY >= 0 && sourceY < src->Height)
            Crop_XValues(rows.Row(sourceY), pixels, dx, row, dst->Width);
        else
            std::fill_n(row, dst->Width, uint16_t{0});
    }
}
