// The processors of the machine: how many this process may use, and what they can do.
#include "ZVLibInternal.h"

#include <algorithm>
#include <cstdio>
#include <sched.h>
#include <thread>

#if defined(__x86_64__)
#include <cpuid.h>
#endif

long OS_Processor_Count()
{
    // More than the processors of the set are only on machines that need a larger one.
    cpu_set_t allowed;
    if (sched_getaffinity(0, sizeof allowed, &allowed) == 0) return CPU_COUNT(&allowed);
    return std::max(static_cast<long>(std::thread::hardware_concurrency()), 1L);
}

/// Whether threads share cores, as the kernel tells.
static bool Cores_Are_Shared()
{
    std::FILE* const file = std::fopen("/sys/devices/system/cpu/smt/active", "re");
    if (!file) return false;
    bool const isActive = std::fgetc(file) == '1';
    std::fclose(file);
    return isActive;
}

OSProcessor OS_Inspect_Processor()
{
    OSProcessor processor{};
    processor.hasHyperThreading = Cores_Are_Shared();
#if defined(__x86_64__)
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d)) {
        processor.hasMMX = d & bit_MMX;
        processor.hasSSE = d & bit_SSE;
        processor.hasSSE2 = d & bit_SSE2;
    }
    if (__get_cpuid(0x80000001, &a, &b, &c, &d)) processor.has3DNow = d & bit_3DNOW;
#endif
    return processor;
}
