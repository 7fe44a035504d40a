// Compositing onto native bitmaps: the told arithmetic to the last bit on every vector path, and where it
// happens.
#include "PixelTestTools.h"

#include "ZVEnvironment.h"

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

/// The told result of all bytes, by alpha, source and background.
std::vector<uint8_t> const& Told_Bytes()
{
    static std::vector<uint8_t> const table = [] {
        std::vector<uint8_t> bytes(1 << 24);
        for (uint32_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<uint8_t>(Told_Blend((i >> 16) / 255.0, (i >> 8 & 0xFF) / 255.0, i & 0xFF));
        return bytes;
    }();
    return table;
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

/// What the native word at a place becomes when a source pixel is blended over it, or over a colour.
uint32_t Told_Word(ZVBitmap const& source, long x, long y, uint32_t word, long depth, uint32_t const* color)
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

/// A rectangle of a blend, and the clip or background of its kind.
struct Area {
    char const* why;
    long sx, sy, w, h, dx, dy;
    ZVRectT<long> const* clip;
    ZVRectT<long> touched;  // in the destination, with the source at (touched.x - dx + sx, ...)
};

}  // namespace

// Background bytes run along the row, source bytes down, so that every alpha meets all pairs; each channel
// gets its own pair, so that a mix-up of channels shows.
TEST(BitmapBlend, AllBytesBlendAsTold)
{
    auto const& told = Told_Bytes();
    BitmapPtr const source = Make_Bitmap(256, 256, ZV_BITMAP_RGBA8);
    NativePtr const target = Make_Native(256, 256, 32);
    for (long i = 0; i < 256 * 256; ++i) {
        auto const value = static_cast<unsigned char>(i >> 8);
        unsigned char const rgb[] = {value, static_cast<unsigned char>(value * 7),
                                     static_cast<unsigned char>(~value)};
        std::memcpy(source->Pixels + 4 * i, rgb, 3);
    }
    On_Each_Target([&] {
        long wrong = 0;
        for (uint32_t alpha = 0; alpha < 256; ++alpha) {
            for (uint32_t i = 0; i < 256 * 256; ++i) {
                source->Pixels[4 * i + 3] = static_cast<unsigned char>(alpha);
                uint32_t const back = i & 0xFF;
                reinterpret_cast<uint32_t*>(target->Pixels)[i] = i << 24 | back << 16 | back << 8 | back;
            }
            AlphaBlendBitmapZV(source.get(), target.get(), 0, 0, -1, -1, 0, 0, nullptr);
            uint8_t const* const byAlpha = &told[alpha << 16];
            for (uint32_t i = 0; i < 256 * 256; ++i) {
                unsigned char const* const rgba = source->Pixels + 4 * i;
                uint32_t const back = i & 0xFF;
                uint32_t const expected = i << 24 | uint32_t{byAlpha[rgba[0] << 8 | back]} << 16 |
                                          uint32_t{byAlpha[rgba[1] << 8 | back]} << 8 |
                                          byAlpha[rgba[2] << 8 | back];
                wrong += reinterpret_cast<uint32_t*>(target->Pixels)[i] != expected;
            }
        }
        EXPECT_EQ(wrong, 0);
    });
}

TEST(BitmapBlend, AllBytesOverAColorBlendAsTold)
{
    auto const& told = Told_Bytes();
    BitmapPtr const source = Make_Bitmap(256, 256, ZV_BITMAP_RGBA8);
    NativePtr const target = Make_Native(256, 256, 32);
    for (uint32_t i = 0; i < 256 * 256; ++i) {
        auto const value = static_cast<unsigned char>(i);
        unsigned char const rgba[] = {value, static_cast<unsigned char>(value * 7),
                                      static_cast<unsigned char>(~value), static_cast<unsigned char>(i >> 8)};
        std::memcpy(source->Pixels + 4 * i, rgba, 4);
    }
    On_Each_Target([&] {
        long wrong = 0;
        for (uint32_t back = 0; back < 256; ++back) {
            unsigned long const color = back << 16 | (back ^ 0x55) << 8 | (255 - back);
            Fill_Random(*target, back);
            NativePtr const before = Make_Native(256, 256, 32);
            Fill_Random(*before, back);
            AlphaCopyBitmapZV(source.get(), target.get(), color, 0, 0, -1, -1, 0, 0);
            for (uint32_t i = 0; i < 256 * 256; ++i) {
                unsigned char const* const rgba = source->Pixels + 4 * i;
                uint32_t expected = reinterpret_cast<uint32_t*>(before->Pixels)[i] & 0xFF000000;
                for (int c = 0; c < 3; ++c)
                    expected |= uint32_t{told[static_cast<uint32_t>(rgba[3]) << 16 | uint32_t{rgba[c]} << 8 |
                                              (color >> (16 - 8 * c) & 0xFF)]}
                                << (16 - 8 * c);
                wrong += reinterpret_cast<uint32_t*>(target->Pixels)[i] != expected;
            }
        }
        EXPECT_EQ(wrong, 0);
    });
}

TEST(BitmapBlend, EverySourceBlendsOverEveryDepth)
{
    uint32_t const color = 0x20C0F0;
    On_Each_Target([&] {
        for (ZVBitmapType const type : rgbaTypes) {
            for (long const depth : nativeDepths) {
                for (uint32_t const* const over : {static_cast<uint32_t const*>(nullptr), &color}) {
                    SCOPED_TRACE(testing::Message() << "type " << int{type} << ", depth " << depth);
                    BitmapPtr const source = Make_Bitmap(301, 7, type);
                    if (type == ZV_BITMAP_RGBAFLOAT)
                        for (long i = 0; i < 301 * 7 * 4; ++i)
                            reinterpret_cast<float*>(source->Pixels)[i] =
                                static_cast<float>(i * 37 % 1009) / 1008.0F;
                    else
                        Fill_Random(*source, 3);
                    NativePtr const target = Make_Native(301, 7, depth), before = Make_Native(301, 7, depth);
                    Fill_Random(*target, 4);
                    Fill_Random(*before, 4);
                    if (over)
                        AlphaCopyBitmapZV(source.get(), target.get(), *over, 0, 0, -1, -1, 0, 0);
                    else
                        AlphaBlendBitmapZV(source.get(), target.get(), 0, 0, -1, -1, 0, 0, nullptr);
                    for (long y = 0; y < 7; ++y)
                        for (long x = 0; x < 301; ++x)
                            ASSERT_EQ(Get_Native(*target, x, y),
                                      Told_Word(*source, x, y, Get_Native(*before, x, y), depth, over))
                                << x << ", " << y;
                }
            }
        }
    });
}

// What leaves the byte keeps its low eight bits, as there is no clamp; what is no number becomes 0.
TEST(BitmapBlend, FloatsOutsideTheirRangeWrap)
{
    BitmapPtr const source = Make_Bitmap(1, 1, ZV_BITMAP_RGBAFLOAT);
    NativePtr const target = Make_Native(1, 1, 32);
    struct Case {
        float value;
        uint32_t byte;
    };
    On_Each_Target([&] {
        for (Case const& row : {Case{2.0F, 510 - 256}, Case{-0.5F, 256 - 127}, Case{1e30F, 0},
                                Case{-1e30F, 0}, Case{std::numeric_limits<float>::quiet_NaN(), 0}}) {
            for (long channel = 0; channel < 3; ++channel)
                Set_Float(*source, 0, 0, channel, row.value);
            Set_Float(*source, 0, 0, 3, 1.0F);
            Set_Native(*target, 0, 0, 0x11223344);
            AlphaBlendBitmapZV(source.get(), target.get(), 0, 0, -1, -1, 0, 0, nullptr);
            EXPECT_EQ(Get_Native(*target, 0, 0), 0x11000000 | row.byte * 0x010101) << row.value;
        }
    });
}

// Every length from nothing to some vectors, at every alignment: nothing beyond the pixels changes.
TEST(BitmapBlend, KeepsToItsPixels)
{
    BitmapPtr const source = Make_Bitmap(64, 1, ZV_BITMAP_RGBA8);
    Fill_Random(*source, 5);
    On_Each_Target([&] {
        for (long width = 0; width <= 40; ++width) {
            for (long x = 0; x < 9; ++x) {
                NativePtr const target = Make_Native(64, 1, 32, 0x33);
                AlphaBlendBitmapZV(source.get(), target.get(), 2, 0, width, 1, x, 0, nullptr);
                for (long i = 0; i < 64; ++i) {
                    bool const isInside = i >= x && i < x + width;
                    ASSERT_EQ(Get_Native(*target, i, 0),
                              isInside ? Told_Word(*source, i - x + 2, 0, 0x33333333, 32, nullptr)
                                       : 0x33333333)
                        << width << " at " << x;
                }
            }
        }
    });
}

TEST(BitmapBlend, ClipsAreLimitsNotSizes)
{
    static ZVRectT<long> const clip{2, 1, 6, 4}, beyond{-3, -3, 50, 50}, nothing{5, 5, 5, 5};
    static Area const areas[] = {
        {"no clip, whole source", 0, 0, -1, -1, 0, 0, nullptr, {0, 0, 8, 6}},
        {"the third and fourth member are right and bottom", 0, 0, -1, -1, 0, 0, &clip, {2, 1, 4, 3}},
        {"left and top move the source along", 1, 0, 5, 5, 0, 0, &clip, {2, 1, 3, 3}},
        {"a negative origin moves the source too", 0, 0, -1, -1, -3, -2, nullptr, {0, 0, 5, 4}},
        {"cut at the destination", 0, 0, 8, 6, 6, 5, nullptr, {6, 5, 4, 2}},
        {"a clip beyond the destination adds nothing", 0, 0, -1, -1, 6, 5, &beyond, {6, 5, 4, 2}},
        {"nothing inside", 0, 0, -1, -1, 0, 0, &nothing, {0, 0, 0, 0}},
        {"a size of 0", 0, 0, 0, 3, 0, 0, nullptr, {0, 0, 0, 0}},
        {"what is not in the source is not read", -2, 4, 5, 5, 0, 0, nullptr, {2, 0, 3, 2}},
    };
    BitmapPtr const source = Make_Bitmap(8, 6, ZV_BITMAP_RGBA8);
    Fill_Random(*source, 6);
    for (Area const& area : areas) {
        NativePtr const target = Make_Native(10, 7, 32, 0x33);
        AlphaBlendBitmapZV(source.get(), target.get(), area.sx, area.sy, area.w, area.h, area.dx, area.dy,
                           area.clip);
        for (long y = 0; y < 7; ++y)
            for (long x = 0; x < 10; ++x)
                ASSERT_EQ(Get_Native(*target, x, y),
                          area.touched.IsIn(x, y) ? Told_Word(*source, x - area.dx + area.sx,
                                                              y - area.dy + area.sy, 0x33333333, 32, nullptr)
                                                  : 0x33333333)
                    << area.why << " at " << x << ", " << y;
    }
}

TEST(BitmapBlend, CopyOverAColorClipsAtTheDestination)
{
    BitmapPtr const source = Make_Bitmap(8, 6, ZV_BITMAP_RGBA8);
    Fill_Random(*source, 6);
    NativePtr const target = Make_Native(10, 7, 32, 0x33);
    AlphaCopyBitmapZV(source.get(), target.get(), 0x102030UL, 1, 0, 20, -1, -2, 3);
    uint32_t const color = 0x102030;
    ZVRectT<long> const touched{0, 3, 5, 4};
    for (long y = 0; y < 7; ++y)
        for (long x = 0; x < 10; ++x)
            ASSERT_EQ(Get_Native(*target, x, y),
                      touched.IsIn(x, y) ? Told_Word(*source, x + 3, y - 3, 0x33333333, 32, &color)
                                         : 0x33333333);
}

TEST(BitmapBlend, BackgroundsMayBePens)
{
    ASSERT_NE(InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, 0), nullptr);
    SetStylePenZV(ZV_PEN_MARKED, 0x00102030UL);
    BitmapPtr const source = Make_Bitmap(1, 1, ZV_BITMAP_RGBA8);
    NativePtr const target = Make_Native(1, 1, 32, 0x77);
    AlphaCopyBitmapZV(source.get(), target.get(), ZV_PEN_MARKED, 0, 0, -1, -1, 0, 0);
    EXPECT_EQ(Get_Native(*target, 0, 0), 0x77102030U);
    CleanUpZV();
}

