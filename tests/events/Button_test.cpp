// Buttons, toggles, radios and checks: what presses do to them, and what can be seen of it.
#include "EventTest.h"
#include "draw/DrawTestTools.h"

namespace {

class Gadgets : public EventTest {
protected:
    Gadgets()
    {
        desktop.port = bitmap->World;
        ZVEnv->callback = palette->callback = group->callback = nullptr;
        onEvent = [&](auto const&, ZVEvent* event) {
            if (event->type == ZV_EVENT_GADGET) reports.push_back(event->modifiers);
        };
    }

    /// A gadget at 20, 20, on screen.
    ZVItem* Add(ZVGadgetType type, TagItem* tags = nullptr)
    {
        ZVItem* item = Add_Item(group, 20, 5, 4, 40, 16);
        item->type = type;
        item->customFunc = type == ZV_GAD_CHECK ? CheckRadioCustomFunc : ButtonCustomFunc;
        item->tags = tags;
        item->native = reinterpret_cast<ZVNativeItem*>(item);
        return item;
    }

    /// d press, D press of a double click, o off the gadget, i back onto it, u release.
    static void Do(char const* steps)
    {
        for (long x = 30; *steps; ++steps) {
            if (*steps == 'o' || *steps == 'i') x = *steps == 'o' ? 150 : 30;
            Handle_MouseMove(x, 25);
            Custom_Gad_MouseMove(x, 25);
            if (*steps == 'd' || *steps == 'D') Custom_Gad_MouseDown(x, 25, *steps == 'D' ? 2 : 1, 0);
            if (*steps == 'u') Custom_Gad_MouseUp(x, 25);
        }
        ZVEnv->modifiers = ZVEnv->lastClickTime = 0;
    }

    void Take_Away(ZVItem* item)
    {
        item->flags |= ZV_ITEMF_HIDDEN;
        Do("o");
    }

    void Draw(ZVItem* item, uint16_t type = ZV_CUSTOM_DRAW)
    {
        ZVCustomEvent event = Custom_Event(type, item);
        EXPECT_EQ(Do_CustomEvent(&event), 1);
    }

    /// A pixel of the gadget.
    unsigned long At(long x, long y) const { return DrawTest::Get_Pixel(*bitmap, 20 + x, 20 + y) & 0xFFFFFF; }
    bool Is_Sunken() const { return At(1, 1) == GetColorZV(ZV_PEN_SHADOW); }

    DrawTest::BitmapPtr bitmap{AllocNativeBitmapZV(120, 60, 32)};
    ZVPalette* palette = Add_Palette(Add_Window(0, 0), 1);
    ZVGroup* group = Add_Group(palette, 10, 10, 100, 60);
    std::vector<uint32_t> reports;
};

constexpr uint32_t press = ZV_MOD_PRESS | ZV_MOD_BUTTON, release = ZV_MOD_RELEASE;
constexpr uint32_t set = ZV_ITEMF_EXCLUSIVE, off = ZV_ITEMF_DISABLED;

}  // namespace

TEST_F(Gadgets, ActByPressAndRelease)
{
    TagItem momentary[] = {{ZV_ITEM_MOMENTARY, 0}, {}};
    struct {
        ZVGadgetType type;
        uint32_t flags;
        int state;
        char const* steps;
        int stateAfter;
        std::vector<uint32_t> reports;
        TagItem* tags;
    } const rows[] = {
        {ZV_GAD_BUTTON, 0, 0, "du", 0, {release}, nullptr},
        {ZV_GAD_BUTTON, 0, 0, "dou", 0, {}, nullptr},
        {ZV_GAD_BUTTON, 0, 0, "doiu", 0, {release | ZV_MOD_DRAGGED}, nullptr},
        {ZV_GAD_BUTTON, off, 0, "du", 0, {}, nullptr},
        {ZV_GAD_TOGGLE, 0, 0, "du", 1, {release}, nullptr},
        {ZV_GAD_TOGGLE, 0, 1, "du", 0, {release}, nullptr},
        {ZV_GAD_TOGGLE, 0, 1, "dou", 1, {}, nullptr},
        {ZV_GAD_TOGGLE, 0, 0, "du", 0, {release}, momentary},
        {ZV_GAD_RADIO, 0, 1, "du", 0, {release}, nullptr},
        {ZV_GAD_RADIO, set, 0, "du", 1, {press}, nullptr},
        {ZV_GAD_RADIO, set, 1, "du", 1, {}, nullptr},
        {ZV_GAD_RADIO, set, 1, "Du", 1, {press | ZV_MOD_DOUBLE_CLICK}, nullptr},
        {ZV_GAD_RADIO, set | off, 0, "du", 0, {}, nullptr},
        {ZV_GAD_CHECK, 0, 0, "dudu", 0, {release, release | ZV_MOD_DOUBLE_CLICK}, nullptr},
        {ZV_GAD_CHECK, 0, 0, "dou", 0, {}, nullptr},
        {ZV_GAD_CHECK, off, 0, "du", 0, {}, nullptr},
        {ZV_GAD_CHECK, set, 1, "du", 1, {}, nullptr},
    };
    for (auto const& row : rows) {
        ZVItem* const item = Add(row.type, row.tags);
        item->flags = row.flags;
        item->realValue = item->state = row.state;
        Do(row.steps);
        SCOPED_TRACE(testing::Message() << "type " << +row.type << " flags " << row.flags << row.steps);
        EXPECT_EQ(item->state, row.stateAfter);
        EXPECT_EQ(item->realValue, row.stateAfter);
        EXPECT_EQ(std::exchange(reports, {}), row.reports);
        Take_Away(item);
    }
}

