// What the desktop's input becomes: presses, the wheel, keys, and what users do with windows.
#include "DesktopTest.h"

#include <ZVKey.h>

#include <algorithm>

namespace {

class InputTest : public DesktopTest {
protected:
    /// Shows a dialog, whose script runs meanwhile and ends with Escape, which closes it.
    static void Run_Dialog(std::function<void()> script)
    {
        HeadlessPauseZV(100);
        script();
        HeadlessPauseZV(1000);
        HeadlessKeyZV(ZV_KEY_ESCAPE);
        onEvent = [](ZVEvent& event) {
            if (event.type == ZV_EVENT_KEY && event.key == ZV_KEY_ESCAPE) ClosePaletteZV(9);
        };
        Show(9, ZV_KIND_MODAL, 800, 600);
        onEvent = nullptr;
    }

    static std::string Joined(Strings const& entries)
    {
        std::string all;
        for (std::string const& entry : entries)
            all += (all.empty() ? "" : " ") + entry;
        return all;
    }

    /// A document with a list of three rows in view.
    static ZVPalette* Show_List()
    {
        InitPaletteZV();
        InitGroupZV();
        AddGadgetZV(1, 0, 0, ZV_GAD_LIST, ZV_SIZE_LARGE, "", ZV_ITEM_ROWS, 3, ZV_ITEM_ENTRIES_CSV,
                    "a,b,c,d,e,f,g,h,i,j", 0);
        EndGroupZV(1, 0, 0, "", nullptr);
        ZVPalette* const palette = ZVEnv->buildingPalette;
        EndPaletteZV(1, "list", nullptr);
        DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_DOCUMENT, 0);
        return palette;
    }

    static ZVWindow* Window(unsigned short id) { return FindPaletteZV(id)->window; }
};

// ---- presses ----------------------------------------------------------------------------------------------

TEST_F(InputTest, APressGoesToWhatIsUnderIt)
{
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100, {}, true);
    HeadlessRunZV(0);
    Log();
    Click(palette, Gadget(palette));
    EXPECT_EQ(Log(), (Strings{"G1:108/1", "1:4", "G1:107"}));
    Click(palette, Gadget(palette), ZV_HEADLESS_RIGHT);
    EXPECT_EQ(Log(), (Strings{"G1:108/1", "G1:118/1", "1:4", "G1:107"}));
    Click(palette, nullptr);
    EXPECT_EQ(Log(), (Strings{"A:3/1", "A:4"}));
    Click(palette, Gadget(palette), ZV_HEADLESS_MIDDLE);
    EXPECT_EQ(Log(), Strings());
    HeadlessHoldZV(ZV_MOD_CONTROL);
    HeadlessPressZV(ZV_HEADLESS_LEFT);
    HeadlessHoldZV(0);
    HeadlessReleaseZV(ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
    EXPECT_EQ(Log(), (Strings{"G1:108/513", "1:4/512", "G1:107/512"})) << "a release is that of its press";
    Script_Click(palette, Gadget(palette));
    HeadlessRunZV(0);
    EXPECT_EQ(Log(), (Strings{"G1:108/65", "1:4/64", "G1:107/64"})) << "the second of two quick presses";
}

TEST_F(InputTest, APressBehindADragIsASingleOne)
{
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100);
    HeadlessRunZV(0);
    Script_Move(palette, Gadget(palette));
    HeadlessPressZV(ZV_HEADLESS_LEFT);
    Script_Move(palette, nullptr);
    HeadlessReleaseZV(ZV_HEADLESS_LEFT);
    Script_Click(palette, Gadget(palette));
    HeadlessRunZV(0);
    Strings const told = Log();
    EXPECT_EQ(std::count(told.begin(), told.end(), "G1:108/1"), 2) << "presses, none of them a double click";
}

