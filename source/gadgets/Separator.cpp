// The separator: a bar that is dragged to share room out between the items on its sides. While it is dragged
// a dotted outline shows where it would come to stand; the layout is made anew on the release.
#include "PressGadget.h"
#include "ZVControl.h"
#include "interface/ItemParts.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

/// Of a separator, in its item's `object` from its declaration to its end.
struct SeparatorState {
    uint32_t* LeftIds;  ///< owned, ended by 0; null when there was no memory for it
    uint32_t* RightIds;
    int32_t StartX, StartY;  ///< the mouse on the screen, where the drag began
    int32_t GhostX, GhostY;  ///< the outline, relative to the item
    bool hasGhost;           ///< the outline is on screen
    uint8_t* Saved;          ///< owned; red, green and blue of the pixels under it, only during a drag
};

constexpr ZVRGB white{0xFFFF, 0xFFFF, 0xFFFF, 1};

bool Moves_Down(ZVItem const& item)
{
    return item.width > item.height;
}

/// How far the separator is dragged.
struct Delta {
    long x, y;
};

// ---- the outline ------------------------------------------------------------------------------------------

/// Calls `visit` for every second pixel of the outline at a place.
template <typename Visit> void Visit_Outline(ZVItem const& item, long left, long top, Visit visit)
{
    long const right = left + item.width - 1, bottom = top + item.height - 1;
    for (long x = left; x <= right; x += 2) {
        visit(x, top);
        if (bottom > top) visit(x, bottom);
    }
    for (long y = top + 2; y < bottom; y += 2) {
        visit(left, y);
        if (right > left) visit(right, y);
    }
}

unsigned long Saved_Size(ZVItem const& item)
{
    return static_cast<unsigned long>(item.width + item.height) * 6 + 30;
}

void Hide_Outline(ZVDrawInfo* draw, ZVItem const& item, SeparatorState& state)
{
    if (!std::exchange(state.hasGhost, false)) return;
    uint8_t const* saved = state.Saved;
    Visit_Outline(item, state.GhostX, state.GhostY, [&](long x, long y) {
        auto const word = [&saved] { return static_cast<uint16_t>(*saved++ * 257); };
        uint16_t const red = word(), green = word(), blue = word();
        ZVRGB const pixel{red, green, blue, 1};
        WritePixelZV(draw, x, y, &pixel);
    });
}

void Show_Outline(ZVDrawInfo* draw, ZVItem const& item, SeparatorState& state, Delta delta)
{
    state.GhostX = static_cast<int32_t>(delta.x);
    state.GhostY = static_cast<int32_t>(delta.y);
    state.hasGhost = true;
    uint8_t* saved = state.Saved;
    Visit_Outline(item, delta.x, delta.y, [&](long x, long y) {
        ZVRGB pixel{};
        ReadPixelZV(draw, x, y, &pixel);
        for (uint16_t const word : {pixel.red, pixel.green, pixel.blue})
            *saved++ = static_cast<uint8_t>(word >> 8);
    });
    Visit_Outline(item, delta.x, delta.y, [&](long x, long y) { WritePixelZV(draw, x, y, &white); });
}

// ---- how far ----------------------------------------------------------------------------------------------

template <typename Visit> void For_Items(ZVItem const& separator, uint32_t const* ids, Visit visit)
{
    for (; ids && *ids; ++ids)
        if (ZVItem* item = FindItem2ZV(separator.group->palette, static_cast<unsigned short>(*ids)))
            visit(*item);
}

/// What the items on both sides leave of a way: none gets smaller than its least size. One that is smaller
/// than that already stays as it is.
long Limited(ZVItem const& separator, SeparatorState const& state, long way, int32_t ZVItem::*size,
             int32_t ZVItem::*least)
{
    For_Items(separator, state.LeftIds,
              [&](ZVItem const& item) { way = std::max<long>(way, std::min(item.*least - item.*size, 0)); });
    For_Items(separator, state.RightIds,
              [&](ZVItem const& item) { way = std::min<long>(way, std::max(item.*size - item.*least, 0)); });
    return way;
}

Delta Limited_Delta(ZVItem const& item, SeparatorState const& state)
{
    if (Moves_Down(item))
        return {0, Limited(item, state, ZVEnv->pointerY - state.StartY, &ZVItem::height, &ZVItem::minHeight)};
    return {Limited(item, state, ZVEnv->pointerX - state.StartX, &ZVItem::width, &ZVItem::minWidth), 0};
}

// ---- events -----------------------------------------------------------------------------------------------

/// A copy of an array of ids ended by 0; null with error 1 without memory, and for no array.
uint32_t* Copy_Ids(unsigned long array)
{
    auto const* const ids = reinterpret_cast<uint32_t const*>(array);
    if (!ids) return nullptr;
    unsigned long count = 1;
    while (ids[count - 1])
        ++count;
    auto* const copy = static_cast<uint32_t*>(New_Block(count * sizeof *ids));
    if (copy) std::memcpy(copy, ids, count * sizeof *ids);
    return copy;
}

