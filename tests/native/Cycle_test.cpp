// Cycles and their pop-up list, by mouse, wheel and keys.
#include "DesktopTest.h"

#include <ZVKey.h>

#include <algorithm>
#include <optional>

namespace {

/// What keys and mouse do to a cycle of entries with the ids 1 to 7, the first one chosen.
char const* const someEntries = "Apple,(-,banana,Cherry,cherub,(-,Date";

class CycleTest : public DesktopTest {
protected:
    static constexpr unsigned short CycleId = 5;
    static constexpr long Left = 300, Width = 120;

    /// Shows a palette with a cycle and nothing else.
    static void Show(std::string const& entries, long top = 300, std::vector<TagItem> tags = {})
    {
        for (TagItem const& tag : std::initializer_list<TagItem>{
                 {ZV_ITEM_ENTRIES_CSV, Tag_Word(entries.c_str())}, {ZV_ITEM_WIDTH, Width}, {}})
            tags.push_back(tag);
        InitPaletteZV();
        InitGroupZV();
        ZVItem* const cycle = AddGadgetZV(CycleId, 0, 0, ZV_GAD_CYCLE, ZV_SIZE_MEDIUM, nullptr, tags.data());
        SetGadgetStateZV(cycle, 1);
        EndGroupZV(1, 0, 0, "", 0, 0);
        EndPaletteZV(1, "palette", ZV_PAL_CALLBACK, Callback, 0);
        DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_FIXED, ZV_PAL_WINDOW_X, Left, ZV_PAL_WINDOW_Y, top, 0);
        HeadlessRunZV(0);
        Log();
    }

    static std::string Many(int count)
    {
        std::string entries = "Row 1";
        for (int i = 2; i <= count; ++i)
            entries += ",Row " + std::to_string(i);
        return entries;
    }

    static ZVItem& Cycle() { return *FindItem2ZV(FindPaletteZV(1), CycleId); }
    static bool Is_Open() { return FindPaletteZV(9000) != nullptr; }
    static ZVItem& List() { return *FindItem2ZV(FindPaletteZV(9000), 1); }
    static ZVItem* Bar() { return FindItem2ZV(FindPaletteZV(9000), 2); }
    static long Row_Height() { return GetAveCharHeightZV(nullptr); }

    /// The list's window.
    static ZVRectT<long> Place()
    {
        ZVRectT<long> place;
        GetClientRectZV(FindPaletteZV(9000)->window, &place);
        return place;
    }

    static void Move_To_Cycle()
    {
        HeadlessMoveZV(GadToScreenX(&Cycle()) + 10, GadToScreenY(&Cycle()) + Cycle().height / 2);
    }
    static void Press_Cycle()
    {
        HeadlessPauseZV(1000);
        Move_To_Cycle();
        HeadlessPressZV(ZV_HEADLESS_LEFT);
        HeadlessRunZV(0);
    }
    static void Click_Cycle()
    {
        Press_Cycle();
        Release();
    }
    static void Release()
    {
        HeadlessReleaseZV(ZV_HEADLESS_LEFT);
        HeadlessRunZV(0);
    }

    /// To the middle of a row of the open list, counted from the top of its window.
    static void Move_To_Row(long row)
    {
        HeadlessMoveZV(Place().x + 10, Place().y + 1 + row * Row_Height() + Row_Height() / 2);
        HeadlessRunZV(0);
    }

    /// Times that the application was told of a choice since the last call.
    static long Told()
    {
        Strings const told = Log();
        return std::count_if(told.begin(), told.end(),
                             [](std::string const& line) { return line.rfind("1:5", 0) == 0; });
    }

    static uint32_t Pixel(ZVItem const& item, long x, long y)
    {
        ZVDrawInfo* const draw = DrawBeginZV(const_cast<ZVItem*>(&item));
        ZVRGB pixel{};
        ReadPixelZV(draw, x, y, &pixel);
        DrawEndZV(draw);
        return static_cast<uint32_t>((pixel.red & 0xFF) << 16 | (pixel.green & 0xFF) << 8 |
                                     (pixel.blue & 0xFF));
    }

