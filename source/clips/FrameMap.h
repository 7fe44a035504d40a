// The frame map of a clip: which source and scratch frames its frames are, in order, as a table of runs. Pure
// work on the clip's FrameMap, FrameMapSize and FrameMapUsed, in proportion to the number of runs. The end of
// the map is the sum of its counts: RawFrames stays what the source holds, and after edits the two part ways.
#pragma once

#include "ZVClip.h"

/// Capacity of a new map, and the step by which one grows, in runs.
inline constexpr long frameMapStep = 32;

/// Gives a clip without a map one that holds the source's frames as a single run.
/// @return  false with error 1 when memory runs out
bool Make_Frame_Map(ZVClip& clip);

// The edits need a map. They answer false and leave it unchanged for a frame that it does not hold, and with
// error 1 when memory runs out. Frame counts of the clip are not touched.

/// Puts a scratch frame (a negative number) in the place of a frame.
bool Replace_Mapped_Frame(ZVClip& clip, long frame, long scratch);

/// Puts a scratch frame ahead of a frame, or behind the last one when `frame` is the end of the map.
bool Insert_Mapped_Frame(ZVClip& clip, long frame, long scratch);

bool Delete_Mapped_Frame(ZVClip& clip, long frame);

/// Joins runs that continue one another, and gives back room beyond what a step of growth needs.
void Compact_Frame_Map(ZVClip& clip);
