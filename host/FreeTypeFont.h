// An open font: FreeType reads it, HarfBuzz shapes text in it.
#pragma once

#include "CallDelete.h"
#include "Directions.h"
#include "Fonts.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include <hb.h>

#include <array>
#include <functional>
#include <unordered_map>

using FontLibrary = std::shared_ptr<FT_LibraryRec_>;
using FontFace = Handle<FT_FaceRec_, FT_Done_Face>;
using ShapingFont = Handle<hb_font_t, hb_font_destroy>;
using ShapingBuffer = Handle<hb_buffer_t, hb_buffer_destroy>;

/// Styles that the face does not have and that are made out of its outlines.
struct FontSynthesis {
    bool bold = false;
    bool italic = false;
};

class FreeTypeFont;

/// Opens a font that has a character, in a size and style; null when there is none.
using SubstituteFinder = std::function<std::unique_ptr<FreeTypeFont>(uint32_t character)>;

class FreeTypeFont : public HostFont {
public:
    /// The face has its size set and is scalable.
    /// @param findSubstitute  asked for a character that the face does not have; may be empty
    FreeTypeFont(FontLibrary library, FontFace face, double pixelSize, FontSynthesis synthesis,
                 SubstituteFinder findSubstitute);

    bool Has_Character(uint32_t character) const;

    HostFontMetrics Metrics() const override;
    using HostFont::Shape;
    HostTextRun const& Shape(std::string_view text, HostDirection direction) override;
    HostMask const& Glyph_Image(uint32_t glyph) override;
    double Advance(std::span<uint32_t const> characters) override;
    std::vector<HostPathStep> Outline(uint32_t character) override;

private:
    struct LineText;

    /// Part of a line that one font draws, in one script and direction.
    struct Stretch {
        std::size_t start, end;  ///< in the characters of the line
        unsigned font;
    };

    /// Fills the buffer with the glyphs of what it holds as text.
    void Shape_Buffer(bool hasLigatures);
    HostTextRun Make_Run(std::string_view text, HostDirection direction);
    Stretch Stretch_From(std::span<uint32_t const> characters, std::size_t start, std::size_t end);
    void Add_Part(LineText const& line, DirectionRun const& part, HostTextRun& run);

    /// Adds the glyphs of a stretch that this font draws, each with a mark of the font.
    void Shape_Stretch(LineText const& line, Stretch const& stretch, bool isRightToLeft, HostTextRun& run);

    /// The font that draws a character: 0 is this one, others count the substitutes from 1.
    unsigned Font_For(uint32_t character);
    FreeTypeFont& Font_Of(unsigned number) { return number == 0 ? *this : *substitutes_[number - 1]; }
    HostMask Make_Image(uint32_t glyph);
    void Apply_Synthesis(FT_Outline& outline, double unitsPerPixel) const;

    FontLibrary library_;
    FontFace face_;
    double pixelSize_;
    FontSynthesis synthesis_;
    ShapingFont font_;
    ShapingBuffer buffer_;
    std::unordered_map<uint32_t, HostMask> images_;
    std::size_t imageBytes_ = 0;
    std::array<std::unordered_map<std::string, HostTextRun>, 3> runs_;  // by HostDirection
    HostTextRun longRun_;  ///< of the last text that was too long to be kept

    SubstituteFinder findSubstitute_;
    std::vector<std::unique_ptr<FreeTypeFont>> substitutes_;
    std::unordered_map<uint32_t, unsigned> fontOfMissing_;  // by character
};
