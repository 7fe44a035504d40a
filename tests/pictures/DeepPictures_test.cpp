// Deep OpenEXR pictures: flat, as G-buffers, and taken apart by object.
#include "PictureTest.h"

#include <OpenImageIO/deepdata.h>

namespace {

/// One sample of a pixel; colours without alpha.
struct Sample {
    float z;
    double alpha;
    int id;
    std::array<double, 3> colour;
};

/// Near object 2 half over far object 70001 (which counts as 4465), listed far first; then one, none, three.
std::vector<std::vector<Sample>> const pixels = {
    {{9, 1.0, 70001, {1, 0, 0}}, {2, 0.6, 2, {0, 1, 0}}},
    {{5, 0.2, 2, {0.2, 0.4, 0.6}}},
    {},
    {{1, 0.4, 7, {0, 0, 1}}, {3, 0.4, 2, {1, 1, 1}}, {4, 1.0, 7, {1, 0, 1}}},
};

class DeepPictures : public PictureTest {
protected:
    /// The pixels in one row at (x, y) of a window of 6 by 3.
    void Write_Deep(std::string const& name, bool isTiled = false) const
    {
        OIIO::ImageSpec spec(4, 1, 8, OIIO::TypeDesc::FLOAT);
        spec.x = spec.y = 1;
        spec.full_width = 6, spec.full_height = 3;
        if (isTiled) spec.tile_width = spec.tile_height = 16;
        spec.deep = true;
        spec.channelnames = {"R", "G", "B", "A", "Z", "id", "velocity.x", "velocity.y"};
        spec.channelformats.assign(8, OIIO::TypeDesc::FLOAT);
        spec.channelformats[5] = OIIO::TypeDesc::UINT32;
        OIIO::DeepData data(spec);
        for (std::size_t p = 0; p < pixels.size(); ++p) {
            data.set_samples(static_cast<int64_t>(p), static_cast<int>(pixels[p].size()));
            for (std::size_t s = 0; s < pixels[p].size(); ++s) {
                Sample const& sample = pixels[p][s];
                auto const put = [&](int channel, double value) {
                    data.set_deep_value(static_cast<int64_t>(p), channel, static_cast<int>(s),
                                        static_cast<float>(value));
                };
                for (int c = 0; c < 3; ++c)
                    put(c, sample.colour[static_cast<std::size_t>(c)] * sample.alpha);
                put(3, sample.alpha);
                put(4, sample.z);
                data.set_deep_value(static_cast<int64_t>(p), 5, static_cast<int>(s),
                                    static_cast<uint32_t>(sample.id));
                put(6, sample.z * 2);
                put(7, -0.5);
            }
        }
        auto const output = OIIO::ImageOutput::create("openexr");
        ASSERT_TRUE(output && output->open(Path(name), spec) && output->write_deep_image(data) &&
                    output->close())
            << output->geterror();
    }

    struct Channels : ZVGBufferArray {
        ~Channels() { FreeGBufferArrayZV(this); }
    };
};

constexpr unsigned long allChannels = ZV_GBUFFER_Z | ZV_GBUFFER_OBJ | ZV_GBUFFER_COV | ZV_GBUFFER_COL |
                                      ZV_GBUFFER_REALPIX | ZV_GBUFFER_VEL | ZV_GBUFFER_X_VALUES;

}  // namespace

TEST_F(DeepPictures, AreFlatPicturesToo)
{
    for (bool isTiled : {false, true}) {
        Write_Deep("a.exr", isTiled);
        ClipPtr const clip = Open_Picture("a.exr");
        ASSERT_TRUE(clip);
        EXPECT_EQ(clip->GBufferMask, allChannels);
        EXPECT_EQ(clip->Width, 6);
        BitmapPtr const bitmap = Stored_Frame(clip.get());
        ASSERT_TRUE(bitmap);
        double const expected[4][4] = {{0.4, 0.6, 0, 1},
                                       {0.04, 0.08, 0.12, 0.2},
                                       {0, 0, 0, 0},
                                       {0.24 + 0.36, 0.24, 0.4 + 0.24 + 0.36, 1}};
        for (long x = 0; x < 4; ++x)
            for (int channel = 0; channel < 4; ++channel)
                EXPECT_NEAR(Value(*bitmap, x + 1, 1, channel), expected[x][channel], 1e-6)
                    << x << ' ' << channel;
        EXPECT_EQ(Value(*bitmap, 5, 1, 3), 0);
        EXPECT_EQ(Value(*bitmap, 1, 0, 3), 0);
    }
}

