// Copies of rectangles between bitmaps.
#include "RowTransfer.h"
#include "ZVBitmap.h"

#include <algorithm>

namespace {

/// What a copy moves. The source side is the caller's to keep inside the source.
struct CopyArea {
    long sx, sy, w, h, dx, dy;

    /// Gives negative sizes those of the source.
    template <typename Source> void Take_Size(Source const& source)
    {
        if (w < 0) w = source.Width;
        if (h < 0) h = source.Height;
    }

    /// Cuts at the target's edges. False when nothing is left.
    template <typename Target> bool Clip(Target const& target)
    {
        return Clip_Axis(sx, w, dx, 0, target.Width) && Clip_Axis(sy, h, dy, 0, target.Height);
    }

    /// Cuts at the edges of a rectangle of the target.
    bool Clip(ZVRectT<long> const& rect)
    {
        return Clip_Axis(sx, w, dx, rect.x, rect.x + rect.width) &&
               Clip_Axis(sy, h, dy, rect.y, rect.y + rect.height);
    }

    /// Cuts at the source's edges, moving the target side along.
    template <typename Source> bool Clip_Source(Source const& source)
    {
        return Clip_Axis(dx, w, sx, 0, source.Width) && Clip_Axis(dy, h, sy, 0, source.Height);
    }

private:
    /// Keeps `at` to `at + size` between the limits; `other` moves with `at`.
    static bool Clip_Axis(long& other, long& size, long& at, long low, long high)
    {
        if (at < low) {
            if (size <= low - at) return false;  // before `other` moves, perhaps beyond all range
            size -= low - at;
            other += low - at;
            at = low;
        }
        size = std::min(size, high - at);
        return size >= 1;
    }
};

template <typename Source, typename Target> bool Are_There(Source const* source, Target const* target)
{
    return source && target && source->Pixels && target->Pixels;
}

template <typename Source, typename Target>
void Convert_Area(Source const& source, ZVRowFormat from, Target& target, ZVRowFormat to, CopyArea area)
{
    area.Take_Size(source);
    if (area.Clip(target))
        Convert_Rows(Source_Rows(source, area.sx, area.sy), from, Target_Rows(target, area.dx, area.dy), to,
                     area.w, area.h);
}

template <typename Bitmap> void Copy_Area(Bitmap const& source, Bitmap& target, CopyArea const& area)
{
    Copy_Rows(Source_Rows(source, area.sx, area.sy), Target_Rows(target, area.dx, area.dy),
              area.w * source.PackSize, area.h);
}

}  // namespace

void CopyBitmapZV(ZVBitmap const* src, ZVBitmap* dst, long sx, long sy, long w, long h, long dx, long dy)
{
    if (!Are_There(src, dst) || w == 0 || h == 0) return;
    CopyArea area{sx, sy, w, h, dx, dy};
    area.Take_Size(*src);
    if (src->Type == dst->Type) {
        if (area.Clip(*dst)) Copy_Area(*src, *dst, area);
        return;
    }
    ZVRectT<long> const srcRect{area.sx, area.sy, area.w, area.h}, dstRect{area.dx, area.dy, area.w, area.h};
    ScaleBitmapZV(src, dst, &srcRect, &dstRect);
}

void CopyBitmapZV(ZVBitmap const* src, ZVNativeBitmap* dst, long sx, long sy, long w, long h, long dx,
                  long dy)
{
    if (Are_There(src, dst))
        Convert_Area(*src, Row_Format(src->Type), *dst, Row_Format(*dst), {sx, sy, w, h, dx, dy});
}

void CopyBitmapZV(ZVNativeBitmap const* src, ZVBitmap* dst, long sx, long sy, long w, long h, long dx,
                  long dy)
{
    if (Are_There(src, dst))
        Convert_Area(*src, Row_Format(*src), *dst, Row_Format(dst->Type), {sx, sy, w, h, dx, dy});
}

void CopyBitmapZV(ZVNativeBitmap const* src, ZVNativeBitmap* dst, long sx, long sy, long w, long h, long dx,
                  long dy)
{
    if (!Are_There(src, dst)) return;
    CopyArea area{sx, sy, w, h, dx, dy};
    area.Take_Size(*src);
    CopyBitmapZV(src, dst, nullptr, area.sx, area.sy, area.w, area.h, area.dx, area.dy);
}

void CopyBitmapZV(ZVNativeBitmap const* src, ZVNativeBitmap* dst, ZVRectT<long> const* clip, long sx, long sy,
                  long w, long h, long dx, long dy)
{
    if (!Are_There(src, dst)) return;
    CopyArea area{sx, sy, w, h, dx, dy};
    if (!area.Clip_Source(*src) || !area.Clip(*dst) || (clip && !area.Clip(*clip))) return;
    if (src->Depth == dst->Depth && src->PackSize == dst->PackSize)
        Copy_Area(*src, *dst, area);
    else
        Convert_Rows(Source_Rows(*src, area.sx, area.sy), Row_Format(*src),
                     Target_Rows(*dst, area.dx, area.dy), Row_Format(*dst), area.w, area.h);
}

void CopyBitmapExcludeZV(ZVBitmap const* src, ZVBitmap* dst, ZVRectT<long> const* area,
                         ZVRectT<long> const* exclude)
{
    if (!src || !dst || !area || !exclude) return;
    ZVRectT<long> r{0, 0, dst->Width, dst->Height};
    if (!r.Intersect(*area)) return;
    // Where the target cuts off the excluded rectangle, a band has a negative size, which a copy takes for
    // the whole.
    auto const copyBand = [&](long x, long y, long w, long h) {
        if (w > 0 && h > 0) CopyBitmapZV(src, dst, x, y, w, h, x, y);
    };
    ZVRectT<long> const& e = *exclude;
    copyBand(r.x, r.y, r.width, e.y - r.y);
    copyBand(r.x, e.y, e.x - r.x, e.height);
    copyBand(e.x + e.width, e.y, r.x + r.width - (e.x + e.width), e.height);
    copyBand(r.x, e.y + e.height, r.width, r.y + r.height - (e.y + e.height));
}
