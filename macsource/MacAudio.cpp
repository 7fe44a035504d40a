// The sound output behind the player: two buffers that take turns, one being heard while the other is filled,
// and the level at which they are heard.
#include "ZVLibInternal.h"
#include "host/Sound.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <system_error>
#include <unistd.h>

namespace {

constexpr unsigned long dbuf_samples = 1024;  // frames of sound in a buffer
constexpr unsigned long dbuf_bytes = dbuf_samples * 4;
constexpr int32_t fullLevel = 256;

using FillFunc = void (*)(void* out, unsigned long bytes);

struct Output {
    ZVAudioFormat format{};
    FillFunc fill = nullptr;
    std::atomic<int32_t> level = fullLevel;  ///< set by the application while the channel plays

    // From here on the channel's thread is the only user while it plays.
    std::unique_ptr<std::array<std::array<uint8_t, dbuf_bytes>, 2>> buffers;
    std::size_t current = 0;  ///< the buffer being heard
    unsigned long heard = 0;  ///< bytes of it

    std::unique_ptr<HostSound> channel;
};

Output output;

int16_t At_Level(int16_t sample, int32_t level)
{
    return static_cast<int16_t>(
        std::clamp(int64_t{sample} * level >> 8, int64_t{INT16_MIN}, int64_t{INT16_MAX}));
}

int16_t Swapped(int16_t sample)
{
    return static_cast<int16_t>(__builtin_bswap16(static_cast<uint16_t>(sample)));
}

/// Copies 16-bit samples at the level.
void Copy_At_Level(uint8_t* out, uint8_t const* in, unsigned long bytes, int32_t level, bool isSwapped)
{
    if (level == fullLevel) {
        std::memcpy(out, in, bytes);
        return;
    }
    for (unsigned long i = 0; i + 1 < bytes; i += 2) {
        int16_t sample;
        std::memcpy(&sample, in + i, 2);
        sample = isSwapped ? Swapped(At_Level(Swapped(sample), level)) : At_Level(sample, level);
        std::memcpy(out + i, &sample, 2);
    }
}

/// The channel's call-back. A buffer that has been heard is filled again before the other one's turn comes,
/// so neither is ever late.
void Take_Output(void* out, unsigned long bytes)
{
    auto* target = static_cast<uint8_t*>(out);
    int32_t const level = output.level.load(std::memory_order_relaxed);
    bool const isSwapped = output.format.Flags & ZV_AUDIO_SWAPPED;
    while (bytes > 0) {
        auto& buffer = (*output.buffers)[output.current];
        unsigned long const part = std::min(bytes, dbuf_bytes - output.heard);
        Copy_At_Level(target, buffer.data() + output.heard, part, level, isSwapped);
        target += part;
        bytes -= part;
        output.heard += part;
        if (output.heard < dbuf_bytes) break;
        output.fill(buffer.data(), dbuf_bytes);
        output.current ^= 1;
        output.heard = 0;
    }
}

}  // namespace

void OSAudioSetFormat(ZVAudioFormat const* format)
{
    if (format) output.format = *format;
}

void OSAudioSetCallback(void (*fill)(void* out, unsigned long bytes))
{
    output.fill = fill;
}

long OSAudioInitPlayback()
{
    ZVAudioFormat const& format = output.format;
    bool const isStereo16 = format.SampleSize == 2 && format.Channels == 2;
    if (!output.fill || !isStereo16 || format.Rate < 1 || format.Rate > INT_MAX) return 0;
    OSAudioStop();
    try {
        output.buffers = std::make_unique<std::array<std::array<uint8_t, dbuf_bytes>, 2>>();
        output.channel = Open_Host_Sound({.rate = static_cast<int>(format.Rate),
                                          .isSwapped = (format.Flags & ZV_AUDIO_SWAPPED) != 0,
                                          .blockSize = dbuf_samples,
                                          .fill = Take_Output});
        return 1;
    } catch (std::bad_alloc const&) {
        OSAudioStop();
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
}

long OSAudioPreload()
{
    if (!output.buffers) return 0;
    output.current = 0;
    output.heard = 0;
    for (auto& buffer : *output.buffers)
        output.fill(buffer.data(), dbuf_bytes);
    return 1;
}

long OSAudioPlay()
{
    if (!output.channel) return 0;
    try {
        output.channel->Start();
        return 1;
    } catch (std::system_error const&) {  // no thread to be had
        return 0;
    }
}

void OSAudioStop()
{
    output.channel.reset();
    output.buffers.reset();
}

void OSAudioSetVolume(double volume)
{
    double const level = volume * fullLevel;
    output.level.store(level > 0 ? static_cast<int32_t>(std::min(level, 65535.0)) : 0,
                       std::memory_order_relaxed);
}

void OS_Beep()
{
    // The bell is the terminal's business; in a file or a pipe it would be rubbish.
    if (isatty(STDERR_FILENO)) {
        ssize_t const ignored = write(STDERR_FILENO, "\a", 1);
        static_cast<void>(ignored);
    }
}
