// The monitors as places for windows.
#include "interface/PaletteTree.h"

#include "ZVLibInternal.h"

static ZVRectT<long> Area_Of(ZVMonitor const& monitor)
{
    return {monitor.left, monitor.top, monitor.width, monitor.height};
}

static ZVMonitor const& Find_Monitor(long x, long y)
{
    for (int i = ZVEnv->monitorCount; --i > 0;)
        if (Area_Of(ZVEnv->monitors[i]).IsIn(x, y)) return ZVEnv->monitors[i];
    return ZVEnv->monitors[0];
}

ZVRectT<long> Desktop_Area()
{
    ZVRectT<long> area = Area_Of(ZVEnv->monitors[0]);
    for (int i = 1; i < ZVEnv->monitorCount; ++i)
        area.Union(Area_Of(ZVEnv->monitors[i]));
    return area;
}

ZVRectT<long> Mouse_Monitor()
{
    return Area_Of(Find_Monitor(ZVEnv->pointerX, ZVEnv->pointerY));
}

ZVRectT<long> Free_Area_At(long x, long y)
{
    ZVMonitor const& monitor = Find_Monitor(x, y);
    ZVRectT<long> area = Area_Of(monitor);
    if (&monitor != ZVEnv->monitors) return area;
    area.y += Menu_Bar_Height();
    area.height -= Menu_Bar_Height();
    return area;
}
