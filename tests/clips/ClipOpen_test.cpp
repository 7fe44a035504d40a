// Opening clips: errors, rates and aspects, layers, alpha, and opening again.
#include "clips/ClipFixture.h"

namespace {

class ClipOpen : public ClipTest {
protected:
    ZVClip* Open_File(std::string const& spec, TagItem* tags = nullptr)
    {
        FreeClipZV(clip);
        return clip = OpenClipZV(spec.c_str(), tags);
    }
};

TEST_F(ClipOpen, WhatGoesWrongIsToldByNumber)
{
    environment.Write("take.unknown", "x");
    environment.Make_Directory("dir.tst");
    struct {
        char const* why;
        char const* name;
        std::set<std::string> failing;
        long moduleError;  // -1: none set
        unsigned long error;
    } const cases[] = {
        {"no such file", "none.tst", {}, -1, ZV_ERR_NOT_FOUND},
        {"no module", "take.unknown", {}, -1, ZV_ERR_NO_FORMAT},
        {"a directory", "dir.tst", {}, -1, ZV_ERR_NO_FORMAT},
        {"module fails in silence", "take.tst", {"Open"}, -1, ZV_ERR_CLIP},
        {"module clears the number", "take.tst", {"Open"}, 0, ZV_ERR_CLIP_OPEN},
        {"module tells why", "take.tst", {"Open"}, ZV_ERR_LOCKED, ZV_ERR_LOCKED},
    };
    for (auto const& row : cases) {
        format.failing = row.failing;
        format.errors.clear();
        if (row.moduleError >= 0) format.errors["Open"] = static_cast<unsigned long>(row.moduleError);
        EXPECT_FALSE(Open_File(environment.Spec(row.name))) << row.why;
        EXPECT_EQ(GetErrorZV(), row.error) << row.why;
    }
    EXPECT_FALSE(OpenClipZV(static_cast<char const*>(nullptr), nullptr));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    EXPECT_EQ(format.Count("Close"), 0) << "what never opened is not closed";
}

TEST_F(ClipOpen, TheModuleIsThatOfTheExtensionOrTheFormatTag)
{
    std::string const plain = environment.Write("plain", "x");
    EXPECT_FALSE(Open_File(plain));
    clip = OpenClipZV(plain.c_str(), ZV_OPEN_FORMAT, "TST\0");
    ASSERT_TRUE(clip);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NONE);
    EXPECT_EQ(clip->Format, format.desc);
    EXPECT_EQ(clip->Flags & ~0ul, ZV_CLIP_OPEN | ZV_CLIP_ALPHA_KNOWN);
    TestFormat remote("pgt");
    EXPECT_TRUE(Open_File("a/b/c/d.pgt")) << "a path on remote storage need not exist";
    EXPECT_EQ(remote.Count("Open"), 1);
    FreeClipZV(std::exchange(clip, nullptr));
}

TEST_F(ClipOpen, RateAndAspectComeFromFileTagPresetOrSize)
{
    struct {
        char const* why;
        long width, height;
        double moduleRate, moduleAspect, tagRate, rate, aspect;
    } const cases[] = {
        {"the module knows", 720, 480, 12.0, 1.5, 0.0, 12.0, 1.5},
        {"a preset", 720, 480, 0.0, 0.0, 0.0, 29.97, 0.9},
        {"no preset", 100, 100, 0.0, 0.0, 0.0, 30.0, 1.0},
        {"no preset, just below film size", 2047, 100, 0.0, 0.0, 0.0, 30.0, 1.0},
        {"no preset, film size", 2048, 100, 0.0, 0.0, 0.0, 24.0, 1.0},
        {"the caller knows the rate", 720, 480, 0.0, 0.0, 15.0, 15.0, 0.9},
    };
    for (auto const& row : cases) {
        format.width = row.width;
        format.height = row.height;
        format.rate = row.moduleRate;
        format.pixelAspect = row.moduleAspect;
        TagItem const tags[] = {{row.tagRate > 0 ? ZV_OPEN_FRAME_RATE : ZV_TAG_IGNORE,
                                 reinterpret_cast<unsigned long>(&row.tagRate)},
                                {}};
        ASSERT_TRUE(Open_File(take, const_cast<TagItem*>(tags)));
        for (double rate : {clip->FileFrameRate, clip->FrameRate, clip->BaseFrameRate})
            EXPECT_EQ(rate, row.rate) << row.why;
        EXPECT_EQ(clip->PixelAspect, row.aspect) << row.why;
        EXPECT_EQ(clip->FieldOrder, ZV_FIELDS_NONE) << "a preset's fields are not taken";
    }
}

