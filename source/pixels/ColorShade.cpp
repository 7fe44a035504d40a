// Colour words made lighter, darker and disabled.
#include "ColorShade.h"

#include "ZVBitmap.h"
#include "ZVEnvironment.h"

#include <algorithm>

static constexpr double disabledFactor = 0.75;

static uint32_t Shaded_Component(uint32_t component, double factor)
{
    double const product = component * factor;
    if (!(product > 0.0)) return 0;  // so is what is not a number
    return static_cast<uint32_t>(f_round(std::min(product, 255.0)));
}

unsigned long ShadeColorZV(unsigned long colour, double factor)
{
    auto const word = static_cast<uint32_t>(GetColorZV(colour));
    uint32_t shaded = 0;
    for (int shift = 0; shift <= 16; shift += 8)
        shaded |= Shaded_Component(word >> shift & 0xFF, factor) << shift;
    return shaded;
}

uint32_t Disabled_Shade()
{
    return static_cast<uint32_t>(ShadeColorZV(ZV_PEN_PALETTE, disabledFactor));
}

unsigned long DisableColorZV(unsigned long colour)
{
    auto const word = static_cast<uint32_t>(GetColorZV(colour));
    uint32_t const shade = Disabled_Shade();
    uint32_t disabled = word & 0xFF000000;
    for (int shift = 0; shift <= 16; shift += 8) {
        auto const component = static_cast<int32_t>(word >> shift & 0xFF);
        auto const departure = static_cast<int32_t>(shade >> shift & 0xFF);
        disabled |= static_cast<uint32_t>(Disabled_Component(component, departure)) << shift;
    }
    return disabled;
}
