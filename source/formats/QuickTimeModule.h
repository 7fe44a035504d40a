// What the files of the movie module share: the state of a clip, the stored blocks of options, the list of
// deep codecs, and the entries that write.
#pragma once

#include "FormatModule.h"
#include "MovieSeam.h"

/// ModuleData of a movie clip: one being read or one being written.
struct ZVQuickTimeState {
    OSMovie* Movie;         ///< owned, or null
    OSMovieOutput* Output;  ///< owned, or null
    OSMovieInfo Info;       ///< of Movie
    bool HasWritten;        ///< Output has got a frame or sound
    bool HasFailed;         ///< Output cannot become a movie any more
};

inline ZVQuickTimeState* State_Of_Movie(ZVClip const* clip)
{
    return static_cast<ZVQuickTimeState*>(clip->ModuleData);
}

/// Gives the clip a cleared state. Null with error 1.
ZVQuickTimeState* Attach_Movie_State(ZVClip* clip);

/// Frees the state. A movie being written is dropped, and its target stays as it was.
void Release_Movie(ZVClip* clip);

// ---- options ----------------------------------------------------------------------------------------------
//
// Applications keep these blocks in their own files, so their layout never changes. Numbers are in the byte
// order of the machine that wrote them, at any address.

inline constexpr uint32_t MovieOptionsMark = 0xFFFF0200;
inline constexpr long VideoOptionsSize = 144;
inline constexpr long AudioOptionsSize = 56;

/// Offsets in a block of video options.
enum VideoOption : long {
    VIDEO_CODEC = 4,
    VIDEO_DEPTH = 12,  ///< 16 bits
    VIDEO_SPATIAL_QUALITY = 14,
    VIDEO_TEMPORAL_QUALITY = 18,
    VIDEO_FRAME_RATE = 22,  ///< 16.16
    VIDEO_KEY_FRAME_RATE = 26,
    VIDEO_DATA_RATE = 30,
    VIDEO_IMAGE_DESCRIPTION = 46,
    VIDEO_STREAMING = 132,
    VIDEO_STREAMING_SIZE = 136
};

inline constexpr uint32_t NoSoundCompression = ZV_FourCC("NONE");
inline constexpr uint32_t RawSound = ZV_FourCC("raw ");  ///< the same

/// Settings of streaming: bytes of a packet, which the movie layer does not let us choose, and the most
/// milliseconds of sound in one.
inline constexpr long StreamPacketBytes = 1450;
inline constexpr long LongestPacket = 1000;

/// Offsets in a block of audio options.
enum AudioOption : long {
    AUDIO_CODEC = 4,
    AUDIO_SOUND_DESCRIPTION = 8,
    AUDIO_CHANNELS = 32,     ///< 16 bits
    AUDIO_SAMPLE_BITS = 34,  ///< 16 bits
    AUDIO_RATE = 40,         ///< 16.16
    AUDIO_STREAMING = 44,
    AUDIO_STREAMING_SIZE = 48
};

uint32_t Get_Option(ZVFormatParams const* params, long offset);
void Set_Option(ZVFormatParams* params, long offset, uint32_t value);
uint16_t Get_Option16(ZVFormatParams const* params, long offset);
void Set_Option16(ZVFormatParams* params, long offset, uint32_t value);

/// Bring the clip's block into the present form, whatever form it has: an older block, one that was cut
/// short, and one with more streaming settings than bytes. False without a block, and with error 1.
bool Upgrade_Video_Options(ZVClip* clip);
bool Upgrade_Audio_Options(ZVClip* clip);

/// A cleared block with the mark, not yet on the clip; null with error 1.
ZVFormatParams* New_Video_Options();
ZVFormatParams* New_Audio_Options();

/// Give the clip a block of defaults when it has none. False with error 1.
bool Make_Video_Defaults(ZVClip* clip);
bool Make_Audio_Defaults(ZVClip* clip);

/// Fills in what a block of defaults leaves to the clip that it is used for, and its image description.
void Complete_Video_Options(ZVClip* clip);

/// What the dialogs start from, by the clip's block, and what the user made of it.
ZVVideoChoice Video_Choice(ZVClip const* clip);
ZVSoundChoice Sound_Choice(ZVClip const* clip);
void Take_Video_Choice(ZVClip* clip, ZVVideoChoice const& choice);
void Take_Sound_Choice(ZVClip* clip, ZVSoundChoice const& choice);

/// Let the user choose, in the clip's block or in a new one. False when he gives up, and with error 1; the
/// clip is as it was then.
bool Ask_Video_Options(ZVClip* clip);
bool Ask_Audio_Options(ZVClip* clip);

/// Puts settings of streaming behind each block that there is; a block that has some keeps them unless they
/// are to be replaced. 0 without a block, and without memory (error 1), the blocks then being as they were.
long Set_Streaming(ZVClip* clip, long milliseconds, bool replaces);

/// Of sound in a packet, by the settings behind the blocks of a clip; 0 for the least.
long Stream_Packet_Milliseconds(ZVClip const* clip);

uint32_t Fixed_Rate(double rate);  ///< As blocks store it, 16.16.

void QuickTime_VideoOptions(ZVClip* clip, bool silent);
void QuickTime_AudioOptions(ZVClip* clip, bool silent);
void Video_Options_Stub(ZVClip* clip, bool silent);
void Audio_Options_Stub(ZVClip* clip, bool silent);
void QuickTime_ConvertEndianOptions(ZVClip* clip);

/// Frame duration and time scale for a rate.
struct MovieTimeScale {
    long duration, scale;
};
MovieTimeScale Movie_Time_Scale(double rate);

/// Whether output of this clip is a movie for streaming.
bool Is_Hinted(ZVClip const* clip);

// ---- deep codecs ------------------------------------------------------------------------------------------

/// Reads the list of deep codecs, and makes its file when there is none.
void Read_Codec_List();

/// 16 or 10 for a codec of the list, else 0.
long Listed_Codec_Depth(uint32_t codec);

/// Adds an extension to what the module reads: at most four characters, not yet there, and not of the list of
/// those that belong to others. False without memory.
bool AddExtension(char const* text, ZVFormatDesc* desc);

// ---- writing ----------------------------------------------------------------------------------------------

long QuickTime_Create(ZVClip* clip, unsigned long flags);
long QuickTime_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* region);
long QuickTime_AddAudio(ZVClip* clip, void* samples, unsigned long count);
void Finish_Movie(ZVClip* clip);