TEST(BitmapBlend, WhatHasNoRuleDoesNothing)
{
    NativePtr const target = Make_Native(4, 4, 32, 0x33);
    for (ZVBitmapType const type : monoTypes)
        AlphaBlendBitmapZV(Make_Bitmap(4, 4, type, 0xFF).get(), target.get(), 0, 0, -1, -1, 0, 0, nullptr);
    AlphaBlendBitmapZV(nullptr, target.get(), 0, 0, -1, -1, 0, 0, nullptr);
    AlphaCopyBitmapZV(nullptr, target.get(), 0xFFFFFFUL, 0, 0, -1, -1, 0, 0);
    EXPECT_EQ(Get_Native(*target, 0, 0), 0x33333333U);
    BitmapPtr const source = Make_Bitmap(4, 4, ZV_BITMAP_RGBA8, 0xFF);
    AlphaBlendBitmapZV(source.get(), nullptr, 0, 0, -1, -1, 0, 0, nullptr);
    NativePtr const indexed = Make_Native(4, 4, 8, 0x33);
    AlphaBlendBitmapZV(source.get(), indexed.get(), 0, 0, -1, -1, 0, 0, nullptr);
    AlphaCopyBitmapZV(source.get(), indexed.get(), 0UL, 0, 0, -1, -1, 0, 0);
    EXPECT_EQ(Bytes(*indexed).front(), 0x33);
}
