// Pixels of a picture file in a bitmap.
#pragma once

#include "PictureFile.h"

struct FreePictureBitmap {
    void operator()(ZVBitmap* bitmap) const { FreeBitmapZV(bitmap); }
};
using PictureBitmap = std::unique_ptr<ZVBitmap, FreePictureBitmap>;

/// The bitmap type that holds a channel of so many bits as OpenImageIO delivers it: 10 and 12 bits come
/// in 16.
ZVBitmapType Plain_Type(long depth);

/// OpenImageIO's name for a channel of such a bitmap.
OIIO::TypeDesc Channel_Type(ZVBitmap const& bitmap);

/// Fills an RGBA bitmap with a layer, colours and alpha as they are stored. A bitmap of the layer's size and
/// plain type is filled directly; into another one the picture is scaled and converted. What an OpenEXR
/// picture's window shows beyond its pixels becomes 0.
/// @return  false with the error number set
bool Read_Picture(PictureFile& file, PictureLayer const& layer, ZVBitmap* bitmap);
