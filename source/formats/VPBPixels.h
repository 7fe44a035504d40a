// Pixels of VPB pictures: two bytes each, chrominance then luminance. The chrominance of an even column is
// Cb, of an odd one Cr, that of the pixel itself.
#pragma once

#include <cstdint>

/// One row to RGBA8, opaque. A row begins with Cb and Cr at 0, so its first pixel has no Cr.
void VPB_Row_To_Pixels(uint8_t const* row, uint8_t* pixels, long width);

/// One row of RGBA8 pixels to 2 * `width` bytes.
void VPB_Pixels_To_Row(uint8_t const* pixels, uint8_t* row, long width);
