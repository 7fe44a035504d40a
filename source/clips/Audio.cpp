// Sound of clips: buffers, and reading and writing through the module.
#include "ZVAudio.h"

#include "AudioConvert.h"
#include "AudioStream.h"

#include "ZVClip.h"
#include "ZVLibInternal.h"
#include "foundation/HeapBlock.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

namespace {

using AudioBufferHolder = std::unique_ptr<ZVAudioBuffer, Released_By<FreeAudioBufferZV>>;

/// Bytes of the samples; -1 when there are too many to count.
long Size_Of(ZVAudioFormat const& format, double samples)
{
    double const bytes =
        samples * static_cast<double>(format.SampleSize) * static_cast<double>(format.Channels);
    return bytes >= 0 && bytes < 0x1p40 ? static_cast<long>(bytes) : -1;
}

/// Truncated into the range of unsigned 32 bits.
unsigned long Truncate32(double value)
{
    return value >= 4294967295.0 ? 4294967295UL : value > 0 ? static_cast<unsigned long>(value) : 0;
}

bool Can_Do_Audio(ZVClip const* clip, bool hasEntry)
{
    return (clip->Flags & ZV_CLIP_IO) && (clip->Media & ZV_MEDIA_AUDIO) && hasEntry;
}

/// A buffer in the clip's format for as long as `buffer` lasts.
AudioBufferHolder Work_Buffer(ZVClip const* clip, ZVAudioBuffer const* buffer)
{
    ZVTimeValue const duration{static_cast<double>(buffer->Samples),
                               static_cast<double>(buffer->Format.Rate)};
    return AudioBufferHolder(AllocAudioBufferZV(&clip->AudioFormat, &duration));
}

template <typename Format> conversion_stream* Make_Stream()
{
    return new (std::nothrow) T_stream<Format>;
}

conversion_stream* Make_Stream_For(ZVAudioFormat const& format)
{
    if (format.SampleSize == 1)
        return format.Flags & ZV_AUDIO_UNSIGNED ? Make_Stream<AudioUnsigned8>() : Make_Stream<AudioSigned8>();
    if (format.SampleSize == 2)
        return format.Flags & ZV_AUDIO_SWAPPED ? Make_Stream<AudioSwapped16>() : Make_Stream<AudioSigned16>();
    return nullptr;
}

}  // namespace

ZVAudioBuffer* AllocAudioBufferZV(ZVAudioFormat const* format, ZVTimeValue const* duration)
{
    double const samples = std::nearbyint(static_cast<double>(format->Rate) * Get_Time(duration));
    long const size = Size_Of(*format, samples);
    if (size < 0 || format->SampleSize == 0 || format->Channels == 0) return nullptr;
    void* const record = AllocMemZV(sizeof(ZVAudioBuffer), ZV_MEM_CLEAR);
    void* const data = AllocateResidentBlock(size, false);
    if (!data) {
        FreeMemZV(record);
        return nullptr;
    }
    return new (record) ZVAudioBuffer{*format, data, static_cast<long>(samples)};
}

ZVAudioBuffer* AllocAudioBufferZV(ZVAudioFormat const* format, unsigned long samples)
{
    ZVTimeValue const duration{static_cast<double>(samples), static_cast<double>(format->Rate)};
    return AllocAudioBufferZV(format, &duration);
}

void FreeAudioBufferZV(ZVAudioBuffer* buffer)
{
    if (!buffer) return;
    DeallocateResidentBlock(buffer->Data, Size_Of(buffer->Format, static_cast<double>(buffer->Samples)),
                            false);
    FreeMemZV(buffer);
}

long GetAudioZV(ZVClip* clip, ZVAudioBuffer* buffer, unsigned long frame)
{
    if (!clip) return 0;
    ZVTimeValue const time{static_cast<double>(frame), clip->FrameRate};
    return GetAudioZV(clip, buffer, &time);
}

long GetAudioZV(ZVClip* clip, ZVAudioBuffer* buffer, ZVTimeValue const* time)
{
    if (!clip || !buffer || !Can_Do_Audio(clip, clip->Format && clip->Format->GetAudio)) return 0;
    ZVTimeValue const moment = time ? *time : ZVTimeValue{};
    unsigned long const frame =
        Truncate32((Get_Time(&moment) - Get_Time(&clip->StartTime)) * clip->FrameRate + 1e-7);
    if (frame >= static_cast<unsigned long>(std::max(clip->RawFrames, 0L))) return 0;
    auto const product = static_cast<uint32_t>(frame) * static_cast<uint32_t>(clip->AudioFormat.Rate);
    unsigned long const first = Truncate32(static_cast<double>(product) / clip->FrameRate);
    auto const count = static_cast<unsigned long>(buffer->Samples);
    if (buffer->Format == clip->AudioFormat) return clip->Format->GetAudio(clip, buffer->Data, first, count);

    AudioBufferHolder const work = Work_Buffer(clip, buffer);
    if (!work) return 0;
    if (!clip->Format->GetAudio(clip, work->Data, first, static_cast<unsigned long>(work->Samples))) return 0;
    return Convert_Audio(*work, *buffer);
}

long AddAudioZV(ZVClip* clip, ZVAudioBuffer const* buffer)
{
    if (!clip || !buffer || !Can_Do_Audio(clip, clip->Format && clip->Format->AddAudio)) return 0;
    if (buffer->Format == clip->AudioFormat)
        return clip->Format->AddAudio(clip, buffer->Data, static_cast<unsigned long>(buffer->Samples));
    AudioBufferHolder const work = Work_Buffer(clip, buffer);
    if (!work || !Convert_Audio(*buffer, *work)) return 0;
    return clip->Format->AddAudio(clip, work->Data, static_cast<unsigned long>(work->Samples));
}

conversion_stream* new_stream(ZVAudioBuffer const& buffer)
{
    conversion_stream* const stream = Make_Stream_For(buffer.Format);
    if (stream) stream->Init(buffer.Data, buffer.Samples, static_cast<long>(buffer.Format.Channels));
    return stream;
}
