#include "MacTextLines.h"

#include <algorithm>
#include <optional>
#include <utility>

static constexpr std::string_view Placeholder = "\u2022";
static constexpr int TabBlanks = 8;

// ---- one line ---------------------------------------------------------------------------------------------

int TextLook::Ascent() const
{
    return static_cast<int>(Find_Font(font_).Ascent());
}

int TextLook::Text_Height() const
{
    TextFont const font = Find_Font(font_);
    return static_cast<int>(font.Ascent() + font.Descent());
}

int TextLook::Line_Height() const
{
    TextFont const font = Find_Font(font_);
    return static_cast<int>(font.Ascent() + font.Descent() + font.Leading());
}

HostDirection TextLook::Direction(std::string_view paragraph) const
{
    // Placeholders say nothing of what they stand for.
    return !isPassword_ && Is_Right_To_Left(paragraph) ? HostDirection::RightToLeft
                                                       : HostDirection::LeftToRight;
}

static std::string Placeholders(std::string_view text)
{
    std::string shown;
    for (long count = Count_Places(text); count > 0; --count)
        shown += Placeholder;
    return shown;
}

static bool Is_Control(char byte)
{
    return static_cast<unsigned char>(byte) < ' ' || byte == '\x7F';
}

/// A piece as it is drawn: control characters show as blanks. What differs from the text is put in `changed`.
std::string_view TextLook::Shown(std::string_view piece, std::string& changed) const
{
    bool const hasControls = std::ranges::any_of(piece, Is_Control);
    if (!isPassword_ && !hasControls) return piece;
    changed = isPassword_ ? Placeholders(piece) : std::string(piece);
    std::ranges::replace_if(changed, Is_Control, ' ');
    return changed;
}

/// From left to right; a line that runs from right to left begins with the last of them.
std::vector<TextLook::Piece> TextLook::Pieces(std::string_view line, HostDirection direction) const
{
    TextFont const font = Find_Font(font_);
    std::vector<Piece> pieces;
    std::string changed;
    int x = 0;
    for (std::size_t start = 0;; start = pieces.back().end + 1) {
        std::size_t const end = isPassword_ ? line.size() : std::min(line.find('\t', start), line.size());
        long const width = font.Width(Shown(line.substr(start, end - start), changed), direction);
        pieces.push_back({start, end, x, static_cast<int>(width)});
        x += pieces.back().width;
        if (end == line.size()) break;
        int const step = std::max(1, static_cast<int>(font.Width(" ")) * TabBlanks);
        x = (x / step + 1) * step;
    }
    if (direction == HostDirection::RightToLeft) {
        for (Piece& piece : pieces)
            piece.x = x - piece.x - piece.width;
        std::ranges::reverse(pieces);
    }
    return pieces;
}

int TextLook::Width(std::string_view line, HostDirection direction) const
{
    std::vector<Piece> const pieces = Pieces(line, direction);
    return pieces.back().x + pieces.back().width;
}

void TextLook::Draw(HostSurface& surface, std::string_view line, int x, int baseLine, uint32_t color,
                    HostDirection direction) const
{
    TextFont const font = Find_Font(font_);
    std::string changed;
    for (Piece const& piece : Pieces(line, direction))
        font.Draw(surface, Shown(line.substr(piece.start, piece.end - piece.start), changed), x + piece.x,
                  baseLine, color, direction);
}

// ---- cells ------------------------------------------------------------------------------------------------

/// Adds what is drawn together, divided evenly among the steps in it, of which a ligature has several.
static void Add_Cells(std::string_view line, TextCell const& drawn, std::vector<TextCell>& cells)
{
    if (drawn.start == drawn.end) return;
    std::vector<std::size_t> places{Place_At(line, drawn.start)};
    while (places.back() < drawn.end)
        places.push_back(Next_Place(line, places.back()));
    std::size_t const count = places.size() - 1;
    if (count == 1 && !cells.empty() && cells.back().start == places[0]) {
        // A step may go over more than what is drawn together.
        cells.back().right = drawn.right;
        return;
    }
    auto const edge = [&](std::size_t part) {
        return drawn.left + static_cast<int>((drawn.right - drawn.left) * static_cast<long>(part) /
                                             static_cast<long>(count));
    };
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t const step = drawn.isRightToLeft ? count - 1 - i : i;
        cells.push_back({places[step], places[step + 1], edge(i), edge(i + 1), drawn.isRightToLeft});
    }
}

