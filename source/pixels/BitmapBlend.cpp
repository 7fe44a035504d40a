// Bitmaps with straight alpha composited onto native bitmaps, over what is there or over one colour.
#include "ConvertRows.h"
#include "VectorTargets.h"
#include "ZVBitmap.h"
#include "ZVEnvironment.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixels/BitmapBlend.cpp"
#include <hwy/foreach_target.h>

#include "BlendRows-inl.h"
#include "RowFormats-inl.h"

#include <algorithm>
#include <cstring>

/// Blends pixels of a source row over a native row, or over a colour word into it.
using BlendRow = void (*)(void const* source, uint32_t colour, void* target, long count);

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

/// Pixels that go through the buffers at a time.
constexpr long blendStage = 256;

/// Pixels of a colour word in the order red, green, blue.
inline void Repeat_Colour(uint32_t colour, uint8_t* target, long count)
{
    for (long i = 0; i < count; ++i) {
        for (int c = 0; c < 3; ++c)
            target[4 * i + c] = static_cast<uint8_t>(colour >> (16 - 8 * c));
    }
}

template <typename Source> double Fraction(typename Source::Channel value)
{
    if constexpr (Source::bits == 32)
        return value;
    else
        return value * (1.0 / ((1 << Source::bits) - 1));
}

#if ZV_HAS_VECTORS

using FloatTag = hn::FixedTag<float, 4>;
using DoubleTag = hn::FixedTag<double, 2>;
using IntTag = hn::FixedTag<int32_t, 4>;

/// The four channels of a pixel as fractions: red and green, blue and alpha.
struct FractionPairs {
    hn::VFromD<DoubleTag> redGreen, blueAlpha;
};

template <typename Vector> FractionPairs Promote_Pairs(Vector channels)
{
    hn::Half<hn::DFromV<Vector>> const half;
    return {hn::PromoteTo(DoubleTag(), hn::LowerHalf(half, channels)),
            hn::PromoteTo(DoubleTag(), hn::UpperHalf(half, channels))};
}

template <typename Source> FractionPairs Load_Fractions(typename Source::Channel const* rgba)
{
    if constexpr (Source::bits == 32) {
        return Promote_Pairs(hn::LoadU(FloatTag(), rgba));
    } else {
        FractionPairs const raw =
            Promote_Pairs(hn::PromoteTo(IntTag(), hn::LoadU(hn::FixedTag<uint16_t, 4>(), rgba)));
        auto const unit = hn::Set(DoubleTag(), Fraction<Source>(1));
        return {hn::Mul(raw.redGreen, unit), hn::Mul(raw.blueAlpha, unit)};
    }
}

/// The same truncation as Truncated_Byte, of four values.
inline void Store_Truncated(hn::VFromD<FloatTag> values, uint8_t* target)
{
    hn::FixedTag<uint8_t, 4> const d8;
#if HWY_ARCH_X86
    hn::VFromD<IntTag> const truncated{_mm_cvttps_epi32(values.raw)};  // 0x80000000 for what does not fit
#else
    auto const fits = hn::Lt(hn::Abs(values), hn::Set(FloatTag(), 2147483648.0F));
    auto const truncated = hn::ConvertTo(IntTag(), hn::IfThenElseZero(fits, values));
#endif
    hn::StoreU(hn::DemoteTo(d8, hn::And(truncated, hn::Set(IntTag(), 0xFF))), d8, target);
}

