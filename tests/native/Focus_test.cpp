// Which field or list the keys go to, and what is reported when that changes.
#include "FieldTest.h"

namespace {

class FocusTest : public FieldTest {
protected:
    /// Fields 1 and 2, a button 3, an editor 4 and a list 5 in two groups.
    ZVPalette* Show_Form()
    {
        return Show([] {
            Add_Group(1, {{1, ZV_GAD_STRING}, {2, ZV_GAD_INTEGER}, {3, ZV_GAD_BUTTON}});
            Add_Group(2, {{4, ZV_GAD_EDITOR}, {5, ZV_GAD_LIST}});
        });
    }
};

TEST_F(FocusTest, TabGoesRoundWhatTakesKeys)
{
    ZVPalette* const palette = Show_Form();
    Play("<Tab>");
    EXPECT_EQ(Focus(), 0) << "without a focus Tab is a key like any other";
    EXPECT_EQ(events, Strings{"key 313"});

    Activate_First_Gadget(palette);
    events.clear();
    Play("<Tab>");
    EXPECT_EQ(Focus(), 2);
    EXPECT_TRUE(Tab_to_Next_Gad());
    EXPECT_EQ(Focus(), 4) << "the button is passed over, the next group follows";
    EXPECT_EQ(events, (Strings{"release 1", "release 2"}));
    Play("<Tab>x");
    EXPECT_EQ(Text(4), "\tx");
    EXPECT_EQ(Focus(), 4) << "an editor keeps its tabs";
    Activate_First_Gadget(palette);
    events.clear();
    Play("<S-Tab>");
    EXPECT_EQ(Focus(), 5);
    EXPECT_EQ(events, (Strings{"release 1", "press 5"}));
    Play("<Tab>");
    EXPECT_EQ(Focus(), 1) << "behind the last comes the first";
    ItemEnabledZV(2, 0);
    ItemVisibleZV(4, 0);
    Play("<Tab>");
    EXPECT_EQ(Focus(), 5) << "what is disabled or hidden takes no keys";
    Play("<Tab>");
    ItemEnabledZV(1, 0);
    Play("x<Tab>");
    EXPECT_EQ(Text(1), "") << "nor does what has been disabled since";
    EXPECT_EQ(Focus(), 5);
}

TEST_F(FocusTest, TheOnlyFieldKeepsTheFocusAsItIs)
{
    Show_Field(ZV_GAD_STRING, "text");
    Play("<End><Tab><S-Tab>");
    EXPECT_EQ(Marked_Text(), "text|");
    EXPECT_TRUE(events.empty());
}

TEST_F(FocusTest, ReturnCommits)
{
    ZVPalette* const palette = Show_Form();
    Activate_First_Gadget(palette);
    events.clear();
    Play("a<Return>b");
    EXPECT_EQ(Text(1), "a");
    EXPECT_EQ(Focus(), 0);
    EXPECT_EQ(events, (Strings{"change 1", "release 1", "key 98"}));
}

TEST_F(FocusTest, APressTakesTheFocusAndOneElsewhereLosesIt)
{
    Show_Form();
    Click(1, 20, 10);
    EXPECT_EQ(Focus(), 1);
    EXPECT_TRUE(events.empty()) << "the press that gives the focus reports nothing";
    Click(4, 20, 10);
    EXPECT_EQ(Focus(), 4);
    EXPECT_NE(std::find(events.begin(), events.end(), "release 1"), events.end());
    events.clear();
    Click(5, 8, 3);
    EXPECT_EQ(Focus(), 5);
    EXPECT_EQ(Item(5)->state, 1);
    EXPECT_EQ(Strings(events.end() - 2, events.end()), (Strings{"press 5", "release 5"}));
}

TEST_F(FocusTest, ArrowsSelectRows)
{
    Show_Form();
    Click(5, 8, 3);
    events.clear();
    Play("<Down>");
    EXPECT_EQ(Item(5)->state, 2);
    EXPECT_EQ(events, Strings{"release 5"});
    Play("<M-Down><Down>");
    EXPECT_EQ(Item(5)->state, 3) << "beyond the last row is nothing";
    Play("<M-Up><Left>x");
    EXPECT_EQ(Item(5)->state, 1);
    EXPECT_EQ(events, (Strings{"release 5", "release 5", "release 5", "key 120"}))
        << "other keys are the application's";
}

TEST_F(FocusTest, AScheduledItemIsTheNext)
{
    ZVPalette* const palette = Show_Form();
    ScheduleItemForFocusZV(Item(4));
    HeadlessRunZV(200);
    EXPECT_EQ(Focus(), 4);
    ItemVisibleZV(2, 0);
    ScheduleItemForFocusZV(Item(2));
    HeadlessRunZV(200);
    EXPECT_EQ(Focus(), 4) << "it waits until it can have it";
    ItemVisibleZV(2, 1);
    Activate_First_Gadget(palette);
    EXPECT_EQ(Focus(), 2);
    // A field whose text will not do asks for the focus again when it loses it.
    onGadgetEvent = [](ZVEvent const& event) {
        if (event.modifiers & ZV_MOD_RELEASE) ScheduleItemForFocusZV(Event_Item(&event));
    };
    Play("<Tab>");
    EXPECT_EQ(Focus(), 2);
}

/// A palette may go in any event of its own; whoever moved the focus notices.
TEST_F(FocusTest, ThePaletteMayCloseWhenAFieldReports)
{
    for (char const* keys : {"<Tab>", "<Return>", "x", "<C-v>", "<S-Tab>"}) {
        ZVPalette* const palette = Show_Form();
        HeadlessSetClipboardZV("text");
        Activate_First_Gadget(palette);
        onGadgetEvent = [](ZVEvent const&) { ClosePaletteZV(PaletteId); };
        Play(keys);
        EXPECT_EQ(FindPaletteZV(PaletteId), nullptr) << keys;
        EXPECT_EQ(Focus(), 0) << keys;
        onGadgetEvent = nullptr;
    }
    for (unsigned long pressed : {1UL, 4UL, 5UL}) {
        ZVPalette* const palette = Show_Form();
        Activate_First_Gadget(palette);
        onGadgetEvent = [](ZVEvent const&) { ClosePaletteZV(PaletteId); };
        Click(pressed, 8, 8);
        EXPECT_EQ(FindPaletteZV(PaletteId), nullptr) << pressed;
        onGadgetEvent = nullptr;
    }
}

TEST_F(FocusTest, ReturnInADialogCommitsAndGoesOn)
{
    std::string text;
    InitPaletteZV();
    Add_Group(1, {{1, ZV_GAD_STRING}});
    EndPaletteZV(PaletteId, "Dialog", nullptr);
    HeadlessPauseZV(200);
    HeadlessTypeZV("abc");
    HeadlessKeyZV(ZV_KEY_RETURN);
    HeadlessPauseZV(200);
    HeadlessKeyZV(ZV_KEY_ESCAPE);
    onKey = [&](ZVEvent const& event) {
        if (event.key == ZV_KEY_RETURN) text = Text(1);
        if (event.key == ZV_KEY_ESCAPE) ClosePaletteZV(PaletteId);
    };
    EXPECT_EQ(DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_MODAL, 0), 1);
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(events, (Strings{"change 1", "change 1", "change 1", "release 1", "key 317", "key 316"}));
}

}  // namespace
