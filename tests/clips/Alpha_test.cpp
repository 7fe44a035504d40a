// Alpha conventions: each pixel by the told formula on every vector path, on reading and on writing.
#include "pixels/PixelTestTools.h"

#include "ZVLibInternal.h"
#include "pixels/BitmapVisit.h"

#include <cmath>
#include <functional>

using namespace PixelTest;

namespace {

/// A convention of a file.
struct Convention {
    uint8_t type;
    bool isInverted, isPremultiplied;
    double matte[3];
};

ZVClip Make_Clip(Convention const& convention)
{
    ZVClip clip{};
    clip.Flags = ZV_CLIP_ALPHA_KNOWN;
    clip.AlphaType = convention.type;
    clip.AlphaInvert = convention.isInverted;
    clip.AlphaPremultiplied = convention.isPremultiplied;
    clip.MatteRed = convention.matte[0];
    clip.MatteGreen = convention.matte[1];
    clip.MatteBlue = convention.matte[2];
    clip.Background = 0xFF102030;
    return clip;
}

/// Mattes black, white, of channel values, of halves of one in 16 bits, and of none.
std::vector<Convention> All_Conventions()
{
    std::vector<Convention> all;
    for (bool const isInverted : {false, true}) {
        for (uint8_t type = 0; type < 4; ++type)
            for (bool const isPremultiplied : {false, true})
                all.push_back({type, isInverted, isPremultiplied, {51.0 / 255, 0, 1}});
        for (Convention const& row : {Convention{2, isInverted, true, {0, 0, 0}},
                                      {2, isInverted, true, {1, 1, 1}},
                                      {2, isInverted, true, {0.5, 1.5 / 65535, 0}},
                                      {2, isInverted, true, {0.3123, 0.5, 0.0001}}})
            all.push_back(row);
    }
    return all;
}

void Read(ZVBitmap* bitmap, ZVClip* clip, ZVRectT<long> const& area = {0, 0, 100000, 100000})
{
    Visit_RGBA(*bitmap, [&]<typename Buffer>(Buffer& typed) {
        Interpret_Alpha<Buffer, typename Buffer::PixelType>(&typed, clip, area.x, area.y, area.x + area.width,
                                                            area.y + area.height);
    });
}

/// All pairs of a colour and an alpha in 8 bits, and in deeper types some of them with the ends among them.
BitmapPtr Make_Pairs(ZVBitmapType type)
{
    long const max = Max_Of(type), size = type == ZV_BITMAP_RGBA8 ? 256 : 67;
    BitmapPtr bitmap = Make_Bitmap(size, size, type);
    std::mt19937 random(7);
    auto const value = [&](long i) -> double {
        if (type == ZV_BITMAP_RGBA8) return static_cast<double>(i & 255);
        if (Is_Float(type))
            return static_cast<double>(i & 255) / 255.0 * (i % 3 ? 1.0 : 1.25) - (i % 5 ? 0 : 0.125);
        if (i % 8 == 0) return 0;
        if (i % 8 == 1) return static_cast<double>(i % 16 == 1 ? max : max - 1);
        if (i % 8 == 2) return 1;
        return static_cast<double>(random() % static_cast<unsigned long>(max + 1));
    };
    for (long y = 0; y < size; ++y) {
        for (long x = 0; x < size; ++x) {
            Set_Number(*bitmap, x, y, 0, value(x));
            Set_Number(*bitmap, x, y, 1, value(255 - x));
            Set_Number(*bitmap, x, y, 2, value(x * 7 + y));
            Set_Number(*bitmap, x, y, 3, Is_Float(type) ? static_cast<double>(y) / 66.0 : value(y));
        }
    }
    return bitmap;
}

// ---- the told formulas ------------------------------------------------------------------------------------

double Channel_Of_Byte(uint32_t byte, ZVBitmapType type)
{
    double const scaled = byte * static_cast<double>(Max_Of(type)) / 255.0;
    return Is_Float(type) ? scaled : std::floor(scaled + 0.5);
}

/// What reading makes of a channel, 3 being alpha, of a pixel.
double Told_Read(Convention const& c, ZVBitmapType type, double const* rgba, long channel)
{
    auto const max = static_cast<double>(Max_Of(type));
    if (c.type == 0) return channel == 3 ? max : rgba[channel];
    if (c.type == 1) {
        if (channel < 3) return Channel_Of_Byte(0x102030U >> (16 - 8 * channel) & 0xFF, type);
        double const mean = (rgba[0] + rgba[1] + rgba[2]) / 3.0;
        return c.isInverted ? max - mean : mean;
    }
    if (c.type != 2) return rgba[channel];
    double const t = c.isInverted ? max - rgba[3] : rgba[3];
    if (channel == 3) return t;
    if (!c.isPremultiplied || !(t > 0)) return rgba[channel];
    // A matte that a channel can hold is that channel.
    long double m = static_cast<long double>(c.matte[channel]) * static_cast<long double>(max);
    if (!Is_Float(type) && std::fabs(static_cast<double>(m - std::round(m))) < 1e-6) m = std::round(m);
    long double const pure = (static_cast<long double>(rgba[channel]) * static_cast<long double>(max) -
                              m * static_cast<long double>(max - t)) /
                             static_cast<long double>(t);
    return static_cast<double>(std::clamp<long double>(pure, 0, static_cast<long double>(max)));
}

/// What writing makes of it.
double Told_Write(Convention const& c, ZVBitmapType type, double const* rgba, long channel)
{
    auto const max = static_cast<double>(Max_Of(type));
    double const a = rgba[3];
    if (c.type == 1) return channel == 3 ? max : c.isInverted ? max - a : a;
    if (channel == 3) {
        if (c.type == 0) return c.isInverted ? 0 : max;
        return c.isInverted ? max - a : a;
    }
    if (!c.isPremultiplied) return rgba[channel];
    if (Is_Float(type)) return rgba[channel] * a + c.matte[channel] * (1.0 - a);
    long const matte = static_cast<long>(c.matte[channel] * max), top = static_cast<long>(max);
    return static_cast<double>(
        (static_cast<long>(rgba[channel]) * static_cast<long>(a) + matte * (top - static_cast<long>(a))) /
        top);
}

/// What writing the fourth channel alone makes of it: in fractions, rounded.
double Told_Fourth(Convention const& c, ZVBitmapType type, double const* rgba, long channel)
{
    auto const max = static_cast<double>(Max_Of(type));
    double const a = rgba[3] / max;
    if (channel == 3) return c.isInverted ? max - rgba[3] : rgba[3];
    if (!c.isPremultiplied) return rgba[channel];
    return (rgba[channel] / max * a + c.matte[channel] * (1.0 - a)) * max;
}

using Told = double (*)(Convention const&, ZVBitmapType, double const*, long);

/// Compares each channel with the formula: floats to a few parts of their last bits, integers rounded to the
/// nearest, where a half may go either way.
void Expect_Told(ZVBitmap const& bitmap, ZVBitmap const& before, Convention const& convention, Told told)
{
    double const tolerance = Is_Float(bitmap.Type) ? 1e-6 : 0.5 + 1e-6;
    for (long y = 0; y < bitmap.Height; ++y) {
        for (long x = 0; x < bitmap.Width; ++x) {
            double rgba[4];
            for (long channel = 0; channel < 4; ++channel)
                rgba[channel] = Number_Of(before, x, y, channel);
            for (long channel = 0; channel < 4; ++channel)
                ASSERT_NEAR(Number_Of(bitmap, x, y, channel), told(convention, bitmap.Type, rgba, channel),
                            tolerance)
                    << x << ", " << y << ", channel " << channel << " of " << rgba[0] << " " << rgba[1] << " "
                    << rgba[2] << " " << rgba[3] << ", type " << int{bitmap.Type} << ", alpha type "
                    << int{convention.type} << ", inverted " << convention.isInverted << ", premultiplied "
                    << convention.isPremultiplied << " by " << convention.matte[0];
        }
    }
}

using Pixel = std::array<double, 4>;

/// A byte pixel through some work.
Pixel Pixel_After(Pixel const& pixel, std::function<void(ZVBitmap*)> const& work)
{
    BitmapPtr const bitmap = Make_Bitmap(1, 1, ZV_BITMAP_RGBA8);
    for (std::size_t channel = 0; channel < 4; ++channel)
        Set_Number(*bitmap, 0, 0, static_cast<long>(channel), pixel[channel]);
    work(bitmap.get());
    Pixel result;
    for (std::size_t channel = 0; channel < 4; ++channel)
        result[channel] = Number_Of(*bitmap, 0, 0, static_cast<long>(channel));
    return result;
}

}  // namespace

