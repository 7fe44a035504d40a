// Text drawn and measured in the fonts of a context.
#include "DrawTestTools.h"

#include <cmath>

using namespace DrawTest;

namespace {

class DrawText : public EnvironmentTest {};

/// Rows that differ from the paper, first and last; an empty range when there are none.
std::pair<long, long> Inked_Rows(Canvas const& canvas)
{
    long first = Canvas::height, last = -1;
    for (long y = 0; y < canvas.bitmap->Height; ++y) {
        for (long x = 0; x < canvas.bitmap->Width; ++x) {
            if (canvas.At(x, y) == Pixel_Of(Canvas::paper, canvas.depth)) continue;
            first = std::min(first, y);
            last = y;
        }
    }
    return {first, last};
}

bool Are_Equal(Canvas const& a, Canvas const& b)
{
    return std::memcmp(a.bitmap->Pixels, b.bitmap->Pixels, static_cast<std::size_t>(a.bitmap->Size)) == 0;
}

/// A canvas with a text at 2, 3.
Canvas Drawn(char const* text, long depth = 32, uint32_t paper = Canvas::paper, uint32_t ink = Canvas::ink,
             long width = Canvas::width)
{
    Canvas canvas(depth, width);
    SetBGPenZV(canvas.draw.get(), paper);
    EraseRectZV(canvas.draw.get(), 0, 0, width, Canvas::height);
    SetPenZV(canvas.draw.get(), ink);
    DrawTextZV(canvas.draw.get(), text, 2, 3);
    return canvas;
}

}  // namespace

TEST_F(DrawText, CapitalsStandOnTheBaseLine)
{
    for (int size = 9; size <= 14; ++size) {
        ZVEnv->style->fontSize = size;
        Canvas const canvas = Drawn("HEX");
        long const ascent = GetTextHeightZV(canvas.draw.get(), "HEX");
        auto const [first, last] = Inked_Rows(canvas);
        EXPECT_EQ(last, 3 + ascent - 1) << size;
        EXPECT_GE(first, 3) << "the line's upper edge";
        EXPECT_GT(last - first, size / 2);
    }
}

TEST_F(DrawText, EachComponentIsBlendedByTheGlyphsCoverage)
{
    Canvas const mask = Drawn("Rag\xC3\xA9", 32, 0xFFFFFF, 0);
    for (long depth : depths) {
        Canvas const canvas = Drawn("Rag\xC3\xA9", depth);
        uint32_t const max = depth == 16 ? 31 : 255, fields = depth == 8 ? 1 : 3, bits = depth == 16 ? 5 : 8;
        int inked = 0;
        for (long y = 0; y < Canvas::height; ++y) {
            for (long x = 0; x < Canvas::width; ++x) {
                double const coverage = 255 - (mask.At(x, y) & 0xFF);
                inked += coverage > 0 ? 1 : 0;
                for (uint32_t shift = 0; shift < fields * bits; shift += bits) {
                    double const under = Pixel_Of(Canvas::paper, depth) >> shift & max;
                    double const over = Pixel_Of(Canvas::ink, depth) >> shift & max;
                    ASSERT_EQ(canvas.At(x, y) >> shift & max,
                              std::lround((over * coverage + under * (255 - coverage)) / 255));
                }
            }
        }
        EXPECT_GT(inked, 40);
    }
}

TEST_F(DrawText, TheLineIsFilledUnlessTextIsTransparent)
{
    for (long isTransparent : {0L, 1L}) {
        Canvas canvas(32);
        SetBGPenZV(canvas.draw.get(), 0x00FF00);
        SetTextTransparencyZV(canvas.draw.get(), isTransparent);
        SetPenZV(canvas.draw.get(), 0x00FF00);
        DrawTextZV(canvas.draw.get(), "x.", 2, 3);
        long const right = 2 + GetTextWidthZV(canvas.draw.get(), "x.");
        long const bottom = 3 + GetAveCharHeightZV(canvas.draw.get());
        long filled = 0;
        for (long y = 0; y < Canvas::height; ++y)
            for (long x = 0; x < Canvas::width; ++x) {
                bool const isInLine = x >= 2 && x < right && y >= 3 && y < bottom;
                bool const isFilled = canvas.At(x, y) == 0xFF00FF00;
                filled += isFilled ? 1 : 0;
                ASSERT_TRUE(isTransparent || isFilled == isInLine) << x << ',' << y;
            }
        EXPECT_EQ(filled == (right - 2) * (bottom - 3), !isTransparent);
    }
}

