// Menus as users meet them: the bar, pop-up menus and the menu gadget, by mouse and keys.
#include "DesktopTest.h"

#include "foundation/HeapBlock.h"

#include <ZVKey.h>

namespace {

constexpr uint16_t barKey = ZV_KEY_F1 + 9;
constexpr int border = 3, line = 7, titleMargin = 9;

class Menu : public DesktopTest {
protected:
    Menu()
    {
        onEvent = [this](ZVEvent& event) {
            if (event.type != ZV_EVENT_MENU) return;
            told += std::string(Event_Menu(&event)->text) + ";";
            if (onChoice) onChoice();
        };
    }

    static long Row_Height() { return Text_Height(nullptr) + 6; }

    /// The middle of a row below the bar, so many rows and lines under the first one.
    static long Row(long rows, long lines = 0)
    {
        return Menu_Bar_Height() + border + rows * Row_Height() + lines * line + Row_Height() / 2;
    }

    /// A place on a title of the bar.
    static long Title(std::string const& wanted, std::vector<std::string> const& titles)
    {
        long left = 0;
        for (std::string const& title : titles) {
            if (title == wanted) return left + titleMargin;
            left += Text_Width(title.c_str()) + 2 * titleMargin;
        }
        return -1;
    }
    static long File() { return Title("File", {"File"}); }
    static long Edit() { return Title("Edit", {"File", "Edit"}); }

    /// "File" with New, Open, a line, Deep (with "one" and "two" below it), and Last; "Edit" with Cut, a
    /// disabled Copy and Paste.
    static void Make_Bar()
    {
        InitMenuZV();
        AddMenuItemZV(10, "New", 0, nullptr);
        AddMenuItemZV(11, "Open", 0, nullptr);
        AddMenuItemZV(0, "-", 0, nullptr);
        InitMenuZV();
        AddMenuItemZV(21, "one", 0, nullptr);
        AddMenuItemZV(22, "two", 0, nullptr);
        EndMenuZV(2, "Deep", nullptr);
        AddMenuItemZV(12, "Last", 0, nullptr);
        EndMenuZV(1, "File", nullptr);
        InitMenuZV();
        AddMenuItemZV(30, "Cut", 0, nullptr);
        AddMenuItemZV(31, "Copy", 0, ZV_MENU_ENABLED, 0, 0);
        AddMenuItemZV(32, "Paste", 0, nullptr);
        EndMenuZV(3, "Edit", nullptr);
        MakeMenuBarZV();
    }
    static long deepRow() { return Row(2, 1); }

    /// Where the submenu of "Deep" begins: File's width is that of its longest text, marks and arrows.
    static long Sub_Left() { return 20 + Text_Width("Open") + 18 + 2 * border + 10; }

    static void Click(long x, long y)
    {
        HeadlessPauseZV(1000);
        HeadlessClickZV(x, y, ZV_HEADLESS_LEFT);
        HeadlessRunZV(0);
    }
    static void Drag(std::vector<std::pair<long, long>> const& way)
    {
        HeadlessPauseZV(1000);
        HeadlessMoveZV(way[0].first, way[0].second);
        HeadlessPressZV(ZV_HEADLESS_LEFT);
        for (auto const& [x, y] : way) {
            HeadlessPauseZV(20);
            HeadlessMoveZV(x, y);
        }
        HeadlessReleaseZV(ZV_HEADLESS_LEFT);
        HeadlessRunZV(0);
    }
    static void Keys(std::vector<unsigned long> const& codes)
    {
        for (unsigned long const code : codes)
            HeadlessKeyZV(code);
        HeadlessRunZV(0);
    }
    std::string Told() { return std::exchange(told, {}); }

    /// Whether the entry "New", all there is in the menu "File", is wider than its text, marks and arrows.
    static bool Shows_Shortcut()
    {
        Click(File(), 5);
        Keys({ZV_KEY_DOWN});
        long const end = border + 20 + Text_Width("New") + 18, y = Row(0) - Row_Height() / 2 + 1;
        EXPECT_TRUE(Is_Lit(end - 2, y));
        bool const isWider = Is_Lit(end + 2, y);
        Keys({ZV_KEY_ESCAPE});
        return isWider;
    }

