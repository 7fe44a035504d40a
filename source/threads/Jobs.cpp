// Jobs and the passes over them. Any routine may change the list, so no pass keeps a place in it: the jobs of
// a pass are marked first, and each next one is found from the head.
#include "ZVJob.h"

#include "ZVLibInternal.h"

#include <new>

namespace {

// The id of a job's node: two marks, and above them the number of calls that its routine is in.
constexpr uint32_t markOfPass = 1;          ///< its turn of HandleJobs has yet to come
constexpr uint32_t markOfPriorityPass = 2;  ///< the same of HandlePriorityJobs
constexpr uint32_t oneCall = 4;

// The flags as words, for their complements.
constexpr unsigned long delayed = ZV_JOB_DELAYED, running = ZV_JOB_RUNNING, aborted = ZV_JOB_ABORTED,
                        priority = ZV_JOB_PRIORITY, busy = delayed | running;

ZVJob* Job_From(Node* node)
{
    return reinterpret_cast<ZVJob*>(node);
}

/// The first job of the list that `isWanted` accepts, or null.
template <typename Test> ZVJob* Find_Job(Test isWanted)
{
    if (!ZVEnv) return nullptr;
    for (Node* node = List_First(&ZVEnv->jobs); node; node = List_Next(node))
        if (isWanted(*Job_From(node))) return Job_From(node);
    return nullptr;
}

void Mark_Jobs(uint32_t mark)
{
    for (Node* node = List_First(&ZVEnv->jobs); node; node = List_Next(node))
        node->id |= mark;
}

/// The next job of a pass, its mark cleared; null at the end of the pass.
ZVJob* Next_Job(uint32_t mark)
{
    ZVJob* const job = Find_Job([=](ZVJob const& each) { return each.node.id & mark; });
    if (job) job->node.id &= ~mark;
    return job;
}

bool Is_Held_Back(ZVJob const& job)
{
    return job.Suspended != 0 && !(job.Flags & ZV_JOB_ALWAYS);
}

/// Calls the routine and stores its answer. False when the job was removed meanwhile: then it is not on the
/// list, or it is a new one in the same place of memory, which is in no call.
bool Call(ZVJob* job, unsigned long message, long* answer = nullptr)
{
    job->node.id += oneCall;
    long const result = job->Routine(job, message);
    if (answer) *answer = result;
    if (!Find_Job([=](ZVJob const& each) { return &each == job && each.node.id >= oneCall; })) return false;
    job->node.id -= oneCall;
    return true;
}

/// Stops the job. False when its routine removed it.
bool Abort(ZVJob* job)
{
    if (job->Flags & running) {
        // Cleared first, so that a routine that aborts or removes the job on this message does not get it
        // again.
        job->Flags &= ~running;
        if (!Call(job, ZV_JOB_ABORT)) return false;
        job->Flags |= aborted;
    }
    job->Flags &= ~busy;
    return true;
}

/// Calls the job for a slice if it is `due`, and counts the pass if the job has outlived it.
void Take_Turn(ZVJob* job, bool due)
{
    if (!due || Call(job, ZV_JOB_RUN)) ++job->Calls;
}

}  // namespace

ZVJob* AddJobZV(ZVJobRoutine routine)
{
    if (!ZVEnv) return nullptr;
    void* const block = Alloc_Aligned(sizeof(ZVJob), alignof(ZVJob));
    if (!block) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
    auto* job = new (block) ZVJob{};
    job->Routine = routine;
    AddTail(&ZVEnv->jobs, &job->node);
    return job;
}

void StartJobZV(ZVJob* job, long delay)
{
    if (!job || !Abort(job)) return;
    if (delay) {
        job->Flags |= delayed;
        job->Delay = delay;
        return;
    }
    long answer = 0;
    if (!Call(job, ZV_JOB_START, &answer) || !answer) return;
    job->Flags |= running | priority;
    job->Calls = 0;
}

void AbortJobZV(ZVJob* job)
{
    if (job) Abort(job);
}

void RemoveJobZV(ZVJob* job)
{
    if (!job || !Abort(job)) return;
    if (GetList(&job->node)) Remove(&job->node);
    FreeMemZV(job);
}

long JobAbortedZV(ZVJob* job)
{
    if (!job || !(job->Flags & aborted)) return 0;
    job->Flags &= ~aborted;
    return 1;
}

long AnyJobsBusyZV()
{
    return Find_Job([](ZVJob const& each) { return each.Flags & busy; }) != nullptr;
}

long AnyMsgsWaitingZV()
{
    return OS_Events_Waiting();
}

void HandleJobs()
{
    if (!ZVEnv) return;
    Mark_Jobs(markOfPass);
    while (ZVJob* job = Next_Job(markOfPass))
        Take_Turn(job, job->Flags & running && !Is_Held_Back(*job));
}

void HandlePriorityJobs()
{
    if (!ZVEnv) return;
    Mark_Jobs(markOfPriorityPass);
    while (ZVJob* job = Next_Job(markOfPriorityPass)) {
        if (!(job->Flags & running) || !(job->Flags & priority)) continue;
        job->Flags &= ~priority;
        Take_Turn(job, true);
    }
}

void AppJobTimerProcZV()
{
    if (AnyJobsBusyZV() && ZVEnv->jobsBlocked == 0 && ZVEnv->guiLevel == 1) HandleJobs();
}

void Cleanup_Jobs()
{
    while (Node* node = List_First(&ZVEnv->jobs)) {
        Job_From(node)->Flags &= ~busy;
        Remove(node);
    }
}
