// See EIDIRows.h. A sum of depth and alpha depth says what a row holds:
//   1, 2, 4, 8   palette indices, the highest bits of a byte first
//   16           two bytes, x1r5g5b5
//   24           red, green, blue
//   32           alpha, red, green, blue
#include "EIDIRows.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

constexpr EIDIPixel Opaque = std::bit_cast<EIDIPixel>(std::array<uint8_t, 4>{0, 0, 0, 255});
constexpr bool IsLittleEndian = std::endian::native == std::endian::little;

EIDIPixel Load_Pixel(uint8_t const* bytes)
{
    EIDIPixel pixel;
    std::memcpy(&pixel, bytes, sizeof(pixel));
    return pixel;
}

void Store_Pixel(uint8_t* bytes, EIDIPixel pixel)
{
    std::memcpy(bytes, &pixel, sizeof(pixel));
}

template <int Bits>
void Indices_To_Pixels(uint8_t const* units, EIDIPalette const& palette, uint8_t* pixels, long width)
{
    constexpr long perByte = 8 / Bits;
    constexpr unsigned mask = (1u << Bits) - 1;
    long x = 0;
    for (; x + perByte <= width; x += perByte) {
        unsigned const byte = *units++;
        for (long i = 0; i < perByte; ++i)
            Store_Pixel(pixels + 4 * (x + i), palette[byte >> (8 - Bits * (i + 1)) & mask]);
    }
    for (; x < width; ++x)
        Store_Pixel(pixels + 4 * x, palette[0]);
}

void Words_To_Pixels(uint8_t const* units, uint8_t* pixels, long width)
{
    for (long x = 0; x < width; ++x) {
        unsigned const high = units[2 * x];
        unsigned const low = units[2 * x + 1];
        pixels[4 * x] = static_cast<uint8_t>((high & 0x7C) << 1);
        pixels[4 * x + 1] = static_cast<uint8_t>((high & 3) << 6 | (low & 0xE0) >> 2);
        pixels[4 * x + 2] = static_cast<uint8_t>(low << 3);
        pixels[4 * x + 3] = 255;
    }
}

void RGB_To_Pixels(uint8_t const* units, uint8_t* pixels, long width)
{
    for (long x = 0; x < width; ++x)
        Store_Pixel(pixels + 4 * x, Load_Pixel(units + 3 * x) | Opaque);
}

void ARGB_To_Pixels(uint8_t const* units, uint8_t* pixels, long width)
{
    for (long x = 0; x < width; ++x)
        Store_Pixel(pixels + 4 * x, std::rotr(Load_Pixel(units + 4 * x), IsLittleEndian ? 8 : -8));
}

}  // namespace

void EIDI_Row_To_Pixels(uint8_t const* units, long bits, EIDIPalette const& palette, uint8_t* pixels,
                        long width)
{
    switch (bits) {
    case 1: Indices_To_Pixels<1>(units, palette, pixels, width); break;
    case 2: Indices_To_Pixels<2>(units, palette, pixels, width); break;
    case 4: Indices_To_Pixels<4>(units, palette, pixels, width); break;
    case 8: Indices_To_Pixels<8>(units, palette, pixels, width); break;
    case 16: Words_To_Pixels(units, pixels, width); break;
    case 24: RGB_To_Pixels(units, pixels, width); break;
    default: ARGB_To_Pixels(units, pixels, width); break;
    }
}

void EIDI_Pixels_To_Row(uint8_t const* pixels, long unitBytes, uint8_t* units, long width)
{
    switch (unitBytes) {
    case 1:
        for (long x = 0; x < width; ++x)
            units[x] = pixels[4 * x];
        break;
    case 3:
        // The fourth byte of each store is overwritten by the next.
        for (long x = 0; x < width; ++x)
            std::memcpy(units + 3 * x, pixels + 4 * x, 4);
        break;
    default:
        for (long x = 0; x < width; ++x)
            Store_Pixel(units + 4 * x, std::rotl(Load_Pixel(pixels + 4 * x), IsLittleEndian ? 8 : -8));
        break;
    }
}