TEST_F(InputTest, APressBesideATextFieldCommitsIt)
{
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100, {}, true);
    Click(palette, Field(palette));
    EXPECT_EQ(ZVEnv->focusedTextItem, Field(palette));
    Log();
    Click(palette, Gadget(palette), ZV_HEADLESS_RIGHT);
    EXPECT_EQ(Log(), (Strings{"1:5/33", "G1:108/1", "G1:118/1", "1:4", "G1:107"}));
    EXPECT_EQ(ZVEnv->focusedTextItem, Field(palette)) << "the menu may be for the field";
    Click(palette, Gadget(palette));
    EXPECT_EQ(Log(), (Strings{"1:5/33", "G1:108/1", "1:5/33", "1:4", "G1:107"}));
    EXPECT_EQ(ZVEnv->focusedTextItem, nullptr);
}

TEST_F(InputTest, ADocumentBehindIsBroughtForwardByAPressThatDoesNothingElse)
{
    ZVPalette* const one = Show(1, ZV_KIND_DOCUMENT, 100, 100, {}, true);
    Show(2, ZV_KIND_DOCUMENT, 500, 100);
    ZVPalette* const quiet = Show(3, ZV_KIND_FIXED, 100, 500, {{ZV_PAL_FLAGS, ZV_PALF_NO_ACTIVATE}});
    HeadlessRunZV(0);
    Log();
    Click(one, Gadget(one));
    EXPECT_EQ(Log(), (Strings{"2:12/1", "2:10/1", "1:11/1", "1:9/1"}));
    EXPECT_EQ(ZVEnv->frontWindow, one->window);
    Click(one, Field(one));
    Log();
    Click(quiet, Gadget(quiet), ZV_HEADLESS_RIGHT);
    EXPECT_EQ(Log().at(1), "G3:108/1");
    EXPECT_EQ(ZVEnv->focusedTextItem, Field(one)) << "what stays behind leaves the rest as it is";
}

TEST_F(InputTest, AFloaterIsActiveBesideADocument)
{
    ZVPalette* const document = Show(1, ZV_KIND_DOCUMENT, 100, 100);
    ZVPalette* const floater = Show(2, ZV_KIND_FIXED, 500, 100);
    HeadlessRunZV(0);
    Click(document, Gadget(document));
    Log();
    Click(floater, Gadget(floater));
    EXPECT_EQ(Log(), (Strings{"1:10/1", "2:9/1", "G2:108/1", "2:4", "G2:107"}));
    EXPECT_EQ(ZVEnv->frontWindow, document->window);
    EXPECT_EQ(ZVEnv->activeDocument, document);
}

TEST_F(InputTest, APopUpGoesWithAPressElsewhere)
{
    ZVPalette* const document = Show(1, ZV_KIND_DOCUMENT, 100, 100);
    ZVPalette* const popUp = Show(2, ZV_KIND_TRANSIENT, 500, 100);
    HeadlessRunZV(0);
    Log();
    Click(popUp, Gadget(popUp));
    EXPECT_EQ(Log(), (Strings{"G2:108/1", "2:4", "G2:107"}));
    Click(document, Gadget(document));
    EXPECT_EQ(Log(), (Strings{"2:12/1", "2:8/1", "G1:108/1", "1:4", "G1:107"}));
    Show(2, ZV_KIND_TRANSIENT, 500, 100);
    HeadlessLeaveZV();
    HeadlessRunZV(0);
    EXPECT_FALSE(FindPaletteZV(2)) << "nor does it stay behind";
}

TEST_F(InputTest, ADialogKeepsTheMouseFromOtherWindows)
{
    ZVPalette* const document = Show(1, ZV_KIND_DOCUMENT, 100, 100);
    ZVPalette* const floater = Show(2, ZV_KIND_FIXED, 500, 100);
    ZVPalette* const quiet = Show(3, ZV_KIND_FIXED, 100, 500, {{ZV_PAL_FLAGS, ZV_PALF_NO_ACTIVATE}});
    HeadlessRunZV(0);
    Run_Dialog([&] {
        Log();
        for (ZVPalette* palette : {document, floater, quiet})
            Script_Click(palette, Gadget(palette));
        HeadlessMoveZV(document->window->left, document->window->top - 10);  // its title
        HeadlessPressZV(ZV_HEADLESS_LEFT);
        HeadlessReleaseZV(ZV_HEADLESS_LEFT);
        HeadlessClickZV(900, 620, ZV_HEADLESS_LEFT);  // the dialog, about its corner
        HeadlessClickZV(1500, 1100, ZV_HEADLESS_LEFT);
    });
    EXPECT_EQ(Log(), (Strings{"G3:108/1", "3:4", "G3:107", "A:3/1", "A:4", "9:1", "9:12", "9:8"}))
        << "past the dialog there is no way, but for what takes no part; on top of it presses count";
    EXPECT_EQ(HeadlessBeepsZV(), 1) << "on the bare desktop";
}

