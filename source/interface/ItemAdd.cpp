// Declaring items: gadgets with the labels beside them, texts, images and lines. All that an item owns is had
// before it is linked, so that running out of memory leaves nothing behind.
#include "interface/ItemParts.h"
#include "interface/Layout.h"

#include <algorithm>

namespace {

constexpr int32_t DefaultTextCapacity = 255;
constexpr int32_t DefaultFloatCapacity = 12;
constexpr int32_t LargestCapacity = 1 << 24;
constexpr uint16_t TextCursor = ZV_CURSOR_TEXT;
constexpr uint16_t LeftOfGadget = ZV_Position(ZV_POS_BEFORE, ZV_POS_ALIGN_CENTER);
constexpr int32_t DefaultPropEnd = 100;

}  // namespace

void Free_New_Item(ZVItem* item)
{
    FreeMemZV(item->node.name);
    FreeMemZV(item->tags);
    FreeMemZV(item->editText);
    Free_List(&item->entries);
    FreeMemZV(item);
}

/// A zeroed item of the open group with a copy of its tags; null with error 4 or 1.
static NewItem Make_Item(ZVItemKind kind, TagItem* tags)
{
    ZVGroup* const group = ZVEnv ? ZVEnv->currentGroup : nullptr;
    if (!group) {
        SetError(ZV_ERR_NO_GROUP);
        return nullptr;
    }
    ZVItem* const record = New_Record<ZVItem>();
    if (!record) return nullptr;
    NewList(&record->entries);
    NewList(&record->dependencies);
    NewItem item(record);
    item->kind = kind;
    item->group = group;
    TagItem* cursor = tags;
    if (NextTagItem(&cursor) && !(item->tags = Clone_Tags(tags))) return nullptr;
    return item;
}

static bool Set_Text(ZVItem& item, char const* text)
{
    if (!Replace_Text(item.node.name, text)) return false;
    item.text = item.node.name;
    return true;
}

/// The first item of a group has nothing to stand beside: only its place in the group counts.
static void Clean_Position(ZVItem& item)
{
    if (!List_Empty(&item.group->items)) return;
    unsigned const low = Horizontal_Half(item.position), high = Vertical_Half(item.position);
    item.position =
        static_cast<uint16_t>((Is_Of_Parent(low) ? low : 0) | (Is_Of_Parent(high) ? high : 0) << 8);
}

static void Place_New_Item(ZVItem& item, uint16_t id, uint16_t position, short reference)
{
    item.node.id = id;
    item.position = position;
    item.reference = Reference_Id(*item.group, reference);
}

static void Center_Text(ZVItem& item)
{
    ZVDrawInfo draw{};
    draw.Font = GetItemFont(&item);
    item.offsetY = static_cast<int16_t>((ZVEnv->style->gadgetHeight - GetAveCharHeightZV(&draw) + 1) / 2);
}

bool Take_Item_Tag(ZVItem& item, TagItem const& tag)
{
    switch (tag.tag) {
    case ZV_ITEM_OFFSET_X: item.offsetX = static_cast<int16_t>(tag.data); return true;
    case ZV_ITEM_OFFSET_Y: item.offsetY = static_cast<int16_t>(tag.data); return true;
    case ZV_ITEM_ID: item.node.id = static_cast<uint16_t>(tag.data); return true;
    case ZV_ITEM_POSITION: item.position = static_cast<uint16_t>(tag.data); return true;
    case ZV_ITEM_REFERENCE:
        item.reference = Reference_Id(*item.group, static_cast<short>(tag.data));
        return true;
    case ZV_ITEM_CURSOR: item.cursor = static_cast<uint16_t>(tag.data); return true;
    case ZV_ITEM_USER_DATA: item.userData = tag.data; return true;
    case ZV_ITEM_TOOLTIP: item.toolTip = Tag_Pointer<char const*>(tag); return true;
    case ZV_ITEM_TOOLTIP_ID:
        if (tag.data) item.toolTip = GetStringZV(tag.data);
        return true;
    default: return false;
    }
}

/// The tags of all kinds that are read when an item is added, and no more afterwards.
static bool Take_Adding_Tag(ZVItem& item, TagItem const& tag)
{
    if (Take_Item_Tag(item, tag)) return true;
    switch (tag.tag) {
    case ZV_ITEM_IGNORE_IF_HIDDEN: item.flags |= ZV_ITEMF_IGNORE_IF_HIDDEN; return true;
    case ZV_ITEM_GROW_WIDTH: item.flags |= ZV_ITEMF_GROW_WIDTH; return true;
    case ZV_ITEM_GROW_HEIGHT: item.flags |= ZV_ITEMF_GROW_HEIGHT; return true;
    case ZV_ITEM_CENTER_TEXT:
        if (item.kind == ZV_ITEM_LABEL) Center_Text(item);
        return true;
    default: return false;
    }
}

