// Rows from and to the alpha conventions of files, compiled for each instruction set. A pixel of an integer
// type is handled as one word with red lowest, which the compiler vectorises where it does not see through
// four channels.

// Included once for each target, hence no #pragma once.
#if defined(ZV_ALPHA_MATH_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef ZV_ALPHA_MATH_INL
#undef ZV_ALPHA_MATH_INL
#else
#define ZV_ALPHA_MATH_INL
#endif

#include "BlendRows-inl.h"
#include "RowMath.h"
#include "RowStages-inl.h"
#include "VectorBytes-inl.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

// ---- words ------------------------------------------------------------------------------------------------

struct FloatPixel {
    float red, green, blue, alpha;
};

/// The word of a pixel: four bytes, or four 16-bit channels of 10, 12 or 16 bits. For float, the pixel
/// itself.
template <typename Format>
using PixelWord = std::conditional_t<Format::bits == 8, uint32_t,
                                     std::conditional_t<Format::bits == 32, FloatPixel, uint64_t>>;

/// Bits of a channel's place within the word.
template <typename Format> inline constexpr int placeBits = Format::bits == 8 ? 8 : 16;

template <typename Format>
inline constexpr PixelWord<Format> channelMax = (PixelWord<Format>{1} << Format::bits) - 1;

template <typename Format> PixelWord<Format> Channel_Of(PixelWord<Format> word, int channel)
{
    constexpr PixelWord<Format> place = (PixelWord<Format>{1} << placeBits<Format>)-1;
    return word >> channel * placeBits<Format> & place;
}

template <typename Format>
PixelWord<Format> Make_Word(PixelWord<Format> red, PixelWord<Format> green, PixelWord<Format> blue,
                            PixelWord<Format> alpha)
{
    constexpr int bits = placeBits<Format>;
    return red | green << bits | blue << 2 * bits | alpha << 3 * bits;
}

/// Turns alpha when it is inverted: the maximum minus it.
template <typename Format> PixelWord<Format> Inversion(bool isInverted)
{
    return isInverted ? Make_Word<Format>(0, 0, 0, channelMax<Format>) : 0;
}

/// Puts each pixel of a row through `change`.
template <typename Format, typename Change> void Change_Pixels(void* row, long pixels, Change change)
{
    auto const changeAll = [change](long count, auto* channels) {
        auto* const words = reinterpret_cast<AnyPlace<PixelWord<Format>>*>(channels);
        for (long i = 0; i < count; ++i)
            words[i].value = change(words[i].value);
    };
    Work_On<Format>(pixels, changeAll, ChangedRow<Format>(row));
}

// ---- alpha alone ------------------------------------------------------------------------------------------

template <typename Format> void Set_Alpha(void* row, bool isOpaque, long pixels)
{
    if constexpr (Format::bits == 32) {
        Change_Pixels<Format>(row, pixels, [=](FloatPixel p) {
            return FloatPixel{p.red, p.green, p.blue, isOpaque ? 1.0F : 0.0F};
        });
    } else {
        auto const alpha = Inversion<Format>(true), set = Inversion<Format>(isOpaque);
        Change_Pixels<Format>(row, pixels, [=](auto word) { return (word & ~alpha) | set; });
    }
}

template <typename Format> void Invert_Alpha(void* row, long pixels)
{
    if constexpr (Format::bits == 32) {
        Change_Pixels<Format>(row, pixels, [](FloatPixel p) {
            return FloatPixel{p.red, p.green, p.blue, 1.0F - p.alpha};
        });
    } else {
        auto const inversion = Inversion<Format>(true);
        Change_Pixels<Format>(row, pixels, [=](auto word) { return word ^ inversion; });
    }
}

// ---- luminance --------------------------------------------------------------------------------------------

/// value / 3 of a value below 2^18, in lanes as wide as the word; 0xAAAAAAAB is 2^33 / 3, rounded up.
inline uint32_t Third_Of(uint32_t value)
{
    return value * 0x5556 >> 16;  // of bytes alone
}
inline uint64_t Third_Of(uint64_t value)
{
    return static_cast<uint64_t>(static_cast<uint32_t>(value)) * 0xAAAAAAABU >> 33;
}

