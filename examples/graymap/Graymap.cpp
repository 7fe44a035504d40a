// A format module: portable greymaps in their binary form, one picture to a file. The file begins with "P5",
// width, height and greatest value as decimal numbers with white space between them, one more white space,
// then a byte for each pixel.
#include <ZVLib.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr long Properties = ZV_FORMAT_READ | ZV_FORMAT_WRITE;
constexpr long LargestSide = 32767;
constexpr long LargestHeader = 128;

struct CloseFile {
    void operator()(ZVFileInfo* file) const { CloseFileZV(file); }
};
using FilePtr = std::unique_ptr<ZVFileInfo, CloseFile>;

struct FreeBitmap {
    void operator()(ZVBitmap* bitmap) const { FreeBitmapZV(bitmap); }
};
using BitmapPtr = std::unique_ptr<ZVBitmap, FreeBitmap>;

struct Header {
    long width;
    long height;
    long greatest;
    long size;  ///< bytes ahead of the pixels
};

/// The number at the cursor, which moves behind it; -1 for anything else.
long Read_Number(char const*& cursor)
{
    while (std::isspace(static_cast<unsigned char>(*cursor)))
        ++cursor;
    if (!std::isdigit(static_cast<unsigned char>(*cursor))) return -1;
    long number = 0;
    while (std::isdigit(static_cast<unsigned char>(*cursor)) && number <= LargestSide)
        number = number * 10 + (*cursor++ - '0');
    return number;
}

bool Read_Header(ZVFileInfo* file, Header& header)
{
    char text[LargestHeader + 1] = "";
    if (!ReadFileZV(file, text, LargestHeader) || std::strncmp(text, "P5", 2) != 0) return false;
    char const* cursor = text + 2;
    header.width = Read_Number(cursor);
    header.height = Read_Number(cursor);
    header.greatest = Read_Number(cursor);
    header.size = cursor + 1 - text;
    return header.width > 0 && header.width <= LargestSide && header.height > 0 &&
           header.height <= LargestSide && header.greatest > 0 && header.greatest < 256 &&
           GetFileLengthZV(file) - header.size >= header.width * header.height;
}

FilePtr Open_File(ZVClip const* clip, Header& header)
{
    FilePtr file(OpenFileZV(clip->FileName, ZVFilePermReadLarge, ZVFileFlagNone));
    return file && Read_Header(file.get(), header) ? std::move(file) : nullptr;
}

long Graymap_Open(ZVClip* clip, TagItem*)
{
    Header header{};
    if (!Open_File(clip, header)) return 0;
    clip->Width = header.width;
    clip->Height = header.height;
    clip->BitDepth = 8;
    clip->RawFrames = 1;
    clip->Media = ZV_MEDIA_VIDEO;
    return 1;
}

/// The file is opened anew for each frame: that of a clip of many pictures changes with the frame.
long Graymap_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>*, long, long, long, void*, long)
{
    Header header{};
    FilePtr const file = Open_File(clip, header);
    if (!file) return 0;
    BitmapPtr const picture(AllocBitmapZV(header.width, header.height, ZV_BITMAP_RGBA8, "greymap"));
    if (!picture) return 0;
    std::vector<unsigned char> row(static_cast<std::size_t>(header.width));
    SeekFileZV(file.get(), header.size, 0);
    for (long y = 0; y < header.height; ++y) {
        if (!ReadFileZV(file.get(), row.data(), row.size())) return 0;
        unsigned char* out = picture->Pixels + y * picture->RowBytes;
        for (unsigned char value : row) {
            auto const gray =
                static_cast<unsigned char>(std::min<long>(value, header.greatest) * 255 / header.greatest);
            out = std::fill_n(out, 3, gray);
            *out++ = 255;
        }
    }
    CopyBitmapZV(picture.get(), bitmap, 0, 0, header.width, header.height, 0, 0);
    return 1;
}

long Graymap_Create(ZVClip*, unsigned long)
{
    return 1;
}

long Graymap_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>* region)
{
    BitmapPtr const picture(AllocBitmapZV(bitmap->Width, bitmap->Height, ZV_BITMAP_RGBA8, "greymap"));
    FilePtr const file(CreateFileZV(clip->FileName, ZVFilePermWrite, clip->Format->FileType,
                                    clip->Format->FileCreator, ZVFileFlagNone));
    if (!picture || !file) return 0;
    InterpretAlphaZV(clip, bitmap, picture.get(), region);
    char header[LargestHeader];
    int const size = std::snprintf(header, sizeof header, "P5\n%d %d\n255\n", bitmap->Width, bitmap->Height);
    if (!WriteFileZV(file.get(), header, static_cast<unsigned long>(size))) return 0;
    std::vector<unsigned char> row(static_cast<std::size_t>(bitmap->Width));
    for (long y = 0; y < bitmap->Height; ++y) {
        unsigned char const* in = picture->Pixels + y * picture->RowBytes;
        for (unsigned char& gray : row) {
            gray = static_cast<unsigned char>((in[0] * 77 + in[1] * 150 + in[2] * 29) >> 8);
            in += 4;
        }
        if (!WriteFileZV(file.get(), row.data(), row.size())) return 0;
    }
    ++clip->RawFrames;
    return 1;
}

long Graymap_CanLoad(ZVFormatDesc* desc, char const*, unsigned long, unsigned long type,
                     unsigned long extension)
{
    return type == desc->ReadTypes[0].type || extension == desc->ReadExtensions[0];
}

long Graymap_GetImportProperties(ZVFormatDesc*)
{
    return Properties;
}

long Graymap_GetExportProperties(ZVFormatDesc*, ZVClip*)
{
    return Properties;
}

/// An array of one, in the heap that the library frees it in.
template <typename T> T* Array_Of(T value, long& count)
{
    auto* const array = static_cast<T*>(AllocMemZV(sizeof(T), 0));
    *array = value;
    count = 1;
    return array;
}

long Fill(ZVFormatDesc* desc)
{
    AddName(&desc->Node, "Portable Greymap");
    desc->MaxWidth = desc->MaxHeight = LargestSide;
    desc->FileType = ZV_FourCC("PGM ");
    desc->FileCreator = ZV_BLANK_CODE;
    desc->ReadTypes = Array_Of(ZVTypePair{ZV_FourCC("PGM "), ZV_BLANK_CODE}, desc->ReadTypeCount);
    desc->ReadExtensions = Array_Of(ZV_FourCC("pgm\0"), desc->ReadExtensionCount);
    desc->Open = Graymap_Open;
    desc->Create = Graymap_Create;
    desc->GetFrame = Graymap_GetFrame;
    desc->AddFrame = Graymap_AddFrame;
    desc->CanLoad = Graymap_CanLoad;
    desc->GetImportProperties = Graymap_GetImportProperties;
    desc->GetExportProperties = Graymap_GetExportProperties;
    return 1;
}

}  // namespace

ZV_FORMAT_MODULE(Fill)
