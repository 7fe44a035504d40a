// The formats of rows, compiled for each instruction set: flat ones are an array of channels, packed ones are
// unpacked into one and packed from one. Channels are in range.

// Included once for each target, hence no #pragma once.
#if defined(ZV_ROW_FORMATS_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef ZV_ROW_FORMATS_INL
#undef ZV_ROW_FORMATS_INL
#else
#define ZV_ROW_FORMATS_INL
#endif

#include "VectorTargets.h"
#include "ZVPixel.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// A number at any address, of any effective type.
template <typename T> struct [[gnu::packed, gnu::may_alias]] AnyPlace
{
    T value;
};

template <typename T, int BITS> struct FlatFormat {
    using Channel = T;
    static constexpr int bits = BITS;
    static constexpr long packSize = 4 * sizeof(T);
    static constexpr bool isPacked = false;
    static constexpr bool isNative = false;
};
using FormatRGBA8 = FlatFormat<uint8_t, 8>;
using FormatRGBA16 = FlatFormat<uint16_t, 16>;
using FormatRGBAFloat = FlatFormat<float, 32>;

// ---- 10 and 12 bits ---------------------------------------------------------------------------------------

#if ZV_HAS_VECTORS

/// Where the eight channels of two packed pixels lie: each within two bytes, highest first.
template <int BITS> struct PackedTables {
    // A shuffle by `pairs` brings the two bytes into a lane; times `raise` the channel stands at the lane's
    // top.
    alignas(16) uint8_t pairs[16];
    alignas(16) uint16_t raise[8];
    // Times `place` a channel stands in a lane as in its two bytes; shuffles bring both halves there.
    alignas(16) uint16_t place[8];
    alignas(16) uint8_t highs[16];
    alignas(16) uint8_t lows[16];

    constexpr PackedTables() : pairs(), raise(), place(), highs(), lows()
    {
        for (int i = 0; i < 16; ++i)
            highs[i] = lows[i] = 0x80;  // becomes 0
        for (int lane = 0; lane < 8; ++lane) {
            int const byte = lane * BITS / 8, bit = lane * BITS % 8;
            pairs[2 * lane] = static_cast<uint8_t>(byte + 1);
            pairs[2 * lane + 1] = static_cast<uint8_t>(byte);
            raise[lane] = static_cast<uint16_t>(1 << bit);
            place[lane] = static_cast<uint16_t>(1 << (16 - BITS - bit));
            highs[byte] = static_cast<uint8_t>(2 * lane + 1);
            lows[byte + 1] = static_cast<uint8_t>(2 * lane);
        }
    }
};

/// Unpacks pixels two at a time, as long as 16 bytes can be read, and tells how many.
template <int BITS> long Unpack_Vectors(uint8_t const* source, uint16_t* channels, long count)
{
    static constexpr PackedTables<BITS> tables;
    constexpr long packSize = BITS / 2;
    hn::FixedTag<uint8_t, 16> const d8;
    hn::FixedTag<uint16_t, 8> const d16;
    auto const pairs = hn::Load(d8, tables.pairs);
    auto const raise = hn::Load(d16, tables.raise);
    long done = 0;
    for (; (count - done) * packSize >= 16; done += 2) {
        auto const lanes = hn::TableLookupBytes(hn::LoadU(d8, source + done * packSize), pairs);
        auto const raised = hn::Mul(hn::BitCast(d16, lanes), raise);
        hn::StoreU(hn::ShiftRight<16 - BITS>(raised), d16, channels + done * 4);
    }
    return done;
}

/// Packs pixels two at a time, as long as 16 bytes can be written, and tells how many.
template <int BITS> long Pack_Vectors(uint16_t const* channels, uint8_t* target, long count)
{
    static constexpr PackedTables<BITS> tables;
    constexpr long packSize = BITS / 2;
    hn::FixedTag<uint8_t, 16> const d8;
    hn::FixedTag<uint16_t, 8> const d16;
    auto const place = hn::Load(d16, tables.place);
    auto const highs = hn::Load(d8, tables.highs), lows = hn::Load(d8, tables.lows);
    long done = 0;
    for (; (count - done) * packSize >= 16; done += 2) {
        auto const placed = hn::BitCast(d8, hn::Mul(hn::LoadU(d16, channels + done * 4), place));
        auto const pixels =
            hn::Or(hn::TableLookupBytesOr0(placed, highs), hn::TableLookupBytesOr0(placed, lows));
        hn::StoreU(pixels, d8, target + done * packSize);
    }
    return done;
}

#endif

template <typename Pixel> struct PackedFormat {
    using Channel = uint16_t;
    static constexpr int bits = Pixel::bits;
    static constexpr long packSize = Pixel::packSize;
    static constexpr bool isPacked = true;
    static constexpr bool isNative = false;

    static void Unpack(void const* source, void* target, long count)
    {
        auto const* const bytes = static_cast<uint8_t const*>(source);
        auto* const channels = static_cast<uint16_t*>(target);
        long done = 0;
#if ZV_HAS_VECTORS
        done = Unpack_Vectors<bits>(bytes, channels, count);
#endif
        for (; done < count; ++done) {
            uint16_t* const rgba = channels + done * 4;
            reinterpret_cast<Pixel const*>(bytes + done * packSize)
                ->GetRGBA(rgba[0], rgba[1], rgba[2], rgba[3]);
        }
    }

    static void Pack(void const* source, void* target, long count)
    {
        auto const* const channels = static_cast<uint16_t const*>(source);
        auto* const bytes = static_cast<uint8_t*>(target);
        long done = 0;
#if ZV_HAS_VECTORS
        done = Pack_Vectors<bits>(channels, bytes, count);
#endif
        for (; done < count; ++done) {
            uint16_t const* const rgba = channels + done * 4;
            reinterpret_cast<Pixel*>(bytes + done * packSize)->SetRGBA(rgba[0], rgba[1], rgba[2], rgba[3]);
        }
    }
};
using FormatRGBA10 = PackedFormat<ZVPixelRGBA10>;
using FormatRGBA12 = PackedFormat<ZVPixelRGBA12>;

