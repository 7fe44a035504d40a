// What a user does in a text field, and what becomes of its text.
#include "FieldTest.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace {

using TextField = FieldTest;

struct EditCase {
    char const* why;
    char const* text;
    char const* keys;  ///< all is selected at first
    char const* result;
    int start, end;  ///< selection
};

EditCase const editCases[] = {
    {"what is typed replaces the selection", "abc", "x", "x", 1, 1},
    {"typed characters follow one another", "", "añ日", "añ日", 6, 6},
    {"left of a selection is its start", "abc", "<Left>x", "xabc", 1, 1},
    {"right of a selection is its end", "abc", "<Right>x", "abcx", 4, 4},
    {"a character of several bytes is one step", "aé日", "<End><Left><Left>x", "axé日", 2, 2},
    {"the caret does not come between a letter and its mark", "e\u0301x", "<Home><Right>|", "e\u0301|x", 4,
     4},
    {"marks are erased with their letter", "ae\u0301", "<End><Back>", "a", 1, 1},
    {"a flag is one step", "\U0001F1E8\U0001F1ED\U0001F1EB\U0001F1EE", "<End><Left>",
     "\U0001F1E8\U0001F1ED\U0001F1EB\U0001F1EE", 8, 8},
    {"joined pictures are one step", "\U0001F469\u200D\U0001F680!", "<Home><Right>x",
     "\U0001F469\u200D\U0001F680x!", 12, 12},
    {"bytes that are no characters are one step each", "a\xFF\xC3z", "<Home><Right><Right>x", "a\xFFx\xC3z",
     3, 3},
    {"nothing is left of the start", "ab", "<Home><Left><Back>", "ab", 0, 0},
    {"nothing is right of the end", "ab", "<End><Right><Delete>", "ab", 2, 2},
    {"Delete erases what follows", "abc", "<Home><Right><Delete>", "ac", 1, 1},
    {"Shift extends", "abcd", "<Home><Right><S-Right><S-Right>", "abcd", 1, 3},
    {"and takes back", "abcd", "<Home><Right><S-Right><S-Right><S-Left>", "abcd", 1, 2},
    {"up and down in one line are its ends", "abcd", "<Home><Right><Up>x<Down>y", "xabcdy", 6, 6},
    {"Shift and End", "abcd", "<Home><Right><S-End>", "abcd", 1, 4},
    {"Page Up is the start, Page Down the end", "ab", "<PageUp>x<PageDown>y", "xaby", 4, 4},
    {"Control steps to the end of a word", "one two,three", "<Home><C-Right><C-Right>|", "one two|,three", 8,
     8},
    {"and to its start", "one, élan vital", "<End><C-Left><C-Left>|", "one, |élan vital", 6, 6},
    {"words are selected with Shift too", "one two", "<End><C-S-Left>", "one two", 4, 7},
    {"copy and paste", "abc", "<C-c><End><C-v>", "abcabc", 6, 6},
    {"cut and paste", "abc", "<End><S-Left><C-x><Home><C-v>", "cab", 1, 1},
    {"Command does the same", "abc", "<M-c><End><M-v>", "abcabc", 6, 6},
    {"select all", "abc", "<End><C-a>x", "x", 1, 1},
    {"undo takes back what was typed in a row", "abc", "<End>xyz<C-z>", "abc", 3, 3},
    {"and makes it again", "abc", "<End>xyz<C-z><C-z>", "abcxyz", 3, 6},
    {"a row ends where the caret moves", "abc", "<End>xy<Left>z<C-z>", "abcxy", 4, 4},
    {"undo brings back what was replaced", "abc", "x<C-z>", "abc", 0, 3},
    {"and what was erased in a row", "abcd", "<End><Back><Back><Back><C-z>", "abcd", 1, 4},
    {"forwards too", "abcd", "<Home><Delete><Delete><C-z>", "abcd", 0, 2},
    {"and a paste as a whole", "ab", "<C-c><End><C-v><C-z>", "ab", 2, 2},
    {"Control with another key types nothing", "ab", "<End><C-q>", "ab", 2, 2},
};

