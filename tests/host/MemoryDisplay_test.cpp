// The display in memory: what an application would meet on a desktop, by script and at a clock of its own.
#include "host/MemoryDisplay.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>

namespace {

using Kind = HostWindowKind;
using Type = HostEventType;

struct Desk {
    MemoryDisplay display;

    std::unique_ptr<HostWindow> Shown(Kind kind, HostRect const& client)
    {
        auto window = display.Make_Window({.kind = kind,
                                           .client = client,
                                           .title = "Window",
                                           .canClose = true,
                                           .canZoom = true,
                                           .canResize = true});
        window->Show();
        return window;
    }
    std::vector<HostEvent> Events(double seconds = 0)
    {
        std::vector<HostEvent> events;
        while (auto event = display.Next_Event(seconds))
            events.push_back(*event);
        return events;
    }
    std::vector<Type> Types()
    {
        std::vector<Type> types;
        for (HostEvent const& event : Events())
            types.push_back(event.type);
        return types;
    }
    std::vector<int> Clicks()
    {
        std::vector<int> clicks;
        for (HostEvent const& event : Events(1))
            if (event.type == Type::MouseDown) clicks.push_back(event.clicks);
        return clicks;
    }
};

using Types = std::vector<Type>;

}  // namespace

TEST(MemoryDisplay, WindowsAreStackedByTheirKind)
{
    Desk desk;
    HostRect const place{100, 100, 300, 200};
    auto popup = desk.Shown(Kind::Popup, place);
    auto dialog = desk.Shown(Kind::Dialog, place);
    auto floater = desk.Shown(Kind::Floater, place);
    auto first = desk.Shown(Kind::Document, place);
    auto second = desk.Shown(Kind::Document, place);
    auto root = desk.Shown(Kind::Root, {0, 0, 1600, 1200});
    EXPECT_EQ(desk.display.Front_Window(), second.get());
    first->Raise();
    root->Raise();
    for (auto* const window : {&popup, &dialog, &floater, &first, &second, &root}) {
        EXPECT_EQ(desk.display.Window_At(150, 150), window->get());
        (*window)->Hide();
    }
    EXPECT_EQ(desk.display.Window_At(150, 150), nullptr);
    EXPECT_EQ(desk.display.Front_Window(), nullptr);
    first->Show();
    EXPECT_EQ(desk.display.Window_At(100, 78), first.get()) << "the title belongs to the window";
    EXPECT_EQ(desk.display.Window_At(100, 77), nullptr);
    EXPECT_EQ(desk.display.Window_At(300, 200), first.get()) << "and so does the border";
    EXPECT_EQ(desk.display.Window_At(301, 200), nullptr);
}

TEST(MemoryDisplay, KeysGoToTheWindowThatCameLast)
{
    Desk desk;
    auto first = desk.Shown(Kind::Document, {100, 100, 300, 200});
    EXPECT_EQ(desk.Types(), (Types{Type::AppFront, Type::WindowFront}));
    auto floater = desk.Shown(Kind::Floater, {400, 100, 500, 200});
    EXPECT_EQ(desk.Types(), Types{}) << "a floater leaves them where they are";
    auto second = desk.Shown(Kind::Document, {100, 300, 300, 400});
    auto const events = desk.Events();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(std::pair(events[0].type, events[0].window), std::pair(Type::WindowBack, first.get()));
    EXPECT_EQ(std::pair(events[1].type, events[1].window), std::pair(Type::WindowFront, second.get()));
    second.reset();
    EXPECT_EQ(desk.display.Front_Window(), first.get());
    desk.display.Post({.type = Type::AppBack});
    desk.display.Type("x");
    EXPECT_EQ(desk.Types(), (Types{Type::WindowFront, Type::WindowBack, Type::AppBack}))
        << "what is typed into another process is not ours";
    desk.display.Post({.type = Type::AppFront});
    EXPECT_EQ(desk.Types(), (Types{Type::AppFront, Type::WindowFront}));
}

TEST(MemoryDisplay, KeysGoBackToTheWindowThatHadThem)
{
    Desk desk;
    auto document = desk.Shown(Kind::Document, {100, 100, 300, 200});
    auto floater = desk.Shown(Kind::Floater, {400, 100, 500, 200});
    auto other = desk.Shown(Kind::Floater, {600, 100, 700, 200});
    floater->Raise();
    auto outer = desk.Shown(Kind::Dialog, {100, 300, 300, 400});
    auto inner = desk.Shown(Kind::Dialog, {100, 300, 300, 400});
    inner.reset();
    EXPECT_EQ(desk.display.Front_Window(), outer.get());
    floater->Hide();
    floater->Show();
    outer.reset();
    EXPECT_EQ(desk.display.Front_Window(), floater.get()) << "it was hidden in between";
    floater.reset();
    EXPECT_EQ(desk.display.Front_Window(), document.get());
    document.reset();
    EXPECT_EQ(desk.display.Front_Window(), other.get()) << "it has never had them";
}

