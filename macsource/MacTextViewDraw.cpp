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
    if (selection.start >= drawn.next || selection.end <= drawn.start) return;
    std::size_t const start = std::max(selection.start, drawn.start);
    // A selection that goes on in the next line reaches the edge.
    bool const goesOn = selection.end >= drawn.next && line + 1 < lines_.Count();
    int const right = goesOn ? text_.right : X_Of(line, std::min(selection.end, drawn.end));
    int const top = Line_Top(line);
    HostRect const marked{X_Of(line, start), top, right, top + look_.Line_Height()};
    Clipped const clip(surface, marked);
    surface.Fill(marked, colors.marked);
    look_.Draw(surface, std::string_view(shown_).substr(drawn.start, drawn.end - drawn.start),
               X_Of(line, drawn.start), top + look_.Ascent(), colors.markedInk);
}

/// Unfinished text is underlined.
void TextView::Draw_Underline(HostSurface& surface, std::size_t line, uint32_t color) const
{
    TextLine const& drawn = lines_[line];
    TextRange const unfinished = buffer.Composition();
    std::size_t const start = std::max(unfinished.start, drawn.start);
    std::size_t const end = std::min(unfinished.end, drawn.end);
    if (start >= end) return;
    int const y = Line_Top(line) + look_.Ascent() + 1;
    surface.Fill(HostRect{X_Of(line, start), y, X_Of(line, end), y + 1}, color);
}

void TextView::Draw_Line(HostSurface& surface, std::size_t line, TextColors const& colors) const
{
    TextLine const& drawn = lines_[line];
    look_.Draw(surface, std::string_view(shown_).substr(drawn.start, drawn.end - drawn.start),
               X_Of(line, drawn.start), Line_Top(line) + look_.Ascent(), colors.ink);
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
