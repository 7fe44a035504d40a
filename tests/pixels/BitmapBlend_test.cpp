// Compositing onto native bitmaps: the told arithmetic to the last bit on every vector path, and where it
// happens.
#include "PixelTestTools.h"

#include "TestEnvironment.h"

#include <cmath>
#include <optional>

using namespace PixelTest;

namespace {

/// The told arithmetic, each step in the precision that is told for it.
uint32_t Told_Blend(double alphaFraction, double source, uint32_t back)
{
    float const alpha = static_cast<float>(alphaFraction);
    float const kept = static_cast<float>(back) * (1.0F - alpha);
    double const sum = static_cast<double>(kept) + static_cast<double>(alpha) * 255.0 * source;
    return static_cast<uint32_t>(static_cast<int32_t>(static_cast<float>(sum))) & 0xFF;
}

/// A channel as a fraction, by the told constants.
double Fraction_Of(ZVBitmap const& bitmap, long x, long y, long channel)
{
    uint32_t const raw = Get_Raw(bitmap, x, y, channel);
    switch (bitmap.Type) {
    case ZV_BITMAP_RGBA8: return raw / 255.0;
    case ZV_BITMAP_RGBA10: return raw * 0.0009775171065493646;
    case ZV_BITMAP_RGBA12: return raw * 0.0002442002442002442;
    case ZV_BITMAP_RGBA16: return raw * 1.5259021896696422e-5;
    default: return std::bit_cast<float>(raw);
    }
}

using Color = std::optional<uint32_t>;

/// What the native word at a place becomes when a source pixel is blended over it, or over a colour.
uint32_t Told_Word(ZVBitmap const& source, long x, long y, uint32_t word, long depth, Color color = {})
{
    uint32_t result = depth == 32 ? word & 0xFF000000 : 0;
    for (int channel = 0; channel < 3; ++channel) {
        int const shift = 16 - 8 * channel, field = 10 - 5 * channel;
        uint32_t const before = depth == 16 ? (word >> field & 31) << 3 : word >> shift & 0xFF;
        uint32_t const blended = Told_Blend(Fraction_Of(source, x, y, 3), Fraction_Of(source, x, y, channel),
                                            color ? *color >> shift & 0xFF : before);
        result |= depth == 16 ? blended >> 3 << field : blended << shift;
    }
    return result;
}

void Blend(ZVBitmap const* source, ZVNativeBitmap* target, Color color = {})
{
    if (color)
        AlphaCopyBitmapZV(source, target, *color, 0, 0, -1, -1, 0, 0);
    else
        AlphaBlendBitmapZV(source, target, 0, 0, -1, -1, 0, 0, nullptr);
}

}  // namespace

