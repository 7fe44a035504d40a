// The picture of one object, or of all others, out of a frame with deep channels.
#include "BitmapVisit.h"
#include "GBufferFilter.h"
#include "GBufferPixels.h"
#include "GBufferRows.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <optional>

constinit std::array<double, 256> const _expTable = [] {
    std::array<double, 256> table{};
    double factor = 0x1p-127;
    for (std::size_t e = 1; e < table.size(); ++e, factor *= 2.0)
        table[e] = factor;
    return table;
}();

namespace {

/// The rows of a channel that may be missing.
class ChannelRows {
public:
    explicit ChannelRows(ZVGBuffer const* channel) : channel_(channel)
    {
        if (channel) deep_.emplace(*channel);
    }

    bool Exist() const { return channel_ != nullptr; }

    /// @param count  further samples that the X values name
    ZVSampleRow Row(long y, long count)
    {
        if (!channel_) return {};
        return {Front_Row(*channel_, y), deep_->Row(y, count)};
    }

private:
    ZVGBuffer const* channel_;
    std::optional<DeepRows> deep_;
};

SampleColour Colour_Kind(ZVGBufferArray const& input, ZVGBuffer const& ids)
{
    if (Fitting_Channel(input, ZV_GBUFFER_REALPIX, ids)) return SampleColour::Shared;
    return Fitting_Channel(input, ZV_GBUFFER_COL, ids) ? SampleColour::Bytes : SampleColour::Picture;
}

ZVGBuffer const* Colour_Channel(SampleColour colour, ZVGBufferArray const& input)
{
    if (colour == SampleColour::Picture) return nullptr;
    return input[colour == SampleColour::Shared ? ZV_GBUFFER_REALPIX : ZV_GBUFFER_COL];
}

/// The channels that colours are rebuilt from, row by row.
class DeepFrame {
public:
    DeepFrame(unsigned short id, ZVGBuffer const& ids, ZVGBufferArray const& input, long mode)
        : id_(id), keeps_(mode == 1), width_(ids.Width), colour_(Colour_Kind(input, ids)),
          xValues_(input[ZV_GBUFFER_X_VALUES], ids), ids_(&ids),
          coverage_(Fitting_Channel(input, ZV_GBUFFER_COV, ids)),
          transparency_(Fitting_Channel(input, ZV_GBUFFER_TRANS, ids)),
          colours_(Colour_Channel(colour_, input)),
          isFrontTransparent_(Fitting_Channel(input, ZV_GBUFFER_WEIGHT, ids))
    {
    }

    SampleColour Colour() const { return colour_; }
    bool Is_Transparent() const { return transparency_.Exist(); }

    ZVDeepRow Row(long y)
    {
        uint16_t const* const xValues = xValues_.Row(y);
        long const count = xValues[width_];
        ZVSampleRow transparency = transparency_.Row(y, count);
        // Without a weight channel the coverage of the front sample is its weight already.
        if (!isFrontTransparent_) transparency.front = nullptr;
        return {ids_.Row(y, count),    xValues, id_, keeps_, coverage_.Row(y, count), transparency,
                colours_.Row(y, count)};
    }

private:
    uint32_t id_;
    bool keeps_;
    long width_;
    SampleColour colour_;
    XValueRows xValues_;
    ChannelRows ids_, coverage_, transparency_, colours_;
    bool isFrontTransparent_;
};

}  // namespace

template <typename Buffer, typename Pixel>
void ExtractGBufferLayer_T(Buffer const* src, Buffer* dst, unsigned short id, ZVGBuffer const& ids,
                           ZVGBufferArray const& input, long mode, ZVRectT<long> const& rect)
{
    constexpr long stretch = 256;  // pixels whose fractions stay in the first cache
    alignas(64) double picture[4 * stretch], pixels[4 * stretch];
    DeepFrame frame(id, ids, input, mode);
    ZVPixelGatherer const gather = Get_Pixel_Gatherer(frame.Colour(), ids.Stride, frame.Is_Transparent());
    ZVFractionRows const& fractions = Get_Fraction_Rows(src->Type);
    for (long y = rect.y; y <= rect.Bottom(); ++y) {
        ZVDeepRow const row = frame.Row(y);
        for (long x = rect.x, count; x <= rect.Right(); x += count) {
            count = std::min(stretch, rect.Right() + 1 - x);
            if (frame.Colour() == SampleColour::Picture)
                fractions.load(src->GetIterator(x, y), count, picture);
            gather(row, x, count, picture, pixels);
            fractions.store(pixels, count, dst->GetIterator(x, y));
        }
    }
}

#define ZV_EXTRACT_INSTANCE(BUFFER)                                                                          \
    template ZV_API void ExtractGBufferLayer_T<BUFFER, BUFFER::PixelType>(                                   \
        BUFFER const*, BUFFER*, unsigned short, ZVGBuffer const&, ZVGBufferArray const&, long,               \
        ZVRectT<long> const&)
ZV_EXTRACT_INSTANCE(ZVBufferRGBA8);
ZV_EXTRACT_INSTANCE(ZVBufferRGBA10);
ZV_EXTRACT_INSTANCE(ZVBufferRGBA12);
ZV_EXTRACT_INSTANCE(ZVBufferRGBA16);
ZV_EXTRACT_INSTANCE(ZVBufferRGBAFloat);

static ZVRectT<long> Area_Within(ZVRectT<long> area, long width, long height)
{
    area.Intersect({0, 0, width, height});
    return area;
}

long ExtractGBufferLayerZV(ZVBitmap const* src, ZVBitmap* dst, short id, unsigned long idChannel,
                           ZVGBufferArray const& input, long mode, ZVRectT<long> const& rect,
                           ZVGBufferArray* output, unsigned long mask)
{
    if (idChannel != ZV_GBUFFER_MAT && idChannel != ZV_GBUFFER_OBJ && idChannel != ZV_GBUFFER_RENDERID)
        return 0;
    auto const channel = static_cast<ZVGBufferChannel>(idChannel);
    bool const hasPicture = src && dst && src->Pixels && dst->Pixels;
    ZVGBuffer const* const ids = input[channel] ? Fitting_Channel(input, channel, *input[channel]) : nullptr;
    if (!ids) {
        if (hasPicture) CopyBitmapZV(src, dst, 0, 0, -1, -1, 0, 0);
        return 0;
    }
    if (hasPicture && (src->Type != dst->Type || GetChannelsZV(src) != 4)) return 0;

    auto const wanted = static_cast<unsigned short>(id);
    ZVRectT<long> const area = Area_Within(rect, ids->Width, ids->Height);
    if (hasPicture) {
        ZVRectT<long> const seen =
            Area_Within(Area_Within(area, src->Width, src->Height), dst->Width, dst->Height);
        Visit_RGBA(*dst, [&]<typename Buffer>(Buffer& buffer) {
            ExtractGBufferLayer_T<Buffer, typename Buffer::PixelType>(
                static_cast<Buffer const*>(src), &buffer, wanted, *ids, input, mode, seen);
        });
    }
    // The render id of all ones is that of the background, behind which there is nothing to be uncovered.
    bool const keepsWeights = channel == ZV_GBUFFER_RENDERID && wanted == 0xFFFF && mode == 0;
    if (output) Filter_Channels({*ids, wanted, mode}, input, *output, mask, keepsWeights, area);
    return 1;
}
