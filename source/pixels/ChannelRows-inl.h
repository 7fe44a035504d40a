// Channels from one depth to another, compiled for each instruction set: plain loops for the compiler to
// vectorise, but for those from float. Each gives, bit for bit, what the told arithmetic in double precision
// gives; the tests go through all values.

// Included once for each target, hence no #pragma once.
#if defined(ZV_CHANNEL_ROWS_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef ZV_CHANNEL_ROWS_INL
#undef ZV_CHANNEL_ROWS_INL
#else
#define ZV_CHANNEL_ROWS_INL
#endif

#include "RowFormats-inl.h"

#include <algorithm>
#include <limits>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

template <int BITS> inline constexpr uint32_t maximum = (1U << BITS) - 1;

// ---- between integers -------------------------------------------------------------------------------------

/// How much of value * max(TO) / max(FROM) is left beside the whole quotient of the maxima, truncated: the
/// high half of a 16-bit product, which is one instruction where a division takes several.
struct WideningRest {
    uint16_t offset;
    uint16_t factor;

    // In steps of 16 bits, by which the compiler recognises the instruction.
    constexpr uint16_t operator()(uint16_t value) const
    {
        return static_cast<uint16_t>(uint32_t{static_cast<uint16_t>(value + offset)} * factor >> 16);
    }
};

/// The offset and the factor that are exact for every value.
template <int FROM, int TO> constexpr WideningRest Find_Widening_Rest()
{
    constexpr uint32_t rest = maximum<TO> % maximum<FROM>;
    constexpr auto nearest = static_cast<uint16_t>((rest << 16) / maximum<FROM> + 1);
    constexpr auto raised = static_cast<uint16_t>(rest << (16 - FROM));
    for (WideningRest const attempt : {WideningRest{0, nearest}, WideningRest{1, raised}}) {
        bool isExact = true;
        for (uint32_t value = 0; value <= maximum<FROM>; ++value)
            isExact = isExact && attempt(static_cast<uint16_t>(value)) == value * rest / maximum<FROM>;
        if (isExact) return attempt;
    }
    return {};
}

/// value * max(TO) / max(FROM), truncated.
template <int FROM, int TO> uint16_t Widen(uint16_t value)
{
    constexpr uint32_t quotient = maximum<TO> / maximum<FROM>;
    if constexpr (maximum<TO> % maximum<FROM> == 0) {
        return static_cast<uint16_t>(value * quotient);
    } else {
        constexpr WideningRest rest = Find_Widening_Rest<FROM, TO>();
        static_assert(rest.factor != 0);
        return static_cast<uint16_t>(value * quotient + rest(value));
    }
}

// ---- to float ---------------------------------------------------------------------------------------------

/// value / max(BITS) as the double quotient or product narrows. 1/max is 2^-BITS and a rest that a second
/// product adds: the one rounding that matters is the last, and there is no division.
template <int BITS> struct FloatFactors {
    static constexpr float power = 1.0F / (1 << BITS);
    static constexpr auto rest = static_cast<float>(1.0 / maximum<BITS> - power);
};

template <int BITS> float To_Float(uint16_t value)
{
    using Factors = FloatFactors<BITS>;
    auto const number = static_cast<float>(value);
    return number * Factors::power + number * Factors::rest;
}

#if ZV_HAS_VECTORS

template <int BITS, typename T> long To_Float_Vectors(T const* source, float* target, long count)
{
    hn::ScalableTag<float> const df;
    hn::RebindToSigned<decltype(df)> const di;
    hn::Rebind<T, decltype(df)> const dFrom;
    auto const power = hn::Set(df, FloatFactors<BITS>::power), rest = hn::Set(df, FloatFactors<BITS>::rest);
    auto const step = static_cast<long>(hn::Lanes(df));
    long done = 0;
    for (; count - done >= step; done += step) {
        auto const number = hn::ConvertTo(df, hn::PromoteTo(di, hn::LoadU(dFrom, source + done)));
        // Times a power of two is exact, so fusing it with the sum changes nothing.
        hn::StoreU(hn::MulAdd(number, power, hn::Mul(number, rest)), df, target + done);
    }
    return done;
}

#endif

// ---- from float -------------------------------------------------------------------------------------------

// Truncation to 8 bits may multiply in single precision: no float below n / 255 has a product that rounds up
// to n.

