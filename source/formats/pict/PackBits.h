// PackBits: runs and literals of bytes or of 16-bit words. A control byte n from 0 to 127 is followed by n +
// 1 units as they are, one from 129 to 255 by a unit that stands for 257 - n of them, and 128 means nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// Room that Unpack_Bits needs behind the bytes wanted, and Pack_Bits behind its row: both work in whole
/// chunks.
inline constexpr std::size_t PackBitsSlack = 144;

/// Unpacks a row of `size` bytes. Bytes that the packets do not give become 0, and packets beyond the row are
/// not looked at.
/// @param unit   1 or 2 bytes; `size` is a multiple of it
/// @param slack  bytes that may be read behind `packed`
void Unpack_Bits(std::span<uint8_t const> packed, std::size_t slack, int unit, uint8_t* out,
                 std::size_t size);

/// The longest that a packed row can become, slack included.
constexpr std::size_t Packed_Bits_Bound(std::size_t size)
{
    return size + size / 128 + 1 + PackBitsSlack;
}

/// Packs the bytes of a row.
/// @return  the end of what was written
uint8_t* Pack_Bits(uint8_t const* row, std::size_t size, uint8_t* out);
