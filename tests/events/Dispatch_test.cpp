// Who gets an event, in what order and with what in it.
#include "EventTest.h"

#include "FailingHeap.h"

namespace {

class Dispatch : public EventTest {
protected:
    ZVWindow* window = Add_Window(100, 50);
    ZVPalette* palette = Add_Palette(window, 1);
    ZVGroup* group = Add_Group(palette, 10, 10, 60, 40);
    ZVItem* item = Add_Item(group, 20, 5, 5, 20, 10);

    unsigned long Send(uint16_t type, void* arg) { return Do_Event(type, Tag_Word(arg)); }
};

}  // namespace

TEST_F(Dispatch, TheFirstCallbackThatIsThereGetsAGadgetEvent)
{
    using Place = void (**)(ZVEvent*);
    std::pair<Place, char const*> const rows[] = {{nullptr, "I1:5"},
                                                  {&item->callback, "G1:5"},
                                                  {&group->callback, "P1:5"},
                                                  {&palette->callback, "A:5"},
                                                  {&ZVEnv->callback, ""}};
    for (auto const& [taken, log] : rows) {
        if (taken) *taken = nullptr;
        Send(ZV_EVENT_GADGET, item);
        EXPECT_EQ(Log(), log);
    }
}

TEST_F(Dispatch, EventsGoWhereTheirNumbersSay)
{
    ZVPalette* const modal = Add_Palette(Add_Window(0, 0), 2, ZV_KIND_MODAL);
    ZVKeySection section{};
    struct {
        uint16_t type;
        char const* plain;
        char const* modal;
    } const rows[] = {
        {ZV_EVENT_KEY, "A:1", "P2:1"},       {ZV_EVENT_ACTION, "A:24", "P2:24"},
        {ZV_EVENT_MOUSE_DOWN, "A:3", "A:3"}, {ZV_EVENT_MENU_INIT, "A:16", "A:16"},
        {ZV_EVENT_OPEN_DOC, "A:18", "A:18"}, {13, "A:13", "A:13"},
        {1000, "A:1000", "A:1000"},
    };
    for (auto const& row : rows) {
        Do_Event(row.type, 0);
        EXPECT_EQ(Log(), row.plain);
        ZVEnv->modalPalette = modal;
        modal->keySection = &section;
        Do_Event(row.type, 0);
        EXPECT_EQ(Log(), row.modal);
        ZVEnv->modalPalette = nullptr;
    }
    for (uint16_t type : std::initializer_list<uint16_t>{7, 8, 9, 10, 11, 12, 20, 21, 22, 23, 26, 27, 29}) {
        Send(type, palette);
        EXPECT_EQ(Log(), "P1:" + std::to_string(type));
    }
}

TEST_F(Dispatch, KeysGoToAPopUpEvenBeforeAModalPalette)
{
    ZVEnv->modalPalette = Add_Palette(Add_Window(0, 0), 2, ZV_KIND_MODAL);
    ZVPalette* const popUp = Add_Palette(Add_Window(0, 0), 3, ZV_KIND_TRANSIENT);
    ZVEnv->lastPaletteId = 3;
    onEvent = [&](auto const&, ZVEvent* event) {
        EXPECT_EQ(event->item, 'q');
        EXPECT_EQ(event->key, 300u);
        EXPECT_EQ(event->modifiers, ZV_MOD_COMMAND | ZV_MOD_REPEAT) << "keys keep command";
        EXPECT_EQ(ZVEnv->currentPalette, event->palette);
    };
    ZVEnv->modifiers = ZV_MOD_COMMAND | ZV_MOD_REPEAT;
    Do_Event(ZV_EVENT_KEY, 'q' << 16 | 300);
    EXPECT_EQ(Log(), "P3:1");
    EXPECT_EQ(ZVEnv->modifiers, ZV_MOD_COMMAND);
    onEvent = nullptr;
    popUp->kind = ZV_KIND_FIXED;
    Do_Event(ZV_EVENT_KEY, 0);
    EXPECT_EQ(Log(), "P2:1");
}

TEST_F(Dispatch, ReportAndKeyBitsLastForOneEvent)
{
    uint32_t const all = 0x1FFFF;
    for (uint16_t type : std::initializer_list<uint16_t>{1, 5, 9, 22}) {
        ZVEnv->modifiers = all;
        Do_Event(type, type == 5 ? Tag_Word(item) : Tag_Word(palette));
        EXPECT_EQ(ZVEnv->modifiers, all & ~0x6038u) << type;
    }
    Log();
    ZVEnv->modifiers = all;
    EXPECT_EQ(Do_Event(ZV_EVENT_NONE, 0), 0u);
    EXPECT_EQ(ZVEnv->modifiers, all & ~0x38u);
    EXPECT_EQ(Log(), "") << "no callback";
}

