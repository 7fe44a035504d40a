// The events that reach more than one level: movements, presses and ticks. A callback may close what is being
// walked, so the palette is looked for after each call; its groups and items live as long as it does.
#include "EventWalk.h"

#include "GadgetEvent.h"
#include "HitTest.h"
#include "PaletteTree.h"

#include "ZVLibInternal.h"

namespace {

/// What the mouse points at in a palette.
struct Pointed {
    ZVGroup* group = nullptr;
    ZVItem* item = nullptr;
};

}  // namespace

/// The mouse in the window of the palette under it.
static ZVPlace Mouse_In_Window(ZVPalette const* palette)
{
    return ZVPlace{ZVEnv->mouseX, ZVEnv->mouseY} + Place_Of_Palette(palette);
}

static ZVItem* Enabled_Item_At(ZVGroup const* group, ZVPlace point)
{
    return Item_At(group, point, ZV_ITEMF_DISABLED | ZV_ITEMF_HIDDEN);
}

static uint16_t Cursor_Of(ZVPalette const* palette, Pointed pointed)
{
    if (pointed.item && pointed.item->cursor) return pointed.item->cursor;
    if (pointed.group && pointed.group->cursor) return pointed.group->cursor;
    return palette->cursor;
}

void Update_Cursor()
{
    ZVPalette const* palette = ZVEnv->mousePalette;
    if (!palette) {
        Set_Cursor(ZV_CURSOR_ARROW);
        return;
    }
    ZVPlace const point = Mouse_In_Window(palette);
    ZVGroup* const group = Group_At(palette, point);
    Set_Cursor(Cursor_Of(palette, {group, group ? Enabled_Item_At(group, point) : nullptr}));
}

static void Set_Position(ZVEvent& event, ZVPlace place)
{
    event.x = static_cast<int32_t>(place.x);
    event.y = static_cast<int32_t>(place.y);
}

/// Calls a callback if there is one. False when the palette went with it.
static bool Call_If_Any(void (*callback)(ZVEvent*), ZVEvent& event, LivingPalette const& watch)
{
    if (!callback) return true;
    callback(&event);
    return watch.Is_Known();
}

/// The part of a movement inside a palette. False when it was closed.
static bool Send_Move_To_Palette(ZVEvent& event, ZVPalette* palette, LivingPalette const& watch)
{
    ZVPlace const point = Mouse_In_Window(palette);
    Enter_Palette(event, palette);
    if (!Call_If_Any(palette->callback, event, watch)) return false;

    Pointed pointed{Group_At(palette, point)};
    if (pointed.group) {
        Set_Position(event, point - Place_Of_Group(pointed.group));
        if (!Call_If_Any(pointed.group->callback, event, watch)) return false;
        pointed.item = Enabled_Item_At(pointed.group, point);
    }
    // The cursor is settled before the item's callback, which may close the palette.
    Set_Cursor(Cursor_Of(palette, pointed));
    if (!pointed.item) return true;
    event.item = Tag_Word(pointed.item);
    Set_Position(event, point - Place_Of_Item(pointed.item));
    return Call_If_Any(pointed.item->callback, event, watch);
}

void Send_Mouse_Move(ZVEvent& event)
{
    ZVPalette* const palette = ZVEnv->mousePalette;
    if (!palette) {
        Set_Cursor(ZV_CURSOR_ARROW);
        Call_Back(nullptr, event);
        return;
    }
    ZVPlace const onScreen = Mouse_On_Screen();
    if (!Send_Move_To_Palette(event, palette, LivingPalette(palette))) {
        event.palette = nullptr;
        event.item = 0;
    }
    Set_Position(event, onScreen);
    Call_Back(nullptr, event);
}

void Send_Mouse_Button(ZVEvent& event)
{
    ZVPalette* const palette = ZVEnv->mousePalette;
    if (!palette) {
        Call_Back(nullptr, event);
        return;
    }
    Enter_Palette(event, palette);
    ZVPlace const point = Mouse_In_Window(palette);
    ZVGroup const* const group = Group_At(palette, point);
    if (group) Set_Position(event, point - Place_Of_Group(group));
    Call_Back(group && group->callback ? group->callback : palette->callback, event);
}

/// False when the palette was closed.
static bool Tick_Group(ZVEvent& event, ZVGroup* group, LivingPalette const& watch)
{
    if (!Call_If_Any(group->callback, event, watch)) return false;
    for (ZVItem& item : Items_Of(*group)) {
        if (item.flags & ZV_ITEMF_HIDDEN) continue;
        // The holder of the press has had its tick.
        if (item.flags & ZV_ITEMF_TICKS && &item != ZVEnv->tickItem) {
            Send_Gadget_Event(ZV_CUSTOM_TICK, &item, Pointer());
            if (!watch.Is_Known()) return false;
        }
        event.item = Tag_Word(&item);
        if (!Call_If_Any(item.callback, event, watch)) return false;
    }
    event.item = 0;
    return true;
}

/// False when the palette was closed or has moved to another window.
static bool Tick_Palette(ZVEvent& event, ZVPalette* palette)
{
    LivingPalette const watch(palette);
    ZVWindow const* const window = palette->window;
    Enter_Palette(event, palette);
    if (!Call_If_Any(palette->callback, event, watch)) return false;
    for (ZVGroup& group : Groups_Of(*palette))
        if (!(group.flags & ZV_GRPF_HIDDEN) && !Tick_Group(event, &group, watch)) return false;
    Call_Hooks(palette, event.type);
    return watch.Is_Known() && palette->window == window;
}

static bool Tick_All_Palettes(ZVEvent& event)
{
    CurrentPalette const current(ZVEnv->currentPalette);
    for (ZVWindow& window : All_Windows())
        for (ZVPalette* palette = nullptr; (palette = Get_Next_Palette(&window, palette));)
            if (Is_Shown(palette) && !Tick_Palette(event, palette)) return false;
    return true;
}

bool Send_Tick(ZVEvent& event)
{
    bool const isWhole = Tick_All_Palettes(event);
    event.palette = nullptr;
    if (isWhole) Call_Back(nullptr, event);
    return isWhole;
}

void Call_Hooks(ZVPalette* palette, uint16_t type)
{
    ZVWindow* const window = FindPaletteZV(palette) ? palette->window : nullptr;
    if (!window) return;
    Node* node = List_First(&window->hooks);
    while (node) {
        auto const* const hook = reinterpret_cast<ZVEventHook*>(node);
        Node* const followed = List_Next(node);
        if (hook->palette != palette || hook->event != type) {
            node = followed;
            continue;
        }
        hook->function(palette, type, hook->user);
        if (!FindPaletteZV(palette) || palette->window != window) return;
        node = Next_After_Call(&window->hooks, node, followed);
    }
}
