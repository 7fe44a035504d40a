// Window preferences files: what is read can be written and read again, and palettes open by it on the
// desktop in memory, whatever sizes and places it tells.
#include "interface/WindowPrefs.h"

#include "ZVWindowPrefs.h"

#include <cstdlib>
#include <string>
#include <vector>

static std::string Written()
{
    std::vector<char> block(1 << 20);
    ZVFileInfo* const file = OpenFileinMemoryZV(block.data(), block.size(), ZVFilePermWrite);
    long const isWhole = SaveWindowPositionsZV(file);
    CloseFileZV(file);
    return isWhole ? std::string(block.data()) : std::string();
}

static long Read(std::vector<char> bytes)
{
    FreeWindowPrefsZV();
    ZVFileInfo* const file = OpenFileinMemoryZV(bytes.data(), bytes.size(), ZVFilePermRead);
    long const counts = Read_WindowPrefs(file);
    CloseFileZV(file);
    return counts;
}

/// Opens palettes of the first names in the file.
static void Open_Palettes()
{
    std::vector<std::string> names;
    for (ZVWindowPrefs const& window : All_WindowPrefs())
        for (ZVPalettePrefs const& palette : Palettes_Of(window))
            if (names.size() < 4) names.emplace_back(palette.node.name);
    unsigned long kind = ZV_KIND_FLOATER;
    for (std::string const& name : names) {
        InitPaletteZV();
        EndPaletteZV(0, name.c_str(), nullptr);
        DisplayPaletteZV(ZV_PAL_KIND, kind, ZV_PAL_FLAGS, ZV_PALF_SIZE_BOTH, 0);
        kind = kind == ZV_KIND_FLOATER ? ZV_KIND_FIXED : ZV_KIND_FLOATER;
    }
}

static ZVPalette* Any_Palette()
{
    for (ZVWindow const& window : All_Windows())
        if (Node* palette = List_First(&window.palettes)) return reinterpret_cast<ZVPalette*>(palette);
    return nullptr;
}

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    static ZVEnvironment* const environment = [] {
        setenv("ZV_HOST", "headless", 1);
        return InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_ROOT_WINDOW, 1, 0);
    }();
    if (!environment) std::abort();
    static ZVWindow* const pseudo = AddPseudoWindowZV(3, 0, 0, 200, 100, nullptr);
    if (!pseudo) std::abort();
    if (!Read({data, data + size})) return 0;
    std::string const once = Written();
    if (once.empty()) return 0;
    if (!Read({once.begin(), once.end()}) || Written() != once) std::abort();
    Open_Palettes();
    Snapshot_WindowPrefs();
    while (ZVPalette* const palette = Any_Palette())
        ClosePaletteZV(palette);
    return 0;
}
