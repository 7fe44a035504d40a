// What the layout of items and of groups have in common.
#pragma once

#include "ZVLibInternal.h"

/// The place of an item that has none yet on that axis.
inline constexpr int32_t Unplaced = INT32_MIN;

/// Hidden, and taking no room while hidden.
inline bool Is_Out(ZVItem const& item)
{
    return (item.flags & ZV_ITEMF_OUT) == ZV_ITEMF_OUT;
}
inline bool Is_Out(ZVGroup const& group)
{
    constexpr uint32_t out = ZV_GRPF_HIDDEN | ZV_GRPF_IGNORE_IF_HIDDEN;
    return (group.flags & out) == out;
}

/// The halves of a position code.
inline unsigned Horizontal_Half(unsigned code)
{
    return code & 0xFF;
}
inline unsigned Vertical_Half(unsigned code)
{
    return code >> 8 & 0xFF;
}

/// Whether a half of a code places in the parent alone.
inline bool Is_Of_Parent(unsigned half)
{
    return half == ZV_POS_CENTER || half == ZV_POS_PARENT_START || half == ZV_POS_PARENT_END;
}

/// Where a size stands in a length by such a half.
inline long Place_In_Parent(unsigned half, long length, long size)
{
    if (half == ZV_POS_PARENT_START) return 0;
    return half == ZV_POS_CENTER ? (length - size) / 2 : length - size;
}

/// Where an item's corner lies in its window.
inline long Item_Left(ZVItem const& item)
{
    return static_cast<long>(item.x) + item.group->innerX + item.group->palette->originX;
}
inline long Item_Top(ZVItem const& item)
{
    return static_cast<long>(item.y) + item.group->innerY + item.group->palette->originY;
}
inline ZVRectT<int32_t> Item_Rect(ZVItem const& item)
{
    return {static_cast<int32_t>(Item_Left(item)), static_cast<int32_t>(Item_Top(item)), item.width,
            item.height};
}

/// The standard size of a gadget, without tags, image and custom function.
struct GadgetMeasure {
    long width, height;
};
GadgetMeasure Standard_Gadget_Size(ZVItem const& item);

/// As Set_Item_Size. False with error 1 when memory runs out, the size being what it was.
bool Take_Natural_Size(ZVItem& item);

/// A tag of a gadget that stands before those of its label, or null.
TagItem const* Find_Item_Tag(ZVItem const& item, unsigned long tag);
