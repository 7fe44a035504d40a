// Straight-alpha blends of rows over rows of bytes, compiled for each instruction set.
//
// The told arithmetic rounds: back * (1 - alpha) in single precision, (alpha * 255) * source in double, the
// sum in single precision again, then truncated. With bytes A, S and B the exact value is N / 255, N = A*S +
// (255-A)*B. Unless N is a multiple of 255 the value is at least 1/255 away from the next integer, farther
// than all the rounding errors together reach, and the result is N / 255 rounded down, which 16-bit lanes
// work out. A multiple may come out as told or one lower. It can be lower only for A from 65 to 127, where
// 1 - alpha rounds, and for A from 128 to 254 with S below B; lanes of these kinds are worked out again by
// the told formula. The tests go through all A, S and B.

// Included once for each target, hence no #pragma once.
#if defined(ZV_BLEND_ROWS_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef ZV_BLEND_ROWS_INL
#undef ZV_BLEND_ROWS_INL
#else
#define ZV_BLEND_ROWS_INL
#endif

#include "RowFormats-inl.h"
#include "VectorBytes-inl.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <hwy/cache_control.h>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

// ---- the told formula -------------------------------------------------------------------------------------

/// What of the formula depends on the alpha alone.
struct BlendAlpha {
    double scaled;  ///< alpha * 255
    float rest;     ///< 1 - alpha

    BlendAlpha() = default;
    explicit BlendAlpha(double fraction)
        : scaled(static_cast<float>(fraction) * 255.0), rest(1.0F - static_cast<float>(fraction))
    {
    }
};

inline float Blended(BlendAlpha const& alpha, double source, float back)
{
    return static_cast<float>(static_cast<double>(back * alpha.rest) + alpha.scaled * source);
}

/// Truncation of a value that may lie anywhere: the low byte of the 32-bit integer, 0 if there is none.
inline uint8_t Truncated_Byte(float value)
{
    float const inside = std::abs(value) < 2147483648.0F ? value : 0.0F;
    return static_cast<uint8_t>(static_cast<uint32_t>(static_cast<int32_t>(inside)));
}

// ---- 8 bits over 8 bits -----------------------------------------------------------------------------------

/// What a row is blended over, into the target.
enum class Over {
    target,  ///< the target itself
    colour,  ///< one colour
    matte    ///< one colour, with N / 255 as the result, rounded down
};

template <Over OVER> uint8_t Blend_Byte(uint32_t alpha, uint32_t source, uint32_t back)
{
    uint32_t const sum = alpha * source + (255 - alpha) * back;
    uint32_t const quotient = sum / 255;
    bool const isExact = OVER != Over::matte && quotient * 255 == sum && alpha >= 65 && alpha < 255;
    if (!isExact) return static_cast<uint8_t>(quotient);
    return Truncated_Byte(Blended(BlendAlpha(alpha / 255.0), source / 255.0, static_cast<float>(back)));
}

/// For each byte of a target pixel the channel of the source that it shows.
struct ByteOrder {
    uint8_t channels[3];
};
inline constexpr ByteOrder orderRGB{{0, 1, 2}};
inline constexpr ByteOrder orderBGR{{2, 1, 0}};

/// Blends over the target itself or over a pixel of its order.
template <Over OVER>
void Blend_Bytes(uint8_t const* source, uint8_t const* colour, uint8_t* target, ByteOrder const& order,
                 long count)
{
    for (; count > 0; --count, source += 4, target += 4) {
        for (int i = 0; i < 3; ++i)
            target[i] = Blend_Byte<OVER>(source[3], source[order.channels[i]],
                                         OVER == Over::target ? target[i] : colour[i]);
    }
}

#if ZV_HAS_VECTORS

using PixelTag = hn::Repartition<uint32_t, ByteTag>;
using SignedPixelTag = hn::RebindToSigned<PixelTag>;
using SignedByteTag = hn::RebindToSigned<ByteTag>;

/// The constants of the kernel, in memory: GCC 12 rebuilds what it knows to be uniform from a general
/// register in each turn of the loop, which costs a fifth of its speed.
struct BlendConstants {
    alignas(16) uint8_t order[16];
    alignas(16) uint8_t lowerAlpha[16];  ///< the alpha of each byte of the first half of the pixels, twice
    alignas(16) uint8_t upperAlpha[16];
    alignas(16) uint8_t inverted[16];  ///< turns the second of each pair into 255 minus it
    alignas(16) uint16_t bias[8];
    alignas(16) uint16_t quotient[8];
    alignas(16) uint16_t lowByte[8];

