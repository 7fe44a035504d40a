// Drawing in a window is drawing on a bitmap, and what was drawn is what shows.
#include "DesktopTest.h"

#include <ZVDraw.h>

#include <random>

namespace {

/// Draws some of everything, the same for the same seed.
void Draw_Something(ZVDrawInfo* draw, long width, long height, unsigned seed)
{
    std::mt19937 random(seed);
    auto const number = [&](long low, long high) {
        return low + static_cast<long>(random() % static_cast<unsigned long>(high - low));
    };
    auto const x = [&] { return number(-20, width + 20); };
    auto const y = [&] { return number(-20, height + 20); };
    long const x1 = x(), y1 = y(), x2 = x(), y2 = y();
    SetPenZV(draw, random() & 0xFFFFFF);
    SetBGPenZV(draw, random() & 0xFFFFFF);
    SetTextTransparencyZV(draw, number(0, 2));
    SetFontZV(draw, number(0, 6));
    if (number(0, 2)) SetClipRectZV(draw, x(), y(), number(0, width), number(0, height));
    switch (number(0, 9)) {
    case 0: FillRectZV(draw, x1, y1, x2, y2); break;
    case 1: EraseRectZV(draw, x1, y1, x2, y2); break;
    case 2: DrawRectZV(draw, x1, y1, x2, y2); break;
    case 3: DrawLineZV(draw, x1, y1, x2, y2); break;
    case 4: FillEllipseZV(draw, x1, y1, x2, y2); break;
    case 5: DrawEllipseZV(draw, x1, y1, x2, y2); break;
    case 6: FillPolygonZV(draw, 3, x1, y1, x2, y2, x(), y()); break;
    case 7: DrawShineBorderZV(draw, x1, y1, number(4, 60), number(4, 60)); break;
    default: DrawTextZV(draw, "Quick \u03b1\u03b2", x1, y1); break;
    }
}

}  // namespace

TEST_F(DesktopTest, AWindowShowsWhatABitmapHoldsAfterTheSameDrawing)
{
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100);
    ZVWindow* const window = palette->window;
    long const width = palette->width, height = palette->height;
    ZVNativeBitmap* const bitmap = AllocNativeBitmapZV(width, height, 32);
    for (unsigned seed = 0; seed < 600; ++seed) {
        ZVDrawInfo *const inWindow = DrawBeginZV(window), *const onBitmap = DrawBeginZV(bitmap);
        if (seed == 0)
            for (ZVDrawInfo* draw : {inWindow, onBitmap})
                EraseRectZV(draw, 0, 0, width - 1, height - 1);
        Draw_Something(inWindow, width, height, seed);
        Draw_Something(onBitmap, width, height, seed);
        DrawEndZV(inWindow);
        DrawEndZV(onBitmap);
    }
    auto* const shown = static_cast<ZVBufferRGBA8*>(HeadlessPictureZV(window));
    long differences = 0;
    for (long y = 0; y < height; ++y)
        for (long x = 0; x < width; ++x) {
            ZVPixelRGBA8 const& pixel = *shown->GetIterator(x, y);
            unsigned char const* const bytes = bitmap->Pixels + y * bitmap->RowBytes + x * 4;
            differences += pixel.Red() != bytes[2] || pixel.Green() != bytes[1] || pixel.Blue() != bytes[0];
        }
    EXPECT_EQ(differences, 0);
    FreeBitmapZV(shown);
    FreeBitmapZV(bitmap);
}