/// Blends one pixel over the four bytes of a target; the fourth becomes anything.
template <typename Source>
void Blend_Pixel(typename Source::Channel const* rgba, BlendAlpha const& alpha, uint8_t* target)
{
    FloatTag const df;
    DoubleTag const dd;
    hn::Half<FloatTag> const half;
    auto const bytes = hn::PromoteTo(IntTag(), hn::LoadU(hn::FixedTag<uint8_t, 4>(), target));
    auto const kept = hn::Mul(hn::ConvertTo(df, bytes), hn::Set(df, alpha.rest));
    auto const scaled = hn::Set(dd, alpha.scaled);
    FractionPairs const over = Load_Fractions<Source>(rgba), back = Promote_Pairs(kept);
    auto const redGreen = hn::Add(back.redGreen, hn::Mul(scaled, over.redGreen));
    auto const blueAlpha = hn::Add(back.blueAlpha, hn::Mul(scaled, over.blueAlpha));
    Store_Truncated(hn::Combine(df, hn::DemoteTo(half, blueAlpha), hn::DemoteTo(half, redGreen)), target);
}

#endif

/// Blends a stage of channels over the bytes red, green, blue of each target pixel.
template <typename Source> void Blend_Channels(void const* source, uint8_t* target, long count)
{
    auto const* const channels = static_cast<AnyPlace<typename Source::Channel> const*>(source);
    BlendAlpha alphas[blendStage];
    for (long i = 0; i < count; ++i)
        alphas[i] = BlendAlpha(Fraction<Source>(channels[4 * i + 3].value));
    for (long i = 0; i < count; ++i) {
        auto const* const rgba = channels + 4 * i;
#if ZV_HAS_VECTORS
        Blend_Pixel<Source>(&rgba->value, alphas[i], target + 4 * i);
#else
        for (int c = 0; c < 3; ++c) {
            uint8_t& byte = target[4 * i + c];
            byte = Truncated_Byte(Blended(alphas[i], Fraction<Source>(rgba[c].value), byte));
        }
#endif
    }
}

/// Blends a stage of pixels of more than 8 bits.
template <typename Source> void Blend_Deep(uint8_t const* source, uint8_t* target, long count)
{
    if constexpr (Source::isPacked) {
        alignas(64) typename Source::Channel channels[blendStage * 4];
        Source::Unpack(source, channels, count);
        Blend_Channels<Source>(channels, target, count);
    } else {
        Blend_Channels<Source>(source, target, count);
    }
}

/// Blends a stage over bytes in the order red, green, blue.
template <typename Source, Over OVER>
void Blend_Stage(uint8_t const* source, uint32_t colour, uint8_t* target, long count)
{
    if constexpr (Source::bits == 8) {
        Blend_RGBA8_Row<OVER, false>(source, colour, target, count);
    } else {
        if (OVER == Over::colour) Repeat_Colour(colour, target, count);
        Blend_Deep<Source>(source, target, count);
    }
}

template <typename Source, typename Target, Over OVER>
void Blend_Row(void const* source, uint32_t colour, void* target, long count)
{
    auto const* from = static_cast<uint8_t const*>(source);
    auto* to = static_cast<uint8_t*>(target);
    if constexpr (Source::bits == 8 && Target::packSize == 4) {
        Blend_RGBA8_Row<OVER, true>(from, colour, to, count);
    } else {
        alignas(64) uint8_t blended[blendStage * 4] = {};
        for (; count > 0; count -= blendStage) {
            long const stage = std::min(count, blendStage);
            if (OVER == Over::target) Target::Unpack(to, blended, stage);
            Blend_Stage<Source, OVER>(from, colour, blended, stage);
            Target::Pack(blended, to, stage);
            from += stage * Source::packSize;
            to += stage * Target::packSize;
        }
    }
}

template <typename Source, Over OVER> BlendRow Find_Target(ZVRowFormat to)
{
    switch (to) {
    case ROW_NATIVE16: return Blend_Row<Source, FormatNative16, OVER>;
    case ROW_NATIVE24: return Blend_Row<Source, FormatNative24, OVER>;
    case ROW_NATIVE32: return Blend_Row<Source, FormatNative32, OVER>;
    default: return nullptr;
    }
}

