// The machine's sound output: a channel that takes 16-bit stereo sound at its own pace.
#pragma once

#include <memory>

/// Fills a block of output with frames of sound of four bytes. Runs on a thread of the channel's own.
using HostSoundFill = void (*)(void* out, unsigned long bytes);

struct HostSoundRequest {
    int rate;                  ///< frames a second, above 0
    bool isSwapped;            ///< samples have the opposite byte order
    unsigned short blockSize;  ///< frames that are asked for at once
    HostSoundFill fill;
};

/// An open channel, silent until it is started. Deleting it stops the output at once and waits for a call of
/// `fill` that runs.
class HostSound {
public:
    virtual ~HostSound() = default;
    virtual void Start() = 0;
};

/// Opens the default output. On a machine that has none, or whose output cannot be had, sound goes nowhere at
/// the pace at which it would be heard.
std::unique_ptr<HostSound> Open_Host_Sound(HostSoundRequest const& request);
