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
    void Place(HostRect const& bounds) { bounds_ = bounds; }  ///< In the port that it is drawn in.
    void Set_Range(int maximum, int page);                    ///< Values are 0 to maximum, at least 0.
    void Set_Value(int value);                                ///< Held within the range.
    void Set_Enabled(bool isEnabled) { isEnabled_ = isEnabled; }

    HostRect const& Bounds() const { return bounds_; }
    int Value() const { return value_; }
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
    bool isVertical_;
    std::function<void()> changed_;
    HostRect bounds_;
    int maximum_ = 0, page_ = 1, value_ = 0;
    bool isEnabled_ = true;
};
