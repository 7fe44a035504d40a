// Sliders: dragging, stepping, and typing a value.
#include "ControlTest.h"

#include <cmath>

namespace {

class Sliders : public ControlTest {
protected:
    /// A slider of 108 by 20, whose values have 100 places, with that range and value.
    ZVItem* Show_Slider(double min, double max, double value, char decimals = 0, char const* label = nullptr)
    {
        ZVItem* const item = Show_One(ZV_GAD_SLIDER, 108, 20, {}, label);
        SetCurrentPaletteZV(PaletteId);
        SetupSliderZV(1, min, max, min, max, decimals);
        SetGadgetStateZV(1, value);
        Events();
        return item;
    }

    static SliderState& State(unsigned long id = 1) { return *static_cast<SliderState*>(Item(id)->object); }
    static ZVPalette* Entry() { return FindPaletteZV(NumEntryPalette); }

    static void Click_Slider(ZVItem const* item, long x = 50)
    {
        Press(item, x, 10);
        Release();
    }

    /// Opens the field and types a text into it.
    static void Type_Into(ZVItem const* item, char const* keys)
    {
        Click_Slider(item);
        Ticks(4);
        EXPECT_TRUE(Entry());
        Play(keys);
    }
};

constexpr unsigned long shift = ZV_MOD_SHIFT, control = ZV_MOD_CONTROL, alt = ZV_MOD_ALT;

}  // namespace

TEST_F(Sliders, AreDraggedByTheWayOfTheMouse)
{
    struct {
        unsigned long held;
        long from, to;
        double value;
        Strings reports;
    } const rows[] = {
        {0, 50, 57, 57, {"press 1", "change 1", "release 1"}},
        {0, 5, 1, 46, {"press 1", "change 1", "release 1"}},
        {shift, 50, 53, 80, {"press 1", "change 1", "release 1"}},
        {control, 50, 53, 50.3, {"press 1", "change 1", "release 1"}},
        {0, 50, 400, 100, {"press 1", "change 1", "release 1"}},
        {0, 50, -400, 0, {"press 1", "change 1", "release 1"}},
        {alt, 83, 83, 80, {"press 1", "release 1"}},
        {alt, 0, 0, 0, {"press 1", "release 1"}},
        {alt, 53, 63, 60, {"press 1", "change 1", "release 1"}},
    };
    ZVItem const* const item = Show_Slider(0, 100, 50);
    for (auto const& row : rows) {
        SetGadgetStateZV(1, 50);
        Events();
        HeadlessHoldZV(row.held);
        Press(item, row.from, 10);
        EXPECT_TRUE(item->pressed);
        if (row.to != row.from) Move(item, row.to, 10);
        Release();
        HeadlessHoldZV(0);
        EXPECT_NEAR(item->realValue, row.value, 1e-9) << row.from << " to " << row.to;
        EXPECT_EQ(item->state, std::lround(row.value));
        EXPECT_EQ(Events(), row.reports) << row.held << ": " << row.from << " to " << row.to;
    }
    EXPECT_FALSE(ZVEnv->infiniteMouse);
}

TEST_F(Sliders, ControlDividesTheStepExactly)
{
    ZVItem const* const item = Show_Slider(0, 10, 0);
    State().Step = 3;
    HeadlessHoldZV(control);
    Press(item, 50, 10);
    Move(item, 51, 10);
    EXPECT_EQ(item->realValue, 0.3);
    Release();
    HeadlessHoldZV(0);
}

TEST_F(Sliders, ReachAllStepsOfAFraction)
{
    ZVItem const* const item = Show_Slider(0, 10, 0.1, 1);
    State().Step = 0.1;
    Press(item, 50, 10);
    for (int i = 1; i <= 60; ++i) {
        Move(item, i == 1 ? 51 : 52, 10);  // from its second movement on the pointer is held
        EXPECT_NEAR(item->realValue, 0.1 + 0.1 * i, 1e-9);
        EXPECT_EQ(State().StepCount, i);
    }
    Release();
}

TEST_F(Sliders, QuadraticOnesHaveMoreRoomForSmallValues)
{
    ZVItem const* const item = Show_Slider(0, 100, 0);
    State().Flags = ZV_SLIDERF_QUADRATIC;
    HeadlessHoldZV(alt);
    Click_Slider(item, 53);
    HeadlessHoldZV(0);
    EXPECT_NEAR(item->realValue, 25, 1e-9);
    Picture const picture(1);
    EXPECT_EQ(picture.At(53, 15), Color(ZV_PEN_TEXT));
    EXPECT_EQ(picture.At(54, 15), Color(ZV_PEN_TEXT));
    EXPECT_NE(picture.At(55, 15), Color(ZV_PEN_TEXT));
}

