// Memory of the machine and of the process, and pages kept in memory.
#include "ZVLibInternal.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>

namespace {

constexpr uint64_t MiB = 1024 * 1024;
constexpr uint32_t LargeMachine = 0xC9999999;  // stands for all sizes from 4 GiB on
constexpr double LargestReserve = 300.0 * MiB;

/// The blocks that are locked now, and the pages that they take.
struct LockedBlocks {
    std::mutex mutex;
    std::map<void const*, uint64_t> bytes;
    uint64_t total = 0;
};

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, CloseFile>;

}  // namespace

/// Never destroyed: blocks may be released while the process ends.
static LockedBlocks& Locked()
{
    static LockedBlocks& blocks = *new LockedBlocks;
    return blocks;
}

static uint64_t Page_Size()
{
    static auto const size = static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
    return size;
}

/// The value in KiB of a line such as "MemAvailable:  1234 kB", in bytes; 0 when it is not there.
static uint64_t Read_Kernel_Size(char const* file, char const* format)
{
    OpenFile const lines{std::fopen(file, "re")};
    char line[256];
    unsigned long kibibytes = 0;
    while (lines && std::fgets(line, sizeof line, lines.get()))
        if (std::sscanf(line, format, &kibibytes) == 1) return uint64_t{kibibytes} * 1024;
    return 0;
}

uint64_t OS_Free_Memory()
{
    uint64_t const available = Read_Kernel_Size("/proc/meminfo", "MemAvailable: %lu");
    return available ? available : static_cast<uint64_t>(sysconf(_SC_AVPHYS_PAGES)) * Page_Size();
}

uint64_t OS_Total_Memory()
{
    return static_cast<uint64_t>(sysconf(_SC_PHYS_PAGES)) * Page_Size();
}

uint64_t GetAppMemUsageZV()
{
    OpenFile const numbers{std::fopen("/proc/self/statm", "re")};
    unsigned long residentPages = 0;
    if (!numbers || std::fscanf(numbers.get(), "%*u %lu", &residentPages) != 1) return 0;
    return residentPages * Page_Size();
}

void Set_Memory_Limits(uint64_t machineBytes)
{
    bool const fits = machineBytes / MiB <= 4095;
    ZVEnv->physicalMemory = fits ? static_cast<uint32_t>(machineBytes) : LargeMachine;
    double const share = std::min(0.3 * static_cast<double>(machineBytes), LargestReserve);
    ZVEnv->residentLimit = fits ? static_cast<uint32_t>(share) : 0;
}

/// Bytes of all pages that hold a part of the block.
static uint64_t Page_Bytes(void const* block, unsigned long size)
{
    uint64_t const first = reinterpret_cast<uint64_t>(block) / Page_Size();
    uint64_t const last = (reinterpret_cast<uint64_t>(block) + size - 1) / Page_Size();
    return size ? (last - first + 1) * Page_Size() : 0;
}

static bool Is_Within_Limit(uint64_t bytes)
{
    rlimit limit{};
    if (getrlimit(RLIMIT_MEMLOCK, &limit) != 0) return false;
    return limit.rlim_cur == RLIM_INFINITY || bytes <= limit.rlim_cur;
}

/// Enters a block as locked. False when that goes beyond the limit.
static bool Reserve_Pages(void const* block, uint64_t bytes)
{
    LockedBlocks& locked = Locked();
    std::lock_guard const guard(locked.mutex);
    if (!Is_Within_Limit(locked.total + bytes)) return false;
    locked.bytes[block] += bytes;
    locked.total += bytes;
    return true;
}

/// Takes a block out again. False when it was not locked.
static bool Give_Back_Pages(void const* block)
{
    LockedBlocks& locked = Locked();
    std::lock_guard const guard(locked.mutex);
    auto const entry = locked.bytes.find(block);
    if (entry == locked.bytes.end()) return false;
    locked.total -= entry->second;
    locked.bytes.erase(entry);
    return true;
}

long OS_Lock_Pages(void* block, unsigned long size)
{
    uint64_t const bytes = Page_Bytes(block, size);
    if (!Reserve_Pages(block, bytes)) return 0;
    if (mlock(block, size) == 0) return 1;
    Give_Back_Pages(block);
    // The application's own locks count against the same limit.
    bool const isOurs = Is_Within_Limit(Read_Kernel_Size("/proc/self/status", "VmLck: %lu") + bytes);
    return isOurs ? -1 : 0;
}

bool OS_Unlock_Pages(void* block, unsigned long size)
{
    return !Give_Back_Pages(block) || munlock(block, size) == 0;
}