TEST_F(Gadgets, ArmedOnesLookLikeWhatAReleaseWouldBring)
{
    struct {
        ZVGadgetType type;
        int state;
        bool sunken[4];  // pressed, off, on again, released
    } const rows[] = {{ZV_GAD_BUTTON, 0, {true, false, true, false}},
                      {ZV_GAD_TOGGLE, 0, {true, false, true, true}},
                      {ZV_GAD_TOGGLE, 1, {false, true, false, false}},
                      {ZV_GAD_CHECK, 1, {true, false, true, false}}};
    for (auto const& row : rows) {
        ZVItem* const item = Add(row.type);
        item->state = row.state;
        for (int i = 0; char const* step : {"d", "o", "i", "u"}) {
            Do(step);
            EXPECT_EQ(Is_Sunken(), row.sunken[i++]) << +row.type << step;
        }
        Take_Away(item);
    }
}

TEST_F(Gadgets, ALongTextStaysInsideTheBorder)
{
    char text[] = "wwwwwwwwwwwwwwww";
    for (ZVGadgetType const type : {ZV_GAD_BUTTON, ZV_GAD_TOGGLE, ZV_GAD_RADIO, ZV_GAD_CHECK}) {
        ZVItem* const item = Add(type);
        item->text = text;
        Draw(item);
        for (long y = 2; y < 14; ++y) {
            EXPECT_EQ(At(38, y), GetColorZV(ZV_PEN_SHADOW)) << +type << ' ' << y;
            EXPECT_EQ(At(39, y), GetColorZV(ZV_PEN_DARK_EDGE)) << +type << ' ' << y;
            EXPECT_EQ(At(40, y), At(40, 20)) << +type << ' ' << y;
        }
        item->text = nullptr;
        Take_Away(item);
    }
}

TEST_F(Gadgets, AnIconIsCentredOrCutToItsMiddle)
{
    struct {
        long width, height;
        long inside[2], outside[2];
    } const rows[] = {{5, 4, {18, 6}, {17, 6}}, {36, 12, {2, 2}, {1, 2}}, {80, 30, {2, 13}, {1, 13}}};
    for (auto const& row : rows) {
        std::unique_ptr<ZVBitmap, void (*)(ZVBitmap*)> const icon(
            AllocBitmapZV(row.width, row.height, ZV_BITMAP_RGBA8, nullptr), FreeBitmapZV);
        FillBitmapZV(icon.get(), 0xFF00FF00);
        ZVItem* const item = Add(ZV_GAD_BUTTON);
        item->image = icon.get();
        auto const expect = [&](unsigned long color) {
            EXPECT_EQ(At(row.inside[0], row.inside[1]), color) << row.width;
            EXPECT_NE(At(row.outside[0], row.outside[1]), color) << row.width;
        };
        item->hasImageColor = 1;
        item->imageColor = 0x0000FF;
        Draw(item);
        expect(0x0000FF);
        Draw(item, ZV_CUSTOM_DRAW_DISABLED);
        expect(DisableColorZV(0x0000FF) & 0xFFFFFF);
        item->hasImageColor = 0;
        Draw(item);
        expect(0x00FF00);  // the icon itself has kept its colour
    }
}
