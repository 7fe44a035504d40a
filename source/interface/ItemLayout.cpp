// The layout of the items of a group. An item states where it stands beside another one, and labels hang on
// the sides of their gadgets. The first pass finds the natural size of a group; the second places its items
// once the group has its real size, and shares out the free space. Neither allocates.
#include "interface/ItemParts.h"
#include "interface/Layout.h"
#include "interface/LayoutTags.h"

#include <algorithm>
#include <array>
#include <climits>

namespace {

/// One axis of the layout. Near is left or above, far is right or below.
struct Axis {
    int32_t ZVItem::*place, ZVItem::*size, ZVItem::*baseSize, ZVItem::*minSize, ZVItem::*dragSize;
    int16_t ZVItem::*offset;
    ZVItem* ZVItem::*nearLink;
    ZVItem* ZVItem::*farLink;
    ZVItem* ZVItem::*acrossLinks[2];
    uint32_t growFlag;
    unsigned long growTag;
    int shift;  ///< of its half in a position code

    unsigned Half(unsigned code) const { return code >> shift & 0xFF; }
};

constexpr Axis axes[] = {{&ZVItem::x,
                          &ZVItem::width,
                          &ZVItem::baseWidth,
                          &ZVItem::minWidth,
                          &ZVItem::dragWidth,
                          &ZVItem::offsetX,
                          &ZVItem::beforeLink,
                          &ZVItem::afterLink,
                          {&ZVItem::aboveLink, &ZVItem::belowLink},
                          ZV_ITEMF_GROW_WIDTH,
                          ZV_ITEM_GROW_WIDTH,
                          0},
                         {&ZVItem::y,
                          &ZVItem::height,
                          &ZVItem::baseHeight,
                          &ZVItem::minHeight,
                          &ZVItem::dragHeight,
                          &ZVItem::offsetY,
                          &ZVItem::aboveLink,
                          &ZVItem::belowLink,
                          {&ZVItem::beforeLink, &ZVItem::afterLink},
                          ZV_ITEMF_GROW_HEIGHT,
                          ZV_ITEM_GROW_HEIGHT,
                          8}};

/// The items placed so far, by id: the first of each id. What does not fit the table is searched for.
class PlacedItems {
public:
    explicit PlacedItems(ZVGroup const& group) : group_(group) {}

    void Add(ZVItem& item)
    {
        ZVItem*& slot = table_[item.node.id % table_.size()];
        if (!slot) slot = &item;
        last_ = &item;
    }

    ZVItem* Find(uint16_t id) const
    {
        ZVItem* const known = table_[id % table_.size()];
        if (!known || id == 0) return nullptr;
        if (known->node.id == id) return known;
        for (ZVItem& item : Items_Of(group_)) {
            if (item.node.id == id) return &item;
            if (&item == last_) break;
        }
        return nullptr;
    }

private:
    ZVGroup const& group_;
    ZVItem const* last_ = nullptr;
    std::array<ZVItem*, 1024> table_{};
};

}  // namespace

/// Calls `take` for the tags of an item up to those of its label.
template <typename Take> static void Walk_Tags(ZVItem const& item, Take take)
{
    for (TagItem const* tag = item.tags; tag && tag->tag != ZV_TAG_END && tag->tag != ZV_ITEM_LABEL_TAGS;
         ++tag)
        take(*tag);
}

TagItem const* Find_Item_Tag(ZVItem const& item, unsigned long wanted)
{
    TagItem const* found = nullptr;
    Walk_Tags(item, [&](TagItem const& tag) {
        if (!found && tag.tag == wanted) found = &tag;
    });
    return found;
}

static Spacing Item_Spacing(ZVItem const& item)
{
    Spacing spacing{ZVEnv->style->gapNormal};
    Walk_Tags(item, [&](TagItem const& tag) { spacing.Take(tag); });
    return spacing;
}

/// The distance to the reference with the share of the free space.
static long Distance(ZVItem const& item, long free)
{
    Spacing const spacing = Item_Spacing(item);
    return spacing.gap + spacing.growPercent * free / 100;
}

