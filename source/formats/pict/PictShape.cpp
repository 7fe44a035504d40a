// See PictShape.h.
#include "PictShape.h"

#include <cmath>
#include <numbers>

namespace {

/// The first pixel whose middle lies at or behind a place.
long First_Pixel(double place)
{
    return static_cast<long>(std::ceil(place - 0.5));
}

long Floor_Divide(long value, long by)
{
    return value / by - (value % by < 0);
}

PictRect Bounds_Of(std::vector<PictPoint> const& points)
{
    if (points.empty()) return {};
    PictRect bounds{points[0].x, points[0].y, points[0].x, points[0].y};
    for (PictPoint const& point : points)
        bounds = {std::min(bounds.left, point.x), std::min(bounds.top, point.y),
                  std::max(bounds.right, point.x), std::max(bounds.bottom, point.y)};
    return bounds;
}

}  // namespace

// ---- rectangles and ovals
// -----------------------------------------------------------------------------------

PictSpan PictRound::Row(long y) const
{
    if (rect.IsEmpty() || y < rect.top || y >= rect.bottom) return {0, 0};
    double const radiusX = 0.5 * static_cast<double>(std::clamp(corner.x, 0L, rect.Width()));
    double const radiusY = 0.5 * static_cast<double>(std::clamp(corner.y, 0L, rect.Height()));
    double const middle = static_cast<double>(y) + 0.5;
    double const above = static_cast<double>(rect.top) + radiusY - middle;
    double const below = middle - (static_cast<double>(rect.bottom) - radiusY);
    double const beyond = std::max(above, below);
    if (beyond <= 0 || radiusX == 0) return {rect.left, rect.right};
    double const share = beyond / radiusY;
    double const inset = radiusX * (1.0 - std::sqrt(std::max(0.0, 1.0 - share * share)));
    return {First_Pixel(static_cast<double>(rect.left) + inset),
            First_Pixel(static_cast<double>(rect.right) - inset)};
}

PictRound PictRound::Inset(PictPoint by) const
{
    return {rect.Inset(by.x, by.y), {std::max(0L, corner.x - 2 * by.x), std::max(0L, corner.y - 2 * by.y)}};
}

PictWedge::PictWedge(PictRect const& rect, long start, long extent)
    : centreX_(0.5 * static_cast<double>(rect.left + rect.right)),
      centreY_(0.5 * static_cast<double>(rect.top + rect.bottom)),
      radiusX_(0.5 * static_cast<double>(std::max(1L, rect.Width()))),
      radiusY_(0.5 * static_cast<double>(std::max(1L, rect.Height())))
{
    if (extent < 0) {
        start += extent;
        extent = -extent;
    }
    isWide_ = extent > 180;
    isWhole_ = extent >= 360;
    auto const angle = [](long degrees) { return static_cast<double>(degrees) * std::numbers::pi / 180.0; };
    startX_ = std::sin(angle(start));
    startY_ = -std::cos(angle(start));
    endX_ = std::sin(angle(start + extent));
    endY_ = -std::cos(angle(start + extent));
}

bool PictWedge::Contains(long x, long y) const
{
    if (isWhole_) return true;
    double const atX = (static_cast<double>(x) + 0.5 - centreX_) / radiusX_;
    double const atY = (static_cast<double>(y) + 0.5 - centreY_) / radiusY_;
    bool const isBehindStart = startX_ * atY - startY_ * atX >= 0;
    bool const isBeforeEnd = atX * endY_ - atY * endX_ > 0;
    return isWide_ ? isBehindStart || isBeforeEnd : isBehindStart && isBeforeEnd;
}

PictRing::PictRing(PictRound const& outer, std::optional<PictPoint> pen, std::optional<PictWedge> wedge)
    : PictShape(outer.rect), outer_(outer), wedge_(wedge)
{
    if (pen) inner_ = outer.Inset(*pen);
}

void PictRing::Add(PictSpan span, long y, PictSpans& spans) const
{
    if (!wedge_) {
        if (span.left < span.right) spans.push_back(span);
        return;
    }
    for (long x = span.left; x < span.right;) {
        while (x < span.right && !wedge_->Contains(x, y))
            ++x;
        long const first = x;
        while (x < span.right && wedge_->Contains(x, y))
            ++x;
        if (first < x) spans.push_back({first, x});
    }
}

