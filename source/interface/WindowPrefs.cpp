// The window preferences, which remember where palettes were. Nothing is saved yet.
#include "ZVLibInternal.h"

void Snapshot_WindowPrefs()
{
    // FIXME: takes down windows and palettes, once there is a list to keep them in.
}

long Get_Dest_Window(ZVPalette const*, ZVWindow**, unsigned long*, long*, long*, long*, long*, long*)
{
    return 0;
}
