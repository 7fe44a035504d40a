// Bitmaps copied and scaled into contexts, between all depths.
#include "DrawTestTools.h"

#include <random>

using namespace DrawTest;

namespace {

class DrawBitmap : public EnvironmentTest {};

BitmapPtr Make_Noise(long width, long height, long depth)
{
    BitmapPtr bitmap(AllocNativeBitmapZV(width, height, depth));
    std::mt19937 random(static_cast<unsigned>(width));
    for (int32_t i = 0; i < bitmap->Size; ++i)
        bitmap->Pixels[i] = static_cast<unsigned char>(random());
    return bitmap;
}

uint32_t Color_At(ZVNativeBitmap const& bitmap, long x, long y)
{
    uint32_t const pixel = Get_Pixel(bitmap, x, y);
    return Color_Of(bitmap.Depth == 16 ? pixel & 0x7FFF : pixel, bitmap.Depth);
}

}  // namespace

TEST_F(DrawBitmap, CopiesBetweenAllDepths)
{
    for (long from : depths) {
        BitmapPtr const source = Make_Noise(17, 13, from);
        for (long to : depths) {
            for (auto const& [x, y] : {std::pair{4L, 5L}, {-6L, -3L}, {35L, 30L}, {100L, 0L}}) {
                Canvas canvas(to);
                canvas.draw->OriginX = 1;
                SetClipRectZV(canvas.draw.get(), 0, 0, 18, 40);
                DrawBitmapZV(canvas.draw.get(), source.get(), x - 1, y);
                for (long row = 0; row < Canvas::height; ++row) {
                    for (long column = 0; column < Canvas::width; ++column) {
                        bool const isCovered = column >= x && column < x + 17 && row >= y && row < y + 13 &&
                                               column >= 1 && column < 19;
                        uint32_t expected = Pixel_Of(Canvas::paper, to);
                        if (isCovered && from == to)
                            expected = Get_Pixel(*source, column - x, row - y);
                        else if (isCovered)
                            expected = Pixel_Of(Color_At(*source, column - x, row - y), to);
                        ASSERT_EQ(canvas.At(column, row), expected) << from << " to " << to;
                    }
                }
            }
        }
    }
}

TEST_F(DrawBitmap, ABitmapCanBeDrawnOnItself)
{
    for (long depth : depths) {
        for (auto const& [dx, dy] :
             {std::pair{3L, 2L}, {-3L, -2L}, {3L, -2L}, {-5L, 0L}, {5L, 0L}, {0L, 1L}}) {
            BitmapPtr const original = Make_Noise(31, 23, depth), bitmap = Make_Noise(31, 23, depth);
            ContextPtr const draw(DrawBeginZV(bitmap.get()));
            DrawBitmapZV(draw.get(), bitmap.get(), dx, dy);
            for (long y = 0; y < 23; ++y) {
                for (long x = 0; x < 31; ++x) {
                    bool const isCovered = x >= dx && x < 31 + dx && y >= dy && y < 23 + dy;
                    ASSERT_EQ(Get_Pixel(*bitmap, x, y),
                              isCovered ? Get_Pixel(*original, x - dx, y - dy) : Get_Pixel(*original, x, y))
                        << dx << ',' << dy;
                }
            }
        }
    }
}

TEST_F(DrawBitmap, StretchingTakesThePixelUnderTheUpperLeftCorner)
{
    struct {
        char const* why;
        long sx, sy, sw, sh, dx, dy, dw, dh;
    } const rows[] = {
        {"up", 2, 3, 5, 4, 1, 2, 20, 13},
        {"down", 0, 0, 17, 13, 5, 5, 6, 5},
        {"beyond the source", -4, -5, 30, 30, 2, 1, 35, 31},
        {"beyond the target", 0, 0, 17, 13, -30, -20, 100, 80},
        {"same size", 1, 1, 9, 9, 20, 20, 9, 9},
        {"nothing", 0, 0, 0, 5, 0, 0, 10, 10},
        {"into nothing", 0, 0, 5, 5, 3, 3, -4, 7},
        {"of what is not there", 40, 0, 5, 5, 0, 0, 20, 20},
    };
    for (long from : depths) {
        BitmapPtr const source = Make_Noise(17, 13, from);
        for (long to : depths) {
            for (auto const& r : rows) {
                Canvas canvas(to);
                StretchBitmapZV(canvas.draw.get(), source.get(), r.sx, r.sy, r.sw, r.sh, r.dx, r.dy, r.dw,
                                r.dh);
                for (long y = 0; y < Canvas::height; ++y) {
                    for (long x = 0; x < Canvas::width; ++x) {
                        uint32_t expected = Pixel_Of(Canvas::paper, to);
                        bool const isIn = x >= r.dx && x < r.dx + r.dw && y >= r.dy && y < r.dy + r.dh;
                        long const sx = isIn ? r.sx + (x - r.dx) * r.sw / r.dw : -1;
                        long const sy = isIn ? r.sy + (y - r.dy) * r.sh / r.dh : -1;
                        if (r.sw > 0 && sx >= 0 && sx < 17 && sy >= 0 && sy < 13)
                            expected = from == to ? Get_Pixel(*source, sx, sy)
                                                  : Pixel_Of(Color_At(*source, sx, sy), to);
                        ASSERT_EQ(canvas.At(x, y), expected) << r.why << ' ' << from << " to " << to;
                    }
                }
            }
        }
    }
}

TEST_F(DrawBitmap, DepthsWithoutASurfaceAreNotDrawn)
{
    BitmapPtr const source = Make_Noise(17, 13, 32);
    source->Depth = 24;
    Canvas canvas(32);
    DrawBitmapZV(canvas.draw.get(), source.get(), 0, 0);
    DrawBitmapZV(canvas.draw.get(), nullptr, 0, 0);
    canvas.Expect_Inked([](long, long) { return false; }, "24 bits");
}
