// The gadgets beyond buttons and fields: proportional gadgets, sliders, text boxes, separators and labels.
// They are declared by AddGadgetZV and driven by the calls of ZVItem.h; what is here is theirs alone.
//
// Proportional gadget (ZV_GAD_HPROP, ZV_GAD_VPROP): a track with a thumb between two arrows. `state` is the
// position of the view in `minInt` to `maxInt`, `Page` the part in view and `LineStep` what an arrow moves.
// The limits are 0 and 100, page and step 1, unless tags say otherwise. With ZV_ITEM_PROP_TRACK the track has
// a marker, at `extra`, that can be dragged; `MarkDrag` tells that it is. AddGadgetZV answers the track. The
// arrows are items of their own, attached to it on both sides, and report in its name.
//
// Slider (ZV_GAD_SLIDER): a field with a label, a number and a marker. Dragging anywhere on it changes the
// value by the way of the mouse, with shift in steps ten times as large, with control in a tenth; with alt
// the press itself puts the marker under the mouse. A second button takes the drag back. A click opens a
// field to type the value into, a click with control moves one step.
//
// Text box (ZV_GAD_TEXTBOX): a text of several lines that is only shown. Its first text is the user data, a
// char const* that the box copies; `state` is the first line in view, counted from 1, and `maxInt` the number
// of lines. `linkedItem` may name a proportional gadget that is kept up with the lines.
//
// Separator (ZV_GAD_SEPARATOR): a bar that is dragged to share room out between the items on its sides, which
// take part when they grow (ZV_ITEM_GROW_WIDTH, ZV_ITEM_GROW_HEIGHT). ZV_ITEM_USER_DATA is the ids of those
// left of it or above, ZV_ITEM_LINKED of those right of it or below: uint32_t arrays, ended by 0 and copied.
// A separator that is wider than high moves up and down. It stops where an item would get smaller than its
// ZV_ITEM_MIN_WIDTH or ZV_ITEM_MIN_HEIGHT.
//
// Label (ZV_GAD_LABEL): a text in a colour of its own (ZV_ITEM_COLOR), centred, or at a side by
// ZV_ITEM_TEXT_LEFT and ZV_ITEM_TEXT_RIGHT.
//
// Main thread only.
#pragma once

#include "ZVEvent.h"
#include "ZVItem.h"
#include "ZVTime.h"

// ---- sliders ----------------------------------------------------------------------------------------------

/// Bits of a slider's `Flags`.
enum ZVSliderFlag : uint32_t {
    ZV_SLIDERF_QUADRATIC = 4,  ///< small values have more room on the field than large ones
    ZV_SLIDERF_BUSY = 16,      ///< cleared at the start of every custom event
    ZV_SLIDERF_NEGATE = 64     ///< the value is shown and typed with the other sign
};

/// What a slider knows beside its item, in the item's `object` from its declaration to its end. The item's
/// limits bound what is typed, those here what is dragged.
struct SliderState {
    double InternalMin;  ///< at first the item's limits; they scale the field too
    double InternalMax;
    double Step;            ///< of one pixel of a drag, 1.0
    int32_t Relative;       ///< non-zero: values have no place on the field; a band shows that it moves
    uint32_t Flags;         ///< ZVSliderFlag
    uint8_t Decimals;       ///< that are shown
    char Unit[2];           ///< characters behind the number; a first one of 0 is no unit
    int32_t Moved;          ///< the value has changed during this press
    int32_t EntryOpen;      ///< the field for typing is open
    int32_t UseTimecode;    ///< non-zero: the value is a frame, shown as a time
    double TimeRate;        ///< frames a second, 30.0
    ZVTimeUnits TimeUnits;  ///< ZV_UNITS_TIMECODE
    int32_t IsDuration;     ///< non-zero: frames count from 0 in all units
    int32_t StepCount;      ///< steps from StartValue
    double StartValue;      ///< the value at the press
};

// ---- text boxes -------------------------------------------------------------------------------------------

/// Replaces the text of a text box and shows it from its first line on. Nothing happens for a null text, an
/// item that is no text box, and the text that it has. Without memory the old text stays, with error 1.
ZV_API void SetTextBoxGadgetStateZV(ZVItem* item, char const* text);
ZV_API void SetTextBoxGadgetStateZV(unsigned long id, char const* text);

// ---- the functions of these gadgets -----------------------------------------------------------------------

/// Track and arrows of a proportional gadget. 1, and 0 for a track without memory at its event 101.
ZV_API long HProp_Gad(ZVCustomEvent* event);
ZV_API long VProp_Gad(ZVCustomEvent* event);
ZV_API long HProp_LeftArrow_Gad(ZVCustomEvent* event);
ZV_API long HProp_RightArrow_Gad(ZVCustomEvent* event);
ZV_API long VProp_UpArrow_Gad(ZVCustomEvent* event);
ZV_API long VProp_DownArrow_Gad(ZVCustomEvent* event);

/// 1 for the events 100 to 113, else 0; 0 as well when there is no memory for the record at event 100.
ZV_API long NewSliderCustomFunc(ZVCustomEvent* event);

/// 1, and 0 without memory for the record at event 100.
ZV_API long TextBoxCustomFunc(ZVCustomEvent* event);
ZV_API long SeparatorCustomFunc(ZVCustomEvent* event);

/// Always 1.
ZV_API long ZVLib_LabelCustomFunc(ZVCustomEvent* event);
