// Activation, the loops, their timers and the busy cursor.
#include "EventTest.h"

namespace {

class Activation : public EventTest {
protected:
    ZVPalette* Show(uint32_t id, uint32_t kind) { return Add_Palette(Add_Window(0, 0), id, kind); }
};

class Loop : public EventTest {};

}  // namespace

TEST_F(Activation, DocumentsAndFloatersAreActiveSideBySide)
{
    ZVPalette* const documents[] = {Show(1, ZV_KIND_DOCUMENT), Show(2, ZV_KIND_DOCUMENT)};
    ZVPalette* const floater = Show(3, ZV_KIND_FLOATER);
    ZVPalette* const fixed = Show(4, ZV_KIND_FIXED);
    ZVPalette* const silent = Show(5, ZV_KIND_FLOATER);
    silent->flags = ZV_PALF_NO_ACTIVATE;
    struct {
        char const* why;
        ZVPalette* activated;
        char const* log;
    } const rows[] = {
        {"the first document", documents[0], "P1:11 P1:9"},
        {"it again", documents[0], ""},
        {"a floater leaves the document alone", floater, "P1:10 P3:9"},
        {"back to the document", documents[0], "P3:10 P1:9"},
        {"another document", documents[1], "P1:12 P1:10 P2:11 P2:9"},
        {"a palette without tabs", fixed, "P2:10 P4:9"},
        {"a document behind a floater", documents[0], "P2:12 P4:10 P1:11 P1:9"},
        {"one that takes no part", silent, ""},
        {"a dialog", Show(6, ZV_KIND_MODAL), ""},
        {"a pop-up", Show(7, ZV_KIND_TRANSIENT), ""},
    };
    for (auto const& row : rows) {
        Do_WindowActivation(row.activated->window);
        EXPECT_EQ(Log(), row.log) << row.why;
    }
    EXPECT_EQ(ZVEnv->activeDocument, documents[0]);
}

TEST_F(Loop, RunsTheApplicationsOrTheModalPalettes)
{
    using Calls = std::vector<std::string>;
    ZVPalette* const dialog = Add_Palette(Add_Window(0, 0), 1, ZV_KIND_MODAL);
    desktop.modalLoop = [] {
        EXPECT_EQ(ZVEnv->guiLevel, 2);
        EXPECT_EQ(ZVEnv->eventsSuspended, 0);
        ZVEnv->modalPalette = nullptr;
        ZVEnv->modalDepth = 0;
    };
    desktop.applicationLoop = [dialog] {
        EXPECT_EQ(ZVEnv->guiLevel, 1);
        EXPECT_EQ(std::exchange(desktop.calls, {}), (Calls{"drop focus", "application loop"}));
        ZVEnv->modalPalette = dialog;
        ZVEnv->modalDepth = ZVEnv->eventsSuspended = 1;
        HandleGUIZV();
        EXPECT_EQ(ZVEnv->eventsSuspended, 1);
    };
    EXPECT_EQ(HandleGUIZV(), 1);
    EXPECT_EQ(desktop.calls, (Calls{"drop focus", "first gadget", "flush", "modal loop", "flush"}));
    EXPECT_EQ(ZVEnv->guiLevel, 0);
}

TEST_F(Loop, TheTickTimerCountsAndReportsCapsLockOnceForEachChange)
{
    struct {
        uint32_t keyboard;
        char const* log;
    } const rows[] = {
        {0, "A:6"}, {ZV_MOD_CAPS_LOCK, "A:6 A:1"}, {ZV_MOD_CAPS_LOCK, "A:6"}, {ZV_MOD_SHIFT, "A:6 A:1"}};
    onEvent = [](auto const&, ZVEvent* event) {
        EXPECT_EQ(event->modifiers, desktop.keyboard | ZV_MOD_BUTTON);
        if (event->type != ZV_EVENT_KEY) return;
        EXPECT_EQ(event->key, ZV_KEY_CAPS_LOCK);
        EXPECT_EQ(event->item, ZV_KEY_CAPS_LOCK);
    };
    ZVEnv->buttonState = ZV_MOD_BUTTON | ZV_MOD_CONTEXTUAL;
    for (auto const& row : rows) {
        desktop.keyboard = row.keyboard;
        AppTickTimerProcZV();
        EXPECT_EQ(Log(), row.log);
    }
    EXPECT_EQ(ZVEnv->ticks, 4u);
    EXPECT_EQ(desktop.calls.size(), 4u) << "the caret's time";
}

TEST_F(Loop, TheBusyCursorMovesAfterASecond)
{
    Set_Cursor(ZV_CURSOR_TEXT);
    desktop.cursors.clear();
    BusyZV();
    BusyZV();
    Set_Cursor(ZV_CURSOR_OWN);
    for (int step = 0; step < 50; ++step)
        Do_VBL();
    EXPECT_TRUE(desktop.cursors.empty());
    for (int step = 0; step < 1 + 26 * 8; ++step)
        Do_VBL();
    EXPECT_EQ(desktop.cursors, (std::vector<uint16_t>{128, 129, 130, 131, 132, 133, 134, 135, 128}));
    NotBusyZV();
    EXPECT_EQ(desktop.cursors.size(), 9u);
    NotBusyZV();
    NotBusyZV();
    EXPECT_EQ(desktop.cursors.back(), 0);
    EXPECT_EQ(ZVEnv->busyLevel, 0);
    EXPECT_EQ(ZVEnv->cursor, 0);
}
