// What each type of gadget brings along. A gadget's own file has its function; here it gets its type.
#include "interface/ItemParts.h"

GadgetFunction Function_Of_Type(ZVGadgetType type)
{
    // FIXME: sliders, text boxes, separators, labels, cycles, menus and proportional gadgets come with their
    // controls, and the tab bar with its own; until then such a gadget keeps its state and draws nothing.
    switch (type) {
    case ZV_GAD_BUTTON:
    case ZV_GAD_TOGGLE:
    case ZV_GAD_RADIO: return ButtonCustomFunc;
    case ZV_GAD_CHECK: return CheckRadioCustomFunc;
    default: return nullptr;
    }
}

GadgetFunction Function_Of_Tab_Bar()
{
    return nullptr;
}
