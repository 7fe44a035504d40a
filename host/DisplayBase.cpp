#include "DisplayBase.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

/// Events that places lie ready for.
constexpr std::size_t ReadyPlaces = 64;

/// How far the pointer may move between two presses that belong together.
constexpr int ClickSlack = 4;

int Layer_Of(HostWindowKind kind)
{
    switch (kind) {
    case HostWindowKind::Root: return 0;
    case HostWindowKind::Document: return 1;
    case HostWindowKind::Floater: return 2;
    case HostWindowKind::Dialog: return 3;
    case HostWindowKind::Popup: break;
    }
    return 4;
}

unsigned Button_Bit(HostButton button)
{
    return 1U << static_cast<unsigned>(button);
}

}  // namespace

bool Is_Mouse_Event(HostEventType type)
{
    return type >= HostEventType::MouseMove && type <= HostEventType::Wheel;
}

bool Is_Key_Event(HostEventType type)
{
    return type >= HostEventType::KeyDown && type <= HostEventType::Composition;
}

bool Takes_Keys(HostWindowKind kind)
{
    return kind == HostWindowKind::Document || kind == HostWindowKind::Dialog;
}

HostRect Outer_Bounds(HostWindow const& window)
{
    HostRect const client = window.Client();
    HostFrame const frame = window.Frame();
    return {client.left - frame.left, client.top - frame.top, client.right + frame.right,
            client.bottom + frame.bottom};
}

DisplayBase::DisplayBase()
{
    for (std::size_t i = 0; i < ReadyPlaces; ++i)
        freePlaces_.push_back({.type = HostEventType::Quit});
}

// ---- windows ----------------------------------------------------------------------------------------------

HostWindow* DisplayBase::Window_At(int x, int y) const
{
    auto const found = std::find_if(placed_.rbegin(), placed_.rend(), [x, y](Placed const& placed) {
        return Outer_Bounds(*placed.window).Contains(x, y);
    });
    return found == placed_.rend() ? nullptr : found->window;
}

HostWindow* DisplayBase::Next_Window(HostWindow const* front) const
{
    auto placed = placed_.rbegin();
    if (front) {
        placed = std::find_if(placed, placed_.rend(),
                              [front](Placed const& each) { return each.window == front; });
        if (placed != placed_.rend()) ++placed;
    }
    return placed == placed_.rend() ? nullptr : placed->window;
}

void DisplayBase::Place_In_Front(HostWindow& window, HostWindowKind kind)
{
    auto const isWindow = [&](Placed const& placed) { return placed.window == &window; };
    if (std::ranges::none_of(placed_, isWindow)) placed_.reserve(placed_.size() + 1);
    std::erase_if(placed_, isWindow);
    auto const above = std::find_if(placed_.begin(), placed_.end(), [kind](Placed const& placed) {
        return Layer_Of(placed.kind) > Layer_Of(kind);
    });
    placed_.insert(above, {&window, kind});
}

HostWindow* DisplayBase::Next_For_Keys() const
{
    for (bool const isOrdinary : {true, false}) {
        for (auto placed = placed_.rbegin(); placed != placed_.rend(); ++placed)
            if (Takes_Keys(placed->kind) == isOrdinary) return placed->window;
    }
    return nullptr;
}

void DisplayBase::Take_Off(HostWindow& window)
{
    std::erase_if(placed_, [&](Placed const& placed) { return placed.window == &window; });
    if (front_ == &window) Give_Keys(Next_For_Keys());
}

void DisplayBase::Forget_Events(HostWindow const& window)
{
    Forget_If([&](HostEvent const& event) { return event.window == &window; });
    if (lastPress_ && lastPress_->window == &window) lastPress_.reset();
}

void DisplayBase::Give_Keys(HostWindow* window)
{
    HostWindow* const old = std::exchange(front_, window);
    if (old == window) return;
    if (old) Add_Event({.type = HostEventType::WindowBack, .window = old});
    if (!old) Add_Event({.type = HostEventType::AppFront});
    if (window) Add_Event({.type = HostEventType::WindowFront, .window = window});
    if (!window) Add_Event({.type = HostEventType::AppBack});
}

// ---- input ------------------------------------------------------------------------------------------------

void DisplayBase::Pointer(int& x, int& y) const
{
    x = pointerX_;
    y = pointerY_;
}

int DisplayBase::Count_Clicks(HostEvent const& press)
{
    bool const isNext =
        lastPress_ && lastPress_->window == press.window && lastPress_->button == press.button &&
        press.milliseconds - lastPress_->milliseconds <= Double_Click_Milliseconds() &&
        std::abs(press.x - lastPress_->x) <= ClickSlack && std::abs(press.y - lastPress_->y) <= ClickSlack;
    int const clicks = isNext ? lastPress_->clicks + 1 : 1;
    lastPress_ = press;
    lastPress_->clicks = clicks;
    return clicks;
}

void DisplayBase::Add_Event(HostEvent event) noexcept
{
    if (event.milliseconds == 0) event.milliseconds = Milliseconds();
    if (event.type == HostEventType::MouseDown) event.clicks = Count_Clicks(event);
    if (freePlaces_.empty()) {
        try {
            freePlaces_.push_back(std::move(event));
        } catch (std::bad_alloc const&) {
            return;  // lost; windows that go must not fail
        }
    } else {
        freePlaces_.front() = std::move(event);
    }
    events_.splice(events_.end(), freePlaces_, freePlaces_.begin());
}

void DisplayBase::Free_Place(std::list<HostEvent>::iterator place)
{
    if (freePlaces_.size() < ReadyPlaces)
        freePlaces_.splice(freePlaces_.end(), events_, place);
    else
        events_.erase(place);
}

template <typename Test> void DisplayBase::Forget_If(Test test)
{
    for (auto place = events_.begin(); place != events_.end();) {
        auto const each = place++;
        if (test(*each)) Free_Place(each);
    }
}

void DisplayBase::Follow(HostEvent const& event)
{
    if (Is_Mouse_Event(event.type)) {
        pointerX_ = event.x;
        pointerY_ = event.y;
    }
    if (Is_Mouse_Event(event.type) || Is_Key_Event(event.type)) modifiers_ = event.modifiers;
    if (event.type == HostEventType::MouseDown) buttons_ |= Button_Bit(event.button);
    if (event.type == HostEventType::MouseUp) buttons_ &= ~Button_Bit(event.button);
}

std::optional<HostEvent> DisplayBase::Take_Event()
{
    if (events_.empty()) return std::nullopt;
    HostEvent event = std::move(events_.front());
    Free_Place(events_.begin());
    Follow(event);
    return event;
}

bool DisplayBase::Is_Waiting(HostEventType type, HostWindow const* window) const
{
    return std::any_of(events_.begin(), events_.end(),
                       [=](HostEvent const& event) { return event.type == type && event.window == window; });
}

void DisplayBase::Flush_Events()
{
    Forget_If([this](HostEvent const& event) {
        if (!Is_Mouse_Event(event.type) && !Is_Key_Event(event.type)) return false;
        Follow(event);
        return true;
    });
}
