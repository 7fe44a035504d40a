// The script of the desktop in memory, for applications' own tests.
#include "MacWindow.h"

#include "ZVHeadless.h"
#include "ZVKey.h"
#include "ZVLibInternal.h"
#include "foundation/Guard.h"

#include "host/MemoryDisplay.h"

#include <algorithm>
#include <iterator>

static MemoryDisplay* Memory()
{
    return dynamic_cast<MemoryDisplay*>(Display());
}

/// Calls `act` with the display, when it is the one in memory.
template <typename Act> static void With_Memory(Act act)
{
    if (MemoryDisplay* memory = Memory()) Guarded([&] { act(*memory); });
}

long IsHeadlessZV()
{
    return Memory() != nullptr;
}

long HeadlessRunZV(unsigned long milliseconds)
{
    MemoryDisplay* const memory = Memory();
    if (!memory) return 0;
    constexpr unsigned long step = 10;  // shorter than the tick, so that each tick comes at its time
    while (AdvanceGUIZV(0)) {
        if (memory->Has_Script()) {
            memory->Advance(step);
            continue;
        }
        if (milliseconds == 0) return 1;
        unsigned long const next = std::min(milliseconds, step);
        memory->Advance(next);
        milliseconds -= next;
    }
    return 0;
}

// ---- the script -------------------------------------------------------------------------------------------

static HostButton Button(unsigned long number)
{
    switch (number) {
    case ZV_HEADLESS_MIDDLE: return HostButton::Middle;
    case ZV_HEADLESS_RIGHT: return HostButton::Right;
    default: return HostButton::Left;
    }
}

void HeadlessMoveZV(long x, long y)
{
    With_Memory([=](MemoryDisplay& memory) { memory.Move(static_cast<int>(x), static_cast<int>(y)); });
}

void HeadlessPressZV(unsigned long button)
{
    With_Memory([=](MemoryDisplay& memory) { memory.Press_Here(Button(button)); });
}

void HeadlessReleaseZV(unsigned long button)
{
    With_Memory([=](MemoryDisplay& memory) { memory.Release(Button(button)); });
}

void HeadlessClickZV(long x, long y, unsigned long button)
{
    With_Memory([=](MemoryDisplay& memory) {
        memory.Click(static_cast<int>(x), static_cast<int>(y), Button(button));
    });
}

void HeadlessPenZV(double pressure, long isEraser)
{
    With_Memory([=](MemoryDisplay& memory) {
        if (pressure >= 0)
            memory.Take_Pen(MemoryDisplay::Pen{pressure, isEraser != 0});
        else
            memory.Take_Pen(std::nullopt);
    });
}

void HeadlessWheelZV(double right, double up)
{
    With_Memory([=](MemoryDisplay& memory) { memory.Wheel(right, up); });
}

/// The keys of ZVKeyCode from ZV_KEY_LEFT to ZV_KEY_INSERT.
static constexpr HostKey namedKeys[] = {
    HostKey::Left,      HostKey::Right,  HostKey::Up,     HostKey::Down,     HostKey::Help,  HostKey::Delete,
    HostKey::Backspace, HostKey::Enter,  HostKey::Home,   HostKey::End,      HostKey::Tab,   HostKey::PageUp,
    HostKey::PageDown,  HostKey::Escape, HostKey::Return, HostKey::CapsLock, HostKey::Insert};
static_assert(std::size(namedKeys) == ZV_KEY_INSERT - ZV_KEY_LEFT + 1);

static HostKey Key_Of_Code(unsigned long code)
{
    if (code >= ZV_KEY_LEFT && code <= ZV_KEY_INSERT) return namedKeys[code - ZV_KEY_LEFT];
    if (code >= ZV_KEY_F1 && code < ZV_KEY_LEFT)
        return static_cast<HostKey>(static_cast<unsigned long>(HostKey::F1) + code - ZV_KEY_F1);
    return HostKey::Character;
}

void HeadlessKeyZV(unsigned long code)
{
    HeadlessRepeatKeyZV(code, 0);
}

void HeadlessRepeatKeyZV(unsigned long code, long repeats)
{
    HostKey const key = Key_Of_Code(code);
    char32_t const character = key == HostKey::Character ? static_cast<char32_t>(code) : 0;
    With_Memory([=](MemoryDisplay& memory) { memory.Key(key, character, static_cast<int>(repeats)); });
}

static std::string Text_Or_Empty(char const* text)
{
    return text ? text : "";
}

void HeadlessTypeZV(char const* utf8)
{
    With_Memory([=](MemoryDisplay& memory) { memory.Type(Text_Or_Empty(utf8)); });
}

void HeadlessComposeZV(char const* utf8, long caret)
{
    With_Memory([=](MemoryDisplay& memory) {
        memory.Post({.type = HostEventType::Composition,
                     .text = Text_Or_Empty(utf8),
                     .caret = static_cast<int>(caret)});
    });
}

void HeadlessCommitZV(char const* utf8)
{
    With_Memory([=](MemoryDisplay& memory) {
        memory.Post({.type = HostEventType::Text, .text = Text_Or_Empty(utf8)});
    });
}