static void Take_Adding_Tags(ZVItem& item)
{
    for (TagItem const* tag = item.tags; tag && tag->tag != ZV_TAG_END; ++tag)
        Take_Adding_Tag(item, *tag);
}

// ---- labels -----------------------------------------------------------------------------------------------

/// The chain of labels on one side of an item by the code of a label.
static void Chain_Label(ZVItem& owner, ZVItem* ZVItem::*side, ZVItem& label)
{
    ZVItem* last = &owner;
    while (last->*side)
        last = last->*side;
    last->*side = &label;
}

/// Hangs a label on its owner's side. A label has to stand beside: a code that would put it on its owner
/// means the left side.
static void Attach_Label(ZVItem& owner, ZVItem& label)
{
    unsigned low = Horizontal_Half(label.position);
    unsigned high = Vertical_Half(label.position);
    bool const isBeside = low == ZV_POS_BEFORE || low == ZV_POS_AFTER || high == ZV_POS_BEFORE ||
                          high == ZV_POS_AFTER || Is_Of_Parent(low) || Is_Of_Parent(high);
    if (!isBeside) {
        low = ZV_POS_BEFORE;
        if (label.position == 0) high = ZV_POS_ALIGN_CENTER;
        label.position = static_cast<uint16_t>(low | high << 8);
    }
    if (low == ZV_POS_BEFORE) Chain_Label(owner, &ZVItem::beforeLink, label);
    if (low == ZV_POS_AFTER) Chain_Label(owner, &ZVItem::afterLink, label);
    if (high == ZV_POS_BEFORE) Chain_Label(owner, &ZVItem::aboveLink, label);
    if (high == ZV_POS_AFTER) Chain_Label(owner, &ZVItem::belowLink, label);
    label.flags |= owner.flags & ZV_ITEMF_IGNORE_IF_HIDDEN;
}

/// The label of a gadget whose type has it beside itself, made of what the gadget's tags have for it.
static NewItem Make_Label(ZVItem const& gadget, char const* text)
{
    TagItem const* tags = gadget.tags;
    while (tags && tags->tag != ZV_TAG_END && tags->tag != ZV_ITEM_LABEL_TAGS)
        ++tags;
    bool const hasTags = tags && tags->tag == ZV_ITEM_LABEL_TAGS;
    NewItem label = Make_Item(ZV_ITEM_LABEL, hasTags ? const_cast<TagItem*>(tags + 1) : nullptr);
    if (!label || !Set_Text(*label, text)) return nullptr;
    label->flags = ZV_ITEMF_ATTACHED;
    label->node.id = ZV_LABEL_ID;
    label->position = LeftOfGadget;
    label->reference = static_cast<uint16_t>(gadget.node.id);
    Take_Adding_Tags(*label);
    return label;
}

// ---- gadgets ----------------------------------------------------------------------------------------------

bool Take_Gadget_Limit(ZVItem& item, TagItem const& tag)
{
    // With a text, the word of the upper limit holds the capacity of its buffer.
    bool const hasCapacity = Has_Edit_Text(item.declaredType);
    auto const setMax = [&](int32_t whole, double real) {
        item.maxReal = real;
        if (!hasCapacity) item.maxInt = whole;
    };
    auto const* const real = Tag_Pointer<double const*>(tag);
    switch (tag.tag) {
    case ZV_ITEM_MIN:
        item.minInt = Tag_Number(tag);
        item.minReal = item.minInt;
        return true;
    case ZV_ITEM_MAX: setMax(Tag_Number(tag), Tag_Number(tag)); return true;
    case ZV_ITEM_MIN_REAL:
        if (real) {
            item.minReal = *real;
            item.minInt = To_Whole(*real);
        }
        return true;
    case ZV_ITEM_MAX_REAL:
        if (real) setMax(To_Whole(*real), *real);
        return true;
    case ZV_ITEM_SELECTED: item.selected = tag.data; return true;
    case ZV_ITEM_LINKED: item.linkedItem = tag.data; return true;
    case ZV_ITEM_PROP_PAGE: item.page = Tag_Number(tag); return true;
    case ZV_ITEM_PROP_STEP: item.lineStep = Tag_Number(tag); return true;
    case ZV_ITEM_EXTRA: item.extra = static_cast<uint32_t>(tag.data); return true;
    case ZV_ITEM_ORDER: item.order = static_cast<uint16_t>(tag.data); return true;
    default: return false;
    }
}

