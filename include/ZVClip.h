// Clips: movies, image sequences and single pictures behind one handle, read and written by time.
//
// A clip is opened from a file or created for writing, frame work is bracketed by BeginClipIOZV and
// EndClipIOZV, and frames go by time. Calls return non-zero (or a clip) for success, and 0 or null with the
// error number of ZVMemory.h. A clip is used by one thread at a time and has no lock; opening, creating and
// scratch names use buffers of the environment, so two threads must not do those at once.
#pragma once

#include "ZVAudio.h"
#include "ZVBitmap.h"
#include "ZVFile.h"
#include "ZVFormat.h"
#include "ZVList.h"
#include "ZVTags.h"
#include "ZVTime.h"

/// A run of the frame map: `Count` source frames from `Start` up, or for a negative Start `Count` scratch
/// frames from `Start` down.
struct ZVFrameRun {
    long Start;
    long Count;
};

/// A layer of a clip, named by its node. The fields behind AlphaStated belong to the module and are copied
/// with it.
struct ZVClipLayer {
    ::Node Node;
    long Width;
    long Height;
    long BitDepth;
    uint8_t AlphaType;
    uint8_t AlphaStated;  ///< a ZVAlphaStated: how the file says that colours and alpha belong together
    uint8_t Reserved[6];
    long User1;
    long User2;
};

/// Bits of ZVClip::Flags.
enum ZVClipFlag : unsigned long {
    ZV_CLIP_WRITING = 0x1,     ///< created, not opened
    ZV_CLIP_TIME_BLEND = 0x2,  ///< GetFrameZV averages the frames under the time span; set by the application
    ZV_CLIP_ALPHA_KNOWN =
        0x4,                 ///< alpha settings are final; without it the first frame read is used to guess
    ZV_CLIP_OPEN = 0x8,      ///< the module is open
    ZV_CLIP_IO = 0x10,       ///< between BeginClipIOZV and EndClipIOZV
    ZV_CLIP_NUMBERED = 0x20  ///< number the output file even for a clip of fewer than two frames
};

inline constexpr unsigned long ZV_MEDIA_VIDEO = 1;
inline constexpr unsigned long ZV_MEDIA_AUDIO = 2;

/// How the alpha of a clip is stored. In bitmaps read from a clip it is always straight, with full alpha
/// opaque.
enum ZVAlphaType : uint8_t { ZV_ALPHA_NONE = 0, ZV_ALPHA_LUMINANCE = 1, ZV_ALPHA_CHANNEL = 2 };

/// What a file says of a layer's alpha. Without a word the first frame is used to guess, as for whole clips.
enum ZVAlphaStated : uint8_t {
    ZV_ALPHA_STATED_NOTHING = 0,
    ZV_ALPHA_STATED_STRAIGHT = 1,
    ZV_ALPHA_STATED_PREMULTIPLIED = 2  ///< with black
};

struct ZVClip {
    ZVFormatDesc* Format;
    ZVFormatParams* VideoParams;  ///< owned
    ZVFormatParams* AudioParams;  ///< owned; may be the same block as VideoParams
    void* ModuleData;             ///< state of the module, from Open or Create to Close; never cloned
    char* FileName;               ///< owned spec; for an image sequence its mask
    unsigned long ClipID;         ///< unique in the process; names the scratch files
    long Width;
    long Height;
    long BitDepth;          ///< bits of a channel: 8, 10, 12, 16 or 32
    long Frames;            ///< frames presented; for output the number planned
    long RawFrames;         ///< frames in the source
    double FrameRate;       ///< presented rate; every time is converted with it
    double FileFrameRate;   ///< rate of the source; 1.25 times FrameRate under pull-down
    double BaseFrameRate;   ///< rate as found at open
    ZVTimeValue StartTime;  ///< time of frame 0
    unsigned long Flags;
    unsigned long Media;
    unsigned long CreateFlags;  ///< argument of CreateClipZV, for the module
    long Layer;                 ///< layer shown, from 1; 0 for the flat image
    long FullWidth;             ///< size before proxy reduction; 0 until set
    long FullHeight;
    uint8_t ProxyScale;  ///< reduction by the size tags: 0 none, 1 to 4 one half, third, quarter, eighth, 5
                         ///< full size
    long User1, User2, User3;  ///< the caller's; not cloned
    uint8_t AlphaType;
    uint8_t FileAlphaType;  ///< AlphaType as the module set it; not cloned
    uint8_t FieldOrder;
    uint8_t PullDown;         ///< 0, or the phase 1 to 5
    long AlphaInvert;         ///< non-zero: alpha is stored inverted
    long AlphaPremultiplied;  ///< non-zero: colours are mixed against the matte colour
    double MatteRed, MatteGreen, MatteBlue, MatteAlpha;
    double PixelAspect;        ///< width of a pixel over its height
    unsigned long Background;  ///< stands in for missing frames, 0xAARRGGBB
    unsigned long GBufferMask;
    unsigned long FrameDataMask;  ///< kinds of GetFrameDataZV that the module delivers
    ZVAudioFormat AudioFormat;
    long ClipMode;
    List Layers;           ///< of ZVClipLayer
    long FrameMapSize;     ///< capacity in runs
    long FrameMapUsed;     ///< runs in use
    long ScratchCount;     ///< highest scratch frame number
    ZVFrameRun* FrameMap;  ///< owned; null until the first edit
    long SequenceStart;    ///< file number of frame 0 in an output sequence
    long SequenceStep;
    long* SequenceNumbers;  ///< owned: file number of each frame, or null when frame i is file i
    long LastFrame;         ///< asked for last through GetFrameZV; -1 at first
    uint8_t* FrameSkip;     ///< the caller's, one byte a frame: non-zero reads nothing and succeeds
    ZVBitmap* FieldBitmap;  ///< half a frame, while writing under pull-down
    long Reserved3;
    ZVFormatDesc*
        OpenModule;  ///< whose Open or Create succeeded on this very record, until Close; never cloned
};

