// Rows of EIDI coding units to and from ZV_BITMAP_RGBA8 pixels, on memory alone. Rows of units must be
// accessible for EIDISlack bytes behind their end; pixel rows need nothing of the kind.
#pragma once

#include "EIDIHeader.h"

/// Units of 1, 2, 4, 8, 16, 24 or 32 bits to pixels. In a row whose width is no multiple of the pixels in a
/// byte, the pixels beyond the last stored byte take the first colour of the palette.
ZV_API void EIDI_Row_To_Pixels(uint8_t const* units, long bits, EIDIPalette const& palette, uint8_t* pixels,
                               long width);

/// Pixels to units of 1 byte (red), 3 bytes (red, green, blue) or 4 (alpha, red, green, blue).
ZV_API void EIDI_Pixels_To_Row(uint8_t const* pixels, long unitBytes, uint8_t* units, long width);
