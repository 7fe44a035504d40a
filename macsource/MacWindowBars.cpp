// The scroll bars along the edges of a window, and its grow box.
#include "MacWindow.h"

#include "ZVLibInternal.h"
#include "ZVPalette.h"

#include <algorithm>
#include <utility>

/// What a bar reaches beyond the strip that it lies in, so that its frame and the window's edge are one line.
static constexpr int Overlap = 1;

/// What the ends of the bars leave free for the grow box.
static constexpr int GrowSize = 14;

/// The user has moved a bar: the palette takes the value and is told.
static void Take_Value(ZVWindow& window, ScrollBar const& bar, ZVScrollRange ZVPalette::*range,
                       uint16_t event)
{
    ZVPalette* const palette = window.activePalette;
    if (!palette) return;
    (palette->*range).value = (palette->*range).minimum + bar.Value();
    Do_Event(event, Tag_Word(palette));
}

static std::unique_ptr<ZVSysScrollBar> Make_Bar(ZVWindow& window, bool isVertical)
{
    auto const range = isVertical ? &ZVPalette::vertical : &ZVPalette::horizontal;
    uint16_t const event = isVertical ? ZV_EVENT_SCROLL_V : ZV_EVENT_SCROLL_H;
    auto const place = isVertical ? &ZVSysWindow::verticalBar : &ZVSysWindow::horizontalBar;
    return std::unique_ptr<ZVSysScrollBar>(new ZVSysScrollBar{ScrollBar(
        isVertical, [=, &window] { Take_Value(window, (window.sysWindow->*place)->bar, range, event); })});
}

void Make_Bars(ZVWindow& window)
{
    ZVSysWindow& native = *window.sysWindow;
    if (window.flags & ZV_PALF_VSCROLL) native.verticalBar = Make_Bar(window, true);
    if (window.flags & ZV_PALF_HSCROLL) native.horizontalBar = Make_Bar(window, false);
    window.verticalBar = native.verticalBar.get();
    window.horizontalBar = native.horizontalBar.get();
    Move_Sliders(&window);
}

void Free_Bars(ZVWindow& window)
{
    ZVSysWindow& native = *window.sysWindow;
    for (auto const bar : {&native.verticalBar, &native.horizontalBar}) {
        if (*bar && Mouse_Holder() == &(*bar)->bar) Hold_Mouse(nullptr);
        *bar = nullptr;
    }
    window.verticalBar = window.horizontalBar = nullptr;
}

static void Take_Range(ScrollBar& bar, ZVScrollRange const& range)
{
    long const last = std::max(static_cast<long>(range.maximum) - range.view, 0L);
    bar.Set_Range(static_cast<int>(std::max(last - range.minimum, 0L)), std::max(range.view, 1));
    bar.Set_Value(range.value - range.minimum);
}

void Move_Sliders(ZVWindow* window)
{
    if (!window || !window->sysWindow) return;
    HostRect const all = window->sysWindow->port.surface.Bounds();
    int const edge = ScrollBarWidth - Overlap;
    if (ZVSysScrollBar* bar = window->verticalBar) {
        bar->bar.Place({all.right - edge, -Overlap, all.right + Overlap, all.bottom - GrowSize});
        if (window->activePalette) Take_Range(bar->bar, window->activePalette->vertical);
    }
    if (ZVSysScrollBar* bar = window->horizontalBar) {
        bar->bar.Place({-Overlap, all.bottom - edge, all.right - GrowSize, all.bottom + Overlap});
        if (window->activePalette) Take_Range(bar->bar, window->activePalette->horizontal);
    }
    Enable_Sliders(window, window == ZVEnv->frontWindow);
}

void Enable_Sliders(ZVWindow* window, long enabled)
{
    if (!window || !window->sysWindow) return;
    for (ZVSysScrollBar* bar : {window->verticalBar, window->horizontalBar})
        if (bar) bar->bar.Set_Enabled(enabled);
    Draw_Bars(*window);
}

HostRect Grow_Box(ZVWindow const& window)
{
    if (!(window.flags & ZV_PALF_SIZES) || window.flags & ZV_PALF_NO_GROW_AREA) return {};
    HostRect const all = window.sysWindow->port.surface.Bounds();
    return {all.right - GrowSize, all.bottom - GrowSize, all.right, all.bottom};
}

/// Three slanted lines in the lower right corner, by which people know that a window can be resized.
static void Draw_Grow_Box(ZVPort& port, HostRect const& box)
{
    auto const light = static_cast<uint32_t>(GetColorZV(ZV_PEN_LIGHT_EDGE));
    auto const dark = static_cast<uint32_t>(GetColorZV(ZV_PEN_TAB_BAR));
    port.surface.Fill(box, static_cast<uint32_t>(GetColorZV(ZV_PEN_PALETTE)));
    for (int const length : {4, 8, 12}) {
        for (int i = 0; i < length; ++i) {
            int const x = box.right - 2 - i, y = box.bottom - 1 - length + i;
            port.surface.Write(x, y, dark);
            port.surface.Write(x, y + 1, light);
        }
    }
}

void Draw_Bars(ZVWindow& window)
{
    ZVSysWindow& native = *window.sysWindow;
    HostRect const growBox = Grow_Box(window);
    if (!growBox.IsEmpty()) Draw_Grow_Box(native.port, growBox);
    for (ZVSysScrollBar* bar : {window.verticalBar, window.horizontalBar})
        if (bar) bar->bar.Draw(native.port);
}
