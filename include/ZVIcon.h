// Icons: the pictures of the interface, each found by a number through one call. They come from files whose
// layers are named by their numbers, and on demand from the pictures in the application's resources. Main
// thread only.
#pragma once

#include "ZVBitmap.h"

/// The icon of a number: an RGBA8 bitmap that the library owns and callers must not change. A picture of the
/// application's resources becomes an icon when it is asked for first.
/// @return  null for 0 and for a number that nobody knows
ZV_API ZVBitmap* FindIconZV(unsigned long id);

/// Takes in the icons of a picture with layers, a file of the application's directory. A layer whose name
/// begins with a number other than 0 is the icon of that number, without the border of one pixel that is
/// drawn around it; the others are passed over. Numbers that are known already keep their icons.
/// @return  1 when the file was opened; 0 else, for null, and without an interface
ZV_API long LoadIconFileZV(char const* name);

/// The picture ('PICT') of a number in the application's resources, the caller's to free.
/// @return  null when there is none, with error 1 when there is no memory
ZV_API ZVNativeBitmap* GetImageZV(unsigned long id);

/// Saves a bitmap, RGBA or ZV_BITMAP_MONO8, through the format module that has the extension jpg. Without
/// such a module nothing is written.
/// @param path     file spec
/// @param quality  as the module understands it
ZV_API void WriteJPEGZV(ZVBitmap* bitmap, char const* path, long quality);
