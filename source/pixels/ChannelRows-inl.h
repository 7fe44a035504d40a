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

// Vectors of one pixel. Max takes its second operand, or leaves the NaN, when the first is one; either
// converts to 0.

using FloatTag = hn::FixedTag<float, 4>;
using IntTag = hn::RebindToSigned<FloatTag>;

inline hn::VFromD<IntTag> Scaled_To_Byte(float const* rgba)
{
    FloatTag const df;
    auto const scaled = hn::Mul(hn::LoadU(df, rgba), hn::Set(df, 255.0F));
    return hn::ConvertTo(IntTag(), hn::Min(hn::Max(scaled, hn::Zero(df)), hn::Set(df, 255.0F)));
}

inline long To_Byte_Vectors(float const* source, uint8_t* target, long count)
{
    hn::FixedTag<int16_t, 8> const d16;
    hn::FixedTag<uint8_t, 8> const d8;
    long done = 0;
    for (; count - done >= 8; done += 8) {
        // In order, as vectors of one block are.
        auto const both =
            hn::ReorderDemote2To(d16, Scaled_To_Byte(source + done), Scaled_To_Byte(source + done + 4));
        hn::StoreU(hn::DemoteTo(d8, both), d8, target + done);
    }
    return done;
}

template <int BITS> long To_Rounded_Vectors(float const* source, uint16_t* target, long count)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    alignas(16) static constexpr float lowest[] = {0.0F, 0.0F, 0.0F, -infinity};
    alignas(16) static constexpr float highest[] = {1.0F, 1.0F, 1.0F, infinity};
    FloatTag const df;
    hn::RebindToUnsigned<FloatTag> const du;
    hn::Rebind<uint16_t, FloatTag> const d16;
    hn::Repartition<double, FloatTag> const dd;
    hn::Half<FloatTag> const dHalf;
    auto const low = hn::Load(df, lowest), high = hn::Load(df, highest);
    auto const factor = hn::Set(dd, static_cast<double>(maximum<BITS>)),
               magic = hn::Set(dd, ZV_ROUNDING_MAGIC);
    auto const mask = hn::Set(du, maximum<BITS>);
    for (long done = 0; done < count; done += 4) {
        auto const rgba = hn::Min(hn::Max(hn::LoadU(df, source + done), low), high);
        // The product is exact, so fusing it with the sum changes nothing.
        auto const rg = hn::MulAdd(hn::PromoteTo(dd, hn::LowerHalf(dHalf, rgba)), factor, magic);
        auto const ba = hn::MulAdd(hn::PromoteTo(dd, hn::UpperHalf(dHalf, rgba)), factor, magic);
        auto const rounded = hn::And(hn::ConcatEven(du, hn::BitCast(du, ba), hn::BitCast(du, rg)), mask);
        hn::StoreU(hn::DemoteTo(d16, hn::BitCast(IntTag(), rounded)), d16, target + done);
    }
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
