// The layout of a whole palette: its sub-palettes, then its groups with their items; and laying one out again
// while it is on screen.
#include "interface/Layout.h"
#include "interface/LayoutTags.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <utility>

long Take_Palette_Spacing(ZVPalette& palette)
{
    ZVStyle const& style = *ZVEnv->style;
    bool const isPseudo = Root_Of(palette).flags & ZV_PALF_PSEUDO;
    int32_t const margin = isPseudo ? style.pseudoPaletteMargin : style.paletteMargin;
    Margins margins{margin, margin, margin, margin};
    long gap = style.paletteGap;
    TagItem* cursor = palette.tags;
    while (TagItem const* tag = NextTagItem(&cursor)) {
        if (margins.Take(*tag)) continue;
        if (tag->tag == ZV_GAP_FIXED) gap = Tag_Number(*tag);
        if (tag->tag == ZV_GAP_NONE) gap = 0;
    }
    // The frame around a palette in a pseudo-window needs a pixel on each side.
    int32_t const frame = isPseudo && !palette.parent ? 1 : 0;
    palette.marginLeft = static_cast<uint16_t>(margins.left + frame);
    palette.marginRight = static_cast<uint16_t>(margins.right + frame);
    palette.marginTop = static_cast<uint16_t>(margins.top + frame);
    palette.marginBottom = static_cast<uint16_t>(margins.bottom + frame);
    return gap;
}

/// The size to fill for what lies inside the margins of a palette; a natural size stays one.
struct InnerSize {
    long width, height;
};
static InnerSize Inner_Size(ZVPalette const& palette, long width, long height)
{
    InnerSize inner{-1, -1};
    if (width != -1) inner.width = std::max(0L, width - palette.marginLeft - palette.marginRight);
    if (height != -1) inner.height = std::max(0L, height - palette.marginTop - palette.marginBottom);
    return inner;
}

static void Take_Sub_Palette_Tags(ZVPalette& sub)
{
    TagItem* cursor = sub.tags;
    while (TagItem const* tag = NextTagItem(&cursor)) {
        switch (tag->tag) {
        case ZV_PAL_KIND: sub.kind = static_cast<uint16_t>(tag->data); break;
        case ZV_PAL_FLAGS: sub.flags |= static_cast<uint32_t>(tag->data); break;
        case ZV_PAL_POSITION: sub.position = static_cast<uint16_t>(tag->data); break;
        case ZV_PAL_RELATIVE_TO: sub.relativeTo = static_cast<uint16_t>(tag->data); break;
        case ZV_PAL_FORCE_WIDTH: sub.forcedWidth = Tag_Number(*tag); break;
        case ZV_PAL_FORCE_HEIGHT: sub.forcedHeight = Tag_Number(*tag); break;
        default: break;
        }
    }
}

void Prepare_Sub_Palettes(ZVPalette& palette)
{
    for (ZVPalette& sub : Sub_Palettes_Of(palette))
        Prepare_Sub_Palettes(sub);
    for (ZVPalette& sub : Sub_Palettes_Of(palette)) {
        Take_Sub_Palette_Tags(sub);
        if (sub.relativeTo == 65535) sub.relativeTo = static_cast<uint16_t>(ZVEnv->lastPaletteId);
        ZVEnv->lastPaletteId = static_cast<int32_t>(sub.node.id);
    }
}

static long Offset_Of(ZVPalette const& sub, unsigned long key)
{
    TagItem const* const tag = FindTagItem(key, sub.tags);
    return tag ? Tag_Number(*tag) : 0;
}

/// Places a sub-palette beside its sibling; `own` is the area that the parent has to fill. A half of the code
/// that needs a sibling, where there is none, is the parent's near edge.
static void Place_Sub_Palette(ZVPalette& sub, long gap, InnerSize const& own)
{
    auto const* const sibling = Find_Record<ZVPalette>(sub.parent->subPalettes, sub.relativeTo);
    unsigned code = sub.position;
    ZVRectT<long> reference;
    if (sibling && sibling != &sub) {
        reference = {sibling->x, sibling->y, sibling->width, sibling->height};
    } else {
        if (!Is_Of_Parent(Horizontal_Half(code))) code &= 0xFF00;
        if (!Is_Of_Parent(Vertical_Half(code))) code &= 0x00FF;
    }
    ZVRectT<long> const size{0, 0, sub.width, sub.height};
    ZVRectT<long> const parent{0, 0, std::max(0L, own.width), std::max(0L, own.height)};
    long x = 0, y = 0;
    GetElementPlacement(code, &size, &reference, &parent, gap, &x, &y);
    sub.x = static_cast<int32_t>(x + Offset_Of(sub, ZV_PAL_OFFSET_X));
    sub.y = static_cast<int32_t>(y + Offset_Of(sub, ZV_PAL_OFFSET_Y));
}

