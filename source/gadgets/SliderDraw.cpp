// How a slider looks: a label with its number, below them a strip with a marker, or, where values have no
// place, a band that moves with them.
#include "Canvas.h"
#include "PressGadget.h"
#include "Slider.h"
#include "interface/ItemParts.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr long leftInset = 3, insets = 8;  ///< of the places of values on the field
constexpr long stripHeight = 7;            ///< with the frame below it
constexpr long dash = 4, dashDistance = 8;
constexpr long leastTextLeft = 3, entryTextLeft = 2;
constexpr double stripShade = 0.85, dashShade = 0.65, frameShade = 0.25, darkEdge = 0.75, lightEdge = 1.25;
constexpr uint32_t bodyPen = 0xFF00000B;

/// A slider with what its parts are drawn in.
struct SliderLook {
    ZVDrawInfo* draw;
    ZVItem const& item;
    SliderState const& state;
    bool isDisabled;
    unsigned long body;

    long Right() const { return item.width - 3; }
    long Bottom() const { return item.height - 3; }
    long Strip() const { return item.height - stripHeight; }
    unsigned long Pen(unsigned long colour) const { return Shown_Color(colour, isDisabled); }
};

char const* Label_Of(ZVItem const& item)
{
    return item.text && *item.text ? item.text : nullptr;
}

/// The text of a slider, cut where it would be longer than any field.
struct SliderText {
    SliderText(ZVItem const& item, SliderState const& state)
    {
        char const* const label = Label_Of(item) ? item.text : "";
        char const* const blank = *label ? " " : "";
        int const room = sizeof text;
        if (state.UseTimecode) {
            ZVTimeValue const time{item.realValue, state.TimeRate};
            char shown[32];
            TimecodeToStringZV(shown, &time, state.TimeUnits, state.IsDuration);
            std::snprintf(text, room, "%.200s%s%s", label, blank, shown);
            return;
        }
        double const value = Shown_Value(state, item.realValue);
        std::snprintf(text, room, "%.200s%s%.*f%s", label, blank, state.Decimals, value,
                      SliderUnit(state).text);
    }

    char text[256];
};

void Draw_Text(SliderLook const& look)
{
    SliderText const shown(look.item, look.state);
    long x = 0, y = 0;
    CenterTextZV(look.draw, shown.text, 0, 0, look.item.width, look.item.height - 6, &x, &y);
    SetPenZV(look.draw, look.Pen(ZV_PEN_TEXT));
    DrawTextZV(look.draw, shown.text, std::max(x, leastTextLeft), y);
}

/// Dashes that run aslant over the strip, and along it with the value.
void Draw_Band(SliderLook const& look)
{
    SetPenZV(look.draw, ShadeColorZV(look.body, dashShade));
    for (long row = look.Strip(); row <= look.Bottom(); ++row) {
        long const shift = ((look.item.state - row) % dashDistance + dashDistance) % dashDistance;
        for (long x = 2 + shift - dashDistance; x <= look.Right(); x += dashDistance) {
            long const from = std::max(x, 2L), to = std::min(x + dash - 1, look.Right());
            if (from <= to) DrawLineZV(look.draw, from, row, to, row);
        }
    }
}

void Draw_Mark(SliderLook const& look, double value, long top, unsigned long colour)
{
    long const x = std::clamp(Slider_Place(look.item, look.state, value), 2L, std::max(look.Right() - 1, 2L));
    SetPenZV(look.draw, colour);
    FillRectZV(look.draw, x, top, x + 1, look.Bottom());
}

void Draw_Strip(SliderLook const& look)
{
    SetPenZV(look.draw, ShadeColorZV(look.body, stripShade));
    FillRectZV(look.draw, 2, look.Strip(), look.Right(), look.Bottom());
    bool const isPressed = look.item.pressed;
    if (look.state.Relative) {
        if (isPressed) Draw_Band(look);
        return;
    }
    if (isPressed) Draw_Mark(look, look.state.StartValue, look.Strip(), ZV_PEN_TAB_BAR);
    Draw_Mark(look, look.item.realValue, isPressed ? 1 : look.Strip(), look.Pen(ZV_PEN_TEXT));
}

