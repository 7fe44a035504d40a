// Decoded pictures with brightness and two colour differences in planes of their own, turned into rows of
// red, green, blue and alpha.
#pragma once

#include "MovieBands.h"
#include "MovieLibrary.h"

/// Converts the layouts that cameras and editors deliver: 8 to 12 bits, colour at full, half or quarter
/// resolution, with or without alpha. The result is the exact value rounded to the nearest number; one that
/// lies within a hundredth of the middle may go either way, but is the same on every machine.
///
/// Colour of lower resolution lies between the pixels that it belongs to, in both directions, and is
/// interpolated linearly. Matrix and range are those of the picture; the matrix of BT.601 stands in where it
/// does not say.
class PlanarConverter {
public:
    /// False for a picture of another layout or matrix; nothing is written then.
    bool To_RGBA(AVFrame const& picture, void* pixels, std::size_t rowBytes, HostPixels layout,
                 MovieBands& bands);

private:
    /// For each worker one line of either colour difference, and one to make them.
    std::vector<std::uint16_t> lines_;
};
