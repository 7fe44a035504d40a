// The guess of the alpha convention, from frames and from clips.
#include "clips/ClipFixture.h"
#include "pixels/BitmapVisit.h"

namespace {

using Pixel = std::array<double, 4>;  // fractions
constexpr Pixel blue = {0, 0, 1, 0}, red = {1, 0, 0, 1}, mixed = {0.5, 0, 0.5, 0.5}, unmixed = {1, 0, 0, 0.5};
constexpr Pixel green = {0, 1, 0, 1}, behindGreen = {0.75, 1, 0.75, 0.25}, notBehindGreen = {0, 0, 0, 0.75};
constexpr Pixel clearRed = {1, 0, 0, 0}, nothing = {0, 0, 0, 0}, clearGrey = {0.5, 0.5, 0.5, 0};

struct Guess {
    char const* why;
    std::vector<Pixel> pixels;
    bool isInverted, isPremultiplied;
    Pixel matte = {};
};

Guess const guesses[] = {
    {"clear and black: nothing is there", {nothing, nothing, nothing}, false, false},
    {"a picture under a channel of zeros", {nothing, clearRed, blue}, true, false},
    {"one colour under a channel of zeros", {clearGrey, clearGrey}, true, false},
    {"all opaque", {red, green, red}, false, false},
    {"edges mixed with the colour of the background", {blue, blue, blue, mixed, red}, false, true, blue},
    {"edges not mixed with it", {blue, blue, blue, unmixed, red}, false, false},
    {"opaque pixels share a colour, clear ones do not",
     {green, green, green, behindGreen, clearRed, blue},
     true,
     true,
     green},
    {"the same without mixing", {green, green, green, notBehindGreen, clearRed, blue}, true, false},
    {"neither clear nor opaque", {mixed, unmixed, behindGreen}, false, false},
    {"two of three clear pixels are more than half", {blue, blue, clearRed, red}, false, false},
    {"two of three, all of them agreeing",
     {nothing, nothing, {0.0005, 0, 0, 0}, mixed, red, green},
     false,
     true,
     nothing},
    {"one of two is not", {blue, clearRed, mixed, red, green}, false, false},
    {"the first clear pixel is what counts", {clearRed, blue, blue, blue, mixed, red, green}, false, false},
    {"opaque pixels need not agree", {blue, blue, {1, 1, 1, 1}, {0, 1, 0, 1}}, false, true, blue},
};

BitmapBlock Make_Frame(std::vector<Pixel> const& pixels, ZVBitmapType type)
{
    BitmapBlock bitmap = Make_Bitmap(static_cast<long>(pixels.size()), 1, type);
    Visit_RGBA(*bitmap, [&](auto& typed) {
        for (std::size_t i = 0; i < pixels.size(); ++i)
            typed.GetIterator(static_cast<long>(i), 0)
                ->SetFloat(pixels[i][0], pixels[i][1], pixels[i][2], pixels[i][3]);
    });
    return bitmap;
}

/// A clip of a file with alpha, whose settings are all other than a guess makes them.
ZVClip Make_Unknown()
{
    ZVClip clip{};
    clip.FileAlphaType = ZV_ALPHA_CHANNEL;
    clip.AlphaType = ZV_ALPHA_NONE;
    clip.AlphaInvert = clip.AlphaPremultiplied = 7;
    clip.MatteRed = clip.MatteGreen = clip.MatteBlue = clip.MatteAlpha = 0.125;
    return clip;
}

/// A clip on a file of the test module whose alpha nobody has told.
class AlphaGuess : public ClipTest {
protected:
    AlphaGuess() { format.flags = 0; }

    ZVClip* Open_Unguessed()
    {
        clip = OpenClipZV(take.c_str(), ZV_OPEN_NO_ALPHA_GUESS, 1, 0);
        EXPECT_TRUE(clip);
        clip->AlphaInvert = 1;
        clip->AlphaPremultiplied = 1;
        return clip;
    }

    bool Is_Known() const { return clip->Flags & ZV_CLIP_ALPHA_KNOWN; }
};

}  // namespace

TEST(AlphaGuessFrame, TellsConventionsApart)
{
    for (ZVBitmapType const type : rgbaTypes) {
        for (Guess const& guess : guesses) {
            SCOPED_TRACE(testing::Message() << guess.why << ", type " << int{type});
            ZVClip clip = Make_Unknown();
            EXPECT_EQ(GuessAlphaZV(&clip, Make_Frame(guess.pixels, type).get()), 1);
            EXPECT_EQ(clip.AlphaType, ZV_ALPHA_CHANNEL);
            EXPECT_EQ(clip.AlphaInvert != 0, guess.isInverted);
            EXPECT_EQ(clip.AlphaPremultiplied != 0, guess.isPremultiplied);
            EXPECT_TRUE(clip.Flags & ZV_CLIP_ALPHA_KNOWN);
            Pixel const matte = guess.isPremultiplied ? guess.matte : Pixel{0.125, 0.125, 0.125};
            EXPECT_EQ(clip.MatteRed, matte[0]);
            EXPECT_EQ(clip.MatteGreen, matte[1]);
            EXPECT_EQ(clip.MatteBlue, matte[2]);
            EXPECT_EQ(clip.MatteAlpha, 0.125);
        }
    }
}

TEST(AlphaGuessFrame, AFileWithoutAlphaHasNothingToInterpret)
{
    for (uint8_t const fileType : {ZV_ALPHA_NONE, ZV_ALPHA_LUMINANCE}) {
        ZVClip clip = Make_Unknown();
        clip.FileAlphaType = fileType;
        clip.AlphaType = ZV_ALPHA_LUMINANCE;
        EXPECT_EQ(GuessAlphaZV(&clip, Make_Frame({clearRed}, ZV_BITMAP_RGBA8).get()), 1);
        EXPECT_EQ(clip.AlphaType, ZV_ALPHA_LUMINANCE);
        EXPECT_EQ(clip.AlphaInvert, 0);
        EXPECT_EQ(clip.AlphaPremultiplied, 0);
        EXPECT_TRUE(clip.Flags & ZV_CLIP_ALPHA_KNOWN);
    }
}