TEST_F(TextField, KeysEditTheText)
{
    for (EditCase const& row : editCases) {
        Show_Field(ZV_GAD_STRING, row.text);
        Play(row.keys);
        EXPECT_EQ(Text(), row.result) << row.why;
        EXPECT_EQ(Properties().selectionStart, row.start) << row.why;
        EXPECT_EQ(Properties().selectionEnd, row.end) << row.why;
        ClosePaletteZV(PaletteId);
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
    {"digits", ZV_GAD_INTEGER, "", "120", 120, 0},
    {"a sign at the start", ZV_GAD_INTEGER, "", "-12", -12, 0},
    {"no sign in the middle", ZV_GAD_INTEGER, "", "1-2", 12, 1},
    {"no letters and no dot", ZV_GAD_INTEGER, "", "1a.2", 12, 2},
    {"a number that is too large is the largest", ZV_GAD_INTEGER, "", "9999999999", 2147483647, 0},
    {"nothing is 0", ZV_GAD_INTEGER, "", "<Back>", 0, 0},
    {"a number is pasted", ZV_GAD_INTEGER, "-7", "<C-v>", -7, 0},
    {"a fraction is not", ZV_GAD_INTEGER, "1.5", "8<C-v>", 8, 1},
    {"a real number", ZV_GAD_FLOAT, "", "-1.5e3", -1500, 0},
    {"is pasted", ZV_GAD_FLOAT, "1.5e3", "<C-v>", 1500, 0},
    {"words are not", ZV_GAD_FLOAT, "abc", "2<C-v>", 2, 1},
    {"no letters but e", ZV_GAD_FLOAT, "", "2x5", 25, 1},
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

TEST_F(TextField, NoMoreBytesThanTheCapacityAreTaken)
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
}

TEST_F(TextField, APasteIntoOneLineStaysThere)
{
    Show_Field(ZV_GAD_STRING, "");
    HeadlessSetClipboardZV("one\r\ntwo\tthree\x01");
    Play("<C-v>");
    EXPECT_EQ(Text(), "one two three");
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
    std::vector<std::string> texts;
    onEvent = [&](ZVEvent const&) { texts.push_back(Text()); };
    Play("ab<Left><Back><C-z><Home><S-End><C-x>");
    EXPECT_EQ(texts, (std::vector<std::string>{"a", "ab", "b", "ab", ""}));
    EXPECT_EQ(events, std::vector<std::string>(5, "change 1"));
    events.clear();
    Play("<F5><Esc><C-q>");
    EXPECT_EQ(events, (std::vector<std::string>{"key 292", "key 316", "key 113"}))
        << "what a field has no use for is a key of the application";
}

TEST_F(TextField, TheMouseSelectsCharactersWordsAndTheLine)
{
    Show_Field(ZV_GAD_STRING, "one two-three");
    ZVRectT<long> const place = Place(1);
    long const left = (place.height - Text_Height("")) / 2 + 1, y = place.height / 2;
    auto const x = [&](char const* ahead) { return left + Text_Width(ahead); };
    auto const selection = [] { return std::pair(Properties().selectionStart, Properties().selectionEnd); };

    Click(1, x("one t"), y);
    EXPECT_EQ(selection(), std::pair(5, 5));
    EXPECT_EQ(events, std::vector<std::string>{"gadget 1"}) << "reported with the release";
    Click(1, x("one t"), y);
    EXPECT_EQ(selection(), std::pair(4, 7));
    Click(1, x("one t"), y);
    EXPECT_EQ(selection(), std::pair(0, 13));
    HeadlessPauseZV(2000);
    HeadlessMoveZV(place.x + x("o"), place.y + y);
    HeadlessPressZV(ZV_HEADLESS_LEFT);
    HeadlessMoveZV(place.x + x("one tw"), place.y + y);
    HeadlessRunZV(0);
    EXPECT_EQ(selection(), std::pair(1, 6));
    HeadlessReleaseZV(ZV_HEADLESS_LEFT);
    HeadlessHoldZV(ZV_MOD_SHIFT);
    HeadlessPauseZV(2000);
    Click(1, x("one"), y);
    HeadlessHoldZV(0);
    EXPECT_EQ(selection(), std::pair(1, 3)) << "Shift moves the end that the caret is at";
    Click(1, place.width - 3, y);
    EXPECT_EQ(selection(), std::pair(13, 13));
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
    EXPECT_EQ(Properties().selectionEnd, 1) << "given up, all is as it was";
    HeadlessComposeZV("か", 1);
    HeadlessCommitZV("仮");
    HeadlessRunZV(0);
    EXPECT_EQ(Text(), "仮bc");
    EXPECT_EQ(events, std::vector<std::string>{"change 1"});
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
    unsigned long const width = static_cast<unsigned long>(Text_Width("wwwww wwwww") + 8);
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
    ZVTextEditorProperties wanted{.lineCount = 0,
                                  .firstVisibleLine = 3,
                                  .visibleLines = 0,
                                  .selectionStart = 8,
                                  .selectionEnd = 9,
                                  .caretOffset = 8};
    SetTextEditorPropertiesZV(1, &wanted);
    EXPECT_EQ(Properties().firstVisibleLine, 3);
    EXPECT_EQ(Properties().selectionEnd, 9);
    EXPECT_EQ(Properties().caretOffset, 8);
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

/// However a text has come about, it looks as if it had been there at once.
TEST_F(TextField, EditedLinesAreThoseOfTheTextAsAWhole)
{
    constexpr ZVRectT<long> size{0, 0, 160, 200};
    ZVPalette* const palette = Show([&] {
        InitGroupZV();
        for (unsigned short id = 1; id <= 2; ++id)
            AddGadgetZV(id, ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START), -1, ZV_GAD_EDITOR, ZV_SIZE_CUSTOM,
                        "", ZV_ITEM_MAX_CHARS, 4000, ZV_ITEM_WIDTH, size.width, ZV_ITEM_HEIGHT, size.height,
                        0);
        EndGroupZV(1, 0, 0, "", nullptr);
    });
    static constexpr char const* steps[] = {
        "word ",  "a longer one ", "<Return>",         "<Back>",           "<Delete>", "<Up>",
        "<Down>", "<C-Left>",      "<C-S-Left><Back>", "<C-S-Right><C-x>", "<C-v>",    "<Home>",
        "<End>",  "<C-z>",         "<S-Up><C-c>"};
    uint32_t random = 1;
    for (int round = 0; round < 8; ++round) {
        Activate_First_Gadget(palette);
        std::string keys;
        for (int i = 0; i < 40; ++i) {
            random = random * 1664525 + 1013904223;
            keys += steps[(random >> 16) % std::size(steps)];
        }
        Play(keys);
        Mac_Drop_Focus(0);
        SetTextGadgetStateZV(2, Text(1).c_str());
        ZVTextEditorProperties const top{};
        for (unsigned long id : {1, 2})
            SetTextEditorPropertiesZV(Item(id), &top);
        HeadlessRunZV(0);
        ASSERT_EQ(Properties(1).lineCount, Properties(2).lineCount) << Text(1);
        Picture const picture;
        ZVRectT<long> const first = Place(1), second = Place(2);
        for (long y = 0; y < size.height; ++y)
            for (long x = 0; x < size.width; ++x)
                ASSERT_EQ(picture.At(first.x + x, first.y + y), picture.At(second.x + x, second.y + y))
                    << x << ',' << y << " of " << Text(1);
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
    ZVRectT<long> const place = Place(1);
    auto const expectColors = [&](uint32_t dark, uint32_t light, uint32_t paper, uint32_t ink) {
        HeadlessRunZV(0);
        Picture const picture;
        EXPECT_EQ(picture.At(place.x, place.y), dark);
        EXPECT_EQ(picture.At(place.x + place.width / 2, place.y), dark);
        EXPECT_EQ(picture.At(place.x, place.y + place.height / 2), dark);
        EXPECT_EQ(picture.At(place.x + place.width - 1, place.y + place.height / 2), light);
        EXPECT_EQ(picture.At(place.x + place.width / 2, place.y + place.height - 1), light);
        EXPECT_EQ(picture.At(place.x + 1, place.y + 1), paper);
        EXPECT_EQ(picture.At(place.x + place.width - 2, place.y + place.height - 2), paper);
        long first = place.height, last = 0;
        bool hasInk = false;
        for (long y = 1; y < place.height - 1; ++y)
            for (long x = 1; x < place.width - 1; ++x) {
                uint32_t const color = picture.At(place.x + x, place.y + y);
                hasInk |= color == ink;
                if (color == paper) continue;
                first = std::min(first, y);
                last = std::max(last, y);
            }
        EXPECT_TRUE(hasInk);
        // From the top of the ring to the foot of the letters, nothing is cut and the room is even.
        EXPECT_LE(std::abs((first - 1) - (place.height - 2 - last)), 4);
        EXPECT_GE(last - first, Text_Height("") * 3 / 4);
    };
    expectColors(0x000000, 0xFFFFFF, 0xE1A899, 0x102030);
    ItemEnabledZV(1, 0);
    expectColors(0x404040, 0xC0C0C0, 0xB0948C, 0x485058);
}

TEST_F(TextField, TheCaretBlinksAndTheSelectionIsMarked)
{
    Show_Field(ZV_GAD_STRING, "  ");
    ZVRectT<long> const place = Place(1);
    long const y = place.y + place.height / 2;
    auto const has = [&](unsigned long pen) {
        HeadlessRunZV(0);
        Picture const picture;
        for (long x = 1; x < place.width - 1; ++x)
            if (picture.At(place.x + x, y) == GetColorZV(pen)) return true;
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
