// The tabs of floaters: choosing a palette by its tab, tearing it off and docking it.
#include "DesktopTest.h"

#include <ZVKey.h>

#include <algorithm>
#include <utility>

namespace {

class TabBarTest : public DesktopTest {
protected:
    /// Shows a floater of 122 by 82 with a tab of that name, in the window of another one or in its own.
    static ZVPalette* Floater(unsigned short id, char const* name, ZVPalette const* beside = nullptr,
                              std::vector<TagItem> tags = {}, long x = 200)
    {
        if (beside) tags.push_back({ZV_PAL_WINDOW_OF, beside->node.id});
        ZVPalette* const palette = DesktopTest::Show(id, ZV_KIND_FLOATER, x, 200, std::move(tags));
        SetPaletteNameZV(palette, name);
        return palette;
    }

    /// One and two share a window, three has its own, with two in front.
    void SetUp() override
    {
        one = Floater(1, "Layers");
        two = Floater(2, "Colours", one);
        three = Floater(3, "History", nullptr, {}, 600);
        HeadlessRunZV(0);
        Log();
    }

    static void Move_To_Tab(ZVPalette const* palette, long x = 8, long y = 8)
    {
        x += palette->tabLeft;
        for (ZVWindow const* window = palette->window; window; window = window->parent) {
            x += window->left;
            y += window->top;
        }
        HeadlessMoveZV(x, y);
    }
    static void Press_Tab(ZVPalette const* palette)
    {
        HeadlessPauseZV(1000);
        Move_To_Tab(palette);
        HeadlessPressZV(ZV_HEADLESS_LEFT);
    }
    static void Release()
    {
        HeadlessReleaseZV(ZV_HEADLESS_LEFT);
        HeadlessRunZV(0);
    }
    static void Click_Tab(ZVPalette const* palette)
    {
        Press_Tab(palette);
        Release();
    }

    /// Drags a tab by its point 8, 8 to a place on the screen.
    static void Drag_Tab(ZVPalette const* palette, long x, long y)
    {
        Press_Tab(palette);
        HeadlessMoveZV(x + 20, y + 20);
        HeadlessMoveZV(x, y);
        Release();
    }

    /// Drags the tab of `two` to a free place, and does something while it is there.
    void During_Drag(std::function<void()> act) const
    {
        Press_Tab(two);
        HeadlessMoveZV(900, 700);
        HeadlessMoveZV(900, 600);
        HeadlessPauseZV(500);
        bool isDone = false;
        onEvent = [&](ZVEvent const& event) {
            bool const isHeld = ZVEnv->modifiers & ZV_MOD_BUTTON;
            if (event.type == ZV_EVENT_TICK && isHeld && !std::exchange(isDone, true)) act();
        };
        Release();
        onEvent = nullptr;
    }

    static std::vector<unsigned long> Palettes_Of(ZVWindow const* window)
    {
        std::vector<unsigned long> ids;
        for (Node const* node = List_First(&window->palettes); node; node = List_Next(node))
            ids.push_back(node->id);
        return ids;
    }

