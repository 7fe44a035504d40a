// Cycles: a gadget that shows one of its entries. A press opens them all as a list under the mouse; the press
// can go on into it, so that one movement chooses an entry.
#include "CycleEntry.h"
#include "PopupList.h"
#include "interface/HitTest.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <utility>

namespace {

constexpr long arrowRoom = 6;  ///< of the two triangles at the right, as far as the content makes room
constexpr long textMargin = 3;

/// Two triangles, pointing up and down.
void Draw_Arrows(ZVDrawInfo* draw, ZVItem const& item)
{
    long const middle = item.width - 7, top = (item.height - 8) / 2;
    for (long i = 0; i < 3; ++i) {
        DrawLineZV(draw, middle - i, top + i, middle + i, top + i);
        DrawLineZV(draw, middle - i, top + 7 - i, middle + i, top + 7 - i);
    }
}

void Draw_Entry(ZVDrawInfo* draw, ZVItem const& item, Node const& entry, EntryLook const& look)
{
    SetClipRectZV(draw, 2, 2, item.width - 12, item.height - 4);
    if (Has_Icon(entry)) {
        NativeBitmap const picture = Entry_Picture(entry, look);
        if (picture)
            DrawBitmapZV(draw, picture.get(), (item.width - picture->Width - arrowRoom) / 2,
                         (item.height - picture->Height) / 2);
        return;
    }
    SetFontZV(draw, GetItemFont(&item));
    Set_Entry_Pens(draw, look);
    long x = 0, y = 0;
    CenterTextZV(draw, entry.name, 0, 0, item.width - arrowRoom, item.height, &x, &y);
    DrawTextZV(draw, entry.name, std::max(x, textMargin), y);
}

void Draw_Cycle(ZVItem& item, bool isDisabled)
{
    DrawContext const context(DrawBeginZV(&item));
    ZVDrawInfo* const draw = context.get();
    if (!draw) return;
    unsigned long const face = Shown_Color(ZV_PEN_FACE, isDisabled);
    unsigned long const text = Shown_Color(ZV_PEN_TEXT, isDisabled);
    SetPenZV(draw, face);
    FillRectZV(draw, 1, 1, item.width - 1, item.height - 1);
    Draw_Bevel(draw, 0, 0, item.width, item.height, false, isDisabled);
    SetPenZV(draw, text);
    SetBGPenZV(draw, face);
    Draw_Arrows(draw, item);
    long const index = Chosen_Index(item);
    if (Node const* entry = List_Entry(&item.entries, index))
        Draw_Entry(draw, item, *entry, {item, index, face, text, isDisabled});
}

void Press(ZVItem& item, CycleState const& state)
{
    if (Is_Disabled(item)) return;
    item.pressed = 1;
    if (state.Popup)
        Close_Pop_Up(item);
    else
        Open_Pop_Up(item);
}

/// Hands an event of the press that has left the gadget on to the open list, which answers it.
void Hand_To_List(ZVCustomEvent* event, ZVItem& list)
{
    ZVCustomEvent handed = *event;
    ZVPlace const way = Screen_Place_Of_Item(event->item) - Screen_Place_Of_Item(&list);
    handed.item = &list;
    handed.x += static_cast<int32_t>(way.x);
    handed.y += static_cast<int32_t>(way.y);
    list.pressed = 1;
    ListCustomFunc(&handed);
    event->replyType = handed.replyType;
    event->replyData = handed.replyData;
    event->replyFlags = handed.replyFlags;
}

void Follow_Press(ZVCustomEvent* event, CycleState const& state)
{
    ZVItem& item = *event->item;
    bool const isForList = item.pressed && !Is_Inside(item) && state.ListItem;
    if (event->type == ZV_CUSTOM_MOUSE_UP) item.pressed = 0;
    if (isForList) Hand_To_List(event, *state.ListItem);
}

void Turn_Wheel(ZVCustomEvent* event, CycleState& state)
{
    ZVItem& item = *event->item;
    if (Is_Disabled(item)) return;
    long const steps = Wheel_Steps(event->deltaY, state.WheelRest);
    long const index = Chosen_Index(item), target = steps ? Entry_From(item, index, steps) : index;
    if (target == index) return;
    LivingPalette const watch(item.group->palette);
    SetGadgetStateZV(&item, List_Entry(&item.entries, target)->id);
    if (!watch.Is_There()) return;
    if (state.ListItem) Choose_List_Row(*state.ListItem, target);
    Report_Use(event, 0);
}

/// Draws the state. A list of entries that are no longer there makes no sense.
void Show_State(ZVItem& item)
{
    if (item.flags & ZV_ITEMF_ENTRIES_CHANGED) Close_Pop_Up(item);
    Draw_Cycle(item, Is_Disabled(item));
}

}  // namespace

long CycleCustomFunc(ZVCustomEvent* event)
{
    ZVItem& item = *event->item;
    if (event->type == ZV_CUSTOM_SETUP) {
        item.object = New_Record<CycleState>();
        return item.object != nullptr;
    }
    CycleState* const state = State_Of_Cycle(item);
    if (!state) return 1;
    switch (event->type) {
    case ZV_CUSTOM_DESTROY: Close_Pop_Up(item); break;
    case ZV_CUSTOM_CLEANUP:
        Close_Pop_Up(item);
        FreeMemZV(std::exchange(item.object, nullptr));
        break;
    case ZV_CUSTOM_DRAW: Draw_Cycle(item, Is_Disabled(item)); break;
    case ZV_CUSTOM_DRAW_STATE: Show_State(item); break;
    case ZV_CUSTOM_DRAW_DISABLED: Draw_Cycle(item, true); break;
    case ZV_CUSTOM_MOUSE_DOWN: Press(item, *state); break;
    case ZV_CUSTOM_MOUSE_UP:
    case ZV_CUSTOM_MOUSE_MOVE:
    case ZV_CUSTOM_TICK: Follow_Press(event, *state); break;
    case ZV_CUSTOM_WHEEL: Turn_Wheel(event, *state); break;
    default: break;
    }
    return 1;
}

// ---- places -----------------------------------------------------------------------------------------------

long GadToScreenX(ZVItem const* item)
{
    return item ? Screen_Place_Of_Item(item).x : 0;
}

long GadToScreenY(ZVItem const* item)
{
    return item ? Screen_Place_Of_Item(item).y : 0;
}
