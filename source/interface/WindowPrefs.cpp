// The window preferences, which tell where palettes were. None are kept, so a palette opens where its tags
// and the desktop put it.
#include "ZVLibInternal.h"

void Snapshot_WindowPrefs() {}

long Get_Dest_Window(ZVPalette const*, ZVWindow**, unsigned long*, long*, long*, long*, long*, long*)
{
    return 0;
}