TEST_F(ClipOpen, WithoutAnAlphaChannelNothingIsGuessed)
{
    format.flags = 0;
    struct {
        uint8_t alphaType;
        bool guesses, isKnown;
        long frames;
    } const cases[] = {{ZV_ALPHA_NONE, true, true, 0},
                       {ZV_ALPHA_NONE, false, false, 0},
                       {ZV_ALPHA_CHANNEL, false, false, 0},
                       {ZV_ALPHA_CHANNEL, true, true, 1}};
    for (auto const& row : cases) {
        format.calls.clear();
        format.alphaType = row.alphaType;
        TagItem tags[] = {{row.guesses ? ZV_TAG_IGNORE : ZV_OPEN_NO_ALPHA_GUESS, 1}, {}};
        ASSERT_TRUE(Open_File(take, tags));
        EXPECT_EQ((clip->Flags & ZV_CLIP_ALPHA_KNOWN) != 0, row.isKnown);
        EXPECT_EQ(format.Count("GetFrame"), row.frames);
        EXPECT_EQ(format.Count("BeginIO"), format.Count("EndIO"));
        EXPECT_EQ(clip->FileAlphaType, row.alphaType);
        EXPECT_EQ(clip->AlphaPremultiplied, 0);
    }
}

TEST_F(ClipOpen, AGuessThatFailsLeavesTheAlphaOpenAndAnExceptionEndsTheOpen)
{
    format.flags = 0;
    format.failing = {"GetFrame"};
    ASSERT_TRUE(Open_File(take));
    EXPECT_FALSE(clip->Flags & ZV_CLIP_ALPHA_KNOWN);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NONE);
    format.failing.clear();
    format.calls.clear();
    format.throwing = {"GetFrame"};
    EXPECT_FALSE(Open_File(take));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP_EXCEPTION);
    EXPECT_EQ(format.Count("Close"), format.Count("Open") + 1) << "this one and the one before";
}

class LayerOpen : public ClipOpen {
protected:
    LayerOpen() { format.layers = {{"front", 4, 3, 16, ZV_ALPHA_CHANNEL}, {"back", 5, 2, 8, ZV_ALPHA_NONE}}; }
    ~LayerOpen() override { FreeClipZV(layer); }
    ZVClip* layer = nullptr;
};

TEST_F(LayerOpen, ALayerOfAnOpenClipIsAClipOfItsOwn)
{
    Open();
    layer = OpenClipZV("ignored", ZV_OPEN_SOURCE_CLIP, clip, ZV_OPEN_LAYER, 2);
    ASSERT_TRUE(layer);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NONE);
    EXPECT_TRUE(layer->Width == 5 && layer->Height == 2 && layer->BitDepth == 8 && layer->Layer == 2);
    EXPECT_TRUE(layer->AlphaType == ZV_ALPHA_NONE && layer->FileAlphaType == ZV_ALPHA_NONE);
    EXPECT_EQ(layer->Flags & (ZV_CLIP_OPEN | ZV_CLIP_IO | ZV_CLIP_ALPHA_KNOWN),
              ZV_CLIP_OPEN | ZV_CLIP_ALPHA_KNOWN);
    layer->AlphaType = ZV_ALPHA_CHANNEL;
    ASSERT_TRUE(BeginClipIOZV(layer, nullptr));
    EXPECT_EQ(Frame_Bytes(layer, 6), Picture_Bytes(6, 5, 2, ZV_BITMAP_RGBA8, 2));
    FreeClipZV(std::exchange(layer, nullptr));
    EXPECT_EQ(format.Count("Close") + 1, format.Count("Open")) << "the source stays open";
}

TEST_F(LayerOpen, AlphaOfALayerIsGuessedAtItsOwnSize)
{
    for (bool const isSourceOpen : {true, false}) {
        Open();
        if (!isSourceOpen) CloseClipZV(clip);
        format.calls.clear();
        layer = OpenClipZV("ignored", ZV_OPEN_SOURCE_CLIP, clip, ZV_OPEN_LAYER, 1);
        ASSERT_TRUE(layer);
        TestCall const& read = format.Last("GetFrame");
        EXPECT_TRUE(read.layer == 1 && read.rect.width == 4 && read.type == ZV_BITMAP_RGBA16);
        EXPECT_TRUE(layer->Flags & ZV_CLIP_OPEN);
        FreeClipZV(std::exchange(layer, nullptr));
        EXPECT_EQ(format.Count("Open"), format.Count("Close"));
    }
}

