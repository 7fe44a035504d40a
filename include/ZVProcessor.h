// What the processor can do. Any thread.
#pragma once

#include "ZVBase.h"

/// The answers for the processor that this process runs on. 1 stands for yes, 0 for no.
class ZV_API ZVCPUSupport {
public:
    static ZVCPUSupport* GetInstance();  ///< The one object, made at first use.

    ZVCPUSupport(ZVCPUSupport const&) = delete;
    ZVCPUSupport& operator=(ZVCPUSupport const&) = delete;

    long HasMMX() const { return MMX; }
    long HasSSE() const { return SSE; }
    long HasSSE2() const { return SSE2; }
    long Has3DNow() const { return ThreeDNow; }
    long HasHyperThreading() const { return HyperThreading; }  ///< Several of its processors share one core.
    long HasVE() const { return VE; }                          ///< Velocity engine.

    void InspectCPU();  ///< Finds the answers out, once; GetInstance has called it.

    static long SupportsMMX() { return GetInstance()->HasMMX(); }
    static long SupportsSSE() { return GetInstance()->HasSSE(); }
    static long SupportsSSE2() { return GetInstance()->HasSSE2(); }
    static long Supports3DNow() { return GetInstance()->Has3DNow(); }
    static long SupportsHyperThreading() { return GetInstance()->HasHyperThreading(); }
    static long SupportsVE() { return GetInstance()->HasVE(); }

    static long GetOptimalAlignment();   ///< For blocks that vector instructions work on: 16 bytes.
    static long IsBigEndian();           ///< Of this machine.
    static long CPUFlagsAreOverriden();  ///< 0: nothing but the processor decides.

private:
    ZVCPUSupport();

    uint8_t MMX = 0;
    uint8_t SSE = 0;
    uint8_t SSE2 = 0;
    uint8_t ThreeDNow = 0;
    uint8_t HyperThreading = 0;
    uint8_t VE = 0;
    uint8_t Inspected = 0;
};
