// The display on SDL, as far as it goes without a desktop.
#include "host/SDLDisplay.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace {

std::unique_ptr<HostDisplay> Make_Dummy(char const* driver)
{
    setenv("SDL_VIDEODRIVER", driver, 1);
    std::string reason;
    auto display = Make_SDL_Display(reason);
    EXPECT_EQ(display == nullptr, !reason.empty());
    return display;
}

HostEvent Key_Of(SDL_Keycode code, Uint16 held)
{
    HostEvent event{.type = HostEventType::KeyDown};
    SDL_Keysym key{};
    key.sym = code;
    key.mod = held;
    Set_Key(event, key);
    return event;
}

}  // namespace

TEST(SDLDisplay, SaysWhyThereIsNone)
{
    EXPECT_EQ(Make_Dummy("no such driver"), nullptr);
}

TEST(SDLDisplay, WindowsComeAndGoWithoutADesktop)
{
    auto display = Make_Dummy("dummy");
    ASSERT_TRUE(display);
    EXPECT_FALSE(display->Monitors().empty());
    auto window = display->Make_Window({.client = {100, 100, 300, 200}, .title = "Window", .canClose = true});
    auto popup = display->Make_Window({.kind = HostWindowKind::Popup, .client = {100, 100, 150, 120}});
    ASSERT_TRUE(window && popup);
    window->Show();
    popup->Show();
    EXPECT_EQ(display->Front_Window(), window.get());
    EXPECT_EQ(display->Window_At(120, 110), popup.get());
    EXPECT_EQ(popup->Frame().top, 0);
    window->Surface().Fill({0, 0, 50, 50}, 0xFF0000);
    window->Present();
    window->Set_Client({120, 100, 520, 300});
    EXPECT_EQ(window->Surface().Bounds(), (HostRect{0, 0, 400, 200}));
    uint32_t color = 0;
    EXPECT_TRUE(window->Surface().Read(49, 49, color) && color == 0xFF0000);

    SDL_Event close{};
    close.type = SDL_WINDOWEVENT;
    close.window.event = SDL_WINDOWEVENT_CLOSE;
    for (Uint32 const id : {1U, 2U}) {
        close.window.windowID = id;
        SDL_PushEvent(&close);
    }
    int closed = 0;
    while (auto event = display->Next_Event(0.02))
        closed += event->type == HostEventType::WindowClose && event->window == window.get();
    EXPECT_EQ(closed, 1) << "only the window with a close box is asked for it";

    display->Set_Cursor({.width = 2, .height = 1, .hotX = 0, .hotY = 0, .pixels = {0xFF000000, 0}});
    display->Set_Clipboard("text");
    EXPECT_EQ(display->Clipboard(), "text");
    popup.reset();
    EXPECT_EQ(display->Window_At(130, 110), window.get());
}

TEST(SDLDisplay, KeysAreWhatTheyAreOnAnyLayout)
{
    struct Case {
        SDL_Keycode code;
        Uint16 held;
        HostKey key;
        char32_t character;
    };
    Case const cases[] = {
        {SDLK_a, 0, HostKey::Character, U'a'},
        {SDLK_a, KMOD_LSHIFT, HostKey::Character, U'A'},
        {SDLK_a, KMOD_LCTRL, HostKey::Character, U'a'},
        {SDLK_1, KMOD_RSHIFT, HostKey::Character, U'!'},
        {0xFC, KMOD_LSHIFT, HostKey::Character, U'\u00DC'},
        {0x451, KMOD_LSHIFT, HostKey::Character, U'\u0401'},
        {SDLK_KP_7, KMOD_NUM, HostKey::Character, U'7'},
        {SDLK_KP_7, 0, HostKey::Home, 0},
        {SDLK_KP_ENTER, 0, HostKey::Enter, 0},
        {SDLK_RETURN, 0, HostKey::Return, 0},
        {SDLK_DELETE, 0, HostKey::Delete, 0},
        {SDLK_RGUI, 0, HostKey::Modifier, 0},
        {SDLK_PRINTSCREEN, 0, HostKey::Other, 0},
    };
    for (Case const& row : cases) {
        HostEvent const event = Key_Of(row.code, row.held);
        EXPECT_EQ(event.key, row.key) << row.code;
        EXPECT_EQ(event.character, row.character) << row.code;
    }
}
