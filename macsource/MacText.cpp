// Measures of texts in the interface font.
#include "MacText.h"

#include "ZVLibInternal.h"
#include "host/Fonts.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <string_view>

static constexpr long DefaultFontSize = 12;
static constexpr long LargestFontSize = 1000;

/// A line's height and a character's width, in ems, on a machine without any font.
static constexpr double BareHeight = 1.2;
static constexpr double BareWidth = 0.5;

namespace {
/// The interface font at the size that was measured last.
struct InterfaceFont {
    std::unique_ptr<HostFonts> fonts;
    std::unique_ptr<HostFont> font;  ///< null also when the machine has no font of that size
    long size = 0;                   ///< 0 before the first measure
};
}  // namespace

static InterfaceFont interfaceFont;

/// Points and pixels are the same at the interface's scale.
static long Font_Size()
{
    long const size = ZVEnv ? ZVEnv->style->fontSize : 0;
    return size > 0 ? std::min(size, LargestFontSize) : DefaultFontSize;
}

/// The interface font at that size, or null on a machine without fonts.
static HostFont* Open_Interface_Font(long size)
{
    if (interfaceFont.size == size) return interfaceFont.font.get();
    if (!interfaceFont.fonts) interfaceFont.fonts = Make_Host_Fonts();
    interfaceFont.font.reset();
    if (interfaceFont.fonts)
        interfaceFont.font =
            interfaceFont.fonts->Open({.family = "sans", .pixelSize = static_cast<double>(size)});
    interfaceFont.size = size;
    return interfaceFont.font.get();
}

static long Round_Up(double pixels)
{
    return static_cast<long>(std::ceil(pixels));
}

static long Character_Count(std::string_view utf8)
{
    return std::ranges::count_if(utf8, [](char byte) { return (byte & 0xC0) != 0x80; });
}

long Text_Width(char const* text)
{
    if (!text) return 0;
    long const size = Font_Size();
    if (HostFont* font = Open_Interface_Font(size)) return Round_Up(font->Text_Width(text));
    return Round_Up(static_cast<double>(Character_Count(text) * size) * BareWidth);
}

long Text_Height(char const*)
{
    long const size = Font_Size();
    HostFont const* font = Open_Interface_Font(size);
    if (!font) return Round_Up(static_cast<double>(size) * BareHeight);
    HostFontMetrics const metrics = font->Metrics();
    return Round_Up(metrics.ascent) + Round_Up(metrics.descent);
}

void Close_Fonts()
{
    interfaceFont = {};
}
