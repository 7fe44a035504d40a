// The files of an image sequence, as its module sees them: one at a time.
#pragma once

#include "ZVClip.h"

/// Whether each frame is a file of its own. The source's count decides, since editing changes Frames alone.
bool Is_Image_Sequence(ZVClip const* clip);

/// Puts the file of a frame in the place of the clip's mask for as long as this exists.
class FileOfFrame {
public:
    FileOfFrame(ZVClip* clip, long frame);
    ~FileOfFrame();
    FileOfFrame(FileOfFrame const&) = delete;
    FileOfFrame& operator=(FileOfFrame const&) = delete;

    bool Exists() const { return mask_ != nullptr; }

private:
    ZVClip* clip_;
    char* mask_ = nullptr;
};
