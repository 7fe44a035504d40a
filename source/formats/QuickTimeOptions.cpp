// The stored blocks of movie options: their layout, upgrading, defaults and byte order.
//   video    0 mark   4 codec   8 component   12 depth, 2 bytes   14 spatial quality   18 temporal quality
//           22 frame rate   26 key frame rate   30 data rate, 16 bytes   46 image description, 86 bytes
//          132 has streaming settings   136 their size   140 their address   144 the settings
//   audio    0 mark   4 codec   8 sound description, 36 bytes   44, 48, 52 as above   56 the settings
#include "QuickTimeModule.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

namespace {

constexpr uint32_t DefaultCodec = ZV_FourCC("rle ");
constexpr uint32_t DefaultStreamCodec = ZV_FourCC("avc1");  // the default of other movies cannot be streamed
constexpr uint32_t DefaultVendor = ZV_FourCC("appl");
constexpr uint32_t NormalQuality = 512;
constexpr long VideoOldEnd = 46;  // what an older block shares with the present one ends here
constexpr long AudioOldEnd = 8;

/// Offsets in the image description of a block.
enum ImageField : long {
    IMAGE_SIZE = VIDEO_IMAGE_DESCRIPTION,
    IMAGE_CODEC = VIDEO_IMAGE_DESCRIPTION + 4,
    IMAGE_VENDOR = VIDEO_IMAGE_DESCRIPTION + 20,
    IMAGE_TEMPORAL_QUALITY = VIDEO_IMAGE_DESCRIPTION + 24,
    IMAGE_SPATIAL_QUALITY = VIDEO_IMAGE_DESCRIPTION + 28,
    IMAGE_WIDTH = VIDEO_IMAGE_DESCRIPTION + 32,  // 16 bits, like the height behind it
    IMAGE_HORIZONTAL = VIDEO_IMAGE_DESCRIPTION + 36,
    IMAGE_VERTICAL = VIDEO_IMAGE_DESCRIPTION + 40,
    IMAGE_DATA_SIZE = VIDEO_IMAGE_DESCRIPTION + 44,
    IMAGE_FRAMES = VIDEO_IMAGE_DESCRIPTION + 48,  // 16 bits
    IMAGE_NAME = VIDEO_IMAGE_DESCRIPTION + 50,    // 32 bytes, the first one its length
    IMAGE_DEPTH = VIDEO_IMAGE_DESCRIPTION + 82,   // 16 bits
    IMAGE_COLOUR_TABLE = VIDEO_IMAGE_DESCRIPTION + 84
};
constexpr uint32_t ImageDescriptionSize = 86;
constexpr uint32_t SoundDescriptionSize = 36;
constexpr uint32_t Dots72 = 72u << 16;

uint8_t* Bytes_Of(ZVFormatParams* params)
{
    return static_cast<uint8_t*>(params->Data);
}

ZVFormatParams* New_Block(long size)
{
    auto* block = static_cast<uint8_t*>(
        AllocMemZV(sizeof(ZVFormatParams) + static_cast<unsigned long>(size), ZV_MEM_CLEAR));
    if (!block) return nullptr;
    auto* params = new (block) ZVFormatParams{block + sizeof(ZVFormatParams), size};
    Set_Option(params, 0, MovieOptionsMark);
    return params;
}

/// Whether a block of the present form holds all that it tells of. Settings that are not there are forgotten.
void Check_Streaming(ZVFormatParams* params, long size, long flagOffset)
{
    uint32_t const told = Get_Option(params, flagOffset + 4);
    if (Get_Option(params, flagOffset) && told > 0 && told <= static_cast<uint64_t>(params->Size - size))
        return;
    Set_Option(params, flagOffset, 0);
    Set_Option(params, flagOffset + 4, 0);
    Set_Option(params, flagOffset + 8, 0);
}

/// The block in the present form, made from what there is; the block itself when it has that form.
ZVFormatParams* Upgraded(ZVFormatParams* old, long size, long flagOffset, long oldEnd)
{
    long const there = old->Data ? std::max(old->Size, 0L) : 0;
    bool const hasMark = there >= 4 && Get_Option(old, 0) == MovieOptionsMark;
    if (hasMark && there >= size) {
        Check_Streaming(old, size, flagOffset);
        return old;
    }
    ZVFormatParams* made = New_Block(size);
    if (!made) return nullptr;
    long const end = std::min(there, hasMark ? flagOffset : oldEnd);
    if (end > 4) std::memcpy(Bytes_Of(made) + 4, Bytes_Of(old) + 4, static_cast<std::size_t>(end - 4));
    return made;
}

/// Puts a new block in the place of one of the clip's. A block that is both goes with the second one.
void Replace(ZVFormatParams*& place, ZVFormatParams* made, ZVFormatParams const* other)
{
    if (place == made) return;
    if (place != other) FreeMemZV(place);
    place = made;
}

/// Whether a block of defaults still waits for the clip that it is used for: it has the vendor, and no image
/// description yet.
bool Is_Untouched(ZVFormatParams const* params)
{
    return Get_Option(params, IMAGE_VENDOR) == DefaultVendor && Get_Option(params, IMAGE_SIZE) == 0;
}

uint32_t Fixed_Rate(double rate)
{
    return rate > 0 ? static_cast<uint32_t>(std::llround(std::min(rate, 32767.0) * 65536.0)) : 0;
}

void Swap_Option(ZVFormatParams* params, long offset)
{
    Set_Option(params, offset, __builtin_bswap32(Get_Option(params, offset)));
}

/// 1 to 2 channels of one or two bytes at some rate.
bool Is_Sound_Format(ZVAudioFormat const& format)
{
    return format.Rate > 0 && (format.Channels == 1 || format.Channels == 2) &&
           (format.SampleSize == 1 || format.SampleSize == 2);
}

}  // namespace

