// The writing side of the movie module. A movie is written beside its target, and takes the target's place
// when it is finished.
#include "QuickTimeModule.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr uint32_t FileType = ZV_FourCC("MooV");
constexpr uint32_t Creator = ZV_FourCC("TVOD");
constexpr long DepthWithAlpha = 32;
constexpr double LargestRate = 10000.0;
constexpr unsigned long SoundPiece = 16384;  // frames of sound that are turned at once

/// Gives the clip options when it has none: the user's, where there is one to ask. False with the error
/// number set.
bool Provide_Options(ZVClip* clip, bool isNew, bool (*ask)(ZVClip*), bool (*make)(ZVClip*))
{
    if (!isNew || !Has_Interface()) return make(clip);
    if (ask(clip)) return true;
    if (GetErrorZV() == ZV_ERR_NONE) SetError(ZV_ERR_SEQUENCE);
    return false;
}

/// Takes the settings of the pictures from the clip's options. False with the error number set.
bool Take_Video_Settings(ZVClip* clip, OSMovieSettings& settings)
{
    bool const isNew = !clip->VideoParams;
    if (!Provide_Options(clip, isNew, Ask_Video_Options, Make_Video_Defaults)) return false;
    Complete_Video_Options(clip);
    ZVFormatParams const* params = clip->VideoParams;
    if (isNew && clip->FrameRate <= 0) clip->FrameRate = Get_Option(params, VIDEO_FRAME_RATE) / 65536.0;
    // Under pull-down the movie holds a quarter more frames than are given.
    double const rate = clip->PullDown != 0 ? clip->FileFrameRate : clip->FrameRate;
    if (!(rate > 0 && rate <= LargestRate) || clip->Width < 1 || clip->Height < 1 ||
        clip->Width > clip->Format->MaxWidth || clip->Height > clip->Format->MaxHeight) {
        SetError(ZV_ERR_CLIP);
        return false;
    }
    MovieTimeScale const time = Movie_Time_Scale(rate);
    settings.width = clip->Width;
    settings.height = clip->Height;
    settings.codec = Get_Option(params, VIDEO_CODEC);
    settings.timeScale = time.scale;
    settings.frameDuration = time.duration;
    settings.hasAlpha = Get_Option16(params, VIDEO_DEPTH) == DepthWithAlpha;
    settings.isDeep = clip->BitDepth > 8;
    settings.quality = static_cast<long>(std::min(Get_Option(params, VIDEO_SPATIAL_QUALITY), 1024u));
    settings.keyFrameInterval =
        static_cast<long>(std::min(Get_Option(params, VIDEO_KEY_FRAME_RATE), 100000u));
    settings.bytesPerSecond = static_cast<long>(std::min(Get_Option(params, VIDEO_DATA_RATE), 0x0FFFFFFFu));
    settings.pixelAspect = clip->PixelAspect;
    settings.fieldOrder = clip->FieldOrder;
    return true;
}

bool Take_Sound_Settings(ZVClip* clip, OSMovieSettings& settings)
{
    if (!Provide_Options(clip, !clip->AudioParams, Ask_Audio_Options, Make_Audio_Defaults)) return false;
    ZVFormatParams const* params = clip->AudioParams;
    ZVAudioFormat& format = clip->AudioFormat;
    if (format.Rate == 0) {
        format.Rate = Get_Option(params, AUDIO_RATE) >> 16;
        format.Channels = Get_Option16(params, AUDIO_CHANNELS);
        format.SampleSize = Get_Option16(params, AUDIO_SAMPLE_BITS) / 8u;
    }
    bool const isUsable = format.Rate > 0 && format.Rate <= 1000000 &&
                          (format.Channels == 1 || format.Channels == 2) &&
                          (format.SampleSize == 1 || format.SampleSize == 2);
    if (!isUsable) {
        SetError(ZV_ERR_CLIP);
        return false;
    }
    format.Flags = ZV_AUDIO_UNSIGNED | ZV_AUDIO_SWAPPED;
    settings.sound = format;
    uint32_t const codec = Get_Option(params, AUDIO_CODEC);
    settings.soundCodec = codec == NoSoundCompression || codec == RawSound ? 0 : codec;
    return true;
}

bool Fails_Already(ZVQuickTimeState const* state)
{
    return !state || !state->Output || state->HasFailed;
}

}  // namespace

