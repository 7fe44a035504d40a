// Coverage of pixels, as glyph images are.
#pragma once

#include <vector>

struct HostMask {
    int left = 0;  ///< first column, counted from the origin of the glyph to the right
    int top = 0;   ///< first row, counted from the base line downwards, so mostly negative
    int width = 0;
    int height = 0;
    std::vector<unsigned char> coverage;  ///< `height` rows of `width` bytes: 0 outside, 255 inside
};
