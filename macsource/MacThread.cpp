// Threads: starting them, their share of the processor, and their end, by force if need be.
#include "ZVLibInternal.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <mutex>
#include <new>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

enum Departure : uint32_t { runs, hasReturned, wasTerminated };

struct OSThread {
    void (*entry)(void*);
    void* argument;
    pthread_t handle{};
    std::atomic<uint32_t> id = 0;  ///< the kernel's number, 0 until the thread runs
    std::atomic<uint32_t> departure = runs;
};

// A thread is ended by a signal that carries this mark: its handler leaves the thread at once. Cancellation
// would not do, as it waits for the thread to reach certain calls, and unwinds through code that may not be
// ready for it.
static char endMark;
static struct sigaction previousAction;
static thread_local OSThread* current = nullptr;

static int End_Signal()
{
    return SIGRTMAX;
}

/// Notes how the thread ends, unless that is known already.
static bool Depart(OSThread& thread, Departure departure)
{
    uint32_t expected = runs;
    if (!thread.departure.compare_exchange_strong(expected, departure)) return false;
    OS_Wake_Word(thread.departure, true);
    return true;
}

static void On_End_Signal(int number, siginfo_t* info, void* context)
{
    if (info->si_code == SI_QUEUE && info->si_pid == getpid() && info->si_value.sival_ptr == &endMark) {
        if (current && Depart(*current, wasTerminated)) syscall(SYS_exit, 0);
        return;
    }
    if (previousAction.sa_flags & SA_SIGINFO)
        previousAction.sa_sigaction(number, info, context);
    else if (previousAction.sa_handler != SIG_DFL && previousAction.sa_handler != SIG_IGN)
        previousAction.sa_handler(number);
}

static void Install_End_Signal()
{
    static std::once_flag isInstalled;
    std::call_once(isInstalled, [] {
        struct sigaction action {};
        action.sa_sigaction = On_End_Signal;
        action.sa_flags = SA_SIGINFO | SA_RESTART | SA_ONSTACK;
        sigfillset(&action.sa_mask);
        sigaction(End_Signal(), &action, &previousAction);
    });
}

static void* Run_Thread(void* argument)
{
    current = static_cast<OSThread*>(argument);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, End_Signal());
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    current->id = static_cast<uint32_t>(gettid());
    OS_Wake_Word(current->id, true);
    current->entry(current->argument);
    Depart(*current, hasReturned);
    return nullptr;
}

static void Wait_For_Start(OSThread& thread)
{
    while (thread.id == 0)
        OS_Wait_On_Word(thread.id, 0, -1);
}

OSThread* OS_Start_Thread(void (*entry)(void*), void* argument)
{
    auto* thread = new (std::nothrow) OSThread{entry, argument};
    if (!thread) return nullptr;
    if (pthread_create(&thread->handle, nullptr, Run_Thread, thread) == 0) return thread;
    delete thread;
    return nullptr;
}

void OS_Join_Thread(OSThread* thread)
{
    pthread_join(thread->handle, nullptr);
    delete thread;
}

void OS_Terminate_Thread(OSThread* thread)
{
    Install_End_Signal();
    Wait_For_Start(*thread);  // a signal before that would find no record
    // The kernel keeps a limited number of signals waiting.
    while (pthread_sigqueue(thread->handle, End_Signal(), {.sival_ptr = &endMark}) == EAGAIN)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    auto const limit = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (thread->departure == runs && std::chrono::steady_clock::now() < limit)
        OS_Wait_On_Word(thread->departure, runs, 100);
    switch (thread->departure) {
    case hasReturned: OS_Join_Thread(thread); break;
    case wasTerminated:
        // Not joined, so that no later thread gets its stack: that one would find what the dead thread kept
        // in its thread-specific data.
        delete thread;
        break;
    default:
        // It hangs in the kernel, which delivers the signal before it lets the thread go on. Its record
        // stays.
        break;
    }
}

/// The nice value that gives so large a share: each step is a quarter more or less.
static int Nice_Value(long weight)
{
    double const steps = std::log(100.0 / static_cast<double>(std::max(weight, 1L))) / std::log(1.25);
    return std::clamp(static_cast<int>(std::lround(steps)), -20, 19);
}

bool OS_Set_Thread_Weight(OSThread* thread, long weight)
{
    Wait_For_Start(*thread);
    id_t const id = thread->id;
    int const wanted = Nice_Value(weight);
    if (setpriority(PRIO_PROCESS, id, wanted) == 0 || errno == ESRCH) return true;
    if (errno != EACCES && errno != EPERM) return false;
    rlimit limit{};
    if (getrlimit(RLIMIT_NICE, &limit) == 0 && limit.rlim_cur > 0) {
        int const best = 20 - static_cast<int>(std::min<rlim_t>(limit.rlim_cur, 40));
        setpriority(PRIO_PROCESS, id, std::max(wanted, best));
    }
    return true;
}
