// Buttons, toggles, radios and checks: what presses do to them, and what they look like.
#include "EventTest.h"

#include "draw/DrawTestTools.h"

namespace {

class Gadgets : public EventTest {
protected:
    Gadgets()
    {
        desktop.port = bitmap->World;
        ZVEnv->callback = nullptr;
        window->left = window->top = 0;
        onEvent = [&](auto const&, ZVEvent* event) {
            if (event->type == ZV_EVENT_GADGET) reports.push_back(event->modifiers);
        };
        for (auto** callback : {&palette->callback, &group->callback})
            *callback = nullptr;
    }
    ~Gadgets() override { onEvent = nullptr; }

    /// A gadget at 20, 20 in its window, on screen.
    ZVItem* Add(ZVGadgetType type, TagItem* tags = nullptr, char const* text = nullptr)
    {
        ZVItem* item = Add_Item(group, 20, 5, 4, 40, 16);
        item->type = type;
        item->customFunc = type == ZV_GAD_CHECK ? CheckRadioCustomFunc : ButtonCustomFunc;
        item->tags = tags;
        item->text = const_cast<char*>(text);
        item->native = reinterpret_cast<ZVNativeItem*>(item);
        return item;
    }

    /// d press, D press of a double click, o off the gadget, i back onto it, u release.
    void Do(char const* steps)
    {
        for (long x = 30; *steps; ++steps) {
            if (*steps == 'o') x = 150;
            if (*steps == 'i') x = 30;
            Handle_MouseMove(x, 25);
            Custom_Gad_MouseMove(x, 25);
            if (*steps == 'd' || *steps == 'D') Custom_Gad_MouseDown(x, 25, *steps == 'D' ? 2 : 1, 0);
            if (*steps == 'u') Custom_Gad_MouseUp(x, 25);
        }
        ZVEnv->modifiers = ZVEnv->lastClickTime = 0;
    }

    void Draw(ZVItem* item, uint16_t type)
    {
        ZVCustomEvent event = Custom_Event(type, item);
        EXPECT_EQ(Do_CustomEvent(&event), 1);
    }

    /// A pixel of the gadget.
    unsigned long At(long x, long y) const { return DrawTest::Get_Pixel(*bitmap, 20 + x, 20 + y) & 0xFFFFFF; }
    bool Is_Sunken() const { return At(1, 1) == GetColorZV(ZV_PEN_SHADOW); }

    DrawTest::BitmapPtr bitmap{AllocNativeBitmapZV(120, 60, 32)};
    ZVWindow* window = Add_Window(0, 0);
    ZVPalette* palette = Add_Palette(window, 1);
    ZVGroup* group = Add_Group(palette, 10, 10, 100, 60);
    std::vector<uint32_t> reports;
};

constexpr uint32_t press = ZV_MOD_PRESS | ZV_MOD_BUTTON, release = ZV_MOD_RELEASE;

}  // namespace

TEST_F(Gadgets, ActByPressAndRelease)
{
    TagItem momentary[] = {{ZV_ITEM_MOMENTARY, 0}, {}};
    struct {
        char const* why;
        ZVGadgetType type;
        uint32_t flags;
        TagItem* tags;
        int state;
        char const* steps;
        int stateAfter;
        std::vector<uint32_t> reports;
    } const rows[] = {
        {"button", ZV_GAD_BUTTON, 0, nullptr, 0, "du", 0, {release}},
        {"button, off", ZV_GAD_BUTTON, 0, nullptr, 0, "dou", 0, {}},
        {"button, off and back", ZV_GAD_BUTTON, 0, nullptr, 0, "doiu", 0, {release | ZV_MOD_DRAGGED}},
        {"button, disabled", ZV_GAD_BUTTON, ZV_ITEMF_DISABLED, nullptr, 0, "du", 0, {}},
        {"toggle", ZV_GAD_TOGGLE, 0, nullptr, 0, "du", 1, {release}},
        {"toggle, on", ZV_GAD_TOGGLE, 0, nullptr, 1, "du", 0, {release}},
        {"toggle, off", ZV_GAD_TOGGLE, 0, nullptr, 1, "dou", 1, {}},
        {"toggle that keeps its state", ZV_GAD_TOGGLE, 0, momentary, 0, "du", 0, {release}},
        {"toggle, disabled", ZV_GAD_TOGGLE, ZV_ITEMF_DISABLED, nullptr, 0, "du", 0, {}},
        {"radio alone", ZV_GAD_RADIO, 0, nullptr, 1, "du", 0, {release}},
        {"radio of a set", ZV_GAD_RADIO, ZV_ITEMF_EXCLUSIVE, nullptr, 0, "du", 1, {press}},
        {"radio of a set, on", ZV_GAD_RADIO, ZV_ITEMF_EXCLUSIVE, nullptr, 1, "du", 1, {}},
        {"radio of a set, on, double",
         ZV_GAD_RADIO,
         ZV_ITEMF_EXCLUSIVE,
         nullptr,
         1,
         "Du",
         1,
         {press | ZV_MOD_DOUBLE_CLICK}},
        {"radio of a set, disabled",
         ZV_GAD_RADIO,
         ZV_ITEMF_EXCLUSIVE | ZV_ITEMF_DISABLED,
         nullptr,
         0,
         "du",
         0,
         {}},
        {"check", ZV_GAD_CHECK, 0, nullptr, 0, "du", 1, {release}},
        {"check, twice", ZV_GAD_CHECK, 0, nullptr, 0, "dudu", 0, {release, release | ZV_MOD_DOUBLE_CLICK}},
        {"check, off", ZV_GAD_CHECK, 0, nullptr, 0, "dou", 0, {}},
        {"check, disabled", ZV_GAD_CHECK, ZV_ITEMF_DISABLED, nullptr, 0, "du", 0, {}},
        {"check of a set, on", ZV_GAD_CHECK, ZV_ITEMF_EXCLUSIVE, nullptr, 1, "du", 1, {}},
    };
    for (auto const& row : rows) {
        ZVItem* const item = Add(row.type, row.tags);
        item->flags = row.flags;
        item->state = row.state;
        item->realValue = row.state;
        Do(row.steps);
        EXPECT_EQ(item->state, row.stateAfter) << row.why;
        EXPECT_EQ(item->realValue, row.stateAfter) << row.why;
        EXPECT_EQ(item->pressed, 0u) << row.why;
        EXPECT_EQ(std::exchange(reports, {}), row.reports) << row.why;
        item->flags |= ZV_ITEMF_HIDDEN;
        Do("o");
    }
}

