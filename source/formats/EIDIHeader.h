// The headers of an EIDI file, on memory alone. Numbers in the file are big-endian.
#pragma once

#include "ZVBase.h"

#include <array>
#include <span>

constexpr long EIDIFileHeaderSize = 6;
constexpr long EIDIFrameHeaderSize = 32;
constexpr long EIDIPaletteEntrySize = 3;
constexpr long EIDILargestPalette = 256;
constexpr long EIDILargestHead = EIDIFrameHeaderSize + EIDILargestPalette * EIDIPaletteEntrySize;

/// A pixel of a ZV_BITMAP_RGBA8 bitmap, as the word that has its four bytes in memory.
using EIDIPixel = uint32_t;

/// Colours of a frame; entries that the file does not have are opaque black.
using EIDIPalette = std::array<EIDIPixel, EIDILargestPalette>;

/// What the header of a frame tells, in host order.
struct EIDIFrameHeader {
    float time = 0.0f;  ///< seconds
    long width = 0, height = 0;
    long depth = 0;       ///< 1, 2, 4, 8, 16 or 24
    long alphaDepth = 0;  ///< 0, or 8 with depth 24
    bool isCompressed = false;
    uint32_t dataSize = 0;  ///< bytes of pixel data behind the palette
    long paletteSize = 0;   ///< entries, 1 to 256

    long Bits() const { return depth + alphaDepth; }
    /// Bytes of a coding unit, which is a pixel or a byte of pixels.
    long Unit_Bytes() const { return Bits() < 8 ? 1 : Bits() / 8; }
    /// Bytes of a row; the bits beyond the last whole byte are not stored.
    int64_t Row_Bytes() const { return static_cast<int64_t>(width) * Bits() / 8; }
    int64_t Head_Size() const { return EIDIFrameHeaderSize + paletteSize * EIDIPaletteEntrySize; }
};

/// @return  false, with `header` as it was, when a field breaks the rules of the format or the picture is
/// empty
ZV_API bool Parse_EIDI_Frame(std::span<uint8_t const, EIDIFrameHeaderSize> bytes, EIDIFrameHeader& header);
ZV_API void Store_EIDI_Frame(EIDIFrameHeader const& header, std::span<uint8_t, EIDIFrameHeaderSize> bytes);

/// @param bytes  three for each entry, at most 256 entries
ZV_API EIDIPalette Parse_EIDI_Palette(std::span<uint8_t const> bytes);
