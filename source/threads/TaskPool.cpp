// The pool: one worker for each processor, made at the start and waiting for work since, and the tasks of
// their own that take what comes while all workers are busy.
#include "ZVLibInternal.h"

#include <new>

namespace {

struct Worker {
    Node node;
    long (*Function)(void*) = nullptr;
    void* Argument = nullptr;
    long Stop = 0;
    long Busy = 0;  ///< from the start of a task until somebody has waited for it
    TaskInfoZV* Info = nullptr;
};

long TaskFunc(void* argument)
{
    auto* worker = static_cast<Worker*>(argument);
    for (;;) {
        WaitSemaphoreZV(worker->Info->StartSemaphore);
        if (worker->Stop) break;
        worker->Function(worker->Argument);
        SignalSemaphoreZV(worker->Info->DoneSemaphore);
    }
    SignalSemaphoreZV(worker->Info->DoneSemaphore);
    return 0;
}

void Free_Info(TaskInfoZV* info)
{
    if (!info) return;
    FreeSemaphoreZV(info->StartSemaphore);
    FreeSemaphoreZV(info->DoneSemaphore);
    delete info;
}

/// An info with its two semaphores; null when memory runs out.
TaskInfoZV* Make_Info()
{
    auto* info = new (std::nothrow) TaskInfoZV;
    if (!info) return nullptr;
    info->StartSemaphore = CreateSemaphoreZV(0, 1);
    info->DoneSemaphore = CreateSemaphoreZV(0, 1);
    if (info->StartSemaphore && info->DoneSemaphore) return info;
    Free_Info(info);
    return nullptr;
}

bool Add_Worker()
{
    auto* worker = new (std::nothrow) Worker;
    if (!worker) return false;
    worker->Info = Make_Info();
    if (worker->Info && Create_Task(worker->Info, TaskFunc, worker)) {
        AddTail(&ZVEnv->threads, &worker->node);
        return true;
    }
    Free_Info(worker->Info);
    delete worker;
    return false;
}

/// The first worker that `isWanted` accepts, or null.
template <typename Test> Worker* Find_Worker(Test isWanted)
{
    if (!ZVEnv) return nullptr;
    for (Node* node = List_First(&ZVEnv->threads); node; node = List_Next(node))
        if (auto* worker = reinterpret_cast<Worker*>(node); isWanted(*worker)) return worker;
    return nullptr;
}

/// Runs the function on a thread of its own.
void Start_Overflow_Task(long (*entry)(void*), void* param, TaskInfoZV** out)
{
    TaskInfoZV* info = *out = Make_Info();
    if (!info || Create_Task(info, entry, param)) return;
    *out = nullptr;
    Free_Info(info);
}

}  // namespace

void Init_Threads()
{
    NewList(&ZVEnv->threads);
    if (ZVEnv->processors < 2) return;
    for (long i = 0; i < ZVEnv->processors && Add_Worker(); ++i) {
    }
}

void Cleanup_Threads()
{
    while (auto* worker = reinterpret_cast<Worker*>(RemHead(&ZVEnv->threads))) {
        if (worker->Busy) WaitSemaphoreZV(worker->Info->DoneSemaphore);
        worker->Stop = 1;
        SignalSemaphoreZV(worker->Info->StartSemaphore);
        WaitSemaphoreZV(worker->Info->DoneSemaphore);
        Task_Wait(worker->Info);
        Free_Info(worker->Info);
        delete worker;
    }
}

void CreateTaskZV(long (*entry)(void*), void* param, TaskInfoZV** out)
{
    *out = nullptr;
    Worker* const worker = Find_Worker([](Worker const& each) { return !each.Busy; });
    if (!worker) {
        Start_Overflow_Task(entry, param, out);
        return;
    }
    worker->Busy = 1;
    worker->Function = entry;
    worker->Argument = param;
    while (CheckForEventZV(worker->Info)) {
    }
    *out = worker->Info;
    SignalSemaphoreZV(worker->Info->StartSemaphore);
}

void TaskWaitZV(TaskInfoZV* task)
{
    if (!task) return;
    if (Worker* const worker = Find_Worker([=](Worker const& each) { return each.Info == task; })) {
        if (worker->Busy) WaitSemaphoreZV(task->DoneSemaphore);
        worker->Busy = 0;
        return;
    }
    Task_Wait(task);
    Free_Info(task);
}
