// The stored blocks of movie options: their layout, upgrading, defaults and byte order.
//   video    0 mark   4 codec   8 component   12 depth, 2 bytes   14 spatial quality   18 temporal quality
//           22 frame rate   26 key frame rate   30 data rate, 16 bytes   46 image description, 86 bytes
//          132 has streaming settings   136 their size   140 their address   144 the settings
//   audio    0 mark   4 codec   8 sound description, 36 bytes   44, 48, 52 as above   56 the settings
#include "QuickTimeModule.h"

#include "foundation/BigEndian.h"

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
constexpr uint32_t DepthWithAlpha = 32, DepthWithoutAlpha = 24;

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

/// Fills in the sound description.
void Describe_Sound(ZVFormatParams* params, ZVAudioFormat const& format)
{
    Set_Option(params, AUDIO_SOUND_DESCRIPTION, SoundDescriptionSize);
    Set_Option16(params, AUDIO_CHANNELS, static_cast<uint32_t>(format.Channels));
    Set_Option16(params, AUDIO_SAMPLE_BITS, static_cast<uint32_t>(format.SampleSize * 8));
    Set_Option(params, AUDIO_RATE, static_cast<uint32_t>(std::min(format.Rate, 65535UL) << 16));
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

uint32_t Fixed_Rate(double rate)
{
    return rate > 0 ? static_cast<uint32_t>(std::llround(std::min(rate, 32767.0) * 65536.0)) : 0;
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
    Set_Option16(params, VIDEO_DEPTH, hasAlpha ? DepthWithAlpha : DepthWithoutAlpha);
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
    Describe_Sound(params, format);
    clip->AudioParams = params;
    return true;
}

/// Of the pictures of a movie to be written.
static uint32_t Depth_Of(ZVClip const* clip)
{
    ZVFormatParams const* params = clip->VideoParams;
    if (!Is_Untouched(params)) return Get_Option16(params, VIDEO_DEPTH);
    bool const hasAlpha =
        clip->AlphaType == ZV_ALPHA_CHANNEL && OS_Movie_Find_Codec(Get_Option(params, VIDEO_CODEC)).hasAlpha;
    return hasAlpha ? DepthWithAlpha : DepthWithoutAlpha;
}

/// Fills in the image description from the block and its clip.
static void Describe_Image(ZVClip* clip)
{
    ZVFormatParams* params = clip->VideoParams;
    uint32_t const codec = Get_Option(params, VIDEO_CODEC), depth = Get_Option16(params, VIDEO_DEPTH);
    OSMovieCodec const known = OS_Movie_Find_Codec(codec);
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

void Complete_Video_Options(ZVClip* clip)
{
    ZVFormatParams* params = clip->VideoParams;
    if (Is_Untouched(params)) {
        Set_Option16(params, VIDEO_DEPTH, Depth_Of(clip));
        Set_Option(params, VIDEO_FRAME_RATE, Fixed_Rate(clip->FrameRate));
    }
    Describe_Image(clip);
}

ZVVideoChoice Video_Choice(ZVClip const* clip)
{
    ZVFormatParams const* params = clip->VideoParams;
    double const rate =
        clip->FrameRate > 0 ? clip->FrameRate : Get_Option(params, VIDEO_FRAME_RATE) / 65536.0;
    return {Get_Option(params, VIDEO_CODEC),
            static_cast<long>(Depth_Of(clip)),
            static_cast<long>(Get_Option(params, VIDEO_SPATIAL_QUALITY)),
            static_cast<long>(Get_Option(params, VIDEO_KEY_FRAME_RATE)),
            static_cast<long>(Get_Option(params, VIDEO_DATA_RATE)),
            rate,
            clip->PullDown != 0,  // the movie has the rate of the file then
            Is_Hinted(clip)};
}

void Take_Video_Choice(ZVClip* clip, ZVVideoChoice const& choice)
{
    ZVFormatParams* params = clip->VideoParams;
    if (!choice.HasFixedRate) clip->FrameRate = choice.FrameRate;
    Set_Option(params, VIDEO_CODEC, choice.Codec);
    Set_Option16(params, VIDEO_DEPTH, static_cast<uint32_t>(choice.Depth));
    Set_Option(params, VIDEO_SPATIAL_QUALITY, static_cast<uint32_t>(choice.Quality));
    Set_Option(params, VIDEO_TEMPORAL_QUALITY, static_cast<uint32_t>(choice.Quality));
    Set_Option(params, VIDEO_FRAME_RATE, Fixed_Rate(clip->FrameRate));
    Set_Option(params, VIDEO_KEY_FRAME_RATE, static_cast<uint32_t>(choice.KeyFrameInterval));
    Set_Option(params, VIDEO_DATA_RATE, static_cast<uint32_t>(choice.BytesPerSecond));
    Describe_Image(clip);
}

ZVSoundChoice Sound_Choice(ZVClip const* clip)
{
    ZVFormatParams const* params = clip->AudioParams;
    uint32_t const codec = Get_Option(params, AUDIO_CODEC);
    ZVAudioFormat format = clip->AudioFormat;
    if (!Is_Sound_Format(format)) {
        format.Rate = Get_Option(params, AUDIO_RATE) >> 16;
        format.Channels = Get_Option16(params, AUDIO_CHANNELS);
        format.SampleSize = Get_Option16(params, AUDIO_SAMPLE_BITS) / 8u;
    }
    return {codec == NoSoundCompression || codec == RawSound ? 0 : codec, format, Is_Hinted(clip)};
}

void Take_Sound_Choice(ZVClip* clip, ZVSoundChoice const& choice)
{
    clip->AudioFormat = choice.Format;
    Set_Option(clip->AudioParams, AUDIO_CODEC, choice.Codec);
    Describe_Sound(clip->AudioParams, choice.Format);
}

// ---- streaming --------------------------------------------------------------------------------------------
//
// Settings of streaming are a container of atoms, each with its size, type, id, count of children and a
// value. Big-endian, as atoms are.

namespace {

constexpr long ContainerSize = 20, AtomSize = 24, ValueOffset = 20;
constexpr uint32_t ContainerType = ZV_FourCC("sean");
constexpr uint32_t PacketBytesType = ZV_FourCC("pksz"), PacketTimeType = ZV_FourCC("pkms");

void Put_Atom(uint8_t* at, long size, uint32_t type, uint16_t children)
{
    Store_Big32(at, static_cast<uint32_t>(size));
    Store_Big32(at + 4, type);
    Store_Big32(at + 8, 1);
    Store_Big16(at + 14, children);
}

void Put_Value(uint8_t* at, uint32_t type, long value)
{
    Put_Atom(at, AtomSize, type, 0);
    Store_Big32(at + ValueOffset, static_cast<uint32_t>(value));
}

/// The block with settings behind it in place of those that it has. Null with error 1.
ZVFormatParams* With_Streaming(ZVFormatParams const* old, long size, long flagOffset, long milliseconds)
{
    uint16_t const count = milliseconds > 0 ? 2 : 1;
    long const settingsSize = ContainerSize + count * AtomSize;
    ZVFormatParams* made = New_Block(size + settingsSize);
    if (!made) return nullptr;
    std::memcpy(Bytes_Of(made), old->Data, static_cast<std::size_t>(size));
    uint8_t* const settings = Bytes_Of(made) + size;
    Put_Atom(settings, settingsSize, ContainerType, count);
    Put_Value(settings + ContainerSize, PacketBytesType, StreamPacketBytes);
    if (count == 2) Put_Value(settings + ContainerSize + AtomSize, PacketTimeType, milliseconds);
    Set_Option(made, flagOffset, 1);
    Set_Option(made, flagOffset + 4, static_cast<uint32_t>(settingsSize));
    // Once an address, which only tells now that there is something.
    Set_Option(made, flagOffset + 8, static_cast<uint32_t>(size));
    return made;
}

/// Whether a block, of whatever form, has settings behind it.
bool Has_Streaming(ZVFormatParams const* params, long size, long flagOffset)
{
    return params && params->Data && params->Size >= size && Get_Option(params, 0) == MovieOptionsMark &&
           Get_Option(params, flagOffset) && Get_Option(params, flagOffset + 4) <= params->Size - size;
}

/// The time of a packet in the settings behind a block; 0 when they do not tell.
long Packet_Time(ZVFormatParams const* params, long size, long flagOffset)
{
    long const end = size + static_cast<long>(Get_Option(params, flagOffset + 4));
    auto const* const bytes = static_cast<uint8_t const*>(params->Data);
    for (long at = size + ContainerSize; at + AtomSize <= end;) {
        uint32_t const length = Load_Big32(bytes + at);
        if (Load_Big32(bytes + at + 4) == PacketTimeType)
            return static_cast<long>(std::min(Load_Big32(bytes + at + ValueOffset), uint32_t{LongestPacket}));
        if (length < 8) break;
        at += length;
    }
    return 0;
}

}  // namespace

long Stream_Packet_Milliseconds(ZVClip const* clip)
{
    if (Has_Streaming(clip->VideoParams, VideoOptionsSize, VIDEO_STREAMING))
        return Packet_Time(clip->VideoParams, VideoOptionsSize, VIDEO_STREAMING);
    if (Has_Streaming(clip->AudioParams, AudioOptionsSize, AUDIO_STREAMING))
        return Packet_Time(clip->AudioParams, AudioOptionsSize, AUDIO_STREAMING);
    return 0;
}

long Set_Streaming(ZVClip* clip, long milliseconds, bool replaces)
{
    if (!clip->VideoParams && !clip->AudioParams) return 0;
    if (clip->VideoParams && !Upgrade_Video_Options(clip)) return 0;
    if (clip->AudioParams && !Upgrade_Audio_Options(clip)) return 0;
    ZVFormatParams* video = clip->VideoParams;
    ZVFormatParams* audio = clip->AudioParams;
    if (video && (replaces || !Get_Option(video, VIDEO_STREAMING)))
        video = With_Streaming(video, VideoOptionsSize, VIDEO_STREAMING, milliseconds);
    if (audio && (replaces || !Get_Option(audio, AUDIO_STREAMING)))
        audio = With_Streaming(audio, AudioOptionsSize, AUDIO_STREAMING, milliseconds);
    if (!video != !clip->VideoParams || !audio != !clip->AudioParams) {
        if (video != clip->VideoParams) FreeMemZV(video);
        if (audio != clip->AudioParams) FreeMemZV(audio);
        return 0;
    }
    if (video) Replace(clip->VideoParams, video, clip->AudioParams);
    if (audio) Replace(clip->AudioParams, audio, clip->VideoParams);
    return 1;
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
