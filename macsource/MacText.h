// The fonts of the interface: opened once for each size and style, for measures and for drawing alike.
#pragma once

#include "ZVDraw.h"
#include "host/Fonts.h"
#include "host/Surface.h"

#include <array>
#include <memory>
#include <string_view>

/// A font at a size, with measures of its own on a machine without fonts, where no text is drawn. Good until
/// another font is asked for.
class TextFont {
public:
    TextFont(HostFont* font, long size) : font_(font), size_(size) {}

    long Ascent() const;
    long Descent() const;
    long Leading() const;  ///< Between the descent of a line and the ascent of the next.
    long Width(std::string_view text, HostDirection direction = HostDirection::Neutral) const;
    void Draw(HostSurface& surface, std::string_view text, int x, int baseLine, uint32_t color,
              HostDirection direction = HostDirection::Neutral) const;
    HostTextRun const* Run(std::string_view text, HostDirection direction) const;  ///< Or null.

private:
    HostFont* font_;  ///< or null
    long size_;
};

/// What names a font in a context and in a port.
struct FontChoice {
    uint32_t number = ZV_FONT_INTERFACE;  ///< ZVStandardFont
    ZVFont* object = nullptr;             ///< of ZV_FONT_EXPLICIT
};

TextFont Find_Font(FontChoice const& choice);

/// The font of a context, or the interface font for null.
TextFont Context_Font(ZVDrawInfo const* draw);

/// As much of a UTF-8 text as is drawn in one go, 255 bytes, without a part of a character at its end.
std::string_view Drawn_Part(std::string_view text);

/// What of a text is drawn in a width: all that goes in one go, or less with an ellipsis, as ShortenStringZV
/// makes it.
class FittedText {
public:
    FittedText(FontChoice const& choice, char const* text, int width);
    FittedText(FittedText const&) = delete;
    FittedText& operator=(FittedText const&) = delete;

    std::string_view Text() const { return text_; }

private:
    std::array<char, 264> shortened_;  ///< room for the longest text and its ellipsis
    std::string_view text_;
};

/// The machine's fonts; null when there is no font library to be had.
HostFonts* Open_Fonts();

/// The face with an id as in ZVFont; null for 0 and for an id of none.
HostFontFace const* Find_Face(long fontId);

/// A face at a size, the interface's family when it is null. Null when it cannot be read.
std::unique_ptr<HostFont> Open_Face(HostFontFace const* face, long size, bool bold, bool italic);

/// Closes what was opened here. The next measure opens it again.
void Close_Fonts();