    constexpr explicit BlendConstants(ByteOrder const& byteOrder)
        : order(), lowerAlpha(), upperAlpha(), inverted(), bias(), quotient(), lowByte()
    {
        for (uint8_t i = 0; i < 16; ++i) {
            bool const isPad = i % 4 == 3, isHalfPad = i / 2 % 4 == 3;
            uint8_t const pixel = i & 0xFC;
            order[i] = isPad ? i : static_cast<uint8_t>(pixel + byteOrder.channels[i % 4]);
            // A pad byte gets the weight 0, so that it stays as it is.
            lowerAlpha[i] = isHalfPad ? uint8_t{0x80} : static_cast<uint8_t>(i / 8 * 4 + 3);
            upperAlpha[i] = isHalfPad ? uint8_t{0x80} : static_cast<uint8_t>(8 + i / 8 * 4 + 3);
            inverted[i] = i % 2 ? 0xFF : 0;
        }
        for (int i = 0; i < 8; ++i) {
            // Values are signed, 128 less than they are, so the sums lack 128 * 255; 1 more makes the
            // quotient right, 2 more keep a pad byte from looking like a multiple.
            bias[i] = static_cast<uint16_t>(128 * 255 + (i % 4 == 3 ? 2 : 1));
            quotient[i] = 257;
            lowByte[i] = 0xFF;
        }
    }
};

template <typename T> HWY_INLINE T const& In_Memory(T const& constants)
{
    T const* address = &constants;
    asm("" : "+r"(address));
    return *address;
}

/// Positions of results that may be one too high, gathered while a run is blended.
class Suspects {
public:
    static constexpr long longestRun = 512;

    /// Notes the bytes of the vector at a pixel; without a branch, which would be mispredicted.
    HWY_INLINE void Note(long pixel, uint32_t bytes)
    {
        noted_[count_] = static_cast<uint64_t>(pixel) << 32 | bytes;
        count_ += bytes != 0;
    }

    /// Works the noted results out again. What they were blended over follows from N = 255 * result.
    void Settle(uint8_t const* source, uint8_t* target, ByteOrder const& order) const
    {
        for (long i = 0; i < count_; ++i) {
            long const first = static_cast<long>(noted_[i] >> 32) * 4;
            for (auto bytes = static_cast<uint32_t>(noted_[i]); bytes; bytes &= bytes - 1) {
                long const at = first + std::countr_zero(bytes);
                uint8_t const* const rgba = source + (at & ~3L);
                int const alpha = rgba[3], value = rgba[order.channels[at & 3]];
                BlendAlpha const weights(ZVPixelRGBA8::Fraction(rgba[3]));
                float const back =
                    static_cast<float>(255 * target[at] - alpha * value) / static_cast<float>(255 - alpha);
                target[at] = static_cast<uint8_t>(static_cast<int>(
                    Blended(weights, ZVPixelRGBA8::Fraction(rgba[order.channels[at & 3]]), back)));
            }
        }
    }

private:
    uint64_t noted_[longestRun / 4 + 1];
    long count_ = 0;
};

