// Pseudo-windows: their places, and palettes in them drawn and used through the root window.
#include "interface/InterfaceTest.h"

#include "interface/HitTest.h"

namespace {

class PseudoWindows : public InterfaceTest {
protected:
    PseudoWindows()
    {
        CleanUpZV();
        InitZV(Callback, nullptr, nullptr, nullptr, ZV_INIT_ROOT_WINDOW, 1, 0);
        root = ZVEnv->rootWindow;
    }

    static std::vector<long> Lefts(std::initializer_list<unsigned short> ids)
    {
        std::vector<long> lefts;
        for (unsigned short id : ids)
            GetPseudoWindowPosZV(id, &lefts.emplace_back(), nullptr);
        return lefts;
    }

    ZVWindow* root;
};

constexpr unsigned short beside = ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START);

TEST_F(PseudoWindows, StandBesideOneAnotherWithAPixelMoreThanTheGap)
{
    long const gap = ZVEnv->style->paletteGap + 1;
    struct {
        char const* why;
        unsigned short id, position;
        short reference;
        std::vector<TagItem> tags;
        long x, y;
    } const rows[] = {
        {"the root window is what the first one stands beside", 1, beside, -1, {}, root->width + gap, 0},
        {"no position", 2, 0, 1, {}, 0, 0},
        {"the one before", 3, beside, -1, {}, 100 + gap, 0},
        {"by id, with a gap", 4, beside, 2, {{ZV_GAP_FIXED, 7}}, 108, 0},
        {"the last tag counts",
         5,
         beside,
         2,
         {{ZV_GAP_FIXED, 7}, {ZV_GAP_EXTRA, 1}, {ZV_GAP_NONE, 1}},
         101,
         0},
        {"an unknown reference",
         6,
         ZV_Position(ZV_POS_PARENT_END, ZV_POS_CENTER),
         99,
         {},
         root->width - 100,
         (root->height - 50) / 2},
    };
    for (auto const& row : rows) {
        std::vector<TagItem> tags = row.tags;
        tags.push_back({});
        ZVWindow* const window = AddPseudoWindowZV(row.id, row.position, row.reference, 100, 50, tags.data());
        ASSERT_TRUE(window) << row.why;
        EXPECT_EQ(window->left, row.x) << row.why;
        EXPECT_EQ(window->top, row.y) << row.why;
        EXPECT_EQ(window->parent, root);
    }
    long x = 1, y = 1;
    GetPseudoWindowPosZV(77, &x, &y);
    EXPECT_EQ(x + y, 0) << "unknown";
    SetPseudoWindowSizeZV(3, 30, 40);
    GetPseudoWindowSizeZV(3, &x, nullptr);
    GetPseudoWindowSizeZV(3, nullptr, &y);
    EXPECT_EQ(x * y, 1200);
}

TEST_F(PseudoWindows, RowsAreCentredAndSpread)
{
    for (unsigned short id = 1; id <= 4; ++id)
        AddPseudoWindowZV(id, 0, 0, 10 * id, 50, nullptr);
    SetPseudoWindowPosZV(1, 100, 0);
    SetPseudoWindowPosZV(4, 201, 0);
    SpreadHPseudoWindowsZV(2, 1, 4);
    EXPECT_EQ(Lefts({1, 2, 3, 4}), (std::vector<long>{100, 0, 0, 201}));
    SpreadHPseudoWindowsZV(4, 1, 2, 3, 4);
    // 91 pixels between, 50 of them filled: gaps of 13 2/3.
    EXPECT_EQ(Lefts({1, 2, 3, 4}), (std::vector<long>{100, 124, 158, 201}));
    CenterHPseudoWindowsZV(5, 1, 2, 99, 3, 4);
    long const shift = (root->width - 141) / 2 - 100;
    EXPECT_EQ(Lefts({1, 2, 3, 4}), (std::vector<long>{100 + shift, 124 + shift, 158 + shift, 201 + shift}));
    CenterHPseudoWindowsZV(1, 2);
    EXPECT_EQ(Lefts({2}), (std::vector<long>{(root->width - 20) / 2}));
    SpreadHPseudoWindowsZV(3, 1, 99, 4);
    CenterHPseudoWindowsZV(2, 99, 1);
    EXPECT_EQ(Lefts({1, 99}), (std::vector<long>{100 + shift, 0}));
}