static bool Holds(ZVItem const& start, ZVItem* ZVItem::*link, ZVItem const& wanted)
{
    for (ZVItem const* item = start.*link; item; item = item->*link)
        if (item == &wanted) return true;
    return false;
}

/// The room that the labels on one side of an item take, up to the item on the other end of the gap.
static long Chain_Length(Axis const& axis, ZVItem const& item, ZVItem* ZVItem::*side, ZVItem const& other,
                         long free)
{
    long length = 0;
    for (ZVItem const* link = item.*side; link; link = link->*side) {
        if (link == &other || Is_Out(*link)) break;
        if (Holds(*link, axis.acrossLinks[0], other) || Holds(*link, axis.acrossLinks[1], other)) break;
        length += Distance(*link, free) + link->*axis.size;
    }
    return length;
}

/// Whether an item is the arrow that the other parts of a proportional gadget follow along the axis.
static bool Leads_Prop(Axis const& axis, ZVItem const& item)
{
    ZVItem const* const next = item.*axis.farLink;
    return next && Is_Prop(next->type) && next->kind == ZV_ITEM_GADGET && next->*axis.nearLink == &item;
}

/// The size of an item with what follows it as a part of the same gadget.
static long Whole_Size(Axis const& axis, ZVItem const& item)
{
    long size = item.*axis.size;
    if (!Leads_Prop(axis, item)) return size;
    for (ZVItem const* part = item.*axis.farLink; part && part->kind == ZV_ITEM_GADGET;
         part = part->*axis.farLink)
        size += Distance(*part, 0) + part->*axis.size;
    return size;
}

/// Whether an item is a part that goes with its first one to a place in the group.
static bool Follows_Into_Group(Axis const& axis, ZVItem const& item)
{
    ZVItem const* first = &item;
    while (ZVItem const* part = first->*axis.nearLink) {
        if (part->kind != ZV_ITEM_GADGET) break;
        first = part;
    }
    return first != &item && Leads_Prop(axis, *first) && Is_Of_Parent(axis.Half(first->position));
}

/// Where an item lines up beside a reference: at the first of the parts of a proportional gadget.
static long Near_Edge(Axis const& axis, ZVItem const& reference)
{
    ZVItem const* first = &reference;
    if (Is_Prop(reference.type))
        while (first->*axis.nearLink && (first->*axis.nearLink)->kind != ZV_ITEM_LABEL)
            first = first->*axis.nearLink;
    return first->*axis.place;
}

/// Places an item on one axis. False when its reference has no place yet.
static bool Place_Item(Axis const& axis, ZVItem& item, ZVItem const* reference, long free)
{
    unsigned const half = axis.Half(item.position);
    if (Is_Of_Parent(half) || Follows_Into_Group(axis, item)) return true;
    bool const isPlaced = reference && reference->*axis.place != Unplaced;
    long place = 0;
    if (half == ZV_POS_DEFAULT) {
        if (isPlaced && item.position != 0) place = Near_Edge(axis, *reference);
    } else {
        if (!isPlaced) return false;
        bool const isOut = Is_Out(*reference);
        long const start = reference->*axis.place, length = reference->*axis.size;
        long const size = item.*axis.size;
        bool const isBefore = half == ZV_POS_BEFORE;
        place = start;
        if (isBefore || half == ZV_POS_AFTER) {
            auto const facing = isBefore ? axis.farLink : axis.nearLink;
            auto const opposite = isBefore ? axis.nearLink : axis.farLink;
            long shift = Chain_Length(axis, item, facing, *reference, free);
            if (!isOut) {
                shift += Chain_Length(axis, *reference, opposite, item, free) + Distance(item, free);
                shift += isBefore ? size : length;
            }
            place += isBefore ? -shift : shift;
        } else if (!isOut) {
            long const whole = Whole_Size(axis, item);
            switch (half) {
            case ZV_POS_ALIGN_CENTER: place += (length - whole) / 2; break;
            case ZV_POS_ALIGN_END: place += length - whole; break;
            case ZV_POS_ON_START: place -= whole / 2; break;
            case ZV_POS_ON_END: place += length - whole / 2; break;
            default: break;
            }
        }
    }
    item.*axis.place = static_cast<int32_t>(place + item.*axis.offset);
    return true;
}

