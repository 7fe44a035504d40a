// PNG pictures.
#pragma once

#include "Output.h"

/// Writes an RGBA8 or RGBA16 bitmap, with its alpha or without. Throws a JobError.
void Write_Png(PendingFile const& file, ZVBitmap const& bitmap, bool withAlpha);
