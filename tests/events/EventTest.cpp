#include "EventTest.h"

std::function<void(std::string const&, ZVEvent*)> EventTest::onEvent;
std::function<void(ZVCustomEvent*)> EventTest::onCustom;

static std::string entries;

static void Add_Entry(std::string const& entry)
{
    entries += (entries.empty() ? "" : " ") + entry;
}

static void Told(std::string const& who, ZVEvent* event)
{
    Add_Entry(who + ":" + std::to_string(event->type));
    if (EventTest::onEvent) EventTest::onEvent(who, event);
}

/// The level is that of the callback: palette, group or item.
template <int level> static void Callback(ZVEvent* event)
{
    static char const letters[] = "PGI";
    Told(letters[level] + std::to_string(event->palette ? event->palette->node.id : 0), event);
}

void EventTest::Application(ZVEvent* event)
{
    Told("A", event);
}

long EventTest::Custom(ZVCustomEvent* event)
{
    Add_Entry("C" + std::to_string(event->item->node.id) + ":" + std::to_string(event->type));
    if (onCustom) onCustom(event);
    return 1;
}

EventTest::EventTest()
{
    desktop = {};
    entries.clear();
    onEvent = nullptr;
    onCustom = nullptr;
    ZVEnv->callback = Application;
}

EventTest::~EventTest()
{
    while (Node* node = List_First(&ZVEnv->windows)) {
        auto* window = reinterpret_cast<ZVWindow*>(node);
        while (Node* palette = List_First(&window->palettes))
            Close(reinterpret_cast<ZVPalette*>(palette));
        while (Node* hook = RemHead(&window->hooks))
            delete reinterpret_cast<ZVEventHook*>(hook);
        Remove(node);
        delete window;
    }
}

ZVWindow* EventTest::Add_Window(int32_t left, int32_t top, int32_t width, int32_t height)
{
    auto* window = new ZVWindow{};
    NewList(&window->palettes);
    NewList(&window->hooks);
    window->left = left;
    window->top = top;
    window->width = width;
    window->height = height;
    AddTail(&ZVEnv->windows, &window->node);
    return window;
}

ZVWindow* EventTest::Add_Pseudo_Window(ZVWindow* parent, int32_t left, int32_t top)
{
    ZVWindow* window = Add_Window(left, top);
    window->parent = parent;
    return window;
}

static ZVPalette* Make_Palette(uint32_t id, uint32_t kind)
{
    auto* palette = new ZVPalette{};
    NewList(&palette->groups);
    NewList(&palette->subPalettes);
    palette->node.id = id;
    palette->serial = ++ZVEnv->paletteCount;
    palette->kind = kind;
    palette->x = 2;
    palette->y = 3;
    palette->originX = 4;
    palette->originY = 5;
    palette->callback = Callback<0>;
    return palette;
}

ZVPalette* EventTest::Add_Palette(ZVWindow* window, uint32_t id, uint32_t kind)
{
    ZVPalette* palette = Make_Palette(id, kind);
    palette->window = window;
    AddTail(&window->palettes, &palette->node);
    window->activePalette = palette;
    return palette;
}

ZVPalette* EventTest::Add_SubPalette(ZVPalette* parent, uint32_t id)
{
    ZVPalette* palette = Make_Palette(id, ZV_KIND_FIXED);
    palette->window = parent->window;
    palette->parent = parent;
    AddTail(&parent->subPalettes, &palette->node);
    return palette;
}

ZVGroup* EventTest::Add_Group(ZVPalette* palette, uint32_t id, ZVRectT<int32_t> const& area)
{
    auto* group = new ZVGroup{};
    NewList(&group->items);
    group->node.id = id;
    group->palette = palette;
    group->x = area.x;
    group->y = area.y;
    group->innerX = area.x + 1;
    group->innerY = area.y + 1;
    group->width = area.width;
    group->height = area.height;
    group->callback = Callback<1>;
    AddTail(&palette->groups, &group->node);
    return group;
}

ZVItem* EventTest::Add_Item(ZVGroup* group, uint32_t id, ZVRectT<int32_t> const& area)
{
    auto* item = new ZVItem{};
    item->node.id = id;
    item->kind = ZV_ITEM_GADGET;
    item->type = ZV_GAD_CUSTOM;
    item->group = group;
    item->x = area.x;
    item->y = area.y;
    item->width = area.width;
    item->height = area.height;
    item->callback = Callback<2>;
    item->customFunc = Custom;
    AddTail(&group->items, &item->node);
    return item;
}

ZVCustomEvent EventTest::Custom_Event(uint16_t type, ZVItem* item)
{
    ZVCustomEvent event{};
    event.type = type;
    event.item = item;
    return event;
}

static void Forget(ZVItem* item)
{
    for (ZVItem** place :
         {&ZVEnv->trackedItem, &ZVEnv->trackingItem, &ZVEnv->tickItem, &ZVEnv->lastClickItem})
        if (*place == item) *place = nullptr;
}

void EventTest::Close(ZVPalette* palette)
{
    while (Node* sub = List_First(&palette->subPalettes))
        Close(reinterpret_cast<ZVPalette*>(sub));
    while (Node* group = RemHead(&palette->groups)) {
        while (Node* item = RemHead(&reinterpret_cast<ZVGroup*>(group)->items)) {
            Forget(reinterpret_cast<ZVItem*>(item));
            delete reinterpret_cast<ZVItem*>(item);
        }
        delete reinterpret_cast<ZVGroup*>(group);
    }
    for (ZVPalette** place : {&ZVEnv->mousePalette, &ZVEnv->modalPalette, &ZVEnv->activeDocument,
                              &ZVEnv->currentPalette, &palette->window->activePalette})
        if (*place == palette) *place = nullptr;
    Remove(&palette->node);
    delete palette;
}

std::string EventTest::Log()
{
    return std::exchange(entries, {});
}
