#include "SDLWindow.h"

#include "XWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

Uint32 Flags_Of(HostWindowRequest const& request)
{
    Uint32 flags = SDL_WINDOW_HIDDEN | SDL_WINDOW_ALLOW_HIGHDPI;
    if (request.canResize) flags |= SDL_WINDOW_RESIZABLE;
    if (!request.hasFrame) flags |= SDL_WINDOW_BORDERLESS;
    if (request.kind == HostWindowKind::Floater) flags |= SDL_WINDOW_UTILITY | SDL_WINDOW_SKIP_TASKBAR;
    if (request.kind == HostWindowKind::Popup)
        flags |= SDL_WINDOW_POPUP_MENU | SDL_WINDOW_SKIP_TASKBAR | SDL_WINDOW_BORDERLESS |
                 SDL_WINDOW_ALWAYS_ON_TOP;
    return flags;
}

/// What X can make of a window.
constexpr int LargestSize = 16384;

/// A hint for as long as this exists.
class PassingHint {
public:
    PassingHint(char const* name, char const* value) : name_(name) { SDL_SetHint(name, value); }
    ~PassingHint() { SDL_ResetHint(name_); }
    PassingHint(PassingHint const&) = delete;
    PassingHint& operator=(PassingHint const&) = delete;

private:
    char const* name_;
};

/// Hidden; null when there is none to be had.
SDL_Window* Make_SDL_Window(HostWindowRequest const& request, HostRect const& client, int unit)
{
    std::optional<PassingHint> dialog;
    if (request.kind == HostWindowKind::Dialog)
        dialog.emplace(SDL_HINT_X11_WINDOW_TYPE, "_NET_WM_WINDOW_TYPE_DIALOG");
    return SDL_CreateWindow(request.title.c_str(), client.left * unit, client.top * unit,
                            client.Width() * unit, client.Height() * unit, Flags_Of(request));
}

/// Whether a window's pixels are words 0xXXRRGGBB, as the library's are.
bool Is_Word_Format(SDL_PixelFormat const& format)
{
    return format.BytesPerPixel == 4 && format.Rmask == 0xFF0000 && format.Gmask == 0xFF00 &&
           format.Bmask == 0xFF;
}

HostRect Scaled(HostRect const& rect, double scaleX, double scaleY)
{
    return {static_cast<int>(std::floor(rect.left * scaleX)), static_cast<int>(std::floor(rect.top * scaleY)),
            static_cast<int>(std::ceil(rect.right * scaleX)),
            static_cast<int>(std::ceil(rect.bottom * scaleY))};
}

}  // namespace

SDLWindow::SDLWindow(SDLDisplay& display, HostWindowRequest const& request, SDLWindow const* parent)
    : display_(display), request_(request), client_(Window_Client(request.client)),
      window_(Make_SDL_Window(request, client_, display.Unit())),
      pixels_(client_.Width(), client_.Height(), display.Room_For(window_))
{
    if (!window_) return;
    Set_Parent(parent);
    display_.Add_Window(*this);
}

SDLWindow::~SDLWindow()
{
    if (!window_) return;
    Hide();
    display_.Remove_Window(*this);
    SDL_DestroyWindow(window_);
}

void SDLWindow::Set_Parent(SDLWindow const* parent)
{
    // Where a desktop knows no such thing, the window is one like others.
    SDL_SetWindowModalFor(window_, parent ? parent->window_ : nullptr);
}

