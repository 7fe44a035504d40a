// The read of a frame: which one, from where, and how it is placed in the caller's bitmap.
#include "FrameRead.h"

#include "BitmapBlock.h"
#include "FileOfFrame.h"
#include "TimeIntegration.h"
#include "foundation/HeapBlock.h"
#include "pixels/BitmapVisit.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

namespace {

using FileHolder = std::unique_ptr<ZVFileInfo, Released_By<CloseFileZV>>;

// ---- placement --------------------------------------------------------------------------------------------

/// Pixels of a bitmap, right and bottom exclusive.
struct Area {
    long left, top, right, bottom;
};

/// The smaller of `size - offset` and `limit`, whatever their values.
long End_Within(long size, long offset, long limit)
{
    long end;
    return __builtin_sub_overflow(size, offset, &end) ? limit : std::min(end, limit);
}

/// What a frame covers. It must touch the bitmap.
Area Covered_Area(ZVBitmap const& bitmap, FramePlace const& place)
{
    return {std::max(-place.offset.x, 0L), std::max(-place.offset.y, 0L),
            End_Within(place.width, place.offset.x, bitmap.Width),
            End_Within(place.height, place.offset.y, bitmap.Height)};
}

/// Compared by offset alone, which cannot overflow.
bool Touches(ZVBitmap const& bitmap, FramePlace const& place)
{
    return place.width > 0 && place.height > 0 && place.offset.x > -bitmap.Width &&
           place.offset.y > -bitmap.Height && place.offset.x < place.width && place.offset.y < place.height;
}

void Clear_Outside(ZVBitmap& bitmap, Area const& area)
{
    long const rowBytes = bitmap.RowBytes;
    auto const clear = [&](long row, long from, long to) {
        if (to > from)
            std::memset(bitmap.Pixels + row * rowBytes + from, 0, static_cast<std::size_t>(to - from));
    };
    clear(0, 0, area.top * rowBytes);
    clear(area.bottom, 0, (bitmap.Height - area.bottom) * rowBytes);
    for (long row = area.top; row < area.bottom; ++row) {
        clear(row, 0, area.left * bitmap.PackSize);
        clear(row, area.right * bitmap.PackSize, rowBytes);
    }
}

bool Is_Whole(ZVBitmap const& bitmap, Area const& area)
{
    return area.left == 0 && area.top == 0 && area.right == bitmap.Width && area.bottom == bitmap.Height;
}

/// Whether a frame of that size fills the bitmap pixel by pixel.
bool Is_Unscaled(ZVBitmap const& bitmap, FramePlace const& place, long width, long height)
{
    return place.offset.x == 0 && place.offset.y == 0 && place.width == width && place.height == height &&
           bitmap.Width == width && bitmap.Height == height;
}

void Scale_Into(ZVBitmap const& source, ZVBitmap& bitmap, FramePlace const& place)
{
    ZVRectT<long> const target{-place.offset.x, -place.offset.y, place.width, place.height};
    ScaleBitmapZV(&source, &bitmap, nullptr, &target);
}

// ---- sources ----------------------------------------------------------------------------------------------

/// The bytes of a frame, read here on the module's behalf.
struct FrameData {
    void* bytes = nullptr;
    long size = 0;
    HeapBlock<void> owned;  // empty for a buffer of the module
};

/// Reads what the module asked for. A file that cannot be opened or read gives no data; false for an empty
/// one.
bool Read_Frame_Data(ZVClip const* clip, long size, void* buffer, FrameData& data, AsyncParams& async)
{
    FileHolder const file(
        OpenFileZV(clip->FileName, ZVFilePermRead, async.Poll ? ZVFileFlagLargeRead : ZVFileFlagNone));
    if (!file) return true;
    int64_t const length = GetFileLengthZV(file.get());
    if (length <= 0) return false;
    if (size <= 0 || size > length) size = static_cast<long>(length);
    if (!buffer) {
        // Modules may look at their data in whole pages.
        long const rounded = (size + 4095) & ~4095L;
        data.owned.reset(Alloc_Aligned(static_cast<unsigned long>(rounded), 4096));
        buffer = data.owned.get();
        if (!buffer) return true;
        std::memset(static_cast<char*>(buffer) + size, 0, static_cast<std::size_t>(rounded - size));
    }
    // The position tells whether all of it came: a file may have become shorter since.
    if (!ReadFileZV(file.get(), buffer, static_cast<unsigned long>(size), async.Poll, &async.PollResult) ||
        SeekFileZV(file.get(), 0, 1) != size) {
        data.owned.reset();
        return true;
    }
    data.bytes = buffer;
    data.size = size;
    return true;
}

/// The type of a scratch frame of the clip's size: each has another number of bytes.
ZVBitmapType Scratch_Type(ZVClip const* clip, int64_t length)
{
    for (int type = ZV_BITMAP_RGBA8; type <= ZV_BITMAP_RGBAFLOAT; ++type) {
        __int128 const size = static_cast<__int128>(clip->Width) * clip->Height;
        if (size * GetPackSizeZV(static_cast<ZVBitmapType>(type)) == length)
            return static_cast<ZVBitmapType>(type);
    }
    return ZV_BITMAP_NONE;
}

/// A finished frame out of its scratch file. False for one that was never written, and for a file that holds
/// something else.
bool Read_Scratch(ZVClip const* clip, long frame, ZVBitmap& bitmap, FramePlace const& place,
                  AsyncParams& async)
{
    char const* const name = Make_TempName(clip->ClipID, frame, 0);
    if (!name || !FileExistsZV(name)) return false;
    FileHolder const file(OpenFileZV(name, ZVFilePermRead, ZVFileFlagLargeRead));
    if (!file) return false;
    int64_t const length = GetFileLengthZV(file.get());
    ZVBitmapType const type = Scratch_Type(clip, length);
    bool const isDirect = type == bitmap.Type && Is_Unscaled(bitmap, place, clip->Width, clip->Height);
    BitmapBlock const whole(isDirect ? nullptr
                                     : AllocBitmapZV(clip->Width, clip->Height, type, "scratch frame"));
    ZVBitmap* const target = isDirect ? &bitmap : whole.get();
    if (!target || target->Size != length) return false;
    if (!ReadFileZV(file.get(), target->Pixels, static_cast<unsigned long>(length), async.Poll,
                    &async.PollResult))
        return false;
    if (whole) Scale_Into(*whole, bitmap, place);
    return true;
}

/// A frame of the source, through the module. On failure the bitmap holds Background, unless the caller gave
/// up.
bool Read_Source(ZVClip* clip, long frame, ZVBitmap& bitmap, FramePlace const& place, AsyncParams& async)
{
    if (!clip->Format) {
        FillBitmapZV(&bitmap, clip->Background);
        return false;
    }
    ZVBitmapType const type = GetBitmapTypeZV(clip);
    bool const isDirect =
        type == bitmap.Type && ((GetImportPropertiesZV(clip->Format) & ZV_FORMAT_SELF_SCALE) ||
                                Is_Unscaled(bitmap, place, clip->Width, clip->Height));
    FramePlace inSource = isDirect ? place : FramePlace{{}, clip->Width, clip->Height};
    BitmapBlock const whole(isDirect ? nullptr : AllocBitmapZV(clip->Width, clip->Height, type, "frame"));
    ZVBitmap* const target = isDirect ? &bitmap : whole.get();
    if (!target) {
        FillBitmapZV(&bitmap, clip->Background);
        return false;
    }
    long const isRead = Plugin_GetFrame(clip, target, frame, &inSource.offset, inSource.width,
                                        inSource.height, clip->Layer, async);
    if (async.PollResult) return false;
    if (!isRead) {
        SetError(ZV_ERR_CLIP);
        FillBitmapZV(&bitmap, clip->Background);
        return false;
    }
    if (whole) Scale_Into(*whole, bitmap, place);
    return true;
}

void Filter_Fields(ZVBitmap& bitmap, unsigned long flags)
{
    if (flags & FRAME_INTERPOLATE_LOWER)
        Interpolate_Lower_Field(&bitmap);
    else if (flags & FRAME_INTERPOLATE_UPPER)
        Interpolate_Upper_Field(&bitmap);
    else if (flags & FRAME_BLEND_FIELDS)
        Visit_RGBA(bitmap, []<typename Buffer>(Buffer& buffer) {
            Blend_Fields<Buffer, typename Buffer::PixelType, typename Buffer::ChannelType>(&buffer);
        });
}

}  // namespace

