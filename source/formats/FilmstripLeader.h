// The strip of leader lines under each frame of a Filmstrip file, which shows the frame's timecode and number
// to whoever opens the file in a paint program.
#pragma once

#include "ZVLibInternal.h"

constexpr long LeaderLines = 16;

/// Draws the leader of a frame over a whole ZV_BITMAP_RGBA8 bitmap of LeaderLines rows. What does not fit a
/// narrow bitmap is cut off at its edges. A negative frame counts as 0.
/// @param rate  frames a second; 29.97 gives drop-frame timecode, one that rounds to 0 or less dashes
void Draw_Leader(ZVBitmap* leader, long frame, double rate);
