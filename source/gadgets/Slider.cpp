// The slider's function: dragging, stepping, and the click that leads to the field for typing.
#include "Slider.h"
#include "PressGadget.h"
#include "interface/ItemParts.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr uint32_t entryDelay = 3;  ///< ticks from a click to the field, in which a double click may come
constexpr uint16_t entryCursor = 1;
constexpr double coarse = 10;  ///< of a step with shift, and of what control divides it by

/// A whole number of steps divides back to just under it.
constexpr double countTolerance = 1e-9;

/// SetupSliderZV is given these where a slider shows the whole of its range.
constexpr double noDisplayMin = 2147483647.0, noDisplayMax = -2147483648.0;

void Forget_Click(ZVItem& item)
{
    item.userData = 0;
    item.flags &= ~uint32_t{ZV_ITEMF_TICKS};
}

void Redraw(ZVItem* item)
{
    Draw_Slider(item, Is_Disabled(*item));
}

void Store(ZVItem& item, double value)
{
    item.realValue = value;
    item.state = To_Whole(std::round(value));
}

// ---- the value --------------------------------------------------------------------------------------------

double Step_Of(ZVCustomEvent const& event, SliderState const& state)
{
    double step = state.Step;
    if (event.item->pressed && event.modifiers & ZV_MOD_SHIFT) step *= coarse;
    if (event.item->pressed && event.modifiers & ZV_MOD_CONTROL) step /= coarse;
    return step;
}

/// Moves the value so many steps on from the one at the press.
void Move_Value(ZVCustomEvent const& event, SliderState& state, long way)
{
    ZVItem& item = *event.item;
    double const step = Step_Of(event, state);
    if (step == 0) return;
    auto const steps = [&](double value) {
        double const count = (value - state.StartValue) / step;
        return std::trunc(count + std::copysign(countTolerance, count));
    };
    double const count = steps(item.realValue) + static_cast<double>(way);
    double const moved = count * step + state.StartValue;
    double const value = std::max(state.InternalMin, std::min(moved, state.InternalMax));
    state.StepCount = To_Whole(value == moved ? count : steps(value));
    Store(item, value);
}

/// Moves the value, and tells of the first change of a press at once: the press itself has told nothing, as
/// it may have been a click. That may close the palette; nothing is touched any more then.
/// @param before  the value before this event
void Step_Value(ZVCustomEvent* event, SliderState& state, long way, double before)
{
    ZVItem* const item = event->item;
    Move_Value(*event, state, way);
    if (item->realValue != before) {
        bool const isFirst = !std::exchange(state.Moved, 1);
        Redraw(item);
        if (isFirst && event->replyFlags != ZV_MOD_RELEASE) {
            LivingPalette const palette(item->group->palette);
            ZVEnv->modifiers |= ZV_MOD_PRESS;
            Do_Event(ZV_EVENT_GADGET, Tag_Word(item));
            if (!palette.Is_There()) {
                event->replyType = ZV_EVENT_NONE;
                return;
            }
        }
    }
    if (!state.Moved) event->replyType = ZV_EVENT_NONE;
}

// ---- the mouse --------------------------------------------------------------------------------------------

/// A second button takes the drag back.
void Take_Back(ZVCustomEvent* event, SliderState const& state)
{
    ZVItem* const item = event->item;
    InfiniteMouseMovesZV(0);
    Store(*item, state.StartValue);
    item->pressed = 0;
    Forget_Click(*item);
    Report_Use(event, ZV_MOD_RELEASE);
    Redraw(item);
}

void Press(ZVCustomEvent* event, SliderState& state)
{
    ZVItem* const item = event->item;
    if (Is_Disabled(*item)) return;
    if (event->modifiers & ZV_MOD_SECOND_BUTTON) {
        if (item->pressed) Take_Back(event, state);
        return;
    }
    state.Moved = 0;
    double const before = item->realValue;
    bool const isJump = event->modifiers & ZV_MOD_ALT && !state.Relative;
    if (isJump) Store(*item, Slider_Value(*item, state, event->x));
    item->pressed = event->modifiers & ZV_MOD_BUTTON;
    if (item->pressed) {
        state.StartValue = item->realValue;
        state.StepCount = 0;
        event->replyFlags = ZV_MOD_PRESS;
        event->replyData = Tag_Word(item);
        Forget_Click(*item);
    }
    Redraw(item);
    if (isJump) Step_Value(event, state, 0, before);
}

void Move(ZVCustomEvent* event, SliderState& state)
{
    ZVItem* const item = event->item;
    if (Is_Disabled(*item)) return;
    item->cursor = FindPaletteZV(NumEntryPalette) ? entryCursor : uint16_t{ZV_CURSOR_SLIDE};
    if (!item->pressed) return;
    InfiniteMouseMovesZV(1);
    Report_Use(event, ZV_MOD_CHANGE);
    Step_Value(event, state, event->deltaX, item->realValue);
}