TEST(AlphaGuessFrame, NothingToLookAtAnswers0)
{
    ZVClip clip = Make_Unknown();
    EXPECT_EQ(GuessAlphaZV(&clip, nullptr), 0);
    EXPECT_EQ(GuessAlphaZV(nullptr, Make_Frame({red}, ZV_BITMAP_RGBA8).get()), 0);
    EXPECT_EQ(GuessAlphaZV(nullptr), 0);
    for (int type = ZV_BITMAP_MONO8; type <= ZV_BITMAP_MONOFLOAT; ++type)
        EXPECT_EQ(GuessAlphaZV(&clip, Make_Bitmap(2, 2, static_cast<ZVBitmapType>(type)).get()), 0);
    EXPECT_FALSE(clip.Flags & ZV_CLIP_ALPHA_KNOWN);
    EXPECT_EQ(clip.AlphaInvert, 7);
}

TEST_F(AlphaGuess, ReadsTheFirstFrameRawAndPutsTheSettingsBack)
{
    Open_Unguessed();
    clip->PullDown = 3;
    clip->Flags |= ZV_CLIP_TIME_BLEND;
    clip->StartTime = {90000, 25};
    std::vector<uint8_t> skipped(10, 1);
    clip->FrameSkip = skipped.data();
    EXPECT_EQ(GuessAlphaZV(clip), 1);
    EXPECT_EQ(format.Count("GetFrame"), 1);
    EXPECT_EQ(format.Last("GetFrame").frame, 0);
    EXPECT_EQ(format.Count("BeginIO"), 1);
    EXPECT_EQ(format.Count("EndIO"), 1);
    EXPECT_EQ(clip->PullDown, 3);
    EXPECT_EQ(clip->FrameSkip, skipped.data());
    EXPECT_EQ(clip->Flags, ZV_CLIP_TIME_BLEND | ZV_CLIP_OPEN | ZV_CLIP_ALPHA_KNOWN);
    // Random pixels look like straight alpha.
    EXPECT_EQ(clip->AlphaType, ZV_ALPHA_CHANNEL);
    EXPECT_EQ(clip->AlphaInvert, 0);
    EXPECT_EQ(clip->AlphaPremultiplied, 0);
}

TEST_F(AlphaGuess, LeavesAClipInTheStateThatItWasIn)
{
    Open_Unguessed();
    CloseClipZV(clip);
    format.calls.clear();
    EXPECT_EQ(GuessAlphaZV(clip), 1);
    EXPECT_EQ(format.Count("Open"), 1);
    EXPECT_EQ(format.Count("Close"), 1);
    EXPECT_FALSE(clip->Flags & (ZV_CLIP_OPEN | ZV_CLIP_IO));

    ASSERT_TRUE(OpenClipZV(clip, nullptr));
    ASSERT_TRUE(BeginClipIOZV(clip, nullptr));
    format.calls.clear();
    EXPECT_EQ(GuessAlphaZV(clip), 1);
    EXPECT_EQ(format.Count("Open") + format.Count("Close") + format.Count("BeginIO") + format.Count("EndIO"),
              0);
    EXPECT_TRUE(clip->Flags & ZV_CLIP_IO);
}

TEST_F(AlphaGuess, AFrameThatCannotBeReadLeavesItOpen)
{
    for (char const* const entry : {"Open", "BeginIO", "GetFrame"}) {
        SCOPED_TRACE(entry);
        FreeClipZV(clip);
        Open_Unguessed();
        CloseClipZV(clip);
        format.failing = {entry};
        EXPECT_EQ(GuessAlphaZV(clip), 0);
        EXPECT_FALSE(Is_Known());
        EXPECT_EQ(clip->AlphaInvert, 1);
        EXPECT_EQ(clip->AlphaPremultiplied, 1);
        EXPECT_FALSE(clip->Flags & (ZV_CLIP_OPEN | ZV_CLIP_IO));
        format.failing.clear();
    }
}

TEST_F(AlphaGuess, AnExceptionPassesAndTheSettingsAreBack)
{
    Open_Unguessed();
    clip->PullDown = 2;
    format.throwing = {"GetFrame"};
    EXPECT_THROW(GuessAlphaZV(clip), int);
    EXPECT_EQ(clip->PullDown, 2);
    EXPECT_EQ(clip->AlphaInvert, 1);
    EXPECT_EQ(clip->Flags, ZV_CLIP_OPEN);
}

TEST_F(AlphaGuess, AFileWithoutAlphaIsNotRead)
{
    format.alphaType = ZV_ALPHA_NONE;
    Open_Unguessed();
    clip->Flags &= ~static_cast<unsigned long>(ZV_CLIP_ALPHA_KNOWN);
    EXPECT_EQ(GuessAlphaZV(clip), 1);
    EXPECT_EQ(format.Count("GetFrame"), 0);
    EXPECT_TRUE(Is_Known());
    EXPECT_EQ(clip->AlphaInvert, 0);
}

TEST_F(AlphaGuess, OpeningGuesses)
{
    format.isOpaque = true;
    clip = OpenClipZV(take.c_str(), nullptr);
    ASSERT_TRUE(clip);
    EXPECT_EQ(format.Count("GetFrame"), 1);
    EXPECT_TRUE(Is_Known());
    EXPECT_EQ(clip->AlphaInvert, 0);
}
