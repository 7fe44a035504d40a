// Film frames out of video under pull-down: four film frames lie in five video frames, and one of the four
// has its two fields in neighbouring ones.
#include "ZVLibInternal.h"

#include <cstring>

long Get_Frame_PullDown(ZVClip* clip, unsigned long filmFrame, ZVBitmap* bitmap, unsigned long flags,
                        ZVRectT<long> const* rect, long width, long height, AsyncParams& async)
{
    if (!clip || !bitmap) return 0;
    unsigned long const count = filmFrame + clip->PullDown - 1;
    unsigned long const position = count & 3;
    unsigned long const video = position + (count >> 2) * 5 - clip->PullDown + 1;
    if (position != 3) return Get_Frame(clip, video, bitmap, flags, rect, width, height, async);

    ZVBitmap* first = AllocBitmapZV(bitmap->Width, bitmap->Height, bitmap->Type, "pull-down");
    if (!first) {
        FillBitmapZV(bitmap, clip->Background);
        return 0;
    }
    Get_Frame(clip, video, first, flags, rect, width, height, async);
    if (!async.PollResult) Get_Frame(clip, video + 1, bitmap, flags, rect, width, height, async);
    bool const isDone = !async.PollResult;
    long const rowBytes = bitmap->RowBytes;
    long const firstRow = clip->FieldOrder == ZV_FIELDS_UPPER_FIRST ? 1 : 0;
    for (long row = 0; isDone && row < bitmap->Height / 2; ++row) {
        long const offset = (2 * row + firstRow) * rowBytes;
        std::memcpy(bitmap->Pixels + offset, first->Pixels + offset, static_cast<std::size_t>(rowBytes));
    }
    FreeBitmapZV(first);
    return isDone;
}
