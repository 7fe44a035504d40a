// Presses of a mouse button: which window, field, list, gadget or bar gets one, and its release.
#include "MacInput.h"

#include "MacFocus.h"
#include "MacGrow.h"
#include "MacWindow.h"
#include "gadgets/PopupList.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace {

/// The press that lasts.
struct Press {
    HostButton button;
    uint32_t control;         ///< ZV_MOD_CONTROL when it was held, which the release is told as well
    bool isReported = false;  ///< a gadget's function or event 3 has told of it
};
std::optional<Press> press;

}  // namespace

// ---- which window -----------------------------------------------------------------------------------------

void Close_Pop_Ups(ZVWindow const* except, ZVItem const* owner)
{
    auto const next = [except, owner]() -> ZVPalette* {
        for (ZVWindow const& window : All_Windows()) {
            ZVPalette* const palette = window.activePalette;
            bool const isPopUp = window.kind == ZV_KIND_TRANSIENT && &window != except;
            bool const stays = owner && Owner_Of_Pop_Up(palette) == owner;
            if (isPopUp && palette && !stays && !(palette->flags & ZV_PALF_CLOSING)) return palette;
        }
        return nullptr;
    };
    if (next()) Mac_Report_Text();
    while (ZVPalette* const palette = next())
        ClosePaletteZV(palette);
}

bool Is_Dialog_Open()
{
    for (ZVWindow const& window : All_Windows())
        if (window.kind == ZV_KIND_MODAL) return true;
    return false;
}

bool Is_Behind_Dialog(ZVWindow const& window)
{
    return Is_Dialog_Open() && &window != ZVEnv->frontWindow && window.kind != ZV_KIND_TRANSIENT;
}

bool Begin_Press(ZVWindow* window, ZVItem const* pressed)
{
    Close_Pop_Ups(window, pressed);
    return Is_Window(window);
}

/// Windows of one layer lie above all those of the layer below.
static int Layer_Of(ZVWindow const& window)
{
    switch (window.kind) {
    case ZV_KIND_ROOT:
    case ZV_KIND_APP: return 0;
    case ZV_KIND_TRANSIENT: return 3;
    default: return Is_Floating(window) ? 2 : 1;
    }
}

/// Whether raising the window would change nothing.
static bool Is_In_Front(ZVWindow const& window)
{
    if (!Display()->Front_Window()) return false;
    for (HostWindow const* host = nullptr; (host = Display()->Next_Window(host));) {
        ZVWindow const* const other = Window_Of(host);
        if (other && Layer_Of(*other) == Layer_Of(window)) return other == &window;
    }
    return false;
}

/// Brings the window of a press to the front. False when the press has been one for that: it has brought a
/// document forward, or the window is gone. Most desktops bring windows forward by themselves, ahead of the
/// press, which then is one like any other.
static bool Raise_For_Press(ZVWindow& window)
{
    if (window.kind == ZV_KIND_ROOT || Is_In_Front(window)) return true;
    Mac_Drop_Focus(ZV_MOD_RELEASE);
    if (!Is_Window(&window)) return false;
    ZVWindow const* const oldFront = ZVEnv->frontWindow;
    Mac_Select_Window(&window);
    return ZVEnv->frontWindow == oldFront;
}

// ---- the content of a window ------------------------------------------------------------------------------

void Mac_Report_Text()
{
    if (ZVEnv->focusedTextItem) Send_Gadget_Event(*ZVEnv->focusedTextItem, ZV_MOD_RELEASE);
}

/// Ends the focus that was there before a press. Who has got it by the press itself keeps it.
static void Drop_Old_Focus(ZVItem const* text, ZVItem const* list)
{
    if (ZVEnv->focusedTextItem == text && ZVEnv->focusedListItem == list) Mac_Drop_Focus(ZV_MOD_RELEASE);
}

/// @return  whether there is a gadget with a function, which has got the press then
static bool Press_Gadget(HostEvent const& event)
{
    ZVItem const* const item = ZVEnv->trackedItem;
    if (!item || !item->customFunc) return false;
    press->isReported = true;
    Custom_Gad_MouseDown(event.x, event.y, event.clicks, event.button == HostButton::Right);
    return true;
}

static bool Press_Bar(ZVWindow& window, int x, int y)
{
    for (ZVSysScrollBar* ZVWindow::*const bar : {&ZVWindow::verticalBar, &ZVWindow::horizontalBar}) {
        if (!(window.*bar) || !(window.*bar)->bar.Bounds().Contains(x, y)) continue;
        Mac_Drop_Focus(ZV_MOD_RELEASE);
        if (!press || !Is_Window(&window) || !(window.*bar)) return true;
        HostRect const client = window.sysWindow->host->Client();
        (window.*bar)->bar.Press(window.sysWindow->port, x, y, client.left, client.top);
        return true;
    }
    return false;
}

