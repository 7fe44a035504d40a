// What the desktop makes of input: whose it is, and what frames do with it.
#include "MemoryWindow.h"

#include <utility>

namespace {

/// The boxes at the ends of a title are as wide as it is high.
constexpr int BoxSize = 22;

}  // namespace

void MemoryDisplay::Play(HostEvent event)
{
    switch (event.type) {
    case HostEventType::MouseMove: Play_Move(std::move(event)); return;
    case HostEventType::MouseDown: Play_Press(std::move(event)); return;
    case HostEventType::MouseUp: Play_Release(std::move(event)); return;
    case HostEventType::Wheel:
        if (!event.window) event.window = Content_At(event.x, event.y);
        break;
    case HostEventType::KeyDown:
    case HostEventType::KeyUp:
    case HostEventType::Text:
    case HostEventType::Composition: Play_Key(std::move(event)); return;
    case HostEventType::AppFront: Give_Keys(Next_For_Keys()); return;
    case HostEventType::AppBack: Give_Keys(nullptr); return;
    case HostEventType::WindowFront:
        if (event.window) event.window->Raise();
        return;
    default: break;
    }
    Add_Event(std::move(event));
}

/// The window whose client area is at the point; null on a frame and beside all windows.
HostWindow* MemoryDisplay::Content_At(int x, int y) const
{
    HostWindow* const window = Window_At(x, y);
    return window && window->Client().Contains(x, y) ? window : nullptr;
}

void MemoryDisplay::Play_Move(HostEvent event)
{
    event.deltaX = event.x - mouseX_;
    event.deltaY = event.y - mouseY_;
    if (isPointerHeld_ && !event.isPen) {
        event.x = mouseX_;
        event.y = mouseY_;
    }
    mouseX_ = event.x;
    mouseY_ = event.y;
    if (framePress_) {
        Drag_Frame(event.x, event.y);
        return;
    }
    event.window = pressed_ ? pressed_ : Content_At(event.x, event.y);
    Add_Event(std::move(event));
}

void MemoryDisplay::Play_Press(HostEvent event)
{
    HostWindow* const window = Window_At(event.x, event.y);
    if (!pressed_ && window && !window->Client().Contains(event.x, event.y)) {
        Press_Frame(static_cast<MemoryWindow&>(*window), event);
        return;
    }
    ++pressedButtons_;
    if (!pressed_) pressed_ = window;
    event.window = pressed_;
    Add_Event(std::move(event));
}

void MemoryDisplay::Play_Release(HostEvent event)
{
    if (framePress_) {
        FramePress const press = *std::exchange(framePress_, std::nullopt);
        bool const isStillThere = Window_At(event.x, event.y) == press.window;
        if (press.part == FramePart::CloseBox && isStillThere) Ask_Close(*press.window);
        if (press.part == FramePart::ZoomBox && isStillThere) Zoom(*press.window);
        return;
    }
    event.window = pressed_;
    if (pressedButtons_ > 0) --pressedButtons_;
    if (pressedButtons_ == 0) pressed_ = nullptr;
    Add_Event(std::move(event));
}

void MemoryDisplay::Play_Key(HostEvent event)
{
    event.window = Front_Window();
    if (!event.window) return;  // typed into another process
    bool const isDown = event.type == HostEventType::KeyDown;
    HostModifiers const& held = event.modifiers;
    bool const isText = isDown && !event.text.empty() && !held.control && !held.alt && !held.super &&
                        static_cast<MemoryWindow*>(event.window)->IsTyping();
    HostEvent text = event;
    if (isDown) event.text.clear();
    Add_Event(std::move(event));
    if (!isText) return;
    text.type = HostEventType::Text;
    Add_Event(std::move(text));
}

// ---- frames -----------------------------------------------------------------------------------------------

void MemoryDisplay::Press_Frame(MemoryWindow& window, HostEvent const& event)
{
    HostRect const client = window.Client();
    HostWindowRequest const& request = window.Request();
    bool const isTitle = event.y < client.top;
    FramePress press{.window = &window,
                     .part = isTitle ? FramePart::Title : FramePart::Edges,
                     .movesRight = event.x >= client.right,
                     .movesBottom = event.y >= client.bottom,
                     .x = event.x,
                     .y = event.y,
                     .client = client};
    if (isTitle && request.canClose && event.x < client.left + BoxSize)
        press.part = FramePart::CloseBox;
    else if (isTitle && request.canZoom && event.x >= client.right - BoxSize)
        press.part = FramePart::ZoomBox;
    framePress_ = press;
    if (request.kind != HostWindowKind::Root) window.Raise();
}

void MemoryDisplay::Drag_Frame(int x, int y)
{
    int const dx = x - framePress_->x, dy = y - framePress_->y;
    HostRect client = framePress_->client;
    MemoryWindow& window = *framePress_->window;
    if (framePress_->part == FramePart::Title) {
        client = {client.left + dx, client.top + dy, client.right + dx, client.bottom + dy};
    } else if (framePress_->part == FramePart::Edges && window.Request().canResize) {
        if (framePress_->movesRight) client.right += dx;
        if (framePress_->movesBottom) client.bottom += dy;
    } else {
        return;
    }
    Move_By_Frame(window, client);
}

void MemoryDisplay::Ask_Close(HostWindow& window)
{
    Add_Event({.type = HostEventType::WindowClose, .window = &window});
}

void MemoryDisplay::Move_By_Frame(HostWindow& window, HostRect const& client)
{
    HostRect const old = window.Client();
    window.Set_Client(static_cast<MemoryWindow&>(window).Limited(client));
    if (window.Client() != old) Add_Event({.type = HostEventType::WindowBounds, .window = &window});
}

void MemoryDisplay::Zoom(HostWindow& window)
{
    auto& zoomed = static_cast<MemoryWindow&>(window);
    HostRect const old = zoomed.Client();
    if (zoomed.unzoomed) {
        zoomed.Set_Client(*std::exchange(zoomed.unzoomed, std::nullopt));
    } else {
        zoomed.unzoomed = old;
        HostRect const usable = Monitors().front().usable;
        HostFrame const frame = zoomed.Frame();
        zoomed.Set_Client(zoomed.Limited({usable.left + frame.left, usable.top + frame.top,
                                          usable.right - frame.right, usable.bottom - frame.bottom}));
    }
    Add_Event({.type = HostEventType::WindowZoom, .window = &window});
}
