// Scroll bars on a bitmap: which part is where, what a press on it does and repeats, and what is drawn.
#include "NativeItems.h"

#include <climits>
#include <cmath>
#include <memory>

namespace {

constexpr int breadth = 16, originX = 300, originY = 200;  // of the port on the screen

class ScrollBars : public testing::Test {
protected:
    ScrollBars() : bitmap_(AllocNativeBitmapZV(300, 300, 32))
    {
        SetStylePenZV(ZV_PEN_FACE, face);
        SetStylePenZV(ZV_PEN_FACE_ON, face);
    }
    ~ScrollBars() override { FreeBitmapZV(bitmap_); }

    static constexpr uint32_t face = 0x80C0A0, way = 0x507864;  // 100 / 160 of the face
    static constexpr int start = 20;                            // of the bar in the port

    /// A bar along one axis.
    void Make(bool isVertical, int length, int maximum, int page, int value)
    {
        isVertical_ = isVertical;
        bar = std::make_unique<ScrollBar>(isVertical, [this] { ++changes; });
        HostRect bounds{start, start, start + breadth, start + length};
        if (!isVertical) std::swap(bounds.right, bounds.bottom);
        bar->Place(bounds);
        bar->Set_Range(maximum, page);
        bar->Set_Value(value);
        bar->Draw(*bitmap_->World);
    }
    bool Press(int along)
    {
        int const x = isVertical_ ? start + 7 : start + along, y = isVertical_ ? start + along : start + 7;
        return bar->Press(*bitmap_->World, x, y, originX, originY);
    }
    void Track(int along)
    {
        int const place = start + along;
        bar->Track(originX + (isVertical_ ? start + 7 : place), originY + (isVertical_ ? place : start + 7));
    }

    /// The middle of the bar from its start: 't' face, '.' way, '#' a frame or something else.
    std::string Picture(int length) const
    {
        std::string picture;
        for (int i = 0; i < length; ++i) {
            uint32_t color = 0;
            // Beside the arrows, which are drawn around the middle.
            int const x = isVertical_ ? start + 2 : start + i, y = isVertical_ ? start + i : start + 2;
            bitmap_->World->surface.Read(x, y, color);
            picture += color == face ? 't' : color == way ? '.' : '#';
        }
        return picture;
    }

    TestEnvironment environment;
    std::unique_ptr<ScrollBar> bar;
    int changes = 0;

private:
    ZVNativeBitmap* bitmap_;
    bool isVertical_ = true;
};

struct BarCase {
    char const* why;
    int length, maximum, page, value;
    int thumbStart, thumbEnd;  // counted from the bar's start; the way is from 15 to length - 15
};
BarCase const barCases[] = {
    {"half of the whole is seen", 130, 50, 50, 0, 15, 65},
    {"and at the end", 130, 50, 50, 50, 65, 115},
    {"between, halves of a pixel go up", 130, 100, 100, 51, 41, 91},
    {"a long list keeps the least thumb", 130, 99999, 10, 0, 15, 29},
    {"its last row is at the end", 130, 99999, 10, 99999, 101, 115},
    {"a page larger than the range leaves a pixel to move", 130, 1, 1000, 1, 16, 115},
    {"numbers as large as they get", 130, INT_MAX, INT_MAX, INT_MAX, 65, 115},
};

}  // namespace

TEST_F(ScrollBars, EachPartActsWhereItIsDrawn)
{
    for (BarCase const& row : barCases) {
        for (bool const isVertical : {true, false}) {
            Make(isVertical, row.length, row.maximum, row.page, row.value);
            std::string const picture = Picture(row.length);
            EXPECT_EQ(picture.substr(16, static_cast<std::size_t>(row.length) - 32).find_first_not_of("t#."),
                      std::string::npos);
            for (int along = 0; along < row.length; ++along) {
                Make(isVertical, row.length, row.maximum, row.page, row.value);
                ASSERT_TRUE(Press(along)) << row.why;
                int64_t expected = row.value;
                bool const isThumb = along >= row.thumbStart && along < row.thumbEnd;
                if (along < 16)
                    expected -= 1;
                else if (along >= row.length - 16)
                    expected += 1;
                else if (!isThumb)
                    expected += along < row.thumbStart ? -int64_t{row.page} : int64_t{row.page};
                expected = std::clamp<int64_t>(expected, 0, row.maximum);
                EXPECT_EQ(bar->Value(), expected) << row.why << " at " << along;
                EXPECT_EQ(changes, bar->Value() != row.value ? 1 : 0) << row.why << " at " << along;
                changes = 0;
                bool const isWay = along >= 16 && along < row.length - 16 && !isThumb;
                EXPECT_EQ(picture[static_cast<std::size_t>(along)] == '.', isWay)
                    << row.why << " at " << along;
            }
        }
    }
}

