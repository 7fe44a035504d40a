// The files of an image sequence, one at a time.
#include "FileOfFrame.h"

#include "ZVFileSpec.h"
#include "ZVSequence.h"

#include <cstring>
#include <utility>

bool Is_Image_Sequence(ZVClip const* clip)
{
    if (GetImportPropertiesZV(clip->Format) & ZV_FORMAT_MULTIFRAME) return false;
    return clip->RawFrames >= 2 || (clip->Frames >= 2 && clip->FileName && IsSequenceZV(clip->FileName));
}

FileOfFrame::FileOfFrame(ZVClip* clip, long frame) : clip_(clip)
{
    char name[ZV_SPEC_SIZE];
    if (!clip->FileName || std::strlen(clip->FileName) >= sizeof name || frame < 0) return;
    if (clip->SequenceNumbers && frame >= clip->RawFrames) return;
    std::strcpy(name, clip->FileName);
    long const number = clip->SequenceNumbers ? clip->SequenceNumbers[frame] : frame;
    if (!SequenceNumberToNameValidateZV(name, number)) return;
    char* const file = CopyFileSpecZV(name);
    if (file) mask_ = std::exchange(clip->FileName, file);
}

FileOfFrame::~FileOfFrame()
{
    if (mask_) FreeFileSpecZV(std::exchange(clip_->FileName, mask_));
}