void TextLook::Add_Piece(std::string_view line, Piece const& piece, HostDirection direction,
                         std::vector<TextCell>& cells) const
{
    std::string changed;
    std::string_view const shown = Shown(line.substr(piece.start, piece.end - piece.start), changed);
    HostTextRun const* const run = isPassword_ ? nullptr : Find_Font(font_).Run(shown, direction);
    if (!run) {
        // Placeholders are as wide as one another, and so is what stands for the letters of no font.
        Add_Cells(line, {piece.start, piece.end, piece.x, piece.x + piece.width, false}, cells);
        return;
    }
    for (HostTextRun::Cluster const& cluster : run->clusters)
        Add_Cells(line,
                  {piece.start + cluster.start, piece.start + cluster.end, piece.x + cluster.left,
                   piece.x + cluster.right, cluster.isRightToLeft},
                  cells);
}

TextOrder TextLook::Order(std::string_view line, HostDirection direction) const
{
    bool const isRightToLeft = direction == HostDirection::RightToLeft;
    std::vector<TextCell> cells;
    cells.reserve(line.size());
    Piece const* before = nullptr;
    std::vector<Piece> const pieces = Pieces(line, direction);
    for (Piece const& piece : pieces) {
        if (before) {
            std::size_t const tab = isRightToLeft ? piece.end : before->end;
            cells.push_back({tab, tab + 1, before->x + before->width, piece.x, isRightToLeft});
        }
        Add_Piece(line, piece, direction, cells);
        before = &piece;
    }
    return {std::move(cells), isRightToLeft};
}

// ---- wrapping ---------------------------------------------------------------------------------------------

namespace {

/// Makes lines one behind the other. A line depends on nothing ahead of it but the direction of its
/// paragraph.
class LineMaker {
public:
    /// @param width  0 for one line
    LineMaker(TextLook const& look, std::string_view text, int width)
        : look_(look), text_(text), width_(width)
    {
    }

    /// Begins within a paragraph, of which the direction is known.
    void Resume(std::size_t at, HostDirection direction);
    TextLine Line_From(std::size_t at);
    bool Is_Last(TextLine const& line) const { return line.end == text_.size(); }

private:
    std::size_t Fitting(std::string_view rest) const;
    std::size_t Wrap(std::string_view rest) const;

    TextLook const& look_;
    std::string_view text_;
    int width_;
    std::optional<std::size_t> stop_;  ///< end of the paragraph that the last line was in
    HostDirection direction_ = HostDirection::LeftToRight;  ///< of that paragraph
    std::size_t guess_ = 32;  ///< how much of the next line fits, going by the last one
};

}  // namespace

/// Size of the longest beginning of a paragraph's rest that is no wider than a line.
std::size_t LineMaker::Fitting(std::string_view rest) const
{
    auto const fits = [&](std::size_t size) {
        return look_.Width(rest.substr(0, Place_At(rest, size))) <= width_;
    };
    std::size_t least = 0, most = std::min(guess_, rest.size()), step = 8;
    if (fits(most)) {
        do {
            least = most;
            if (least == rest.size()) return least;
            most = std::min(least + step, rest.size());
            step *= 2;
        } while (fits(most));
    } else {
        for (; most > step && !fits(most - step); step *= 2)
            most -= step;
        least = most > step ? most - step : 0;
    }
    while (most - least > 1) {
        std::size_t const middle = least + (most - least) / 2;
        (fits(middle) ? least : most) = middle;
    }
    return Place_At(rest, least);
}

static std::size_t Behind_Blanks(std::string_view text, std::size_t at)
{
    while (at < text.size() && Is_Blank(text[at]))
        ++at;
    return at;
}

