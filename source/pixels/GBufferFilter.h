// Channels reduced to the samples of one object, or of all others.
#pragma once

#include "ZVGBuffer.h"

/// Which samples are wanted.
struct SampleChoice {
    ZVGBuffer const& ids;  ///< bytes or shorts
    unsigned short id;
    long mode;  ///< 1 keeps the samples of the id, any other value removes them
};

/// The channel with that bit, when it has the size of the id channel and the format that channels of its kind
/// have; null when not.
ZVGBuffer* Fitting_Channel(ZVGBufferArray const& array, ZVGBufferChannel channel, ZVGBuffer const& ids);

/// Filters the channels of the mask that are in both arrays, inside an area that lies within the id channel.
/// @param keepsWeights  weights stay those of the input, in place of being worked out anew
void Filter_Channels(SampleChoice const& choice, ZVGBufferArray const& input, ZVGBufferArray const& output,
                     unsigned long mask, bool keepsWeights, ZVRectT<long> const& area);