void HeadlessHoldZV(unsigned long modifiers)
{
    With_Memory([=](MemoryDisplay& memory) {
        memory.Hold({.shift = (modifiers & ZV_MOD_SHIFT) != 0,
                     .control = (modifiers & ZV_MOD_CONTROL) != 0,
                     .alt = (modifiers & ZV_MOD_ALT) != 0,
                     .super = (modifiers & ZV_MOD_COMMAND) != 0,
                     .capsLock = (modifiers & ZV_MOD_CAPS_LOCK) != 0});
    });
}

void HeadlessPauseZV(unsigned long milliseconds)
{
    With_Memory([=](MemoryDisplay& memory) { memory.Pause(milliseconds); });
}

static void Post(HostEventType type, char const* text)
{
    With_Memory([=](MemoryDisplay& memory) { memory.Post({.type = type, .text = Text_Or_Empty(text)}); });
}

void HeadlessOpenFileZV(char const* path)
{
    Post(HostEventType::OpenFile, path);
}

void HeadlessQuitZV()
{
    Post(HostEventType::Quit, nullptr);
}

void HeadlessLeaveZV()
{
    Post(HostEventType::AppBack, nullptr);
}

void HeadlessReturnZV()
{
    Post(HostEventType::AppFront, nullptr);
}

// ---- frames -----------------------------------------------------------------------------------------------

/// Calls `act` with the display and the native window.
template <typename Act> static void With_Window(ZVWindow* window, Act act)
{
    if (window && window->sysWindow)
        With_Memory([&](MemoryDisplay& memory) { act(memory, *window->sysWindow->host); });
}

void HeadlessCloseBoxZV(ZVWindow* window)
{
    With_Window(window, [](MemoryDisplay& memory, HostWindow& host) { memory.Ask_Close(host); });
}

void HeadlessZoomBoxZV(ZVWindow* window)
{
    With_Window(window, [](MemoryDisplay& memory, HostWindow& host) { memory.Zoom(host); });
}

void HeadlessDragFrameZV(ZVWindow* window, ZVRectT<long> const* client)
{
    auto const edge = [](long value) { return static_cast<int>(value); };
    HostRect const place{edge(client->x), edge(client->y), edge(client->x + client->width),
                         edge(client->y + client->height)};
    With_Window(window, [&](MemoryDisplay& memory, HostWindow& host) { memory.Move_By_Frame(host, place); });
}

// ---- pictures ---------------------------------------------------------------------------------------------

/// Of a window or of the desktop, with all that was drawn; empty without the desktop in memory and, with
/// error 1, when memory runs out.
static HostPicture Picture_Of(ZVWindow const* window)
{
    MemoryDisplay* const memory = Memory();
    if (!memory || (window && !window->sysWindow)) return {};
    Refresh_GUI();
    Present_Windows();
    return Guarded(
        [=] { return window ? memory->Screenshot(*window->sysWindow->host) : memory->Screenshot(); });
}

long HeadlessScreenshotZV(ZVWindow* window, char const* path)
{
    HostPicture const picture = Picture_Of(window);
    if (picture.pixels.empty()) return 0;
    if (Write_Png(picture, path)) return 1;
    SetError(ZV_ERR_IO);
    return 0;
}

ZVBitmap* HeadlessPictureZV(ZVWindow* window)
{
    HostPicture const picture = Picture_Of(window);
    if (picture.pixels.empty()) return nullptr;
    ZVBitmap* const bitmap = AllocBitmapZV(picture.width, picture.height, ZV_BITMAP_RGBA8, "screenshot");
    if (!bitmap) return nullptr;
    auto* to = static_cast<ZVBufferRGBA8*>(bitmap)->GetIterator(0, 0);
    for (uint32_t const pixel : picture.pixels) {
        auto const component = [pixel](int shift) { return static_cast<unsigned char>(pixel >> shift); };
        (to++)->SetRGBA(component(16), component(8), component(0), 255);
    }
    return bitmap;
}

// ---- the rest ---------------------------------------------------------------------------------------------

char const* HeadlessClipboardZV()
{
    static std::string text;
    text = Memory() ? Memory()->Clipboard() : std::string();
    return text.c_str();
}

void HeadlessSetClipboardZV(char const* utf8)
{
    With_Memory([=](MemoryDisplay& memory) { memory.Set_Clipboard(Text_Or_Empty(utf8)); });
}

unsigned long HeadlessCursorZV()
{
    MemoryDisplay const* const memory = Memory();
    if (!memory) return ZV_CURSOR_ARROW;
    if (!memory->Is_Pointer_Shown()) return ZV_CURSOR_NONE;
    int const cursor = memory->System_Cursor();
    switch (cursor) {
    case MemoryDisplay::OwnCursor: return ZV_CURSOR_BUSY;  // one of its frames, there is no other image
    case HostCursorText: return ZV_CURSOR_TEXT;
    case HostCursorLeftRight: return ZV_CURSOR_SPLIT_ACROSS;
    case HostCursorUpDown: return ZV_CURSOR_SPLIT_DOWN;
    case HostCursorHand: return ZV_CURSOR_GRAB;
    default: return static_cast<unsigned long>(cursor);
    }
}

long HeadlessBeepsZV()
{
    return Memory() ? Memory()->Beeps() : 0;
}

unsigned long HeadlessMillisecondsZV()
{
    return Memory() ? Memory()->Milliseconds() : 0;
}
