// What lies under the mouse, and who is told that it came, went or moved.
#include "GadgetEvent.h"
#include "PaletteTree.h"

#include "ZVLibInternal.h"

#include <cstdlib>
#include <utility>

void Send_Gadget_Event(uint16_t type, ZVItem* item, ZVPlace onScreen)
{
    ZVPlace const place = onScreen - Screen_Place_Of_Item(item);
    ZVCustomEvent event{};
    event.type = type;
    event.item = item;
    event.x = static_cast<int32_t>(place.x);
    event.y = static_cast<int32_t>(place.y);
    event.deltaX = ZVEnv->deltaX;
    event.deltaY = ZVEnv->deltaY;
    Do_CustomEvent(&event);
}

ZVPlace Pointer()
{
    return {ZVEnv->pointerX, ZVEnv->pointerY};
}

static void Take_Movement(long x, long y)
{
    // A pen points at places, so its position counts even while movements have no end.
    if (!ZVEnv->infiniteMouse || ZVEnv->tablet.inProximity) {
        ZVEnv->pointerX = static_cast<int32_t>(x);
        ZVEnv->pointerY = static_cast<int32_t>(y);
    }
    ZVEnv->deltaX = static_cast<int32_t>(x - std::exchange(ZVEnv->movedToX, static_cast<int32_t>(x)));
    ZVEnv->deltaY = static_cast<int32_t>(y - std::exchange(ZVEnv->movedToY, static_cast<int32_t>(y)));
    ZVEnv->dragDistance += std::abs(ZVEnv->deltaX) + std::abs(ZVEnv->deltaY);
}

/// The palette that shows in its window: the active one, or one that lies in that.
static bool Is_Active_In(ZVPalette const* palette, ZVWindow const* window)
{
    while (palette && palette != window->activePalette)
        palette = palette->parent;
    return palette;
}

static ZVItem* Find_In_Palette(ZVPalette const* palette, ZVPlace point)
{
    for (ZVGroup const& group : Groups_Of(*palette)) {
        if (group.flags & ZV_GRPF_HIDDEN || !Holds(&group, point)) continue;
        if (ZVItem* item = Item_At(&group, point, ZV_ITEMF_HIDDEN)) return item;
    }
    return nullptr;
}

/// @param point  in the client area of the window itself
static ZVItem* Find_In_Window(ZVWindow* window, ZVPlace point)
{
    for (ZVPalette* palette = Get_Next_Palette(window, nullptr); palette;
         palette = Get_Next_Palette(window, palette)) {
        if (!Is_Shown(palette) || !Is_Active_In(palette, window)) continue;
        if (ZVItem* item = Find_In_Palette(palette, point)) {
            ZVPlace const inPalette = point - Place_Of_Palette(palette);
            ZVEnv->mousePalette = palette;
            ZVEnv->mouseX = static_cast<int32_t>(inPalette.x);
            ZVEnv->mouseY = static_cast<int32_t>(inPalette.y);
            return item;
        }
    }
    return nullptr;
}

/// The item under the mouse, with mousePalette and the position in it; null without one.
static ZVItem* Find_Under_Mouse()
{
    ZVEnv->mousePalette = nullptr;
    ZVEnv->mouseX = ZVEnv->mouseY = 0;
    ZVPlace local;
    ZVWindow const* const found = Mac_Find_Window(ZVEnv->pointerX, ZVEnv->pointerY, &local.x, &local.y);
    if (!found) return nullptr;
    for (ZVWindow& window : All_Windows()) {
        if (System_Window_Of(&window) != found) continue;
        if (ZVItem* item = Find_In_Window(&window, local - Place_In_System_Window(&window))) return item;
    }
    return nullptr;
}

/// The item that has been under the mouse is told that it no longer is.
static void Leave_Tracked_Item()
{
    ZVItem* const item = std::exchange(ZVEnv->trackedItem, nullptr);
    if (!item || !(item->flags & ZV_ITEMF_MOUSE_INSIDE)) return;
    item->flags &= ~uint32_t{ZV_ITEMF_MOUSE_INSIDE};
    Send_Gadget_Event(ZV_CUSTOM_MOUSE_OUT, item, Pointer());
}

void Handle_MouseMove(long x, long y)
{
    Take_Movement(x, y);
    ZVItem* const item = Find_Under_Mouse();
    if (!item) {
        Leave_Tracked_Item();
        return;
    }
    LivingPalette const watch(ZVEnv->mousePalette);
    if (ZVEnv->trackedItem != item) Leave_Tracked_Item();
    if (!watch.Is_Known()) return;

    if (item->kind != ZV_ITEM_GADGET || !item->customFunc) return;
    if (ZVEnv->trackingItem && ZVEnv->trackingItem != item) return;
    if (!(item->flags & ZV_ITEMF_MOUSE_INSIDE)) {
        item->flags |= ZV_ITEMF_MOUSE_INSIDE;
        ZVEnv->trackedItem = item;
        Send_Gadget_Event(ZV_CUSTOM_MOUSE_IN, item, Pointer());
        if (!watch.Is_Known()) return;
    }
    if (!ZVEnv->trackingItem) Send_Gadget_Event(ZV_CUSTOM_MOUSE_MOVE, item, Pointer());
}

void InfiniteMouseMovesZV(long on)
{
    if (!ZVEnv || !on == !ZVEnv->infiniteMouse) return;
    ZVEnv->infiniteMouse = on != 0;
    Mac_Move_Pointer_Freely(on);
    if (on) return;
    // The pointer is back where it was held, which is no movement.
    ZVEnv->movedToX = ZVEnv->pointerX;
    ZVEnv->movedToY = ZVEnv->pointerY;
}
