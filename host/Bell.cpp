#include "Bell.h"

#include "Sound.h"

#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>

namespace {

constexpr int Rate = 44100;
constexpr int Length = Rate / 8;   // frames
constexpr int Silence = Rate / 2;  // frames behind it that the output surely holds
constexpr double Pitch = 880, Loudness = 6000;

/// The frame to play next. A process has one bell.
std::atomic<int> position = Length + Silence;

void Fill(void* out, unsigned long bytes)
{
    auto* to = static_cast<unsigned char*>(out);
    int const frames = static_cast<int>(bytes / 4);
    int const first = position.load();
    for (int i = 0; i < frames; ++i, to += 4) {
        int16_t sample = 0;
        if (int const at = first + i; at < Length) {
            double const fade = 1.0 - static_cast<double>(at) / Length;
            sample = static_cast<int16_t>(
                std::lround(Loudness * fade * std::sin(2 * std::numbers::pi * Pitch * at / Rate)));
        }
        std::memcpy(to, &sample, sizeof sample);
        std::memcpy(to + 2, &sample, sizeof sample);
    }
    // A ring in between starts anew.
    int expected = first;
    if (first < Length + Silence) position.compare_exchange_strong(expected, first + frames);
}

}  // namespace

Bell::Bell() = default;
Bell::~Bell() = default;

void Bell::Ring()
{
    position = 0;
    if (sound_) return;
    sound_ = Open_Host_Sound({.rate = Rate, .isSwapped = false, .blockSize = 512, .fill = Fill});
    sound_->Start();
}

void Bell::Tidy()
{
    if (sound_ && position >= Length + Silence) sound_.reset();
}
