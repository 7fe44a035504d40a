// The records of the window preferences, on the environment's `windowPrefs`.
#pragma once

#include "interface/Records.h"

#include "ZVFile.h"

/// Where a window was, with the palettes that were in it.
struct ZVWindowPrefs {
    Node node;          ///< without a name
    uint32_t pseudoId;  ///< of a pseudo-window; 0 for a system window
    List palettes;      ///< ZVPalettePrefs
    int32_t x, y;       ///< `left` and `top` of the window
};

struct ZVPalettePrefs {
    Node node;              ///< name: the palette's preference name
    uint32_t active;        ///< it was the active palette of its window
    uint32_t hidden;        ///< it was not open when the file was written or the interface taken down
    int32_t width, height;  ///< that of a floater with its tab bar
    bool isOfThisRun;       ///< made of an open palette; it is hidden from when that one closes
};

inline Records<ZVWindowPrefs> All_WindowPrefs()
{
    return Records<ZVWindowPrefs>(ZVEnv->windowPrefs);
}
inline Records<ZVPalettePrefs> Palettes_Of(ZVWindowPrefs const& window)
{
    return Records<ZVPalettePrefs>(window.palettes);
}

/// New records at the end of their lists. Null when memory runs out, which is no error.
ZVWindowPrefs* Add_Window_Prefs(uint32_t pseudoId, int32_t x, int32_t y);
ZVPalettePrefs* Add_Palette_Prefs(ZVWindowPrefs& window, char const* name);

/// Whether there is an open palette of that name whose preferences are kept.
bool Is_Open(char const* name);

/// What is open now counts from here on as what a last run has left open.
void Seal_WindowPrefs();

/// Reads a preferences file into the list, behind what is there. 1, or 0 for one that does not count.
ZV_API long Read_WindowPrefs(ZVFileInfo* file);
