#include "MacScrollBar.h"

#include "MacFrame.h"
#include "ZVLibInternal.h"

#include <algorithm>

// Ticks of 1/60 second from a press to its first repetition, and the least time between two of them, which
// otherwise come with the loop's ticks: moving the mouse does not hurry them.
static constexpr uint32_t FirstDelay = 24;
static constexpr uint32_t RepeatDelay = 3;

static constexpr int LeastThumb = 14;

/// Rows of an arrow, each two pixels wider than the one before.
static constexpr int ArrowRows = 4;

/// How much darker than a gadget's face the thumb's way is, as with the gadgets that the library draws
/// itself.
static constexpr double WayShade = 100.0 / 160;

ScrollBar::ScrollBar(bool isVertical, std::function<void()> changed)
    : isVertical_(isVertical), changed_(std::move(changed))
{
}

void ScrollBar::Place(HostRect const& bounds, HostRect const& seen)
{
    bounds_ = bounds;
    seen_ = seen;
}

void ScrollBar::Set_Range(int maximum, int page)
{
    maximum_ = std::max(maximum, 0);
    page_ = std::max(page, 1);
    Set_Value(value_);
}

void ScrollBar::Set_Value(int value)
{
    value_ = std::clamp(value, 0, maximum_);
}

// ---- geometry ---------------------------------------------------------------------------------------------

HostRect ScrollBar::Box(Span const& span) const
{
    if (isVertical_) return {bounds_.left, bounds_.top + span.start, bounds_.right, bounds_.top + span.end};
    return {bounds_.left + span.start, bounds_.top, bounds_.left + span.end, bounds_.bottom};
}

int ScrollBar::Arrow_Length() const
{
    return std::min(ScrollBarWidth, Length() / 2);
}

/// What the thumb moves along. Its frame and those of the arrows share a line.
ScrollBar::Span ScrollBar::Way() const
{
    return {Arrow_Length() - 1, Length() - Arrow_Length() + 1};
}

/// In proportion to the page, but with a pixel left to move. 0 without room for a thumb.
int ScrollBar::Thumb_Length() const
{
    int const way = Way().Length();
    if (!Is_Live() || way <= LeastThumb) return 0;
    int64_t const proportional = int64_t{way} * page_ / (int64_t{maximum_} + page_);
    return static_cast<int>(std::clamp<int64_t>(proportional, LeastThumb, way - 1));
}

/// While it is held it is where the mouse holds it, be that between the places of two values.
ScrollBar::Span ScrollBar::Thumb() const
{
    int const length = Thumb_Length();
    if (length == 0) return {Way().start, Way().start};
    int64_t const free = Way().Length() - length;
    int const start =
        held_ == Part::Thumb
            ? thumbStart_
            : static_cast<int>((2 * int64_t{value_} * free + maximum_) / (2 * int64_t{maximum_}));
    return {Way().start + start, Way().start + start + length};
}

ScrollBar::Part ScrollBar::Part_At(int x, int y) const
{
    if (!Intersection(bounds_, seen_).Contains(x, y)) return Part::None;
    int const along = Along(x, y);
    if (along < Arrow_Length()) return Part::Back;
    if (along >= Length() - Arrow_Length()) return Part::Forward;
    Span const thumb = Thumb();
    if (thumb.Length() == 0) return Part::None;
    if (along < thumb.start) return Part::PageBack;
    return along < thumb.end ? Part::Thumb : Part::PageForward;
}

// ---- drawing ----------------------------------------------------------------------------------------------

/// A raised part of the bar, or one that is pressed in.
static void Draw_Raised(ZVPort& port, HostRect const& box, bool isDimmed, bool isPressed)
{
    uint32_t const light = Pen_Color(ZV_PEN_LIGHT_EDGE, isDimmed), dark = Pen_Color(ZV_PEN_SHADOW, isDimmed);
    port.surface.Fill(box, Pen_Color(isPressed ? ZV_PEN_FACE_ON : ZV_PEN_FACE, isDimmed));
    Draw_Bevel(port, box, Pen_Color(ZV_PEN_DARK_EDGE), isPressed ? dark : light, isPressed ? light : dark);
}

