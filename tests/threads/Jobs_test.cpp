// Jobs: their messages, the passes, and lists that change under a pass.
#include "TestEnvironment.h"

#include <array>
#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace {

using Messages = std::vector<unsigned long>;

/// A job that notes its messages and does what a test wants on each of them.
struct Probe {
    ZVJob* job = AddJobZV(Routine);
    Messages seen;
    long startAnswer = 1;
    std::function<void(unsigned long message)> onMessage = [](unsigned long) {};

    Probe() { job->UserData = this; }
    static long Routine(ZVJob* job, unsigned long message)
    {
        auto& self = *static_cast<Probe*>(job->UserData);
        self.seen.push_back(message);
        long const answer = self.startAnswer;
        self.onMessage(message);
        return answer;
    }
    Messages Take() { return std::exchange(seen, {}); }
};

using JobsTest = EnvironmentTest;

}  // namespace

TEST_F(JobsTest, AJobGoesFromStartToAbort)
{
    Probe probe;
    ZVJob* job = probe.job;
    EXPECT_EQ(List_Entries(&ZVEnv->jobs), 1);
    EXPECT_EQ(job->Flags, 0UL);

    StartJobZV(job, 0);
    EXPECT_EQ(job->Flags, ZV_JOB_RUNNING | ZV_JOB_PRIORITY);
    EXPECT_EQ(job->Calls, 0);
    EXPECT_EQ(AnyJobsBusyZV(), 1);
    HandleJobs();
    HandleJobs();
    EXPECT_EQ(job->Calls, 2);
    EXPECT_EQ(probe.Take(), (Messages{ZV_JOB_START, ZV_JOB_RUN, ZV_JOB_RUN}));

    StartJobZV(job, 0);
    EXPECT_EQ(probe.Take(), (Messages{ZV_JOB_ABORT, ZV_JOB_START})) << "a job that runs is aborted first";
    EXPECT_EQ(job->Calls, 0);
    EXPECT_EQ(JobAbortedZV(job), 1);
    EXPECT_EQ(JobAbortedZV(job), 0);

    AbortJobZV(job);
    AbortJobZV(job);
    EXPECT_EQ(probe.Take(), Messages{ZV_JOB_ABORT});
    EXPECT_EQ(JobAbortedZV(job), 1);
    EXPECT_EQ(AnyJobsBusyZV(), 0);

    probe.startAnswer = 0;
    StartJobZV(job, 0);
    EXPECT_EQ(AnyJobsBusyZV(), 0) << "it has refused";
    RemoveJobZV(job);
    EXPECT_EQ(probe.Take(), Messages{ZV_JOB_START});
    EXPECT_TRUE(List_Empty(&ZVEnv->jobs));
}

TEST_F(JobsTest, ADelayedJobIsBusyUntilItIsStartedOrAborted)
{
    Probe probe;
    StartJobZV(probe.job, 25);
    EXPECT_EQ(probe.job->Flags, ZV_JOB_DELAYED);
    EXPECT_EQ(probe.job->Delay, 25);
    EXPECT_EQ(AnyJobsBusyZV(), 1);
    HandleJobs();
    EXPECT_EQ(probe.Take(), Messages{});
    AbortJobZV(probe.job);
    EXPECT_EQ(AnyJobsBusyZV(), 0);
    EXPECT_EQ(JobAbortedZV(probe.job), 0) << "it never ran";
    StartJobZV(probe.job, -1);
    StartJobZV(probe.job, 0);
    EXPECT_EQ(probe.job->Flags & ZV_JOB_DELAYED, 0UL);
    RemoveJobZV(probe.job);
}

TEST_F(JobsTest, ASuspendedJobIsCountedButNotCalled)
{
    Probe suspended, always;
    for (Probe* probe : {&suspended, &always}) {
        StartJobZV(probe->job, 0);
        probe->job->Suspended = 1;
    }
    always.job->Flags |= ZV_JOB_ALWAYS;
    HandleJobs();
    EXPECT_EQ(suspended.Take(), Messages{ZV_JOB_START});
    EXPECT_EQ(suspended.job->Calls, 1);
    EXPECT_EQ(always.Take(), (Messages{ZV_JOB_START, ZV_JOB_RUN}));
    HandlePriorityJobs();
    HandlePriorityJobs();
    EXPECT_EQ(suspended.Take(), Messages{ZV_JOB_RUN}) << "once, suspended or not";
    EXPECT_EQ(suspended.job->Calls, 2);
    for (Probe* probe : {&suspended, &always})
        RemoveJobZV(probe->job);
}

TEST_F(JobsTest, TheTimerRunsAPassOnlyInTheOutermostLoop)
{
    struct {
        bool isBusy;
        int32_t blocked, level;
        bool isRun;
    } const rows[] = {
        {true, 0, 1, true},  {false, 0, 1, false}, {true, 1, 1, false},
        {true, 0, 0, false}, {true, 0, 2, false},
    };
    for (auto const& row : rows) {
        Probe probe;
        if (row.isBusy) StartJobZV(probe.job, 0);
        ZVEnv->jobsBlocked = row.blocked;
        ZVEnv->guiLevel = row.level;
        AppJobTimerProcZV();
        EXPECT_EQ(probe.job->Calls, row.isRun) << row.isBusy << row.blocked << row.level;
        RemoveJobZV(probe.job);
    }
    EXPECT_EQ(AnyMsgsWaitingZV(), 0);
}

