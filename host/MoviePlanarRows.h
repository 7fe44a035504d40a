// Rows of planar pictures: colour differences brought to full resolution, and pixels made of the parts. The
// loops are compiled for the machine's widest registers as well, with the same results.
#pragma once

#include <cstdint>

/// What a pixel's parts are multiplied with. The zero points, and the half for rounding, are in the offsets.
struct PlanarWeights {
    float luma;
    float redV, greenU, greenV, blueU;
    float red, green, blue;
    float alpha;
};

/// The same in whole numbers, for bytes made of parts of 12 bits: red and green in units of 1 / 2^18, blue,
/// whose weight is the largest, in those of 1 / 2^17.
struct FixedPlanarWeights {
    static constexpr int Bits = 12;
    static constexpr int Shift = 18, BlueShift = 17;

    std::int16_t luma, blueLuma;
    std::int16_t redV, greenU, greenV, blueU;
    std::int32_t red, green, blue;
    int lumaBits, chromaBits;  ///< by which the parts are to be shifted left to have 12 bits
};

/// One row of a picture, the colour differences already at full resolution.
struct PlanarRow {
    void const* luma;
    std::uint16_t const *u, *v;
    void const* alpha;  ///< null: all is opaque
    std::uint32_t* out;
    int width;
    PlanarWeights weights;
    FixedPlanarWeights fixed;
};

/// One line of a colour difference: from one or two lines of the picture to one number for each pixel.
struct ChromaLine {
    void const *near, *far;  ///< far: null when there is no other line to blend with
    std::uint16_t* blended;  ///< room for the samples, and for one more on either side
    std::uint16_t* out;      ///< as many as samples, or twice that
    int samples;             ///< of the picture's lines
    bool isHalf;             ///< two pixels share a sample
};

struct PlanarFunctions {
    void (*row)(PlanarRow const&);
    void (*line)(ChromaLine const&);
};

/// What converts pictures of that kind.
/// @param isWide   samples are words, not bytes
/// @param isFixed  by whole numbers; only for opaque pixels of bytes
/// @param isDeep   pixels have words, not bytes
PlanarFunctions Planar_Functions(bool isWide, bool isFixed, bool isDeep, bool hasAlpha);
