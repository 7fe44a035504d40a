// The mouse between presses: where it is, and its wheel.
#include "MacInput.h"

#include "MacFocus.h"
#include "MacList.h"
#include "MacWindow.h"
#include "interface/HitTest.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <cmath>

/// What one notch of the wheel counts in custom event 119.
static constexpr double DeltaOfNotch = 40;

void Take_Mouse_Point(HostEvent const& event)
{
    if (ZVEnv->infiniteMouse && !ZVEnv->tablet.inProximity)
        Handle_MouseMove(ZVEnv->movedToX + event.deltaX, ZVEnv->movedToY + event.deltaY);
    else
        Handle_MouseMove(event.x, event.y);
}

void Mouse_Moved(HostEvent const& event)
{
    if (MouseTracker* const holder = Mouse_Holder()) {
        holder->Track(event.x, event.y);
        return;
    }
    Take_Mouse_Point(event);
    if (ZVEnv->trackingItem)
        Custom_Gad_MouseMove(ZVEnv->pointerX, ZVEnv->pointerY);
    else
        Do_Event(ZV_EVENT_MOUSE_MOVE, 0);
}

// ---- the wheel --------------------------------------------------------------------------------------------

/// Whole steps of a turn of the wheel. What a fine wheel turns less than one adds up, in one place and in one
/// direction.
static long Whole_Steps(void const* place, double steps)
{
    static void const* lastPlace;
    static double rest;
    if (place != lastPlace || rest * steps < 0) rest = 0;
    lastPlace = place;
    rest += steps;
    double const whole = std::trunc(rest);
    rest -= whole;
    return std::lround(whole);
}

/// @return  whether there is a gadget with a function, which has been told then
static bool Turn_Over_Gadget(HostEvent const& event)
{
    ZVItem* const item = ZVEnv->trackedItem;
    if (!item || !item->customFunc) return false;
    LivingPalette const watch(item->group->palette);
    Mac_Drop_Focus(ZV_MOD_RELEASE);
    ZVPlace const place = ZVPlace{ZVEnv->pointerX, ZVEnv->pointerY} - Screen_Place_Of_Item(item);
    for (bool const isVertical : {true, false}) {
        double const notches = isVertical ? event.wheelY : event.wheelX;
        if (notches == 0) continue;
        if (!watch.Is_There()) return true;
        auto const delta = static_cast<int32_t>(std::lround(notches * DeltaOfNotch));
        ZVCustomEvent turn{};
        turn.type = ZV_CUSTOM_WHEEL;
        turn.item = item;
        turn.x = static_cast<int32_t>(place.x);
        turn.y = static_cast<int32_t>(place.y);
        turn.deltaX = isVertical ? 0 : delta;
        turn.deltaY = isVertical ? delta : 0;
        Do_CustomEvent(&turn);
    }
    return true;
}

/// The list of the item under the mouse.
static ListBox* List_Under_Mouse()
{
    ZVPalette const* const palette = ZVEnv->mousePalette;
    if (!palette) return nullptr;
    ZVPlace const point = Place_Of_Palette(palette) + ZVPlace{ZVEnv->mouseX, ZVEnv->mouseY};
    ZVGroup const* const group = Group_At(palette, point);
    ZVItem const* const item = group ? Item_At(group, point, ZV_ITEMF_HIDDEN) : nullptr;
    return item ? List_Of(*item) : nullptr;
}

/// A tenth of what is seen, so that it is a few lines where values are lines, and a fair way where they are
/// pixels.
static double Steps_Of_Notch(BarValues const& bar)
{
    static constexpr double notchesOfView = 10;
    return std::max(static_cast<double>(GetWheelScrollLinesZV()), bar.view / notchesOfView);
}

/// Moves a window's scroll bar as if by its arrows.
static void Turn_Bar(ZVWindow& window, bool isVertical, double notches)
{
    ZVPalette* const palette = window.activePalette;
    if (notches == 0 || !palette) return;
    BarValues const bar = Values_Of_Bar(*palette, isVertical);
    long const steps = Whole_Steps(&bar.value, notches * Steps_Of_Notch(bar));
    long const last = std::max<long>(long{bar.maximum} - bar.view, bar.minimum);
    auto const value = static_cast<int32_t>(std::clamp<long>(bar.value + steps, bar.minimum, last));
    if (value == bar.value) return;
    bar.value = value;
    Move_Sliders(&window);
    Do_Event(isVertical ? ZV_EVENT_SCROLL_V : ZV_EVENT_SCROLL_H, Tag_Word(palette));
}

static void Turn_Window_Bars(ZVWindow& window, HostEvent const& event)
{
    if (window.verticalBar) Turn_Bar(window, true, -event.wheelY);
    if (Is_Window(&window) && window.horizontalBar) Turn_Bar(window, false, event.wheelX);
}

void Mouse_Wheel(HostEvent const& event)
{
    ZVWindow* const window = Window_Of(event.window);
    if (Mouse_Holder() || (window && Is_Behind_Dialog(*window))) return;
    Take_Mouse_Point(event);
    if (Turn_Over_Gadget(event) || !Is_Window(window)) return;
    if (ListBox* const list = List_Under_Mouse())
        list->Scroll(static_cast<int>(
            Whole_Steps(list, -event.wheelY * static_cast<double>(GetWheelScrollLinesZV()))));
    else
        Turn_Window_Bars(*window, event);
}
