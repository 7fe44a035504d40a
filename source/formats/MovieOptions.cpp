// The settings of movies as applications see them, over the stored blocks of options.
#include "QuickTimeModule.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

bool Is_Movie_Format(ZVClip const* clip)
{
    return clip && clip->Format && clip->Format->Create == QuickTime_Create;
}

uint32_t Clamp_Option(long value, uint32_t largest)
{
    return static_cast<uint32_t>(std::clamp(value, 0L, static_cast<long>(largest)));
}

}  // namespace

long FindMovieCodecZV(uint32_t code, ZVMovieCodec* codec)
{
    OSMovieCodec const known = OS_Movie_Find_Codec(code);
    static_assert(sizeof codec->Name == sizeof known.name);
    *codec = {{}, known.hasAlpha, known.isDeep, known.canStream};
    std::memcpy(codec->Name, known.name, sizeof codec->Name);
    return known.canWrite;
}

long SetMovieOptionsZV(ZVClip* clip, ZVMovieOptions const* options)
{
    if (!Is_Movie_Format(clip) || !options) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    if (!OS_Movie_Find_Codec(options->Codec).canWrite) {
        Refuse_Codec(options->Codec);
        return 0;
    }
    ZVClip made{};
    made.Format = clip->Format;
    made.AudioFormat = clip->AudioFormat;
    if (!Make_Video_Defaults(&made) || !Make_Audio_Defaults(&made)) {
        FreeMemZV(made.VideoParams);
        return 0;
    }
    Set_Option(made.VideoParams, VIDEO_CODEC, options->Codec);
    uint32_t const quality = Clamp_Option(options->Quality, 1024);
    Set_Option(made.VideoParams, VIDEO_SPATIAL_QUALITY, quality);
    Set_Option(made.VideoParams, VIDEO_TEMPORAL_QUALITY, quality);
    Set_Option(made.VideoParams, VIDEO_KEY_FRAME_RATE, Clamp_Option(options->KeyFrameInterval, INT32_MAX));
    Set_Option(made.VideoParams, VIDEO_DATA_RATE, Clamp_Option(options->BytesPerSecond, INT32_MAX));
    Set_Option(made.AudioParams, AUDIO_CODEC, options->SoundCodec ? options->SoundCodec : NoSoundCompression);
    if (clip->AudioParams != clip->VideoParams) FreeMemZV(clip->AudioParams);
    FreeMemZV(clip->VideoParams);
    clip->VideoParams = made.VideoParams;
    clip->AudioParams = made.AudioParams;
    return 1;
}

long GetMovieOptionsZV(ZVClip const* clip, ZVMovieOptions* options)
{
    if (!Is_Movie_Format(clip) || !(clip->Media & ZV_MEDIA_VIDEO)) return 0;
    ZVFormatParams const* video = clip->VideoParams;
    if (!video || !video->Data || video->Size < VideoOptionsSize || Get_Option(video, 0) != MovieOptionsMark)
        return 0;
    *options = {};
    options->Codec = Get_Option(video, VIDEO_CODEC);
    options->Quality = static_cast<long>(Get_Option(video, VIDEO_SPATIAL_QUALITY));
    options->KeyFrameInterval = static_cast<long>(Get_Option(video, VIDEO_KEY_FRAME_RATE));
    options->BytesPerSecond = static_cast<long>(Get_Option(video, VIDEO_DATA_RATE));
    ZVFormatParams const* audio = clip->AudioParams;
    if (audio && audio->Data && audio->Size >= AudioOptionsSize && Get_Option(audio, 0) == MovieOptionsMark)
        options->SoundCodec = Get_Option(audio, AUDIO_CODEC);
    if (options->SoundCodec == NoSoundCompression) options->SoundCodec = 0;
    return 1;
}

unsigned long GetMovieSoundLengthZV(ZVClip const* clip)
{
    if (!Is_Movie_Format(clip) || !clip->ModuleData || !State_Of_Movie(clip)->Movie) return 0;
    OSMovieInfo const& info = State_Of_Movie(clip)->Info;
    if (!info.hasSound) return 0;
    return static_cast<unsigned long>(std::llround(info.soundSeconds * static_cast<double>(info.sound.Rate)));
}
