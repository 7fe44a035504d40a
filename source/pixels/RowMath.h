// Arithmetic on rows of pixels of the RGBA types, for the clip layer: fields, weighted sums, and the alpha
// conventions of files. All channels are treated alike where nothing else is said.
#pragma once

#include "ZVBitmap.h"

/// A weight, with a factor that stands for it in the arithmetic of one integer type: of every channel value
/// the product with `factor`, shifted right by 16 for bytes and by 32 for words, is the told one; 1 is
/// `identity`.
struct ZVRowWeight {
    double value;
    uint32_t factor;
    uint16_t identity;  ///< all bits for a weight of 1, whose factor is 0
    bool hasFactor;     ///< false: products are worked out in double

    /// @param pixels  for how many pixels the weight is meant: a few are not worth the search for a factor
    ZVRowWeight(double weight, ZVBitmapType type, long pixels);
};

/// A matte to take out of rows of one type. For a channel c that was mixed with it by alpha, (c * max - matte
/// * (max - alpha)) / alpha is what was there, within the channel, rounded to nearest with halves up; where
/// alpha is 0 colours stay. Stored alpha is turned first where it is inverted.
struct ZVMatteRemoval {
    double matte[3];  ///< red, green and blue on the scale of the channels
    bool isInverted;

    /// For bytes, by their stored alpha: channel * scale + bias, cut to an integer and held within a byte, in
    /// single precision, fused or not.
    struct alignas(16) Line {
        float scale[4], bias[4];
    };
    Line byAlpha[256];

    /// @param fractions  of the matte
    ZVMatteRemoval(double const* fractions, bool inverted, ZVBitmapType type);
};

/// What can be done with rows of one type, compiled for the best instruction set of this processor. Rows lie
/// at any address and do not overlap, unless a row is said to be changed; nothing beyond the pixels is read
/// or written.
struct ZVRowMath {
    /// target = (first + second) / 2, truncated in integer types.
    void (*average)(void const* first, void const* second, void* target, long pixels);

    /// One step of a 1-2-1 filter down a bitmap: `above` takes the row held in `scratch`, which then takes
    /// (above + 2 * row + below) / 4 of what was there, truncated in integer types.
    void (*smooth)(void* above, void const* row, void const* below, void* scratch, long pixels);

    // Products with weights are worked out in double and truncated one by one in integer types; the weights
    // add up to 1 at most, and a sum beyond the channel wraps.

    /// target = source * weight, or added to it.
    void (*weigh)(void const* source, ZVRowWeight const& weight, void* target, long pixels);
    void (*addWeighed)(void const* source, ZVRowWeight const& weight, void* target, long pixels);

    /// target = row * weight + (above + below) / 2 * other, or added to it. The average is that of `average`;
    /// above and below may be one row.
    void (*mixFields)(void const* row, void const* above, void const* below, ZVRowWeight const& weight,
                      ZVRowWeight const& other, void* target, long pixels);
    void (*addFields)(void const* row, void const* above, void const* below, ZVRowWeight const& weight,
                      ZVRowWeight const& other, void* target, long pixels);

    // Alpha conventions, on one row that is changed.

    void (*setAlpha)(void* row, bool isOpaque, long pixels);  ///< Full or none.
    void (*invertAlpha)(void* row, long pixels);              ///< Maximum minus alpha.

    /// Alpha becomes the mean of the colours, or the maximum minus it, rounded; the colours become
    /// `background`.
    void (*takeLuminance)(void* row, uint32_t background, bool isInverted, long pixels);

    void (*removeMatte)(void* row, ZVMatteRemoval const& removal, long pixels);

    /// The colours become alpha, or the maximum minus it; alpha becomes full.
    void (*showAlpha)(void* row, bool isInverted, long pixels);

    /// Mixes colours with a matte of three fractions by alpha: c = (c * alpha + matte * (max - alpha)) / max;
    /// in integer types the matte is truncated to a channel and so is the result.
    void (*addMatte)(void* row, double const* matte, long pixels);
};

/// The arithmetic of a type; null for a type other than the RGBA ones.
ZVRowMath const* Get_Row_Math(ZVBitmapType type);