// ---- life of a clip ---------------------------------------------------------------------------------------

/// Tags of OpenClipZV; they also reach the module.
enum ZVOpenTag : unsigned long {
    ZV_OPEN_NO_SEQUENCE_DIALOG = 8192,  ///< take the sequence as found; data ignored
    ZV_OPEN_SINGLE_FRAME = 8193,        ///< no sequence scan: the file is one frame; data ignored
    ZV_OPEN_FRAME_RATE = 8194,          ///< double*: rate of the source
    ZV_OPEN_SOURCE_CLIP = 8195,         ///< ZVClip*: with the next tag, a layer of this clip
    ZV_OPEN_LAYER = 8196,               ///< layer number from 1
    ZV_OPEN_NO_ALPHA_GUESS = 8197,      ///< leave the alpha to the first frame read; data ignored
    ZV_OPEN_FORMAT = 8198               ///< char const*: four characters in place of the file's extension
};

/// An empty clip, for writing or for cloning into; null with error 1.
ZV_API ZVClip* NewClipZV();

/// Opens a file. Null with error 12 for no such file, 15 for no module, 1, 17, 18, 20, 21 or the module's
/// own.
ZV_API ZVClip* OpenClipZV(char const* spec, TagItem* tags);

/// Opens a closed clip again for reading, with all its settings as they are. A clip that was written, and
/// whose module did not count its frames, takes their number from the file.
ZV_API long OpenClipZV(ZVClip* clip, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest> ZVClip* OpenClipZV(char const* spec, Key first, Rest... rest)
{
    return OpenClipZV(spec, Tag_Array(first, rest...).data());
}
template <ZVTagKey Key, ZVTagValue... Rest> long OpenClipZV(ZVClip* clip, Key first, Rest... rest)
{
    return OpenClipZV(clip, Tag_Array(first, rest...).data());
}

/// Begins an output. The clip has its FileName; without Format the one of its extension is taken, or the
/// default one. Without any, error 15 and 0. What the clip still has open is closed first.
ZV_API long CreateClipZV(ZVClip* clip, unsigned long flags);

/// Ends the module's work, and I/O before it; all settings stay. The module's Close is called once for each
/// of its Open or Create that succeeded on this record: a clone of an open clip carries ZV_CLIP_OPEN without
/// one, and is closed without a call until BeginClipIOZV has opened the module for it.
ZV_API void CloseClipZV(ZVClip* clip);
ZV_API void FreeClipZV(ZVClip* clip);  ///< Ends everything, scratch frames included.

/// Copies a clip, into a new one for a null target. The target keeps its ClipID, ModuleData and FieldBitmap,
/// and never owns the source's scratch frames. A new clip is outside I/O; a target stays open and in I/O when
/// it has the same file open by the same module, and is closed first when it has another.
/// @return  the target; null with error 1 when memory runs out, an old target then unchanged
ZV_API ZVClip* CloneClipZV(ZVClip const* source, ZVClip* target);

/// Brackets frame work. The tags are not read. Beginning inside I/O, and ending outside it, calls no module.
ZV_API long BeginClipIOZV(ZVClip* clip, TagItem* tags);
ZV_API long EndClipIOZV(ZVClip* clip, TagItem* tags);  ///< Leaves I/O whatever it answers.
template <ZVTagKey Key, ZVTagValue... Rest> long BeginClipIOZV(ZVClip* clip, Key first, Rest... rest)
{
    return BeginClipIOZV(clip, Tag_Array(first, rest...).data());
}
template <ZVTagKey Key, ZVTagValue... Rest> long EndClipIOZV(ZVClip* clip, Key first, Rest... rest)
{
    return EndClipIOZV(clip, Tag_Array(first, rest...).data());
}

/// Tags of SetClipOptionsZV.
enum ZVClipTag : unsigned long {
    ZV_CLIP_FRAME_RATE = 4096,  ///< double*
    ZV_CLIP_FIELD_ORDER = 4097,
    ZV_CLIP_PULLDOWN = 4098,  ///< 0, or the phase 1 to 5; adjusts rates and frame count
    ZV_CLIP_ALPHA_TYPE = 4099,
    ZV_CLIP_ALPHA_INVERT = 4100,
    ZV_CLIP_ALPHA_PREMULTIPLIED = 4101,
    ZV_CLIP_MATTE_COLOR = 4102,   ///< double[4]: red, green, blue, alpha
    ZV_CLIP_PIXEL_ASPECT = 4103,  ///< double*
    ZV_CLIP_WIDTH = 4104,         ///< through ProxyScale
    ZV_CLIP_HEIGHT = 4105,        ///< through ProxyScale
    ZV_CLIP_FORMAT = 4106,        ///< char const*, four characters: the module with that extension
    ZV_CLIP_USER1 = 4107,
    ZV_CLIP_USER2 = 4108,
    ZV_CLIP_USER3 = 4109
};

ZV_API void SetClipOptionsZV(ZVClip* clip, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest> void SetClipOptionsZV(ZVClip* clip, Key first, Rest... rest)
{
    SetClipOptionsZV(clip, Tag_Array(first, rest...).data());
}

ZV_API ZVBitmapType
GetBitmapTypeZV(ZVClip const* clip);  ///< The RGBA type of BitDepth; 8 bits for any other.

/// A file name for a new output: `base` (null for none), sequence numbering when the format needs it,
/// extension.
/// @param out  ZV_SPEC_SIZE bytes
/// @return  `out`, empty with error 12 when the name does not fit; `base` without a clip or format, `out`
///          then empty
ZV_API char const* MakeDefaultClipNameZV(ZVClip* clip, char const* base, char* out);

/// Directory below which scratch frames lie, in "ZVScratch\" (in "ZVScratch2\" and so on for processes that
/// run beside the first one); null for the user data directory. Frames written already move along; when they
/// cannot, all stays as it was.
ZV_API void SetScratchDirZV(char const* spec);

// ---- reading ----------------------------------------------------------------------------------------------

/// The caller's hold on a long read.
struct AsyncParams {
    ZVPollFunc Poll = nullptr;
    long PollResult = 0;  ///< non-zero after a read: the caller gave up
};

/// Tags of GetFrameZV.
enum ZVFrameTag : unsigned long {
    ZV_FRAME_RECT =
        3840,  ///< ZVRectT<long>*: x and y are the point of the scaled frame that falls on pixel (0, 0)
    ZV_FRAME_WIDTH = 3841,   ///< width of the scaled frame; that of the bitmap when absent
    ZV_FRAME_HEIGHT = 3842,  ///< height of the scaled frame; that of the bitmap when absent
    ZV_FRAME_POLL = 3844     ///< ZVPollFunc
};

/// Reads the frame (or field, or average of frames) at a time into the bitmap, scaled, with straight alpha.
/// A time outside the clip gives its Background and success; what the frame does not cover becomes 0.
/// @param time      null for 0
/// @param duration  null for one frame
ZV_API long GetFrameZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time, ZVTimeValue const* duration,
                       TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest>
long GetFrameZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time, ZVTimeValue const* duration,
                Key first, Rest... rest)
{
    return GetFrameZV(clip, bitmap, time, duration, Tag_Array(first, rest...).data());
}

/// Fetches data of the kind `what` for the frame at a time from the module; 0 outside the clip.
ZV_API long GetFrameDataZV(ZVClip* clip, ZVTimeValue const* time, unsigned long what, void* buffer,
                           long size);

/// Finds the phase of pull-down and the field order of footage, and stores both in the clip, with the rates
/// and the frame count that follow. Reads up to 66 frames. 1 when the result is to be trusted; with 0 the
/// clip may have no pull-down: a phase is stored all the same.
ZV_API long GuessPullDownZV(ZVClip* clip);

// ---- writing and editing ----------------------------------------------------------------------------------

/// What writes a frame: the default one, or that of ZV_ADD_FUNCTION.
using ZVFrameWriter = long (*)(ZVClip*, ZVBitmap*, long frame, ZVRectT<long>* region, long noOverwrite,
                               void (*completion)(void*, unsigned long), void* data, unsigned long argument);

/// Tags of AddFrameZV.
enum ZVAddTag : unsigned long {
    ZV_ADD_RECT = 3845,        ///< ZVRectT<long>*: region for the module; the whole bitmap when absent
    ZV_ADD_TO_BITMAP = 3846,   ///< ZVBitmap*: deliver each finished frame here and write nothing
    ZV_ADD_FUNCTION = 3847,    ///< ZVFrameWriter
    ZV_ADD_COMPLETION = 3848,  ///< void (*)(void*, unsigned long): called when the frame has been taken
    ZV_ADD_COMPLETION_DATA = 3849,
    ZV_ADD_COMPLETION_ARGUMENT = 3850,
    ZV_ADD_FIRST_FRAME = 16384,    ///< number of the first frame of the run being written; 0
    ZV_ADD_LAST_FRAME = 16385,     ///< number past which the run ends; Frames
    ZV_ADD_FRAME_DIVISOR = 16386,  ///< divisor of the frame number; 1
    ZV_ADD_NO_OVERWRITE = 16387,   ///< refuse to write over a file of a sequence that is not empty
    ZV_ADD_USE_DIVISOR = 16388     ///< 0: ignore the divisor
};

/// Writes a frame to a created clip, converted to the clip's pixel type; the alpha convention is the module's
/// to apply. With the clip's PullDown set, frames come in order, have the clip's size and one type, and
/// become video frames. Both names are one operation.
///
/// Without a completion the bitmap is the caller's again when the call returns. With one it must stay as it
/// is until the completion runs: once for each frame that was taken, on any thread, perhaps before the call
/// returns. A call that answers 0 may have run it. A writer of ZV_ADD_FUNCTION keeps to the same rules. A
/// frame refused for ZV_ADD_NO_OVERWRITE leaves error number 0 behind.
ZV_API long AddFrameZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time, ZVTimeValue const* duration,
                       TagItem* tags);
