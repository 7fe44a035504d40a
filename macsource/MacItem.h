// Items on screen: where they are, and how they are drawn.
#pragma once

#include "MacNativeItem.h"
#include "MacPort.h"

/// What an item is drawn through; null while its palette does not show.
ZVPort* Port_Of(ZVItem const& item);

/// An item's rectangle in its system window, within 16 bits.
HostRect Area_Of(ZVItem const& item);

// Draw a text, an image or a line, or erase it where it was drawn last when it is hidden.
void Make_SysText(ZVItem& item);
void Make_SysImage(ZVItem& item);
void Make_SysLine(ZVItem& item);

/// Makes up for what a field or list on screen found no memory for.
void Complete_SysItem(ZVItem& item);

/// Draws an item that is on screen, enabled or disabled as it is. The function of a gadget may close the
/// palette.
void Draw_SysItem(ZVItem& item);
