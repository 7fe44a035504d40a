// The state of gadgets: whole number, real number or text, set and read without knowing the gadget.
#include "interface/ItemParts.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <cmath>

/// Real values closer than this are the same.
static constexpr double Closeness = 1e-7;

/// Tells the gadget's function of a new state; its answer is whether that is a change.
static bool Set_Custom_State(ZVItem& item, int32_t whole, double value)
{
    bool const differs = item.state != whole || std::fabs(item.realValue - value) >= Closeness;
    item.state = whole;
    item.realValue = value;
    return item.customFunc ? Send_Custom_Event(item, ZV_CUSTOM_SET_STATE, differs) : differs;
}

/// Stores a state by the rule of the gadget's type. True when it has changed.
static bool Store_State(ZVItem& item, double value)
{
    int32_t const whole = To_Whole(value);
    int32_t const old = item.state;
    switch (item.declaredType) {
    case ZV_GAD_BUTTON: return false;
    case ZV_GAD_TOGGLE:
    case ZV_GAD_CHECK:
    case ZV_GAD_RADIO: item.state = whole != 0; return (old != 0) != (whole != 0);
    case ZV_GAD_CYCLE:
    case ZV_GAD_MENU:
    case ZV_GAD_INTEGER:
    case ZV_GAD_LIST:
        item.state = whole;
        item.realValue = whole;
        return whole != old;
    case ZV_GAD_FLOAT:
    case ZV_GAD_SLIDER:
        if (!(std::fabs(item.realValue - value) >= Closeness)) return false;
        item.realValue = value;
        item.state = whole;
        return true;
    case ZV_GAD_HPROP:
    case ZV_GAD_VPROP:
    case ZV_GAD_TEXTBOX:
        item.state = std::max(item.minInt, std::min(whole, item.maxInt));
        return item.state != old;
    case ZV_GAD_CUSTOM: return Set_Custom_State(item, whole, value);
    default: return true;
    }
}

/// Shows a new state, and what depends on it.
static void Show_State(ZVItem* item)
{
    LivingPalette const palette(item->group->palette);
    UpdateGadgetZV(item);
    if (palette.Is_There()) Process_Dependencies(item);
}

void SetGadgetStateZV(ZVItem* item, double value)
{
    if (!item || item->kind != ZV_ITEM_GADGET) return;
    LivingPalette const palette(item->group->palette);
    if (Store_State(*item, value) && palette.Is_There()) Show_State(item);
}

void SetGadgetStateZV(unsigned long id, double value)
{
    SetGadgetStateZV(FindItemZV(static_cast<unsigned short>(id)), value);
}

bool Store_Edit_Text(ZVItem& item, char const* text)
{
    if (!item.editText) return false;
    auto const capacity = static_cast<std::size_t>(item.maxChars);
    std::size_t length = strnlen(text, capacity + 1);
    if (length > capacity) {
        // A character of several bytes that does not fit is left out as a whole.
        length = capacity;
        while (length > 0 && (text[length] & 0xC0) == 0x80)
            --length;
    }
    bool const differs = std::strncmp(item.editText, text, length) != 0 || item.editText[length] != 0;
    std::memmove(item.editText, text, length);
    item.editText[length] = 0;
    return differs;
}

void SetTextGadgetStateZV(unsigned long id, char const* text)
{
    ZVItem* const item = FindItemZV(static_cast<unsigned short>(id));
    if (!item || (item->type != ZV_GAD_STRING && item->type != ZV_GAD_EDITOR)) return;
    if (Store_Edit_Text(*item, text ? text : "")) Show_State(item);
}

void SetTextGadgetStateZV(unsigned long id, unsigned long textId)
{
    SetTextGadgetStateZV(id, Text_Of_Id(textId));
}

unsigned long GetGadgetStateZV(unsigned long id)
{
    ZVItem const* const item = FindItemZV(static_cast<unsigned short>(id));
    if (!item || item->kind != ZV_ITEM_GADGET) return 0;
    switch (item->type) {
    case ZV_GAD_STRING:
    case ZV_GAD_EDITOR: return Tag_Word(item->editText);
    case ZV_GAD_FLOAT:
    case ZV_GAD_SLIDER: return Tag_Word(&item->realValue);
    case ZV_GAD_SEPARATOR:
    case ZV_GAD_LABEL: return 0;
    default: return item->type <= ZV_GAD_TEXTBOX ? Tag_Word(item->state) : 0;
    }
}
