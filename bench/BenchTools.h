// Measures an operation beside a yardstick in the same run, turn about, so that whatever else the machine
// does falls on both, and reports the ratio of their median times beside the limit that it should keep.
#pragma once

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <string>
#include <tuple>
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

inline double Median(std::vector<double>& values)
{
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Registers a measurement. `make` prepares it and returns a pair of functions, the operation and its
/// yardstick, or a tuple with a third that runs before each of them, untimed; a limit of 0 is none.
template <typename Make> void Register(std::string const& name, double limit, Make make, int iterations = 41)
{
    auto const run = [limit, make](benchmark::State& state) {
        auto const parts = make();
        auto const& work = std::get<0>(parts);
        auto const& yardstick = std::get<1>(parts);
        auto const prepare = [&parts] {
            if constexpr (std::tuple_size_v<std::remove_cvref_t<decltype(parts)>> == 3) std::get<2>(parts)();
        };
        work();
        yardstick();
        std::vector<double> workTimes, yardstickTimes;
        for (auto _ : state) {
            prepare();
            yardstickTimes.push_back(Time(yardstick));
            prepare();
            workTimes.push_back(Time(work));
            state.SetIterationTime(workTimes.back());
        }
        state.counters["ratio"] = Median(workTimes) / Median(yardstickTimes);
        if (limit > 0) state.counters["limit"] = limit;
    };
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(iterations);
}

}  // namespace Bench