/// Blends a run of whole vectors.
template <Over OVER>
void Blend_Vectors(uint8_t const* source, uint8_t const* colour, uint8_t* target,
                   BlendConstants const& constants, Suspects& suspects, long count)
{
    ByteTag const d8;
    SignedByteTag const di8;
    WordTag const d16;
    PixelTag const d32;
    SignedPixelTag const di32;
    constexpr long step = static_cast<long>(hn::MaxLanes(d32));
    auto const order = hn::LoadDup128(d8, constants.order);
    auto const lowerAlpha = hn::LoadDup128(d8, constants.lowerAlpha);
    auto const upperAlpha = hn::LoadDup128(d8, constants.upperAlpha);
    auto const inverted = hn::LoadDup128(d8, constants.inverted);
    auto const bias = hn::LoadDup128(d16, constants.bias);
    auto const byQuotient = hn::LoadDup128(d16, constants.quotient);
    auto const lowByte = hn::LoadDup128(d16, constants.lowByte);
    auto const toSigned = hn::Set(d8, 0x80);
    auto const pad = hn::BitCast(d8, hn::Set(d32, 0xFF000000));
    auto const one = hn::Set(d8, 1);
    auto const belowMiddle = hn::Set(di32, 0x40FFFFFF);
    auto const opaque = hn::Set(di32, static_cast<int32_t>(0xFF000000));
    uint32_t colourWord;
    std::memcpy(&colourWord, colour, sizeof(colourWord));
    colourWord &= 0xFFFFFF;
    auto const colours = hn::BitCast(d8, hn::Set(d32, colourWord));
    bool const isRoundedDown =
        OVER == Over::matte || (OVER == Over::colour && colourWord == 0);  // so is all over black

    for (long i = 0; i < count; i += step) {
        hwy::Prefetch(source + 4 * i + 1024);
        hwy::Prefetch(target + 4 * i + 1024);
        auto const rgba = hn::LoadU(d8, source + 4 * i);
        auto const before = hn::LoadU(d8, target + 4 * i);
        auto const back = OVER == Over::target ? before : hn::Or(hn::And(before, pad), colours);
        auto const ordered = hn::TableLookupBytes(rgba, order);
        if (static_cast<uint8_t>(source[4 * i + 3] + 1) <= 1) {  // 0 and 255 come in runs
            auto const alphas = hn::BitCast(d32, hn::And(rgba, pad));
            if (hn::AllTrue(d32, hn::Eq(alphas, hn::Zero(d32)))) {
                if (OVER != Over::target) hn::StoreU(back, d8, target + 4 * i);
                continue;
            }
            if (hn::AllTrue(d32, hn::Eq(alphas, hn::BitCast(d32, pad)))) {
                hn::StoreU(hn::OrAnd(hn::AndNot(pad, ordered), before, pad), d8, target + 4 * i);
                continue;
            }
        }
        auto const signedSource = hn::Xor(ordered, toSigned);
        auto const signedBack = hn::Xor(back, toSigned);
        auto const lowerPairs = hn::InterleaveLower(d8, signedSource, signedBack);
        auto const upperPairs = hn::InterleaveUpper(d8, signedSource, signedBack);
        auto const lowerWeights = hn::Xor(hn::TableLookupBytesOr0(rgba, lowerAlpha), inverted);
        auto const upperWeights = hn::Xor(hn::TableLookupBytesOr0(rgba, upperAlpha), inverted);
        auto const lowerSums = hn::Add(Weighted_Pairs(lowerWeights, hn::BitCast(di8, lowerPairs)), bias);
        auto const upperSums = hn::Add(Weighted_Pairs(upperWeights, hn::BitCast(di8, upperPairs)), bias);
        // (N + 1) * 257 / 65536 is N / 255 rounded down.
        auto const blended =
            Packed_Bytes(hn::MulHigh(lowerSums, byQuotient), hn::MulHigh(upperSums, byQuotient));
        hn::StoreU(blended, d8, target + 4 * i);
        if (isRoundedDown) continue;

        // The low byte of N + 1 plus the quotient is N modulo 255, plus 1.
        auto const lowBytes = Packed_Bytes(hn::And(lowerSums, lowByte), hn::And(upperSums, lowByte));
        auto const isMultiple = hn::VecFromMask(d8, hn::Eq(hn::Add(lowBytes, blended), one));
        auto const pixels = hn::BitCast(di32, rgba);
        auto const isMiddle = hn::VecFromMask(di32, hn::Gt(pixels, belowMiddle));  // 65 to 127
        auto const isUpper = hn::VecFromMask(di32, hn::Lt(pixels, opaque));        // 128 to 254
        auto const isBelow =
            hn::VecFromMask(di8, hn::Gt(hn::BitCast(di8, signedBack), hn::BitCast(di8, signedSource)));
        auto const isCandidate =
            hn::Or(hn::BitCast(d8, isMiddle), hn::And(hn::BitCast(d8, isUpper), hn::BitCast(d8, isBelow)));
        uint64_t bits = 0;
        hn::StoreMaskBits(d8, hn::MaskFromVec(hn::And(isMultiple, isCandidate)),
                          reinterpret_cast<uint8_t*>(&bits));
        suspects.Note(i, static_cast<uint32_t>(bits));
    }
}

/// Blends the whole vectors of a row and tells how many pixels that were.
template <Over OVER>
long Blend_Whole_Vectors(uint8_t const* source, uint8_t const* colour, uint8_t* target,
                         ByteOrder const& order, BlendConstants const& constants, long count)
{
    long const whole = count - count % static_cast<long>(hn::MaxLanes(PixelTag()));
    for (long done = 0; done < whole; done += Suspects::longestRun) {
        Suspects suspects;
        long const run = std::min(whole - done, Suspects::longestRun);
        Blend_Vectors<OVER>(source + 4 * done, colour, target + 4 * done, In_Memory(constants), suspects,
                            run);
        suspects.Settle(source + 4 * done, target + 4 * done, order);
    }
    return whole;
}

#endif

/// Blends a row of RGBA8 over the target itself, or over a colour word into the target: pixels of four bytes,
/// blue or red first. The fourth byte stays.
template <Over OVER, bool IS_BGR>
void Blend_RGBA8_Row(uint8_t const* source, uint32_t colour, uint8_t* target, long count)
{
    constexpr ByteOrder order = IS_BGR ? orderBGR : orderRGB;
    uint8_t pixel[4] = {};
    for (int i = 0; i < 3; ++i)
        pixel[i] = static_cast<uint8_t>(colour >> (16 - 8 * order.channels[i]));
    long done = 0;
#if ZV_HAS_VECTORS
    static constexpr BlendConstants constants(order);
    done = Blend_Whole_Vectors<OVER>(source, pixel, target, order, constants, count);
#endif
    Blend_Bytes<OVER>(source + 4 * done, pixel, target + 4 * done, order, count - done);
}

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#endif
