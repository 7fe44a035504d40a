// Times, and questions about the system that have one answer here.
#include "ZVLibInternal.h"

#include <algorithm>
#include <cstdint>

/// Counted from a moment of the process, not of the machine: its count would stand still after 49 days.
static uint64_t Microseconds_Of_Process()
{
    static uint64_t const start = OS_Microseconds();
    return OS_Microseconds() - start;
}

unsigned long GetTimeZV()
{
    return std::min<uint64_t>(Microseconds_Of_Process() / 1000, UINT32_MAX);
}

void StartTimerZV(unsigned long* timer)
{
    if (timer) *timer = GetTimeZV();
}

unsigned long ElapsedTimeZV(unsigned long timer)
{
    return static_cast<uint32_t>(GetTimeZV() - timer);
}

long GetSystemInfoZV()
{
    return 0;
}

long IsEditInstalledZV()
{
    return 0;
}

long IsSkiffbayInstalledZV()
{
    return 0;
}
