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
    if (!draw || !text) return;
    PrimitiveFrame const frame(draw);
    frame.Port().Draw_Text(Drawn_Part(text), frame.X(x), frame.Y(y));
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
    return text ? Context_Font(draw).Width(text) : 0;
}

long GetTextWidthZV(ZVDrawInfo const* draw, unsigned long stringId)
{
    return GetTextWidthZV(draw, GetStringZV(stringId));
}

long GetTextHeightZV(ZVDrawInfo const* draw, char const* text)
{
    return text ? Context_Font(draw).Ascent() : 0;
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

void ShortenStringZV(ZVDrawInfo const* draw, char* text, int width)
{
    if (!text || !*text) return;
    std::string_view const whole = text;
    TextFont const font = Context_Font(draw);
    if (font.Width(whole) <= width) return;
    long const dots = font.Width(Ellipsis);
    std::vector<std::size_t> const ends = Character_Ends(whole);
    auto const tooWide = std::partition_point(ends.begin(), ends.end(), [&](std::size_t end) {
        return font.Width(whole.substr(0, end)) + dots <= width;
    });
    auto const kept = std::max<std::ptrdiff_t>(tooWide - ends.begin(), 1);
    std::strcpy(text + ends[static_cast<std::size_t>(kept - 1)], kept > 1 || dots <= width ? Ellipsis : "");
}

FittedText::FittedText(FontChoice const& choice, char const* text, int width) : text_(Drawn_Part(text))
{
    if (Find_Font(choice).Width(text_) <= width) return;
    shortened_[text_.copy(shortened_.data(), LongestText)] = 0;
    ZVDrawInfo context{};
    context.Font = choice.number;
    context.FontObject = choice.object;
    ShortenStringZV(&context, shortened_.data(), width);
    text_ = shortened_.data();
}

long GetAveCharWidthZV(ZVDrawInfo const* draw)
{
    return Context_Font(draw).Width("x");
}

long GetAveCharHeightZV(ZVDrawInfo const* draw)
{
    TextFont const font = Context_Font(draw);
    return font.Ascent() + font.Descent();
}

void GetAveCharSizeZV(ZVDrawInfo const* draw, long* width, long* height)
{
    Store(width, GetAveCharWidthZV(draw));
    Store(height, GetAveCharHeightZV(draw));
}