TEST_F(Sliders, ASecondButtonTakesTheDragBack)
{
    ZVItem const* const item = Show_Slider(0, 100, 50);
    Press(item, 50, 10);
    Move(item, 60, 10);
    EXPECT_EQ(item->realValue, 60);
    HeadlessPressZV(ZV_HEADLESS_RIGHT);
    HeadlessReleaseZV(ZV_HEADLESS_RIGHT);
    HeadlessRunZV(0);
    EXPECT_EQ(item->realValue, 50);
    EXPECT_EQ(item->state, 50);
    EXPECT_FALSE(item->pressed || ZVEnv->infiniteMouse);
    Move(item, 70, 10);
    Release();
    Ticks(5);
    EXPECT_EQ(item->realValue, 50);
    EXPECT_FALSE(Entry());
    EXPECT_EQ(Events(), (Strings{"press 1", "change 1", "release 1"}));
}

TEST_F(Sliders, AClickWithControlIsAStep)
{
    ZVItem const* const item = Show_Slider(0, 100, 50);
    for (auto const& [x, value] : {std::pair(90, 51), std::pair(10, 50), std::pair(10, 49)}) {
        HeadlessHoldZV(control);
        Click_Slider(item, x);
        HeadlessHoldZV(0);
        EXPECT_EQ(item->realValue, value);
        EXPECT_EQ(Events(), Strings{"release 1"});
    }
}

TEST_F(Sliders, AClickOpensTheFieldAfterThreeTicks)
{
    ZVItem const* const item = Show_Slider(0, 100, 50);
    Click_Slider(item);
    Ticks(1);
    EXPECT_FALSE(Entry());
    Ticks(3);
    EXPECT_TRUE(Entry());
    EXPECT_TRUE(State().EntryOpen);
    Play("<Esc>");
    EXPECT_FALSE(Entry() || State().EntryOpen);

    Click_Slider(item);
    Move(item, 50, -5);
    Ticks(5);
    EXPECT_FALSE(Entry()) << "the mouse has left";

    Click_Slider(item);
    HeadlessClickZV(0, 0, ZV_HEADLESS_LEFT);
    Move(item, 50, 10);
    HeadlessPauseZV(1000);
    for (int i = 0; i < 2; ++i) {
        HeadlessPressZV(ZV_HEADLESS_LEFT);
        HeadlessReleaseZV(ZV_HEADLESS_LEFT);
    }
    HeadlessRunZV(0);
    EXPECT_TRUE(Entry()) << "a double click";
    EXPECT_EQ(Events(), Strings{});
}

TEST_F(Sliders, TakeWhatIsTyped)
{
    struct {
        char const* why;
        uint32_t flags;
        double value;
        char const* keys;
        double valueAfter;
        Strings reports;
    } const rows[] = {
        {"a number", 0, 50, "12.5<Return>", 12.5, {"gadget 1"}},
        {"Enter does the same", 0, 50, "12<Enter>", 12, {"gadget 1"}},
        {"nothing", 0, 0.125, "<Return>", 0.125, {"gadget 1"}},
        {"held within the limits", 0, 50, "1e9<Return>", 100, {"gadget 1"}},
        {"below them", 0, 50, "-1e9<Return>", -100, {"gadget 1"}},
        {"the other sign", ZV_SLIDERF_NEGATE, 50, "-20<Return>", 20, {"gadget 1"}},
        {"given up", ZV_SLIDERF_NEGATE, 50, "12<Esc>", 50, {}},
        {"no other slider", 0, 50, "12<Tab>", 50, {}},
    };
    for (auto const& row : rows) {
        ZVItem const* const item = Show_Slider(-100, 100, row.value);
        State().Flags = row.flags;
        Type_Into(item, row.keys);
        EXPECT_EQ(item->realValue, row.valueAfter) << row.why;
        std::erase_if(events, [](std::string const& event) { return event.starts_with("key"); });
        EXPECT_EQ(Events(), row.reports) << row.why;
        ClosePaletteZV(PaletteId);
        EXPECT_FALSE(Entry()) << row.why;
    }
}

TEST_F(Sliders, TakeTimes)
{
    for (auto const& [keys, frames] :
         std::initializer_list<std::pair<char const*, double>>{{"<C-a>1:00<Return>", 30},
                                                               {"<C-a>+10<Return>", 110},
                                                               {"<C-a> -10<Return>", 90},
                                                               {"<Return>", 100}}) {
        ZVItem const* const item = Show_Slider(0, 1000, 100);
        State().UseTimecode = 1;
        Type_Into(item, keys);
        EXPECT_EQ(item->realValue, frames) << keys;
        ClosePaletteZV(PaletteId);
    }
}