/// Thirds are never halves, so 1 more before the division rounds, and the complement rounds alike.
template <typename Format> void Take_Luminance(void* row, uint32_t background, bool isInverted, long pixels)
{
    if constexpr (Format::bits == 32) {
        float const red = static_cast<float>((background >> 16 & 0xFF) / 255.0);
        float const green = static_cast<float>((background >> 8 & 0xFF) / 255.0);
        float const blue = static_cast<float>((background & 0xFF) / 255.0);
        Change_Pixels<Format>(row, pixels, [=](FloatPixel p) {
            double const mean = (static_cast<double>(p.red) + p.green + p.blue) / 3.0;
            return FloatPixel{red, green, blue, static_cast<float>(isInverted ? 1.0 - mean : mean)};
        });
    } else {
        using Word = PixelWord<Format>;
        // Scaled by max / 255 and rounded; no quotient lies halfway.
        auto const component = [=](int shift) {
            return ((background >> shift & 0xFF) * channelMax<Format> + 127) / 255;
        };
        Word const colors = Make_Word<Format>(component(16), component(8), component(0), 0);
        Word const inversion = Inversion<Format>(isInverted);
        Change_Pixels<Format>(row, pixels, [=](Word word) {
            Word const sum =
                Channel_Of<Format>(word, 0) + Channel_Of<Format>(word, 1) + Channel_Of<Format>(word, 2);
            return colors | (Make_Word<Format>(0, 0, 0, Third_Of(sum + 1)) ^ inversion);
        });
    }
}

template <typename Format> void Show_Alpha(void* row, bool isInverted, long pixels)
{
    if constexpr (Format::bits == 32) {
        Change_Pixels<Format>(row, pixels, [=](FloatPixel p) {
            float const grey = isInverted ? 1.0F - p.alpha : p.alpha;
            return FloatPixel{grey, grey, grey, 1.0F};
        });
    } else {
        using Word = PixelWord<Format>;
        Word const inversion = Inversion<Format>(isInverted);
        Change_Pixels<Format>(row, pixels, [=](Word word) {
            Word const grey = Channel_Of<Format>(word ^ inversion, 3);
            return Make_Word<Format>(grey, grey, grey, channelMax<Format>);
        });
    }
}

// ---- vectors ----------------------------------------------------------------------------------------------

/// Puts words through `change` as vectors; the last ones in a vector of their own.
template <typename Word, typename Change> void Change_Vectors(void* row, long count, Change change)
{
    hn::ScalableTag<Word> const d;
    auto* words = static_cast<Word*>(row);
    auto const lanes = static_cast<long>(hn::Lanes(d));
    for (; count >= lanes; words += lanes, count -= lanes)
        hn::StoreU(change(hn::LoadU(d, words)), d, words);
    if (count == 0) return;
    alignas(64) Word rest[hn::MaxLanes(d)] = {};
    auto const bytes = static_cast<std::size_t>(count) * sizeof(Word);
    std::memcpy(rest, words, bytes);
    hn::Store(change(hn::Load(d, rest)), d, rest);
    std::memcpy(words, rest, bytes);
}

/// Puts the pixels of a row through `change` as vectors of words.
template <typename Format, typename Change> void Change_Pixel_Vectors(void* row, long pixels, Change change)
{
    auto const changeAll = [&change](long count, auto* channels) {
        Change_Vectors<PixelWord<Format>>(channels, count, change);
    };
    Work_On<Format>(pixels, changeAll, ChangedRow<Format>(row));
}

// ---- a matte taken out ------------------------------------------------------------------------------------

#if ZV_HAS_VECTORS

/// Bytes by their lines, four channels at a time.
inline void Remove_Matte_From_Bytes(uint8_t* rgba, ZVMatteRemoval const& removal, long pixels)
{
    hn::FixedTag<uint8_t, 4> const d8;
    hn::FixedTag<int32_t, 4> const di32;
    hn::FixedTag<float, 4> const df;
    auto const pure = [&](uint8_t const* pixel) {
        auto const& line = removal.byAlpha[pixel[3]];
        auto const mixed = hn::ConvertTo(df, hn::PromoteTo(di32, hn::LoadU(d8, pixel)));
        return Truncated(hn::MulAdd(mixed, hn::Load(df, line.scale), hn::Load(df, line.bias)));
    };
    for (; pixels >= 2; pixels -= 2, rgba += 8) {
        auto const both = hn::ReorderDemote2To(hn::FixedTag<int16_t, 8>(), pure(rgba), pure(rgba + 4));
        hn::StoreU(hn::DemoteTo(hn::FixedTag<uint8_t, 8>(), both), hn::FixedTag<uint8_t, 8>(), rgba);
    }
    if (pixels > 0) hn::StoreU(hn::DemoteTo(d8, pure(rgba)), d8, rgba);
}