template <Over OVER> BlendRow Find_Source(ZVRowFormat from, ZVRowFormat to)
{
    switch (from) {
    case ROW_RGBA8: return Find_Target<FormatRGBA8, OVER>(to);
    case ROW_RGBA10: return Find_Target<FormatRGBA10, OVER>(to);
    case ROW_RGBA12: return Find_Target<FormatRGBA12, OVER>(to);
    case ROW_RGBA16: return Find_Target<FormatRGBA16, OVER>(to);
    case ROW_RGBAFLOAT: return Find_Target<FormatRGBAFloat, OVER>(to);
    default: return nullptr;
    }
}

BlendRow Find_Blend_Row(ZVRowFormat from, ZVRowFormat to, bool isOverColour)
{
    return isOverColour ? Find_Source<Over::colour>(from, to) : Find_Source<Over::target>(from, to);
}

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace Rows {
HWY_EXPORT(Find_Blend_Row);
}

namespace {

/// A rectangle of the source and where it goes. Limits are exclusive.
struct BlendArea {
    long sourceX, sourceY, width, height, x, y;

    /// A negative size stands for the source's.
    void Default_Size(ZVBitmap const& source)
    {
        if (width < 0) width = source.Width;
        if (height < 0) height = source.Height;
    }

    /// Keeps what goes to the right of and below a point.
    void Clip_Origin(long left, long top)
    {
        if (x < left) {
            sourceX += left - x;
            width -= left - x;
            x = left;
        }
        if (y < top) {
            sourceY += top - y;
            height -= top - y;
            y = top;
        }
    }

    void Clip_End(long right, long bottom)
    {
        width = std::min(width, right - x);
        height = std::min(height, bottom - y);
    }

    /// Keeps what lies in both bitmaps, whatever the caller asked for.
    void Clip_To_Bitmaps(ZVBitmap const& source, ZVNativeBitmap const& target)
    {
        Clip_Origin(std::max(0L, x - sourceX), std::max(0L, y - sourceY));
        Clip_End(std::min<long>(target.Width, x + source.Width - sourceX),
                 std::min<long>(target.Height, y + source.Height - sourceY));
    }
};

void Blend_Area(ZVBitmap const& source, ZVNativeBitmap& target, BlendArea const& area, uint32_t colour,
                bool isOverColour)
{
    using namespace Rows;
    if (area.width < 1 || area.height < 1 || !source.Pixels || !target.Pixels) return;
    BlendRow const blend =
        HWY_DYNAMIC_DISPATCH(Find_Blend_Row)(Row_Format(source.Type), Row_Format(target), isOverColour);
    if (!blend) return;
    unsigned char const* from =
        source.Pixels + area.sourceY * source.RowBytes + area.sourceX * source.PackSize;
    unsigned char* to = target.Pixels + target.Offset + area.y * target.RowBytes + area.x * target.PackSize;
    for (long row = 0; row < area.height; ++row, from += source.RowBytes, to += target.RowBytes)
        blend(from, colour, to, area.width);
}

}  // namespace

void AlphaBlendBitmapZV(ZVBitmap const* src, ZVNativeBitmap* dst, long sx, long sy, long w, long h, long dx,
                        long dy, ZVRectT<long> const* clip)
{
    if (!src || !dst) return;
    ZVRectT<long> const limits = clip ? *clip : ZVRectT<long>{0, 0, dst->Width, dst->Height};
    BlendArea area{sx, sy, w, h, dx, dy};
    area.Default_Size(*src);
    area.Clip_Origin(limits.x, limits.y);
    area.Clip_End(limits.width, limits.height);
    area.Clip_To_Bitmaps(*src, *dst);
    Blend_Area(*src, *dst, area, 0, false);
}

void AlphaCopyBitmapZV(ZVBitmap const* src, ZVNativeBitmap* dst, unsigned long background, long sx, long sy,
                       long w, long h, long dx, long dy)
{
    if (!src || !dst) return;
    BlendArea area{sx, sy, w, h, dx, dy};
    area.Default_Size(*src);
    area.Clip_To_Bitmaps(*src, *dst);
    Blend_Area(*src, *dst, area, static_cast<uint32_t>(GetColorZV(background)), true);
}

#endif
