// Temporary: what the other parts of the desktop layer will define.
#include "MacFocus.h"
#include "MacWindow.h"
#include "ZVLibInternal.h"

ZVNativeItem* Make_Text_Field(ZVItem&)
{
    return nullptr;
}
void Activate_First_Gadget(ZVPalette*) {}
void Mac_Drop_Focus(unsigned long) {}
void Mac_Idle_Text_Field() {}
