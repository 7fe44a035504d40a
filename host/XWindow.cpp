#include "XWindow.h"

#include <SDL.h>
#include <SDL_syswm.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

XWindow X_Window_Of(SDL_Window* window)
{
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (!SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_X11) return {};
    return {info.info.x11.display, info.info.x11.window};
}

bool X_Set_Size_Limits(SDL_Window* window, int minWidth, int minHeight, int maxWidth, int maxHeight)
{
    XWindow const x = X_Window_Of(window);
    if (!x.display) return false;
    XSizeHints hints{};
    long supplied = 0;
    XGetWMNormalHints(x.display, x.window, &hints, &supplied);
    hints.flags |= PMinSize;
    hints.min_width = minWidth;
    hints.min_height = minHeight;
    hints.flags &= ~PMaxSize;
    if (maxWidth > 0 && maxHeight > 0) {
        hints.flags |= PMaxSize;
        hints.max_width = maxWidth;
        hints.max_height = maxHeight;
    }
    XSetWMNormalHints(x.display, x.window, &hints);
    return true;
}

bool X_Pointer_Of(SDL_SysWMmsg const& message, int& x, int& y)
{
    if (message.subsystem != SDL_SYSWM_X11) return false;
    XEvent const& event = message.msg.x11.event;
    auto const take = [&](auto const& pointer) {
        x = pointer.x_root;
        y = pointer.y_root;
        return true;
    };
    switch (event.type) {
    case MotionNotify: return take(event.xmotion);
    case ButtonPress:
    case ButtonRelease: return take(event.xbutton);
    case EnterNotify:
    case LeaveNotify: return take(event.xcrossing);
    default: return false;
    }
}

bool X_Move_Hidden(SDL_Window* window, int x, int y)
{
    XWindow const target = X_Window_Of(window);
    if (!target.display) return false;
    XMoveWindow(target.display, target.window, x, y);
    return true;
}

bool X_Ask_For(SDL_Window* window)
{
    XWindow const target = X_Window_Of(window);
    if (!target.display) return false;
    XMapRaised(target.display, target.window);
    XFlush(target.display);
    return true;
}

void X_Await(SDL_Window* window)
{
    XWindow target = X_Window_Of(window);
    XEvent event;
    auto const isThere = [](Display*, XEvent* one, XPointer awaited) {
        return Bool{one->type == MapNotify && one->xmap.window == *reinterpret_cast<Window*>(awaited)};
    };
    XIfEvent(target.display, &event, isThere, reinterpret_cast<XPointer>(&target.window));
}