#else

inline void Remove_Matte_From_Bytes(uint8_t* rgba, ZVMatteRemoval const& removal, long pixels)
{
    for (; pixels > 0; --pixels, rgba += 4) {
        auto const& line = removal.byAlpha[rgba[3]];
        for (int i = 0; i < 4; ++i) {
            float const pure = static_cast<float>(rgba[i]) * line.scale[i] + line.bias[i];
            rgba[i] = static_cast<uint8_t>(std::clamp(pure, 0.0F, 255.0F));
        }
    }
}

#endif

// For words the quotient is matte + (value - matte) * max / alpha in double precision. What is added moves
// halves up, where rounding would make them even; the errors are smaller.
constexpr double halvesUp = 0x1p-32;

#if ZV_HAS_VECTORS

// A number between 0 and 65535 plus 2^36, or 1.5 times that, has its whole part in the second word of the
// double and 16 bits of fraction below.
constexpr double secondWord = 0x1p36;
constexpr uint64_t secondWordBits = 0x4230000000000000;

/// How a matte's sums are rounded. A matte of whole or half channels makes them fractions over 2 * alpha,
/// which stay at least 1 / 131068 below the next whole number, and the 2^-17 to which they are rounded with
/// the 16 bits cannot lift them there. Any other has to be rounded on its own, and nothing may be fused.
enum class MatteKind { black, halves, any };

/// Words of 16-bit channels up to `maximum`. Against black nothing falls below 0.
template <MatteKind KIND>
void Remove_Matte_From_Words(void* words, ZVMatteRemoval const& removal, uint64_t maximum, long count)
{
    ByteTag const d8;
    WordTag const d16;
    hn::Repartition<uint32_t, ByteTag> const d32;
    hn::Repartition<uint64_t, ByteTag> const d64;
    hn::Repartition<double, ByteTag> const dd;
    constexpr bool isAny = KIND == MatteKind::any;
    constexpr double sumWord = 1.5 * secondWord;
    constexpr uint8_t no = 0x80;
    alignas(16) static constexpr uint8_t places[3][16] = {
        {no, no, 0, 1, no, no, no, no, no, no, 8, 9, no, no, no, no},
        {no, no, 2, 3, no, no, no, no, no, no, 10, 11, no, no, no, no},
        {no, no, 4, 5, no, no, no, no, no, no, 12, 13, no, no, no, no}};
    struct Channel {
        ByteVector place;
        hn::VFromD<hn::Repartition<double, ByteTag>> zero, rounding;
    };
    auto const channel = [&](int i) {
        double const m = removal.matte[i];
        return Channel{hn::LoadDup128(d8, places[i]), hn::Set(dd, isAny ? m : secondWord + m),
                       hn::Set(dd, isAny ? m + halvesUp : sumWord + m + 0.5)};
    };
    Channel const red = channel(0), green = channel(1), blue = channel(2);
    auto const lowest = hn::Set(dd, isAny ? 0.0 : sumWord);
    auto const highest = hn::Set(dd, (isAny ? 0.0 : sumWord) + static_cast<double>(maximum));
    auto const inversion = hn::Set(d64, removal.isInverted ? maximum << 48 : 0);
    auto const max = hn::Set(dd, static_cast<double>(maximum)), one = hn::Set(dd, 1.0);
    auto const opaque = hn::Set(d64, maximum);
    auto const raise = hn::Set(d64, secondWordBits);
    Change_Vectors<uint64_t>(words, count, [&](auto stored) {
        auto const pixels = hn::Xor(stored, inversion);
        auto const alpha = hn::ShiftRight<48>(pixels);
        if (hn::AllTrue(d64, hn::Eq(alpha, opaque))) return pixels;
        auto const divisor =
            hn::Sub(hn::BitCast(dd, hn::Or(hn::ShiftLeft<16>(alpha), raise)), hn::Set(dd, secondWord));
        auto const scale = hn::Div(max, hn::Max(divisor, one));
        auto const pure = [&](Channel const& c) {
            auto const placed = hn::BitCast(d64, hn::TableLookupBytesOr0(hn::BitCast(d8, pixels), c.place));
            auto const raised = hn::BitCast(dd, hn::Or(placed, raise));
            auto const distance = hn::Sub(isAny ? hn::Sub(raised, hn::Set(dd, secondWord)) : raised, c.zero);
            auto const sum = isAny ? hn::Add(hn::Mul(distance, scale), c.rounding)
                                   : hn::MulAdd(distance, scale, c.rounding);
            auto const inside = hn::Min(KIND == MatteKind::black ? sum : hn::Max(sum, lowest), highest);
            return hn::BitCast(d64, isAny ? hn::Add(inside, hn::Set(dd, 0x1p52)) : inside);
        };
        constexpr int bit = isAny ? 0 : 16;  // where whole parts begin
        auto const redGreen = hn::OddEven(hn::BitCast(d16, hn::ShiftLeft<16 - bit>(pure(green))),
                                          hn::BitCast(d16, hn::ShiftRight<bit>(pure(red))));
        auto const blueAlpha =
            hn::OddEven(hn::BitCast(d16, pixels), hn::BitCast(d16, hn::ShiftLeft<32 - bit>(pure(blue))));
        auto const result = hn::OddEven(hn::BitCast(d32, blueAlpha), hn::BitCast(d32, redGreen));
        return hn::IfThenElse(hn::Eq(alpha, hn::Zero(d64)), pixels, hn::BitCast(d64, result));
    });
}

