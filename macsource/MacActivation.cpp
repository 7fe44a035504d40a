// What the desktop does with windows and the application: which one is in front, their places and sizes,
// their close and zoom boxes.
#include "MacInput.h"

#include "MacFocus.h"
#include "MacMenu.h"
#include "MacMenuBar.h"
#include "MacWindow.h"
#include "interface/PaletteTree.h"

#include <utility>

// ---- in front ---------------------------------------------------------------------------------------------

/// A window's list has no focus while the window is not in front, and its lists and bars are dimmed.
static void Leave_Front(ZVWindow& window)
{
    ZVItem* const list = ZVEnv->focusedListItem;
    if (list && GetParentSysWindow(list->group->palette, nullptr, nullptr) == &window) {
        ZVEnv->focusedListItem = nullptr;
        if (list->native) list->native->Set_Focus(false);
    }
    Activate_Lists(&window, 0);
    Enable_Sliders(&window, 0);
}

/// Brings the looks of the window that was in front and of the one that is now in line.
static void Follow_Front_Window()
{
    static ZVWindow* shown;
    ZVEnv->frontWindow = Mac_FrontNonFloatingWindow();
    ZVWindow* const front = Display()->Front_Window() ? ZVEnv->frontWindow : nullptr;
    ZVWindow* const old = std::exchange(shown, front);
    if (old == front) return;
    if (old && Is_Window(old)) Leave_Front(*old);
    Activate_Lists(front, 1);
    Enable_Sliders(front, 1);
}

/// A text field in an ordinary window that is no longer in front loses the focus: what is typed belongs to
/// the window in front.
static void Leave_Field_Behind(ZVWindow const& front)
{
    ZVItem const* const item = ZVEnv->focusedTextItem;
    if (!item) return;
    ZVWindow const* const window = GetParentSysWindow(item->group->palette, nullptr, nullptr);
    if (window && window != &front && !Is_Floating(*window)) Mac_Drop_Focus(ZV_MOD_RELEASE);
}

void Window_Came_Front(HostWindow* host)
{
    ZVWindow* const window = Window_Of(host);
    if (!window || Display()->Front_Window() != host) return;  // or it has lost it again by now
    if (!Is_Floating(*window)) {
        // What a modal palette is in front of cannot get past it.
        ZVPalette const* const modal = ZVEnv->modalPalette;
        ZVWindow* const dialog = GetParentSysWindow(modal, nullptr, nullptr);
        if (dialog && dialog != window) {
            Mac_Select_Window(dialog);
            return;
        }
    }
    // A floater has the keyboard back when the dialog that was in front is gone.
    Follow_Front_Window();
    if (!Is_Floating(*window)) Leave_Field_Behind(*window);
    if (Is_Window(window)) Do_WindowActivation(window);
}

void Window_Went_Back()
{
    Follow_Front_Window();
}

/// Another application was in front, and may have changed how things look.
static bool wasInBack = false;

void Application_Came_Front()
{
    if (!Display()->Front_Window()) return;
    Mac_Show_Floaters();
    Show_Menu_Bar(true);
    // At the start all has just been drawn.
    if (std::exchange(wasInBack, false)) RefreshUIZV();
    Follow_Front_Window();
}

void Application_Went_Back()
{
    if (Display()->Front_Window()) return;
    wasInBack = true;
    Close_Menus();
    Close_Pop_Ups(nullptr);
    // An application of floaters alone would have nothing left to come back by.
    if (Mac_FrontNonFloatingWindow()) {
        Mac_Hide_Floaters();
        Show_Menu_Bar(false);
    }
    Follow_Front_Window();
}

// ---- places and sizes -------------------------------------------------------------------------------------

void Fit_Palette_To_Window(ZVWindow& window)
{
    Invalidate(window);
    ZVPalette* const palette = window.activePalette;
    if (!palette) return;
    // All of a document is drawn again, so nothing is erased where it was, nor drawn where it goes.
    bool const isDocument = window.kind == ZV_KIND_DOCUMENT;
    int32_t const erases = std::exchange(ZVEnv->eraseOnDestroy, isDocument ? 0 : ZVEnv->eraseOnDestroy);
    window.sysWindow->port.surface.Set_Quiet(isDocument);
    Rebuild_SysPalette(palette, window.width, Height_With_Tabs(*palette, window.height - palette->y));
    ZVEnv->eraseOnDestroy = erases;
    if (!Is_Window(&window) || !window.sysWindow) return;
    window.sysWindow->port.surface.Set_Quiet(false);
    Move_Sliders(&window);
    if (isDocument) Invalidate(window);
}

void Window_Bounds_Changed(ZVWindow& window)
{
    if (Take_Bounds(window)) Fit_Palette_To_Window(window);
}

void Window_Zoomed(ZVWindow& window)
{
    if (Begin_Press(&window) && !Is_Behind_Dialog(window) && window.activePalette)
        Do_Event(ZV_EVENT_ZOOM, Tag_Word(window.activePalette));
    if (Is_Window(&window) && window.sysWindow) Window_Bounds_Changed(window);
}

// ---- the close box ----------------------------------------------------------------------------------------

/// Asks the window's palette, which a floater may refuse by event 29 before it is asked by event 22.
static bool May_Close(ZVWindow const& window)
{
    ZVPalette* const palette = window.activePalette;
    if (!palette) return true;
    LivingPalette const watch(palette);
    bool const isFloater = palette->kind == ZV_KIND_FLOATER || palette->kind == ZV_KIND_FIXED;
    if (isFloater && Do_Event(ZV_EVENT_CLOSE_BOX, Tag_Word(palette)) != 0) return false;
    return watch.Is_There() && Do_Event(ZV_EVENT_ASK_CLOSE, Tag_Word(palette)) != 0;
}

void Ask_To_Close(ZVWindow& window)
{
    if (!Begin_Press(&window) || Is_Behind_Dialog(window)) return;
    // Documents are closed by the application, which has them saved first.
    bool const isDocument = window.kind == ZV_KIND_DOCUMENT;
    if (!May_Close(window) || isDocument || !Is_Window(&window)) return;
    Snapshot_WindowPrefs();
    Close_Window(window);
}
