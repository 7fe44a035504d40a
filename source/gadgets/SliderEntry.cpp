// The field in which the value of a slider is typed. It is a pop-up over the slider that leaves its label and
// unit in sight; there is one at a time. Its gadget knows the slider, and a slider that goes closes it, so
// that the slider is there as long as the field is.
#include "PressGadget.h"
#include "Slider.h"
#include "interface/ItemParts.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace {

constexpr unsigned short fieldId = 1;
constexpr unsigned short first = ZV_Position(ZV_POS_DEFAULT, ZV_POS_DEFAULT);
constexpr long unitGap = 2;
constexpr uint32_t reportBits = ZV_MOD_PRESS | ZV_MOD_CHANGE | ZV_MOD_RELEASE;

/// The open field and whose it is.
struct Entry {
    ZVItem* field;
    ZVItem* slider;
    SliderState* state;
};

/// False when the palette is not there, or not complete yet.
bool Find_Entry(Entry& entry)
{
    entry.field = FindItem2ZV(FindPaletteZV(NumEntryPalette), fieldId);
    entry.slider = entry.field ? reinterpret_cast<ZVItem*>(entry.field->linkedItem) : nullptr;
    entry.state = entry.slider ? Slider_Of(*entry.slider) : nullptr;
    return entry.state;
}

// ---- opening ----------------------------------------------------------------------------------------------

/// Whether the user is still where the slider is: no pop-up is open, and of the windows that become active
/// another one has not. A dialog has the user as long as it is open.
bool Is_In_Use(ZVItem const& slider)
{
    for (ZVWindow const& window : All_Windows())
        if (window.kind == ZV_KIND_TRANSIENT) return false;
    ZVPalette* palette = slider.group->palette;
    uint32_t const kind = Root_Of(palette)->kind;
    if (kind != ZV_KIND_DOCUMENT && kind != ZV_KIND_FLOATER && kind != ZV_KIND_FIXED) return true;
    while (palette && palette != ZVEnv->activePalette)
        palette = palette->parent;
    return palette || !ZVEnv->activePalette;
}

/// What stays in sight at both sides of the field.
struct Margins {
    long left = 0, right = 0;

    Margins(ZVItem const& slider, SliderState const& state)
    {
        ZVDrawInfo draw{};
        draw.Font = GetItemFont(&slider);
        if (slider.text && *slider.text)
            left = GetTextWidthZV(&draw, slider.text) + GetTextWidthZV(&draw, " ");
        SliderUnit const unit(state);
        if (unit.text[0]) right = GetTextWidthZV(&draw, unit.text) + unitGap;
    }
};

/// @return  the field, null without memory, with error 1
ZVItem* Declare_Entry(ZVItem* slider, SliderState const& state, Margins const& margins)
{
    if (!InitPaletteZV()) return nullptr;
    InitGroupZV();
    ZVItem* const field =
        AddGadgetZV(fieldId, first, 0, state.UseTimecode ? ZV_GAD_STRING : ZV_GAD_FLOAT, ZV_SIZE_TINY,
                    nullptr, ZV_ITEM_WIDTH, std::max(slider->width - margins.left - margins.right, 1L),
                    ZV_ITEM_HEIGHT, slider->height, ZV_ITEM_LINKED, slider, 0);
    EndGroupZV(1, first, 0, "", ZV_MARGIN_NONE, 0, 0);
    EndPaletteZV(NumEntryPalette, "", ZV_PAL_CALLBACK, NumEntryCallBack, ZV_MARGIN_NONE, 0, 0);
    return field;
}

void Show_Value(ZVItem* field, ZVItem const& slider, SliderState const& state)
{
    double const value = Shown_Value(state, slider.realValue);
    if (!state.UseTimecode) {
        SetGadgetStateZV(field, value);
        return;
    }
    ZVTimeValue const time{value, state.TimeRate};
    char text[32];
    TimecodeToStringZV(text, &time, state.TimeUnits, state.IsDuration);
    SetTextGadgetStateZV(fieldId, text);
}

// ---- taking what was typed --------------------------------------------------------------------------------

/// A sign ahead of a time adds to the present value, or takes away from it.
double Typed_Time(char const* text, ZVItem const& slider, SliderState const& state)
{
    text += std::strspn(text, " ");
    bool const isRelative = *text == '+' || *text == '-';
    auto const frames = static_cast<double>(StringToTimecodeZV(isRelative ? text + 1 : text, state.TimeRate,
                                                               state.TimeUnits, state.IsDuration != 0));
    double const present = Shown_Value(state, slider.state);
    if (*text == '+') return present + frames;
    return *text == '-' ? present - frames : frames;
}

double Typed_Value(Entry const& entry)
{
    ZVItem const& slider = *entry.slider;
    double const shown = entry.state->UseTimecode ? Typed_Time(entry.field->editText, slider, *entry.state)
                                                  : entry.field->realValue;
    return std::max(slider.minReal, std::min(Shown_Value(*entry.state, shown), slider.maxReal));
}