void PictRing::Row(long y, PictSpan visible, PictSpans& spans) const
{
    PictSpan whole = outer_.Row(y);
    whole = {std::max(whole.left, visible.left), std::min(whole.right, visible.right)};
    PictSpan const hole = inner_ ? inner_->Row(y) : PictSpan{0, 0};
    if (hole.left >= hole.right) {
        Add(whole, y, spans);
        return;
    }
    Add({whole.left, std::min(hole.left, whole.right)}, y, spans);
    Add({std::max(hole.right, whole.left), whole.right}, y, spans);
}

// ---- lines
// --------------------------------------------------------------------------------------------------

PictLine::PictLine(PictPoint from, PictPoint to, PictPoint pen)
    : PictShape({std::min(from.x, to.x), std::min(from.y, to.y), std::max(from.x, to.x) + pen.x,
                 std::max(from.y, to.y) + pen.y}),
      upper_(from.y <= to.y ? from : to), lower_(from.y <= to.y ? to : from), pen_(pen)
{
    if (pen.x < 1 || pen.y < 1) bounds_ = {};
}

/// Where the pen's corner is in a row between the two ends. The longer of the two ways goes a pixel a step.
PictSpan PictLine::Path_Row(long y) const
{
    long const high = lower_.y - upper_.y, wide = std::abs(lower_.x - upper_.x);
    long const side = lower_.x < upper_.x ? -1 : 1;
    long const down = y - upper_.y;
    if (high > wide) {
        long const x = upper_.x + side * ((2 * wide * down + high) / (2 * high));
        return {x, x + 1};
    }
    // Step k lies in row (2 * high * k + wide) / (2 * wide), rounded down.
    auto const first = [=](long row) {
        return high == 0 ? 0L : -Floor_Divide(wide - 2 * wide * row, 2 * high);
    };
    long const from = std::clamp(first(down), 0L, wide);
    long const to = high == 0 ? wide : std::clamp(first(down + 1) - 1, 0L, wide);
    long const left = side > 0 ? upper_.x + from : upper_.x - to;
    return {left, left + to - from + 1};
}

void PictLine::Row(long y, PictSpan, PictSpans& spans) const
{
    // The pen reaches this row from every row of the path between these two, and the path has no gaps.
    PictSpan const first = Path_Row(std::max(upper_.y, y - pen_.y + 1));
    PictSpan const last = Path_Row(std::min(lower_.y, y));
    spans.push_back({std::min(first.left, last.left), std::max(first.right, last.right) - 1 + pen_.x});
}

// ---- polygons and areas
// -------------------------------------------------------------------------------------

PictPolygon::PictPolygon(std::vector<PictPoint> points)
    : PictShape(Bounds_Of(points)), points_(std::move(points))
{
}

void PictPolygon::Row(long y, PictSpan, PictSpans& spans) const
{
    crossings_.clear();
    double const middle = static_cast<double>(y) + 0.5;
    for (std::size_t i = 0; i < points_.size(); ++i) {
        PictPoint const from = points_[i], to = points_[i + 1 < points_.size() ? i + 1 : 0];
        if ((from.y <= y) == (to.y <= y)) continue;
        double const share = (middle - static_cast<double>(from.y)) / static_cast<double>(to.y - from.y);
        crossings_.push_back(static_cast<double>(from.x) + share * static_cast<double>(to.x - from.x));
    }
    std::ranges::sort(crossings_);
    for (std::size_t i = 0; i + 1 < crossings_.size(); i += 2) {
        PictSpan const span{First_Pixel(crossings_[i]), First_Pixel(crossings_[i + 1])};
        if (span.left < span.right) spans.push_back(span);
    }
}

void PictArea::Row(long y, PictSpan, PictSpans& spans) const
{
    mask_.Visit_Runs(y, bounds_.left, bounds_.right, [&](long left, long right) {
        spans.push_back({left, right});
    });
}
