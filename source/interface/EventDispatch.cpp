// The way of an event to the first callback that is there for it: of the item, its group, its palette, or the
// application.
#include "EventWalk.h"
#include "PaletteTree.h"

#include "HitTest.h"
#include "ZVLibInternal.h"

#include <optional>

/// The report bits and those of a key last for one event.
static constexpr uint32_t reportBits = ZV_MOD_PRESS | ZV_MOD_CHANGE | ZV_MOD_RELEASE;
static constexpr uint32_t oneEventBits = reportBits | ZV_MOD_REPEAT | ZV_MOD_KEY_UP;

ZVEvent Make_Event(uint16_t type)
{
    ZVEvent event{};
    event.type = type;
    event.modifiers = ZVEnv->modifiers;
    event.x = ZVEnv->mouseX;
    event.y = ZVEnv->mouseY;
    event.deltaX = ZVEnv->deltaX;
    event.deltaY = ZVEnv->deltaY;
    event.ticks = ZVEnv->ticks;
    event.tablet = &ZVEnv->tablet;
    if (type >= ZV_EVENT_MOUSE_MOVE && type <= ZV_EVENT_TICK)
        event.modifiers = Command_As_Control(event.modifiers);
    return event;
}

void Call_Back(void (*callback)(ZVEvent*), ZVEvent& event)
{
    if (!callback) callback = ZVEnv->callback;
    if (callback) callback(&event);
}

void Enter_Palette(ZVEvent& event, ZVPalette* palette)
{
    event.palette = palette;
    ZVEnv->currentPalette = palette;
}

/// A pop-up gets the keys first, then a modal palette; one without a callback is passed over.
static ZVPalette* Key_Palette()
{
    ZVPalette* const popUp = FindPaletteZV(static_cast<unsigned short>(ZVEnv->lastPaletteId));
    if (popUp && popUp->kind == ZV_KIND_TRANSIENT && popUp->callback) return popUp;
    ZVPalette* const modal = ZVEnv->modalPalette;
    return modal && modal->kind == ZV_KIND_MODAL && modal->callback ? modal : nullptr;
}

/// The keys of a modal palette act while it is open.
static ZVPalette* Action_Palette()
{
    ZVPalette* const modal = ZVEnv->modalPalette;
    return modal && modal->keySection && modal->callback ? modal : nullptr;
}

/// To the palette, or without one to the application.
static void Send_To_Palette(ZVEvent& event, ZVPalette* palette)
{
    if (palette) Enter_Palette(event, palette);
    Call_Back(palette ? palette->callback : nullptr, event);
}

static void Send_Key(ZVEvent& event, unsigned long arg)
{
    event.item = arg >> 16 & 0xFFFF;
    event.key = static_cast<uint32_t>(arg & 0xFFFF);
    Send_To_Palette(event, Key_Palette());
}

static void Send_Gadget(ZVEvent& event, ZVItem* item)
{
    if (!item) return;
    ZVGroup* const group = item->group;
    ZVPalette* const palette = group->palette;
    LivingPalette const watch(palette);
    Process_Dependencies(item);
    if (!watch.Is_Known()) return;

    event.item = Tag_Word(item);
    Enter_Palette(event, palette);
    ZVPlace const place = ZVEnv->mousePalette ? Mouse_On_Screen() - Screen_Place_Of_Item(item) : ZVPlace();
    event.x = static_cast<int32_t>(place.x);
    event.y = static_cast<int32_t>(place.y);
    auto* const callback = item->callback ? item->callback : group->callback;
    Call_Back(callback ? callback : palette->callback, event);
}

