// PICT: one picture.
//   0 zeros   512 the picture, to the end of the file
#include "formats/pict/PictModule.h"
#include "formats/pict/PictWriter.h"

#include <array>

namespace {

constexpr long Properties = 0x10000 | ZV_FORMAT_WRITE | ZV_FORMAT_READ | ZV_FORMAT_ALPHA;
constexpr long NameString = 148;
constexpr int64_t HeaderSize = 512;

/// Calls `work` with the picture of a file. 0 when it cannot be read whole.
template <typename Work> long With_Picture(char const* spec, Work&& work)
{
    FilePtr const file{OpenFileZV(spec, ZVFilePermRead, ZVFileFlagNone)};
    if (!file) return 0;
    int64_t const length = GetFileLengthZV(file.get());
    if (length <= HeaderSize) return 0;
    int64_t const size = length - HeaderSize;
    PictBlock const block(size);
    if (!block.Data() || !Read_At(file.get(), length, HeaderSize, block.Data(), size)) return 0;
    return work(std::span<uint8_t const>(block.Data(), static_cast<std::size_t>(size)));
}

long PICT_Open(ZVClip* clip, TagItem*)
{
    if (clip->ModuleData) return 1;
    if (!With_Picture(clip->FileName, [&](auto picture) { return Describe_Picture(picture, clip); }))
        return 0;
    clip->RawFrames = 1;
    clip->ModuleData = reinterpret_cast<void*>(1);  // marks the clip as open; no file stays so
    return 1;
}

void PICT_Close(ZVClip* clip)
{
    clip->ModuleData = nullptr;
}

/// The file is made with its frame.
long PICT_Create(ZVClip* clip, unsigned long)
{
    return Make_Picture_Options(clip);
}

long PICT_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>* offset, long width, long height, long,
                   void*, long)
{
    return With_Picture(clip->FileName,
                        [&](auto picture) { return Draw_Frame(picture, bitmap, offset, width, height); });
}

long Write_File(std::span<uint8_t const> picture, void* data)
{
    auto const* clip = static_cast<ZVClip const*>(data);
    auto const creator =
        static_cast<uint32_t>(clip->CreateFlags ? clip->CreateFlags : clip->Format->FileCreator);
    FilePtr const file{
        CreateFileZV(clip->FileName, ZVFilePermReadWrite, clip->Format->FileType, creator, ZVFileFlagNone)};
    std::array<uint8_t, HeaderSize> const zeros{};
    return file && WriteFileZV(file.get(), zeros.data(), zeros.size()) &&
           WriteFileZV(file.get(), picture.data(), picture.size());
}

/// Every frame replaces the file of its name.
long PICT_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>* region)
{
    return clip->Format ? Make_Picture(clip, bitmap, region, Write_File, clip) : 0;
}

}  // namespace

long Add_PICT_Format(ZVScanDesc*)
{
    constexpr ZVTypePair readTypes[] = {{PictureType, ZV_BLANK_CODE}};
    constexpr uint32_t readExtensions[] = {ZV_FourCC("pct\0"), ZV_FourCC("pict")};
    ZVFormatDesc* const desc = Add_File_Format(
        {Format_Name(NameString, "PICT"), PictureType, PictureCreator, readTypes, 1, readExtensions, 2},
        {PICT_Open, PICT_Close, PICT_Create, PICT_GetFrame, PICT_AddFrame, Import_Properties<Properties>,
         Export_Properties<Properties>});
    if (desc) desc->Options = Picture_Options;
    return desc != nullptr;
}
