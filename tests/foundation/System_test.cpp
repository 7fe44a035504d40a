// Times of the process.
#include "TestEnvironment.h"

namespace {

TEST(System, TimersCountMilliseconds)
{
    unsigned long timer = 0;
    StartTimerZV(&timer);
    EXPECT_LE(timer, 0xFFFFFFFFU);
    uint64_t const start = OS_Microseconds();
    Delay(3);
    auto const passed = static_cast<double>(OS_Microseconds() - start) / 1000;
    EXPECT_GE(passed, 50.0);
    EXPECT_NEAR(static_cast<double>(ElapsedTimeZV(timer)), passed, 20.0);
    EXPECT_GE(GetTimeZV(), timer + 50);
    StartTimerZV(nullptr);
}

}  // namespace
