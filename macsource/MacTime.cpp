// The clock, and waiting.
#include "ZVLibInternal.h"

#include <chrono>
#include <ratio>
#include <thread>

uint64_t OS_Microseconds()
{
    auto const now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(now).count());
}

void Delay(long ticks)
{
    std::this_thread::sleep_for(std::chrono::duration<long, std::ratio<1, 60>>(ticks));
}
