// One object out of a frame with deep channels: the picture and the channels.
#include "GBufferTools.h"
#include "PixelTestTools.h"

#include <algorithm>
#include <cmath>

using namespace DeepTest;
using PixelTest::BitmapPtr;

namespace {

struct Channels : ZVGBufferArray {
    Channels() = default;
    ~Channels() { FreeGBufferArrayZV(this); }
    Channels(Channels const&) = delete;
    Channels& operator=(Channels const&) = delete;

    void Add(ZVGBufferChannel channel, Plane const& plane) { (*this)[channel] = To_Buffer(plane).release(); }
};

/// A row of one pixel.
template <typename T> Plane Pixel_Plane(GBufferFormat format, std::initializer_list<T> values)
{
    Plane plane(1, 1, format);
    plane.At(0, 0) = Values(values);
    return plane;
}

using RGB = std::array<uint8_t, 3>;
using Fractions = std::array<double, 4>;

Fractions Pixel(ZVBitmap const& bitmap, long x = 0, long y = 0)
{
    ZVFloatRGB pixel;
    ReadFloatPixelZV(&bitmap, x, y, &pixel);
    return {pixel.red, pixel.green, pixel.blue, pixel.alpha};
}

/// The deep channels of a picture with random samples of four objects; coverage is often full.
void Make_Frame(Channels& frame, long width, long height, unsigned long mask, bool isSorted)
{
    Plane ids = Random_Plane(width, height, GB_FORMAT_SHORT);
    for (Samples& samples : ids.pixels) {
        std::vector<uint16_t> values;
        for (Sample const& sample : samples)
            values.push_back(sample[0] % 4);
        if (isSorted) std::ranges::sort(values, std::greater());
        for (std::size_t n = 0; n < samples.size(); ++n)
            std::memcpy(samples[n].data(), &values[n], 2);
    }
    frame.Add(ZV_GBUFFER_OBJ, ids);
    frame[ZV_GBUFFER_X_VALUES] = X_Values(ids).release();
    struct {
        ZVGBufferChannel channel;
        GBufferFormat format;
    } const kinds[] = {{ZV_GBUFFER_COL, GB_FORMAT_RGB},    {ZV_GBUFFER_REALPIX, GB_FORMAT_RGBA},
                       {ZV_GBUFFER_COV, GB_FORMAT_BYTE},   {ZV_GBUFFER_TRANS, GB_FORMAT_RGB},
                       {ZV_GBUFFER_WEIGHT, GB_FORMAT_RGB}, {ZV_GBUFFER_UV, GB_FORMAT_FLOAT2}};
    for (auto const& kind : kinds) {
        if (!(mask & kind.channel)) continue;
        Plane plane = Random_Plane(width, height, kind.format);
        for (Samples& samples : plane.pixels)
            for (Sample& sample : samples) {
                if (kind.channel == ZV_GBUFFER_COV && sample[0] > 128) sample[0] = 255;
                if (kind.channel == ZV_GBUFFER_REALPIX)
                    sample[3] = static_cast<uint8_t>(120 + sample[3] % 10);
            }
        frame.Add(kind.channel, plane);
    }
}

/// The told steps for one pixel, one component after the other.
Fractions Rebuilt(Channels& frame, Fractions const& picture, long x, long y, uint16_t id, bool keeps)
{
    auto const samples = [&](ZVGBufferChannel channel) {
        return frame[channel] ? From_Buffer(*frame[channel], *frame[ZV_GBUFFER_X_VALUES]).At(x, y)
                              : Samples();
    };
    Samples const ids = samples(ZV_GBUFFER_OBJ), coverage = samples(ZV_GBUFFER_COV),
                  col = samples(ZV_GBUFFER_COL), clear = samples(ZV_GBUFFER_TRANS),
                  shared = samples(ZV_GBUFFER_REALPIX);
    double sum[3], weight[3];
    for (std::size_t c = 0; c < 3; ++c) {
        auto const wanted = [&](std::size_t n) { return (ids[n][0] == id) == keeps; };
        auto const covers = [&](std::size_t n, bool isClear) {
            double const covered = coverage.empty() ? 1.0 : coverage[n][0] / 255.0;
            return isClear && !clear.empty() ? covered * (1.0 - clear[n][c] / 255.0) : covered;
        };
        auto const colour = [&](std::size_t n, double w) {
            if (!shared.empty()) return shared[n][c] / 255.0 * w * std::ldexp(1.0, shared[n][3] - 128);
            return (col.empty() ? picture[c] : col[n][c] / 255.0) * w;
        };
        weight[c] = wanted(0) ? covers(0, frame[ZV_GBUFFER_WEIGHT]) : 1e-7;
        sum[c] = wanted(0) ? colour(0, weight[c]) : 0.0;
    }
    for (std::size_t n = 1; n < ids.size(); ++n) {
        double const opaque = 254.5 / 255.0;
        if (weight[0] > opaque && weight[1] > opaque && weight[2] > opaque) break;
        if ((ids[n][0] == id) != keeps) continue;
        for (std::size_t c = 0; c < 3; ++c) {
            double const covered = coverage.empty() ? 1.0 : coverage[n][0] / 255.0;
            double const w = clear.empty() ? covered : covered * (1.0 - clear[n][c] / 255.0);
            double const s = !shared.empty() ? shared[n][c] / 255.0 * w * std::ldexp(1.0, shared[n][3] - 128)
                                             : (col.empty() ? picture[c] : col[n][c] / 255.0) * w;
            sum[c] = sum[c] + s - s * weight[c];
            weight[c] = w + (1.0 - w) * weight[c];
        }
    }
    Fractions result;
    for (std::size_t c = 0; c < 3; ++c)
        result[c] = weight[c] > 0.0 ? std::clamp(sum[c] / weight[c], 0.0, 1.0) : 0.0;
    result[3] = std::clamp((weight[0] + weight[1] + weight[2]) / 3.0, 0.0, 1.0);
    return result;
}

constexpr ZVRectT<long> everything{0, 0, 1 << 20, 1 << 20};

}  // namespace

