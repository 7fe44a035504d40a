// The two halves of a key: its character, by which texts are typed, and its code, by which keys are bound.
#include "MacKeys.h"

#include "MacFocus.h"
#include "MacWindow.h"
#include "ZVKey.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <iterator>

namespace {

/// Keys that have a control character.
struct NamedKey {
    HostKey key;
    char32_t character;
    unsigned code;
};
constexpr NamedKey namedKeys[] = {
    {HostKey::Home, 1, ZV_KEY_HOME},      {HostKey::Enter, 3, ZV_KEY_ENTER},
    {HostKey::End, 4, ZV_KEY_END},        {HostKey::Help, 5, ZV_KEY_HELP},
    {HostKey::Insert, 5, ZV_KEY_INSERT},  {HostKey::Backspace, 8, ZV_KEY_BACKSPACE},
    {HostKey::Tab, 9, ZV_KEY_TAB},        {HostKey::PageUp, 11, ZV_KEY_PAGE_UP},
    {HostKey::Return, 13, ZV_KEY_RETURN}, {HostKey::PageDown, 12, ZV_KEY_PAGE_DOWN},
    {HostKey::Escape, 27, ZV_KEY_ESCAPE}, {HostKey::Left, 28, ZV_KEY_LEFT},
    {HostKey::Right, 29, ZV_KEY_RIGHT},   {HostKey::Up, 30, ZV_KEY_UP},
    {HostKey::Down, 31, ZV_KEY_DOWN},     {HostKey::Delete, 127, ZV_KEY_DELETE},
};

/// Codes of characters are bytes; those above belong to named keys.
constexpr char32_t CodeEnd = 0x100;
constexpr char32_t CharacterEnd = 0x10000;

/// Between a letter and its other case.
constexpr char32_t CaseStep = 0x20;

bool Is_Upper(char32_t character)
{
    return (character >= 'A' && character <= 'Z') ||
           (character >= 0xC0 && character <= 0xDE && character != 0xD7);
}

bool Is_Lower(char32_t character)
{
    return (character >= 'a' && character <= 'z') ||
           (character >= 0xE0 && character <= 0xFE && character != 0xF7);
}

char32_t Lower(char32_t character)
{
    return Is_Upper(character) ? character + CaseStep : character;
}

/// What Caps Lock makes of a letter: with shift it is the small one.
char32_t Other_Case(char32_t character)
{
    return Is_Lower(character) ? character - CaseStep : Lower(character);
}

unsigned long Key_Word(char32_t character, char32_t code)
{
    return (character < CharacterEnd ? static_cast<unsigned long>(character) << 16 : 0) | code;
}

unsigned long Character_Key(HostEvent const& event)
{
    char32_t const character = event.modifiers.capsLock ? Other_Case(event.character) : event.character;
    char32_t const code = Lower(event.plain ? event.plain : event.character);
    return Key_Word(character, code < CodeEnd ? code : 0);
}

}  // namespace

uint32_t Modifier_Bits(HostModifiers const& held)
{
    uint32_t bits = 0;
    if (held.shift) bits |= ZV_MOD_SHIFT;
    if (held.control) bits |= ZV_MOD_CONTROL;
    if (held.alt) bits |= ZV_MOD_ALT;
    if (held.super) bits |= ZV_MOD_COMMAND;
    if (held.capsLock) bits |= ZV_MOD_CAPS_LOCK;
    return bits;
}

uint32_t Mac_Keyboard_State()
{
    return Display() ? Modifier_Bits(Display()->Modifiers()) : 0;
}

unsigned long Key_Of(HostEvent const& event)
{
    if (event.key == HostKey::Character) return Character_Key(event);
    if (event.key >= HostKey::F1 && event.key <= HostKey::F15)
        return ZV_KEY_F1 + (static_cast<unsigned long>(event.key) - static_cast<unsigned long>(HostKey::F1));
    auto const* const found = std::find_if(std::begin(namedKeys), std::end(namedKeys),
                                           [&](NamedKey const& named) { return named.key == event.key; });
    return found == std::end(namedKeys) ? 0 : Key_Word(found->character, found->code);
}

void Key_Down(HostEvent const& event)
{
    unsigned long const key = Key_Of(event);
    if (!key) return;
    if (event.isRepeat) ZVEnv->modifiers |= ZV_MOD_REPEAT;
    // What a key types comes as text of its own, by way of the keyboard's layout and the input method.
    bool const isEntered = event.key == HostKey::Character && ZVEnv->focusedTextItem;
    Handle_KeyStroke(key, isEntered);
    ZVEnv->modifiers &= ~uint32_t{ZV_MOD_REPEAT};
}

void Key_Up(HostEvent const& event)
{
    unsigned long const key = Key_Of(event);
    if (!key) return;
    ZVEnv->modifiers |= ZV_MOD_KEY_UP;
    Do_Event(ZV_EVENT_KEY, key);
}
