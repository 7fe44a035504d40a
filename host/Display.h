// The display: monitors, windows with their pixels, input, cursors and the clipboard. One implementation
// stands on SDL, one lives in memory with a clock of its own. One thread uses the service and all that it
// makes. Coordinates are those of the desktop; a dense display is scaled by the service, so that a point here
// is a point for everybody above.
#pragma once

#include "Surface.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class HostWindow;

enum class HostEventType : uint8_t {
    MouseMove,
    MouseDown,
    MouseUp,
    Wheel,
    KeyDown,
    KeyUp,
    Text,          ///< characters typed or handed over by an input method
    Composition,   ///< the input method's unfinished text; empty when it is given up
    WindowClose,   ///< the user asks for it
    WindowBounds,  ///< moved or resized by the user; the surface has the new size by now
    WindowZoom,    ///< maximised or back, likewise with the new size
    WindowFront,   ///< gets keys from here on: by the user, the desktop, or because it was shown or raised
    WindowBack,    ///< no longer the one that gets keys
    AppFront,      ///< a window of this process gets keys, when none did
    AppBack,
    OpenFile,  ///< dropped on a window, or given by the desktop
    Quit       ///< the desktop asks the application to end
};

enum class HostButton : uint8_t { Left, Middle, Right };

/// Keys by what they are, on any layout. Every key that has a character is Character.
enum class HostKey : uint8_t {
    Character,
    F1,
    F2,
    F3,
    F4,
    F5,
    F6,
    F7,
    F8,
    F9,
    F10,
    F11,
    F12,
    F13,
    F14,
    F15,
    Left,
    Right,
    Up,
    Down,
    Help,
    Delete,
    Backspace,
    Enter,
    Home,
    End,
    Tab,
    PageUp,
    PageDown,
    Escape,
    Return,
    CapsLock,
    Insert,
    Modifier,  ///< Shift, Control, Alt, Super by themselves
    Other
};

/// Modifier keys that are held.
struct HostModifiers {
    bool shift = false, control = false, alt = false, super = false, capsLock = false;
};

struct HostEvent {
    HostEventType type;
    HostWindow* window = nullptr;  ///< null for events of the whole application
    uint64_t milliseconds = 0;     ///< the service's clock
    HostModifiers modifiers = {};
    int x = 0, y = 0;            ///< mouse events: on the desktop
    int deltaX = 0, deltaY = 0;  ///< MouseMove: the movement, also while the pointer is held
    HostButton button = HostButton::Left;
    int clicks = 1;                 ///< MouseDown: by the desktop's own double-click rules
    double wheelX = 0, wheelY = 0;  ///< Wheel: notches, to the right and away from the user
    HostKey key = HostKey::Other;   ///< KeyDown, KeyUp
    char32_t character = 0;         ///< of the key without modifiers but shift; 0 for none
    char32_t plain = 0;             ///< the same without shift too; 0 when that is not known
    bool isRepeat = false;
    std::string text = {};  ///< Text and Composition: UTF-8; OpenFile: a native path
    int caret = 0;          ///< Composition: characters of it ahead of the caret
    double pressure = 1.0;  ///< of a pen, 0 to 1
    bool isPen = false, isEraser = false;
};

enum class HostWindowKind : uint8_t {
    Document,  ///< an ordinary window
    Dialog,    ///< kept above documents and floaters
    Floater,   ///< kept above the documents
    Popup,     ///< no decoration, above all
    Root       ///< behind all others of the application
};

struct HostWindowRequest {
    HostWindowKind kind = HostWindowKind::Document;
    HostRect client = {};  ///< on the desktop
    std::string title = {};
    bool hasFrame = true;
    bool canClose = false, canCollapse = false, canZoom = false, canResize = false;
};

/// Thickness of a window's frame.
struct HostFrame {
    int left = 0, top = 0, right = 0, bottom = 0;
};

class HostWindow {
public:
    virtual ~HostWindow() = default;  ///< Takes it off the desktop.

    /// The pixels of the client area, 32 bits deep. What is drawn shows with the next Present. With a change
    /// of size, which happens in Set_Client and in Next_Event alone, it keeps what it held, with white beside
    /// it; its clip is lifted, and all of it counts as touched.
    virtual HostSurface& Surface() = 0;

