// Runs of a frame map in expectations.
#pragma once

#include "ZVClip.h"

#include <ostream>
#include <vector>

using Runs = std::vector<ZVFrameRun>;

inline bool operator==(ZVFrameRun a, ZVFrameRun b)
{
    return a.Start == b.Start && a.Count == b.Count;
}

inline void PrintTo(ZVFrameRun run, std::ostream* out)
{
    *out << '(' << run.Start << ',' << run.Count << ')';
}
