#include "FakeDesktop.h"

#include <string>

static constexpr long FrameTop = 22, FrameSide = 1;

static FakeDesktop desktop;

FakeDesktop& FakeDesktop::Get()
{
    return desktop;
}

// ---- events -----------------------------------------------------------------------------------------------

static void Call(void (*callback)(ZVEvent*), unsigned short type, ZVPalette* palette, unsigned long item)
{
    ZVEvent event{};
    event.type = type;
    event.item = item;
    event.palette = palette;
    if (callback) callback(&event);
}

unsigned long Do_Event(unsigned short type, unsigned long arg)
{
    if (type == ZV_EVENT_GADGET) {
        auto* const item = reinterpret_cast<ZVItem*>(arg);
        desktop.Note("gadget ", item->node.id);
        Process_Dependencies(item);
        Call(item->callback, type, item->group->palette, arg);
        return 0;
    }
    auto* const palette = reinterpret_cast<ZVPalette*>(arg);
    desktop.Note(std::to_string(type) + " of ", palette->node.id);
    Call(palette->callback, type, palette, arg);
    if (!FindPaletteZV(palette)) return 0;
    for (Node* sub = palette->subPalettes.head; sub->next; sub = sub->next)
        Do_Event(type, Tag_Word(sub));
    return 0;
}

long Do_CustomEvent(ZVCustomEvent* event)
{
    return event->item->customFunc ? event->item->customFunc(event) : 0;
}

static void Custom(ZVItem* item, ZVCustomEventType type)
{
    ZVCustomEvent event{};
    event.type = type;
    event.item = item;
    Do_CustomEvent(&event);
}

void Do_WindowActivation(ZVWindow* window)
{
    if (!window->activePalette || ZVEnv->activePalette == window->activePalette) return;
    ZVEnv->activePalette = window->activePalette;
    Do_Event(ZV_EVENT_ACTIVATE, Tag_Word(window->activePalette));
}

long HandleGUIZV()
{
    if (desktop.modalLoop) desktop.modalLoop(ZVEnv->modalPalette);
    return 1;
}

long ButtonCustomFunc(ZVCustomEvent*)
{
    return 1;
}
long CheckRadioCustomFunc(ZVCustomEvent*)
{
    return 1;
}
void Update_Cursor() {}

// ---- windows ----------------------------------------------------------------------------------------------

long Make_SysWindow(ZVWindow* window, ZVPalette*)
{
    if (!desktop.hasWindows) return 0;
    window->sysWindow = reinterpret_cast<ZVSysWindow*>(window);
    return 1;
}
void Rebuild_SysWindow(ZVWindow* window, ZVPalette* palette)
{
    window->width = palette->width;
    window->height = palette->height + palette->y;
}
void Free_SysWindow(ZVWindow* window)
{
    desktop.log.push_back("free window");
    Free_Window(window);
}
void Set_SysWindowName(ZVWindow*, char const* name)
{
    desktop.log.push_back(std::string("title ") + name);
}
void Mac_Select_Window(ZVWindow*) {}
void GetWindowRectZV(ZVWindow const* window, ZVRectT<long>* rect)
{
    rect->Set(window->left - FrameSide, window->top - FrameTop, window->width + 2 * FrameSide,
              window->height + FrameTop + FrameSide);
}
void Get_SysWindowDimFromPalette(ZVPalette const* palette, ZVRectT<long>* size)
{
    size->Set(0, 0, palette->width + 2 * FrameSide, palette->height + FrameTop + FrameSide);
}
void OffsetWindowToClient(ZVPalette const*, long* x, long* y)
{
    *x += FrameSide;
    *y += FrameTop;
}
void Move_Sliders(ZVWindow*) {}
void Mac_Validate(ZVWindow*, ZVRectT<long> const&) {}
void Activate_First_Gadget(ZVPalette* palette)
{
    desktop.Note("focus in ", palette->node.id);
}
void Mac_End_Modal_Loop(ZVPalette* palette)
{
    desktop.Note("end loop of ", palette->node.id);
}

// ---- items ------------------------------------------------------------------------------------------------

long Make_SysItem(ZVItem* item)
{
    if ((item->flags & ZV_ITEMF_HIDDEN) || !item->group->palette->window) return 1;
    desktop.Note("make ", item->node.id);
    item->native = reinterpret_cast<ZVNativeItem*>(item);
    item->flags &= ~ZV_ITEMF_MOVED;
    Custom(item, ZV_CUSTOM_CREATE);
    return 1;
}
void Destroy_SysItem(ZVItem* item)
{
    if (!item->native) return;
    desktop.Note("destroy ", item->node.id);
    item->native = nullptr;
    Custom(item, ZV_CUSTOM_DESTROY);
}
long Make_SysGroup(ZVGroup* group)
{
    if (group->flags & ZV_GRPF_HIDDEN) return 1;
    group->flags &= ~ZV_GRPF_MOVED;
    for (Node* item = group->items.head; item->next; item = item->next)
        Make_SysItem(reinterpret_cast<ZVItem*>(item));
    return 1;
}
void Destroy_SysGroup(ZVGroup* group)
{
    for (Node* item = group->items.head; item->next; item = item->next)
        Destroy_SysItem(reinterpret_cast<ZVItem*>(item));
}
void Make_SysGroupFrame(ZVGroup*) {}
void Destroy_SysGroupFrame(ZVGroup*) {}
void Enable_SysItem(ZVItem* item)
{
    desktop.Note("enable ", item->node.id);
}
void Disable_SysItem(ZVItem* item)
{
    desktop.Note("disable ", item->node.id);
}
void Mac_Update_Item(ZVItem* item)
{
    desktop.Note("update ", item->node.id);
}
ZVDrawInfo* DrawBeginZV(ZVPalette*)
{
    return nullptr;
}

ZVBitmap* FindIconZV(unsigned long id)
{
    static ZVBitmap* const icon = AllocBitmapZV(30, 12, ZV_BITMAP_RGBA8, "icon");
    return id == 500 ? icon : nullptr;
}
