#include "MacShapes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

/// The quotient rounded down, for a divisor above 0.
static int64_t Floor_Divide(int64_t number, int64_t divisor)
{
    int64_t const quotient = number / divisor;
    return number % divisor < 0 ? quotient - 1 : quotient;
}

static int64_t Ceil_Divide(int64_t number, int64_t divisor)
{
    return -Floor_Divide(-number, divisor);
}

// ---- lines ------------------------------------------------------------------------------------------------

namespace {

/// A line in the terms of its longer extent, from its end with the lower coordinate on.
struct MajorLine {
    int start, end;  ///< along the longer extent
    int other;       ///< the other coordinate at the start
    int length, rise;

    MajorLine(int a, int otherA, int b, int otherB)
    {
        if (a > b) {
            std::swap(a, b);
            std::swap(otherA, otherB);
        }
        start = a;
        end = b;
        other = otherA;
        length = b - a;
        rise = otherB - otherA;
    }

    /// The other coordinate at a place, rounded, halves upwards.
    int At(int place) const
    {
        if (length == 0) return other;
        int64_t const twice = 2 * int64_t{place - start} * rise + length;
        return other + static_cast<int>(Floor_Divide(twice, 2 * int64_t{length}));
    }
};

/// Calls emit(first, last, other) for each stretch of equal other coordinates between the limits.
template <typename Emit> void Visit_Stretches(MajorLine const& line, int low, int high, Emit&& emit)
{
    int const first = std::max(line.start, low), last = std::min(line.end, high);
    if (first > last) return;
    // The sum that At divides, carried along: below 0 it borrows from the quotient.
    int64_t const step = 2 * int64_t{line.rise}, whole = 2 * int64_t{std::max(line.length, 1)};
    int other = line.At(first);
    int64_t rest = int64_t{first - line.start} * step + line.length - int64_t{other - line.other} * whole;
    int begin = first;
    for (int place = first; place < last; ++place) {
        rest += step;
        int const change = rest >= whole ? 1 : rest < 0 ? -1 : 0;
        if (change == 0) continue;
        emit(begin, place, other);
        rest -= change * whole;
        other += change;
        begin = place + 1;
    }
    emit(begin, last, other);
}

}  // namespace

void Add_Line(ShapeRuns& runs, ShapePoint from, ShapePoint to, HostRect const& clip)
{
    if (std::abs(to.x - from.x) >= std::abs(to.y - from.y)) {
        Visit_Stretches(MajorLine(from.x, from.y, to.x, to.y), clip.left, clip.right - 1,
                        [&](int first, int last, int y) {
                            runs.push_back({first, y, last + 1, y + 1});
                        });
    } else {
        Visit_Stretches(MajorLine(from.y, from.x, to.y, to.x), clip.top, clip.bottom - 1,
                        [&](int first, int last, int x) {
                            runs.push_back({x, first, x + 1, last + 1});
                        });
    }
}

// ---- ovals ------------------------------------------------------------------------------------------------

namespace {

/// The rows of an oval. Distances from the centre are counted in half pixels, so that they are whole: those
/// of pixel centres along an extent are all odd when it is even, and all even when it is odd.
class OvalRows {
public:
    explicit OvalRows(HostRect const& oval)
        : oval_(oval), width_(static_cast<uint64_t>(oval.Width())),
          height_(static_cast<uint64_t>(oval.Height()))
    {
    }

    /// Pixels from the centre of a row to either end of its run, in halves: the run is so many pixels wide.
    /// 0 outside the oval.
    int Width_At(int y) const
    {
        if (y < oval_.top || y >= oval_.bottom) return 0;
        auto const distance =
            static_cast<uint64_t>(std::abs(2 * (y - oval_.top) + 1 - static_cast<int>(height_)));
        if (distance <= 1) return oval_.Width();
        // A centre lies inside when (dx / width)^2 + (dy / height)^2 <= 1.
        uint64_t const most = width_ * width_ * (height_ * height_ - distance * distance);
        uint64_t dx = Root(most / (height_ * height_));
        if (dx % 2 == width_ % 2 && dx > 0) --dx;
        return static_cast<int>(std::max(dx, (width_ + 1) % 2) + 1);
    }

