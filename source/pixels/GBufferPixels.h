// Pixels rebuilt from their samples, row by row, as fractions: four doubles for each pixel.
#pragma once

#include "ZVBitmap.h"

/// Where the colours of samples come from.
enum class SampleColour {
    Shared,  ///< the colour channel with an exponent for all three: four bytes
    Bytes,   ///< the plain colour channel: three bytes
    Picture  ///< the picture itself, the same for all samples of a pixel
};

/// A row of a channel; null where it is missing.
struct ZVSampleRow {
    uint8_t const* front;
    uint8_t const* further;
};

/// A row of samples, with all that the X values name.
struct ZVDeepRow {
    ZVSampleRow ids;  ///< bytes or shorts
    uint16_t const* xValues;
    uint32_t id;
    bool keeps;                ///< whether samples of the id are wanted, or all others
    ZVSampleRow coverage;      ///< bytes; full where it is missing
    ZVSampleRow transparency;  ///< three bytes; none where it is missing, perhaps in front alone
    ZVSampleRow colour;        ///< by SampleColour; not there for the picture
};

/// Gathers the wanted samples of the pixels from `first` on, front to back. Results lie within 0 to 1.
/// @param picture  colours of the pixels; for SampleColour::Picture alone
using ZVPixelGatherer = void (*)(ZVDeepRow const& row, long first, long count, double const* picture,
                                 double* pixels);

/// @param idBytes         1 or 2
/// @param isTransparent  whether further samples have transparency
ZVPixelGatherer Get_Pixel_Gatherer(SampleColour colour, long idBytes, bool isTransparent);

/// Pixels of an RGBA type as fractions, and back: rounded by f_round, or narrowed to float.
struct ZVFractionRows {
    void (*load)(void const* row, long pixels, double* fractions);
    void (*store)(double const* fractions, long pixels, void* row);
};
ZVFractionRows const& Get_Fraction_Rows(ZVBitmapType type);
