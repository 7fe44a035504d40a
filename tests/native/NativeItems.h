// Items in a window of the desktop in memory, with a font of blocks: each character is 4 by 6 pixels on the
// base line in 6 of width, a line has 8 pixels above the base line and 2 below.
#pragma once

#include "TestEnvironment.h"

#include "macsource/MacList.h"
#include "macsource/MacPort.h"

#include <functional>

extern uint32_t ticks;  ///< what Mac_Tick_Count answers

class NativeItems : public testing::Test, protected ScratchDir {
protected:
    static constexpr int left = 24, top = 24;                    ///< of a group's first item in the window
    static constexpr uint32_t paper = 0x606060, ink = 0x102030;  ///< pens 1 and 7

    NativeItems()
    {
        setenv("KL_APP_DATA_DIR", Path().c_str(), 1);
        setenv("ZV_HOST", "headless", 1);
        if (!InitZV(On_Event, nullptr, nullptr, nullptr, nullptr)) throw std::runtime_error("InitZV failed");
        SetStylePenZV(ZV_PEN_PALETTE, paper);
        SetStylePenZV(ZV_PEN_TEXT, ink);
        ticks = 1000;
        palette = InitPaletteZV();
        InitGroupZV();
    }
    ~NativeItems() override
    {
        onCall = nullptr;
        CleanUpZV();
        Close_Fonts();
        unsetenv("ZV_HOST");
        unsetenv("KL_APP_DATA_DIR");
        log.clear();
    }

    /// Ends the group, with a frame when it has a title, and shows the palette at 0, 0 of its window.
    void Show(char const* title = nullptr)
    {
        TagItem border[] = {{ZV_GRP_BORDER, 0}, {}}, tags[] = {{ZV_PAL_KIND, ZV_KIND_FIXED}, {}};
        EndGroupZV(1, 0, 0, title, title ? border : nullptr);
        ASSERT_TRUE(DisplayPaletteZV(tags));
        SetCurrentPaletteZV(palette);
    }
    bool Is_Filled(HostRect const& rect, uint32_t color) const
    {
        uint32_t found = 0;
        for (int y = rect.top; y < rect.bottom; ++y)
            for (int x = rect.left; x < rect.right; ++x)
                if (!Mac_Window_Port(palette->window)->surface.Read(x, y, found) || found != color)
                    return false;
        return true;
    }

    /// "E5.32" is event 5 of item 5 with modifier 32, "C5:104" a custom event, since the last call.
    static std::string Log() { return std::exchange(log, {}); }
    static void Note(std::string const& entry)
    {
        log += (log.empty() ? "" : " ") + entry;
        if (onCall) onCall(entry);
    }
    static void On_Event(ZVEvent* event)
    {
        if (event->type != ZV_EVENT_GADGET) return;
        Note("E" + std::to_string(Event_Item(event)->node.id) + "." +
             std::to_string(event->modifiers & 0x38));
    }
    static inline std::function<void(std::string const& entry)> onCall;  ///< run behind each entry of the log

    ZVPalette* palette;

private:
    static inline std::string log;
};
