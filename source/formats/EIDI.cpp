// EIDI: animation frames one behind the other, each with a header, a palette and pixels that may be packed by
// run lengths. All seven depths are read; grey, 24 and 32 bits are written. Numbers are big-endian.
//   0 version, 2 bytes   2 frames, 4 bytes   6 the first frame; EIDIHeader tells of the rest
// The rate is not stored: it follows from the times of the last two frames.
#include "EIDIHeader.h"
#include "EIDIPackets.h"
#include "EIDIRows.h"
#include "FormatModule.h"
#include "Locale/ZVLibStr.h"
#include "foundation/BigEndian.h"
#include "foundation/HeapBlock.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

namespace {

constexpr long Properties =
    0x10000 | ZV_FORMAT_WRITE | ZV_FORMAT_READ | ZV_FORMAT_MULTIFRAME | ZV_FORMAT_ALPHA;
constexpr uint32_t FileType = ZV_FourCC("EIDI");
constexpr uint32_t Creator = ZV_FourCC("EIAD");
constexpr uint32_t FileVersion = 5;
constexpr long DataSizeOffset = 24;  // in a frame header
constexpr long LargestSide = 32767;
constexpr double UnknownRate = -1.0;

/// Bytes of a picture that one byte of a file may stand for: two make at most 128 units of eight pixels.
constexpr int64_t LargestExpansion = 2048;

/// ModuleData of an EIDI clip.
struct EIDIClip {
    FilePtr file;
    std::vector<int64_t> frames;       ///< offsets of the headers of all frames that can be reached
    int64_t end = EIDIFileHeaderSize;  ///< while writing: where the next frame goes
    bool isWriting = false;
};

/// What stands ahead of the pixels of a frame.
struct FrameHead {
    int64_t offset;  ///< in the file
    EIDIFrameHeader header;
    std::array<uint8_t, EIDILargestHead> bytes;  ///< header and palette as they are stored