TEST_F(Gadgets, ArmedOnesLookLikeWhatAReleaseWouldBring)
{
    struct {
        ZVGadgetType type;
        int state;
        std::pair<char const*, bool> steps[4];
    } const rows[] = {
        {ZV_GAD_BUTTON, 0, {{"d", true}, {"o", false}, {"i", true}, {"u", false}}},
        {ZV_GAD_TOGGLE, 0, {{"d", true}, {"o", false}, {"i", true}, {"u", true}}},
        {ZV_GAD_TOGGLE, 1, {{"d", false}, {"o", true}, {"i", false}, {"u", false}}},
        {ZV_GAD_CHECK, 1, {{"d", true}, {"o", false}, {"i", true}, {"u", false}}},
    };
    for (auto const& row : rows) {
        ZVItem* const item = Add(row.type);
        item->state = row.state;
        for (auto const& [step, isSunken] : row.steps) {
            Do(step);
            EXPECT_EQ(Is_Sunken(), isSunken) << row.type << step;
        }
        item->flags |= ZV_ITEMF_HIDDEN;
        Do("o");
    }
}

TEST_F(Gadgets, ACheckHasABoxOfItsOwnOnlyBesideALabel)
{
    unsigned long const frame = GetColorZV(ZV_PEN_DARK_EDGE), text = GetColorZV(ZV_PEN_TEXT);
    ZVItem* const item = Add(ZV_GAD_CHECK);
    item->state = 1;
    Draw(item, ZV_CUSTOM_DRAW);
    EXPECT_NE(At(12, 5), frame);
    EXPECT_EQ(At(39, 5), frame);
    EXPECT_EQ(At((40 - 11) / 2 + 2, 4 + 2), text) << "where the mark begins";
    item->text = const_cast<char*>("");
    Draw(item, ZV_CUSTOM_DRAW);
    EXPECT_EQ(At(12, 5), frame);
    EXPECT_EQ(At(3, 6), text);
    EXPECT_EQ(At(5, 10), text);
    EXPECT_EQ(At(9, 4), text);
    EXPECT_EQ(At(20, 5), GetColorZV(ZV_PEN_FACE));
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
        Draw(item, ZV_CUSTOM_DRAW);
        EXPECT_EQ(At(row.inside[0], row.inside[1]), 0x00FF00u) << row.width;
        EXPECT_NE(At(row.outside[0], row.outside[1]), 0x00FF00u) << row.width;
        item->hasImageColor = 1;
        item->imageColor = 0x0000FF;
        Draw(item, ZV_CUSTOM_DRAW);
        EXPECT_EQ(At(row.inside[0], row.inside[1]), 0x0000FFu) << row.width;
        Draw(item, ZV_CUSTOM_DRAW_DISABLED);
        EXPECT_EQ(At(row.inside[0], row.inside[1]), DisableColorZV(0x0000FF) & 0xFFFFFF) << row.width;
        ZVBufferRGBA8 const& pixels = static_cast<ZVBufferRGBA8&>(*icon);
        EXPECT_EQ(pixels.GetIterator(0, 0)->Gf(), 1.0) << "the icon itself stays";
    }
}