TEST(MemoryDisplay, PressesCountAsOneClickByTimeAndPlace)
{
    Desk desk;
    auto window = desk.Shown(Kind::Document, {0, 100, 400, 400});
    desk.Events();
    struct Press {
        uint64_t pause;
        int x;
        HostButton button;
        int clicks;
    };
    Press const presses[] = {
        {0, 50, HostButton::Left, 1},   {500, 54, HostButton::Left, 2},  {10, 54, HostButton::Left, 3},
        {501, 54, HostButton::Left, 1}, {10, 59, HostButton::Left, 1},   {10, 59, HostButton::Right, 1},
        {10, 59, HostButton::Right, 2}, {10, 1500, HostButton::Left, 1}, {10, 59, HostButton::Left, 1},
    };
    std::vector<int> expected;
    for (Press const& press : presses) {
        desk.display.Pause(press.pause);
        desk.display.Click(press.x, 150, press.button);
        expected.push_back(press.clicks);
    }
    EXPECT_EQ(desk.Clicks(), expected);
}

TEST(MemoryDisplay, APressThatWasDraggedIsNoFirstClick)
{
    Desk desk;
    auto window = desk.Shown(Kind::Document, {0, 100, 400, 400});
    for (auto const& [way, clicks] : {std::pair(4, 2), {5, 1}, {100, 1}}) {
        desk.display.Pause(1000);
        desk.display.Press(50, 150);
        desk.display.Move(50 + way, 150);
        desk.display.Move(50, 150);
        desk.display.Release();
        desk.display.Click(50, 150);
        EXPECT_EQ(desk.Clicks(), (std::vector<int>{1, clicks})) << way;
    }
}

TEST(MemoryDisplay, TheClockMovesByWaitingAlone)
{
    Desk desk;
    auto window = desk.Shown(Kind::Document, {0, 100, 400, 400});
    desk.Events();
    uint64_t const start = desk.display.Milliseconds();
    desk.display.Pause(300);
    desk.display.Press(10, 110);
    desk.display.Pause(200);
    desk.display.Release();
    EXPECT_FALSE(desk.display.Has_Events());
    EXPECT_FALSE(desk.display.Next_Event(0.25));
    EXPECT_EQ(desk.display.Milliseconds(), start + 250);
    ASSERT_EQ(desk.display.Next_Event(1)->type, Type::MouseMove);
    EXPECT_EQ(desk.display.Milliseconds(), start + 300);
    EXPECT_FALSE(desk.display.Is_Button_Down()) << "the press is not taken yet";
    EXPECT_EQ(desk.display.Next_Event(0)->milliseconds, start + 300);
    EXPECT_TRUE(desk.display.Is_Button_Down());
    desk.display.Advance(200);
    desk.display.Flush_Input();
    EXPECT_FALSE(desk.display.Has_Events());
    EXPECT_FALSE(desk.display.Is_Button_Down()) << "a forgotten release counts";
}

TEST(MemoryDisplay, AWindowIsMovedResizedZoomedAndClosedByItsFrame)
{
    Desk desk;
    auto window = desk.Shown(Kind::Document, {100, 100, 300, 200});
    window->Set_Size_Limits(150, 50, 0, 0);
    window->Surface().Fill({0, 0, 200, 100}, 0x112233);
    desk.Events();
    auto const drag = [&](int fromX, int fromY, int toX, int toY) {
        desk.display.Press(fromX, fromY);
        desk.display.Move(toX, toY);
        desk.display.Release();
    };
    drag(200, 80, 210, 95);
    auto events = desk.Events();
    ASSERT_EQ(events.size(), 2U) << "the way to the title, and the movement";
    EXPECT_EQ(events[1].type, Type::WindowBounds);
    EXPECT_EQ(window->Client(), (HostRect{110, 115, 310, 215}));

    drag(310, 215, 340, 225);
    EXPECT_EQ(desk.Types(), (Types{Type::MouseMove, Type::WindowBounds}));
    EXPECT_EQ(window->Client(), (HostRect{110, 115, 340, 225}));
    ASSERT_EQ(window->Surface().Bounds(), (HostRect{0, 0, 230, 110}));
    uint32_t color = 0;
    EXPECT_TRUE(window->Surface().Read(199, 99, color) && color == 0x112233);
    EXPECT_TRUE(window->Surface().Read(200, 99, color) && color == 0xFFFFFF);
    desk.display.Move_By_Frame(*window, {110, 115, 120, 120});
    EXPECT_EQ(window->Client(), (HostRect{110, 115, 260, 165})) << "not below its limits";
    desk.Events();

    desk.display.Click(259, 100);
    EXPECT_EQ(desk.Types(), (Types{Type::MouseMove, Type::WindowZoom}));
    EXPECT_EQ(window->Client(), (HostRect{1, 22, 1599, 1199}));
    desk.display.Zoom(*window);
    EXPECT_EQ(window->Client(), (HostRect{110, 115, 260, 165}));
    desk.Events();
    desk.display.Press(112, 100);
    desk.display.Move(112, 300);
    desk.display.Release();
    EXPECT_EQ(desk.Types(), Types{Type::MouseMove}) << "let go beside the box, nothing is asked";
    desk.display.Click(112, 100);
    EXPECT_EQ(desk.Types(), (Types{Type::MouseMove, Type::WindowClose}));
}

