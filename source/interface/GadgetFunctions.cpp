// What each type of gadget brings along. A gadget's own file has its function; here it gets its type.
#include "interface/ItemParts.h"

GadgetFunction Function_Of_Type(ZVGadgetType type)
{
    // A gadget without a function, of its own or by its type, keeps its state and draws nothing.
    switch (type) {
    case ZV_GAD_BUTTON:
    case ZV_GAD_TOGGLE:
    case ZV_GAD_RADIO: return ButtonCustomFunc;
    case ZV_GAD_CHECK: return CheckRadioCustomFunc;
    case ZV_GAD_MENU: return MenuGadCustomFunc;
    default: return nullptr;
    }
}

GadgetFunction Function_Of_Tab_Bar()
{
    return nullptr;
}
