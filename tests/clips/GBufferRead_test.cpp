// Reading G-buffers from clips: which frame and field, and how they are cropped and scaled.
#include "clips/ClipFixture.h"

#include <memory>

namespace {

// The module's channels: Z is frame * 1000 + y * 10 + x in float, and each pixel in an even column has one
// further sample, one half more.

std::string lastFile;
long lastFrame = -1;

template <typename T> void Put(unsigned char* to, T value)
{
    std::memcpy(to, &value, sizeof value);
}

long Fill_Buffers(ZVClip* clip, long frame, unsigned long mask, ZVGBufferArray* buffers, long, void*, long)
{
    lastFile = clip->FileName;
    lastFrame = frame;
    long const width = clip->Width, height = clip->Height;
    auto const channel = [&](ZVGBufferChannel bit, long w, GBufferFormat format) -> ZVGBuffer* {
        if (!(mask & bit)) return nullptr;
        if (!(*buffers)[bit]) (*buffers)[bit] = AllocGBufferZV(w, height, format);
        return (*buffers)[bit];
    };
    ZVGBuffer* const z = channel(ZV_GBUFFER_Z, width, GB_FORMAT_FLOAT);
    ZVGBuffer* const x = channel(ZV_GBUFFER_X_VALUES, width + 1, GB_FORMAT_SHORT);
    for (long row = 0; row < height; ++row) {
        if (z) z->Layers[row].set_layer_recs(static_cast<unsigned long>((width + 1) / 2));
        for (long column = 0; column <= width; ++column) {
            auto const depth = static_cast<float>(frame * 1000 + row * 10 + column);
            if (z && column < width) Put(z->Data + row * z->RowBytes + column * 4, depth);
            if (z && column < width && column % 2 == 0)
                Put(z->Layers[row].Records + column / 2 * 4, depth + 0.5F);
            if (x) Put(x->Data + row * x->RowBytes + column * 2, static_cast<uint16_t>((column + 1) / 2));
        }
    }
    return 1;
}

class GBufferRead : public ClipTest {
protected:
    GBufferRead()
    {
        format.desc->GetGBuffer = &Fill_Buffers;
        Open();
        clip->GBufferMask = ZV_GBUFFER_Z | ZV_GBUFFER_X_VALUES;
        lastFrame = -1;
    }
    ~GBufferRead() override { FreeGBufferArrayZV(&array); }

    template <typename... Tags> long Get(double frame, Tags... tags)
    {
        FreeGBufferArrayZV(&array);
        return Get_Into(frame, tags...);
    }
    template <typename... Tags> long Get_Into(double frame, Tags... tags)
    {
        ZVTimeValue const time = Frame_Time(frame);
        return GetGBuffersZV(clip, mask, &array, &time, nullptr, ZV_TAG_IGNORE, 0, tags...);
    }

    /// The depth of the result's pixel, and that of its further sample, 0 for none.
    std::pair<float, float> Depth(long x, long y)
    {
        ZVGBuffer* const z = array[ZV_GBUFFER_Z];
        ZVGBuffer const* const xValues = array[ZV_GBUFFER_X_VALUES];
        float front, further = 0.0F;
        std::memcpy(&front, z->Data + y * z->RowBytes + x * 4, 4);
        uint16_t span[2];
        std::memcpy(span, xValues->Data + y * xValues->RowBytes + x * 2, 4);
        if (span[1] > span[0]) std::memcpy(&further, GETGLAYERADR(z, span[0], static_cast<int>(y)), 4);
        return {front, further};
    }

