// The sound of a clip, read sample by sample.
#pragma once

#include "Job.h"

#include <vector>

struct AudioBufferDeleter {
    void operator()(ZVAudioBuffer* buffer) const { FreeAudioBufferZV(buffer); }
};
using AudioBufferHandle = std::unique_ptr<ZVAudioBuffer, AudioBufferDeleter>;

bool Has_Sound(ZVClip const* clip);

/// Reads the sound of a clip in order, in the clip's own format.
class SoundReader {
public:
    /// @param start  seconds into the clip
    SoundReader(ZVClip* clip, std::string const& path, double start);

    ZVAudioFormat const& Format() const { return clip_->AudioFormat; }
    long long Length() const;  ///< frames of sound that lie ahead

    /// The frames of sound up to `seconds` behind the start; silence behind the end. Null when there are
    /// none. Throws a JobError.
    AudioBufferHandle Read_Until(double seconds);

    /// The next frames of sound, null at the end.
    AudioBufferHandle Read(long long most);

private:
    ZVClip* clip_;
    std::string path_;
    long long first_;
    long long next_;
};
