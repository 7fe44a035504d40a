// A frame as a picture that holds it in the compression of movies.
#pragma once

#include "formats/FormatModule.h"
#include "formats/MovieSeam.h"

/// @param bitmap   of type ZV_BITMAP_RGBA8 and at most 32767 pixels either way
/// @param picture  replaced
/// @return  false without memory, with error 26 for a codec without stills, and with 18 when it fails
/// @throw std::bad_alloc
bool Write_Still_Picture(ZVClip const* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region,
                         uint32_t codec, long quality, std::vector<uint8_t>& picture);
