// Decoded pictures whose pixels lie together, in another order of channels or bytes than rows of red, green,
// blue and alpha.
#pragma once

#include "MovieBands.h"
#include "MovieLibrary.h"

/// Puts the bytes of each pixel in order, where both layouts have as many bits a channel. What has no alpha
/// becomes opaque.
/// @return  false for a picture of another layout; nothing is written then
bool Packed_To_RGBA(AVFrame const& picture, void* pixels, std::size_t rowBytes, HostPixels layout,
                    MovieBands& bands);