/// Size of the line that a paragraph's rest begins with. Blanks hang over its edge; a word that is longer
/// than a line is cut.
std::size_t LineMaker::Wrap(std::string_view rest) const
{
    std::size_t const fitting = Fitting(rest);
    if (fitting == rest.size()) return fitting;
    if (Is_Blank(rest[fitting])) return Behind_Blanks(rest, fitting);
    std::size_t end = fitting;
    while (end > 0 && !Is_Wrap_Place(rest, end))
        --end;
    if (end > 0) return end;
    return fitting > 0 ? fitting : Next_Place(rest, 0);
}

void LineMaker::Resume(std::size_t at, HostDirection direction)
{
    stop_ = width_ == 0 ? text_.size() : std::min(text_.find_first_of("\r\n", at), text_.size());
    direction_ = direction;
}

TextLine LineMaker::Line_From(std::size_t at)
{
    if (!stop_ || at > *stop_) Resume(at, look_.Direction(text_.substr(at)));
    std::string_view const rest = text_.substr(at, *stop_ - at);
    std::size_t const end = at + (width_ == 0 ? rest.size() : Wrap(rest));
    guess_ = std::max<std::size_t>(end - at, 1);
    return {at, end, end == *stop_ ? Next_Place(text_, end) : end, direction_};
}

void TextLines::Lay_Out(TextLook const& look, std::string_view text, int width)
{
    std::vector<TextLine> lines;
    LineMaker maker(look, text, width);
    do
        lines.push_back(maker.Line_From(lines.empty() ? 0 : lines.back().next));
    while (!maker.Is_Last(lines.back()));
    lines_ = std::move(lines);
    width_ = width;
}

/// The line that the paragraph of another one begins with.
std::size_t TextLines::Paragraph_Of(std::size_t line) const
{
    while (line > 0 && lines_[line - 1].end == lines_[line - 1].next)
        --line;
    return line;
}

TextRange TextLines::Change(TextLook const& look, std::string_view text, TextRange const& changed,
                            std::size_t oldEnd)
{
    // A line ends by what the next one begins with: what has changed there may fit the line ahead now.
    std::size_t const touched = Line_Of(changed.start > 0 ? changed.start - 1 : 0);
    std::size_t first = touched > 0 ? touched - 1 : 0;
    std::size_t const paragraph = Paragraph_Of(first);
    HostDirection const direction = look.Direction(text.substr(lines_[paragraph].start));
    if (direction != lines_[paragraph].direction) first = paragraph;
    std::size_t kept = lines_.size();  // the first old line that stays, since it starts where a new one would
    std::vector<TextLine> made;
    LineMaker maker(look, text, width_);
    maker.Resume(lines_[first].start, direction);
    for (std::size_t at = lines_[first].start;; at = made.back().next) {
        if (at > changed.end) {
            std::size_t const oldAt = at - changed.end + oldEnd, old = Line_Of(oldAt);
            bool const isParagraph = made.back().end != made.back().next;
            bool const runsOn = isParagraph || lines_[old].direction == made.back().direction;
            if (lines_[old].start == oldAt && runsOn) {
                kept = old;
                break;
            }
        }
        made.push_back(maker.Line_From(at));
        if (maker.Is_Last(made.back())) break;
    }
    std::size_t const oldCount = lines_.size();
    lines_.reserve(oldCount + made.size());  // nothing has changed yet, should it find no memory
    for (std::size_t i = kept; i < lines_.size(); ++i)
        for (std::size_t* offset : {&lines_[i].start, &lines_[i].end, &lines_[i].next})
            *offset = *offset - oldEnd + changed.end;
    auto const line = [&](std::size_t index) { return lines_.begin() + static_cast<std::ptrdiff_t>(index); };
    lines_.insert(lines_.erase(line(first), line(kept)), made.begin(), made.end());
    return {first, lines_.size() == oldCount ? first + made.size() : lines_.size()};
}

// ---- places -----------------------------------------------------------------------------------------------

std::size_t TextLines::Line_Of(std::size_t offset) const
{
    auto const behind =
        std::ranges::upper_bound(lines_, offset, {}, [](TextLine const& line) { return line.start; });
    return static_cast<std::size_t>(behind - lines_.begin()) - 1;
}
