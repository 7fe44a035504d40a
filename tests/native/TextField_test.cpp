// What a user does in a text field, and what becomes of its text.
#include "FieldTest.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <tuple>

namespace {

using TextField = FieldTest;

struct EditCase {
    char const* why;
    char const* text;  ///< selected at first
    char const* keys;
    char const* result;  ///< with "|" for the caret or the selection in brackets
};

EditCase const editCases[] = {
    {"what is typed replaces the selection", "abc", "xñ日", "xñ日|"},
    {"left of a selection is its start", "abc", "<Left>", "|abc"},
    {"right of a selection is its end", "abc", "<Right>", "abc|"},
    {"a character of several bytes is one step", "aé日", "<End><Left><Left>", "a|é日"},
    {"so is a letter with its mark", "e\u0301x", "<Home><Right>", "e\u0301|x"},
    {"which are erased together", "ae\u0301", "<End><Back>", "a|"},
    {"a flag is one step", "\U0001F1E8\U0001F1ED\U0001F1EB\U0001F1EE", "<End><Left>",
     "\U0001F1E8\U0001F1ED|\U0001F1EB\U0001F1EE"},
    {"joined pictures are", "\U0001F469\u200D\U0001F680!", "<Home><Right>", "\U0001F469\u200D\U0001F680|!"},
    {"bytes that are no characters are each", "a\xFF\xC3z", "<Home><Right><Right>", "a\xFF|\xC3z"},
    {"nothing is left of the start", "ab", "<Home><Left><Back>", "|ab"},
    {"nothing is right of the end", "ab", "<End><Right><Delete>", "ab|"},
    {"Shift extends and takes back", "abcd", "<Home><S-Right><S-Right><S-Right><S-Left>", "[ab]cd"},
    {"up and down in one line are its ends", "ab", "<Up>x<Down>y", "xaby|"},
    {"so are Page Up and Page Down", "ab", "<PageUp>x<S-PageDown>", "x[ab]"},
    {"Control steps to the end of a word", "one two,three", "<Home><C-Right><C-Right>", "one two|,three"},
    {"and to its start", "one, élan vital", "<End><C-Left><C-S-Left>", "one, [élan ]vital"},
    {"copy and paste", "abc", "<C-c><End><C-v>", "abcabc|"},
    {"cut and paste by Command", "abc", "<End><S-Left><M-x><Home><M-v>", "c|ab"},
    {"undo takes back what was typed in a row", "abc", "<End>xyz<C-z>", "abc|"},
    {"and makes it again", "abc", "<End>xyz<C-z><C-z>", "abc[xyz]"},
    {"a row ends where the caret moves", "abc", "<End>xy<Left>z<C-z>", "abcx|y"},
    {"undo brings back what was replaced", "abc", "x<C-z>", "[abc]"},
    {"and what was erased in a row", "abcd", "<End><Back><Back><Back><C-z>", "a[bcd]"},
    {"forwards too", "abcd", "<Home><Delete><Delete><C-z>", "[ab]cd"},
    {"Control with another key types nothing", "ab", "<End><C-q>", "ab|"},
};

TEST_F(TextField, KeysEditTheText)
{
    for (EditCase const& row : editCases) {
        Show_Field(ZV_GAD_STRING, row.text);
        Play(row.keys);
        EXPECT_EQ(Marked_Text(), row.result) << row.why;
        ClosePaletteZV(PaletteId);
    }
}

/// Whatever the bytes are, steps to the left lead back over the places that steps to the right came by.
TEST_F(TextField, StepsLeadBackTheSameWay)
{
    static constexpr char const* pieces[] = {"a",  "\u0301", "\xE6", "\x97",       "\U0001F1E8", "\u200D",
                                             "日", "\xF0",   " ",    "\U0001F469", "\xFF"};
    Show_Field(ZV_GAD_STRING, "");
    uint32_t random = 1;
    for (int round = 0; round < 50; ++round) {
        std::string text;
        for (int i = 0; i < 12; ++i) {
            random = random * 1664525 + 1013904223;
            text += pieces[(random >> 16) % std::size(pieces)];
        }
        SetTextGadgetStateZV(1, text.c_str());
        Play("<Home>");
        std::vector<int> there{0}, back;
        while (there.back() < static_cast<int>(text.size())) {
            Play("<Right>");
            ASSERT_GT(Properties().caretOffset, there.back());
            there.push_back(Properties().caretOffset);
        }
        for (std::size_t i = 0; i < there.size(); ++i) {
            back.insert(back.begin(), Properties().caretOffset);
            Play("<Left>");
        }
        EXPECT_EQ(there, back) << testing::PrintToString(text);
    }
}

struct FilterCase {
    char const* why;
    ZVGadgetType type;
    char const* clipboard;
    char const* keys;
    double value;
    int beeps;
};

FilterCase const filterCases[] = {
    {"a sign at the start", ZV_GAD_INTEGER, "", "-12", -12, 0},
    {"no sign in the middle", ZV_GAD_INTEGER, "", "1-2", 12, 1},
    {"no letters and no dot", ZV_GAD_INTEGER, "", "1a.2", 12, 2},
    {"a number that is too large is the largest", ZV_GAD_INTEGER, "", "9999999999", 2147483647, 0},
    {"nothing is 0", ZV_GAD_INTEGER, "", "<Back>", 0, 0},
    {"a number is pasted", ZV_GAD_INTEGER, "-7", "<C-v>", -7, 0},
    {"a fraction is not", ZV_GAD_INTEGER, "1.5", "8<C-v>", 8, 1},
    {"is pasted", ZV_GAD_FLOAT, "1.5e3", "<C-v>", 1500, 0},
    {"words are not", ZV_GAD_FLOAT, "abc", "2<C-v>", 2, 1},
    {"twelve characters", ZV_GAD_FLOAT, "", "1234567890123", 123456789012, 1},
};

TEST_F(TextField, NumbersTakeWhatMakesANumberAndBeepAtTheRest)
{
    for (FilterCase const& row : filterCases) {
        Show_Field(row.type, "");
        HeadlessSetClipboardZV(row.clipboard);
        long const beeps = HeadlessBeepsZV();
        Play(row.keys);
        EXPECT_EQ(row.type == ZV_GAD_FLOAT ? Item(1)->realValue : Item(1)->state, row.value) << row.why;
        EXPECT_EQ(HeadlessBeepsZV() - beeps, row.beeps) << row.why;
        ClosePaletteZV(PaletteId);
    }
}

TEST_F(TextField, TakesNoMoreBytesThanItsCapacity)
{
    Show_Field(ZV_GAD_STRING, "ab", {{ZV_ITEM_MAX_CHARS, 5}});
    Play("<End>cdé");
    EXPECT_EQ(Text(), "abcd") << "half a character does not fit";
    EXPECT_EQ(HeadlessBeepsZV(), 1);
    Play("e<S-Left>x");
    EXPECT_EQ(Text(), "abcdx") << "what replaces something needs no room of its own";
    HeadlessSetClipboardZV("1234");
    Play("<Home><C-v>");
    EXPECT_EQ(Text(), "abcdx") << "a paste is taken as a whole or not";
    EXPECT_EQ(HeadlessBeepsZV(), 2);
    HeadlessSetClipboardZV("1\r\n2\t3\x01");
    Play("<C-a><C-v>");
    EXPECT_EQ(Text(), "1 2 3") << "one line stays one";
}

TEST_F(TextField, APasswordIsNeitherShownNorCopied)
{
    Show_Field(ZV_GAD_STRING, "iiii WWWW", {{ZV_ITEM_PASSWORD, 1}});
    HeadlessSetClipboardZV("before");
    Play("<C-c><C-x>");
    EXPECT_STREQ(HeadlessClipboardZV(), "before");
    EXPECT_EQ(Text(), "iiii WWWW");
    // All placeholders are equally wide: the same place is the fourth character in either text.
    long const x = Place(1).height / 4 + Text_Width("\u2022") * 4 + 1, y = Place(1).height / 2;
    for (char const* text : {"iiiiiiii", "WWWWWWWW"}) {
        SetTextGadgetStateZV(1, text);
        Click(1, x, y);
        HeadlessPauseZV(2000);
        EXPECT_EQ(Properties().caretOffset, 4) << text;
    }
}

TEST_F(TextField, EachKeystrokeIsReportedWithItsText)
{
    Show_Field(ZV_GAD_STRING, "");
    Strings texts;
    onGadgetEvent = [&](ZVEvent const&) { texts.push_back(Text()); };
    Play("ab<Left><Back><C-z><Home><S-End><C-x>");
    EXPECT_EQ(texts, (Strings{"a", "ab", "b", "ab", ""}));
    EXPECT_EQ(events, Strings(5, "change 1"));
    events.clear();
    Play("<Help><Esc><C-q>");
    EXPECT_EQ(events, (Strings{"key 307", "key 316", "key 113"}))
        << "what a field has no use for is a key of the application";
}

TEST_F(TextField, TheMouseSelectsCharactersWordsAndTheLine)
{
    Show_Field(ZV_GAD_STRING, "one two-three");
    ZVRectT<long> const place = Place(1);
    long const left = (place.height - Text_Height("")) / 2 + 1, y = place.height / 2;
    auto const x = [&](char const* ahead) { return left + Text_Width(ahead); };

    Click(1, x("one t"), y);
    EXPECT_EQ(Marked_Text(), "one t|wo-three");
    EXPECT_EQ(events, Strings{"gadget 1"}) << "reported with the release";
    Click(1, x("one t"), y);
    EXPECT_EQ(Marked_Text(), "one [two]-three");
    Click(1, x("one t"), y);
    EXPECT_EQ(Marked_Text(), "[one two-three]");
    HeadlessPauseZV(2000);
    HeadlessMoveZV(place.x + x("o"), place.y + y);
    HeadlessPressZV(ZV_HEADLESS_LEFT);
    HeadlessMoveZV(place.x + x("one tw"), place.y + y);
    HeadlessReleaseZV(ZV_HEADLESS_LEFT);
    HeadlessRunZV(2000);
    EXPECT_EQ(Marked_Text(), "o[ne tw]o-three");
    HeadlessHoldZV(ZV_MOD_SHIFT);
    Click(1, x("one"), y);
    HeadlessHoldZV(0);
    EXPECT_EQ(Marked_Text(), "o[ne] two-three") << "Shift moves the end that the caret is at";
}

TEST_F(TextField, UnfinishedTextIsShownButNotTaken)
{
    Show_Field(ZV_GAD_STRING, "abc");
    Play("<Home><S-Right>");
    HeadlessComposeZV("かな", 2);
    HeadlessRunZV(0);
    EXPECT_EQ(Text(), "abc");
    EXPECT_TRUE(events.empty());
    HeadlessComposeZV("", 0);
    HeadlessRunZV(0);
    EXPECT_EQ(Marked_Text(), "[a]bc") << "given up, all is as it was";
    HeadlessComposeZV("か", 1);
    HeadlessRunZV(0);
    Picture const unfinished(1);
    HeadlessCommitZV("か");
    HeadlessRunZV(0);
    EXPECT_EQ(Marked_Text(), "か|bc");
    EXPECT_FALSE(Picture(1) == unfinished) << "no longer underlined";
    EXPECT_EQ(events, Strings{"change 1"});
}

// ---- from right to left -----------------------------------------------------------------------------------

/// Whatever runs which way, an arrow key takes the caret past one character to its side, and a click near
/// where the caret can stand brings it there.
TEST_F(TextField, TheCaretWalksAsItIsSeen)
{
    struct WalkCase {
        char const* text;
        std::size_t steps;
    };
    static constexpr WalkCase rows[] = {
        {"abc", 3},   {"אבג", 3},       {"ab אבג cd", 9}, {"אב ab 12, גד!", 13}, {"12 אב", 5},
        {"a(אב)", 5}, {"كتاب لا x", 9}, {"בְּרֵא b", 5},     {"a\tאב", 4},
    };
    Show_Field(ZV_GAD_STRING, "");
    for (auto const& [text, steps] : rows) {
        SetTextGadgetStateZV(1, text);
        Play("<Home>");
        for (std::size_t i = 0; i < steps; ++i)
            Play("<Left>");
        std::vector<long> walk{Caret_X()};
        for (std::size_t i = 0; i < steps; ++i) {
            Play("<Right>");
            walk.push_back(Caret_X());
            ASSERT_GT(walk[i + 1], walk[i]) << text;
        }
        Play("<Right>");
        EXPECT_EQ(Caret_X(), walk.back()) << text << ": there is no more";
        for (long const x : walk) {
            Click(1, x, Place(1).height / 2);
            HeadlessPauseZV(2000);
            EXPECT_EQ(Caret_X(), x) << text << ": a click at " << x;
        }
    }
}

EditCase const directionCases[] = {
    {"left goes on in a text from right to left", "אבג", "<Home><Left>x", "אx|בג"},
    {"and right goes back", "אבג", "<End><Right>x", "אבx|ג"},
    {"left of a selection is its end there", "אבג", "<Left>", "אבג|"},
    {"in the middle of a line too", "ab אב", "<Home><Right><Right><Right><S-End><Left>", "ab אב|"},
    {"letters from right to left come from the left", "ab אב", "<Home><Right><Right><Right><Right>x",
     "ab אx|ב"},
    {"at the right edge the first one was passed", "ab אב", "<Home><Right><Right><Right><Right><Right>x",
     "ab x|אב"},
    {"the end is behind all, whatever is there", "ab אב", "<Home><End>x", "ab אבx|"},
    {"words are passed as they are read", "אב גד", "<Home><C-Left><C-Left><C-Right>", "אב |גד"},
    {"erasing goes by the text", "אבג", "<End><Back>", "אב|"},
};

TEST_F(TextField, ArrowsGoToTheirSideInAnyText)
{
    for (EditCase const& row : directionCases) {
        Show_Field(ZV_GAD_STRING, row.text);
        Play(row.keys);
        EXPECT_EQ(Marked_Text(), row.result) << row.why;
        ClosePaletteZV(PaletteId);
    }
}

TEST_F(TextField, ASelectionIsMarkedWhereItIs)
{
    Show_Field(ZV_GAD_STRING, "ab אבג");
    long const left = (Place(1).height - Text_Height("")) / 2 + 1;
    ZVTextEditorProperties const bToAlef{1, 0, 1, 1, 5, 5};
    SetTextEditorPropertiesZV(Item(1), &bToAlef);
    HeadlessRunZV(0);
    Picture const picture(1);
    std::vector<long> edges;
    for (long x = 1; x < picture.width - 1; ++x) {
        // Above the letters, where there is nothing but paper.
        auto const isMarked = [&](long at) { return picture.At(at, left) == GetColorZV(ZV_PEN_MARKED); };
        if (isMarked(x) != isMarked(x - 1)) edges.push_back(x - left);
    }
    EXPECT_EQ(edges,
              (std::vector{Text_Width("a"), Text_Width("ab "), Text_Width("ab בג"), Text_Width("ab אבג")}));
}

TEST_F(TextField, ParagraphsBeginAtTheirSide)
{
    Show_Field(ZV_GAD_EDITOR, "ab\nאב\n12 אב ab", {{ZV_ITEM_WIDTH, 150}, {ZV_ITEM_HEIGHT, 90}});
    Play("<Home>");
    Play("<Down>");
    EXPECT_EQ(Properties().caretOffset, 7) << "left in a line from right to left is its end";
    Play("<Right><Right>");
    long const right = Caret_X();
    EXPECT_EQ(right, 150 - 6);
    Play("<Right>");
    EXPECT_EQ(Properties().caretOffset, 2) << "ahead of it the line above ends";
    Play("<Right>");
    EXPECT_EQ(Caret_X(), right) << "behind that one it begins";
    Play("<Left><Left><Left>");
    EXPECT_EQ(Caret_X(), right);
    Play("x<Back>");
    EXPECT_EQ(Caret_X(), right) << "a paragraph runs as its first letter does, not its first digit";
}

// ---- several lines ----------------------------------------------------------------------------------------

TEST_F(TextField, LinesWrapAtWordsAndEndAtBreaks)
{
    struct LineCase {
        char const* why;
        std::string text;
        int lines;
    };
    LineCase const rows[] = {
        {"no text is a line", "", 1},
        {"a break begins one", "a\nb", 2},
        {"at the end too", "a\n", 2},
        {"of any system", "a\r\nb\rc\n\nd", 5},
        {"two words fit", "wwwww wwwww", 1},
        {"a third does not", "wwwww wwwww wwwww", 2},
        {"blanks hang over the edge", "wwwww wwwww        ", 1},
        {"a word that is too long is cut", std::string(15, 'w'), 2},
    };
    unsigned long const width = static_cast<unsigned long>(Text_Width("wwwww wwwww") + 16);
    Show_Field(ZV_GAD_EDITOR, "", {{ZV_ITEM_WIDTH, width}, {ZV_ITEM_HEIGHT, 90}});
    for (LineCase const& row : rows) {
        SetTextGadgetStateZV(1, row.text.c_str());
        EXPECT_EQ(Properties().lineCount, row.lines) << row.why;
    }
}

TEST_F(TextField, UpAndDownKeepTheColumn)
{
    Show_Field(ZV_GAD_EDITOR, "mmmmmmmm\nmm\nmmmmmmmm", {{ZV_ITEM_HEIGHT, 90}});
    Play("<Home><Right><Right><Right><Right><Right><Down>");
    EXPECT_EQ(Properties().caretOffset, 11) << "a shorter line has its end";
    Play("<Down>");
    EXPECT_EQ(Properties().caretOffset, 17);
    Play("<Left><Up><Up>");
    EXPECT_EQ(Properties().caretOffset, 4) << "another move begins another column";
    Play("<Up>");
    EXPECT_EQ(Properties().caretOffset, 0) << "above the first line is its start";
    Play("<Return>x<Tab>y");
    EXPECT_EQ(Text().substr(0, 5), "\nx\tym") << "Return and Tab are text here";
}

TEST_F(TextField, TheViewFollowsTheCaret)
{
    long const line = Text_Height("");
    Show_Field(ZV_GAD_EDITOR, "0\n1\n2\n3\n4\n5\n6\n7\n8\n9",
               {{ZV_ITEM_HEIGHT, static_cast<unsigned long>(4 * line + line / 2)}});
    Play("<Home>");
    EXPECT_EQ(Properties().firstVisibleLine, 0);
    EXPECT_EQ(Properties().visibleLines, 5) << "a line that begins in view counts";
    Play("<Down><Down><Down><Down>");
    EXPECT_EQ(Properties().firstVisibleLine, 1);
    Play("<End>");
    EXPECT_EQ(Properties().firstVisibleLine, 6);
    ZVTextEditorProperties const wanted{0, 3, 0, 2, 3, 2};
    SetTextEditorPropertiesZV(1, &wanted);
    EXPECT_EQ(Properties().firstVisibleLine, 3);
    EXPECT_EQ(Properties().caretOffset, 2) << "which need not be in view";
    // A selection that is dragged below the edge goes on while the mouse rests there.
    ZVRectT<long> const place = Place(1);
    HeadlessMoveZV(place.x + 3, place.y + line / 2);
    HeadlessPressZV(ZV_HEADLESS_LEFT);
    HeadlessMoveZV(place.x + 3, place.y + place.height + 20);
    HeadlessRunZV(2000);
    EXPECT_EQ(Properties().firstVisibleLine, 6);
    EXPECT_EQ(Properties().selectionEnd, 19);
    HeadlessReleaseZV(ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
}

/// However a text has come about, and however little was drawn for each key, it looks as if it had been there
/// at once.
TEST_F(TextField, EditedLinesAreThoseOfTheTextAsAWhole)
{
    ZVPalette* const palette = Show([&] {
        InitGroupZV();
        for (unsigned short id = 1; id <= 2; ++id)
            AddGadgetZV(id, ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START), -1, ZV_GAD_EDITOR, ZV_SIZE_CUSTOM,
                        "", ZV_ITEM_MAX_CHARS, 4000, ZV_ITEM_WIDTH, 160, ZV_ITEM_HEIGHT, 150, 0);
        EndGroupZV(1, 0, 0, "", nullptr);
    });
    static constexpr char const* steps[] = {
        "word ",    "a longer one ", "עברית ", "עברית<Return>", "<Return>",         "<Back>",
        "<Delete>", "<Up>",          "<Down>", "<C-Left>",      "<C-S-Left><Back>", "<C-S-Right><C-x>",
        "<C-v>",    "<Home>",        "<End>",  "<C-z>",         "<S-Up><C-c>"};
    uint32_t random = 1;
    Activate_First_Gadget(palette);
    for (int round = 0; round < 60; ++round) {
        for (int i = 0; i < 6; ++i)
            Play(steps[((random = random * 1664525 + 1013904223) >> 16) % std::size(steps)]);
        ZVTextEditorProperties view = Properties(1);
        Picture const edited(1);
        Enable_SysItem(Item(1));
        HeadlessRunZV(0);
        ASSERT_TRUE(edited == Picture(1)) << "drawn whole, " << Text(1);
        Mac_Drop_Focus(0);
        SetTextGadgetStateZV(2, Text(1).c_str());
        SetTextEditorPropertiesZV(Item(2), &view);
        HeadlessRunZV(0);
        ASSERT_TRUE(Picture(1) == Picture(2)) << Text(1);
        Activate_First_Gadget(palette);
        SetTextEditorPropertiesZV(Item(1), &view);
    }
}

// ---- looks ------------------------------------------------------------------------------------------------

TEST_F(TextField, IsSunkenWithWholeLettersInItsMiddle)
{
    SetStylePenZV(ZV_PEN_TEXT_FIELD, 0xE1A899UL);
    SetStylePenZV(ZV_PEN_DARK_EDGE, 0x000000UL);
    SetStylePenZV(ZV_PEN_LIGHT_EDGE, 0xFFFFFFUL);
    SetStylePenZV(ZV_PEN_TEXT, 0x102030UL);
    Show_Field(ZV_GAD_STRING, "\u00c5gjpqy");
    Mac_Drop_Focus(0);
    auto const expectColors = [&](uint32_t dark, uint32_t light, uint32_t paper, uint32_t ink) {
        HeadlessRunZV(0);
        Picture const picture(1);
        long const right = picture.width - 1, bottom = picture.height - 1;
        for (auto const& [x, y, color] : {std::tuple(right / 2, 0L, dark), std::tuple(0L, bottom / 2, dark),
                                          std::tuple(right, bottom / 2, light),
                                          std::tuple(right / 2, bottom, light), std::tuple(1L, 1L, paper)})
            EXPECT_EQ(picture.At(x, y), color) << x << ',' << y;
        EXPECT_GT(std::ranges::count(picture.pixels, ink), 0);
        // From the ring on top to the foot of the letters nothing is cut, and the room is even.
        std::vector<long> inked;
        for (long y = 1; y < bottom; ++y)
            for (long x = 1; x < right; ++x)
                if (picture.At(x, y) != paper) inked.push_back(y);
        EXPECT_LE(std::abs(inked.front() - (bottom - inked.back())), 4);
        EXPECT_GE(inked.back() - inked.front(), Text_Height("") * 3 / 4);
    };
    expectColors(0x000000, 0xFFFFFF, 0xE1A899, 0x102030);
    ItemEnabledZV(1, 0);
    expectColors(0x404040, 0xC0C0C0, 0xA69591, 0x5B5A60);
}

TEST_F(TextField, TheCaretBlinksAndTheSelectionIsMarked)
{
    Show_Field(ZV_GAD_STRING, "  ");
    auto const has = [](unsigned long pen) {
        HeadlessRunZV(0);
        Picture const picture(1);
        for (long x = 1; x < picture.width - 1; ++x)
            if (picture.At(x, picture.height / 2) == GetColorZV(pen)) return true;
        return false;
    };
    EXPECT_TRUE(has(ZV_PEN_MARKED));
    Play("<End>");
    EXPECT_FALSE(has(ZV_PEN_MARKED));
    HeadlessRunZV(250);
    for (bool const isOn : {true, false, true}) {
        EXPECT_EQ(has(ZV_PEN_TEXT), isOn);
        HeadlessRunZV(500);
    }
    Mac_Drop_Focus(0);
    EXPECT_FALSE(has(ZV_PEN_TEXT)) << "no caret without the focus";
}

}  // namespace