    static bool Is_Lit(long x, long y) { return Pixel(x, y) == (GetColorZV(ZV_PEN_MARKED) & 0xFFFFFF); }
    /// Whether a menu of the bar hangs there.
    static bool Is_Open(long title) { return Is_Lit(title - titleMargin + 2, Menu_Bar_Height() / 2); }

    std::string told;
    std::function<void()> onChoice;
};

}  // namespace

TEST_F(Menu, APressDraggedToAnEntryAndTwoClicksBothChoose)
{
    Make_Bar();
    Drag({{File(), 5}, {File(), Row(0)}, {File(), Row(1)}});
    EXPECT_EQ(Told(), "Open;");
    EXPECT_FALSE(Is_Open(File()));
    Click(File(), 5);
    EXPECT_TRUE(Is_Open(File()));
    Click(File(), Row(0));
    EXPECT_EQ(Told(), "New;");
    Drag({{File(), 5}, {Edit(), 5}, {Edit(), Row(2)}});
    EXPECT_EQ(Told(), "Paste;") << "the mouse goes from title to title";
    Click(File(), 5);
    Click(File(), 5);
    EXPECT_FALSE(Is_Open(File())) << "the second click on a title closes it";
    Drag({{File(), 5}, {File(), Row(0)}, {700, 700}});
    EXPECT_FALSE(Is_Open(File()));
    EXPECT_EQ(Told(), "");
}

TEST_F(Menu, APressElsewhereClosesAndIsNothingElse)
{
    Make_Bar();
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 400, 400, {}, true);
    Script_Click(palette, Field(palette));
    HeadlessRunZV(0);
    Log();
    Click(File(), 5);
    HeadlessTypeZV("x");
    HeadlessWheelZV(0, -1);
    HeadlessMoveZV(410, 410);
    Script_Click(palette, Gadget(palette));
    HeadlessRunZV(0);
    EXPECT_FALSE(Is_Open(File()));
    EXPECT_EQ(Log(), (Strings{"A:16/1"}));
    EXPECT_EQ(ZVEnv->focusedTextItem, Field(palette));
    HeadlessTypeZV("y");
    HeadlessRunZV(0);
    EXPECT_STREQ(Field(palette)->editText, "y");
    EXPECT_EQ(ZVEnv->activePalette, palette);
}

