// Changing a gadget that has been declared.
#include "interface/ItemParts.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <strings.h>

namespace {
/// What the tags of one call have changed.
struct Changes {
    bool isVisible = false;
    bool isEntryCount = false;
    bool isCursor = false;
};
}  // namespace

/// The text that stands beside a gadget as its label, or null.
static ZVItem* Attached_Label(ZVItem const& item)
{
    for (ZVItem* label : {item.beforeLink, item.afterLink, item.aboveLink, item.belowLink})
        if (label && label->kind == ZV_ITEM_LABEL) return label;
    return nullptr;
}

/// Gives a gadget a new text, or its label where that stands beside it.
static void Change_Text(ZVItem& item, char const* text, Changes& changes)
{
    ZVItem* const label = Has_Attached_Label(item.declaredType) ? Attached_Label(item) : nullptr;
    ZVItem& holder = label ? *label : item;
    char const* const old = holder.text ? holder.text : "";
    bool const differs = strcasecmp(old, text ? text : "") != 0;
    if (!Replace_Text(holder.node.name, text)) return;
    holder.text = holder.node.name;
    if (!differs) return;
    if (!label) {
        changes.isVisible = true;
        return;
    }
    bool const isShown = label->native;
    if (isShown) Destroy_SysItem(label);
    Set_Item_Size(label);
    if (isShown) Make_SysItem(label);
}

static void Remove_Entry(ZVItem& item, unsigned long id)
{
    if (Node* entry = FindNodeID(&item.entries, id)) FreeNode(entry);
}

static void Add_Entry(ZVItem& item, char const* text)
{
    if (!text) return;
    uint32_t highest = 0;
    for (Node const& entry : Records<Node>(item.entries))
        highest = std::max(highest, entry.id);
    Append_Entry(item.entries, text, std::strlen(text), highest + 1);
}

/// Takes a tag about entries. False for other tags.
static bool Change_Entries(ZVItem& item, TagItem const& tag, Changes& changes)
{
    switch (tag.tag) {
    case ZV_ITEM_ENTRIES: Copy_Entries(item, Tag_Pointer<List const*>(tag)); break;
    case ZV_ITEM_ENTRIES_CSV: Read_Entries(item, Tag_Pointer<char const*>(tag), false); break;
    case ZV_ITEM_ENTRIES_CSV_ID: Read_Entries(item, Text_Of_Id(tag.data), false); break;
    case ZV_ITEM_REMOVE_ENTRY: Remove_Entry(item, tag.data); break;
    case ZV_ITEM_ADD_ENTRY: Add_Entry(item, Tag_Pointer<char const*>(tag)); break;
    case ZV_ITEM_ADD_ENTRY_ID: Add_Entry(item, Text_Of_Id(tag.data)); break;
    default: return false;
    }
    if (item.declaredType == ZV_GAD_LIST && tag.tag >= ZV_ITEM_REMOVE_ENTRY) {
        uint32_t id = 1;
        for (Node& entry : Records<Node>(item.entries))
            entry.id = id++;
    }
    item.flags |= ZV_ITEMF_ENTRIES_CHANGED;
    changes.isVisible = true;
    return true;
}

/// Takes a tag that marks entries as enabled or disabled; the entries stay as they are. False for other tags.
static bool Mark_Entries(ZVItem& item, TagItem const& tag, Changes& changes)
{
    switch (tag.tag) {
    case ZV_ITEM_ENABLE_ENTRY:
    case ZV_ITEM_DISABLE_ENTRY: EnableCycleGadEntry(&item, tag.data, tag.tag == ZV_ITEM_ENABLE_ENTRY); break;
    case ZV_ITEM_ENABLE_ALL_ENTRIES:
    case ZV_ITEM_DISABLE_ALL_ENTRIES:
        EnableCycleGadEntry(&item, 0, tag.tag == ZV_ITEM_ENABLE_ALL_ENTRIES);
        break;
    default: return false;
    }
    changes.isVisible = true;
    return true;
}

static void Change_Item(ZVItem& item, TagItem const& tag, Changes& changes)
{
    if (Change_Entries(item, tag, changes) || Mark_Entries(item, tag, changes)) return;
    if (Take_Item_Tag(item, tag)) {
        changes.isCursor |= tag.tag == ZV_ITEM_CURSOR;
        if (tag.tag == ZV_ITEM_ID) Forget_Item_Ids(*item.group->palette);
    } else if (Take_Gadget_Limit(item, tag)) {
        changes.isVisible |=
            tag.tag != ZV_ITEM_LINKED && tag.tag != ZV_ITEM_ORDER && tag.tag != ZV_ITEM_PROP_STEP;
    } else if (tag.tag == ZV_ITEM_TEXT) {
        Change_Text(item, Tag_Pointer<char const*>(tag), changes);
    } else if (tag.tag == ZV_ITEM_TEXT_ID) {
        Change_Text(item, Text_Of_Id(tag.data), changes);
    }
}

void ModifyItemZV(ZVItem* item, TagItem* tags)
{
    if (!item || item->kind != ZV_ITEM_GADGET) return;
    Changes changes;
    while (TagItem const* tag = NextTagItem(&tags))
        Change_Item(*item, *tag, changes);
    LivingPalette const palette(item->group->palette);
    if (changes.isCursor) Update_Cursor();
    if (changes.isVisible && palette.Is_There()) UpdateGadgetZV(item);
}

void ModifyItemZV(unsigned short id, TagItem* tags)
{
    ModifyItemZV(FindItemZV(id), tags);
}
