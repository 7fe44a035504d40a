// Pixels rebuilt from their samples, compiled for each instruction set.
#include "GBufferPixels.h"

#include "VectorTargets.h"
#include "ZVLibInternal.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixels/GBufferPixels.cpp"
#include <hwy/foreach_target.h>

#include <cstring>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

// 254.5 / 255: coverage beyond it is full when it is rounded to a byte.
constexpr double opaque = 0.9980392156862745;

// The weight of a pixel without a front sample. It takes no part in what is seen and keeps the division
// defined.
constexpr double nothing = 1e-7;

/// Colour and weight gathered so far; the fourth lane idles.
struct Gathered {
    double sum[4], weight[4];
};

template <typename Id> bool Is_Wanted(ZVDeepRow const& row, uint8_t const* ids, long i)
{
    Id id;
    std::memcpy(&id, ids + i * static_cast<long>(sizeof id), sizeof id);
    return (id == row.id) == row.keeps;
}

/// What a sample adds, by itself: its weight in each colour and the colours times the weight.
template <SampleColour COLOUR>
HWY_INLINE void Weigh_Sample(uint8_t const* coverage, uint8_t const* transparency, uint8_t const* bytes,
                             double const* picture, double* weight, double* colour)
{
    double const* const fraction = ZVPixelBase::_byteToFracTbl;
    double const covered = fraction[*coverage];
    for (int c = 0; c < 3; ++c)
        weight[c] = covered * (1.0 - fraction[transparency[c]]);
    for (int c = 0; c < 3; ++c) {
        if constexpr (COLOUR == SampleColour::Picture)
            colour[c] = picture[c] * weight[c];
        else
            colour[c] = fraction[bytes[c]] * weight[c];
        if constexpr (COLOUR == SampleColour::Shared) colour[c] *= _expTable[bytes[3]];
    }
}

template <typename Id, SampleColour COLOUR>
void Gather_Pixels(ZVDeepRow const& row, long first, long count, double const* picture, double* pixels)
{
    for (long x = first; x < first + count; ++x, picture += 4, pixels += 4) {
        double sum[3] = {}, weight[3] = {nothing, nothing, nothing};
        if (Is_Wanted<Id>(row, row.frontIds, x))
            Weigh_Sample<COLOUR>(row.coverage.front + x * row.coverage.frontStep,
                                 row.transparency.front + x * row.transparency.frontStep,
                                 row.colour.front + x * row.colour.frontStep, picture, weight, sum);
        for (long n = row.xValues[x]; n < row.xValues[x + 1]; ++n) {
            if (weight[0] > opaque && weight[1] > opaque && weight[2] > opaque) break;
            if (!Is_Wanted<Id>(row, row.ids, n)) continue;
            double w[3], s[3];
            Weigh_Sample<COLOUR>(row.coverage.further + n * row.coverage.step,
                                 row.transparency.further + n * row.transparency.step,
                                 row.colour.further + n * row.colour.step, picture, w, s);
            for (int c = 0; c < 3; ++c) {
                sum[c] = sum[c] + s[c] - s[c] * weight[c];
                weight[c] = w[c] + (1.0 - w[c]) * weight[c];
            }
        }
        double const result[4] = {sum[0] / weight[0], sum[1] / weight[1], sum[2] / weight[2],
                                  (weight[0] + weight[1] + weight[2]) / 3.0};
        // What is no number, such as a colour of no weight, is 0.
        for (int c = 0; c < 4; ++c)
            pixels[c] = result[c] > 0.0 ? result[c] < 1.0 ? result[c] : 1.0 : 0.0;
    }
}

template <SampleColour COLOUR> ZVPixelGatherer Gatherer_Of(long idBytes)
{
    return idBytes == 1 ? &Gather_Pixels<uint8_t, COLOUR> : &Gather_Pixels<uint16_t, COLOUR>;
}

ZVPixelGatherer Find_Pixel_Gatherer(SampleColour colour, long idBytes)
{
    switch (colour) {
    case SampleColour::Shared: return Gatherer_Of<SampleColour::Shared>(idBytes);
    case SampleColour::Bytes: return Gatherer_Of<SampleColour::Bytes>(idBytes);
    default: return Gatherer_Of<SampleColour::Picture>(idBytes);
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace Rows {
HWY_EXPORT(Find_Pixel_Gatherer);
}

ZVPixelGatherer Get_Pixel_Gatherer(SampleColour colour, long idBytes)
{
    using namespace Rows;
    return HWY_DYNAMIC_DISPATCH(Find_Pixel_Gatherer)(colour, idBytes);
}

#endif
