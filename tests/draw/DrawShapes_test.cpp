// Every shape against a rule for single pixels, at all depths, with an origin and a clip.
#include "DrawTestTools.h"

using namespace DrawTest;

namespace {

class DrawShapes : public EnvironmentTest {};

using Call = void (*)(ZVDrawInfo*, long, long, long, long);

struct Corners {
    char const* why;
    long x1, y1, x2, y2;
};

/// In coordinates of the bitmap, sorted by the test's own hand.
struct Box {
    long left, top, right, bottom;

    explicit Box(Corners const& c)
        : left(std::min(c.x1, c.x2)), top(std::min(c.y1, c.y2)), right(std::max(c.x1, c.x2)),
          bottom(std::max(c.y1, c.y2))
    {
    }
    bool Has(long x, long y) const { return left <= x && x <= right && top <= y && y <= bottom; }
};

Corners const corners[] = {
    {"an ordinary rectangle", 5, 4, 30, 20},
    {"one pixel", 5, 5, 5, 5},
    {"reversed corners", 30, 20, 5, 4},
    {"two rows", 3, 8, 35, 9},
    {"two columns", 8, 3, 9, 30},
    {"odd and even extents", 2, 2, 34, 27},
    {"beyond all edges", -7, -9, 60, 50},
    {"far beyond one edge", 20, 10, 2000000000, 12},
    {"outside", -20, -20, -5, -5},
    {"reaching past the right edge", 30, 5, 50, 25},
};

/// Draws at an origin inside a clip, and expects what the rule says there.
void Expect_Shape(Call call, Corners const& c, std::function<bool(long, long)> const& rule)
{
    for (long depth : depths) {
        Canvas plain(depth);
        call(plain.draw.get(), c.x1, c.y1, c.x2, c.y2);
        plain.Expect_Inked(rule, c.why);

        Canvas moved(depth);
        moved.draw->OriginX = 3;
        moved.draw->OriginY = -2;
        SetClipRectZV(moved.draw.get(), 4, 7, 20, 12);
        call(moved.draw.get(), c.x1 - 3, c.y1 + 2, c.x2 - 3, c.y2 + 2);
        moved.Expect_Inked([&](long x, long y) { return x >= 7 && x < 27 && y >= 5 && y < 17 && rule(x, y); },
                           c.why);
    }
}

bool Is_In_Oval(Box const& box, long x, long y)
{
    if (!box.Has(x, y)) return false;
    long double const w = box.right - box.left + 1, h = box.bottom - box.top + 1;
    long double const dx = 2 * (x - box.left) + 1 - w, dy = 2 * (y - box.top) + 1 - h;
    return dx * dx * h * h + dy * dy * w * w <= w * w * h * h || std::abs(dx) <= 1 || std::abs(dy) <= 1;
}

bool Is_On_Line(long x1, long y1, long x2, long y2, long x, long y)
{
    if (std::abs(x2 - x1) < std::abs(y2 - y1)) return Is_On_Line(y1, x1, y2, x2, y, x);
    if (x1 > x2) return Is_On_Line(x2, y2, x1, y1, x, y);
    if (x < x1 || x > x2) return false;
    long const length = x2 - x1;
    if (length == 0) return y == y1;
    // The exact place lies in the pixel's half-open interval around its middle.
    long const exact = 2 * (x - x1) * (y2 - y1), pixel = 2 * length * (y - y1);
    return pixel - length <= exact && exact < pixel + length;
}

/// Even-odd: sides at or left of the pixel's centre, counted in the row of centres.
bool Is_In_Polygon(std::vector<long> const& points, long x, long y)
{
    bool isIn = false;
    std::size_t const count = points.size() / 2;
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t const j = (i + 1) % count;
        long const ax = points[2 * i], ay = points[2 * i + 1], bx = points[2 * j], by = points[2 * j + 1];
        if ((ay <= y) == (by <= y)) continue;
        long const side = (2 * x + 1 - 2 * ax) * (by - ay) - (2 * y + 1 - 2 * ay) * (bx - ax);
        if (by > ay ? side >= 0 : side <= 0) isIn = !isIn;
    }
    return isIn;
}

}  // namespace