template <typename Buffer, typename Pixel>
void Crop_Bitmap(Buffer* bitmap, ZVClip const*, ZVRectT<long> const* rect, long width, long height)
{
    FramePlace const place{*rect, width, height};
    if (Touches(*bitmap, place))
        Clear_Outside(*bitmap, Covered_Area(*bitmap, place));
    else
        FillBitmapZV(bitmap, 0);
}

template ZV_API void Crop_Bitmap<ZVBufferRGBA8, ZVPixelRGBA8>(ZVBufferRGBA8*, ZVClip const*,
                                                              ZVRectT<long> const*, long, long);
template ZV_API void Crop_Bitmap<ZVBufferRGBA10, ZVPixelRGBA10>(ZVBufferRGBA10*, ZVClip const*,
                                                                ZVRectT<long> const*, long, long);
template ZV_API void Crop_Bitmap<ZVBufferRGBA12, ZVPixelRGBA12>(ZVBufferRGBA12*, ZVClip const*,
                                                                ZVRectT<long> const*, long, long);
template ZV_API void Crop_Bitmap<ZVBufferRGBA16, ZVPixelRGBA16>(ZVBufferRGBA16*, ZVClip const*,
                                                                ZVRectT<long> const*, long, long);
template ZV_API void Crop_Bitmap<ZVBufferRGBAFloat, ZVPixelRGBAFloat>(ZVBufferRGBAFloat*, ZVClip const*,
                                                                      ZVRectT<long> const*, long, long);