TEST(Alpha, ReadPixels)
{
    struct Case {
        char const* why;
        Convention convention;
        Pixel before, after;
    };
    for (Case const& row : {
             Case{"no alpha is opaque", {0, true, true, {1, 1, 1}}, {1, 2, 3, 4}, {1, 2, 3, 255}},
             Case{"luminance, rounded", {1, false, false, {}}, {255, 255, 255, 9}, {16, 32, 48, 255}},
             Case{"two thirds round up", {1, false, false, {}}, {1, 1, 0, 9}, {16, 32, 48, 1}},
             Case{"the complement rounds too", {1, true, false, {}}, {1, 1, 0, 9}, {16, 32, 48, 254}},
             Case{"straight", {2, false, false, {}}, {1, 2, 3, 4}, {1, 2, 3, 4}},
             Case{"inverted", {2, true, false, {}}, {1, 2, 3, 4}, {1, 2, 3, 251}},
             Case{"premultiplied by black", {2, false, true, {}}, {64, 32, 1, 128}, {128, 64, 2, 128}},
             Case{"by white", {2, false, true, {1, 1, 1}}, {255, 191, 127, 128}, {255, 128, 0, 128}},
             Case{"above the limit clamps", {2, false, true, {}}, {200, 128, 0, 128}, {255, 255, 0, 128}},
             Case{"below it too", {2, false, true, {1, 1, 1}}, {10, 10, 10, 128}, {0, 0, 0, 128}},
             Case{"clear keeps its colours", {2, false, true, {1, 0, 1}}, {9, 8, 7, 0}, {9, 8, 7, 0}},
             Case{"so does what inverts to clear", {2, true, true, {1, 0, 1}}, {9, 8, 7, 255}, {9, 8, 7, 0}},
             Case{"opaque stays", {2, false, true, {0.5, 1, 0.3}}, {9, 8, 7, 255}, {9, 8, 7, 255}},
             Case{"a half goes up", {2, false, true, {}}, {1, 1, 1, 102}, {3, 3, 3, 102}},  // 2.5
             Case{"no such type", {3, true, true, {1, 1, 1}}, {1, 2, 3, 4}, {1, 2, 3, 4}},
         }) {
        ZVClip clip = Make_Clip(row.convention);
        EXPECT_EQ(Pixel_After(row.before, [&](ZVBitmap* bitmap) { Read(bitmap, &clip); }), row.after)
            << row.why;
    }
}

