// An area of a bitmap: a rectangle, or some of the pixels in one. Clips and the regions of pictures are such
// areas.
#pragma once

#include "PictBytes.h"

#include <cstring>
#include <vector>

struct PictMask {
    PictRect bounds;
    std::vector<uint8_t> inside;  ///< a byte for each pixel of the bounds, 1 or 0; none for all of them

    uint8_t const* Row(long y) const { return inside.data() + (y - bounds.top) * bounds.Width(); }
    uint8_t* Row(long y) { return inside.data() + (y - bounds.top) * bounds.Width(); }

    /// Calls `take` with the left and right end of each run of row y that lies in the area.
    template <typename Take> void Visit_Runs(long y, long left, long right, Take&& take) const
    {
        left = std::max(left, bounds.left);
        right = std::min(right, bounds.right);
        if (left >= right || y < bounds.top || y >= bounds.bottom) return;
        if (inside.empty()) {
            take(left, right);
            return;
        }
        uint8_t const* const row = Row(y) - bounds.left;
        auto const find = [&](long x, int value) {
            void const* const found = std::memchr(row + x, value, static_cast<std::size_t>(right - x));
            return found ? static_cast<uint8_t const*>(found) - row : right;
        };
        for (long from = find(left, 1); from < right;) {
            long const to = find(from, 0);
            take(from, to);
            from = to < right ? find(to, 1) : right;
        }
    }
};

/// Reads a region, as far as it lies within the limits on the bitmap. Damage sets the flag of the bytes.
PictMask Read_Region(PictBytes& bytes, PictMap const& map, PictRect const& limits);

/// The part of an area that lies within a pen's size of its edge.
PictMask Frame_Of(PictMask const& area, PictPoint pen);
