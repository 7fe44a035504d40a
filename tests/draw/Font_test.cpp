// Fonts for pictures: the list, and the measures and outlines of a font that is open.
#include "DrawTestTools.h"

#include <cmath>
#include <map>
#include <set>

using namespace DrawTest;

namespace {

class Font : public EnvironmentTest {
protected:
    Font()
    {
        NewList(&fonts);
        EXPECT_EQ(GetAvailableFontsZV(&fonts, 0, 0), 0);
    }
    ~Font() override { FreeFontListZV(&fonts); }

    std::vector<ZVFont*> All() const
    {
        std::vector<ZVFont*> all;
        for (Node* node = List_First(&fonts); node; node = List_Next(node))
            all.push_back(reinterpret_cast<ZVFont*>(node));
        return all;
    }

    ZVFont* Find(char const* family) const
    {
        Node* const node = Find_Name(&fonts, family);
        EXPECT_NE(node, nullptr) << family;
        return reinterpret_cast<ZVFont*>(node);
    }

    ZVFont* Open(long size, ZVFontStyleTypes style = ZV_FONT_STYLE_PLAIN) const
    {
        ZVFont* const font = Find("DejaVu Sans");
        EXPECT_EQ(OpenFontZV(font, style, size, 3, 4), 1);
        return font;
    }

    List fonts;
};

std::vector<ZVFontStyle*> Styles_Of(ZVFont const* font)
{
    std::vector<ZVFontStyle*> styles;
    for (Node* node = List_First(&font->Styles); node; node = List_Next(node))
        styles.push_back(reinterpret_cast<ZVFontStyle*>(node));
    return styles;
}

double Advance(ZVFont* font, unsigned long character)
{
    double x = -1, y = -1;
    GetCursorAdvanceZV(character, font, &x, &y);
    EXPECT_EQ(y, 0);
    return x;
}

double Kern(ZVFont* font, unsigned long first, unsigned long second)
{
    double x = -1, y = -1;
    GetKernZV(font, first, second, &x, &y);
    EXPECT_EQ(y, 0);
    return x;
}

struct Command {
    int code;
    std::vector<float> operands;
};

/// The commands of an outline up to its end.
std::vector<Command> Read_Outline(float* outline)
{
    static std::map<float, int> const operandCounts = {{1.0F, 2}, {2.0F, 2}, {3.0F, 6}, {4.0F, 0}};
    std::vector<Command> commands;
    EXPECT_NE(outline, nullptr);
    for (float* word = outline; word && *word != 0.0F;) {
        auto const known = operandCounts.find(*word);
        if (known == operandCounts.end()) {
            ADD_FAILURE() << "command " << *word;
            break;
        }
        commands.push_back({static_cast<int>(*word), {word + 1, word + 1 + known->second}});
        word += 1 + known->second;
    }
    FreeMemZV(outline);
    return commands;
}

long Count(std::vector<Command> const& commands, int code)
{
    return std::ranges::count(commands, code, &Command::code);
}

}  // namespace

TEST_F(Font, TheListHasEachFamilyOnceWithItsStyles)
{
    std::set<std::string> families;
    for (ZVFont* font : All()) {
        EXPECT_TRUE(families.insert(font->node.name).second) << font->node.name;
        EXPECT_EQ(font->Flags, 0U);
        std::vector<ZVFontStyle*> const styles = Styles_Of(font);
        EXPECT_NE(styles.size(), 1U) << font->node.name;
        for (std::size_t i = 0; i < styles.size(); ++i) {
            EXPECT_EQ(styles[i]->node.id, 100 + i);
            EXPECT_NE(styles[i]->node.name, nullptr);
            EXPECT_TRUE(i == 0 || styles[i - 1]->FontId < styles[i]->FontId);
        }
        if (!styles.empty()) {
            EXPECT_EQ(font->FontId, styles[0]->FontId);
            EXPECT_EQ(font->Instance, styles[0]->Instance);
        }
    }
    EXPECT_TRUE(families.contains("DejaVu Sans"));
    std::vector<ZVFont*> const all = All();
    EXPECT_TRUE(std::ranges::is_sorted(
        all, [](ZVFont* a, ZVFont* b) { return CompareNameFunc(&a->node, &b->node) < 0; }));
    EXPECT_STREQ(Styles_Of(Find("DejaVu Sans"))[0]->node.name, "Book") << "the regular face leads";
}

