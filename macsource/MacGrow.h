// The grow box in the lower right corner of a window, by which it is resized beside its edges.
#pragma once

struct ZVWindow;

/// A press: from here to the release the corner follows the mouse. The point is on the screen. False beside
/// the box.
bool Press_Grow_Box(ZVWindow& window, long x, long y);
