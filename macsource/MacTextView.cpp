// Where things stand: lines, scrolling, points. Drawing is in MacTextViewDraw.cpp.
#include "MacTextView.h"

#include <algorithm>
#include <utility>

void TextView::Place(HostRect const& frame)
{
    if (frame == frame_) return;
    bool const isAsWide = frame.Width() == frame_.Width();
    int const height = look_.Line_Height();
    int const inset = isMultiLine_ ? 1 : (frame.Height() - height + 1) / 2;
    // A field that is lower than its line keeps the text in its middle.
    int const side = std::max(inset, 1);
    inside_ = {frame.left + 1, frame.top + 1, frame.right - 1, frame.bottom - 1};
    text_ = {frame.left + side, frame.top + inset, frame.right - side, frame.bottom - inset};
    if (isMultiLine_ && !isAsWide) lines_.Lay_Out(look_, shown_, std::max(text_.Width(), 1));
    if (isMultiLine_)
        Fill_View();
    else
        Follow_Sideways();
    frame_ = frame;  // when all has found the memory it needs
}

// ---- places -----------------------------------------------------------------------------------------------

int TextView::Line_Top(std::size_t line) const
{
    return text_.top + static_cast<int>(static_cast<long>(line) - firstLine_) * look_.Line_Height();
}

std::string_view TextView::Line_Text(std::size_t line) const
{
    TextLine const& found = lines_[line];
    return std::string_view(shown_).substr(found.start, found.end - found.start);
}

TextOrder TextView::Order_Of(std::size_t line) const
{
    return look_.Order(Line_Text(line), lines_[line].direction);
}

/// A line that runs from right to left begins at the right edge, and leaves room for a caret there.
int TextView::Line_Left(std::size_t line) const
{
    HostDirection const direction = lines_[line].direction;
    int const left = text_.left - scrollX_;
    if (direction != HostDirection::RightToLeft) return left;
    int const room = text_.Width() - 1 - look_.Width(Line_Text(line), direction);
    return left + (isMultiLine_ ? room : std::max(room, 0));
}

int TextView::X_Of(std::size_t line, TextPlace const& place) const
{
    return Line_Left(line) + Order_Of(line).X_Of({place.at - lines_[line].start, place.isBesideNext});
}