void Close_Entry(SliderState& state)
{
    state.EntryOpen = 0;
    ClosePaletteZV(NumEntryPalette);
}

/// Gives the slider a value and tells of it.
/// @return  whether the slider is still there
bool Take_Value(ZVItem* slider, double value)
{
    LivingPalette const palette(slider->group->palette);
    UpdateGadgetZV(slider);
    SetGadgetStateZV(slider, value);
    if (!palette.Is_There()) return false;
    ZVEnv->modifiers &= ~reportBits;
    Do_Event(ZV_EVENT_GADGET, Tag_Word(slider));
    return palette.Is_There();
}

/// Closes the field, and gives the slider what is in it.
/// @return  as above
bool Accept(Entry const& entry)
{
    double const value = Typed_Value(entry);
    LivingPalette const palette(entry.slider->group->palette);
    Close_Entry(*entry.state);
    return palette.Is_There() && Take_Value(entry.slider, value);
}

void Cancel(Entry const& entry)
{
    LivingPalette const palette(entry.slider->group->palette);
    Close_Entry(*entry.state);
    if (palette.Is_There()) UpdateGadgetZV(entry.slider);
}

// ---- keys -------------------------------------------------------------------------------------------------

bool Takes_Entry(ZVItem const& item)
{
    return item.kind == ZV_ITEM_GADGET && item.type == ZV_GAD_SLIDER && item.native &&
           item.customFunc == NewSliderCustomFunc && !(item.flags & ZV_ITEMF_DISABLED) &&
           !(item.group->flags & ZV_GRPF_HIDDEN);
}

/// The next slider of the palette in a ring; null when there is no other.
ZVItem* Next_Slider(ZVItem* slider, bool isBackward)
{
    Node* node = &slider->node;
    for (;;) {
        node = (isBackward ? PrevNodeListWrap : NextNodeListWrap)(node, offsetof(ZVGroup, items));
        auto* const item = reinterpret_cast<ZVItem*>(node);
        if (item == slider) return nullptr;
        if (Takes_Entry(*item)) return item;
    }
}

void Go_To_Next(Entry const& entry, bool isBackward)
{
    ZVItem* const next = Next_Slider(entry.slider, isBackward);
    if (!next || !Accept(entry) || !Takes_Entry(*next)) return;
    UpdateGadgetZV(next);
    Open_Slider_Entry(next);
}

void Take_Key(ZVEvent* event, Entry const& entry)
{
    if (event->modifiers & ZV_MOD_KEY_UP) return;
    switch (event->key) {
    case 'c':
    case ZV_KEY_ESCAPE:
        event->result = 1;
        Cancel(entry);
        break;
    case 'o':
    case ZV_KEY_ENTER:
    case ZV_KEY_RETURN:
        event->result = 1;
        Accept(entry);
        break;
    case ZV_KEY_TAB:
        event->result = 1;
        Go_To_Next(entry, event->modifiers & ZV_MOD_SHIFT);
        break;
    default: break;
    }
}

/// The palette is being closed from elsewhere: what was typed counts.
void Leave(Entry const& entry)
{
    if (!entry.state->EntryOpen) return;
    double const value = Typed_Value(entry);
    entry.state->EntryOpen = 0;
    Take_Value(entry.slider, value);
}

}  // namespace

void Open_Slider_Entry(ZVItem* item)
{
    SliderState* const state = Slider_Of(*item);
    if (!state || !Is_In_Use(*item)) return;
    CurrentPalette const current(ZVEnv->currentPalette);
    LivingPalette const palette(item->group->palette);
    Margins const margins(*item, *state);
    ZVItem* const field = Declare_Entry(item, *state, margins);
    if (!field) {
        Free_Palette(std::exchange(ZVEnv->buildingPalette, nullptr));
        return;
    }
    state->EntryOpen = 1;
    Show_Value(field, *item, *state);
    long x = 0, y = 0;
    GetItemScreenPosZV(item, &x, &y);
    bool const isShown = DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_TRANSIENT, ZV_PAL_WINDOW_X, x + margins.left,
                                          ZV_PAL_WINDOW_Y, y, ZV_PAL_OVERRIDE_PREFS, 0, 0);
    if (!palette.Is_There()) return;
    if (isShown)
        ActivatePaletteZV(NumEntryPalette, 1);
    else
        state->EntryOpen = 0;
    if (palette.Is_There()) UpdateGadgetZV(item);
}

void Drop_Slider_Entry(SliderState& state)
{
    if (state.EntryOpen) Close_Entry(state);
}

void NumEntryCallBack(ZVEvent* event)
{
    Entry entry;
    if (!Find_Entry(entry)) return;
    switch (event->type) {
    case ZV_EVENT_CLEANUP: Leave(entry); break;
    case ZV_EVENT_KEY: Take_Key(event, entry); break;
    case ZV_EVENT_GADGET:
        if (Event_Item(event) == entry.field && event->modifiers & ZV_MOD_RELEASE) Accept(entry);
        break;
    default: break;
    }
}
