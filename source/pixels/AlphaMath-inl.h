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
//
// (c * max - m * (max - t)) / t is m + (c - m) * max / t. For a whole m it is a fraction over t, at least 1 /
// 2t away from the next half unless it is one; less than that is added, and more than all errors, so halves
// go up on every path. A matte that was a channel value once is made whole again, as the way through a
// fraction may have cost it its last bit.

/// A matte on the scale of the channels, each kind with less to work out than the next.
enum class MatteKind { black, whole, odd };

struct ScaledMatte {
    double red, green, blue;
    MatteKind kind;
};

template <typename Format> ScaledMatte Scale_Matte(double const* matte)
{
    constexpr auto max = static_cast<double>(channelMax<Format>);
    auto kind = MatteKind::black;
    auto const scale = [&kind](double fraction) {
        double const exact = fraction * max, whole = std::round(exact);
        bool const isWhole = whole >= 0 && whole <= max && std::abs(exact - whole) < 1e-6;
        if (!isWhole) kind = MatteKind::odd;
        if (isWhole && whole > 0 && kind == MatteKind::black) kind = MatteKind::whole;
        return isWhole ? whole : exact;
    };
    ScaledMatte scaled{scale(matte[0]), scale(matte[1]), scale(matte[2]), MatteKind::odd};
    scaled.kind = kind;
    return scaled;
}

#if ZV_HAS_VECTORS

/// One channel of four, as the lanes of whole pixels; 0 to 3.
template <int CHANNEL> hn::VFromD<hn::Repartition<int32_t, ByteTag>> Channel_Lanes(ByteVector pixels)
{
    constexpr uint8_t c = CHANNEL, no = 0x80;
    alignas(16) static constexpr uint8_t places[] = {c,     no, no, no, c + 4,  no, no, no,
                                                     c + 8, no, no, no, c + 12, no, no, no};
    return hn::BitCast(hn::Repartition<int32_t, ByteTag>(),
                       hn::TableLookupBytesOr0(pixels, hn::LoadDup128(ByteTag(), places)));
}

/// Bytes against a whole matte, in single precision: quotients in range are 1/510 away from the next half,
/// and the errors stay below 1e-4, fused or not. Packing keeps what is out of range in it.
template <MatteKind KIND>
void Remove_Matte_From_Bytes(void* row, ScaledMatte const& matte, bool isInverted, long pixels)
{
    ByteTag const d8;
    SignedWordTag const d16;
    hn::Repartition<uint32_t, ByteTag> const d32;
    hn::Repartition<int32_t, ByteTag> const di32;
    hn::Repartition<float, ByteTag> const df;
    alignas(16) static constexpr uint8_t pixelOrder[] = {0, 4, 8,  12, 1, 5, 9,  13,
                                                         2, 6, 10, 14, 3, 7, 11, 15};
    constexpr float toRound = 0.5F + 1.0F / 1024;
    struct Channel {
        hn::VFromD<hn::Repartition<float, ByteTag>> matte, rounding;
    };
    auto const channel = [=](double m) {
        auto const whole = static_cast<float>(m);
        return Channel{hn::Set(df, whole), hn::Set(df, whole + toRound)};
    };
    Channel const red = channel(matte.red), green = channel(matte.green), blue = channel(matte.blue);
    auto const order = hn::LoadDup128(d8, pixelOrder);
    auto const inversion = hn::Set(d32, Inversion<FormatRGBA8>(isInverted));
    auto const max = hn::Set(df, 255.0F), one = hn::Set(df, 1.0F);
    auto const opaque = hn::Set(di32, 255);
    Change_Pixel_Vectors<FormatRGBA8>(row, pixels, [=](auto stored) {
        auto const words = hn::Xor(stored, inversion);
        auto const bytes = hn::BitCast(d8, words);
        auto const alpha = Channel_Lanes<3>(bytes);
        if (hn::AllTrue(di32, hn::Eq(alpha, opaque))) return words;
        auto const scale = hn::Div(max, hn::Max(hn::ConvertTo(df, alpha), one));
        auto const pure = [&](auto value, Channel const& c) {
            auto const number = hn::ConvertTo(df, value);
            auto const distance = KIND == MatteKind::black ? number : hn::Sub(number, c.matte);
            return Truncated(hn::MulAdd(distance, scale, c.rounding));
        };
        auto const redGreen = hn::ReorderDemote2To(d16, pure(Channel_Lanes<0>(bytes), red),
                                                   pure(Channel_Lanes<1>(bytes), green));
        auto const blueAlpha = hn::ReorderDemote2To(d16, pure(Channel_Lanes<2>(bytes), blue), alpha);
        auto const result = hn::TableLookupBytes(Packed_Bytes(redGreen, blueAlpha), order);
        return hn::IfThenElse(hn::RebindMask(d32, hn::Eq(alpha, hn::Zero(di32))), words,
                              hn::BitCast(d32, result));
    });
}

