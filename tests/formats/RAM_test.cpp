// RAM clips: frames in the order of the calls, what becomes of alpha, and all native depths.
#include "FormatTest.h"

#include <array>

namespace {

/// A frame of a RAM clip as its list holds it, for depths that this display does not have.
struct ListFrame {
    ::Node node;
    ZVNativeBitmap* bitmap;
};

class RAM : public FormatTest {
protected:
    ZVFormatDesc* const format = Module(ZV_BLANK_CODE);

    ClipPtr Create_RAM(long width, long height, uint8_t alphaType = ZV_ALPHA_CHANNEL) const
    {
        return Create(format, "none", width, height, 25.0, alphaType);
    }

    static Bytes Filled(long width, long height, std::array<uint8_t, 4> pixel)
    {
        ByteWriter pixels;
        for (long i = 0; i < width * height; ++i)
            pixels.Put(Bytes(pixel.begin(), pixel.end()));
        return pixels.bytes;
    }
};

TEST_F(RAM, TheModuleIsReachedBySelectingItAlone)
{
    EXPECT_FALSE(format->CanLoad(format, "Root:\\a.ram", ZV_BLANK_CODE, ZV_BLANK_CODE, 0));
    char name[64];
    ClipPtr const clip = Create_RAM(4, 4);
    EXPECT_STREQ(MakeDefaultClipNameZV(clip.get(), "shot", name), "shot");
    EXPECT_FALSE(std::filesystem::exists(environment.Path("none"))) << "there is no file behind a RAM clip";
}

TEST_F(RAM, FramesStandInTheOrderOfTheCalls)
{
    ClipPtr const clip = Create_RAM(5, 3);
    EXPECT_FALSE(format->Open(clip.get(), nullptr)) << "no frame yet";
    ASSERT_TRUE(Add_Frame_At(clip.get(), 10, Filled(5, 3, {1, 2, 3, 4})));
    ASSERT_TRUE(Add_Frame_At(clip.get(), 3, Filled(5, 3, {5, 6, 7, 8})));
    EXPECT_EQ(clip->RawFrames, 2);
    EXPECT_EQ(Clip_Frame(clip.get(), 0), Filled(5, 3, {1, 2, 3, 255}));
    EXPECT_EQ(Clip_Frame(clip.get(), 1), Filled(5, 3, {5, 6, 7, 255}));

    BitmapPtr const untouched = Make_Bitmap(5, 3);
    for (long beyond : {2L, -1L, 1L << 40}) {
        EXPECT_FALSE(format->GetFrame(clip.get(), untouched.get(), beyond, nullptr, 5, 3, 0, nullptr, 0));
        EXPECT_EQ(Pixels_Of(*untouched), Filled(5, 3, {0xEE, 0xEE, 0xEE, 0xEE}));
    }

    clip->Width = clip->Height = clip->RawFrames = clip->Media = clip->BitDepth = 0;
    ASSERT_TRUE(format->Open(clip.get(), nullptr));
    EXPECT_TRUE(clip->Width == 5 && clip->Height == 3 && clip->BitDepth == 8);
    EXPECT_TRUE(clip->RawFrames == 2 && clip->Media == ZV_MEDIA_VIDEO);
}

TEST_F(RAM, WhatWasCompositedStaysInTheColours)
{
    ClipPtr const clip = Create_RAM(4, 2);
    clip->AlphaPremultiplied = 1;
    clip->MatteRed = 1.0;
    ASSERT_TRUE(Add_Frame_At(clip.get(), 0, Filled(4, 2, {0, 255, 0, 0})));
    ASSERT_TRUE(Add_Frame_At(clip.get(), 1, Filled(4, 2, {0, 255, 0, 255})));
    EXPECT_EQ(Module_Frame(clip.get(), 0), Filled(4, 2, {255, 0, 0, 255}));
    EXPECT_EQ(Module_Frame(clip.get(), 1), Filled(4, 2, {0, 255, 0, 255}));

    clip->AlphaType = ZV_ALPHA_LUMINANCE;
    ASSERT_TRUE(Add_Frame_At(clip.get(), 2, Filled(4, 2, {1, 2, 3, 200})));
    EXPECT_EQ(Module_Frame(clip.get(), 2), Filled(4, 2, {200, 200, 200, 255}));
}

TEST_F(RAM, FramesThatDoNotCoverTheBitmapLeaveBackground)
{
    ClipPtr const clip = Create_RAM(4, 4);
    clip->Background = 0xFF102030;
    ASSERT_TRUE(Add_Frame_At(clip.get(), 0, Make_Bitmap(2, 6, Filled(2, 6, {9, 9, 9, 9})).get()));
    Bytes const pixels = Module_Frame(clip.get(), 0);
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_EQ(pixels[4 * i], i % 4 < 2 ? 9 : 0x10) << i;
}

TEST_F(RAM, NativeDepthsReadAsTheirColours)
{
    uint16_t const word = 0x7FFF, mixed = 1 << 10 | 2 << 5 | 3;
    auto const bytes = [](uint16_t value) {
        return Bytes{static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)};
    };
    struct {
        long depth;
        Bytes pixel, read;  ///< as in memory, and as read
    } const cases[] = {
        {32, {0x33, 0x22, 0x11, 0x00}, {0x11, 0x22, 0x33, 255}},
        {24, {0x33, 0x22, 0x11}, {0x11, 0x22, 0x33, 255}},
        {16, bytes(word), {248, 248, 248, 255}},
        {16, bytes(mixed), {8, 16, 24, 255}},
        {8, {0x55}, {0xEE, 0xEE, 0xEE, 0xEE}},  // nothing is written
    };
    for (auto const& row : cases) {
        ClipPtr const clip = Create_RAM(1, 1);
        auto* frame = static_cast<ListFrame*>(AllocMemZV(sizeof(ListFrame), ZV_MEM_CLEAR));
        frame->bitmap = AllocNativeBitmapZV(1, 1, row.depth);
        frame->bitmap->Depth = static_cast<int32_t>(row.depth);
        frame->bitmap->PackSize = static_cast<int32_t>(row.pixel.size());
        std::copy(row.pixel.begin(), row.pixel.end(), frame->bitmap->Pixels);
        AddTail(static_cast<List*>(clip->ModuleData), &frame->node);
        EXPECT_EQ(Module_Frame(clip.get(), 0), row.read) << row.depth;
    }
}

TEST_F(RAM, ClosingAndCreatingAgainStartsEmpty)
{
    ClipPtr const clip = Create_RAM(4, 4);
    ASSERT_TRUE(Add_Frame_At(clip.get(), 0, Filled(4, 4, {1, 1, 1, 1})));
    EXPECT_TRUE(format->Create(clip.get(), 0));
    EXPECT_TRUE(Module_Frame(clip.get(), 0).empty());
    Close(clip);
    EXPECT_FALSE(clip->ModuleData);
    EXPECT_FALSE(format->AddFrame(clip.get(), Make_Bitmap(4, 4).get(), 0, nullptr));
    EXPECT_FALSE(format->Open(clip.get(), nullptr));
    format->Close(clip.get());
}

}  // namespace
