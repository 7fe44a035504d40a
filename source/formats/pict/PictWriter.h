// A frame as a picture: one packed direct bitmap, or some side by side where it is wider than one can be.
#pragma once

#include "ZVLibInternal.h"

#include <span>

/// A block of AllocateResidentBlock for the bytes of a picture. Its size is rounded up, so that pictures of
/// nearly the same size take turns in one block.
class PictBlock {
public:
    explicit PictBlock(int64_t size);
    ~PictBlock();
    PictBlock(PictBlock const&) = delete;
    PictBlock& operator=(PictBlock const&) = delete;

    uint8_t* Data() const { return data_; }  ///< Null without memory, the error number being set.

private:
    long size_;
    uint8_t* data_;
};

class PictWriter {
public:
    /// @param bitmap  of type ZV_BITMAP_RGBA8 and at most 32767 pixels either way
    PictWriter(ZVClip const* clip, ZVBitmap const* bitmap);

    /// False without memory.
    bool Write(ZVRectT<long> const* region);
    std::span<uint8_t const> Bytes() const { return {block_.Data(), size_}; }

private:
    uint8_t* Put_Bitmap_Header(uint8_t* out, long left, long width) const;
    bool Put_Bitmap(uint8_t*& out, long left, long width, ZVRectT<long> const* region) const;

    ZVClip const* clip_;
    ZVBitmap const* bitmap_;
    int components_;  ///< 4 with alpha
    long strips_;
    PictBlock block_;
    std::size_t size_ = 0;
};
