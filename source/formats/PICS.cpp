// PICS: an animation, a resource file with a picture for each frame. They are shown in the order of its map;
// frame n is written with the number 128 + n.
#include "files/ResourceFile.h"
#include "formats/pict/PictModule.h"
#include "formats/pict/PictWriter.h"

#include <new>

namespace {

constexpr long Properties =
    0x10000 | ZV_FORMAT_WRITE | ZV_FORMAT_READ | ZV_FORMAT_MULTIFRAME | ZV_FORMAT_ALPHA;
constexpr uint32_t FileType = ZV_FourCC("PICS");
constexpr long NameString = 147;
constexpr long FirstID = 128;
constexpr long LastID = 32767;

/// Calls `work` with the picture of a frame. 0 when there is none.
template <typename Work> long With_Picture(ZVResourceFile& file, long frame, Work&& work)
{
    ResourceEntry const* entry = file.Find(PictureType, frame + 1);
    int64_t const size = entry ? file.Size(*entry) : -1;
    if (size < 1) return 0;
    PictBlock const block(size);
    if (!block.Data() || !file.Read(*entry, block.Data())) return 0;
    return work(std::span<uint8_t const>(block.Data(), static_cast<std::size_t>(size)));
}

long PICS_Open(ZVClip* clip, TagItem*)
{
    auto const file = ZVResourceFile::Open(clip->FileName, ZVFilePermRead);
    if (!file || !With_Picture(*file, 0, [&](auto picture) { return Describe_Picture(picture, clip); }))
        return 0;
    clip->RawFrames = file->Count(PictureType);
    return 1;
}

/// Each access opens the file anew.
void PICS_Close(ZVClip*) {}

long PICS_Create(ZVClip* clip, unsigned long flags)
{
    return Make_Picture_Options(clip) && ZVResourceFile::Create(clip->FileName, ResourcePlace::File, FileType,
                                                                static_cast<uint32_t>(flags)) != nullptr;
}

long PICS_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* offset, long width, long height,
                   long, void*, long)
{
    auto const file = ZVResourceFile::Open(clip->FileName, ZVFilePermRead);
    return file ? With_Picture(
                      *file, frame,
                      [&](auto picture) { return Draw_Frame(picture, bitmap, offset, width, height); })
                : 0;
}

long Add_Resource(std::span<uint8_t const> picture, void* data)
{
    auto* clip = static_cast<ZVClip*>(data);
    long const id = FirstID + clip->RawFrames;
    if (id > LastID) {
        SetError(ZV_ERR_DISK_FULL);
        return 0;
    }
    auto const file = ZVResourceFile::Open(clip->FileName, ZVFilePermReadWrite);
    if (!file || !file->Add(PictureType, static_cast<int16_t>(id), {}, picture) || !file->Save()) return 0;
    ++clip->RawFrames;
    return 1;
}

long PICS_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>* region)
{
    return clip->Format ? Make_Picture(clip, bitmap, region, Add_Resource, clip) : 0;
}

}  // namespace

long Add_PICS_Format(ZVScanDesc*)
{
    constexpr ZVTypePair readTypes[] = {{FileType, ZV_BLANK_CODE}};
    constexpr uint32_t readExtensions[] = {ZV_FourCC("pcs\0"), ZV_FourCC("pics")};
    ZVFormatDesc* const desc = Add_File_Format(
        {Format_Name(NameString, "PICS"), FileType, PictureCreator, readTypes, 1, readExtensions, 2},
        {PICS_Open, PICS_Close, PICS_Create, PICS_GetFrame, PICS_AddFrame, Import_Properties<Properties>,
         Export_Properties<Properties>});
    if (desc) desc->Options = Picture_Options;
    return desc != nullptr;
}
