// See PictMask.h.
//   0 bytes of the region, 2   2 bounds   10 rows, unless the region is the rectangle of its bounds: each y,
//   then the columns where the row changes from in to out or back against the row before, then 0x7FFF; and
//   0x7FFF behind the last row
#include "PictMask.h"

#include <iterator>

namespace {

constexpr std::size_t RectRegionSize = 10;
constexpr long EndMark = 0x7FFF;

/// Reads the changes of one row. False when they do not rise.
bool Read_Changes(PictBytes& bytes, std::vector<long>& changes)
{
    changes.clear();
    for (long x = bytes.S16(); x != EndMark; x = bytes.S16()) {
        if (bytes.Has_Failed() || (!changes.empty() && x <= changes.back())) return false;
        changes.push_back(x);
    }
    return !bytes.Has_Failed();
}

/// Marks the pixels between each edge and the next in the rows from top to bottom.
void Mark_Rows(PictMask& mask, std::vector<long> const& edges, PictMap const& map, long top, long bottom)
{
    top = std::max(map.Y(top), mask.bounds.top);
    bottom = std::min(map.Y(bottom), mask.bounds.bottom);
    if (top >= bottom) return;
    std::size_t const width = static_cast<std::size_t>(mask.bounds.Width());
    for (std::size_t i = 0; i + 1 < edges.size(); i += 2) {
        long const left = std::max(map.X(edges[i]), mask.bounds.left);
        long const right = std::min(map.X(edges[i + 1]), mask.bounds.right);
        if (left < right)
            std::memset(mask.Row(top) + left - mask.bounds.left, 1, static_cast<std::size_t>(right - left));
    }
    for (long y = top + 1; y < bottom; ++y)
        std::memcpy(mask.Row(y), mask.Row(top), width);
}

/// A row at a time: the sum of the pixels within `reach` to both sides tells whether all of them are inside.
void Erode(uint8_t* line, std::ptrdiff_t step, long count, long reach, std::vector<uint8_t>& copy)
{
    copy.resize(static_cast<std::size_t>(count));
    for (long i = 0; i < count; ++i)
        copy[static_cast<std::size_t>(i)] = line[i * step];
    long nearestOutside = -1;  // to the left, where the area ends before its first pixel
    for (long i = 0; i < count; ++i) {
        if (!copy[static_cast<std::size_t>(i)]) nearestOutside = i;
        if (i - nearestOutside <= reach) line[i * step] = 0;
    }
    nearestOutside = count;
    for (long i = count - 1; i >= 0; --i) {
        if (!copy[static_cast<std::size_t>(i)]) nearestOutside = i;
        if (nearestOutside - i <= reach) line[i * step] = 0;
    }
}

}  // namespace

PictMask Read_Region(PictBytes& bytes, PictMap const& map, PictRect const& limits)
{
    std::size_t const size = bytes.U16();
    PictRect const bounds = bytes.Rect();
    PictMask mask{map.Rect(bounds).Within(limits), {}};
    if (mask.bounds.IsEmpty()) mask.bounds = {};
    if (size < RectRegionSize) bytes.Fail();
    if (bytes.Has_Failed() || size == RectRegionSize) return mask;
    PictBytes rows(bytes.Take(size - RectRegionSize));
    mask.inside.assign(static_cast<std::size_t>(mask.bounds.Width() * mask.bounds.Height()), 0);
    std::vector<long> edges, changes, next;
    long previous = 0;
    for (long y = rows.S16(); y != EndMark; y = rows.S16()) {
        if (rows.Has_Failed() || (!edges.empty() && y <= previous) || !Read_Changes(rows, changes)) {
            bytes.Fail();
            break;
        }
        if (!edges.empty()) Mark_Rows(mask, edges, map, previous, y);
        next.clear();
        std::ranges::set_symmetric_difference(edges, changes, std::back_inserter(next));
        edges.swap(next);
        previous = y;
    }
    return mask;
}

PictMask Frame_Of(PictMask const& area, PictPoint pen)
{
    PictMask frame = area;
    long const width = area.bounds.Width(), height = area.bounds.Height();
    auto const pixels = static_cast<std::size_t>(width * height);
    if (frame.inside.empty()) frame.inside.assign(pixels, 1);
    PictMask core = frame;
    std::vector<uint8_t> line;
    for (long y = 0; y < height; ++y)
        Erode(core.inside.data() + y * width, 1, width, pen.x, line);
    for (long x = 0; x < width; ++x)
        Erode(core.inside.data() + x, width, height, pen.y, line);
    for (std::size_t i = 0; i < pixels; ++i)
        frame.inside[i] = frame.inside[i] && !core.inside[i];
    return frame;
}
