// A frame on its way from AddFrameZV to the module: what the caller asked for, and the two ways to go on with
// it.
#pragma once

#include "ZVClip.h"

using ZVWriteCompletion = void (*)(void*, unsigned long);

/// One call of AddFrameZV. `frame` counts from the clip's start and is divided, `absolute` counts from time
/// 0.
struct FrameWrite {
    ZVClip* clip;
    ZVBitmap* bitmap;
    ZVRectT<long>* region;
    long frame = 0;
    long absolute = 0;
    ZVBitmap* target = nullptr;  ///< takes the frames when there is no writer
    ZVFrameWriter writer = nullptr;
    ZVWriteCompletion completion = nullptr;
    void* completionData = nullptr;
    unsigned long completionArgument = 0;
    long firstFrame = 0;
    long lastFrame = 0;
    long noOverwrite = 0;
};

/// Hands a finished output frame to the writer or the target. Without completion the bitmap is the caller's
/// again when it returns.
long Send_Frame(FrameWrite const& write, ZVBitmap* bitmap, long number, ZVWriteCompletion completion);

/// Calls the caller's completion, if there is one.
void Run_Completion(FrameWrite const& write);

/// Takes the next film frame of a clip under pull-down and sends the video frames that are complete with it.
long Write_Film_Frame(FrameWrite const& write);