/// Places all items beside their references. False when one refers to an item that has no place yet; it and
/// those behind it stay unplaced.
static bool Place_Items(ZVGroup const& group, long freeWidth, long freeHeight)
{
    PlacedItems placed(group);
    for (ZVItem& item : Items_Of(group)) {
        ZVItem const* const reference = placed.Find(item.reference);
        if (!Place_Item(axes[0], item, reference, freeWidth)) return false;
        if (!Place_Item(axes[1], item, reference, freeHeight)) {
            item.x = Unplaced;
            return false;
        }
        placed.Add(item);
    }
    return true;
}

static void Move_Items(Axis const& axis, ZVGroup const& group, long distance)
{
    for (ZVItem& item : Items_Of(group))
        if (item.*axis.place != Unplaced) item.*axis.place += static_cast<int32_t>(distance);
}

/// Moves the items so that the first of them in the layout stands at 0, and answers where the last one ends.
static long Normalize(Axis const& axis, ZVGroup const& group)
{
    long low = LONG_MAX, high = LONG_MIN;
    for (ZVItem const& item : Items_Of(group)) {
        if (Is_Out(item) || item.*axis.place == Unplaced) continue;
        low = std::min<long>(low, item.*axis.place);
        high = std::max<long>(high, static_cast<long>(item.*axis.place) + item.*axis.size);
    }
    if (low == LONG_MAX) return 0;
    Move_Items(axis, group, -low);
    return high - low;
}

/// Places what stands in the group rather than beside another item.
static void Place_In_Group(ZVGroup const& group, long width, long height)
{
    for (ZVItem& item : Items_Of(group)) {
        for (Axis const& axis : axes) {
            unsigned const half = axis.Half(item.position);
            long const length = &axis == &axes[0] ? width : height;
            if (!Is_Of_Parent(half)) continue;
            long place = Place_In_Parent(half, length, Whole_Size(axis, item));
            item.*axis.place = static_cast<int32_t>(place);
            if (!Leads_Prop(axis, item)) continue;
            for (ZVItem* part = &item; (part = part->*axis.farLink) && part->kind == ZV_ITEM_GADGET;) {
                place += (part->*axis.nearLink)->*axis.size + Distance(*part, 0);
                part->*axis.place = static_cast<int32_t>(place);
            }
        }
    }
}

/// The extent of the items on one axis, of which those placed in the group need their size at least.
static long Natural_Extent(Axis const& axis, ZVGroup const& group)
{
    long extent = Normalize(axis, group);
    for (ZVItem const& item : Items_Of(group))
        if (!Is_Out(item) && item.*axis.place == Unplaced) extent = std::max(extent, Whole_Size(axis, item));
    return extent;
}

long SetUp_Gadgets(ZVGroup* group)
{
    for (ZVItem& item : Items_Of(*group)) {
        item.x = item.y = Unplaced;
        item.width = item.baseWidth;
        item.height = item.baseHeight;
    }
    if (Is_Out(*group)) {
        group->naturalWidth = group->naturalHeight = 0;
        return 1;
    }
    if (!Place_Items(*group, 0, 0)) return 0;
    long const width = Natural_Extent(axes[0], *group), height = Natural_Extent(axes[1], *group);
    Place_In_Group(*group, width, height);
    group->naturalWidth = static_cast<int32_t>(width);
    group->naturalHeight = static_cast<int32_t>(height);
    return 1;
}

