// A heap that fails on demand, so that tests can take memory away at each allocation of a call in turn, and
// that counts what is allocated.
#pragma once

#include <climits>
#include <new>

/// While one of these exists, the allocations of its thread fail after `after` more have succeeded: all of
/// them, or only so many.
class FailingHeap {
public:
    explicit FailingHeap(long after, long most = LONG_MAX);
    ~FailingHeap();
    FailingHeap(FailingHeap const&) = delete;
    FailingHeap& operator=(FailingHeap const&) = delete;

    static bool Is_Available();  ///< False under a sanitizer, which has a heap of its own.
    static void Recover();       ///< From now on allocations succeed again.
    static long Blocks();        ///< That are allocated in the process; 0 under a sanitizer.
    long Failures() const;       ///< Allocations that have failed.
};
