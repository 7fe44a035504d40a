// Critical regions.
#include "ZVTask.h"

#include <mutex>
#include <new>

struct ZVCriticalRegion {
    std::recursive_mutex mutex;
};

ZVCriticalRegion* CreateCriticalRegionZV()
{
    return new (std::nothrow) ZVCriticalRegion;
}

void FreeCriticalRegionZV(ZVCriticalRegion* region)
{
    delete region;
}

long EnterCriticalRegionZV(ZVCriticalRegion* region)
{
    if (region) region->mutex.lock();
    return 0;
}

long ExitCriticalRegionZV(ZVCriticalRegion* region)
{
    if (region) region->mutex.unlock();
    return 0;
}
