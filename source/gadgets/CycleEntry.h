// The entries of a cycle as the gadget and its pop-up list show them: texts, icons and separators.
#pragma once

#include "PressGadget.h"

/// Entries behind these cannot be marked as disabled.
inline constexpr long markableEntries = 256;

/// The record of a cycle, in its item's `object`.
struct CycleState {
    uint32_t Popup;                               ///< id of the palette of its open list; 0 when none is open
    ZVItem* ListItem;                             ///< the list in that; null when none is open
    uint32_t DisabledMask[markableEntries / 32];  ///< a bit for each entry by its index
    int32_t WheelRest;                            ///< what a fine wheel has turned less than an entry
};

/// The record of a cycle; null for every other gadget, and for one that had no memory for it.
CycleState* State_Of_Cycle(ZVItem const& item);

/// Index of the chosen entry; 0 when the state is the id of none.
long Chosen_Index(ZVItem const& cycle);

bool Is_Separator(Node const& entry);
bool Is_Marked_Disabled(ZVItem const& cycle, long index);

/// The entry that lies so many steps from an index, or as far as there are entries; separators and disabled
/// ones are passed over. The index itself when there is none that way.
long Entry_From(ZVItem const& cycle, long index, long steps);

/// Room that the content of an entry takes across; 0 for a separator.
long Entry_Width(Node const& entry);

/// Where an entry is drawn, and how.
struct EntryLook {
    ZVItem const& cycle;
    long index;
    unsigned long background;
    unsigned long text;  ///< pen of a text that is not marked
    bool isDisabled;     ///< the whole gadget is
};

/// The icon of an entry on its background, to be drawn by DrawBitmapZV; null for other entries, for an icon
/// that there is not, and without memory.
NativeBitmap Entry_Picture(Node const& entry, EntryLook const& look);

/// Whether an entry shows an icon, or nothing where there is none of its number.
bool Has_Icon(Node const& entry);

/// Chooses pens and font for the text of an entry.
void Set_Entry_Pens(ZVDrawInfo* draw, EntryLook const& look);

/// Whole entries that a turn of the wheel goes on, down being positive; `rest` keeps what is left over.
long Wheel_Steps(int32_t delta, int32_t& rest);
