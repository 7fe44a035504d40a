// Tasks: functions that run beside the caller, on a pool with one worker thread for each processor and, while
// those are busy, on threads of their own; semaphores and critical regions.
//
// Semaphores, regions, SetEventZV and CheckForEventZV may be used on any thread. CreateTaskZV, TaskWaitZV and
// MPForkZV keep the pool without a lock: they belong to one thread of the application, and a task does not
// call them. Functions are not null. What a task wrote is visible to the thread that has waited for it. An
// exception that leaves the function of a task ends the process. No call here touches the error number.
#pragma once

#include "ZVBase.h"

struct ZVSemaphore;
struct ZVCriticalRegion;
struct ZVPlatformTask;
struct ZVPlatformQueue;

/// A running task. CreateTaskZV makes it and TaskWaitZV releases it.
struct TaskInfoZV {
    ZVSemaphore* StartSemaphore = nullptr;        ///< signalled to hand work to a worker of the pool
    ZVSemaphore* DoneSemaphore = nullptr;         ///< signalled by a worker when it is done
    ZVPlatformTask* Task = nullptr;               ///< the thread
    ZVPlatformQueue* TerminationQueue = nullptr;  ///< is posted to when the thread ends
    ZVPlatformQueue* EventQueue = nullptr;        ///< carries the notifications of SetEventZV
};

/// The number of processors this process may use; 1 while no environment exists.
ZV_API long GetProcessorsZV();

/// Runs entry(param) on a worker that is not busy, or on a thread of its own when there is none. What it
/// returns is dropped. A worker starts without notifications of the work before.
/// @param out  not null; becomes the task, to be given to TaskWaitZV, or null when none could start. That is
///             before `entry` begins, so a task that knows the place finds itself there.
ZV_API void CreateTaskZV(long (*entry)(void*), void* param, TaskInfoZV** out);

/// Waits for the end of a task without limit and releases it. A worker stays busy until then, even when its
/// work is done. Null, and a worker with nothing to wait for, are ignored.
ZV_API void TaskWaitZV(TaskInfoZV* task);

/// Posts a notification to a task, which finds it by CheckForEventZV; several are kept. Null is ignored, and
/// without memory the notification is lost.
ZV_API void SetEventZV(TaskInfoZV* task);

/// Takes one notification. 1 if there was one, else 0; never waits. 0 for null.
ZV_API long CheckForEventZV(TaskInfoZV* task);

/// Divides work over the processors: calls func(index, count, data) on as many tasks as there are processors,
/// but no more than `parts`, and waits for all of them. `index` counts from 1 to `count`, the number of
/// tasks; the share of each is for `func` to work out. There is no order between them. With one processor, or
/// fewer than 2 parts, the caller's thread calls func(1, 1, data), and the result is what that returns.
/// @return  1 when every part returned non-zero; 0 when one did not or could not start, the others having run
ZV_API long MPForkZV(long (*func)(long index, long count, void* data), void* data, long parts);

/// A counting semaphore.
/// @param initial  0 to `maximum`
/// @param maximum  1 to 2147483647; a signal beyond it is lost
/// @return  the handle, for FreeSemaphoreZV; 0 for numbers outside these ranges and without memory
ZV_API ZVSemaphore* CreateSemaphoreZV(long initial, long maximum);
ZV_API void FreeSemaphoreZV(ZVSemaphore* semaphore);    ///< Nobody may be waiting. A null handle is ignored.
ZV_API void WaitSemaphoreZV(ZVSemaphore* semaphore);    ///< Waits without limit. A null handle is ignored.
ZV_API void SignalSemaphoreZV(ZVSemaphore* semaphore);  ///< A null handle is ignored.

/// A region that one thread at a time can be in; that thread may enter again, and leaves as often as it
/// entered. Null without memory.
ZV_API ZVCriticalRegion* CreateCriticalRegionZV();
ZV_API void FreeCriticalRegionZV(ZVCriticalRegion* region);   ///< Nobody may be in it. Null is ignored.
ZV_API long EnterCriticalRegionZV(ZVCriticalRegion* region);  ///< Waits without limit. 0, also for null.
ZV_API long ExitCriticalRegionZV(ZVCriticalRegion* region);   ///< 0, also for null.
