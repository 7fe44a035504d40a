// Groups as such: declaring them, and showing and enabling them.
#include "interface/PaletteTree.h"

static constexpr int32_t Free = -1;  ///< of a size that nothing decides

ZVGroup* InitGroupZV()
{
    ZVPalette* const palette = ZVEnv ? ZVEnv->currentPalette : nullptr;
    if (!palette || GetErrorZV() != ZV_ERR_NONE) return nullptr;
    auto* const group = New_Record<ZVGroup>();
    if (!group) return nullptr;
    group->forcedWidth = group->forcedHeight = Free;
    group->naturalWidth = group->naturalHeight = Free;
    group->palette = palette;
    NewList(&group->items);
    AddTail(&palette->groups, &group->node);
    ZVEnv->currentGroup = group;
    return group;
}

/// The group so many before the last one of the list, which is the one that asks; null beyond the first.
static ZVGroup* Count_Back(ZVPalette const& palette, long reference)
{
    Node* node = palette.groups.tailPred;
    for (; reference < 0 && node->prev; ++reference)
        node = node->prev;
    return node->prev ? reinterpret_cast<ZVGroup*>(node) : nullptr;
}

short GetGroupRefID(ZVPalette const* palette, short reference)
{
    if (reference >= 0) return reference;
    ZVGroup const* const group = Count_Back(*palette, reference);
    return group ? static_cast<short>(group->node.id) : 0;
}

void EndGroupZV(short id, unsigned short position, short reference, char const* title, TagItem* tags)
{
    ZVGroup* const group = ZVEnv ? ZVEnv->currentGroup : nullptr;
    if (!group) return;
    ZVEnv->currentGroup = nullptr;
    group->node.id = static_cast<uint16_t>(id);
    group->position = position;
    group->reference = static_cast<uint16_t>(GetGroupRefID(group->palette, reference));
    if (reference < 0) group->beside = Count_Back(*group->palette, reference);
    group->tags = Clone_Tags(tags);
    if (Replace_Text(group->node.name, title)) group->title = group->node.name;
    while (TagItem const* tag = NextTagItem(&tags)) {
        switch (tag->tag) {
        case ZV_GRP_CALLBACK: group->callback = Tag_Pointer<void (*)(ZVEvent*)>(*tag); break;
        case ZV_GRP_CURSOR: group->cursor = static_cast<uint16_t>(tag->data); break;
        case ZV_GRP_IGNORE_IF_HIDDEN: group->flags |= ZV_GRPF_IGNORE_IF_HIDDEN; break;
        default: break;
        }
    }
}

void EndGroupZV(short id, unsigned short position, short reference, unsigned long titleId, TagItem* tags)
{
    EndGroupZV(id, position, reference, Text_Of_Id(titleId), tags);
}

/// A group of the current palette, or null.
static ZVGroup* Find_Group(unsigned short id)
{
    ZVPalette const* const palette = ZVEnv ? ZVEnv->currentPalette : nullptr;
    return palette ? Find_Record<ZVGroup>(palette->groups, id) : nullptr;
}

void GroupVisibleZV(ZVGroup* group, long visible)
{
    if (!group || (visible != 0) == !(group->flags & ZV_GRPF_HIDDEN)) return;
    if (!Is_In_Front(*group->palette)) return;
    bool const isOnScreen = Is_On_Screen(*group->palette);
    LivingPalette const palette(group->palette);
    if (isOnScreen && !visible) Destroy_SysGroup(group);
    if (!palette.Is_There()) return;
    group->flags ^= ZV_GRPF_HIDDEN;
    if (isOnScreen && visible) Make_SysGroup(group);
}

void GroupVisibleZV(unsigned short id, long visible)
{
    GroupVisibleZV(Find_Group(id), visible);
}

void GroupEnabledZV(ZVGroup* group, long enabled)
{
    if (!group) return;
    LivingPalette const palette(group->palette);
    for (ZVItem& item : Items_Of(*group)) {
        ItemEnabledZV(&item, enabled);
        if (!palette.Is_There()) return;
    }
}

void GroupEnabledZV(unsigned short id, long enabled)
{
    GroupEnabledZV(Find_Group(id), enabled);
}
