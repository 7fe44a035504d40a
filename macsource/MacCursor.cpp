// The cursor on the display.
#include "MacBusyCursor.h"
#include "MacWindow.h"
#include "ZVLibInternal.h"

static void Show_Pointer()
{
    bool const isNone = ZVEnv->cursor == static_cast<int16_t>(ZV_CURSOR_NONE);
    Display()->Show_Pointer(!isNone && !ZVEnv->infiniteMouse);
}

void Mac_Show_Cursor(unsigned short code)
{
    if (!Display()) return;
    int const frame = code - ZV_CURSOR_COLOR;
    if (frame >= 0 && frame < BusyFrames)
        Display()->Set_Cursor(Busy_Cursor(frame));
    else if (code != ZV_CURSOR_NONE)
        Display()->Set_Cursor(frame < 0 ? code : HostCursorArrow);
    Show_Pointer();
}

void Mac_Move_Pointer_Freely(long on)
{
    if (!Display()) return;
    Display()->Hold_Pointer(on);
    Show_Pointer();
}
