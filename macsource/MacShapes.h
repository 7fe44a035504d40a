// Lines, ovals and polygons as runs of pixels, exact in integers.
#pragma once

#include "host/Region.h"

#include <span>
#include <vector>

struct ShapePoint {
    int x, y;  ///< within 16 signed bits
};

/// The runs are as much of the shape as lies within the rows of `clip`, each one row high; a line's may be
/// one column wide instead. Their columns reach beyond the clip where the shape does.
using ShapeRuns = std::vector<HostRect>;

void Add_Line(ShapeRuns& runs, ShapePoint from, ShapePoint to, HostRect const& clip);
ShapeRuns Oval_Runs(HostRect const& oval, HostRect const& clip);
ShapeRuns Oval_Outline_Runs(HostRect const& oval, HostRect const& clip);
ShapeRuns Polygon_Runs(std::span<ShapePoint const> points, HostRect const& clip);
