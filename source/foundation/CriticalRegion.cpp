// Critical regions, and the number of processors.
#include "ZVLibInternal.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <thread>

struct ZVCriticalRegion {
    std::recursive_mutex mutex;
};

void Init_MP()
{
    ZVEnv->processors = static_cast<int32_t>(std::max(std::thread::hardware_concurrency(), 1U));
}

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
