// The arrows at the ends of a proportional gadget. A press moves the track's position by a step, and again
// and again while it is held on the arrow.
#include "PressGadget.h"
#include "Prop.h"
#include "ZVControl.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <utility>

namespace {

/// Which arrow an event is for.
struct Arrow {
    PropAxis axis;
    bool isLast;  ///< moves the position up
};

constexpr unsigned long outline = 0x333366, fill = 0xA3A3D7, pressedColor = 0;

// `state` of an arrow: ticks until the step repeats, and above them a mark that the mouse has left the arrow.
constexpr int32_t repeatDelay = 4;
constexpr int32_t delayMask = 0xFFFFFF, outsideMark = 0x1000000;

ZVItem* Track_Of(ZVItem const& item, Arrow arrow)
{
    if (arrow.axis.isVertical) return arrow.isLast ? item.aboveLink : item.belowLink;
    return arrow.isLast ? item.beforeLink : item.afterLink;
}

/// The arrow, a triangle with a shaft, along and across its direction, from the tip on.
void Draw_Shape(ZVDrawInfo* draw, Arrow arrow, long side, bool isPressed, bool isDisabled)
{
    long const size = side - (side % 2 ? 6 : 5);
    if (size < 3) return;
    long const tip = (side - size) / 2, middle = size / 2, shaft = size / 4;
    long const shape[][2] = {{0, middle},
                             {middle, 0},
                             {middle, middle - shaft},
                             {size - 1, middle - shaft},
                             {size - 1, middle + shaft},
                             {middle, middle + shaft},
                             {middle, size - 1},
                             {0, middle}};
    constexpr long count = sizeof shape / sizeof *shape;
    long points[2 * count];
    for (long i = 0; i < count; ++i) {
        long const from = tip + shape[i][0], sideways = tip + shape[i][1];
        long const along = arrow.isLast ? side - 1 - from : from;
        points[2 * i] = arrow.axis.isVertical ? sideways : along;
        points[2 * i + 1] = arrow.axis.isVertical ? along : sideways;
    }
    SetPenZV(draw, Shown_Color(isPressed ? pressedColor : fill, isDisabled));
    FillPolygonZV(draw, count, points);
    SetPenZV(draw, Shown_Color(isPressed ? pressedColor : outline, isDisabled));
    DrawPolygonZV(draw, count, points);
}

void Draw(ZVItem* item, Arrow arrow, bool isPressed, bool isDisabled)
{
    DrawContext const draw(DrawBeginZV(item));
    if (!draw) return;
    SetPenZV(draw.get(), Shown_Color(ZV_PEN_FACE, isDisabled));
    FillRectZV(draw.get(), 0, 0, item->width - 1, item->height - 1);
    Draw_Bevel(draw.get(), 0, 0, item->width, item->height, isPressed, false);
    Draw_Shape(draw.get(), arrow, std::min(item->width, item->height), isPressed, isDisabled);
}

/// Moves the track by a step, as far as its end, and reports. The track's dependencies run, which may close
/// the palette: nothing of it is touched afterwards then.
/// @return  whether the palette is still there
bool Step(ZVCustomEvent* event, Arrow arrow, ZVItem* track, uint32_t cause)
{
    LivingPalette const palette(track->group->palette);
    long const last = Last_Position(*track), step = track->LineStep, state = track->state;
    if (arrow.isLast && state < last)
        SetGadgetStateZV(track, static_cast<double>(std::min(state + step, last)));
    if (!arrow.isLast && state > track->minInt) SetGadgetStateZV(track, static_cast<double>(state - step));
    if (!palette.Is_Known()) return false;
    Report_Prop(event, track, cause);
    return true;
}

void Press(ZVCustomEvent* event, Arrow arrow)
{
    ZVItem* const item = event->item;
    ZVItem* const track = Track_Of(*item, arrow);
    if (Is_Disabled(*item) || !track) return;
    item->pressed = 1;
    item->state = repeatDelay;
    if (Step(event, arrow, track, ZV_MOD_PRESS)) Draw(item, arrow, true, false);
}

void Release(ZVCustomEvent* event, Arrow arrow)
{
    ZVItem* const item = event->item;
    if (!std::exchange(item->pressed, 0)) return;
    if (ZVItem* track = Track_Of(*item, arrow)) Report_Prop(event, track, ZV_MOD_RELEASE);
    Draw(item, arrow, false, Is_Disabled(*item));
}

void Cross(ZVCustomEvent* event, Arrow arrow, bool isInside)
{
    ZVItem* const item = event->item;
    if (!item->pressed) return;
    item->state = (item->state & delayMask) | (isInside ? 0 : outsideMark);
    Draw(item, arrow, isInside, Is_Disabled(*item));
}

void Tick(ZVCustomEvent* event, Arrow arrow)
{
    ZVItem* const item = event->item;
    if (!item->pressed || item->state > delayMask) return;
    if (item->state > 0 && --item->state > 0) return;
    if (ZVItem* track = Track_Of(*item, arrow)) Step(event, arrow, track, ZV_MOD_CHANGE);
}

long Arrow_Gad(ZVCustomEvent* event, Arrow arrow)
{
    ZVItem* const item = event->item;
    bool const looksPressed = item->pressed && item->state <= delayMask;
    switch (event->type) {
    case ZV_CUSTOM_CREATE: item->flags |= ZV_ITEMF_PROP; break;
    case ZV_CUSTOM_DRAW:
    case ZV_CUSTOM_DRAW_STATE: Draw(item, arrow, looksPressed, Is_Disabled(*item)); break;
    case ZV_CUSTOM_DRAW_DISABLED: Draw(item, arrow, looksPressed, true); break;
    case ZV_CUSTOM_MOUSE_UP: Release(event, arrow); break;
    case ZV_CUSTOM_MOUSE_DOWN: Press(event, arrow); break;
    case ZV_CUSTOM_MOUSE_IN:
    case ZV_CUSTOM_MOUSE_OUT: Cross(event, arrow, event->type == ZV_CUSTOM_MOUSE_IN); break;
    case ZV_CUSTOM_TICK: Tick(event, arrow); break;
    default: break;
    }
    return 1;
}

}  // namespace

long HProp_LeftArrow_Gad(ZVCustomEvent* event)
{
    return Arrow_Gad(event, {across, false});
}

long HProp_RightArrow_Gad(ZVCustomEvent* event)
{
    return Arrow_Gad(event, {across, true});
}

long VProp_UpArrow_Gad(ZVCustomEvent* event)
{
    return Arrow_Gad(event, {down, false});
}

long VProp_DownArrow_Gad(ZVCustomEvent* event)
{
    return Arrow_Gad(event, {down, true});
}
