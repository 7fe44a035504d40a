// What both displays keep alike: the order of the windows, who gets keys, waiting events and the state of the
// input as of the last event that was taken.
#pragma once

#include "Display.h"

#include <list>

class DisplayBase : public HostDisplay {
public:
    DisplayBase();
    HostWindow* Window_At(int x, int y) const override;
    HostWindow* Front_Window() const override { return front_; }
    HostWindow* Next_Window(HostWindow const* front) const override;
    HostModifiers Modifiers() const override { return modifiers_; }
    bool Is_Button_Down() const override { return buttons_ != 0; }
    void Pointer(int& x, int& y) const override;

    // ---- for the windows

    /// Puts a window that is shown to the front of its kind. Throws without memory, all windows being where
    /// they were.
    void Place_In_Front(HostWindow& window, HostWindowKind kind);

    /// For a window that is hidden or goes. Keys go to the front one of those that stay.
    void Take_Off(HostWindow& window);

    /// Forgets the waiting events of a window that goes.
    void Forget_Events(HostWindow const& window);

    /// Says whom keys go to, null for another process, with the events that tell it.
    void Give_Keys(HostWindow* window);

protected:
    /// A window that is shown.
    struct Placed {
        HostWindow* window;
        HostWindowKind kind;
    };

    /// From the one behind all others to the one in front.
    std::vector<Placed> const& Placed_Windows() const { return placed_; }

    HostWindow* Next_For_Keys() const;

    /// Adds an event behind those that wait. The time is filled in, and for a press the number of clicks.
    void Add_Event(HostEvent event) noexcept;
    std::optional<HostEvent> Take_Event();
    bool Is_Waiting() const { return !events_.empty(); }
    bool Is_Waiting(HostEventType type, HostWindow const* window) const;

    /// Forgets mouse and key events, but not what they say of buttons, modifiers and the pointer.
    void Flush_Events();

private:
    void Free_Place(std::list<HostEvent>::iterator place);
    template <typename Test> void Forget_If(Test test);
    void Follow(HostEvent const& event);
    int Count_Clicks(HostEvent const& press);

    std::vector<Placed> placed_;
    HostWindow* front_ = nullptr;
    // Places for events lie ready, so that none is lost when memory runs out but in a flood.
    std::list<HostEvent> events_, freePlaces_;
    HostModifiers modifiers_;
    unsigned buttons_ = 0;  // a bit for each that is held
    int pointerX_ = 0, pointerY_ = 0;
    std::optional<HostEvent> lastPress_;
};

bool Is_Mouse_Event(HostEventType type);
bool Is_Key_Event(HostEventType type);

/// Whether a window of the kind gets keys when it is shown.
bool Takes_Keys(HostWindowKind kind);

/// The client area and the frame around it.
HostRect Outer_Bounds(HostWindow const& window);
