// The layout of a palette's groups. Groups state where they stand beside one another; two runs over them make
// rectangles of that. The first finds the natural extent, from which each group's share of the free space
// follows; the second places the groups in their final sizes. Runs on every step of a resize, so it allocates
// nothing.
#include "interface/Layout.h"
#include "interface/LayoutTags.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <climits>

namespace {

/// What the tags of a group say of its layout.
struct GroupTags {
    bool fullWidth = false, fullHeight = false;
    bool autoWidth = false, autoHeight = false;
    long growWidth = 0, growHeight = 0;
    long offsetX = 0, offsetY = 0;
    unsigned long alignLeft = 0, alignRight = 0, alignTop = 0, alignBottom = 0;
    Spacing spacing;
    Margins margins;
};

/// The area that groups take up so far, as inclusive edges; nothing at first.
struct Bounds {
    long left = 0, top = 0, right = -1, bottom = -1;
    bool isEmpty = true;

    void Extend(long x, long y, long width, long height)
    {
        if (isEmpty)
            *this = {x, y, x + width - 1, y + height - 1, false};
        else
            *this = {std::min(left, x), std::min(top, y), std::max(right, x + width - 1),
                     std::max(bottom, y + height - 1), false};
    }
    long Width() const { return right - left + 1; }
    long Height() const { return bottom - top + 1; }
};

/// One layout of one palette.
struct GroupLayout {
    ZVPalette& palette;
    Bounds bounds{};
    long naturalWidth = 0, naturalHeight = 0;
    long freeWidth = 0, freeHeight = 0;
    bool isFinal = false;  ///< in the second run
};

}  // namespace

/// In place of the share of a group that takes none, until all shares are known.
static constexpr int32_t NoShare = INT32_MIN;

static void Take_Tag(GroupTags& tags, TagItem const& tag)
{
    if (tags.spacing.Take(tag) || tags.margins.Take(tag)) return;
    switch (tag.tag) {
    case ZV_GRP_FULL_WIDTH:
    case ZV_GRP_AUTO_WIDTH:
        tags.fullWidth = tag.tag == ZV_GRP_FULL_WIDTH;
        tags.autoWidth = !tags.fullWidth;
        break;
    case ZV_GRP_FULL_HEIGHT:
    case ZV_GRP_AUTO_HEIGHT:
        tags.fullHeight = tag.tag == ZV_GRP_FULL_HEIGHT;
        tags.autoHeight = !tags.fullHeight;
        break;
    case ZV_GRP_AUTO_SIZE:
        tags.fullWidth = tags.fullHeight = false;
        tags.autoWidth = tags.autoHeight = true;
        break;
    case ZV_GRP_OFFSET_X: tags.offsetX = Tag_Number(tag); break;
    case ZV_GRP_OFFSET_Y: tags.offsetY = Tag_Number(tag); break;
    case ZV_GRP_ALIGN_LEFT: tags.alignLeft = tag.data; break;
    case ZV_GRP_ALIGN_RIGHT: tags.alignRight = tag.data; break;
    case ZV_GRP_ALIGN_TOP: tags.alignTop = tag.data; break;
    case ZV_GRP_ALIGN_BOTTOM: tags.alignBottom = tag.data; break;
    case ZV_GRP_GROW_WIDTH: tags.growWidth = Tag_Number(tag); break;
    case ZV_GRP_GROW_HEIGHT: tags.growHeight = Tag_Number(tag); break;
    default: break;
    }
}

static GroupTags Read_Tags(ZVGroup const& group)
{
    ZVStyle const& style = *ZVEnv->style;
    bool const isPseudo = Root_Of(*group.palette).flags & ZV_PALF_PSEUDO;
    int32_t const margin = isPseudo ? style.pseudoGroupMargin : style.groupMargin;
    GroupTags tags{.spacing = {isPseudo ? style.pseudoGroupGap : style.groupGap},
                   .margins = {margin, margin, margin, margin}};
    TagItem* cursor = group.tags;
    while (TagItem const* tag = NextTagItem(&cursor))
        Take_Tag(tags, *tag);
    return tags;
}