void ScrollBar::Draw_Arrow(ZVPort& port, bool isForward) const
{
    bool const isPressed = isOnPart_ && held_ == (isForward ? Part::Forward : Part::Back);
    int const length = Arrow_Length();
    HostRect const box = Box(isForward ? Span{Length() - length, Length()} : Span{0, length});
    Draw_Raised(port, box, !Is_Live(), isPressed);
    if (length <= 2 * ArrowRows) return;
    // From the tip on, around the middle line between two pixels.
    int const middleX = (box.left + box.right) / 2, middleY = (box.top + box.bottom) / 2;
    HostRect rows[ArrowRows];
    for (int i = 0; i < ArrowRows; ++i) {
        int const row = isForward ? ArrowRows / 2 - 1 - i : i - ArrowRows / 2;
        rows[i] = isVertical_ ? HostRect{middleX - i - 1, middleY + row, middleX + i + 1, middleY + row + 1}
                              : HostRect{middleX + row, middleY - i - 1, middleX + row + 1, middleY + i + 1};
    }
    port.surface.Fill(rows, Pen_Color(ZV_PEN_TEXT, !Is_Live()));
}

void ScrollBar::Draw(ZVPort& port) const
{
    if (bounds_.IsEmpty()) return;
    PortClip const clip(port, seen_);
    uint32_t const frame = Pen_Color(ZV_PEN_DARK_EDGE);
    uint32_t const way =
        Is_Live() ? Pen_Color(ShadeColorZV(ZV_PEN_FACE, WayShade)) : Pen_Color(ZV_PEN_FACE, true);
    port.surface.Fill(bounds_, way);
    Draw_Edges(port, bounds_, frame, frame);
    Draw_Arrow(port, false);
    Draw_Arrow(port, true);
    Span const thumb = Thumb();
    if (thumb.Length() > 0) Draw_Raised(port, Box(thumb), false, held_ == Part::Thumb);
}

// ---- the mouse --------------------------------------------------------------------------------------------

bool ScrollBar::Press(ZVPort& port, int x, int y, int originX, int originY)
{
    Part const part = Is_Live() ? Part_At(x, y) : Part::None;
    if (part == Part::None) return false;
    port_ = &port;
    originX_ = originX;
    originY_ = originY;
    grab_ = Along(x, y) - Thumb().start;
    thumbStart_ = Thumb().start - Way().start;
    held_ = part;
    isOnPart_ = true;
    nextStep_ = Mac_Tick_Count() + FirstDelay;
    Hold_Mouse(this);
    if (part == Part::Thumb)
        Draw(port);
    else
        Step();
    return true;
}

void ScrollBar::Track(long x, long y)
{
    int const localX = static_cast<int>(x) - originX_, localY = static_cast<int>(y) - originY_;
    if (held_ == Part::Thumb) {
        Drag(Along(localX, localY));
        return;
    }
    bool const wasOnPart = isOnPart_;
    isOnPart_ = Part_At(localX, localY) == held_;
    bool const isDue = static_cast<int32_t>(Mac_Tick_Count() - nextStep_) >= 0;
    if (isOnPart_ && isDue) {
        nextStep_ = Mac_Tick_Count() + RepeatDelay;
        Step();
    } else if (isOnPart_ != wasOnPart) {
        Draw(*port_);
    }
}

void ScrollBar::Finish(long, long)
{
    held_ = Part::None;
    isOnPart_ = false;
    Draw(*port_);
}

/// Draws the bar with a new value and tells of it.
void ScrollBar::Take_Value(int value)
{
    int const old = value_;
    Set_Value(value);
    Draw(*port_);
    if (value_ == old) return;
    // What is called may destroy the bar, and with it the function.
    std::function<void()> const changed = changed_;
    changed();
}

/// One step of the arrow or page that is held.
void ScrollBar::Step()
{
    int64_t value = value_;
    switch (held_) {
    case Part::Back: value -= 1; break;
    case Part::Forward: value += 1; break;
    case Part::PageBack: value -= page_; break;
    case Part::PageForward: value += page_; break;
    default: break;
    }
    Take_Value(static_cast<int>(std::clamp<int64_t>(value, 0, maximum_)));
}

void ScrollBar::Drag(int along)
{
    int const free = Way().Length() - Thumb_Length();
    if (Thumb_Length() == 0) return;
    int const start = std::clamp(along - grab_ - Way().start, 0, free);
    if (start == thumbStart_) return;
    thumbStart_ = start;
    Take_Value(static_cast<int>((2 * int64_t{start} * maximum_ + free) / (2 * int64_t{free})));
}