TEST(GBufferExtract, SamplesOfAPixelAreCompositedFrontToBack)
{
    constexpr double none = 1e-7;  // the weight of a pixel whose front sample is left out
    struct {
        char const* why;
        std::initializer_list<uint8_t> ids, coverage;
        long mode;
        Fractions expected;
    } const cases[] = {
        {"nobody has the id", {1, 2}, {255, 255}, 1, {0, 0, 0, 0}},
        {"an opaque front hides the rest", {5, 5}, {255, 255}, 1, {1, 0, 0, 1}},
        {"the rest without the id", {5, 1}, {255, 255}, 0, {0, 1, 0, 1}},
        {"nothing is removed", {1, 2}, {255, 255}, 0, {1, 0, 0, 1}},
        {"two halves", {5, 5}, {51, 51}, 1, {0.2 / 0.36, 0.16 / 0.36, 0, 0.36}},
        {"a thin object behind another",
         {1, 5},
         {51, 51},
         1,
         {0, 0.2 * (1 - none) / (0.2 + 0.8 * none), 0, 0.2 + 0.8 * none}},
        {"no coverage at all", {5, 1}, {0, 255}, 1, {0, 0, 0, 0}},
    };
    for (auto const& row : cases) {
        Channels frame;
        Plane const ids = Pixel_Plane<uint8_t>(GB_FORMAT_BYTE, row.ids);
        frame.Add(ZV_GBUFFER_MAT, ids);
        frame.Add(ZV_GBUFFER_COV, Pixel_Plane<uint8_t>(GB_FORMAT_BYTE, row.coverage));
        frame.Add(ZV_GBUFFER_COL, Pixel_Plane<RGB>(GB_FORMAT_RGB, {RGB{255, 0, 0}, RGB{0, 255, 0}}));
        frame[ZV_GBUFFER_X_VALUES] = X_Values(ids).release();
        BitmapPtr const from = PixelTest::Make_Bitmap(1, 1, ZV_BITMAP_RGBAFLOAT),
                        to = PixelTest::Copy_Of(*from);
        ASSERT_TRUE(ExtractGBufferLayerZV(from.get(), to.get(), 5, ZV_GBUFFER_MAT, frame, row.mode,
                                          everything, nullptr, 0));
        for (std::size_t c = 0; c < 4; ++c)
            EXPECT_NEAR(Pixel(*to)[c], row.expected[c], 2e-7) << row.why;
    }
}

