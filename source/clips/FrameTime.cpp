// From a time to a frame or a field, and from a presented frame to its source.
#include "ZVLibInternal.h"

#include <algorithm>
#include <climits>

/// Toward zero, with a step away from it first: at 25 frames a second the time of frame 1, 1/25, may multiply
/// back to just under 1. What no long holds, and what is no number, lies before the clip.
static long To_Index(double position)
{
    double const index = position < 0.0 ? position - 1e-7 : position + 1e-7;
    if (!(index > -9.0e18 && index < 9.0e18)) return LONG_MIN;
    return static_cast<long>(index);
}

double Get_Time(ZVTimeValue const* time)
{
    return time->Scale == 0.0 ? 0.0 : time->Value / time->Scale;
}

long Get_Frame(ZVClip const* clip, ZVTimeValue const* time)
{
    return To_Index((Get_Time(time) - Get_Time(&clip->StartTime)) * clip->FrameRate);
}

long Get_Field(ZVClip const* clip, ZVTimeValue const* time)
{
    return To_Index(2.0 * (Get_Time(time) - Get_Time(&clip->StartTime)) * clip->FrameRate);
}

long Get_ReadableFrames(ZVClip const* clip)
{
    if (!clip->FrameMap) return std::max(clip->RawFrames, 0L);
    long frames = 0;
    for (long i = 0; i < clip->FrameMapUsed; ++i)
        frames += std::clamp(clip->FrameMap[i].Count, 0L, LONG_MAX - frames);
    return frames;
}

long Get_FrameMapping(ZVClip const* clip, long frame)
{
    if (!clip->FrameMap || frame < 0) return frame;
    long rest = frame;
    for (long i = 0; i < clip->FrameMapUsed; ++i) {
        ZVFrameRun const& run = clip->FrameMap[i];
        if (rest < run.Count) return run.Start >= 0 ? run.Start + rest : run.Start - rest;
        rest -= std::max(run.Count, 0L);
    }
    return frame;
}