TEST_F(Dispatch, CommandIsControlForAllButKeys)
{
    ZVEnv->mousePalette = palette;
    onEvent = [](auto const&, ZVEvent* event) {
        uint32_t const expected = event->type <= 6 && event->type != 1 ? ZV_MOD_CONTROL : ZV_MOD_COMMAND;
        EXPECT_EQ(event->modifiers, expected) << event->type;
    };
    ZVEnv->modifiers = ZV_MOD_COMMAND;
    for (uint16_t type : std::initializer_list<uint16_t>{1, 2, 3, 4, 6, 24})
        Do_Event(type, 0);
    Send(ZV_EVENT_GADGET, item);
    onCustom = [](ZVCustomEvent* event) {
        EXPECT_EQ(event->modifiers, event->type == ZV_CUSTOM_KEY ? ZV_MOD_COMMAND : ZV_MOD_CONTROL);
    };
    for (uint16_t type : std::initializer_list<uint16_t>{108, 112}) {
        ZVCustomEvent event = Custom_Event(type, item);
        Do_CustomEvent(&event);
    }
}

TEST_F(Dispatch, PalettesInsideGetTheEventsOfThePaletteAroundThem)
{
    ZVPalette* const first = Add_Palette(window, 2, ZV_KIND_FIXED, palette);
    Add_Palette(window, 3, ZV_KIND_FIXED, first);
    Add_Palette(window, 4, ZV_KIND_FIXED, palette);
    Send(ZV_EVENT_ACTIVATE, palette);
    EXPECT_EQ(Log(), "P1:9 P2:9 P3:9 P4:9");
    Send(ZV_EVENT_ZOOM, palette);
    EXPECT_EQ(Log(), "P1:23");
    onEvent = [&](auto const& who, ZVEvent*) {
        if (who == "P2") Close(first);
    };
    Send(ZV_EVENT_DOC_ACTIVATE, palette);
    EXPECT_EQ(Log(), "P1:11 P2:11 P4:11") << "one of them closed";
    onEvent = [&](auto const&, ZVEvent*) { Close(palette); };
    Send(ZV_EVENT_DEACTIVATE, palette);
    EXPECT_EQ(Log(), "P1:10") << "all of them closed";
}

static std::string hookLog;
static std::function<void()> onHook;
static void Hook(void* palette, long event, void* user)
{
    EXPECT_EQ(static_cast<ZVEventHook*>(user)->palette, palette);
    hookLog += std::to_string(static_cast<ZVPalette*>(palette)->node.id) + ":" + std::to_string(event) + ' ';
    if (onHook) std::exchange(onHook, nullptr)();
}

TEST_F(Dispatch, HooksAreCalledBehindTheCallbacksOfTheirPalette)
{
    ZVPalette* const other = Add_Palette(window, 2);
    ZVEventHook hooks[] = {{{}, palette, ZV_EVENT_GADGET, Hook, nullptr},
                           {{}, other, ZV_EVENT_GADGET, Hook, nullptr},
                           {{}, palette, ZV_EVENT_TICK, Hook, nullptr},
                           {{}, palette, ZV_EVENT_GADGET, Hook, nullptr}};
    for (ZVEventHook& hook : hooks) {
        hook.user = &hook;
        AddTail(&window->hooks, &hook.node);
    }
    hookLog.clear();
    onEvent = [](auto const&, ZVEvent*) { EXPECT_EQ(hookLog, ""); };
    Send(ZV_EVENT_GADGET, item);
    EXPECT_EQ(std::exchange(hookLog, {}), "1:5 1:5 ");
    onEvent = nullptr;
    Do_Event(ZV_EVENT_TICK, 0);
    EXPECT_EQ(std::exchange(hookLog, {}), "1:6 ");
    onHook = [&] { Remove(&hooks[0].node); };
    Send(ZV_EVENT_GADGET, item);
    EXPECT_EQ(std::exchange(hookLog, {}), "1:5 1:5 ") << "a hook that takes itself out";
    onHook = [&] { Close(palette); };
    Send(ZV_EVENT_GADGET, item);
    EXPECT_EQ(std::exchange(hookLog, {}), "1:5 ");
    onEvent = nullptr;
}

