// What holds for each built-in module that writes many frames into one file.
#include "FormatTest.h"

namespace {

struct WrittenCase {
    uint32_t fileType;
    std::string name;
    bool takesOtherSizes;  ///< frames of another size than the clip's
};

class WrittenFormats : public FormatTest, public testing::WithParamInterface<WrittenCase> {
protected:
    ClipPtr Create(long width, long height) const
    {
        return FormatTest::Create(format, name, width, height, 24.0);
    }

    std::string const name = GetParam().name;
    ZVFormatDesc* const format = Module(GetParam().fileType);
};

TEST_P(WrittenFormats, FramesAreReadWhileOthersAreWrittenAndAfterwards)
{
    {
        ClipPtr const clip = Create(123, 45);
        for (unsigned i = 0; i < 5; ++i) {
            ASSERT_TRUE(Add_Frame_At(clip.get(), i, Random_Pixels(123, 45, i)));
            EXPECT_EQ(Clip_Frame(clip.get(), i / 2), Random_Pixels(123, 45, i / 2));
        }
        Close(clip);
        Bytes const written = Read(name);

        // Opened again, the clip only reads: closing it leaves the file as it is.
        clip->RawFrames = 77;
        ASSERT_TRUE(OpenClipZV(clip.get(), nullptr));
        BeginClipIOZV(clip.get(), nullptr);
        EXPECT_EQ(Clip_Frame(clip.get(), 3), Random_Pixels(123, 45, 3));
        Close(clip);
        EXPECT_EQ(Read(name), written);
    }
    ClipPtr const clip = Open(environment.Spec(name));
    ASSERT_TRUE(clip);
    EXPECT_EQ(clip->Format, format);
    EXPECT_EQ(clip->RawFrames, 5);
    EXPECT_NEAR(clip->FileFrameRate, 24.0, 1e-4);
    EXPECT_EQ(clip->AlphaType, ZV_ALPHA_CHANNEL);
    for (unsigned i : {4u, 0u, 3u, 1u, 2u})
        EXPECT_EQ(Clip_Frame(clip.get(), i), Random_Pixels(123, 45, i));
}

TEST_P(WrittenFormats, DeepFramesAreConverted)
{
    Bytes const pixels = Random_Pixels(6, 5, 1);
    BitmapPtr const deep = Make_Bitmap(6, 5, {}, ZV_BITMAP_RGBA16);
    CopyBitmapZV(Make_Bitmap(6, 5, pixels).get(), deep.get(), 0, 0, -1, -1, 0, 0);
    {
        ClipPtr const clip = Create(6, 5);
        ASSERT_TRUE(Add_Frame_At(clip.get(), 0, deep.get()));
        EXPECT_FALSE(format->AddFrame(clip.get(), deep.get(), 1, nullptr)) << "the module takes 8 bits";
        EXPECT_EQ(Add_Frame_At(clip.get(), 1, Make_Bitmap(5, 6).get()), GetParam().takesOtherSizes);
        EXPECT_EQ(GetErrorZV(), GetParam().takesOtherSizes ? ZV_ERR_NONE : ZV_ERR_CLIP);
        EXPECT_EQ(clip->RawFrames, 1 + GetParam().takesOtherSizes);
        Close(clip);
    }
    EXPECT_EQ(Clip_Frame(Open(environment.Spec(name)).get(), 0), pixels);
}

TEST_P(WrittenFormats, AReducedClipReadsScaledFrames)
{
    {
        ClipPtr const clip = Create(8, 6);
        ASSERT_TRUE(Add_Frame_At(clip.get(), 0, Random_Pixels(8, 6, 1)));
        Close(clip);
    }
    ClipPtr const clip = Open(environment.Spec(name));
    clip->ProxyScale = 1;
    SetClipOptionsZV(clip.get(), ZV_CLIP_WIDTH, 8, ZV_CLIP_HEIGHT, 6, 0);
    Bytes const half = Clip_Frame(clip.get(), 0), whole = Random_Pixels(8, 6, 1);
    ASSERT_EQ(half.size(), 4u * 4 * 3);
    for (std::size_t y = 0; y < 3; ++y)
        for (std::size_t x = 0; x < 4; ++x)
            EXPECT_EQ(half[4 * (4 * y + x)], whole[4 * (8 * 2 * y + 2 * x)]);
}

TEST_P(WrittenFormats, AFileThatCannotBeFinishedSaysSoAtClose)
{
    ClipPtr const clip = Create(64, 48);
    EndClipIOZV(clip.get(), nullptr);
    FileSizeLimit const full(4);
    SetError(0);
    CloseClipZV(clip.get());
    EXPECT_NE(GetErrorZV(), 0u);
    EXPECT_FALSE(clip->ModuleData);
    EXPECT_FALSE(Open(environment.Spec(name)));
}

INSTANTIATE_TEST_SUITE_P(Modules, WrittenFormats,
                         testing::Values(WrittenCase{ZV_FourCC("EIDI"), "written.ei", true},
                                         WrittenCase{ZV_FourCC("Film"), "written.flm", false}));

}  // namespace
