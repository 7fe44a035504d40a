// Counting semaphores: the count is the word that threads wait on.
#include "ZVLibInternal.h"

#include <climits>
#include <new>

struct ZVSemaphore {
    std::atomic<uint32_t> count;
    uint32_t maximum;
};

static bool Take_One(ZVSemaphore& semaphore)
{
    uint32_t count = semaphore.count.load(std::memory_order_relaxed);
    while (count > 0)
        if (semaphore.count.compare_exchange_weak(count, count - 1, std::memory_order_acquire)) return true;
    return false;
}

ZVSemaphore* CreateSemaphoreZV(long initial, long maximum)
{
    if (maximum < 1 || maximum > INT_MAX || initial < 0 || initial > maximum) return nullptr;
    return new (std::nothrow) ZVSemaphore{static_cast<uint32_t>(initial), static_cast<uint32_t>(maximum)};
}

void FreeSemaphoreZV(ZVSemaphore* semaphore)
{
    delete semaphore;
}

void WaitSemaphoreZV(ZVSemaphore* semaphore)
{
    if (!semaphore) return;
    while (!Take_One(*semaphore))
        OS_Wait_On_Word(semaphore->count, 0, -1);
}

void SignalSemaphoreZV(ZVSemaphore* semaphore)
{
    if (!semaphore) return;
    uint32_t count = semaphore->count.load(std::memory_order_relaxed);
    do
        if (count >= semaphore->maximum) return;
    while (!semaphore->count.compare_exchange_weak(count, count + 1, std::memory_order_release));
    // From here on the semaphore may be gone, freed by the thread that took the count. Waking goes by the
    // address alone; a number of waiting threads in the record, to save needless calls, could no longer be
    // read.
    OS_Wake_Word(semaphore->count, false);
}