TEST_F(JobsTest, ARoutineMayChangeTheListDuringThePass)
{
    Probe first, second, third;
    std::unique_ptr<Probe> added;
    first.onMessage = [&](unsigned long message) {
        if (message != ZV_JOB_RUN) return;
        RemoveJobZV(second.job);
        RemoveJobZV(first.job);
        added = std::make_unique<Probe>();  // most likely in the memory of one of those
        StartJobZV(added->job, 0);
    };
    for (Probe* probe : {&first, &second, &third})
        StartJobZV(probe->job, 0);
    HandleJobs();
    EXPECT_EQ(first.Take(), (Messages{ZV_JOB_START, ZV_JOB_RUN, ZV_JOB_ABORT}));
    EXPECT_EQ(second.Take(), (Messages{ZV_JOB_START, ZV_JOB_ABORT}));
    EXPECT_EQ(third.Take(), (Messages{ZV_JOB_START, ZV_JOB_RUN}));
    EXPECT_EQ(added->Take(), Messages{ZV_JOB_START}) << "waits for the next pass";
    EXPECT_EQ(added->job->Calls, 0);
    HandleJobs();
    EXPECT_EQ(added->Take(), Messages{ZV_JOB_RUN});
    RemoveJobZV(added->job);
    RemoveJobZV(third.job);
}

TEST_F(JobsTest, JobsThatActOnEachOtherAtRandomLeaveAWholeList)
{
    std::array<std::unique_ptr<Probe>, 9> probes;
    std::minstd_rand random(7);
    int budget = 0;  // ends the recursion of messages that cause messages
    std::vector<std::unique_ptr<Probe>>
        removed;  // until the pass is over: their routines may still be running
    std::function<void(unsigned long)> const act = [&](unsigned long) {
        if (--budget < 0) return;
        std::unique_ptr<Probe>& probe = probes[random() % probes.size()];
        if (!probe) {
            probe = std::make_unique<Probe>();
            probe->onMessage = act;
            probe->startAnswer = random() % 4 != 0;
        }
        switch (random() % 8) {
        case 0:
        case 1:
            removed.push_back(std::move(probe));
            RemoveJobZV(removed.back()->job);
            break;
        case 2: AbortJobZV(probe->job); break;
        case 3: HandleJobs(); break;
        case 4: HandlePriorityJobs(); break;
        default: StartJobZV(probe->job, random() % 4 == 0);
        }
    };
    for (int turn = 0; turn < 3000; ++turn) {
        budget = 20;
        act(0);
        HandleJobs();
        removed.clear();
    }
    budget = 0;
    long const living = std::ranges::count_if(probes, [](auto const& probe) { return probe != nullptr; });
    EXPECT_EQ(List_Entries(&ZVEnv->jobs), living);
    for (auto const& probe : probes) {
        if (!probe) continue;
        EXPECT_EQ(probe->job->node.id, 0U) << "no mark is left";
        RemoveJobZV(probe->job);
    }
    EXPECT_TRUE(List_Empty(&ZVEnv->jobs));
}

TEST_F(JobsTest, AJobObjectGetsItsMessagesUntilItGoes)
{
    static Messages seen;
    struct Job : ZVCJob {
        bool isSelfDestructive = false;

        static long Note(unsigned long message, long answer)
        {
            seen.push_back(message);
            return answer;
        }
        long JobStart(ZVJob* job) override { return Note(ZV_JOB_START, ZVCJob::JobStart(job)); }
        long JobAbort(ZVJob* job) override { return Note(ZV_JOB_ABORT, ZVCJob::JobAbort(job)); }
        long JobRun(ZVJob*) override
        {
            if (isSelfDestructive) delete this;
            return Note(ZV_JOB_RUN, 1);
        }
    };
    seen.clear();
    auto* job = new Job;
    EXPECT_EQ(job->JobAborted(), 0);
    job->AbortJob();
    job->RemoveJob();
    job->StartJob(0);
    EXPECT_EQ(job->AddJob(), 1);
    EXPECT_EQ(List_Entries(&ZVEnv->jobs), 1);
    HandleJobs();
    job->AbortJob();
    EXPECT_EQ(job->JobAborted(), 1);
    EXPECT_EQ(ZVCJob::AnyJobsBusy(), 0);
    job->StartJob(0);
    job->isSelfDestructive = true;
    HandleJobs();
    EXPECT_EQ(seen, (Messages{ZV_JOB_START, ZV_JOB_RUN, ZV_JOB_ABORT, ZV_JOB_START, ZV_JOB_RUN}));
    EXPECT_TRUE(List_Empty(&ZVEnv->jobs));

    Job late;
    late.StartJob(0);
    CleanUpZV();
    EXPECT_EQ(late.AddJob(), 1) << "it has the job still";
}

TEST_F(JobsTest, WithoutAJobOrAnEnvironmentNothingHappens)
{
    StartJobZV(nullptr, 0);
    AbortJobZV(nullptr);
    RemoveJobZV(nullptr);
    EXPECT_EQ(JobAbortedZV(nullptr), 0);
    CleanUpZV();
    EXPECT_EQ(AddJobZV(Probe::Routine), nullptr);
    AppJobTimerProcZV();
    HandleJobs();
    HandlePriorityJobs();
}