/// The flag that a tag without data sets; 0 for other tags.
static uint32_t Flag_Of_Tag(unsigned long tag)
{
    switch (tag) {
    case ZV_ITEM_ON_TOP: return ZV_ITEMF_ON_TOP;
    case ZV_ITEM_SMALL_FONT: return ZV_ITEMF_SMALL_FONT;
    case ZV_ITEM_BOLD:
    case ZV_ITEM_FONT_BOLD: return ZV_ITEMF_BOLD;
    case ZV_ITEM_FONT_ITALIC: return ZV_ITEMF_ITALIC;
    case ZV_ITEM_FLAG_20000: return ZV_ITEMF_USER;
    default: return 0;
    }
}

/// False with error 1 when memory runs out.
static bool Take_Gadget_Tag(ZVItem& item, TagItem const& tag)
{
    if (Take_Adding_Tag(item, tag) || Take_Gadget_Limit(item, tag)) return true;
    item.flags |= Flag_Of_Tag(tag.tag);
    switch (tag.tag) {
    case ZV_ITEM_TEXT: return Set_Text(item, Tag_Pointer<char const*>(tag));
    case ZV_ITEM_TEXT_ID: return Set_Text(item, Text_Of_Id(tag.data));
    case ZV_ITEM_MAX_CHARS: item.maxChars = Tag_Number(tag); break;
    case ZV_ITEM_ENTRIES: return Copy_Entries(item, Tag_Pointer<List const*>(tag));
    case ZV_ITEM_ENTRIES_CSV: return Read_Entries(item, Tag_Pointer<char const*>(tag), true);
    case ZV_ITEM_ENTRIES_CSV_ID: return Read_Entries(item, Text_Of_Id(tag.data), true);
    case ZV_ITEM_IMAGE: item.image = FindIconZV(tag.data); break;
    case ZV_ITEM_IMAGE_OFF: item.imageOff = FindIconZV(tag.data); break;
    case ZV_ITEM_CALLBACK: item.callback = Tag_Pointer<void (*)(ZVEvent*)>(tag); break;
    case ZV_ITEM_CUSTOM_FUNC: item.customFunc = Tag_Pointer<GadgetFunction>(tag); break;
    case ZV_ITEM_MIN_WIDTH: item.minWidth = Tag_Number(tag); break;
    case ZV_ITEM_MIN_HEIGHT: item.minHeight = Tag_Number(tag); break;
    case ZV_ITEM_IMAGE_COLOR:
        item.imageColor = static_cast<uint32_t>(tag.data);
        item.hasImageColor = 1;
        break;
    case ZV_ITEM_TRACK_VALUE: item.trackingValue = static_cast<uint32_t>(tag.data); break;
    default: break;
    }
    return true;
}

/// Type and size as the tags of a gadget override them: what they are decides how the other tags are read.
static void Settle_Type(ZVItem& item, ZVGadgetType type, ZVGadgetSize size)
{
    if (TagItem const* tag = Find_Item_Tag(item, ZV_ITEM_TYPE)) type = static_cast<ZVGadgetType>(tag->data);
    if (TagItem const* tag = Find_Item_Tag(item, ZV_ITEM_SIZE)) size = static_cast<ZVGadgetSize>(tag->data);
    item.type = item.declaredType = type;
    item.gadgetSize = size;
    item.minInt = INT32_MIN;
    item.maxInt = INT32_MAX;
    item.minReal = INT32_MIN;
    item.maxReal = INT32_MAX;
    if (Is_Prop(type)) {
        item.minReal = item.minInt = 0;
        item.maxReal = item.maxInt = DefaultPropEnd;
        item.page = item.lineStep = 1;
    }
    if (Has_Edit_Text(type))
        item.maxChars = type == ZV_GAD_FLOAT ? DefaultFloatCapacity : DefaultTextCapacity;
    item.customFunc = Function_Of_Type(type);
    if (Has_Edit_Text(type) || type == ZV_GAD_INTEGER) item.cursor = TextCursor;
}

NewItem Make_Gadget(unsigned short id, unsigned short position, short reference, ZVGadgetType type,
                    ZVGadgetSize size, char const* label, TagItem* tags)
{
    NewItem item = Make_Item(ZV_ITEM_GADGET, tags);
    if (!item) return nullptr;
    Settle_Type(*item, type, size);
    if (id == 0) id = Free_Item_Id(*item->group->palette);
    Place_New_Item(*item, id, position, reference);
    if (!Has_Attached_Label(item->type) && !Set_Text(*item, label)) return nullptr;
    for (TagItem const* tag = item->tags; tag && tag->tag != ZV_TAG_END && tag->tag != ZV_ITEM_LABEL_TAGS;
         ++tag)
        if (!Take_Gadget_Tag(*item, *tag)) return nullptr;
    Clean_Position(*item);
    if (Has_Edit_Text(item->type)) {
        item->maxChars = std::clamp(item->maxChars, 0, LargestCapacity);
        item->editText = static_cast<char*>(New_Block(static_cast<unsigned long>(item->maxChars) + 1));
        if (!item->editText) return nullptr;
    }
    return item;
}

