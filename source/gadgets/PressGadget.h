// What the plain gadgets have in common: when they take a press, how they report, and how a bevel shows the
// state.
#pragma once

#include "foundation/HeapBlock.h"

#include "ZVDraw.h"
#include "ZVEvent.h"
#include "ZVItem.h"

using DrawContext = std::unique_ptr<ZVDrawInfo, Released_By<DrawEndZV>>;
struct FreedBitmap {
    template <typename Record> void operator()(Record* bitmap) const { FreeBitmapZV(bitmap); }
};
using NativeBitmap = std::unique_ptr<ZVNativeBitmap, FreedBitmap>;
using Bitmap = std::unique_ptr<ZVBitmap, FreedBitmap>;

inline bool Is_Inside(ZVItem const& item)
{
    return item.flags & ZV_ITEMF_MOUSE_INSIDE;
}

inline bool Is_Disabled(ZVItem const& item)
{
    return item.flags & ZV_ITEMF_DISABLED;
}

/// A member of an exclusion set that is on: only another member turns it off.
inline bool Holds_Its_State(ZVItem const& item)
{
    return item.flags & ZV_ITEMF_EXCLUSIVE && item.state;
}

inline void Set_State(ZVItem& item, bool isOn)
{
    item.state = isOn;
    item.realValue = isOn;
}

/// Has the application told that the gadget was used.
/// @param cause  ZV_MOD_PRESS or ZV_MOD_RELEASE
inline void Report_Use(ZVCustomEvent* event, uint32_t cause)
{
    event->replyType = ZV_EVENT_GADGET;
    event->replyData = Tag_Word(event->item);
    event->replyFlags = cause;
}

/// A colour as the gadget shows it.
inline unsigned long Shown_Color(unsigned long colour, bool isDisabled)
{
    return isDisabled ? DisableColorZV(colour) : colour;
}

/// The top of a text whose line stands in the middle of a height, where a text field has its text too.
inline long Text_Top(ZVDrawInfo const* draw, long height)
{
    return (height - GetAveCharHeightZV(draw) + 1) / 2;
}

/// A copy of an icon in one colour, its alpha kept: the icon itself serves other gadgets too. Null without
/// memory.
Bitmap Colored_Icon(ZVBitmap const& icon, unsigned long colour);

/// The face of a gadget, which may have a colour of its own while it is on.
unsigned long Face_Color(ZVItem const& item, bool isOn);

/// A bevel border of `w` by `h` pixels.
void Draw_Bevel(ZVDrawInfo* draw, long x, long y, long w, long h, bool isSunken, bool isDisabled);