// Background bytes run along the row, source bytes down, so that every alpha meets all pairs; each channel
// gets its own pair, so that a mix-up of channels shows. Over a colour alphas run down for each background.
TEST(BitmapBlend, AllBytesBlendAsTold)
{
    static std::vector<uint8_t> const told = [] {  // by alpha, source and background
        std::vector<uint8_t> bytes(1 << 24);
        for (uint32_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<uint8_t>(Told_Blend((i >> 16) / 255.0, (i >> 8 & 0xFF) / 255.0, i & 0xFF));
        return bytes;
    }();
    BitmapPtr const source = Make_Bitmap(256, 256, ZV_BITMAP_RGBA8);
    NativePtr const target = Make_Native(256, 256, 32);
    auto* const words = reinterpret_cast<uint32_t*>(target->Pixels);
    On_Each_Target([&] {
        long wrong = 0;
        for (uint32_t turn = 0; turn < 512; ++turn) {
            bool const isOverColor = turn >= 256;
            uint32_t const each = turn & 0xFF, color = each << 16 | (each ^ 0x55) << 8 | (255 - each);
            for (uint32_t i = 0; i < 256 * 256; ++i) {
                auto const value = static_cast<unsigned char>(isOverColor ? i : i >> 8);
                unsigned char const rgba[] = {value, static_cast<unsigned char>(value * 7),
                                              static_cast<unsigned char>(~value),
                                              static_cast<unsigned char>(isOverColor ? i >> 8 : each)};
                std::memcpy(source->Pixels + 4 * i, rgba, 4);
                words[i] = i << 24 | (i & 0xFF) * 0x010101;
            }
            Blend(source.get(), target.get(), isOverColor ? Color(color) : Color());
            for (uint32_t i = 0; i < 256 * 256; ++i) {
                unsigned char const* const rgba = source->Pixels + 4 * i;
                uint32_t const back = isOverColor ? color : (i & 0xFF) * 0x010101;
                uint32_t expected = i << 24;
                for (int c = 0, shift = 16; c < 3; ++c, shift -= 8)
                    expected |=
                        uint32_t{
                            told[uint32_t{rgba[3]} << 16 | uint32_t{rgba[c]} << 8 | (back >> shift & 0xFF)]}
                        << shift;
                wrong += words[i] != expected;
            }
        }
        EXPECT_EQ(wrong, 0);
    });
}

TEST(BitmapBlend, EverySourceBlendsOverEveryDepth)
{
    On_Each_Target([&] {
        for (ZVBitmapType const type : rgbaTypes) {
            BitmapPtr const source = Make_Random(301, 7, type, 3);
            if (Is_Float(type))
                for (long i = 0; i < 301 * 7 * 4; ++i)
                    reinterpret_cast<float*>(source->Pixels)[i] = static_cast<float>(i * 37 % 1009) / 1008.0F;
            for (long const depth : nativeDepths) {
                for (Color const over : {Color(), Color(0x20C0F0)}) {
                    SCOPED_TRACE(int{type});
                    NativePtr const before = Make_Random_Native(301, 7, depth, 4), target = Copy_Of(*before);
                    Blend(source.get(), target.get(), over);
                    Expect_Words(*target, [&](long x, long y) {
                        return Told_Word(*source, x, y, Get_Native(*before, x, y), depth, over);
                    });
                }
            }
        }
    });
}

// What leaves the byte keeps its low eight bits, as there is no clamp; what is no number becomes 0.
TEST(BitmapBlend, FloatsAreUsedAsTheyAre)
{
    BitmapPtr const source = Make_Bitmap(1, 1, ZV_BITMAP_RGBAFLOAT);
    Set_Float(*source, 0, 0, 3, 1.0F);
    On_Each_Target([&] {
        for (auto const& [value, byte] : {std::pair(2.0F, 510U - 256),
                                          {-0.5F, 256U - 127},
                                          {1e30F, 0U},
                                          {-1e30F, 0U},
                                          {std::nanf(""), 0U}}) {
            for (long channel = 0; channel < 3; ++channel)
                Set_Float(*source, 0, 0, channel, value);
            NativePtr const target = Make_Native(1, 1, 32, 0x11);
            Blend(source.get(), target.get());
            EXPECT_EQ(Get_Native(*target, 0, 0), 0x11000000 | byte * 0x010101) << value;
        }
    });
}

// Every length from nothing to some vectors, at every alignment: nothing beyond the pixels changes.
TEST(BitmapBlend, KeepsToItsPixels)
{
    BitmapPtr const source = Make_Random(64, 1, ZV_BITMAP_RGBA8, 5);
    On_Each_Target([&] {
        for (long width = 0; width <= 40; ++width) {
            for (long left = 0; left < 9; ++left) {
                NativePtr const target = Make_Native(64, 1, 32, 0x33);
                AlphaBlendBitmapZV(source.get(), target.get(), 2, 0, width, 1, left, 0, nullptr);
                Expect_Words(*target, [&](long x, long) {
                    return x >= left && x < left + width ? Told_Word(*source, x - left + 2, 0, 0x33333333, 32)
                                                         : 0x33333333;
                });
            }
        }
    });
}

TEST(BitmapBlend, ClipsAreLimitsNotSizes)
{
    static ZVRectT<long> const clip{2, 1, 6, 4}, beyond{-3, -3, 50, 50}, nothing{5, 5, 5, 5};
    struct Area {
        char const* why;
        long sx, sy, w, h, dx, dy;
        ZVRectT<long> const* clip;
        ZVRectT<long> touched;  // in the destination, with the source at (x - dx + sx, y - dy + sy)
        Color over = {};
    };
    BitmapPtr const source = Make_Random(8, 6, ZV_BITMAP_RGBA8, 6);
    for (Area const& area : {
             Area{"no clip, whole source", 0, 0, -1, -1, 0, 0, nullptr, {0, 0, 8, 6}},
             {"the third and fourth member are right and bottom", 0, 0, -1, -1, 0, 0, &clip, {2, 1, 4, 3}},
             {"left and top move the source along", 1, 0, 5, 5, 0, 0, &clip, {2, 1, 3, 3}},
             {"a negative origin moves the source too", 0, 0, -1, -1, -3, -2, nullptr, {0, 0, 5, 4}},
             {"cut at the destination", 0, 0, 8, 6, 6, 5, nullptr, {6, 5, 4, 2}},
             {"a clip beyond the destination adds nothing", 0, 0, -1, -1, 6, 5, &beyond, {6, 5, 4, 2}},
             {"nothing inside", 0, 0, -1, -1, 0, 0, &nothing, {0, 0, 0, 0}},
             {"a size of 0", 0, 0, 0, 3, 0, 0, nullptr, {0, 0, 0, 0}},
             {"what is not in the source is not read", -2, 4, 5, 5, 0, 0, nullptr, {2, 0, 3, 2}},
             {"over a colour at the destination's edges",
              1,
              0,
              20,
              -1,
              -2,
              3,
              nullptr,
              {0, 3, 5, 4},
              0x102030},
         }) {
        SCOPED_TRACE(area.why);
        NativePtr const target = Make_Native(10, 7, 32, 0x33);
        if (area.over)
            AlphaCopyBitmapZV(source.get(), target.get(), *area.over, area.sx, area.sy, area.w, area.h,
                              area.dx, area.dy);
        else
            AlphaBlendBitmapZV(source.get(), target.get(), area.sx, area.sy, area.w, area.h, area.dx, area.dy,
                               area.clip);
        Expect_Words(*target, [&](long x, long y) {
            return area.touched.IsIn(x, y) ? Told_Word(*source, x - area.dx + area.sx, y - area.dy + area.sy,
                                                       0x33333333, 32, area.over)
                                           : 0x33333333;
        });
    }
}

TEST(BitmapBlend, BackgroundsMayBePens)
{
    TestEnvironment const environment;
    SetStylePenZV(ZV_PEN_MARKED, 0x00102030UL);
    NativePtr const target = Make_Native(1, 1, 32, 0x77);
    Blend(Make_Bitmap(1, 1, ZV_BITMAP_RGBA8).get(), target.get(), ZV_PEN_MARKED);
    EXPECT_EQ(Get_Native(*target, 0, 0), 0x77102030U);
}

TEST(BitmapBlend, WhatHasNoRuleDoesNothing)
{
    BitmapPtr const source = Make_Bitmap(4, 4, ZV_BITMAP_RGBA8, 0xFF);
    NativePtr const target = Make_Native(4, 4, 32, 0x33), indexed = Make_Native(4, 4, 8, 0x33);
    for (Color const over : {Color(), Color(0xFFFFFF)}) {
        for (ZVBitmapType const type : monoTypes)
            Blend(Make_Bitmap(4, 4, type, 0xFF).get(), target.get(), over);
        Blend(nullptr, target.get(), over);
        Blend(source.get(), nullptr, over);
        Blend(source.get(), indexed.get(), over);
    }
    EXPECT_TRUE(Is_All(*target, 0x33));
    EXPECT_TRUE(Is_All(*indexed, 0x33));
}
