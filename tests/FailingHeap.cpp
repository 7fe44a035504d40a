// The allocation calls of the C library in front of its own heap. The library under test finds these first,
// as they stand in the program.
#include "FailingHeap.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

static thread_local bool armed = false;
static thread_local long remaining = 0;
static thread_local long failures = 0;
static thread_local long mostFailures = 0;
static std::atomic<long> blocks = 0;

FailingHeap::FailingHeap(long after, long most)
{
    remaining = after;
    failures = 0;
    mostFailures = most;
    armed = true;
}

FailingHeap::~FailingHeap()
{
    armed = false;
}

void FailingHeap::Recover()
{
    armed = false;
}

long FailingHeap::Blocks()
{
    return blocks;
}

long FailingHeap::Failures() const
{
    return failures;
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZV_SANITIZED_HEAP
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ZV_SANITIZED_HEAP
#endif
#endif

#ifdef ZV_SANITIZED_HEAP

bool FailingHeap::Is_Available()
{
    return false;
}

#else

bool FailingHeap::Is_Available()
{
    return true;
}

static bool Fails()
{
    if (!armed || remaining-- > 0) return false;
    remaining = 0;
    if (++failures >= mostFailures) armed = false;
    errno = ENOMEM;
    return true;
}

static void* Counted(void* block)
{
    if (block) ++blocks;
    return block;
}

#pragma GCC visibility push(default)
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size)
{
    return Fails() ? nullptr : Counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size)
{
    return Fails() ? nullptr : Counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size)
{
    if (Fails()) return nullptr;
    void* const moved = __libc_realloc(block, size);
    if (moved && !block) ++blocks;
    if (block && size == 0) --blocks;
    return moved;
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return Fails() ? nullptr : Counted(__libc_memalign(alignment, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    if (Fails()) return ENOMEM;
    *block = Counted(__libc_memalign(alignment, size));
    return *block ? 0 : ENOMEM;
}

void free(void* block)
{
    if (block) --blocks;
    __libc_free(block);
}
}
#pragma GCC visibility pop

#endif
