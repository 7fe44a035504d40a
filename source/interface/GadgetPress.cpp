// The press on a custom gadget: from the button going down to its release the gadget holds the mouse.
#include "GadgetEvent.h"
#include "PaletteTree.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

/// A second press counts as at the same place below this distance on each axis.
static constexpr long doubleClickDistance = 5;

/// The way in pixels from which on a press is a drag.
static constexpr int32_t dragDistance = 4;

/// Shortly after the last release, and near it.
static bool Is_Near_Last_Click(long x, long y)
{
    long const since = static_cast<int32_t>(Mac_Tick_Count() - ZVEnv->lastClickTime);
    return ZVEnv->lastClickTime != 0 && since < Mac_Double_Click_Time() &&
           std::labs(x - ZVEnv->lastClickPoint.x) < doubleClickDistance &&
           std::labs(y - ZVEnv->lastClickPoint.y) < doubleClickDistance;
}

/// Either by the library's own memory or by the desktop's count of presses. The desktop knows nothing of
/// gadgets: two that were pressed in turn are no double click, and of a row of presses the third begins anew.
static bool Is_Double_Click(ZVItem const* item, long x, long y, long clickCount)
{
    bool const isNear = Is_Near_Last_Click(x, y);
    if (isNear) return item == ZVEnv->lastClickItem;
    return clickCount >= 2 && clickCount % 2 == 0;
}

long Custom_Gad_MouseDown(long x, long y, long clickCount, long isContextual)
{
    ZVItem* const item = ZVEnv->trackedItem;
    if (!item || !item->customFunc) return 0;

    ZVEnv->tickItem = ZVEnv->trackingItem = item;
    ZVEnv->buttonState |= ZV_MOD_BUTTON;
    if (isContextual) ZVEnv->buttonState |= ZV_MOD_CONTEXTUAL;
    if (Is_Double_Click(item, x, y, clickCount)) {
        ZVEnv->buttonState |= ZV_MOD_DOUBLE_CLICK;
        ZVEnv->lastClickTime = 0;
    }
    ZVEnv->modifiers |= ZVEnv->buttonState & ~uint32_t{ZV_MOD_CONTEXTUAL};
    ZVEnv->dragDistance = 0;
    item->flags |= ZV_ITEMF_MOUSE_INSIDE;

    LivingPalette const watch(item->group->palette);
    Send_Gadget_Event(ZV_CUSTOM_MOUSE_DOWN, item, {x, y});
    bool const isMenuWanted = ZVEnv->buttonState & ZV_MOD_CONTEXTUAL;
    ZVEnv->buttonState &= ~uint32_t{ZV_MOD_CONTEXTUAL};
    if (isMenuWanted && watch.Is_Known()) Send_Gadget_Event(ZV_CUSTOM_MENU, item, {x, y});
    return 1;
}

void Custom_Gad_SecondButton(long x, long y)
{
    // Any other gadget would take it for a new press.
    ZVItem* const item = ZVEnv->trackingItem;
    if (!item || item->type != ZV_GAD_SLIDER) return;
    ZVEnv->modifiers |= ZV_MOD_SECOND_BUTTON;
    Send_Gadget_Event(ZV_CUSTOM_MOUSE_DOWN, item, {x, y});
    ZVEnv->modifiers &= ~uint32_t{ZV_MOD_SECOND_BUTTON};
}

void IgnoreContextualMenuEventZV()
{
    if (ZVEnv) ZVEnv->buttonState &= ~uint32_t{ZV_MOD_CONTEXTUAL};
}

void Custom_Gad_MouseMove(long x, long y)
{
    ZVItem* const item = ZVEnv->trackingItem;
    if (!item) return;
    if (ZVEnv->dragDistance > dragDistance) {
        ZVEnv->buttonState |= ZV_MOD_DRAGGED;
        ZVEnv->modifiers |= ZV_MOD_DRAGGED;
    }
    Send_Gadget_Event(ZV_CUSTOM_MOUSE_MOVE, item, {x, y});
}

void Custom_Gad_Tick()
{
    if (ZVEnv->trackingItem) Send_Gadget_Event(ZV_CUSTOM_TICK, ZVEnv->trackingItem, Pointer());
}

void Custom_Gad_MouseUp(long x, long y)
{
    ZVEnv->tickItem = nullptr;
    ZVItem* const item = std::exchange(ZVEnv->trackingItem, nullptr);
    if (!item) return;
    ZVEnv->lastClickItem = item;
    ZVEnv->lastClickPoint = {static_cast<int32_t>(x), static_cast<int32_t>(y)};
    // 0 stands for no click to be continued, as behind a double click, so that a third press starts anew.
    bool const wasDouble = ZVEnv->buttonState & ZV_MOD_DOUBLE_CLICK;
    ZVEnv->lastClickTime = wasDouble ? 0 : std::max(Mac_Tick_Count(), 1U);
    ZVEnv->modifiers &= ~uint32_t{ZV_MOD_BUTTON};
    ZVEnv->buttonState &= ~uint32_t{ZV_MOD_BUTTON | ZV_MOD_DOUBLE_CLICK | ZV_MOD_DRAGGED};
    Send_Gadget_Event(ZV_CUSTOM_MOUSE_UP, item, {x, y});
}
