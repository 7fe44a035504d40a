// What the files about items share: the events they send, their texts and entries, and what a change of an
// item means on screen.
#pragma once

#include "interface/Records.h"

#include <cmath>
#include <memory>

/// Sends a custom event that has no place to an item. The function may free the item.
/// @return  replyData as the function left it
inline unsigned long Send_Custom_Event(ZVItem& item, ZVCustomEventType type, unsigned long replyData = 0)
{
    ZVCustomEvent event{};
    event.type = type;
    event.item = &item;
    event.replyData = replyData;
    Do_CustomEvent(&event);
    return event.replyData;
}

/// Whether all that `work` calls finds the memory it needs, as the error tells. One that was pending stays
/// when nothing goes wrong.
template <typename Work> bool Finds_Memory(Work work)
{
    unsigned long const pending = GetErrorZV();
    SetError(ZV_ERR_NONE);
    work();
    if (GetErrorZV() == ZV_ERR_MEMORY) return false;
    if (GetErrorZV() == ZV_ERR_NONE) SetError(pending);
    return true;
}

/// An item that is not linked yet, freed with all it has unless it is released.
void Free_New_Item(ZVItem* item);
using NewItem = std::unique_ptr<ZVItem, Released_By<Free_New_Item>>;

/// A gadget of the open group that is complete but for its label beside it, its size and its place on the
/// list; null with error 4 or 1.
NewItem Make_Gadget(unsigned short id, unsigned short position, short reference, ZVGadgetType type,
                    ZVGadgetSize size, char const* label, TagItem* tags);

/// The function that a type of gadget brings along, or null.
using GadgetFunction = long (*)(ZVCustomEvent*);
GadgetFunction Function_Of_Type(ZVGadgetType type);
GadgetFunction Function_Of_Tab_Bar();

/// Types whose label stands beside them, as a text of its own.
inline bool Has_Attached_Label(ZVGadgetType type)
{
    return type == ZV_GAD_CYCLE || type == ZV_GAD_STRING || type == ZV_GAD_INTEGER || type == ZV_GAD_FLOAT ||
           type == ZV_GAD_MENU || type == ZV_GAD_EDITOR;
}

/// Types that are made of a track and two arrows.
inline bool Is_Prop(ZVGadgetType type)
{
    return type == ZV_GAD_HPROP || type == ZV_GAD_VPROP;
}

/// Types that keep a text of their own, with a capacity in place of the upper limit.
inline bool Has_Edit_Text(ZVGadgetType type)
{
    return type == ZV_GAD_STRING || type == ZV_GAD_FLOAT || type == ZV_GAD_EDITOR;
}

/// A real value as a whole number, truncated and held within 32 bits; 0 for what is no number.
inline int32_t To_Whole(double value)
{
    if (std::isnan(value)) return 0;
    if (value <= -2147483648.0) return INT32_MIN;
    if (value >= 2147483647.0) return INT32_MAX;
    return static_cast<int32_t>(value);
}

/// Copies whole characters of a text into an item's `editText` as far as they fit.
/// @return  that the text has changed
bool Store_Edit_Text(ZVItem& item, char const* text);

/// The tags that add calls and ModifyItemZV read alike. False for other tags.
bool Take_Item_Tag(ZVItem& item, TagItem const& tag);      ///< of all kinds of items
bool Take_Gadget_Limit(ZVItem& item, TagItem const& tag);  ///< of gadgets: limits and stored numbers

/// Replaces the entries by copies of a list or by those of a text; false with error 1 and the old ones kept
/// when memory runs out. With `barEnds` a "|" ends the text, otherwise it separates like a comma.
bool Copy_Entries(ZVItem& item, List const* entries);
bool Read_Entries(ZVItem& item, char const* text, bool barEnds);
bool Append_Entry(List& entries, char const* text, std::size_t length, uint32_t id);

/// The id that a reference stands for, counted back from the last item of the group below 0.
inline uint16_t Reference_Id(ZVGroup const& group, short reference)
{
    return static_cast<uint16_t>(GetItemRefID(&group, reference));
}

/// Puts an item on its group's list, and its id among those that are taken.
void Link_Item(ZVItem& item);
uint16_t Free_Item_Id(ZVPalette& palette);  ///< The highest free one up to 32767; 0 when there is none.
void Forget_Item_Ids(ZVPalette& palette);   ///< After an id has changed.

void Clear_Dependencies(ZVItem& item);

/// Whether an item's group and palette show it: not whether the item itself is hidden.
bool Is_On_Screen(ZVGroup const& group);
