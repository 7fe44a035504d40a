// A window of the display on SDL.
#pragma once

#include "SDLDisplay.h"
#include "WindowPixels.h"

class SDLWindow : public HostWindow {
public:
    SDLWindow(SDLDisplay& display, HostWindowRequest const& request, SDLWindow const* parent);
    ~SDLWindow() override;
    SDLWindow(SDLWindow const&) = delete;
    SDLWindow& operator=(SDLWindow const&) = delete;

    bool IsMade() const { return window_ != nullptr; }
    bool IsShown() const { return isShown_; }
    void Position(int& x, int& y) const { SDL_GetWindowPosition(window_, &x, &y); }  ///< in SDL's units
    HostWindowRequest const& Request() const { return request_; }
    Uint32 Id() const { return SDL_GetWindowID(window_); }

    /// Keeps this window above another one, or above none.
    void Set_Parent(SDLWindow const* parent);

    /// Keeps this window above those of which this does not hold.
    void Keep_On_Top(bool isOnTop) { SDL_SetWindowAlwaysOnTop(window_, isOnTop ? SDL_TRUE : SDL_FALSE); }

    HostSurface& Surface() override { return pixels_.Surface(); }
    void Show() override;
    void Hide() override;
    void Raise() override;
    void Set_Title(std::string const& title) override { SDL_SetWindowTitle(window_, title.c_str()); }
    HostRect Client() const override { return client_; }
    void Set_Client(HostRect const& client) override;
    HostFrame Frame() const override;
    void Set_Size_Limits(int minWidth, int minHeight, int maxWidth, int maxHeight) override;
    void Present() override;
    void Start_Text(HostRect const& caret) override;
    void Stop_Text() override;

    /// All of the surface shows again with the next Present.
    void Expose() { isExposed_ = true; }
    bool Is_Exposed() const { return isExposed_; }

    /// Waits until the desktop has put up a window that is to be shown. It is drawn meanwhile.
    void Finish_Showing();

    /// Follows the bounds that the desktop has given to the window. False when they are known.
    bool Follow_Bounds(HostEventType& type);

private:
    HostRect Real_Client() const;
    void Move_To(int left, int top);
    void Show_By_SDL(HostRegion const& region);

    struct SizeLimits {
        int minWidth = 0, minHeight = 0, maxWidth = 0, maxHeight = 0;
        bool operator==(SizeLimits const&) const = default;
        bool Allow(int width, int height) const
        {
            return width >= minWidth && height >= minHeight && width <= maxWidth && height <= maxHeight;
        }
    };

    SDLDisplay& display_;
    HostWindowRequest request_;
    HostRect client_;
    SDL_Window* window_;  // null when it could not be made
    WindowPixels pixels_;
    SizeLimits limits_;
    bool isShown_ = false, isZoomed_ = false;
    bool isExposed_ = false;
    bool wasShown_ = false;   // at least once
    bool isAwaited_ = false;  // the desktop was asked to put it up
    bool isPlacing_ = false;  // shown, and the desktop has not said where yet
};
