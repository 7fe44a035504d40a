// From an 8-bit component to a channel, as fills do it.
#pragma once

#include "ZVPixel.h"

/// component / 255.0 * MAX, truncated, or the quotient alone for a float channel. It is no shift: 128 becomes
/// 513 in 10 bits.
template <typename Pixel> typename Pixel::Channel Channel_From_Byte(uint32_t component)
{
    double const fraction = component / 255.0;
    if constexpr (Pixel::isFloat)
        return static_cast<float>(fraction);
    else
        return static_cast<typename Pixel::Channel>(fraction * static_cast<double>(Pixel::max));
}