TEST_F(InputTest, TheMouseMovesWithoutEndWhileItIsHeld)
{
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100);
    Click(palette, nullptr);
    ZVEnvironment const before = *ZVEnv;
    InfiniteMouseMovesZV(1);
    long moved = 0;
    onEvent = [&](ZVEvent& event) {
        if (event.type == ZV_EVENT_MOUSE_MOVE) moved += event.deltaX;
    };
    for (long x : {3000, 6000})
        HeadlessMoveZV(x, 100);
    HeadlessRunZV(0);
    EXPECT_GT(moved, 3000);
    EXPECT_EQ(ZVEnv->pointerX, before.pointerX);
}

// ---- pens -------------------------------------------------------------------------------------------------

TEST_F(InputTest, APenTellsHowHardItIsPressedAndByWhichEnd)
{
    static constexpr struct {
        double pressure;
        long isEraser;
        int told;
        bool isNear;
    } rows[] = {{0.0, 0, 0, true},
                {0.5, 1, 32768, true},
                {7.0, 0, 65535, true},
                {-1.0, 1, 65535, false}};  // the mouse, which has no end
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100);
    HeadlessRunZV(0);
    for (auto const& row : rows) {
        bool const isErasing = row.isNear && row.isEraser;
        std::vector<unsigned> told;
        auto const check = [&](auto const& event) {
            EXPECT_EQ(event.tablet->pressure, row.told) << event.type;
            EXPECT_EQ(event.tablet->inProximity, row.isNear) << event.type;
            // A tick comes of no pen.
            EXPECT_EQ((event.modifiers & ZV_MOD_ERASER) != 0, isErasing && event.type != ZV_CUSTOM_TICK)
                << row.pressure << ": " << event.type;
            told.push_back(event.type);
        };
        onEvent = [&](ZVEvent const& event) {
            if (event.type == ZV_EVENT_MOUSE_DOWN || event.type == ZV_EVENT_MOUSE_UP) check(event);
        };
        onGadget = [&](ZVCustomEvent const& event) {
            if (event.type >= ZV_CUSTOM_MOUSE_UP && event.type <= ZV_CUSTOM_TICK) check(event);
        };
        HeadlessPauseZV(1000);
        HeadlessPenZV(row.pressure, row.isEraser);
        Script_Move(palette, Gadget(palette));
        HeadlessPressZV(ZV_HEADLESS_LEFT);
        HeadlessPauseZV(150);
        HeadlessReleaseZV(ZV_HEADLESS_LEFT);
        HeadlessRunZV(0);
        Click(palette, nullptr);
        for (unsigned type : {+ZV_CUSTOM_MOUSE_DOWN, +ZV_CUSTOM_TICK, +ZV_CUSTOM_MOUSE_UP,
                              +ZV_EVENT_MOUSE_DOWN, +ZV_EVENT_MOUSE_UP})
            EXPECT_TRUE(std::ranges::count(told, type)) << type;
        EXPECT_EQ(TabletInUse(), row.isNear);
    }
}

TEST_F(InputTest, APenIsWhereItIsWhileTheMouseIsHeld)
{
    InfiniteMouseMovesZV(1);
    HeadlessMoveZV(900, 700);
    HeadlessRunZV(0);
    EXPECT_NE(ZVEnv->pointerX, 900);
    HeadlessPenZV(0.1, 0);
    HeadlessMoveZV(300, 400);
    HeadlessRunZV(0);
    EXPECT_EQ(ZVEnv->pointerX, 300);
    EXPECT_EQ(ZVEnv->pointerY, 400);
}

// ---- cursors ----------------------------------------------------------------------------------------------

