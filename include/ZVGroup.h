// Groups: the rectangles of a palette, each with its items. A group states its place beside another one;
// layout works out the rest from the items' sizes and shares free space among groups that grow. Main thread
// only.
#pragma once

#include "ZVLayout.h"
#include "ZVList.h"
#include "ZVTags.h"

/// Flags of a group.
enum ZVGroupFlag : uint32_t {
    ZV_GRPF_HIDDEN = 2,
    ZV_GRPF_MOVED = 4,              ///< moved or resized by the last layout
    ZV_GRPF_IGNORE_IF_HIDDEN = 16,  ///< takes no room while hidden
    ZV_GRPF_TAB_BAR = 32            ///< the tab bar of a floater
};

/// Tags of EndGroupZV, beside the gap and margin tags of ZVLayout.h. Of a full and an auto tag of the same
/// axis the later one wins.
enum ZVGroupTag : unsigned long {
    ZV_GRP_FULL_WIDTH = 512,  ///< width of all groups laid out so far; data ignored, as to AUTO_SIZE
    ZV_GRP_FULL_HEIGHT = 513,
    ZV_GRP_AUTO_WIDTH = 514,  ///< shares free width
    ZV_GRP_AUTO_HEIGHT = 515,
    ZV_GRP_AUTO_SIZE = 516,  ///< both
    ZV_GRP_OFFSET_X = 517,   ///< long: added to the position
    ZV_GRP_OFFSET_Y = 518,
    ZV_GRP_CALLBACK = 519,     ///< void (*)(ZVEvent*)
    ZV_GRP_ALIGN_LEFT = 520,   ///< group id: the left edge moves to that group's, the right one stays
    ZV_GRP_ALIGN_RIGHT = 521,  ///< the other edges likewise
    ZV_GRP_ALIGN_TOP = 522,
    ZV_GRP_ALIGN_BOTTOM = 523,
    ZV_GRP_CONTENT_POSITION = 524,  ///< position code of the items in the group, 0x0404 by default
    ZV_GRP_BORDER = 525,            ///< frame with the title on its top edge; data ignored
    ZV_GRP_CURSOR = 526,            ///< cursor code
    ZV_GRP_IGNORE_IF_HIDDEN = 527,  ///< takes no room while hidden; data ignored
    ZV_GRP_GROW_WIDTH = 528,        ///< percentage of the palette's free width
    ZV_GRP_GROW_HEIGHT = 529
};

/// A group. On its palette's list, which owns it.
struct ZVGroup {
    Node node;                                        ///< id: of the group, 16 bits
    uint16_t position;                                ///< position code
    uint16_t reference;                               ///< id of the group beside which it stands
    TagItem* tags;                                    ///< clone
    uint32_t flags;                                   ///< ZVGroupFlag
    int32_t naturalWidth, naturalHeight;              ///< extent of the items
    int32_t innerX, innerY, innerWidth, innerHeight;  ///< inside the margins
    int32_t x, y, width, height;                      ///< relative to the palette's origin
    char* title;                                      ///< the node's name
    int32_t forcedWidth, forcedHeight;                ///< of the conform calls; -1 when free
    ZVPalette* palette;
    List items;       ///< ZVItem
    uint16_t cursor;  ///< cursor code, 0 for none
    void (*callback)(ZVEvent*);
    ZVRectT<int32_t> oldRect;         ///< of the last layout
    int32_t expandShare;              ///< number of neighbours that share free space
    int32_t extraWidth, extraHeight;  ///< its share of free space
    ZVGroup* beside;  ///< what a reference below 0 meant, whose id need not be its alone; else null
};

/// Starts a group on the current palette. Null without one, with an error pending, and with error 1 when
/// memory runs out.
ZV_API ZVGroup* InitGroupZV();

/// Ends the group under construction; nothing without one.
/// @param reference  id of the group beside which it stands; below 0 it counts back from this one, so that -1
///                   is the group before
/// @param title      copied; null for none
ZV_API void EndGroupZV(short id, unsigned short position, short reference, char const* title, TagItem* tags);
ZV_API void EndGroupZV(short id, unsigned short position, short reference, unsigned long titleId,
                       TagItem* tags);
template <ZVLabel Title, ZVTagKey Key, ZVTagValue... Rest>
void EndGroupZV(short id, unsigned short position, short reference, Title title, Key first, Rest... rest)
{
    EndGroupZV(id, position, reference, Label_Word(title), Tag_Array(first, rest...).data());
}

/// Shows or hides a group of an active palette. Layout does not run: RebuildPaletteZV closes the gap of a
/// group that takes no room while hidden.
ZV_API void GroupVisibleZV(ZVGroup* group, long visible);
ZV_API void GroupVisibleZV(unsigned short id, long visible);

/// ItemEnabledZV for each item.
ZV_API void GroupEnabledZV(ZVGroup* group, long enabled);
ZV_API void GroupEnabledZV(unsigned short id, long enabled);

/// Makes groups of the current palette agree in size. `ids` ends with 0. With mode 1 all get the greatest
/// size among them, with mode 2 the first one gets the span of the others.
ZV_API void Conform_Groups_Width(unsigned long mode, unsigned long const* ids);
ZV_API void Conform_Groups_Height(unsigned long mode, unsigned long const* ids);
template <ZVTagKey... Ids> void ConformGroupWidthZV(unsigned long mode, Ids... ids)
{
    unsigned long const list[] = {Tag_Word(ids)..., 0};
    Conform_Groups_Width(mode, list);
}
template <ZVTagKey... Ids> void ConformGroupHeightZV(unsigned long mode, Ids... ids)
{
    unsigned long const list[] = {Tag_Word(ids)..., 0};
    Conform_Groups_Height(mode, list);
}
