// See FileDialogGadget.h.
#include "FileDialogGadget.h"

#include "ZVLibInternal.h"

#include <new>

static constexpr long WheelNotch = 40;

long FileDialogGadget::Function(ZVCustomEvent* event)
try {
    auto& self = *reinterpret_cast<FileDialogGadget*>(event->item->userData);
    switch (event->type) {
    case ZV_CUSTOM_SETUP: self.item_ = event->item; break;
    case ZV_CUSTOM_CLEANUP: self.item_ = nullptr; break;
    case ZV_CUSTOM_DRAW:
    case ZV_CUSTOM_DRAW_STATE:
    case ZV_CUSTOM_DRAW_DISABLED: self.Draw_All(); break;
    default: self.Take_Event(event); break;
    }
    return 1;
} catch (std::bad_alloc const&) {
    return 1;
}

long FileDialogGadget::Wheel_Rows(ZVCustomEvent const& turn)
{
    wheelRest_ -= turn.deltaY * GetWheelScrollLinesZV();
    long const rows = wheelRest_ / WheelNotch;
    wheelRest_ -= rows * WheelNotch;
    return rows;
}
