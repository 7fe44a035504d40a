// The display on SDL. A desktop that has no points of its own, as X has not, is counted in points by `unit_`:
// SDL's units for each point, the pixels there. Where SDL's units are points already it is 1, and the pixels
// of a window are more than its units.
#pragma once

#include "Bell.h"
#include "DisplayBase.h"
#include "XErrors.h"
#include "XPixels.h"

#include <SDL.h>

#include <array>
#include <optional>

class SDLWindow;

struct SDLCursorFree {
    void operator()(SDL_Cursor* cursor) const { SDL_FreeCursor(cursor); }
};
using SDLCursor = std::unique_ptr<SDL_Cursor, SDLCursorFree>;

class SDLDisplay : public DisplayBase {
public:
    SDLDisplay();
    ~SDLDisplay() override;
    SDLDisplay(SDLDisplay const&) = delete;
    SDLDisplay& operator=(SDLDisplay const&) = delete;

    bool IsUp() const { return isUp_; }

    std::vector<HostMonitor> Monitors() const override;
    int Depth() const override;
    HostFrame Frame_Of(HostWindowRequest const& request) override;
    std::unique_ptr<HostWindow> Make_Window(HostWindowRequest const& request) override;
    std::optional<HostEvent> Next_Event(double seconds) override;
    bool Has_Events() override;
    void Flush_Input() override;
    uint64_t Milliseconds() const override { return SDL_GetTicks64(); }
    uint64_t Double_Click_Milliseconds() const override { return doubleClick_; }
    void Set_Cursor(int systemCursor) override;
    void Set_Cursor(HostCursorImage const& image) override;
    void Show_Pointer(bool isShown) override { SDL_ShowCursor(isShown ? SDL_ENABLE : SDL_DISABLE); }
    void Hold_Pointer(bool isHeld) override;
    std::string Clipboard() override;
    void Set_Clipboard(std::string const& text) override { SDL_SetClipboardText(text.c_str()); }
    void Beep() override { bell_.Ring(); }
    int Wheel_Lines() const override { return 3; }

    // ---- for the windows

    int Unit() const { return unit_; }
    void Add_Window(SDLWindow& window);
    void Remove_Window(SDLWindow& window);

    /// Where the pixels of a window are made, so that it shows them best.
    PixelRoomMaker Room_For(SDL_Window* window);

    /// Shows a region of a window's pixels without SDL; false when that cannot be.
    bool Show_Pixels(SDL_Window* window, WindowPixels const& pixels, HostRegion const& region);

    /// The frame that the desktop has given to a window, which others of its kind will have too.
    void Learn_Frame(HostWindowRequest const& request, HostFrame const& frame);

private:
    void Bring_In();
    void Keep_Layers();
    void Translate(SDL_Event& event);
    void Translate_Window(SDL_WindowEvent const& event);
    void Translate_Motion(SDL_MouseMotionEvent const& event);
    void Translate_Button(SDL_MouseButtonEvent const& event);
    void Translate_Wheel(SDL_MouseWheelEvent const& event);
    void Translate_Key(SDL_KeyboardEvent const& event);
    void Translate_Text(HostEventType type, char const* text, int caret);
    void Leave_Window();
    SDLWindow* Find_Window(Uint32 id) const;
    HostEvent Mouse_Event(HostEventType type, SDLWindow* window, int x, int y);
    HostEvent Keyboard_Event(HostEventType type) const;
    static HostRect Points(SDL_Rect const& rect, int unit);

    bool isUp_ = false;
    std::optional<XErrors> errors_;     ///< on X
    std::unique_ptr<XPixels> xPixels_;  ///< on X, where a point is a pixel
    int unit_ = 1;
    uint64_t doubleClick_ = 0;
    std::vector<SDLWindow*> windows_;
    std::array<std::optional<HostFrame>, 3> frames_;  // of documents, dialogs and floaters

    bool isFocusLost_ = false;  // since events were last brought in
    bool isPointerHeld_ = false;
    int mouseX_ = 0, mouseY_ = 0;        // on the desktop
    std::optional<SDL_Point> xPointer_;  // on X, what the last event of the server tells
    int heldRestX_ = 0, heldRestY_ = 0;  // of a point that held movements have made so far

    std::array<SDLCursor, SDL_NUM_SYSTEM_CURSORS> systemCursors_;
    SDLCursor ownCursor_;
    Bell bell_;
};

/// Fills in the key and the character that SDL's key means.
void Set_Key(HostEvent& event, SDL_Keysym const& key);
HostModifiers Modifiers_Of(SDL_Keymod held);
