// Who follows the mouse while a native object is pressed.
#include "MacNativeItem.h"

static MouseTracker* holder;

MouseTracker::~MouseTracker()
{
    if (holder == this) holder = nullptr;
}

void Hold_Mouse(MouseTracker* tracker)
{
    holder = tracker;
}

MouseTracker* Mouse_Holder()
{
    return holder;
}
