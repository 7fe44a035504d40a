// A display in memory: one monitor, a clock that moves on by waiting alone, input by script,
// and pictures of what would be seen. The desktop around the windows is played as well: it draws frames,
// moves and resizes windows by them, and hands out keys.
#pragma once

#include "DisplayBase.h"
#include "Screenshot.h"

#include <deque>

class MemoryWindow;

class MemoryDisplay : public DisplayBase {
public:
    explicit MemoryDisplay(int width = 1600, int height = 1200);  ///< size of the monitor
    ~MemoryDisplay() override;

    // ---- the script
    //
    // What is posted waits until the clock has reached its time, and meets the windows that are there then.

    /// Posts one event. Of mouse and key events the window is found out, of presses the clicks, of moves the
    /// deltas; a key that has a character and text gives the Text event too, where text is typed. An event
    /// without a time comes at the script's.
    void Post(HostEvent event);

    void Move(int x, int y);
    void Press(int x, int y, HostButton button = HostButton::Left);
    void Press_Here(HostButton button = HostButton::Left);  ///< where the script has moved to, as the next
    void Release(HostButton button = HostButton::Left);
    void Click(int x, int y, HostButton button = HostButton::Left);
    void Wheel(double x, double y);
    void Key(HostKey key, char32_t character = 0, int repeats = 0);  ///< down, held that long, and up
    void Type(std::string const& text);                              ///< UTF-8; a key for each character

    /// Held with what is posted from here on.
    void Hold(HostModifiers const& modifiers) { held_ = modifiers; }

    /// A pen moves, presses and releases in what is posted from here on; the mouse without one.
    struct Pen {
        double pressure;
        bool isEraser;
    };
    void Take_Pen(std::optional<Pen> const& pen) { pen_ = pen; }

    /// What is posted from here on comes so much later.
    void Pause(uint64_t milliseconds) { scriptTime_ = Script_Time() + milliseconds; }

    /// Moves the clock on now.
    void Advance(uint64_t milliseconds) { now_ += milliseconds; }

    bool Has_Script() const { return !script_.empty(); }  ///< Something was posted that has not come yet.

    // ---- the user at a window's frame

    void Ask_Close(HostWindow& window);
    void Move_By_Frame(HostWindow& window, HostRect const& client);  ///< inside its limits of size
    void Zoom(HostWindow& window);                                   ///< to the usable area, or back

    // ---- what would be seen and heard

    HostPicture Screenshot(HostWindow const& window) const;  ///< the client area as last presented
    HostPicture Screenshot() const;                          ///< of the whole desktop
    static constexpr int OwnCursor = -1;
    int System_Cursor() const { return cursor_; }  ///< OwnCursor for one of the library's own
    bool Is_Pointer_Shown() const { return isPointerShown_; }
    int Beeps() const { return beeps_; }

    // ---- the service

    std::vector<HostMonitor> Monitors() const override;
    int Depth() const override { return 32; }
    HostFrame Frame_Of(HostWindowRequest const& request) override;
    std::unique_ptr<HostWindow> Make_Window(HostWindowRequest const& request) override;
    std::optional<HostEvent> Next_Event(double seconds) override;
    bool Has_Events() override;
    void Flush_Input() override;
    uint64_t Milliseconds() const override { return now_; }
    uint64_t Double_Click_Milliseconds() const override { return 500; }
    void Set_Cursor(int systemCursor) override { cursor_ = systemCursor; }
    void Set_Cursor(HostCursorImage const&) override { cursor_ = OwnCursor; }
    void Show_Pointer(bool isShown) override { isPointerShown_ = isShown; }
    void Hold_Pointer(bool isHeld) override { isPointerHeld_ = isHeld; }
    std::string Clipboard() override { return clipboard_; }
    void Set_Clipboard(std::string const& text) override { clipboard_ = text; }
    void Beep() override { ++beeps_; }
    int Wheel_Lines() const override { return 3; }

private:
    friend MemoryWindow;

    /// What a press on a frame does while it is held.
    enum class FramePart : uint8_t { Title, CloseBox, ZoomBox, Edges };
    struct FramePress {
        MemoryWindow* window;
        FramePart part;
        bool movesRight, movesBottom;
        int x, y;         // of the press
        HostRect client;  // before it
    };

    void Forget(MemoryWindow& window);
    uint64_t Script_Time() const;
    HostEvent Scripted(HostEventType type) const;
    bool Is_Script_Due() const;
    bool Bring_In();
    void Play_Next();
    void Play(HostEvent event);
    void Play_Move(HostEvent event);
    void Play_Press(HostEvent event);
    void Play_Release(HostEvent event);
    void Play_Key(HostEvent event);
    HostWindow* Content_At(int x, int y) const;
    void Press_Frame(MemoryWindow& window, HostEvent const& event);
    void Drag_Frame(int x, int y);

    HostRect const screen_;

    std::deque<HostEvent> script_;  // by time
    uint64_t now_ = 1;              // 0 stands for no time
    uint64_t scriptTime_ = 0;
    HostModifiers held_;
    std::optional<Pen> pen_;
    int scriptX_ = 0, scriptY_ = 0;  // where the script has moved the pointer to
    int mouseX_ = 0, mouseY_ = 0;    // where it has got

    HostWindow* pressed_ = nullptr;  // gets mouse events while a button is held
    unsigned pressedButtons_ = 0;
    std::optional<FramePress> framePress_;

    std::string clipboard_;
    int cursor_ = HostCursorArrow;
    bool isPointerShown_ = true, isPointerHeld_ = false;
    int beeps_ = 0;
};
