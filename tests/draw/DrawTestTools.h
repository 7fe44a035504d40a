// A bitmap to draw on, and what should have become of it, pixel by pixel.
#pragma once

#include "TestEnvironment.h"

#include <array>
#include <cstring>
#include <functional>
#include <memory>

namespace DrawTest {

inline constexpr std::array depths = {8L, 16L, 32L};

struct Releaser {
    void operator()(ZVNativeBitmap* bitmap) const { FreeBitmapZV(bitmap); }
    void operator()(ZVDrawInfo* draw) const { DrawEndZV(draw); }
};
using BitmapPtr = std::unique_ptr<ZVNativeBitmap, Releaser>;
using ContextPtr = std::unique_ptr<ZVDrawInfo, Releaser>;

/// The pixel of a colour, by the layouts alone.
inline uint32_t Pixel_Of(uint32_t color, long depth)
{
    uint32_t const red = color >> 16 & 0xFF, green = color >> 8 & 0xFF, blue = color & 0xFF;
    if (depth == 8) return (77 * red + 150 * green + 29 * blue + 128) / 256;
    if (depth == 16) return red / 8 * 1024 + green / 8 * 32 + blue / 8;
    return 0xFF000000 + red * 65536 + green * 256 + blue;
}

/// The colour of a pixel.
inline uint32_t Color_Of(uint32_t pixel, long depth)
{
    if (depth == 8) return pixel * 65536 + pixel * 256 + pixel;
    if (depth == 16) return pixel / 1024 * 8 * 65536 + pixel / 32 % 32 * 8 * 256 + pixel % 32 * 8;
    return pixel & 0xFFFFFF;
}

inline uint32_t Get_Pixel(ZVNativeBitmap const& bitmap, long x, long y)
{
    uint32_t word = 0;  // little-endian
    std::memcpy(&word, bitmap.Pixels + y * bitmap.RowBytes + x * bitmap.PackSize,
                static_cast<std::size_t>(bitmap.PackSize));
    return word;
}

/// A bitmap in one colour with a context that draws in another.
struct Canvas {
    static constexpr long width = 41, height = 33;
    static constexpr uint32_t paper = 0x405060, ink = 0xD8A020;

    long depth;
    BitmapPtr bitmap;
    ContextPtr draw;

    explicit Canvas(long newDepth, long w = width, long h = height)
        : depth(newDepth), bitmap(AllocNativeBitmapZV(w, h, newDepth)), draw(DrawBeginZV(bitmap.get()))
    {
        SetBGPenZV(draw.get(), paper);
        EraseRectZV(draw.get(), 0, 0, w - 1, h - 1);
        SetPenZV(draw.get(), ink);
    }

    uint32_t At(long x, long y) const { return Get_Pixel(*bitmap, x, y); }

    /// Each pixel has the colour that `color` gives for it.
    void Expect(std::function<uint32_t(long x, long y)> const& color, char const* what) const
    {
        int faults = 0;
        for (long y = 0; y < bitmap->Height; ++y) {
            for (long x = 0; x < bitmap->Width && faults < 5; ++x) {
                bool const isRight = At(x, y) == Pixel_Of(color(x, y), depth);
                EXPECT_TRUE(isRight) << what << " at " << x << ',' << y << " in depth " << depth;
                faults += isRight ? 0 : 1;
            }
        }
    }

    void Expect_Inked(std::function<bool(long x, long y)> const& isInked, char const* what) const
    {
        Expect([&](long x, long y) { return isInked(x, y) ? ink : paper; }, what);
    }
};

}  // namespace DrawTest
