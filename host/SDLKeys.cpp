// SDL's keys as those of the display.
#include "SDLDisplay.h"

#include <algorithm>
#include <string_view>

namespace {

struct KeyName {
    SDL_Keycode code;
    HostKey key;
};

constexpr KeyName keyNames[] = {
    {SDLK_F1, HostKey::F1},
    {SDLK_F2, HostKey::F2},
    {SDLK_F3, HostKey::F3},
    {SDLK_F4, HostKey::F4},
    {SDLK_F5, HostKey::F5},
    {SDLK_F6, HostKey::F6},
    {SDLK_F7, HostKey::F7},
    {SDLK_F8, HostKey::F8},
    {SDLK_F9, HostKey::F9},
    {SDLK_F10, HostKey::F10},
    {SDLK_F11, HostKey::F11},
    {SDLK_F12, HostKey::F12},
    {SDLK_F13, HostKey::F13},
    {SDLK_F14, HostKey::F14},
    {SDLK_F15, HostKey::F15},
    {SDLK_LEFT, HostKey::Left},
    {SDLK_RIGHT, HostKey::Right},
    {SDLK_UP, HostKey::Up},
    {SDLK_DOWN, HostKey::Down},
    {SDLK_HELP, HostKey::Help},
    {SDLK_DELETE, HostKey::Delete},
    {SDLK_BACKSPACE, HostKey::Backspace},
    {SDLK_KP_ENTER, HostKey::Enter},
    {SDLK_HOME, HostKey::Home},
    {SDLK_END, HostKey::End},
    {SDLK_TAB, HostKey::Tab},
    {SDLK_PAGEUP, HostKey::PageUp},
    {SDLK_PAGEDOWN, HostKey::PageDown},
    {SDLK_ESCAPE, HostKey::Escape},
    {SDLK_RETURN, HostKey::Return},
    {SDLK_CAPSLOCK, HostKey::CapsLock},
    {SDLK_INSERT, HostKey::Insert},
    {SDLK_LSHIFT, HostKey::Modifier},
    {SDLK_RSHIFT, HostKey::Modifier},
    {SDLK_LCTRL, HostKey::Modifier},
    {SDLK_RCTRL, HostKey::Modifier},
    {SDLK_LALT, HostKey::Modifier},
    {SDLK_RALT, HostKey::Modifier},
    {SDLK_LGUI, HostKey::Modifier},
    {SDLK_RGUI, HostKey::Modifier},
    {SDLK_MODE, HostKey::Modifier},
};

/// Keys of the number pad: what they type, and what they are while numbers are off.
struct PadKey {
    SDL_Keycode code;
    char32_t character;
    HostKey key;
};

constexpr PadKey padKeys[] = {
    {SDLK_KP_0, '0', HostKey::Insert},
    {SDLK_KP_1, '1', HostKey::End},
    {SDLK_KP_2, '2', HostKey::Down},
    {SDLK_KP_3, '3', HostKey::PageDown},
    {SDLK_KP_4, '4', HostKey::Left},
    {SDLK_KP_5, '5', HostKey::Other},
    {SDLK_KP_6, '6', HostKey::Right},
    {SDLK_KP_7, '7', HostKey::Home},
    {SDLK_KP_8, '8', HostKey::Up},
    {SDLK_KP_9, '9', HostKey::PageUp},
    {SDLK_KP_PERIOD, '.', HostKey::Delete},
    {SDLK_KP_DIVIDE, '/', HostKey::Character},
    {SDLK_KP_MULTIPLY, '*', HostKey::Character},
    {SDLK_KP_MINUS, '-', HostKey::Character},
    {SDLK_KP_PLUS, '+', HostKey::Character},
    {SDLK_KP_EQUALS, '=', HostKey::Character},
    {SDLK_KP_COMMA, ',', HostKey::Character},
};

/// What a key types with shift held. SDL does not tell, so keys other than letters are taken for those of an
/// American keyboard.
char32_t Shifted(char32_t character)
{
    constexpr std::u32string_view plain = U"`1234567890-=[]\\;',./", shifted = U"~!@#$%^&*()_+{}|:\"<>?";
    if (auto const at = plain.find(character); at != std::u32string_view::npos) return shifted[at];
    bool const isLatin = (character >= 'a' && character <= 'z') ||
                         (character >= 0xE0 && character <= 0xFE && character != 0xF7);
    bool const isGreek = character >= 0x3B1 && character <= 0x3C9 && character != 0x3C2;
    bool const isCyrillic = character >= 0x430 && character <= 0x44F;
    if (isLatin || isGreek || isCyrillic) return character - 0x20;
    return character >= 0x450 && character <= 0x45F ? character - 0x50 : character;
}

template <typename Entry, std::size_t Count>
Entry const* Find_Key(Entry const (&keys)[Count], SDL_Keycode code)
{
    auto const* const found = std::find_if(std::begin(keys), std::end(keys),
                                           [code](Entry const& entry) { return entry.code == code; });
    return found == std::end(keys) ? nullptr : found;
}

}  // namespace

void Set_Key(HostEvent& event, SDL_Keysym const& key)
{
    if (KeyName const* const name = Find_Key(keyNames, key.sym)) {
        event.key = name->key;
    } else if (PadKey const* const pad = Find_Key(padKeys, key.sym)) {
        bool const types = pad->key == HostKey::Character || (key.mod & KMOD_NUM) != 0;
        event.key = types ? HostKey::Character : pad->key;
        event.character = event.plain = types ? pad->character : 0;
    } else if (key.sym >= ' ' && (key.sym & SDLK_SCANCODE_MASK) == 0) {
        event.key = HostKey::Character;
        event.plain = static_cast<char32_t>(key.sym);
        event.character = (key.mod & KMOD_SHIFT) != 0 ? Shifted(event.plain) : event.plain;
    } else {
        event.key = HostKey::Other;
    }
}

HostModifiers Modifiers_Of(SDL_Keymod held)
{
    return {.shift = (held & KMOD_SHIFT) != 0,
            .control = (held & KMOD_CTRL) != 0,
            .alt = (held & KMOD_ALT) != 0,
            .super = (held & KMOD_GUI) != 0,
            .capsLock = (held & KMOD_CAPS) != 0};
}