TEST_F(Menu, TheWayToASubmenuMayCrossOtherEntries)
{
    Make_Bar();
    auto const go_across = [](unsigned long restMs) {
        Click(File(), 5);
        HeadlessMoveZV(File(), deepRow());
        HeadlessRunZV(20);
        // Down to the right across "Last" towards "two".
        long const x = Sub_Left() - 14, y = Row(3, 1) - Row_Height() / 2 + 2;
        for (long step = 1; step <= 4; ++step) {
            HeadlessMoveZV(File() + (x - File()) * step / 4, deepRow() + (y - deepRow()) * step / 4);
            HeadlessPauseZV(20);
        }
        HeadlessPauseZV(restMs);
        HeadlessClickZV(Sub_Left(), Row(3, 1), ZV_HEADLESS_LEFT);
        HeadlessRunZV(0);
    };
    go_across(0);
    EXPECT_EQ(Told(), "two;");
    go_across(600);
    EXPECT_EQ(Told(), "") << "who rests on another entry means that one";
    EXPECT_FALSE(Is_Open(File())) << "and where the submenu was there is nothing";
    Click(File(), 5);
    HeadlessMoveZV(File(), deepRow());
    HeadlessMoveZV(File(), Row(3, 1));
    HeadlessClickZV(Sub_Left(), Row(3, 1), ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
    EXPECT_EQ(Told(), "") << "straight down is no way to it";
}

TEST_F(Menu, LinesAndWhatIsDisabledCannotBeChosen)
{
    Make_Bar();
    Click(Edit(), 5);
    Click(Edit(), Row(1));
    EXPECT_TRUE(Is_Open(Edit())) << "it stays open";
    EnableMenuZV(31, 1);
    Click(Edit(), Row(1));
    EXPECT_EQ(Told(), "Copy;");
    Drag({{File(), 5}, {File(), Row(2) - Row_Height() / 2 + 3}});
    EXPECT_EQ(Told(), "");
    EnableMenuZV(3, 0);
    Drag({{Edit(), 5}, {Edit(), Row(0)}});
    EXPECT_EQ(Told(), "") << "a disabled menu does not open";
}

TEST_F(Menu, KeysWalkThroughOpenMenus)
{
    Make_Bar();
    struct Case {
        std::vector<unsigned long> keys;
        char const* told;
    };
    constexpr unsigned long down = ZV_KEY_DOWN, up = ZV_KEY_UP, right = ZV_KEY_RIGHT, left = ZV_KEY_LEFT,
                            enter = ZV_KEY_RETURN, escape = ZV_KEY_ESCAPE;
    for (auto const& [keys, expected] : {Case{{down, enter}, "New;"},
                                         {{down, down, down, right, down, enter}, "two;"},
                                         {{down, down, down, enter, enter}, "one;"},
                                         {{up, enter}, "Last;"},
                                         {{up, down, ZV_KEY_ENTER}, "New;"},
                                         {{ZV_KEY_END, ' '}, "Last;"},
                                         {{up, ZV_KEY_HOME, enter}, "New;"},
                                         {{right, down, enter}, "Paste;"},
                                         {{left, enter}, "Cut;"},
                                         {{right, right, enter}, "New;"},
                                         {{'d', right, left, down, enter}, "Last;"},
                                         {{'l', enter}, "Last;"},
                                         {{'o', 'n', enter}, "New;"},
                                         {{'x', enter}, ""},
                                         {{down, escape, down, enter}, ""},
                                         {{'d', right, escape, escape}, ""}}) {
        Click(File(), 5);
        Keys(keys);
        EXPECT_EQ(Told(), expected);
        Keys({escape, escape});
        EXPECT_FALSE(Is_Open(File()) || Is_Open(Edit()));
    }
}

TEST_F(Menu, AKeyOpensAndClosesTheBar)
{
    Make_Bar();
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 400, 400, {}, true);
    Script_Click(palette, Field(palette));
    HeadlessRunZV(0);
    Log();
    Keys({barKey, ZV_KEY_RETURN});
    EXPECT_EQ(Told(), "New;");
    EXPECT_EQ(Log(), (Strings{"A:1", "A:16", "A:15"})) << "all else is the menu's";
    for (auto const& keys : std::vector<std::vector<unsigned long>>{
             {barKey}, {ZV_KEY_ESCAPE}, {ZV_KEY_UP, ZV_KEY_UP, ZV_KEY_RIGHT, barKey}}) {
        Keys({barKey});
        EXPECT_TRUE(Is_Open(File()));
        Keys(keys);
        EXPECT_FALSE(Is_Open(File()));
    }
    HeadlessMoveZV(File(), Row(1));
    Keys({barKey});
    HeadlessMoveZV(File(), Row(1));
    Keys({ZV_KEY_RETURN});
    EXPECT_EQ(Told(), "New;") << "the mouse rests where the menu opens";
    Keys({barKey});
    HeadlessMoveZV(File(), Row(1));
    HeadlessMoveZV(File() + 1, Row(1));
    Keys({ZV_KEY_RETURN});
    EXPECT_EQ(Told(), "Open;");
    EXPECT_EQ(ZVEnv->focusedTextItem, Field(palette));
    HeadlessTypeZV("y");
    EnableMenuZV(1, 0);
    Keys({barKey, ZV_KEY_DOWN, ZV_KEY_RETURN});
    EXPECT_EQ(Told(), "Paste;") << "the first menu that opens";
    EXPECT_STREQ(Field(palette)->editText, "y");
    EnableMenuZV(3, 0);
    Keys({barKey, ZV_KEY_RETURN});
    EXPECT_EQ(Told(), "");
    ClearMenuBarZV();
    Keys({barKey});
    EXPECT_EQ(Log().back(), "A:1/16384") << "without a bar it is a key like any other";
}

