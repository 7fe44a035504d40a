// The one entry of the desktop's events: who may be told of them at present, and what is told with each.
#include "MacInput.h"

#include "MacFocus.h"
#include "MacKeys.h"
#include "MacMenu.h"
#include "MacNativeItem.h"
#include "MacWindow.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

/// Nobody is told while an application holds events back, while a dialog of someone else's has them, and
/// while another window is in front of the modal palette's.
static bool Is_Passed_Over()
{
    if (ZVEnv->eventsSuspended || ZVEnv->thirdPartyDialog) return true;
    ZVPalette const* const modal = ZVEnv->modalPalette;
    return modal && GetParentSysWindow(modal, nullptr, nullptr) != Mac_FrontNonFloatingWindow();
}

static void Take_Pen(HostEvent const& event)
{
    static constexpr double fullPressure = 65535;
    double const pressure = event.isPen ? std::clamp(event.pressure, 0.0, 1.0) : 1.0;
    ZVEnv->tablet.pressure = static_cast<uint16_t>(std::lround(pressure * fullPressure));
    ZVEnv->tablet.inProximity = event.isPen;
    if (event.isPen && event.isEraser) ZVEnv->modifiers |= ZV_MOD_ERASER;
}

// ---- the application --------------------------------------------------------------------------------------

/// @param path  native
static void Open_File(std::string const& path)
{
    FSSpec place;
    char spec[ZV_SPEC_SIZE];
    if (path.size() >= sizeof place.path) return;
    std::memcpy(place.path, path.c_str(), path.size() + 1);
    if (GetDOSPathZV(spec, &place) == 0) Do_Event(ZV_EVENT_OPEN_DOC, Tag_Word(&spec[0]));
}

/// An application that knows the event sees to its documents and calls ExitZV when it likes; any other one
/// ends, as it would by a Quit in its menu.
static void Ask_To_Quit()
{
    if (!Do_Event(ZV_EVENT_CLOSE_APP, 0)) ExitZV();
}

// ---- dispatch ---------------------------------------------------------------------------------------------

/// What has happened already, whoever may be told. False for other events.
static bool Follow_Desktop(HostEvent const& event)
{
    ZVWindow* const window = Window_Of(event.window);
    switch (event.type) {
    case HostEventType::WindowBounds:
        if (window) Window_Bounds_Changed(*window);
        return true;
    case HostEventType::WindowZoom:
        if (window) Window_Zoomed(*window);
        return true;
    case HostEventType::WindowFront: Window_Came_Front(event.window); return true;
    case HostEventType::WindowBack: Window_Went_Back(); return true;
    case HostEventType::AppFront: Application_Came_Front(); return true;
    case HostEventType::AppBack: Application_Went_Back(); return true;
    case HostEventType::OpenFile: Open_File(event.text); return true;
    case HostEventType::Quit: Ask_To_Quit(); return true;
    default: return false;
    }
}

static bool Is_Mouse_Event(HostEventType type)
{
    return type >= HostEventType::MouseMove && type <= HostEventType::Wheel;
}

/// Who holds the mouse follows it to the release, even when all other input is passed over.
static bool Is_Holders(HostEventType type)
{
    return Mouse_Holder() && (type == HostEventType::MouseMove || type == HostEventType::MouseUp);
}

/// Escape breaks off what the mouse is held for, if that can be. Nobody is told of the key then, nor of its
/// release.
static bool Breaks_Off(HostEvent const& event)
{
    static bool isKeyHeld = false;
    bool const isPress = event.type == HostEventType::KeyDown;
    if (event.key != HostKey::Escape || (!isPress && event.type != HostEventType::KeyUp)) return false;
    if (!isPress) return std::exchange(isKeyHeld, false);
    if (event.isRepeat) return isKeyHeld;
    isKeyHeld = Mouse_Holder() && Mouse_Holder()->Break_Off();
    if (isKeyHeld) Hold_Mouse(nullptr);
    return isKeyHeld;
}

void Handle_Host_Event(HostEvent const& event)
{
    Rebuild_Modifiers(Mac_Keyboard_State());
    if (Follow_Desktop(event) || Take_Menu_Input(event) || Breaks_Off(event)) return;
    if (Is_Passed_Over() && !Is_Holders(event.type)) return;
    if (Is_Mouse_Event(event.type)) Take_Pen(event);
    switch (event.type) {
    case HostEventType::MouseMove: Mouse_Moved(event); break;
    case HostEventType::MouseDown:
        if (!Press_Menu_Bar(event)) Mouse_Down(event);
        break;
    case HostEventType::MouseUp: Mouse_Up(event); break;
    case HostEventType::Wheel: Mouse_Wheel(event); break;
    case HostEventType::KeyDown: Key_Down(event); break;
    case HostEventType::KeyUp: Key_Up(event); break;
    case HostEventType::Text: Enter_Text(event.text); break;
    case HostEventType::Composition: Compose_Text(event.text, event.caret); break;
    case HostEventType::WindowClose:
        if (ZVWindow* window = Window_Of(event.window)) Ask_To_Close(*window);
        break;
    default: break;
    }
}
