// Which files belong to the clip of a format that holds one picture in a file.
#include "ZVLibInternal.h"

long SequenceCheckZV(ZVClip* clip, TagItem*)
{
    FreeMemZV(clip->SequenceNumbers);
    clip->SequenceNumbers = nullptr;
    clip->RawFrames = 1;
    return 1;
}
