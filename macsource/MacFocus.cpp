// Who has the keyboard. At most one text field or list has it. What loses it reports that by event 5, whose
// callbacks may close palettes, so nothing is taken for granted behind it.
#include "MacFocus.h"

#include "MacList.h"
#include "MacTextField.h"
#include "ZVLibInternal.h"
#include "interface/HitTest.h"
#include "interface/PaletteTree.h"

#include <cstddef>
#include <utility>

namespace {

/// An item that goes on only while its palette does.
class LivingItem {
public:
    explicit LivingItem(ZVItem& item) : item_(item), palette_(item.group->palette) {}

    /// The item, when it still takes the keyboard; else null.
    ZVItem* Get() const { return palette_.Is_There() && Takes_Focus(item_) ? &item_ : nullptr; }

    static bool Takes_Focus(ZVItem const& item)
    {
        return !(item.flags & ZV_ITEMF_DISABLED) && (Text_Field_Of(&item) || List_Of(item));
    }

private:
    ZVItem& item_;
    LivingPalette palette_;
};

}  // namespace

void Send_Gadget_Event(ZVItem& item, uint32_t reportBits)
{
    ZVEnv->modifiers |= reportBits;
    Do_Event(ZV_EVENT_GADGET, Tag_Word(&item));
}

// ---- taking and losing ------------------------------------------------------------------------------------

void Mac_Drop_Focus(unsigned long reportBits)
{
    for (ZVItem** focused : {&ZVEnv->focusedTextItem, &ZVEnv->focusedListItem}) {
        ZVItem* const item = std::exchange(*focused, nullptr);
        if (!item) continue;
        if (item->native) item->native->Set_Focus(false);
        Send_Gadget_Event(*item, static_cast<uint32_t>(reportBits));
    }
}

/// The keyboard goes to an item; whoever had it reports first.
/// @return  null when that has taken the item away
static ZVItem* Move_Focus(ZVItem& item)
{
    LivingItem const wanted(item);
    ZVItem*& focused = List_Of(item) ? ZVEnv->focusedListItem : ZVEnv->focusedTextItem;
    Mac_Drop_Focus(ZV_MOD_RELEASE);
    if (!wanted.Get()) return nullptr;
    // A callback may have moved the focus itself.
    if (ZVEnv->focusedTextItem || ZVEnv->focusedListItem) Mac_Drop_Focus(ZV_MOD_RELEASE);
    if (!wanted.Get()) return nullptr;
    focused = &item;
    item.native->Set_Focus(true);
    return &item;
}

/// As by a key: a text is selected as a whole, a list reports.
static void Give_Focus(ZVItem& item)
{
    if (!Move_Focus(item)) return;
    if (TextField* const field = Text_Field_Of(&item))
        field->Select_All();
    else
        Send_Gadget_Event(item, ZV_MOD_PRESS);
}

/// The item of ScheduleItemForFocusZV waits until it can take the keyboard. False when there is none that
/// can.
static bool Focus_Scheduled()
{
    ZVItem* const item = ZVEnv->scheduledFocusItem;
    if (!item || !LivingItem::Takes_Focus(*item)) return false;
    ZVEnv->scheduledFocusItem = nullptr;
    if (item != ZVEnv->focusedTextItem && item != ZVEnv->focusedListItem) Give_Focus(*item);
    return true;
}

void Mac_Idle_Text_Field()
{
    if (!Mouse_Holder()) Focus_Scheduled();
    if (TextField* const field = Text_Field_Of(ZVEnv->focusedTextItem)) field->Blink();
}

static ZVItem* First_Field(ZVPalette const& palette)
{
    for (ZVGroup& group : Groups_Of(palette)) {
        if (group.flags & ZV_GRPF_HIDDEN) continue;
        for (ZVItem& item : Items_Of(group))
            if (Text_Field_Of(&item) && LivingItem::Takes_Focus(item)) return &item;
    }
    return nullptr;
}

void Activate_First_Gadget(ZVPalette* palette)
{
    if (!palette) return;
    TagItem const* const tag = FindTagItem(ZV_PAL_EDIT_FOCUS, palette->tags);
    if (tag && tag->data == 0) return;
    // An item that was chosen for it goes before the first one.
    ZVItem const* const scheduled = ZVEnv->scheduledFocusItem;
    if (scheduled && scheduled->group->palette == palette && Focus_Scheduled()) return;
    if (ZVItem* const item = First_Field(*palette)) Give_Focus(*item);
}

// ---- the tab order ----------------------------------------------------------------------------------------

