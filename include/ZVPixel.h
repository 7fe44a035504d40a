// Typed views of single pixels and the rounding on which the whole pixel engine agrees.
#pragma once

#include "ZVBase.h"

#include <bit>
#include <cstring>

/// Four fractions, 0.0 to 1.0 where nothing else is said.
struct ZVFloatRGB {
    double red;
    double green;
    double blue;
    double alpha;
};

/// Three 16-bit components and a fourth word.
struct ZVRGB {
    uint16_t red;
    uint16_t green;
    uint16_t blue;
    uint16_t extra;
};

/// 2^52 + 2^32: added to a number it leaves the nearest integer in the low bits of the sum's pattern.
inline constexpr double ZV_ROUNDING_MAGIC = 4503603922337792.0;

/// Nearest integer, halves to the even neighbour; exact within the range of a 32-bit integer.
inline int32_t f_round(double value)
{
    return static_cast<int32_t>(static_cast<uint32_t>(std::bit_cast<uint64_t>(value + ZV_ROUNDING_MAGIC)));
}

struct ZVPixelBase {
    /// Byte to fraction: entry i is i / 255.0.
    static ZV_API double const* _byteToFracTbl;
};

/// One pixel in memory: T is the storage type of a channel, MAX its maximum (a placeholder for float), BITS
/// its significant bits, PACK the bytes of a pixel. Channels stand in the order red, green, blue, alpha; 10-
/// and 12-bit pixels are packed big-endian with red on top, so they have no alignment. No setter masks or
/// clamps: a value outside 0 to MAX, or a fraction outside 0 to 1, wraps into the channel's bits.
template <typename T, unsigned long MAX, int BITS, int PACK> class ZVPixel : public ZVPixelBase {
public:
    using Channel = T;
    static constexpr bool isFloat = BITS == 32;
    static constexpr bool isMono = PACK <= 2 || (isFloat && PACK == 4);
    static constexpr bool isPacked = !isMono && (BITS == 10 || BITS == 12);
    static constexpr int channels = isMono ? 1 : 4;
    static constexpr int bits = BITS;
    static constexpr int packSize = PACK;
    static constexpr unsigned long max = MAX;

    /// Raw channel of a pixel, 0 red to 3 alpha; a mono pixel has channel 0 only.
    T Get(int channel) const
    {
        if constexpr (isPacked) {
            return static_cast<T>(Load() >> Shift(channel) & MAX);
        } else {
            T value;
            std::memcpy(&value, bytes_ + channel * sizeof(T), sizeof(T));
            return value;
        }
    }

    /// Writes one raw channel and keeps the bits of its neighbours.
    void Set(int channel, T value)
    {
        if constexpr (isPacked) {
            uint64_t const mask = uint64_t{MAX} << Shift(channel);
            Store((Load() & ~mask) | (uint64_t{value} << Shift(channel) & mask));
        } else {
            std::memcpy(bytes_ + channel * sizeof(T), &value, sizeof(T));
        }
    }

    void GetRGBA(T& r, T& g, T& b, T& a) const
    {
        if constexpr (isPacked) {
            uint64_t const word = Load();
            r = static_cast<T>(word >> Shift(0) & MAX);
            g = static_cast<T>(word >> Shift(1) & MAX);
            b = static_cast<T>(word >> Shift(2) & MAX);
            a = static_cast<T>(word & MAX);
        } else {
            r = Get(0);
            g = Get(1);
            b = Get(2);
            a = Get(3);
        }
    }

    void SetRGBA(T r, T g, T b, T a)
    {
        if constexpr (isPacked) {
            Store(uint64_t{r} << Shift(0) | uint64_t{g} << Shift(1) | uint64_t{b} << Shift(2) | uint64_t{a});
        } else {
            Set(0, r);
            Set(1, g);
            Set(2, b);
            Set(3, a);
        }
    }

    T Red() const { return Get(0); }
    T Green() const { return Get(1); }
    T Blue() const { return Get(2); }
    T Alpha() const { return Get(3); }
    void Red(T value) { Set(0, value); }
    void Green(T value) { Set(1, value); }
    void Blue(T value) { Set(2, value); }
    void Alpha(T value) { Set(3, value); }

    /// A raw channel value as a fraction: by the table for 8 bits, times the double 1/MAX above, float as it
    /// is.
    static double Fraction(T value)
    {
        if constexpr (isFloat)
            return static_cast<double>(value);
        else if constexpr (BITS == 8)
            return _byteToFracTbl[value];
        else
            return static_cast<double>(value) * (1.0 / static_cast<double>(MAX));
    }

    /// A value on the scale 0 to MAX, rounded by f_round; narrowed only in a float pixel.
    static T Denorm(double value)
    {
        if constexpr (isFloat)
            return static_cast<T>(value);
        else
            return static_cast<T>(f_round(value));
    }

    /// The raw value of a fraction.
    static T Raw(double fraction)
    {
        if constexpr (isFloat)
            return static_cast<T>(fraction);
        else
            return Denorm(fraction * static_cast<double>(MAX));
    }

    void GetFloat(double& r, double& g, double& b, double& a) const
    {
        T red, green, blue, alpha;
        GetRGBA(red, green, blue, alpha);
        r = Fraction(red);
        g = Fraction(green);
        b = Fraction(blue);
        a = Fraction(alpha);
    }

    void SetFloat(double r, double g, double b, double a)
    {
        if constexpr (isPacked) {
            Store((uint64_t{Raw(r)} & MAX) << Shift(0) | (uint64_t{Raw(g)} & MAX) << Shift(1) |
                  (uint64_t{Raw(b)} & MAX) << Shift(2) | (uint64_t{Raw(a)} & MAX));
        } else {
            SetRGBA(Raw(r), Raw(g), Raw(b), Raw(a));
        }
    }

    double RedFloat() const { return Fraction(Get(0)); }
    double GreenFloat() const { return Fraction(Get(1)); }
    double BlueFloat() const { return Fraction(Get(2)); }
    double AlphaFloat() const { return Fraction(Get(3)); }
    void RedFloat(double value) { Set(0, Raw(value)); }
    void GreenFloat(double value) { Set(1, Raw(value)); }
    void BlueFloat(double value) { Set(2, Raw(value)); }
    void AlphaFloat(double value) { Set(3, Raw(value)); }

    double Rf() const { return RedFloat(); }
    double Gf() const { return GreenFloat(); }
    double Bf() const { return BlueFloat(); }
    double Af() const { return AlphaFloat(); }
    void Rf(double value) { RedFloat(value); }
    void Gf(double value) { GreenFloat(value); }
    void Bf(double value) { BlueFloat(value); }
    void Af(double value) { AlphaFloat(value); }

    /// One channel from a value already scaled to 0..MAX: rounded, not multiplied.
    void RedDenorm(double value) { Set(0, Denorm(value)); }
    void GreenDenorm(double value) { Set(1, Denorm(value)); }
    void BlueDenorm(double value) { Set(2, Denorm(value)); }
    void AlphaDenorm(double value) { Set(3, Denorm(value)); }

    void SetBytes(unsigned char r, unsigned char g, unsigned char b,
                  unsigned char a) requires(BITS == 8 && PACK == 4)
    {
        SetRGBA(r, g, b, a);
    }

private:
    static constexpr int Shift(int channel) { return (3 - channel) * BITS; }

    /// A number with the highest byte first, from that order or into it.
    template <typename Word> static Word Big_Endian(Word word)
    {
        if constexpr (std::endian::native == std::endian::big)
            return word;
        else if constexpr (sizeof word == 4)
            return __builtin_bswap32(word);
        else
            return __builtin_bswap16(word);
    }

    // A packed pixel is a word of 32 bits and a byte, or one of 16; a loop over bytes would be vectorised,
    // which for so few takes many times as long.

    uint64_t Load() const
    {
        uint32_t high;
        std::memcpy(&high, bytes_, sizeof high);
        if constexpr (PACK == 5) {
            return uint64_t{Big_Endian(high)} << 8 | bytes_[4];
        } else {
            uint16_t low;
            std::memcpy(&low, bytes_ + 4, sizeof low);
            return uint64_t{Big_Endian(high)} << 16 | Big_Endian(low);
        }
    }

    void Store(uint64_t word)
    {
        if constexpr (PACK == 5) {
            bytes_[4] = static_cast<unsigned char>(word);
            word >>= 8;
        } else {
            uint16_t const low = Big_Endian(static_cast<uint16_t>(word));
            std::memcpy(bytes_ + 4, &low, sizeof low);
            word >>= 16;
        }
        uint32_t const high = Big_Endian(static_cast<uint32_t>(word));
        std::memcpy(bytes_, &high, sizeof high);
    }

    unsigned char bytes_[PACK];
};

using ZVPixelRGBA8 = ZVPixel<unsigned char, 255, 8, 4>;
using ZVPixelRGBA10 = ZVPixel<unsigned short, 1023, 10, 5>;
using ZVPixelRGBA12 = ZVPixel<unsigned short, 4095, 12, 6>;
using ZVPixelRGBA16 = ZVPixel<unsigned short, 65535, 16, 8>;
using ZVPixelRGBAFloat = ZVPixel<float, 4294967295, 32, 16>;
using ZVPixelMono8 = ZVPixel<unsigned char, 255, 8, 1>;
using ZVPixelMono10 = ZVPixel<unsigned short, 1023, 10, 2>;
using ZVPixelMono12 = ZVPixel<unsigned short, 4095, 12, 2>;
using ZVPixelMono16 = ZVPixel<unsigned short, 65535, 16, 2>;
using ZVPixelMonoFloat = ZVPixel<float, 4294967295, 32, 4>;
