// A bar of 20 menus with 50 entries each: declared and built, and a menu of it opened, on the desktop in
// memory; milliseconds against the limit.
#include "BenchTools.h"

#include <ZVHeadless.h>
#include <ZVLib.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace {

constexpr int menus = 20, entries = 50;

struct Desktop {
    Desktop()
    {
        setenv("ZV_HOST", "headless", 1);
        if (!InitZV(nullptr, nullptr, nullptr, nullptr, nullptr)) throw std::runtime_error("InitZV");
    }
    ~Desktop() { CleanUpZV(); }
    Desktop(Desktop const&) = delete;
    Desktop& operator=(Desktop const&) = delete;
};

void Make_Bar()
{
    for (int menu = 1; menu <= menus; ++menu) {
        InitMenuZV();
        for (int entry = 1; entry <= entries; ++entry)
            AddMenuItemZV(0, ("Entry " + std::to_string(entry)).c_str(), 0, nullptr);
        EndMenuZV(menu, ("Menu " + std::to_string(menu)).c_str(), nullptr);
    }
    MakeMenuBarZV();
}

void Measure_Bar(benchmark::State& state)
{
    Desktop const desktop;
    for (auto _ : state) {
        state.SetIterationTime(Bench::Time(Make_Bar));
        ClearMenuBarZV();
    }
    state.counters["limit_ms"] = 5.0;
}

/// From the press on a title to what the first turn of the loop shows.
void Measure_Opening(benchmark::State& state)
{
    Desktop const desktop;
    Make_Bar();
    for (auto _ : state) {
        HeadlessMoveZV(20, 5);
        HeadlessPressZV(ZV_HEADLESS_LEFT);
        state.SetIterationTime(Bench::Time([] { AdvanceGUIZV(0); }));
        HeadlessReleaseZV(ZV_HEADLESS_LEFT);
        HeadlessKeyZV(ZV_KEY_ESCAPE);
        HeadlessRunZV(0);
    }
    state.counters["limit_ms"] = 16.0;  // a frame of the display
}

BENCHMARK(Measure_Bar)
    ->Name("Menus/bar/20x50")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(200);
BENCHMARK(Measure_Opening)
    ->Name("Menus/open/50")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(200);

}  // namespace
