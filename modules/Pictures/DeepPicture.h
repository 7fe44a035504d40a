// Deep OpenEXR pictures, which keep any number of samples for a pixel: as a flat picture, and as G-buffers.
#pragma once

#include "PictureFile.h"

/// The deep part that belongs to a layer: its own, or else the first one of the file; -1 for none.
int Deep_Part(PictureFile const& file, PictureLayer const& layer);

/// The G-buffers that the part's channels give, as a mask; 0 for a part that is not deep.
unsigned long Deep_Channels(PictureFile const& file, int part);

/// The samples of each pixel of a layer over each other, from front to back, in a float bitmap of the size of
/// its pixels. False when they cannot be read.
bool Flatten_Deep_Picture(PictureFile& file, PictureLayer const& layer, ZVBitmap& bitmap);

/// Fills the channels of the mask, in the size of the part's window, nearest samples first. Channels that are
/// null are made, those of another size or format left alone. False with the error number set, the channels
/// made here then in the array too.
bool Read_Deep_Picture(PictureFile& file, int part, unsigned long mask, ZVGBufferArray& array);