// ---- native -----------------------------------------------------------------------------------------------
//
// The channels are those of RGBA8, handled as words with red in the lowest byte.

using AnyWord = AnyPlace<uint32_t>;

template <int PACK> struct NativeFormat {
    using Channel = uint8_t;
    static constexpr int bits = 8;
    static constexpr long packSize = PACK;
    static constexpr bool isPacked = true;
    static constexpr bool isNative = true;
};

struct FormatNative32 : NativeFormat<4> {
    static void Unpack(void const* source, void* target, long count)
    {
        auto const* const HWY_RESTRICT pixels = static_cast<AnyWord const*>(source);
        auto* const HWY_RESTRICT words = static_cast<AnyWord*>(target);
        for (long i = 0; i < count; ++i) {
            uint32_t const bgr = pixels[i].value;
            words[i].value = 0xFF000000 | (bgr << 16 & 0xFF0000) | (bgr & 0xFF00) | (bgr >> 16 & 0xFF);
        }
    }

    static void Pack(void const* source, void* target, long count)
    {
        auto const* const HWY_RESTRICT words = static_cast<AnyWord const*>(source);
        auto* const HWY_RESTRICT pixels = static_cast<AnyWord*>(target);
        for (long i = 0; i < count; ++i) {
            uint32_t const rgb = words[i].value;
            pixels[i].value =
                (pixels[i].value & 0xFF000000) | (rgb << 16 & 0xFF0000) | (rgb & 0xFF00) | (rgb >> 16 & 0xFF);
        }
    }
};

struct FormatNative24 : NativeFormat<3> {
    static void Unpack(void const* source, void* target, long count)
    {
        auto const* const bgr = static_cast<uint8_t const*>(source);
        auto* const rgba = static_cast<uint8_t*>(target);
        long done = 0;
#if ZV_HAS_VECTORS
        hn::FixedTag<uint8_t, 16> const d8;
        hn::FixedTag<uint32_t, 4> const d32;
        alignas(16) static constexpr uint8_t order[] = {2, 1, 0, 0x80, 5,  4,  3, 0x80,
                                                        8, 7, 6, 0x80, 11, 10, 9, 0x80};
        auto const bytes = hn::Load(d8, order);
        auto const alpha = hn::BitCast(d8, hn::Set(d32, 0xFF000000));
        for (; (count - done) * packSize >= 16; done += 4) {
            auto const pixels = hn::LoadU(d8, bgr + done * packSize);
            hn::StoreU(hn::Or(hn::TableLookupBytesOr0(pixels, bytes), alpha), d8, rgba + done * 4);
        }
#endif
        for (; done < count; ++done) {
            uint8_t const* const from = bgr + done * packSize;
            uint8_t* const to = rgba + done * 4;
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
            to[3] = 255;
        }
    }

    static void Pack(void const* source, void* target, long count)
    {
        auto const* const rgba = static_cast<uint8_t const*>(source);
        auto* const bgr = static_cast<uint8_t*>(target);
        long done = 0;
#if ZV_HAS_VECTORS
        hn::FixedTag<uint8_t, 16> const d8;
        alignas(16) static constexpr uint8_t order[] = {2, 1,  0,  6,  5,    4,    10,   9,
                                                        8, 14, 13, 12, 0x80, 0x80, 0x80, 0x80};
        auto const bytes = hn::Load(d8, order);
        for (; (count - done) * packSize >= 16; done += 4)
            hn::StoreU(hn::TableLookupBytesOr0(hn::LoadU(d8, rgba + done * 4), bytes), d8,
                       bgr + done * packSize);
#endif
        for (; done < count; ++done) {
            uint8_t const* const from = rgba + done * 4;
            uint8_t* const to = bgr + done * packSize;
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
        }
    }
};

struct FormatNative16 : NativeFormat<2> {
    static void Unpack(void const* source, void* target, long count)
    {
        auto const* const HWY_RESTRICT pixels = static_cast<AnyPlace<uint16_t> const*>(source);
        auto* const HWY_RESTRICT words = static_cast<AnyWord*>(target);
        for (long i = 0; i < count; ++i) {
            uint32_t const rgb = pixels[i].value;
            words[i].value = 0xFF000000 | (rgb << 19 & 0xF80000) | (rgb << 6 & 0xF800) | (rgb >> 7 & 0xF8);
        }
    }

    static void Pack(void const* source, void* target, long count)
    {
        auto const* const HWY_RESTRICT words = static_cast<AnyWord const*>(source);
        auto* const HWY_RESTRICT pixels = static_cast<AnyPlace<uint16_t>*>(target);
        for (long i = 0; i < count; ++i) {
            uint32_t const rgb = words[i].value;
            pixels[i].value =
                static_cast<uint16_t>((rgb << 7 & 0x7C00) | (rgb >> 6 & 0x3E0) | (rgb >> 19 & 0x1F));
        }
    }
};

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#endif