TEST(GBufferExtract, EveryPixelTypeAndVectorPathGivesTheToldBits)
{
    constexpr unsigned long sets[] = {0,
                                      ZV_GBUFFER_COL,
                                      ZV_GBUFFER_COL | ZV_GBUFFER_COV,
                                      ZV_GBUFFER_COV | ZV_GBUFFER_TRANS,
                                      ZV_GBUFFER_COL | ZV_GBUFFER_COV | ZV_GBUFFER_TRANS | ZV_GBUFFER_WEIGHT,
                                      ZV_GBUFFER_REALPIX | ZV_GBUFFER_COL | ZV_GBUFFER_COV};
    constexpr long width = 11, height = 3;
    for (unsigned long const set : sets) {
        Channels frame;
        Make_Frame(frame, width, height, set, false);
        for (ZVBitmapType const type : PixelTest::rgbaTypes) {
            BitmapPtr const from = PixelTest::Make_Bitmap(width, height, type),
                            expected = PixelTest::Make_Bitmap(width, height, type);
            std::mt19937 random(9);
            for (long i = 0; i < width * height; ++i) {
                auto const fraction = [&random] { return static_cast<double>(random()) / 0x1p32; };
                ZVFloatRGB const colour = {fraction(), fraction(), fraction(), 0.5};
                WriteFloatPixelZV(from.get(), i % width, i / width, &colour);
            }
            for (long const mode : {0L, 1L}) {
                for (long i = 0; i < width * height; ++i) {
                    Fractions const p = Rebuilt(frame, Pixel(*from, i % width, i / width), i % width,
                                                i / width, 2, mode == 1);
                    ZVFloatRGB const colour = {p[0], p[1], p[2], p[3]};
                    WriteFloatPixelZV(expected.get(), i % width, i / width, &colour);
                }
                PixelTest::On_Each_Target([&] {
                    BitmapPtr const to = PixelTest::Make_Bitmap(width, height, type, 0xA5);
                    ASSERT_TRUE(ExtractGBufferLayerZV(from.get(), to.get(), 2, ZV_GBUFFER_OBJ, frame, mode,
                                                      everything, nullptr, 0));
                    EXPECT_TRUE(PixelTest::Are_Equal(*to, *expected))
                        << "type " << int{type} << ", set " << set;
                });
            }
        }
    }
}

TEST(GBufferExtract, AnObjectInFrontAndTheRestMakeTheWhole)
{
    Channels frame;
    Make_Frame(frame, 32, 8, ZV_GBUFFER_COL | ZV_GBUFFER_COV, true);  // object 3 lies in front
    for (ZVBitmapType const type : PixelTest::rgbaTypes) {
        BitmapPtr const from = PixelTest::Make_Bitmap(32, 8, type);
        auto const extract = [&](short id, long mode) {
            BitmapPtr to = PixelTest::Make_Bitmap(32, 8, type);
            EXPECT_TRUE(ExtractGBufferLayerZV(from.get(), to.get(), id, ZV_GBUFFER_OBJ, frame, mode,
                                              everything, nullptr, 0));
            return to;
        };
        BitmapPtr const one = extract(3, 1), rest = extract(3, 0), whole = extract(99, 0);
        double const step = 3.0 / static_cast<double>(std::min(PixelTest::Max_Of(type), 65535L) | 255);
        for (long i = 0; i < 32 * 8; ++i) {
            Fractions const a = Pixel(*one, i % 32, i / 32), b = Pixel(*rest, i % 32, i / 32),
                            w = Pixel(*whole, i % 32, i / 32);
            EXPECT_NEAR(a[3] + (1 - a[3]) * b[3], w[3], step);
            for (std::size_t c = 0; c < 3; ++c)
                EXPECT_NEAR(a[c] * a[3] + (1 - a[3]) * b[c] * b[3], w[c] * w[3], step)
                    << "type " << int{type};
        }
    }
}