long Set_Up(ZVItem& item)
{
    auto* const state = New_Record<SeparatorState>();
    if (!state) return 0;
    state->LeftIds = Copy_Ids(item.userData);
    state->RightIds = Copy_Ids(item.linkedItem);
    item.object = state;
    return 1;
}

void Clean_Up(ZVItem& item, SeparatorState& state)
{
    for (void* block : {static_cast<void*>(state.LeftIds), static_cast<void*>(state.RightIds),
                        static_cast<void*>(state.Saved)})
        FreeMemZV(block);
    FreeMemZV(std::exchange(item.object, nullptr));
}

void Draw(ZVItem* item, bool isDisabled)
{
    DrawContext const draw(DrawBeginZV(item));
    SetPenZV(draw.get(), Shown_Color(ZV_PEN_FACE, isDisabled));
    FillRectZV(draw.get(), 1, 1, item->width - 2, item->height - 2);
    DrawShineBorderZV(draw.get(), 0, 0, item->width, item->height);
}

/// Takes the outline to where the mouse is.
void Drag(ZVItem* item, SeparatorState& state)
{
    DrawContext const draw(DrawBeginZV(item));
    if (!draw) return;
    Hide_Outline(draw.get(), *item, state);
    Show_Outline(draw.get(), *item, state, Limited_Delta(*item, state));
}

/// Puts back what is under the outline, and forgets it.
void End_Drag(ZVItem* item, SeparatorState& state)
{
    item->pressed = 0;
    DrawContext const draw(DrawBeginZV(item));
    Hide_Outline(draw.get(), *item, state);
    FreeMemZV(std::exchange(state.Saved, nullptr));
}

void Press(ZVCustomEvent* event, SeparatorState& state)
{
    ZVItem* const item = event->item;
    bool const hasItems = state.LeftIds && *state.LeftIds && state.RightIds && *state.RightIds;
    if (Is_Disabled(*item) || !hasItems || item->pressed) return;
    state.Saved = static_cast<uint8_t*>(New_Block(Saved_Size(*item)));
    if (!state.Saved) return;
    state.StartX = ZVEnv->pointerX;
    state.StartY = ZVEnv->pointerY;
    item->pressed = 1;
    Report_Use(event, ZV_MOD_PRESS);
    Drag(item, state);
}

/// Shares the room out anew. The functions of the gadgets that move run, and may close the palette.
void Release(ZVCustomEvent* event, SeparatorState& state)
{
    ZVItem* const item = event->item;
    if (!item->pressed) return;
    Delta const delta = Limited_Delta(*item, state);
    End_Drag(item, state);
    state.StartX = ZVEnv->pointerX;
    state.StartY = ZVEnv->pointerY;
    auto const adjust = [&](uint32_t const* ids, long sign) {
        For_Items(*item, ids, [&](ZVItem& side) {
            side.dragWidth += static_cast<int32_t>(sign * delta.x);
            side.dragHeight += static_cast<int32_t>(sign * delta.y);
        });
    };
    adjust(state.LeftIds, 1);
    adjust(state.RightIds, -1);
    ZVPalette* const palette = item->group->palette;
    LivingPalette const watch(palette);
    Rebuild_SysPalette(palette, palette->width, Height_With_Tabs(*palette, palette->height));
    if (watch.Is_There()) Report_Use(event, ZV_MOD_RELEASE);
}

void Handle(ZVCustomEvent* event, SeparatorState& state)
{
    ZVItem* const item = event->item;
    switch (event->type) {
    case ZV_CUSTOM_CREATE:
        item->cursor = Moves_Down(*item) ? ZV_CURSOR_SPLIT_DOWN : ZV_CURSOR_SPLIT_ACROSS;
        break;
    case ZV_CUSTOM_DESTROY:
        item->pressed = 0;
        state.hasGhost = false;
        FreeMemZV(std::exchange(state.Saved, nullptr));
        break;
    case ZV_CUSTOM_CLEANUP: Clean_Up(*item, state); break;
    case ZV_CUSTOM_MOUSE_DOWN: Press(event, state); break;
    case ZV_CUSTOM_MOUSE_MOVE:
        if (item->pressed) Drag(item, state);
        break;
    case ZV_CUSTOM_MOUSE_UP: Release(event, state); break;
    default: break;
    }
}

}  // namespace

long SeparatorCustomFunc(ZVCustomEvent* event)
{
    ZVItem* const item = event->item;
    if (event->type == ZV_CUSTOM_SETUP) return Set_Up(*item);
    if (event->type >= ZV_CUSTOM_DRAW && event->type <= ZV_CUSTOM_DRAW_DISABLED)
        Draw(item, Is_Disabled(*item) || event->type == ZV_CUSTOM_DRAW_DISABLED);
    else if (item->object)
        Handle(event, *static_cast<SeparatorState*>(item->object));
    return 1;
}
