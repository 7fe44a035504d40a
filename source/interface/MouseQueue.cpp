// The ring of mouse records, for a desktop that gathers points between events.
#include "ZVLibInternal.h"

#include <cstring>

/// Bytes of a record in the ring: a point of 32 bits and a state of 16.
static constexpr unsigned long stateOffset = sizeof MacMouseEvent::point;
static constexpr unsigned long recordSize = stateOffset + sizeof MacMouseEvent::state;
static constexpr unsigned long queueSize = 200 * recordSize;

long Init_MouseQueue()
{
    auto* base = static_cast<uint8_t*>(Alloc_Aligned(queueSize, alignof(uint32_t)));
    if (!base) return 0;
    ZVEnv->mouseQueue = {.read = base, .write = base, .end = base + queueSize, .base = base};
    return 1;
}

void Free_MouseQueue()
{
    FreeMemZV(ZVEnv->mouseQueue.base);
    ZVEnv->mouseQueue = {};
}

/// Moves a pointer of the queue behind its record, from the end back to the base.
static void Step(void*& place)
{
    place = static_cast<uint8_t*>(place) + recordSize;
    if (place == ZVEnv->mouseQueue.end) place = ZVEnv->mouseQueue.base;
}

void Add_MouseQueue(MacMouseEvent const* event)
{
    auto* const record = static_cast<uint8_t*>(ZVEnv->mouseQueue.write);
    std::memcpy(record, &event->point, sizeof event->point);
    std::memcpy(record + stateOffset, &event->state, sizeof event->state);
    Step(ZVEnv->mouseQueue.write);
}

long Get_MouseQueue(MacMouseEvent* event)
{
    if (ZVEnv->mouseQueue.read == ZVEnv->mouseQueue.write) return 0;
    auto const* const record = static_cast<uint8_t const*>(ZVEnv->mouseQueue.read);
    std::memcpy(&event->point, record, sizeof event->point);
    std::memcpy(&event->state, record + stateOffset, sizeof event->state);
    Step(ZVEnv->mouseQueue.read);
    return 1;
}

void TrackMouseZV(long on)
{
    if (!ZVEnv) return;
    ZVEnv->trackMouse = on != 0;
    if (on) ZVEnv->mouseQueue.read = ZVEnv->mouseQueue.write = ZVEnv->mouseQueue.base;
}

void DequeueMouseQueueZV() {}

long QueuedMouseMessagesZV()
{
    return 3;
}
