// Proportional gadgets: what track and arrows share. One implementation serves both directions: along is the
// direction in which the thumb moves, across the other one.
#pragma once

#include "ZVEvent.h"
#include "ZVItem.h"

/// The direction of a proportional gadget.
struct PropAxis {
    bool isVertical;

    long Along(long x, long y) const { return isVertical ? y : x; }
    long Length(ZVItem const& item) const { return isVertical ? item.height : item.width; }
    long Breadth(ZVItem const& item) const { return isVertical ? item.width : item.height; }
};
inline constexpr PropAxis across{false}, down{true};

/// The last position whose view lies inside the limits; the lower limit when the view is larger than they
/// are.
inline int32_t Last_Position(ZVItem const& prop)
{
    long const last = long{prop.maxInt} - prop.Page;
    return last > prop.minInt ? static_cast<int32_t>(last) : prop.minInt;
}

/// Reports a use of the gadget in the track's name.
inline void Report_Prop(ZVCustomEvent* event, ZVItem* prop, uint32_t cause)
{
    event->replyType = ZV_EVENT_GADGET;
    event->replyData = Tag_Word(prop);
    event->replyFlags = cause;
}
