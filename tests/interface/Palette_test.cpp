// Palettes and windows: declaring, displaying, tabs, closing, and palettes that close themselves.
#include "interface/InterfaceTest.h"

#include "FailingHeap.h"
#include "macsource/MacWindow.h"

#include <climits>

namespace {

using Palettes = InterfaceTest;

long Windows()
{
    return List_Entries(&ZVEnv->windows);
}

}  // namespace

TEST_F(Palettes, AnEndedPaletteStaysUnderConstructionUntilItIsDisplayed)
{
    ZVPalette* const palette = InitPaletteZV();
    EXPECT_TRUE(EndPaletteZV(7, "tools", ZV_PAL_TAB_PRIORITY, 5, ZV_PAL_PREF_NAME, "saved"));
    EXPECT_EQ(ZVEnv->buildingPalette, palette);
    EXPECT_FALSE(FindPaletteZV(palette)) << "not on screen yet";
    ASSERT_TRUE(DisplayPaletteZV(ZV_PAL_TAB_PRIORITY, 6));
    EXPECT_EQ(ZVEnv->buildingPalette, nullptr);
    EXPECT_EQ(FindPaletteZV("TOOLS"), palette);
    EXPECT_STREQ(palette->prefName, "saved");
    EXPECT_EQ(palette->tabPriority, 6);
    EXPECT_EQ(palette->width, 2 * ZVEnv->style->paletteMargin) << "its margins, without groups";
    EXPECT_EQ(DisplayPaletteZV(nullptr), 0) << "nothing under construction";
    EXPECT_FALSE(EndPaletteZV(1, "", nullptr));
}

TEST_F(Palettes, IdsAreTheHighestFreeOnesBelow65000)
{
    ZVPalette* const first = Show(0);
    EXPECT_EQ(first->node.id, 64999U);
    ZVPalette* const outer = InitPaletteZV();
    ZVPalette* const inner = InitPaletteZV();
    EndPaletteZV(0, "", nullptr);
    EXPECT_EQ(inner->node.id, 64998U);
    EXPECT_EQ(ZVEnv->buildingPalette, outer);
    DisplayPaletteZV(nullptr);
    EXPECT_EQ(outer->node.id, 64997U) << "one that was never ended";
    EXPECT_EQ(FindPaletteZV(64998), inner);
}

TEST_F(Palettes, TheWalkGoesThroughSubPalettesFirst)
{
    InitPaletteZV();
    for (unsigned short id : std::initializer_list<unsigned short>{2, 4}) {
        InitPaletteZV();
        if (id == 2) {
            InitPaletteZV();
            EndPaletteZV(3, "", nullptr);
        }
        EndPaletteZV(id, "", nullptr);
    }
    EndPaletteZV(1, "", nullptr);
    DisplayPaletteZV(nullptr);
    ZVWindow* const window = FindPaletteZV(1)->window;
    std::vector<unsigned> ids;
    for (ZVPalette* palette = nullptr; (palette = Get_Next_Palette(window, palette));)
        ids.push_back(palette->node.id);
    EXPECT_EQ(ids, (std::vector<unsigned>{1, 2, 3, 4}));
}

TEST_F(Palettes, StalePointersAreComparedAndNotFollowed)
{
    ZVPalette* const palette = Show(9);
    EXPECT_EQ(FindPaletteZV(palette), palette);
    ClosePaletteZV(palette);
    EXPECT_EQ(FindPaletteZV(palette), nullptr);
    EXPECT_EQ(Count("9:12"), 1);
    EXPECT_EQ(Windows(), 0);
    ClosePaletteZV(palette);
    EXPECT_EQ(Count("9:8"), 1);
}

