// Where things lie on the screen, and which of them hold the mouse. Groups and items hold a point on all four
// of their edges, the right and lower one included. Within a palette's window the places count from the
// window's client area.
#pragma once

#include "interface/Records.h"

/// A point, or the offset to one.
struct ZVPlace {
    long x = 0;
    long y = 0;

    friend ZVPlace operator+(ZVPlace a, ZVPlace b) { return {a.x + b.x, a.y + b.y}; }
    friend ZVPlace operator-(ZVPlace a, ZVPlace b) { return {a.x - b.x, a.y - b.y}; }
};

/// The system window that a window is or lies in.
ZVWindow* System_Window_Of(ZVWindow* window);

/// The origin of a window's client area in that of its system window, and on the screen; 0, 0 for null.
ZVPlace Place_In_System_Window(ZVWindow const* window);
ZVPlace Place_On_Screen(ZVWindow const* window);

/// The upper left corners in the window of the palette.
ZVPlace Place_Of_Palette(ZVPalette const* palette);
ZVPlace Place_Of_Group(ZVGroup const* group);
ZVPlace Place_Of_Item(ZVItem const* item);

/// An item's upper left corner on the screen.
ZVPlace Screen_Place_Of_Item(ZVItem const* item);

/// The mouse on the screen, as the palette and the item under it know it; of use with a mousePalette only.
ZVPlace Mouse_On_Screen();

bool Holds(ZVGroup const* group, ZVPlace point);

/// The first visible group of the palette that holds the point, or null.
ZVGroup* Group_At(ZVPalette const* palette, ZVPlace point);

/// The first item of the group that holds the point and has none of the flags, or null.
ZVItem* Item_At(ZVGroup const* group, ZVPlace point, uint32_t unwantedFlags);
