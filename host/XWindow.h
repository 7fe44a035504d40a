// Windows of SDL as the X server knows them, for what SDL takes many round trips to the server for.
#pragma once

#include <cstdint>

struct SDL_SysWMmsg;
struct SDL_Window;

struct XWindow {
    struct _XDisplay* display = nullptr;  ///< SDL's connection; null for a window that is not on X
    unsigned long window = 0;
};
XWindow X_Window_Of(SDL_Window* window);

/// The sizes that the user can give to the window, in pixels; a largest one of 0 is none. False when the
/// window is not on X.
bool X_Set_Size_Limits(SDL_Window* window, int minWidth, int minHeight, int maxWidth, int maxHeight);

/// Where the pointer was on the desktop, in pixels, when the server sent what the message holds. False when
/// that tells of no pointer.
bool X_Pointer_Of(SDL_SysWMmsg const& message, int& x, int& y);

/// Moves a window that is not shown. False when it is not on X.
bool X_Move_Hidden(SDL_Window* window, int x, int y);

/// Asks for a window that is not shown, and waits until it is there. SDL does both in one, and nothing else
/// meanwhile. False when the window is not on X.
bool X_Ask_For(SDL_Window* window);
void X_Await(SDL_Window* window);