inline uint8_t To_Byte(float value)
{
    float const scaled = value * 255.0F;
    return scaled > 0.0F ? static_cast<uint8_t>(std::min(scaled, 255.0F)) : uint8_t{0};
}

/// To 10, 12 or 16 bits with the double product rounded by f_round.
template <int BITS> uint16_t To_Rounded(float value, bool isAlpha)
{
    if (!isAlpha) value = value > 0.0F ? std::min(value, 1.0F) : 0.0F;
    return static_cast<uint16_t>(static_cast<uint32_t>(f_round(value * static_cast<double>(maximum<BITS>))) &
                                 maximum<BITS>);
}

#if ZV_HAS_VECTORS

// Vectors of one pixel. Where Min or Max meets a NaN it gives the second operand or the NaN, and NaN converts
// to 0 or to a number so low that it saturates to 0.

using FloatTag = hn::FixedTag<float, 4>;
using IntTag = hn::RebindToSigned<FloatTag>;

/// Truncates what is below 2^31. ConvertTo would spend as much again on larger values.
inline hn::VFromD<IntTag> Truncate_Small(hn::VFromD<FloatTag> value)
{
#if HWY_ARCH_X86
    return hn::VFromD<IntTag>{_mm_cvttps_epi32(value.raw)};
#else
    return hn::ConvertTo(IntTag(), value);
#endif
}

inline hn::VFromD<IntTag> Scaled_Pixel(float const* rgba)
{
    FloatTag const df;
    auto const scaled = hn::Mul(hn::LoadU(df, rgba), hn::Set(df, 255.0F));
    return Truncate_Small(hn::Min(hn::Set(df, 255.0F), scaled));
}

inline long To_Byte_Vectors(float const* source, uint8_t* target, long count)
{
    hn::FixedTag<int16_t, 8> const d16;
    hn::FixedTag<uint8_t, 8> const d8;
    long done = 0;
    for (; count - done >= 8; done += 8) {
        // In order, as vectors of one block are; negative numbers saturate to 0.
        auto const both =
            hn::ReorderDemote2To(d16, Scaled_Pixel(source + done), Scaled_Pixel(source + done + 4));
        hn::StoreU(hn::DemoteTo(d8, both), d8, target + done);
    }
    return done;
}

using PixelTag = hn::Rebind<uint16_t, FloatTag>;

template <int BITS> hn::VFromD<PixelTag> Low_Bits(hn::VFromD<hn::RebindToUnsigned<FloatTag>> words)
{
    auto const inRange = hn::And(words, hn::Set(hn::RebindToUnsigned<FloatTag>(), maximum<BITS>));
    return hn::DemoteTo(PixelTag(), hn::BitCast(IntTag(), inRange));
}

template <int BITS> hn::VFromD<PixelTag> Rounded_Pixel(float const* rgba)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    alignas(16) static constexpr float lowest[] = {0.0F, 0.0F, 0.0F, -infinity};
    alignas(16) static constexpr float highest[] = {1.0F, 1.0F, 1.0F, infinity};
    FloatTag const df;
    hn::RebindToUnsigned<FloatTag> const du;
    hn::Repartition<double, FloatTag> const dd;
    hn::Half<FloatTag> const dHalf;
    auto const factor = hn::Set(dd, static_cast<double>(maximum<BITS>)),
               magic = hn::Set(dd, ZV_ROUNDING_MAGIC);
    auto const clamped = hn::Min(hn::Max(hn::LoadU(df, rgba), hn::Load(df, lowest)), hn::Load(df, highest));
#if HWY_NATIVE_FMA
    // 1.5 * 2^23 does in single precision what the constant of f_round does in double: the exact product is
    // rounded once, at the place of the integer. An alpha that leaves 22 bits, or is a NaN, goes the long
    // way.
    if (hn::AllTrue(df, hn::Lt(hn::Abs(clamped), hn::Set(df, 64.0F)))) {
        auto const sum =
            hn::MulAdd(clamped, hn::Set(df, static_cast<float>(maximum<BITS>)), hn::Set(df, 12582912.0F));
        return Low_Bits<BITS>(hn::BitCast(du, sum));
    }
#endif
    // The product is exact, so fusing it with the sum changes nothing.
    auto const rg = hn::MulAdd(hn::PromoteTo(dd, hn::LowerHalf(dHalf, clamped)), factor, magic);
    auto const ba = hn::MulAdd(hn::PromoteTo(dd, hn::UpperHalf(dHalf, clamped)), factor, magic);
    auto const rounded = hn::ConcatEven(du, hn::BitCast(du, ba), hn::BitCast(du, rg));
    return Low_Bits<BITS>(rounded);
}

