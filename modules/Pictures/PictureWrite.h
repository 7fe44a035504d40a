// Writing pictures.
#pragma once

#include <ZVLib.h>

/// Writes a frame as the clip's file. The file that was there stays until the new one is whole.
/// @return  false with the error number set
bool Write_Picture(ZVClip const* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region);
