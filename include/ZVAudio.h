// Sound in clips.
#pragma once

#include "ZVBase.h"

inline constexpr unsigned long ZV_AUDIO_UNSIGNED = 1;  ///< one byte a sample: 128 is silence
inline constexpr unsigned long ZV_AUDIO_SWAPPED = 2;   ///< two bytes a sample, opposite to the machine's order

/// Samples of one instant stand next to each other, left first.
struct ZVAudioFormat {
    unsigned long Rate = 0;        ///< samples per second for each channel
    unsigned long SampleSize = 0;  ///< bytes of one sample of one channel: 1 or 2
    unsigned long Channels = 0;    ///< 1 or 2
    unsigned long Flags = 0;
};
