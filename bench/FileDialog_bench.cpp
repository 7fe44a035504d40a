// A file dialog on a directory of 50000 files, on the desktop in memory: until all of them are in the list,
// and a step of the scroll bar with the drawing of all rows in view.
#include "BenchTools.h"

#include <ZVLibInternal.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

namespace {

constexpr int Files = 50000;
constexpr unsigned short BarId = 6;  ///< the scroll bar of the dialog

std::function<void(ZVPalette&)> onTick;

void On_Event(ZVEvent* event)
{
    if (event->type == ZV_EVENT_TICK && !event->palette && ZVEnv->modalPalette) onTick(*ZVEnv->modalPalette);
}

class Desktop {
public:
    Desktop()
    {
        std::string pattern = std::filesystem::temp_directory_path() / "zvbench.XXXXXX";
        directory_ = mkdtemp(pattern.data());
        for (int i = 0; i < Files; ++i)
            std::ofstream(directory_ + "/shot" + std::to_string(i * 7919 % Files) + ".vpb");
        setenv("ZV_HOST", "headless", 1);
        setenv("KL_APP_DATA_DIR", directory_.c_str(), 1);
        InitZV(On_Event, nullptr, nullptr, nullptr, nullptr);
        InitFormatModulesZV(nullptr);
    }
    ~Desktop()
    {
        CleanUpZV();
        std::filesystem::remove_all(directory_);
    }
    Desktop(Desktop const&) = delete;
    Desktop& operator=(Desktop const&) = delete;

    /// Shows the dialog, which `step` is called for at each tick from when all files are in the list.
    void Ask(std::function<void(ZVPalette&, ZVItem&)> const& step) const
    {
        char spec[ZV_SPEC_SIZE];
        FSSpec place;
        std::snprintf(place.path, sizeof place.path, "%s", directory_.c_str());
        GetDOSPathZV(spec, &place);
        onTick = [&step](ZVPalette& palette) {
            ZVItem* const bar = FindItem2ZV(&palette, BarId);
            if (bar->maxInt >= Files) step(palette, *bar);
        };
        FreeFileSpecZV(AskFileNameZV(ZV_ASK_DIRECTORY, spec, ZV_ASK_FORMATS, 0, 0));
    }

private:
    std::string directory_;
};

void Show_Files(benchmark::State& state)
{
    Desktop const desktop;
    for (auto _ : state)
        desktop.Ask([](ZVPalette& palette, ZVItem&) { ClosePaletteZV(&palette); });
    state.counters["limit_ms"] = 300;
}
BENCHMARK(Show_Files)->Name("FileDialog/show/50000")->Unit(benchmark::kMillisecond)->UseRealTime();

void Scroll_Files(benchmark::State& state)
{
    Desktop const desktop;
    desktop.Ask([&state](ZVPalette& palette, ZVItem& bar) {
        int row = 0;
        for (auto _ : state) {
            row = (row + 37) % (Files - 100);
            SetGadgetStateZV(&bar, row);
            Do_Event(ZV_EVENT_GADGET, Tag_Word(&bar));
            Refresh_GUI();
        }
        ClosePaletteZV(&palette);
    });
    state.counters["limit_ms"] = 1000.0 / 60;
}
BENCHMARK(Scroll_Files)->Name("FileDialog/scroll/50000")->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
