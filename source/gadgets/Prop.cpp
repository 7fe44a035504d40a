// The track of a proportional gadget: its thumb, which the mouse drags, the paging on both sides of it, the
// marker and the wheel.
#include "Prop.h"
#include "Canvas.h"
#include "PressGadget.h"
#include "ZVControl.h"
#include "interface/Records.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

namespace {

/// What a press on the track has begun.
enum class PropMode : int32_t { None, Thumb = 1, Paging = 2, Marker = 4 };

/// Of a track, in its item's `object` while it is on screen.
struct PropState {
    int64_t Range;      ///< positions beyond the first, at least 0
    int32_t ThumbSize;  ///< pixels
    int32_t ThumbPos;   ///< as it was drawn last; -1 before that
    int32_t LastThumbSize;
    PropMode Mode;
    int32_t GrabOffset;   ///< of the press in the thumb
    int32_t RepeatDelay;  ///< ticks until paging repeats
    int32_t MarkPos;      ///< first pixel of the marker
    bool OverMark;        ///< the mouse is on the marker
    int32_t WheelRest;    ///< what a fine wheel has turned less than a position, in its own measure
};

constexpr int32_t repeatDelay = 4;
constexpr long wheelNotch = 40;
constexpr unsigned long frameColor = 0x000000, markColor = 0xFF0000;
constexpr long markReachBefore = 3, markReachBehind = 4;

/// A span along the track.
struct Span {
    long from, size;

    bool Holds(long place) const { return place >= from && place <= from + size; }
};

/// A track under an event, with its record.
struct Track {
    PropAxis axis;
    ZVItem& item;
    PropState& state;

    long Length() const { return axis.Length(item); }
    long Breadth() const { return axis.Breadth(item); }
    bool Has_Marker() const { return FindTagItem(ZV_ITEM_PROP_TRACK, item.tags); }