/// Whether a half of a code waits for the final size of the parent.
static bool Is_Placed_Last(unsigned half)
{
    return half == ZV_POS_CENTER || half == ZV_POS_PARENT_END;
}

static void Lay_Out_Sub_Palettes(ZVPalette& palette, long width, long height)
{
    InnerSize const inner = Inner_Size(palette, width, height);
    palette.contentWidth = palette.contentHeight = 0;
    for (ZVPalette& sub : Sub_Palettes_Of(palette)) {
        long const gap = Take_Palette_Spacing(sub);
        Lay_Out_Palette(sub, sub.forcedWidth != -1 ? sub.forcedWidth : inner.width,
                        sub.forcedHeight != -1 ? sub.forcedHeight : inner.height);
        Place_Sub_Palette(sub, gap, inner);
        palette.contentWidth = std::max(palette.contentWidth, sub.x + sub.width);
        palette.contentHeight = std::max(palette.contentHeight, sub.y + sub.height);
    }
    for (ZVPalette& sub : Sub_Palettes_Of(palette)) {
        unsigned const low = Horizontal_Half(sub.position), high = Vertical_Half(sub.position);
        long const wide = std::max<long>(palette.contentWidth, inner.width);
        long const tall = std::max<long>(palette.contentHeight, inner.height);
        if (Is_Placed_Last(low))
            sub.x =
                static_cast<int32_t>(Place_In_Parent(low, wide, sub.width) + Offset_Of(sub, ZV_PAL_OFFSET_X));
        if (Is_Placed_Last(high))
            sub.y = static_cast<int32_t>(Place_In_Parent(high, tall, sub.height) +
                                         Offset_Of(sub, ZV_PAL_OFFSET_Y));
    }
}

void Lay_Out_Palette(ZVPalette& palette, long width, long height)
{
    bool const hasSubs = !List_Empty(&palette.subPalettes);
    if (hasSubs) Lay_Out_Sub_Palettes(palette, width, height);
    int32_t const contentWidth = palette.contentWidth, contentHeight = palette.contentHeight;
    for (ZVGroup& group : Groups_Of(palette))
        SetUp_Gadgets(&group);
    Build_Groups(&palette, width, height);
    for (ZVGroup& group : Groups_Of(palette))
        Build_Gadgets(&group);
    if (!hasSubs) return;
    palette.contentWidth = contentWidth;
    palette.contentHeight = contentHeight;
}

void Settle_Palette(ZVPalette& palette, long x, long y)
{
    palette.x = static_cast<int32_t>(x);
    palette.y = static_cast<int32_t>(y);
    int32_t const originX = palette.x + palette.marginLeft, originY = palette.y + palette.marginTop;
    int32_t const dx = originX - palette.originX, dy = originY - palette.originY;
    palette.originX = originX;
    palette.originY = originY;
    if (dx || dy) {
        // The old rectangles of the groups stay where they were in the window.
        for (ZVGroup& group : Groups_Of(palette)) {
            group.oldRect.Offset(-dx, -dy);
            group.flags |= ZV_GRPF_MOVED;
        }
    }
    for (ZVPalette& sub : Sub_Palettes_Of(palette))
        Settle_Palette(sub, palette.originX + sub.x, palette.originY + sub.y);
}

// ---- on screen --------------------------------------------------------------------------------------------

/// Calls `work` for the groups of a palette and of its sub-palettes that are not hidden. False when one of
/// them is gone, by the function of a gadget.
template <typename Work> static bool For_Visible_Groups(ZVPalette& root, Work work)
{
    for (ZVPalette* palette = &root; palette; palette = Next_Below(&root, palette)) {
        if (!Is_Shown(palette)) continue;
        LivingPalette const watch(palette);
        for (ZVGroup& group : Groups_Of(*palette)) {
            if (!(group.flags & ZV_GRPF_HIDDEN)) work(group);
            if (!watch.Is_There()) return false;
        }
    }
    return true;
}

