// Declaring a proportional gadget: arrow, track and arrow, of which the caller knows the track. The first
// arrow stands where the caller wants the gadget, the others behind it, so that they overlap by the pixel of
// a border.
#include "Prop.h"
#include "ZVControl.h"
#include "interface/ItemParts.h"
#include "interface/Layout.h"

#include <algorithm>
#include <utility>

namespace {

constexpr long overlap = 1;

/// The two directions, as far as they differ in what is declared.
struct Parts {
    PropAxis axis;
    GadgetFunction track, firstArrow, lastArrow;
    ZVItem* ZVItem::*nearLink;
    ZVItem* ZVItem::*farLink;
    int32_t ZVItem::*length;
    int32_t ZVItem::*baseLength;
};

constexpr Parts horizontal{across,
                           HProp_Gad,
                           HProp_LeftArrow_Gad,
                           HProp_RightArrow_Gad,
                           &ZVItem::beforeLink,
                           &ZVItem::afterLink,
                           &ZVItem::width,
                           &ZVItem::baseWidth};
constexpr Parts vertical{down,
                         VProp_Gad,
                         VProp_UpArrow_Gad,
                         VProp_DownArrow_Gad,
                         &ZVItem::aboveLink,
                         &ZVItem::belowLink,
                         &ZVItem::height,
                         &ZVItem::baseHeight};

using Tags = HeapBlock<TagItem>;

/// Which part of the gadget takes a tag of the caller's list.
enum class TagOwner { Track, FirstArrow, AllParts };

TagOwner Owner_Of(unsigned long tag)
{
    switch (tag) {
    case ZV_ITEM_OFFSET_X:
    case ZV_ITEM_OFFSET_Y:
    case ZV_ITEM_POSITION:
    case ZV_ITEM_REFERENCE: return TagOwner::FirstArrow;
    case ZV_ITEM_CURSOR:
    case ZV_ITEM_ON_TOP:
    case ZV_ITEM_IGNORE_IF_HIDDEN: return TagOwner::AllParts;
    default: return tag >= ZV_GAP_NORMAL && tag <= ZV_GAP_GROW_ROUND ? TagOwner::FirstArrow : TagOwner::Track;
    }
}

/// The caller's tags that `part` or all parts take, behind the given ones; null with error 1 without memory.
Tags Choose_Tags(std::initializer_list<TagItem> given, TagItem* tags, TagOwner part)
{
    Tags chosen(Clone_Tags(tags));
    if (!chosen) return chosen;
    TagItem* end = chosen.get();
    for (TagItem const* tag = end; tag->tag != ZV_TAG_END && tag->tag != ZV_ITEM_LABEL_TAGS; ++tag) {
        TagOwner const owner = Owner_Of(tag->tag);
        if (owner == part || owner == TagOwner::AllParts) *end++ = *tag;
    }
    *end = {};
    TagItem list[4] = {};
    std::copy(given.begin(), given.end(), list);
    return Tags(Join_Tags(list, chosen.get()));
}

/// A part that stands behind another one.
constexpr TagItem touching{ZV_GAP_FIXED, static_cast<unsigned long>(-overlap)};

NewItem Make_Arrow(Parts const& parts, bool isFirst, long side, unsigned short position, short reference,
                   TagItem* tags)
{
    unsigned long const size = Tag_Word(side);
    TagItem const function{ZV_ITEM_CUSTOM_FUNC, Tag_Word(isFirst ? parts.firstArrow : parts.lastArrow)};
    Tags const chosen = isFirst ? Choose_Tags({function}, tags, TagOwner::FirstArrow)
                                : Choose_Tags({function, touching}, tags, TagOwner::AllParts);
    if (!chosen) return nullptr;
    NewItem arrow =
        Make_Gadget(0, position, reference, ZV_GAD_CUSTOM, ZV_SIZE_DEFAULT, nullptr, chosen.get());
    if (!arrow) return arrow;
    arrow->width = arrow->baseWidth = arrow->height = arrow->baseHeight = static_cast<int32_t>(size);
    arrow->flags |= ZV_ITEMF_ATTACHED;
    return arrow;
}

/// Puts a part behind the one before it, along the axis, at the same place across.
void Follow(Parts const& parts, ZVItem& item, ZVItem const& leader)
{
    bool const isVertical = parts.axis.isVertical;
    unsigned const half = isVertical ? Horizontal_Half(leader.position) : Vertical_Half(leader.position);
    unsigned const beside = Is_Of_Parent(half) ? half : unsigned{ZV_POS_ALIGN_START};
    item.position =
        static_cast<uint16_t>(isVertical ? beside | ZV_POS_AFTER << 8 : ZV_POS_AFTER | beside << 8);
    item.reference = static_cast<uint16_t>(leader.node.id);
}

void Chain(Parts const& parts, ZVItem& first, ZVItem& second)
{
    first.*parts.farLink = &second;
    second.*parts.nearLink = &first;
}

/// Links the parts in their order. The arrows take the first free ids but that of the track.
ZVItem* Link_Parts(Parts const& parts, ZVItem* first, ZVItem* track, ZVItem* last)
{
    ZVPalette& palette = *track->group->palette;
    Link_Item(*track);
    first->node.id = Free_Item_Id(palette);
    Link_Item(*first);
    Remove(&track->node);
    AddTail(&track->group->items, &track->node);
    last->node.id = Free_Item_Id(palette);
    Link_Item(*last);
    first->linkedItem = last->linkedItem = track->node.id;
    Follow(parts, *track, *first);
    Follow(parts, *last, *track);
    Chain(parts, *first, *track);
    Chain(parts, *track, *last);
    return track;
}

ZVItem* Add_Prop(Parts const& parts, unsigned short id, unsigned short position, short reference,
                 ZVGadgetType type, ZVGadgetSize size, char const* text, TagItem* tags)
{
    Tags const trackTags = Choose_Tags({touching}, tags, TagOwner::Track);
    if (!trackTags) return nullptr;
    NewItem track = Make_Gadget(id, position, reference, type, size, text, trackTags.get());
    if (!track) return nullptr;
    track->customFunc = parts.track;
    if (!Take_Natural_Size(*track)) return nullptr;
    long const side = parts.axis.Breadth(*track);
    long const whole = parts.axis.Length(*track);
    track.get()->*parts.length = track.get()->*parts.baseLength =
                                     static_cast<int32_t>(std::max(whole - 2 * (side - overlap), 0L));

    NewItem first = Make_Arrow(parts, true, side, position, reference, tags);
    NewItem last = first ? Make_Arrow(parts, false, side, 0, 0, tags) : nullptr;
    if (!last) return nullptr;
    return Link_Parts(parts, first.release(), track.release(), last.release());
}

}  // namespace

ZVItem* Add_HProp(unsigned short id, unsigned short position, short reference, ZVGadgetType type,
                  ZVGadgetSize size, char const* text, TagItem* tags)
{
    return Add_Prop(horizontal, id, position, reference, type, size, text, tags);
}

ZVItem* Add_VProp(unsigned short id, unsigned short position, short reference, ZVGadgetType type,
                  ZVGadgetSize size, char const* text, TagItem* tags)
{
    return Add_Prop(vertical, id, position, reference, type, size, text, tags);
}