TEST(GBufferExtract, ChannelsKeepTheWantedSamplesAndTheFirstOneMovesToTheFront)
{
    constexpr unsigned long set = ZV_GBUFFER_COL | ZV_GBUFFER_COV | ZV_GBUFFER_UV | ZV_GBUFFER_REALPIX;
    for (long const mode : {0L, 1L}) {
        Channels frame, out;
        Make_Frame(frame, 13, 4, set, false);
        ZVGBuffer* const x = frame[ZV_GBUFFER_X_VALUES];
        Plane const ids = From_Buffer(*frame[ZV_GBUFFER_OBJ], *x);
        for (int bit = 0; bit < ZV_GBUFFER_CHANNELS; ++bit)
            if (ZVGBuffer const* const from = frame.Buffers[ZVGBufferArray::Slot(bit)])
                out.Buffers[ZVGBufferArray::Slot(bit)] =
                    Make_Buffer(from->Width, from->Height, from->Format).release();
        ASSERT_TRUE(ExtractGBufferLayerZV(nullptr, nullptr, 2, ZV_GBUFFER_OBJ, frame, mode, everything, &out,
                                          0x7FFF));
        for (ZVGBufferChannel const channel :
             {ZV_GBUFFER_OBJ, ZV_GBUFFER_COL, ZV_GBUFFER_COV, ZV_GBUFFER_UV, ZV_GBUFFER_REALPIX}) {
            Plane expected = From_Buffer(*frame[channel], *x);
            for (std::size_t i = 0; i < expected.pixels.size(); ++i) {
                Samples kept;
                for (std::size_t n = 0; n < ids.pixels[i].size(); ++n)
                    if ((ids.pixels[i][n][0] == 2) == (mode == 1)) kept.push_back(expected.pixels[i][n]);
                if (kept.empty()) kept.emplace_back(expected.pixels[i][0].size());
                expected.pixels[i] = kept;
            }
            EXPECT_EQ(From_Buffer(*out[channel], *out[ZV_GBUFFER_X_VALUES]), expected)
                << channel << ", " << mode;
        }
    }
}

TEST(GBufferExtract, WeightsAreWhatSamplesInFrontLeave)
{
    Channels frame, out;
    Plane const ids = Pixel_Plane<uint16_t>(GB_FORMAT_SHORT, {7, 1, 1});
    frame.Add(ZV_GBUFFER_RENDERID, ids);
    frame.Add(ZV_GBUFFER_COV, Pixel_Plane<uint8_t>(GB_FORMAT_BYTE, {255, 51, 255}));
    Plane const old = Pixel_Plane<RGB>(GB_FORMAT_RGB, {RGB{1, 1, 1}, RGB{2, 2, 2}, RGB{3, 3, 3}});
    frame.Add(ZV_GBUFFER_WEIGHT, old);
    frame[ZV_GBUFFER_X_VALUES] = X_Values(ids).release();
    out[ZV_GBUFFER_WEIGHT] = Make_Buffer(1, 1, GB_FORMAT_RGB).release();
    out[ZV_GBUFFER_X_VALUES] = Make_Buffer(2, 1, GB_FORMAT_SHORT).release();
    auto const weights = [&](int id) {
        EXPECT_TRUE(ExtractGBufferLayerZV(nullptr, nullptr, static_cast<short>(id), ZV_GBUFFER_RENDERID,
                                          frame, 0, everything, &out, 0x7FFF));
        return From_Buffer(*out[ZV_GBUFFER_WEIGHT], *out[ZV_GBUFFER_X_VALUES]).At(0, 0);
    };
    EXPECT_EQ(weights(7), Values({RGB{51, 51, 51}, RGB{204, 204, 204}}));
    EXPECT_EQ(weights(0xFFFF), old.At(0, 0)) << "nothing lies behind the background";
}

TEST(GBufferExtract, WithoutIdsThePictureIsCopied)
{
    Channels frame;
    BitmapPtr const from = PixelTest::Make_Random(4, 4, ZV_BITMAP_RGBA8, 1),
                    to = PixelTest::Make_Bitmap(4, 4, ZV_BITMAP_RGBA8);
    EXPECT_FALSE(
        ExtractGBufferLayerZV(from.get(), to.get(), 1, ZV_GBUFFER_OBJ, frame, 1, everything, nullptr, 0));
    EXPECT_TRUE(PixelTest::Are_Equal(*from, *to));
    EXPECT_FALSE(
        ExtractGBufferLayerZV(from.get(), to.get(), 1, ZV_GBUFFER_Z, frame, 1, everything, nullptr, 0));
}