TEST_F(DrawShapes, RectanglesHoldBothTheirCorners)
{
    for (Corners const& c : corners) {
        Box const box(c);
        Expect_Shape(FillRectZV, c, [&](long x, long y) { return box.Has(x, y); });
        Expect_Shape(DrawRectZV, c, [&](long x, long y) {
            bool const isEdge = x == box.left || x == box.right || y == box.top || y == box.bottom;
            return box.Has(x, y) && isEdge;
        });
    }
}

TEST_F(DrawShapes, ErasingPaintsTheBackgroundPen)
{
    for (long depth : depths) {
        Canvas canvas(depth);
        SetBGPenZV(canvas.draw.get(), Canvas::ink);
        EraseRectZV(canvas.draw.get(), 12, 9, 3, 2);
        canvas.Expect_Inked([](long x, long y) { return x >= 3 && x <= 12 && y >= 2 && y <= 9; }, "erase");
    }
}

TEST_F(DrawShapes, OvalsTouchTheirRectangle)
{
    for (Corners const& c : corners) {
        if (c.x2 > 1000) continue;  // the corner is held within 16 bits, which gives another oval
        Box const box(c);
        Expect_Shape(FillEllipseZV, c, [&](long x, long y) { return Is_In_Oval(box, x, y); });
        Expect_Shape(DrawEllipseZV, c, [&](long x, long y) {
            bool const isInner = Is_In_Oval(box, x - 1, y) && Is_In_Oval(box, x + 1, y) &&
                                 Is_In_Oval(box, x, y - 1) && Is_In_Oval(box, x, y + 1);
            return Is_In_Oval(box, x, y) && !isInner;
        });
    }
    for (long size = 0; size < 30; ++size) {
        Canvas canvas(32);
        FillEllipseZV(canvas.draw.get(), 1, 1, 1 + size, 1 + size * 2 / 3);
        Box const box({"", 1, 1, 1 + size, 1 + size * 2 / 3});
        canvas.Expect_Inked([&](long x, long y) { return Is_In_Oval(box, x, y); }, "small oval");
    }
}

TEST_F(DrawShapes, LinesHaveBothEndsAndAreTheSameBackwards)
{
    for (Corners const& c : corners) {
        if (c.x2 > 1000) continue;
        auto const rule = [&](long x, long y) { return Is_On_Line(c.x1, c.y1, c.x2, c.y2, x, y); };
        Expect_Shape(DrawLineZV, c, rule);
        Expect_Shape(DrawLineZV, {c.why, c.x2, c.y2, c.x1, c.y1}, rule);
    }
    for (long end = 0; end < Canvas::height; ++end) {
        Canvas canvas(16);
        DrawLineZV(canvas.draw.get(), 0, 11, 40, end);
        canvas.Expect_Inked([&](long x, long y) { return Is_On_Line(0, 11, 40, end, x, y); }, "slope");
    }
}

