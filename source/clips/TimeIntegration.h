// Averages of frames over a span of time.
#pragma once

#include "FrameRead.h"

/// Reads the average of all frames (of all fields, when the clip has them) under a span of time.
/// @return  0 without memory, after the caller gave up, and with Background for a span that covers nothing
long Integrate_Time(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const& time, ZVTimeValue const& duration,
                    FramePlace const& place, AsyncParams& async);
