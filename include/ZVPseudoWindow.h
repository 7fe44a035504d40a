// Pseudo-windows: rectangles in the root window that take palettes as windows do, with tabs and an active
// palette of their own, while the desktop sees the root window alone. Palettes enter by the tags
// ZV_PAL_PSEUDO_WINDOW and ZV_PAL_PSEUDO_WINDOW_ID, or by their preferences. Coordinates count from the root
// window's corner. Unknown ids are passed over. Main thread only.
#pragma once

#include "ZVLayout.h"
#include "ZVWindow.h"

/// Adds a pseudo-window to the root window, placed by a position code.
/// @param id         above 0
/// @param reference  id of the pseudo-window beside which it stands; -1 is the one added before, and 0 the
///                   whole root window
/// @param tags       gap tags (ZV_GAP_NORMAL, WIDE, EXTRA, FIXED, NONE), of which the last one counts; the
///                   style's paletteGap without. One pixel is added. A clone is kept.
/// @return  null with error 1 when memory runs out; null with error 12 and an error text without a root
///          window, and for an id of 0
ZV_API ZVWindow* AddPseudoWindowZV(unsigned short id, unsigned short position, short reference, long width,
                                   long height, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest>
ZVWindow* AddPseudoWindowZV(unsigned short id, unsigned short position, short reference, long width,
                            long height, Key first, Rest... rest)
{
    return AddPseudoWindowZV(id, position, reference, width, height, Tag_Array(first, rest...).data());
}

/// Closes a pseudo-window with all its palettes. It stays, empty in the end, when one of these is being
/// closed already.
ZV_API void DeletePseudoWindowZV(ZVWindow* window);
ZV_API void DeletePseudoWindowZV(unsigned short id);

/// Place and size. Setting them draws nothing: lay out the palettes and call RefreshUIZV. Outputs may be
/// null, and are 0 for an unknown id.
ZV_API void SetPseudoWindowPosZV(unsigned short id, long x, long y);
ZV_API void GetPseudoWindowPosZV(unsigned short id, long* x, long* y);
ZV_API void SetPseudoWindowSizeZV(unsigned short id, long width, long height);
ZV_API void GetPseudoWindowSizeZV(unsigned short id, long* width, long* height);

/// Moves a row of pseudo-windows, told by its first and its last one, to the middle of the root window.
ZV_API void Center_PseudoWindows(unsigned short count, unsigned long const* ids);

/// Gives the windows between the first and the last of a row the same distance. `count` is above 2.
ZV_API void Spread_PseudoWindows(unsigned short count, unsigned long const* ids);

/// The same with the ids as arguments; `count` of them count.
template <ZVTagKey... Ids> void CenterHPseudoWindowsZV(unsigned short count, Ids... ids)
{
    unsigned long const list[] = {Tag_Word(ids)..., 0};
    Center_PseudoWindows(count < sizeof...(ids) ? count : sizeof...(ids), list);
}
template <ZVTagKey... Ids> void SpreadHPseudoWindowsZV(unsigned short count, Ids... ids)
{
    unsigned long const list[] = {Tag_Word(ids)..., 0};
    Spread_PseudoWindows(count < sizeof...(ids) ? count : sizeof...(ids), list);
}
