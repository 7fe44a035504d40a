// A movement of the mouse over the last of a thousand gadgets: microseconds against the limit.
#include "BenchSession.h"
#include "BenchTools.h"

#include <ZVLibInternal.h>

namespace {

constexpr int columns = 40, rows = 25, side = 20;

long Take_Event(ZVCustomEvent*)
{
    return 1;
}

/// A window with one palette and group, full of gadgets with callbacks.
struct Screen {
    ZVWindow window{};
    ZVPalette palette{};
    ZVGroup group{};
    std::vector<ZVItem> items{columns * rows};

    Screen()
    {
        for (List* list :
             {&window.palettes, &window.hooks, &palette.groups, &palette.subPalettes, &group.items})
            NewList(list);
        window.width = group.width = columns * side;
        window.height = group.height = rows * side;
        window.activePalette = &palette;
        palette.window = &window;
        group.palette = &palette;
        palette.callback = group.callback = ZVEnv->callback = [](ZVEvent*) {};
        AddTail(&ZVEnv->windows, &window.node);
        AddTail(&window.palettes, &palette.node);
        AddTail(&palette.groups, &group.node);
        for (int i = 0; i < columns * rows; ++i)
            Place(items[static_cast<std::size_t>(i)], i % columns * side, i / columns * side);
    }
    ~Screen() { Remove(&window.node); }
    Screen(Screen const&) = delete;
    Screen& operator=(Screen const&) = delete;

private:
    void Place(ZVItem& item, int x, int y)
    {
        item.kind = ZV_ITEM_GADGET;
        item.group = &group;
        item.x = x;
        item.y = y;
        item.width = item.height = side - 2;
        item.callback = palette.callback;
        item.customFunc = Take_Event;
        AddTail(&group.items, &item.node);
    }
};

void Measure_Movement(benchmark::State& state)
{
    Bench::Session const session;
    Screen const screen;
    long step = 0;
    for (auto _ : state) {
        // To and fro between the last two gadgets, so that one is left and one entered each time.
        long const x = (columns - 1 - (++step & 1)) * side + 5;
        state.SetIterationTime(Bench::Time([=] {
            Handle_MouseMove(x, rows * side - 10);
            Do_Event(ZV_EVENT_MOUSE_MOVE, 0);
        }));
    }
    state.counters["limit_us"] = 20.0;
}

BENCHMARK(Measure_Movement)
    ->Name("Events/move/1000")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(20000);

}  // namespace
