// Places of windows, palettes, groups and items, and the search for what is under the mouse.
#include "HitTest.h"

ZVWindow* System_Window_Of(ZVWindow* window)
{
    while (window && window->parent)
        window = window->parent;
    return window;
}

ZVPlace Place_In_System_Window(ZVWindow const* window)
{
    ZVPlace place;
    for (; window && window->parent; window = window->parent)
        place = place + ZVPlace{window->left, window->top};
    return place;
}

ZVPlace Place_On_Screen(ZVWindow const* window)
{
    ZVPlace place;
    for (; window; window = window->parent)
        place = place + ZVPlace{window->left, window->top};
    return place;
}

ZVPlace Place_Of_Palette(ZVPalette const* palette)
{
    return {palette->x, palette->y};
}

ZVPlace Place_Of_Group(ZVGroup const* group)
{
    return ZVPlace{group->palette->originX, group->palette->originY} + ZVPlace{group->x, group->y};
}

/// Items are placed in the group's inner area, which counts from the palette's origin as the group does.
static ZVPlace Place_Of_Inner_Area(ZVGroup const* group)
{
    return ZVPlace{group->palette->originX, group->palette->originY} + ZVPlace{group->innerX, group->innerY};
}

ZVPlace Place_Of_Item(ZVItem const* item)
{
    return Place_Of_Inner_Area(item->group) + ZVPlace{item->x, item->y};
}

ZVPlace Screen_Place_Of_Item(ZVItem const* item)
{
    return Place_On_Screen(item->group->palette->window) + Place_Of_Item(item);
}

ZVPlace Mouse_On_Screen()
{
    ZVPalette const* palette = ZVEnv->mousePalette;
    return Place_On_Screen(palette->window) + Place_Of_Palette(palette) +
           ZVPlace{ZVEnv->mouseX, ZVEnv->mouseY};
}

static bool Holds(ZVPlace corner, long width, long height, ZVPlace point)
{
    ZVPlace const inside = point - corner;
    return inside.x >= 0 && inside.x <= width && inside.y >= 0 && inside.y <= height;
}

bool Holds(ZVGroup const* group, ZVPlace point)
{
    return Holds(Place_Of_Group(group), group->width, group->height, point);
}

ZVGroup* Group_At(ZVPalette const* palette, ZVPlace point)
{
    for (ZVGroup& group : Groups_Of(*palette))
        if (!(group.flags & ZV_GRPF_HIDDEN) && Holds(&group, point)) return &group;
    return nullptr;
}

ZVItem* Item_At(ZVGroup const* group, ZVPlace point, uint32_t unwantedFlags)
{
    ZVPlace const inner = point - Place_Of_Inner_Area(group);
    for (ZVItem& item : Items_Of(*group)) {
        if (item.flags & unwantedFlags) continue;
        if (Holds({item.x, item.y}, item.width, item.height, inner)) return &item;
    }
    return nullptr;
}
