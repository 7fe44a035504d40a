// A list of 100000 entries on the desktop in memory: until it is shown, and a turn of the wheel over it with
// the drawing of the rows.
#include "BenchTools.h"

#include <ZVLib.h>

#include <cstdlib>
#include <string>

namespace {

constexpr int Entries = 100000;
constexpr unsigned short PaletteId = 1, ListId = 1;

class Interface {
public:
    Interface()
    {
        setenv("ZV_HOST", "headless", 1);
        InitZV(nullptr, nullptr, nullptr, nullptr, nullptr);
        NewList(&entries_);
        for (int i = 0; i < Entries; ++i)
            Add_Node(&entries_, ("Entry " + std::to_string(i)).c_str());
    }
    ~Interface()
    {
        Free_List(&entries_);
        CleanUpZV();
    }
    Interface(Interface const&) = delete;
    Interface& operator=(Interface const&) = delete;

    void Show()
    {
        InitPaletteZV();
        InitGroupZV();
        AddGadgetZV(ListId, 0, 0, ZV_GAD_LIST, ZV_SIZE_XXLARGE, "", ZV_ITEM_ENTRIES, &entries_, ZV_ITEM_ROWS,
                    40, 0);
        EndGroupZV(1, 0, 0, "", nullptr);
        EndPaletteZV(PaletteId, "list", nullptr);
        DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_DOCUMENT, 0);
        HeadlessRunZV(1);
    }

private:
    List entries_;
};

void Show_List(benchmark::State& state)
{
    Interface interface;
    for (auto _ : state) {
        interface.Show();
        ClosePaletteZV(PaletteId);
    }
}
BENCHMARK(Show_List)->Name("List/show/100000")->Unit(benchmark::kMillisecond);

void Scroll_List(benchmark::State& state)
{
    Interface interface;
    interface.Show();
    SetCurrentPaletteZV(PaletteId);
    long x = 0, y = 0;
    GetItemScreenPosZV(FindItemZV(ListId), &x, &y);
    HeadlessMoveZV(x + 20, y + 20);
    for (auto _ : state) {
        HeadlessWheelZV(0, -1);
        HeadlessRunZV(1);
    }
    state.counters["limit_ms"] = 1000.0 / 60;
}
BENCHMARK(Scroll_List)->Name("List/scroll/100000")->Unit(benchmark::kMillisecond);

}  // namespace
