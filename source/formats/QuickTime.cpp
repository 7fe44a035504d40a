// Movies: everything that the platform's movie layer reads, with pictures and sound. This file has the
// registration and the reading side.
#include "QuickTimeModule.h"

#include "clips/AudioConvert.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr long Properties = 0xB2000 | 0x100 | ZV_FORMAT_ALPHA | ZV_FORMAT_MULTIFRAME | ZV_FORMAT_READ |
                            ZV_FORMAT_WRITE | ZV_FORMAT_DEFAULT | ZV_FORMAT_AUDIO_WRITE;
constexpr uint32_t FileType = ZV_FourCC("MooV");
constexpr uint32_t Creator = ZV_FourCC("TVOD");
constexpr uint32_t SystemOfLargeFiles = 0x1000;
constexpr long LargestOldFile = 0x79999999;
constexpr double SoundFrameRate = 30.0;  // of a movie without pictures

struct AudioBuffer_Freer {
    void operator()(ZVAudioBuffer* buffer) const { FreeAudioBufferZV(buffer); }
};
using AudioBufferPtr = std::unique_ptr<ZVAudioBuffer, AudioBuffer_Freer>;

// ---- opening ----------------------------------------------------------------------------------------------

void Take_Sound(ZVClip* clip, OSMovieInfo const& info)
{
    if (!info.hasSound) return;
    clip->AudioFormat = info.sound;
    clip->RawFrames =
        std::max(1L, static_cast<long>(std::min(info.soundSeconds * SoundFrameRate, 2147483647.0)));
    clip->FrameRate = clip->FileFrameRate = SoundFrameRate;
    clip->Width = clip->Height = 1;
    clip->BitDepth = 8;
    clip->Media |= ZV_MEDIA_AUDIO;
}

void Take_Video(ZVClip* clip, OSMovieInfo const& info)
{
    clip->Width = info.width;
    clip->Height = info.height;
    clip->RawFrames = info.frames;
    clip->FrameRate = clip->FileFrameRate = info.frameRate;
    long const listed = Listed_Codec_Depth(info.codec);
    clip->BitDepth = listed ? listed : info.bitDepth;
    clip->AlphaType = info.hasAlpha ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE;
    if (info.pixelAspect > 0) clip->PixelAspect = info.pixelAspect;
    if (info.fieldOrder) clip->FieldOrder = info.fieldOrder;
    clip->Media |= ZV_MEDIA_VIDEO;
}

/// What an opened movie says of its compression.
void Describe_Options(ZVFormatParams* params, OSMovieInfo const& info)
{
    Set_Option(params, VIDEO_CODEC, info.codec);
    Set_Option16(params, VIDEO_DEPTH, static_cast<uint32_t>(info.storedDepth));
    Set_Option(params, VIDEO_SPATIAL_QUALITY, 512);
    Set_Option(params, VIDEO_TEMPORAL_QUALITY, 512);
    Set_Option(params, VIDEO_FRAME_RATE,
               static_cast<uint32_t>(std::llround(std::min(info.frameRate, 32767.0) * 65536.0)));
}

long Fail(ZVClip* clip, unsigned long error)
{
    Release_Movie(clip);
    SetError(error);
    return 0;
}

/// A clip that has video options counts as described: its fields stay as they are.
long QuickTime_Open(ZVClip* clip, TagItem*)
{
    Release_Movie(clip);
    bool const isDescribed = clip->VideoParams != nullptr;
    if (isDescribed && !Upgrade_Video_Options(clip)) return 0;
    ZVQuickTimeState* state = Attach_Movie_State(clip);
    if (!state) return 0;
    state->Movie = OS_Movie_Open(clip->FileName, &state->Info);
    if (!state->Movie)
        return Fail(clip, GetErrorZV() == ZV_ERR_MEMORY ? ZV_ERR_MEMORY : ZV_ERR_CLIP_EXCEPTION);
    OSMovieInfo const& info = state->Info;
    if (!info.hasVideo && !info.hasSound) return Fail(clip, ZV_ERR_CLIP_EXCEPTION);
    if (info.hasVideo && (info.width > clip->Format->MaxWidth || info.height > clip->Format->MaxHeight))
        return Fail(clip, ZV_ERR_CLIP_EXCEPTION);
    if (info.hasVideo && !info.isReadable) {
        SetErrorString(info.codecName);
        return Fail(clip, ZV_ERR_MOVIE_FRAME);
    }
    if (isDescribed) return 1;

    ZVFormatParams* params = New_Video_Options();
    if (!params) return Fail(clip, ZV_ERR_MEMORY);
    clip->Media = 0;
    Take_Sound(clip, info);
    if (info.hasVideo) {
        Take_Video(clip, info);
        Describe_Options(params, info);
    }
    clip->VideoParams = params;
    return 1;
}