    ZVPalette *one, *two, *three;
};

using Ids = std::vector<unsigned long>;

TEST_F(TabBarTest, TabsOverlapAndArePushedTogetherWhereThereIsNoRoom)
{
    long const height = ZVEnv->style->tabHeight;
    long const oneWidth = GetTextWidthZV(nullptr, "Layers") + height + 4;
    EXPECT_EQ(one->tabLeft, 6);
    EXPECT_EQ(one->tabWidth, oneWidth);
    EXPECT_EQ(two->tabWidth, GetTextWidthZV(nullptr, "Colours") + height + 4);
    long const total = one->tabWidth + two->tabWidth - 20, excess = total + 20 - two->window->width;
    EXPECT_EQ(two->tabLeft, 6 + oneWidth - 10 - std::max(excess, 0L));

    ZVPalette* const wide = Floater(4, "Brushes", one);
    EXPECT_EQ(one->tabLeft, 6);
    EXPECT_LE(wide->tabLeft + wide->tabWidth, wide->window->width) << "the last one ends in the bar";
    EXPECT_LT(one->tabLeft, two->tabLeft);
    EXPECT_LT(two->tabLeft, wide->tabLeft);
}

TEST_F(TabBarTest, AClickBringsAPaletteToTheFront)
{
    EXPECT_EQ(one->window->activePalette, two);
    Click_Tab(one);
    EXPECT_EQ(one->window->activePalette, one);
    Strings const told = Log();
    EXPECT_EQ(std::count(told.begin(), told.end(), "2:27"), 1);
    EXPECT_TRUE(IsPaletteVisibleZV(one));
    EXPECT_FALSE(IsPaletteVisibleZV(two));
    // Behind the slope of the first tab's end lies the second one, and above it the bar.
    Move_To_Tab(one, one->tabWidth - 3, 3);
    HeadlessClickZV(one->window->left + one->tabLeft + one->tabWidth - 3, one->window->top + 4,
                    ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
    EXPECT_EQ(one->window->activePalette, two);
    HeadlessPauseZV(1000);
    HeadlessClickZV(one->window->left + 2, one->window->top + 8, ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
    EXPECT_EQ(one->window->activePalette, two) << "beside the tabs";
}

TEST_F(TabBarTest, ATabIsTornOffAndDockedAgain)
{
    ZVWindow* const shared = one->window;
    Drag_Tab(two, 700, 600);
    EXPECT_NE(two->window, shared);
    EXPECT_EQ(Palettes_Of(shared), Ids{1});
    EXPECT_EQ(shared->activePalette, one);
    EXPECT_EQ(two->window->left + two->tabLeft + 8, 700) << "the tab is where it was let go of";
    EXPECT_EQ(two->window->top + 8, 600);
    EXPECT_EQ(two->window->height, two->height + ZVEnv->style->tabHeight);
    EXPECT_TRUE(IsPaletteVisibleZV(one));
    EXPECT_TRUE(IsPaletteVisibleZV(two));
    Click(two, Gadget(two));
    Strings told = Log();
    EXPECT_EQ(std::count(told.begin(), told.end(), "G2:107"), 1) << "its gadgets work";

    Drag_Tab(two, three->window->left + 100, three->window->top + 10);
    EXPECT_EQ(two->window, three->window);
    EXPECT_EQ(Palettes_Of(three->window), (Ids{3, 2}));
    EXPECT_EQ(three->window->activePalette, two);
    Drag_Tab(one, three->window->left + 100, three->window->top + 10);
    EXPECT_EQ(Palettes_Of(three->window), (Ids{3, 2, 1})) << "the last one takes its window along";
    EXPECT_EQ(List_Entries(&ZVEnv->windows), 1);
}

TEST_F(TabBarTest, WhatWasMovedHasTheKeyboard)
{
    Show(9, ZV_KIND_DOCUMENT, 100, 700);
    HeadlessRunZV(0);
    auto const move = [&](ZVPalette* palette, long x, long y) {
        Drag_Tab(palette, x, y);
        HeadlessRunZV(0);
        EXPECT_EQ(ZVEnv->activePalette, palette);
    };
    move(two, 700, 600);
    move(two, three->window->left + 100, three->window->top + 10);
    move(one, three->window->left + 100, three->window->top + 10);
}

TEST_F(TabBarTest, AnotherFrameForAnotherTabKeepsTheKeyboard)
{
    ZVPalette* const wide = Floater(4, "Brushes", one, {{ZV_PAL_FLAGS, ZV_PALF_SIZE_BOTH}});
    Show(9, ZV_KIND_DOCUMENT, 100, 700);
    HeadlessRunZV(0);
    ActivatePaletteZV(wide, 1);
    HeadlessRunZV(0);
    Log();
    Click_Tab(one);
    HeadlessRunZV(0);
    EXPECT_EQ(ZVEnv->activePalette, one);
    Strings const told = Log();
    EXPECT_EQ(std::count(told.begin(), told.end(), "9:9"), 0) << "the document has not had it in between";
}

TEST_F(TabBarTest, TheOwnBarAndItsSurroundings)
{
    ZVWindow* const shared = one->window;
    Drag_Tab(one, shared->left + 60, shared->top + 8);
    EXPECT_EQ(one->window, shared);
    EXPECT_EQ(shared->activePalette, one) << "let go of on its own bar it only comes to the front";
    Drag_Tab(one, shared->left + 60, shared->top + 80);
    EXPECT_NE(one->window, shared) << "the palette below the bar is a free place";
    ZVRectT<long> screen;
    GetScreenRectZV(&screen);
    Drag_Tab(one, 800, screen.y + 1);
    ZVRectT<long> frame;
    GetWindowRectZV(one->window, &frame);
    EXPECT_GE(frame.y, screen.y) << "the title bar stays on the screen";
}

TEST_F(TabBarTest, ATabThatIsHeldComesOff)
{
    auto const hold = [](ZVPalette const* palette, unsigned long milliseconds) {
        Press_Tab(palette);
        HeadlessPauseZV(milliseconds);
        Release();
    };
    hold(one, 200);
    EXPECT_EQ(one->window, two->window);
    EXPECT_EQ(one->window->activePalette, one) << "a click";
    HeadlessRunZV(1000);
    Press_Tab(two);
    HeadlessPauseZV(800);
    HeadlessMoveZV(700, 700);
    Release();
    EXPECT_NE(one->window, two->window);
    two->flags |= 4;
    ZVWindow const* const window = two->window;
    Drag_Tab(two, 1000, 800);
    EXPECT_EQ(two->window, window) << "a palette whose tab stays";
    EXPECT_EQ(window->left, 700 - 8 - 6);
}

TEST_F(TabBarTest, AnOutlineFollowsTheMouse)
{
    long const left = 900 - 8 - 6, top = 600 - 8, tab = ZVEnv->style->tabHeight;
    auto const pen = GetColorZV(ZV_PEN_MARKED);
    int looks = 0;
    During_Drag([&] {
        ++looks;
        EXPECT_EQ(Pixel(left + 6 + two->tabWidth / 2, top - 1), pen) << "above the tab";
        EXPECT_EQ(Pixel(left - 1, top + tab + two->height / 2), pen);
        EXPECT_EQ(Pixel(left + two->width / 2, top + tab + two->height), pen);
        EXPECT_NE(Pixel(left + two->width / 2, top + tab + two->height / 2), pen) << "what lies inside shows";
    });
    EXPECT_EQ(looks, 1);
    EXPECT_EQ(two->window->left, left);
    EXPECT_EQ(List_Entries(&ZVEnv->windows), 3);
    EXPECT_NE(Pixel(left - 2, top + tab + two->height / 2), pen) << "the outline is gone";
}

TEST_F(TabBarTest, EscapeEndsADragAndNothingHasMoved)
{
    ZVWindow const* const shared = two->window;
    ZVRectT<long> const place{shared->left, shared->top, shared->width, shared->height};
    Press_Tab(two);
    HeadlessMoveZV(900, 700);
    HeadlessMoveZV(900, 600);
    HeadlessPauseZV(500);
    HeadlessKeyZV(ZV_KEY_ESCAPE);
    HeadlessMoveZV(950, 650);
    HeadlessPauseZV(500);
    Release();
    EXPECT_EQ(two->window, shared);
    EXPECT_EQ(place, (ZVRectT<long>{shared->left, shared->top, shared->width, shared->height}));
    EXPECT_EQ(shared->activePalette, two);
    EXPECT_EQ(Pixel(900 - 8 - 6 - 1, 600 + 40), Pixel(1500, 1100)) << "the outline is gone";
    auto const keys = [] {
        Strings const told = Log();
        return std::count_if(told.begin(), told.end(), [](std::string const& line) {
            return line.ends_with(":1") || line.find(":1/") != line.npos;
        });
    };
    EXPECT_EQ(keys(), 0) << "nobody has heard of the key";
    HeadlessKeyZV(ZV_KEY_ESCAPE);
    HeadlessRunZV(0);
    EXPECT_EQ(keys(), 2) << "the next one is told, down and up";
    Drag_Tab(two, 700, 600);
    EXPECT_NE(two->window, shared) << "the next drag";
}

TEST_F(TabBarTest, APaletteBelowItsTabsFillsAWindowThatIsResized)
{
    ZVPalette* const wide = Floater(4, "Brushes", nullptr, {{ZV_PAL_FLAGS, ZV_PALF_SIZE_BOTH}});
    HeadlessRunZV(0);
    ZVRectT<long> const client{250, 300, 240, 180};
    HeadlessDragFrameZV(wide->window, &client);
    HeadlessRunZV(0);
    EXPECT_GT(wide->window->height, 150);
    EXPECT_EQ(wide->width, wide->window->width);
    EXPECT_EQ(wide->height, wide->window->height - ZVEnv->style->tabHeight);
}

TEST_F(TabBarTest, PalettesMayCloseDuringADrag)
{
    struct Case {
        char const* why;
        std::function<void()> act;
        bool stays;
    };
    static Case const cases[] = {
        {"the one that is dragged", [] { ClosePaletteZV(2); }, false},
        {"the window that is left", [] { ClosePaletteZV(1); }, true},
        {"another window", [] { ClosePaletteZV(3); }, true},
        {"all of them", [] { CleanUpWindowsZV(); }, false},
        {"the application", [] { ExitZV(); }, true},
    };
    for (Case const& row : cases) {
        During_Drag(row.act);
        EXPECT_EQ(FindPaletteZV(2) != nullptr, row.stays) << row.why;
        for (int id = 1; id <= 3; ++id)
            ClosePaletteZV(static_cast<unsigned short>(id));
        SetUp();
    }
}

/// Two pseudo-windows with a floater each, which are at home there.
class TiledTabsTest : public TabBarTest {
protected:
    void SetUp() override
    {
        CleanUpZV();
        InitZV(Callback, nullptr, nullptr, nullptr, ZV_INIT_ROOT_WINDOW, 1, 0);
        left =
            AddPseudoWindowZV(7, ZV_Position(ZV_POS_PARENT_START, ZV_POS_PARENT_START), 0, 300, 200, nullptr);
        right = AddPseudoWindowZV(8, ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START), -1, 260, 240, nullptr);
        one = Floater(1, "Layers", nullptr, {{ZV_PAL_PSEUDO_WINDOW_ID, 7}});
        two = Floater(2, "Colours", nullptr, {{ZV_PAL_PSEUDO_WINDOW, Tag_Word(right)}});
        HeadlessRunZV(0);
    }
    static void Double_Click_Tab(ZVPalette const* palette)
    {
        Press_Tab(palette);
        HeadlessReleaseZV(ZV_HEADLESS_LEFT);
        HeadlessPressZV(ZV_HEADLESS_LEFT);
        Release();
    }

    ZVWindow *left, *right;
};

TEST_F(TiledTabsTest, TwoClicksTakeAPaletteHomeAndOutAgain)
{
    ASSERT_EQ(one->window, left);
    ASSERT_EQ(two->window, right);
    long const x = GadToScreenX(Gadget(one));
    int32_t const width = one->width, height = one->height;
    Double_Click_Tab(one);
    ASSERT_TRUE(one->window && one->window->sysWindow);
    EXPECT_FALSE(one->flags & ZV_PALF_PSEUDO);
    EXPECT_TRUE(IsPaletteVisibleZV(one));
    EXPECT_EQ(one->window->left, left->left) << "it stays where it was";
    EXPECT_EQ(one->window->top, left->top);
    EXPECT_EQ(one->width, width);
    EXPECT_EQ(one->height, height);
    Double_Click_Tab(one);
    EXPECT_EQ(one->window, left);
    EXPECT_TRUE(one->flags & ZV_PALF_PSEUDO);
    EXPECT_EQ(one->width, width);
    EXPECT_EQ(one->height, height);
    EXPECT_EQ(GadToScreenX(Gadget(one)), x);
    Click(one, Gadget(one));
    Strings const told = Log();
    EXPECT_EQ(std::count(told.begin(), told.end(), "G1:107"), 1);
}

TEST_F(TiledTabsTest, TabsGoFromTileToTile)
{
    Drag_Tab(one, right->left + 100, right->top + 8);
    EXPECT_EQ(one->window, right);
    EXPECT_EQ(right->activePalette, one);
    EXPECT_TRUE(List_Empty(&left->palettes)) << "a pseudo-window stays when it is empty";
    Drag_Tab(one, left->left + 100, left->top + 150);
    EXPECT_EQ(one->window, left) << "anywhere in the one where it is at home";
    Drag_Tab(two, left->left + 100, left->top + 150);
    EXPECT_TRUE(two->window->sysWindow) << "another one leaves it alone, but for the bar";
}

}  // namespace