/// Sizes the items that take a part of the free space. One that would fall below its least size keeps that,
/// at the cost of what the others share.
static void Grow_Items(Axis const& axis, ZVGroup const& group, long free)
{
    auto const percent = [&axis](ZVItem const& item) -> TagItem const* {
        return item.flags & axis.growFlag ? Find_Item_Tag(item, axis.growTag) : nullptr;
    };
    auto const grown = [&](ZVItem const& item, long part) {
        return free * part / 100 + item.*axis.baseSize + item.*axis.dragSize;
    };
    for (ZVItem const& item : Items_Of(group)) {
        TagItem const* const tag = percent(item);
        if (!tag || Tag_Number(*tag) < 1) continue;
        long const lack = item.*axis.minSize - grown(item, Tag_Number(*tag));
        if (lack > 0) free -= lack * 100 / Tag_Number(*tag);
    }
    for (ZVItem& item : Items_Of(group)) {
        item.*axis.place = Unplaced;
        if (TagItem const* tag = percent(item))
            item.*axis.size =
                static_cast<int32_t>(std::max<long>(grown(item, Tag_Number(*tag)), item.*axis.minSize));
    }
}

namespace {
/// The items with flex gaps: how many there are, and on which axis they stand before or after.
struct FlexItems {
    long count = 0;
    bool isOn[2] = {};
};
}  // namespace

static bool Is_Flex(ZVItem const& item)
{
    return item.tags && !Is_Out(item) && Item_Spacing(item).isFlex;
}

static FlexItems Find_Flex_Items(ZVGroup const& group)
{
    FlexItems flex;
    for (ZVItem const& item : Items_Of(group)) {
        if (!Is_Flex(item)) continue;
        ++flex.count;
        for (int i = 0; i < 2; ++i) {
            unsigned const half = axes[i].Half(item.position);
            if (half == ZV_POS_BEFORE || half == ZV_POS_AFTER) flex.isOn[i] = true;
        }
    }
    return flex;
}

/// Moves the items by `shift`, and those behind a flex gap on by a step more for each.
static void Spread_Items(Axis const& axis, ZVGroup const& group, bool isFlexAxis, long step, long shift)
{
    long offset = isFlexAxis ? 0 : shift;
    for (ZVItem& item : Items_Of(group)) {
        if (axis.Half(item.position) == ZV_POS_AFTER && Is_Flex(item)) offset += step;
        if (item.*axis.place != Unplaced) item.*axis.place += static_cast<int32_t>(offset);
    }
}

/// How far the items stand from the start of a group with free space.
static long Content_Shift(unsigned half, long free)
{
    switch (half) {
    case ZV_POS_CENTER: return free / 2;
    case ZV_POS_ALIGN_END:
    case ZV_POS_PARENT_END: return free;
    default: return 0;
    }
}

/// Takes up what the natural size leaves of the group. False for flex gaps on both axes.
static bool Fill_Group(ZVGroup const& group, long freeWidth, long freeHeight)
{
    long const right = Normalize(axes[0], group), bottom = Normalize(axes[1], group);
    TagItem const* const content = FindTagItem(ZV_GRP_CONTENT_POSITION, group.tags);
    auto const code = static_cast<unsigned>(content ? content->data : 0x0404);
    long const shiftX = Content_Shift(Horizontal_Half(code), freeWidth);
    long const shiftY = Content_Shift(Vertical_Half(code), freeHeight);
    FlexItems const flex = Find_Flex_Items(group);
    if (flex.isOn[0] && flex.isOn[1]) return false;
    if (flex.count == 0) {
        Move_Items(axes[0], group, shiftX);
        Move_Items(axes[1], group, shiftY);
    } else {
        Spread_Items(axes[0], group, flex.isOn[0], (group.innerWidth - right) / flex.count, shiftX);
        Spread_Items(axes[1], group, flex.isOn[1], (group.innerHeight - bottom) / flex.count, shiftY);
    }
    return true;
}

long Build_Gadgets(ZVGroup* group)
{
    long const freeWidth = group->innerWidth - group->naturalWidth;
    long const freeHeight = group->innerHeight - group->naturalHeight;
    Grow_Items(axes[0], *group, freeWidth);
    Grow_Items(axes[1], *group, freeHeight);
    if (!Place_Items(*group, freeWidth, freeHeight) || !Fill_Group(*group, freeWidth, freeHeight)) return 0;
    Place_In_Group(*group, group->innerWidth, group->innerHeight);
    for (ZVItem& item : Items_Of(*group))
        if (Item_Rect(item) != item.oldRect) item.flags |= ZV_ITEMF_MOVED;
    return 1;
}
