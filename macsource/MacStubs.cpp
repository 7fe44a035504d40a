// Temporary: what the other parts of the desktop layer will define.
#include "MacFocus.h"
#include "MacWindow.h"
#include "ZVLibInternal.h"

long OS_Events_Waiting()
{
    return 0;
}
void Mac_Run_Modal_Loop(ZVPalette*) {}
void Mac_Run_Application_Loop() {}
void Mac_End_Application_Loop() {}
void Mac_End_Modal_Loop(ZVPalette*) {}
void Mac_Handle_Waiting_Events() {}
void Mac_Flush_Events() {}
uint32_t Mac_Keyboard_State()
{
    return 0;
}
void Mac_Show_Cursor(unsigned short) {}
void Mac_Move_Pointer_Freely(long) {}
long Mac_Double_Click_Time()
{
    return 30;
}
uint32_t Mac_Tick_Count()
{
    return 0;
}