    /// Pixels inside the bevel and left of the arrows that are not the background.
    static long Ink(ZVItem const& item)
    {
        long count = 0;
        for (long y = 3; y < item.height - 3; ++y)
            for (long x = 3; x < item.width - 12; ++x)
                count += Pixel(item, x, y) != GetColorZV(ZV_PEN_FACE);
        return count;
    }
};

struct DragCase {
    char const* why;
    long row;  ///< -1 is beside everything, -2 back on the cycle
    long state;
    bool isOpen, isTold;
};
DragCase const drags[] = {
    {"an entry", 3, 4, false, true},
    {"the entry that is chosen already", 0, 1, false, true},
    {"a separator", 1, 1, false, false},
    {"beside the list", -1, 1, false, false},
    {"back on the gadget", -2, 1, true, false},
};

TEST_F(CycleTest, OnePressGoesOnIntoTheListAndChooses)
{
    for (DragCase const& row : drags) {
        Show(someEntries);
        Press_Cycle();
        ASSERT_TRUE(Is_Open()) << row.why;
        Move_To_Row(row.row >= 0 ? row.row : 4);
        EXPECT_EQ(List().state, row.row >= 0 ? row.row : 4) << row.why;
        if (row.row == -1) HeadlessMoveZV(20, 20);
        if (row.row == -2) Move_To_Cycle();
        Release();
        EXPECT_EQ(Cycle().state, row.state) << row.why;
        EXPECT_EQ(Is_Open(), row.isOpen) << row.why;
        EXPECT_EQ(Told(), row.isTold) << row.why;
        ClosePaletteZV(1);
        EXPECT_FALSE(Is_Open()) << "it goes with its gadget";
    }
}

TEST_F(CycleTest, TwoClicksChooseToo)
{
    Show(someEntries);
    Click_Cycle();
    ASSERT_TRUE(Is_Open());
    EXPECT_EQ(Place().x, GadToScreenX(&Cycle()));
    EXPECT_EQ(Place().y, GadToScreenY(&Cycle()) + Cycle().height);
    EXPECT_EQ(List().state, 0) << "the chosen entry is highlighted";
    Move_To_Row(6);
    HeadlessPressZV(ZV_HEADLESS_LEFT);
    Release();
    EXPECT_FALSE(Is_Open());
    EXPECT_EQ(Cycle().state, 7);
}

TEST_F(CycleTest, APressAnywhereElseClosesTheList)
{
    Show(someEntries);
    Click_Cycle();
    Click_Cycle();
    EXPECT_FALSE(Is_Open()) << "on the cycle itself";
    Click_Cycle();
    EXPECT_TRUE(Is_Open()) << "and opens it again";
    DesktopTest::Show(2, ZV_KIND_FIXED, 900, 100);
    Click(FindPaletteZV(2), Gadget(FindPaletteZV(2)));
    EXPECT_FALSE(Is_Open()) << "in another window";
    Click_Cycle();
    HeadlessLeaveZV();
    HeadlessRunZV(0);
    EXPECT_FALSE(Is_Open()) << "in another application";
    EXPECT_EQ(Cycle().state, 1);
}

TEST_F(CycleTest, ADisabledCycleDoesNothing)
{
    Show(someEntries);
    ItemEnabledZV(&Cycle(), 0);
    Click_Cycle();
    HeadlessWheelZV(0, -1);
    HeadlessRunZV(0);
    EXPECT_FALSE(Is_Open());
    EXPECT_EQ(Cycle().state, 1);
}

