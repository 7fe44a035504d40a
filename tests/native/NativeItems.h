// Items in a window of the desktop in memory, with a font of blocks: each character but the blank is 4 by 6
// pixels on the base line in 6 of width, a line has 8 pixels above the base line and 2 below.
#pragma once

#include "TestEnvironment.h"

#include "macsource/MacList.h"
#include "macsource/MacPort.h"

#include <functional>

/// What Mac_Tick_Count answers.
extern uint32_t ticks;

class NativeItems : public testing::Test, protected ScratchDir {
public:
    /// Run in every callback and gadget function, behind the log.
    static std::function<void(std::string const& entry)> onCall;

protected:
    static constexpr int charWidth = 6, lineHeight = 10;
    static constexpr uint32_t paper = 0x606060, ink = 0x102030;  ///< pens 1 and 7

    NativeItems();
    ~NativeItems() override;

    /// Shows a palette of the groups that are declared, at 0, 0 of its window.
    ZVPalette* Show();

    /// The colour of a pixel of the window, and whether all of a rectangle has it.
    uint32_t At(int x, int y) const;
    bool Is_Filled(HostRect const& rect, uint32_t color) const;

    /// "E5.32" is event 5 of item 5 with modifier 32, "C5:104" a custom event, since the last call.
    static std::string Log();
    static void On_Event(ZVEvent* event);
    static long On_Custom(ZVCustomEvent* event);

    ZVPalette* palette;
};
