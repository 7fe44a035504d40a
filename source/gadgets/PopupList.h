// The list that a cycle opens under the mouse: a palette of its own, of which there is one at a time.
#pragma once

#include "ZVItem.h"
#include "ZVPalette.h"

/// The record of the list, in its item's `object`. Rows are the entries of the owner.
struct ListState {
    int32_t VisibleRows;  ///< at present: an arrow takes the room of a row
    int32_t TotalRows;
    int32_t RowHeight;
    int32_t CurrentRow;           ///< that is highlighted; -1 for none
    int32_t TopRow;               ///< the first one in view
    int32_t LowestY;              ///< the largest y that the mouse has reached in this press
    int32_t ListTop, ListBottom;  ///< of the rows, between the arrows
    ZVItem* Owner;                ///< the cycle; null once that is gone
};

/// Opens the list of a cycle and tells its record so. Nothing happens without memory or entries.
void Open_Pop_Up(ZVItem& cycle);

/// Closes the list of a cycle, if it is open. The cycle may be about to be freed.
void Close_Pop_Up(ZVItem const& cycle);

/// The cycle whose list the palette holds; null for every other palette.
ZVItem* Owner_Of_Pop_Up(ZVPalette const* palette);

/// Highlights a row and scrolls it into view.
void Choose_List_Row(ZVItem& list, long row);