struct KeyCase {
    char const* why;
    Strings keys;               ///< of one character: that; "Down", "Up", "Return", "Escape", "wait"
    long row;                   ///< highlighted behind them, before a Return
    std::optional<long> state;  ///< when the last key has closed the list
};
KeyCase const keyCases[] = {
    {"down over a separator", {"Down"}, 2, {}},
    {"down and down", {"Down", "Down"}, 3, {}},
    {"down and up again", {"Down", "Down", "Up", "Up"}, 0, {}},
    {"up stops at the first", {"Up"}, 0, {}},
    {"down stops at the last", Strings(9, "Down"), 6, {}},
    {"Return takes it", {"Down", "Return"}, 2, 3},
    {"Escape takes nothing", {"Down", "Escape"}, 2, 1},
    {"the first that begins so, in any case", {"C"}, 3, {}},
    {"by more letters", {"c", "h", "e", "r", "U"}, 4, {}},
    {"between two the one before", {"c", "a"}, 2, {}},
    {"before all nothing moves", {"Down", "1"}, 2, {}},
    {"letters in a row are one word", {"b", "d"}, 2, {}},
    {"after a pause they begin another", {"b", "wait", "d"}, 6, {}},
};

TEST_F(CycleTest, KeysGoToTheOpenList)
{
    Show(someEntries);
    for (KeyCase const& row : keyCases) {
        SetGadgetStateZV(&Cycle(), 1);
        Click_Cycle();
        HeadlessRunZV(500);
        long highlighted = -1;
        for (std::string const& key : row.keys) {
            if (key == "wait")
                HeadlessRunZV(400);
            else if (key == "Down")
                HeadlessKeyZV(ZV_KEY_DOWN);
            else if (key == "Up")
                HeadlessKeyZV(ZV_KEY_UP);
            else if (key == "Return")
                HeadlessKeyZV(ZV_KEY_RETURN);
            else if (key == "Escape")
                HeadlessKeyZV(ZV_KEY_ESCAPE);
            else
                HeadlessTypeZV(key.c_str());
            HeadlessRunZV(0);
            if (Is_Open()) highlighted = List().state;
        }
        EXPECT_EQ(highlighted, row.row) << row.why;
        EXPECT_EQ(Is_Open(), !row.state) << row.why;
        EXPECT_EQ(Cycle().state, row.state.value_or(1)) << row.why;
        ClosePaletteZV(9000);
    }
    Log();
    Click_Cycle();
    HeadlessKeyZV(ZV_KEY_RETURN);
    HeadlessRunZV(0);
    EXPECT_EQ(Told(), 1);
    // A separator takes no Return when the mouse is on it, and disabled entries are passed over as well.
    Press_Cycle();
    Move_To_Row(1);
    HeadlessKeyZV(ZV_KEY_RETURN);
    HeadlessRunZV(0);
    EXPECT_FALSE(Is_Open());
    EXPECT_EQ(Told(), 0);
    Release();
    ModifyItemZV(&Cycle(), ZV_ITEM_DISABLE_ENTRY, 3, 0);
    ModifyItemZV(&Cycle(), ZV_ITEM_DISABLE_ENTRY, 7, 0);
    Click_Cycle();
    std::vector<long> rows;
    for (unsigned long const key : {ZV_KEY_DOWN, ZV_KEY_DOWN, ZV_KEY_DOWN, ZV_KEY_UP, ZV_KEY_UP}) {
        HeadlessKeyZV(key);
        HeadlessRunZV(0);
        rows.push_back(List().state);
    }
    EXPECT_EQ(rows, (std::vector<long>{3, 4, 4, 3, 0}));
}

struct PlaceCase {
    char const* why;
    int entries;
    long top, mostRows;
    long rows;
    bool scrolls, isAbove;
};
PlaceCase const places[] = {
    {"all rows fit below", 10, 300, 0, 10, false, false},
    {"below there is no room", 10, 1100, 0, 10, false, true},
    {"more than are wanted", 20, 300, 6, 6, true, false},
    {"as many as are wanted", 6, 300, 6, 6, false, false},
    {"fewer than three make no sense", 20, 300, 1, 3, true, false},
};

