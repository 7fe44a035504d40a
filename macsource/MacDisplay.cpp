// The display as the library sees it. Without an interface it is one monitor in memory.
#include "ZVLibInternal.h"

static constexpr ZVRectT<long> headlessMonitor{0, 0, 1600, 1200};

template <typename T> static void Store(T* place, T const& value)
{
    if (place) *place = value;
}

void GetMonitorInfoZV(long* count, ZVRectT<long>* first, ZVRectT<long>* second, ZVRectT<long>* third,
                      ZVRectT<long>* fourth)
{
    Store(count, 1L);
    Store(first, headlessMonitor);
    for (ZVRectT<long>* missing : {second, third, fourth})
        Store(missing, {});
}

long OS_Events_Waiting()
{
    return 0;  // without an interface no event arrives
}
