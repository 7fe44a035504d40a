// The tables of row arithmetic, one for each RGBA type and instruction set.
#include "RowMath.h"

#include "VectorTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixels/RowMath.cpp"
#include <hwy/foreach_target.h>

#include "AlphaMath-inl.h"
#include "FieldMath-inl.h"

#include <algorithm>
#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

template <typename Format> constexpr ZVRowMath Row_Math_Of()
{
    return {
        .average = Average_Row<Format>,
        .smooth = Smooth_Row<Format>,
        .weigh = Weigh_Row<Format, false>,
        .addWeighed = Weigh_Row<Format, true>,
        .mixFields = Weigh_Fields<Format, false>,
        .addFields = Weigh_Fields<Format, true>,
        .setAlpha = Set_Alpha<Format>,
        .invertAlpha = Invert_Alpha<Format>,
        .takeLuminance = Take_Luminance<Format>,
        .removeMatte = Remove_Matte<Format>,
        .showAlpha = Show_Alpha<Format>,
        .addMatte = Add_Matte<Format>,
    };
}

ZVRowMath const* Find_Row_Math(ZVBitmapType type)
{
    static constexpr ZVRowMath tables[] = {Row_Math_Of<FormatRGBA8>(), Row_Math_Of<FormatRGBA10>(),
                                           Row_Math_Of<FormatRGBA12>(), Row_Math_Of<FormatRGBA16>(),
                                           Row_Math_Of<FormatRGBAFloat>()};
    return &tables[type - ZV_BITMAP_RGBA8];
}

bool Gives_All_Products(ZVRowWeight const& weight, ZVBitmapType type)
{
    return type == ZV_BITMAP_RGBA8
               ? Has_All_Products<uint8_t>(weight, 255)
               : Has_All_Products<uint16_t>(weight, (1U << GetBitsPerChannelZV(type)) - 1);
}

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace Rows {
HWY_EXPORT(Find_Row_Math);
HWY_EXPORT(Gives_All_Products);
}  // namespace Rows

ZVRowMath const* Get_Row_Math(ZVBitmapType type)
{
    using namespace Rows;
    if (type < ZV_BITMAP_RGBA8 || type > ZV_BITMAP_RGBAFLOAT) return nullptr;
    return HWY_DYNAMIC_DISPATCH(Find_Row_Math)(type);
}

ZVRowWeight::ZVRowWeight(double weight, ZVBitmapType type, long pixels)
    : value(weight == weight ? std::clamp(weight, -32767.0, 32767.0) : 0.0), factor(0), identity(0),
      hasFactor(false)
{
    using namespace Rows;
    // The products of all values cost about as much as an eighth of so many pixels.
    if (type == ZV_BITMAP_RGBAFLOAT || pixels < 1L << (GetBitsPerChannelZV(type) - 1)) return;
    if (value == 1.0) {
        identity = 0xFFFF;
        hasFactor = true;
    } else if (value >= 0.0 && value < 1.0) {
        // Products change where the weight passes a fraction of two channel values. Such fractions are
        // farther apart than factors, so that one of the two next to the weight lies where it lies among
        // them.
        auto const below = static_cast<uint32_t>(value * (type == ZV_BITMAP_RGBA8 ? 0x1p16 : 0x1p32));
        for (uint32_t const candidate : {below, below + 1}) {
            factor = candidate;
            hasFactor = HWY_DYNAMIC_DISPATCH(Gives_All_Products)(*this, type);
            if (hasFactor) return;
        }
    }
}

ZVMatteRemoval::ZVMatteRemoval(double const* fractions, bool inverted, ZVBitmapType type)
    : isInverted(inverted)
{
    bool const isFloat = type == ZV_BITMAP_RGBAFLOAT;
    double const max = isFloat ? 1.0 : static_cast<double>((1L << GetBitsPerChannelZV(type)) - 1);
    for (int i = 0; i < 3; ++i) {
        matte[i] = fractions[i] * max;
        // What was a channel value once is made whole again: the way through a fraction may have cost it its
        // last bit.
        double const whole = std::round(matte[i]);
        if (!isFloat && whole >= 0 && whole <= max && std::abs(matte[i] - whole) < 1e-6) matte[i] = whole;
    }
    if (type != ZV_BITMAP_RGBA8) return;
    for (int stored = 0; stored < 256; ++stored) {
        Line& line = byAlpha[stored];
        int const alpha = inverted ? 255 - stored : stored;
        for (int i = 0; i < 3; ++i) {
            // As 255 * c is whole, what stands beside it may be cut to a whole number before the division;
            // quotients are then fractions over alpha, and half of one more keeps errors from mattering.
            double const beside =
                std::floor(alpha * (0.5 + 0x1p-32) - matte[i] * (255 - alpha));  // halves go up
            line.scale[i] = alpha ? 255.0F / static_cast<float>(alpha) : 1.0F;
            // Within some channels' worth of what matters, and a number.
            line.bias[i] =
                alpha ? static_cast<float>(std::min(std::max(-1e6, (beside + 0.5) / alpha), 1e6)) : 0.0F;
        }
        line.scale[3] = inverted ? -1.0F : 1.0F;
        line.bias[3] = inverted ? 255.0F : 0.0F;
    }
}

#endif
