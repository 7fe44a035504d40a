// The ports of windows.
#include "ZVLibInternal.h"

ZVPort* Mac_Window_Port(ZVWindow*)
{
    return nullptr;  // no window is opened yet
}