/// The gap with its share of the free width, which serves for both axes.
static long Grown_Gap(Spacing const& spacing, long freeWidth)
{
    long const percent = spacing.growPercent;
    long const share = percent * freeWidth / 100;
    if (!spacing.rounds || percent == 0) return spacing.gap + share;
    return spacing.gap + freeWidth - (100 / percent - 1) * share;
}

/// One axis of a group's place. `low` and `high` are the bounds as they stand.
static long Place_Group(unsigned half, ZVGroup const* reference, long start, long length, long size, long gap,
                        bool isFull, long low, long high)
{
    long const centered = (high - low - size + 1) / 2 + low;
    if (!reference) {
        switch (half) {
        case ZV_POS_CENTER: return centered;
        case ZV_POS_ALIGN_START:
        case ZV_POS_PARENT_START: return low;
        case ZV_POS_ALIGN_END:
        case ZV_POS_PARENT_END: return high - size + 1;
        default: return isFull ? low : 0;
        }
    }
    bool const isOut = Is_Out(*reference);
    switch (half) {
    case ZV_POS_BEFORE: return isOut ? start : start - gap - size;
    case ZV_POS_AFTER: return isOut ? start : start + length + gap;
    case ZV_POS_CENTER: return centered;
    case ZV_POS_ALIGN_START: return start;
    case ZV_POS_ALIGN_CENTER: return isOut ? start : (length - size) / 2 + start;
    case ZV_POS_ALIGN_END: return isOut ? start : start + length - size;
    case ZV_POS_PARENT_START: return low;
    case ZV_POS_PARENT_END: return high - size + 1;
    default: return isFull ? low : start;
    }
}

/// Moves one edge of a group to that of another one, where the other edge stays.
static void Align_Edges(GroupTags const& tags, ZVGroup const& group, ZVRectT<long>& area)
{
    auto const find = [&group](unsigned long id) { return Find_Record<ZVGroup>(group.palette->groups, id); };
    if (group.forcedWidth == -1) {
        if (ZVGroup const* other = find(tags.alignLeft)) {
            area.width += area.x - other->x;
            area.x = other->x;
        }
        if (ZVGroup const* other = find(tags.alignRight)) area.width = other->x + other->width - area.x;
    }
    if (group.forcedHeight == -1) {
        if (ZVGroup const* other = find(tags.alignTop)) {
            area.height += area.y - other->y;
            area.y = other->y;
        }
        if (ZVGroup const* other = find(tags.alignBottom)) area.height = other->y + other->height - area.y;
    }
}

static ZVRectT<long> Group_Size(GroupLayout const& layout, ZVGroup const& group, GroupTags const& tags)
{
    ZVRectT<long> size;
    size.width = group.forcedWidth;
    if (size.width == -1) size.width = tags.margins.left + group.naturalWidth + tags.margins.right;
    size.height = group.forcedHeight;
    if (size.height == -1) size.height = tags.margins.top + group.naturalHeight + tags.margins.bottom;
    Bounds const& known = layout.bounds;
    if (tags.fullWidth && !known.isEmpty) size.width = known.Width();
    if (tags.fullHeight && !known.isEmpty) size.height = known.Height();
    if (layout.isFinal) {
        if (tags.autoWidth) size.width += group.extraWidth;
        if (tags.autoHeight) size.height += group.extraHeight;
        size.width += layout.freeWidth * tags.growWidth / 100;
        size.height += layout.freeHeight * tags.growHeight / 100;
    }
    return size;
}

static void Store_Group(ZVGroup& group, ZVRectT<long> const& area, Margins const& margins)
{
    group.x = static_cast<int32_t>(area.x);
    group.y = static_cast<int32_t>(area.y);
    group.width = static_cast<int32_t>(area.width);
    group.height = static_cast<int32_t>(area.height);
    group.innerX = group.x + margins.left;
    group.innerY = group.y + margins.top;
    group.innerWidth = group.width - margins.left - margins.right;
    group.innerHeight = group.height - margins.top - margins.bottom;
}

/// The group beside which another one stands, or null.
static ZVGroup const* Reference_Of(ZVGroup const& group)
{
    bool const isCounted = group.beside && group.beside->node.id == group.reference;
    return isCounted ? group.beside : Find_Record<ZVGroup>(group.palette->groups, group.reference);
}

