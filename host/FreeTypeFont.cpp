#include "FreeTypeFont.h"

#include FT_OUTLINE_H
#include <hb-ft.h>

#include <array>
#include <cmath>
#include <utility>

static constexpr double FixedOne = 64.0;  // lengths are in 26.6 fixed point

// What is drawn again and again is the text of one interface; beyond these the caches start anew.
static constexpr std::size_t MostImageBytes = 4 << 20;
static constexpr std::size_t MostRuns = 1024;
static constexpr std::size_t LongestKeptText = 255;

/// Fonts that stand in for one: what a text mixes beyond that stays without a glyph.
static constexpr std::size_t MostSubstitutes = 32;
static constexpr std::size_t MostMissing = 1 << 16;

/// A glyph of a run is its index in its font, with the number of that font above it.
static constexpr unsigned FontShift = 16;
static constexpr uint32_t GlyphMask = 0xFFFF;

/// Slope of a made italic: 12 degrees.
static constexpr double ItalicSlope = 0.2126;

/// Width of the stroke that a made bold gains, in ems.
static constexpr double BoldGain = 1.0 / 24;

FreeTypeFont::FreeTypeFont(FontLibrary library, FontFace face, double pixelSize, FontSynthesis synthesis,
                           SubstituteFinder findSubstitute)
    : library_(std::move(library)), face_(std::move(face)), pixelSize_(pixelSize), synthesis_(synthesis),
      font_(hb_ft_font_create_referenced(face_.get())), buffer_(hb_buffer_create()),
      findSubstitute_(std::move(findSubstitute))
{
    hb_ft_font_set_load_flags(font_.get(), FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
}

HostFontMetrics FreeTypeFont::Metrics() const
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

// ---- texts ------------------------------------------------------------------------------------------------

void FreeTypeFont::Shape_Buffer(bool hasLigatures)
{
    static constexpr std::array tags = {HB_TAG('l', 'i', 'g', 'a'), HB_TAG('c', 'l', 'i', 'g')};
    std::array<hb_feature_t, tags.size()> features{};
    for (std::size_t i = 0; i < tags.size(); ++i)
        features[i] = {tags[i], 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END};
    hb_buffer_guess_segment_properties(buffer_.get());
    hb_shape(font_.get(), buffer_.get(), features.data(),
             hasLigatures ? 0U : static_cast<unsigned>(features.size()));
}

bool FreeTypeFont::Has_Character(uint32_t character) const
{
    return FT_Get_Char_Index(face_.get(), character) != 0;
}

unsigned FreeTypeFont::Font_For(uint32_t character)
{
    if (Has_Character(character) || !findSubstitute_) return 0;
    if (auto const known = fontOfMissing_.find(character); known != fontOfMissing_.end())
        return known->second;
    unsigned number = 0;
    for (unsigned i = 1; i <= substitutes_.size() && number == 0; ++i)
        if (Font_Of(i).Has_Character(character)) number = i;
    if (number == 0 && substitutes_.size() < MostSubstitutes) {
        if (auto found = findSubstitute_(character)) {
            substitutes_.push_back(std::move(found));
            number = static_cast<unsigned>(substitutes_.size());
        }
    }
    if (fontOfMissing_.size() >= MostMissing) fontOfMissing_.clear();
    return fontOfMissing_[character] = number;
}

void FreeTypeFont::Shape_Stretch(std::span<uint32_t const> characters, uint32_t mark, HostTextRun& run)
{
    hb_buffer_clear_contents(buffer_.get());
    hb_buffer_add_utf32(buffer_.get(), characters.data(), static_cast<int>(characters.size()), 0, -1);
    Shape_Buffer(true);
    unsigned count = 0;
    hb_glyph_info_t const* infos = hb_buffer_get_glyph_infos(buffer_.get(), &count);
    hb_glyph_position_t const* positions = hb_buffer_get_glyph_positions(buffer_.get(), &count);
    auto const rounded = [](hb_position_t length) {
        return static_cast<int>(std::lround(length / FixedOne));
    };
    for (unsigned i = 0; i < count; ++i) {
        run.glyphs.push_back({(infos[i].codepoint & GlyphMask) | mark,
                              run.width + rounded(positions[i].x_offset), -rounded(positions[i].y_offset)});
        run.width += rounded(positions[i].x_advance);
    }
}

/// The characters of a text; bytes that are none are the replacement character.
static std::vector<uint32_t> Characters_Of(hb_buffer_t* buffer, std::string_view text)
{
    hb_buffer_clear_contents(buffer);
    hb_buffer_add_utf8(buffer, text.data(), static_cast<int>(text.size()), 0, -1);
    unsigned count = 0;
    hb_glyph_info_t const* const infos = hb_buffer_get_glyph_infos(buffer, &count);
    std::vector<uint32_t> characters(count);
    for (unsigned i = 0; i < count; ++i)
        characters[i] = infos[i].codepoint;
    return characters;
}

/// Whether a character is drawn together with the one ahead of it.
static bool Is_Mark(uint32_t character)
{
    constexpr uint32_t zeroWidthJoiner = 0x200D;
    switch (hb_unicode_general_category(hb_unicode_funcs_get_default(), character)) {
    case HB_UNICODE_GENERAL_CATEGORY_SPACING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_ENCLOSING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK: return true;
    default: return character == zeroWidthJoiner;
    }
}

HostTextRun FreeTypeFont::Make_Run(std::string_view text)
{
    std::vector<uint32_t> const characters = Characters_Of(buffer_.get(), text);
    HostTextRun run;
    for (std::size_t start = 0; start < characters.size();) {
        unsigned const font = Font_For(characters[start]);
        std::size_t end = start + 1;
        while (end < characters.size() && (Is_Mark(characters[end]) || Font_For(characters[end]) == font))
            ++end;
        Font_Of(font).Shape_Stretch(std::span(characters).subspan(start, end - start), font << FontShift,
                                    run);
        start = end;
    }
    return run;
}

HostTextRun const& FreeTypeFont::Shape(std::string_view text)
{
    if (text.size() > LongestKeptText) return longRun_ = Make_Run(text);
    std::string const key(text);
    if (auto const known = runs_.find(key); known != runs_.end()) return known->second;
    if (runs_.size() >= MostRuns) runs_.clear();
    return runs_[key] = Make_Run(text);
}

double FreeTypeFont::Advance(std::span<uint32_t const> characters)
{
    hb_buffer_clear_contents(buffer_.get());
    hb_buffer_add_utf32(buffer_.get(), characters.data(), static_cast<int>(characters.size()), 0, -1);
    Shape_Buffer(false);
    unsigned count = 0;
    hb_glyph_position_t const* positions = hb_buffer_get_glyph_positions(buffer_.get(), &count);
    double width = 0;
    for (unsigned i = 0; i < count; ++i)
        width += positions[i].x_advance;
    return width / FixedOne;
}

// ---- glyphs -----------------------------------------------------------------------------------------------

/// @param unitsPerPixel  of the outline's coordinates
void FreeTypeFont::Apply_Synthesis(FT_Outline& outline, double unitsPerPixel) const
{
    if (synthesis_.bold) {
        auto const gain = static_cast<FT_Pos>(std::lround(pixelSize_ * BoldGain * unitsPerPixel));
        FT_Outline_EmboldenXY(&outline, gain, 0);
    }
    if (synthesis_.italic) {
        FT_Matrix const slant{0x10000, static_cast<FT_Fixed>(ItalicSlope * 0x10000), 0, 0x10000};
        FT_Outline_Transform(&outline, &slant);
    }
}

HostMask FreeTypeFont::Make_Image(uint32_t glyph)
{
    HostMask mask;
    FT_GlyphSlot const slot = face_->glyph;
    // Fitted in height alone: rows come out crisp, and the letters keep their shapes.
    if (FT_Load_Glyph(face_.get(), glyph, FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP) != 0) return mask;
    if (slot->format != FT_GLYPH_FORMAT_OUTLINE) return mask;
    Apply_Synthesis(slot->outline, FixedOne);
    if (FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL) != 0) return mask;
    FT_Bitmap const& bitmap = slot->bitmap;
    mask.left = slot->bitmap_left;
    mask.top = -slot->bitmap_top;
    mask.width = static_cast<int>(bitmap.width);
    mask.height = static_cast<int>(bitmap.rows);
    for (int y = 0; y < mask.height; ++y) {
        unsigned char const* const row = bitmap.buffer + std::ptrdiff_t{y} * bitmap.pitch;
        mask.coverage.insert(mask.coverage.end(), row, row + mask.width);
    }
    return mask;
}

