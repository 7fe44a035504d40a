// The fonts of the machine: finding the face that fits a family best, and measuring text in it. Sizes are
// pixels of the em square. One thread at a time uses the service and its fonts.
#pragma once

#include <memory>
#include <string_view>

struct HostFontMetrics {
    double ascent;      ///< above the base line
    double descent;     ///< below it, positive
    double leading;     ///< between the descent of a line and the ascent of the next
    double maxAdvance;  ///< of the widest glyph
};

/// What a face is looked for by.
struct HostFontRequest {
    char const* family;  ///< a family name, or a generic one such as "sans"
    double pixelSize;    ///< 1 to 1000; a size outside counts as the nearest inside
    bool bold = false;
    bool italic = false;
};

/// An open font.
class HostFont {
public:
    virtual ~HostFont() = default;

    virtual HostFontMetrics Metrics() const = 0;

    /// Advance of a text on one line with its kerning and ligatures, without hinting, so that widths grow
    /// evenly with the size.
    /// @param text  UTF-8; bytes that are none count as the replacement character
    virtual double Text_Width(std::string_view text) = 0;
};

/// The installed fonts as they are when the service is made. Open fonts may outlive it.
class HostFonts {
public:
    virtual ~HostFonts() = default;

    /// The face nearest to the request among all outline fonts, whatever its family.
    /// @return  null when there is none or it cannot be read
    virtual std::unique_ptr<HostFont> Open(HostFontRequest const& request) = 0;
};

/// @return  null when the font libraries cannot be brought up
std::unique_ptr<HostFonts> Make_Host_Fonts();