TEST_F(Dispatch, AGadgetFunctionMayCloseItsPalette)
{
    ZVPalette* const other = Add_Palette(Add_Window(0, 0), 2);
    ZVItem* const linked = Add_Item(Add_Group(other, 0, 0, 9, 9), 21, 0, 0, 9, 9);
    ZVItem* reported = item;
    onCustom = [&](ZVCustomEvent* event) {
        EXPECT_EQ(event->replyType, ZV_EVENT_NONE);
        event->replyType = ZV_EVENT_GADGET;
        event->replyData = Tag_Word(reported);
        event->replyFlags = ZV_MOD_CHANGE;
        Close(palette);
    };
    onEvent = [](auto const&, ZVEvent* event) { EXPECT_EQ(event->modifiers, ZV_MOD_CHANGE); };
    ZVEnv->currentPalette = palette;
    ZVCustomEvent event = Custom_Event(ZV_CUSTOM_MOUSE_UP, item);
    Do_CustomEvent(&event);
    EXPECT_EQ(Log(), "C20:107") << "nothing is left to report";
    EXPECT_EQ(ZVEnv->currentPalette, nullptr);

    palette = Add_Palette(window, 1);
    event = Custom_Event(ZV_CUSTOM_MOUSE_UP, Add_Item(Add_Group(palette), 20));
    reported = linked;
    Do_CustomEvent(&event);
    EXPECT_EQ(Log(), "C20:107 I2:5") << "a pop-up reports for the gadget that opened it";
}

TEST_F(Dispatch, ATickReachesAllThatShows)
{
    item->flags |= ZV_ITEMF_TICKS;
    ZVPalette* const hidden = Add_Palette(window, 2, ZV_KIND_FIXED, palette);
    hidden->flags = ZV_PALF_HIDDEN;
    Add_Palette(window, 3, ZV_KIND_FIXED, hidden);
    Add_Group(palette)->flags = ZV_GRPF_HIDDEN;
    Add_Item(group, 21)->flags = ZV_ITEMF_HIDDEN;
    Add_Palette(Add_Window(0, 0), 4);
    ZVEnv->pointerX = 100 + 4 + 11 + 5 + 7;
    onCustom = [](ZVCustomEvent* event) { EXPECT_EQ(event->x, 7); };
    EXPECT_EQ(Do_Event(ZV_EVENT_TICK, 0), 0u);
    EXPECT_EQ(Log(), "P1:6 G1:6 C20:113 I1:6 P4:6 A:6");
    ZVEnv->tickItem = item;
    Do_Event(ZV_EVENT_TICK, 0);
    EXPECT_EQ(Log(), "P1:6 G1:6 I1:6 P4:6 A:6") << "the holder of the press has its own tick";
}

TEST_F(Dispatch, ATickEndsWhenAPaletteClosesInIt)
{
    for (std::string const closer : {"P1", "G1", "C20", "I1"}) {
        ZVPalette* const closing = Add_Palette(Add_Window(0, 0), 1);
        Remove(&closing->window->node);
        AddHead(&ZVEnv->windows, &closing->window->node);
        Add_Item(Add_Group(closing), 20)->flags = ZV_ITEMF_TICKS;
        onEvent = [&](auto const& who, ZVEvent*) {
            if (who == closer) Close(closing);
        };
        onCustom = [&](ZVCustomEvent*) {
            if (closer == "C20") Close(closing);
        };
        ZVEnv->currentPalette = palette;
        EXPECT_EQ(Do_Event(ZV_EVENT_TICK, 0), 1u);
        std::string const log = Log();
        EXPECT_EQ(log.find("A"), log.npos) << closer;
        EXPECT_EQ(log.find(closer), log.rfind(closer)) << log;
        EXPECT_EQ(ZVEnv->currentPalette, palette);
    }
    onEvent = nullptr;
}

TEST_F(Dispatch, AllocatesNothing)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP() << "no heap of its own";
    ZVEnv->callback = nullptr;
    for (auto** callback : {&palette->callback, &group->callback, &item->callback})
        *callback = [](ZVEvent*) {};
    item->customFunc = [](ZVCustomEvent*) { return 1L; };
    FailingHeap const heap(0);
    Handle_MouseMove(100 + 4 + 11 + 8, 50 + 5 + 11 + 8);
    for (uint16_t type : std::initializer_list<uint16_t>{1, 2, 3, 4, 6, 24})
        Do_Event(type, 0);
    Send(ZV_EVENT_ACTIVATE, palette);
    Custom_Gad_MouseDown(120, 70, 1, 1);
    Custom_Gad_MouseMove(121, 70);
    Custom_Gad_MouseUp(121, 70);
    EXPECT_EQ(heap.Failures(), 0);
}
