// Tablets. A pen tells its pressure and its end with each mouse event, so there is nothing to start and
// nothing to ask for.
#include "ZVLibInternal.h"

long TabletAvailableZV()
{
    return 1;
}

long TabletInUse()
{
    return ZVEnv ? ZVEnv->tablet.inProximity : 0;
}

long Init_Tablet()
{
    return 1;
}

void Cleanup_Tablet() {}

long Get_Pressure()
{
    return 0;
}

long Eraser_Active()
{
    return 0;
}
