// Events, the thread and task classes, and what the processor can do.
#include "TestEnvironment.h"

#include <chrono>
#include <fstream>
#include <functional>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace {

using std::chrono::milliseconds;

bool Is_Asleep(pid_t thread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string const stat(std::istreambuf_iterator<char>(file), {});
    return stat.find(") S ") != stat.npos;
}

/// Runs `wait` on another thread, does `act` once that sleeps, and returns what the wait ended with.
long Ends_With(std::function<long()> const& wait, std::function<void()> const& act)
{
    long result = -1;
    std::atomic<pid_t> id = 0;
    std::thread waiter([&] {
        id = gettid();
        result = wait();
    });
    while (id == 0 || !Is_Asleep(id))
        std::this_thread::yield();
    act();
    waiter.join();
    return result;
}

/// A thread that counts its calls, and does what a test wants of it.
class Counter : public ZVCThread {
public:
    std::function<long()> onRun = [] { return 1; };
    std::function<void()> onInitialize = [] {};
    bool isRefusing = false;
    std::atomic<long> initialized = 0, runs = 0, cleanedUp = 0;

    long Is_Marked_Started() const { return Started; }
    ZVCEvent& Stop_Event() { return StopEvent; }

    /// Until the thread has ended by itself.
    void Wait_For_End()
    {
        while (Started)
            std::this_thread::yield();
    }

protected:
    long Initialize() override
    {
        ++initialized;
        onInitialize();
        return isRefusing ? 0 : ZVCThread::Initialize();
    }
    long Run() override
    {
        ++runs;
        return onRun();
    }
    void CleanUp() override
    {
        ++cleanedUp;
        ZVCThread::CleanUp();
    }
};

bool Has_Flag(std::string const& wanted)
{
    std::ifstream file("/proc/cpuinfo");
    std::string line;
    while (std::getline(file, line) && !line.starts_with("flags")) {
    }
    return (line + ' ').find(' ' + wanted + ' ') != line.npos;
}

}  // namespace

TEST(Events, AFlagStaysSetUntilItIsReset)
{
    ZVCEvent event;
    EXPECT_EQ(event.WaitFor(1), ZVCEvent::ZV_EVENT_TIMEOUT);
    event.Set();
    EXPECT_EQ(event.WaitFor(1), ZVCEvent::ZV_EVENT_SET);
    EXPECT_EQ(event.WaitFor(0), ZVCEvent::ZV_EVENT_SET);
    event.Reset();
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(event.WaitFor(30), ZVCEvent::ZV_EVENT_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(30));
}

