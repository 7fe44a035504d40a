// Declaring and laying out a palette of a thousand gadgets: milliseconds against the limit of each.
#include "BenchSession.h"
#include "BenchTools.h"

#include <ZVLibInternal.h>

namespace {

constexpr int GroupCount = 20, GadgetsInGroup = 50;

/// A palette under construction: groups beside and below one another, their gadgets in rows, with labels,
/// growing ones and gaps here and there.
ZVPalette* Declare()
{
    ZVPalette* const palette = InitPaletteZV();
    for (short group = 1; group <= GroupCount; ++group) {
        InitGroupZV();
        for (int i = 0; i < GadgetsInGroup; ++i) {
            unsigned short const position = i % 10 ? 0x0402 : 0x0200;
            short const reference = i % 10 ? -1 : static_cast<short>(-10);
            if (i % 5)
                AddGadgetZV(0, position, reference, ZV_GAD_TOGGLE, ZV_SIZE_SMALL, "gadget", ZV_GAP_FIXED, 3);
            else
                AddGadgetZV(0, position, reference, ZV_GAD_CUSTOM, ZV_SIZE_SMALL, "gadget",
                            ZV_ITEM_GROW_WIDTH, 10);
        }
        EndGroupZV(group, group % 4 ? 0x0402 : 0x0200, -1, "group", ZV_GRP_AUTO_SIZE, 0);
    }
    return palette;
}

void Lay_Out(ZVPalette* palette, long width, long height)
{
    for (Node* group = palette->groups.head; group->next; group = group->next)
        SetUp_Gadgets(reinterpret_cast<ZVGroup*>(group));
    Build_Groups(palette, width, height);
    for (Node* group = palette->groups.head; group->next; group = group->next)
        Build_Gadgets(reinterpret_cast<ZVGroup*>(group));
}

void Measure_Declaration(benchmark::State& state)
{
    Bench::Session const session;
    for (auto _ : state) {
        state.SetIterationTime(Bench::Time(Declare));
        CleanUpWindowsZV();
    }
    state.counters["limit_ms"] = 2.0;
}

void Measure_Layout(benchmark::State& state)
{
    Bench::Session const session;
    ZVPalette* const palette = Declare();
    long width = 1000;
    for (auto _ : state)
        state.SetIterationTime(Bench::Time([&] { Lay_Out(palette, ++width, 900); }));
    state.counters["limit_ms"] = 0.3;
    CleanUpWindowsZV();
}

BENCHMARK(Measure_Declaration)
    ->Name("Layout/declare/1000")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(60);
BENCHMARK(Measure_Layout)
    ->Name("Layout/again/1000")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(400);

}  // namespace