TEST_F(InputTest, TheCursorIsThatOfWhatIsUnderThePointer)
{
    static constexpr struct {
        unsigned long wanted, shown;
    } rows[] = {{ZV_CURSOR_ARROW, ZV_CURSOR_ARROW},        {1, ZV_CURSOR_ARROW},
                {ZV_CURSOR_TEXT, ZV_CURSOR_TEXT},          {ZV_CURSOR_BUSY, ZV_CURSOR_BUSY},
                {ZV_CURSOR_SLIDE, ZV_CURSOR_SPLIT_ACROSS}, {ZV_CURSOR_SPLIT_DOWN, ZV_CURSOR_SPLIT_DOWN},
                {ZV_CURSOR_GRAB, ZV_CURSOR_GRAB},          {ZV_CURSOR_NONE, ZV_CURSOR_NONE},
                {ZV_CURSOR_COLOR + 1000, ZV_CURSOR_ARROW}};  // nobody has drawn it
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100, {}, true);
    auto const cursor_at = [&](ZVItem* item) {
        Script_Move(palette, item);
        HeadlessRunZV(0);
        return HeadlessCursorZV();
    };
    for (auto const& row : rows) {
        ModifyItemZV(Gadget(palette), ZV_ITEM_CURSOR, row.wanted, 0);
        EXPECT_EQ(cursor_at(Gadget(palette)), row.shown) << row.wanted;
        EXPECT_EQ(cursor_at(Field(palette)), ZV_CURSOR_TEXT) << row.wanted;
        EXPECT_EQ(cursor_at(nullptr), ZV_CURSOR_ARROW) << row.wanted;
    }
    InfiniteMouseMovesZV(1);
    EXPECT_EQ(HeadlessCursorZV(), ZV_CURSOR_NONE) << "a pointer without end is not seen";
    InfiniteMouseMovesZV(0);
    EXPECT_EQ(HeadlessCursorZV(), ZV_CURSOR_ARROW);
}

TEST_F(InputTest, TheBusyCursorShowsOverEverythingOnceWorkIsLong)
{
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100, {}, true);
    Script_Move(palette, Field(palette));
    HeadlessRunZV(0);
    BusyZV();
    HeadlessRunZV(900);
    EXPECT_EQ(HeadlessCursorZV(), ZV_CURSOR_TEXT) << "short work is not seen";
    HeadlessRunZV(300);
    EXPECT_EQ(HeadlessCursorZV(), ZV_CURSOR_BUSY);
    Script_Move(palette, nullptr);
    HeadlessRunZV(0);
    EXPECT_EQ(HeadlessCursorZV(), ZV_CURSOR_BUSY);
    NotBusyZV();
    EXPECT_EQ(HeadlessCursorZV(), ZV_CURSOR_ARROW);
}

// ---- the wheel --------------------------------------------------------------------------------------------

TEST_F(InputTest, TheWheelTurnsWhatIsUnderIt)
{
    constexpr unsigned long bars = ZV_PALF_HSCROLL | ZV_PALF_VSCROLL;
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100, {{ZV_PAL_FLAGS, bars}}, true);
    SetScrollPosZV(palette, ZV_SCROLL_V_MAX, 100, ZV_SCROLL_V_VIEW, 20, ZV_SCROLL_H_MAX, 1000,
                   ZV_SCROLL_H_VIEW, 500, 0);
    Click(palette, Field(palette));
    Script_Move(palette, Gadget(palette));
    Log();
    HeadlessWheelZV(0, 1);
    HeadlessWheelZV(-0.5, 0);
    HeadlessRunZV(0);
    EXPECT_EQ(Log(), (Strings{"1:5/32", "G1:wheel 0 40", "G1:wheel -20 0"}));

    Script_Move(palette, nullptr);
    HeadlessWheelZV(1, -2);
    HeadlessRunZV(0);
    EXPECT_EQ(Log(), (Strings{"1:21", "1:20"}));
    EXPECT_EQ(palette->scroll[7], 6) << "three lines for a notch";
    EXPECT_EQ(palette->scroll[3], 50) << "a tenth of a large view";
    for (int i = 0; i < 4; ++i)
        HeadlessWheelZV(0, 0.25);
    HeadlessWheelZV(0, -50);
    HeadlessWheelZV(0, -1);
    HeadlessRunZV(0);
    EXPECT_EQ(palette->scroll[7], 80);
    EXPECT_EQ(Log(), (Strings{"1:21", "1:21", "1:21", "1:21"})) << "parts of lines add up, the end is one";
}