uint32_t Get_Option(ZVFormatParams const* params, long offset)
{
    uint32_t value;
    std::memcpy(&value, static_cast<uint8_t const*>(params->Data) + offset, sizeof value);
    return value;
}

void Set_Option(ZVFormatParams* params, long offset, uint32_t value)
{
    std::memcpy(Bytes_Of(params) + offset, &value, sizeof value);
}

uint16_t Get_Option16(ZVFormatParams const* params, long offset)
{
    uint16_t value;
    std::memcpy(&value, static_cast<uint8_t const*>(params->Data) + offset, sizeof value);
    return value;
}

void Set_Option16(ZVFormatParams* params, long offset, uint32_t value)
{
    auto const narrow = static_cast<uint16_t>(value);
    std::memcpy(Bytes_Of(params) + offset, &narrow, sizeof narrow);
}

ZVFormatParams* New_Video_Options()
{
    return New_Block(VideoOptionsSize);
}

ZVFormatParams* New_Audio_Options()
{
    return New_Block(AudioOptionsSize);
}

bool Upgrade_Video_Options(ZVClip* clip)
{
    if (!clip->VideoParams) return false;
    ZVFormatParams* made = Upgraded(clip->VideoParams, VideoOptionsSize, VIDEO_STREAMING, VideoOldEnd);
    if (made) Replace(clip->VideoParams, made, clip->AudioParams);
    return made != nullptr;
}

bool Upgrade_Audio_Options(ZVClip* clip)
{
    if (!clip->AudioParams) return false;
    ZVFormatParams* made = Upgraded(clip->AudioParams, AudioOptionsSize, AUDIO_STREAMING, AudioOldEnd);
    if (made) Replace(clip->AudioParams, made, clip->VideoParams);
    return made != nullptr;
}

bool Make_Video_Defaults(ZVClip* clip)
{
    if (clip->VideoParams) return Upgrade_Video_Options(clip);
    ZVFormatParams* params = New_Video_Options();
    if (!params) return false;
    uint32_t const codec = Is_Hinted(clip) ? DefaultStreamCodec : DefaultCodec;
    bool const hasAlpha = clip->AlphaType == ZV_ALPHA_CHANNEL && OS_Movie_Find_Codec(codec).hasAlpha;
    Set_Option(params, VIDEO_CODEC, codec);
    Set_Option16(params, VIDEO_DEPTH, hasAlpha ? 32 : 24);
    Set_Option(params, VIDEO_SPATIAL_QUALITY, NormalQuality);
    Set_Option(params, VIDEO_FRAME_RATE, Fixed_Rate(clip->FrameRate));
    Set_Option(params, IMAGE_VENDOR, DefaultVendor);
    clip->VideoParams = params;
    return true;
}

