// What stands around every primitive: the context's port made current, its state set by the context, its clip
// narrowed, and all of it put back afterwards.
#pragma once

#include "MacPort.h"

#include <algorithm>
#include <limits>

/// Coordinates of a context as those of its port, within their 16 bits.
class Placed {
public:
    explicit Placed(ZVDrawInfo const& draw) : originX_(draw.OriginX), originY_(draw.OriginY) {}

    int X(long x) const { return In_Range(x, originX_); }
    int Y(long y) const { return In_Range(y, originY_); }

    /// The rectangle of two inclusive corners in any order.
    HostRect Rect(long x1, long y1, long x2, long y2) const
    {
        auto const [left, right] = std::minmax(x1, x2);
        auto const [top, bottom] = std::minmax(y1, y2);
        // The edges lie behind the last pixel. 1 goes to the origin, which leaves room for it.
        return {X(left), Y(top), In_Range(right, originX_ + 1), In_Range(bottom, originY_ + 1)};
    }

    /// The rectangle of a corner and a size.
    HostRect Box(long x, long y, long w, long h) const
    {
        return {X(x), Y(y), In_Range(x, originX_ + Bounded(w)), In_Range(y, originY_ + Bounded(h))};
    }

private:
    /// A number that others can be added to without leaving the range of long.
    static long Bounded(long value)
    {
        constexpr long bound = std::numeric_limits<int32_t>::max();
        return std::clamp(value, -bound, bound);
    }

    static int In_Range(long value, long origin)
    {
        return static_cast<int>(std::clamp(Bounded(value) + origin, -32768L, 32767L));
    }

    long originX_, originY_;
};

class PrimitiveFrame : public Placed {
public:
    /// @param draw  not null
    explicit PrimitiveFrame(ZVDrawInfo* draw);
    ~PrimitiveFrame();
    PrimitiveFrame(PrimitiveFrame const&) = delete;
    PrimitiveFrame& operator=(PrimitiveFrame const&) = delete;

    ZVPort& Port() const { return *draw_->Port; }
    HostRect Clip() const { return Port().surface.Clip().Bounds(); }

private:
    ZVDrawInfo* draw_;
    PortState saved_;
};

/// Paints in the frame of a primitive; nothing without a context.
template <typename Work> void Paint(ZVDrawInfo* draw, Work&& work)
{
    if (!draw) return;
    Paint(draw->Port, [&] {
        PrimitiveFrame const frame(draw);
        work(frame);
    });
}

/// A picture over pen 1, to be freed by FreeBitmapZV. Throws when memory runs out; null for one that cannot
/// be had.
ZVNativeBitmap* Compose_Image(ZVBitmap const& picture);
