// The fonts of the machine: their list, the face that fits a family best, texts measured and shaped in it,
// and the images and outlines of glyphs. Sizes are pixels of the em square. One thread at a time uses the
// service and its fonts.
#pragma once

#include "Characters.h"
#include "Mask.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct HostFontMetrics {
    double ascent;      ///< above the base line
    double descent;     ///< below it, positive
    double leading;     ///< between the descent of a line and the ascent of the next
    double maxAdvance;  ///< of the widest glyph
};

inline constexpr double HostFontSizeLimit = 4000;

/// What a face is looked for by.
struct HostFontRequest {
    char const* family;  ///< a family name, or a generic one such as "sans"
    double pixelSize;    ///< 1 to HostFontSizeLimit; a size outside counts as the nearest inside
    bool bold = false;
    bool italic = false;
};

/// One entry of the list of fonts: a face, or a named instance of a variable one.
struct HostFontFace {
    static constexpr int NoInstance = -1;

    std::string family;
    std::string style;  ///< such as "Bold Oblique"
    std::string file;
    int index;     ///< of the face in its file
    int instance;  ///< from 0 on, or NoInstance
};

/// A text on one line as glyphs in the order in which they stand.
struct HostTextRun {
    struct Glyph {
        uint32_t index;  ///< for Glyph_Image
        int x, y;        ///< origin, whole pixels from the start of the text and down from the base line
    };
    /// Characters that are drawn together.
    struct Cluster {
        uint32_t start, end;  ///< in the bytes of the text
        int left, right;
        bool isRightToLeft;
    };
    std::vector<Glyph> glyphs;
    std::vector<Cluster> clusters;  ///< from left to right
    int width = 0;                  ///< where the next text would start
};

struct HostPoint {
    double x, y;  ///< y grows downwards from the base line
};

/// A step along an outline. A contour is a Move, lines and curves, a Close.
struct HostPathStep {
    enum class Kind { Move, Line, Curve, Close };
    Kind kind;
    HostPoint end;            ///< of all but Close
    HostPoint first, second;  ///< control points of a curve
};

/// An open font.
class HostFont {
public:
    virtual ~HostFont() = default;

    virtual HostFontMetrics Metrics() const = 0;

    /// A text for the screen, with kerning and ligatures. Each advance is a whole number of pixels, so that
    /// equal letters stand at equal distances. Characters that the font does not have come from other
    /// installed fonts. Valid until the next call.
    /// @param text       UTF-8; bytes that are none count as the replacement character
    /// @param direction  of the line as a whole; parts that run the other way stand in it as they are read
    virtual HostTextRun const& Shape(std::string_view text, HostDirection direction) = 0;
    HostTextRun const& Shape(std::string_view text) { return Shape(text, HostDirection::Neutral); }

    /// The image of a glyph, antialiased and fitted to whole rows. Valid until the next call.
    virtual HostMask const& Glyph_Image(uint32_t glyph) = 0;

    /// Advance of characters that stand next to each other, with kerning, without ligatures and without
    /// hinting, so that it grows evenly with the size.
    virtual double Advance(std::span<uint32_t const> characters) = 0;

    /// The outline of a character; empty for a blank one.
    virtual std::vector<HostPathStep> Outline(uint32_t character) = 0;
};

/// The installed fonts as they are when the service is made. Open fonts may outlive it.
class HostFonts {
public:
    virtual ~HostFonts() = default;

    /// The face nearest to the request among all outline fonts, whatever its family. A style that it does not
    /// have is made out of it.
    /// @return  null when there is none or it cannot be read
    virtual std::unique_ptr<HostFont> Open(HostFontRequest const& request) = 0;

    /// The outline fonts, each style of a family once: by family, regardless of case, and within one from the
    /// regular face to those that differ most from it. Valid for the life of the service.
    virtual std::span<HostFontFace const> Faces() = 0;

    /// A face of the list, or its bold or italic sister where the family has one.
    virtual std::unique_ptr<HostFont> Open(HostFontFace const& face, double pixelSize, bool bold,
                                           bool italic) = 0;
};

/// @return  null when the font libraries cannot be brought up
std::unique_ptr<HostFonts> Make_Host_Fonts();
