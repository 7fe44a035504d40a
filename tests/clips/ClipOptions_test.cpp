// Options of a clip, and what follows from them for rates and frame counts.
#include "clips/ClipFixture.h"

#include <optional>

namespace {

class ClipOptions : public ClipTest {
protected:
    ClipOptions() { clip = NewClipZV(); }
};

TEST_F(ClipOptions, AReducedSizeKeepsTheFullOne)
{
    struct {
        char const* why;
        uint8_t scale;
        long fullWidth, fullHeight, value, width, height;
    } const cases[] = {
        {"none", 0, 0, 0, 100, 100, 100},          {"one half", 1, 0, 0, 101, 50, 50},
        {"one third", 2, 0, 0, 101, 33, 33},       {"one quarter", 3, 0, 0, 101, 25, 25},
        {"one eighth", 4, 0, 0, 101, 12, 12},      {"towards zero", 1, 0, 0, -3, -1, -1},
        {"nothing left", 1, 0, 0, 1, 1, 1},        {"nothing left", 4, 0, 0, 7, 7, 7},
        {"full size", 5, 320, 240, 100, 320, 240}, {"full size not known whole", 5, 320, 0, 100, 100, 100},
        {"no such scale", 6, 0, 0, 100, 100, 100},
    };
    for (auto const& row : cases) {
        clip->ProxyScale = row.scale;
        clip->FullWidth = row.fullWidth;
        clip->FullHeight = row.fullHeight;
        SetClipOptionsZV(clip, ZV_CLIP_WIDTH, row.value);
        EXPECT_EQ(clip->Width, row.width) << row.why;
        EXPECT_EQ(clip->FullWidth, row.fullWidth ? row.fullWidth : row.value) << row.why;
        clip->FullWidth = row.fullWidth;
        SetClipOptionsZV(clip, ZV_CLIP_HEIGHT, row.value);
        EXPECT_EQ(clip->Height, row.height) << row.why;
        EXPECT_EQ(clip->FullHeight, row.fullHeight ? row.fullHeight : row.value) << row.why;
    }
}

TEST_F(ClipOptions, TagsSetFieldsAndChooseAFormatByItsExtension)
{
    double const matte[4] = {0.1, 0.2, 0.3, 0.4};
    SetClipOptionsZV(clip, ZV_CLIP_ALPHA_INVERT, 1, ZV_CLIP_ALPHA_PREMULTIPLIED, 0, ZV_CLIP_MATTE_COLOR,
                     matte, ZV_CLIP_USER1, -1, ZV_CLIP_USER2, 2, ZV_CLIP_USER3, 3);
    EXPECT_TRUE(clip->AlphaInvert == 1 && clip->AlphaPremultiplied == 0);
    EXPECT_TRUE(clip->MatteRed == 0.1 && clip->MatteBlue == 0.3 && clip->MatteAlpha == 0.4);
    EXPECT_TRUE(clip->User1 == -1 && clip->User2 == 2 && clip->User3 == 3);
    SetClipOptionsZV(nullptr, ZV_CLIP_USER1, 1);

    TestFormat other("OTHR"), twin("othr");
    format.options = {1};
    clip->Format = format.desc;
    TestFormat::Options(clip, true);
    SetClipOptionsZV(clip, ZV_CLIP_FORMAT, "OtHr");
    EXPECT_EQ(clip->Format, other.desc) << "the first in the list";
    EXPECT_FALSE(clip->VideoParams);
    SetClipOptionsZV(clip, ZV_CLIP_FORMAT, "none");
    EXPECT_FALSE(clip->Format);
}

struct {
    char const* why;
    double rate, fileRate, baseRate;  // before
    uint8_t pullDown;                 // before
    std::optional<double> newRate;
    std::optional<long> newPullDown;
    double rateAfter, fileRateAfter;
} const rateCases[] = {
    {"pull-down works from the rate at open", 30, 30, 30, 0, {}, 1, 24, 30},
    {"a given film rate sets the video's", 30, 30, 30, 0, 24.0, 1, 24, 30},
    {"another", 25, 25, 25, 0, 20.0, 3, 20, 25},
    {"a ratio that fits stays", 24, 30, 25, 1, {}, 2, 24, 30},
    {"a given rate that fits stays", 30, 30, 99, 0, 24.0, 4, 24, 30},
    {"no rate of the file yet", 0, 0, 30, 0, {}, 1, 24, 30},
    {"off again", 24, 30, 30, 1, {}, 0, 30, 30},
    {"off with a new rate", 24, 30, 30, 1, 25.0, 0, 25, 25},
    {"off where it never was", 24, 24, 30, 0, {}, 0, 24, 24},
    {"a rate alone", 30, 30, 30, 0, 25.0, {}, 25, 25},
    {"a rate under pull-down", 24, 30, 30, 1, 20.0, {}, 20, 25},
    {"a film rate near 30 video", 20, 25, 30, 1, 24.0, {}, 24, 29.97},
    {"the same, just not near", 20, 25, 30, 1, 24.01, {}, 24.01, 30.0125},
};

TEST_F(ClipOptions, RatesFollowPullDown)
{
    // Size, aspect and fields of a preset of 29.97 frames a second.
    SetClipOptionsZV(clip, ZV_CLIP_WIDTH, 720, ZV_CLIP_HEIGHT, 480, ZV_CLIP_FIELD_ORDER, 2);
    clip->PixelAspect = 0.9;
    for (auto const& row : rateCases) {
        clip->FrameRate = row.rate;
        clip->FileFrameRate = row.fileRate;
        clip->BaseFrameRate = row.baseRate;
        clip->PullDown = row.pullDown;
        double const rate = row.newRate.value_or(0.0);
        SetClipOptionsZV(clip, row.newRate ? ZV_CLIP_FRAME_RATE : ZV_TAG_IGNORE, &rate,
                         row.newPullDown ? ZV_CLIP_PULLDOWN : ZV_TAG_IGNORE, row.newPullDown.value_or(0));
        EXPECT_NEAR(clip->FrameRate, row.rateAfter, 1e-12) << row.why;
        EXPECT_NEAR(clip->FileFrameRate, row.fileRateAfter, 1e-12) << row.why;
    }
    // A preset must fit in all that it says.
    double const film = 24.0;
    for (uint8_t const order : {ZV_FIELDS_NONE, ZV_FIELDS_LOWER_FIRST}) {
        clip->PullDown = 1;
        clip->FieldOrder = order;
        clip->PixelAspect = order == ZV_FIELDS_NONE ? 0.9 : 1.0;
        SetClipOptionsZV(clip, ZV_CLIP_FRAME_RATE, &film);
        EXPECT_EQ(clip->FileFrameRate, 30.0);
    }
}

TEST_F(ClipOptions, FilmFramesAreCountedByPhase)
{
    // Frames for 10 to 14 raw frames.
    long const counts[6][5] = {{10, 11, 12, 13, 14}, {8, 9, 10, 11, 11}, {8, 9, 10, 10, 11},
                               {8, 9, 9, 10, 11},    {8, 9, 10, 11, 12}, {8, 9, 10, 11, 12}};
    for (long phase = 5; phase >= 0; --phase)
        for (long raw = 10; raw < 15; ++raw) {
            clip->RawFrames = raw;
            SetClipOptionsZV(clip, ZV_CLIP_PULLDOWN, phase);
            EXPECT_EQ(clip->Frames, counts[phase][raw - 10]) << "phase " << phase << ", " << raw << " frames";
        }
}

TEST_F(ClipOptions, FramesThatWereInsertedStayWhenPullDownGoes)
{
    Open();
    ZVTimeValue const start{};
    ASSERT_TRUE(InsertFrameBeforeZV(clip, &start));
    SetClipOptionsZV(clip, ZV_CLIP_PULLDOWN, 1);
    SetClipOptionsZV(clip, ZV_CLIP_PULLDOWN, 0);
    EXPECT_EQ(clip->Frames, 11);
}

}  // namespace
