// Rows of pixels onto a rectangle of the canvas.
#pragma once

#include "PictPixels.h"

/// A bitmap, the part of it that is taken, and where that goes.
struct PictStretch {
    PictRect bounds;       ///< of the bitmap
    PictRect source;       ///< in the coordinates of the bounds
    PictRect target;       ///< on the canvas; a pixel there shows what lies under its upper left corner
    PictMask const* mask;  ///< drawn there alone, when not null
    bool isMono;
    PictTransfer transfer;
};

/// Reads all rows of the bitmap and draws what lies in the canvas' clip.
/// @return  false when a row is missing; those above it are drawn
bool Draw_Rows(PictCanvas const& canvas, PictStretch const& stretch, PictRows& rows);
