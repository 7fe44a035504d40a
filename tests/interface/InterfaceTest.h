// Base of the fixtures of interface tests.
#pragma once

#include "native/DesktopTest.h"

#include <algorithm>

class InterfaceTest : public DesktopTest {
protected:
    /// A palette with one group of one gadget, displayed, whose events are logged.
    static ZVPalette* Show(unsigned short id, ZVKind kind = ZV_KIND_FIXED, TagItem* more = nullptr)
    {
        InitPaletteZV();
        InitGroupZV();
        AddGadgetZV(1, 0, 0, ZV_GAD_CUSTOM, ZV_SIZE_CUSTOM, "", ZV_ITEM_WIDTH, 100, ZV_ITEM_HEIGHT, 20);
        EndGroupZV(1, 0, 0, "", 0, 0);
        ZVPalette* const palette = ZVEnv->buildingPalette;
        EndPaletteZV(id, "palette", ZV_PAL_CALLBACK, Callback);
        TagItem tags[] = {{ZV_PAL_KIND, kind}, {ZV_TAG_MORE, Tag_Word(more)}};
        return DisplayPaletteZV(tags) ? palette : nullptr;
    }

    static long Count(std::string const& line) { return std::count(log.begin(), log.end(), line); }
};