TEST_F(InputTest, AWindowHasTheBarsOfThePaletteInFront)
{
    constexpr unsigned long fixed = ZV_PALF_PLAIN;  // no room for a grow box, where the bar could be
    ZVPalette* const plain = Show(1, ZV_KIND_DOCUMENT, 100, 100, {{ZV_PAL_FLAGS, fixed}});
    ZVWindow const* const window = plain->window;
    auto const client_width = [window] {
        ZVRectT<long> client;
        GetClientRectZV(window, &client);
        return client.width;
    };
    long const width = client_width();
    ZVPalette* const scrolling =
        Show(2, ZV_KIND_DOCUMENT, 100, 100, {{ZV_PAL_FLAGS, fixed | ZV_PALF_VSCROLL}, {ZV_PAL_WINDOW_OF, 1}});
    ASSERT_EQ(scrolling->window, window);
    EXPECT_EQ(client_width(), width + 15);
    SetScrollPosZV(scrolling, ZV_SCROLL_V_MAX, 100, ZV_SCROLL_V_VIEW, 20, 0);
    // The bar goes while its arrow is held.
    onEvent = [&](ZVEvent& event) {
        if (event.type == ZV_EVENT_SCROLL_V) ActivatePaletteZV(plain, 1);
    };
    HeadlessPauseZV(1000);
    HeadlessClickZV(window->left + width + 7, window->top + window->height - 14 - 8, ZV_HEADLESS_LEFT);
    HeadlessRunZV(500);
    EXPECT_EQ(scrolling->scroll[7], 1);
    EXPECT_EQ(window->activePalette, plain);
    EXPECT_FALSE(window->verticalBar);
    EXPECT_EQ(client_width(), width);
    ActivatePaletteZV(scrolling, 1);
    EXPECT_TRUE(window->verticalBar);
    EXPECT_EQ(client_width(), width + 15);
}

