// The loops of the application and of dialogs, and what their timers do, on the clock of the desktop in
// memory.
#include "DesktopTest.h"

#include <ZVKey.h>

namespace {

class LoopTest : public DesktopTest {
protected:
    /// The clock when the loop is over.
    static long Run()
    {
        auto const start = static_cast<long>(HeadlessMillisecondsZV());
        HandleGUIZV();
        return static_cast<long>(HeadlessMillisecondsZV()) - start;
    }

    /// Calls a function with the number of each tick, from 1.
    static void On_Tick(std::function<void(long tick)> act)
    {
        onEvent = [act, count = 0L](ZVEvent& event) mutable {
            if (event.type == ZV_EVENT_TICK && !event.palette) act(++count);
        };
    }
};

TEST_F(LoopTest, TicksComeTenTimesASecond)
{
    On_Tick([](long tick) {
        if (tick == 21) ExitZV();
    });
    EXPECT_EQ(Run(), 2000) << "the first one at once";
    EXPECT_EQ(Run(), 0) << "an end that was asked for stays";
}

TEST_F(LoopTest, JobsRunEachMillisecondOfTheApplicationsLoop)
{
    static long slices;
    slices = 0;
    ZVJob* const job = AddJobZV([](ZVJob*, unsigned long message) -> long {
        slices += message == ZV_JOB_RUN;
        return 1;
    });
    StartJobZV(job, 0);
    On_Tick([&](long tick) {
        if (tick == 2) {
            EXPECT_EQ(slices, 100);
            ZVEnv->jobsBlocked = 1;
        }
        if (tick == 4) {
            EXPECT_EQ(slices, 100) << "held back";
            AbortJobZV(job);
        }
        if (tick == 6) ExitZV();
    });
    EXPECT_EQ(Run(), 500);
    EXPECT_EQ(AdvanceGUIZV(0), 0);
    RemoveJobZV(job);
}

TEST_F(LoopTest, DialogsEndInAnyOrder)
{
    std::string ends;
    On_Tick([&](long tick) {
        if (tick == 3) {
            Show(9, ZV_KIND_MODAL, 100, 100);
            ends += "outer";
        }
        if (tick == 5) {
            Show(10, ZV_KIND_MODAL, 200, 200);
            ends += "inner ";
        }
        if (tick == 7) ClosePaletteZV(9);
        if (tick == 9) {
            EXPECT_EQ(ends, "") << "the outer one waits for the inner one's loop";
            ClosePaletteZV(10);
        }
        if (tick == 11) ExitZV();
    });
    EXPECT_EQ(Run(), 1000);
    EXPECT_EQ(ends, "inner outer");
    EXPECT_EQ(ZVEnv->modalDepth, 0);
    EXPECT_EQ(ZVEnv->guiLevel, 0);
}

TEST_F(LoopTest, ADialogThatAFieldClosesAsItOpensIsOver)
{
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100, {}, true);
    Script_Click(palette, Field(palette));
    HeadlessRunZV(0);
    ASSERT_EQ(ZVEnv->focusedTextItem, Field(palette));
    onEvent = [](ZVEvent& event) {
        if (event.type == ZV_EVENT_GADGET) ClosePaletteZV(9);  // of the field, which loses the focus
        if (event.type == ZV_EVENT_TICK && !event.palette && !ZVEnv->modalPalette) {
            ADD_FAILURE() << "the application's loop runs in place of the dialog's";
            ExitZV();
        }
    };
    Show(9, ZV_KIND_MODAL, 300, 300);
    EXPECT_EQ(ZVEnv->modalDepth, 0);
}

TEST_F(LoopTest, TheEndOfTheApplicationEndsDialogsAsWell)
{
    On_Tick([](long tick) {
        if (tick == 2) Show(9, ZV_KIND_MODAL, 100, 100);
        if (tick == 4) ExitZV();
    });
    EXPECT_EQ(Run(), 300);
}

TEST_F(LoopTest, AReleaseIsNotLostWhenADialogOpens)
{
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100);
    onGadget = [](ZVCustomEvent const& event) {
        if (event.type == ZV_CUSTOM_MOUSE_DOWN) Show(9, ZV_KIND_MODAL, 300, 300);
    };
    onEvent = [](ZVEvent& event) {
        if (event.type == ZV_EVENT_KEY) ClosePaletteZV(9);
    };
    HeadlessRunZV(0);
    Log();
    Script_Click(palette, Gadget(palette));
    HeadlessPauseZV(500);
    HeadlessKeyZV(ZV_KEY_ESCAPE);
    HeadlessRunZV(0);
    EXPECT_EQ(Log(), (Strings{"G1:108/1", "1:4", "G1:107", "9:1", "9:12", "9:8"}));
    EXPECT_EQ(ZVEnv->trackingItem, nullptr);
    EXPECT_EQ(ZVEnv->buttonState, 0U);
}

TEST_F(LoopTest, APressThatClosesItsWindowLeavesNothingHeld)
{
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100);
    ZVPalette* const other = Show(2, ZV_KIND_FIXED, 500, 100);
    onGadget = [](ZVCustomEvent const& event) {
        if (event.type == ZV_CUSTOM_MOUSE_DOWN) ClosePaletteZV(1);
    };
    Click(palette, Gadget(palette));
    onGadget = nullptr;
    Log();
    Click(other, Gadget(other));
    Strings const told = Log();
    EXPECT_EQ(told.at(told.size() - 3), "G2:108/1");
    EXPECT_EQ(told.back(), "G2:107");
}

}  // namespace
