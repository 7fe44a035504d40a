#include "SDLDisplay.h"

#include "DesktopSettings.h"
#include "SDLWindow.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace {

/// What most desktops have, until one of their frames was seen.
constexpr HostFrame UsualFrame{.left = 1, .top = 24, .right = 1, .bottom = 1};

std::size_t Frame_Index(HostWindowKind kind)
{
    switch (kind) {
    case HostWindowKind::Dialog: return 1;
    case HostWindowKind::Floater: return 2;
    default: return 0;
    }
}

SDL_SystemCursor System_Cursor(int code)
{
    switch (code) {
    case HostCursorText: return SDL_SYSTEM_CURSOR_IBEAM;
    case 2:
    case 3: return SDL_SYSTEM_CURSOR_CROSSHAIR;
    case 4: return SDL_SYSTEM_CURSOR_WAIT;
    case HostCursorLeftRight: return SDL_SYSTEM_CURSOR_SIZEWE;
    case HostCursorUpDown: return SDL_SYSTEM_CURSOR_SIZENS;
    case HostCursorHand: return SDL_SYSTEM_CURSOR_HAND;
    default: return SDL_SYSTEM_CURSOR_ARROW;
    }
}

void Set_Hints()
{
    // The press that brings a window to the front is input like any other.
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    // The application outlives its windows.
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    SDL_SetHint(SDL_HINT_IME_SHOW_UI, "1");
    SDL_SetHint(SDL_HINT_IME_SUPPORT_EXTENDED_TEXT, "1");
}

}  // namespace

std::unique_ptr<HostDisplay> Make_SDL_Display(std::string& reason)
{
    auto display = std::make_unique<SDLDisplay>();
    if (display->IsUp()) return display;
    reason = SDL_GetError();
    return nullptr;
}

SDLDisplay::SDLDisplay()
{
    Set_Hints();
    isUp_ = SDL_InitSubSystem(SDL_INIT_VIDEO) == 0;
    if (!isUp_) return;
    SDL_StopTextInput();
    SDL_EventState(SDL_DROPFILE, SDL_ENABLE);
    if (SDL_GetCurrentVideoDriver() == std::string_view("x11")) {
        errors_.emplace();
        SDL_EventState(SDL_SYSWMEVENT, SDL_ENABLE);
        unit_ = X_Display_Scale();
        // Pixels go there by shared memory. For a renderer SDL would make each window anew, which costs its
        // type and its parent.
        SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    }
    doubleClick_ = Desktop_Double_Click_Milliseconds();
    int x = 0, y = 0;
    SDL_GetGlobalMouseState(&x, &y);
    mouseX_ = x / unit_;
    mouseY_ = y / unit_;
}

