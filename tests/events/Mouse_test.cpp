// What lies under the mouse, and presses on gadgets.
#include "EventTest.h"

namespace {

class Mouse : public EventTest {
protected:
    // Item 20 covers 120 to 140 by 71 to 81 on the screen, item 21 covers 145 to 155 by 71 to 81.
    ZVWindow* window = Add_Window(100, 50);
    ZVPalette* palette = Add_Palette(window, 1);
    ZVGroup* group = Add_Group(palette, 10, 10, 60, 40);
    ZVItem* item = Add_Item(group, 20, 5, 5, 20, 10);
    ZVItem* other = Add_Item(group, 21, 30, 5, 10, 10);

    static void Move(long x, long y)
    {
        Handle_MouseMove(x, y);
        Custom_Gad_MouseMove(x, y);
    }

    /// A press and release; the modifiers that the gadget saw at the press.
    static uint32_t Click(long x, long y, long count = 1)
    {
        uint32_t seen = 0;
        onCustom = [&](ZVCustomEvent* event) {
            if (event->type == ZV_CUSTOM_MOUSE_DOWN) seen = event->modifiers;
        };
        Handle_MouseMove(x, y);
        EXPECT_EQ(Custom_Gad_MouseDown(x, y, count, 0), 1);
        Custom_Gad_MouseUp(x, y);
        ZVEnv->modifiers = 0;
        onCustom = nullptr;
        desktop.tickCount += 5;
        return seen;
    }

    static bool Is_Double(uint32_t modifiers) { return modifiers & ZV_MOD_DOUBLE_CLICK; }
};

}  // namespace

TEST_F(Mouse, MovesReachPaletteGroupItemAndApplicationInTheirOwnCoordinates)
{
    ZVEnv->mousePalette = palette;
    ZVEnv->mouseX = 25;
    ZVEnv->mouseY = 22;  // at 27, 25 in the window
    std::string places;
    onEvent = [&](auto const& who, ZVEvent* event) {
        places += who + " " + std::to_string(event->x) + "," + std::to_string(event->y) +
                  (event->item == Tag_Word(item) ? "i " : " ");
    };
    Do_Event(ZV_EVENT_MOUSE_MOVE, 0);
    EXPECT_EQ(places, "P1 25,22 G1 13,10 I1 7,4i A 127,75i ");
    places.clear();
    ZVEnv->mousePalette = nullptr;
    Do_Event(ZV_EVENT_MOUSE_MOVE, 0);
    EXPECT_EQ(places, "A 25,22 ");
}

TEST_F(Mouse, AMoveGoesOnToTheApplicationWhoeverClosesThePalette)
{
    for (std::string const closer : {"P1", "G1", "I1"}) {
        ZVPalette* const closing = Add_Palette(window, 1);
        Add_Item(Add_Group(closing, 0, 0, 50, 50), 1, 0, 0, 40, 40);
        ZVEnv->mousePalette = closing;
        ZVEnv->mouseX = ZVEnv->mouseY = 10;
        onEvent = [&](auto const& who, ZVEvent* event) {
            if (who == closer) Close(closing);
            if (who[0] != 'A') return;
            EXPECT_EQ(event->item, 0u);
            EXPECT_EQ(event->palette, nullptr);
        };
        Do_Event(ZV_EVENT_MOUSE_MOVE, 0);
        std::string const log = Log();
        EXPECT_EQ(log.substr(log.find(closer)), closer + ":2 A:2");
    }
}

TEST_F(Mouse, ComingGoingAndMovingOverGadgets)
{
    struct {
        char const* why;
        long x, y;
        char const* log;
    } const rows[] = {
        {"outside", 10, 10, ""},
        {"onto the first, whose edges count", 120, 71, "C20:110 C20:109"},
        {"inside", 140, 81, "C20:109"},
        {"onto the second", 145, 75, "C20:111 C21:110 C21:109"},
        {"onto the background", 110, 60, "C21:111"},
        {"still there", 111, 60, ""},
    };
    ZVEnv->callback = nullptr;
    for (auto** callback : {&palette->callback, &group->callback, &item->callback, &other->callback})
        *callback = nullptr;
    for (auto const& row : rows) {
        Handle_MouseMove(row.x, row.y);
        EXPECT_EQ(Log(), row.log) << row.why;
    }
    EXPECT_EQ(ZVEnv->mousePalette, nullptr) << "background has no palette";
    other->flags |= ZV_ITEMF_HIDDEN;
    Handle_MouseMove(145, 75);
    EXPECT_EQ(Log(), "");
    palette->flags = ZV_PALF_HIDDEN;
    Handle_MouseMove(125, 75);
    EXPECT_EQ(Log(), "");
}