inline void Remove_Matte_From_Words(void* words, ZVMatteRemoval const& removal, uint64_t maximum, long count)
{
    auto const all = [&](auto isTrue) { return std::all_of(removal.matte, removal.matte + 3, isTrue); };
    if (all([](double m) { return m == 0; }))
        Remove_Matte_From_Words<MatteKind::black>(words, removal, maximum, count);
    else if (all([](double m) { return m >= 0 && m <= 65535 && 2 * m == std::floor(2 * m); }))
        Remove_Matte_From_Words<MatteKind::halves>(words, removal, maximum, count);
    else
        Remove_Matte_From_Words<MatteKind::any>(words, removal, maximum, count);
}

#else

inline void Remove_Matte_From_Words(void* words, ZVMatteRemoval const& removal, uint64_t maximum, long count)
{
    auto const max = static_cast<double>(maximum);
    auto* channels = static_cast<AnyPlace<uint16_t>*>(words);
    for (; count > 0; --count, channels += 4) {
        auto const alpha =
            static_cast<uint16_t>(removal.isInverted ? maximum - channels[3].value : channels[3].value);
        channels[3].value = alpha;
        double const scale = max / alpha;
        for (int i = 0; i < 3 && alpha > 0; ++i) {
            double const m = removal.matte[i];
            double const sum = (channels[i].value - m) * scale + (m + halvesUp);
            // The last bit of 2^52 is 1: a number below it is rounded into the low bits of their sum.
            auto const bits = std::bit_cast<uint64_t>(std::clamp(sum, 0.0, max) + 0x1p52);
            channels[i].value = static_cast<uint16_t>(bits);
        }
    }
}

#endif

#if ZV_HAS_VECTORS

