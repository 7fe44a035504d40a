// Jobs: background work on the main thread. The event loop calls a job's routine again and again, and each
// call does a slice of the work and returns, while the application goes on handling its events. Main thread
// only; a routine may add, start, abort and remove jobs, itself included.
#pragma once

#include "ZVList.h"

struct ZVJob;

/// Bits of ZVJob::Flags.
enum ZVJobFlag : unsigned long {
    ZV_JOB_DELAYED = 0x1,   ///< started with a delay: not called, but counted as busy
    ZV_JOB_RUNNING = 0x2,   ///< called on each pass
    ZV_JOB_ABORTED = 0x4,   ///< ended from outside; JobAbortedZV reads and clears it
    ZV_JOB_PRIORITY = 0x8,  ///< set at the start; HandlePriorityJobs serves such a job once
    ZV_JOB_ALWAYS = 0x10    ///< Suspended does not hold it back; set by the application
};

/// What a routine is called for.
enum ZVJobMessage : unsigned long {
    ZV_JOB_START = 1,  ///< the job is starting: non-zero to go on, 0 cancels the start
    ZV_JOB_RUN = 2,    ///< do one slice; the result is ignored
    ZV_JOB_ABORT = 3   ///< the job is stopped from outside; the result is ignored
};

using ZVJobRoutine = long (*)(ZVJob* job, unsigned long message);

/// A job. It lives on ZVEnvironment::jobs from AddJobZV to RemoveJobZV, which is for the one who added it to
/// call, even when the environment has gone meanwhile. Only what is "set by the application" may be written.
struct ZVJob {
    Node node;            ///< link; the id belongs to the pass, the name stays null
    unsigned long Flags;  ///< ZVJobFlag bits
    long Suspended;  ///< set by the application: non-zero keeps the job from being called; a count by custom
    long Delay;      ///< the value given to StartJobZV
    long Calls;      ///< passes since the job started
    ZVJobRoutine Routine;
    void* UserData;  ///< set by the application; a ZVCJob keeps itself here
};

/// Adds a job that is not running at the end of the list.
/// @return  the job, for RemoveJobZV; null with error 1 when memory runs out, and without an environment
ZV_API ZVJob* AddJobZV(ZVJobRoutine routine);

/// Starts a job; one that runs is aborted first, so its routine sees ZV_JOB_ABORT and then ZV_JOB_START. Null
/// is ignored.
/// @param delay  anything but 0 only stores the value and marks the job as delayed: what the value means, and
///               to start the job in the end, is left to the application
ZV_API void StartJobZV(ZVJob* job, long delay);

/// Stops a job, with ZV_JOB_ABORT to the routine if it runs, and takes away a delay. Null is ignored.
ZV_API void AbortJobZV(ZVJob* job);

/// Stops a job like AbortJobZV and frees it. Null is ignored.
ZV_API void RemoveJobZV(ZVJob* job);

/// 1 once after a job that ran was aborted, else 0. 0 for null.
ZV_API long JobAbortedZV(ZVJob* job);

ZV_API long AnyJobsBusyZV();     ///< 1 if any job runs or is delayed.
ZV_API long AnyMsgsWaitingZV();  ///< 1 if events wait to be handled, so that a long slice had better end.

/// A job as an object, which the subclass gives its work in `JobRun`.
class ZV_API ZVCJob {
public:
    ZVCJob() = default;
    virtual ~ZVCJob();  ///< Removes the job, with no call of JobAbort.
    ZVCJob(ZVCJob const&) = delete;
    ZVCJob& operator=(ZVCJob const&) = delete;

    long AddJob();              ///< 1, or 0 when memory runs out. Nothing happens to a job that is there.
    void RemoveJob();           ///< RemoveJobZV.
    void StartJob(long delay);  ///< Adds the job if needed, then StartJobZV.
    void AbortJob();            ///< AbortJobZV.
    long JobAborted() const;    ///< JobAbortedZV; 0 if there is no job.
    static long AnyJobsBusy();
    static long AnyMsgsWaiting();

    virtual long JobStart(ZVJob* job);    ///< ZV_JOB_START; 1 here.
    virtual long JobRun(ZVJob* job) = 0;  ///< ZV_JOB_RUN.
    virtual long JobAbort(ZVJob* job);    ///< ZV_JOB_ABORT; 1 here.

protected:
    ZVJob* Job = nullptr;  ///< null until added

private:
    static long JobRoutineCallback(ZVJob* job, unsigned long message);
};