TEST(MemoryDisplay, AHeldButtonKeepsTheMouseWithItsWindow)
{
    Desk desk;
    auto left = desk.Shown(Kind::Document, {0, 100, 200, 300});
    auto right = desk.Shown(Kind::Document, {300, 100, 500, 300});
    desk.Events();
    desk.display.Press(50, 150);
    desk.display.Move(350, 155);
    desk.display.Release();
    desk.display.Move(351, 155);
    desk.display.Press(800, 600);
    auto const events = desk.Events();
    ASSERT_EQ(events.size(), 7U);
    EXPECT_EQ(events[2].window, left.get());
    EXPECT_EQ(std::pair(events[2].deltaX, events[2].deltaY), std::pair(300, 5));
    EXPECT_EQ(events[3].window, left.get());
    EXPECT_EQ(events[4].window, right.get()) << "let go, the mouse is where it is";
    EXPECT_EQ(events[6].window, nullptr) << "the desktop";
    desk.display.Release();
    desk.display.Hold_Pointer(true);
    desk.display.Move(810, 600);
    EXPECT_EQ(desk.Events().back().deltaX, 10);
    int x = 0, y = 0;
    desk.display.Pointer(x, y);
    EXPECT_EQ(x, 800);
}

TEST(MemoryDisplay, EventsMeetTheWindowsThatAreThereThen)
{
    Desk desk;
    auto front = desk.Shown(Kind::Popup, {100, 100, 300, 200});
    auto back = desk.Shown(Kind::Document, {100, 100, 300, 200});
    desk.Events();
    desk.display.Click(150, 150);
    desk.display.Click(150, 150);
    EXPECT_EQ(desk.display.Next_Event(0)->window, front.get());
    EXPECT_EQ(desk.display.Next_Event(0)->window, front.get());
    front.reset();
    EXPECT_EQ(desk.display.Next_Event(0)->window, nullptr) << "its release";
    auto const press = desk.display.Next_Event(0);
    EXPECT_EQ(press->window, back.get());
    EXPECT_EQ(press->clicks, 1) << "on another window";
}

TEST(MemoryDisplay, TypingGivesKeysAndTextWhereTextIsTyped)
{
    Desk desk;
    auto window = desk.Shown(Kind::Document, {100, 100, 300, 200});
    desk.Events();
    desk.display.Type("a\xC3\xA9");
    auto const keys = desk.Events();
    ASSERT_EQ(keys.size(), 4U);
    EXPECT_EQ(keys[2].character, U'\u00E9');
    window->Start_Text({0, 0, 1, 12});
    desk.display.Type("\xE2\x82\xAC");
    auto const typed = desk.Events();
    ASSERT_EQ(typed.size(), 3U);
    EXPECT_EQ(typed[1].type, Type::Text);
    EXPECT_EQ(typed[1].text, "\xE2\x82\xAC");
    desk.display.Hold({.control = true});
    desk.display.Type("c");
    EXPECT_EQ(desk.Types(), (Types{Type::KeyDown, Type::KeyUp})) << "a command is no text";
    EXPECT_TRUE(desk.display.Modifiers().control);
}

TEST(MemoryDisplay, OnlyWhatWasTouchedIsPresented)
{
    Desk desk;
    auto window = desk.Shown(Kind::Document, {100, 100, 300, 200});
    window->Surface().Fill({10, 10, 20, 20}, 0xFF0000);
    EXPECT_EQ(desk.display.Screenshot(*window).At(10, 10), 0xFFFFFFFFU);
    window->Present();
    EXPECT_EQ(desk.display.Screenshot(*window).At(10, 10), 0xFFFF0000U);
    EXPECT_TRUE(window->Surface().Take_Touched().IsEmpty());

    auto cover = desk.Shown(Kind::Floater, {105, 105, 150, 150});
    HostPicture const desktop = desk.display.Screenshot();
    ASSERT_EQ(std::pair(desktop.width, desktop.height), std::pair(1600, 1200));
    EXPECT_EQ(desktop.At(111, 111), 0xFFFFFFFFU) << "covered";
    EXPECT_NE(desktop.At(110, 85), desktop.At(50, 50)) << "a title on the desktop";
    cover->Hide();
    EXPECT_EQ(desk.display.Screenshot().At(111, 111), 0xFFFF0000U);

    std::string const path = testing::TempDir() + "display.png";
    ASSERT_TRUE(Write_Png(desktop, path));
    char signature[4] = {};
    std::ifstream(path, std::ios::binary).read(signature, 4);
    EXPECT_EQ(std::string(signature, 4), "\x89PNG");
    std::remove(path.c_str());
    EXPECT_FALSE(Write_Png(desktop, testing::TempDir() + "no/such/folder.png"));
}