TEST_F(CycleTest, TheListStandsWhereThereIsRoom)
{
    for (PlaceCase const& row : places) {
        std::vector<TagItem> tags;
        if (row.mostRows) tags.push_back({ZV_ITEM_ROWS, static_cast<unsigned long>(row.mostRows)});
        Show(Many(row.entries), row.top, tags);
        Click_Cycle();
        ZVRectT<long> const place = Place();
        long const height = row.rows * Row_Height() + 2, top = GadToScreenY(&Cycle());
        EXPECT_EQ(place.height, height) << row.why;
        EXPECT_EQ(place.width, Width) << row.why;
        EXPECT_EQ(place.y, row.isAbove ? top - height : top + Cycle().height) << row.why;
        EXPECT_EQ(Bar() != nullptr, row.scrolls) << row.why;
        ClosePaletteZV(1);
    }
    Show("Short,This entry is far longer than the gadget is wide");
    Click_Cycle();
    EXPECT_EQ(List().width, GetTextWidthZV(nullptr, "This entry is far longer than the gadget is wide") + 6);
    ClosePaletteZV(1);
    Show(Many(300), 700);
    Click_Cycle();
    EXPECT_GE(Place().y, 0) << "no more rows than the screen holds";
    EXPECT_TRUE(Bar());
}

TEST_F(CycleTest, TheListIsWholeOnTheMonitorAtAllEdges)
{
    struct Case {
        char const* why;
        std::string entries;
        long left, top;
    };
    std::string const wide(60, 'M'), far(400, 'M');
    ZVRectT<long> screen;
    GetScreenRectZV(&screen);
    Case const cases[] = {
        {"wider than the room at its right", wide + ",Short", 1400, 300},
        {"of a gadget that stands out at the left", wide + ",Short", -40, 300},
        {"wider than the monitor", far + ",Short", 300, 300},
        {"higher than it", Many(300), 300, 700},
        {"at the lower right, with a scroll bar", Many(300) + ',' + wide, 1450, 1150},
        {"above the upper edge", Many(30), 300, -5},
        {"below the lower edge", Many(10), 300, 1195},
    };
    for (Case const& row : cases) {
        Show(row.entries, 300);
        ZVRectT<long> client;
        GetClientRectZV(FindPaletteZV(1)->window, &client);
        client.x = row.left;
        client.y = row.top;
        HeadlessDragFrameZV(FindPaletteZV(1)->window, &client);
        HeadlessRunZV(0);
        ZVCustomEvent press{};
        press.type = ZV_CUSTOM_MOUSE_DOWN;
        press.item = &Cycle();
        CycleCustomFunc(&press);
        ZVRectT<long> const place = Place();
        EXPECT_GE(place.x, screen.x) << row.why;
        EXPECT_GE(place.y, screen.y) << row.why;
        EXPECT_LE(place.Right(), screen.Right()) << row.why;
        EXPECT_LE(place.Bottom(), screen.Bottom()) << row.why;
        EXPECT_EQ(place.width, List().width + (Bar() ? Bar()->width : 0)) << row.why;
        ClosePaletteZV(1);
    }
}