TEST_F(LayerOpen, ALayerThatIsNotThereIsNoClip)
{
    Open();
    for (long const number : {0L, 3L, -1L})
        EXPECT_FALSE(OpenClipZV("ignored", ZV_OPEN_SOURCE_CLIP, clip, ZV_OPEN_LAYER, number)) << number;
    EXPECT_FALSE(OpenClipZV("ignored", ZV_OPEN_SOURCE_CLIP, nullptr, ZV_OPEN_LAYER, 1));
    EXPECT_NE(GetErrorZV(), ZV_ERR_NONE);
}

TEST_F(LayerOpen, AFileCanBeOpenedByLayer)
{
    // A layer that is not there leaves the flat image.
    for (auto const& [number, width] : {std::pair{2L, 5L}, {9L, 8L}}) {
        layer = OpenClipZV(take.c_str(), ZV_OPEN_LAYER, number);
        ASSERT_TRUE(layer);
        EXPECT_EQ(layer->Width, width);
        EXPECT_EQ(layer->Layer, number == 2 ? 2 : 0);
        FreeClipZV(std::exchange(layer, nullptr));
    }
}

TEST_F(ClipOpen, OpeningAgainChangesNoSetting)
{
    format.layers = {{"front", 4, 3, 16, ZV_ALPHA_CHANNEL}};
    Open();
    double const rate = 12.0;
    SetClipOptionsZV(clip, ZV_CLIP_FRAME_RATE, &rate, ZV_CLIP_WIDTH, 4, ZV_CLIP_ALPHA_TYPE, 1, ZV_CLIP_USER1,
                     3);
    ZVTimeValue const time{};
    DeleteFrameZV(clip, &time);
    CloseClipZV(clip);
    unsigned long const id = clip->ClipID;
    ASSERT_EQ(OpenClipZV(clip, nullptr), 1);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NONE);
    EXPECT_EQ(clip->ClipID, id);
    EXPECT_EQ(clip->FrameRate, 12.0);
    EXPECT_EQ(clip->Width, 4);
    EXPECT_EQ(clip->AlphaType, ZV_ALPHA_LUMINANCE);
    EXPECT_EQ(clip->FileAlphaType, ZV_ALPHA_CHANNEL);
    EXPECT_EQ(clip->User1, 3);
    EXPECT_EQ(clip->Frames, 9);
    EXPECT_EQ(Get_ReadableFrames(clip), 9);
    EXPECT_EQ(List_Entries(&clip->Layers), 1);
    EXPECT_TRUE(clip->ModuleData);
}

/// A module without a file keeps its frames from one open to the next, so its clips are marked closed by
/// hand.
TEST_F(ClipOpen, AClipMarkedClosedOpensAgainWithItsModuleAtWork)
{
    Open();
    clip->Flags &= ~static_cast<unsigned long>(ZV_CLIP_OPEN);
    ASSERT_EQ(OpenClipZV(clip, nullptr), 1);
    EXPECT_TRUE(clip->Flags & ZV_CLIP_IO);
    CloseClipZV(clip);
    EXPECT_EQ(format.Count("Open"), 2);
    EXPECT_EQ(format.Count("EndIO"), 1);
    EXPECT_EQ(format.Count("Close"), 1);
}

TEST_F(ClipOpen, WhatCannotOpenAgainStaysClosedAndWhole)
{
    Open();
    CloseClipZV(clip);
    format.failing = {"Open"};
    EXPECT_EQ(OpenClipZV(clip, nullptr), 0);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP);
    EXPECT_EQ(clip->Flags & ZV_CLIP_OPEN, 0u);
    EXPECT_STREQ(clip->FileName, take.c_str());
    FreeFileSpecZV(std::exchange(clip->FileName, nullptr));
    EXPECT_EQ(OpenClipZV(clip, nullptr), 0);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    clip->Format = nullptr;
    EXPECT_EQ(OpenClipZV(clip, nullptr), 0);
    EXPECT_EQ(OpenClipZV(static_cast<ZVClip*>(nullptr), nullptr), 0);
    EXPECT_EQ(format.Count("Close"), 1);
}

}  // namespace
