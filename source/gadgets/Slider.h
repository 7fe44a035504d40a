// Sliders: what input, drawing and the field for typing share.
#pragma once

#include "ZVControl.h"

/// The record of a slider; null when there was no memory for it.
inline SliderState* Slider_Of(ZVItem const& item)
{
    return static_cast<SliderState*>(item.object);
}

/// A value as the user sees it: the inner one, or with its sign flipped. The same leads back.
inline double Shown_Value(SliderState const& state, double value)
{
    return state.Flags & ZV_SLIDERF_NEGATE ? 0.0 - value : value;
}

/// Where a value stands on the field, and the value of a place on it.
long Slider_Place(ZVItem const& item, SliderState const& state, double value);
double Slider_Value(ZVItem const& item, SliderState const& state, long place);

/// The characters of the unit as a text.
struct SliderUnit {
    explicit SliderUnit(SliderState const& state)
        : text{state.Unit[0], state.Unit[0] ? state.Unit[1] : '\0', 0}
    {
    }
    char text[3];
};

void Draw_Slider(ZVItem* item, bool isDisabled);

/// Opens the field for typing over a slider, unless the user has gone elsewhere meanwhile.
void Open_Slider_Entry(ZVItem* item);

/// Closes the field of a slider that goes, without taking what is in it.
void Drop_Slider_Entry(SliderState& state);
