// Items coming on screen, leaving it, and drawn again when they change.
#include "MacItem.h"
#include "MacFrame.h"

#include "interface/ItemParts.h"
#include "interface/Layout.h"
#include "interface/PaletteTree.h"

#include <utility>

/// Of all items but text fields and lists, for which being on screen is all there is to know.
static ZVNativeItem onScreen;

/// How far the frame of a list reaches beyond its item; that of a text field lies inside.
static constexpr int ListFrame = 1;

static bool Is_Text_Field(ZVItem const& item)
{
    return item.type == ZV_GAD_STRING || item.type == ZV_GAD_INTEGER || item.type == ZV_GAD_FLOAT ||
           item.type == ZV_GAD_EDITOR;
}

/// Types that draw themselves, with or without a function.
static bool Is_Custom_Type(ZVGadgetType type)
{
    return type <= ZV_GAD_RADIO || type == ZV_GAD_SLIDER || (type >= ZV_GAD_HPROP && type <= ZV_GAD_LABEL);
}

/// Null for a gadget of a type that nobody knows. Throws without memory.
static ZVNativeItem* Make_Native(ZVItem& item)
{
    if (item.kind != ZV_ITEM_GADGET) return &onScreen;
    if (Is_Text_Field(item)) return Make_Text_Field(item);
    if (item.customFunc || Is_Custom_Type(item.type)) return &onScreen;
    return item.type == ZV_GAD_LIST ? Make_List(item) : nullptr;
}

/// Whether the item is a gadget that its function draws.
static bool Is_Custom(ZVItem const& item)
{
    return item.kind == ZV_ITEM_GADGET && item.native == &onScreen;
}

static void Draw_Plain(ZVItem& item)
{
    switch (item.kind) {
    case ZV_ITEM_LABEL: Make_SysText(item); break;
    case ZV_ITEM_PICTURE: Make_SysImage(item); break;
    case ZV_ITEM_LINE: Make_SysLine(item); break;
    default: item.native->Draw(); break;
    }
}

static void Draw_Custom(ZVItem& item)
{
    LivingPalette const watch(item.group->palette);
    bool const isWhole = Finds_Memory([&] {
        Send_Custom_Event(item, item.flags & ZV_ITEMF_DISABLED ? ZV_CUSTOM_DRAW_DISABLED : ZV_CUSTOM_DRAW);
    });
    if (isWhole || !watch.Is_Known()) return;
    if (ZVPort* const port = Port_Of(item)) port->isIncomplete = true;
}

void Draw_SysItem(ZVItem& item)
{
    if (Is_Custom(item))
        Draw_Custom(item);
    else
        Paint(Port_Of(item), [&] { Draw_Plain(item); });
}

/// A native object that finds no memory leaves the item without one, until its window is drawn again.
static void Try_Native(ZVItem& item)
{
    try {
        item.native = Make_Native(item);
    } catch (std::bad_alloc const&) {
        if (ZVPort* port = Port_Of(item)) port->isIncomplete = true;
    }
}

void Complete_SysItem(ZVItem& item)
{
    if (item.kind != ZV_ITEM_GADGET || (!Is_Text_Field(item) && item.type != ZV_GAD_LIST)) return;
    if (!item.native)
        Make_SysItem(&item);
    else if (ZVEnv->focusedTextItem != &item)
        Mac_Update_Item(&item);
}

long Make_SysItem(ZVItem* item)
{
    if (!item || item->flags & ZV_ITEMF_HIDDEN || !item->group->palette->window) return 1;
    // An item beside a reference that has no place has none itself, and does not show.
    if (item->x == Unplaced || item->y == Unplaced) return 1;
    item->flags &= ~ZV_ITEMF_MOVED;
    if (!item->native) {
        LivingPalette const watch(item->group->palette);
        Try_Native(*item);
        if (Is_Custom(*item)) Send_Custom_Event(*item, ZV_CUSTOM_CREATE);
        if (!watch.Is_Known() || !item->native) return 1;
    }
    Draw_SysItem(*item);
    return 1;
}

static void Erase(ZVItem const& item, int frame)
{
    if (ZVPort* port = Port_Of(item))
        port->surface.Fill(Outset(Area_Of(item), frame), Pen_Color(ZV_PEN_PALETTE));
}

/// Erases a text, an image or a line by the function that draws it.
static void Erase_Plain(ZVItem& item)
{
    uint32_t const flags = item.flags;
    item.flags |= ZV_ITEMF_HIDDEN;
    Draw_SysItem(item);
    item.flags = flags;
}

static void Destroy_Native(ZVItem& item)
{
    Erase(item, item.type == ZV_GAD_LIST ? ListFrame : 0);
    for (ZVItem** focus : {&ZVEnv->focusedTextItem, &ZVEnv->focusedListItem})
        if (*focus == &item) *focus = nullptr;
    delete std::exchange(item.native, nullptr);
}

void Destroy_SysItem(ZVItem* item)
{
    if (!item || !item->native) return;
    if (item->native != &onScreen) {
        Destroy_Native(*item);
        return;
    }
    bool const isGadget = item->kind == ZV_ITEM_GADGET;
    if (!isGadget)
        Erase_Plain(*item);
    else if (ZVEnv->eraseOnDestroy)
        Erase(*item, 0);
    item->native = nullptr;
    if (!isGadget) return;
    if (ZVEnv->trackingItem == item) ZVEnv->trackingItem = nullptr;
    // The function may close the palette, so it comes last.
    Send_Custom_Event(*item, ZV_CUSTOM_DESTROY);
}

void Enable_SysItem(ZVItem* item)
{
    if (item && item->native) Draw_SysItem(*item);
}

void Disable_SysItem(ZVItem* item)
{
    if (item && item->native) Draw_SysItem(*item);
}

void Mac_Update_Item(ZVItem* item)
{
    if (item && item->native) Paint(Port_Of(*item), [=] { item->native->Show_State(); });
}
