// Bitmaps copied into a context.
#include "MacDraw.h"

#include <optional>

/// The pixels of a bitmap as a source; nothing for a depth that has no surface.
static std::optional<HostSurface> Surface_Of(ZVNativeBitmap const* bitmap)
{
    if (!bitmap || !bitmap->Pixels) return std::nullopt;
    if (bitmap->Depth != 8 && bitmap->Depth != 16 && bitmap->Depth != 32) return std::nullopt;
    return HostSurface(bitmap->Pixels + bitmap->Offset, bitmap->Width, bitmap->Height, bitmap->Depth,
                       bitmap->RowBytes);
}

void DrawBitmapZV(ZVDrawInfo* draw, ZVNativeBitmap const* bitmap, long x, long y)
{
    std::optional<HostSurface> const source = Surface_Of(bitmap);
    if (!source) return;
    Paint(draw, [&](PrimitiveFrame const& frame) {
        frame.Port().surface.Blit(*source, source->Bounds(), frame.X(x), frame.Y(y));
    });
}

void StretchBitmapZV(ZVDrawInfo* draw, ZVNativeBitmap const* bitmap, long sx, long sy, long sw, long sh,
                     long dx, long dy, long dw, long dh)
{
    std::optional<HostSurface> const source = Surface_Of(bitmap);
    if (!source) return;
    HostRect const from = Placed(ZVDrawInfo{}).Box(sx, sy, sw, sh);
    Paint(draw, [&](PrimitiveFrame const& frame) {
        frame.Port().surface.Stretch(*source, from, frame.Box(dx, dy, dw, dh));
    });
}