HostMask const& FreeTypeFont::Glyph_Image(uint32_t glyph)
{
    if (unsigned const font = glyph >> FontShift) return Font_Of(font).Glyph_Image(glyph & GlyphMask);
    if (auto const known = images_.find(glyph); known != images_.end()) return known->second;
    if (imageBytes_ > MostImageBytes) {
        images_.clear();
        imageBytes_ = 0;
    }
    HostMask image = Make_Image(glyph);
    imageBytes_ += image.coverage.size();
    return images_[glyph] = std::move(image);
}

namespace {

/// Gathers the steps of an outline in design units, as pixels with y downwards.
class OutlineGatherer {
public:
    explicit OutlineGatherer(double scale) : scale_(scale) {}

    std::vector<HostPathStep> Gather(FT_Outline& outline)
    {
        static constexpr FT_Outline_Funcs functions = {Move_To, Line_To, Conic_To, Cubic_To, 0, 0};
        FT_Outline_Decompose(&outline, &functions, this);
        Close();
        return std::move(steps_);
    }

private:
    using Kind = HostPathStep::Kind;

    HostPoint Scaled(FT_Vector const* point) const
    {
        return {static_cast<double>(point->x) * scale_, static_cast<double>(-point->y) * scale_};
    }

    void Close()
    {
        if (!steps_.empty()) steps_.push_back({Kind::Close, {}, {}, {}});
    }

