// The job class: a job whose routine calls an object.
#include "ZVJob.h"

#include <utility>

ZVCJob::~ZVCJob()
{
    // The subclass is gone already, so no message may reach the object any more.
    if (Job) Job->Flags &= ~static_cast<unsigned long>(ZV_JOB_RUNNING);
    RemoveJob();
}

long ZVCJob::AddJob()
{
    if (Job) return 1;
    Job = AddJobZV(JobRoutineCallback);
    if (!Job) return 0;
    Job->UserData = this;
    return 1;
}

void ZVCJob::RemoveJob()
{
    RemoveJobZV(std::exchange(Job, nullptr));
}

void ZVCJob::StartJob(long delay)
{
    AddJob();
    StartJobZV(Job, delay);
}

void ZVCJob::AbortJob()
{
    AbortJobZV(Job);
}

long ZVCJob::JobAborted() const
{
    return JobAbortedZV(Job);
}

long ZVCJob::AnyJobsBusy()
{
    return AnyJobsBusyZV();
}

long ZVCJob::AnyMsgsWaiting()
{
    return AnyMsgsWaitingZV();
}

long ZVCJob::JobStart(ZVJob*)
{
    return 1;
}

long ZVCJob::JobAbort(ZVJob*)
{
    return 1;
}

long ZVCJob::JobRoutineCallback(ZVJob* job, unsigned long message)
{
    auto* object = static_cast<ZVCJob*>(job->UserData);
    switch (message) {
    case ZV_JOB_START: return object->JobStart(job);
    case ZV_JOB_RUN: return object->JobRun(job);
    case ZV_JOB_ABORT: return object->JobAbort(job);
    default: return 0;
    }
}
