// What the modules for single pictures and for animations of pictures share.
#pragma once

#include "formats/FormatModule.h"

#include <span>

inline constexpr uint32_t PictureType = ZV_FourCC("PICT");  ///< of files and of resources
inline constexpr uint32_t PictureCreator = ZV_FourCC("ttxt");

/// Fills in what a picture tells of its clip. False for what is no picture.
bool Describe_Picture(std::span<uint8_t const> picture, ZVClip* clip);

/// Draws a picture of the given size, shifted by the offset, into a bitmap of any RGBA type. 1 or 0.
long Draw_Frame(std::span<uint8_t const> picture, ZVBitmap* bitmap, ZVRectT<long> const* offset, long width,
                long height);

/// Makes a picture of a bitmap of any RGBA type, in the clip's alpha convention, and hands its bytes to
/// `take`, which answers 1 or 0.
long Make_Picture(ZVClip const* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region,
                  long (*take)(std::span<uint8_t const> picture, void* data), void* data);

/// Gives the clip the usual compression settings when it has none; false without memory.
bool Make_Picture_Options(ZVClip* clip);

/// The entry Options of both modules.
void Picture_Options(ZVClip* clip, bool silent);