TEST_F(Sliders, TabLeadsToTheNextOne)
{
    Show([] {
        constexpr unsigned short below = ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER);
        for (short group = 1; group <= 2; ++group) {
            InitGroupZV();
            auto const id = static_cast<unsigned short>(group * 10);
            AddGadgetZV(id, below, -1, ZV_GAD_SLIDER, ZV_SIZE_LARGE, "Slider", nullptr);
            AddGadgetZV(id + 1, below, -1, ZV_GAD_BUTTON, ZV_SIZE_LARGE, "Button", nullptr);
            AddGadgetZV(id + 2, below, -1, ZV_GAD_SLIDER, ZV_SIZE_LARGE, "Slider", nullptr);
            EndGroupZV(group, below, -1, "", nullptr);
        }
        ItemEnabledZV(12, 0);
    });
    Type_Into(Item(10), "5<Tab>");
    EXPECT_EQ(Item(10)->realValue, 5);
    EXPECT_TRUE(State(20).EntryOpen);
    Play("6<Tab>7<Tab>");
    EXPECT_EQ(Item(20)->realValue, 6);
    EXPECT_EQ(Item(22)->realValue, 7);
    EXPECT_TRUE(State(10).EntryOpen) << "in a ring, past the disabled one";
    Play("<S-Tab>8<Return>");
    EXPECT_EQ(Item(22)->realValue, 8);
    EXPECT_FALSE(Entry());
}

TEST_F(Sliders, MayGoWithTheirPaletteAtAnyTime)
{
    for (int const at : {0, 1, 2, 3}) {
        ZVItem const* const item = Show_Slider(0, 100, 50);
        onGadgetEvent = [&](ZVEvent const&) {
            if (static_cast<int>(events.size()) > at) ClosePaletteZV(PaletteId);
        };
        if (at == 3) {
            Type_Into(item, "7<Return>");
        } else {
            Press(item, 50, 10);
            Move(item, 60, 10);
            Release();
        }
        onGadgetEvent = nullptr;
        ClosePaletteZV(PaletteId);
        EXPECT_FALSE(FindPaletteZV(PaletteId) || Entry() || ZVEnv->infiniteMouse) << at;
    }
    Click_Slider(Show_Slider(0, 100, 50));
    Ticks(4);
    EXPECT_TRUE(Entry());
    ClosePaletteZV(PaletteId);
    EXPECT_FALSE(Entry()) << "a slider takes its field along";
}

TEST_F(Sliders, ShowAMarkerABandAndTheFrame)
{
    ZVItem* const item = Show_Slider(0, 100, 50, 0, "Level");
    uint32_t const body = Color(0xFF00000B), strip = Color(ShadeColorZV(body, 0.85));
    auto const at = [](long x, long y) { return Picture(1).At(x, y); };
    EXPECT_EQ(at(53, 13), Color(ZV_PEN_TEXT));
    EXPECT_EQ(at(54, 17), Color(ZV_PEN_TEXT));
    EXPECT_EQ(at(52, 13), strip);
    EXPECT_EQ(at(55, 17), strip);
    EXPECT_EQ(at(2, 12), body) << "above the strip";
    EXPECT_EQ(at(40, 0), Color(ShadeColorZV(ZV_PEN_PALETTE, 0.75)));
    EXPECT_EQ(at(40, 19), Color(ShadeColorZV(ZV_PEN_PALETTE, 1.25)));
    EXPECT_EQ(at(40, 18), Color(ShadeColorZV(body, 0.25)));

    Press(item, 50, 10);
    Move(item, 60, 10);
    uint32_t const held = Color(ZV_PEN_FACE_ON);
    EXPECT_EQ(at(53, 14), Color(ZV_PEN_TAB_BAR)) << "where the drag began";
    EXPECT_EQ(at(63, 2), Color(ZV_PEN_TEXT)) << "the marker grows to the top";
    EXPECT_EQ(at(2, 2), held);
    State().Relative = 1;
    UpdateGadgetZV(item);
    uint32_t const dash = Color(ShadeColorZV(held, 0.65));
    for (long y : {13, 17})
        for (long x = 2; x < 106; ++x)
            EXPECT_EQ(at(x, y) == dash, ((x - 2 - (60 - y)) % 8 + 8) % 8 < 4) << x << ", " << y;
    Release();
    EXPECT_EQ(at(50, 15), strip) << "no band at rest";
}
