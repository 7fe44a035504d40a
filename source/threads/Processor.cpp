// How many processors there are, and what they can do.
#include "ZVProcessor.h"

#include "ZVLibInternal.h"

#include <bit>

void Init_MP()
{
    ZVEnv->processors = static_cast<int32_t>(OS_Processor_Count());
}

long GetProcessorsZV()
{
    return ZVEnv ? ZVEnv->processors : 1;
}

ZVCPUSupport::ZVCPUSupport()
{
    InspectCPU();
}

ZVCPUSupport* ZVCPUSupport::GetInstance()
{
    static ZVCPUSupport support;
    return &support;
}

void ZVCPUSupport::InspectCPU()
{
    if (Inspected) return;
    OSProcessor const processor = OS_Inspect_Processor();
    MMX = processor.hasMMX;
    SSE = processor.hasSSE;
    SSE2 = processor.hasSSE2;
    ThreeDNow = processor.has3DNow;
    HyperThreading = processor.hasHyperThreading;
    VE = processor.hasVE;
    Inspected = 1;
}

long ZVCPUSupport::GetOptimalAlignment()
{
    return 16;
}

long ZVCPUSupport::IsBigEndian()
{
    return std::endian::native == std::endian::big;
}

long ZVCPUSupport::CPUFlagsAreOverriden()
{
    return 0;
}