/// A codec of 8 bits makes the clip one of 8 bits, so that frames are converted on their way here.
long QuickTime_Create(ZVClip* clip, unsigned long)
{
    Release_Movie(clip);
    OSMovieSettings settings{};
    settings.isHinted = Is_Hinted(clip);
    if ((clip->Media & ZV_MEDIA_VIDEO) && !Take_Video_Settings(clip, settings)) return 0;
    if ((clip->Media & ZV_MEDIA_AUDIO) && !Take_Sound_Settings(clip, settings)) return 0;
    if (settings.isHinted) settings.packetMilliseconds = Stream_Packet_Milliseconds(clip);
    ZVQuickTimeState* state = Attach_Movie_State(clip);
    if (!state) return 0;
    state->Output = OS_Movie_Create(clip->FileName, &settings);
    if (!state->Output) {
        Release_Movie(clip);
        return 0;
    }
    if ((clip->Media & ZV_MEDIA_VIDEO) && !OS_Movie_Find_Codec(settings.codec).isDeep) clip->BitDepth = 8;
    return 1;
}

/// Frames are appended, whatever their number.
long QuickTime_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>* region)
{
    if (!(clip->Media & ZV_MEDIA_VIDEO)) return 1;
    ZVQuickTimeState* state = State_Of_Movie(clip);
    if (Fails_Already(state) || !clip->VideoParams || !Upgrade_Video_Options(clip)) return 0;
    if (!bitmap || bitmap->Width != clip->Width || bitmap->Height != clip->Height) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    BitmapBlock picture = Stored_Frame(clip, bitmap, region);
    if (!picture) return 0;
    if (picture->Type != ZV_BITMAP_RGBA8 && picture->Type != ZV_BITMAP_RGBA16) {
        BitmapBlock deep{AllocBitmapZV(bitmap->Width, bitmap->Height, ZV_BITMAP_RGBA16, "movie frame")};
        if (!deep) return 0;
        CopyBitmapZV(picture.get(), deep.get(), 0, 0, -1, -1, 0, 0);
        picture = std::move(deep);
    }
    if (!OS_Movie_Add_Frame(state->Output, picture.get())) {
        state->HasFailed = true;
        return 0;
    }
    state->HasWritten = true;
    ++clip->RawFrames;
    return 1;
}

/// Samples come in the clip's format; the movie layer takes bytes without a sign and words in the machine's
/// order.
long QuickTime_AddAudio(ZVClip* clip, void* samples, unsigned long count)
{
    ZVQuickTimeState* state = State_Of_Movie(clip);
    if (Fails_Already(state) || !clip->AudioParams || !Upgrade_Audio_Options(clip) || !samples) return 0;
    ZVAudioFormat const& format = clip->AudioFormat;
    bool const isSigned8 = format.SampleSize == 1 && !(format.Flags & ZV_AUDIO_UNSIGNED);
    bool const isSwapped = format.SampleSize == 2 && (format.Flags & ZV_AUDIO_SWAPPED);
    unsigned long const frameBytes = format.SampleSize * format.Channels;
    auto const* next = static_cast<uint8_t const*>(samples);
    std::unique_ptr<uint8_t[]> turned;
    if (isSigned8 || isSwapped) turned.reset(new uint8_t[SoundPiece * frameBytes]);
    while (count > 0) {
        unsigned long const frames = std::min(count, SoundPiece);
        unsigned long const bytes = frames * frameBytes;
        uint8_t const* piece = next;
        if (turned) {
            for (unsigned long i = 0; i < bytes; ++i)
                turned[i] = isSigned8 ? static_cast<uint8_t>(next[i] ^ 0x80) : next[i ^ 1];
            piece = turned.get();
        }
        if (!OS_Movie_Add_Sound(state->Output, piece, frames)) {
            state->HasFailed = true;
            return 0;
        }
        state->HasWritten = true;
        next += bytes;
        count -= frames;
    }
    return 1;
}

/// A movie into which nothing was written does not replace one that was there before.
void Finish_Movie(ZVClip* clip)
{
    ZVQuickTimeState* state = State_Of_Movie(clip);
    if (!state || !state->Output) return;
    if (state->HasFailed || !state->HasWritten) {
        unsigned long const error = GetErrorZV();
        OS_Movie_Discard(std::exchange(state->Output, nullptr));
        SetError(error ? error : ZV_ERR_CLIP);
        return;
    }
    OS_Movie_Finish(std::exchange(state->Output, nullptr), FileType, Creator);
}
