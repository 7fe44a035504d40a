// Groups on screen: their items together, and the frame around them.
#include "MacDraw.h"
#include "MacFrame.h"
#include "MacItem.h"

#include "interface/HitTest.h"
#include "interface/PaletteTree.h"

static constexpr int TitleInset = 10;

/// What items may draw around their rectangles.
static constexpr int ItemFrame = 2;

static bool Is_Hidden(ZVGroup const& group)
{
    return group.flags & ZV_GRPF_HIDDEN;
}

long Make_SysGroup(ZVGroup* group)
{
    if (!group || Is_Hidden(*group)) return 1;
    LivingPalette const watch(group->palette);
    for (uint32_t const onTop : {0U, uint32_t{ZV_ITEMF_ON_TOP}}) {
        for (ZVItem& item : Items_Of(*group)) {
            if ((item.flags & ZV_ITEMF_ON_TOP) != onTop) continue;
            Make_SysItem(&item);
            if (!watch.Is_Known() || Is_Hidden(*group)) return 1;
        }
    }
    Make_SysGroupFrame(group);
    group->flags &= ~ZV_GRPF_MOVED;
    return 1;
}

void Destroy_SysGroup(ZVGroup* group)
{
    if (!group) return;
    LivingPalette const watch(group->palette);
    for (ZVItem& item : Items_Of(*group)) {
        Destroy_SysItem(&item);
        if (!watch.Is_Known()) return;
    }
    Destroy_SysGroupFrame(group);
}

// ---- frames -----------------------------------------------------------------------------------------------

static HostRect Area_Of(ZVGroup const& group)
{
    ZVPlace const corner = Place_In_System_Window(group.palette->window) + Place_Of_Group(&group);
    return Placed(ZVDrawInfo{}).Box(corner.x, corner.y, group.width, group.height);
}

/// The title's line lies with its middle on the upper edge.
static void Draw_Title(ZVPort& port, HostRect const& area, char const* title, uint32_t color)
{
    FittedText const fitted({}, title, area.Width() - 2 * TitleInset);
    TextFont const font = Find_Font({});
    int const ascent = static_cast<int>(font.Ascent()), descent = static_cast<int>(font.Descent());
    int const left = area.left + TitleInset, baseLine = area.top + (ascent + descent) / 2 - descent;
    HostRect const line{left, baseLine - ascent, left + static_cast<int>(font.Width(fitted.Text())),
                        baseLine + descent};
    PortClip const clip(port, {area.left, line.top, area.right, line.bottom});
    port.surface.Fill(line, Pen_Color(ZV_PEN_PALETTE));
    font.Draw(port.surface, fitted.Text(), left, baseLine, color);
}

static void Draw_Frame(ZVGroup const& group, unsigned long pen)
{
    if (Is_Hidden(group) || !FindTagItem(ZV_GRP_BORDER, group.tags)) return;
    ZVPort* const port =
        Is_On_Screen(*group.palette) ? Mac_Window_Port(System_Window_Of(group.palette->window)) : nullptr;
    if (!port) return;
    HostRect const area = Area_Of(group);
    uint32_t const color = Pen_Color(pen);
    Draw_Edges(*port, area, color, color);
    if (group.title && *group.title) Paint(port, [&] { Draw_Title(*port, area, group.title, color); });
}

void Make_SysGroupFrame(ZVGroup* group)
{
    if (group) Draw_Frame(*group, ZV_PEN_TEXT);
}

void Destroy_SysGroupFrame(ZVGroup* group)
{
    if (group) Draw_Frame(*group, ZV_PEN_PALETTE);
}

// ---- redrawing --------------------------------------------------------------------------------------------

static bool Touches(HostRegion const& region, HostRect const& rect)
{
    for (int i = 0; i < region.Box_Count(); ++i)
        if (!Intersection(region.Box(i), rect).IsEmpty()) return true;
    return false;
}

void Refresh_Items(ZVGroup& group, HostRegion const& region)
{
    if (Is_Hidden(group) || !Touches(region, Outset(Area_Of(group), ItemFrame))) return;
    LivingPalette const watch(group.palette);
    for (ZVItem& item : Items_Of(group)) {
        if (!item.native || !Touches(region, Outset(Area_Of(item), ItemFrame))) continue;
        Draw_SysItem(item);
        if (!watch.Is_Known() || Is_Hidden(group)) return;
    }
    Make_SysGroupFrame(&group);
}
