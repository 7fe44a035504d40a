// The rectangle of the library, for long and double.
#pragma once

#include "ZVBase.h"

#include <algorithm>

/// Origin and size. `Right` and `Bottom` are the last column and row inside, so a rectangle of width 1 has
/// its right edge at `x`.
template <typename T> struct ZVRectT {
    T x = 0;
    T y = 0;
    T width = 0;
    T height = 0;

    T Right() const { return x + width - 1; }
    T Bottom() const { return y + height - 1; }
    bool IsEmpty() const { return width < 1 || height < 1; }

    void Set(T newX, T newY, T newWidth, T newHeight) { *this = {newX, newY, newWidth, newHeight}; }

    /// By inclusive edges, normalised.
    void SetRB(T left, T top, T right, T bottom)
    {
        *this = {left, top, right - left + 1, bottom - top + 1};
        Normalize();
    }

    /// Zeroes the size and keeps the origin.
    void SetEmpty() { width = height = 0; }

    /// Turns a negative size into a positive one over the same area.
    void Normalize()
    {
        if (width < 0) {
            x += width;
            width = -width;
        }
        if (height < 0) {
            y += height;
            height = -height;
        }
    }

    void Offset(T dx, T dy)
    {
        x += dx;
        y += dy;
    }

    /// Moves each edge inwards.
    void Inset(T dx, T dy)
    {
        x += dx;
        y += dy;
        width -= 2 * dx;
        height -= 2 * dy;
    }

    bool IsIn(T px, T py) const { return x <= px && px < x + width && y <= py && py < y + height; }

    bool Contains(ZVRectT const& other) const
    {
        return x <= other.x && y <= other.y && other.Right() <= Right() && other.Bottom() <= Bottom();
    }

    /// The bounding box of both; an empty side takes the other's fields.
    void Union(ZVRectT const& other)
    {
        if (other.IsEmpty()) return;
        if (IsEmpty()) {
            *this = other;
            return;
        }
        T const right = std::max(x + width, other.x + other.width);
        T const bottom = std::max(y + height, other.y + other.height);
        x = std::min(x, other.x);
        y = std::min(y, other.y);
        width = right - x;
        height = bottom - y;
    }

    /// Extends to hold the point; an empty rectangle becomes 1 by 1 there.
    void Union(T px, T py) { Union(ZVRectT{px, py, 1, 1}); }

    /// Keeps the overlap and returns 1, or returns 0 with width and height 0.
    long Intersect(ZVRectT const& other)
    {
        T const left = std::max(x, other.x);
        T const top = std::max(y, other.y);
        T const right = std::min(x + width, other.x + other.width);
        T const bottom = std::min(y + height, other.y + other.height);
        if (right <= left || bottom <= top) {
            SetEmpty();
            return 0;
        }
        *this = {left, top, right - left, bottom - top};
        return 1;
    }

    ZVRectT& operator+=(ZVRectT const& other)
    {
        Union(other);
        return *this;
    }
    friend ZVRectT operator+(ZVRectT a, ZVRectT const& b) { return a += b; }
    bool operator==(ZVRectT const&) const = default;
};
