// Taking pixels out of a row at even steps, for all rows of a scale alike.
#pragma once

#include "foundation/HeapBlock.h"

#include <cstdint>

/// One in the 16.16 positions of a scale.
inline constexpr long ZV_SCALE_ONE = 1L << 16;

/// Blocks of pixels, each of which a shuffle of bytes takes out of one or two vectors of 16 bytes.
struct ZVSampleBlocks {
    int32_t const* offsets;  ///< of the first pixel of each block in its row, in bytes
    uint8_t const*
        shuffles;  ///< for each block and window the place of each byte, 0x80 where another window has it
    long windows;  ///< vectors that hold the pixels of a block
    long count;
    long bytes;  ///< of a block in the target
};

/// Knows which pixels of a row are wanted, and copies them from any row of the same shape.
class RowSampler {
public:
    /// @param packSize   bytes of a pixel
    /// @param position   16.16 position of the first wanted pixel, from the start of the row
    /// @param step       16.16 distance to the next
    /// @param count      wanted pixels, at least 1
    /// @param rowPixels  pixels of a row, for what may be read beside the wanted ones
    RowSampler(long packSize, long position, long step, long count, long rowPixels);

    /// Copies the wanted pixels of a row, and fetches those of the row that will be next into the cache: rows
    /// that lie apart are beyond the foresight of the processor.
    void Sample(unsigned char const* row, unsigned char const* next, unsigned char* target) const;

private:
    void Plan_Blocks(long windows, long rowPixels);

    long packSize_;
    long count_;
    bool isRun_;                  ///< the wanted pixels stand side by side
    HeapBlock<int32_t> offsets_;  ///< of each wanted pixel in its row, in bytes

    // Blocks from the left, where steps are narrow; pixels to the right of them are copied one by one.
    HeapBlock<int32_t> blockOffsets_;
    HeapBlock<uint8_t> shuffles_;
    ZVSampleBlocks blocks_{};
};