void Draw_Frame(SliderLook const& look)
{
    long const right = look.item.width - 1, bottom = look.item.height - 1;
    unsigned long const base = look.Pen(ZV_PEN_PALETTE);
    SetPenZV(look.draw, ShadeColorZV(base, darkEdge));
    DrawLineZV(look.draw, 0, 0, right, 0);
    DrawLineZV(look.draw, 0, 0, 0, bottom);
    SetPenZV(look.draw, ShadeColorZV(base, lightEdge));
    DrawLineZV(look.draw, right, 0, right, bottom);
    DrawLineZV(look.draw, 0, bottom, right, bottom);
    SetPenZV(look.draw, ShadeColorZV(look.body, frameShade));
    DrawRectZV(look.draw, 1, 1, right - 1, bottom - 1);
}

/// What shows beside the field for typing.
void Draw_Beside_Entry(ZVDrawInfo* draw, ZVItem const& item, SliderState const& state)
{
    SetPenZV(draw, ZV_PEN_PALETTE);
    FillRectZV(draw, 0, 0, item.width - 1, item.height - 1);
    SetPenZV(draw, ZV_PEN_TEXT);
    char const* const label = Label_Of(item);
    SliderUnit const unit(state);
    long y = 0;
    CenterTextZV(draw, "", 0, 0, item.width, item.height, nullptr, &y);
    DrawTextZV(draw, label, entryTextLeft, y - 1);
    if (unit.text[0]) DrawTextZV(draw, unit.text, item.width - GetTextWidthZV(draw, unit.text) - 2, y - 1);
}

}  // namespace

long Slider_Place(ZVItem const& item, SliderState const& state, double value)
{
    if (state.Relative) return To_Whole(std::round(value * state.Step));
    double const part = (value - state.InternalMin) / (state.InternalMax - state.InternalMin);
    double const within = part > 0 ? std::min(part, 1.0) : 0.0;
    double const place = state.Flags & ZV_SLIDERF_QUADRATIC ? std::sqrt(within) : within;
    return std::lround(place * static_cast<double>(item.width - insets)) + leftInset;
}

double Slider_Value(ZVItem const& item, SliderState const& state, long place)
{
    double const room = std::max<double>(item.width - insets, 1);
    double const part = std::clamp(static_cast<double>(place - leftInset) / room, 0.0, 1.0);
    double const scaled = state.Flags & ZV_SLIDERF_QUADRATIC ? part * part : part;
    return scaled * (state.InternalMax - state.InternalMin) + state.InternalMin;
}

void Draw_Slider(ZVItem* item, bool isDisabled)
{
    SliderState const* const state = Slider_Of(*item);
    if (!state || !item->native) return;
    GadgetCanvas canvas(*item);
    ZVDrawInfo* const draw = canvas.Context();
    if (!draw) return;
    SetClipRectZV(draw, 0, 0, item->width, item->height);
    SetTextTransparencyZV(draw, 1);
    SetFontZV(draw, GetItemFont(item));
    if (state->EntryOpen && !isDisabled) {
        Draw_Beside_Entry(draw, *item, *state);
    } else {
        if (item->realValue == 0.0) item->realValue = std::abs(item->state);
        unsigned long const pen = item->pressed ? unsigned{ZV_PEN_FACE_ON} : bodyPen;
        SliderLook const look{draw, *item, *state, isDisabled, GetColorZV(Shown_Color(pen, isDisabled))};
        SetPenZV(draw, look.body);
        FillRectZV(draw, 2, 2, look.Right(), look.Bottom());
        Draw_Text(look);
        Draw_Strip(look);
        Draw_Frame(look);
    }
    canvas.Show();
}
