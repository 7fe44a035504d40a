// What the module leaves to OpenImageIO. That library and those below it take long to load, so this side of
// the module is a shared object of its own, PictureService.so beside it, which comes with the first file that
// is opened or written.
#pragma once

#include <ZVLib.h>

/// The entries of the module that need pixels, with their contracts. None throws.
struct PictureService {
    long (*open)(ZVClip* clip);
    long (*getFrame)(ZVClip* clip, ZVBitmap* bitmap, long layer);
    long (*getGBuffer)(ZVClip* clip, unsigned long mask, ZVGBufferArray* buffers, long layer);
    long (*addFrame)(ZVClip* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region);
};

/// The one symbol of the shared object.
inline constexpr char PictureServiceSymbol[] = "Picture_Service";
extern "C" PictureService const* Picture_Service();