    int64_t Data_Offset() const { return offset + header.Head_Size(); }
    EIDIPalette Palette() const
    {
        return Parse_EIDI_Palette(std::span{bytes}.subspan(
            EIDIFrameHeaderSize, static_cast<std::size_t>(header.paletteSize * EIDIPaletteEntrySize)));
    }
};

EIDIClip* State_Of(ZVClip const* clip)
{
    return static_cast<EIDIClip*>(clip->ModuleData);
}

void Release(ZVClip* clip)
{
    delete State_Of(clip);
    clip->ModuleData = nullptr;
}

/// @param length  that of the file
/// @return  false for a header that breaks the rules, is cut off, or tells of a picture larger than a
///          file of this length can hold
bool Read_Head(ZVFileInfo* file, int64_t length, int64_t offset, FrameHead& head)
{
    int64_t const size = std::min<int64_t>(EIDILargestHead, length - offset);
    if (size < EIDIFrameHeaderSize || !Read_At(file, length, offset, head.bytes.data(), size)) return false;
    head.offset = offset;
    EIDIFrameHeader& header = head.header;
    if (!Parse_EIDI_Frame(std::span{head.bytes}.first<EIDIFrameHeaderSize>(), header)) return false;
    int64_t const pictureBytes = static_cast<int64_t>(header.width) * header.height * 4;
    return header.Head_Size() <= size && pictureBytes <= length * LargestExpansion;
}

/// @return  false with error 1 when memory runs out
bool Note_Frame(EIDIClip& eidi, int64_t offset)
{
    try {
        eidi.frames.push_back(offset);
        return true;
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return false;
    }
}

// ---- opening ---------------------------------------------------------------------------------------------

double Frame_Rate(double duration)
{
    double const rate = 1.0 / duration;
    return duration > 0.0 && std::isfinite(duration) && std::isfinite(rate) ? rate : UnknownRate;
}

/// Notes where frames begin, up to `count` of them or to the first bad header, and works out the time between
/// the last two.
/// @return  false when memory runs out
bool Walk_Frames(EIDIClip& eidi, int64_t length, uint32_t count, double& duration)
{
    int64_t offset = EIDIFileHeaderSize;
    double last = 0.0;
    duration = 0.0;
    FrameHead head;
    while (eidi.frames.size() < count && Read_Head(eidi.file.get(), length, offset, head)) {
        if (!Note_Frame(eidi, offset)) return false;
        duration = head.header.time - last;
        last = head.header.time;
        offset = head.Data_Offset() + head.header.dataSize;
    }
    return true;
}

/// The clip has as many frames as the file tells of. Those behind the first bad header cannot be read.
long EIDI_Open(ZVClip* clip, TagItem*)
{
    if (clip->ModuleData) return 1;
    FilePtr file{OpenFileZV(clip->FileName, ZVFilePermRead, ZVFileFlagNone)};
    if (!file) return 0;
    int64_t const length = GetFileLengthZV(file.get());
    std::array<uint8_t, EIDIFileHeaderSize> fileHeader;
    FrameHead first;
    if (!Read_At(file.get(), length, 0, fileHeader.data(), fileHeader.size()) ||
        !Read_Head(file.get(), length, EIDIFileHeaderSize, first))
        return 0;

    std::unique_ptr<EIDIClip> eidi{new (std::nothrow) EIDIClip};
    if (!eidi) {
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
    eidi->file = std::move(file);
    uint32_t const count = Load_Big32(&fileHeader[2]);
    double duration;
    if (!Walk_Frames(*eidi, length, count, duration)) return 0;

    clip->ModuleData = eidi.release();
    clip->Width = first.header.width;
    clip->Height = first.header.height;
    clip->BitDepth = 8;
    clip->RawFrames = count;
    clip->Media = ZV_MEDIA_VIDEO;
    clip->AlphaType = first.header.alphaDepth ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE;
    clip->FileFrameRate = Frame_Rate(duration);
    return 1;
}

// ---- reading ---------------------------------------------------------------------------------------------

/// Memory for `rows` rows, or for as many as can be had, down to one. Null without even that.
/// @param sizeOf  bytes for a number of rows
template <typename SizeOf> HeapBlock<uint8_t> Alloc_Rows(long& rows, SizeOf&& sizeOf)
{
    for (; rows > 0; --rows) {
        if (void* block = Alloc_Aligned(static_cast<unsigned long>(sizeOf(rows)), 64))
            return HeapBlock<uint8_t>{static_cast<uint8_t*>(block)};
    }
    SetError(ZV_ERR_MEMORY);
    return nullptr;
}

/// The pixel data of a frame, seen through a window in memory that moves along the file.
struct DataWindow {
    ZVFileInfo* file;
    int64_t next;  ///< offset of the byte behind the window
    int64_t end;   ///< offset at which the data ends
    uint8_t* buffer;
    int64_t capacity;
    uint8_t const* cursor;  ///< first byte not used up
    uint8_t const* limit;   ///< end of the bytes in the window
};

/// Moves the window so that it begins at the cursor. False when nothing more came in.
bool Advance(DataWindow& window)
{
    int64_t const kept = window.limit - window.cursor;
    std::memmove(window.buffer, window.cursor, static_cast<std::size_t>(kept));
    int64_t const size = std::min(window.capacity - kept, window.end - window.next);
    if (!Read_At(window.file, window.end, window.next, window.buffer + kept, size)) return false;
    window.next += size;
    window.cursor = window.buffer;
    window.limit = window.buffer + kept + size;
    return true;
}

bool Unpack_Row(DataWindow& window, EIDIUnpacker& unpacker, EIDIFrameHeader const& header, uint8_t* row)
{
    long const units = header.Row_Bytes() / header.Unit_Bytes();
    for (long done = 0;;) {
        done += unpacker.Unpack(window.cursor, window.limit, row + done * header.Unit_Bytes(), units - done);
        if (done == units) return true;
        if (!Advance(window)) return false;
    }
}

/// @return  the row where it lies in the window, or null when it is not whole
uint8_t const* Plain_Row(DataWindow& window, int64_t rowBytes)
{
    while (window.limit - window.cursor < rowBytes) {
        if (!Advance(window)) return nullptr;
    }
    return std::exchange(window.cursor, window.cursor + rowBytes);
}

/// @param row  memory for an unpacked row
bool Decode_Rows(DataWindow& window, FrameHead const& head, uint8_t* row, ZVBitmap* picture)
{
    EIDIFrameHeader const& header = head.header;
    EIDIPalette const palette = head.Palette();
    EIDIUnpacker unpacker{header.Unit_Bytes()};
    for (long y = 0; y < header.height; ++y) {
        uint8_t const* units = row;
        if (!header.isCompressed)
            units = Plain_Row(window, header.Row_Bytes());
        else if (!Unpack_Row(window, unpacker, header, row))
            units = nullptr;
        if (!units) return false;
        EIDI_Row_To_Pixels(units, header.Bits(), palette, picture->Pixels + y * picture->RowBytes,
                           header.width);
    }
    return true;
}

/// @return  false when rows are missing in the file, which then stay as they were
bool Decode_Frame(ZVFileInfo* file, int64_t length, FrameHead const& head, unsigned long background,
                  ZVBitmap* picture)
{
    EIDIFrameHeader const& header = head.header;
    int64_t const start = head.Data_Offset();
    // A writer that died inside a frame has left a size of 0, and all the same the pixels that it got to.
    int64_t const end = header.dataSize ? std::min(length, start + header.dataSize) : length;
    int64_t const rowBytes = header.Row_Bytes();
    int64_t const rowSpace = rowBytes + EIDISlack;
    auto const capacity = [&](long rows) {
        // The extra fifth is room for packets. A packet needs up to five bytes, however short the row is.
        return std::clamp<int64_t>(rows * rowBytes * 120 / 100, EIDISlack,
                                   std::max<int64_t>(end - start, EIDISlack));
    };
    long rows = header.height;
    HeapBlock<uint8_t> const block =
        Alloc_Rows(rows, [&](long count) { return rowSpace + capacity(count) + EIDISlack; });
    if (!block) {
        FillBitmapZV(picture, background);
        return false;
    }
    uint8_t* buffer = block.get() + rowSpace;
    DataWindow window{file, start, end, buffer, capacity(rows), buffer, buffer};
    return Decode_Rows(window, head, block.get(), picture);
}

/// A frame that is not whole in the file answers 0: the caller's stand-in is shown rather than stray memory.
long EIDI_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>*, long, long, long, void*, long)
{
    EIDIClip const* eidi = State_Of(clip);
    if (!eidi || frame < 0 || static_cast<std::size_t>(frame) >= eidi->frames.size()) return 0;
    ZVFileInfo* file = eidi->file.get();
    int64_t const length = GetFileLengthZV(file);
    FrameHead head;
    if (!Read_Head(file, length, eidi->frames[static_cast<std::size_t>(frame)], head)) return 0;
    return Read_Picture(bitmap, head.header.width, head.header.height, [&](ZVBitmap* picture) -> long {
        return Decode_Frame(file, length, head, clip->Background, picture);
    });
}

// ---- writing ---------------------------------------------------------------------------------------------

/// One 32-bit number: 1 to compress, 0 not to.
ZVFormatParams* Default_Params()
{
    constexpr int32_t compress = 1;
    void* block = AllocMemZV(sizeof(ZVFormatParams) + sizeof(compress), ZV_MEM_CLEAR);
    auto* params = static_cast<ZVFormatParams*>(block);
    if (!params) return nullptr;
    params->Data = params + 1;
    params->Size = sizeof(compress);
    std::memcpy(params->Data, &compress, sizeof(compress));
    return params;
}

/// Options of another size than this module's compress, as its default does.
bool Wants_Compression(ZVFormatParams const& params)
{
    int32_t compress = 1;
    if (params.Data && params.Size == sizeof(compress)) std::memcpy(&compress, params.Data, sizeof(compress));
    return compress != 0;
}

bool Write_File_Header(EIDIClip const& eidi, long frames)
{
    std::array<uint8_t, EIDIFileHeaderSize> bytes;
    Store_Big16(&bytes[0], FileVersion);
    Store_Big32(&bytes[2], static_cast<uint32_t>(frames));
    return Write_At(eidi.file.get(), 0, bytes.data(), bytes.size());
}

/// The file holds 8 bits a channel, so the clip becomes one of 8 bits and frames arrive converted.
long EIDI_Create(ZVClip* clip, unsigned long)
{
    Release(clip);
    std::unique_ptr<EIDIClip> eidi{new (std::nothrow) EIDIClip};
    if (!eidi) {
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
    eidi->file.reset(CreateFileZV(clip->FileName, ZVFilePermReadWrite, FileType, Creator, ZVFileFlagNone));
    if (!eidi->file) return 0;
    if (!clip->VideoParams) clip->VideoParams = Default_Params();
    eidi->isWriting = true;
    clip->BitDepth = 8;
    clip->ModuleData = eidi.release();
    return 1;
}

/// Header for the next frame of a clip. A rate of 0 gives all frames the time 0, which reads back as no rate.
EIDIFrameHeader Next_Header(ZVClip const* clip, ZVBitmap const* bitmap)
{
    double const rate = clip->FileFrameRate;
    bool const isGrey = clip->AlphaType != ZV_ALPHA_NONE && clip->AlphaType != ZV_ALPHA_CHANNEL;
    return {
        .time = static_cast<float>(rate != 0.0 ? static_cast<double>(clip->RawFrames) / rate : 0.0),
        .width = bitmap->Width,
        .height = bitmap->Height,
        .depth = isGrey ? 8 : 24,
        .alphaDepth = clip->AlphaType == ZV_ALPHA_CHANNEL ? 8 : 0,
        .isCompressed = Wants_Compression(*clip->VideoParams),
        .paletteSize = isGrey ? EIDILargestPalette : 1,
    };
}

bool Write_Head(EIDIClip const& eidi, EIDIFrameHeader const& header)
{
    std::array<uint8_t, EIDILargestHead> bytes;
    Store_EIDI_Frame(header, std::span{bytes}.first<EIDIFrameHeaderSize>());
    for (long entry = 0; entry < header.paletteSize; ++entry)
        std::memset(&bytes[static_cast<std::size_t>(EIDIFrameHeaderSize + entry * EIDIPaletteEntrySize)],
                    static_cast<int>(entry), EIDIPaletteEntrySize);
    return Write_At(eidi.file.get(), eidi.end, bytes.data(), header.Head_Size());
}

/// Writes the rows of a picture, packed or not, through a buffer of as many rows as memory allows.
class RowWriter {
public:
    /// @param offset  in the file, of the first row
    RowWriter(ZVFileInfo* file, int64_t offset, EIDIFrameHeader const& header)
        : file_(file), offset_(offset), header_(header), rows_(header.height)
    {
    }

    bool Add(uint8_t const* pixels)
    {
        if (!block_ && !Reserve()) return false;
        if (header_.isCompressed) {
            EIDI_Pixels_To_Row(pixels, header_.Unit_Bytes(), block_.get(), header_.width);
            out_ = Pack_EIDI_Row(block_.get(), header_.width, header_.Unit_Bytes(), out_);
        } else {
            EIDI_Pixels_To_Row(pixels, header_.Unit_Bytes(), out_, header_.width);
            out_ += header_.Row_Bytes();
        }
        return ++held_ < rows_ || Flush();
    }

    /// Writes what is still in the buffer.
    bool Flush()
    {
        int64_t const size = std::exchange(out_, buffer_) - buffer_;
        held_ = 0;
        return size == 0 || Write_At(file_, std::exchange(offset_, offset_ + size), buffer_, size);
    }

private:
    /// Left to the first row: the buffer takes what memory there is, and nobody after it may be in want.
    bool Reserve()
    {
        int64_t const rowSpace = header_.Row_Bytes() + EIDISlack;
        int64_t const largestRow = header_.isCompressed
                                       ? EIDI_Packed_Bound(header_.width, header_.Unit_Bytes())
                                       : header_.Row_Bytes();
        block_ = Alloc_Rows(rows_, [&](long rows) { return rowSpace + rows * largestRow + EIDISlack; });
        if (block_) out_ = buffer_ = block_.get() + rowSpace;
        return block_ != nullptr;
    }

    ZVFileInfo* file_;
    int64_t offset_;
    EIDIFrameHeader const& header_;
    long rows_;  ///< that the buffer holds
    long held_ = 0;
    HeapBlock<uint8_t> block_;  ///< an unpacked row, then the buffer
    uint8_t* buffer_ = nullptr;
    uint8_t* out_ = nullptr;
};

bool Write_Rows(EIDIClip const& eidi, EIDIFrameHeader const& header, ZVClip const* clip,
                ZVBitmap const* bitmap, ZVRectT<long> const* region)
{
    RowWriter writer{eidi.file.get(), eidi.end + header.Head_Size(), header};
    auto const addRows = [&](uint8_t const* pixels, long rows) {
        for (; rows > 0; --rows, pixels += bitmap->RowBytes)
            if (!writer.Add(pixels)) return false;
        return true;
    };
    return Store_Frame(clip, bitmap, region, addRows) && writer.Flush();
}

/// Stores how many bytes of pixels got written, be they all or not. Keeps the error number of a failed write.
bool Patch_Data_Size(EIDIClip const& eidi, EIDIFrameHeader const& header)
{
    unsigned long const failure = GetErrorZV();
    ZVFileInfo* file = eidi.file.get();
    std::array<uint8_t, 4> bytes;
    int64_t const size = SeekFileZV(file, 0, 1) - eidi.end - header.Head_Size();
    Store_Big32(bytes.data(), static_cast<uint32_t>(size));
    bool const patched = Write_At(file, eidi.end + DataSizeOffset, bytes.data(), bytes.size());
    if (patched) SetError(failure);
    return patched;
}

/// A frame whose writing fails does not count, and the next one takes its place in the file.
long EIDI_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>* region)
{
    EIDIClip* eidi = State_Of(clip);
    if (!eidi || !clip->VideoParams) return 0;
    if (bitmap->Type != ZV_BITMAP_RGBA8 || bitmap->Width < 1 || bitmap->Width > LargestSide ||
        bitmap->Height < 1 || bitmap->Height > LargestSide) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    if (clip->RawFrames == 0 && !Write_File_Header(*eidi, 1)) return 0;

    EIDIFrameHeader const header = Next_Header(clip, bitmap);
    if (!Write_Head(*eidi, header)) return 0;
    bool const isWritten = Write_Rows(*eidi, header, clip, bitmap, region);
    int64_t const end = SeekFileZV(eidi->file.get(), 0, 1);
    if (!Patch_Data_Size(*eidi, header) || !isWritten || !Note_Frame(*eidi, eidi->end)) return 0;
    eidi->end = end;
    ++clip->RawFrames;
    return 1;
}

/// A write that fails here leaves its error number behind.
void EIDI_Close(ZVClip* clip)
{
    EIDIClip const* eidi = State_Of(clip);
    if (!eidi) return;
    // A clip that was written and then opened again still carries the flag.
    bool const isWritten =
        !(eidi->isWriting && clip->Flags & ZV_CLIP_WRITING) || Write_File_Header(*eidi, clip->RawFrames);
    unsigned long const failure = GetErrorZV();
    Release(clip);
    if (!isWritten) SetError(failure);
}

}  // namespace

long Add_EIDI_Format(ZVScanDesc*)
{
    constexpr ZVTypePair readTypes[] = {{FileType, ZV_BLANK_CODE}};
    constexpr uint32_t readExtensions[] = {ZV_FourCC("ei\0\0")};
    return Add_File_Format(
               {Format_Name(ZVSTR_FORMAT_EIDI, "EIDI"), FileType, Creator, readTypes, 1, readExtensions, 1},
               {EIDI_Open, EIDI_Close, EIDI_Create, EIDI_GetFrame, EIDI_AddFrame,
                Import_Properties<Properties>, Export_Properties<Properties>}) != nullptr;
}