ZV_API long PullDownClipZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time,
                           ZVTimeValue const* duration, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest>
long AddFrameZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time, ZVTimeValue const* duration,
                Key first, Rest... rest)
{
    return AddFrameZV(clip, bitmap, time, duration, Tag_Array(first, rest...).data());
}
template <ZVTagKey Key, ZVTagValue... Rest>
long PullDownClipZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time, ZVTimeValue const* duration,
                    Key first, Rest... rest)
{
    return PullDownClipZV(clip, bitmap, time, duration, Tag_Array(first, rest...).data());
}

/// Replaces a frame of any clip: the source file stays as it is, the pixels go to a scratch file. The bitmap
/// has the clip's size. With the clip's PullDown set the frame is a film frame, and what the video frames
/// around it show of it is replaced too. 0 outside the clip, and when the pixels cannot be stored: the clip
/// then shows what it showed before. `duration` and the tags are not read.
ZV_API long ModifyFrameZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time,
                          ZVTimeValue const* duration, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest>
long ModifyFrameZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time, ZVTimeValue const* duration,
                   Key first, Rest... rest)
{
    return ModifyFrameZV(clip, bitmap, time, duration, Tag_Array(first, rest...).data());
}

/// The same by frame number and without regard to pull-down. Answers 1 with error 1 when there is no memory
/// for a frame map: the frame then stays as it was.
ZV_API long ModifyFrame2(ZVClip* clip, unsigned long frame, ZVBitmap* bitmap, TagItem* tags);

