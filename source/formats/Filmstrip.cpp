// Filmstrip: all frames one under the other as RGBA8 pixels, each with leader lines below it, and a trailer.
// Numbers are big-endian. With W, H and L from the trailer, frame f begins at W * f * (H + L) * 4.
//   0 "Rand"   4 frames, 4 bytes   8 packing, 0   12 W   14 H   16 L   18 frames a second   20 zeros up to 36
// A written file has W * 64 zero bytes ahead of the trailer.
#include "FilmstripLeader.h"
#include "FormatModule.h"
#include "Locale/ZVLibStr.h"
#include "foundation/BigEndian.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

constexpr long Properties =
    0x10000 | ZV_FORMAT_WRITE | ZV_FORMAT_READ | ZV_FORMAT_MULTIFRAME | ZV_FORMAT_ALPHA;
constexpr uint32_t FileType = ZV_FourCC("Film");
constexpr uint32_t Creator = ZV_FourCC("PrMr");
constexpr long LargestSide = 32767;
constexpr long PixelBytes = 4;

constexpr long TrailerSize = 36;
using TrailerBytes = std::array<uint8_t, TrailerSize>;

struct FilmstripTrailer {
    int64_t frames;
    int64_t width, height, leading;
    int16_t rate;

    int64_t Row_Bytes() const { return width * PixelBytes; }
    int64_t Frame_Bytes() const { return height * Row_Bytes(); }
    int64_t Frame_Offset(int64_t frame) const { return frame * (height + leading) * Row_Bytes(); }
};

/// ModuleData of a strip.
struct FilmstripClip {
    ZVFileInfo* file;  ///< owned
    /// As read, with no more frames than lie whole in the file. While writing, the frames so far; the size is
    /// that of the first frame, 0 before it.
    FilmstripTrailer trailer;
    bool isWriting;
};

FilmstripClip* State_Of(ZVClip const* clip)
{
    return static_cast<FilmstripClip*>(clip->ModuleData);
}

/// @param pictureBytes  bytes of the file ahead of the trailer
bool Parse_Trailer(TrailerBytes const& bytes, int64_t pictureBytes, FilmstripTrailer& trailer)
{
    if (std::memcmp(bytes.data(), "Rand", 4) != 0 || Load_Big16(&bytes[8]) != 0) return false;
    trailer.frames = Load_Big32(&bytes[4]);
    trailer.width = Load_Big16(&bytes[12]);
    trailer.height = Load_Big16(&bytes[14]);
    trailer.leading = Load_Big16(&bytes[16]);
    trailer.rate = static_cast<int16_t>(Load_Big16(&bytes[18]));
    if (trailer.width == 0 || trailer.height == 0 || trailer.Frame_Bytes() > pictureBytes) return false;
    // The last frame need not have its leader.
    int64_t const whole = (pictureBytes - trailer.Frame_Bytes()) / trailer.Frame_Offset(1) + 1;
    trailer.frames = std::min(trailer.frames, whole);
    return trailer.frames > 0;
}

TrailerBytes Make_Trailer(FilmstripTrailer const& trailer)
{
    TrailerBytes bytes{'R', 'a', 'n', 'd'};
    Store_Big32(&bytes[4], static_cast<uint32_t>(trailer.frames));
    Store_Big16(&bytes[12], static_cast<uint32_t>(trailer.width));
    Store_Big16(&bytes[14], static_cast<uint32_t>(trailer.height));
    Store_Big16(&bytes[16], static_cast<uint32_t>(trailer.leading));
    Store_Big16(&bytes[18], static_cast<uint16_t>(trailer.rate));
    return bytes;
}

/// The 0.1 takes 23.976 and 29.97 to their nominal rates. What 16 bits cannot hold is brought to their
/// limits.
int16_t Stored_Rate(double rate)
{
    if (std::isnan(rate)) return 0;
    return static_cast<int16_t>(std::clamp(rate + 0.1, -32768.0, 32767.0));
}