/// A click without a motion.
void Click(ZVCustomEvent* event, SliderState& state)
{
    ZVItem* const item = event->item;
    if (event->modifiers & ZV_MOD_CONTROL) {
        Report_Use(event, ZV_MOD_RELEASE);
        Step_Value(event, state, event->x > item->width / 2 ? 1 : -1, item->realValue);
    } else if (event->modifiers & ZV_MOD_DOUBLE_CLICK) {
        // FIXME: a double click is for the calculator; until there is one the field opens without delay.
        Open_Slider_Entry(item);
    } else {
        item->userData = event->ticks + entryDelay;
        item->flags |= ZV_ITEMF_TICKS;
    }
}

void Release(ZVCustomEvent* event, SliderState& state)
{
    ZVItem* const item = event->item;
    InfiniteMouseMovesZV(0);
    if (!std::exchange(item->pressed, 0) || Is_Disabled(*item)) return;
    Redraw(item);
    if (state.Moved || event->modifiers & ZV_MOD_ALT) {
        if (!state.Relative) SetCursorPosZV(item, Slider_Place(*item, state, item->realValue), event->y);
        Report_Use(event, ZV_MOD_RELEASE);
    } else {
        Click(event, state);
    }
}

void Tick(ZVCustomEvent* event)
{
    ZVItem* const item = event->item;
    bool const isWaiting = item->flags & ZV_ITEMF_TICKS && item->userData;
    if (!isWaiting || static_cast<int32_t>(event->ticks - static_cast<uint32_t>(item->userData)) < 0) return;
    Forget_Click(*item);
    item->cursor = entryCursor;
    Open_Slider_Entry(item);
}

// ---- the function -----------------------------------------------------------------------------------------

long Set_Up(ZVItem& item)
{
    auto* const state = New_Record<SliderState>();
    if (!state) return 0;
    state->InternalMin = item.minReal;
    state->InternalMax = item.maxReal;
    state->Step = 1.0;
    state->TimeRate = 30.0;
    state->TimeUnits = ZV_UNITS_TIMECODE;
    item.object = state;
    return 1;
}

/// A slider that leaves the screen while it is dragged lets go of the mouse.
void Let_Go(ZVItem& item)
{
    if (std::exchange(item.pressed, 0)) InfiniteMouseMovesZV(0);
    Forget_Click(item);
}

void Handle(ZVCustomEvent* event, SliderState& state)
{
    ZVItem* const item = event->item;
    state.Flags &= ~uint32_t{ZV_SLIDERF_BUSY};
    switch (event->type) {
    case ZV_CUSTOM_DESTROY: Let_Go(*item); break;
    case ZV_CUSTOM_CLEANUP:
        Drop_Slider_Entry(state);
        FreeMemZV(std::exchange(item->object, nullptr));
        break;
    case ZV_CUSTOM_DRAW:
    case ZV_CUSTOM_DRAW_STATE: Redraw(item); break;
    case ZV_CUSTOM_DRAW_DISABLED: Draw_Slider(item, true); break;
    case ZV_CUSTOM_MOUSE_UP: Release(event, state); break;
    case ZV_CUSTOM_MOUSE_DOWN: Press(event, state); break;
    case ZV_CUSTOM_MOUSE_MOVE: Move(event, state); break;
    case ZV_CUSTOM_MOUSE_OUT: Forget_Click(*item); break;
    case ZV_CUSTOM_TICK: Tick(event); break;
    default: break;
    }
}

}  // namespace

long NewSliderCustomFunc(ZVCustomEvent* event)
{
    if (event->type < ZV_CUSTOM_SETUP || event->type > ZV_CUSTOM_TICK) return 0;
    if (event->type == ZV_CUSTOM_SETUP) return Set_Up(*event->item);
    if (SliderState* state = Slider_Of(*event->item)) Handle(event, *state);
    return 1;
}

void SetupSliderZV(unsigned long id, double min, double max, double displayMin, double displayMax,
                   char decimals)
{
    ZVItem* const item = FindItemZV(static_cast<unsigned short>(id));
    if (!item || item->type != ZV_GAD_SLIDER) return;
    if (SliderState* state = Slider_Of(*item)) {
        state->InternalMin = displayMin == noDisplayMin ? min : displayMin;
        state->InternalMax = displayMax == noDisplayMax ? max : displayMax;
        state->Decimals = static_cast<uint8_t>(decimals);
    }
    item->minReal = min;
    item->maxReal = max;
    item->minInt = To_Whole(min);
    item->maxInt = To_Whole(max);
    UpdateGadgetZV(item);
}