// A half may go either way, but the same way on each instruction set.
TEST(Alpha, EveryPixelIsReadAndWrittenAsToldWithTheSameBits)
{
    std::vector<BitmapPtr> first;
    On_Each_Target([&] {
        std::size_t done = 0;
        auto const expect = [&](BitmapPtr bitmap, ZVBitmap const& before, Convention const& convention,
                                Told told) {
            Expect_Told(*bitmap, before, convention, told);
            if (done < first.size())
                EXPECT_TRUE(Are_Equal(*bitmap, *first[done]));
            else
                first.push_back(std::move(bitmap));
            ++done;
        };
        for (ZVBitmapType const type : rgbaTypes) {
            BitmapPtr const before = Make_Pairs(type);
            for (Convention const& convention : All_Conventions()) {
                BitmapPtr read = Copy_Of(*before), written = Copy_Of(*before), fourth = Copy_Of(*before);
                ZVClip clip = Make_Clip(convention);
                Read(read.get(), &clip);
                InterpretAlphaZV(&clip, before.get(), written.get(), nullptr);
                InterpretAlpha2ZV(&clip, before.get(), fourth.get(), nullptr);
                expect(std::move(read), *before, convention, Told_Read);
                expect(std::move(written), *before, convention, Told_Write);
                expect(std::move(fourth), *before, convention, Told_Fourth);
            }
        }
    });
}

