// Sounds for the application: the beep, and a sound file played from its start to its end.
#include "ZVPlayback.h"

#include "ZVClip.h"
#include "ZVLibInternal.h"
#include "foundation/HeapBlock.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>

namespace {

constexpr auto pollInterval = std::chrono::milliseconds(5);
constexpr double longestSeconds = 5.0;

using ClipHolder = std::unique_ptr<ZVClip, Released_By<FreeClipZV>>;
using AudioHolder = std::unique_ptr<ZVAudioBuffer, Released_By<FreeAudioBufferZV>>;

ClipHolder Open_Sound(char const* name)
{
    char directory[ZV_SPEC_SIZE], spec[ZV_SPEC_SIZE];
    if (!ZVEnv || !ZVEnv->homeDir || !GetPathZV(ZVEnv->homeDir, directory)) return nullptr;
    if (std::snprintf(spec, sizeof spec, "%s%s", directory, name) >= ZV_SPEC_SIZE) {
        SetError(ZV_ERR_NOT_FOUND);
        return nullptr;
    }
    return ClipHolder(OpenClipZV(spec, static_cast<TagItem*>(nullptr)));
}

/// All sound of a clip as the player takes it; null when it cannot be read.
AudioHolder Read_Sound(ZVClip& clip)
{
    if (!BeginClipIOZV(&clip, nullptr)) return nullptr;
    ZVAudioFormat const format{clip.AudioFormat.Rate, 2, 2, 0};
    ZVTimeValue const duration{static_cast<double>(clip.Frames), clip.FrameRate};
    ZVTimeValue const start{0.0, clip.FrameRate};
    AudioHolder buffer(AllocAudioBufferZV(&format, &duration));
    if (!buffer || !GetAudioZV(&clip, buffer.get(), &start)) buffer.reset();
    EndClipIOZV(&clip, nullptr);
    return buffer;
}

/// Plays for that long: the position rests on the last frame, so it does not tell when that has been heard.
void Play(ZVAudioBuffer& buffer, std::chrono::milliseconds duration)
{
    using Clock = std::chrono::steady_clock;
    long begin, end;
    long const offset = GetAudioBufferTimeOffsetZV();
    GetAudioPlaybackRegionZV(&begin, &end);
    SetAudioPlaybackBufferZV(&buffer);
    SetAudioBufferTimeOffsetZV(0);
    SetAudioPlaybackRegionZV(0, buffer.Samples);
    SetAudioPositionZV(0);
    if (StartAudioPlaybackZV(0)) {
        Clock::time_point const start = Clock::now();
        while (Clock::now() - start <= duration)
            std::this_thread::sleep_for(pollInterval);
        StopAudioPlaybackZV();
    }
    SetAudioPlaybackBufferZV(nullptr);
    SetAudioBufferTimeOffsetZV(offset);
    SetAudioPlaybackRegionZV(begin, end);
}

}  // namespace

long ZVCAudio::Beep(int)
{
    OS_Beep();
    return 1;
}

long ZVCAudio::PlayFile(char const* name)
{
    ClipHolder clip = name ? Open_Sound(name) : nullptr;
    if (!clip) return 0;
    AudioHolder const buffer = Read_Sound(*clip);
    double const seconds = clip->FrameRate > 0 ? static_cast<double>(clip->Frames) / clip->FrameRate : 0.0;
    clip.reset();
    if (!buffer) return 0;
    if (!GetAudioMuteStateZV())
        Play(*buffer, std::chrono::milliseconds(static_cast<long>(std::min(seconds, longestSeconds) * 1000)));
    return 1;
}