TEST_F(DeepPictures, GiveTheirSamplesFromFrontToBack)
{
    Write_Deep("a.exr");
    ClipPtr const clip = Open_Picture("a.exr");
    ASSERT_TRUE(clip);
    Channels channels;
    ASSERT_TRUE(GetGBuffersZV(clip.get(), allChannels, &channels, nullptr, nullptr, nullptr));
    auto const number = [&]<typename T>(ZVGBufferChannel channel, long x, T) {
        return reinterpret_cast<T const*>(channels[channel]->Data + channels[channel]->RowBytes)[x];
    };
    EXPECT_EQ(number(ZV_GBUFFER_Z, 0, 0.0f), _DEFAULT_Z_VAL);
    EXPECT_EQ(number(ZV_GBUFFER_Z, 1, 0.0f), -2.0f);
    EXPECT_EQ(number(ZV_GBUFFER_Z, 3, 0.0f), _DEFAULT_Z_VAL);
    EXPECT_EQ(number(ZV_GBUFFER_OBJ, 1, uint16_t{}), 2);
    EXPECT_EQ(number(ZV_GBUFFER_COV, 1, uint8_t{}), 153);
    EXPECT_EQ(number(ZV_GBUFFER_COV, 3, uint8_t{}), 0);
    EXPECT_EQ(number(ZV_GBUFFER_VEL, 2, 0.0f), 4.0f) << "of pixel 1, x";
    EXPECT_EQ(number(ZV_GBUFFER_VEL, 3, 0.0f), -0.5f);
    auto const bytes = [](void const* at, std::size_t count) {
        auto const* const first = static_cast<uint8_t const*>(at);
        return Bytes(first, first + count);
    };
    ZVGBuffer const* const colour = channels[ZV_GBUFFER_COL];
    EXPECT_EQ(bytes(colour->Data + colour->RowBytes + 2 * 3, 3), (Bytes{51, 102, 153}));
    EXPECT_EQ(bytes(GETGLAYERADR(colour, 2, 1), 3), (Bytes{255, 0, 255}));
    EXPECT_EQ(bytes(GETGLAYERADR(channels[ZV_GBUFFER_REALPIX], 0, 1), 4), (Bytes{128, 0, 0, 129}));
    EXPECT_EQ(*static_cast<uint16_t const*>(GETGLAYERADR(channels[ZV_GBUFFER_OBJ], 0, 1)), 70001 & 0xFFFF);
    EXPECT_EQ(bytes(channels[ZV_GBUFFER_X_VALUES]->Data + channels[ZV_GBUFFER_X_VALUES]->RowBytes, 14),
              (Bytes{0, 0, 0, 0, 1, 0, 1, 0, 1, 0, 3, 0, 3, 0}));
}

TEST_F(DeepPictures, ComeApartByObjectAndGoTogetherAgain)
{
    Write_Deep("a.exr");
    ClipPtr const clip = Open_Picture("a.exr");
    ASSERT_TRUE(clip);
    Channels channels;
    ASSERT_TRUE(
        GetGBuffersZV(clip.get(), allChannels & ~ZV_GBUFFER_REALPIX, &channels, nullptr, nullptr, nullptr));
    BitmapPtr const whole = Make_Bitmap(6, 3, {}, ZV_BITMAP_RGBAFLOAT);
    ASSERT_TRUE(GetFrameZV(clip.get(), whole.get(), nullptr, nullptr, nullptr));
    auto const extract = [&](short id, long mode) {
        BitmapPtr part = Make_Bitmap(6, 3, {}, ZV_BITMAP_RGBAFLOAT);
        EXPECT_EQ(ExtractGBufferLayerZV(whole.get(), part.get(), id, ZV_GBUFFER_OBJ, channels, mode,
                                        {0, 0, 6, 3}, nullptr, 0),
                  1);
        return part;
    };
    BitmapPtr const object = extract(2, 1), others = extract(2, 0);
    EXPECT_NEAR(Value(*object, 1, 1, 1), 1.0, 1e-3);
    EXPECT_NEAR(Value(*object, 1, 1, 3), 0.6, 1e-3);
    EXPECT_NEAR(Value(*object, 4, 1, 3), 0.4, 2e-3);
    EXPECT_NEAR(Value(*others, 1, 1, 0), 1.0, 1e-3);
    EXPECT_NEAR(Value(*others, 4, 1, 2), 1.0, 1e-3);
    // Where the object is in front, it and the others over each other are the picture.
    for (long x : {1, 2, 3}) {
        double const a = Value(*object, x, 1, 3), behind = Value(*others, x, 1, 3);
        double const alpha = a + (1 - a) * behind;
        EXPECT_NEAR(alpha, Value(*whole, x, 1, 3), 3e-3);
        for (int channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(Value(*object, x, 1, channel) * a + (1 - a) * behind * Value(*others, x, 1, channel),
                        Value(*whole, x, 1, channel) * alpha, 4e-3)
                << x << ' ' << channel;
    }
}
