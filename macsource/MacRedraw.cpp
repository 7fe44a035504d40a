// What of the windows has to be drawn again, and the drawing of it.
#include "MacMenu.h"
#include "MacNativeItem.h"
#include "MacWindow.h"

#include "interface/PaletteTree.h"

#include <utility>

void Invalidate(ZVWindow& window, HostRect const& area)
{
    if (window.sysWindow)
        window.sysWindow->update.Unite(Intersection(area, window.sysWindow->port.surface.Bounds()));
}

void Invalidate(ZVWindow& window)
{
    if (window.sysWindow) Invalidate(window, window.sysWindow->port.surface.Bounds());
}

void Mac_Validate(ZVWindow* window, ZVRectT<long> const& area)
{
    long left = area.x, top = area.y;
    for (; window && window->parent; window = window->parent) {
        left += window->left;
        top += window->top;
    }
    if (!window || !window->sysWindow) return;
    auto const edge = [](long value) { return static_cast<int>(value); };
    window->sysWindow->update.Subtract(
        HostRegion({edge(left), edge(top), edge(left + area.width), edge(top + area.height)}));
}

/// The bar above the palettes of a floater, which holds their tabs.
static HostRect Tab_Area(ZVWindow const& window, HostRect const& client)
{
    int const height = window.kind == ZV_KIND_FLOATER ? ZVEnv->style->tabHeight : 0;
    return {client.left, client.top, client.right, client.top + height};
}

static void Draw_Background(ZVSysWindow& native, HostRegion const& region)
{
    HostSurface& surface = native.port.surface;
    HostRect const tabs = Tab_Area(native.window, surface.Bounds());
    uint32_t const background = Background_Of(native.window);
    auto const tabColor = static_cast<uint32_t>(GetColorZV(ZV_PEN_TAB_BAR));
    for (int i = 0; i < region.Box_Count(); ++i) {
        HostRect const box = region.Box(i);
        surface.Fill(box, background);
        surface.Fill(Intersection(box, tabs), tabColor);
    }
}

/// The region in a window, from that of its system window.
static HostRegion In_Window(ZVWindow const* window, HostRegion const& region)
{
    HostRegion moved = region;
    for (; window->parent; window = window->parent)
        moved.Translate(-window->left, -window->top);
    return moved;
}

/// Draws the palettes of a window that show. False when a gadget's function has closed something: what
/// follows is no longer what it was.
static bool Redraw_Palettes(ZVWindow& window, HostRegion const& region)
{
    HostRegion const local = In_Window(&window, region);
    for (ZVPalette* palette = Get_Next_Palette(&window, nullptr); palette;
         palette = Get_Next_Palette(&window, palette)) {
        if (!Is_On_Screen(*palette)) continue;
        LivingPalette const watch(palette);
        for (ZVGroup& group : Groups_Of(*palette)) {
            Refresh_Items(group, region);
            if (!watch.Is_There()) return false;
        }
        if (palette->flags & ZV_PALF_HILITED) Draw_Mark(palette);
    }
    return true;
}

void Redraw_Window(ZVWindow& window)
{
    ZVSysWindow& native = *window.sysWindow;
    HostRegion const region = std::exchange(native.update, HostRegion());
    Draw_Background(native, region);
    // The window itself and the pseudo-windows in it.
    for (ZVWindow& each : All_Windows()) {
        ZVWindow const* system = &each;
        while (system->parent)
            system = system->parent;
        if (system == &window && !Redraw_Palettes(each, region)) return;
    }
    Draw_Bars(window);
}

void Refresh_GUI()
{
    // Drawing calls gadgets, which may close windows, so the walk begins again behind each that was drawn.
    auto const waiting = []() -> ZVWindow* {
        for (ZVWindow& window : All_Windows())
            if (window.sysWindow && !window.sysWindow->update.IsEmpty()) return &window;
        return nullptr;
    };
    while (ZVWindow* window = waiting())
        Redraw_Window(*window);
}

void Mac_Refresh_All()
{
    for (ZVWindow& window : All_Windows())
        Invalidate(window);
    Refresh_GUI();
    Draw_Menus();
}

void Present_Windows()
{
    for (ZVWindow& window : All_Windows())
        if (window.sysWindow) window.sysWindow->host->Present();
    Present_Menus();
}
