// Which rows of a frame are read, and where it goes in a bitmap.
#pragma once

#include "ZVLibInternal.h"

/// The point of the scaled frame that falls on pixel (0, 0), and the size that the frame is scaled to.
struct FramePlace {
    ZVRectT<long> offset;
    long width;
    long height;
};

/// Rows that a request of one moment is for.
enum class WantedRows { All, Upper, Lower };

/// All rows, or those of the field at that time when the duration is that of a field. Under pull-down frames
/// are whole.
WantedRows Wanted_Rows(ZVClip const* clip, ZVTimeValue const& time, ZVTimeValue const& duration);

/// Reads one presented frame: a film frame under pull-down.
inline long Read_Frame(ZVClip* clip, long frame, ZVBitmap* bitmap, unsigned long flags,
                       FramePlace const& place, AsyncParams& async)
{
    auto const number = static_cast<unsigned long>(frame);
    if (clip->PullDown)
        return Get_Frame_PullDown(clip, number, bitmap, flags, &place.offset, place.width, place.height,
                                  async);
    return Get_Frame(clip, number, bitmap, flags, &place.offset, place.width, place.height, async);
}
