// The picture of the desktop in memory: its ground, and the frames around the windows.
#pragma once

#include "Display.h"

/// A window's frame with its title, as the desktop draws it.
struct DeskFrame {
    HostRect outer, client;
    HostWindowRequest const& request;
    bool isFront;
};

void Draw_Ground(HostSurface& desk);
void Draw_Frame(HostSurface& desk, DeskFrame const& frame);
