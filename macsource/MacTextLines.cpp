#include "MacTextLines.h"

#include <algorithm>
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

static std::size_t Behind_Blanks(std::string_view text, std::size_t at)
{
    while (at < text.size() && Is_Blank(text[at]))
        ++at;
    return at;
}

/// Size of the longest beginning of a paragraph that is no wider than a line.
static std::size_t Fitting(TextLook const& look, std::string_view paragraph, int width)
{
    auto const fits = [&](std::size_t size) { return look.Width(paragraph.substr(0, size)) <= width; };
    std::size_t least = 0, most = 32;
    while (most < paragraph.size() && fits(Place_At(paragraph, most)))
        least = std::exchange(most, most * 2);
    if (most >= paragraph.size()) {
        most = paragraph.size();
        if (fits(most)) return most;
    }
    while (most - least > 1) {
        std::size_t const middle = least + (most - least) / 2;
        (fits(Place_At(paragraph, middle)) ? least : most) = middle;
    }
    return Place_At(paragraph, least);
}

/// Where the first line of a paragraph ends. Blanks hang over its edge; a word that is longer than a line is
/// cut.
std::size_t TextLines::Wrap(TextLook const& look, std::string_view paragraph) const
{
    std::size_t const fitting = Fitting(look, paragraph, width_);
    if (fitting == paragraph.size()) return fitting;
    if (Is_Blank(paragraph[fitting])) return Behind_Blanks(paragraph, fitting);
    std::size_t end = fitting;
    while (end > 0 && !Is_Wrap_Place(paragraph, end))
        --end;
    if (end > 0) return end;
    return fitting > 0 ? fitting : Next_Place(paragraph, 0);
}

/// Adds the lines of a paragraph.
/// @return  where the next one starts; past the text's end behind the last one
std::size_t TextLines::Append_Paragraph(TextLook const& look, std::string_view text, std::size_t start,
                                        std::vector<TextLine>& lines) const
{
    std::size_t const stop = width_ > 0 ? text.find_first_of("\r\n", start) : text.npos;
    bool const isLast = stop == text.npos;
    std::string_view const paragraph = text.substr(0, stop);
    std::size_t at = start;
    do {
        std::size_t end = paragraph.size();
        if (width_ > 0) end = at + Wrap(look, paragraph.substr(at));
        lines.push_back({at, end, end});
        at = end;
    } while (at < paragraph.size());
    if (isLast) return text.size() + 1;
    return lines.back().next = Next_Place(text, stop);
}

void TextLines::Lay_Out(TextLook const& look, std::string_view text, int width)
{
    width_ = width;
    lines_.clear();
    for (std::size_t at = 0; at <= text.size();)
        at = Append_Paragraph(look, text, at, lines_);
}

bool TextLines::Begins_Paragraph(std::size_t line) const
{
    return line == 0 || lines_[line - 1].end != lines_[line - 1].next;
}

TextRange TextLines::Change(TextLook const& look, std::string_view text, TextRange const& changed,
                            std::size_t oldEnd)
{
    // From the paragraph ahead on, whose break the change may have completed.
    std::size_t first = Line_Of(changed.start > 0 ? changed.start - 1 : 0);
    while (!Begins_Paragraph(first))
        --first;
    std::vector<TextLine> made;
    std::size_t at = lines_[first].start;
    std::size_t kept = lines_.size();  // the first old line that stays
    while (at <= text.size()) {
        if (at > changed.end) {
            kept = Line_Of(at - changed.end + oldEnd);
            break;
        }
        at = Append_Paragraph(look, text, at, made);
    }
    std::size_t const old = lines_.size();
    for (std::size_t i = kept; i < lines_.size(); ++i)
        for (std::size_t* offset : {&lines_[i].start, &lines_[i].end, &lines_[i].next})
            *offset = *offset - oldEnd + changed.end;
    auto const place = lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(first),
                                    lines_.begin() + static_cast<std::ptrdiff_t>(kept));
    lines_.insert(place, made.begin(), made.end());
    bool const hasMoved = lines_.size() != old;
    return {first, hasMoved ? lines_.size() : first + made.size()};
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
