#include "MacTextView.h"

#include <algorithm>
#include <utility>

namespace {

/// Narrows the clip of a surface for as long as it lives.
class Clipped {
public:
    Clipped(HostSurface& surface, HostRect const& area) : surface_(surface), saved_(surface.Clip())
    {
        HostRegion narrow = saved_;
        narrow.Intersect(area);
        surface.Set_Clip(std::move(narrow));
    }
    ~Clipped() { surface_.Set_Clip(std::move(saved_)); }
    Clipped(Clipped const&) = delete;
    Clipped& operator=(Clipped const&) = delete;

private:
    HostSurface& surface_;
    HostRegion saved_;
};

}  // namespace

/// The selected part of a line on its own background. The line is drawn whole behind a clip, so that its
/// glyphs stand where they stood unselected.
void TextView::Draw_Marked(HostSurface& surface, std::size_t line, TextColors const& colors) const
{
    TextLine const& drawn = lines_[line];
    TextRange const selection = buffer.Shown_Selection();
    int const left = Line_Left(line), top = Line_Top(line);
    for (HostRect const& marked : Range_Rects(line, selection)) {
        Clipped const clip(surface, marked);
        surface.Fill(marked, colors.marked);
        look_.Draw(surface, Line_Text(line), left, top + look_.Ascent(), colors.markedInk, drawn.direction);
    }
    // A selection that goes on in the next line reaches the edge.
    bool const goesOn =
        selection.start < drawn.next && selection.end >= drawn.next && line + 1 < lines_.Count();
    if (!goesOn) return;
    bool const isRightToLeft = drawn.direction == HostDirection::RightToLeft;
    int const end = left + look_.Width(Line_Text(line), drawn.direction), bottom = top + look_.Line_Height();
    surface.Fill(isRightToLeft ? HostRect{text_.left, top, left, bottom}
                               : HostRect{end, top, text_.right, bottom},
                 colors.marked);
}

/// Unfinished text is underlined.
void TextView::Draw_Underline(HostSurface& surface, std::size_t line, uint32_t color) const
{
    int const y = Line_Top(line) + look_.Ascent() + 1;
    for (HostRect const& part : Range_Rects(line, buffer.Composition()))
        surface.Fill(HostRect{part.left, y, part.right, y + 1}, color);
}

void TextView::Draw_Line(HostSurface& surface, std::size_t line, TextColors const& colors) const
{
    look_.Draw(surface, Line_Text(line), Line_Left(line), Line_Top(line) + look_.Ascent(), colors.ink,
               lines_[line].direction);
    if (isActive) Draw_Marked(surface, line, colors);
    Draw_Underline(surface, line, colors.ink);
}

void TextView::Draw(ZVPort& port, HostRect const& area, TextColors const& colors) const
{
    HostRect const dirty = Intersection(area, inside_);
    if (dirty.IsEmpty()) return;
    HostSurface& surface = port.surface;
    Clipped const clip(surface, dirty);
    surface.Fill(dirty, colors.paper);
    Clipped const sides(surface, {text_.left, inside_.top, text_.right, inside_.bottom});
    for (auto line = static_cast<std::size_t>(firstLine_); line < lines_.Count(); ++line) {
        int const top = Line_Top(line);
        if (top >= dirty.bottom) break;
        if (top + look_.Line_Height() > dirty.top) Draw_Line(surface, line, colors);
    }
    if (isActive && isCaretOn && buffer.Shown_Selection().IsEmpty()) surface.Fill(Caret_Rect(), colors.ink);
}
