// Items as such: finding them, their ids, what the class layer keeps for them, and where they are.
#include "interface/ItemParts.h"
#include "interface/Layout.h"
#include "interface/PaletteTree.h"

ZVItem* FindItem2ZV(ZVPalette* palette, unsigned short id)
{
    if (!palette) return nullptr;
    for (ZVGroup const& group : Groups_Of(*palette))
        if (Node* item = FindNodeID(&group.items, id)) return reinterpret_cast<ZVItem*>(item);
    return nullptr;
}

ZVItem* FindItemZV(unsigned short id)
{
    return ZVEnv ? FindItem2ZV(ZVEnv->currentPalette, id) : nullptr;
}

short GetItemRefID(ZVGroup const* group, short reference)
{
    if (reference >= 0) return reference;
    long back = reference;
    for (Node const* node = group->items.tailPred; node->prev; node = node->prev) {
        if (reinterpret_cast<ZVItem const*>(node)->flags & ZV_ITEMF_ATTACHED) continue;
        if (++back == 0) return static_cast<short>(node->id);
    }
    return 0;
}

// A palette knows its free id without a walk: `freeItemId` with all above it taken, and `takenItemId`, the
// highest one taken below that. Only when the one meets the other are the items looked through.

static constexpr uint16_t HighestId = 32767;

void Forget_Item_Ids(ZVPalette& palette)
{
    palette.freeItemId = HighestId;
    palette.takenItemId = HighestId;
}

/// The highest id in use that is not above `limit`; 0 when there is none.
static uint16_t Highest_Taken_Id(ZVPalette const& palette, uint16_t limit)
{
    uint32_t highest = 0;
    for (ZVGroup const& group : Groups_Of(palette))
        for (ZVItem const& item : Items_Of(group))
            if (item.node.id <= limit && item.node.id > highest) highest = item.node.id;
    return static_cast<uint16_t>(highest);
}

uint16_t Free_Item_Id(ZVPalette& palette)
{
    while (palette.freeItemId != 0 && palette.freeItemId == palette.takenItemId) {
        palette.takenItemId = Highest_Taken_Id(palette, palette.freeItemId);
        if (palette.takenItemId != palette.freeItemId) break;
        --palette.freeItemId;
        palette.takenItemId = palette.freeItemId;
    }
    return palette.freeItemId;
}

void Link_Item(ZVItem& item)
{
    AddTail(&item.group->items, &item.node);
    ZVPalette& palette = *item.group->palette;
    if (item.node.id == palette.freeItemId && palette.freeItemId != 0)
        --palette.freeItemId;
    else if (item.node.id < palette.freeItemId && item.node.id > palette.takenItemId)
        palette.takenItemId = static_cast<uint16_t>(item.node.id);
}

void* GetCustomStructZV(ZVItem const* item)
{
    return item ? reinterpret_cast<void*>(item->userData) : nullptr;
}

void* GetCustomStructZV(unsigned short id)
{
    return GetCustomStructZV(FindItemZV(id));
}

void GetItemScreenPosZV(ZVItem const* item, long* x, long* y)
{
    long left = 0, top = 0;
    if (item) {
        ZVWindow const* const window = GetParentSysWindow(item->group->palette, &left, &top);
        left += Item_Left(*item) + (window ? window->left : 0);
        top += Item_Top(*item) + (window ? window->top : 0);
    }
    if (x) *x = left;
    if (y) *y = top;
}

void ScheduleItemForFocusZV(ZVItem* item)
{
    if (ZVEnv) ZVEnv->scheduledFocusItem = item;
}

void UpdateGadgetZV(ZVItem* item)
{
    if (!item || !item->native || item->kind != ZV_ITEM_GADGET) return;
    bool const hasField = item->type == ZV_GAD_STRING || item->type == ZV_GAD_EDITOR;
    if (item->customFunc) {
        LivingPalette const palette(item->group->palette);
        Send_Custom_Event(*item, ZV_CUSTOM_DRAW_STATE);
        if (!palette.Is_There()) return;
        item->flags &= ~ZV_ITEMF_ENTRIES_CHANGED;
        if (!hasField) return;
    }
    Mac_Update_Item(item);
}

void UpdateGadgetZV(unsigned short id)
{
    UpdateGadgetZV(FindItemZV(id));
}