TEST(Events, AWaitEndsWithWhatHappensToTheEvent)
{
    for (unsigned long limit : {0UL, 100'000UL, ~0UL}) {
        auto event = std::make_unique<ZVCEvent>();
        auto const wait = [&, raw = event.get()] { return raw->WaitFor(limit); };
        EXPECT_EQ(Ends_With(wait, [&] { event->Reset(); }), ZVCEvent::ZV_EVENT_CLEAR);
        EXPECT_EQ(Ends_With(wait, [&] { event->Set(); }), ZVCEvent::ZV_EVENT_SET);
        event->Reset();
        EXPECT_EQ(Ends_With(wait, [&] { event.reset(); }), ZVCEvent::ZV_EVENT_DELETED);
    }
}

TEST(Events, AListIsLookedAtWheneverTheEventIsWokenClear)
{
    auto own = std::make_unique<ZVCEvent>();
    ZVCEvent a, b;
    auto c = std::make_unique<ZVCEvent>();
    ZVCEvent* list[] = {&a, &b, c.get()};
    auto const wait = [&](unsigned long tries) {
        return [&, tries, raw = own.get()] { return raw->WaitForMultiple(list, 3, tries); };
    };
    own->Set();
    b.Set();
    EXPECT_EQ(wait(0)(), ZVCEvent::ZV_EVENT_SET);
    own->Reset();
    EXPECT_EQ(Ends_With(wait(0), [&] { own->Reset(); }), ZVCEvent::ZV_EVENT_FIRST + 1);
    b.Reset();

    // Wakes the waiting thread until it has its answer.
    auto const Answer = [&](unsigned long tries, std::function<void()> const& first) {
        std::atomic<bool> isOver = false;
        auto const keep_waking = [&] {
            for (first(); !isOver; std::this_thread::sleep_for(milliseconds(1)))
                own->Reset();
        };
        return Ends_With(
            [&] {
                long const result = wait(tries)();
                isOver = true;
                return result;
            },
            keep_waking);
    };
    EXPECT_EQ(Answer(3, [] {}), ZVCEvent::ZV_EVENT_TIMEOUT);
    EXPECT_EQ(Answer(0, [&] { c.reset(); }), ZVCEvent::ZV_EVENT_DELETED);
    list[2] = &a;
    EXPECT_EQ(Ends_With(wait(0), [&] { own.reset(); }), ZVCEvent::ZV_EVENT_DELETED);
}

TEST(Events, OfAListObjectTheFirstFiveCount)
{
    ZVCEvent own, five[5], sixth;
    std::list<ZVCEvent*> list;
    for (ZVCEvent& event : five)
        list.push_back(&event);
    list.push_back(&sixth);
    sixth.Set();
    five[4].Set();
    EXPECT_EQ(Ends_With([&] { return own.WaitForMultiple(list, 0); }, [&] { own.Reset(); }),
              ZVCEvent::ZV_EVENT_FIRST + 4);
}

TEST(Threads, AThreadRunsFromItsStartToItsStop)
{
    Counter thread;
    EXPECT_EQ(thread.Stop(), 0);
    EXPECT_EQ(thread.KillThread(), 0);
    thread.onInitialize = [] { std::this_thread::sleep_for(milliseconds(20)); };
    EXPECT_EQ(thread.Start(), 1);
    EXPECT_EQ(thread.IsStarted(), 1) << "waits for a slow Initialize";
    EXPECT_EQ(thread.Start(), 0) << "runs already";
    while (thread.runs < 3)
        std::this_thread::yield();
    EXPECT_EQ(thread.Stop(), ZVCEvent::ZV_EVENT_SET);
    EXPECT_EQ(thread.Is_Marked_Started(), 0);
    EXPECT_EQ(thread.initialized, 1);
    EXPECT_EQ(thread.cleanedUp, 1);
    EXPECT_EQ(thread.Stop(), 0);

    thread.onRun = [&] { return thread.Stop_Event().WaitFor(0) != ZVCEvent::ZV_EVENT_SET; };
    EXPECT_EQ(thread.RestartThread(), 1);
    EXPECT_EQ(thread.IsStarted(), 1);
    EXPECT_EQ(thread.Stop(), ZVCEvent::ZV_EVENT_SET) << "a body that sleeps on the stop event";
}

TEST(Threads, AThreadMayEndByItself)
{
    Counter refusing;
    refusing.isRefusing = true;
    Counter brief;
    brief.onRun = [] { return 0; };
    for (int turn = 1; turn <= 3; ++turn) {
        EXPECT_EQ(refusing.Start(), 1);
        refusing.Wait_For_End();
        EXPECT_EQ(refusing.initialized, turn);
        EXPECT_EQ(brief.Start(), 1);
        brief.Wait_For_End();
        EXPECT_EQ(brief.runs, turn);
        EXPECT_EQ(brief.cleanedUp, turn);
    }
    EXPECT_EQ(refusing.runs + refusing.cleanedUp, 0);
    EXPECT_EQ(brief.Stop(), 0);
}

TEST(Threads, AThousandStartsAndStopsOfEveryKind)
{
    Counter thread;
    for (int turn = 0; turn < 1000; ++turn) {
        if (turn % 7 == 0) thread.onRun = [turn] { return turn % 2; };
        EXPECT_EQ(thread.Start(), 1);
        if (turn % 3 == 0) thread.IsStarted();
        if (turn % 5 == 0) thread.RestartThread();
        long const result = turn % 2 ? thread.Stop() : thread.KillThread();
        EXPECT_NE(result, ZVCEvent::ZV_EVENT_CLEAR);
        EXPECT_EQ(thread.Is_Marked_Started(), 0);
    }
    EXPECT_EQ(thread.cleanedUp, thread.initialized) << "none was ended by force";
}

TEST(Threads, AHangingBodyIsEndedByForce)
{
    std::atomic<long> beats = 0;
    for (bool isAsleep : {false, true}) {
        Counter thread;
        thread.onRun = [&] {
            for (;; isAsleep ? pause() : ++beats) {
            }
            return 1;
        };
        EXPECT_EQ(thread.Start(), 1);
        while (thread.runs == 0)
            std::this_thread::yield();
        EXPECT_EQ(thread.KillThread(), ZVCEvent::ZV_EVENT_TIMEOUT);
        EXPECT_EQ(thread.cleanedUp, 0);
        EXPECT_EQ(thread.Is_Marked_Started(), 0);
        long const last = beats;
        std::this_thread::sleep_for(milliseconds(20));
        EXPECT_EQ(beats, last) << "it is gone";

        thread.onRun = [] { return 1; };
        EXPECT_EQ(thread.RestartThread(), 1);
        EXPECT_EQ(thread.IsStarted(), 1);
        EXPECT_EQ(thread.Stop(), ZVCEvent::ZV_EVENT_SET);
    }
}

TEST(Threads, APriorityChangesTheShareOfTheProcessor)
{
    Counter thread;
    EXPECT_THROW(thread.SetPriority(ZVCThread::ZV_THREAD_LOW), ZVAssertFail);
    std::atomic<id_t> id = 0;
    thread.onInitialize = [&] { id = static_cast<id_t>(gettid()); };
    thread.Start();
    thread.IsStarted();
    int const before = getpriority(PRIO_PROCESS, id);
    bool const mayRise = geteuid() == 0;
    for (auto const& [priority, nice] :
         {std::pair(ZVCThread::ZV_THREAD_LOW, 3), {ZVCThread::ZV_THREAD_LOWEST, 10}}) {
        thread.SetPriority(priority);
        EXPECT_EQ(getpriority(PRIO_PROCESS, id), mayRise ? nice : std::max(nice, before));
    }
    for (auto priority :
         {ZVCThread::ZV_THREAD_NORMAL, ZVCThread::ZV_THREAD_HIGH, ZVCThread::ZV_THREAD_HIGHEST})
        EXPECT_NO_THROW(thread.SetPriority(priority)) << "as far as the user may";
    thread.Stop();
}

TEST(Threads, ATaskObjectRunsATaskOfThePool)
{
    TestEnvironment const environment;
    struct Task : ZVCTask {
        static long Answer(void* place) { return *static_cast<long*>(place) = 42; }
        long Run() override { return 0; }
    } task;
    long place = 0;
    task.CreateTask(Task::Answer, &place);
    task.SetEvent();
    task.StartTask();
    task.TaskWait();
    EXPECT_EQ(place, 42);
    EXPECT_EQ(task.CheckForEvent(), ZVEnv->processors > 1) << "nobody has read it";
    EXPECT_EQ(
        ZVCTask::Fork([](long index, long count, void*) { return index <= count ? 1L : 0L; }, nullptr, 2), 1);
}

TEST(Processor, TheAnswersAreThoseOfTheKernel)
{
    ZVCPUSupport* support = ZVCPUSupport::GetInstance();
    EXPECT_EQ(support, ZVCPUSupport::GetInstance());
    EXPECT_EQ(support->HasMMX(), Has_Flag("mmx"));
    EXPECT_EQ(support->HasSSE(), Has_Flag("sse"));
    EXPECT_EQ(ZVCPUSupport::SupportsSSE2(), Has_Flag("sse2"));
    EXPECT_EQ(ZVCPUSupport::Supports3DNow(), Has_Flag("3dnow"));
    EXPECT_EQ(ZVCPUSupport::SupportsVE(), 0);
}
