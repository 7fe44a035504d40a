// Semaphores, tasks, the pool and its fork.
#include "FailingHeap.h"
#include "TestEnvironment.h"

#include <chrono>
#include <climits>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace {

class TasksTest : public EnvironmentTest {
protected:
    /// As if the library had started on a machine with so many processors.
    static void Start_Pool(int32_t processors)
    {
        Cleanup_Threads();
        ZVEnv->processors = processors;
        Init_Threads();
    }
};

/// What the parts of a fork were called with.
struct Calls {
    std::mutex mutex;
    std::multiset<std::pair<long, long>> indexAndCount;
    bool hasUsedCaller = false;
    std::thread::id const caller = std::this_thread::get_id();
    long failing = 0;  ///< index of the part that returns 0

    static long Note(long index, long count, void* data)
    {
        auto& calls = *static_cast<Calls*>(data);
        std::lock_guard const lock(calls.mutex);
        calls.indexAndCount.emplace(index, count);
        calls.hasUsedCaller |= std::this_thread::get_id() == calls.caller;
        return index == calls.failing ? 0 : index + 1;
    }
};

std::multiset<std::pair<long, long>> Parts(long count)
{
    std::multiset<std::pair<long, long>> parts;
    for (long index = 1; index <= count; ++index)
        parts.emplace(index, count);
    return parts;
}

/// Tasks that are only over when all of them and the test have met.
struct Meeting {
    ZVSemaphore* arrived = CreateSemaphoreZV(0, 100);
    ZVSemaphore* leave = CreateSemaphoreZV(0, 100);

    ~Meeting()
    {
        FreeSemaphoreZV(arrived);
        FreeSemaphoreZV(leave);
    }
    static long Attend(void* meeting)
    {
        SignalSemaphoreZV(static_cast<Meeting*>(meeting)->arrived);
        WaitSemaphoreZV(static_cast<Meeting*>(meeting)->leave);
        return 0;
    }
    std::vector<TaskInfoZV*> Open(int tasks)
    {
        std::vector<TaskInfoZV*> infos;
        for (int i = 0; i < tasks; ++i)
            CreateTaskZV(Attend, this, &infos.emplace_back());
        for (int i = 0; i < tasks; ++i)
            WaitSemaphoreZV(arrived);
        return infos;
    }
    void Close(std::vector<TaskInfoZV*> const& infos) const
    {
        for ([[maybe_unused]] TaskInfoZV* info : infos)
            SignalSemaphoreZV(leave);
        for (TaskInfoZV* info : infos)
            TaskWaitZV(info);
    }
};

}  // namespace