#else

inline uint32_t Unmatted_Byte(uint32_t value, double matte, double scale)
{
    double const pure = (value - matte) * scale + (matte + 0.5 + 1.0 / 1024);
    return static_cast<uint32_t>(std::clamp(pure, 0.0, 255.0));
}

template <MatteKind>
void Remove_Matte_From_Bytes(void* row, ScaledMatte const& matte, bool isInverted, long pixels)
{
    uint32_t const inversion = Inversion<FormatRGBA8>(isInverted);
    Change_Pixels<FormatRGBA8>(row, pixels, [=](uint32_t word) {
        word ^= inversion;
        uint32_t const alpha = word >> 24;
        if (alpha == 0) return word;
        double const scale = 255.0 / alpha;
        return Make_Word<FormatRGBA8>(Unmatted_Byte(word & 0xFF, matte.red, scale),
                                      Unmatted_Byte(word >> 8 & 0xFF, matte.green, scale),
                                      Unmatted_Byte(word >> 16 & 0xFF, matte.blue, scale), alpha);
    });
}

#endif

// 2^52, whose last bit is 1: an integer below it stands in the low bits of their sum.
constexpr double magic = 0x1p52;
constexpr uint64_t magicBits = 0x4330000000000000;

/// Words of 16-bit channels up to `maximum`, in double precision. Products and sums are fused only against a
/// whole matte, where that cannot show. Against black nothing falls below 0.
template <MatteKind KIND>
void Remove_Matte_From_Words(void* words, long count, ScaledMatte const& matte, bool isInverted,
                             uint64_t maximum)
{
    hn::ScalableTag<uint64_t> const d64;
    hn::ScalableTag<double> const dd;
    constexpr double toRound = 0x1p-32;  // moves halves up, where the sum with the magic would make them even
    struct Channel {
        hn::VFromD<hn::ScalableTag<double>> matte, rounding;
    };
    // A whole matte is taken away together with the magic.
    constexpr double together = KIND == MatteKind::odd ? 0.0 : magic;
    auto const channel = [=](double m) {
        return Channel{hn::Set(dd, together + m), hn::Set(dd, m + toRound)};
    };
    Channel const red = channel(matte.red), green = channel(matte.green), blue = channel(matte.blue);
    auto const inversion = hn::Set(d64, isInverted ? maximum << 48 : 0);
    auto const max = hn::Set(dd, static_cast<double>(maximum)), one = hn::Set(dd, 1.0);
    auto const opaque = hn::Set(d64, maximum);
    auto const place = hn::Set(d64, 0xFFFF), bits = hn::Set(d64, magicBits);
    auto const toMagic = hn::Set(dd, magic);
    Change_Vectors<uint64_t>(words, count, [=](auto stored) {
        auto const pixels = hn::Xor(stored, inversion);
        auto const alpha = hn::ShiftRight<48>(pixels);
        if (hn::AllTrue(d64, hn::Eq(alpha, opaque))) return pixels;
        auto const divisor = hn::Sub(hn::BitCast(dd, hn::Or(alpha, bits)), toMagic);
        auto const scale = hn::Div(max, hn::Max(divisor, one));
        auto const pure = [&](auto value, Channel const& c) {
            auto const raised = hn::BitCast(dd, hn::Or(value, bits));
            auto const distance =
                hn::Sub(KIND == MatteKind::odd ? hn::Sub(raised, toMagic) : raised, c.matte);
            auto const exact = KIND == MatteKind::odd ? hn::Add(hn::Mul(distance, scale), c.rounding)
                                                      : hn::MulAdd(distance, scale, c.rounding);
            auto const positive = KIND == MatteKind::black ? exact : hn::Max(exact, hn::Zero(dd));
            return hn::BitCast(d64, hn::Add(hn::Min(positive, max), toMagic));
        };
        // The shifts push the magic out, whose lower 48 bits are 0.
        auto const r = hn::And(pure(hn::And(pixels, place), red), place);
        auto const g = hn::ShiftLeft<16>(pure(hn::And(hn::ShiftRight<16>(pixels), place), green));
        auto const b = hn::ShiftLeft<32>(pure(hn::And(hn::ShiftRight<32>(pixels), place), blue));
        auto const result = hn::Or(hn::Or(r, g), hn::Or(b, hn::ShiftLeft<48>(alpha)));
        return hn::IfThenElse(hn::Eq(alpha, hn::Zero(d64)), pixels, result);
    });
}