// Quotients of all colours, the nearest ones 1 / 131068 below a half.
TEST(Alpha, DeepPixelsAreReadToTheLastBit)
{
    BitmapPtr const before = Make_Bitmap(65536, 1, ZV_BITMAP_RGBA16);
    for (uint32_t const alpha : {1U, 2U, 3U, 257U, 32767U, 32768U, 65533U, 65534U}) {
        for (long x = 0; x < 65536; ++x) {
            for (long channel = 0; channel < 3; ++channel)
                Set_Raw(*before, x, 0, channel, static_cast<uint32_t>(x));
            Set_Raw(*before, x, 0, 3, alpha);
        }
        for (Convention const& convention :
             {Convention{2, false, true, {0, 0, 0}}, {2, false, true, {1, 0.5, 0.3123}}}) {
            ZVClip clip = Make_Clip(convention);
            On_Each_Target([&] {
                BitmapPtr const bitmap = Copy_Of(*before);
                Read(bitmap.get(), &clip);
                Expect_Told(*bitmap, *before, convention, Told_Read);
            });
        }
    }
}

TEST(Alpha, OnlyTheAreaIsRead)
{
    ZVClip clip = Make_Clip({0, false, false, {}});
    for (ZVBitmapType const type : rgbaTypes) {
        for (ZVRectT<long> const& area : {ZVRectT<long>{2, 1, 3, 2},
                                          {-9, -9, 12, 11},
                                          {6, 2, 93, 97},
                                          {5, 0, 0, 4},
                                          {0, 4, 8, 0},
                                          {9, 9, 3, 3}}) {
            BitmapPtr const bitmap = Make_Bitmap(8, 4, type);
            Read(bitmap.get(), &clip, area);
            for (long y = 0; y < 4; ++y)
                for (long x = 0; x < 8; ++x)
                    ASSERT_EQ(Number_Of(*bitmap, x, y, 3),
                              area.IsIn(x, y) ? static_cast<double>(Max_Of(type)) : 0)
                        << x << ", " << y;
        }
    }
}

TEST(Alpha, AFirstFrameIsGuessedFrom)
{
    ZVClip clip = Make_Clip({2, false, false, {}});
    clip.Flags = 0;
    clip.FileAlphaType = ZV_ALPHA_CHANNEL;
    // A picture under an alpha of zeros: the channel is inverted.
    EXPECT_EQ(Pixel_After({10, 20, 30, 0}, [&](ZVBitmap* bitmap) { Read(bitmap, &clip); }),
              (Pixel{10, 20, 30, 255}));
    EXPECT_EQ(clip.AlphaInvert, 1);
    EXPECT_TRUE(clip.Flags & ZV_CLIP_ALPHA_KNOWN);
}

