// Windows with palettes made by hand, and a log of what their callbacks are told.
#pragma once

#include "FakeDesktop.h"
#include "TestEnvironment.h"

class EventTest : public testing::Test {
public:
    /// Run in every callback, behind the log.
    static std::function<void(std::string const& who, ZVEvent* event)> onEvent;
    static std::function<void(ZVCustomEvent* event)> onCustom;

protected:
    EventTest();
    ~EventTest() override;

    /// A window of 200 by 100; with a parent, one inside that.
    static ZVWindow* Add_Window(int32_t left, int32_t top, ZVWindow* parent = nullptr);

    /// A palette at 2, 3 in its window, the window's active one or one inside another.
    static ZVPalette* Add_Palette(ZVWindow* window, uint32_t id, uint32_t kind = ZV_KIND_FLOATER,
                                  ZVPalette* parent = nullptr);
    static ZVGroup* Add_Group(ZVPalette* palette, long x = 0, long y = 0, long width = 50, long height = 50);
    static ZVItem* Add_Item(ZVGroup* group, uint32_t id, long x = 0, long y = 0, long width = 40,
                            long height = 40);
    static ZVCustomEvent Custom_Event(uint16_t type, ZVItem* item);

    /// What the library does when a palette closes: nothing of it is left.
    static void Close(ZVPalette* palette);

    /// The log since the last call. "P1:6" is event 6 at palette 1, "G1" and "I1" a group and an item in it,
    /// "A" the application, "C20:108" custom event 108 of item 20.
    static std::string Log();

    static void Application(ZVEvent* event);
    static long Custom(ZVCustomEvent* event);

    TestEnvironment environment;
};
