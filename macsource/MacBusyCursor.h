// The pictures of the busy cursor.
#pragma once

#include "host/Display.h"

inline constexpr int BusyFrames = 8;

/// A ring of dots, of which the brightest one goes round clockwise, one further with each frame.
HostCursorImage Busy_Cursor(int frame);