TEST(Alpha, WhatHasNoRuleStaysAsItIs)
{
    ZVClip const clip = Make_Clip({1, true, true, {1, 1, 1}});
    BitmapPtr const bitmap = Make_Bitmap(4, 4, ZV_BITMAP_RGBA8, 0x55);
    for (BitmapPtr const& source : {Make_Bitmap(4, 4, ZV_BITMAP_RGBA16), Make_Bitmap(4, 3, ZV_BITMAP_RGBA8),
                                    Make_Bitmap(3, 4, ZV_BITMAP_RGBA8)}) {
        InterpretAlphaZV(&clip, source.get(), bitmap.get(), nullptr);
        InterpretAlpha2ZV(&clip, source.get(), bitmap.get(), nullptr);
    }
    InterpretAlphaZV(nullptr, bitmap.get(), bitmap.get(), nullptr);
    InterpretAlphaZV(&clip, nullptr, bitmap.get(), nullptr);
    InterpretAlphaZV(&clip, bitmap.get(), static_cast<ZVBitmap*>(nullptr), nullptr);
    EXPECT_TRUE(Is_All(*bitmap, 0x55));
    for (ZVBitmapType const type : monoTypes) {
        BitmapPtr const source = Make_Random(5, 3, type, 3), written = Make_Bitmap(5, 3, type);
        InterpretAlphaZV(&clip, source.get(), written.get(), nullptr);
        EXPECT_TRUE(Are_Equal(*source, *written)) << "mono has no alpha, type " << int{type};
    }
}

TEST(Alpha, TheScreenShowsMattesAndMixtures)
{
    On_Each_Target([] {
        for (ZVBitmapType const type : rgbaTypes) {
            BitmapPtr const source = Make_Pairs(type);
            // Eight bits of each channel, as every conversion makes them.
            long const size = source->Width;
            BitmapPtr const bytes = Make_Bitmap(size, size, ZV_BITMAP_RGBA8);
            CopyBitmapZV(source.get(), bytes.get(), 0, 0, -1, -1, 0, 0);
            for (long const depth : nativeDepths) {
                for (Convention const& convention : {Convention{1, false, false, {}},
                                                     {1, true, true, {}},
                                                     {2, true, true, {0.3123, 0.5, 1}},
                                                     {0, false, true, {0, 0, 0}}}) {
                    ZVClip const clip = Make_Clip(convention);
                    NativePtr const native = Make_Native(size, size, depth, 0x5A);
                    InterpretAlphaZV(&clip, source.get(), native.get(), nullptr);
                    Expect_Words(*native, [&](long x, long y) {
                        uint32_t word = depth == 32 ? 0x5A : 0;
                        double rgba[4];
                        for (long channel = 0; channel < 4; ++channel)
                            rgba[channel] = Number_Of(*bytes, x, y, channel);
                        for (long channel = 0; channel < 3; ++channel) {
                            auto const byte =
                                static_cast<uint32_t>(Told_Write(convention, ZV_BITMAP_RGBA8, rgba, channel));
                            word = depth == 16 ? word << 5 | byte >> 3 : word << 8 | byte;
                        }
                        return word;
                    });
                }
            }
        }
    });
}

TEST(Alpha, OtherConventionsAreCopiedToTheScreen)
{
    BitmapPtr const source = Make_Pairs(ZV_BITMAP_RGBA8);
    NativePtr const native = Make_Native(256, 256, 32), copy = Make_Native(256, 256, 32);
    ZVClip const clip = Make_Clip({2, true, false, {}});
    InterpretAlphaZV(&clip, source.get(), native.get(), nullptr);
    CopyBitmapZV(source.get(), copy.get(), 0, 0, -1, -1, 0, 0);
    EXPECT_TRUE(Are_Equal(*native, *copy));
}

TEST(Alpha, TheScreenMayBeOfAnySize)
{
    BitmapPtr const source = Make_Bitmap(8, 8, ZV_BITMAP_RGBA8, 0xFF);
    ZVClip const clip = Make_Clip({1, false, false, {}});
    for (long const size : {5L, 9L}) {
        NativePtr const native = Make_Native(size, size, 32);
        InterpretAlphaZV(&clip, source.get(), native.get(), nullptr);
        Expect_Words(*native, [](long x, long y) { return x < 8 && y < 8 ? 0x00FFFFFFU : 0U; });
    }
    NativePtr const indexed = Make_Native(8, 8, 8, 0x11);
    InterpretAlphaZV(&clip, source.get(), indexed.get(), nullptr);
    EXPECT_TRUE(Is_All(*indexed, 0x11)) << "a depth without a rule";
}
