// What of the windows has to be drawn again, and the drawing of it.
#include "MacDraw.h"
#include "MacFrame.h"
#include "MacItem.h"
#include "MacList.h"
#include "MacMenu.h"
#include "MacNativeItem.h"
#include "MacWindow.h"

#include "interface/HitTest.h"
#include "interface/PaletteTree.h"

#include <utility>

void Invalidate(ZVWindow& window, HostRect const& area)
{
    if (window.sysWindow)
        window.sysWindow->update.Cover(Intersection(area, window.sysWindow->port.surface.Bounds()));
}

void Invalidate(ZVWindow& window)
{
    if (window.sysWindow) Invalidate(window, window.sysWindow->port.surface.Bounds());
}

/// An area of a window, in its system window.
static HostRect Area_In_System_Window(ZVWindow const* window, ZVRectT<long> const& area)
{
    ZVPlace const corner = Place_In_System_Window(window) + ZVPlace{area.x, area.y};
    return Placed(ZVDrawInfo{}).Box(corner.x, corner.y, area.width, area.height);
}

void Mac_Validate(ZVWindow* window, ZVRectT<long> const& area)
{
    ZVWindow const* const system = System_Window_Of(window);
    if (!system || !system->sysWindow) return;
    try {
        system->sysWindow->update.Subtract(HostRegion(Area_In_System_Window(window, area)));
    } catch (std::bad_alloc const&) {
        // It is drawn once more, which does no harm.
    }
}

void Mac_Invalidate(ZVWindow* window, ZVRectT<long> const& area)
{
    if (ZVWindow* const system = System_Window_Of(window))
        Invalidate(*system, Area_In_System_Window(window, area));
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
        PortClip const clip(native.port, box);
        Draw_Window_Edge(native);
    }
}

/// The frames of the pseudo-windows in a window, inside their rectangles.
static void Draw_PseudoBorders(ZVWindow const& window)
{
    for (ZVWindow const& pseudo : All_Windows())
        if (pseudo.parent && System_Window_Of(pseudo.parent) == &window)
            FrameRect3D(window.sysWindow->port,
                        Area_In_System_Window(&pseudo, {0, 0, pseudo.width, pseudo.height}));
}

/// Draws the palettes of a window that show. False when a gadget's function has closed something: what
/// follows is no longer what it was.
static bool Redraw_Palettes(ZVWindow& window, HostRegion const& region)
{
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
    if (window.kind == ZV_KIND_ROOT || window.kind == ZV_KIND_APP) Draw_PseudoBorders(window);
    // The window itself and the pseudo-windows in it.
    for (ZVWindow& each : All_Windows())
        if (System_Window_Of(&each) == &window && !Redraw_Palettes(each, region)) return;
    Draw_Bars(window);
}

/// Calls `visit` with each item on screen in a system window, which calls nobody else.
template <typename Visit> static void Visit_Items(ZVWindow const& system, Visit visit)
{
    for (ZVWindow& each : All_Windows()) {
        if (System_Window_Of(&each) != &system) continue;
        for (ZVPalette* palette = Get_Next_Palette(&each, nullptr); palette;
             palette = Get_Next_Palette(&each, palette)) {
            if (!Is_On_Screen(*palette)) continue;
            for (ZVGroup& group : Groups_Of(*palette))
                if (!(group.flags & ZV_GRPF_HIDDEN))
                    for (ZVItem& item : Items_Of(group))
                        visit(item);
        }
    }
}

/// Makes up for what found no memory: the window's size and title, and its fields and lists. Then all of it
/// is drawn again. Nobody is told of anything.
static void Complete(ZVWindow& system)
{
    if (system.activePalette) Rebuild_SysWindow(&system, system.activePalette);
    Visit_Items(system, Complete_SysItem);
    Invalidate(system);
}

void Activate_Lists(ZVWindow* window, long on)
{
    if (!window || !window->sysWindow) return;
    Visit_Items(*window, [on](ZVItem& item) {
        if (ListBox* const list = List_Of(item)) Paint(Port_Of(item), [=] { list->Set_Active(on != 0); });
    });
}

void Refresh_GUI()
{
    for (ZVWindow& window : All_Windows())
        if (window.sysWindow && std::exchange(window.sysWindow->port.isIncomplete, false)) Complete(window);
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

void Present(HostWindow& host)
{
    bool const isShown = Guarded([&] {
        host.Present();
        return true;
    });
    if (!isShown) host.Surface().Touch_All();
}

void Present_Windows()
{
    for (ZVWindow& window : All_Windows())
        if (window.sysWindow) Present(*window.sysWindow->host);
    Present_Menus();
}