TEST_F(Palettes, FloatersShareAWindowInTheOrderOfTheirPriority)
{
    ZVPalette* const first = Show(1, ZV_KIND_FLOATER);
    auto const join = [](unsigned short id, long priority) {
        TagItem more[] = {{ZV_PAL_WINDOW_OF, 1}, {ZV_PAL_TAB_PRIORITY, Tag_Word(priority)}, {}};
        return Show(id, ZV_KIND_FLOATER, more);
    };
    long activations = 0;
    onEvent = [&](ZVEvent& event) {
        if (event.type == ZV_EVENT_TAB_ACTIVATE && event.palette->node.id == 2) ++activations;
    };
    ZVPalette* const second = join(2, 0);
    ZVPalette* const third = join(3, 1);
    ZVWindow* const window = first->window;
    EXPECT_EQ(List_Entry(&window->palettes, 0), &third->node);
    EXPECT_EQ(List_Entry(&window->palettes, 2), &second->node) << "equal ones in order of arrival";
    EXPECT_EQ(window->activePalette, third);
    EXPECT_EQ(activations, 1);
    EXPECT_FALSE(IsPaletteVisibleZV(second));

    ClosePaletteZV(third);
    EXPECT_EQ(window->activePalette, first) << "the first palette left";
    ActivatePaletteZV(second, 0);
    EXPECT_EQ(window->activePalette, second);

    EXPECT_EQ(NewActivePalette(nullptr, second, 300, 200, 1), 1) << "torn off";
    EXPECT_NE(second->window, window);
    EXPECT_EQ(second->window->left, 300);
    EXPECT_EQ(window->activePalette, first);
    NewActivePalette(second->window, first, 0, 0, 0);
    EXPECT_EQ(Windows(), 1) << "the last palette moved out";
    EXPECT_EQ(first->window->activePalette, second);
    EXPECT_EQ(FindItem2ZV(first, 1)->native, nullptr);
}

TEST_F(Palettes, APaletteMayCloseItselfInAnyOfItsEvents)
{
    for (unsigned short type : std::initializer_list<unsigned short>{7, 8, 9, 12, 26, 27}) {
        log.clear();
        onEvent = [&](ZVEvent& event) {
            if (event.type == type && event.palette->node.id == 2) ClosePaletteZV(event.palette);
        };
        Show(1, ZV_KIND_FLOATER);
        TagItem more[] = {{ZV_PAL_WINDOW_OF, 1}, {}};
        Show(2, ZV_KIND_FLOATER, more);
        ClosePaletteZV(2);
        EXPECT_EQ(FindPaletteZV(2), nullptr) << type;
        EXPECT_EQ(Count("2:8"), 1) << type;
        EXPECT_EQ(Count("2:12"), 1) << type;
        ASSERT_TRUE(FindPaletteZV(1)) << type;
        EXPECT_EQ(FindPaletteZV(1)->window->activePalette, FindPaletteZV(1)) << type;
        ClosePaletteZV(1);
        EXPECT_TRUE(List_Empty(&ZVEnv->windows)) << type;
    }
}

TEST_F(Palettes, AModalOneRunsUntilItIsClosedAndNests)
{
    ZVEnv->modalResult = 77;
    onEvent = [](ZVEvent& event) {
        if (event.type != ZV_EVENT_TICK || event.palette != ZVEnv->modalPalette) return;
        EXPECT_EQ(ZVEnv->modalResult, 0);
        EXPECT_EQ(ZVEnv->modalDepth, event.palette->node.id == 1 ? 1 : 2);
        if (event.palette->node.id == 1) {
            EXPECT_TRUE(Show(2, ZV_KIND_MODAL));
            EXPECT_EQ(ZVEnv->modalDepth, 1);
        }
        ClosePaletteZV(event.palette);
        EXPECT_EQ(ZVEnv->modalResult, 1);
    };
    EXPECT_TRUE(Show(1, ZV_KIND_MODAL));
    EXPECT_EQ(ZVEnv->modalDepth, 0);
    EXPECT_EQ(ZVEnv->modalPalette, nullptr);
    EXPECT_EQ(ZVEnv->modalResult, 77);
    EXPECT_EQ(Count("2:8"), 1);
}

