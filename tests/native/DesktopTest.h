// Palettes on the desktop in memory, and a log of what they are told.
#pragma once

#include "TestEnvironment.h"

#include <ZVHeadless.h>

#include <functional>
#include <string>
#include <vector>

using Strings = std::vector<std::string>;

class DesktopTest : public testing::Test {
protected:
    DesktopTest();
    ~DesktopTest() override;

    /// Shows a palette with a gadget of 60 by 20, whose function logs, and with a text field below it when
    /// wanted. Margins of 30 have nothing in them. It takes all of its window.
    static ZVPalette* Show(unsigned short id, ZVKind kind, long x, long y, std::vector<TagItem> tags = {},
                           bool hasField = false);

    static ZVItem* Gadget(ZVPalette* palette) { return FindItem2ZV(palette, 1); }
    static ZVItem* Field(ZVPalette* palette) { return FindItem2ZV(palette, 2); }

    /// The middle of an item, or the palette's margin for null. Clicks come a second after what was before,
    /// so that they are single.
    static void Script_Move(ZVPalette* palette, ZVItem* item);
    static void Script_Click(ZVPalette* palette, ZVItem* item, unsigned long button = ZV_HEADLESS_LEFT);
    static void Click(ZVPalette* palette, ZVItem* item, unsigned long button = ZV_HEADLESS_LEFT)
    {
        HeadlessPauseZV(1000);
        Script_Click(palette, item, button);
        HeadlessRunZV(0);
    }

    /// What was logged since the last call: "1:22" is event 22 of palette 1, "A:3" of the application,
    /// "G1:108" custom event 108 of palette 1's gadget, with "/bits" behind it for modifiers. Left out are
    /// setting up, drawing, movements and ticks.
    static Strings Log();

    static std::vector<std::string> log;
    static std::function<void(ZVEvent&)> onEvent;
    static std::function<void(ZVCustomEvent const&)> onGadget;

    /// What a point of the desktop, or of a window, shows.
    static uint32_t Pixel(long x, long y, ZVWindow* window = nullptr);

    static void Callback(ZVEvent* event);  ///< Of palettes: logs and calls onEvent.

private:
    static void ApplicationCallback(ZVEvent* event);
    static long Function(ZVCustomEvent* event);

    ScratchDir scratch_;
};