static void Send_Palette_Event(ZVEvent& event, ZVPalette* palette)
{
    event.item = Tag_Word(palette);
    if (palette && event.type == ZV_EVENT_SCROLL_H)
        event.item = Tag_Word(palette->scroll[ZV_SCROLL_H_VALUE - ZV_SCROLL_H_MIN]);
    if (palette && event.type == ZV_EVENT_SCROLL_V)
        event.item = Tag_Word(palette->scroll[ZV_SCROLL_V_VALUE - ZV_SCROLL_H_MIN]);
    if (event.type == ZV_EVENT_ASK_CLOSE) event.result = 1;
    Send_To_Palette(event, palette);
}

static bool Is_Palette_Event(uint16_t type)
{
    return (type >= ZV_EVENT_SETUP && type <= ZV_EVENT_DOC_DEACTIVATE) ||
           (type >= ZV_EVENT_SCROLL_H && type <= ZV_EVENT_ZOOM) || type == ZV_EVENT_TAB_ACTIVATE ||
           type == ZV_EVENT_TAB_DEACTIVATE || type == ZV_EVENT_CLOSE_BOX;
}

/// Sends the event by its number. False when a tick was broken off.
static bool Send(ZVEvent& event, unsigned long arg)
{
    switch (event.type) {
    case ZV_EVENT_KEY: Send_Key(event, arg); return true;
    case ZV_EVENT_MOUSE_MOVE: Send_Mouse_Move(event); return true;
    case ZV_EVENT_MOUSE_DOWN:
    case ZV_EVENT_MOUSE_UP: Send_Mouse_Button(event); return true;
    case ZV_EVENT_GADGET: Send_Gadget(event, reinterpret_cast<ZVItem*>(arg)); return true;
    case ZV_EVENT_TICK: return Send_Tick(event);
    case ZV_EVENT_ACTION:
        event.item = arg;
        Send_To_Palette(event, Action_Palette());
        return true;
    default: break;
    }
    if (Is_Palette_Event(event.type)) {
        Send_Palette_Event(event, reinterpret_cast<ZVPalette*>(arg));
        return true;
    }
    if (event.type <= ZV_EVENT_CLOSE_BOX) event.item = arg;
    Call_Back(nullptr, event);
    return true;
}

static bool Is_Forwarded(uint16_t type)
{
    return (type >= ZV_EVENT_SETUP && type <= ZV_EVENT_DOC_DEACTIVATE) || type == ZV_EVENT_TAB_ACTIVATE ||
           type == ZV_EVENT_TAB_DEACTIVATE;
}

/// Sends the event of a palette to the palettes that lie in it. A palette that is in no window hands on only
/// that it was set up.
static void Forward(uint16_t type, ZVPalette* palette, LivingPalette const& watch)
{
    if (!watch.Is_Known() || (type != ZV_EVENT_SETUP && !FindPaletteZV(palette))) return;
    Node* node = List_First(&palette->subPalettes);
    while (node) {
        Node* const followed = List_Next(node);
        Do_Event(type, Tag_Word(node));
        if (!watch.Is_Known()) return;
        node = Next_After_Call(&palette->subPalettes, node, followed);
    }
}

unsigned long Do_Event(unsigned short type, unsigned long arg)
{
    if (type == ZV_EVENT_NONE) {
        ZVEnv->modifiers &= ~reportBits;
        return 0;
    }
    ZVEvent event = Make_Event(type);
    std::optional<LivingPalette> forwarder;
    if (Is_Forwarded(type) && arg) forwarder.emplace(reinterpret_cast<ZVPalette*>(arg));
    bool isComplete;
    {
        CurrentPalette const current(ZVEnv->currentPalette);
        isComplete = Send(event, arg);
    }
    if (!isComplete) event.result = 1;
    if (event.palette) Call_Hooks(event.palette, type);
    if (type == ZV_EVENT_KEY && event.result == 0)
        Process_Keys(static_cast<long>(arg & 0xFFFF), event.modifiers);
    ZVEnv->modifiers &= ~oneEventBits;
    if (forwarder) Forward(type, reinterpret_cast<ZVPalette*>(arg), *forwarder);
    return event.result;
}