void SDLWindow::Show()
{
    if (isShown_) return;
    isShown_ = true;
    bool const takesKeys = Takes_Keys(request_.kind) || !display_.Front_Window();
    // A window manager puts the corner of the frame where a new window asks to be.
    HostFrame const frame = wasShown_ ? HostFrame() : display_.Frame_Of(request_);
    int const left = client_.left - frame.left, top = client_.top - frame.top;
    if (!X_Move_Hidden(window_, left * display_.Unit(), top * display_.Unit())) Move_To(left, top);
    {
        PassingHint const quiet(SDL_HINT_WINDOW_NO_ACTIVATION_WHEN_SHOWN, takesKeys ? "0" : "1");
        SDL_ShowWindow(window_);
    }
    wasShown_ = isPlacing_ = true;
    display_.Place_In_Front(*this, request_.kind);
    if (takesKeys) display_.Give_Keys(this);
    Expose();
}

void SDLWindow::Hide()
{
    if (!isShown_) return;
    isShown_ = false;
    SDL_HideWindow(window_);
    display_.Take_Off(*this);
}

void SDLWindow::Raise()
{
    if (!isShown_) return;
    SDL_RaiseWindow(window_);
    display_.Place_In_Front(*this, request_.kind);
    display_.Give_Keys(this);
}

HostRect SDLWindow::Real_Client() const
{
    int x = 0, y = 0, width = 0, height = 0;
    SDL_GetWindowPosition(window_, &x, &y);
    SDL_GetWindowSize(window_, &width, &height);
    int const unit = display_.Unit();
    int const left = static_cast<int>(std::floor(static_cast<double>(x) / unit));
    int const top = static_cast<int>(std::floor(static_cast<double>(y) / unit));
    return Window_Client({left, top, left + width / unit, top + height / unit});
}

void SDLWindow::Move_To(int left, int top)
{
    SDL_SetWindowPosition(window_, left * display_.Unit(), top * display_.Unit());
}

void SDLWindow::Set_Client(HostRect const& client)
{
    HostRect const wanted = Window_Client(client);
    if (wanted.Width() != client_.Width() || wanted.Height() != client_.Height())
        pixels_.Resize(wanted.Width(), wanted.Height());
    HostRect const old = std::exchange(client_, wanted);
    int const unit = display_.Unit();
    if (client_.Width() != old.Width() || client_.Height() != old.Height()) {
        // SDL would hold the size within the limits, which are for the user alone.
        if (!limits_.Allow(client_.Width(), client_.Height()))
            Set_Size_Limits(1, 1, LargestSize, LargestSize);
        SDL_SetWindowSize(window_, client_.Width() * unit, client_.Height() * unit);
    }
    if (client_.left != old.left || client_.top != old.top) Move_To(client_.left, client_.top);
}

bool SDLWindow::Follow_Bounds(HostEventType& type)
{
    bool const isZoomed = (SDL_GetWindowFlags(window_) & SDL_WINDOW_MAXIMIZED) != 0;
    bool const isZoomChange = std::exchange(isZoomed_, isZoomed) != isZoomed;
    HostRect const real = Real_Client();
    if (std::exchange(isPlacing_, false) && (real.left != client_.left || real.top != client_.top)) {
        // The frame has turned out to be another; where that is refused the next event says so.
        Move_To(client_.left, client_.top);
        return false;
    }
    if (real.Width() != client_.Width() || real.Height() != client_.Height()) {
        pixels_.Resize(real.Width(), real.Height());
        Expose();
    }
    HostRect const old = std::exchange(client_, real);
    type = isZoomChange && request_.canZoom ? HostEventType::WindowZoom : HostEventType::WindowBounds;
    return isZoomChange || client_ != old;
}

HostFrame SDLWindow::Frame() const
{
    HostFrame frame;
    if (!request_.hasFrame || request_.kind == HostWindowKind::Popup) return frame;
    bool const isKnown = isShown_ && SDL_GetWindowBordersSize(window_, &frame.top, &frame.left, &frame.bottom,
                                                              &frame.right) == 0;
    if (!isKnown || frame.top == 0) return display_.Frame_Of(request_);
    int const unit = display_.Unit();
    for (int* const side : {&frame.left, &frame.top, &frame.right, &frame.bottom})
        *side = (*side + unit - 1) / unit;
    display_.Learn_Frame(request_, frame);
    return frame;
}