TEST_F(InputTest, TheWheelScrollsLists)
{
    ZVPalette* const palette = Show_List();
    HeadlessRunZV(0);
    long x = 0, y = 0;
    GetItemScreenPosZV(Gadget(palette), &x, &y);
    HeadlessMoveZV(x + 10, y + 10);
    HeadlessWheelZV(0, -1);
    HeadlessClickZV(x + 10, y + 10, ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
    EXPECT_EQ(Gadget(palette)->state, 4);
}

TEST_F(InputTest, AListBehindAnotherWindowHasADimMark)
{
    ZVPalette* const palette = Show_List();
    SetGadgetStateZV(Gadget(palette), 2);
    HeadlessRunZV(0);
    long x = 0, y = 0;
    GetItemScreenPosZV(Gadget(palette), &x, &y);
    auto const mark = [&] { return Pixel(x + 1, y + Gadget(palette)->height / 2); };
    auto const marked = static_cast<uint32_t>(GetColorZV(ZV_PEN_MARKED));
    EXPECT_EQ(mark(), marked);
    ZVPalette* const front = Show(2, ZV_KIND_DOCUMENT, 900, 800);
    HeadlessRunZV(0);
    EXPECT_EQ(mark(), static_cast<uint32_t>(DisableColorZV(ZV_PEN_MARKED)));
    Click(front, nullptr);
    Click(palette, nullptr);
    EXPECT_EQ(mark(), marked);
}

// ---- keys -------------------------------------------------------------------------------------------------

TEST_F(InputTest, AKeyIsACharacterAndACode)
{
    static constexpr struct {
        unsigned long key, modifiers, character, code;
    } rows[] = {{'a', 0, 'a', 'a'},
                {'A', ZV_MOD_SHIFT, 'A', 'a'},
                {'a', ZV_MOD_CAPS_LOCK, 'A', 'a'},
                {'7', ZV_MOD_COMMAND, '7', '7'},
                {0xDC, 0, 0xDC, 0xFC},
                {0x13E, 0, 0, 0},  // the headless keyboard takes the code for Caps Lock, which is none
                {0x416, 0, 0x416, 0},
                {ZV_KEY_F1 + 14, ZV_MOD_ALT, 0, 302},
                {ZV_KEY_DOWN, 0, 31, 306},
                {ZV_KEY_DELETE, 0, 127, 308},
                {ZV_KEY_RETURN, 0, 13, 317},
                {ZV_KEY_INSERT, 0, 5, 319}};
    Show(1, ZV_KIND_DOCUMENT, 100, 100);
    for (auto const& row : rows) {
        std::vector<ZVEvent> keys;
        onEvent = [&](ZVEvent& event) {
            if (event.type == ZV_EVENT_KEY) keys.push_back(event);
        };
        HeadlessHoldZV(row.modifiers);
        HeadlessKeyZV(row.key);
        HeadlessRunZV(0);
        if (row.character == 0 && row.code == 0) {
            EXPECT_TRUE(keys.empty());
            continue;
        }
        ASSERT_EQ(keys.size(), 2U) << row.key;
        for (ZVEvent const& event : keys) {
            EXPECT_EQ(event.item, row.character);
            EXPECT_EQ(event.key, row.code);
        }
        EXPECT_EQ(keys[0].modifiers, row.modifiers);
        EXPECT_EQ(keys[1].modifiers, row.modifiers | ZV_MOD_KEY_UP);
    }
}

TEST_F(InputTest, AKeyThatIsHeldRepeats)
{
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100, {}, true);
    HeadlessRunZV(0);
    Log();
    static constexpr struct {
        bool isForField;
        unsigned long key;
        char const *told, *text;
    } rows[] = {{false, 'x', "A:1 A:1/8192 A:1/8192 A:1/8192 A:1/16384", "abcdef"},
                {true, 'x', "1:5/16 1:5/16 1:5/16 1:5/16 A:1/16384", "abcdefxxxx"},
                {true, ZV_KEY_BACKSPACE, "1:5/16 1:5/8208 1:5/8208 1:5/8208 A:1/16384", "ab"},
                {true, ZV_KEY_F1, "A:1 A:1/8192 A:1/8192 A:1/8192 A:1/16384", "abcdef"}};
    for (auto const& row : rows) {
        SetTextGadgetStateZV(2, "abcdef");
        Click(palette, row.isForField ? Field(palette) : Gadget(palette));
        HeadlessKeyZV(ZV_KEY_END);
        HeadlessRunZV(0);
        Log();
        unsigned long const start = HeadlessMillisecondsZV();
        HeadlessRepeatKeyZV(row.key, 3);
        HeadlessRunZV(0);
        EXPECT_EQ(Joined(Log()), row.told) << row.key;
        EXPECT_STREQ(Field(palette)->editText, row.text);
        EXPECT_GE(HeadlessMillisecondsZV() - start, 500 + 2 * 30UL) << "as it would on a keyboard";
    }
}

// ---- windows ----------------------------------------------------------------------------------------------

TEST_F(InputTest, ACloseBoxAsksFirst)
{
    Show(1, ZV_KIND_DOCUMENT, 100, 100);
    Show(2, ZV_KIND_FIXED, 500, 100);
    HeadlessRunZV(0);
    Log();
    static constexpr struct {
        unsigned short id;
        unsigned long closeBox, askClose;  // results of events 29 and 22
        char const* told;
        bool stays;
    } rows[] = {{1, 0, 1, "1:22", true},  // it is the application that closes documents
                {2, 1, 1, "2:29", true},
                {2, 0, 0, "2:29 2:22", true},
                {2, 0, 1, "2:29 2:22 2:12 2:8", false}};
    for (auto const& row : rows) {
        onEvent = [&](ZVEvent& event) {
            if (event.type == ZV_EVENT_CLOSE_BOX) event.result = row.closeBox;
            if (event.type == ZV_EVENT_ASK_CLOSE) event.result = row.askClose;
        };
        HeadlessCloseBoxZV(Window(row.id));
        HeadlessRunZV(0);
        EXPECT_EQ(Joined(Log()), row.told);
        EXPECT_EQ(FindPaletteZV(row.id) != nullptr, row.stays);
    }
    onEvent = [](ZVEvent& event) {
        if (event.type == ZV_EVENT_ASK_CLOSE) ClosePaletteZV(1);
    };
    HeadlessCloseBoxZV(Window(1));
    HeadlessRunZV(0);
    EXPECT_FALSE(FindPaletteZV(1));
}

