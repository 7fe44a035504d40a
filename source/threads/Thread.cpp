// The thread class. A thread announces its end in CleanUp, before it is really over; whoever may start it
// again or destroy the object first waits until it is, see Reclaim.
#include "PlatformEvent.h"
#include "ZVLibInternal.h"
#include "ZVThread.h"

#include <thread>

static constexpr unsigned long waitLimit = 1000;  // milliseconds
static constexpr long initializeFailed = -50;

static long Priority_Weight(ZVCThread::ThreadPriority priority)
{
    switch (priority) {
    case ZVCThread::ZV_THREAD_HIGHEST: return 10000;
    case ZVCThread::ZV_THREAD_HIGH: return 1000;
    case ZVCThread::ZV_THREAD_LOW: return 50;
    case ZVCThread::ZV_THREAD_LOWEST: return 10;
    default: return 100;
    }
}

ZVCThread::ZVCThread() = default;

ZVCThread::~ZVCThread()
{
    Reclaim();
}

long ZVCThread::ThreadEntry(void* object)
{
    auto* thread = static_cast<ZVCThread*>(object);
    if (!thread->Initialize()) {
        thread->Started = 0;
        return initializeFailed;
    }
    // A stop that came before Initialize set Running.
    if (thread->StopEvent.event_->IsSet()) thread->Running = 0;
    while (thread->Running) {
        if (!thread->Run()) break;
        std::this_thread::yield();
    }
    thread->CleanUp();
    thread->Running = 0;
    thread->Started = 0;
    return 0;
}

/// Releases a thread that has ended or is about to. False while it runs.
bool ZVCThread::Reclaim()
{
    if (!Task_Has_Ended(&Info) && !ExitEvent.event_->IsSet()) return false;
    Task_Wait(&Info);
    return true;
}

long ZVCThread::Start()
{
    if (!Reclaim()) return 0;
    for (ZVCEvent* event : {&StopEvent, &ExitEvent, &ReadyEvent})
        event->Reset();
    Running = 0;
    // Before the thread is there: it may have cleared the word again when Create_Task returns.
    Started = 1;
    if (Create_Task(&Info, ThreadEntry, this)) return 1;
    Started = 0;
    return 0;
}

long ZVCThread::Stop()
{
    if (!Started) return ZVCEvent::ZV_EVENT_TIMEOUT;
    // The event first: a thread that has yet to set Running looks at it afterwards. ExitEvent is clear since
    // the start; to clear it here would lose the signal of a thread that ends by itself just now.
    StopEvent.Set();
    Running = 0;
    long const result = ExitEvent.WaitFor(waitLimit);
    if (result == ZVCEvent::ZV_EVENT_SET) Reclaim();
    return result;
}

long ZVCThread::KillThread()
{
    long const result = Stop();
    if (!Reclaim()) {
        Terminate_Task(&Info);
        Task_Wait(&Info);
    }
    Started = 0;
    Running = 0;
    return result;
}

long ZVCThread::RestartThread()
{
    if (Started) KillThread();
    Start();
    return 1;
}

void ZVCThread::SetPriority(ThreadPriority priority)
{
    if (!Set_Task_Weight(&Info, Priority_Weight(priority))) Assert_Fail(__FILE__, __LINE__);
}

long ZVCThread::IsStarted()
{
    ReadyEvent.WaitFor(waitLimit);
    return Running;
}

long ZVCThread::Initialize()
{
    Running = 1;
    ReadyEvent.Set();
    return 1;
}

void ZVCThread::CleanUp()
{
    ExitEvent.Set();
}