void QuickTime_Close(ZVClip* clip)
{
    Finish_Movie(clip);
    Release_Movie(clip);
}

/// Older systems have files of less than two gigabytes, and the largest that a compressed frame can get is
/// taken to be its pixels.
bool Fits_Into_File(ZVClip const* clip)
{
    if (ZVEnv->systemVersion >= SystemOfLargeFiles) return true;
    long const pixelBytes = clip->BitDepth > 8 ? 8 : 4;
    auto const bytes = static_cast<__int128>(clip->Width) * clip->Height * pixelBytes * clip->Frames;
    return bytes <= LargestOldFile;
}

long QuickTime_BeginIO(ZVClip* clip, long writing)
{
    if (!State_Of_Movie(clip)) return 0;
    if (writing && (clip->Media & ZV_MEDIA_AUDIO) && !Upgrade_Audio_Options(clip)) return 0;
    if (!(clip->Media & ZV_MEDIA_VIDEO)) return 1;
    if (!Upgrade_Video_Options(clip)) return 0;
    if (writing && !Fits_Into_File(clip)) {
        SetError(ZV_ERR_MOVIE_SIZE);
        return 0;
    }
    return 1;
}

long QuickTime_EndIO(ZVClip*, long)
{
    return 1;
}

// ---- frames -----------------------------------------------------------------------------------------------

/// Reads through a bitmap of the movie's own size, for a caller's bitmap of another size or a type that the
/// platform cannot fill.
long Read_Through_Work(ZVQuickTimeState* state, ZVBitmap* bitmap, long frame, ZVRectT<long> const& target)
{
    OSMovieInfo const& info = state->Info;
    ZVBitmapType const type = bitmap->Type == ZV_BITMAP_RGBA8 ? ZV_BITMAP_RGBA8 : ZV_BITMAP_RGBA16;
    BitmapBlock const work{AllocBitmapZV(info.width, info.height, type, "movie frame")};
    if (!work || !OS_Movie_Read_Frame(state->Movie, frame, work.get())) return 0;
    bool const isWhole =
        target.x == 0 && target.y == 0 && target.width == info.width && target.height == info.height;
    if (isWhole && bitmap->Width == info.width && bitmap->Height == info.height)
        CopyBitmapZV(work.get(), bitmap, 0, 0, -1, -1, 0, 0);
    else
        ScaleBitmapZV(work.get(), bitmap, nullptr, &target);
    return 1;
}

/// A movie without pictures has frames all the same, and nothing to put into them.
long QuickTime_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* offset, long width,
                        long height, long, void*, long)
{
    if (!(clip->Media & ZV_MEDIA_VIDEO)) return 1;
    ZVQuickTimeState* state = State_Of_Movie(clip);
    if (!state || !state->Movie || !clip->VideoParams || !bitmap) return 0;
    OSMovieInfo const& info = state->Info;
    if (!info.hasVideo || frame < 0 || frame >= info.frames) return 0;
    ZVRectT<long> const target{offset ? -offset->x : 0, offset ? -offset->y : 0, width, height};
    bool const isDirect = (bitmap->Type == ZV_BITMAP_RGBA8 || bitmap->Type == ZV_BITMAP_RGBA16) &&
                          target.x == 0 && target.y == 0 && width == info.width && height == info.height &&
                          bitmap->Width == info.width && bitmap->Height == info.height;
    if (isDirect) return OS_Movie_Read_Frame(state->Movie, frame, bitmap);
    return Read_Through_Work(state, bitmap, frame, target);
}

// ---- sound ------------------------------------------------------------------------------------------------

/// From bytes without a sign, or words in the machine's order, to what the flags of a format say, and back.
void Turn_Samples(ZVAudioFormat const& format, void* samples, unsigned long count)
{
    unsigned long const values = count * format.Channels;
    if (format.SampleSize == 1 && !(format.Flags & ZV_AUDIO_UNSIGNED)) {
        auto* bytes = static_cast<uint8_t*>(samples);
        for (unsigned long i = 0; i < values; ++i)
            bytes[i] ^= 0x80;
    } else if (format.SampleSize == 2 && format.Flags & ZV_AUDIO_SWAPPED) {
        auto* bytes = static_cast<uint8_t*>(samples);
        for (unsigned long i = 0; i < values; ++i)
            std::swap(bytes[2 * i], bytes[2 * i + 1]);
    }
}