TEST_F(DrawShapes, PolygonsAreLinesOrFilledByTheEvenOddRule)
{
    std::vector<long> const polygons[] = {
        {20, 3, 31, 30, 4, 13, 36, 13, 9, 30},                 // a star, which crosses itself
        {5, 5, 15, 5, 15, 15, 5, 15},                          // a square
        {-10, -10, 60, 5, 30, 60},                             // beyond the edges
        {3, 3, 30, 3, 30, 8, 3, 8},                            // level sides
        {0, 0, 8, 0, 4, 4},                                    // an arrow
        {7, 7},                                                // a point
        {2, 2, 20, 25},                                        // there and back
        {10, 2, 30, 12, 10, 22, 10, 2, 20, 2, 0, 12, 20, 22},  // two that overlap
    };
    for (std::vector<long> const& points : polygons) {
        auto const count = static_cast<long>(points.size() / 2);
        for (long depth : depths) {
            Canvas filled(depth), outlined(depth);
            FillPolygonZV(filled.draw.get(), count, points.data());
            filled.Expect_Inked([&](long x, long y) { return Is_In_Polygon(points, x, y); }, "filled");
            DrawPolygonZV(outlined.draw.get(), count, points.data());
            outlined.Expect_Inked(
                [&](long x, long y) {
                    for (std::size_t i = 2; i < points.size(); i += 2)
                        if (Is_On_Line(points[i - 2], points[i - 1], points[i], points[i + 1], x, y))
                            return true;
                    return false;
                },
                "outlined");
        }
    }
    Canvas arguments(32);
    DrawPolygonZV(arguments.draw.get(), 3, 2, 2, 10L, short{2}, 10, 9);
    arguments.Expect_Inked(
        [](long x, long y) { return (y == 2 && x >= 2 && x <= 10) || (x == 10 && y >= 2 && y <= 9); },
        "coordinates as arguments, not closed");
    FillPolygonZV(arguments.draw.get(), 0, nullptr);
    DrawPolygonZV(arguments.draw.get(), -3, nullptr);
}

TEST_F(DrawShapes, BevelsHaveLightAboveAndDarkBelow)
{
    unsigned long const frame = GetColorZV(0xFF000003), light = GetColorZV(0xFF000004),
                        dark = GetColorZV(0xFF000005);
    struct {
        char const* why;
        Call call;
        unsigned long light, dark;
    } const borders[] = {
        {"raised", DrawShineBorderZV, light, dark},
        {"sunken", DrawIShineBorderZV, dark, light},
        {"raised, disabled", DrawShineBorder2ZV, DisableColorZV(light), DisableColorZV(dark)},
        {"sunken, disabled", DrawIShineBorder2ZV, DisableColorZV(dark), DisableColorZV(light)},
    };
    for (auto const& border : borders) {
        for (auto const& [w, h] :
             {std::pair{20L, 12L}, {3L, 3L}, {4L, 3L}, {3L, 4L}, {2L, 9L}, {1L, 1L}, {0L, 5L}}) {
            Canvas canvas(32);
            border.call(canvas.draw.get(), 5, 6, w, h);
            auto const color = [&, wide = w, high = h](long x, long y) -> uint32_t {
                x -= 5, y -= 6;
                if (x < 0 || y < 0 || x >= wide || y >= high) return Canvas::paper;
                if (x == 0 || y == 0 || x == wide - 1 || y == high - 1) return static_cast<uint32_t>(frame);
                if (y == high - 2 || (x == wide - 2 && y > 1)) return static_cast<uint32_t>(border.dark);
                if (x == 1 || y == 1) return static_cast<uint32_t>(border.light);
                return Canvas::paper;
            };
            canvas.Expect(color, border.why);
            FillRectZV(canvas.draw.get(), 0, 0, 0, 0);
            EXPECT_EQ(canvas.At(0, 0), Pixel_Of(Canvas::ink, 32)) << "the pen is what it was";
        }
    }
}

TEST_F(DrawShapes, CoordinatesBeyondSixteenBitsDoNotWrap)
{
    Canvas canvas(8, 33000, 12);
    DrawLineZV(canvas.draw.get(), 32000, 0, 40000, 0);
    DrawLineZV(canvas.draw.get(), 32760, 1, 40000, 8);
    FillRectZV(canvas.draw.get(), -40000, 10, 5, 10);
    FillRectZV(canvas.draw.get(), 40000, 9, std::numeric_limits<long>::max(), 9);
    FillRectZV(canvas.draw.get(), std::numeric_limits<long>::min(), 11, -1, 11);
    canvas.Expect(
        [](long x, long y) -> uint32_t {
            if (x >= 32767) return 0;  // a context's clip ends here, so the paper does too
            bool const isInked = (y == 0 && x >= 32000) || (y == 10 && x <= 5);
            return isInked || Is_On_Line(32760, 1, 32767, 8, x, y) ? Canvas::ink : Canvas::paper;
        },
        "far away");
}
