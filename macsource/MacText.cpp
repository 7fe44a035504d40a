#include "MacText.h"

#include "MacFont.h"
#include "ZVLibInternal.h"
#include "foundation/Guard.h"

#include <algorithm>
#include <cmath>
#include <vector>

static constexpr long DefaultFontSize = 12;
static constexpr long LargestFontSize = 1000;

/// A line's ascent and descent and a character's width, in ems, on a machine without any font.
static constexpr double BareAscent = 0.9;
static constexpr double BareHeight = 1.2;
static constexpr double BareWidth = 0.5;

/// An interface draws with a handful of fonts; when their sizes change again and again, the old ones go.
static constexpr std::size_t MostOpenFonts = 16;

namespace {

struct OpenFont {
    long fontId;  ///< as in ZVFont
    long size;
    bool bold, italic;
    std::unique_ptr<HostFont> font;  ///< null when it cannot be had

    bool Is(OpenFont const& other) const
    {
        return fontId == other.fontId && size == other.size && bold == other.bold && italic == other.italic;
    }
};

struct FontCache {
    std::unique_ptr<HostFonts> fonts;
    std::vector<OpenFont> open;
};

}  // namespace

static FontCache cache;

HostFonts* Open_Fonts()
{
    if (!cache.fonts) cache.fonts = Make_Host_Fonts();
    return cache.fonts.get();
}

void Close_Fonts()
{
    cache = {};
}

HostFontFace const* Find_Face(long fontId)
{
    if (fontId < 1 || !Open_Fonts()) return nullptr;
    std::span<HostFontFace const> const faces = Open_Fonts()->Faces();
    auto const index = static_cast<std::size_t>(fontId - 1);
    return index < faces.size() ? &faces[index] : nullptr;
}

std::unique_ptr<HostFont> Open_Face(HostFontFace const* face, long size, bool bold, bool italic)
{
    HostFonts* const fonts = Open_Fonts();
    if (!fonts) return nullptr;
    auto const pixels = static_cast<double>(size);
    if (face) return fonts->Open(*face, pixels, bold, italic);
    return fonts->Open({.family = "sans", .pixelSize = pixels, .bold = bold, .italic = italic});
}

/// Points and pixels are the same at the interface's scale.
static long Real_Size(long size)
{
    return size > 0 ? std::min(size, LargestFontSize) : DefaultFontSize;
}

static TextFont Find_Open_Font(long fontId, long size, bool bold, bool italic)
{
    OpenFont wanted{fontId, Real_Size(size), bold, italic, nullptr};
    auto const known =
        std::ranges::find_if(cache.open, [&](OpenFont const& font) { return font.Is(wanted); });
    if (known != cache.open.end()) return {known->font.get(), known->size};
    if (cache.open.size() >= MostOpenFonts) cache.open.clear();
    wanted.font = Open_Face(Find_Face(fontId), wanted.size, bold, italic);
    cache.open.push_back(std::move(wanted));
    return {cache.open.back().font.get(), cache.open.back().size};
}

static long Style_Size(uint32_t number)
{
    ZVStyle const* const style = ZVEnv ? ZVEnv->style : nullptr;
    if (!style) return 0;
    return number == ZV_FONT_SMALL ? style->smallFontSize : style->fontSize;
}

static TextFont Find_Standard_Font(uint32_t number)
{
    bool const bold = number == ZV_FONT_BOLD || number == ZV_FONT_BOLD_ITALIC;
    bool const italic = number == ZV_FONT_ITALIC || number == ZV_FONT_BOLD_ITALIC;
    return Find_Open_Font(0, Style_Size(number), bold, italic);
}

TextFont Find_Font(FontChoice const& choice)
{
    ZVFont const* const font = choice.number == ZV_FONT_EXPLICIT ? choice.object : nullptr;
    if (!font) return Find_Standard_Font(choice.number);
    if (font->TextStyle) return {font->TextStyle->font.get(), font->Size};
    // A font that is only created is a face in the size of its record.
    return Find_Open_Font(font->FontId, font->Size > 0 ? font->Size : Style_Size(ZV_FONT_INTERFACE),
                          font->Flags & ZV_FONT_FLAG_BOLD, font->Flags & ZV_FONT_FLAG_ITALIC);
}

TextFont Context_Font(ZVDrawInfo const* draw)
{
    return Find_Font(draw ? FontChoice{draw->Font, draw->FontObject} : FontChoice{});
}

// ---- measures ---------------------------------------------------------------------------------------------

static long Round(double pixels)
{
    return std::lround(pixels);
}

static long Character_Count(std::string_view utf8)
{
    return std::ranges::count_if(utf8, [](char byte) { return (byte & 0xC0) != 0x80; });
}

long TextFont::Ascent() const
{
    return Round(font_ ? font_->Metrics().ascent : static_cast<double>(size_) * BareAscent);
}

long TextFont::Descent() const
{
    if (font_) return Round(font_->Metrics().descent);
    return Round(static_cast<double>(size_) * BareHeight) - Ascent();
}

long TextFont::Leading() const
{
    return font_ ? Round(font_->Metrics().leading) : 0;
}

HostTextRun const* TextFont::Run(std::string_view text, HostDirection direction) const
{
    return font_ ? &font_->Shape(text, direction) : nullptr;
}

long TextFont::Width(std::string_view text, HostDirection direction) const
{
    if (font_) return font_->Shape(text, direction).width;
    return Round(static_cast<double>(Character_Count(text) * size_) * BareWidth);
}

void TextFont::Draw(HostSurface& surface, std::string_view text, int x, int baseLine, uint32_t color,
                    HostDirection direction) const
{
    if (!font_) return;
    for (HostTextRun::Glyph const& glyph : font_->Shape(text, direction).glyphs)
        surface.Blend(font_->Glyph_Image(glyph.index), x + glyph.x, baseLine + glyph.y, color);
}

long Text_Width(char const* text)
{
    return text ? Guarded([=] { return Find_Font({}).Width(text); }) : 0;
}

long Text_Height(char const*)
{
    return Guarded([] {
        TextFont const font = Find_Font({});
        return font.Ascent() + font.Descent();
    });
}
