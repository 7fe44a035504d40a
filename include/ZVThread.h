// Concurrency as classes: events to wait for, threads that work until they are stopped, and tasks.
//
// A ZVCThread is driven by one thread, its owner; its body runs on a thread of its own. ZVCEvent may be used
// on any thread.
#pragma once

#include "ZVTask.h"

#include <atomic>
#include <list>
#include <memory>

/// What an event is underneath; it lives as long as somebody waits for it.
struct ZVPlatformEvent;

/// A flag that threads wait for. It stays set until it is reset, and a wait does not change it. Clear at
/// first.
class ZV_API ZVCEvent {
public:
    /// What a wait ended with.
    enum WaitResult : long {
        ZV_EVENT_TIMEOUT = 0,  ///< timed out, or failed
        ZV_EVENT_DELETED = 1,  ///< the event was deleted while waiting
        ZV_EVENT_CLEAR = 2,    ///< woken, with the flag clear
        ZV_EVENT_SET = 3,      ///< this event is set
        ZV_EVENT_FIRST = 4     ///< the first event of the list is set; 5 the second, and so on
    };

    ZVCEvent();  ///< Without memory an assertion failure.
    virtual ~ZVCEvent();
    ZVCEvent(ZVCEvent const&) = delete;
    ZVCEvent& operator=(ZVCEvent const&) = delete;

    void Set();    ///< Wakes all that wait.
    void Reset();  ///< Clears the flag and wakes all that wait, with the flag clear.

    /// Waits until the event is set, reset or deleted.
    /// @param milliseconds  limit; 0 for none
    /// @return  ZV_EVENT_TIMEOUT to ZV_EVENT_SET
    long WaitFor(unsigned long milliseconds);

    /// Waits without limit for this event, and each time that wait ends with the flag clear looks for the
    /// first event of a list that is set. So whoever has set one of the list resets this event to have it
    /// seen. From the second wait on, a millisecond passes after each look.
    /// @param list   `count` events, null only with a count of 0; they may be deleted while this waits
    /// @param tries  waits behind the first one; 0 for no limit
    /// @return  ZV_EVENT_SET for this event, ZV_EVENT_FIRST plus its index for one of the list;
    ///          ZV_EVENT_DELETED from the second wait on when one of them was deleted; ZV_EVENT_TIMEOUT after
    ///          the last try
    long WaitForMultiple(ZVCEvent** list, unsigned long count, unsigned long tries);

    /// The same for a list of which only the first five entries count.
    long WaitForMultiple(std::list<ZVCEvent*> const& list, unsigned long tries);

private:
    friend class ZVCThread;
    std::shared_ptr<ZVPlatformEvent> event_;
};

/// A thread that does a piece of work, `Run` of the subclass, again and again until it is stopped. It may be
/// started again when it has ended.
///
/// The owner stops it before the object goes: the destructor waits for a thread on its way out, but stops
/// none.
class ZV_API ZVCThread {
public:
    /// The share of a processor that the thread gets beside others that want it.
    enum ThreadPriority : long {
        ZV_THREAD_HIGHEST = 0,  ///< 100 times the normal one
        ZV_THREAD_HIGH = 1,     ///< 10 times
        ZV_THREAD_NORMAL = 2,   ///< and any other value
        ZV_THREAD_LOW = 3,      ///< half
        ZV_THREAD_LOWEST = 4    ///< a tenth
    };

    ZVCThread();
    virtual ~ZVCThread();
    ZVCThread(ZVCThread const&) = delete;
    ZVCThread& operator=(ZVCThread const&) = delete;

    /// Starts the thread. 1, or 0 when no thread could be had and while the thread of an earlier start runs.
    long Start();

    /// Asks the thread to end after the present call of Run, and waits for that a second.
    /// @return  ZV_EVENT_SET when it has ended, else ZV_EVENT_TIMEOUT; 0 at once when it is not started
    long Stop();

    /// Stops the thread; one that has not ended after a second is ended by force, wherever it stands: none of
    /// its destructors run, and a lock that it holds is never released. Use it for threads that hang.
    /// @return  what Stop gave
    long KillThread();

    /// Kills the thread if it is started, and starts it. Always 1.
    long RestartThread();

    /// The share of the processor. More than the user is allowed is given as far as that goes, as is a return
    /// to more after less. An assertion failure on a thread that was never started.
    void SetPriority(ThreadPriority priority);

    /// Waits a second at most for Initialize to be done, and tells whether the thread runs.
    long IsStarted();

    /// The first call on the new thread. An override calls this one when it is ready to run.
    /// @return  non-zero to go on; after 0 the thread ends, and neither Run nor CleanUp is called
    virtual long Initialize();

    /// The thread's work, called again and again. 0 ends the thread. An exception ends the process.
    virtual long Run() = 0;

    /// The last call on the thread. An override calls this one at its end, for Stop to take notice.
    virtual void CleanUp();

protected:
    TaskInfoZV Info;
    std::atomic<long> Started = 0;  ///< from Start until the thread has ended
    std::atomic<long> Running = 0;  ///< Run is called while this is not 0
    ZVCEvent ExitEvent;             ///< set by CleanUp
    ZVCEvent StopEvent;             ///< set by Stop, for a body that sleeps to wait for
    long Reserved = 0;
    ZVCEvent ReadyEvent;  ///< set by Initialize

private:
    static long ThreadEntry(void* object);
    bool Reclaim();
};

/// A task of the pool; see CreateTaskZV for which thread may use it. The object does not wait for its task:
/// call TaskWait before it goes.
class ZV_API ZVCTask {
public:
    virtual ~ZVCTask() = default;

    /// CreateTaskZV; Info is null when no task could start.
    void CreateTask(long (*entry)(void*), void* param);
    void StartTask();      ///< No effect: a task runs once it is created.
    void TaskWait();       ///< TaskWaitZV.
    void SetEvent();       ///< SetEventZV.
    long CheckForEvent();  ///< CheckForEventZV.

    /// MPForkZV.
    static long Fork(long (*func)(long index, long count, void* data), void* data, long parts);

    virtual long Initialize();  ///< Returns 1. The library calls neither this one
    virtual long Run() = 0;     ///< nor this one: they are for the subclass.

protected:
    TaskInfoZV* Info = nullptr;
};
