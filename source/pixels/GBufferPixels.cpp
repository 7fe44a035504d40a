// Pixels rebuilt from their samples, compiled for each instruction set. The colours of a pixel lie side by
// side in one vector, so that each of them is worked out by the told operations in the told order.
#include "GBufferPixels.h"

#include "VectorTargets.h"
#include "ZVLibInternal.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixels/GBufferPixels.cpp"
#include <hwy/foreach_target.h>

#include "RowStages-inl.h"

#include <bit>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

/// Red, green and blue; the fourth lane idles until the end. The compiler makes it of what registers there
/// are.
using Colours [[gnu::vector_size(32)]] = double;

// 254.5 / 255: coverage beyond it is full when it is rounded to a byte.
constexpr double opaque = 0.9980392156862745;

// The weight of a pixel without a front sample. It takes no part in what is seen and keeps the division
// defined.
constexpr double nothing = 1e-7;

HWY_INLINE bool Is_Opaque(Colours const& weight)
{
    return weight[0] > opaque && weight[1] > opaque && weight[2] > opaque;
}

HWY_INLINE void Load_Fractions(uint8_t const* bytes, Colours& out)
{
    double const* const fraction = ZVPixelBase::_byteToFracTbl;
    out = Colours{fraction[bytes[0]], fraction[bytes[1]], fraction[bytes[2]], 0.0};
}

constexpr uint8_t missing[3] = {};  // stands for transparency that is not there

/// What a sample adds, by itself: its weight in each colour, and the colours times the weight.
template <SampleColour COLOUR, bool IS_TRANSPARENT> struct WeighedSample {
    static constexpr long colourBytes = COLOUR == SampleColour::Shared ? 4 : 3;

    Colours weight, colour;

    /// @param i         place of the sample in its rows
    /// @param coverage  of the sample
    HWY_INLINE WeighedSample(long i, uint8_t coverage, uint8_t const* transparencies, uint8_t const* colours,
                             Colours const& picture)
    {
        weight = Colours{} + ZVPixelBase::_byteToFracTbl[coverage];
        if constexpr (IS_TRANSPARENT) {
            Colours clear;
            Load_Fractions(transparencies ? transparencies + i * 3 : missing, clear);
            weight *= 1.0 - clear;
        }
        if constexpr (COLOUR == SampleColour::Picture) {
            colour = picture * weight;
        } else {
            uint8_t const* const bytes = colours + i * colourBytes;
            Load_Fractions(bytes, colour);
            colour *= weight;
            if constexpr (COLOUR == SampleColour::Shared) colour *= _expTable[bytes[3]];
        }
    }
};

template <typename Id, SampleColour COLOUR, bool IS_TRANSPARENT>
void Gather_Pixels(ZVDeepRow const& deep, long first, long count, double const* pictures, double* pixels)
{
    using Sample = WeighedSample<COLOUR, IS_TRANSPARENT>;
    ZVDeepRow const row = deep;  // nothing that is written can change it
    auto const isWanted = [&row](uint8_t const* ids, long i) {
        Id id;
        std::memcpy(&id, ids + i * static_cast<long>(sizeof id), sizeof id);
        return (id == row.id) == row.keeps;
    };
    auto const coverage = [](uint8_t const* bytes, long i) { return bytes ? bytes[i] : uint8_t{255}; };
    for (long x = first; x < first + count; ++x, pictures += 4, pixels += 4) {
        Colours picture{};
        if constexpr (COLOUR == SampleColour::Picture) std::memcpy(&picture, pictures, sizeof picture);
        Colours sum{}, weight = {nothing, nothing, nothing, 0.0};
        if (isWanted(row.ids.front, x)) {
            Sample const front(x, coverage(row.coverage.front, x), row.transparency.front, row.colour.front,
                               picture);
            sum = front.colour;
            weight = front.weight;
        }
        for (long n = row.xValues[x], end = row.xValues[x + 1]; n < end && !Is_Opaque(weight); ++n) {
            if (!isWanted(row.ids.further, n)) continue;
            Sample const behind(n, coverage(row.coverage.further, n), row.transparency.further,
                                row.colour.further, picture);
            sum = sum + behind.colour - behind.colour * weight;
            weight = behind.weight + (1.0 - behind.weight) * weight;
        }
        sum[3] = weight[0] + weight[1] + weight[2];
        weight[3] = 3.0;
        Colours const result = sum / weight;
        // What is no number, such as a colour of no weight, is 0.
        Colours const zero{}, one = zero + 1.0;
        Colours const above = result > zero ? result : zero;
        Colours const within = above < one ? above : one;
        std::memcpy(pixels, &within, sizeof within);
    }
}