TEST_F(Mouse, ItemsOfPseudoWindowsAndInnerPalettesAreFound)
{
    ZVWindow* const pseudo = Add_Window(100, 20, window);
    ZVPalette* const inner = Add_Palette(pseudo, 3, ZV_KIND_FIXED, Add_Palette(pseudo, 2));
    ZVItem* const found = Add_Item(Add_Group(inner, 0, 0, 30, 30), 22, 0, 0, 10, 10);
    onCustom = [](ZVCustomEvent* event) {
        EXPECT_EQ(event->x, 2);
        EXPECT_EQ(event->y, 3);
    };
    Handle_MouseMove(100 + 100 + 5 + 2, 50 + 20 + 6 + 3);
    EXPECT_EQ(ZVEnv->trackedItem, found);
    EXPECT_EQ(ZVEnv->mousePalette, inner);
    EXPECT_EQ(ZVEnv->mouseX, 5);
    EXPECT_EQ(ZVEnv->mouseY, 6);
    onCustom = nullptr;
    pseudo->activePalette = nullptr;
    Handle_MouseMove(207, 79);
    EXPECT_EQ(ZVEnv->mousePalette, nullptr) << "no palette of that window shows";
}

TEST_F(Mouse, AHeldGadgetGetsAllMovements)
{
    ZVEnv->callback = item->callback = other->callback = group->callback = palette->callback = nullptr;
    Handle_MouseMove(125, 75);
    Log();
    Custom_Gad_MouseDown(125, 75, 1, 0);
    EXPECT_EQ(ZVEnv->modifiers, ZV_MOD_BUTTON);
    Move(127, 77);
    EXPECT_EQ(ZVEnv->modifiers, ZV_MOD_BUTTON) << "four pixels are no drag";
    Move(150, 75);
    EXPECT_EQ(ZVEnv->modifiers, ZV_MOD_BUTTON | ZV_MOD_DRAGGED);
    onCustom = [](ZVCustomEvent* event) { EXPECT_EQ(event->x, 30); };
    Custom_Gad_Tick();
    onCustom = nullptr;
    Move(130, 75);
    Custom_Gad_MouseUp(130, 75);
    EXPECT_EQ(Log(), "C20:108 C20:109 C20:111 C20:109 C20:113 C20:110 C20:109 C20:107");
    EXPECT_EQ(ZVEnv->buttonState, 0u);
    EXPECT_EQ(ZVEnv->trackingItem, nullptr);
    EXPECT_EQ(ZVEnv->modifiers, ZV_MOD_DRAGGED) << "the release tells that it ended a drag";
}

TEST_F(Mouse, DoubleClicks)
{
    other->x = 26;  // one pixel behind its neighbour
    EXPECT_FALSE(Is_Double(Click(125, 75)));
    EXPECT_TRUE(Is_Double(Click(129, 71)));
    EXPECT_FALSE(Is_Double(Click(125, 75))) << "a third one is single";
    EXPECT_TRUE(Is_Double(Click(125, 75)));
    Click(125, 75);
    desktop.tickCount += 25;
    EXPECT_FALSE(Is_Double(Click(125, 75))) << "too late";
    EXPECT_FALSE(Is_Double(Click(130, 75))) << "too far";
    EXPECT_FALSE(Is_Double(Click(142, 75))) << "another gadget";
    EXPECT_FALSE(Is_Double(Click(139, 75, 2))) << "another gadget, whatever the desktop counts";
}

TEST_F(Mouse, AContextualClickAsksForTheMenuBehindThePress)
{
    Handle_MouseMove(125, 75);
    Log();
    onCustom = [](ZVCustomEvent* event) { EXPECT_EQ(event->modifiers & ZV_MOD_CONTEXTUAL, 0u); };
    Custom_Gad_MouseDown(125, 75, 1, 1);
    EXPECT_EQ(Log(), "C20:108 C20:118");
    Custom_Gad_MouseUp(125, 75);
    onCustom = [](ZVCustomEvent*) { IgnoreContextualMenuEventZV(); };
    Log();
    Custom_Gad_MouseDown(125, 75, 1, 1);
    EXPECT_EQ(Log(), "C20:108");
    Custom_Gad_MouseUp(125, 75);
    onCustom = [&](ZVCustomEvent*) { Close(palette); };
    Log();
    Custom_Gad_MouseDown(125, 75, 1, 1);
    EXPECT_EQ(Log(), "C20:108");
    EXPECT_EQ(Custom_Gad_MouseDown(125, 75, 1, 0), 0) << "no gadget is left";
}

TEST_F(Mouse, TheQueueOverwritesItsOldestRecords)
{
    MacMouseEvent event{};
    EXPECT_EQ(Get_MouseQueue(&event), 0);
    auto const add = [](uint32_t from, uint32_t count) {
        for (uint32_t i = from; i < from + count; ++i) {
            MacMouseEvent const added{i, static_cast<uint16_t>(i + 1)};
            Add_MouseQueue(&added);
        }
    };
    add(0, 150);
    for (uint32_t i = 0; i < 150; ++i) {
        ASSERT_EQ(Get_MouseQueue(&event), 1);
        EXPECT_EQ(event.point, i);
        EXPECT_EQ(event.state, i + 1);
    }
    add(1000, 199);
    EXPECT_EQ(Get_MouseQueue(&event), 1) << "round the end";
    EXPECT_EQ(event.point, 1000u);
    add(2000, 2);
    EXPECT_EQ(Get_MouseQueue(&event), 0) << "two hundred unread ones look like none";
    add(0, 1);
    TrackMouseZV(1);
    EXPECT_EQ(Get_MouseQueue(&event), 0);
}