TEST_F(Font, AClosedFontGivesNothing)
{
    ZVFont* const font = Find("DejaVu Sans");
    for (ZVFont* each : {font, static_cast<ZVFont*>(nullptr)}) {
        ZVFontMetrics metrics{7, 7, 7, 7};
        GetFontMetricsZV(each, &metrics);
        EXPECT_EQ(metrics.Height, 7);
        EXPECT_EQ(Advance(each, 'A'), 0);
        EXPECT_EQ(Kern(each, 'A', 'V'), 0);
        EXPECT_EQ(GetFontOutlineZV('A', each, 0, 0), nullptr);
        CloseFontZV(each);
    }
    for (long size : {0L, -5L, 5000L})
        EXPECT_EQ(OpenFontZV(font, ZV_FONT_STYLE_PLAIN, size, 0, 0), 0) << size;
    EXPECT_EQ(OpenFontZV(nullptr, ZV_FONT_STYLE_PLAIN, 12, 0, 0), 0);
    Open(12);
    EXPECT_EQ(font->Flags, 0x8000U);
    EXPECT_EQ(font->WidthHint, 3);
    Open(24);  // closes it first
    EXPECT_GT(Advance(font, 'A'), 0);
    CloseFontZV(font);
    EXPECT_EQ(font->Flags, 0U);
    EXPECT_EQ(Advance(font, 'A'), 0);
}

TEST_F(Font, MeasuresGrowEvenlyWithTheSize)
{
    ZVFont* font = Open(20);
    ZVFontMetrics small{}, large{};
    GetFontMetricsZV(font, &small);
    double const advance = Advance(font, 'W'), kern = Kern(font, 'A', 'V');
    double const wide = Advance(font, 0x20AC);
    Open(2000);
    GetFontMetricsZV(font, &large);
    EXPECT_NEAR(Advance(font, 'W'), 100 * advance, 1);
    EXPECT_NEAR(Advance(font, 0x20AC), 100 * wide, 1) << "the euro sign";
    EXPECT_NEAR(Kern(font, 'A', 'V'), 100 * kern, 3);
    EXPECT_LT(kern, 0) << "the pair moves together";
    EXPECT_EQ(Kern(font, 'H', 'H'), 0);
    EXPECT_NEAR(Kern(font, 'f', 'i'), 0, 50) << "no ligature";
    EXPECT_NEAR(large.Ascent, 100 * small.Ascent, 0.01);
    EXPECT_NEAR(large.Height, 100 * small.Height, 0.01);
    EXPECT_DOUBLE_EQ(large.Ascent * 65536, font->Metrics.ascent) << "16.16 fixed point";
    EXPECT_GE(small.Height, small.Ascent + small.Descent);
    EXPECT_GT(small.MaxAdvance, advance);
    GetCursorAdvanceZV('W', font, nullptr, nullptr);
}

TEST_F(Font, AnEmptyTextHasNoWidthBehindALongOne)
{
    EXPECT_GT(Text_Width(std::string(1000, 'w').c_str()), 1000);
    EXPECT_EQ(Text_Width(""), 0);
}