using StepFunction = Node* (*)(Node*, long);

/// The next item of the palette that takes the keyboard, in a ring; null when there is no other.
static ZVItem* Neighbour(ZVItem& start, StepFunction step)
{
    Node* node = &start.node;
    do {
        node = step(node, offsetof(ZVGroup, items));
        auto& item = *reinterpret_cast<ZVItem*>(node);
        if (&item != &start && LivingItem::Takes_Focus(item)) return &item;
    } while (node != &start.node);
    return nullptr;
}

static bool Tab_From(ZVItem* start, StepFunction step)
{
    ZVItem* const next = start ? Neighbour(*start, step) : nullptr;
    if (!next) return false;
    LivingItem const wanted(*next);
    Mac_Drop_Focus(ZV_MOD_RELEASE);
    // Whoever was told of it may want the keyboard elsewhere.
    if (Focus_Scheduled()) return true;
    if (ZVItem* const item = wanted.Get()) Give_Focus(*item);
    return true;
}

static ZVItem* Focused_Item()
{
    return ZVEnv->focusedListItem ? ZVEnv->focusedListItem : ZVEnv->focusedTextItem;
}

bool Tab_to_Next_Gad()
{
    return Tab_From(Focused_Item(), NextNodeListWrap);
}

bool Tab_to_Prev_Gad()
{
    return Tab_From(Focused_Item(), PrevNodeListWrap);
}

// ---- presses ----------------------------------------------------------------------------------------------

/// Looks through the items of a system window and of the windows in it whose palette and group hold the
/// point, for one that `isHit` accepts.
template <typename Test> static ZVItem* Find_Pressed(ZVWindow* window, long x, long y, Test isHit)
{
    for (ZVWindow& each : All_Windows()) {
        if (System_Window_Of(&each) != window) continue;
        ZVPlace const point = ZVPlace{x, y} - Place_In_System_Window(&each);
        for (ZVPalette* palette = Get_Next_Palette(&each, nullptr); palette;
             palette = Get_Next_Palette(&each, palette)) {
            ZVPlace const inside = point - Place_Of_Palette(palette);
            bool const isIn =
                inside.x >= 0 && inside.x < palette->width && inside.y >= 0 && inside.y < palette->height;
            if (!isIn || !Is_On_Screen(*palette)) continue;
            for (ZVGroup& group : Groups_Of(*palette)) {
                if (group.flags & ZV_GRPF_HIDDEN || !Holds(&group, point)) continue;
                for (ZVItem& item : Items_Of(group))
                    if (LivingItem::Takes_Focus(item) && isHit(item)) return &item;
            }
        }
    }
    return nullptr;
}

static bool Holds_Point(HostRect const& rect, long x, long y)
{
    return rect.Contains(static_cast<int>(x), static_cast<int>(y));
}

long Focused_Text_Press(ZVWindow* window, long x, long y)
{
    ZVItem* const item = ZVEnv->focusedTextItem;
    TextField* const field = Text_Field_Of(item);
    if (!field || !LivingItem::Takes_Focus(*item)) return 0;
    if (GetParentSysWindow(item->group->palette, nullptr, nullptr) != window) return 0;
    if (!Holds_Point(field->Bounds(), x, y)) return 0;
    field->Press(static_cast<int>(x), static_cast<int>(y), true);
    return 1;
}

long String_Gad_Check(ZVWindow* window, long x, long y)
{
    ZVItem* const item = Find_Pressed(window, x, y, [=](ZVItem const& candidate) {
        TextField const* const field = Text_Field_Of(&candidate);
        return field && Holds_Point(field->Bounds(), x, y);
    });
    if (!item) return 0;
    if (Move_Focus(*item)) Text_Field_Of(item)->Press(static_cast<int>(x), static_cast<int>(y), false);
    return 1;
}

long List_Gad_Check(ZVWindow* window, long x, long y, unsigned long)
{
    ZVItem* const item = Find_Pressed(window, x, y, [=](ZVItem const& candidate) {
        ListBox const* const list = List_Of(candidate);
        return list && Holds_Point(list->Bounds(), x, y);
    });
    if (!item) return 0;
    LivingItem const pressed(*item);
    if (item != ZVEnv->focusedListItem && !Move_Focus(*item)) return 1;
    auto const localX = static_cast<int>(x), localY = static_cast<int>(y);
    if (List_Of(*item)->Is_In_Rows(localX, localY)) Send_Gadget_Event(*item, ZV_MOD_PRESS);
    if (pressed.Get()) List_Of(*item)->Press(localX, localY);
    return 1;
}
