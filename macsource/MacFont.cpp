// Fonts opened at a size: measures, advances, kerning and outlines of characters.
#include "MacFont.h"

#include "MacText.h"
#include "ZVLibInternal.h"
#include "foundation/Guard.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

static constexpr double FixedOne = 65536.0;

// ---- opening ----------------------------------------------------------------------------------------------

static ZVFontStyle const* Find_Style_Node(ZVFont const* font)
{
    if (font->Style < ZV_FONT_STYLE_FIRST_NODE) return nullptr;
    return reinterpret_cast<ZVFontStyle const*>(
        FindNodeID(&font->Styles, static_cast<uint32_t>(font->Style)));
}

static int32_t To_Fixed(double points)
{
    constexpr double limit = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::lround(std::clamp(points * FixedOne, -limit, limit)));
}

long OpenFontZV(ZVFont* font, ZVFontStyleTypes style, long size, long widthHint, long heightHint)
{
    if (!font) return 0;
    CloseFontZV(font);
    if (size < 1 || size > static_cast<long>(HostFontSizeLimit)) return 0;
    font->Style = style;
    font->Size = static_cast<int32_t>(size);
    font->WidthHint = static_cast<int16_t>(widthHint);
    font->HeightHint = static_cast<int16_t>(heightHint);

    ZVFontStyle const* const node = Find_Style_Node(font);
    if (node) {
        font->FontId = node->FontId;
        font->Instance = node->Instance;
    }
    bool const canBeStyled = font->Instance == ZV_FONT_NO_INSTANCE;
    auto const has = [=](int32_t one, uint32_t flag) {
        bool const isAsked = style == one || style == ZV_FONT_STYLE_BOLD_ITALIC || (font->Flags & flag);
        return canBeStyled && !node && isAsked;
    };
    std::unique_ptr<HostFont> opened = Guarded([&] {
        return Open_Face(Find_Face(font->FontId), size, has(ZV_FONT_STYLE_BOLD, ZV_FONT_FLAG_BOLD),
                         has(ZV_FONT_STYLE_ITALIC, ZV_FONT_FLAG_ITALIC));
    });
    if (!opened) return 0;
    HostFontMetrics const metrics = opened->Metrics();
    font->TextStyle = new (std::nothrow) ZVTextStyle{std::move(opened)};
    if (!font->TextStyle) {
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
    font->ScaleX = font->ScaleY = 1.0F;
    font->Metrics = {To_Fixed(metrics.ascent), To_Fixed(metrics.descent), To_Fixed(metrics.leading),
                     To_Fixed(metrics.maxAdvance)};
    font->Encoding = ZV_FONT_ENCODING_UNICODE;
    font->Flags |= ZV_FONT_FLAG_OPEN;
    return 1;
}

void CloseFontZV(ZVFont* font)
{
    if (!font) return;
    font->Flags &= ~ZV_FONT_FLAG_OPEN;
    delete font->TextStyle;
    font->TextStyle = nullptr;
}

/// The open face, or null.
static HostFont* Opened(ZVFont const* font)
{
    bool const isOpen = font && (font->Flags & ZV_FONT_FLAG_OPEN) && font->TextStyle;
    return isOpen ? font->TextStyle->font.get() : nullptr;
}

// ---- measures ---------------------------------------------------------------------------------------------

void GetFontMetricsZV(ZVFont const* font, ZVFontMetrics* metrics)
{
    if (!Opened(font) || !metrics) return;
    auto const points = [](int64_t fixed) { return static_cast<double>(fixed) / FixedOne; };
    ZVFontRecord const& record = font->Metrics;
    metrics->Height = points(int64_t{record.ascent} + record.descent + record.leading);
    metrics->Ascent = points(record.ascent);
    metrics->Descent = points(record.descent);
    metrics->MaxAdvance = points(record.widestAdvance);
}

/// Texts run along a line, so there is no advance in y.
static void Store_Advance(double advance, double* x, double* y)
{
    if (x) *x = advance;
    if (y) *y = 0;
}

void GetCursorAdvanceZV(unsigned long character, ZVFont* font, double* x, double* y)
{
    HostFont* const face = Opened(font);
    std::array const one{static_cast<uint32_t>(character)};
    Store_Advance(face ? face->Advance(one) : 0, x, y);
}

void GetKernZV(ZVFont* font, unsigned long first, unsigned long second, double* x, double* y)
{
    HostFont* const face = Opened(font);
    std::array const pair{static_cast<uint32_t>(first), static_cast<uint32_t>(second)};
    auto const advance = [face](std::span<uint32_t const> characters) { return face->Advance(characters); };
    Store_Advance(
        face ? advance(pair) - (advance(std::span(pair).first(1)) + advance(std::span(pair).last(1))) : 0, x,
        y);
}

long GetCurrentCharSetZV()
{
    return 0;
}

// ---- outlines ---------------------------------------------------------------------------------------------

namespace {

/// Writes the commands of an outline.
class OutlineWriter {
public:
    OutlineWriter(double x, double y) : x_(x), y_(y) {}

    void Add(HostPathStep const& step, bool isClosing)
    {
        switch (step.kind) {
        case HostPathStep::Kind::Move: Add_Point(ZV_OUTLINE_MOVE, step.end); break;
        case HostPathStep::Kind::Line: Add_Point(ZV_OUTLINE_LINE, step.end); break;
        case HostPathStep::Kind::Curve:
            Add_Point(ZV_OUTLINE_CURVE, step.end);
            Add_Direction(current_, step.first);
            Add_Direction(step.second, step.end);
            break;
        case HostPathStep::Kind::Close:
            if (isClosing) words_.push_back(ZV_OUTLINE_CLOSE);
            return;
        }
        current_ = step.end;
    }

    /// The commands so far and the end, as a block of FreeMemZV.
    float* Finish()
    {
        words_.push_back(ZV_OUTLINE_END);
        std::size_t const bytes = words_.size() * sizeof(float);
        return static_cast<float*>(std::memcpy(AllocMemZV(bytes, 0), words_.data(), bytes));
    }

private:
    void Add_Point(float command, HostPoint point)
    {
        words_.insert(words_.end(),
                      {command, static_cast<float>(point.x + x_), static_cast<float>(point.y + y_)});
    }

    void Add_Direction(HostPoint from, HostPoint to)
    {
        words_.insert(words_.end(),
                      {static_cast<float>(3 * (to.x - from.x)), static_cast<float>(3 * (to.y - from.y))});
    }

    double x_, y_;
    HostPoint current_{};
    std::vector<float> words_;
};

}  // namespace

static float* Make_Outline(unsigned long character, ZVFont* font, double x, double y, bool isClosing)
{
    HostFont* const face = Opened(font);
    if (!face) return nullptr;
    OutlineWriter writer(x, y);
    for (HostPathStep const& step : face->Outline(static_cast<uint32_t>(character)))
        writer.Add(step, isClosing);
    return writer.Finish();
}

float* GetFontOutlineZV(unsigned long character, ZVFont* font, double x, double y)
{
    return Make_Outline(character, font, x, y, true);
}

float* ATSUI_GetOutline(unsigned long character, ZVFont* font, double x, double y)
{
    return Make_Outline(character, font, x, y, false);
}
