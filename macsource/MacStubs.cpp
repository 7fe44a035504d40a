// Temporary: what the other parts of the desktop layer will define.
#include "MacFocus.h"
#include "MacWindow.h"
#include "ZVLibInternal.h"

long OS_Events_Waiting()
{
    return 0;
}
ScrollBar::ScrollBar(bool isVertical, std::function<void()> changed)
    : isVertical_(isVertical), changed_(changed)
{
}
void ScrollBar::Set_Range(int, int) {}
void ScrollBar::Set_Value(int) {}
void ScrollBar::Draw(ZVPort&) const {}
bool ScrollBar::Press(ZVPort&, int, int, int, int)
{
    return false;
}
void ScrollBar::Track(long, long) {}
void ScrollBar::Finish(long, long) {}
void Refresh_Items(ZVGroup&, HostRegion const&) {}
long Make_SysGroup(ZVGroup*)
{
    return 1;
}
void Destroy_SysGroup(ZVGroup*) {}
void Make_SysGroupFrame(ZVGroup*) {}
void Destroy_SysGroupFrame(ZVGroup*) {}
long Make_SysItem(ZVItem*)
{
    return 1;
}
void Destroy_SysItem(ZVItem*) {}
void Enable_SysItem(ZVItem*) {}
void Disable_SysItem(ZVItem*) {}
void Mac_Update_Item(ZVItem*) {}
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