TEST_F(DrawText, TwoHundredAndFiftyFiveBytesAreDrawnInWholeCharacters)
{
    struct {
        std::string whole, cut;
    } const rows[] = {
        {std::string(300, 'i'), std::string(255, 'i')},
        {std::string(254, 'i') + "\xC3\xA9", std::string(254, 'i')},
        {std::string(253, 'i') + "\xE2\x82\xAC", std::string(253, 'i')},
        {std::string(252, 'i') + "\xF0\x9F\x98\x80", std::string(252, 'i')},
        {std::string(253, 'i') + "\xC3\xA9x", std::string(253, 'i') + "\xC3\xA9"},
    };
    for (auto const& row : rows) {
        Canvas const whole = Drawn(row.whole.c_str(), 8, Canvas::paper, Canvas::ink, 1800);
        Canvas const cut = Drawn(row.cut.c_str(), 8, Canvas::paper, Canvas::ink, 1800);
        EXPECT_TRUE(Are_Equal(whole, cut)) << row.cut.size();
        EXPECT_LT(GetTextWidthZV(nullptr, row.cut.c_str()), 1790);
    }
}

TEST_F(DrawText, OddTextsDoNoHarm)
{
    Canvas const blank(32);
    for (char const* text : {static_cast<char const*>(nullptr), "", " ", "   "})
        EXPECT_TRUE(Are_Equal(Drawn(text), blank));
    for (char const* text : {"\xFF\xC3", "\n\t\x01", "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D", "\xF4\x8F\xBF\xBF"})
        Drawn(text);
    Canvas const far = Drawn("x");
    DrawTextZV(far.draw.get(), "x", std::numeric_limits<long>::max(), std::numeric_limits<long>::min());
    EXPECT_TRUE(Are_Equal(far, Drawn("x")));
    DrawTextZV(far.draw.get(), 4000000000UL, 0, 0);
}

TEST_F(DrawText, MeasuresAreWholePixelsOfTheChosenFont)
{
    ZVEnv->style->fontSize = 20;
    ZVEnv->style->smallFontSize = 10;
    Canvas const canvas(32);
    ZVDrawInfo* const draw = canvas.draw.get();
    long const plain = GetTextWidthZV(draw, "nnnnn");
    EXPECT_EQ(plain, 5 * GetTextWidthZV(draw, "n"));
    EXPECT_EQ(GetTextWidthZV(nullptr, "nnnnn"), plain) << "no context is font 0";
    EXPECT_EQ(Text_Width("nnnnn"), plain);
    EXPECT_EQ(GetAveCharWidthZV(draw), GetTextWidthZV(draw, "x"));
    EXPECT_EQ(GetAveCharHeightZV(draw), Text_Height(""));
    EXPECT_GT(GetAveCharHeightZV(draw), GetTextHeightZV(draw, "x"));

    for (auto const& [font, isSame, isWider] : {std::tuple{5, true, false},
                                                {1, false, false},
                                                {3, false, true},
                                                {4, false, true},
                                                {77, true, false}}) {
        SetFontZV(draw, font);
        EXPECT_EQ(GetTextWidthZV(draw, "nnnnn") == plain, isSame) << font;
        EXPECT_EQ(GetTextWidthZV(draw, "nnnnn") > plain, isWider) << font;
    }
    SetFontZV(draw, 1);
    EXPECT_LE(std::abs(2 * GetAveCharHeightZV(draw) - Text_Height("")), 3) << "half the size";
    long width = 7, height = 7;
    GetAveCharSizeZV(draw, &width, &height);
    EXPECT_EQ(width, GetAveCharWidthZV(draw));
    EXPECT_EQ(height, GetAveCharHeightZV(draw));
    GetTextSizeZV(draw, "wide", &width, &height);
    EXPECT_EQ(width, GetTextWidthZV(draw, "wide"));
    EXPECT_EQ(height, GetTextHeightZV(draw, "wide"));
    long x = 0, y = 0;
    CenterTextZV(draw, "wide", 10, 20, 101, 51, &x, &y);
    EXPECT_EQ(x, (101 - width) / 2 + 10);
    EXPECT_EQ(y, (51 - height) / 2 + 20);
    GetTextSizeZV(draw, static_cast<char const*>(nullptr), &width, &height);
    EXPECT_EQ(width | height, 0);
    GetTextSizeZV(draw, "x", nullptr, nullptr);
    CenterTextZV(draw, "x", 0, 0, 9, 9, nullptr, nullptr);
}

TEST_F(DrawText, TheStyleChangesWithTheFont)
{
    std::vector<Canvas> drawn;
    for (int font : {0, 2, 3, 4}) {
        Canvas canvas(8);
        SetFontZV(canvas.draw.get(), font);
        DrawTextZV(canvas.draw.get(), "HIN", 2, 3);
        for (Canvas const& other : drawn)
            EXPECT_FALSE(Are_Equal(canvas, other)) << font;
        drawn.push_back(std::move(canvas));
    }
}