static void Lay_Out_Group(GroupLayout& layout, ZVGroup& group)
{
    GroupTags const tags = Read_Tags(group);
    ZVRectT<long> area = Group_Size(layout, group, tags);
    if (group.position != 0) {
        Bounds const& known = layout.bounds;
        long const gap = layout.isFinal ? Grown_Gap(tags.spacing, layout.freeWidth) : tags.spacing.gap;
        ZVGroup const* const reference = Reference_Of(group);
        ZVGroup const& beside = reference ? *reference : group;
        area.x = Place_Group(Horizontal_Half(group.position), reference, beside.x, beside.width, area.width,
                             gap, tags.fullWidth, known.left, known.right);
        area.y = Place_Group(Vertical_Half(group.position), reference, beside.y, beside.height, area.height,
                             gap, tags.fullHeight, known.top, known.bottom);
    }
    if (layout.isFinal) Align_Edges(tags, group, area);
    area.Offset(tags.offsetX, tags.offsetY);
    Store_Group(group, area, tags.margins);
    if (!layout.isFinal) {
        group.extraWidth = tags.autoWidth ? 0 : NoShare;
        group.extraHeight = tags.autoHeight ? 0 : NoShare;
    }
    if (!Is_Out(group)) layout.bounds.Extend(area.x, area.y, area.width, area.height);
}

namespace {
/// One axis of sharing free space: where groups stand and reach on it, and on the one across it.
struct SharedAxis {
    int32_t ZVGroup::*start, ZVGroup::*size, ZVGroup::*acrossStart, ZVGroup::*acrossSize, ZVGroup::*extra;
};
constexpr SharedAxis widths{&ZVGroup::x, &ZVGroup::width, &ZVGroup::y, &ZVGroup::height,
                            &ZVGroup::extraWidth};
constexpr SharedAxis heights{&ZVGroup::y, &ZVGroup::height, &ZVGroup::x, &ZVGroup::width,
                             &ZVGroup::extraHeight};
}  // namespace

/// Whether two groups stand side by side, so that they share the free space of a line.
static bool Is_Beside(SharedAxis const& axis, ZVGroup const& group, ZVGroup const& other)
{
    long const first = group.*axis.acrossStart, last = first + group.*axis.acrossSize - 1;
    long const from = other.*axis.acrossStart, to = from + other.*axis.acrossSize - 1;
    return &group == &other || (from <= first && first <= to) || (from <= last && last <= to);
}

/// Works out the share of each group: the natural extent that its line leaves unused, and the free space, in
/// equal parts.
static void Share_Out(SharedAxis const& axis, ZVPalette const& palette, long origin, long natural, long free)
{
    for (ZVGroup& group : Groups_Of(palette)) {
        if (group.*axis.extra == NoShare || Is_Out(group)) continue;
        long edge = LONG_MIN;
        int32_t count = 0;
        for (ZVGroup const& other : Groups_Of(palette)) {
            if (Is_Out(other) || !Is_Beside(axis, group, other)) continue;
            edge = std::max<long>(edge, other.*axis.start + other.*axis.size);
            if (other.*axis.extra != NoShare) ++count;
        }
        group.expandShare = count;
        long const unused = std::max(0L, natural - (edge - origin));
        group.*axis.extra = static_cast<int32_t>(unused / count + free / count);
    }
    for (ZVGroup& group : Groups_Of(palette))
        if (group.*axis.extra == NoShare) group.*axis.extra = 0;
}

static bool Is_In_Floater(ZVPalette const* palette)
{
    while (palette && palette->kind != ZV_KIND_FLOATER)
        palette = palette->parent;
    return palette;
}

static void Extend_By_Sub_Palettes(Bounds& bounds, ZVPalette const& palette)
{
    for (ZVPalette const& sub : Sub_Palettes_Of(palette))
        if (sub.width > 0 && sub.height > 0) bounds.Extend(sub.x, sub.y, sub.width, sub.height);
}

long Height_With_Tabs(ZVPalette const& palette, long height)
{
    return Is_In_Floater(&palette) ? height + ZVEnv->style->tabHeight : height;
}