    void Measure() const;
    Span Thumb() const;  ///< Where it belongs, by the measures.
    void Fill(ZVDrawInfo* draw, long from, long to, long inset) const;
};

/// Works range and size of the thumb out. The thumb shows the part of the range in view. When all of that is
/// in view, but the position is not the first, the view reaches beyond the end: by so much the thumb is
/// smaller than the track.
void Track::Measure() const
{
    long const page = std::max(item.page, 0), length = Length();
    long const limits = std::max<long>(long{item.maxInt} - item.minInt, 0);
    long const range = std::max(limits - page, 0L);
    long const seen = range > 0 ? limits : item.state - long{item.minInt} + page;
    long const size = seen > 0 ? page * length / seen : length;
    state.Range = range;
    state.ThumbSize = static_cast<int32_t>(std::min(std::max(size, Breadth()), length));
}

Span Track::Thumb() const
{
    long const room = Length() - state.ThumbSize;
    long const place = state.Range ? room * (long{item.state} - item.minInt) / state.Range : room;
    return {std::clamp(place, 0L, std::max(room, 0L)), state.ThumbSize};
}

// ---- drawing ----------------------------------------------------------------------------------------------

/// Fills a stretch of the track, `inset` pixels from both sides.
void Track::Fill(ZVDrawInfo* draw, long from, long to, long inset) const
{
    long const side = Breadth() - 1 - inset;
    if (from > to || inset > side) return;
    if (axis.isVertical)
        FillRectZV(draw, inset, from, side, to);
    else
        FillRectZV(draw, from, inset, to, side);
}

unsigned long Track_Color()
{
    unsigned long const face = GetColorZV(ZV_PEN_FACE);
    auto const darker = [&](int shift) { return (face >> shift & 0xFF) * 100 / 160 << shift; };
    return darker(16) | darker(8) | darker(0);
}

void Draw_Track(ZVDrawInfo* draw, Track const& track)
{
    SetPenZV(draw, Track_Color());
    track.Fill(draw, 0, track.Length() - 1, 0);
    SetPenZV(draw, frameColor);
    DrawRectZV(draw, 0, 0, track.item.width - 1, track.item.height - 1);
}

void Draw_Thumb(ZVDrawInfo* draw, Track const& track, Span thumb, bool isDisabled)
{
    SetPenZV(draw, Shown_Color(ZV_PEN_FACE, isDisabled));
    track.Fill(draw, thumb.from + 1, thumb.from + thumb.size - 2, 1);
    if (track.axis.isVertical)
        DrawShineBorderZV(draw, 0, thumb.from, track.item.width, thumb.size);
    else
        DrawShineBorderZV(draw, thumb.from, 0, thumb.size, track.item.height);
}

void Draw_Marker(ZVDrawInfo* draw, Track const& track)
{
    ZVItem const& item = track.item;
    long const limits = std::max<long>(long{item.maxInt} - item.minInt, 1);
    long const value = static_cast<int32_t>(item.extra);
    long const place = (value - item.minInt) * (track.Length() - 2) / limits + 1;
    track.state.MarkPos = static_cast<int32_t>(std::clamp(place, 0L, std::max(track.Length() - 3, 0L)));
    SetPenZV(draw, markColor);
    track.Fill(draw, track.state.MarkPos, track.state.MarkPos + 1, 0);
}

void Draw_All(ZVDrawInfo* draw, Track const& track, Span thumb, bool isDisabled)
{
    Draw_Track(draw, track);
    Draw_Thumb(draw, track, thumb, isDisabled);
    if (track.Has_Marker()) Draw_Marker(draw, track);
}

/// Draws the thumb at its new place, and the track where it was.
void Draw_Moved(ZVDrawInfo* draw, Track const& track, Span thumb, bool isDisabled)
{
    PropState const& state = track.state;
    if (track.axis.isVertical)
        SetClipRectZV(draw, 0, state.ThumbPos, track.item.width, state.LastThumbSize);
    else
        SetClipRectZV(draw, state.ThumbPos, 0, state.LastThumbSize, track.item.height);
    Draw_Track(draw, track);
    SetClipRectZV(draw, 0, 0, track.item.width, track.item.height);
    Draw_Thumb(draw, track, thumb, isDisabled);
}

/// A marker can lie anywhere, so a track with one is always drawn as a whole.
void Draw(Track const& track, bool isWhole, bool isDisabled)
{
    track.Measure();
    Span const thumb = track.Thumb();
    isWhole = isWhole || track.state.ThumbPos < 0 || track.Has_Marker();
    std::optional<GadgetCanvas> canvas;
    if (isWhole) canvas.emplace(track.item);
    if (canvas && canvas->Context()) {
        Draw_All(canvas->Context(), track, thumb, isDisabled);
        canvas->Show();
    } else {
        DrawContext const draw(DrawBeginZV(&track.item));
        if (!draw) return;
        (isWhole ? Draw_All : Draw_Moved)(draw.get(), track, thumb, isDisabled);
    }
    track.state.ThumbPos = static_cast<int32_t>(thumb.from);
    track.state.LastThumbSize = static_cast<int32_t>(thumb.size);
}

void Draw_State(Track const& track)
{
    Draw(track, false, Is_Disabled(track.item));
}

// ---- what the mouse does ----------------------------------------------------------------------------------

/// Moves the view by its size less one position towards the mouse. False when it cannot move.
bool Page(Track const& track, long place)
{
    ZVItem& item = track.item;
    track.Measure();
    Span const thumb = track.Thumb();
    if (thumb.Holds(place)) return false;
    long const step = item.page < 2 ? 1 : item.page - 1;
    if (place > thumb.from) {
        if (item.state >= Last_Position(item)) return false;
        item.state = static_cast<int32_t>(std::min<long>(item.state + step, Last_Position(item)));
    } else {
        if (item.state <= item.minInt) return false;
        item.state = static_cast<int32_t>(std::max<long>(item.state - step, item.minInt));
    }
    Draw_State(track);
    return true;
}

void Press(ZVCustomEvent* event, Track const& track)
{
    ZVItem& item = track.item;
    if (Is_Disabled(item)) return;
    Report_Prop(event, &item, ZV_MOD_PRESS);
    item.pressed = 1;
    item.markDrag = 0;
    long const place = track.axis.Along(event->x, event->y);
    track.Measure();
    Span const thumb = track.Thumb();
    if (track.Has_Marker() && track.state.OverMark) {
        track.state.Mode = PropMode::Marker;
        item.markDrag = 1;
    } else if (thumb.Holds(place)) {
        track.state.Mode = PropMode::Thumb;
        track.state.GrabOffset = static_cast<int32_t>(place - thumb.from);
    } else {
        track.state.Mode = PropMode::Paging;
        track.state.RepeatDelay = repeatDelay;
        Page(track, place);
    }
}

/// The position for a thumb that is dragged to a place. A thumb that stays where it is keeps its position,
/// since a pixel can stand for many of them.
long Dragged_Position(Track const& track, long place)
{
    ZVItem const& item = track.item;
    track.Measure();
    long const range = track.state.Range, room = track.Length() - track.state.ThumbSize;
    if (room <= 0) return item.minInt;
    long const dragged = place - track.state.GrabOffset;
    if (dragged == track.Thumb().from) return item.state;
    long const half = range ? room / range / 2 : 0;  // of the way to the next position
    long const thumb = std::clamp(dragged + half, 0L, track.Length());
    if (range == 0)
        return std::min(item.minInt + (long{item.state} - item.minInt) * thumb / room, long{item.state});
    long const position = range * thumb / room + item.minInt, last = item.minInt + range;
    // A position beyond the last, where a call has put it, is not lost by moving on.
    return position > last ? std::max<long>(last, item.state) : position;
}

void Drag_Thumb(ZVCustomEvent* event, Track const& track, long place)
{
    auto const position = static_cast<int32_t>(Dragged_Position(track, place));
    if (std::exchange(track.item.state, position) == position) return;
    Report_Prop(event, &track.item, ZV_MOD_CHANGE);
    Draw_State(track);
}

void Drag_Marker(ZVCustomEvent* event, Track const& track, long place)
{
    ZVItem& item = track.item;
    long const limits = long{item.maxInt} - item.minInt, room = std::max(track.Length() - 2, 1L);
    long const value = (place - 1) * limits / room + item.minInt;
    item.extra = static_cast<uint32_t>(
        std::clamp<long>(value, item.minInt, std::max<long>(item.maxInt - 1L, item.minInt)));
    Report_Prop(event, &item, ZV_MOD_CHANGE);
    Draw_State(track);
}

void Move(ZVCustomEvent* event, Track const& track)
{
    long const place = track.axis.Along(event->x, event->y);
    if (!track.item.pressed) {
        if (!track.Has_Marker()) return;
        long const way = place - track.state.MarkPos;
        track.state.OverMark = way >= -markReachBefore && way <= markReachBehind;
        track.item.cursor = track.state.OverMark ? ZV_CURSOR_SLIDE : ZV_CURSOR_ARROW;
        return;
    }
    if (track.state.Mode == PropMode::Thumb) Drag_Thumb(event, track, place);
    if (track.state.Mode == PropMode::Marker) Drag_Marker(event, track, place);
}

void Release(ZVCustomEvent* event, Track const& track)
{
    if (std::exchange(track.item.pressed, 0)) Report_Prop(event, &track.item, ZV_MOD_RELEASE);
}

void Tick(ZVCustomEvent* event, Track const& track)
{
    if (!track.item.pressed || track.state.Mode != PropMode::Paging) return;
    if (track.state.RepeatDelay > 0 && --track.state.RepeatDelay > 0) return;
    if (Page(track, track.axis.Along(event->x, event->y))) Report_Prop(event, &track.item, ZV_MOD_CHANGE);
}

/// Turning towards the user, and to the right, moves on. What a fine wheel turns less than a position adds
/// up.
void Turn(ZVCustomEvent* event, Track const& track)
{
    ZVItem& item = track.item;
    if (Is_Disabled(item)) return;
    long const lines = GetWheelScrollLinesZV();
    long const positions = lines == -1 ? std::max(item.page, 1) : lines;
    int32_t& rest = track.state.WheelRest;
    long turn = (event->deltaY ? -event->deltaY : event->deltaX) * positions;
    if ((turn < 0) == (rest < 0)) turn += rest;
    rest = static_cast<int32_t>(turn % wheelNotch);
    auto const position = static_cast<int32_t>(
        std::clamp<long>(item.state + turn / wheelNotch, item.minInt, Last_Position(item)));
    if (std::exchange(item.state, position) == position) return;
    Report_Prop(event, &item, ZV_MOD_CHANGE);
    Draw_State(track);
}

// ---- the function -----------------------------------------------------------------------------------------

long Create(ZVItem& item)
{
    auto* const state = New_Record<PropState>();
    if (!state) return 0;
    state->ThumbPos = -1;
    FreeMemZV(std::exchange(item.object, state));
    item.flags |= ZV_ITEMF_PROP;
    return 1;
}

void Handle(ZVCustomEvent* event, Track const& track)
{
    switch (event->type) {
    case ZV_CUSTOM_DRAW: Draw(track, true, Is_Disabled(track.item)); break;
    case ZV_CUSTOM_DRAW_STATE: Draw_State(track); break;
    case ZV_CUSTOM_DRAW_DISABLED: Draw(track, true, true); break;
    case ZV_CUSTOM_MOUSE_UP: Release(event, track); break;
    case ZV_CUSTOM_MOUSE_DOWN: Press(event, track); break;
    case ZV_CUSTOM_MOUSE_MOVE: Move(event, track); break;
    case ZV_CUSTOM_TICK: Tick(event, track); break;
    case ZV_CUSTOM_WHEEL: Turn(event, track); break;
    default: break;
    }
}

long Prop_Gad(ZVCustomEvent* event, PropAxis axis)
{
    ZVItem& item = *event->item;
    item.state = std::max(item.minInt, std::min(item.state, item.maxInt));
    if (event->type == ZV_CUSTOM_CREATE) return Create(item);
    if (event->type == ZV_CUSTOM_DESTROY) FreeMemZV(std::exchange(item.object, nullptr));
    // What found no memory before may find it now.
    bool const isWhole = event->type == ZV_CUSTOM_DRAW || event->type == ZV_CUSTOM_DRAW_DISABLED;
    if (isWhole && !item.object) Create(item);
    if (item.object) Handle(event, {axis, item, *static_cast<PropState*>(item.object)});
    return 1;
}

}  // namespace

long HProp_Gad(ZVCustomEvent* event)
{
    return Prop_Gad(event, across);
}

long VProp_Gad(ZVCustomEvent* event)
{
    return Prop_Gad(event, down);
}
