// The tables of row arithmetic, one for each RGBA type and instruction set.
#include "RowMath.h"

#include "VectorTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixels/RowMath.cpp"
#include <hwy/foreach_target.h>

#include "AlphaMath-inl.h"
#include "FieldMath-inl.h"

#include <algorithm>

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

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace Rows {
HWY_EXPORT(Find_Row_Math);
}

ZVRowMath const* Get_Row_Math(ZVBitmapType type)
{
    using namespace Rows;
    if (type < ZV_BITMAP_RGBA8 || type > ZV_BITMAP_RGBAFLOAT) return nullptr;
    return HWY_DYNAMIC_DISPATCH(Find_Row_Math)(type);
}

ZVRowWeight::ZVRowWeight(double weight)
    : value(weight == weight ? std::clamp(weight, -32767.0, 32767.0) : 0.0), factor(0), identity(0),
      hasFactor(true)
{
    for (int i = 0; i < 256; ++i)
        products[i] = static_cast<uint8_t>(static_cast<int32_t>(i * value));
    if (value == 1.0) {
        identity = 0xFFFF;
        return;
    }
    // The least factor that is enough for every product; most weights below 1 have one that is too much for
    // none.
    uint32_t least = 0;
    for (uint32_t i = 1; i < 256; ++i)
        least = std::max(least, ((uint32_t{products[i]} << 16) + i - 1) / i);
    for (uint32_t i = 0; i < 256; ++i)
        hasFactor = hasFactor && (i * least >> 16) == products[i];
    hasFactor = hasFactor && least <= 0xFFFF;
    factor = static_cast<uint16_t>(least);
}

#endif
