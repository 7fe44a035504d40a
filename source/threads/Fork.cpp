// Dividing one piece of work over the processors.
#include "ZVLibInternal.h"

#include <algorithm>
#include <new>

namespace {

struct ForkParams {
    Node node;
    long Index;  ///< from 1
    long Count;
    long (*Function)(long index, long count, void* data);
    void* Data;
    TaskInfoZV* Info;
    long Result;
};

long ForkFunc(void* argument)
{
    auto* part = static_cast<ForkParams*>(argument);
    part->Result = part->Function(part->Index, part->Count, part->Data);
    return 0;
}

}  // namespace

long MPForkZV(long (*func)(long index, long count, void* data), void* data, long parts)
{
    long const count = std::min(parts, GetProcessorsZV());
    if (count < 2) return func(1, 1, data);

    List running;
    NewList(&running);
    long result = 1;
    for (long index = 1; index <= count; ++index) {
        auto* part = new (std::nothrow) ForkParams{{}, index, count, func, data, nullptr, 0};
        if (!part) {
            result = 0;
            continue;
        }
        AddTail(&running, &part->node);
        CreateTaskZV(ForkFunc, part, &part->Info);
    }
    while (auto* part = reinterpret_cast<ForkParams*>(RemHead(&running))) {
        TaskWaitZV(part->Info);
        if (!part->Result) result = 0;
        delete part;
    }
    return result;
}
