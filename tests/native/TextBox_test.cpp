// Text boxes, separators and labels.
#include "ControlTest.h"

#include <ZVDraw.h>

namespace {

class TextBoxes : public ControlTest {
protected:
    ZVItem* Show_Box(char const* text, long width = 200, long height = 100, std::vector<TagItem> more = {})
    {
        more.push_back({ZV_ITEM_USER_DATA, Tag_Word(text)});
        ZVItem* const item = Show_One(ZV_GAD_TEXTBOX, width, height, std::move(more));
        SetCurrentPaletteZV(PaletteId);
        return item;
    }
};

class Separators : public ControlTest {
protected:
    /// Two boxes with a bar between them, beside or below one another; no box gets below 60.
    void Show_Split(bool isBelow)
    {
        static uint32_t const before[] = {1, 0}, behind[] = {3, 77, 0};
        unsigned short const next = isBelow ? ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER)
                                            : ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START);
        auto const grow = isBelow ? ZV_ITEM_GROW_HEIGHT : ZV_ITEM_GROW_WIDTH;
        auto const least = isBelow ? ZV_ITEM_MIN_HEIGHT : ZV_ITEM_MIN_WIDTH;
        Show([&] {
            InitGroupZV();
            AddGadgetZV(1, 0, 0, ZV_GAD_TEXTBOX, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_WIDTH, 100, ZV_ITEM_HEIGHT,
                        100, grow, 50, least, 60, 0);
            AddGadgetZV(2, next, 1, ZV_GAD_SEPARATOR, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_WIDTH,
                        isBelow ? 100 : 5, ZV_ITEM_HEIGHT, isBelow ? 5 : 100, ZV_ITEM_USER_DATA, before,
                        ZV_ITEM_LINKED, behind, ZV_GAP_FIXED, 1, 0);
            AddGadgetZV(3, next, 2, ZV_GAD_TEXTBOX, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_WIDTH, 100,
                        ZV_ITEM_HEIGHT, 100, grow, 50, least, 60, ZV_GAP_FIXED, 1, 0);
            EndGroupZV(1, 0, 0, "", nullptr);
        });
    }
};

}  // namespace

TEST_F(TextBoxes, BreakLinesWhereTheyDoNotFit)
{
    std::string const words[] = {std::string(30, 'W'), std::string(5000, 'W'), std::string(3000, ' ')};
    struct {
        char const* why;
        std::string text;
        int lines;
    } const rows[] = {
        {"nothing", "", 0},
        {"one line", "one", 1},
        {"a pair of line ends is one", "one\r\ntwo\r\n", 2},
        {"line ends of either kind, and an empty line", "one\ntwo\r\rthree", 4},
        {"a word that is too wide has a line of its own", "a " + words[0] + " b", 3},
        {"no matter how long", "a " + words[1] + " b\nc", 4},
        {"words fill lines", "nine nine nine nine nine nine nine nine nine nine", 0},
        {"characters of several bytes", "\u00e4\u00f6\u00fc \u03b1\u03b2\u03b3\n\u20ac", 2},
    };
    ZVItem* const item = Show_Box("");
    for (auto const& row : rows) {
        SetTextBoxGadgetStateZV(1, "?");
        SetTextBoxGadgetStateZV(1, row.text.c_str());
        int lines = row.lines;
        if (!lines && !row.text.empty()) {
            long const perLine = (178 + GetTextWidthZV(nullptr, " ")) / GetTextWidthZV(nullptr, "nine ");
            lines = static_cast<int>((10 + perLine - 1) / perLine);
            EXPECT_GT(lines, 1);
        }
        EXPECT_EQ(item->maxInt, lines) << row.why;
        Send(item, ZV_CUSTOM_DRAW);
    }
    SetTextBoxGadgetStateZV(1, words[2].c_str());
    EXPECT_EQ(SetTextBoxGadgetState_internal(item, words[2].c_str()), 0) << "the same text";
    SetTextBoxGadgetStateZV(1, static_cast<char const*>(nullptr));
    EXPECT_EQ(SetTextBoxGadgetState_internal(nullptr, "text"), 0);
}

TEST_F(TextBoxes, ShowTheLinesFromTheirStateOn)
{
    ZVItem* const item = Show_Box("one\ntwo\nthree");
    Picture const all(1);
    SetGadgetStateZV(1, 2);
    Picture const fromSecond(1);
    EXPECT_NE(all, fromSecond);
    SetTextBoxGadgetStateZV(1, "two\nthree");
    EXPECT_EQ(item->state, 0) << "a new text is shown from its start";
    EXPECT_EQ(Picture(1), fromSecond);
    SetTextBoxGadgetStateZV(1, "");
    uint32_t const paper = Color(ShadeColorZV(ZV_PEN_PALETTE, 0.85));
    Picture const empty(1);
    for (long x = 2; x < 198; ++x)
        EXPECT_EQ(empty.At(x, 50), paper);
}

