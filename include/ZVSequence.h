// Names of image sequences: a mask such as shot[####].tif stands for a numbered series of files. A mask is
// any text, `[`, as many hashes as the number has digits, `]`, any text; the first such group of a name
// counts. The number of a name is the last run of digits in it, of its last nine at most; an extension is
// part of the name. Names are changed in place in buffers of ZV_SPEC_SIZE bytes; one that would not fit stays
// as it was, the answer is 0 and the error number 12. In a spec only the part behind the last separator
// counts.
#pragma once

#include "ZVBase.h"

/// Compares two names or masks without case and without regard to the width of their masks; 0 for one
/// sequence.
ZV_API long SequenceCmpZV(char const* a, char const* b);

/// Replaces the number by a mask; 0 for a name without digits.
ZV_API long FileNameToSequenceNameZV(char* name);

/// The same for a number right before the extension only; 0 for a name that holds hashes in a mask.
ZV_API long EndNumberFileNameToSequenceZV(char* name);

ZV_API long IsSequenceZV(char const* name);            ///< 1 when the name holds a mask.
ZV_API long SequenceDigitsZV(char const* name);        ///< Number of hashes in the mask, 0 without one.
ZV_API long NameToSequenceNumberZV(char const* name);  ///< The number, 0 without one.

/// Removes the mask and an underscore before it; 0 without a mask.
ZV_API long RemoveSequenceNumberingZV(char* name);

/// Puts an underscore before the mask, unless there is one; 0 without a mask.
ZV_API long SwitchToUnderScoreFormat(char* name);

/// Inserts `number` before the underscore of a mask: a_[##].tif with 3 becomes a3_[##].tif. 0 without such a
/// mask, or with nothing before it.
ZV_API long SetIncNumberOnUnderScoreFormat(char* name, long number);

ZV_API bool IsFileNameEndedBy(char const* name,
                              char last);  ///< Whether that is what stands before the last dot.

/// Renders a number into the mask, `shrink` digits narrower than it; without a mask at least four digits
/// before the last dot. 1 whenever the result fits.
ZV_API long SequenceNumberToNameZV(char* name, long number, long shrink);

/// Finds the file of a number, by ever narrower renderings of the mask, then without regard to case. 0
/// without one, `path` as it was.
ZV_API long SequenceNumberToNameValidateZV(char* path, long number);

/// The full name of an output frame; empty with error 12 when it does not fit.
/// @param out  ZV_SPEC_SIZE bytes
ZV_API void FrameNumberToNameZV(char* out, long frame, ZVClip const* clip);
