// SDL's events as those of the display.
#include "SDLWindow.h"
#include "XWindow.h"

#include <algorithm>
#include <cmath>

namespace {

/// So that a wait without an end fits SDL's count of milliseconds.
constexpr double LongestWait = 3600;

int Floor_Divided(int value, int unit)
{
    return static_cast<int>(std::floor(static_cast<double>(value) / unit));
}

/// Whole points of a movement; what is left over stays in `rest`.
int Whole_Points(int& rest, int movement, int unit)
{
    rest += movement;
    int const points = rest / unit;
    rest -= points * unit;
    return points;
}

}  // namespace

// ---- the queue --------------------------------------------------------------------------------------------

void SDLDisplay::Bring_In()
{
    for (SDLWindow* const window : windows_)
        window->Finish_Showing();
    isFocusLost_ = false;
    SDL_Event event;
    while (SDL_PollEvent(&event))
        Translate(event);
    // When keys go from one window of ours to another, none is without them in between.
    if (isFocusLost_ && !SDL_GetKeyboardFocus()) Give_Keys(nullptr);
    Keep_Layers();
}

/// The desktop knows two layers. In the upper one are the dialogs, or without any the floaters, as long as
/// this application is in front; a press on a floater puts it above what is in its own layer.
void SDLDisplay::Keep_Layers()
{
    bool const hasDialog = std::ranges::any_of(windows_, [](SDLWindow const* window) {
        return window->IsShown() && window->Request().kind == HostWindowKind::Dialog;
    });
    HostWindowKind const upper = hasDialog ? HostWindowKind::Dialog : HostWindowKind::Floater;
    for (SDLWindow* const window : windows_)
        if (window->IsShown() && window->Request().kind != HostWindowKind::Popup)
            window->Keep_On_Top(Front_Window() && window->Request().kind == upper);
}

std::optional<HostEvent> SDLDisplay::Next_Event(double seconds)
{
    uint64_t const start = Milliseconds();
    auto const wait = static_cast<uint64_t>(std::ceil(std::clamp(seconds, 0.0, LongestWait) * 1000));
    for (;;) {
        Bring_In();
        bell_.Tidy();
        while (auto event = Take_Event()) {
            if (event->type == HostEventType::WindowBounds &&
                !static_cast<SDLWindow*>(event->window)->Follow_Bounds(event->type))
                continue;
            return event;
        }
        uint64_t const passed = Milliseconds() - start;
        if (passed >= wait) return std::nullopt;
        // What was uncovered does not wait for whoever presents next.
        for (SDLWindow* const window : windows_)
            if (window->Is_Exposed()) window->Present();
        SDL_WaitEventTimeout(nullptr, static_cast<int>(wait - passed));
    }
}

bool SDLDisplay::Has_Events()
{
    Bring_In();
    return Is_Waiting();
}

void SDLDisplay::Flush_Input()
{
    Bring_In();
    Flush_Events();
}

// ---- translation ------------------------------------------------------------------------------------------

void SDLDisplay::Translate(SDL_Event& event)
{
    bool const isMouse = event.type >= SDL_MOUSEMOTION && event.type <= SDL_MOUSEWHEEL;
    if (isMouse && event.motion.which == SDL_TOUCH_MOUSEID) xPointer_.reset();
    switch (event.type) {
    case SDL_SYSWMEVENT:
        if (SDL_Point at; X_Pointer_Of(*event.syswm.msg, at.x, at.y)) xPointer_ = at;
        break;
    case SDL_QUIT: Add_Event({.type = HostEventType::Quit}); break;
    case SDL_WINDOWEVENT: Translate_Window(event.window); break;
    case SDL_MOUSEMOTION: Translate_Motion(event.motion); break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP: Translate_Button(event.button); break;
    case SDL_MOUSEWHEEL: Translate_Wheel(event.wheel); break;
    case SDL_KEYDOWN:
    case SDL_KEYUP: Translate_Key(event.key); break;
    case SDL_TEXTINPUT: Translate_Text(HostEventType::Text, event.text.text, 0); break;
    case SDL_TEXTEDITING:
        Translate_Text(HostEventType::Composition, event.edit.text, event.edit.start);
        break;
    case SDL_TEXTEDITING_EXT:
        Translate_Text(HostEventType::Composition, event.editExt.text, event.editExt.start);
        SDL_free(event.editExt.text);
        break;
    case SDL_DROPFILE:
        Add_Event({.type = HostEventType::OpenFile,
                   .window = Find_Window(event.drop.windowID),
                   .text = event.drop.file ? event.drop.file : ""});
        SDL_free(event.drop.file);
        break;
    case SDL_DROPTEXT: SDL_free(event.drop.file); break;
    default: break;
    }
}

SDLWindow* SDLDisplay::Find_Window(Uint32 id) const
{
    auto const found = std::find_if(windows_.begin(), windows_.end(),
                                    [id](SDLWindow* window) { return window->Id() == id; });
    return found == windows_.end() ? nullptr : *found;
}

