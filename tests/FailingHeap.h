// A heap that fails on demand, so that tests can take memory away at each allocation of a call in turn.
#pragma once

#include <new>

/// While one of these exists, the allocations of its thread fail after `after` more have succeeded.
class FailingHeap {
public:
    explicit FailingHeap(long after);
    ~FailingHeap();
    FailingHeap(FailingHeap const&) = delete;
    FailingHeap& operator=(FailingHeap const&) = delete;

    static bool Is_Available();  ///< False under a sanitizer, which has a heap of its own.
    static void Recover();       ///< From now on allocations succeed again.
    long Failures() const;       ///< Allocations that have failed.
};
