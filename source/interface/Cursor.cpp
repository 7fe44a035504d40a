// The cursor that shows, and the busy cursor, which moves while it does.
#include "ZVLibInternal.h"

/// Colour cursors 128 to 135 are the frames of the busy cursor.
static constexpr int32_t firstBusyFrame = 128;
static constexpr int32_t lastBusyFrame = 135;
static constexpr int32_t stepsPerFrame = 26;

/// What BusyZV begins with: the first frame shows after a second, so that short work shows none.
static constexpr int32_t busyDelay = -25;

/// The number that the desktop layer knows the cursor by.
static uint16_t Cursor_Number(uint16_t code)
{
    switch (code) {
    case ZV_CURSOR_ARROW:
    case 1: return ZV_CURSOR_ARROW;
    case ZV_CURSOR_TEXT: return 1;
    case ZV_CURSOR_OWN: return ZV_CURSOR_COLOR;
    default: return code;
    }
}

void Set_Cursor(unsigned short code)
{
    if (ZVEnv->busyLevel != 0) return;
    uint16_t const number = Cursor_Number(code);
    if (number == static_cast<uint16_t>(ZVEnv->cursor)) return;
    ZVEnv->cursor = static_cast<int16_t>(number);
    Mac_Show_Cursor(number);
}

void BusyZV()
{
    if (!ZVEnv) return;
    if (ZVEnv->busyLevel == 0) ZVEnv->busySteps = busyDelay;
    ++ZVEnv->busyLevel;
    ZVEnv->cursor = ZV_CURSOR_BUSY;
}

void NotBusyZV()
{
    if (!ZVEnv || ZVEnv->busyLevel == 0) return;
    if (--ZVEnv->busyLevel == 0) Set_Cursor(ZV_CURSOR_ARROW);
}

void Do_VBL()
{
    if (ZVEnv->cursor != ZV_CURSOR_BUSY || ++ZVEnv->busySteps < stepsPerFrame) return;
    ZVEnv->busySteps = 0;
    int32_t const next = ZVEnv->busyFrame + 1;
    ZVEnv->busyFrame = next < firstBusyFrame || next > lastBusyFrame ? firstBusyFrame : next;
    Mac_Show_Cursor(static_cast<uint16_t>(ZVEnv->busyFrame));
}

void WrapMouseMovesZV(long) {}

void SetCursorPosZV(ZVWindow*, long, long) {}

void SetCursorPosZV(ZVPalette*, long, long) {}

void SetCursorPosZV(ZVGroup*, long, long) {}

void SetCursorPosZV(ZVItem*, long, long) {}