void SDLDisplay::Translate_Window(SDL_WindowEvent const& event)
{
    SDLWindow* const window = Find_Window(event.windowID);
    if (!window) return;
    switch (event.event) {
    case SDL_WINDOWEVENT_EXPOSED: window->Expose(); break;
    case SDL_WINDOWEVENT_MOVED:
    case SDL_WINDOWEVENT_SIZE_CHANGED:
    case SDL_WINDOWEVENT_MAXIMIZED:
    case SDL_WINDOWEVENT_RESTORED:
        // One is enough for all that happened: the bounds are asked for when it is taken.
        if (!Is_Waiting(HostEventType::WindowBounds, window))
            Add_Event({.type = HostEventType::WindowBounds, .window = window});
        break;
    case SDL_WINDOWEVENT_CLOSE:
        if (window->Request().canClose) Add_Event({.type = HostEventType::WindowClose, .window = window});
        break;
    case SDL_WINDOWEVENT_FOCUS_GAINED:
        if (!window->IsShown()) break;
        Place_In_Front(*window, window->Request().kind);
        Give_Keys(window);
        break;
    case SDL_WINDOWEVENT_FOCUS_LOST: isFocusLost_ = true; break;
    case SDL_WINDOWEVENT_LEAVE: Leave_Window(); break;
    default: break;
    }
}

/// The pointer is over no window of ours now.
void SDLDisplay::Leave_Window()
{
    int x = 0, y = 0;
    if (isPointerHeld_ || SDL_GetGlobalMouseState(&x, &y) != 0) return;  // held, or in a drag
    Add_Event(Mouse_Event(HostEventType::MouseMove, nullptr, x, y));
}

/// While a press is held and windows come and go, SDL takes positions on one window for such on another, and
/// cuts them to its size. Where the server has told its own, that counts.
/// @param x  in SDL's units, on the client area of the window, or on the desktop without one
HostEvent SDLDisplay::Mouse_Event(HostEventType type, SDLWindow* window, int x, int y)
{
    HostEvent event{.type = type, .window = window, .modifiers = Modifiers_Of(SDL_GetModState())};
    if (!isPointerHeld_) {
        SDL_Point corner{};
        if (window) window->Position(corner.x, corner.y);
        SDL_Point const at = xPointer_.value_or(SDL_Point{corner.x + x, corner.y + y});
        event.deltaX = Floor_Divided(at.x, unit_) - mouseX_;
        event.deltaY = Floor_Divided(at.y, unit_) - mouseY_;
        mouseX_ += event.deltaX;
        mouseY_ += event.deltaY;
    }
    event.x = mouseX_;
    event.y = mouseY_;
    return event;
}

void SDLDisplay::Translate_Motion(SDL_MouseMotionEvent const& motion)
{
    SDLWindow* const window = Find_Window(motion.windowID);
    if (!window) return;
    HostEvent event = Mouse_Event(HostEventType::MouseMove, window, motion.x, motion.y);
    if (isPointerHeld_) {
        event.deltaX = Whole_Points(heldRestX_, motion.xrel, unit_);
        event.deltaY = Whole_Points(heldRestY_, motion.yrel, unit_);
    }
    Add_Event(std::move(event));
}

void SDLDisplay::Translate_Button(SDL_MouseButtonEvent const& button)
{
    SDLWindow* const window = Find_Window(button.windowID);
    bool const isPress = button.state == SDL_PRESSED;
    if (button.button > SDL_BUTTON_RIGHT || (isPress && !window)) return;
    HostEvent event{.type = HostEventType::MouseUp,
                    .modifiers = Modifiers_Of(SDL_GetModState()),
                    .x = mouseX_,
                    .y = mouseY_};
    // A window that goes while the button is held takes the place of the release along, but not the release.
    if (window)
        event = Mouse_Event(isPress ? HostEventType::MouseDown : HostEventType::MouseUp, window, button.x,
                            button.y);
    event.button = button.button == SDL_BUTTON_LEFT     ? HostButton::Left
                   : button.button == SDL_BUTTON_MIDDLE ? HostButton::Middle
                                                        : HostButton::Right;
    Add_Event(std::move(event));
}

void SDLDisplay::Translate_Wheel(SDL_MouseWheelEvent const& wheel)
{
    SDLWindow* const window = Find_Window(wheel.windowID);
    if (!window) return;
    HostEvent event = Mouse_Event(HostEventType::Wheel, window, wheel.mouseX, wheel.mouseY);
    double const sign = wheel.direction == SDL_MOUSEWHEEL_FLIPPED ? -1 : 1;
    event.wheelX = sign * static_cast<double>(wheel.preciseX);
    event.wheelY = sign * static_cast<double>(wheel.preciseY);
    Add_Event(std::move(event));
}

void SDLDisplay::Translate_Key(SDL_KeyboardEvent const& key)
{
    HostEvent event =
        Keyboard_Event(key.state == SDL_PRESSED ? HostEventType::KeyDown : HostEventType::KeyUp);
    event.modifiers = Modifiers_Of(static_cast<SDL_Keymod>(key.keysym.mod));
    event.isRepeat = key.repeat != 0;
    Set_Key(event, key.keysym);
    if (event.window) Add_Event(std::move(event));
}

void SDLDisplay::Translate_Text(HostEventType type, char const* text, int caret)
{
    HostEvent event = Keyboard_Event(type);
    event.text = text;
    event.caret = caret;
    if (event.window) Add_Event(std::move(event));
}

HostEvent SDLDisplay::Keyboard_Event(HostEventType type) const
{
    return {.type = type, .window = Front_Window(), .modifiers = Modifiers_Of(SDL_GetModState())};
}
