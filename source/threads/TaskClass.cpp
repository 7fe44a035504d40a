// The task class: the calls on tasks with the task in a field.
#include "ZVThread.h"

void ZVCTask::CreateTask(long (*entry)(void*), void* param)
{
    CreateTaskZV(entry, param, &Info);
}

void ZVCTask::StartTask() {}

void ZVCTask::TaskWait()
{
    TaskWaitZV(Info);
}

void ZVCTask::SetEvent()
{
    SetEventZV(Info);
}

long ZVCTask::CheckForEvent()
{
    return CheckForEventZV(Info);
}

long ZVCTask::Fork(long (*func)(long index, long count, void* data), void* data, long parts)
{
    return MPForkZV(func, data, parts);
}

long ZVCTask::Initialize()
{
    return 1;
}
