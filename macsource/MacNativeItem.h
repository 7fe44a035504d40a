// What the desktop layer keeps for the things of the interface that are on screen, and who follows the mouse.
#pragma once

#include "ZVItem.h"
#include "host/Region.h"

/// Of an item on screen: a text field, a list, or the bare fact for everything else. The item outlives it.
struct ZVNativeItem {
    virtual ~ZVNativeItem() = default;
    virtual void Draw() {}        ///< All of it with its frame, enabled or disabled as the item is.
    virtual void Show_State() {}  ///< Takes the item's state over and shows it.

    /// It gets or loses the look of the one that keys go to.
    virtual void Set_Focus(bool) {}
};

/// Draws the items of a visible group that touch a region of the client area again, and its frame.
void Refresh_Items(ZVGroup& group, HostRegion const& region);

/// They draw nothing yet. They throw when memory runs out.
ZVNativeItem* Make_Text_Field(ZVItem& item);
ZVNativeItem* Make_List(ZVItem& item);

/// Follows the mouse from a press to its release. Points are on the screen.
class MouseTracker {
public:
    MouseTracker() = default;
    MouseTracker(MouseTracker const&) = delete;
    MouseTracker& operator=(MouseTracker const&) = delete;
    virtual ~MouseTracker();  ///< Lets go of the mouse.

    /// The mouse moved there. Called at each tick of the loop as well, while it rests, so that what the mouse
    /// is held beside scrolls on.
    virtual void Track(long x, long y) = 0;

    /// The button went up there; the mouse is free already.
    virtual void Finish(long x, long y) = 0;

    /// Escape was pressed. True when all is as it was before the press; the mouse is free then.
    virtual bool Break_Off() { return false; }
};

/// From now on, up to the release of the button, the mouse is this one's, and no event tells of it.
void Hold_Mouse(MouseTracker* tracker);
MouseTracker* Mouse_Holder();  ///< Null when nobody holds it.