void Release(ZVClip* clip)
{
    FilmstripClip* strip = State_Of(clip);
    if (!strip) return;
    CloseFileZV(strip->file);
    FreeMemZV(strip);
    clip->ModuleData = nullptr;
}

/// Gives the clip its state, which takes the file over.
FilmstripClip* Attach(ZVClip* clip, FilePtr file)
{
    auto* strip = static_cast<FilmstripClip*>(AllocMemZV(sizeof(FilmstripClip), ZV_MEM_CLEAR));
    if (!strip) return nullptr;
    strip->file = file.release();
    clip->ModuleData = strip;
    return strip;
}

/// A strip with fewer whole frames than its trailer tells of has the whole ones; one without any is refused.
long Filmstrip_Open(ZVClip* clip, TagItem*)
{
    if (clip->ModuleData) return 1;
    FilePtr file{OpenFileZV(clip->FileName, ZVFilePermRead, ZVFileFlagNone)};
    if (!file) return 0;
    int64_t const length = GetFileLengthZV(file.get());
    TrailerBytes bytes;
    FilmstripTrailer trailer;
    if (!Read_At(file.get(), length, length - TrailerSize, bytes.data(), TrailerSize) ||
        !Parse_Trailer(bytes, length - TrailerSize, trailer))
        return 0;
    FilmstripClip* strip = Attach(clip, std::move(file));
    if (!strip) return 0;
    strip->trailer = trailer;
    clip->Width = trailer.width;
    clip->Height = trailer.height;
    clip->BitDepth = 8;
    clip->AlphaType = ZV_ALPHA_CHANNEL;
    clip->RawFrames = trailer.frames;
    clip->FileFrameRate = trailer.rate;
    clip->Media = ZV_MEDIA_VIDEO;
    return 1;
}

void Write_End(FilmstripClip& strip, ZVClip const* clip)
{
    FilmstripTrailer& trailer = strip.trailer;
    if (trailer.width == 0) {
        trailer.width = std::clamp(clip->Width, 0L, LargestSide);
        trailer.height = std::clamp(clip->Height, 0L, LargestSide);
    }
    trailer.rate = Stored_Rate(clip->FileFrameRate);

    constexpr std::array<uint8_t, 1024> zeros{};
    int64_t offset = trailer.Frame_Offset(trailer.frames);
    for (int64_t rest = LeaderLines * trailer.Row_Bytes(); rest > 0;) {
        int64_t const piece = std::min<int64_t>(rest, zeros.size());
        if (!Write_At(strip.file, offset, zeros.data(), piece)) return;
        offset += piece;
        rest -= piece;
    }
    TrailerBytes const bytes = Make_Trailer(trailer);
    Write_At(strip.file, offset, bytes.data(), TrailerSize);
}

/// A write that fails here leaves its error number behind.
void Filmstrip_Close(ZVClip* clip)
{
    FilmstripClip* strip = State_Of(clip);
    if (!strip) return;
    // A clip that was written and then opened again still carries the flag.
    if (strip->isWriting && clip->Flags & ZV_CLIP_WRITING) Write_End(*strip, clip);
    Release(clip);
}

/// The file holds 8 bits a channel, so the clip becomes one of 8 bits and frames arrive converted.
long Filmstrip_Create(ZVClip* clip, unsigned long)
{
    Release(clip);
    FilePtr file{CreateFileZV(clip->FileName, ZVFilePermReadWrite, FileType, Creator, ZVFileFlagNone)};
    if (!file) return 0;
    FilmstripClip* strip = Attach(clip, std::move(file));
    if (!strip) return 0;
    strip->trailer.leading = LeaderLines;
    strip->isWriting = true;
    clip->BitDepth = 8;
    return 1;
}

