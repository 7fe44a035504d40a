#include "EventTest.h"

std::function<void(std::string const&, ZVEvent*)> EventTest::onEvent;
std::function<void(ZVCustomEvent*)> EventTest::onCustom;
static std::string entries;

static void Told(std::string const& who, int type)
{
    entries += (entries.empty() ? "" : " ") + who + ":" + std::to_string(type);
}

void EventTest::Application(ZVEvent* event)
{
    Told("A", event->type);
    if (onEvent) onEvent("A", event);
}

/// The level is that of the callback: palette, group or item.
template <char level> static void Callback(ZVEvent* event)
{
    std::string const who = level + std::to_string(event->palette->node.id);
    Told(who, event->type);
    if (EventTest::onEvent) EventTest::onEvent(who, event);
}

long EventTest::Custom(ZVCustomEvent* event)
{
    Told("C" + std::to_string(event->item->node.id), event->type);
    if (onCustom) onCustom(event);
    return 1;
}

std::string EventTest::Log()
{
    return std::exchange(entries, {});
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
    while (Node* window = RemHead(&ZVEnv->windows)) {
        auto& record = *reinterpret_cast<ZVWindow*>(window);
        while (Node* palette = List_First(&record.palettes))
            Close(reinterpret_cast<ZVPalette*>(palette));
        delete &record;
    }
}

ZVWindow* EventTest::Add_Window(int32_t left, int32_t top, ZVWindow* parent)
{
    auto* window = new ZVWindow{};
    NewList(&window->palettes);
    NewList(&window->hooks);
    window->left = left;
    window->top = top;
    window->width = 200;
    window->height = 100;
    window->parent = parent;
    AddTail(&ZVEnv->windows, &window->node);
    return window;
}

ZVPalette* EventTest::Add_Palette(ZVWindow* window, uint32_t id, uint32_t kind, ZVPalette* parent)
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
    palette->callback = Callback<'P'>;
    palette->window = window;
    palette->parent = parent;
    AddTail(parent ? &parent->subPalettes : &window->palettes, &palette->node);
    if (!parent) window->activePalette = palette;
    return palette;
}

ZVGroup* EventTest::Add_Group(ZVPalette* palette, long x, long y, long width, long height)
{
    auto* group = new ZVGroup{};
    NewList(&group->items);
    group->palette = palette;
    group->x = static_cast<int32_t>(x);
    group->y = static_cast<int32_t>(y);
    group->innerX = group->x + 1;
    group->innerY = group->y + 1;
    group->width = static_cast<int32_t>(width);
    group->height = static_cast<int32_t>(height);
    group->callback = Callback<'G'>;
    AddTail(&palette->groups, &group->node);
    return group;
}

ZVItem* EventTest::Add_Item(ZVGroup* group, uint32_t id, long x, long y, long width, long height)
{
    auto* item = new ZVItem{};
    item->node.id = id;
    item->kind = ZV_ITEM_GADGET;
    item->type = ZV_GAD_CUSTOM;
    item->group = group;
    item->x = static_cast<int32_t>(x);
    item->y = static_cast<int32_t>(y);
    item->width = static_cast<int32_t>(width);
    item->height = static_cast<int32_t>(height);
    item->callback = Callback<'I'>;
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

void EventTest::Close(ZVPalette* palette)
{
    while (Node* sub = List_First(&palette->subPalettes))
        Close(reinterpret_cast<ZVPalette*>(sub));
    while (Node* group = RemHead(&palette->groups)) {
        while (Node* node = RemHead(&reinterpret_cast<ZVGroup*>(group)->items)) {
            auto* item = reinterpret_cast<ZVItem*>(node);
            for (ZVItem** place : {&ZVEnv->trackedItem, &ZVEnv->trackingItem, &ZVEnv->tickItem})
                if (*place == item) *place = nullptr;
            delete item;
        }
        delete reinterpret_cast<ZVGroup*>(group);
    }
    for (ZVPalette** place : {&ZVEnv->mousePalette, &ZVEnv->currentPalette, &palette->window->activePalette})
        if (*place == palette) *place = nullptr;
    Remove(&palette->node);
    delete palette;
}