TEST_F(Menu, TheKeyOfTheBarIsForOthersFirst)
{
    Make_Bar();
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 400, 400);
    auto const is_opened = [] {
        Keys({barKey});
        bool const isOpen = Is_Open(File());
        if (isOpen) Keys({ZV_KEY_ESCAPE});
        return isOpen;
    };
    EXPECT_TRUE(is_opened());
    unsigned short const bindings[] = {barKey, 7, 0, 0};
    ZVKeySection section{.bindings = bindings};
    ZVEnv->keySection = &section;
    Log();
    EXPECT_FALSE(is_opened()) << "an action is bound to it";
    EXPECT_EQ(Log(), (Strings{"A:1", "A:24", "A:1/16384"}));
    ZVEnv->keySection = nullptr;
    auto const others = std::exchange(onEvent, [](ZVEvent& event) {
        if (event.type == ZV_EVENT_KEY) event.result = 1;
    });
    EXPECT_FALSE(is_opened()) << "a callback has taken it";
    onEvent = others;
    HeadlessHoldZV(ZV_MOD_SHIFT);
    EXPECT_FALSE(is_opened());
    HeadlessHoldZV(0);
    ZVEnv->modifiers |= ZV_MOD_REPEAT;
    Do_Event(ZV_EVENT_KEY, barKey);
    EXPECT_FALSE(Is_Open(File())) << "held down, it does not open what it has just closed";

    Log();
    Script_Move(palette, Gadget(palette));
    HeadlessPressZV(ZV_HEADLESS_LEFT);
    HeadlessKeyZV(barKey);
    HeadlessReleaseZV(ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
    Strings const lines = Log();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "G1:107"), 1) << "the release is the gadget's";
    EXPECT_FALSE(Is_Open(File()));

    bool isAsked = false;
    onEvent = [&](ZVEvent& event) {
        if (event.type != ZV_EVENT_TICK || !ZVEnv->modalPalette || std::exchange(isAsked, true)) return;
        EXPECT_FALSE(is_opened());
        ClosePaletteZV(7);
    };
    Show(7, ZV_KIND_MODAL, 500, 300);
    EXPECT_TRUE(isAsked);
}

TEST_F(Menu, OnlyShortcutsWithACharacterShowAndAllOfThemAct)
{
    struct Case {
        unsigned key;
        unsigned long modifiers;
        bool isShown;
    };
    std::vector<unsigned long> actions;
    auto const other = std::exchange(onEvent, [&](ZVEvent& event) {
        if (event.type == ZV_EVENT_ACTION) actions.push_back(event.item);
    });
    for (auto const& [key, modifiers, isShown] : {Case{0, 0, false},
                                                  {'n', ZV_MOD_CONTROL, true},
                                                  {' ', ZV_MOD_CONTROL, true},
                                                  {0xFC, ZV_MOD_ALT, true},
                                                  {ZV_KEY_F1, 0, false},
                                                  {ZV_KEY_F1 + 2, ZV_MOD_SHIFT, false},
                                                  {ZV_KEY_DELETE, ZV_MOD_CONTROL, false},
                                                  {ZV_KEY_INSERT, 0, false}}) {
        unsigned short const bindings[] = {static_cast<uint16_t>(key | modifiers), 7, 0, 0};
        ZVKeySection section{.bindings = bindings};
        ZVEnv->keySection = &section;
        InitMenuZV();
        AddMenuItemZV(10, "New", 7, nullptr);
        EndMenuZV(1, "File", nullptr);
        MakeMenuBarZV();
        EXPECT_EQ(Shows_Shortcut(), isShown) << key;
        Show(1, ZV_KIND_DOCUMENT, 400, 400);
        HeadlessHoldZV(modifiers);
        if (key != 0) Keys({key});
        HeadlessHoldZV(0);
        EXPECT_EQ(std::exchange(actions, {}).size(), key != 0) << key;
        ClosePaletteZV(1);
        ClearMenuBarZV();
        ZVEnv->keySection = nullptr;
    }
}

