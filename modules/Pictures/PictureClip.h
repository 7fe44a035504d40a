// How a clip is written: by the kind of its file name, its alpha and its options.
#pragma once

#include "PictureKind.h"

/// Pictures larger than this each way are no pictures.
inline constexpr long LargestSide = 32767;

/// Quality of JPEG files without options.
inline constexpr long NormalQuality = 90;

/// The kind that a clip is written as, by its file name; PNG for a name that belongs to none.
PictureKind const& Written_Kind(ZVClip const* clip);

/// Whether pictures of the clip are written with alpha.
bool Writes_Alpha(ZVClip const* clip, PictureKind const& kind);

/// Quality of the clip's options, from 1 to 100.
long Quality_Of(ZVClip const* clip);

/// States the alpha of a clip, so that nobody guesses it. It is never inverted, and mixed with black if at
/// all.
void Set_Alpha(ZVClip* clip, bool hasAlpha, bool isPremultiplied);
