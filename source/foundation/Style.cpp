// The style: pens with their default colours, spacing, and the sizes that follow from monitor and font.
#include "Style.h"

#include "ZVLibInternal.h"
#include "ZVPixel.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <limits>

namespace {

struct DefaultPen {
    uint32_t colour;
    bool corrected;  ///< gamma-corrected at start
};
constexpr DefaultPen defaultPens[ZV_PEN_COUNT] = {
    {0xB3B3B3, true},  {0x848484, true}, {0x000000, true}, {0xFFFFFF, true}, {0xB3B3B3, true},
    {0xEECC55, true},  {0x000000, true}, {0x666666, true}, {0xFFFFFF, true}, {0xCCCCCC, true},
    {0xE1A899, true},  {0xE1A899, true}, {0xA3A3D7, true}, {0x777777, true}, {0xEE5500, false},
    {0xFFFFFF, false}, {0xEECC55, true},
};

constexpr uint32_t lightPreset[] = {0x848484, 0x848484, 0xCCCCCC, 0xEECC55, 0x000000, 0xFFFFFF, 0xB3B3B3,
                                    0xE1A899, 0xE1A899, 0x777777, 0x000000, 0x666666, 0xFFFFFF, 0xEECC55};
constexpr uint32_t darkPreset[] = {0x383838, 0x383838, 0x414141, 0x666666, 0x000000, 0x757575, 0x333333,
                                   0x354657, 0x354657, 0x444444, 0xA5A5A5, 0x808080, 0xFFFFFF, 0xEECC55};
static_assert(std::size(lightPreset) == std::size(PresetPens));
static_assert(std::size(darkPreset) == std::size(PresetPens));

struct MonitorMetrics {
    long belowWidth;
    int32_t fontSize;
    int32_t smallFontSize;
    int16_t tabHeight;
};
constexpr MonitorMetrics monitorMetrics[] = {
    {1000, 9, 7, 15},
    {1280, 10, 9, 16},
    {1600, 12, 10, 18},
    {std::numeric_limits<long>::max(), 14, 11, 22},
};

constexpr long GadgetColumns = 14;

/// 1.8 / 2.2 as all builds must have it; a compiler's own quotient may differ in the last bit.
constexpr double GammaExponent = std::bit_cast<double>(0x3FEA2E8BA2E8BA2EULL);

}  // namespace

/// The place of a pen, or null for any other value. Pen ids are 32-bit words, however wide they come.
static uint32_t* Find_Pen(unsigned long pen)
{
    uint32_t const id = static_cast<uint32_t>(pen);
    if (!ZVEnv || id < ZV_PEN_FIRST || id > ZV_PEN_LAST) return nullptr;
    return &ZVEnv->style->pens[id - ZV_PEN_FIRST];
}

static int16_t Narrow(long value)
{
    return static_cast<int16_t>(std::clamp<long>(value, INT16_MIN, INT16_MAX));
}

void Init_Style(ZVStyle& style)
{
    for (int i = 0; i < ZV_PEN_COUNT; ++i) {
        unsigned long colour = defaultPens[i].colour;
        if (defaultPens[i].corrected) GammaCorrect(&colour);
        style.pens[i] = static_cast<uint32_t>(colour);
    }
    style.flat3D = 1;
    style.gapWide = 4;
    style.gapNormal = 2;
    style.gapExtra = 12;
    style.groupGap = 12;
    style.groupMargin = 12;
    style.paletteMargin = 12;
    style.pseudoGroupGap = 12;
    style.paletteGap = 2;
}

void Set_Metrics(ZVStyle& style, long monitorWidth, long const* fontSize)
{
    auto const metrics = std::ranges::find_if(
        monitorMetrics, [=](MonitorMetrics const& row) { return monitorWidth < row.belowWidth; });
    style.fontSize = fontSize ? static_cast<int32_t>(*fontSize) : metrics->fontSize;
    style.smallFontSize = metrics->smallFontSize;
    style.tabHeight = metrics->tabHeight;
    CalcGadgetSizes(&style.gadgetSizes, monitorWidth - 2 * style.screenMargin, GadgetColumns,
                    style.gapNormal);
    style.gadgetHeight = Narrow(Text_Height("") * 7 / 4 + 3);
}

void SetStylePenZV(unsigned long pen, unsigned long colour)
{
    if (uint32_t* place = Find_Pen(pen)) *place = static_cast<uint32_t>(GetColorZV(colour));
}

/// The low byte of a component scaled by 255; what lies outside 32 bits counts as the nearest end of their
/// range.
static uint32_t Component_Byte(double component)
{
    double const scaled = component * 255.0;
    if (!(scaled > 0.0)) return 0;  // so is what is not a number
    return static_cast<uint32_t>(std::min(scaled, 4294967295.0)) & 0xFF;
}

void SetStylePenZV(unsigned long pen, ZVFloatRGB const* colour)
{
    uint32_t* place = Find_Pen(pen);
    if (!place || !colour) return;
    *place =
        Component_Byte(colour->red) << 16 | Component_Byte(colour->green) << 8 | Component_Byte(colour->blue);
}

unsigned long GetColorZV(unsigned long colour)
{
    uint32_t const* place = Find_Pen(colour);
    return place ? *place : colour;
}

void GammaCorrect(unsigned long* colour)
{
    if (!colour) return;
    unsigned long corrected = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        double const fraction = static_cast<double>(*colour >> shift & 0xFF) / 255.0;
        auto const channel = static_cast<unsigned long>(std::pow(fraction, GammaExponent) * 255.0);
        corrected |= std::min(channel, 255UL) << shift;
    }
    *colour = corrected;
}

/// The width of two columns less their gaps, from which the sizes are made: divisible by 6, small enough for
/// the columns to fit, and at most 36 below the start; failing that, 40 below it.
static long Choose_Base(long start, long width, long columns, long gap)
{
    for (long base = start; base >= start - 36; base -= 4) {
        if (base % 6 != 0 || (start + 2 * gap) % 4 != 0) continue;
        if (width > columns * ((base + 3 * gap) / 3) + (columns - 1) * gap) return base;
    }
    return start - 40;
}

void CalcGadgetSizes(ZVGadgetSizes* sizes, long width, long columns, long gap)
{
    if (!sizes || columns < 1) return;
    width = std::min(width, 1600L);
    long const column = (width - (columns - 1) * gap) / columns;
    long const base = Choose_Base(column * 3 & ~3L, width, columns, gap);
    long const total = base + 5 * gap;
    long const size5 = (2 * total - gap) / 3;
    *sizes = {
        .size6 = Narrow(size5 + base / 6 + gap),
        .size5 = Narrow(size5),
        .size4 = Narrow((total - gap) / 2),
        .size3 = Narrow((total - 2 * gap) / 3),
        .size2 = Narrow((total - 3 * gap) / 4),
        .size1 = Narrow(base / 6),
    };
}

uint32_t const* Pen_Preset(long which)
{
    return which == 1 ? lightPreset : darkPreset;
}

void SetPenPresetZV(long which)
{
    uint32_t const* colour = Pen_Preset(which);
    for (uint32_t const pen : PresetPens)
        SetStylePenZV(pen, *colour++);
    RefreshUIZV();
}

void RefreshUIZV()
{
    if (ZVEnv) Mac_Refresh_All();
}

void SetAlwaysOnTopZV(long) {}
