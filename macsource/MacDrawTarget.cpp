// Contexts on windows and on what lies in them. A target's coordinates become those of its window's port by
// the sum of the offsets on the way down to it.
#include "ZVGroup.h"
#include "ZVItem.h"
#include "ZVLibInternal.h"
#include "ZVPalette.h"

struct ZVDevice {};

/// Windows of all monitors are on one desktop.
static ZVDevice desktop;

namespace {

/// A place in a window; in none when the target cannot be drawn on.
struct Place {
    ZVWindow* window = nullptr;
    long x = 0, y = 0;

    Place Moved(long dx, long dy) const { return {window, x + dx, y + dy}; }
};

}  // namespace

/// The system window that a window is or lies in.
static Place Place_Of(ZVWindow* window)
{
    Place place{window};
    for (; place.window && place.window->parent; place.window = place.window->parent)
        place = place.Moved(place.window->left, place.window->top);
    return place;
}

static bool Is_Hidden(ZVPalette const* palette)
{
    for (; palette; palette = palette->parent)
        if (palette->flags & ZV_PALF_HIDDEN) return true;
    return false;
}

/// The window of a palette that shows.
static Place Window_Place(ZVPalette const* palette)
{
    return palette && !Is_Hidden(palette) ? Place_Of(palette->window) : Place();
}

static ZVDrawInfo* Begin_At(Place const& place)
{
    if (!place.window) return nullptr;
    return Begin_Drawing(Mac_Window_Port(place.window), &desktop, place.x, place.y);
}

static ZVWindow* Main_Window()
{
    return ZVEnv ? ZVEnv->rootWindow : nullptr;
}

ZVDrawInfo* DrawBeginZV(ZVWindow* window)
{
    return Begin_At(Place_Of(window ? window : Main_Window()));
}

ZVDrawInfo* DrawBeginZV(unsigned long)
{
    return Begin_At({Main_Window()});
}

ZVDrawInfo* DrawBeginZV(ZVPalette* palette)
{
    if (!palette) return DrawBeginZV(0UL);
    return Begin_At(Window_Place(palette).Moved(palette->x, palette->y));
}

ZVDrawInfo* DrawBeginZV(ZVGroup* group)
{
    if (!group || !group->palette) return nullptr;
    ZVPalette const* const palette = group->palette;
    return Begin_At(
        Window_Place(palette).Moved(palette->originX, palette->originY).Moved(group->x, group->y));
}

ZVDrawInfo* DrawBeginZV(ZVItem* item)
{
    if (!item || !item->native || !item->group || !item->group->palette) return nullptr;
    ZVGroup const* const group = item->group;
    ZVPalette const* const palette = group->palette;
    // Items are placed in the group's inner area, whose place counts from the palette's origin as well.
    return Begin_At(Window_Place(palette)
                        .Moved(palette->originX, palette->originY)
                        .Moved(group->innerX, group->innerY)
                        .Moved(item->x, item->y));
}
