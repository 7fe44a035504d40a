// The active palette of a window: switching to it, and moving palettes from window to window. Events run
// callbacks, which may close any palette and any window, so what was held is checked after each of them.
#include "interface/PaletteTree.h"

#include <utility>

/// A window for a palette, its client area at that place. Null with error 1 when it cannot be had.
static ZVWindow* Make_Window(ZVPalette& palette, long x, long y)
{
    ZVWindow* const window = New_Window();
    if (!window) return nullptr;
    window->kind = palette.kind;
    window->flags = palette.flags;
    window->left = static_cast<int32_t>(x);
    window->top = static_cast<int32_t>(y);
    window->width = palette.width;
    window->height = palette.height + palette.y;
    if (Make_SysWindow(window, &palette)) {
        if (palette.kind == ZV_KIND_APP) ZVEnv->rootWindow = window;
        return window;
    }
    SetError(ZV_ERR_MEMORY);
    Free_Window(window);
    return nullptr;
}

/// Makes a window that of a palette and its sub-palettes. Their hooks move along.
static void Set_Parent_Window(ZVPalette& root, ZVWindow* window)
{
    for (ZVPalette* palette = &root; palette; palette = Next_Below(&root, palette)) {
        if (ZVWindow* old = std::exchange(palette->window, window)) {
            for (Node* node = old->hooks.head; node->next;) {
                Node* const next = node->next;
                if (reinterpret_cast<ZVEventHook*>(node)->palette == palette) {
                    Remove(node);
                    AddTail(&window->hooks, node);
                }
                node = next;
            }
        }
    }
}

/// Takes a palette out of its list. Its window pointer stays until it has a new one.
static void Unlink_Palette(ZVPalette& palette)
{
    Remove(&palette.node);
    if (palette.window->activePalette == &palette) palette.window->activePalette = nullptr;
}

/// Links a palette behind those of its own and of higher priority.
static void Link_Palette(ZVWindow& window, ZVPalette& palette)
{
    Node* successor = nullptr;
    for (ZVPalette& other : Palettes_Of(window)) {
        if (other.tabPriority >= palette.tabPriority) continue;
        successor = &other.node;
        break;
    }
    InsertBefore(&window.palettes, &palette.node, successor);
}

/// What is left of a window that a palette has moved out of.
static void Leave_Window(ZVWindow* window)
{
    if (List_Empty(&window->palettes)) {
        Snapshot_WindowPrefs();
        if (window->sysWindow && window->kind != ZV_KIND_ROOT) Free_SysWindow(window);
        return;
    }
    NewActivePalette(window, reinterpret_cast<ZVPalette*>(window->palettes.head), 0, 0, 1);
    if (Is_Window(window)) RenderTabs(window);
}

/// Puts a palette in front of the others of its window.
static void Switch_To(ZVWindow* window, ZVPalette* palette)
{
    LivingPalette const watch(palette);
    auto const isStill = [&] {
        return watch.Is_There() && palette->window == window && window->activePalette == palette;
    };
    ZVPalette* const former = window->activePalette;
    window->activePalette = palette;
    if (former) {
        LivingPalette const formerWatch(former);
        Palette_Visible(*former, false);
        if (formerWatch.Is_There() && former->kind == ZV_KIND_FLOATER)
            Do_Event(ZV_EVENT_TAB_DEACTIVATE, Tag_Word(former));
        if (!isStill()) return;
    }
    if (window->sysWindow) Rebuild_SysWindow(window, palette);
    RenderTabs(window);
    Palette_Visible(*palette, true);
    if (!isStill()) return;
    Do_WindowActivation(window);
    if (isStill()) Do_Event(ZV_EVENT_TAB_ACTIVATE, Tag_Word(palette));
}

/// Moves a palette, with all that it shows, into a window: a new one for null. False when there is none to be
/// had, and when a gadget's function closed the palette or the window on the way.
static bool Move_Into(ZVWindow*& window, ZVPalette& palette, long x, long y)
{
    LivingPalette const watch(&palette);
    if (palette.window) Palette_Visible(palette, false);
    if (!watch.Is_There() || (window && !Is_Window(window))) return false;
    if (!window && !(window = Make_Window(palette, x, y))) return false;
    ZVWindow* const old = palette.window;
    if (old) Unlink_Palette(palette);
    Link_Palette(*window, palette);
    Set_Parent_Window(palette, window);
    if (&palette == ZVEnv->displayedPalette) ZVEnv->displayedPalette = nullptr;
    if (old) Leave_Window(old);
    return true;
}

long NewActivePalette(ZVWindow* window, ZVPalette* palette, long x, long y, long activate)
{
    if (!palette) return 0;
    if (window && window == palette->window && window->activePalette == palette) return 1;
    bool activates = activate;
    if (!window || window != palette->window) {
        LivingPalette const watch(palette);
        activates |= !window || List_Empty(&window->palettes);
        if (!Move_Into(window, *palette, x, y)) return 0;
        if (!watch.Is_There() || palette->window != window) return 1;
    } else {
        activates = true;
    }
    if (activates)
        Switch_To(window, palette);
    else
        RenderTabs(window);
    return 1;
}

void ActivatePaletteZV(ZVPalette* palette, long bringToFront)
{
    if (!Is_Palette(palette) || !palette->window) return;
    LivingPalette const watch(palette);
    NewActivePalette(palette->window, Root_Of(palette), 0, 0, 1);
    if (bringToFront && watch.Is_There()) Mac_Select_Window(GetParentSysWindow(palette, nullptr, nullptr));
}

void ActivatePaletteZV(unsigned short id, long bringToFront)
{
    ActivatePaletteZV(FindPaletteZV(id), bringToFront);
}