/// The type that a gadget gets, which a tag can have changed.
static ZVGadgetType Told_Type(ZVGadgetType type, TagItem* tags)
{
    while (TagItem const* tag = NextTagItem(&tags)) {
        if (tag->tag == ZV_ITEM_LABEL_TAGS) break;
        if (tag->tag == ZV_ITEM_TYPE) return static_cast<ZVGadgetType>(tag->data);
    }
    return type;
}

/// Takes a gadget that could not be set up off its group again, with its label or null.
static void Take_Back(ZVItem* item, ZVItem* label)
{
    if (item->customFunc) Send_Custom_Event(*item, ZV_CUSTOM_CLEANUP);
    Clear_Dependencies(*item);
    Forget_Item_Ids(*item->group->palette);
    for (ZVItem* const each : {label, item}) {
        if (!each) continue;
        Remove(&each->node);
        Free_New_Item(each);
    }
}

ZVItem* AddGadgetZV(unsigned short id, unsigned short position, short reference, ZVGadgetType type,
                    ZVGadgetSize size, char const* label, TagItem* tags)
{
    type = Told_Type(type, tags);
    if (type == ZV_GAD_HPROP) return Add_HProp(id, position, reference, type, size, label, tags);
    if (type == ZV_GAD_VPROP) return Add_VProp(id, position, reference, type, size, label, tags);
    NewItem made = Make_Gadget(id, position, reference, type, size, label, tags);
    if (!made) return nullptr;
    NewItem text;
    if (label && Has_Attached_Label(made->type) && !(text = Make_Label(*made, label))) return nullptr;

    if (text && !Take_Natural_Size(*text)) return nullptr;
    ZVItem *const item = made.release(), *const beside = text.release();
    Link_Item(*item);
    if (beside) {
        if (beside->node.id == ZV_LABEL_ID) Attach_Label(*item, *beside);
        Link_Item(*beside);
    }
    if (item->type == ZV_GAD_CYCLE || item->type == ZV_GAD_MENU) item->type = ZV_GAD_CUSTOM;
    bool const isSetUp = Finds_Memory([item] {
        if (item->customFunc) Send_Custom_Event(*item, ZV_CUSTOM_SETUP);
        Set_Item_Size(item);
    });
    if (isSetUp) return item;
    Take_Back(item, beside);
    return nullptr;
}

ZVItem* AddGadgetZV(unsigned short id, unsigned short position, short reference, ZVGadgetType type,
                    ZVGadgetSize size, unsigned long labelId, TagItem* tags)
{
    return AddGadgetZV(id, position, reference, type, size, Text_Of_Id(labelId), tags);
}

// ---- the other kinds --------------------------------------------------------------------------------------

/// Places, sizes and links an item that is no gadget.
static ZVItem* Finish_Item(NewItem made, unsigned short id, unsigned short position, short reference)
{
    if (!made) return nullptr;
    if (id == 0) id = Free_Item_Id(*made->group->palette);
    Place_New_Item(*made, id, position, reference);
    Take_Adding_Tags(*made);
    Clean_Position(*made);
    if (!Take_Natural_Size(*made)) return nullptr;
    ZVItem* const item = made.release();
    if (item->kind == ZV_ITEM_LABEL && item->node.id == ZV_LABEL_ID) {
        item->flags |= ZV_ITEMF_ATTACHED;
        if (ZVItem* owner = Find_Record<ZVItem>(item->group->items, item->reference))
            Attach_Label(*owner, *item);
    }
    Link_Item(*item);
    return item;
}

ZVItem* AddTextZV(unsigned short id, unsigned short position, short reference, char const* text,
                  TagItem* tags)
{
    if (!text) return nullptr;
    NewItem item = Make_Item(ZV_ITEM_LABEL, tags);
    if (!item || !Set_Text(*item, text)) return nullptr;
    return Finish_Item(std::move(item), id, position, reference);
}

ZVItem* AddTextZV(unsigned short id, unsigned short position, short reference, unsigned long textId,
                  TagItem* tags)
{
    return AddTextZV(id, position, reference, Text_Of_Id(textId), tags);
}

ZVItem* AddImageZV(unsigned short id, unsigned short position, short reference, unsigned short image,
                   TagItem* tags)
{
    NewItem item = Make_Item(ZV_ITEM_PICTURE, tags);
    if (item) item->image = FindIconZV(image);
    return Finish_Item(std::move(item), id, position, reference);
}

ZVItem* AddLineZV(unsigned short id, unsigned short position, short reference, ZVGadgetSize size,
                  unsigned long style, TagItem* tags)
{
    NewItem item = Make_Item(ZV_ITEM_LINE, tags);
    if (item) {
        item->gadgetSize = size;
        item->state = static_cast<int32_t>(style);
    }
    return Finish_Item(std::move(item), id, position, reference);
}
