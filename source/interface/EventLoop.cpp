// The main loop, which modal palettes nest, and what its tick timer does. The desktop layer's loops run the
// timers: Do_VBL too, so that the busy cursor moves while a loop runs.
#include "interface/PaletteTree.h"

#include <optional>
#include <utility>

/// Runs until the modal palette that is on top now is closed. Events come through again, whoever held them
/// back, and also in the midst of a dialog of someone else's.
static void Run_Modal_Loop()
{
    ZVPalette* const palette = ZVEnv->modalPalette;
    int32_t const suspended = std::exchange(ZVEnv->eventsSuspended, 0);
    int32_t const thirdParty = std::exchange(ZVEnv->thirdPartyDialog, 0);
    Activate_First_Gadget(palette);
    Disable_All_Menus();
    Mac_Flush_Events();
    Mac_Run_Modal_Loop(palette);
    Mac_Flush_Events();
    ZVEnv->eventsSuspended = suspended;
    ZVEnv->thirdPartyDialog = thirdParty;
}

long HandleGUIZV()
{
    if (!ZVEnv) return 1;
    // Whoever is told of a focus that goes may close the palette that there is to wait for.
    std::optional<LivingPalette> modal;
    if (ZVEnv->modalPalette) modal.emplace(ZVEnv->modalPalette);
    Mac_Drop_Focus(ZV_MOD_RELEASE);
    ++ZVEnv->guiLevel;
    if (!modal)
        Mac_Run_Application_Loop();
    else if (modal->Is_There())
        Run_Modal_Loop();
    --ZVEnv->guiLevel;
    if (ZVEnv->modalDepth == 0) {
        Reenable_All_Menus();
        MakeMenuBarZV();
    }
    return 1;
}

void EnterThirdPartyModalDialogZV()
{
    if (ZVEnv) ZVEnv->thirdPartyDialog = 1;
}

void ExitThirdPartyModalDialogZV()
{
    if (ZVEnv) ZVEnv->thirdPartyDialog = 0;
}

long AdvanceGUIZV(long)
{
    if (!ZVEnv) return 0;
    Mac_Handle_Waiting_Events();
    return !ZVEnv->exitRequested;
}

void Rebuild_Modifiers(uint32_t keyboard)
{
    ZVEnv->modifiers = (ZVEnv->buttonState & ~uint32_t{ZV_MOD_CONTEXTUAL}) | keyboard;
}

/// A change of Caps Lock is a key event of its own.
static void Report_Caps_Lock()
{
    uint32_t const state = ZVEnv->modifiers & ZV_MOD_CAPS_LOCK;
    if (std::exchange(ZVEnv->capsLockState, state) == state) return;
    // The code of the key in both halves, so that a binding of CAPSLOCK finds it.
    Do_Event(ZV_EVENT_KEY, ZV_KEY_CAPS_LOCK << 16 | ZV_KEY_CAPS_LOCK);
}

void AppTickTimerProcZV()
{
    ++ZVEnv->ticks;
    Rebuild_Modifiers(Mac_Keyboard_State());
    Custom_Gad_Tick();
    Do_Event(ZV_EVENT_TICK, 0);
    Mac_Idle_Text_Field();
    Report_Caps_Lock();
}
