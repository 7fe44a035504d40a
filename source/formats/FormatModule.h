// What the built-in format modules have in common: display names, files that are read whole or not at all,
// and pictures that reach a caller's bitmap of another size or type.
#pragma once

#include "ZVLibInternal.h"
#include "clips/BitmapBlock.h"
#include "foundation/HeapBlock.h"

#include <algorithm>
#include <cstring>
#include <memory>

using FilePtr = std::unique_ptr<ZVFileInfo, Released_By<CloseFileZV>>;

/// Entries of modules whose files are ready as soon as they are open, and of modules whose properties never
/// change.
long Always_Ready(ZVClip* clip, long writing);
template <long properties> long Import_Properties(ZVFormatDesc*)
{
    return properties;
}
template <long properties> long Export_Properties(ZVFormatDesc*, ZVClip*)
{
    return properties;
}

/// What a module that reads and writes files by itself has of its own.
struct FileEntries {
    decltype(ZVFormatDesc::Open) open;
    decltype(ZVFormatDesc::Close) close;
    decltype(ZVFormatDesc::Create) create;
    decltype(ZVFormatDesc::GetFrame) getFrame;
    decltype(ZVFormatDesc::AddFrame) addFrame;
    decltype(ZVFormatDesc::GetImportProperties) importProperties;
    decltype(ZVFormatDesc::GetExportProperties) exportProperties;
};

/// Adds such a module to the list: always ready, and claiming files by the usual rule. Null without memory.
ZVFormatDesc* Add_File_Format(ZVBuiltinFormat const& format, FileEntries const& entries);

/// The string that names a module in dialogs, or `fallback` when the string file lacks it: a nameless entry
/// could not be picked.
char const* Format_Name(unsigned long stringId, char const* fallback);

/// Tells in the rectangle of a scan which module is being registered; nothing without a place for it.
/// @param name  null without memory: nothing is told then either
/// @param tail  what is to follow the name
void Show_Scan_Progress(ZVScanDesc const* scan, char const* name, char const* tail);

/// Sets error 26, with the code of a codec that cannot be had as its text.
void Refuse_Codec(uint32_t code);

/// Reads `size` bytes from `offset` on. False, with nothing read, when they do not all lie before `end`,
/// which must not exceed the length of the file.
bool Read_At(ZVFileInfo* file, int64_t end, int64_t offset, void* destination, int64_t size);

/// Writes at `offset`, wherever the position is. False with the error number of the file layer.
bool Write_At(ZVFileInfo* file, int64_t offset, void const* source, int64_t size);

/// Hands the rows of a frame on as they are to be stored, in the clip's alpha convention: `take` gets a first
/// row and the number of rows, and answers false to give up. Some rows come at a time, few enough to stay in
/// the cache.
/// @return  false when `take` gave up, and without memory
template <typename Take>
bool Store_Frame(ZVClip const* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region, Take&& take)
{
    constexpr long bandSize = 256 << 10;
    long const bandRows = std::clamp<long>(bandSize / bitmap->RowBytes, 1, bitmap->Height);
    BitmapBlock const band{AllocBitmapZV(bitmap->Width, bandRows, bitmap->Type, "stored rows")};
    if (!band) return false;
    for (long y = 0; y < bitmap->Height; y += bandRows) {
        long const rows = std::min(bandRows, bitmap->Height - y);
        std::memcpy(band->Pixels, bitmap->Pixels + y * bitmap->RowBytes,
                    static_cast<std::size_t>(rows * bitmap->RowBytes));
        // In the last band, rows of the one before may be left, which nobody takes.
        InterpretAlphaZV(clip, band.get(), band.get(), region);
        if (!take(static_cast<uint8_t const*>(band->Pixels), rows)) return false;
    }
    return true;
}

/// The frame as it is to be stored, a bitmap like it in the clip's alpha convention; null without memory.
BitmapBlock Stored_Frame(ZVClip const* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region);

/// Lets `read` fill an RGBA8 bitmap of the stored size: the caller's own bitmap where that is one, else a
/// temporary that is scaled and converted into the caller's. So a clip whose size was reduced after it was
/// opened, or a frame that differs in size from its clip, still gives a whole picture.
/// @return  what `read` answers; 0 without memory for the temporary
template <typename Read> long Read_Picture(ZVBitmap* bitmap, long width, long height, Read&& read)
{
    if (bitmap->Type == ZV_BITMAP_RGBA8 && bitmap->Width == width && bitmap->Height == height)
        return read(bitmap);
    BitmapBlock const picture{AllocBitmapZV(width, height, ZV_BITMAP_RGBA8, "stored frame")};
    if (!picture || !read(picture.get())) return 0;
    ScaleBitmapZV(picture.get(), bitmap, nullptr, nullptr);
    return 1;
}
