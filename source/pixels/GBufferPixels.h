// Pixels rebuilt from their samples, row by row.
#pragma once

#include <cstdint>

/// Where the colours of samples come from.
enum class SampleColour {
    Shared,  ///< the colour channel with an exponent for all three: four bytes
    Bytes,   ///< the plain colour channel: three bytes
    Picture  ///< the picture itself, the same for all samples of a pixel
};

/// A row of a channel. One that is missing is a single sample that is never left: its step is 0.
struct ZVSampleRow {
    uint8_t const* front;
    long frontStep;  ///< bytes from one sample to the next
    uint8_t const* further;
    long step;
};

/// A row of samples, with all that the X values name.
struct ZVDeepRow {
    uint8_t const* frontIds;  ///< bytes or shorts
    uint8_t const* ids;
    uint16_t const* xValues;
    uint32_t id;
    bool keeps;  ///< whether samples of the id are wanted, or all others
    ZVSampleRow coverage, transparency, colour;
};

/// Gathers the wanted samples of the pixels from `first` on, front to back.
/// @param picture  fractions of the pixels' colours, four for each; for SampleColour::Picture alone
/// @param pixels   takes red, green, blue and alpha of each as fractions, all within 0 to 1
using ZVPixelGatherer = void (*)(ZVDeepRow const& row, long first, long count, double const* picture,
                                 double* pixels);

/// @param idBytes  1 or 2
ZVPixelGatherer Get_Pixel_Gatherer(SampleColour colour, long idBytes);