TEST_F(TextBoxes, ALineLongerThanADrawnTextIsDrawnToItsEnd)
{
    ZVItem const* const item = Show_Box((std::string(250, '.') + std::string(30, 'W')).c_str(), 1500);
    long const dots = GetTextWidthZV(nullptr, std::string(250, '.').c_str());
    ASSERT_LT(dots, 1050);
    Picture const picture(1);
    long last = 0;
    for (long x = 2; x < 1490; ++x)
        for (long y = 5; y < 20; ++y)
            if (picture.At(x, y) == Color(ZV_PEN_TEXT)) last = x;
    EXPECT_GT(last, dots + GetTextWidthZV(nullptr, std::string(25, 'W').c_str()));
    EXPECT_EQ(item->maxInt, 1);
}

TEST_F(TextBoxes, KeepALinkedGadgetUpWithTheirLines)
{
    std::string text = "1";
    for (int line = 2; line <= 40; ++line)
        text += "\n" + std::to_string(line);
    Show([&] {
        InitGroupZV();
        AddGadgetZV(1, 0, 0, ZV_GAD_TEXTBOX, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_WIDTH, 100, ZV_ITEM_HEIGHT, 100,
                    ZV_ITEM_USER_DATA, text.c_str(), ZV_ITEM_LINKED, 2, 0);
        AddGadgetZV(2, ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START), 1, ZV_GAD_VPROP, ZV_SIZE_CUSTOM,
                    nullptr, ZV_ITEM_HEIGHT, 100, 0);
        EndGroupZV(1, 0, 0, "", nullptr);
    });
    SetCurrentPaletteZV(PaletteId);
    ZVItem const* const bar = Item(2);
    int const visible = static_cast<int>(96 / (GetAveCharHeightZV(nullptr) + 2));
    EXPECT_EQ(bar->maxInt, 40);
    EXPECT_EQ(bar->Page, visible);
    SetGadgetStateZV(2, 20);
    SetGadgetStateZV(1, 21);
    ItemVisibleZV(1, 0);
    ItemVisibleZV(1, 1);
    EXPECT_EQ(bar->state, 20) << "coming back on screen loses no place";
    Move(Item(1), 5, 5);
    HeadlessWheelZV(0, -1);
    HeadlessRunZV(0);
    EXPECT_EQ(bar->state, 20 + GetWheelScrollLinesZV()) << "the wheel over the text turns it";
    SetTextBoxGadgetStateZV(1, "short");
    EXPECT_EQ(bar->state, 0);
    EXPECT_EQ(bar->maxInt, 1);
}

TEST_F(Separators, ShareRoomOutAndStopAtTheLeastSize)
{
    for (bool const isBelow : {false, true}) {
        Show_Split(isBelow);
        int32_t const height = FindPaletteZV(PaletteId)->height;
        auto const size = [&](unsigned long id) { return isBelow ? Item(id)->height : Item(id)->width; };
        auto const drag = [&](long way) {
            Press(Item(2), 2, 2);
            Move(Item(2), isBelow ? 2 : 2 + way, isBelow ? 2 + way : 2);
            Release();
        };
        drag(30);
        EXPECT_EQ(size(1), 130);
        EXPECT_EQ(size(3), 70);
        EXPECT_EQ(Events(), (Strings{"press 2", "release 2"}));
        drag(30);
        EXPECT_EQ(size(3), 60) << "the box behind is as small as it gets";
        drag(-400);
        EXPECT_EQ(size(1), 60);
        EXPECT_EQ(size(3), 140);
        ItemEnabledZV(2, 0);
        Events();
        drag(10);
        EXPECT_EQ(size(1), 60);
        EXPECT_EQ(Events(), Strings{});
        EXPECT_EQ(FindPaletteZV(PaletteId)->height, height) << "of the palette below its tabs";
        ClosePaletteZV(PaletteId);
    }
}

TEST_F(Separators, OutlineLeavesNoTrace)
{
    Show_Split(false);
    Picture const before(1);
    Press(Item(2), 2, 50);
    Move(Item(2), -20, 50);
    EXPECT_NE(Picture(1), before);
    EXPECT_EQ(Picture(1).At(101 - 22, 0), 0xFFFFFFU);
    Move(Item(2), 2, 50);
    EXPECT_EQ(Picture(1), before);
    Release();
    EXPECT_EQ(Item(1)->width, 100);
}

TEST_F(ControlTest, LabelsStandWhereTheirTagsTell)
{
    struct {
        unsigned long tag;
        long first, last;  ///< columns with text
    } const rows[] = {{ZV_ITEM_TEXT_LEFT, 3, 30}, {ZV_ITEM_TEXT_RIGHT, 170, 197}, {ZV_ITEM_ORDER, 87, 113}};
    for (auto const& row : rows) {
        ZVItem* const item =
            Show_One(ZV_GAD_LABEL, 200, 20, {{row.tag, 1}, {ZV_ITEM_COLOR, 0xFF00FF}}, "III");
        Picture const picture(1);
        long first = 200, last = 0;
        for (long x = 0; x < 200; ++x)
            for (long y = 0; y < 20; ++y)
                if (picture.At(x, y) != Color(ZV_PEN_PALETTE)) {
                    first = std::min(first, x);
                    last = std::max(last, x);
                }
        EXPECT_TRUE(first >= row.first && last <= row.last && last > first)
            << row.tag << ": " << first << " " << last;
        ItemEnabledZV(item, 0);
        EXPECT_EQ(Picture(1).At(1, 1), Color(DisableColorZV(ZV_PEN_PALETTE)));
        ClosePaletteZV(PaletteId);
    }
}