TEST_F(ScrollBars, TheThumbFollowsTheMouseAndTheValueTheThumb)
{
    Make(true, 130, 20, 20, 10);  // 50 long, with 50 to move, from 40 on
    ASSERT_TRUE(Press(47));
    EXPECT_EQ(Mouse_Holder(), bar.get());
    for (int mouse : {47, 48, 50, 61, 200, 30, -5, 47}) {
        Track(mouse);
        int const place = std::clamp(mouse - 7 - 15, 0, 50);
        EXPECT_EQ(bar->Value(), std::lround(place * 20 / 50.0 + 1e-9)) << mouse;
        std::string const picture = Picture(130);
        EXPECT_EQ(picture.find("##tt", 14), static_cast<std::size_t>(15 + place)) << mouse;
    }
    Track(46);
    EXPECT_EQ(bar->Value(), 10);
    bar->Finish(0, 0);
    EXPECT_EQ(Picture(130).find("##tt", 14), 40U) << "released, it stands where its value is";
}

TEST_F(ScrollBars, ArrowsAndPagesRepeatWhileTheMouseIsOnThem)
{
    Make(true, 130, 100, 10, 50);
    auto const tick_at = [this](uint32_t tick, int along) {
        ticks = 1000 + tick;
        Track(along);
        return bar->Value();
    };
    ticks = 1000;
    ASSERT_TRUE(Press(129));
    EXPECT_EQ(bar->Value(), 51) << "at once";
    EXPECT_EQ(tick_at(6, 129), 51);
    EXPECT_EQ(tick_at(23, 128), 51) << "not before 0.4 seconds";
    EXPECT_EQ(tick_at(24, 128), 52);
    EXPECT_EQ(tick_at(25, 127), 52) << "movements do not hurry it";
    EXPECT_EQ(tick_at(30, 127), 53);
    EXPECT_EQ(tick_at(36, 60), 53) << "beside the arrow it rests";
    EXPECT_EQ(tick_at(42, 127), 54);

    Make(true, 130, 100, 10, 0);  // a thumb of 14; the way goes on from 29
    ASSERT_TRUE(Press(60));
    for (uint32_t tick = 48; tick < 600; tick += 6)
        tick_at(tick, 60);
    EXPECT_EQ(bar->Value(), 40) << "pages end with the thumb under the mouse";
}

TEST_F(ScrollBars, WithoutUseItIsDimAndTakesNothing)
{
    Make(true, 130, 0, 10, 0);
    EXPECT_FALSE(Press(60));
    EXPECT_EQ(Picture(130).find_first_of("t."), std::string::npos);
    Make(true, 130, 10, 10, 7);
    bar->Set_Enabled(false);
    EXPECT_FALSE(Press(5));
    bar->Set_Enabled(true);
    EXPECT_FALSE(Press(-1));
    EXPECT_FALSE(Press(130));
    bar->Set_Range(3, 10);
    EXPECT_EQ(bar->Value(), 3) << "held within the range";
    for (int length = 0; length < 48; ++length) {
        Make(true, length, 10, 10, 5);
        for (int along = 0; along < length; ++along)
            if (Press(along)) Track(4);
    }
}

TEST_F(ScrollBars, WhoeverIsToldOfAChangeMayTakeTheBarAway)
{
    Make(true, 130, 10, 10, 5);
    int gone = 0;
    bar = std::make_unique<ScrollBar>(true, [&] {
        bar = nullptr;
        ++gone;
    });
    bar->Place({start, start, start + breadth, start + 130});
    bar->Set_Range(10, 10);
    EXPECT_TRUE(Press(129));
    EXPECT_EQ(gone, 1);
    EXPECT_EQ(Mouse_Holder(), nullptr);
}
