#include "FreeTypeFont.h"

#include FT_OUTLINE_H
#include <hb-ft.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
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
    if (font_.get() == hb_font_get_empty()) throw std::bad_alloc();
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
    bool const isShaped = hb_shape_full(font_.get(), buffer_.get(), features.data(),
                                        hasLigatures ? 0U : static_cast<unsigned>(features.size()), nullptr);
    if (!isShaped || !hb_buffer_allocation_successful(buffer_.get())) throw std::bad_alloc();
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

// ---- lines ------------------------------------------------------------------------------------------------

/// The characters of a line; bytes that are none are the replacement character.
struct FreeTypeFont::LineText {
    LineText(hb_buffer_t* buffer, std::string_view text);

    std::vector<uint32_t> characters;
    std::vector<uint32_t> offsets;  ///< in its bytes, and where it ends
};

FreeTypeFont::LineText::LineText(hb_buffer_t* buffer, std::string_view text)
{
    hb_buffer_clear_contents(buffer);
    hb_buffer_add_utf8(buffer, text.data(), static_cast<int>(text.size()), 0, -1);
    if (!hb_buffer_allocation_successful(buffer)) throw std::bad_alloc();
    unsigned count = 0;
    hb_glyph_info_t const* const infos = hb_buffer_get_glyph_infos(buffer, &count);
    characters.reserve(count);
    offsets.reserve(count + 1);
    for (unsigned i = 0; i < count; ++i) {
        characters.push_back(infos[i].codepoint);
        offsets.push_back(infos[i].cluster);
    }
    offsets.push_back(static_cast<uint32_t>(text.size()));
}

void FreeTypeFont::Shape_Stretch(LineText const& line, Stretch const& stretch, bool isRightToLeft,
                                 HostTextRun& run)
{
    hb_buffer_clear_contents(buffer_.get());
    hb_buffer_add_utf32(buffer_.get(), line.characters.data(), static_cast<int>(line.characters.size()),
                        static_cast<unsigned>(stretch.start), static_cast<int>(stretch.end - stretch.start));
    hb_buffer_set_direction(buffer_.get(), isRightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    Shape_Buffer(true);
    unsigned count = 0;
    hb_glyph_info_t const* infos = hb_buffer_get_glyph_infos(buffer_.get(), &count);
    hb_glyph_position_t const* positions = hb_buffer_get_glyph_positions(buffer_.get(), &count);
    auto const rounded = [](hb_position_t length) {
        return static_cast<int>(std::lround(length / FixedOne));
    };
    std::size_t const first = run.clusters.size();
    for (unsigned i = 0; i < count; ++i) {
        int const left = run.width;
        run.glyphs.push_back({(infos[i].codepoint & GlyphMask) | stretch.font << FontShift,
                              left + rounded(positions[i].x_offset), -rounded(positions[i].y_offset)});
        run.width += rounded(positions[i].x_advance);
        uint32_t const start = line.offsets[infos[i].cluster];
        if (run.clusters.size() > first && run.clusters.back().start == start)
            run.clusters.back().right = run.width;
        else
            run.clusters.push_back({start, 0, left, run.width, isRightToLeft});
    }
    // A cluster ends where the next one begins, which stands on its left when they run from right to left.
    std::span const made = std::span(run.clusters).subspan(first);
    for (std::size_t i = 0; i < made.size(); ++i) {
        std::size_t const next = isRightToLeft ? i - 1 : i + 1;
        made[i].end = next < made.size() ? made[next].start : line.offsets[stretch.end];
    }
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

static bool Has_Script(hb_script_t script)
{
    return script != HB_SCRIPT_COMMON && script != HB_SCRIPT_INHERITED && script != HB_SCRIPT_UNKNOWN;
}

/// The font and the script that a part of a line begins with, as far as they go.
FreeTypeFont::Stretch FreeTypeFont::Stretch_From(std::span<uint32_t const> characters, std::size_t start,
                                                 std::size_t end)
{
    unsigned const font = Font_For(characters[start]);
    hb_script_t script = HB_SCRIPT_COMMON;
    std::size_t at = start;
    for (; at < end; ++at) {
        if (at > start && Is_Mark(characters[at])) continue;
        hb_script_t const own = hb_unicode_script(hb_unicode_funcs_get_default(), characters[at]);
        bool const isOther = Has_Script(script) && Has_Script(own) && own != script;
        if (isOther || (at > start && Font_For(characters[at]) != font)) break;
        if (Has_Script(own)) script = own;
    }
    return {start, at, font};
}

void FreeTypeFont::Add_Part(LineText const& line, DirectionRun const& part, HostTextRun& run)
{
    std::vector<Stretch> stretches;
    for (std::size_t at = part.start; at < part.end; at = stretches.back().end)
        stretches.push_back(Stretch_From(line.characters, at, part.end));
    if (part.isRightToLeft) std::ranges::reverse(stretches);
    for (Stretch const& stretch : stretches)
        Font_Of(stretch.font).Shape_Stretch(line, stretch, part.isRightToLeft, run);
}

HostTextRun FreeTypeFont::Make_Run(std::string_view text, HostDirection direction)
{
    LineText const line(buffer_.get(), text);
    HostTextRun run;
    for (DirectionRun const& part : Direction_Runs(line.characters, direction))
        Add_Part(line, part, run);
    return run;
}

HostTextRun const& FreeTypeFont::Shape(std::string_view text, HostDirection direction)
{
    if (text.size() > LongestKeptText) return longRun_ = Make_Run(text, direction);
    auto& runs = runs_[static_cast<std::size_t>(direction)];
    std::string const key(text);
    if (auto const known = runs.find(key); known != runs.end()) return known->second;
    if (runs.size() >= MostRuns) runs.clear();
    return runs.emplace(key, Make_Run(text, direction)).first->second;
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

/// Throws when it is for want of memory: images are kept, and an empty one must not be.
static bool Fails(FT_Error error)
{
    if (error == FT_Err_Out_Of_Memory) throw std::bad_alloc();
    return error != 0;
}

HostMask FreeTypeFont::Make_Image(uint32_t glyph)
{
    HostMask mask;
    FT_GlyphSlot const slot = face_->glyph;
    // Fitted in height alone: rows come out crisp, and the letters keep their shapes.
    if (Fails(FT_Load_Glyph(face_.get(), glyph, FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP))) return mask;
    if (slot->format != FT_GLYPH_FORMAT_OUTLINE) return mask;
    Apply_Synthesis(slot->outline, FixedOne);
    if (Fails(FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL))) return mask;
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