TEST_F(Menu, MoreEntriesThanTheScreenHoldsScroll)
{
    InitMenuZV();
    for (long i = 0; i < 500; ++i)
        AddMenuItemZV(100 + i, ("Entry " + std::to_string(i)).c_str(), 0, nullptr);
    EndMenuZV(1, "File", nullptr);
    MakeMenuBarZV();
    constexpr long arrow = 14;
    auto const first_row = [] { return Row(0) + arrow; };
    Click(File(), 5);
    Click(File(), first_row());
    EXPECT_EQ(Told(), "Entry 0;");
    Click(File(), 5);
    Keys({ZV_KEY_END, ZV_KEY_RETURN});
    EXPECT_EQ(Told(), "Entry 499;");
    Click(File(), 5);
    HeadlessMoveZV(File(), 1200 - border - 5);
    HeadlessRunZV(400);
    Click(File(), first_row());
    std::string const scrolled = Told();
    EXPECT_TRUE(scrolled > "Entry 1" && scrolled.size() == 9) << scrolled << ": 20 steps of 8 pixels";
    Click(File(), 5);
    HeadlessMoveZV(File(), 600);
    HeadlessWheelZV(0, -2);
    HeadlessRunZV(0);
    Click(File(), first_row());
    EXPECT_EQ(Told(), "Entry 6;") << "three lines a notch";
}

TEST_F(Menu, TheApplicationAndHelpMenusGatherTheirEntries)
{
    FreeMemZV(ZVEnv->appTitle);
    ZVEnv->appTitle = AllocString("Tool");
    InitMenuZV();
    AddMenuItemZV(10, "About", 0, ZV_MENU_ABOUT, 1, 0);
    AddMenuItemZV(11, "Settings", 0, ZV_MENU_PREFERENCES, 1, 0);
    AddMenuItemZV(12, "Quit", 0, ZV_MENU_QUIT, 1, 0);
    EndMenuZV(1, "File", nullptr);
    InitMenuZV();
    AddMenuItemZV(20, "Keys", 0, ZV_MENU_HELP, 1, 0);
    EndMenuZV(2, "Assistance", nullptr);
    MakeMenuBarZV();
    std::vector<std::string> const titles{"Tool", "File", "Help"};
    for (auto const& [title, rows, lines, expected] : {std::tuple("Tool", 0L, 0L, "About;"),
                                                       {"Tool", 1, 1, "Settings;"},
                                                       {"Tool", 2, 2, "Quit;"},
                                                       {"File", 0, 0, "Settings;"},
                                                       {"File", 1, 0, "Quit;"},
                                                       {"Help", 0, 0, "Keys;"}}) {
        long const x = Title(title, titles);
        Drag({{x, 5}, {x, Row(rows, lines)}});
        EXPECT_EQ(Told(), expected) << title;
    }
}

TEST_F(Menu, TitlesWithoutRoomAreGatheredInOne)
{
    for (long i = 1; i <= 200; ++i)
        InsertMenuItemZV(InsertMenuItemZV(i, ("Menu " + std::to_string(i)).c_str(), 0, nullptr), 1000 + i,
                         std::to_string(i).c_str(), 0, nullptr);
    MakeMenuBarZV();
    Click(File(), 5);
    Keys({ZV_KEY_LEFT, ZV_KEY_END, ZV_KEY_RIGHT, ZV_KEY_RETURN});
    EXPECT_EQ(Told(), "200;");
}

