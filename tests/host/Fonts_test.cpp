// Characters that a font does not have are drawn in another one.
#include "host/Fonts.h"

#include <gtest/gtest.h>

namespace {

constexpr double Size = 24;

std::unique_ptr<HostFont> Open(char const* family, bool bold = false, bool italic = false)
{
    static std::unique_ptr<HostFonts> const fonts = Make_Host_Fonts();
    return fonts->Open({family, Size, bold, italic});
}

/// Images of a text's glyphs, from left to right.
std::vector<std::vector<unsigned char>> Images(HostFont& font, char const* text)
{
    std::vector<std::vector<unsigned char>> images;
    HostTextRun const run = font.Shape(text);
    for (HostTextRun::Glyph const& glyph : run.glyphs)
        images.push_back(font.Glyph_Image(glyph.index).coverage);
    return images;
}

TEST(Fonts, WhatAFontLacksComesFromAnother)
{
    std::unique_ptr<HostFont> const serif = Open("DejaVu Serif"), sans = Open("DejaVu Sans");
    ASSERT_TRUE(serif && sans);
    // Arabic letters, which only the face without serifs has.
    auto const mixed = Images(*serif, "a\u0628\u062Fz"), letters = Images(*sans, "\u0628\u062F");
    ASSERT_EQ(letters.size(), 2U);
    ASSERT_EQ(mixed.size(), 4U);
    EXPECT_EQ(mixed[0], Images(*serif, "a")[0]);
    EXPECT_EQ(mixed[1], letters[0]);
    EXPECT_EQ(mixed[2], letters[1]);
    EXPECT_EQ(mixed[3], Images(*serif, "z")[0]);
    EXPECT_EQ(serif->Shape("a\u0628\u062Fz").width,
              serif->Shape("a").width + sans->Shape("\u0628\u062F").width + serif->Shape("z").width);
}

TEST(Fonts, ALineStandsAsItIsRead)
{
    struct OrderCase {
        char const* why;
        HostDirection direction;
        char const *text, *shown;  ///< the latter character by character from the left
    };
    static constexpr OrderCase rows[] = {
        {"from right to left", HostDirection::Neutral, "\u05D0\u05D1", "\u05D1\u05D0"},
        {"within a text from left to right", HostDirection::Neutral, "a\u05D0\u05D1b", "a\u05D1\u05D0b"},
        {"numbers keep their digits in order", HostDirection::Neutral, "\u05D012", "12\u05D0"},
        {"brackets open to the other side", HostDirection::Neutral, "\u05D0(a", "a)\u05D0"},
        {"a point ends the line at its left", HostDirection::RightToLeft, "ab.", ".ab"},
        {"or at its right", HostDirection::LeftToRight, "\u05D0.", "\u05D0."},
    };
    std::unique_ptr<HostFont> const font = Open("DejaVu Sans");
    ASSERT_TRUE(font);
    for (OrderCase const& row : rows) {
        HostTextRun const run = font->Shape(row.text, row.direction);
        std::vector<uint32_t> shown, expected;
        for (HostTextRun::Glyph const& glyph : run.glyphs)
            shown.push_back(glyph.index);
        for (std::string_view rest = row.shown; !rest.empty();) {
            std::size_t const size = rest[0] & 0x80 ? 2 : 1;
            expected.push_back(font->Shape(rest.substr(0, size)).glyphs[0].index);
            rest.remove_prefix(size);
        }
        EXPECT_EQ(shown, expected) << row.why;
    }
}

TEST(Fonts, AMarkStaysWithItsLetter)
{
    std::unique_ptr<HostFont> const serif = Open("DejaVu Serif"), sans = Open("DejaVu Sans");
    ASSERT_TRUE(serif && sans);
    // An Arabic letter with a mark that both faces could draw.
    EXPECT_EQ(Images(*serif, "\u0628\u0308"), Images(*sans, "\u0628\u0308"));
}

TEST(Fonts, WhatNoFontHasIsDrawnAllTheSame)
{
    std::unique_ptr<HostFont> const font = Open("sans");
    ASSERT_TRUE(font);
    std::string text;
    for (int i = 0; i < 500; ++i)
        text += "\U000F0000\xFF";  // of private use, and no character at all
    EXPECT_EQ(font->Shape(text).glyphs.size(), 1000U);
    EXPECT_FALSE(font->Glyph_Image(font->Shape("\U000F0000").glyphs[0].index).coverage.empty());
}

TEST(Fonts, StylesThatAreNotInstalledAreMade)
{
    for (char const* family : {"DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono", "sans"}) {
        auto const plain = Images(*Open(family), "l");
        EXPECT_NE(Images(*Open(family, true), "l"), plain) << family;
        EXPECT_NE(Images(*Open(family, false, true), "l"), plain) << family;
    }
}

}  // namespace