/// Inserts an empty frame, which reads as Background until it is modified; refused at Frames and beyond.
/// Times ahead of the clip count as frame 0.
ZV_API long InsertFrameBeforeZV(ZVClip* clip, ZVTimeValue const* time);
ZV_API long InsertFrameAfterZV(ZVClip* clip, ZVTimeValue const* time);

/// Takes a frame out, by the same times. Its scratch file, if there is one, stays until the library ends.
ZV_API long DeleteFrameZV(ZVClip* clip, ZVTimeValue const* time);

// ---- alpha ------------------------------------------------------------------------------------------------

/// Straight alpha to the clip's convention, for writing. Works on the whole bitmaps, which must be of one
/// size and pixel type, or nothing happens; the rectangle is not read.
ZV_API void InterpretAlphaZV(ZVClip const* clip, ZVBitmap const* source, ZVBitmap* destination,
                             ZVRectT<long> const* rect);

/// The same into a native bitmap, for display.
ZV_API void InterpretAlphaZV(ZVClip const* clip, ZVBitmap const* source, ZVNativeBitmap* destination,
                             ZVRectT<long> const* rect);

/// The same for the fourth channel alone, whatever AlphaType says.
ZV_API void InterpretAlpha2ZV(ZVClip const* clip, ZVBitmap const* source, ZVBitmap* destination,
                              ZVRectT<long> const* rect);

/// Works out the alpha convention from frame 0, or from a frame in hand. A frame that cannot be read leaves
/// it open and answers 0.
ZV_API long GuessAlphaZV(ZVClip* clip);
ZV_API long GuessAlphaZV(ZVClip* clip, ZVBitmap const* bitmap);
