// The player: it takes sound out of a buffer in memory, frame by frame, for the machine's output.
#include "ZVPlayback.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

constexpr auto relaxed = std::memory_order_relaxed;
constexpr unsigned long normalFrequency = 0x10000;

// What the output's thread shares with the application's. Each is one word on its own and needs no order:
// `source` and `source_total` change only while no channel is open.
std::atomic<std::uint32_t const*> source = nullptr;  // frames of sound, both channels in one word
std::atomic<long> source_total = 0;
std::atomic<long> play_begin = 0, play_end = 0;
std::atomic<long> play_position = 0;
std::atomic<long> source_latency = 0;  // how far the filled output buffers run ahead of play_position
std::atomic<long> buffer_offset = 0;
std::atomic<unsigned long> current_freq = 0;  // 16.16 fixed point
std::atomic<long> looping = 0;

// The application's alone.
ZVAudioBuffer* source_buffer = nullptr;
double current_volume = 1.0;
long muted = 0;
long playing = 0;

struct Region {
    long begin, end;
    bool isLooping;

    bool Contains(long position) const { return position >= begin && position < end; }

    /// The position that counts for one that may lie outside.
    long Normalise(long position) const
    {
        if (begin >= end) return 0;
        if (!isLooping) return std::clamp(position, begin, end - 1);
        __int128 const length = static_cast<__int128>(end) - begin;
        __int128 const way = (static_cast<__int128>(position) - begin) % length;
        return static_cast<long>(begin + (way < 0 ? way + length : way));
    }
};

Region Current_Region()
{
    return {play_begin.load(relaxed), play_end.load(relaxed), looping.load(relaxed) != 0};
}

// Sums that wrap around: a position beyond the end of the numbers is outside any region, and no more than
// that.
long Add(long a, unsigned long b)
{
    return static_cast<long>(static_cast<unsigned long>(a) + b);
}
long Subtract(long a, long b)
{
    return static_cast<long>(static_cast<unsigned long>(a) - static_cast<unsigned long>(b));
}

/// The frames of a buffer as they lie on the time line.
struct Source {
    std::uint32_t const* frames = source.load(relaxed);
    long total = source_total.load(relaxed);
    long offset = buffer_offset.load(relaxed);

    std::uint32_t At(long position) const
    {
        if (!frames || total < 1) return 0;
        if (position < offset) return frames[0];
        unsigned long const index = static_cast<unsigned long>(position) - static_cast<unsigned long>(offset);
        return frames[std::min(index, static_cast<unsigned long>(total) - 1)];
    }
};

double Current_Level()
{
    return muted ? 0.0 : current_volume;
}

/// Fills the output buffers from the position on, which stays where it is.
bool Preload()
{
    long const start = play_position.load(relaxed);
    source_latency.store(0, relaxed);
    bool const isFilled = OSAudioPreload();
    // The way that was covered, not a place: in a loop it can end ahead of where it began.
    long way = Subtract(play_position.load(relaxed), start);
    if (way < 0) {
        Region const region = Current_Region();
        way = Add(way, static_cast<unsigned long>(Subtract(region.end, region.begin)));
    }
    source_latency.store(way, relaxed);
    play_position.store(start, relaxed);
    return isFilled;
}

}  // namespace

void read_source(void* out, unsigned long bytes)
{
    Region const region = Current_Region();
    Source const sound;
    unsigned long const frequency = current_freq.load(relaxed);
    long const latency = source_latency.load(relaxed);
    long const start = play_position.load(relaxed);
    long base = Add(start, static_cast<unsigned long>(latency));
    unsigned long way = 0;  // from `base`, in 16.16 fixed point
    bool isAtEnd = false;
    auto* word = static_cast<char*>(out);
    unsigned long const count = bytes / 4;
    for (unsigned long i = 0; i < count; ++i, word += 4, way += frequency) {
        long position = Add(base, way >> 16);
        if (!region.Contains(position)) {
            isAtEnd = !region.isLooping && position >= region.end;
            base = position = region.Normalise(position);
            way = 0;
        }
        std::uint32_t const frame = sound.At(position);
        std::memcpy(word, &frame, sizeof frame);
    }
    // Once the output has been filled to the end, what is heard still has the latency to go.
    long const end = isAtEnd ? Add(start, count * frequency >> 16) : Subtract(Add(base, way >> 16), latency);
    play_position.store(region.Normalise(end), relaxed);
}

long SetAudioPlaybackBufferZV(ZVAudioBuffer* buffer)
{
    if (buffer && buffer->Data == source.load(relaxed) && buffer->Samples == source_total.load(relaxed))
        return 1;
    StopAudioPlaybackZV();
    source_buffer = buffer;
    source.store(buffer ? static_cast<std::uint32_t const*>(buffer->Data) : nullptr, relaxed);
    source_total.store(buffer ? buffer->Samples : 0, relaxed);
    if (!buffer) return 0;
    OSAudioSetFormat(&buffer->Format);
    OSAudioSetCallback(read_source);
    current_freq.store(normalFrequency, relaxed);
    return 1;
}

ZVAudioBuffer* GetAudioPlaybackBufferZV()
{
    return source_buffer;
}

long StartAudioPlaybackZV(long loop)
{
    if (!source.load(relaxed)) return 0;
    if (playing) return 1;
    if (!OSAudioInitPlayback()) return 0;
    if (Preload()) {
        OSAudioSetVolume(Current_Level());
        playing = OSAudioPlay() ? 1 : 0;
    }
    if (!playing) {
        OSAudioStop();
        return 0;
    }
    looping.store(loop, relaxed);
    return 1;
}

void StopAudioPlaybackZV()
{
    if (std::exchange(playing, 0)) OSAudioStop();
}

long AudioIsPlayingZV()
{
    return playing;
}

void SetAudioPlaybackRegionZV(long begin, long end)
{
    if (begin == play_begin.load(relaxed) && end == play_end.load(relaxed)) return;
    play_begin.store(std::min(begin, end), relaxed);
    play_end.store(std::max(begin, end), relaxed);
    SetAudioPositionZV(GetAudioPositionZV());
}

void GetAudioPlaybackRegionZV(long* begin, long* end)
{
    if (begin) *begin = play_begin.load(relaxed);
    if (end) *end = play_end.load(relaxed);
}

void SetAudioPositionZV(long position)
{
    play_position.store(Current_Region().Normalise(position), relaxed);
}

long GetAudioPositionZV()
{
    return play_position.load(relaxed);
}

void SetAudioBufferTimeOffsetZV(long offset)
{
    buffer_offset.store(offset, relaxed);
}

long GetAudioBufferTimeOffsetZV()
{
    return buffer_offset.load(relaxed);
}

void SetAudioFrequencyZV(double speed)
{
    double const fixed = 65536.0 * speed;
    // Compared so that what is no number counts as 0.
    current_freq.store(fixed > 0 ? static_cast<unsigned long>(std::min(fixed, 4294967295.0)) : 0, relaxed);
}

double GetAudioFrequencyZV()
{
    return static_cast<double>(current_freq.load(relaxed) >> 16);
}

void SetAudioVolumeZV(double volume)
{
    current_volume = volume;
    if (playing && !muted) OSAudioSetVolume(volume);
}

double GetAudioVolumeZV()
{
    return current_volume;
}

void MuteAudioZV(long mute)
{
    if (mute == muted) return;
    muted = mute;
    if (playing) OSAudioSetVolume(Current_Level());
}

long GetAudioMuteStateZV()
{
    return muted;
}
