// The items that draw themselves without a function: texts, images, lines.
#include "MacDraw.h"
#include "MacItem.h"
#include "MacWindow.h"

#include "interface/HitTest.h"
#include "interface/Layout.h"
#include "interface/PaletteTree.h"

ZVPort* Port_Of(ZVItem const& item)
{
    ZVPalette const& palette = *item.group->palette;
    return Is_On_Screen(palette) ? Mac_Window_Port(System_Window_Of(palette.window)) : nullptr;
}

/// A rectangle of the item's window in the system window.
static HostRect In_System_Window(ZVItem const& item, ZVRectT<int32_t> const& rect)
{
    ZVPlace const corner = Place_In_System_Window(item.group->palette->window) + ZVPlace{rect.x, rect.y};
    return Placed(ZVDrawInfo{}).Box(corner.x, corner.y, rect.width, rect.height);
}

HostRect Area_Of(ZVItem const& item)
{
    return In_System_Window(item, Item_Rect(item));
}

static bool Is_Disabled(ZVItem const& item)
{
    return item.flags & ZV_ITEMF_DISABLED;
}

/// Draws an item that shows, and erases a hidden one where it was drawn last.
template <typename Draw> static void Make(ZVItem& item, Draw draw)
{
    ZVPort* const port = Port_Of(item);
    if (!port) return;
    if (item.flags & ZV_ITEMF_HIDDEN) {
        port->surface.Fill(In_System_Window(item, item.oldRect), Pen_Color(ZV_PEN_PALETTE));
        return;
    }
    draw(*port, Area_Of(item));
    item.oldRect = Item_Rect(item);
}

void Make_SysText(ZVItem& item)
{
    Make(item, [&item](ZVPort& port, HostRect const& box) {
        uint32_t const ground = Pen_Color(ZV_PEN_PALETTE), ink = Pen_Color(ZV_PEN_TEXT);
        port.surface.Fill(box, ground);
        if (!item.text) return;
        PortClip const clip(port, box);
        TextFont const font = Find_Font({GetItemFont(&item), nullptr});
        std::string_view const text = Drawn_Part(item.text);
        long const ascent = font.Ascent(), height = ascent + font.Descent();
        long const x = box.left + (box.Width() - font.Width(text)) / 2;
        long const baseLine = box.top + (box.Height() - height) / 2 + ascent;
        font.Draw(port.surface, text, static_cast<int>(x), static_cast<int>(baseLine),
                  Is_Disabled(item) ? Dimmed_Ink(ink, ground) : ink);
    });
}

void Make_SysImage(ZVItem& item)
{
    Make(item, [&item](ZVPort&, HostRect const&) {
        ZVNativeBitmap* const composed = item.image ? Compose_Image(*item.image) : nullptr;
        if (!composed) return;
        if (Is_Disabled(item)) DisableBitmapZV(composed, nullptr);
        ZVDrawInfo* const draw = DrawBeginZV(&item);
        DrawBitmapZV(draw, composed, 0, 0);
        DrawEndZV(draw);
        FreeBitmapZV(composed);
    });
}

void Make_SysLine(ZVItem& item)
{
    Make(item, [&item](ZVPort& port, HostRect const& box) {
        port.surface.Fill(box, Pen_Color(ZV_PEN_TEXT, Is_Disabled(item)));
    });
}
