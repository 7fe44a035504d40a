// What the processor and the kernel offer for large buffers: huge pages, the size of the cache.
#include "ZVLibInternal.h"

#include <cstdio>
#include <sys/mman.h>

void OS_Advise_Huge_Pages(void* block, unsigned long size)
{
    // A kernel built without them refuses; the block is as good with ordinary pages.
    madvise(block, size, MADV_HUGEPAGE);
}

/// Size of one of the first processor's caches as the kernel writes it, such as "8192K"; 0 when there is
/// none.
static unsigned long Read_Cache_Size(int index)
{
    char path[64];
    std::snprintf(path, sizeof path, "/sys/devices/system/cpu/cpu0/cache/index%d/size", index);
    std::FILE* const file = std::fopen(path, "re");
    if (!file) return 0;
    unsigned long size = 0;
    char unit = 'K';
    if (std::fscanf(file, "%lu%c", &size, &unit) < 1) size = 0;
    std::fclose(file);
    return unit == 'M' ? size << 20 : size << 10;
}

unsigned long OS_Cache_Size()
{
    // sysconf is of no use here: on some machines it adds up the caches of all processors.
    unsigned long largest = 0;
    for (int index = 0; unsigned long const size = Read_Cache_Size(index); ++index)
        largest = size > largest ? size : largest;
    return largest;
}
