// See FormatModule.h.
#include "FormatModule.h"

#include "Locale/ZVLibStr.h"

#include <new>
#include <string>

long Always_Ready(ZVClip*, long)
{
    return 1;
}

char const* Format_Name(unsigned long stringId, char const* fallback)
{
    char const* name = GetStringZV(stringId);
    return *name ? name : fallback;
}

void Show_Scan_Progress(ZVScanDesc const* scan, char const* name, char const* tail)
try {
    if (!scan || !scan->DrawInfo || !name) return;
    std::string const text = std::string(GetStringZV(ZVSTR_LOADING)) + name + tail;
    SetPenZV(scan->DrawInfo, ZV_PEN_TEXT);
    SetBGPenZV(scan->DrawInfo, ZV_PEN_PALETTE);
    SetFontZV(scan->DrawInfo, 0);
    EraseRectZV(scan->DrawInfo, scan->X, scan->Y, scan->X + scan->Width - 1, scan->Y + scan->Height - 1);
    DrawTextZV(scan->DrawInfo, text.c_str(), scan->X, scan->Y);
} catch (std::bad_alloc const&) {
    SetError(ZV_ERR_MEMORY);  // the module is registered all the same
}

void Refuse_Codec(uint32_t code)
{
    char text[5] = {};
    for (int i = 0; i < 4; ++i)
        text[i] = static_cast<char>(code >> (24 - 8 * i) & 0xFF);
    SetError(ZV_ERR_MOVIE_FRAME);
    SetErrorString(text);
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

ZVFormatDesc* Add_File_Format(ZVBuiltinFormat const& format, FileEntries const& entries)
{
    ZVFormatDesc* const desc = Make_Format_Desc(format);
    if (!desc) return nullptr;
    desc->Open = entries.open;
    desc->Close = entries.close;
    desc->Create = entries.create;
    desc->BeginIO = Always_Ready;
    desc->EndIO = Always_Ready;
    desc->GetFrame = entries.getFrame;
    desc->AddFrame = entries.addFrame;
    desc->CanLoad = Standard_CanLoad;
    desc->GetImportProperties = entries.importProperties;
    desc->GetExportProperties = entries.exportProperties;
    AddTail(&ZVEnv->formats, &desc->Node);
    return desc;
}
