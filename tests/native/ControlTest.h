// Controls on the desktop in memory: the mouse on them, and what is drawn.
#pragma once

#include "FieldTest.h"

#include <utility>

class ControlTest : public FieldTest {
protected:
    /// Shows a group with one gadget of id 1 and that size.
    ZVItem* Show_One(ZVGadgetType type, long width, long height, std::vector<TagItem> tags = {},
                     char const* label = nullptr)
    {
        tags.insert(tags.begin(), {{ZV_ITEM_WIDTH, Tag_Word(width)}, {ZV_ITEM_HEIGHT, Tag_Word(height)}});
        tags.push_back({});
        Show([&] {
            InitGroupZV();
            AddGadgetZV(1, 0, 0, type, ZV_SIZE_CUSTOM, label, tags.data());
            EndGroupZV(1, 0, 0, "", nullptr);
        });
        return Item(1);
    }

    /// The mouse in coordinates of an item.
    static void Move(ZVItem const* item, long x, long y)
    {
        long left = 0, top = 0;
        GetItemScreenPosZV(item, &left, &top);
        HeadlessMoveZV(left + x, top + y);
        HeadlessRunZV(0);
    }
    static void Press(ZVItem const* item, long x, long y)
    {
        HeadlessPauseZV(1000);
        Move(item, x, y);
        HeadlessPressZV(ZV_HEADLESS_LEFT);
        HeadlessRunZV(0);
    }
    static void Release()
    {
        HeadlessReleaseZV(ZV_HEADLESS_LEFT);
        HeadlessRunZV(0);
    }
    static void Ticks(unsigned long count) { HeadlessRunZV(count * 100); }

    static Strings Events() { return std::exchange(events, {}); }

    static void Send(ZVItem* item, uint16_t type)
    {
        ZVCustomEvent event{};
        event.type = type;
        event.item = item;
        Do_CustomEvent(&event);
    }

    static uint32_t Color(unsigned long pen) { return static_cast<uint32_t>(GetColorZV(pen)) & 0xFFFFFF; }
};