TEST_F(Palettes, WindowsStandWhereTheTagsSay)
{
    ZVPalette* const centered = Show(1);
    EXPECT_EQ(centered->window->left, (1600 - centered->width - 2) / 2 + 1);
    TagItem right[] = {{ZV_PAL_POSITION, 0x0402}, {ZV_PAL_RELATIVE_TO, 65535}, {ZV_PAL_OFFSET_Y, 5}, {}};
    ZVPalette* const beside = Show(2, ZV_KIND_FIXED, right);
    EXPECT_EQ(beside->relativeTo, 1);
    EXPECT_EQ(beside->window->left, centered->window->left + centered->width + 2);
    EXPECT_EQ(beside->window->top, centered->window->top + 5);
    TagItem told[] = {{ZV_PAL_CLIENT_X, 40}, {ZV_PAL_WINDOW_Y, 60}, {}};
    ZVPalette* const explicitly = Show(3, ZV_KIND_TRANSIENT, told);
    EXPECT_EQ(explicitly->window->left, 40);
    EXPECT_EQ(explicitly->window->top, 60);
    EXPECT_TRUE(explicitly->flags & ZV_PALF_PLAIN);

    ZVEnv->monitorCount = 2;
    ZVEnv->monitors[1] = {1600, 0, 800, 600};
    ZVEnv->pointerX = 1700;
    TagItem corner[] = {{ZV_PAL_POSITION, 0x0909}, {ZV_PAL_FORCE_WINDOW_WIDTH, 202}, {}};
    ZVPalette* const other = Show(4, ZV_KIND_FLOATER, corner);
    EXPECT_EQ(other->window->left, 1601) << "the monitor with the mouse";
    EXPECT_EQ(other->forcedWidth, 200);
    EXPECT_EQ(other->y, ZVEnv->style->tabHeight);
}

TEST_F(Palettes, HooksBelongToTheirPaletteAndMoveWithIt)
{
    ZVPalette* const one = Show(1);
    auto const hook = [](void*, long, void*) {};
    EXPECT_EQ(AddEventHookZV(one, 5, hook, nullptr), 1U);
    EXPECT_EQ(AddEventHookZV(one, 5, hook, nullptr), 2U);
    RemoveEventHookZV(one, 1);
    EXPECT_EQ(AddEventHookZV(one, 5, hook, nullptr), 1U);
    NewActivePalette(nullptr, one, 0, 0, 1);
    EXPECT_EQ(List_Entries(&one->window->hooks), 2);
    EXPECT_EQ(AddEventHookZV(InitPaletteZV(), 5, hook, nullptr), 0U) << "without a window";
}

TEST_F(Palettes, TitlesFollowThePaletteUnlessTheWindowHasItsOwn)
{
    ZVPalette* const palette = Show(1);
    SetPaletteNameZV(1, "renamed");
    EXPECT_EQ(palette->window->sysWindow->title, "renamed");
    SetWindowNameZV(palette->window, "fixed");
    SetPaletteNameZV(1, "again");
    EXPECT_EQ(palette->window->sysWindow->title, "fixed");
    SetWindowNameZV(palette->window, static_cast<char const*>(nullptr));
    EXPECT_EQ(palette->window->sysWindow->title, "again");
}

TEST_F(Palettes, WithoutMemoryTheDisplayFailsCleanly)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP();
    auto const display = [](long after) {
        InitPaletteZV();
        InitGroupZV();
        AddGadgetZV(1, 0, 0, ZV_GAD_STRING, ZV_SIZE_SMALL, "label", nullptr);
        EndGroupZV(1, 0, 0, "", nullptr);
        TagItem tags[] = {{ZV_PAL_KIND, ZV_KIND_FLOATER}, {}};
        FailingHeap const heap(after);
        return DisplayPaletteZV(tags) != 0;
    };
    log.reserve(1000);
    ASSERT_TRUE(display(LONG_MAX)) << "fonts are there from now on";
    long after = 0;
    while (!display(after)) {
        EXPECT_EQ(GetErrorZV(), ZV_ERR_MEMORY) << after;
        EXPECT_EQ(ZVEnv->buildingPalette, nullptr) << after;
        EXPECT_EQ(Windows(), 1) << after;
        SetError(ZV_ERR_NONE);
        ++after;
    }
    EXPECT_GT(after, 3);
}
