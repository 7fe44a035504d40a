// Showing, hiding, enabling and disabling items, with the labels that hang on them.
#include "interface/ItemParts.h"
#include "interface/PaletteTree.h"

bool Is_On_Screen(ZVGroup const& group)
{
    return !(group.flags & ZV_GRPF_HIDDEN) && Is_On_Screen(*group.palette);
}

/// Calls `apply` for the labels on all sides of an item. A label passes nothing on.
template <typename Apply> static void For_Labels(ZVItem const& item, Apply apply)
{
    if (item.flags & ZV_ITEMF_ATTACHED) return;
    for (auto side : {&ZVItem::beforeLink, &ZVItem::afterLink, &ZVItem::aboveLink, &ZVItem::belowLink})
        for (ZVItem* label = item.*side; label; label = label->*side)
            apply(*label);
}

static void Show_Item(ZVItem& item, bool visible)
{
    if (visible == !(item.flags & ZV_ITEMF_HIDDEN)) return;
    bool const isOnScreen = Is_On_Screen(*item.group);
    if (isOnScreen && !visible) Destroy_SysItem(&item);
    item.flags ^= ZV_ITEMF_HIDDEN;
    if (isOnScreen && visible) Make_SysItem(&item);
}

void ItemVisibleZV(ZVItem* item, long visible)
{
    if (!item || !Is_In_Front(*item->group->palette)) return;
    LivingPalette const palette(item->group->palette);
    Show_Item(*item, visible);
    if (!palette.Is_There()) return;
    For_Labels(*item, [&](ZVItem& label) { Show_Item(label, visible); });
}

void ItemVisibleZV(unsigned short id, long visible)
{
    ItemVisibleZV(FindItemZV(id), visible);
}

static void Enable_Item(ZVItem& item, bool enabled)
{
    if (enabled == !(item.flags & ZV_ITEMF_DISABLED)) return;
    item.flags ^= ZV_ITEMF_DISABLED;
    if ((item.flags & ZV_ITEMF_HIDDEN) || !Is_On_Screen(*item.group)) return;
    if (enabled)
        Enable_SysItem(&item);
    else
        Disable_SysItem(&item);
}

void ItemEnabledZV(ZVItem* item, long enabled)
{
    if (!item) return;
    LivingPalette const palette(item->group->palette);
    Enable_Item(*item, enabled);
    if (!palette.Is_There()) return;
    For_Labels(*item, [&](ZVItem& label) { Enable_Item(label, enabled); });
}

void ItemEnabledZV(unsigned short id, long enabled)
{
    ItemEnabledZV(FindItemZV(id), enabled);
}

void MarkItemZV(ZVItem* item, long marked)
{
    if (!item) return;
    item->flags &= ~ZV_ITEMF_MARKED;
    if (marked) item->flags |= ZV_ITEMF_MARKED;
}

void MarkItemZV(unsigned short id, long marked)
{
    MarkItemZV(FindItemZV(id), marked);
}

void ItemVisibleIfMarkedZV(unsigned short id)
{
    if (ZVItem* item = FindItemZV(id)) ItemVisibleZV(item, (item->flags & ZV_ITEMF_MARKED) != 0);
}
