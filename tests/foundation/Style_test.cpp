// Pens, and the sizes that follow from the monitor.
#include "StartTest.h"

#include <cmath>
#include <limits>
#include <vector>

namespace {

using StyleTest = StartTest;

/// Worked out with 60 decimal digits from the colours of the design and the exponent 1.8 / 2.2.
constexpr uint32_t correctedPens[ZV_PEN_COUNT] = {
    0xBEBEBE, 0x949494, 0x000000, 0xFFFFFF, 0xBEBEBE, 0xF1D467, 0x000000, 0x787878, 0xFFFFFF,
    0xD4D4D4, 0xE6B5A7, 0xE6B5A7, 0xB0B0DD, 0x888888, 0xEE5500, 0xFFFFFF, 0xF1D467,
};

std::vector<int> Sizes(long width, long columns, long gap)
{
    ZVGadgetSizes s{};
    CalcGadgetSizes(&s, width, columns, gap);
    return {s.size6, s.size5, s.size4, s.size3, s.size2, s.size1};
}

TEST_F(StyleTest, DefaultPensAreCorrectedForTheDisplay)
{
    for (bool hasRoot : {false, true}) {
        Start(hasRoot ? ZV_INIT_ROOT_WINDOW : ZV_TAG_IGNORE, 0);
        for (unsigned long i = 0; i < ZV_PEN_COUNT; ++i) {
            bool const isLent = hasRoot && ZV_PEN_FIRST + i == ZV_PEN_PALETTE;
            EXPECT_EQ(GetColorZV(ZV_PEN_FIRST + i), isLent ? 0x949494 : correctedPens[i]) << i;
        }
        EXPECT_EQ(ZVEnv->hasRootTag, hasRoot);
    }
    EXPECT_EQ(GetColorZV(ZV_PEN_ROOT), 0x949494UL) << "a root window lends its colour to the palettes";
}

TEST_F(StyleTest, OnlyPenIdsNameAPen)
{
    SetStylePenZV(ZV_PEN_TEXT, 0x123456);
    EXPECT_EQ(GetColorZV(ZV_PEN_TEXT), ZV_PEN_TEXT) << "no pens without an environment";
    Start();
    std::vector<unsigned long> before;
    for (unsigned long pen = ZV_PEN_FIRST; pen <= ZV_PEN_LAST; ++pen)
        before.push_back(GetColorZV(pen));
    ZVFloatRGB const white{1, 1, 1, 1};
    for (unsigned long pen : {0xFF000012UL, 0xFF000000UL, 0x123456UL, 1UL, 0UL}) {
        SetStylePenZV(pen, 0xABCDEF);
        SetStylePenZV(pen, &white);
        EXPECT_EQ(GetColorZV(pen), pen);
    }
    for (unsigned long pen = ZV_PEN_FIRST; pen <= ZV_PEN_LAST; ++pen)
        EXPECT_EQ(GetColorZV(pen), before[pen - ZV_PEN_FIRST]);

    SetStylePenZV(0xFF000011, 0xABCDEF);
    EXPECT_EQ(GetColorZV(0xFF000011), 0xABCDEFUL);
    SetStylePenZV(0xFF000001, ZVLONGCOLOR{0xFF000011});
    EXPECT_EQ(GetColorZV(0xFF000001), 0xABCDEFUL) << "a pen as the colour stands for its colour of now";
    SetStylePenZV(0xFF000011, nullptr);
    EXPECT_EQ(GetColorZV(0xFF000011), 0xABCDEFUL);
}

TEST_F(StyleTest, FractionsOfAPenAreScaledAndCutOff)
{
    Start();
    double const infinity = std::numeric_limits<double>::infinity();
    struct {
        char const* why;
        ZVFloatRGB colour;
        unsigned long expected;
    } const rows[] = {
        {"ends", {0.0, 1.0, 0.0, 0.5}, 0x00FF00},
        {"fractions are cut off, not rounded", {0.5, 0.999, 1.0 / 255.0, 0}, 0x7FFE01},
        {"below 0 is 0", {-0.5, -1e300, -infinity, 0}, 0x000000},
        {"no number is 0", {std::nan(""), 1.0, 1.0, 0}, 0x00FFFF},
        {"beyond 1 never spills into the neighbour", {0.0, 1e300, infinity, 0}, 0x00FFFF},
        {"beyond 1 keeps the low byte", {2.0, 0.0, 257.0 / 255.0, 0}, 0xFE0001},
    };
    for (auto const& row : rows) {
        SetStylePenZV(ZV_PEN_FACE, &row.colour);
        EXPECT_EQ(GetColorZV(ZV_PEN_FACE), row.expected) << row.why;
    }
}

TEST_F(StyleTest, SixWidthsFitTheMonitor)
{
    EXPECT_EQ(Sizes(1024, 14, 2), (std::vector{178, 142, 106, 70, 52, 34}));
    EXPECT_EQ(Sizes(800, 14, 2), (std::vector{138, 110, 82, 54, 40, 26}));
    EXPECT_EQ(Sizes(1024, 10, 4), (std::vector{246, 196, 146, 96, 71, 46}));
    EXPECT_EQ(Sizes(1024, 14, 1), (std::vector{150, 120, 90, 59, 44, 29})) << "no candidate qualifies";
    EXPECT_EQ(Sizes(1600, 14, 2), (std::vector{278, 222, 166, 110, 82, 54}));
    EXPECT_EQ(Sizes(1601, 14, 2), Sizes(1600, 14, 2));
    EXPECT_EQ(Sizes(7680, 14, 2), Sizes(1600, 14, 2));
    EXPECT_EQ(Sizes(1024, 0, 2), std::vector<int>(6)) << "no columns, no sizes";
}

TEST_F(StyleTest, MetricsStepWithTheWidthOfTheMonitor)
{
    struct {
        long width;
        int fontSize, smallFontSize, tabHeight;
    } const rows[] = {
        {640, 9, 7, 15},    {999, 9, 7, 15},    {1000, 10, 9, 16},  {1279, 10, 9, 16},
        {1280, 12, 10, 18}, {1599, 12, 10, 18}, {1600, 14, 11, 22}, {5120, 14, 11, 22},
    };
    for (auto const& row : rows) {
        long const area[] = {0, 0, row.width, 1000};
        Start(ZV_INIT_MONITOR_COUNT, 1, ZV_INIT_MONITOR_1, area);
        ZVStyle const& style = *ZVEnv->style;
        EXPECT_EQ(style.fontSize, row.fontSize) << row.width;
        EXPECT_EQ(style.smallFontSize, row.smallFontSize) << row.width;
        EXPECT_EQ(style.tabHeight, row.tabHeight) << row.width;
        EXPECT_EQ(style.gadgetSizes.size4, Sizes(row.width, 14, 2)[2]) << row.width;
        EXPECT_EQ(style.gadgetHeight, Text_Height("") * 7 / 4 + 3) << row.width;
    }
}

TEST_F(StyleTest, AnOwnFontSizeSetsTheGadgetHeight)
{
    for (long size : {24L, 0L, -5L, 100000L}) {
        Start(ZV_INIT_FONT_SIZE, size);
        EXPECT_EQ(ZVEnv->style->fontSize, size);
        EXPECT_EQ(ZVEnv->style->smallFontSize, 11);
        EXPECT_GT(ZVEnv->style->gadgetHeight, size == 24 ? 24 * 7 / 4 : 0) << size;
    }
}

}  // namespace