template <int BITS> long To_Rounded_Vectors(float const* source, uint16_t* target, long count)
{
    for (long done = 0; done < count; done += 4)
        hn::StoreU(Rounded_Pixel<BITS>(source + done), PixelTag(), target + done);
    return count;
}

#endif

// ---- rows -------------------------------------------------------------------------------------------------

template <typename From, typename To> typename To::Channel Convert_Integer(typename From::Channel value)
{
    if constexpr (To::bits < From::bits)
        return static_cast<typename To::Channel>(value >> (From::bits - To::bits));
    else if constexpr (From::isNative && To::bits < 16)
        return static_cast<uint16_t>(value << (To::bits - From::bits));
    else
        return Widen<From::bits, To::bits>(value);
}

#if ZV_HAS_VECTORS

template <int FROM, int TO> Pair Widen_Pair(Pair values)
{
    PairTag const d;
    auto const whole = hn::Mul(values, hn::Set(d, static_cast<uint16_t>(maximum<TO> / maximum<FROM>)));
    if constexpr (maximum<TO> % maximum<FROM> == 0) {
        return whole;
    } else {
        constexpr WideningRest rest = Find_Widening_Rest<FROM, TO>();
        return hn::Add(whole, hn::MulHigh(hn::Add(values, hn::Set(d, rest.offset)), hn::Set(d, rest.factor)));
    }
}

template <typename From, typename To> Pair Convert_Pair(uint8_t const* pixels)
{
    if constexpr (From::bits == 32) {
        auto const* const rgba = reinterpret_cast<float const*>(pixels);
        return hn::Combine(PairTag(), Rounded_Pixel<To::bits>(rgba + 4), Rounded_Pixel<To::bits>(rgba));
    } else if constexpr (To::bits < From::bits) {
        return hn::ShiftRight<From::bits - To::bits>(From::Load_Pair(pixels));
    } else {
        return Widen_Pair<From::bits, To::bits>(From::Load_Pair(pixels));
    }
}

/// Converts between RGBA types, one of them packed, to integers without a step between: two pixels at
/// a time, as long as both can be loaded and stored. Tells how many.
template <typename From, typename To> long Convert_Pairs(uint8_t const* source, uint8_t* target, long count)
{
    long done = 0;
    for (;
         (count - done) * From::packSize >= From::pairBytes && (count - done) * To::packSize >= To::pairBytes;
         done += 2)
        To::Store_Pair(Convert_Pair<From, To>(source + done * From::packSize), target + done * To::packSize);
    return done;
}

#endif

template <int BITS, typename Channel>
void From_Float_Channels(AnyPlace<float> const* HWY_RESTRICT source, AnyPlace<Channel>* HWY_RESTRICT target,
                         long count)
{
    long done = 0;
#if ZV_HAS_VECTORS
    if constexpr (BITS == 8)
        done = To_Byte_Vectors(&source->value, &target->value, count);
    else
        done = To_Rounded_Vectors<BITS>(&source->value, &target->value, count);
#endif
    for (; done < count; ++done) {
        if constexpr (BITS == 8)
            target[done].value = To_Byte(source[done].value);
        else
            target[done].value = To_Rounded<BITS>(source[done].value, done % 4 == 3);
    }
}

/// Converts `count` channels, whole pixels, between formats of different depths, both unpacked. Integers from
/// a native source are shifted up into 10 and 12 bits instead of scaled.
template <typename From, typename To> void Convert_Channels(void const* source, void* target, long count)
{
    auto const* const HWY_RESTRICT from = static_cast<AnyPlace<typename From::Channel> const*>(source);
    auto* const HWY_RESTRICT to = static_cast<AnyPlace<typename To::Channel>*>(target);
    if constexpr (From::bits == 32) {
        From_Float_Channels<To::bits>(from, to, count);
    } else if constexpr (To::bits == 32) {
        long done = 0;
#if ZV_HAS_VECTORS
        done = To_Float_Vectors<From::bits>(&from->value, &to->value, count);
#endif
        for (; done < count; ++done)
            to[done].value = To_Float<From::bits>(from[done].value);
    } else {
        for (long i = 0; i < count; ++i)
            to[i].value = Convert_Integer<From, To>(from[i].value);
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#endif
