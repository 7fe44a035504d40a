// Sound in clips: sample formats, buffers, and reading and writing with conversion. A clip with sound has bit
// 2 in Media. Calls return 0 outside I/O, without sound, and with a module that does not offer it.
#pragma once

#include "ZVBase.h"
#include "ZVTime.h"

inline constexpr unsigned long ZV_AUDIO_UNSIGNED = 1;  ///< one byte a sample: 128 is silence
inline constexpr unsigned long ZV_AUDIO_SWAPPED = 2;  ///< two bytes a sample, opposite to the machine's order

/// Samples of one instant stand next to each other, left first: a frame of sound.
struct ZVAudioFormat {
    unsigned long Rate = 0;        ///< samples per second for each channel
    unsigned long SampleSize = 0;  ///< bytes of one sample of one channel: 1 or 2
    unsigned long Channels = 0;    ///< 1 or 2
    unsigned long Flags = 0;

    bool operator==(ZVAudioFormat const&) const = default;
};

struct ZVAudioBuffer {
    ZVAudioFormat Format;
    void* Data;    ///< block of AllocateResidentBlock, owned
    long Samples;  ///< frames of sound
};

/// A buffer for a duration, rounded to the nearest sample, or for a number of frames of sound. Its contents
/// are undefined. Null when it cannot be had, or for a format that has no size.
ZV_API ZVAudioBuffer* AllocAudioBufferZV(ZVAudioFormat const* format, ZVTimeValue const* duration);
ZV_API ZVAudioBuffer* AllocAudioBufferZV(ZVAudioFormat const* format, unsigned long samples);
ZV_API void FreeAudioBufferZV(ZVAudioBuffer* buffer);

/// Fills the buffer with the sound from a video frame, or from a time, on, converted to the buffer's format.
ZV_API long GetAudioZV(ZVClip* clip, ZVAudioBuffer* buffer, unsigned long frame);
ZV_API long GetAudioZV(ZVClip* clip, ZVAudioBuffer* buffer, ZVTimeValue const* time);

/// Appends the buffer to a clip being written, converted to the clip's format. 0 for a format without samples
/// of one or two bytes.
ZV_API long AddAudioZV(ZVClip* clip, ZVAudioBuffer const* buffer);

/// A cursor over the samples of a buffer that presents every format as signed 16-bit values.
class ZV_API conversion_stream {
public:
    virtual void Init(void* data, long samples, long channels) = 0;
    virtual void Advance() = 0;  ///< To the next frame of sound.

    /// Sample `channel` of the frame of sound `index` places on. Past the buffer's last sample it is the one
    /// at last + (channel - 1), but never outside the buffer.
    virtual long Get(unsigned long index, unsigned long channel) const = 0;

    /// Stores a value in the element `offset` places behind the cursor.
    virtual void Set(unsigned long offset, long value) = 0;

    virtual ~conversion_stream() = default;

    long GetLeft(unsigned long index) const { return Get(index, 0); }
    long GetRight(unsigned long index) const { return Get(index, static_cast<unsigned long>(channels) - 1); }

    /// Both channels at once; one channel gets their mean.
    void Set(unsigned long index, long left, long right)
    {
        if (channels == 1) {
            Set(index, (left + right) / 2);
        } else {
            Set(index, left);
            Set(index + 1, right);
        }
    }

    long channels = 0;
    long samples = 0;
    void* current = nullptr;  ///< the frame of sound at the cursor
    void* last = nullptr;     ///< the buffer's last sample
};

/// The stream that fits the buffer's format, to be deleted by the caller; null for another sample size than 1
/// or 2.
ZV_API conversion_stream* new_stream(ZVAudioBuffer const& buffer);
