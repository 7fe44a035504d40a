// Text drawn in a context, and measured for one.
#include "MacDraw.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <cstring>
#include <vector>

/// The longest text that is drawn in one go.
static constexpr std::size_t LongestText = 255;

static constexpr char Ellipsis[] = "...";

std::string_view Drawn_Part(std::string_view text)
{
    if (text.size() <= LongestText) return text;
    std::size_t length = LongestText;
    while (length > LongestText - 3 && (text[length] & 0xC0) == 0x80)
        --length;
    return text.substr(0, length);
}

void DrawTextZV(ZVDrawInfo* draw, char const* text, long x, long y)
{
    if (!text) return;
    Paint(draw, [&](PrimitiveFrame const& frame) {
        frame.Port().Draw_Text(Drawn_Part(text), frame.X(x), frame.Y(y));
    });
}

void DrawTextZV(ZVDrawInfo* draw, unsigned long stringId, long x, long y)
{
    DrawTextZV(draw, GetStringZV(stringId), x, y);
}

// ---- measures ---------------------------------------------------------------------------------------------

static void Store(long* place, long value)
{
    if (place) *place = value;
}

/// A measure in the font of a context. 0 with error 1 when memory runs out, and what is drawn by it will be
/// drawn again.
template <typename Take> static long Measure(ZVDrawInfo const* draw, Take take)
{
    long measure = 0;
    Paint(draw ? draw->Port : nullptr, [&] { measure = take(Context_Font(draw)); });
    return measure;
}

void GetTextSizeZV(ZVDrawInfo const* draw, char const* text, long* width, long* height)
{
    Store(width, GetTextWidthZV(draw, text));
    Store(height, GetTextHeightZV(draw, text));
}

void GetTextSizeZV(ZVDrawInfo const* draw, unsigned long stringId, long* width, long* height)
{
    GetTextSizeZV(draw, GetStringZV(stringId), width, height);
}

long GetTextWidthZV(ZVDrawInfo const* draw, char const* text)
{
    return text ? Measure(draw, [=](TextFont const& font) { return font.Width(text); }) : 0;
}

long GetTextWidthZV(ZVDrawInfo const* draw, unsigned long stringId)
{
    return GetTextWidthZV(draw, GetStringZV(stringId));
}

long GetTextHeightZV(ZVDrawInfo const* draw, char const* text)
{
    return text ? Measure(draw, [](TextFont const& font) { return font.Ascent(); }) : 0;
}

long GetTextHeightZV(ZVDrawInfo const* draw, unsigned long stringId)
{
    return GetTextHeightZV(draw, GetStringZV(stringId));
}

void CenterTextZV(ZVDrawInfo const* draw, char const* text, long x, long y, long w, long h, long* outX,
                  long* outY)
{
    Store(outX, (w - GetTextWidthZV(draw, text)) / 2 + x);
    Store(outY, (h - GetTextHeightZV(draw, text)) / 2 + y);
}

void CenterTextZV(ZVDrawInfo const* draw, unsigned long stringId, long x, long y, long w, long h, long* outX,
                  long* outY)
{
    CenterTextZV(draw, GetStringZV(stringId), x, y, w, h, outX, outY);
}

/// Lengths of the parts of a UTF-8 text that end behind each of its characters.
static std::vector<std::size_t> Character_Ends(std::string_view text)
{
    std::vector<std::size_t> ends;
    for (std::size_t i = 1; i <= text.size(); ++i)
        if (i == text.size() || (text[i] & 0xC0) != 0x80) ends.push_back(i);
    return ends;
}

static void Shorten(TextFont const& font, char* text, int width)
{
    std::string_view const whole = text;
    if (font.Width(whole) <= width) return;
    long const dots = font.Width(Ellipsis);
    std::vector<std::size_t> const ends = Character_Ends(whole);
    auto const tooWide = std::partition_point(ends.begin(), ends.end(), [&](std::size_t end) {
        return font.Width(whole.substr(0, end)) + dots <= width;
    });
    auto const kept = std::max<std::ptrdiff_t>(tooWide - ends.begin(), 1);
    std::strcpy(text + ends[static_cast<std::size_t>(kept - 1)], kept > 1 || dots <= width ? Ellipsis : "");
}

void ShortenStringZV(ZVDrawInfo const* draw, char* text, int width)
{
    if (!text || !*text) return;
    Measure(draw, [=](TextFont const& font) {
        Shorten(font, text, width);
        return 0L;
    });
}

FittedText::FittedText(FontChoice const& choice, char const* text, int width) : text_(Drawn_Part(text))
{
    TextFont const font = Find_Font(choice);
    if (font.Width(text_) <= width) return;
    shortened_[text_.copy(shortened_.data(), LongestText)] = 0;
    Shorten(font, shortened_.data(), width);
    text_ = shortened_.data();
}

long GetAveCharWidthZV(ZVDrawInfo const* draw)
{
    return Measure(draw, [](TextFont const& font) { return font.Width("x"); });
}

long GetAveCharHeightZV(ZVDrawInfo const* draw)
{
    return Measure(draw, [](TextFont const& font) { return font.Ascent() + font.Descent(); });
}

void GetAveCharSizeZV(ZVDrawInfo const* draw, long* width, long* height)
{
    Store(width, GetAveCharWidthZV(draw));
    Store(height, GetAveCharHeightZV(draw));
}
