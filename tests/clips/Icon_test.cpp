// Icons from files with layers, and bitmaps saved as JPEG files.
#include "clips/ClipFixture.h"

namespace {

class Icons : public testing::Test {
protected:
    /// As if there were an interface.
    Icons() { FindTagItem(ZV_INIT_NO_GUI, ZVEnv->initTags)->tag = ZV_TAG_IGNORE; }

    TestEnvironment environment{TestEnvironment::Home::Directory};
    TestFormat format;
};

TEST_F(Icons, LayersNamedByANumberBecomeIconsWithoutTheirBorder)
{
    format.layers = {{"Background", 8, 6, 8, ZV_ALPHA_CHANNEL}, {"12a", 18, 10, 8, ZV_ALPHA_CHANNEL},
                     {"0", 8, 6, 8, ZV_ALPHA_CHANNEL},          {"7", 2, 2, 8, ZV_ALPHA_CHANNEL},
                     {"12", 30, 30, 8, ZV_ALPHA_CHANNEL},       {"15002", 3, 3, 8, ZV_ALPHA_NONE}};
    environment.Write("icons.tst", "x");
    ASSERT_EQ(LoadIconFileZV("icons.tst"), 1);
    ZVBitmap const* const icon = FindIconZV(12);
    ASSERT_TRUE(icon);
    EXPECT_EQ(FindIconZV(12), icon) << "the first layer of a number stays";
    BitmapBlock const layer = Make_Bitmap(18, 10), expected = Make_Bitmap(16, 8);
    Draw_Test_Picture(layer.get(), 0, 2);
    CopyBitmapZV(layer.get(), expected.get(), 1, 1, 16, 8, 0, 0);
    EXPECT_EQ(icon->Width, 16);
    EXPECT_EQ(icon->Height, 8);
    EXPECT_EQ(std::vector(icon->Pixels, icon->Pixels + icon->Size), Bytes_Of(expected));
    EXPECT_TRUE(FindIconZV(15002));
    for (unsigned long const id : {0UL, 7UL, 13UL, 1UL << 40})
        EXPECT_FALSE(FindIconZV(id)) << id;
    CleanupIconList();
    EXPECT_FALSE(FindIconZV(12));
}

TEST_F(Icons, NothingIsLoadedWithoutFileOrInterface)
{
    environment.Write("icons.tst", "x");
    EXPECT_EQ(LoadIconFileZV(nullptr), 0);
    EXPECT_EQ(LoadIconFileZV("none.tst"), 0);
    ZVEnv->initTags[0] = {ZV_INIT_NO_GUI, 1};
    EXPECT_EQ(LoadIconFileZV("icons.tst"), 0);
}

struct {
    ZVFormatParams const* params;
    int32_t words[2];
} seenOptions;

TEST_F(Icons, ABitmapIsSavedThroughTheModuleForJPEG)
{
    BitmapBlock const grey = Make_Bitmap(2, 1, ZV_BITMAP_MONO8);
    grey->Pixels[0] = 10;
    grey->Pixels[1] = 20;
    std::string const path = environment.Spec("still.jpg");
    WriteJPEGZV(grey.get(), path.c_str(), 80);  // nobody writes such files yet
    TestFormat jpeg("jpg");
    jpeg.desc->Create = [](ZVClip* clip, unsigned long) {
        seenOptions.params = clip->VideoParams;
        std::memcpy(seenOptions.words, clip->VideoParams->Data, sizeof seenOptions.words);
        return 1L;
    };
    WriteJPEGZV(nullptr, path.c_str(), 80);
    EXPECT_EQ(jpeg.Count("AddFrame"), 0);
    WriteJPEGZV(grey.get(), path.c_str(), 80);
    ASSERT_EQ(jpeg.Count("AddFrame"), 1);
    TestCall const& call = jpeg.Last("AddFrame");
    EXPECT_EQ(call.fileName, path);
    EXPECT_EQ(call.data, (std::vector<unsigned char>{10, 10, 10, 255, 20, 20, 20, 255}));
    EXPECT_EQ(seenOptions.words[0], 0);
    EXPECT_EQ(seenOptions.words[1], 80);
    EXPECT_EQ(jpeg.Count("Close"), 1);
}

}  // namespace