TEST_F(Font, StylesChooseTheirFaces)
{
    double const plain = Advance(Open(100), 'n');
    ZVFont* const font = Open(100, ZV_FONT_STYLE_BOLD);
    double const bold = Advance(font, 'n');
    EXPECT_GT(bold, plain);
    for (ZVFontStyle* style : Styles_Of(font)) {
        Open(100, static_cast<ZVFontStyleTypes>(style->node.id));
        EXPECT_EQ(font->FontId, style->FontId);
        std::string const name = style->node.name;
        EXPECT_TRUE(name != "Bold" || Advance(font, 'n') == bold);
        EXPECT_TRUE(name != "Book" || Advance(font, 'n') == plain);
    }
    int32_t const last = font->FontId;
    Open(100, static_cast<ZVFontStyleTypes>(999));
    EXPECT_EQ(font->FontId, last) << "no such style: the font's own face";
}

TEST_F(Font, OutlinesAreContoursRoundTheGlyph)
{
    ZVFont* const font = Open(100);
    std::vector<Command> const blank = Read_Outline(GetFontOutlineZV(' ', font, 5, 5));
    EXPECT_TRUE(blank.empty());

    std::vector<Command> const ring = Read_Outline(GetFontOutlineZV('o', font, 1000, 500));
    EXPECT_EQ(Count(ring, 1), 2) << "an outer and an inner contour";
    EXPECT_EQ(Count(ring, 4), 2);
    EXPECT_EQ(ring.back().code, 4);
    EXPECT_GE(Count(ring, 3), 8);
    for (Command const& command : ring) {
        if (command.code == 4) continue;
        EXPECT_GE(command.operands[0], 1000);
        EXPECT_LE(command.operands[0], 1000 + Advance(font, 'o'));
        EXPECT_LE(command.operands[1], 502) << "above the base line, but for the overshoot";
        EXPECT_GE(command.operands[1], 440);
    }
    // Round curves pass into each other: the direction at the end of one is that at the start of the next.
    int joints = 0;
    for (std::size_t i = 0; i + 1 < ring.size(); ++i) {
        if (ring[i].code != 3 || ring[i + 1].code != 3) continue;
        float const ax = ring[i].operands[4], ay = ring[i].operands[5];
        float const bx = ring[i + 1].operands[2], by = ring[i + 1].operands[3];
        EXPECT_GT(ax * bx + ay * by, 0.99F * std::hypot(ax, ay) * std::hypot(bx, by)) << i;
        ++joints;
    }
    EXPECT_GE(joints, 6);

    std::vector<Command> const open = Read_Outline(ATSUI_GetOutline('o', font, 1000, 500));
    EXPECT_EQ(Count(open, 4), 0);
    EXPECT_EQ(open.size() + 2, ring.size());
}

TEST_F(Font, ACreatedFontIsAFaceOfTheInterfacesSize)
{
    ZVEnv->style->fontSize = 20;
    ZVFont* const bold = CreateFontZV(0, 5, 0);
    AddTail(&fonts, &bold->node);
    EXPECT_EQ(bold->Flags, ZV_FONT_FLAG_BOLD);
    EXPECT_LE(std::abs(bold->Size - GetAveCharHeightZV(nullptr)), 1);
    ASSERT_EQ(OpenFontZV(bold, ZV_FONT_STYLE_PLAIN, 30, 0, 0), 1);
    EXPECT_EQ(bold->Flags, ZV_FONT_FLAG_OPEN) << "the style decides now";
    ZVFont* const serif = CreateFontZV(Find("DejaVu Serif")->FontId, 0, 0);
    AddTail(&fonts, &serif->node);
    EXPECT_STREQ(serif->node.name, "DejaVu Serif");
    ASSERT_EQ(OpenFontZV(serif, ZV_FONT_STYLE_PLAIN, 30, 0, 0), 1);
    Canvas const canvas(32);
    SetFontZV(canvas.draw.get(), serif);
    EXPECT_EQ(canvas.draw->Font, 6U);
    EXPECT_NEAR(static_cast<double>(GetTextWidthZV(canvas.draw.get(), "M")), Advance(serif, 'M'), 0.5);
}
