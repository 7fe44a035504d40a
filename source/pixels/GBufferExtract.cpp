// The picture of one object, or of all others, out of a frame with deep channels.
#include "BitmapVisit.h"
#include "GBufferFilter.h"
#include "GBufferPixels.h"
#include "GBufferRows.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <optional>

std::array<double, 256> const _expTable = [] {
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
    /// @param missing  the sample that stands for all others when there is no channel
    ChannelRows(ZVGBuffer const* channel, uint8_t const* missing) : channel_(channel), missing_(missing)
    {
        if (channel) deep_.emplace(*channel);
    }

    /// @param count  further samples that the X values name
    ZVSampleRow Row(long y, long count)
    {
        if (!channel_) return {missing_, 0, missing_, 0};
        return {Front_Row(*channel_, y), channel_->Stride, deep_->Row(y, count), channel_->Stride};
    }

private:
    ZVGBuffer const* channel_;
    uint8_t const* missing_;
    std::optional<DeepRows> deep_;
};

constexpr uint8_t fullCoverage = 255;
constexpr uint8_t noTransparency[3] = {};
constexpr uint8_t noColour[4] = {};

/// The channels that colours are rebuilt from, row by row.
class DeepFrame {
public:
    DeepFrame(unsigned short id, ZVGBuffer const& ids, ZVGBufferArray const& input, long mode)
        : id_(id), keeps_(mode == 1), xValues_(input[ZV_GBUFFER_X_VALUES], ids), ids_(&ids, nullptr),
          coverage_(Fitting_Channel(input, ZV_GBUFFER_COV, ids), &fullCoverage),
          transparency_(Fitting_Channel(input, ZV_GBUFFER_TRANS, ids), noTransparency),
          isFrontTransparent_(Fitting_Channel(input, ZV_GBUFFER_WEIGHT, ids)),
          colour_(Colour_Kind(input, ids)), colours_(Colour_Channel(colour_, input), noColour)
    {
    }

    SampleColour Colour() const { return colour_; }

    ZVDeepRow Row(long y, long width)
    {
        uint16_t const* const xValues = xValues_.Row(y);
        long const count = xValues[width];
        ZVSampleRow const ids = ids_.Row(y, count);
        ZVSampleRow transparency = transparency_.Row(y, count);
        // Without a weight channel the transparency of the front sample is that of the pixel as a whole.
        if (!isFrontTransparent_) transparency.front = noTransparency, transparency.frontStep = 0;
        return {ids.front,    ids.further,           xValues, id_, keeps_, coverage_.Row(y, count),
                transparency, colours_.Row(y, count)};
    }

private:
    static SampleColour Colour_Kind(ZVGBufferArray const& input, ZVGBuffer const& ids)
    {
        if (Fitting_Channel(input, ZV_GBUFFER_REALPIX, ids)) return SampleColour::Shared;
        return Fitting_Channel(input, ZV_GBUFFER_COL, ids) ? SampleColour::Bytes : SampleColour::Picture;
    }

    static ZVGBuffer const* Colour_Channel(SampleColour colour, ZVGBufferArray const& input)
    {
        if (colour == SampleColour::Picture) return nullptr;
        return input[colour == SampleColour::Shared ? ZV_GBUFFER_REALPIX : ZV_GBUFFER_COL];
    }

    uint32_t id_;
    bool keeps_;
    XValueRows xValues_;
    ChannelRows ids_, coverage_, transparency_;
    bool isFrontTransparent_;
    SampleColour colour_;
    ChannelRows colours_;
};

}  // namespace

template <typename Buffer, typename Pixel>
void ExtractGBufferLayer_T(Buffer const* src, Buffer* dst, unsigned short id, ZVGBuffer const& ids,
                           ZVGBufferArray const& input, long mode, ZVRectT<long> const& rect)
{
    constexpr long stretch = 256;  // pixels whose fractions stay in the first cache
    double picture[4 * stretch], pixels[4 * stretch];
    DeepFrame frame(id, ids, input, mode);
    ZVPixelGatherer const gather = Get_Pixel_Gatherer(frame.Colour(), ids.Stride);
    for (long y = rect.y; y <= rect.Bottom(); ++y) {
        ZVDeepRow const row = frame.Row(y, ids.Width);
        for (long x = rect.x, count; x <= rect.Right(); x += count) {
            count = std::min(stretch, rect.Right() + 1 - x);
            if (frame.Colour() == SampleColour::Picture) {
                Pixel const* const from = src->GetIterator(x, y);
                for (long i = 0; i < count; ++i)
                    from[i].GetFloat(picture[4 * i], picture[4 * i + 1], picture[4 * i + 2],
                                     picture[4 * i + 3]);
            }
            gather(row, x, count, picture, pixels);
            Pixel* const to = dst->GetIterator(x, y);
            for (long i = 0; i < count; ++i)
                to[i].SetFloat(pixels[4 * i], pixels[4 * i + 1], pixels[4 * i + 2], pixels[4 * i + 3]);
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