template <typename Id, SampleColour COLOUR> ZVPixelGatherer Gatherer_Of(bool isTransparent)
{
    return isTransparent ? &Gather_Pixels<Id, COLOUR, true> : &Gather_Pixels<Id, COLOUR, false>;
}

template <typename Id> ZVPixelGatherer Gatherer_Of(SampleColour colour, bool isTransparent)
{
    switch (colour) {
    case SampleColour::Shared: return Gatherer_Of<Id, SampleColour::Shared>(isTransparent);
    case SampleColour::Bytes: return Gatherer_Of<Id, SampleColour::Bytes>(isTransparent);
    default: return Gatherer_Of<Id, SampleColour::Picture>(isTransparent);
    }
}

ZVPixelGatherer Find_Pixel_Gatherer(SampleColour colour, long idBytes, bool isTransparent)
{
    return idBytes == 1 ? Gatherer_Of<uint8_t>(colour, isTransparent)
                        : Gatherer_Of<uint16_t>(colour, isTransparent);
}

// ---- fractions --------------------------------------------------------------------------------------------

template <typename Format, typename Pixel>
void Load_Fractions(void const* row, long pixels, double* fractions)
{
    Work_On<Format>(
        pixels,
        [&fractions](long count, auto const* channels) {
            for (long i = 0; i < 4 * count; ++i)
                *fractions++ = Pixel::Fraction(channels[i].value);
        },
        ReadRow<Format>(row));
}

template <typename Format, typename Pixel>
void Store_Fractions(double const* fractions, long pixels, void* row)
{
    Work_On<Format>(
        pixels,
        [&fractions](long count, auto* channels) {
            double const* const from = fractions;
            for (long i = 0; i < 4 * count; ++i)
                channels[i].value = Pixel::Raw(from[i]);
            fractions += 4 * count;
        },
        WrittenRow<Format>(row));
}

template <typename Format, typename Pixel>
inline constexpr ZVFractionRows fractionRows = {Load_Fractions<Format, Pixel>,
                                                Store_Fractions<Format, Pixel>};

ZVFractionRows const* Find_Fraction_Rows(ZVBitmapType type)
{
    switch (type) {
    case ZV_BITMAP_RGBA8: return &fractionRows<FormatRGBA8, ZVPixelRGBA8>;
    case ZV_BITMAP_RGBA10: return &fractionRows<FormatRGBA10, ZVPixelRGBA10>;
    case ZV_BITMAP_RGBA12: return &fractionRows<FormatRGBA12, ZVPixelRGBA12>;
    case ZV_BITMAP_RGBA16: return &fractionRows<FormatRGBA16, ZVPixelRGBA16>;
    default: return &fractionRows<FormatRGBAFloat, ZVPixelRGBAFloat>;
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace Rows {
HWY_EXPORT(Find_Pixel_Gatherer);
HWY_EXPORT(Find_Fraction_Rows);
}  // namespace Rows

ZVPixelGatherer Get_Pixel_Gatherer(SampleColour colour, long idBytes, bool isTransparent)
{
    using namespace Rows;
    return HWY_DYNAMIC_DISPATCH(Find_Pixel_Gatherer)(colour, idBytes, isTransparent);
}

ZVFractionRows const& Get_Fraction_Rows(ZVBitmapType type)
{
    using namespace Rows;
    return *HWY_DYNAMIC_DISPATCH(Find_Fraction_Rows)(type);
}

#endif