bool Make_Audio_Defaults(ZVClip* clip)
{
    if (clip->AudioParams) return Upgrade_Audio_Options(clip);
    ZVFormatParams* params = New_Audio_Options();
    if (!params) return false;
    ZVAudioFormat const format =
        Is_Sound_Format(clip->AudioFormat) ? clip->AudioFormat : ZVAudioFormat{44100, 2, 2, 0};
    Set_Option(params, AUDIO_CODEC, NoSoundCompression);
    Set_Option(params, AUDIO_SOUND_DESCRIPTION, SoundDescriptionSize);
    Set_Option16(params, AUDIO_CHANNELS, static_cast<uint32_t>(format.Channels));
    Set_Option16(params, AUDIO_SAMPLE_BITS, static_cast<uint32_t>(format.SampleSize * 8));
    Set_Option(params, AUDIO_RATE, static_cast<uint32_t>(std::min(format.Rate, 65535UL) << 16));
    clip->AudioParams = params;
    return true;
}

void Complete_Video_Options(ZVClip* clip)
{
    ZVFormatParams* params = clip->VideoParams;
    uint32_t const codec = Get_Option(params, VIDEO_CODEC);
    OSMovieCodec const known = OS_Movie_Find_Codec(codec);
    if (Is_Untouched(params)) {
        bool const hasAlpha = clip->AlphaType == ZV_ALPHA_CHANNEL && known.hasAlpha;
        Set_Option16(params, VIDEO_DEPTH, hasAlpha ? 32 : 24);
        Set_Option(params, VIDEO_FRAME_RATE, Fixed_Rate(clip->FrameRate));
    }
    uint32_t const depth = Get_Option16(params, VIDEO_DEPTH);
    Set_Option(params, IMAGE_SIZE, ImageDescriptionSize);
    Set_Option(params, IMAGE_CODEC, codec);
    Set_Option(params, IMAGE_TEMPORAL_QUALITY, Get_Option(params, VIDEO_TEMPORAL_QUALITY));
    Set_Option(params, IMAGE_SPATIAL_QUALITY, Get_Option(params, VIDEO_SPATIAL_QUALITY));
    Set_Option16(params, IMAGE_WIDTH, static_cast<uint32_t>(clip->Width));
    Set_Option16(params, IMAGE_WIDTH + 2, static_cast<uint32_t>(clip->Height));
    Set_Option(params, IMAGE_HORIZONTAL, Dots72);
    Set_Option(params, IMAGE_VERTICAL, Dots72);
    Set_Option(params, IMAGE_DATA_SIZE, static_cast<uint32_t>(clip->Width * clip->Height * depth / 8));
    Set_Option16(params, IMAGE_FRAMES, 1);
    std::size_t const length = std::min<std::size_t>(std::strlen(known.name), 31);
    std::memset(Bytes_Of(params) + IMAGE_NAME, 0, 32);
    Bytes_Of(params)[IMAGE_NAME] = static_cast<uint8_t>(length);
    std::memcpy(Bytes_Of(params) + IMAGE_NAME + 1, known.name, length);
    Set_Option16(params, IMAGE_DEPTH, depth);
    Set_Option16(params, IMAGE_COLOUR_TABLE, 0xFFFF);
}

// The dialogs that choose other settings belong to an interface; without one the defaults are what is chosen.

/// Settings of streaming: a container of one atom, the bytes that a packet holds at most. Big-endian, as
/// atoms are.
constexpr uint8_t StreamingSettings[] = {0, 0, 0, 44, 's', 'e', 'a', 'n', 0,  0,   0,   1,   0,   0,   0,
                                         1, 0, 0, 0,  0,   0,   0,   0,   24, 'p', 'k', 's', 'z', 0,   0,
                                         0, 1, 0, 0,  0,   0,   0,   0,   0,  0,   0,   0,   5,   0xAA};