    void Add(Kind kind, HostPoint end, HostPoint first = {}, HostPoint second = {})
    {
        steps_.push_back({kind, end, first, second});
        current_ = end;
    }

    static OutlineGatherer& Self(void* self) { return *static_cast<OutlineGatherer*>(self); }

    static int Move_To(FT_Vector const* to, void* self)
    {
        Self(self).Close();
        Self(self).Add(Kind::Move, Self(self).Scaled(to));
        return 0;
    }

    static int Line_To(FT_Vector const* to, void* self)
    {
        Self(self).Add(Kind::Line, Self(self).Scaled(to));
        return 0;
    }

    /// A curve with one control point is the cubic whose two lie two thirds of the way to it.
    static int Conic_To(FT_Vector const* control, FT_Vector const* to, void* self)
    {
        HostPoint const start = Self(self).current_;
        HostPoint const middle = Self(self).Scaled(control), end = Self(self).Scaled(to);
        auto const towards = [middle](HostPoint from) {
            return HostPoint{from.x + (middle.x - from.x) * 2 / 3, from.y + (middle.y - from.y) * 2 / 3};
        };
        Self(self).Add(Kind::Curve, end, towards(start), towards(end));
        return 0;
    }

    static int Cubic_To(FT_Vector const* first, FT_Vector const* second, FT_Vector const* to, void* self)
    {
        OutlineGatherer& gatherer = Self(self);
        gatherer.Add(Kind::Curve, gatherer.Scaled(to), gatherer.Scaled(first), gatherer.Scaled(second));
        return 0;
    }

    double scale_;
    HostPoint current_{};
    std::vector<HostPathStep> steps_;
};

}  // namespace

std::vector<HostPathStep> FreeTypeFont::Outline(uint32_t character)
{
    FT_UInt const glyph = FT_Get_Char_Index(face_.get(), character);
    FT_GlyphSlot const slot = face_->glyph;
    if (FT_Load_Glyph(face_.get(), glyph, FT_LOAD_NO_SCALE) != 0) return {};
    if (slot->format != FT_GLYPH_FORMAT_OUTLINE) return {};
    double const scale = pixelSize_ / face_->units_per_EM;
    Apply_Synthesis(slot->outline, 1 / scale);
    return OutlineGatherer(scale).Gather(slot->outline);
}
