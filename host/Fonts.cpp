// The font service: fontconfig finds the face, FreeType reads it, HarfBuzz shapes text.
#include "Fonts.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include <hb-ft.h>
#include <hb.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// Deletes by one function of a C library.
template <auto function> struct CallDelete {
    template <typename T> void operator()(T* object) const { function(object); }
};
template <typename T, auto function> using Handle = std::unique_ptr<T, CallDelete<function>>;

using FontConfig = Handle<FcConfig, FcConfigDestroy>;
using FontPattern = Handle<FcPattern, FcPatternDestroy>;
using FontFace = Handle<FT_FaceRec_, FT_Done_Face>;
using ShapingFont = Handle<hb_font_t, hb_font_destroy>;
using ShapingBuffer = Handle<hb_buffer_t, hb_buffer_destroy>;
using FontLibrary = std::shared_ptr<FT_LibraryRec_>;

constexpr double FixedOne = 64.0;  // lengths are in 26.6 fixed point

class FreeTypeFont : public HostFont {
public:
    /// The face has its size set.
    FreeTypeFont(FontLibrary library, FontFace face, double pixelSize)
        : library_(std::move(library)), face_(std::move(face)), pixelSize_(pixelSize),
          font_(hb_ft_font_create_referenced(face_.get())), buffer_(hb_buffer_create())
    {
        hb_ft_font_set_load_flags(font_.get(), FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
    }

    HostFontMetrics Metrics() const override
    {
        // From the design units: FreeType's own scaled values are rounded to whole pixels.
        double const scale = pixelSize_ / face_->units_per_EM;
        return {
            .ascent = face_->ascender * scale,
            .descent = -face_->descender * scale,
            .leading = (face_->height - face_->ascender + face_->descender) * scale,
            .maxAdvance = face_->max_advance_width * scale,
        };
    }

    double Text_Width(std::string_view text) override
    {
        hb_buffer_clear_contents(buffer_.get());
        hb_buffer_add_utf8(buffer_.get(), text.data(), static_cast<int>(text.size()), 0, -1);
        hb_buffer_guess_segment_properties(buffer_.get());
        hb_shape(font_.get(), buffer_.get(), nullptr, 0);
        unsigned count = 0;
        hb_glyph_position_t const* positions = hb_buffer_get_glyph_positions(buffer_.get(), &count);
        double width = 0;
        for (unsigned i = 0; i < count; ++i)
            width += positions[i].x_advance;
        return width / FixedOne;
    }

private:
    FontLibrary library_;
    FontFace face_;
    double pixelSize_;
    ShapingFont font_;
    ShapingBuffer buffer_;
};

class FontConfigFonts : public HostFonts {
public:
    FontConfigFonts(FontConfig config, FontLibrary library)
        : config_(std::move(config)), library_(std::move(library))
    {
    }

    std::unique_ptr<HostFont> Open(HostFontRequest const& request) override
    {
        double const pixelSize = std::clamp(request.pixelSize, 1.0, 1000.0);
        FontPattern const match = Find_Face(request, pixelSize);
        FcChar8* file = nullptr;
        int index = 0;
        if (!match || FcPatternGetString(match.get(), FC_FILE, 0, &file) != FcResultMatch) return nullptr;
        FcPatternGetInteger(match.get(), FC_INDEX, 0, &index);

        FT_Face opened = nullptr;
        if (FT_New_Face(library_.get(), reinterpret_cast<char*>(file), index, &opened) != 0) return nullptr;
        FontFace face{opened};
        auto const height = static_cast<FT_F26Dot6>(std::lround(pixelSize * FixedOne));
        if (!FT_IS_SCALABLE(opened) || opened->units_per_EM == 0) return nullptr;
        if (FT_Set_Char_Size(opened, 0, height, 72, 72) != 0) return nullptr;
        return std::make_unique<FreeTypeFont>(library_, std::move(face), pixelSize);
    }

private:
    /// The description of the installed face that fits best, or null.
    FontPattern Find_Face(HostFontRequest const& request, double pixelSize) const
    {
        FontPattern pattern{FcPatternCreate()};
        if (!pattern) return nullptr;
        FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<FcChar8 const*>(request.family));
        FcPatternAddDouble(pattern.get(), FC_PIXEL_SIZE, pixelSize);
        FcPatternAddInteger(pattern.get(), FC_WEIGHT, request.bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
        FcPatternAddInteger(pattern.get(), FC_SLANT, request.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
        FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
        // A named instance of a variable font is chosen by its index alone, axes would have to be set one by
        // one.
        FcPatternAddBool(pattern.get(), FC_VARIABLE, FcFalse);
        FcConfigSubstitute(config_.get(), pattern.get(), FcMatchPattern);
        FcDefaultSubstitute(pattern.get());
        FcResult result = FcResultNoMatch;
        return FontPattern{FcFontMatch(config_.get(), pattern.get(), &result)};
    }

    FontConfig config_;
    FontLibrary library_;
};

}  // namespace

std::unique_ptr<HostFonts> Make_Host_Fonts()
{
    // A configuration of our own: the current one of the process may be in use by the application, which
    // leaves nobody to say when it can go.
    FontConfig config{FcInitLoadConfigAndFonts()};
    FT_Library opened = nullptr;
    if (!config || FT_Init_FreeType(&opened) != 0) return nullptr;
    return std::make_unique<FontConfigFonts>(std::move(config), FontLibrary{opened, FT_Done_FreeType});
}
