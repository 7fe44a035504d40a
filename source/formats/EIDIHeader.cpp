// Frame header of an EIDI file:
//   0 time, single precision   4 top   6 left   8 bottom   10 right   12 depth   13 indexed   14 second
//   rectangle 22 compressed   23 alpha depth   24 data size, 4 bytes   28 palette size   30 palette field 32
//   palette
// Sides of a rectangle and the two palette fields take 2 bytes, depths and flags 1. The second rectangle, the
// indexed byte and the palette field mean nothing here beyond the rules that they must meet.
#include "EIDIHeader.h"

#include "foundation/BigEndian.h"

#include <algorithm>
#include <bit>

namespace {

constexpr uint32_t TimeExponent = 0x7F800000;
constexpr uint32_t TimeSign = 0x80000000;

long Load_Signed16(uint8_t const* bytes)
{
    return static_cast<int16_t>(Load_Big16(bytes));
}

/// The largest exponent is infinity here, whatever the mantissa holds.
float Load_Time(uint8_t const* bytes)
{
    uint32_t bits = Load_Big32(bytes);
    if ((bits & TimeExponent) == TimeExponent) bits &= TimeSign | TimeExponent;
    return std::bit_cast<float>(bits);
}

bool Is_Depth(long depth)
{
    constexpr long depths[] = {1, 2, 4, 8, 16, 24};
    return std::find(std::begin(depths), std::end(depths), depth) != std::end(depths);
}

EIDIPixel Opaque_Pixel(uint8_t red, uint8_t green, uint8_t blue)
{
    return std::bit_cast<EIDIPixel>(std::array<uint8_t, 4>{red, green, blue, 255});
}

}  // namespace

bool Parse_EIDI_Frame(std::span<uint8_t const, EIDIFrameHeaderSize> bytes, EIDIFrameHeader& header)
{
    EIDIFrameHeader const read{
        .time = Load_Time(&bytes[0]),
        .width = Load_Signed16(&bytes[10]) - Load_Signed16(&bytes[6]),
        .height = Load_Signed16(&bytes[8]) - Load_Signed16(&bytes[4]),
        .depth = bytes[12],
        .alphaDepth = bytes[23],
        .isCompressed = bytes[22] == 1,
        .dataSize = Load_Big32(&bytes[24]),
        .paletteSize = Load_Big16(&bytes[28]),
    };
    bool const isIndexedLegal = bytes[13] < 2;
    bool const isCompressedLegal = bytes[22] < 2;
    bool const isAlphaLegal = read.alphaDepth == 0 || (read.alphaDepth == 8 && read.depth == 24);
    bool const isPaletteLegal = read.paletteSize >= 1 && read.paletteSize <= EIDILargestPalette &&
                                Load_Signed16(&bytes[30]) < read.paletteSize;
    if (read.width < 1 || read.height < 1 || !Is_Depth(read.depth)) return false;
    if (!isIndexedLegal || !isCompressedLegal || !isAlphaLegal || !isPaletteLegal) return false;
    header = read;
    return true;
}

void Store_EIDI_Frame(EIDIFrameHeader const& header, std::span<uint8_t, EIDIFrameHeaderSize> bytes)
{
    std::fill(bytes.begin(), bytes.end(), uint8_t{0});
    auto const width = static_cast<uint32_t>(header.width);
    auto const height = static_cast<uint32_t>(header.height);
    Store_Big32(&bytes[0], std::bit_cast<uint32_t>(header.time));
    Store_Big16(&bytes[8], height);
    Store_Big16(&bytes[10], width);
    bytes[12] = static_cast<uint8_t>(header.depth);
    bytes[13] = header.depth <= 8;
    Store_Big16(&bytes[18], height);
    Store_Big16(&bytes[20], width);
    bytes[22] = header.isCompressed;
    bytes[23] = static_cast<uint8_t>(header.alphaDepth);
    Store_Big32(&bytes[24], header.dataSize);
    Store_Big16(&bytes[28], static_cast<uint32_t>(header.paletteSize));
}

EIDIPalette Parse_EIDI_Palette(std::span<uint8_t const> bytes)
{
    EIDIPalette palette;
    palette.fill(Opaque_Pixel(0, 0, 0));
    for (std::size_t i = 0; i < bytes.size() / EIDIPaletteEntrySize; ++i)
        palette[i] = Opaque_Pixel(bytes[3 * i], bytes[3 * i + 1], bytes[3 * i + 2]);
    return palette;
}
