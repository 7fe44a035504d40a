// Threads that wait for a word of memory to change.
#include "ZVLibInternal.h"

#include <cerrno>
#include <climits>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

static_assert(sizeof(std::atomic<uint32_t>) == sizeof(uint32_t) &&
              std::atomic<uint32_t>::is_always_lock_free);

bool OS_Wait_On_Word(std::atomic<uint32_t>& word, uint32_t value, long milliseconds)
{
    timespec const limit{.tv_sec = milliseconds / 1000, .tv_nsec = milliseconds % 1000 * 1'000'000};
    return syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, milliseconds < 0 ? nullptr : &limit) == 0 ||
           errno != ETIMEDOUT;
}

void OS_Wake_Word(std::atomic<uint32_t>& word, bool all)
{
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, all ? INT_MAX : 1);
}