void SDLWindow::Set_Size_Limits(int minWidth, int minHeight, int maxWidth, int maxHeight)
{
    SizeLimits const limits{minWidth, minHeight, maxWidth, maxHeight};
    if (std::exchange(limits_, limits) == limits) return;  // to tell the desktop takes round trips
    int const unit = display_.Unit();
    if (X_Set_Size_Limits(window_, minWidth * unit, minHeight * unit, maxWidth * unit, maxHeight * unit))
        return;
    // SDL takes no limit of 0.
    SDL_SetWindowMinimumSize(window_, std::max(minWidth, 1) * unit, std::max(minHeight, 1) * unit);
    if (maxWidth > 0 && maxHeight > 0) SDL_SetWindowMaximumSize(window_, maxWidth * unit, maxHeight * unit);
}

// ---- pixels -----------------------------------------------------------------------------------------------

void SDLWindow::Present()
{
    HostRegion touched = pixels_.Surface().Take_Touched();
    if (!isShown_) return;
    if (std::exchange(isExposed_, false)) touched = HostRegion(pixels_.Surface().Bounds());
    if (touched.IsEmpty()) return;
    if (!display_.Show_Pixels(window_, pixels_, touched)) Show_By_SDL(touched);
}

void SDLWindow::Show_By_SDL(HostRegion const& region)
{
    SDL_Surface* const target = SDL_GetWindowSurface(window_);
    if (!target || SDL_MUSTLOCK(target)) return;
    int width = 0, height = 0;
    SDL_GetWindowSize(window_, &width, &height);
    double const scaleX = static_cast<double>(display_.Unit()) * target->w / std::max(width, 1);
    double const scaleY = static_cast<double>(display_.Unit()) * target->h / std::max(height, 1);
    HostRect const source = pixels_.Surface().Bounds();
    HostRect const whole = Scaled(source, scaleX, scaleY);

    HostRegion shown;
    std::vector<SDL_Rect> rects;
    for (int i = 0; i < region.Box_Count(); ++i) {
        HostRect const box =
            Intersection(Scaled(region.Box(i), scaleX, scaleY), HostRect{0, 0, target->w, target->h});
        if (box.IsEmpty()) continue;
        shown.Unite(box);
        rects.push_back({box.left, box.top, box.Width(), box.Height()});
    }
    if (rects.empty()) return;

    if (Is_Word_Format(*target->format)) {
        HostSurface surface(static_cast<unsigned char*>(target->pixels), target->w, target->h, 32,
                            target->pitch);
        surface.Set_Clip(std::move(shown));
        if (whole == source)
            surface.Blit(pixels_.Surface(), source, 0, 0);
        else
            surface.Stretch(pixels_.Surface(), source, whole);
    } else {
        SDL_Surface* const all = SDL_CreateRGBSurfaceWithFormatFrom(
            pixels_.Row(0), source.Width(), source.Height(), 32, pixels_.Row_Bytes(), SDL_PIXELFORMAT_RGB888);
        SDL_Rect to{0, 0, whole.Width(), whole.Height()};
        SDL_BlitScaled(all, nullptr, target, &to);
        SDL_FreeSurface(all);
    }
    SDL_UpdateWindowSurfaceRects(window_, rects.data(), static_cast<int>(rects.size()));
}

// ---- text -------------------------------------------------------------------------------------------------

void SDLWindow::Start_Text(HostRect const& caret)
{
    int const unit = display_.Unit();
    SDL_Rect const rect{caret.left * unit, caret.top * unit, std::max(caret.Width(), 1) * unit,
                        std::max(caret.Height(), 1) * unit};
    SDL_SetTextInputRect(&rect);
    if (!SDL_IsTextInputActive()) SDL_StartTextInput();
}

void SDLWindow::Stop_Text()
{
    SDL_StopTextInput();
}
