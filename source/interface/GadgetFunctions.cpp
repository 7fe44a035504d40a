// What each type of gadget brings along. A gadget's own file has its function; here it gets its type.
#include "interface/ItemParts.h"

#include "ZVControl.h"

GadgetFunction Function_Of_Type(ZVGadgetType type)
{
    // A gadget without a function, of its own or by its type, keeps its state and draws nothing.
    switch (type) {
    case ZV_GAD_BUTTON:
    case ZV_GAD_TOGGLE:
    case ZV_GAD_RADIO: return ButtonCustomFunc;
    case ZV_GAD_CHECK: return CheckRadioCustomFunc;
    case ZV_GAD_SLIDER: return NewSliderCustomFunc;
    case ZV_GAD_HPROP: return HProp_Gad;
    case ZV_GAD_VPROP: return VProp_Gad;
    case ZV_GAD_TEXTBOX: return TextBoxCustomFunc;
    case ZV_GAD_CYCLE: return CycleCustomFunc;
    case ZV_GAD_SEPARATOR: return SeparatorCustomFunc;
    case ZV_GAD_LABEL: return ZVLib_LabelCustomFunc;
    case ZV_GAD_MENU: return MenuGadCustomFunc;
    default: return nullptr;
    }
}

GadgetFunction Function_Of_Tab_Bar()
{
    return Tab_Gad;
}
