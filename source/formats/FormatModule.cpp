// See FormatModule.h.
#include "FormatModule.h"

long Always_Ready(ZVClip*, long)
{
    return 1;
}

char const* Format_Name(unsigned long stringId, char const* fallback)
{
    char const* name = GetStringZV(stringId);
    return *name ? name : fallback;
}

bool Read_At(ZVFileInfo* file, int64_t end, int64_t offset, void* destination, int64_t size)
{
    // A read across the end of a file succeeds with what there is, so the end is tested ahead of it.
    if (offset < 0 || size < 1 || offset > end || size > end - offset) return false;
    SeekFileZV(file, offset, 0);
    return ReadFileZV(file, destination, static_cast<unsigned long>(size)) != 0;
}

bool Write_At(ZVFileInfo* file, int64_t offset, void const* source, int64_t size)
{
    if (SeekFileZV(file, 0, 1) != offset) SeekFileZV(file, offset, 0);
    return WriteFileZV(file, source, static_cast<unsigned long>(size)) != 0;
}

BitmapBlock Stored_Frame(ZVClip const* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region)
{
    BitmapBlock stored{AllocBitmapZV(bitmap->Width, bitmap->Height, bitmap->Type, "stored frame")};
    if (stored) InterpretAlphaZV(clip, bitmap, stored.get(), region);
    return stored;
}