TEST_F(InputTest, AWindowThatChangesItsSizeIsLaidOutAgain)
{
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100, {{ZV_PAL_FLAGS, ZV_PALF_ZOOM}});
    HeadlessRunZV(0);
    Log();
    ZVWindow const& window = *palette->window;
    ZVRectT<long> const place{150, 170, 415, 315};
    HeadlessDragFrameZV(palette->window, &place);
    HeadlessRunZV(0);
    EXPECT_EQ(palette->width, 400) << "beside the strip for the grow box";
    EXPECT_EQ(palette->height, 300);
    EXPECT_EQ(window.left, 150);
    EXPECT_EQ(ZVEnv->eraseOnDestroy, 1);

    HeadlessMoveZV(150 + 415 - 5, 170 + 315 - 5);
    HeadlessPressZV(ZV_HEADLESS_LEFT);
    HeadlessMoveZV(150 + 465 - 5, 170 + 300 - 5);
    HeadlessReleaseZV(ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
    EXPECT_EQ(palette->width, 450) << "the grow box follows the mouse";
    EXPECT_EQ(palette->height, 285);
    HeadlessPressZV(ZV_HEADLESS_LEFT);
    HeadlessMoveZV(0, 0);
    HeadlessReleaseZV(ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
    EXPECT_EQ(palette->width, palette->minWidth);
    EXPECT_EQ(Log(), Strings());

    HeadlessZoomBoxZV(palette->window);
    HeadlessRunZV(0);
    EXPECT_EQ(palette->width, 1600 - 2 - 15);
    EXPECT_EQ(Log(), Strings{"1:23"});
}

TEST_F(InputTest, FloatersShowWhileTheApplicationIsInFront)
{
    ZVPalette* const floater = Show(2, ZV_KIND_FIXED, 500, 100);
    auto const isSeen = [&] {
        auto* const picture = static_cast<ZVBufferRGBA8*>(HeadlessPictureZV(nullptr));
        auto const* const pixel = picture->GetIterator(floater->window->left + 2, floater->window->top + 2);
        bool const isDesk = pixel->Blue() > pixel->Red();
        FreeBitmapZV(picture);
        return !isDesk;
    };
    auto const leave = [] {
        HeadlessLeaveZV();
        HeadlessRunZV(0);
    };
    HeadlessRunZV(0);
    leave();
    EXPECT_TRUE(isSeen()) << "it is all there is of the application";
    HeadlessReturnZV();
    Show(1, ZV_KIND_DOCUMENT, 100, 100);
    HeadlessRunZV(0);
    leave();
    EXPECT_FALSE(isSeen());
    HeadlessReturnZV();
    HeadlessRunZV(0);
    EXPECT_TRUE(isSeen());
}

TEST_F(InputTest, TheDesktopHandsOverFilesAndAsksForTheEnd)
{
    std::string path;
    bool isBusy = true;
    onEvent = [&](ZVEvent& event) {
        if (event.type == ZV_EVENT_OPEN_DOC) path = reinterpret_cast<char const*>(event.item);
        if (event.type == ZV_EVENT_CLOSE_APP) event.result = isBusy;
    };
    HeadlessOpenFileZV("/tmp/some file.txt");
    HeadlessOpenFileZV("not absolute");
    HeadlessQuitZV();
    EXPECT_EQ(HeadlessRunZV(0), 1) << "the application sees to it";
    EXPECT_EQ(path, "Root:\\tmp\\some file.txt");
    isBusy = false;
    HeadlessQuitZV();
    EXPECT_EQ(HeadlessRunZV(0), 0);
}

}  // namespace
