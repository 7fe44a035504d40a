// The frames that native objects and gadgets are drawn with.
#pragma once

#include "MacPort.h"

/// The rectangle's outermost pixels: the left and upper edges in one colour, over them the right and lower
/// ones in another, which leave the upper right corner.
void Draw_Edges(ZVPort& port, HostRect const& rect, uint32_t upper, uint32_t lower);

/// A frame one pixel wide with such edges inside it.
void Draw_Bevel(ZVPort& port, HostRect const& rect, uint32_t frame, uint32_t upper, uint32_t lower);

/// That of what lies on top of something: of a menu, and of a window that the desktop gives no frame.
void Draw_Raised_Edge(ZVPort& port, HostRect const& rect);

// Text fields and lists lie in a sunken frame, one pixel wide: the left and upper edges in the dark pen, the
// right and lower ones in the light pen. Without `flat3D` it is an outline in the dark pen.

/// Just inside a rectangle.
void FrameRect3D(ZVPort& port, HostRect const& rect);
void FrameRect3DInv(ZVPort& port, HostRect const& rect);  ///< Of what is disabled, half way to grey.

/// Around a rectangle.
void EmbossRect3D(ZVPort& port, HostRect const& rect);
void EmbossRect3DInv(ZVPort& port, HostRect const& rect);  ///< Of what is disabled, half way to grey.

inline HostRect Outset(HostRect const& rect, int distance)
{
    return {rect.left - distance, rect.top - distance, rect.right + distance, rect.bottom + distance};
}
