// The cursor on the display.
#include "MacBusyCursor.h"
#include "MacWindow.h"
#include "ZVLibInternal.h"
#include "foundation/Guard.h"

static void Show_Pointer()
{
    bool const isNone = ZVEnv->cursor == static_cast<int16_t>(ZV_CURSOR_NONE);
    Display()->Show_Pointer(!isNone && !ZVEnv->infiniteMouse);
}

/// The desktop's cursor for a number of the library's, which so looks like the others of that desktop.
static int Cursor_Of_Desktop(unsigned short code)
{
    switch (code) {
    case ZV_CURSOR_SLIDE:
    case ZV_CURSOR_SPLIT_ACROSS: return HostCursorLeftRight;
    case ZV_CURSOR_SPLIT_DOWN: return HostCursorUpDown;
    case ZV_CURSOR_GRAB: return HostCursorHand;
    default: return code < ZV_CURSOR_COLOR ? code : HostCursorArrow;
    }
}

void Mac_Show_Cursor(unsigned short code)
{
    if (!Display()) return;
    int const frame = code - ZV_CURSOR_COLOR;
    if (frame >= 0 && frame < BusyFrames)
        Guarded([=] { Display()->Set_Cursor(Busy_Cursor(frame)); });
    else if (code != ZV_CURSOR_NONE)
        Display()->Set_Cursor(Cursor_Of_Desktop(code));
    Show_Pointer();
}

void Mac_Move_Pointer_Freely(long on)
{
    if (!Display()) return;
    Display()->Hold_Pointer(on);
    Show_Pointer();
}