/// A frame that is not whole in the file answers 0: the caller's stand-in is shown rather than stray memory.
long Filmstrip_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>*, long, long, long, void*,
                        long)
{
    FilmstripClip const* strip = State_Of(clip);
    if (!strip) return 0;
    FilmstripTrailer const& trailer = strip->trailer;
    if (frame < 0 || frame >= trailer.frames) return 0;
    return Read_Picture(bitmap, trailer.width, trailer.height, [&](ZVBitmap* picture) -> long {
        return Read_At(strip->file, GetFileLengthZV(strip->file), trailer.Frame_Offset(frame),
                       picture->Pixels, trailer.Frame_Bytes());
    });
}

bool Write_Picture(FilmstripClip const& strip, int64_t offset, ZVClip const* clip, ZVBitmap const* bitmap,
                   ZVRectT<long> const* region)
{
    return Store_Frame(clip, bitmap, region, [&](uint8_t const* pixels, long rows) {
        int64_t const size = rows * strip.trailer.Row_Bytes();
        int64_t const at = std::exchange(offset, offset + size);
        return Write_At(strip.file, at, pixels, size);
    });
}

/// Without memory for the leader, the first rows of the picture stand in for it, again from the top when
/// there are fewer than that.
bool Write_Leader(FilmstripClip const& strip, int64_t offset, ZVBitmap const* bitmap, long frame, double rate)
{
    FilmstripTrailer const& trailer = strip.trailer;
    BitmapBlock const leader{AllocBitmapZV(trailer.width, LeaderLines, ZV_BITMAP_RGBA8, "leader")};
    if (leader) {
        Draw_Leader(leader.get(), frame, rate);
        return Write_At(strip.file, offset, leader->Pixels, leader->Size);
    }
    for (long line = 0; line < LeaderLines; ++line) {
        uint8_t const* row = bitmap->Pixels + line % trailer.height * trailer.Row_Bytes();
        if (!Write_At(strip.file, offset + line * trailer.Row_Bytes(), row, trailer.Row_Bytes()))
            return false;
    }
    return true;
}

/// A strip has one size of frame, that of the first one.
bool Fits_Strip(ZVBitmap const* bitmap, FilmstripTrailer& trailer)
{
    if (bitmap->Type != ZV_BITMAP_RGBA8 || bitmap->Width < 1 || bitmap->Height < 1) return false;
    if (bitmap->Width > LargestSide || bitmap->Height > LargestSide) return false;
    if (trailer.width == 0) {
        trailer.width = bitmap->Width;
        trailer.height = bitmap->Height;
    }
    return bitmap->Width == trailer.width && bitmap->Height == trailer.height;
}

/// A frame whose writing fails keeps its place in the strip, and the next one goes behind that place.
long Filmstrip_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* region)
{
    FilmstripClip* strip = State_Of(clip);
    if (!strip) return 0;
    FilmstripTrailer& trailer = strip->trailer;
    if (!Fits_Strip(bitmap, trailer)) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    int64_t const offset = trailer.Frame_Offset(trailer.frames);
    int64_t const leaderOffset = offset + trailer.Frame_Bytes();
    bool const isWritten = Write_Picture(*strip, offset, clip, bitmap, region) &&
                           Write_Leader(*strip, leaderOffset, bitmap, frame, clip->FileFrameRate);
    ++trailer.frames;
    ++clip->RawFrames;
    return isWritten;
}

}  // namespace

long Add_Filmstrip_Format(ZVScanDesc*)
{
    constexpr ZVTypePair readTypes[] = {{FileType, ZV_BLANK_CODE}};
    constexpr uint32_t readExtensions[] = {ZV_FourCC("flm\0")};
    return Add_File_Format({Format_Name(ZVSTR_FORMAT_FILMSTRIP, "Filmstrip"), FileType, ZV_BLANK_CODE,
                            readTypes, 1, readExtensions, 1},
                           {Filmstrip_Open, Filmstrip_Close, Filmstrip_Create, Filmstrip_GetFrame,
                            Filmstrip_AddFrame, Import_Properties<Properties>,
                            Export_Properties<Properties>}) != nullptr;
}