/// The block with the usual settings behind it; the block itself when it has some. Null with error 1.
static ZVFormatParams* With_Streaming(ZVFormatParams* old, long size, long flagOffset)
{
    if (Get_Option(old, flagOffset)) return old;
    ZVFormatParams* made = New_Block(size + static_cast<long>(sizeof StreamingSettings));
    if (!made) return nullptr;
    std::memcpy(Bytes_Of(made), Bytes_Of(old), static_cast<std::size_t>(size));
    std::memcpy(Bytes_Of(made) + size, StreamingSettings, sizeof StreamingSettings);
    Set_Option(made, flagOffset, 1);
    Set_Option(made, flagOffset + 4, sizeof StreamingSettings);
    // Once an address, which only tells now that there is something.
    Set_Option(made, flagOffset + 8, static_cast<uint32_t>(size));
    return made;
}

long Quicktime_StreamingOptions(ZVClip* clip, bool)
{
    if (!clip->VideoParams && !clip->AudioParams) return 0;
    if (clip->VideoParams && !Upgrade_Video_Options(clip)) return 0;
    if (clip->AudioParams && !Upgrade_Audio_Options(clip)) return 0;
    ZVFormatParams* video = clip->VideoParams;
    ZVFormatParams* audio = clip->AudioParams;
    if (video) video = With_Streaming(video, VideoOptionsSize, VIDEO_STREAMING);
    if (audio) audio = With_Streaming(audio, AudioOptionsSize, AUDIO_STREAMING);
    if (!video != !clip->VideoParams || !audio != !clip->AudioParams) {
        if (video != clip->VideoParams) FreeMemZV(video);
        if (audio != clip->AudioParams) FreeMemZV(audio);
        return 0;
    }
    if (video) Replace(clip->VideoParams, video, clip->AudioParams);
    if (audio) Replace(clip->AudioParams, audio, clip->VideoParams);
    return 1;
}

void QuickTime_VideoOptions(ZVClip* clip, bool silent)
{
    bool const isNew = !clip->VideoParams;
    if (!Make_Video_Defaults(clip)) return;
    if (!isNew) Set_Option(clip->VideoParams, VIDEO_FRAME_RATE, Fixed_Rate(clip->FrameRate));
    if (!silent) Complete_Video_Options(clip);
}

void QuickTime_AudioOptions(ZVClip* clip, bool)
{
    Make_Audio_Defaults(clip);
}

void Video_Options_Stub(ZVClip* clip, bool)
{
    if (Make_Video_Defaults(clip) && Make_Audio_Defaults(clip)) Quicktime_StreamingOptions(clip, true);
}

void Audio_Options_Stub(ZVClip* clip, bool silent)
{
    Video_Options_Stub(clip, silent);
}

/// The mark, the component and the image description stay: they are filled in anew before they are used.
void QuickTime_ConvertEndianOptions(ZVClip* clip)
{
    if (Upgrade_Video_Options(clip)) {
        Swap_Option(clip->VideoParams, VIDEO_CODEC);
        Set_Option16(clip->VideoParams, VIDEO_DEPTH,
                     __builtin_bswap16(Get_Option16(clip->VideoParams, VIDEO_DEPTH)));
        for (long offset = VIDEO_SPATIAL_QUALITY; offset < VIDEO_IMAGE_DESCRIPTION; offset += 4)
            Swap_Option(clip->VideoParams, offset);
    }
    if (Upgrade_Audio_Options(clip)) Swap_Option(clip->AudioParams, AUDIO_CODEC);
}

MovieTimeScale Movie_Time_Scale(double rate)
{
    constexpr long largest = 100000;
    if (std::fabs(rate - 29.97) < 0.0001) return {1001, 30000};
    long duration = 1;
    for (; duration < largest; duration *= 10) {
        double const scaled = rate * static_cast<double>(duration);
        if (std::fabs(scaled - std::trunc(scaled + 0.0001)) <= 0.00001) break;
    }
    // With the same 0.0001 as in the test: a product just below a whole number must not lose one.
    return {duration, static_cast<long>(rate * static_cast<double>(duration) + 0.0001)};
}