long QuickTime_GetAudio(ZVClip* clip, void* samples, unsigned long first, unsigned long count)
{
    ZVQuickTimeState* state = State_Of_Movie(clip);
    if (!state || !state->Movie || !state->Info.hasSound || !samples) return 0;
    ZVAudioFormat const& stored = state->Info.sound;
    ZVAudioFormat const& wanted = clip->AudioFormat;
    if (wanted.Rate == stored.Rate && wanted.SampleSize == stored.SampleSize &&
        wanted.Channels == stored.Channels) {
        if (!OS_Movie_Read_Sound(state->Movie, samples, first, count)) return 0;
        Turn_Samples(wanted, samples, count);
        return 1;
    }
    if (wanted.Rate == 0) return 0;
    auto const scaled = [&](unsigned long number) {
        return static_cast<unsigned long>(static_cast<unsigned __int128>(number) * stored.Rate / wanted.Rate);
    };
    AudioBufferPtr const work{AllocAudioBufferZV(&stored, std::max(1UL, scaled(count)))};
    ZVAudioBuffer target{wanted, samples, static_cast<long>(count)};
    return work &&
           OS_Movie_Read_Sound(state->Movie, work->Data, scaled(first),
                               static_cast<unsigned long>(work->Samples)) &&
           Convert_Audio(*work, target);
}

// ---- registration -----------------------------------------------------------------------------------------

long QuickTime_GetImportProperties(ZVFormatDesc*)
{
    return Properties;
}

long QuickTime_GetExportProperties(ZVFormatDesc*, ZVClip*)
{
    return Properties;
}

ZVFormatDesc* Make_Desc(unsigned long nameString, char const* fallback)
{
    constexpr ZVTypePair readTypes[] = {{FileType, ZV_BLANK_CODE}};
    constexpr uint32_t readExtensions[] = {ZV_FourCC("mov\0")};
    ZVFormatDesc* desc = Make_Format_Desc(
        {Format_Name(nameString, fallback), FileType, Creator, readTypes, 1, readExtensions, 1});
    if (!desc) return nullptr;
    desc->Open = QuickTime_Open;
    desc->Close = QuickTime_Close;
    desc->Create = QuickTime_Create;
    desc->BeginIO = QuickTime_BeginIO;
    desc->EndIO = QuickTime_EndIO;
    desc->GetFrame = QuickTime_GetFrame;
    desc->AddFrame = QuickTime_AddFrame;
    desc->CanLoad = Standard_CanLoad;
    desc->GetImportProperties = QuickTime_GetImportProperties;
    desc->GetExportProperties = QuickTime_GetExportProperties;
    desc->GetAudio = QuickTime_GetAudio;
    desc->AddAudio = QuickTime_AddAudio;
    desc->ConvertEndianOptions = QuickTime_ConvertEndianOptions;
    return desc;
}

}  // namespace

ZVQuickTimeState* Attach_Movie_State(ZVClip* clip)
{
    auto* state = static_cast<ZVQuickTimeState*>(AllocMemZV(sizeof(ZVQuickTimeState), ZV_MEM_CLEAR));
    clip->ModuleData = state;
    return state;
}

void Release_Movie(ZVClip* clip)
{
    ZVQuickTimeState* state = State_Of_Movie(clip);
    if (!state) return;
    OS_Movie_Close(state->Movie);
    OS_Movie_Discard(state->Output);
    FreeMemZV(state);
    clip->ModuleData = nullptr;
}

bool Is_Hinted(ZVClip const* clip)
{
    return clip->Format && clip->Format->CachedProperties == 1;
}

long Add_QuickTime_Format(ZVScanDesc*)
{
    if (!ZVEnv || !ZVEnv->hasMovies) return 0;
    ZVFormatDesc* movies = Make_Desc(149, "QuickTime Movie");
    ZVFormatDesc* streams = movies ? Make_Desc(150, "QuickTime Streaming Movie") : nullptr;
    if (!streams) {
        Free_Format_Mod(movies);
        return 0;
    }
    OS_Movie_Visit_Extensions(
        [](char const* text, void* desc) { AddExtension(text, static_cast<ZVFormatDesc*>(desc)); }, movies);
    movies->Options = QuickTime_VideoOptions;
    movies->AudioOptions = QuickTime_AudioOptions;
    AddTail(&ZVEnv->formats, &movies->Node);
    streams->CachedProperties = 1;
    streams->Options = Video_Options_Stub;
    streams->AudioOptions = Audio_Options_Stub;
    AddTail(&ZVEnv->formats, &streams->Node);
    Read_Codec_List();
    return 1;
}
