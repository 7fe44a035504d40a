#include "Region.h"

#include <pixman.h>

#include <algorithm>
#include <new>

HostRect Intersection(HostRect const& a, HostRect const& b)
{
    HostRect const shared{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                          std::min(a.bottom, b.bottom)};
    return shared.IsEmpty() ? HostRect{} : shared;
}

static pixman_region32_t* Record(std::byte* bytes)
{
    return std::launder(reinterpret_cast<pixman_region32_t*>(bytes));
}

static pixman_region32_t* Record(std::byte const* bytes)
{
    return Record(const_cast<std::byte*>(bytes));  // pixman reads its sources through plain pointers
}

static HostRect To_Rect(pixman_box32_t const& box)
{
    return {box.x1, box.y1, box.x2, box.y2};
}

HostRegion::HostRegion()
{
    static_assert(sizeof(pixman_region32_t) == RecordSize);
    pixman_region32_init(new (record_) pixman_region32_t);
}

HostRegion::HostRegion(HostRect const& rect) : HostRegion()
{
    Unite(rect);
}

HostRegion::HostRegion(HostRegion const& other) : HostRegion()
{
    pixman_region32_copy(Record(record_), Record(other.record_));
}

HostRegion::HostRegion(HostRegion&& other) noexcept : HostRegion()
{
    std::swap(*Record(record_), *Record(other.record_));
}

HostRegion& HostRegion::operator=(HostRegion other) noexcept
{
    std::swap(*Record(record_), *Record(other.record_));
    return *this;
}

HostRegion::~HostRegion()
{
    pixman_region32_fini(Record(record_));
}

void HostRegion::Intersect(HostRect const& rect)
{
    auto const width = static_cast<unsigned>(rect.IsEmpty() ? 0 : rect.Width());
    auto const height = static_cast<unsigned>(rect.IsEmpty() ? 0 : rect.Height());
    pixman_region32_intersect_rect(Record(record_), Record(record_), rect.left, rect.top, width, height);
}

void HostRegion::Intersect(HostRegion const& other)
{
    pixman_region32_intersect(Record(record_), Record(record_), Record(other.record_));
}

void HostRegion::Unite(HostRect const& rect)
{
    if (rect.IsEmpty()) return;
    pixman_region32_union_rect(Record(record_), Record(record_), rect.left, rect.top,
                               static_cast<unsigned>(rect.Width()), static_cast<unsigned>(rect.Height()));
}

void HostRegion::Unite(HostRegion const& other)
{
    pixman_region32_union(Record(record_), Record(record_), Record(other.record_));
}

void HostRegion::Subtract(HostRegion const& other)
{
    pixman_region32_subtract(Record(record_), Record(record_), Record(other.record_));
}

void HostRegion::Translate(int dx, int dy)
{
    pixman_region32_translate(Record(record_), dx, dy);
}

HostRect HostRegion::Bounds() const
{
    return To_Rect(*pixman_region32_extents(Record(record_)));
}

bool HostRegion::Contains(int x, int y) const
{
    return pixman_region32_contains_point(Record(record_), x, y, nullptr) != 0;
}

int HostRegion::Box_Count() const
{
    return pixman_region32_n_rects(Record(record_));
}

HostRect HostRegion::Box(int index) const
{
    int count = 0;
    return To_Rect(pixman_region32_rectangles(Record(record_), &count)[index]);
}
