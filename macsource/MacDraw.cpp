// Rectangles, lines, ovals, polygons, borders and single pixels.
#include "MacDraw.h"
#include "MacFrame.h"
#include "MacShapes.h"
#include "ZVLibInternal.h"

// ---- rectangles -------------------------------------------------------------------------------------------

void EraseRectZV(ZVDrawInfo* draw, long x1, long y1, long x2, long y2)
{
    Paint(draw, [&](PrimitiveFrame const& frame) { frame.Port().Erase(frame.Rect(x1, y1, x2, y2)); });
}

void FillRectZV(ZVDrawInfo* draw, long x1, long y1, long x2, long y2)
{
    Paint(draw, [&](PrimitiveFrame const& frame) { frame.Port().Fill(frame.Rect(x1, y1, x2, y2)); });
}

void DrawRectZV(ZVDrawInfo* draw, long x1, long y1, long x2, long y2)
{
    Paint(draw, [&](PrimitiveFrame const& frame) { frame.Port().Frame(frame.Rect(x1, y1, x2, y2)); });
}

// ---- lines, ovals, polygons -------------------------------------------------------------------------------

void DrawLineZV(ZVDrawInfo* draw, long x1, long y1, long x2, long y2)
{
    long const points[] = {x1, y1, x2, y2};
    DrawPolygonZV(draw, 2, points);
}

void FillEllipseZV(ZVDrawInfo* draw, long x1, long y1, long x2, long y2)
{
    Paint(draw, [&](PrimitiveFrame const& frame) {
        frame.Port().Fill(Oval_Runs(frame.Rect(x1, y1, x2, y2), frame.Clip()));
    });
}

void DrawEllipseZV(ZVDrawInfo* draw, long x1, long y1, long x2, long y2)
{
    Paint(draw, [&](PrimitiveFrame const& frame) {
        frame.Port().Fill(Oval_Outline_Runs(frame.Rect(x1, y1, x2, y2), frame.Clip()));
    });
}

static std::vector<ShapePoint> Place_Points(Placed const& placed, long count, long const* points)
{
    std::vector<ShapePoint> placedPoints;
    placedPoints.reserve(static_cast<std::size_t>(count));
    for (long i = 0; i < count; ++i)
        placedPoints.push_back({placed.X(points[2 * i]), placed.Y(points[2 * i + 1])});
    return placedPoints;
}

void DrawPolygonZV(ZVDrawInfo* draw, long count, long const* points)
{
    if (!points || count < 2) return;
    Paint(draw, [&](PrimitiveFrame const& frame) {
        std::vector<ShapePoint> const corners = Place_Points(frame, count, points);
        ShapeRuns runs;
        for (std::size_t i = 0; i + 1 < corners.size(); ++i)
            Add_Line(runs, corners[i], corners[i + 1], frame.Clip());
        frame.Port().Fill(runs);
    });
}

void FillPolygonZV(ZVDrawInfo* draw, long count, long const* points)
{
    if (!points || count < 1) return;
    Paint(draw, [&](PrimitiveFrame const& frame) {
        frame.Port().Fill(Polygon_Runs(Place_Points(frame, count, points), frame.Clip()));
    });
}

// ---- borders ----------------------------------------------------------------------------------------------

void DrawShineBorder(ZVDrawInfo* draw, long x, long y, long w, long h, unsigned long frame,
                     unsigned long light, unsigned long dark)
{
    Paint(draw, [&](PrimitiveFrame const& around) {
        Draw_Bevel(around.Port(), around.Box(x, y, w, h), Pen_Color(frame), Pen_Color(light),
                   Pen_Color(dark));
    });
}

void DrawShineBorderZV(ZVDrawInfo* draw, long x, long y, long w, long h)
{
    DrawShineBorder(draw, x, y, w, h, ZV_PEN_DARK_EDGE, ZV_PEN_LIGHT_EDGE, ZV_PEN_SHADOW);
}

void DrawIShineBorderZV(ZVDrawInfo* draw, long x, long y, long w, long h)
{
    DrawShineBorder(draw, x, y, w, h, ZV_PEN_DARK_EDGE, ZV_PEN_SHADOW, ZV_PEN_LIGHT_EDGE);
}

void DrawShineBorder2ZV(ZVDrawInfo* draw, long x, long y, long w, long h)
{
    DrawShineBorder(draw, x, y, w, h, ZV_PEN_DARK_EDGE, DisableColorZV(ZV_PEN_LIGHT_EDGE),
                    DisableColorZV(ZV_PEN_SHADOW));
}

void DrawIShineBorder2ZV(ZVDrawInfo* draw, long x, long y, long w, long h)
{
    DrawShineBorder(draw, x, y, w, h, ZV_PEN_DARK_EDGE, DisableColorZV(ZV_PEN_SHADOW),
                    DisableColorZV(ZV_PEN_LIGHT_EDGE));
}

// ---- pixels -----------------------------------------------------------------------------------------------

void ReadPixelZV(ZVDrawInfo* draw, long x, long y, ZVRGB* out)
{
    if (!out) return;
    Paint(draw, [&](PrimitiveFrame const& frame) {
        uint32_t color = 0;
        if (!frame.Port().surface.Read(frame.X(x), frame.Y(y), color)) return;
        auto const wide = [color](int shift) { return static_cast<uint16_t>((color >> shift & 0xFF) * 257); };
        *out = {wide(16), wide(8), wide(0), 1};
    });
}

void WritePixelZV(ZVDrawInfo* draw, long x, long y, ZVRGB const* in)
{
    if (!in) return;
    uint32_t const color = (in->red >> 8U << 16) | (in->green >> 8U << 8) | in->blue >> 8U;
    Paint(draw,
          [&](PrimitiveFrame const& frame) { frame.Port().surface.Write(frame.X(x), frame.Y(y), color); });
}
