// Scroll bars: of lists, and along the edges of windows.
#pragma once

#include "MacNativeItem.h"
#include "host/Region.h"

#include <functional>

/// Thickness of a bar, its frame included.
inline constexpr int ScrollBarWidth = 16;

class ScrollBar : public MouseTracker {
public:
    /// @param changed  called when the user has moved it; may take the bar away
    ScrollBar(bool isVertical, std::function<void()> changed);

    // Each draws nothing by itself.

    /// Where the bar is in the port that it is drawn in, and what is seen of it there.
    void Place(HostRect const& bounds, HostRect const& seen);
    void Place(HostRect const& bounds) { Place(bounds, bounds); }
    void Set_Range(int maximum, int page);  ///< Values are 0 to maximum, at least 0.
    void Set_Value(int value);              ///< Held within the range.
    void Set_Enabled(bool isEnabled) { isEnabled_ = isEnabled; }

    HostRect const& Bounds() const { return bounds_; }
    int Maximum() const { return maximum_; }
    int Value() const { return value_; }

    /// The whole bar, dimmed when it is disabled or has no range. A bar that is too short for it has no
    /// thumb.
    void Draw(ZVPort& port) const;

    /// A press: an arrow moves by 1, the area beside the thumb by a page, the thumb follows the mouse. Arrows
    /// and pages repeat while they are held. Points of the following Track and Finish are on the screen.
    /// @param port              drawn in from here to the release
    /// @param originX, originY  of the port on the screen
    /// @return  false outside the bar, and for one that is disabled or has no range
    bool Press(ZVPort& port, int x, int y, int originX, int originY);

    void Track(long x, long y) override;
    void Finish(long x, long y) override;

private:
    enum class Part { None, Back, Forward, PageBack, PageForward, Thumb };

    /// A stretch along the bar, from its start; empty when both are equal.
    struct Span {
        int start, end;
        int Length() const { return end - start; }
    };

    bool Is_Live() const { return isEnabled_ && maximum_ > 0; }
    int Length() const { return isVertical_ ? bounds_.Height() : bounds_.Width(); }
    int Along(int x, int y) const { return isVertical_ ? y - bounds_.top : x - bounds_.left; }
    HostRect Box(Span const& span) const;
    int Arrow_Length() const;
    Span Way() const;
    int Thumb_Length() const;
    Span Thumb() const;
    Part Part_At(int x, int y) const;
    void Draw_Arrow(ZVPort& port, bool isForward) const;

    // The bar may be gone when these return.
    void Take_Value(int value);
    void Step();
    void Drag(int along);

    bool isVertical_;
    std::function<void()> changed_;
    HostRect bounds_, seen_;
    int maximum_ = 0, page_ = 1, value_ = 0;
    bool isEnabled_ = true;

    // Of a press.
    Part held_ = Part::None;
    bool isOnPart_ = false;  ///< the mouse is where it was pressed
    ZVPort* port_ = nullptr;
    int originX_ = 0, originY_ = 0;
    int grab_ = 0;           ///< from the thumb's start to the mouse
    int thumbStart_ = 0;     ///< of the thumb while it is held
    uint32_t nextStep_ = 0;  ///< tick from which on an arrow or page repeats
};
