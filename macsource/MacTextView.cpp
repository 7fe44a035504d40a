// Where things stand: lines, scrolling, points. Drawing is in MacTextViewDraw.cpp.
#include "MacTextView.h"

#include <algorithm>
#include <utility>

void TextView::Place(HostRect const& frame)
{
    if (frame == frame_) return;
    int const oldWidth = text_.Width();
    frame_ = frame;
    int const height = look_.Line_Height();
    int const inset = isMultiLine_ ? 1 : (frame.Height() - height + 1) / 2;
    // A field that is lower than its line keeps the text in its middle.
    int const side = std::max(inset, 1);
    inside_ = {frame.left + 1, frame.top + 1, frame.right - 1, frame.bottom - 1};
    text_ = {frame.left + side, frame.top + inset, frame.right - side, frame.bottom - inset};
    if (!isMultiLine_ || text_.Width() == oldWidth) return;
    lines_.Lay_Out(look_, shown_, std::max(text_.Width(), 1));
}

// ---- places -----------------------------------------------------------------------------------------------

int TextView::Line_Top(std::size_t line) const
{
    return text_.top + static_cast<int>(static_cast<long>(line) - firstLine_) * look_.Line_Height();
}

int TextView::X_Of(std::size_t line, std::size_t offset) const
{
    std::size_t const start = lines_[line].start;
    return text_.left - scrollX_ + look_.Width(std::string_view(shown_).substr(start, offset - start));
}

long TextView::Whole_Lines() const
{
    return std::max(text_.Height() / std::max(look_.Line_Height(), 1), 1);
}

long TextView::Visible_Lines() const
{
    if (!isMultiLine_) return 1;
    int const height = std::max(look_.Line_Height(), 1);
    long const started = std::max((text_.Height() + height - 1) / height, 1);
    return std::min(started, Line_Count() - firstLine_);
}

HostRect TextView::Caret_Rect() const
{
    std::size_t const caret = buffer.Shown_Caret(), line = lines_.Line_Of(caret);
    // Blanks at the end of a line that wraps hang over its edge.
    int const x = std::clamp(X_Of(line, caret), text_.left, std::max(text_.right - 1, text_.left));
    int const top = Line_Top(line);
    return {x, top, x + 1, top + look_.Text_Height()};
}

std::size_t TextView::Offset_At(int x, int y) const
{
    int const height = std::max(look_.Line_Height(), 1);
    if (!isMultiLine_) {
        int const near = std::clamp(x, text_.left - height, text_.right + height);
        return lines_.Place_Near(look_, shown_, 0, near - text_.left + scrollX_);
    }
    long const row = y < text_.top ? -1 : std::min<long>((y - text_.top) / height, Whole_Lines());
    long const line = firstLine_ + row;
    if (line < 0) return 0;
    if (line >= Line_Count()) return shown_.size();
    return lines_.Place_Near(look_, shown_, static_cast<std::size_t>(line), x - text_.left + scrollX_);
}

TextRange TextView::Line_At(std::size_t offset) const
{
    TextLine const& line = lines_[lines_.Line_Of(offset)];
    return {line.start, line.next};
}

void TextView::Move_By_Lines(long lines, bool extends)
{
    std::size_t const caret = buffer.Caret();
    auto const line = static_cast<long>(lines_.Line_Of(caret));
    if (!column_ || columnCaret_ != caret)
        column_ = X_Of(static_cast<std::size_t>(line), caret) - text_.left + scrollX_;
    long const wanted = line + lines;
    if (wanted < 0)
        buffer.Move_To(0, extends);
    else if (wanted >= Line_Count())
        buffer.Move_To(shown_.size(), extends);
    else
        buffer.Move_To(lines_.Place_Near(look_, shown_, static_cast<std::size_t>(wanted), *column_), extends);
    columnCaret_ = buffer.Caret();
}

// ---- changes ----------------------------------------------------------------------------------------------

HostRect TextView::Lines_Rect(TextRange const& lines) const
{
    if (!isMultiLine_) return inside_;
    HostRect rows = inside_;
    rows.top = std::max(Line_Top(lines.start), inside_.top);
    if (lines.end < lines_.Count()) rows.bottom = std::min(Line_Top(lines.end), inside_.bottom);
    return rows.top < rows.bottom ? rows : HostRect{};
}

static HostRect Span(HostRect const& a, HostRect const& b)
{
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

/// Lays out again what has changed in the text, and answers where it is.
HostRect TextView::Take_Text()
{
    std::string shown = buffer.Shown_Text();
    if (shown == shown_) return {};
    std::size_t const shorter = std::min(shown.size(), shown_.size());
    auto const ahead = static_cast<std::size_t>(
        std::mismatch(shown.begin(), shown.begin() + static_cast<std::ptrdiff_t>(shorter), shown_.begin())
            .first -
        shown.begin());
    auto const behind = static_cast<std::size_t>(
        std::mismatch(shown.rbegin(), shown.rbegin() + static_cast<std::ptrdiff_t>(shorter - ahead),
                      shown_.rbegin())
            .first -
        shown.rbegin());
    std::size_t const oldEnd = shown_.size() - behind;
    shown_ = std::move(shown);
    TextRange const lines = lines_.Change(look_, shown_, {ahead, shown_.size() - behind}, oldEnd);
    firstLine_ = std::clamp(firstLine_, 0L, std::max(Line_Count() - Whole_Lines(), 0L));
    return Lines_Rect(lines);
}

/// Answers the lines whose selection or caret has changed.
HostRect TextView::Take_Selection()
{
    TextRange const now = buffer.Shown_Selection();
    TextRange const old{std::min(selection_.start, shown_.size()), std::min(selection_.end, shown_.size())};
    bool const hasTurned = std::exchange(wasActive_, isActive) != isActive;
    selection_ = now;
    if (now == old && !hasTurned) return {};
    std::size_t const first = std::min(now.start, old.start), last = std::max(now.end, old.end);
    return Lines_Rect({lines_.Line_Of(first), lines_.Line_Of(last) + 1});
}

void TextView::Follow_Sideways()
{
    int const width = std::max(text_.Width(), 1);
    int const caret = look_.Width(std::string_view(shown_).substr(0, buffer.Shown_Caret()));
    // At the left edge some of what is erased or selected next is shown as well.
    if (caret < scrollX_) scrollX_ = caret - std::min(width / 4, 2 * look_.Line_Height());
    if (caret >= scrollX_ + width) scrollX_ = caret - width + 1;
    // No more room than the caret needs is left empty behind the text.
    scrollX_ = std::max(std::min(scrollX_, look_.Width(shown_) + 1 - width), 0);
}

void TextView::Follow_Caret()
{
    if (!isMultiLine_) return Follow_Sideways();
    auto const line = static_cast<long>(lines_.Line_Of(buffer.Shown_Caret()));
    firstLine_ = std::clamp(firstLine_, std::max(line - Whole_Lines() + 1, 0L), line);
}

HostRect TextView::Update()
{
    int const oldX = scrollX_;
    long const oldLine = firstLine_;
    HostRect const text = Take_Text();
    HostRect const selected = Take_Selection();
    Follow_Caret();
    if (scrollX_ != oldX || firstLine_ != oldLine) return inside_;
    return Span(text, selected);
}

void TextView::Scroll_To_Line(long line)
{
    firstLine_ = isMultiLine_ ? std::clamp(line, 0L, Line_Count() - 1) : 0;
}
