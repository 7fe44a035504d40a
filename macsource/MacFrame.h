// The frames of text fields and lists: one pixel wide and sunken, the left and upper edges in the dark pen
// and the right and lower ones in the light pen. Without `flat3D` they are plain outlines in the dark pen.
#pragma once

#include "MacPort.h"

/// The colour of what is disabled: each component half way to the middle of its 16 bits.
uint32_t Toward_Grey(uint32_t color);

/// A frame that is the rectangle's outermost pixels.
void FrameRect3D(ZVPort& port, HostRect const& rect);
void FrameRect3DInv(ZVPort& port, HostRect const& rect);  ///< Of what is disabled, half way to grey.

/// A frame around the rectangle, which stays whole.
void EmbossRect3D(ZVPort& port, HostRect const& rect);
void EmbossRect3DInv(ZVPort& port, HostRect const& rect);  ///< Of what is disabled, half way to grey.

inline HostRect Outset(HostRect const& rect, int distance)
{
    return {rect.left - distance, rect.top - distance, rect.right + distance, rect.bottom + distance};
}