    HostRect Run(int y, int width) const
    {
        int const left = oval_.left + (oval_.Width() - width) / 2;
        return {left, y, left + width, y + 1};
    }

private:
    static uint64_t Root(uint64_t square)
    {
        auto root = static_cast<uint64_t>(std::sqrt(static_cast<double>(square)));
        while (root * root > square)
            --root;
        while ((root + 1) * (root + 1) <= square)
            ++root;
        return root;
    }

    HostRect oval_;
    uint64_t width_, height_;
};

}  // namespace

ShapeRuns Oval_Runs(HostRect const& oval, HostRect const& clip)
{
    ShapeRuns runs;
    OvalRows const rows(oval);
    for (int y = std::max(oval.top, clip.top); y < std::min(oval.bottom, clip.bottom); ++y)
        runs.push_back(rows.Run(y, rows.Width_At(y)));
    return runs;
}

ShapeRuns Oval_Outline_Runs(HostRect const& oval, HostRect const& clip)
{
    ShapeRuns runs;
    OvalRows const rows(oval);
    for (int y = std::max(oval.top, clip.top); y < std::min(oval.bottom, clip.bottom); ++y) {
        int const width = rows.Width_At(y);
        int const inner = std::min({rows.Width_At(y - 1), rows.Width_At(y + 1), width - 2});
        HostRect const run = rows.Run(y, width), hollow = rows.Run(y, inner);
        if (inner <= 0) {
            runs.push_back(run);
            continue;
        }
        runs.push_back({run.left, y, hollow.left, y + 1});
        runs.push_back({hollow.right, y, run.right, y + 1});
    }
    return runs;
}

// ---- polygons ---------------------------------------------------------------------------------------------

namespace {

/// A side of a polygon that is not level, from its upper end to its lower one.
struct Side {
    ShapePoint upper, lower;

    /// The first pixel of a row whose centre is not left of the side.
    int Column_At(int y) const
    {
        int64_t const height = lower.y - upper.y;
        int64_t const below = 2 * int64_t{y - upper.y} + 1;  // of the row's centre, in half pixels
        int64_t const crossing = 2 * int64_t{upper.x} * height + below * (lower.x - upper.x);
        return static_cast<int>(Ceil_Divide(crossing - height, 2 * height));
    }
};

std::vector<Side> Sides_From_The_Top(std::span<ShapePoint const> points)
{
    std::vector<Side> sides;
    for (std::size_t i = 0; i < points.size(); ++i) {
        ShapePoint const a = points[i], b = points[(i + 1) % points.size()];
        if (a.y < b.y) sides.push_back({a, b});
        if (a.y > b.y) sides.push_back({b, a});
    }
    std::ranges::sort(sides, {}, [](Side const& side) { return side.upper.y; });
    return sides;
}

}  // namespace

ShapeRuns Polygon_Runs(std::span<ShapePoint const> points, HostRect const& clip)
{
    std::vector<Side> const sides = Sides_From_The_Top(points);
    ShapeRuns runs;
    if (sides.empty()) return runs;
    int bottom = clip.bottom;
    bottom =
        std::min(bottom, std::ranges::max(sides, {}, [](Side const& side) { return side.lower.y; }).lower.y);
    std::vector<Side const*> crossed;
    std::vector<int> columns;
    auto next = sides.begin();
    for (int y = std::max(clip.top, sides.front().upper.y); y < bottom; ++y) {
        for (; next != sides.end() && next->upper.y <= y; ++next)
            crossed.push_back(&*next);
        std::erase_if(crossed, [y](Side const* side) { return side->lower.y <= y; });
        columns.clear();
        for (Side const* side : crossed)
            columns.push_back(side->Column_At(y));
        std::ranges::sort(columns);
        for (std::size_t i = 0; i + 1 < columns.size(); i += 2)
            if (columns[i] < columns[i + 1]) runs.push_back({columns[i], y, columns[i + 1], y + 1});
    }
    return runs;
}
