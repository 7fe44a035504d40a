// Conversion of sound between any two sample formats, with a change of rate.
#pragma once

#include "ZVAudio.h"

/// Fills `target` with all of `source`, by a box filter in 8.8 fixed point whose ratio is that of their
/// numbers of samples. 0 for a format without samples of one or two bytes, `target` then as it was.
long Convert_Audio(ZVAudioBuffer const& source, ZVAudioBuffer& target);
