// Windows with palettes made by hand, and a log of what their callbacks are told.
#pragma once

#include "FakeDesktop.h"
#include "TestEnvironment.h"

#include <functional>
#include <memory>

class EventTest : public testing::Test {
public:
    /// Run in every callback, behind the log.
    static std::function<void(std::string const& who, ZVEvent* event)> onEvent;
    static std::function<void(ZVCustomEvent* event)> onCustom;

protected:
    EventTest();
    ~EventTest() override;

    static ZVWindow* Add_Window(int32_t left, int32_t top, int32_t width = 200, int32_t height = 100);

    /// A window in another one.
    static ZVWindow* Add_Pseudo_Window(ZVWindow* parent, int32_t left, int32_t top);

    /// A palette at 2, 3 in its window; the window's active one. It logs as "P" with its id.
    static ZVPalette* Add_Palette(ZVWindow* window, uint32_t id, uint32_t kind = ZV_KIND_FLOATER);
    static ZVPalette* Add_SubPalette(ZVPalette* parent, uint32_t id);

    /// Log as "G" and "I" with the id of their palette; custom events of an item log as "C" with its own.
    static ZVGroup* Add_Group(ZVPalette* palette, uint32_t id, ZVRectT<int32_t> const& area);
    static ZVItem* Add_Item(ZVGroup* group, uint32_t id, ZVRectT<int32_t> const& area);

    static ZVCustomEvent Custom_Event(uint16_t type, ZVItem* item);

    /// What the library does when a palette closes: nothing of it is left.
    static void Close(ZVPalette* palette);

    /// The log since the last call, each entry "P1:6" for event 6 at palette 1.
    static std::string Log();

    static void Application(ZVEvent* event);
    static long Custom(ZVCustomEvent* event);

    TestEnvironment environment;
};