/// Where a part of the text stands in a line: in several places when some of it runs the other way.
std::vector<HostRect> TextView::Range_Rects(std::size_t line, TextRange const& range) const
{
    TextLine const& drawn = lines_[line];
    std::size_t const start = std::max(range.start, drawn.start), end = std::min(range.end, drawn.end);
    std::vector<HostRect> rects;
    if (start >= end) return rects;
    int const left = Line_Left(line), top = Line_Top(line);
    for (TextSpan const& span : Order_Of(line).Spans({start - drawn.start, end - drawn.start}))
        rects.push_back({left + span.left, top, left + span.right, top + look_.Line_Height()});
    return rects;
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

TextPlace TextView::Caret() const
{
    std::size_t const caret = buffer.Shown_Caret();
    return caret_.at == caret && buffer.Composition().IsEmpty() ? caret_ : TextPlace{caret};
}

HostRect TextView::Caret_Rect() const
{
    TextPlace const caret = Caret();
    std::size_t const line = lines_.Line_Of(caret.at);
    // Blanks at the end of a line that wraps hang over its edge.
    int const x = std::clamp(X_Of(line, caret), text_.left, std::max(text_.right - 1, text_.left));
    int const top = Line_Top(line);
    return {x, top, x + 1, top + look_.Text_Height()};
}

/// The end of a line that wraps is the start of the next one, and shows there.
TextPlace TextView::Kept_In_Line(std::size_t line, TextPlace const& place) const
{
    TextLine const& found = lines_[line];
    bool const wraps = found.end == found.next && line + 1 < lines_.Count();
    if (!wraps || place.at < found.end || found.start == found.end) return place;
    return {Previous_Place(shown_, found.end), true};
}

TextPlace TextView::Place_In_Line(std::size_t line, int x) const
{
    TextPlace const near = Order_Of(line).Place_Near(x - Line_Left(line));
    return Kept_In_Line(line, {lines_[line].start + near.at, near.isBesideNext});
}

TextPlace TextView::Place_Near(int x, int y) const
{
    int const height = std::max(look_.Line_Height(), 1);
    if (!isMultiLine_) return Place_In_Line(0, std::clamp(x, text_.left - height, text_.right + height));
    long const row = y < text_.top ? -1 : std::min<long>((y - text_.top) / height, Whole_Lines());
    long const line = firstLine_ + row;
    if (line < 0) return {};
    if (line >= Line_Count()) return {shown_.size(), true};
    return Place_In_Line(static_cast<std::size_t>(line), x);
}

HostDirection TextView::Caret_Direction() const
{
    return lines_[lines_.Line_Of(buffer.Shown_Caret())].direction;
}

TextRange TextView::Line_At(std::size_t offset) const
{
    TextLine const& line = lines_[lines_.Line_Of(offset)];
    return {line.start, line.next};
}

void TextView::Select(std::size_t anchor, TextPlace const& caret)
{
    buffer.Select(anchor, caret.at);
    caret_ = caret;
}

void TextView::Move_By_Lines(long lines, bool extends)
{
    TextPlace const caret = Caret();
    std::size_t const line = lines_.Line_Of(caret.at);
    if (!column_ || columnCaret_ != caret.at) column_ = X_Of(line, caret) - text_.left;
    long const wanted = static_cast<long>(line) + lines;
    if (wanted < 0)
        Move_To({}, extends);
    else if (wanted >= Line_Count())
        Move_To({shown_.size(), true}, extends);
    else
        Move_To(Place_In_Line(static_cast<std::size_t>(wanted), text_.left + *column_), extends);
    columnCaret_ = buffer.Caret();
}

TextPlace TextView::Side_Step(bool isRight) const
{
    TextPlace const caret = Caret();
    std::size_t const line = lines_.Line_Of(caret.at), start = lines_[line].start;
    auto const step = Order_Of(line).Step({caret.at - start, caret.isBesideNext}, isRight);
    if (step) return {start + step->at, step->isBesideNext};
    // Where a line ends the next one goes on, and the one ahead of it where it begins.
    bool const isForward = isRight == (lines_[line].direction == HostDirection::LeftToRight);
    if (isForward) return line + 1 < lines_.Count() ? TextPlace{lines_[line].next} : caret;
    return line > 0 ? Kept_In_Line(line - 1, {lines_[line - 1].end, true}) : caret;
}

TextPlace TextView::Selection_End(bool isRight) const
{
    auto const [first, last] = buffer.Selection();
    TextPlace const start{first, true}, end{last};
    std::size_t const line = lines_.Line_Of(first);
    bool const isOneLine = lines_.Line_Of(last) == line;
    bool const startsLeft = isOneLine ? X_Of(line, start) <= X_Of(line, end)
                                      : lines_[line].direction == HostDirection::LeftToRight;
    return isRight == startsLeft ? end : start;
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

/// No room is left below the last line while there are lines above the view.
void TextView::Fill_View()
{
    firstLine_ = std::clamp(firstLine_, 0L, std::max(Line_Count() - Whole_Lines(), 0L));
}

/// How far two texts are the same, of which the first one is the shorter.
template <typename Iterator> static std::size_t Same_Size(Iterator first, Iterator end, Iterator second)
{
    return static_cast<std::size_t>(std::mismatch(first, end, second).first - first);
}

/// Lays out again what has changed in the text, and answers where it is.
HostRect TextView::Take_Text()
{
    std::string now = buffer.Shown_Text();
    if (now == shown_) return {};
    std::string_view const shorter = shown_.size() < now.size() ? shown_ : now;
    std::string_view const longer = shown_.size() < now.size() ? now : shown_;
    std::size_t const ahead = Same_Size(shorter.begin(), shorter.end(), longer.begin());
    std::string_view const rest = shorter.substr(ahead);
    std::size_t const behind = Same_Size(rest.rbegin(), rest.rend(), longer.rbegin());
    TextRange const lines = lines_.Change(look_, now, {ahead, now.size() - behind}, shown_.size() - behind);
    shown_ = std::move(now);
    caret_ = {};
    Fill_View();
    return Lines_Rect(lines);
}

/// Answers the lines whose selection, caret or unfinished text has changed.
HostRect TextView::Take_Marks()
{
    Marks const now{buffer.Shown_Selection(), buffer.Composition(), Caret(), isActive};
    Marks const old = std::exchange(marks_, now);
    if (now == old) return {};
    std::size_t const first =
        std::min({now.selection.start, now.unfinished.start, old.selection.start, old.unfinished.start});
    std::size_t const last =
        std::max({now.selection.end, now.unfinished.end, old.selection.end, old.unfinished.end});
    return Lines_Rect({lines_.Line_Of(first), lines_.Line_Of(last) + 1});
}

void TextView::Follow_Sideways()
{
    int const width = std::max(text_.Width(), 1);
    TextOrder const order = Order_Of(0);
    int const caret = order.X_Of(Caret());
    // At the left edge some of what is erased or selected next is shown as well.
    if (caret < scrollX_) scrollX_ = caret - std::min(width / 4, 2 * look_.Line_Height());
    if (caret >= scrollX_ + width) scrollX_ = caret - width + 1;
    // No more room than the caret needs is left empty behind the text.
    scrollX_ = std::max(std::min(scrollX_, order.Width() + 1 - width), 0);
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
    HostRect const marks = Take_Marks();
    Follow_Caret();
    if (scrollX_ != oldX || firstLine_ != oldLine) return inside_;
    return Span(text, marks);
}

void TextView::Scroll_To_Line(long line)
{
    firstLine_ = isMultiLine_ ? std::clamp(line, 0L, Line_Count() - 1) : 0;
}