/// Bytes against a matte that is not whole, by way of words.
inline void Remove_Odd_Matte_From_Bytes(uint8_t* row, ScaledMatte const& matte, bool isInverted, long pixels)
{
    constexpr long stage = ReadRow<FormatRGBA8>::stagePixels;
    uint64_t words[stage];
    auto* const channels = reinterpret_cast<AnyPlace<uint16_t>*>(words);
    for (; pixels > 0; pixels -= stage, row += 4 * stage) {
        long const count = std::min(stage, pixels);
        for (long i = 0; i < 4 * count; ++i)
            channels[i].value = row[i];
        Remove_Matte_From_Words<MatteKind::odd>(words, count, matte, isInverted, 255);
        for (long i = 0; i < 4 * count; ++i)
            row[i] = static_cast<uint8_t>(channels[i].value);
    }
}

#if ZV_HAS_VECTORS

/// Float pixels, two channels at a time.
inline void Remove_Matte_From_Floats(float* rgba, long count, double const* matte, bool isInverted)
{
    hn::FixedTag<float, 4> const df;
    hn::FixedTag<double, 2> const dd;
    hn::Half<hn::FixedTag<float, 4>> const half;
    double const upper[] = {matte[2], 0.0};
    auto const redGreen = hn::LoadU(dd, matte), blueAlpha = hn::LoadU(dd, upper);
    for (; count > 0; --count, rgba += 4) {
        auto const mixed = hn::LoadU(df, rgba);
        float const alpha = isInverted ? 1.0F - rgba[3] : rgba[3];
        auto const divisor = hn::Set(dd, static_cast<double>(alpha));
        auto const rest = hn::Sub(hn::Set(dd, 1.0), divisor);
        auto const pure = [&](auto values, auto m) {
            auto const exact = hn::Div(hn::Sub(hn::PromoteTo(dd, values), hn::Mul(m, rest)), divisor);
            return hn::DemoteTo(half, hn::Min(hn::Max(exact, hn::Zero(dd)), hn::Set(dd, 1.0)));
        };
        if (alpha > 0.0F)
            hn::StoreU(hn::Combine(df, pure(hn::UpperHalf(half, mixed), blueAlpha),
                                   pure(hn::LowerHalf(half, mixed), redGreen)),
                       df, rgba);
        rgba[3] = alpha;
    }
}

#else

inline void Remove_Matte_From_Floats(float* rgba, long count, double const* matte, bool isInverted)
{
    for (; count > 0; --count, rgba += 4) {
        float const alpha = isInverted ? 1.0F - rgba[3] : rgba[3];
        rgba[3] = alpha;
        for (int i = 0; i < 3 && alpha > 0.0F; ++i) {
            double const pure = (rgba[i] - matte[i] * (1.0 - static_cast<double>(alpha))) / alpha;
            rgba[i] = static_cast<float>(pure > 0.0 ? std::min(pure, 1.0) : 0.0);
        }
    }
}

#endif

template <typename Format> void Remove_Matte(void* row, double const* matte, bool isInverted, long pixels)
{
    if constexpr (Format::bits == 32) {
        Remove_Matte_From_Floats(static_cast<float*>(row), pixels, matte, isInverted);
    } else {
        ScaledMatte const scaled = Scale_Matte<Format>(matte);
        if constexpr (Format::bits == 8) {
            auto* const bytes = static_cast<uint8_t*>(row);
            switch (scaled.kind) {
            case MatteKind::black:
                return Remove_Matte_From_Bytes<MatteKind::black>(row, scaled, isInverted, pixels);
            case MatteKind::whole:
                return Remove_Matte_From_Bytes<MatteKind::whole>(row, scaled, isInverted, pixels);
            case MatteKind::odd: return Remove_Odd_Matte_From_Bytes(bytes, scaled, isInverted, pixels);
            }
        } else {
            auto const remove = scaled.kind == MatteKind::black   ? Remove_Matte_From_Words<MatteKind::black>
                                : scaled.kind == MatteKind::whole ? Remove_Matte_From_Words<MatteKind::whole>
                                                                  : Remove_Matte_From_Words<MatteKind::odd>;
            auto const change = [&](long count, auto* channels) {
                remove(channels, count, scaled, isInverted, channelMax<Format>);
            };
            Work_On<Format>(pixels, change, ChangedRow<Format>(row));
        }
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