/// The press on nothing in particular: event 3. A contextual one shows in `buttonState` meanwhile.
static void Report_Press(HostEvent const& event)
{
    press->isReported = true;
    ZVEnv->buttonState |= ZV_MOD_BUTTON;
    if (event.button == HostButton::Right) ZVEnv->buttonState |= ZV_MOD_CONTEXTUAL;
    Do_Event(ZV_EVENT_MOUSE_DOWN, 0);
    ZVEnv->buttonState &= ~uint32_t{ZV_MOD_CONTEXTUAL};
}

static void Press_Content(ZVWindow& window, HostEvent const& event)
{
    HostRect const client = window.sysWindow->host->Client();
    int const x = event.x - client.left, y = event.y - client.top;
    if (Focused_Text_Press(&window, x, y)) return;
    Mac_Report_Text();
    // A callback that runs a loop of its own may have seen the release.
    if (!press || !Is_Window(&window) || List_Gad_Check(&window, x, y, event.milliseconds)) return;

    ZVItem const *const text = ZVEnv->focusedTextItem, *const list = ZVEnv->focusedListItem;
    bool const isForMenu = event.button == HostButton::Right || event.modifiers.control;
    if (Press_Gadget(event)) {
        if (!isForMenu) Drop_Old_Focus(text, list);
        return;
    }
    if (Press_Bar(window, x, y) || Press_Grow_Box(window, event.x, event.y)) return;
    if (String_Gad_Check(&window, x, y)) return;
    Report_Press(event);
    Drop_Old_Focus(text, list);
}

// ---- down and up ------------------------------------------------------------------------------------------

static void Press_Window(HostEvent const& event)
{
    ZVWindow* const window = Window_Of(event.window);
    if (!Begin_Press(window, ZVEnv->trackedItem)) {
        if (!window && Is_Dialog_Open()) Display()->Beep();
        return;
    }
    // A palette that stays out of activation takes presses where it is, be there a dialog or not.
    ZVPalette const* const palette = ZVEnv->mousePalette;
    bool const staysBehind = palette && palette->flags & ZV_PALF_NO_ACTIVATE;
    if (!staysBehind && Is_Behind_Dialog(*window)) return;
    Do_WindowActivation(window);
    if (!Is_Window(window)) return;
    if (staysBehind || Raise_For_Press(*window)) Press_Content(*window, event);
}

void Mouse_Down(HostEvent const& event)
{
    // One button at a time. A second press of the same one means that nobody saw its release.
    if (press && press->button != event.button) {
        Custom_Gad_SecondButton(ZVEnv->pointerX, ZVEnv->pointerY);
        return;
    }
    if (event.button == HostButton::Middle) return;
    if (press) Mouse_Up(event);
    press = Press{event.button, ZVEnv->modifiers & ZV_MOD_CONTROL};
    ZVEnv->modifiers |= ZV_MOD_BUTTON;
    Take_Mouse_Point(event);
    if (press) Press_Window(event);
}

/// Who holds the mouse lets go of it there.
static void Release_Holder(int x, int y)
{
    MouseTracker* const holder = Mouse_Holder();
    if (!holder) return;
    Hold_Mouse(nullptr);
    holder->Finish(x, y);
}

void Mouse_Up(HostEvent const& event)
{
    if (!press || press->button != event.button) return;
    Press const ended = *std::exchange(press, std::nullopt);
    Release_Holder(event.x, event.y);
    Take_Mouse_Point(event);
    ZVEnv->modifiers = (ZVEnv->modifiers & ~uint32_t{ZV_MOD_BUTTON}) | ended.control;
    if (ended.isReported) Do_Event(ZV_EVENT_MOUSE_UP, 0);
    if (ZVEnv->trackMouse) TrackMouseZV(0);
    if (ZVEnv->trackingItem) Custom_Gad_MouseUp(ZVEnv->pointerX, ZVEnv->pointerY);
    for (uint32_t* const word : {&ZVEnv->buttonState, &ZVEnv->modifiers})
        *word &= ~uint32_t{ZV_MOD_BUTTON | ZV_MOD_DOUBLE_CLICK | ZV_MOD_DRAGGED};
}

void Release_Lost_Press()
{
    if (!press || Display()->Is_Button_Down()) return;
    HostEvent release{.type = HostEventType::MouseUp, .button = press->button};
    Display()->Pointer(release.x, release.y);
    Mouse_Up(release);
}

void End_Press()
{
    press.reset();
    Release_Holder(ZVEnv->pointerX, ZVEnv->pointerY);
}

void Forget_Press()
{
    press.reset();
}