TEST_F(Menu, AContextualMenuOpensAtTheMouseAndWaits)
{
    InitMenuZV();
    AddMenuItemZV(40, "Red", 0, ZV_MENU_CHECKABLE, 1, 0);
    AddMenuItemZV(41, "Green", 0, nullptr);
    ZVMenu* const menu = EndMenuZV(4, "Colours", ZV_MENU_POPUP, 1, 0);
    ZVPalette* palette = Show(1, ZV_KIND_FIXED, 400, 300);
    onGadget = [&](ZVCustomEvent const& event) {
        if (event.type != ZV_CUSTOM_MENU) return;
        ZVEnv->buttonState |= ZV_MOD_SECOND_BUTTON;
        DisplayContextualMenuZV(menu);
    };
    HeadlessRunZV(0);
    Log();
    long x = 0, y = 0;
    GetItemScreenPosZV(Gadget(palette), &x, &y);
    auto const open = [&] {
        HeadlessPauseZV(1000);
        HeadlessClickZV(x + 30, y + 10, ZV_HEADLESS_RIGHT);
        HeadlessPauseZV(500);
    };
    auto const second_row = [&] { return y + 10 + border + Row_Height() * 3 / 2; };
    open();
    HeadlessClickZV(x + 50, second_row(), ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
    EXPECT_EQ(Told(), "Green;");
    EXPECT_EQ(Log(), (Strings{"G1:108/1", "G1:118/1", "A:15"})) << "nobody hears of the release";
    EXPECT_FALSE(ZVEnv->trackingItem || ZVEnv->buttonState) << "no button is held any more";
    open();
    HeadlessKeyZV(ZV_KEY_DOWN);
    HeadlessKeyZV(ZV_KEY_RETURN);
    HeadlessRunZV(0);
    EXPECT_EQ(Told(), "Red;");
    EXPECT_EQ(IsMenuSelectedZV(menu, 40), 1);
    open();
    HeadlessClickZV(20, 20, ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
    EXPECT_EQ(Told(), "");
    // The palette goes while its menu is open, and the menu with it.
    bool isGone = false;
    auto const choose = std::exchange(onEvent, [&](ZVEvent& event) {
        if (event.type != ZV_EVENT_TICK || std::exchange(isGone, true)) return;
        ClosePaletteZV(palette);
        DelMenuZV(menu);
    });
    open();
    HeadlessRunZV(500);
    EXPECT_TRUE(isGone);
    EXPECT_EQ(Told(), "");
}

TEST_F(Menu, AMenuThatOpensAtAPointIsWholeAtAllEdges)
{
    InitMenuZV();
    AddMenuItemZV(40, "Red", 0, nullptr);
    AddMenuItemZV(41, "Green", 0, nullptr);
    ZVMenu* const menu = EndMenuZV(4, "Colours", ZV_MENU_POPUP, 1, 0);
    struct Case {
        char const* why;
        long x, y, top;
    };
    long const height = 2 * border + 2 * Row_Height();
    Case const cases[] = {
        {"in the middle", 700, 500, 500},
        {"left of the monitor", -50, 500, 500},
        {"above it", 700, -50, 0},
        {"at its right edge", 1595, 500, 500},
        {"at its lower edge", 700, 1195, 1200 - height},
        {"beyond its corner", 1700, 1300, 1200 - height},
    };
    for (Case const& row : cases) {
        HeadlessPauseZV(500);
        long const x = std::clamp(row.x + 10, 10L, 1590L);
        HeadlessClickZV(x, row.top + border + Row_Height() * 3 / 2, ZV_HEADLESS_LEFT);
        ZVMenu const* const chosen = Select_From_Menu(menu, row.x, row.y);
        EXPECT_EQ(chosen ? chosen->node.id : 0, 41U) << row.why;
    }
    DelMenuZV(menu);
}

TEST_F(Menu, TheMenuGadgetTakesTheEntryAsItsState)
{
    InitMenuZV();
    AddMenuItemZV(40, "Red", 0, nullptr);
    InitMenuZV();
    AddMenuItemZV(41, "Green", 0, nullptr);
    EndMenuZV(5, "More", nullptr);
    ZVMenu* const menu = EndMenuZV(4, "Colours", ZV_MENU_POPUP, 1, 0);
    InitPaletteZV();
    InitGroupZV();
    ZVItem* const gadget =
        AddGadgetZV(1, 0, 0, ZV_GAD_MENU, ZV_SIZE_DEFAULT, nullptr, ZV_ITEM_SELECTED, menu, 0);
    EndGroupZV(1, 0, 0, "", 0, 0);
    EndPaletteZV(1, "palette", ZV_PAL_CALLBACK, Callback, 0);
    DisplayPaletteZV(ZV_PAL_WINDOW_X, 300, ZV_PAL_WINDOW_Y, 300, 0);
    EXPECT_EQ(gadget->width, 16);
    Log();
    long x = 0, y = 0;
    GetItemScreenPosZV(gadget, &x, &y);
    Drag({{x + 5, y + 5}, {x + 40, y + border + 8}});
    EXPECT_EQ(gadget->state, 40);
    EXPECT_EQ(Log(), (Strings{"1:5/32"}));
    EXPECT_EQ(gadget->pressed, 0U);
    HeadlessClickZV(x + 5, y + 5, ZV_HEADLESS_LEFT);
    for (unsigned long const key : {ZV_KEY_DOWN, ZV_KEY_DOWN, ZV_KEY_RIGHT, ZV_KEY_RETURN})
        HeadlessKeyZV(key);
    HeadlessRunZV(0);
    EXPECT_EQ(gadget->state, 41);
    ItemEnabledZV(gadget, 0);
    Log();
    Click(x + 5, y + 5);
    EXPECT_EQ(Log(), (Strings{"1:4"}));
    DelMenuZV(menu);
}

TEST_F(Menu, NothingOpensFromTheBarBesideAModalPalette)
{
    Make_Bar();
    long const beeps = HeadlessBeepsZV();
    onChoice = [&] { Show(7, ZV_KIND_MODAL, 500, 300); };
    onGadget = nullptr;
    bool hasTried = false;
    auto const choice = onEvent;
    onEvent = [&](ZVEvent& event) {
        choice(event);
        if (event.type != ZV_EVENT_TICK || !ZVEnv->modalPalette || std::exchange(hasTried, true)) return;
        InsertMenuItemZV(50, "Added", 0, nullptr);
        MakeMenuBarZV();
        HeadlessClickZV(Edit(), 5, ZV_HEADLESS_LEFT);
        HeadlessKeyZV(ZV_KEY_DOWN);
        HeadlessKeyZV(ZV_KEY_RETURN);
        HeadlessRunZV(0);
        EXPECT_FALSE(Is_Open(Edit()));
        ClosePaletteZV(7);
    };
    Drag({{File(), 5}, {File(), Row(0)}});
    HeadlessRunZV(500);
    EXPECT_TRUE(hasTried);
    EXPECT_EQ(Told(), "New;");
    EXPECT_EQ(HeadlessBeepsZV(), beeps + 1);
    onChoice = nullptr;
    Drag({{Edit(), 5}, {Edit(), Row(0)}});
    EXPECT_EQ(Told(), "Cut;");
}

TEST_F(Menu, AChoiceMayCloseAndOpenWhatItLikes)
{
    Make_Bar();
    Show(1, ZV_KIND_DOCUMENT, 400, 400);
    auto const choose = [&] { Drag({{File(), 5}, {File(), Row(0)}}); };
    onChoice = [] { ClosePaletteZV(1); };
    choose();
    EXPECT_FALSE(FindPaletteZV(1));
    onChoice = [] { DelMenuItemZV(10); };
    choose();
    EXPECT_FALSE(FindMenuZV(10));
    onChoice = [] { MakeMenuBarZV(); };
    choose();
    onChoice = [this] {
        onChoice = nullptr;
        InitMenuZV();
        AddMenuItemZV(60, "Inner", 0, nullptr);
        ZVMenu* const menu = EndMenuZV(6, "", ZV_MENU_POPUP, 1, 0);
        HeadlessKeyZV(ZV_KEY_DOWN);
        HeadlessKeyZV(ZV_KEY_RETURN);
        DisplayContextualMenuZV(menu);
        DelMenuZV(menu);
    };
    Told();
    choose();
    EXPECT_EQ(Told(), "Open;Inner;");
    onChoice = ClearMenuBarZV;
    choose();
    EXPECT_EQ(Menu_Bar_Height(), 0);
    choose();
    EXPECT_EQ(Told(), "Open;");
}

TEST_F(Menu, AMenuThatGoesWhileItIsOpenIsClosed)
{
    for (auto const& change : std::initializer_list<void (*)()>{
             [] { DelMenuItemZV(21); }, [] { ClearMenuBarZV(); }, [] { MakeMenuBarZV(); },
             [] {
                 InsertMenuItemZV(99, "x", 0, nullptr);
                 AddMenuItemZV(FindMenuZV(2), ZV_MENU_AFTER, 1, 0);
             },
             [] { HeadlessLeaveZV(); }}) {
        Make_Bar();
        Show(1, ZV_KIND_DOCUMENT, 400, 400);
        Click(File(), 5);
        HeadlessMoveZV(File(), deepRow());
        HeadlessRunZV(0);
        change();
        Keys({ZV_KEY_DOWN, ZV_KEY_RETURN});
        EXPECT_EQ(Told(), "");
        HeadlessReturnZV();
        HeadlessRunZV(0);
        ClearMenuBarZV();
        ClosePaletteZV(1);
    }
}

TEST_F(Menu, WindowsMakeRoomForTheBar)
{
    ZVPalette* const high = Show(1, ZV_KIND_DOCUMENT, 100, 10);
    ZVPalette* const low = Show(2, ZV_KIND_DOCUMENT, 100, 300);
    int32_t const top = low->window->top;
    Make_Bar();
    long const bar = Menu_Bar_Height();
    ZVRectT<long> rect;
    GetScreenRectZV(&rect);
    EXPECT_EQ(rect.y, bar);
    EXPECT_EQ(rect.height, 1200 - bar);
    GetWindowRectZV(high->window, &rect);
    EXPECT_EQ(rect.y, bar);
    EXPECT_EQ(low->window->top, top);
    GetWindowRectZV(Show(3, ZV_KIND_DOCUMENT, 300, 10)->window, &rect);
    EXPECT_EQ(rect.y, bar) << "a new one too";
    uint32_t const face = Pixel(1500, bar / 2);
    EXPECT_EQ(face, GetColorZV(ZV_PEN_FACE) & 0xFFFFFF);
    HeadlessLeaveZV();
    HeadlessRunZV(0);
    EXPECT_NE(Pixel(1500, bar / 2), face) << "it is not in the way of other applications";
    HeadlessReturnZV();
    HeadlessRunZV(0);
    EXPECT_EQ(Pixel(1500, bar / 2), face);
    SetPenPresetZV(2);
    HeadlessRunZV(0);
    EXPECT_NE(Pixel(1500, bar / 2), face) << "it follows the theme";
    ClearMenuBarZV();
    EXPECT_EQ(Menu_Bar_Height(), 0);
}

TEST_F(Menu, OddMenusOpenLikeOthers)
{
    for (int i = 0; i < 50; ++i)
        InitMenuZV();
    AddMenuItemZV(7, std::string(4096, '\xC3').c_str(), 0, nullptr);
    AddMenuItemZV(7, (std::string(300, 'x') + "\n\x01").c_str(), 0, ZV_MENU_STYLE, ZV_MENUF_STYLES, 0);
    for (int i = 0; i < 50; ++i)
        EndMenuZV(7, "File", nullptr);
    InitMenuZV();
    EndMenuZV(7, "Empty", nullptr);
    MakeMenuBarZV();
    Click(File(), 5);
    Keys({ZV_KEY_RIGHT, ZV_KEY_RIGHT, ZV_KEY_RIGHT, ZV_KEY_LEFT, ZV_KEY_DOWN});
    for (int i = 0; i < 60; ++i)
        Keys({ZV_KEY_DOWN, ZV_KEY_RIGHT});
    Keys({ZV_KEY_DOWN, ZV_KEY_RETURN});
    HeadlessRunZV(100);
    ExitZV();
}