namespace {
/// Puts a group back where it was, as long as this exists, so that what it covered there can be erased.
class OldGroupPlace {
public:
    explicit OldGroupPlace(ZVGroup& group) : group_(group) { Exchange(); }
    ~OldGroupPlace() { Exchange(); }
    OldGroupPlace(OldGroupPlace const&) = delete;
    OldGroupPlace& operator=(OldGroupPlace const&) = delete;

private:
    void Exchange()
    {
        std::swap(group_.x, group_.oldRect.x);
        std::swap(group_.y, group_.oldRect.y);
        std::swap(group_.width, group_.oldRect.width);
        std::swap(group_.height, group_.oldRect.height);
    }

    ZVGroup& group_;
};
}  // namespace

/// Takes an item off the screen where it was.
static void Destroy_At_Old_Place(ZVItem& item)
{
    if (!item.native) return;  // one that is not on screen may have had no place
    ZVRectT<int32_t> const now{item.x, item.y, item.width, item.height};
    ZVGroup const& group = *item.group;
    item.x = item.oldRect.x - group.innerX - group.palette->originX;
    item.y = item.oldRect.y - group.innerY - group.palette->originY;
    item.width = item.oldRect.width;
    item.height = item.oldRect.height;
    Destroy_SysItem(&item);
    item.x = now.x;
    item.y = now.y;
    item.width = now.width;
    item.height = now.height;
}

static void Erase_Moved(ZVGroup& group)
{
    if (group.flags & ZV_GRPF_MOVED) {
        OldGroupPlace const old(group);
        Destroy_SysGroupFrame(&group);
    }
    for (ZVItem& item : Items_Of(group))
        if (item.flags & ZV_ITEMF_MOVED) Destroy_At_Old_Place(item);
}

/// Brings what has moved back on screen; what lies on top comes last.
static void Make_Moved(ZVGroup& group)
{
    if (group.flags & ZV_GRPF_MOVED) Make_SysGroupFrame(&group);
    group.flags &= ~ZV_GRPF_MOVED;
    for (uint32_t const onTop : {0U, static_cast<uint32_t>(ZV_ITEMF_ON_TOP)}) {
        for (ZVItem& item : Items_Of(group)) {
            if ((item.flags & ZV_ITEMF_ON_TOP) != onTop || !(item.flags & ZV_ITEMF_MOVED)) continue;
            Make_SysItem(&item);
            item.flags &= ~ZV_ITEMF_MOVED;
        }
    }
}

void Rebuild_SysPalette(ZVPalette* palette, long width, long height)
{
    if (!palette) return;
    for (ZVPalette* each = palette; each; each = Next_Below(palette, each))
        for (ZVGroup& group : Groups_Of(*each))
            for (ZVItem& item : Items_Of(group))
                item.oldRect = Item_Rect(item);
    Lay_Out_Palette(*palette, width, height);
    long const x = palette->x, y = palette->y;
    Settle_Palette(*palette, x, y);
    for (ZVPalette* each = palette; each; each = Next_Below(palette, each))
        for (ZVGroup& group : Groups_Of(*each))
            for (ZVItem& item : Items_Of(group))
                if (Item_Rect(item) != item.oldRect) item.flags |= ZV_ITEMF_MOVED;
    if (!Is_On_Screen(*palette)) return;
    if (!For_Visible_Groups(*palette, Erase_Moved) || !For_Visible_Groups(*palette, Make_Moved)) return;
    Mac_Validate(palette->window, {palette->x, palette->y, palette->width, palette->height});
    RenderTabs(palette->window);
}

/// Fits the window of an active palette to it.
static void Rebuild_Window(ZVPalette& palette)
{
    ZVWindow* const window = palette.window;
    if (window && window->sysWindow && window->activePalette == &palette) Rebuild_SysWindow(window, &palette);
}

void ResizePaletteZV(ZVPalette* palette, long width, long height)
{
    if (!Is_Palette(palette)) return;
    palette->forcedWidth = static_cast<int32_t>(width);
    palette->forcedHeight = static_cast<int32_t>(height);
    if (palette->window) RebuildPaletteZV(palette);
}

void RebuildPaletteZV(ZVPalette* palette)
{
    if (!Is_Palette(palette)) return;
    LivingPalette const watch(palette);
    Rebuild_SysPalette(palette, palette->forcedWidth, palette->forcedHeight);
    if (watch.Is_There()) Rebuild_Window(*palette);
}
