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

/// What pixman finds no memory for comes out empty; nobody gets to see it.
static void Check(pixman_bool_t isMade)
{
    if (!isMade) throw std::bad_alloc();
}

static HostRect To_Rect(pixman_box32_t const& box)
{
    return {box.x1, box.y1, box.x2, box.y2};
}

HostRegion::HostRegion() noexcept
{
    static_assert(sizeof(pixman_region32_t) == RecordSize);
    pixman_region32_init(new (record_) pixman_region32_t);
}

HostRegion::HostRegion(HostRect const& rect) noexcept : HostRegion()
{
    if (rect.IsEmpty()) return;
    pixman_region32_init_rect(Record(record_), rect.left, rect.top, static_cast<unsigned>(rect.Width()),
                              static_cast<unsigned>(rect.Height()));
}

HostRegion::HostRegion(HostRegion const& other) : HostRegion()
{
    Check(pixman_region32_copy(Record(record_), Record(other.record_)));
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
    if (Intersection(rect, Bounds()) == Bounds()) return;
    Intersect(HostRegion(rect));
}

void HostRegion::Intersect(HostRegion const& other)
{
    HostRegion shared;
    Check(pixman_region32_intersect(Record(shared.record_), Record(record_), Record(other.record_)));
    *this = std::move(shared);
}

void HostRegion::Unite(HostRect const& rect)
{
    Unite(HostRegion(rect));
}

void HostRegion::Unite(HostRegion const& other)
{
    HostRegion united;
    Check(pixman_region32_union(Record(united.record_), Record(record_), Record(other.record_)));
    *this = std::move(united);
}

void HostRegion::Cover(HostRect const& rect) noexcept
{
    if (rect.IsEmpty()) return;
    try {
        Unite(rect);
    } catch (std::bad_alloc const&) {
        HostRect const old = Bounds();
        *this = HostRegion(HostRect{std::min(old.left, rect.left), std::min(old.top, rect.top),
                                    std::max(old.right, rect.right), std::max(old.bottom, rect.bottom)});
    }
}

void HostRegion::Subtract(HostRegion const& other)
{
    HostRegion rest;
    Check(pixman_region32_subtract(Record(rest.record_), Record(record_), Record(other.record_)));
    *this = std::move(rest);
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
