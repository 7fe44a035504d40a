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

/// Control characters show as blanks.
static std::string Printable(std::string_view piece)
{
    std::string shown(piece);
    std::ranges::replace_if(shown, Is_Control, ' ');
    return shown;
}

/// Calls visit(font, piece, x) for what stands between the tabs of a line. Its width comes back.
template <typename Visit> int TextLook::Visit_Pieces(std::string_view line, Visit&& visit) const
{
    TextFont const font = Find_Font(font_);
    int x = 0;
    auto const place = [&](std::string_view piece) {
        visit(font, piece, x);
        x += static_cast<int>(font.Width(piece));
    };
    if (isPassword_) {
        place(Placeholders(line));
        return x;
    }
    for (;;) {
        std::size_t const tab = line.find('\t');
        std::string_view const piece = line.substr(0, tab);
        if (std::ranges::any_of(piece, Is_Control))
            place(Printable(piece));
        else
            place(piece);
        if (tab == line.npos) return x;
        int const step = std::max(1, static_cast<int>(font.Width(" ")) * TabBlanks);
        x = (x / step + 1) * step;
        line.remove_prefix(tab + 1);
    }
}

int TextLook::Width(std::string_view line) const
{
    return Visit_Pieces(line, [](TextFont const&, std::string_view, int) {});
}

void TextLook::Draw(HostSurface& surface, std::string_view line, int x, int baseLine, uint32_t color) const
{
    Visit_Pieces(line, [&](TextFont const& font, std::string_view piece, int offset) {
        font.Draw(surface, piece, x + offset, baseLine, color);
    });
}

// ---- wrapping ---------------------------------------------------------------------------------------------

namespace {

/// Makes lines one behind the other. A line depends on nothing ahead of it.
class LineMaker {
public:
    /// @param width  0 for one line
    LineMaker(TextLook const& look, std::string_view text, int width)
        : look_(look), text_(text), width_(width)
    {
    }

    TextLine Line_From(std::size_t at);
    bool Is_Last(TextLine const& line) const { return line.end == text_.size(); }

private:
    std::size_t Fitting(std::string_view rest) const;
    std::size_t Wrap(std::string_view rest) const;

    TextLook const& look_;
    std::string_view text_;
    int width_;
    std::optional<std::size_t> stop_;  ///< end of the paragraph that the last line was in
    std::size_t guess_ = 32;           ///< how much of the next line fits, going by the last one
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

TextLine LineMaker::Line_From(std::size_t at)
{
    if (width_ == 0) return {at, text_.size(), text_.size()};
    if (!stop_ || at > *stop_) stop_ = std::min(text_.find_first_of("\r\n", at), text_.size());
    std::size_t const end = at + Wrap(text_.substr(at, *stop_ - at));
    guess_ = std::max<std::size_t>(end - at, 1);
    return {at, end, end == *stop_ ? Next_Place(text_, end) : end};
}

void TextLines::Lay_Out(TextLook const& look, std::string_view text, int width)
{
    width_ = width;
    lines_.clear();
    LineMaker maker(look, text, width);
    do
        lines_.push_back(maker.Line_From(lines_.empty() ? 0 : lines_.back().next));
    while (!maker.Is_Last(lines_.back()));
}

TextRange TextLines::Change(TextLook const& look, std::string_view text, TextRange const& changed,
                            std::size_t oldEnd)
{
    // A line ends by what the next one begins with: what has changed there may fit the line ahead now.
    std::size_t const touched = Line_Of(changed.start > 0 ? changed.start - 1 : 0);
    std::size_t const first = touched > 0 ? touched - 1 : 0;
    std::size_t kept = lines_.size();  // the first old line that stays, since it starts where a new one would
    std::vector<TextLine> made;
    LineMaker maker(look, text, width_);
    for (std::size_t at = lines_[first].start;; at = made.back().next) {
        if (at > changed.end) {
            std::size_t const oldAt = at - changed.end + oldEnd, old = Line_Of(oldAt);
            if (lines_[old].start == oldAt) {
                kept = old;
                break;
            }
        }
        made.push_back(maker.Line_From(at));
        if (maker.Is_Last(made.back())) break;
    }
    std::size_t const oldCount = lines_.size();
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

std::size_t TextLines::Place_Near(TextLook const& look, std::string_view text, std::size_t line, int x) const
{
    TextLine const& found = lines_[line];
    std::string_view const shown = text.substr(0, found.end);
    auto const xOf = [&](std::size_t at) { return look.Width(shown.substr(found.start, at - found.start)); };
    std::size_t least = found.start, most = shown.size();
    // The end of a line that wraps is the start of the next one, and shows there.
    if (found.end == found.next && line + 1 < lines_.size()) most = Previous_Place(shown, most);
    while (least < most) {
        std::size_t middle = Place_At(shown, least + (most - least) / 2);
        if (middle <= least) middle = Next_Place(shown, least);
        if (xOf(middle) <= x)
            least = middle;
        else
            most = Previous_Place(shown, middle);
    }
    std::size_t const next = Next_Place(shown, least);
    bool const isNearNext = next <= most && 2 * x > xOf(least) + xOf(next);
    return isNearNext ? next : least;
}