/// The first run, the size to fill, and the shares of the free space.
static void Find_Natural_Size(GroupLayout& layout, long width, long height)
{
    ZVPalette const& palette = layout.palette;
    Bounds& bounds = layout.bounds;
    Extend_By_Sub_Palettes(bounds, palette);
    for (ZVGroup& group : Groups_Of(palette))
        Lay_Out_Group(layout, group);
    layout.naturalWidth = bounds.Width();
    layout.naturalHeight = bounds.Height();
    long const originX = bounds.left, originY = bounds.top;

    if (width != -1) {
        long const available = width - palette.marginLeft - palette.marginRight;
        layout.freeWidth = available - layout.naturalWidth;
        bounds.left = 0;
        bounds.right = available - 1;
        bounds.isEmpty = false;
    }
    if (height != -1) {
        long available = height - palette.marginTop - palette.marginBottom;
        if (Is_In_Floater(&palette)) available -= ZVEnv->style->tabHeight;
        layout.freeHeight = available - layout.naturalHeight;
        bounds.top = 0;
        bounds.bottom = available - 1;
        bounds.isEmpty = false;
    }
    Share_Out(widths, palette, originX, layout.naturalWidth, layout.freeWidth);
    Share_Out(heights, palette, originY, layout.naturalHeight, layout.freeHeight);
}

/// The tab bar lies outside the margins, across the whole window.
static void Move_Tab_Bar(ZVPalette const& palette, ZVGroup& bar)
{
    bar.width = bar.innerWidth = palette.width;
    bar.x = bar.innerX = -palette.marginLeft;
    bar.y = bar.innerY = -ZVEnv->style->tabHeight - palette.marginTop;
}

static void Store_Extents(ZVPalette& palette, GroupLayout const& layout)
{
    Bounds extent;
    Extend_By_Sub_Palettes(extent, palette);
    for (ZVGroup const& group : Groups_Of(palette))
        if (!Is_Out(group)) extent.Extend(group.x, group.y, group.width, group.height);
    int32_t const marginsX = palette.marginLeft + palette.marginRight;
    int32_t const marginsY = palette.marginTop + palette.marginBottom;
    palette.contentWidth = static_cast<int32_t>(extent.right + 1);
    palette.contentHeight = static_cast<int32_t>(extent.bottom + 1);
    palette.width = marginsX + palette.contentWidth;
    palette.height = marginsY + palette.contentHeight;
    TagItem const* const minWidth = FindTagItem(ZV_PAL_MIN_WIDTH, palette.tags);
    TagItem const* const minHeight = FindTagItem(ZV_PAL_MIN_HEIGHT, palette.tags);
    palette.minWidth =
        marginsX + static_cast<int32_t>(minWidth ? Tag_Number(*minWidth) : layout.naturalWidth);
    palette.minHeight =
        marginsY + static_cast<int32_t>(minHeight ? Tag_Number(*minHeight) : layout.naturalHeight);
}

void Build_Groups(ZVPalette* palette, long width, long height)
{
    if (!palette) return;
    for (ZVGroup& group : Groups_Of(*palette))
        group.oldRect = {group.x, group.y, group.width, group.height};
    GroupLayout layout{*palette};
    Find_Natural_Size(layout, width, height);
    layout.isFinal = true;
    for (ZVGroup& group : Groups_Of(*palette))
        Lay_Out_Group(layout, group);

    auto const left = static_cast<int32_t>(layout.bounds.left);
    auto const top = static_cast<int32_t>(layout.bounds.top);
    for (ZVGroup& group : Groups_Of(*palette)) {
        group.x -= left;
        group.y -= top;
        group.innerX -= left;
        group.innerY -= top;
    }
    Store_Extents(*palette, layout);
    for (ZVGroup& group : Groups_Of(*palette)) {
        if (group.flags & ZV_GRPF_TAB_BAR) Move_Tab_Bar(*palette, group);
        if (group.oldRect != ZVRectT<int32_t>{group.x, group.y, group.width, group.height})
            group.flags |= ZV_GRPF_MOVED;
    }
}