    /// In front of its kind. Keys go to a document or a dialog, to others when no window has them.
    virtual void Show() = 0;
    virtual void Hide() = 0;
    virtual void Raise() = 0;  ///< To the front of its kind, and keys go to it.
    virtual void Set_Title(std::string const& title) = 0;

    virtual HostRect Client() const = 0;                  ///< On the desktop.
    virtual void Set_Client(HostRect const& client) = 0;  ///< Throws without memory, nothing changed.
    virtual HostFrame Frame() const = 0;

    /// What the user can make of it by its edges.
    virtual void Set_Size_Limits(int minWidth, int minHeight, int maxWidth, int maxHeight) = 0;

    virtual void Present() = 0;  ///< Shows what of the surface was drawn since the last time.

    /// From now on typed text goes through the input method, which shows its lists beside the caret.
    virtual void Start_Text(HostRect const& caret) = 0;
    virtual void Stop_Text() = 0;

    void* owner = nullptr;  ///< of whoever made the window
};

struct HostMonitor {
    HostRect bounds;
    HostRect usable;  ///< without the desktop's bars
};

/// A cursor of the desktop by its number in the numbering of cursor codes: 0 arrow, 1 text beam, 2 cross, 3
/// thick cross, 4 watch. Those above have no number there; others are the arrow.
inline constexpr int HostCursorArrow = 0, HostCursorText = 1, HostCursorLeftRight = 128,
                     HostCursorUpDown = 129, HostCursorHand = 130;

/// A cursor of the library's own.
struct HostCursorImage {
    int width, height, hotX, hotY;
    std::vector<uint32_t> pixels;  ///< 0xAARRGGBB, straight alpha
};

class HostDisplay {
public:
    virtual ~HostDisplay() = default;  ///< All windows are gone by then.

    virtual std::vector<HostMonitor> Monitors() const = 0;  ///< The main one first; never empty.
    virtual int Depth() const = 0;                          ///< Bits of a pixel of the display.

    /// The frame that a window of this kind will have.
    virtual HostFrame Frame_Of(HostWindowRequest const& request) = 0;
    virtual std::unique_ptr<HostWindow> Make_Window(HostWindowRequest const& request) = 0;  ///< Hidden.

    /// The front window there, by its frame too and by the service's own order. Null when none of ours is
    /// there.
    virtual HostWindow* Window_At(int x, int y) const = 0;
    virtual HostWindow* Front_Window() const = 0;  ///< that gets keys

    /// Of those that are shown, the one behind another; null begins with the front one, and ends the row.
    virtual HostWindow* Next_Window(HostWindow const* front) const = 0;

    /// The next event; waits for it so long, or not at all for 0. In memory the clock moves on by the wait.
    virtual std::optional<HostEvent> Next_Event(double seconds) = 0;
    virtual bool Has_Events() = 0;   ///< Whether there is something to ask Next_Event for.
    virtual void Flush_Input() = 0;  ///< Forgets waiting mouse and key events.

    virtual uint64_t Milliseconds() const = 0;
    virtual uint64_t Double_Click_Milliseconds() const = 0;

    // As of the last event that was taken or forgotten.
    virtual HostModifiers Modifiers() const = 0;
    virtual bool Is_Button_Down() const = 0;
    virtual void Pointer(int& x, int& y) const = 0;

    virtual void Set_Cursor(int systemCursor) = 0;
    virtual void Set_Cursor(HostCursorImage const& image) = 0;
    virtual void Show_Pointer(bool isShown) = 0;
    virtual void Hold_Pointer(bool isHeld) = 0;  ///< It stays where it is, movements still come.

    virtual std::string Clipboard() = 0;
    virtual void Set_Clipboard(std::string const& text) = 0;
    virtual void Beep() = 0;
    virtual int Wheel_Lines() const = 0;
};

/// @param reason  told when null comes back
std::unique_ptr<HostDisplay> Make_SDL_Display(std::string& reason);
std::unique_ptr<HostDisplay> Make_Memory_Display(int width, int height);