TEST_F(PseudoWindows, NeedARootWindowAndAnId)
{
    EXPECT_EQ(AddPseudoWindowZV(0, 0, 0, 10, 10, nullptr), nullptr);
    CleanUpZV();
    InitZV(nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(AddPseudoWindowZV(1, 0, 0, 10, 10, nullptr), nullptr);
    EXPECT_NE(GetErrorZV(), ZV_ERR_NONE);
    ASSERT_TRUE(GetErrorStringZV());
    EXPECT_TRUE(std::strstr(GetErrorStringZV(), "root window"));
    EXPECT_EQ(Show(1)->window->parent, nullptr);
}

TEST_F(PseudoWindows, PalettesLiveInThemThroughTheRootWindow)
{
    ZVWindow* const left = AddPseudoWindowZV(1, 0, 0, 300, 200, nullptr);
    ZVWindow* const right = AddPseudoWindowZV(2, beside, -1, 300, 100, nullptr);
    TagItem second[] = {{ZV_PAL_PSEUDO_WINDOW, Tag_Word(right)}, {}};
    ZVPalette* const one = DesktopTest::Show(1, ZV_KIND_FLOATER, 0, 0, {{ZV_PAL_PSEUDO_WINDOW_ID, 1}}, true);
    ZVPalette* const two = Show(2, ZV_KIND_FLOATER, second);
    ZVPalette* const three = Show(3, ZV_KIND_FIXED, second);
    EXPECT_EQ(one->window, left);
    EXPECT_EQ(one->width, 300);
    EXPECT_EQ(one->y + one->height, 200) << "with its tabs it fills the pseudo-window";
    EXPECT_EQ(right->activePalette, three);
    EXPECT_TRUE(three->flags & ZV_PALF_PSEUDO);
    long dx = 0, dy = -1;
    EXPECT_EQ(GetParentSysWindow(three, &dx, &dy), root);
    EXPECT_EQ(dx, right->left);
    EXPECT_EQ(dy, 0);
    EXPECT_EQ(GetParentSysWindow(nullptr, &dx, &dy), nullptr);
    EXPECT_EQ(dx, 0);

    HeadlessRunZV(0);
    EXPECT_EQ(Pixel(right->left, 50, root), GetColorZV(ZV_PEN_DARK_EDGE)) << "the frame";
    EXPECT_EQ(Pixel(right->left + 299, 50, root), GetColorZV(ZV_PEN_LIGHT_EDGE));
    DesktopTest::Script_Move(three, FindItem2ZV(three, 1));
    HeadlessRunZV(0);
    EXPECT_EQ(ZVEnv->mousePalette, three);
    NewActivePalette(right, two, 0, 0, 1);
    HeadlessMoveZV(root->left + right->left + 150, root->top + 60);
    HeadlessRunZV(0);
    EXPECT_NE(ZVEnv->mousePalette, three) << "behind the other one";

    ClosePaletteZV(two);
    EXPECT_EQ(right->activePalette, three);
    log.clear();
    DeletePseudoWindowZV(2);
    EXPECT_EQ(Count("3:8"), 1);
    EXPECT_EQ(FindPaletteZV(3), nullptr);
    HeadlessRunZV(0);
    EXPECT_EQ(Pixel(310, 50, root), GetColorZV(ZV_PEN_ROOT)) << "nothing is left of it";
    ClosePaletteZV(one);
    EXPECT_EQ(List_Entries(&ZVEnv->windows), 2) << "the window stays without palettes, and so does the root";
    DeletePseudoWindowZV(root);
    DeletePseudoWindowZV(77);
    EXPECT_EQ(ZVEnv->rootWindow, root);
}

TEST_F(PseudoWindows, InnerPalettesHaveTheMarginsOfTheirsToo)
{
    ZVEnv->style->groupMargin = 9;
    ZVWindow* const window = AddPseudoWindowZV(1, 0, 0, 300, 200, nullptr);
    InitPaletteZV();
    InitPaletteZV();
    ZVGroup const* const group = InitGroupZV();
    EndGroupZV(1, 0, 0, "", nullptr);
    EndPaletteZV(2, "", nullptr);
    EndPaletteZV(1, "", nullptr);
    DisplayPaletteZV(ZV_PAL_PSEUDO_WINDOW, window);
    EXPECT_EQ(group->innerX - group->x, 0);
    EXPECT_EQ(FindPaletteZV(2)->marginLeft, 0);
}

TEST_F(PseudoWindows, APaletteMayDeleteItsOwn)
{
    AddPseudoWindowZV(1, 0, 0, 200, 100, nullptr);
    onEvent = [](ZVEvent& event) {
        if (event.type == ZV_EVENT_TICK && event.palette) DeletePseudoWindowZV(1);
    };
    TagItem tags[] = {{ZV_PAL_PSEUDO_WINDOW_ID, 1}, {}};
    Show(1, ZV_KIND_FIXED, tags);
    Show(2, ZV_KIND_FIXED, tags);
    HeadlessRunZV(300);
    EXPECT_EQ(List_Entries(&ZVEnv->windows), 1);
    EXPECT_EQ(Count("1:8") + Count("2:8"), 2);
}

}  // namespace
