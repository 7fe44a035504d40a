// Names of image sequences: a mask such as shot[####].tif stands for a numbered series of files. Names are changed
// in place in buffers of ZV_SPEC_SIZE bytes.
#pragma once

#include "ZVBase.h"

ZV_API long IsSequenceZV(char const* name);      ///< 1 when the name holds a mask.
ZV_API long SequenceDigitsZV(char const* name);  ///< Number of hashes in the mask, 0 without one.

/// Removes the mask and an underscore before it; 0 without a mask.
ZV_API long RemoveSequenceNumberingZV(char* name);

/// Renders a number into the mask, `shrink` digits narrower than it; without a mask at least four digits before
/// the last dot. Always 1.
ZV_API long SequenceNumberToNameZV(char* name, long number, long shrink);

/// Finds the file of a number, by ever narrower renderings of the mask. 0 without one, `path` as it was.
ZV_API long SequenceNumberToNameValidateZV(char* path, long number);

/// The full name of an output frame.
/// @param out  ZV_SPEC_SIZE bytes
ZV_API void FrameNumberToNameZV(char* out, long frame, ZVClip const* clip);
