// VPB: one picture of 4:2:2 luminance and chrominance behind a header of tagged records.
//   0 records, each tag, kind, length of the data, data; then bytes of 0xFF   1024 pixels, 2 bytes each
//   behind them zeros up to a multiple of 1024
// The image record, tag 16, holds big-endian: 0 bits a pixel, 16   4 width   6 height   12 pixels behind the
// header.
#include "FormatModule.h"
#include "VPBPixels.h"
#include "foundation/BigEndian.h"
#include "foundation/HeapBlock.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>
#include <span>
#include <string_view>

namespace {

constexpr long Properties = 0x10000 | ZV_FORMAT_WRITE | ZV_FORMAT_READ;
constexpr uint32_t FileType = ZV_FourCC("VPB ");
constexpr long NameString = 151;
constexpr long BlockSize = 1024;  // the header is one, and the pixels are padded to whole ones
constexpr long BitsPerPixel = 16;
constexpr long RowsAtOnce = 128;
constexpr uint8_t ImageTag = 16;
constexpr long ImageRecordSize = 20;

using HeaderBytes = std::array<uint8_t, BlockSize>;

struct VPBHeader {
    long width, height;
    int64_t pixelOffset;  ///< from the start of the file
};

int64_t Whole_Blocks(int64_t bytes)
{
    return (bytes + BlockSize - 1) / BlockSize * BlockSize;
}

int64_t Pixel_Bytes(long width, long height)
{
    return static_cast<int64_t>(width) * height * 2;
}

/// Finds the image record of a header.
bool Parse_VPB(std::span<uint8_t const> bytes, VPBHeader& header)
{
    if (bytes.size() < BlockSize) return false;
    for (long at = 0; at + 3 + ImageRecordSize <= BlockSize;) {
        uint8_t const* const record = bytes.data() + at;
        uint8_t const* const data = record + 3;
        if (record[0] == ImageTag && Load_Big16(data) == BitsPerPixel) {
            header = {Load_Big16(data + 4), Load_Big16(data + 6), int64_t{Load_Big32(data + 12)} + BlockSize};
            return header.width > 0 && header.height > 0;
        }
        at += 3 + std::max<long>(record[2], 1);  // a record without data counts as one byte longer
    }
    return false;
}

long VPB_Open(ZVClip* clip, TagItem*)
{
    if (clip->ModuleData) return 1;
    FilePtr const file{OpenFileZV(clip->FileName, ZVFilePermRead, ZVFileFlagNone)};
    HeaderBytes bytes;
    VPBHeader header;
    if (!file || !Read_At(file.get(), GetFileLengthZV(file.get()), 0, bytes.data(), BlockSize) ||
        !Parse_VPB(bytes, header))
        return 0;
    clip->ModuleData = clip;  // marks the clip as open; no file stays so
    clip->Width = header.width;
    clip->Height = header.height;
    clip->BitDepth = 8;
    clip->AlphaType = ZV_ALPHA_NONE;
    clip->RawFrames = 1;
    clip->Media = ZV_MEDIA_VIDEO;
    return 1;
}

void VPB_Close(ZVClip* clip)
{
    clip->ModuleData = nullptr;
}

long VPB_Create(ZVClip* clip, unsigned long)
{
    clip->BitDepth = 8;
    return 1;
}

/// The whole file is wanted.
long VPB_GetFrameDataReference(ZVClip*, long, long, long long* offset, long* size, void** data)
{
    *offset = 0;
    *size = 0;
    *data = nullptr;
    return 1;
}

long VPB_GetFrame(ZVClip*, ZVBitmap* bitmap, long, ZVRectT<long>*, long, long, long, void* data,
                  long dataSize)
{
    VPBHeader header;
    if (!data || dataSize < BlockSize) return 0;
    std::span const bytes(static_cast<uint8_t const*>(data), static_cast<std::size_t>(dataSize));
    if (!Parse_VPB(bytes, header)) return 0;
    if (header.pixelOffset + Pixel_Bytes(header.width, header.height) > dataSize) return 0;
    return Read_Picture(bitmap, header.width, header.height, [&](ZVBitmap* picture) -> long {
        uint8_t const* row = bytes.data() + header.pixelOffset;
        for (long y = 0; y < header.height; ++y, row += 2 * header.width)
            VPB_Row_To_Pixels(row, picture->Pixels + y * picture->RowBytes, header.width);
        return 1;
    });
}

// ---- writing ----------------------------------------------------------------------------------------------

void Store_Little16(uint8_t* bytes, long value)
{
    bytes[0] = static_cast<uint8_t>(value);
    bytes[1] = static_cast<uint8_t>(value >> 8);
}

uint8_t* Put_Record(uint8_t* out, uint8_t tag, uint8_t kind, std::span<uint8_t const> data)
{
    *out++ = tag;
    *out++ = kind;
    *out++ = static_cast<uint8_t>(data.size());
    return std::copy(data.begin(), data.end(), out);
}

uint8_t* Put_Text(uint8_t* out, uint8_t tag, std::string_view text)
{
    text = text.substr(0, 255);
    return Put_Record(out, tag, 0, {reinterpret_cast<uint8_t const*>(text.data()), text.size()});
}

std::array<uint8_t, 16> Time_Record()
{
    std::time_t const now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    long const fields[] = {local.tm_wday, local.tm_mday, local.tm_mon + 1, local.tm_year + 1900 - 1980,
                           local.tm_hour, local.tm_min,  local.tm_sec,     0};
    std::array<uint8_t, 16> bytes;
    for (std::size_t i = 0; i < std::size(fields); ++i)
        Store_Little16(&bytes[2 * i], fields[i]);
    return bytes;
}

HeaderBytes Make_Header(ZVBitmap const& picture, char const* fileName)
{
    auto const imageSize = static_cast<uint32_t>(Whole_Blocks(Pixel_Bytes(picture.Width, picture.Height)));
    std::array<uint8_t, 4> size;
    Store_Little16(&size[0], static_cast<long>(imageSize));
    Store_Little16(&size[2], static_cast<long>(imageSize >> 16));
    std::array<uint8_t, ImageRecordSize> image{};
    Store_Big16(&image[0], BitsPerPixel);
    Store_Big16(&image[4], static_cast<uint32_t>(picture.Width));
    Store_Big16(&image[6], static_cast<uint32_t>(picture.Height));
    Store_Little16(&image[8], picture.Width * 3L);
    Store_Little16(&image[10], picture.Height * 4L);
    Store_Big32(&image[16], imageSize);

    HeaderBytes bytes;
    bytes.fill(0xFF);
    uint8_t* out = Put_Text(bytes.data(), 3, "Picture");
    out = Put_Record(out, 4, 1, size);
    out = Put_Text(out, 2, fileName);
    out = Put_Record(out, ImageTag, 1, image);
    out = Put_Text(out, 151, "Written by ZVLib, 4:2:2 chroma, 8 bits");
    out = Put_Record(out, 153, 1, std::array<uint8_t, 2>{0, 100});
    Put_Record(out, 152, 1, Time_Record());
    return bytes;
}

/// Writes the pixels through a buffer of as many rows as memory allows, up to 128.
bool Write_Pixels(ZVFileInfo* file, ZVClip const* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region)
{
    long const rowBytes = bitmap->Width * 2L;
    long most = RowsAtOnce;
    HeapBlock<uint8_t> buffer;
    for (; most > 0 && !buffer; most -= !buffer)
        buffer.reset(static_cast<uint8_t*>(Alloc_Aligned(static_cast<unsigned long>(most * rowBytes), 64)));
    if (!buffer) {
        SetError(ZV_ERR_MEMORY);
        return false;
    }
    auto const addRows = [&](uint8_t const* pixels, long rows) {
        for (long y = 0; y < rows; y += most) {
            long const count = std::min(most, rows - y);
            for (long i = 0; i < count; ++i)
                VPB_Pixels_To_Row(pixels + (y + i) * bitmap->RowBytes, buffer.get() + i * rowBytes,
                                  bitmap->Width);
            if (!WriteFileZV(file, buffer.get(), static_cast<unsigned long>(count * rowBytes))) return false;
        }
        return true;
    };
    if (!Store_Frame(clip, bitmap, region, addRows)) return false;
    int64_t const pixels = Pixel_Bytes(bitmap->Width, bitmap->Height);
    std::array<uint8_t, BlockSize> const zeros{};
    auto const padding = static_cast<unsigned long>(Whole_Blocks(pixels) - pixels);
    return padding == 0 || WriteFileZV(file, zeros.data(), padding);
}

/// Every frame replaces the file of its name; a write that fails leaves a part of it.
long VPB_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>* region)
{
    if (!clip->Format) return 0;
    if (bitmap->Type != ZV_BITMAP_RGBA8 || bitmap->Width < 1 || bitmap->Width > UINT16_MAX ||
        bitmap->Height < 1 || bitmap->Height > UINT16_MAX) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    char name[ZV_SPEC_SIZE];
    GetFileNameZV(clip->FileName, name);
    auto const creator =
        static_cast<uint32_t>(clip->CreateFlags ? clip->CreateFlags : clip->Format->FileCreator);
    FilePtr const file{
        CreateFileZV(clip->FileName, ZVFilePermReadWrite, clip->Format->FileType, creator, ZVFileFlagNone)};
    if (!file) return 0;
    HeaderBytes const header = Make_Header(*bitmap, name);
    if (!WriteFileZV(file.get(), header.data(), header.size()) ||
        !Write_Pixels(file.get(), clip, bitmap, region))
        return 0;
    ++clip->RawFrames;
    return 1;
}

}  // namespace

long Add_VPB_Format(ZVScanDesc*)
{
    constexpr ZVTypePair readTypes[] = {{FileType, ZV_BLANK_CODE}};
    constexpr uint32_t readExtensions[] = {ZV_FourCC("vpb\0")};
    ZVFormatDesc* const desc = Add_File_Format(
        {Format_Name(NameString, "VPB"), FileType, ZV_BLANK_CODE, readTypes, 1, readExtensions, 1},
        {VPB_Open, VPB_Close, VPB_Create, VPB_GetFrame, VPB_AddFrame, Import_Properties<Properties>,
         Export_Properties<Properties>});
    if (desc) desc->GetFrameDataReference = VPB_GetFrameDataReference;
    return desc != nullptr;
}
