// See ModalDialog.h.
#include "ModalDialog.h"

#include "Locale/ZVLibStr.h"
#include "interface/Interruption.h"

double Value_Of(unsigned short id)
{
    ZVItem const* const item = FindItemZV(id);
    return item ? item->realValue : 0;
}

int32_t State_Of(unsigned short id)
{
    ZVItem const* const item = FindItemZV(id);
    return item ? item->state : 0;
}

bool Run_Modal_Palette(unsigned long titleId, void (*callback)(ZVEvent*), void* object,
                       std::function<void()> const& declare)
{
    Interruption interruption;
    bool isDeclared = false, isShown = false;
    if (ZVPalette* const palette = InitPaletteZV()) {
        LivingPalette const watch(palette);
        palette->object = object;
        palette->callback = callback;  // from now on: what cannot be declared is nothing of the application's
        try {
            declare();
            isDeclared = EndPaletteZV(0, titleId, nullptr);
            if (isDeclared)
                isShown = DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_MODAL, ZV_PAL_FLAGS, ZV_PALF_NO_PREFS, 0);
        } catch (std::bad_alloc const&) {
            SetError(ZV_ERR_MEMORY);
        }
        // It may still be open, as the end of the application ends the loop too.
        if (!isDeclared)
            Free_Palette(palette);
        else if (watch.Is_There())
            ClosePaletteZV(palette);
    }
    if (!isShown) interruption.Keep_Error();
    return isShown;
}

static void Add_Buttons()
{
    InitGroupZV();
    AddGadgetZV(ModalDialog::ConfirmId, FirstPlace, 0, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, ZVSTR_OK, nullptr);
    AddGadgetZV(ModalDialog::CancelId, BesidePlace, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, ZVSTR_CANCEL, nullptr);
    EndGroupZV(0, ZV_Position(ZV_POS_PARENT_END, ZV_POS_AFTER), -1, nullptr, nullptr);
}

DialogAnswer ModalDialog::Run(unsigned long titleId, void (*callback)(ZVEvent*))
{
    bool const isShown = Run_Modal_Palette(titleId, callback, this, [this] {
        Add_Groups();
        Add_Buttons();
    });
    if (!isShown) return DialogAnswer::Failed;
    return isConfirmed_ ? DialogAnswer::Confirmed : DialogAnswer::Cancelled;
}

void ModalDialog::Handle(ZVEvent* event)
{
    if (event->palette) static_cast<ModalDialog*>(event->palette->object)->On_Event(*event);
}

/// A key that is pressed by itself.
static bool Is_Plain_Press(ZVEvent const& event)
{
    constexpr uint32_t others =
        ZV_MOD_REPEAT | ZV_MOD_KEY_UP | ZV_MOD_CONTROL | ZV_MOD_SHIFT | ZV_MOD_ALT | ZV_MOD_COMMAND;
    return event.type == ZV_EVENT_KEY && !(event.modifiers & others);
}

void ModalDialog::On_Event(ZVEvent& event)
{
    constexpr uint32_t reports = ZV_MOD_PRESS | ZV_MOD_CHANGE | ZV_MOD_RELEASE;
    uint32_t const key = Is_Plain_Press(event) ? event.key : 0;
    bool const isGadget = event.type == ZV_EVENT_GADGET;
    auto const id = isGadget ? static_cast<unsigned short>(Event_Item(&event)->node.id) : uint16_t{0};
    bool const confirms = id == ConfirmId || key == ZV_KEY_RETURN || key == ZV_KEY_ENTER;
    if (confirms || id == CancelId || key == ZV_KEY_ESCAPE) {
        if (key) event.result = 1;
        Finish(event.palette, confirms);
    } else if (isGadget) {
        On_Gadget(id, event.modifiers & reports);
    }
}

/// What was being typed has been told by then: Return and a press on a button both end it.
void ModalDialog::Finish(ZVPalette* palette, bool isConfirmed)
{
    // Closing tells a focused field's change to a dialog that has its answer already.
    if (palette->flags & ZV_PALF_CLOSING) return;
    isConfirmed_ = isConfirmed;
    if (isConfirmed) Take_Settings();
    ClosePaletteZV(palette);
}