    unsigned long mask = ZV_GBUFFER_Z | ZV_GBUFFER_X_VALUES | ZV_GBUFFER_COL;
    ZVGBufferArray array;
};

TEST_F(GBufferRead, ChannelsAreCroppedAndScaledAsAskedFor)
{
    std::pair const outside(-1e30F, 0.0F);
    struct {
        char const* why;
        ZVRectT<long> rect;
        long width, height;
        std::pair<float, float> topLeft, bottomRight;
    } const cases[] = {
        {"all of it", {0, 0, 8, 6}, 8, 6, {2000, 2000.5F}, {2057, 0}},
        {"half the size", {0, 0, 4, 3}, 4, 3, {2000, 2000.5F}, {2046, 2046.5F}},
        {"a part", {2, 1, 3, 4}, 3, 4, {2012, 2012.5F}, {2044, 2044.5F}},
        {"a part of the right", {6, 0, 2, 2}, 2, 2, {2006, 2006.5F}, {2017, 0}},
        {"around it", {-1, -1, 10, 8}, 10, 8, outside, outside},
        {"a part, doubled", {2, 1, 3, 4}, 6, 8, {2012, 2012.5F}, {2044, 2044.5F}},
    };
    for (auto const& row : cases) {
        ASSERT_TRUE(
            Get(2, ZV_GBUFFER_RECT, &row.rect, ZV_GBUFFER_WIDTH, row.width, ZV_GBUFFER_HEIGHT, row.height))
            << row.why;
        ASSERT_TRUE(array[ZV_GBUFFER_Z]) << row.why;
        EXPECT_FALSE(array[ZV_GBUFFER_COL]) << "the clip has none";
        EXPECT_EQ(array[ZV_GBUFFER_Z]->Width, row.width) << row.why;
        EXPECT_EQ(Depth(0, 0), row.topLeft) << row.why;
        EXPECT_EQ(Depth(row.width - 1, row.height - 1), row.bottomRight) << row.why;
    }
}

TEST_F(GBufferRead, XValuesNobodyAskedForAreNotLeft)
{
    mask = ZV_GBUFFER_Z;
    for (long const width : {8L, 4L}) {
        ASSERT_TRUE(Get(0, ZV_GBUFFER_WIDTH, width));
        EXPECT_FALSE(array[ZV_GBUFFER_X_VALUES]);
        EXPECT_EQ(array[ZV_GBUFFER_Z]->Layers[0].Count, 4U);
    }
}

TEST_F(GBufferRead, ChannelsOfAnotherSizeArePassedOver)
{
    array[ZV_GBUFFER_Z] = AllocGBufferZV(5, 5, GB_FORMAT_FLOAT);
    for (long const width : {8L, 4L}) {
        ASSERT_TRUE(Get_Into(0, ZV_GBUFFER_WIDTH, width));
        EXPECT_EQ(array[ZV_GBUFFER_Z]->Width, 5);
        FreeGBufferZV(std::exchange(array[ZV_GBUFFER_X_VALUES], nullptr));
    }
}

TEST_F(GBufferRead, WhatIsNotThereFails)
{
    ZVRectT<long> const beside{8, 0, 4, 4}, empty{0, 0, 0, 4}, endless{-(1L << 40), 0, (1L << 40) + 4, 4};
    for (auto const* const rect : {&beside, &empty, &endless})
        EXPECT_FALSE(Get(0, ZV_GBUFFER_RECT, rect)) << rect->x;
    EXPECT_FALSE(Get(10)) << "past the end";
    EXPECT_FALSE(Get(-1));
    BitmapBlock const bitmap = Make_Bitmap(clip->Width, clip->Height);
    ZVTimeValue const time = Frame_Time(1);
    ASSERT_TRUE(ModifyFrameZV(clip, bitmap.get(), &time, nullptr, nullptr));
    EXPECT_FALSE(Get(1)) << "an edited frame";
    mask = ZV_GBUFFER_COL;
    EXPECT_FALSE(Get(0)) << "a channel that the clip does not have";
    mask = ZV_GBUFFER_Z;
    format.desc->GetGBuffer = nullptr;
    EXPECT_FALSE(Get(0));
}

TEST_F(GBufferRead, AFieldFillsTheRowsOfTheOther)
{
    clip->FieldOrder = ZV_FIELDS_UPPER_FIRST;
    ZVTimeValue const field = {0.5, 25.0};
    struct {
        double frame;
        float first, second;
    } const cases[] = {{1.0, 1000, 1000}, {1.5, 1010, 1010}};
    for (auto const& row : cases) {
        FreeGBufferArrayZV(&array);
        ZVTimeValue const time = Frame_Time(row.frame);
        ASSERT_TRUE(GetGBuffersZV(clip, mask, &array, &time, &field, nullptr));
        EXPECT_EQ(Depth(0, 0), std::pair(row.first, row.first + 0.5F));
        EXPECT_EQ(Depth(0, 1), std::pair(row.second, row.second + 0.5F));
    }
}

TEST_F(GBufferRead, AFrameOfASequenceIsFrameZeroOfItsFile)
{
    format.properties &= ~ZV_FORMAT_MULTIFRAME;
    for (char const* name : {"run0001.tst", "run0002.tst", "run0003.tst"})
        environment.Write(name, "x");
    FreeClipZV(clip);
    clip = OpenClipZV(environment.Spec("run0001.tst").c_str(), ZV_OPEN_NO_SEQUENCE_DIALOG, 1);
    ASSERT_TRUE(clip);
    clip->GBufferMask = ZV_GBUFFER_Z;
    std::string const name = clip->FileName;
    ASSERT_TRUE(Get(1));
    EXPECT_TRUE(lastFile.ends_with("run0002.tst")) << lastFile;
    EXPECT_EQ(lastFrame, 0);
    EXPECT_EQ(clip->FileName, name);
    std::filesystem::remove(environment.Path("run0003.tst"));
    EXPECT_FALSE(Get(2)) << "its file is gone";
    EXPECT_EQ(clip->FileName, name);
}

}  // namespace
