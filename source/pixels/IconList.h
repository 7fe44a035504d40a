// The list of icons in the environment.
#pragma once

#include "ZVBitmap.h"

/// Adds an icon behind the others. The list takes the bitmap over, or it is freed when memory runs out.
/// @return  the bitmap, or null
ZVBitmap* Add_Icon(unsigned long id, ZVBitmap* bitmap);