long Plugin_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* rect, long width, long height,
                     long layer, AsyncParams& async)
{
    ZVFormatDesc* const format = clip->Format;
    if (!format || !format->GetFrame) return 0;
    std::optional<FileOfFrame> file;
    if (Is_Image_Sequence(clip)) {
        file.emplace(clip, frame);
        if (!file->Exists()) {
            FillBitmapZV(bitmap, clip->Background);
            return 0;
        }
        frame = 0;
    }
    FrameData data;
    if (format->GetFrameDataReference) {
        long long offset = 0;
        long size = 0;
        void* buffer = nullptr;
        if (format->GetFrameDataReference(clip, frame, layer, &offset, &size, &buffer) &&
            !Read_Frame_Data(clip, size, buffer, data, async))
            return 0;
    }
    if (async.PollResult) return 0;
    return format->GetFrame(clip, bitmap, frame, rect, width, height, layer, data.bytes, data.size);
}

long Get_Frame(ZVClip* clip, unsigned long frame, ZVBitmap* bitmap, unsigned long flags,
               ZVRectT<long> const* rect, long width, long height, AsyncParams& async)
{
    if (!clip || !(clip->Flags & ZV_CLIP_IO) || !bitmap || !bitmap->Pixels) return 0;
    FramePlace const place{rect ? *rect : ZVRectT<long>{}, width, height};
    if (!Touches(*bitmap, place)) {
        FillBitmapZV(bitmap, 0);
        return 1;
    }
    if (frame >= static_cast<unsigned long>(Get_ReadableFrames(clip))) {
        FillBitmapZV(bitmap, clip->Background);
        return 1;
    }
    long const source = Get_FrameMapping(clip, static_cast<long>(frame));
    if (source >= 0) {
        if (!Read_Source(clip, source, *bitmap, place, async)) return 0;
    } else {
        bool const isRead = Read_Scratch(clip, source, *bitmap, place, async);
        if (async.PollResult) return 0;
        if (!isRead) {
            FillBitmapZV(bitmap, clip->Background);
            return 1;
        }
        flags &= ~FRAME_INTERPRET_ALPHA;  // scratch frames hold finished pixels
    }
    Area const area = Covered_Area(*bitmap, place);
    // A filter mixes neighbouring rows, so what lies outside the frame is cleared before it, and after it
    // again.
    unsigned long const filters = FRAME_INTERPOLATE_LOWER | FRAME_INTERPOLATE_UPPER | FRAME_BLEND_FIELDS;
    if ((flags & filters) && !Is_Whole(*bitmap, area)) Clear_Outside(*bitmap, area);
    Filter_Fields(*bitmap, flags);
    if (flags & FRAME_INTERPRET_ALPHA)
        Visit_RGBA(*bitmap, [&]<typename Buffer>(Buffer& buffer) {
            Interpret_Alpha<Buffer, typename Buffer::PixelType>(&buffer, clip, area.left, area.top,
                                                                area.right, area.bottom);
        });
    if (!Is_Whole(*bitmap, area)) Clear_Outside(*bitmap, area);
    return 1;
}