TEST_F(TasksTest, ASemaphoreCountsUpToItsMaximumAndLosesTheRest)
{
    for (auto const& [initial, maximum] : {std::pair(-1L, 1L), {0, 0}, {2, 1}, {0, LONG_MAX}, {0, -1}})
        EXPECT_EQ(CreateSemaphoreZV(initial, maximum), nullptr) << initial << " of " << maximum;

    ZVSemaphore* semaphore = CreateSemaphoreZV(1, 2);
    for (int i = 0; i < 3; ++i)
        SignalSemaphoreZV(semaphore);
    std::atomic<bool> isSignalled = false;
    std::thread waiter([&] {
        for (int i = 0; i < 3; ++i)
            WaitSemaphoreZV(semaphore);
        EXPECT_TRUE(isSignalled);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    isSignalled = true;
    SignalSemaphoreZV(semaphore);
    waiter.join();
    FreeSemaphoreZV(semaphore);
    SignalSemaphoreZV(nullptr);
    WaitSemaphoreZV(nullptr);
    FreeSemaphoreZV(nullptr);
}

TEST_F(TasksTest, AForkTakesAsManyPartsAsThereAreProcessors)
{
    struct {
        int32_t processors;
        long parts, count;
        bool isOnCaller;
    } const rows[] = {
        {1, 8, 1, true},  {4, 1, 1, true},  {4, 0, 1, true},  {4, -3, 1, true},
        {2, 2, 2, false}, {2, 8, 2, false}, {4, 3, 3, false}, {4, LONG_MAX, 4, false},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(testing::Message() << row.parts << " parts on " << row.processors);
        Start_Pool(row.processors);
        EXPECT_EQ(GetProcessorsZV(), row.processors);
        EXPECT_EQ(List_Entries(&ZVEnv->threads), row.processors < 2 ? 0 : row.processors);
        for (int turn = 0; turn < 2; ++turn) {
            Calls calls;
            EXPECT_EQ(MPForkZV(Calls::Note, &calls, row.parts), row.isOnCaller ? 2 : 1);
            EXPECT_EQ(calls.indexAndCount, Parts(row.count));
            EXPECT_EQ(calls.hasUsedCaller, row.isOnCaller);
        }
        Calls calls;
        calls.failing = row.count;
        EXPECT_EQ(MPForkZV(Calls::Note, &calls, row.parts), 0);
        EXPECT_EQ(calls.indexAndCount, Parts(row.count)) << "the other parts still run";
    }
}

TEST_F(TasksTest, AWorkerIsBusyUntilItIsWaitedForAndOthersTakeWhatComesMeanwhile)
{
    Start_Pool(2);
    Meeting meeting;
    std::vector<TaskInfoZV*> const tasks = meeting.Open(5);
    EXPECT_EQ(std::set(tasks.begin(), tasks.end()).size(), 5U);
    Calls calls;
    EXPECT_EQ(MPForkZV(Calls::Note, &calls, 2), 1);
    EXPECT_EQ(calls.indexAndCount, Parts(2));
    meeting.Close(tasks);

    std::vector<TaskInfoZV*> const workers(tasks.begin(), tasks.begin() + 2);
    TaskInfoZV* done = nullptr;
    CreateTaskZV([](void*) { return 0L; }, nullptr, &done);
    EXPECT_EQ(done, workers[0]);
    std::vector<TaskInfoZV*> const others = meeting.Open(2);
    EXPECT_EQ(others[0], workers[1]);
    EXPECT_NE(others[1], workers[0]) << "its work is done, but nobody has waited";
    meeting.Close(others);
    TaskWaitZV(done);
    TaskWaitZV(done);
    TaskWaitZV(nullptr);
    std::vector<TaskInfoZV*> const again = meeting.Open(2);
    EXPECT_EQ(again, workers);
    meeting.Close(again);
}

TEST_F(TasksTest, ATaskFindsTheNotificationsThatWereMeantForIt)
{
    struct Mailbox {
        TaskInfoZV* task = nullptr;
        long wanted = 0, found = 0;

        /// Waits for so many notifications, then takes one more if it is there.
        static long Empty(void* data)
        {
            auto& self = *static_cast<Mailbox*>(data);
            while (self.found < self.wanted)
                self.found += CheckForEventZV(self.task);
            self.found += CheckForEventZV(self.task);
            return 0;
        }
    };
    for (int32_t processors : {1, 2}) {
        Start_Pool(processors);
        Mailbox first{.wanted = 2};
        CreateTaskZV(Mailbox::Empty, &first, &first.task);
        for (int i = 0; i < 5; ++i)
            SetEventZV(first.task);
        TaskWaitZV(first.task);
        EXPECT_GE(first.found, 2);

        Mailbox second;
        CreateTaskZV(Mailbox::Empty, &second, &second.task);
        TaskWaitZV(second.task);
        EXPECT_EQ(second.found, 0) << "what the work before did not read";
    }
    SetEventZV(nullptr);
    EXPECT_EQ(CheckForEventZV(nullptr), 0);
}

TEST_F(TasksTest, TheEndOfTheLibraryWaitsForItsWorkersAndTasksGoOnWithoutIt)
{
    Start_Pool(2);
    std::atomic<bool> isDone = false;
    TaskInfoZV* task = nullptr;
    auto const finish = [](void* data) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        *static_cast<std::atomic<bool>*>(data) = true;
        return 0L;
    };
    CreateTaskZV(finish, &isDone, &task);
    CleanUpZV();
    EXPECT_TRUE(isDone);

    isDone = false;
    CreateTaskZV(finish, &isDone, &task);
    TaskWaitZV(task);
    EXPECT_TRUE(isDone);
    EXPECT_EQ(MPForkZV([](long, long count, void*) { return count; }, nullptr, 8), 1);
}

TEST_F(TasksTest, WithoutMemoryTheWorkDoesNotStart)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP() << "the sanitizer has a heap of its own";
    long failures = 0;
    for (TaskInfoZV* task = nullptr; !task; ++failures) {
        Cleanup_Threads();
        ZVEnv->processors = 4;
        FailingHeap const heap(failures);
        Init_Threads();
        EXPECT_LE(List_Entries(&ZVEnv->threads), 4);
        CreateTaskZV([](void*) { return 0L; }, nullptr, &task);
        FailingHeap::Recover();
        TaskWaitZV(task);
    }
    EXPECT_GT(failures, 4);
}
