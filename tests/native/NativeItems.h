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

    static void On_Event(ZVEvent* event);
    static long On_Custom(ZVCustomEvent* event);

protected:
    static constexpr int left = 24, top = 24;                    ///< of a group's first item in the window
    static constexpr uint32_t paper = 0x606060, ink = 0x102030;  ///< pens 1 and 7

    NativeItems();
    ~NativeItems() override;

    /// Ends the group, with a frame when it has a title, and shows the palette at 0, 0 of its window.
    void Show(char const* title = nullptr);
    ZVPort& Port() const { return *Mac_Window_Port(palette->window); }
    bool Is_Filled(HostRect const& rect, uint32_t color) const;
    static uint32_t Pen(unsigned long pen, bool isDimmed = false) { return Pen_Color(pen, isDimmed); }

    /// "E5.32" is event 5 of item 5 with modifier 32, "C5:104" a custom event, since the last call.
    static std::string Log();

    ZVPalette* palette;
};