WantedRows Wanted_Rows(ZVClip const* clip, ZVTimeValue const& time, ZVTimeValue const& duration)
{
    if (clip->FieldOrder == ZV_FIELDS_NONE || clip->PullDown) return WantedRows::All;
    double const half = clip->FrameRate == 0.0 ? 0.0 : 1.0 / (2.0 * clip->FrameRate);
    // 1e-9: a duration meant to be 1.02 fields long may divide to just under it.
    if (half != 0.0 && Get_Time(&duration) / half >= 1.02 - 1e-9) return WantedRows::All;
    bool const isSecond = Get_Field(clip, &time) & 1;
    return (clip->FieldOrder == ZV_FIELDS_UPPER_FIRST) != isSecond ? WantedRows::Upper : WantedRows::Lower;
}

/// The flags for a request of one frame: the rows that are not wanted are rebuilt.
static unsigned long Field_Flags(WantedRows rows)
{
    switch (rows) {
    case WantedRows::Upper: return FRAME_INTERPOLATE_LOWER | FRAME_INTERPRET_ALPHA;
    case WantedRows::Lower: return FRAME_INTERPOLATE_UPPER | FRAME_INTERPRET_ALPHA;
    default: return FRAME_INTERPRET_ALPHA;
    }
}

static bool Is_Skipped(ZVClip const* clip, long frame)
{
    return clip->FrameSkip && frame >= 0 && frame < clip->Frames && clip->FrameSkip[frame];
}

long GetFrameZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time, ZVTimeValue const* duration,
                TagItem* tags)
{
    if (!clip || !(clip->Flags & ZV_CLIP_IO) || !bitmap || !bitmap->Pixels) return 0;
    ZVTimeValue const moment = time ? *time : ZVTimeValue{};
    ZVTimeValue const length = duration ? *duration : ZVTimeValue{1.0, clip->FrameRate};
    FramePlace place{{}, bitmap->Width, bitmap->Height};
    AsyncParams async;
    while (TagItem const* item = NextTagItem(&tags)) {
        switch (item->tag) {
        case ZV_FRAME_RECT:
            if (item->data) place.offset = *reinterpret_cast<ZVRectT<long> const*>(item->data);
            break;
        case ZV_FRAME_WIDTH: place.width = static_cast<long>(item->data); break;
        case ZV_FRAME_HEIGHT: place.height = static_cast<long>(item->data); break;
        case ZV_FRAME_POLL: async.Poll = reinterpret_cast<ZVPollFunc>(item->data); break;
        default: break;
        }
    }
    if (clip->Flags & ZV_CLIP_TIME_BLEND) return Integrate_Time(clip, bitmap, moment, length, place, async);
    long const frame = Get_Frame(clip, &moment);
    clip->LastFrame = frame;
    if (Is_Skipped(clip, frame)) return 1;
    unsigned long const flags = Field_Flags(Wanted_Rows(clip, moment, length));
    return Read_Frame(clip, frame, bitmap, flags, place, async);
}

long GetFrameDataZV(ZVClip* clip, ZVTimeValue const* time, unsigned long what, void* buffer, long size)
{
    if (!clip || !(clip->Flags & ZV_CLIP_IO) || !(what & clip->FrameDataMask)) return 0;
    ZVFormatDesc* const format = clip->Format;
    if (!format || !format->GetFrameData) return 0;
    ZVTimeValue const moment = time ? *time : ZVTimeValue{};
    long const frame = Get_Frame(clip, &moment);
    if (frame < 0 || frame >= Get_ReadableFrames(clip)) return 0;
    long const source = Get_FrameMapping(clip, frame);
    if (source < 0) return 0;  // an edited frame has no data but its pixels
    if (!Is_Image_Sequence(clip)) return format->GetFrameData(clip, source, what, buffer, size);
    FileOfFrame const file(clip, source);
    return file.Exists() ? format->GetFrameData(clip, 0, what, buffer, size) : 0;
}
