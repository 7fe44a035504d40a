// Scroll bars: which part is where, what a press on it does and repeats, and what is drawn.
#include "NativeItems.h"

#include <climits>
#include <cmath>

namespace {

class ScrollBars : public NativeItems {
protected:
    static constexpr int place = 20, length = 130;  // of the bar in the port; its thumb moves from 15 to 115
    static constexpr uint32_t face = 0x80C0A0, way = 0x507864;  // 100 / 160 of the face

    ScrollBars()
    {
        SetStylePenZV(ZV_PEN_FACE, face);
        SetStylePenZV(ZV_PEN_FACE_ON, face);
    }
    ~ScrollBars() override { FreeBitmapZV(canvas); }
    void Make(bool vertical, int maximum, int page, int value, int size = length)
    {
        isVertical = vertical;
        bar = std::make_unique<ScrollBar>(isVertical, [this] { ++changes; });
        HostRect const bounds{place, place, place + 16, place + size};
        bar->Place(isVertical ? bounds : HostRect{bounds.top, bounds.left, bounds.bottom, bounds.right});
        bar->Set_Range(maximum, page);
        bar->Set_Value(value);
        bar->Draw(*canvas->World);
    }
    bool Press(int along)
    {
        bar->Draw(*canvas->World);
        return bar->Press(*canvas->World, X(along), Y(along), 300, 200);
    }
    int Track(int along)
    {
        bar->Track(300 + X(along), 200 + Y(along));
        return bar->Value();
    }
    /// A pixel beside the middle, where the arrows are.
    uint32_t At(int along) const
    {
        uint32_t color = 0;
        canvas->World->surface.Read(isVertical ? place + 2 : place + along,
                                    isVertical ? place + along : place + 2, color);
        return color;
    }

    ZVNativeBitmap* canvas = AllocNativeBitmapZV(200, 200, 32);
    std::unique_ptr<ScrollBar> bar;
    int changes = 0;

private:
    int X(int along) const { return isVertical ? place + 7 : place + along; }
    int Y(int along) const { return isVertical ? place + along : place + 7; }

    bool isVertical = true;
};

struct BarCase {
    char const* why;
    int maximum, page, value;
    int thumbStart, thumbEnd;
};
BarCase const barCases[] = {
    {"half of the whole is seen", 50, 50, 0, 15, 65},
    {"between, halves of a pixel go up", 100, 100, 51, 41, 91},
    {"the end of a long list, with the least thumb", 99999, 10, 99999, 101, 115},
    {"a page beyond the range leaves a pixel to move", 1, 1000, 1, 16, 115},
    {"numbers as large as they get", INT_MAX, INT_MAX, INT_MAX, 65, 115},
};

}  // namespace

TEST_F(ScrollBars, EachPartActsWhereItIsDrawn)
{
    for (auto const& [why, maximum, page, value, thumbStart, thumbEnd] : barCases) {
        for (int i = 0; i < 2 * length; ++i) {
            int const along = i / 2;
            Make(i % 2, maximum, page, value);
            bool const isArrow = along < 16 || along >= length - 16;
            bool const isThumb = !isArrow && along >= thumbStart && along < thumbEnd;
            EXPECT_EQ(At(along) == way, !isArrow && !isThumb) << why << " at " << along;
            ASSERT_TRUE(Press(along)) << why;
            bool const isBefore = along < 16 || (!isArrow && along < thumbStart);
            int64_t const size = isArrow ? 1 : isThumb ? 0 : page;
            int64_t const expected = std::clamp<int64_t>(isBefore ? value - size : value + size, 0, maximum);
            EXPECT_EQ(bar->Value(), expected) << why << " at " << along;
            EXPECT_EQ(std::exchange(changes, 0), expected != value) << why << " at " << along;
        }
    }
}

TEST_F(ScrollBars, TheThumbFollowsTheMouseAndTheValueTheThumb)
{
    Make(true, 20, 20, 10);  // 50 long, with 50 to move, from 40 on
    ASSERT_TRUE(Press(47));
    for (int const mouse : {47, 48, 61, 200, 30, -5, 46}) {
        int const start = std::clamp(mouse - 7 - 15, 0, 50);
        EXPECT_EQ(Track(mouse), std::lround(start * 20 / 50.0)) << mouse;
        EXPECT_TRUE(At(15 + start + 2) == face && At(15 + start + 47) == face) << mouse;
        EXPECT_EQ(start > 1 ? At(15 + start - 1) : way, way) << mouse;
    }
    bar->Finish(0, 0);
    EXPECT_EQ(At(39), way) << "released, it stands where its value is";
}

TEST_F(ScrollBars, ArrowsAndPagesRepeatWhileTheMouseIsOnThem)
{
    struct Tick {
        uint32_t at;
        int mouse, value;
    };
    Make(true, 100, 10, 50);
    ASSERT_TRUE(Press(129));
    EXPECT_EQ(bar->Value(), 51) << "at once";
    for (auto const& [at, mouse, value] :
         {Tick{23, 128, 51}, {24, 128, 52}, {25, 127, 52}, {30, 127, 53}, {36, 60, 53}, {42, 127, 54}}) {
        ticks = 1000 + at;
        EXPECT_EQ(Track(mouse), value) << at;
    }
    Make(true, 100, 10, 0);
    ASSERT_TRUE(Press(60));
    for (ticks += 24; ticks < 2000; ticks += 6)
        Track(60);
    EXPECT_EQ(bar->Value(), 40) << "pages end with the thumb under the mouse";
}

TEST_F(ScrollBars, WithoutUseOrRoomItTakesNothingAndAListenerMayTakeItAway)
{
    Make(true, 0, 10, 0);
    EXPECT_FALSE(Press(60) || At(60) == way);
    Make(true, 10, 10, 7);
    bar->Set_Enabled(false);
    EXPECT_FALSE(Press(5) || At(8) == face);
    bar->Set_Enabled(true);
    EXPECT_FALSE(Press(-1) || Press(length));
    for (int size = 0; size < 48; ++size) {
        Make(true, 10, 10, 5, size);
        for (int along = 0; along < size; ++along)
            if (Press(along)) Track(4);
    }
    bar = std::make_unique<ScrollBar>(true, [this] { bar = nullptr; });
    bar->Place({place, place, place + 16, place + length});
    bar->Set_Range(10, 10);
    EXPECT_TRUE(bar->Press(*canvas->World, place + 7, place + length - 2, 0, 0));
    EXPECT_EQ(bar, nullptr);
    EXPECT_EQ(Mouse_Holder(), nullptr);
}
