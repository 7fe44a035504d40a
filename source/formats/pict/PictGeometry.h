// Points and rectangles of pictures, and the way from a picture's coordinates to those of the bitmap that it
// is drawn into.
#pragma once

#include <algorithm>
#include <cstdint>

struct PictPoint {
    long x = 0, y = 0;
};

/// Right and bottom lie outside.
struct PictRect {
    long left = 0, top = 0, right = 0, bottom = 0;

    long Width() const { return right - left; }
    long Height() const { return bottom - top; }
    bool IsEmpty() const { return left >= right || top >= bottom; }

    PictRect Within(PictRect const& other) const
    {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }
    PictRect Inset(long x, long y) const { return {left + x, top + y, right - x, bottom - y}; }
};

/// Carries the frame of a picture onto the area where it is to appear. Neither is empty.
struct PictMap {
    PictRect from, to;
    PictPoint origin;  ///< of the picture's coordinates, which a picture may shift

    long X(long x) const { return to.left + Scaled(x - origin.x - from.left, to.Width(), from.Width()); }
    long Y(long y) const { return to.top + Scaled(y - origin.y - from.top, to.Height(), from.Height()); }
    PictPoint Point(PictPoint point) const { return {X(point.x), Y(point.y)}; }
    PictRect Rect(PictRect const& rect) const
    {
        return {X(rect.left), Y(rect.top), X(rect.right), Y(rect.bottom)};
    }

    /// A size such as that of a pen, which never vanishes by being made smaller.
    PictPoint Size(PictPoint size) const
    {
        return {Sized(size.x, to.Width(), from.Width()), Sized(size.y, to.Height(), from.Height())};
    }

private:
    static long Scaled(long value, long to, long from)
    {
        if (to == from) return value;
        constexpr long far = 1L << 29;  // beyond any bitmap, and products of two such places fit a long
        long const product = value * to;
        return std::clamp(product / from - (product % from < 0), -far, far);
    }
    static long Sized(long size, long to, long from)
    {
        return size > 0 ? std::max(1L, Scaled(size, to, from)) : 0;
    }
};
