// What the value of one kind of gadget is to another kind.
#include "interface/Dependency.h"
#include "interface/ItemParts.h"

#include <algorithm>
#include <cstdio>

/// The text of the entry that a gadget's state means; empty when there is none. A list counts rows from 1.
static char const* Chosen_Entry(ZVItem const& item)
{
    Node const* const entry = item.declaredType == ZV_GAD_CYCLE
                                  ? FindNodeID(&item.entries, static_cast<unsigned long>(item.state))
                                  : List_Entry(&item.entries, item.state - 1L);
    return entry && entry->name ? entry->name : "";
}

static void Copy_As_Text(ZVItem const& source, ZVItem& target)
{
    char number[400];  // the longest double has 309 digits in front of the point
    switch (source.declaredType) {
    case ZV_GAD_CYCLE:
    case ZV_GAD_LIST:
    case ZV_GAD_MENU: Store_Edit_Text(target, Chosen_Entry(source)); return;
    case ZV_GAD_STRING: Store_Edit_Text(target, source.editText); return;
    case ZV_GAD_FLOAT: std::snprintf(number, sizeof number, "%.2f", source.realValue); break;
    default: std::snprintf(number, sizeof number, "%d", source.state); break;
    }
    Store_Edit_Text(target, number);
}

void Copy_Gadget_Value(ZVItem const& source, ZVItem& target)
{
    bool const isFloat = source.declaredType == ZV_GAD_FLOAT;
    switch (target.declaredType) {
    case ZV_GAD_CUSTOM:
        target.state = isFloat ? To_Whole(source.realValue) : source.state;
        target.realValue = source.realValue;
        break;
    case ZV_GAD_FLOAT: target.realValue = isFloat ? source.realValue : source.state; break;
    case ZV_GAD_STRING: Copy_As_Text(source, target); break;
    case ZV_GAD_TOGGLE:
    case ZV_GAD_CHECK:
    case ZV_GAD_RADIO: target.state = isFloat ? source.realValue != 0 : source.state != 0; break;
    default: target.state = isFloat ? To_Whole(source.realValue + 0.5) : source.state; break;
    }
    if (target.declaredType != ZV_GAD_INTEGER && target.declaredType != ZV_GAD_SLIDER) return;
    target.state = std::max(target.minInt, std::min(target.state, target.maxInt));
    if (target.declaredType != ZV_GAD_SLIDER) return;
    // A slider stands where its real value is.
    bool const isReal = isFloat || source.declaredType == ZV_GAD_SLIDER;
    double const value = isReal ? source.realValue : source.state;
    target.realValue = std::max(target.minReal, std::min(value, target.maxReal));
}