TEST_F(CycleTest, ALongListScrollsByItsArrowsAndItsWheel)
{
    Show(Many(12), 300, {{ZV_ITEM_ROWS, 6}});
    Press_Cycle();
    Move_To_Row(0);
    HeadlessRunZV(250);
    EXPECT_EQ(List().state, 0);
    // The lower arrow takes the room of the last row.
    Move_To_Row(5);
    HeadlessRunZV(300);
    EXPECT_GT(Bar()->state, 0);
    HeadlessRunZV(2000);
    EXPECT_EQ(Bar()->state, 7) << "the upper arrow is there by then, the lower one is not";
    Move_To_Row(5);
    EXPECT_EQ(List().state, 11);
    // The upper one works, as the mouse comes from below.
    Move_To_Row(0);
    HeadlessRunZV(2000);
    EXPECT_EQ(Bar()->state, 0);
    Move_To_Cycle();
    Release();
    Move_To_Row(2);
    HeadlessWheelZV(0, -1);
    HeadlessRunZV(0);
    EXPECT_EQ(Bar()->state, GetWheelScrollLinesZV());
    HeadlessWheelZV(0, 9);
    HeadlessRunZV(0);
    EXPECT_EQ(Bar()->state, 0);

    SetGadgetStateZV(&Cycle(), 12);
    ClosePaletteZV(9000);
    Click_Cycle();
    EXPECT_EQ(Bar()->state, 7) << "the chosen entry is in view";
    for (int i = 0; i < 11; ++i)
        HeadlessKeyZV(ZV_KEY_UP);
    HeadlessRunZV(0);
    EXPECT_EQ(Bar()->state, 0) << "and so is the one that keys choose";
    ClosePaletteZV(9000);
    Click_Cycle();
    Move_To_Row(0);
    HeadlessMoveZV(Place().x + Place().width - 4, Place().y + 4);
    HeadlessPressZV(ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
    EXPECT_LT(Bar()->state, 7) << "a press above the thumb";
    Release();
    EXPECT_TRUE(Is_Open());
}

TEST_F(CycleTest, TheWheelGoesFromEntryToEntry)
{
    struct Turn {
        double up;
        long state;
        bool isTold;
    };
    static Turn const turns[] = {{1, 1, false},   {-1, 3, true},   {-2, 5, true}, {-1, 7, true},
                                 {-1, 7, false},  {1, 5, true},    {9, 1, true},  {-0.5, 1, false},
                                 {-0.5, 3, true}, {-0.5, 3, false}};
    Show(someEntries);
    Move_To_Cycle();
    HeadlessRunZV(0);
    int number = 0;
    for (Turn const& turn : turns) {
        Log();
        HeadlessWheelZV(0, turn.up);
        HeadlessRunZV(0);
        EXPECT_EQ(Cycle().state, turn.state) << number;
        EXPECT_EQ(Told(), turn.isTold) << number++;
    }
    Click_Cycle();
    HeadlessWheelZV(0, -1);
    HeadlessRunZV(0);
    EXPECT_EQ(Cycle().state, 4);
    EXPECT_EQ(List().state, 3) << "an open list follows";
}

TEST_F(CycleTest, DisabledEntriesAreMarkedAndCanBeChosen)
{
    Show(Many(300));
    auto const marked = [](long id, unsigned long tag, unsigned long data) {
        SetGadgetStateZV(&Cycle(), static_cast<double>(id));
        ModifyItemZV(&Cycle(), ZV_ITEM_ENABLE_ALL_ENTRIES, 0, 0);
        long const plain = Ink(Cycle());
        ModifyItemZV(&Cycle(), tag, data, 0);
        return Ink(Cycle()) != plain;
    };
    EXPECT_TRUE(marked(2, ZV_ITEM_DISABLE_ENTRY, 2));
    EXPECT_FALSE(marked(2, ZV_ITEM_DISABLE_ENTRY, 3)) << "another one";
    EXPECT_TRUE(marked(256, ZV_ITEM_DISABLE_ENTRY, 256));
    EXPECT_FALSE(marked(257, ZV_ITEM_DISABLE_ENTRY, 257)) << "past the last that can be";
    EXPECT_TRUE(marked(40, ZV_ITEM_DISABLE_ALL_ENTRIES, 0));
    EXPECT_TRUE(marked(40, ZV_ITEM_DISABLE_ENTRY, 0)) << "0 is all of them";
    EXPECT_FALSE(marked(40, ZV_ITEM_ENABLE_ENTRY, 40));
    EnableCycleGadEntry(&Cycle(), 1000, 0);
    EnableCycleGadEntry(nullptr, 1, 0);

    ModifyItemZV(&Cycle(), ZV_ITEM_DISABLE_ENTRY, 1, 0);
    SetGadgetStateZV(&Cycle(), 1);
    Click_Cycle();
    HeadlessKeyZV(ZV_KEY_RETURN);
    Log();
    HeadlessRunZV(0);
    EXPECT_EQ(Told(), 1);
}

/// As the environment's list of icons has them; the list owns both.
struct Icon {
    Node node;
    ZVBitmap* bitmap;
};

TEST_F(CycleTest, AnEntryCanBeAnIcon)
{
    auto* const icon = static_cast<Icon*>(AllocMemZV(sizeof(Icon), ZV_MEM_CLEAR));
    icon->node.id = 77;
    icon->bitmap = AllocBitmapZV(8, 8, ZV_BITMAP_RGBA8, nullptr);
    FillBitmapZV(icon->bitmap, 0xFF2040A0);
    AddTail(&ZVEnv->icons, &icon->node);

    for (bool const isTinted : {false, true}) {
        std::vector<TagItem> tags;
        if (isTinted) tags.push_back({ZV_ITEM_IMAGE_COLOR, 0x10C030});
        Show("\\77,\\88,\\x", 300, tags);
        uint32_t const wanted = isTinted ? 0x10C030 : 0x2040A0;
        EXPECT_EQ(Pixel(Cycle(), (Width - 6) / 2, Cycle().height / 2), wanted);
        EXPECT_EQ(Ink(Cycle()), 64);
        Click_Cycle();
        EXPECT_EQ(Pixel(List(), Width / 2, 4), wanted);
        ClosePaletteZV(9000);
        SetGadgetStateZV(&Cycle(), 2);
        EXPECT_EQ(Ink(Cycle()), 0) << "an icon that there is not";
        SetGadgetStateZV(&Cycle(), 3);
        EXPECT_GT(Ink(Cycle()), 0) << "no number, so a text";
        ClosePaletteZV(1);
    }
}

TEST_F(CycleTest, LooksAreThoseOfTheTheme)
{
    for (long const theme : {1, 2}) {
        SetPenPresetZV(theme);
        Show("One,Two");
        auto const text = GetColorZV(ZV_PEN_TEXT), face = GetColorZV(ZV_PEN_FACE);
        long const middle = (Cycle().height - 8) / 2;
        EXPECT_EQ(Pixel(Cycle(), Width - 7, middle), text);
        EXPECT_EQ(Pixel(Cycle(), Width - 8, middle), face);
        EXPECT_EQ(Pixel(Cycle(), Width - 5, middle + 5), text);
        EXPECT_EQ(Pixel(Cycle(), Width - 5, middle + 6), face);
        Click_Cycle();
        EXPECT_EQ(Pixel(List(), 0, 0), 0U);
        EXPECT_EQ(Pixel(List(), 2, 1), GetColorZV(ZV_PEN_MARKED));
        EXPECT_EQ(Pixel(List(), 2, 1 + Row_Height()), face);
        ClosePaletteZV(1);
    }
    Show("");
    Click_Cycle();
    EXPECT_FALSE(Is_Open()) << "without entries there is nothing to open";
    EXPECT_EQ(Ink(Cycle()), 0);
}

TEST_F(CycleTest, WhatGoesWhileTheListIsOpenIsLeftAlone)
{
    struct Case {
        char const* why;
        std::function<void()> act;
    };
    static Case const cases[] = {
        {"the palette is closed", [] { ClosePaletteZV(1); }},
        {"it is hidden", [] { PaletteVisibleZV(FindPaletteZV(1), 0); }},
        {"the cycle is", [] { ItemVisibleZV(&Cycle(), 0); }},
        {"it gets other entries", [] { ModifyItemZV(&Cycle(), ZV_ITEM_ENTRIES_CSV, "New", 0); }},
    };
    for (Case const& row : cases) {
        for (bool const isHeld : {false, true}) {
            Show(someEntries);
            Press_Cycle();
            Move_To_Row(3);
            if (!isHeld) Release();
            if (!isHeld) Click_Cycle();
            row.act();
            EXPECT_FALSE(Is_Open()) << row.why;
            if (isHeld) Release();
            ClosePaletteZV(1);
        }
    }

    // The event of the choice closes the palette of its cycle; the choice itself closes it by a dependency.
    Show(someEntries);
    onEvent = [](ZVEvent& event) {
        if (event.type == ZV_EVENT_GADGET) ClosePaletteZV(1);
    };
    Press_Cycle();
    Move_To_Row(3);
    Release();
    EXPECT_FALSE(FindPaletteZV(1));
    Show(someEntries);
    Click_Cycle();
    HeadlessKeyZV(ZV_KEY_RETURN);
    HeadlessRunZV(0);
    EXPECT_FALSE(FindPaletteZV(1));
    Show(someEntries);
    Move_To_Cycle();
    HeadlessWheelZV(0, -1);
    HeadlessRunZV(0);
    EXPECT_FALSE(FindPaletteZV(1));
}

}  // namespace