/// Two float pixels: red and green of each in one vector of doubles, both blues in a third.
template <typename Doubles>
HWY_INLINE void Remove_Matte_From_Two(float* rgba, Doubles redGreen, Doubles blue, bool isInverted)
{
    hn::FixedTag<float, 4> const df;
    hn::FixedTag<double, 2> const dd;
    hn::Half<hn::FixedTag<float, 4>> const half;
    auto const first = hn::LoadU(df, rgba), second = hn::LoadU(df, rgba + 4);
    auto const bluesAndAlphas = hn::InterleaveUpper(df, first, second);
    auto const stored = hn::UpperHalf(half, bluesAndAlphas);
    auto const alphas = isInverted ? hn::Sub(hn::Set(half, 1.0F), stored) : stored;
    auto const divisors = hn::PromoteTo(dd, alphas);
    auto const zero = hn::Zero(dd), one = hn::Set(dd, 1.0);
    auto const pure = [=](auto channels, Doubles matte, Doubles divisor) {
        auto const mixed = hn::PromoteTo(dd, channels);
        auto const exact = hn::Div(hn::Sub(mixed, hn::Mul(matte, hn::Sub(one, divisor))), divisor);
        auto const inside = hn::Min(hn::Max(exact, zero), one);
        return hn::DemoteTo(half, hn::IfThenElse(hn::Gt(divisor, zero), inside, mixed));
    };
    auto const blues = pure(hn::LowerHalf(half, bluesAndAlphas), blue, divisors);
    auto const firstRedGreen =
        pure(hn::LowerHalf(half, first), redGreen, hn::InterleaveLower(dd, divisors, divisors));
    auto const secondRedGreen =
        pure(hn::LowerHalf(half, second), redGreen, hn::InterleaveUpper(dd, divisors, divisors));
    hn::StoreU(hn::Combine(df, hn::InterleaveLower(half, blues, alphas), firstRedGreen), df, rgba);
    hn::StoreU(hn::Combine(df, hn::InterleaveUpper(half, blues, alphas), secondRedGreen), df, rgba + 4);
}

inline void Remove_Matte_From_Floats(float* rgba, ZVMatteRemoval const& removal, long count)
{
    hn::FixedTag<double, 2> const dd;
    auto const redGreen = hn::LoadU(dd, removal.matte), blue = hn::Set(dd, removal.matte[2]);
    for (; count >= 2; count -= 2, rgba += 8)
        Remove_Matte_From_Two(rgba, redGreen, blue, removal.isInverted);
    if (count == 0) return;
    float last[8] = {};
    std::copy_n(rgba, 4, last);
    Remove_Matte_From_Two(last, redGreen, blue, removal.isInverted);
    std::copy_n(last, 4, rgba);
}

#else

inline void Remove_Matte_From_Floats(float* rgba, ZVMatteRemoval const& removal, long count)
{
    for (; count > 0; --count, rgba += 4) {
        float const alpha = removal.isInverted ? 1.0F - rgba[3] : rgba[3];
        rgba[3] = alpha;
        for (int i = 0; i < 3 && alpha > 0.0F; ++i) {
            double const pure = (rgba[i] - removal.matte[i] * (1.0 - static_cast<double>(alpha))) / alpha;
            rgba[i] = static_cast<float>(pure > 0.0 ? std::min(pure, 1.0) : 0.0);
        }
    }
}

#endif

template <typename Format> void Remove_Matte(void* row, ZVMatteRemoval const& removal, long pixels)
{
    if constexpr (Format::bits == 8) {
        Remove_Matte_From_Bytes(static_cast<uint8_t*>(row), removal, pixels);
    } else if constexpr (Format::bits == 32) {
        Remove_Matte_From_Floats(static_cast<float*>(row), removal, pixels);
    } else {
        auto const change = [&](long count, auto* channels) {
            Remove_Matte_From_Words(channels, removal, channelMax<Format>, count);
        };
        Work_On<Format>(pixels, change, ChangedRow<Format>(row));
    }
}

// ---- a matte put in ---------------------------------------------------------------------------------------

/// Mixes a channel below 2^12 with a matte.
template <typename Format> uint64_t Mixed_Channel(uint64_t value, uint32_t matte, uint64_t alpha)
{
    constexpr auto max = static_cast<uint32_t>(channelMax<Format>);
    auto const a = static_cast<uint32_t>(alpha);
    return (static_cast<uint32_t>(value) * a + matte * (max - a)) / max;
}

#if ZV_HAS_VECTORS

