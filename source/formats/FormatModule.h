// What the built-in format modules have in common: display names, files that are read whole or not at all,
// and pictures that reach a caller's bitmap of another size or type.
#pragma once

#include "ZVLibInternal.h"

#include <memory>

struct File_Closer {
    void operator()(ZVFileInfo* file) const { CloseFileZV(file); }
};
using FilePtr = std::unique_ptr<ZVFileInfo, File_Closer>;

struct Bitmap_Freer {
    void operator()(ZVBitmap* bitmap) const { FreeBitmapZV(bitmap); }
};
using BitmapPtr = std::unique_ptr<ZVBitmap, Bitmap_Freer>;

/// The string that names a module in dialogs, or `fallback` when the string file lacks it: a nameless entry
/// could not be picked.
char const* Format_Name(unsigned long stringId, char const* fallback);

/// Reads `size` bytes from `offset` on. False, with nothing read, when they do not all lie before `end`,
/// which must not exceed the length of the file.
bool Read_At(ZVFileInfo* file, int64_t end, int64_t offset, void* destination, int64_t size);

/// Writes at `offset`, wherever the position is. False with the error number of the file layer.
bool Write_At(ZVFileInfo* file, int64_t offset, void const* source, int64_t size);

/// The frame as it is to be stored, a bitmap like it in the clip's alpha convention; null without memory.
BitmapPtr Stored_Frame(ZVClip const* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region);

/// Lets `read` fill an RGBA8 bitmap of the stored size: the caller's own bitmap where that is one, else a
/// temporary that is scaled and converted into the caller's. So a clip whose size was reduced after it was
/// opened, or a frame that differs in size from its clip, still gives a whole picture.
/// @return  what `read` answers; 0 without memory for the temporary
template <typename Read> long Read_Picture(ZVBitmap* bitmap, long width, long height, Read&& read)
{
    if (bitmap->Type == ZV_BITMAP_RGBA8 && bitmap->Width == width && bitmap->Height == height)
        return read(bitmap);
    BitmapPtr const picture{AllocBitmapZV(width, height, ZV_BITMAP_RGBA8, "stored frame")};
    if (!picture || !read(picture.get())) return 0;
    ScaleBitmapZV(picture.get(), bitmap, nullptr, nullptr);
    return 1;
}