SDLDisplay::~SDLDisplay()
{
    ownCursor_.reset();
    systemCursors_ = {};
    xPixels_.reset();
    if (isUp_) SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

// ---- monitors and windows ---------------------------------------------------------------------------------

HostRect SDLDisplay::Points(SDL_Rect const& rect, int unit)
{
    return {rect.x / unit, rect.y / unit, (rect.x + rect.w) / unit, (rect.y + rect.h) / unit};
}

std::vector<HostMonitor> SDLDisplay::Monitors() const
{
    std::vector<HostMonitor> monitors;
    for (int i = 0; i < SDL_GetNumVideoDisplays(); ++i) {
        SDL_Rect bounds, usable;
        if (SDL_GetDisplayBounds(i, &bounds) != 0) continue;
        if (SDL_GetDisplayUsableBounds(i, &usable) != 0) usable = bounds;
        monitors.push_back({Points(bounds, unit_), Points(usable, unit_)});
    }
    if (monitors.empty()) monitors.push_back({{0, 0, 1024, 768}, {0, 0, 1024, 768}});
    return monitors;
}

int SDLDisplay::Depth() const
{
    SDL_DisplayMode mode;
    if (SDL_GetDesktopDisplayMode(0, &mode) != 0) return 32;
    return static_cast<int>(SDL_BYTESPERPIXEL(mode.format)) * 8;
}

HostFrame SDLDisplay::Frame_Of(HostWindowRequest const& request)
{
    if (!request.hasFrame || request.kind == HostWindowKind::Popup) return {};
    if (auto const& frame = frames_[Frame_Index(request.kind)]) return *frame;
    return frames_[0].value_or(UsualFrame);
}

void SDLDisplay::Learn_Frame(HostWindowRequest const& request, HostFrame const& frame)
{
    frames_[Frame_Index(request.kind)] = frame;
}

std::unique_ptr<HostWindow> SDLDisplay::Make_Window(HostWindowRequest const& request)
{
    // A window is kept above its parent: all are above the root, and what serves a document is above it.
    bool const isServant = request.kind == HostWindowKind::Dialog || request.kind == HostWindowKind::Popup;
    auto* parent = isServant ? static_cast<SDLWindow*>(Front_Ordinary()) : nullptr;
    if (!parent && request.kind != HostWindowKind::Root) {
        for (SDLWindow* const window : windows_)
            if (window->Request().kind == HostWindowKind::Root) parent = window;
    }
    auto window = std::make_unique<SDLWindow>(*this, request, parent);
    if (!window->IsMade()) return nullptr;
    return window;
}

void SDLDisplay::Add_Window(SDLWindow& window)
{
    if (window.Request().kind == HostWindowKind::Root) {
        for (SDLWindow* const other : windows_)
            if (other->Request().kind == HostWindowKind::Document) other->Set_Parent(&window);
    }
    windows_.push_back(&window);
}

void SDLDisplay::Remove_Window(SDLWindow& window)
{
    std::erase(windows_, &window);
    Forget_Window(window);
}

PixelRoomMaker SDLDisplay::Room_For(SDL_Window* window)
{
    if (window && errors_ && unit_ == 1 && !xPixels_) xPixels_ = Make_X_Pixels(window);
    if (!xPixels_) return Make_Private_Room;
    return [this](std::size_t words) { return xPixels_->Make_Room(words); };
}

bool SDLDisplay::Show_Pixels(SDL_Window* window, WindowPixels const& pixels, HostRegion const& region)
{
    return xPixels_ && xPixels_->Show(window, pixels, region);
}

// ---- cursors and the clipboard ----------------------------------------------------------------------------

void SDLDisplay::Set_Cursor(int systemCursor)
{
    SDL_SystemCursor const code = System_Cursor(systemCursor);
    SDLCursor& cursor = systemCursors_[code];
    if (!cursor) cursor.reset(SDL_CreateSystemCursor(code));
    if (cursor) SDL_SetCursor(cursor.get());
}

void SDLDisplay::Set_Cursor(HostCursorImage const& image)
{
    if (image.width <= 0 || image.height <= 0 ||
        image.pixels.size() < static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height))
        return;
    int const width = image.width * unit_, height = image.height * unit_;
    std::vector<uint32_t> words;
    words.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            words.push_back(image.pixels[static_cast<std::size_t>(y / unit_ * image.width + x / unit_)]);
    SDL_Surface* const surface = SDL_CreateRGBSurfaceWithFormatFrom(words.data(), width, height, 32,
                                                                    width * 4, SDL_PIXELFORMAT_ARGB8888);
    if (!surface) return;
    SDLCursor cursor(SDL_CreateColorCursor(surface, std::clamp(image.hotX * unit_, 0, width - 1),
                                           std::clamp(image.hotY * unit_, 0, height - 1)));
    SDL_FreeSurface(surface);
    if (!cursor) return;
    SDL_SetCursor(cursor.get());
    ownCursor_ = std::move(cursor);  // The old one goes once it is not seen any more.
}

void SDLDisplay::Hold_Pointer(bool isHeld)
{
    isPointerHeld_ = isHeld;
    heldRestX_ = heldRestY_ = 0;
    SDL_SetRelativeMouseMode(isHeld ? SDL_TRUE : SDL_FALSE);
}

std::string SDLDisplay::Clipboard()
{
    char* const text = SDL_GetClipboardText();
    std::string const copy = text ? text : "";
    SDL_free(text);
    return copy;
}
