// The shapes that pictures draw, row by row in pixels of the bitmap. A pixel belongs to a shape when its
// middle lies inside.
#pragma once

#include "PictMask.h"

#include <optional>

/// A run of pixels in a row; the right end lies outside.
struct PictSpan {
    long left, right;
};
using PictSpans = std::vector<PictSpan>;

class PictShape {
public:
    explicit PictShape(PictRect const& bounds) : bounds_(bounds) {}
    virtual ~PictShape() = default;

    PictRect const& Bounds() const { return bounds_; }

    /// Appends the runs of a row of the bounds. What lies outside `visible` is of no interest; runs may reach
    /// beyond it.
    virtual void Row(long y, PictSpan visible, PictSpans& spans) const = 0;

    virtual long Row_Work() const
    {
        return 1;
    }  ///< What a row costs, in pixels that a paint takes as long for.

protected:
    PictRect bounds_;
};

/// A rectangle whose corners are quarters of an oval of that size; an oval when the size is its own.
struct PictRound {
    PictRect rect;
    PictPoint corner;

    PictSpan Row(long y) const;
    PictRound Inset(PictPoint by) const;
};

/// A sector of the oval in a rectangle. Angles are degrees clockwise from the top; 45 leads through a corner.
class PictWedge {
public:
    PictWedge(PictRect const& rect, long start, long extent);
    bool Contains(long x, long y) const;

private:
    double centreX_, centreY_, radiusX_, radiusY_;
    double startX_, startY_, endX_, endY_;
    bool isWide_;  ///< more than a half
    bool isWhole_;
};

/// A rectangle, oval or what lies between; only its edge when there is a pen, and only a sector of it when
/// there is a wedge.
class PictRing : public PictShape {
public:
    PictRing(PictRound const& outer, std::optional<PictPoint> pen, std::optional<PictWedge> wedge = {});
    void Row(long y, PictSpan visible, PictSpans& spans) const override;

private:
    void Add(PictSpan span, long y, PictSpans& spans) const;

    PictRound outer_;
    std::optional<PictRound> inner_;
    std::optional<PictWedge> wedge_;
};

/// What a pen of some size covers on its way; the points are those of its upper left corner.
class PictLine : public PictShape {
public:
    PictLine(PictPoint from, PictPoint to, PictPoint pen);
    void Row(long y, PictSpan visible, PictSpans& spans) const override;

private:
    PictSpan Path_Row(long y) const;

    PictPoint upper_, lower_, pen_;
};

/// The inside of a polygon by the even-odd rule, closed from the last point to the first.
class PictPolygon : public PictShape {
public:
    explicit PictPolygon(std::vector<PictPoint> points);
    void Row(long y, PictSpan visible, PictSpans& spans) const override;
    long Row_Work() const override { return static_cast<long>(points_.size()); }

private:
    std::vector<PictPoint> points_;
    mutable std::vector<double> crossings_;  ///< of the row at hand
};

class PictArea : public PictShape {
public:
    explicit PictArea(PictMask const& mask) : PictShape(mask.bounds), mask_(mask) {}
    void Row(long y, PictSpan visible, PictSpans& spans) const override;

private:
    PictMask const& mask_;
};
