// The ring of mouse records between the input translation and the event loop.
#include "ZVLibInternal.h"

static constexpr unsigned long RecordSize = 6;
static constexpr unsigned long QueueSize = 200 * RecordSize;

long Init_MouseQueue()
{
    auto* base = static_cast<uint8_t*>(Alloc_Aligned(QueueSize, alignof(uint32_t)));
    if (!base) return 0;
    ZVEnv->mouseQueue = {.read = base, .write = base, .end = base + QueueSize, .base = base};
    return 1;
}

void Free_MouseQueue()
{
    FreeMemZV(ZVEnv->mouseQueue.base);
    ZVEnv->mouseQueue = {};
}
