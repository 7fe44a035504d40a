// One task on a thread of its own: the raw operations under the pool and the thread class.
#include "MessageQueue.h"
#include "ZVLibInternal.h"

#include <new>
#include <utility>

/// First word of a notification.
static constexpr long eventMessage = 1234;

struct ZVPlatformTask {
    long (*entry)(void*);
    void* param;
    ZVPlatformQueue* terminationQueue;
    OSThread* thread = nullptr;  ///< null once it was terminated
    std::atomic<bool> hasEnded = false;
};

static void Run_Task(void* argument)
{
    auto* task = static_cast<ZVPlatformTask*>(argument);
    long const result = task->entry(task->param);
    task->hasEnded = true;
    task->terminationQueue->Post({0, 0, result});
}

static void Free_Task(TaskInfoZV* info)
{
    delete std::exchange(info->Task, nullptr);
    delete std::exchange(info->TerminationQueue, nullptr);
    delete std::exchange(info->EventQueue, nullptr);
}

long Create_Task(TaskInfoZV* info, long (*entry)(void*), void* param)
{
    info->TerminationQueue = Make_Queue();
    info->EventQueue = Make_Queue();
    info->Task = new (std::nothrow) ZVPlatformTask{entry, param, info->TerminationQueue};
    // The small stack of the first tasks, 16 KB, would not last for one formatted print on this machine, so a
    // task has the stack of any thread.
    if (info->TerminationQueue && info->EventQueue && info->Task &&
        (info->Task->thread = OS_Start_Thread(Run_Task, info->Task)))
        return 1;
    Free_Task(info);
    return 0;
}

void Task_Wait(TaskInfoZV* info)
{
    if (!info || !info->Task) return;
    if (info->Task->thread) {
        info->TerminationQueue->Wait_For_Message();
        OS_Join_Thread(info->Task->thread);
    }
    Free_Task(info);
}

void Terminate_Task(TaskInfoZV* info)
{
    if (!info || !info->Task || !info->Task->thread) return;
    OS_Terminate_Thread(std::exchange(info->Task->thread, nullptr));
    info->Task->hasEnded = true;
}

bool Task_Has_Ended(TaskInfoZV const* info)
{
    return !info->Task || info->Task->hasEnded;
}

bool Set_Task_Weight(TaskInfoZV* info, long weight)
{
    if (!info->Task) return false;
    return info->Task->hasEnded || OS_Set_Thread_Weight(info->Task->thread, weight);
}

void SetEventZV(TaskInfoZV* task)
{
    if (task && task->EventQueue) task->EventQueue->Post({eventMessage, 0, 0});
}

long CheckForEventZV(TaskInfoZV* task)
{
    if (!task || !task->EventQueue) return 0;
    std::optional<QueueMessage> const message = task->EventQueue->Take();
    return message && message->front() == eventMessage;
}
