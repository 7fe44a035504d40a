// What the desktop layer keeps for the things of the interface that are on screen, and who follows the mouse.
#pragma once

#include "ZVItem.h"

/// Of an item on screen. Text fields and lists have more of it; all other items share `drawnItem`.
struct ZVNativeItem {
    virtual ~ZVNativeItem() = default;
};

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
};

/// From now on, up to the release of the button, the mouse is this one's, and no event tells of it.
void Hold_Mouse(MouseTracker* tracker);
MouseTracker* Mouse_Holder();  ///< Null when nobody holds it.
