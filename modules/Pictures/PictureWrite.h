// Writing pictures.
#pragma once

#include "PictureKind.h"

/// Quality of JPEG files without options, from 1 to 100.
inline constexpr long NormalQuality = 90;

/// What a clip's video options hold.
struct PictureOptions {
    int32_t Reserved;  ///< 0
    int32_t Quality;   ///< of JPEG files, from 1 to 100
};

/// The kind that a clip is written as, by its file name; PNG for a name that belongs to none.
PictureKind const& Written_Kind(ZVClip const* clip);

/// Whether pictures of the clip are written with alpha.
bool Writes_Alpha(ZVClip const* clip, PictureKind const& kind);

/// Writes a frame as the clip's file. The file that was there stays until the new one is whole.
/// @return  false with the error number set
bool Write_Picture(ZVClip const* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region);
