// Measures an operation beside a yardstick in the same run, turn about, so that whatever else the machine
// does falls on both, and reports the ratio of their median times beside the limit that it should keep.
#pragma once

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <string>
#include <vector>

namespace Bench {

/// Seconds that one call takes.
template <typename Work> double Time(Work&& work)
{
    auto const start = std::chrono::steady_clock::now();
    work();
    benchmark::ClobberMemory();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Registers a measurement. `make` prepares it and returns a pair of functions, the operation and its
/// yardstick; a limit of 0 is none.
template <typename Make> void Register(std::string const& name, double limit, Make make)
{
    auto const run = [limit, make](benchmark::State& state) {
        auto const [work, yardstick] = make();
        work();
        yardstick();
        std::vector<double> workTimes, yardstickTimes;
        for (auto _ : state) {
            yardstickTimes.push_back(Time(yardstick));
            workTimes.push_back(Time(work));
            state.SetIterationTime(workTimes.back());
        }
        state.counters["ratio"] = std::ranges::min(workTimes) / std::ranges::min(yardstickTimes);
        if (limit > 0) state.counters["limit"] = limit;
    };
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(41);
}

}  // namespace Bench
