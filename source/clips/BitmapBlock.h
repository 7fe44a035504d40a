// A guard for temporary bitmaps: freed on every way out of a function.
#pragma once

#include "ZVBitmap.h"

#include <memory>

struct Free_Bitmap {
    void operator()(ZVBitmap* bitmap) const { FreeBitmapZV(bitmap); }
};
using BitmapBlock = std::unique_ptr<ZVBitmap, Free_Bitmap>;