/// The same for 16 bits, in lanes of 16 bits with sums of 32 bits in two halves: N / 65535 is the upper half
/// of N, and one more when the halves add up to 65535 or more.
inline void Add_Matte_To_Words(void* row, uint64_t red, uint64_t green, uint64_t blue, long pixels)
{
    WordTag const d16;
    ByteTag const d8;
    hn::Repartition<uint64_t, ByteTag> const d64;
    alignas(16) static constexpr uint8_t alphaBytes[] = {6,  7,  6,  7,  6,  7,  6,  7,
                                                         14, 15, 14, 15, 14, 15, 14, 15};
    auto const toAlpha = hn::LoadDup128(d8, alphaBytes);
    auto const matte = hn::BitCast(d16, hn::Set(d64, Make_Word<FormatRGBA16>(red, green, blue, 0)));
    auto const alphaPlace = hn::BitCast(d16, hn::Set(d64, Make_Word<FormatRGBA16>(0, 0, 0, 0xFFFF)));
    auto const one = hn::Set(d16, 1);
    Change_Pixel_Vectors<FormatRGBA16>(row, pixels, [=](auto words) {
        auto const value = hn::BitCast(d16, words);
        auto const alpha = hn::BitCast(d16, hn::TableLookupBytes(hn::BitCast(d8, words), toAlpha));
        auto const rest = hn::Not(alpha);
        auto const low = hn::Mul(value, alpha);
        auto const lowSum = hn::Add(low, hn::Mul(matte, rest));
        auto const carry = hn::VecFromMask(d16, hn::Lt(lowSum, low));  // all bits are -1
        auto const high = hn::Sub(hn::Add(hn::MulHigh(value, alpha), hn::MulHigh(matte, rest)), carry);
        auto const isBelow = hn::VecFromMask(d16, hn::Lt(high, hn::Not(lowSum)));
        auto const mixed = hn::Add(hn::Add(high, one), isBelow);
        return hn::BitCast(d64, hn::Or(hn::AndNot(alphaPlace, mixed), hn::And(alphaPlace, value)));
    });
}

#else

inline void Add_Matte_To_Words(void* row, uint64_t red, uint64_t green, uint64_t blue, long pixels)
{
    Change_Pixels<FormatRGBA16>(row, pixels, [=](uint64_t word) {
        uint64_t const alpha = word >> 48, rest = 65535 - alpha;
        auto const mix = [=](uint64_t value, uint64_t m) { return (value * alpha + m * rest) / 65535; };
        return Make_Word<FormatRGBA16>(mix(word & 0xFFFF, red), mix(word >> 16 & 0xFFFF, green),
                                       mix(word >> 32 & 0xFFFF, blue), alpha);
    });
}

#endif

template <typename Format> void Add_Matte(void* row, double const* matte, long pixels)
{
    if constexpr (Format::bits == 32) {
        double const red = matte[0], green = matte[1], blue = matte[2];
        Change_Pixels<Format>(row, pixels, [=](FloatPixel p) {
            double const rest = 1.0 - p.alpha;
            auto const mix = [&](float value, double m) {
                return static_cast<float>(static_cast<double>(value) * p.alpha + m * rest);
            };
            return FloatPixel{mix(p.red, red), mix(p.green, green), mix(p.blue, blue), p.alpha};
        });
    } else {
        constexpr auto max = static_cast<double>(channelMax<Format>);
        auto const channel = [=](double fraction) {
            return static_cast<uint32_t>(fraction > 0.0 ? std::min(fraction * max, max) : 0.0);
        };
        uint32_t const red = channel(matte[0]), green = channel(matte[1]), blue = channel(matte[2]);
        if constexpr (Format::bits == 8) {
            auto* const bytes = static_cast<uint8_t*>(row);
            Blend_RGBA8_Row<Over::matte, false>(bytes, red << 16 | green << 8 | blue, bytes, pixels);
        } else if constexpr (Format::bits == 16) {
            Add_Matte_To_Words(row, red, green, blue, pixels);
        } else {
            Change_Pixels<Format>(row, pixels, [=](uint64_t word) {
                uint64_t const alpha = Channel_Of<Format>(word, 3);
                return Make_Word<Format>(Mixed_Channel<Format>(Channel_Of<Format>(word, 0), red, alpha),
                                         Mixed_Channel<Format>(Channel_Of<Format>(word, 1), green, alpha),
                                         Mixed_Channel<Format>(Channel_Of<Format>(word, 2), blue, alpha),
                                         alpha);
            });
        }
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#endif
