// The dimming that shows that a control is disabled: one formula for colours and pixels.
#pragma once

#include "ZVBase.h"

/// Shade from which disabled colours depart, 0xRRGGBB: the interface background, darkened.
uint32_t Disabled_Shade();

/// Three tenths of the way from a shade component to a component, truncated toward the shade. It lies between
/// the two, so no range is ever left.
constexpr int32_t Disabled_Component(int32_t component, int32_t shade)
{
    return shade + (component - shade) * 300 / 1000;
}
