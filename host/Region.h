// Sets of pixels made of rectangles: clips, and what was touched.
#pragma once

#include <cstddef>
#include <utility>

/// Columns `left` up to `right` and rows `top` up to `bottom`, both ends excluded.
struct HostRect {
    int left = 0, top = 0, right = 0, bottom = 0;

    bool IsEmpty() const { return left >= right || top >= bottom; }
    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool Contains(int x, int y) const { return left <= x && x < right && top <= y && y < bottom; }
    bool operator==(HostRect const&) const = default;
};

/// What two rectangles share; empty when they share nothing.
HostRect Intersection(HostRect const& a, HostRect const& b);

/// A rectangle takes no memory. Without memory for more, copies and changes throw std::bad_alloc and leave
/// the region as it was.
class HostRegion {
public:
    HostRegion() noexcept;  ///< Empty.
    explicit HostRegion(HostRect const& rect) noexcept;
    HostRegion(HostRegion const& other);
    HostRegion(HostRegion&& other) noexcept;
    HostRegion& operator=(HostRegion other) noexcept;
    ~HostRegion();

    void Intersect(HostRect const& rect);  ///< Takes no memory when the rectangle holds all of it.
    void Intersect(HostRegion const& other);
    void Unite(HostRect const& rect);
    void Unite(HostRegion const& other);
    void Cover(HostRect const& rect) noexcept;  ///< Unites; without memory, to the rectangle around both.
    void Subtract(HostRegion const& other);
    void Translate(int dx, int dy);

    HostRect Bounds() const;
    bool IsEmpty() const { return Bounds().IsEmpty(); }
    bool Contains(int x, int y) const;

    /// The rectangles, which share no pixel, from top to bottom and in one row from left to right.
    int Box_Count() const;
    HostRect Box(int index) const;

private:
    // Room for the library's own record, which its header would otherwise have to be known for.
    static constexpr std::size_t RecordSize = 4 * sizeof(int) + sizeof(void*);
    alignas(void*) std::byte record_[RecordSize];
};
