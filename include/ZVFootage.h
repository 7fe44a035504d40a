// Footage presets: rate, pixel aspect and field order of the common frame sizes.
#pragma once

#include "ZVTime.h"

struct ZVFootagePreset {
    unsigned long Name;  ///< string id
    unsigned long Type;
    long Width;
    long Height;
    double PixelAspect;
    double FrameRate;
    ::FieldOrder FieldOrder;
};

ZV_API long NumFootagePresetsZV();
ZV_API ZVFootagePreset const* FindFootagePresetsZV(long type);  ///< First row of that type, or null.

/// Search by size. A width above 1023 may miss by 3 per cent. Outputs may be null; without a match they are
/// those of a plain 640 by 480 clip at 25.
/// @return  1 for a match, else 0
ZV_API long FindFootagePresetsZV(long width, long height, unsigned long* type, char* name, double* frameRate,
                                 double* pixelAspect, FieldOrder* fieldOrder);
