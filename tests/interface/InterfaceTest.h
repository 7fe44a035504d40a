// Base of the fixtures of interface tests.
#pragma once

#include "TestEnvironment.h"
#include "interface/FakeDesktop.h"

/// A running library with one monitor of 1600 by 1200.
class InterfaceTest : public EnvironmentTest {
protected:
    InterfaceTest()
    {
        FakeDesktop::Reset();
        ZVEnv->monitorCount = 1;
        ZVEnv->monitors[0] = {0, 0, 1600, 1200};
    }
    ~InterfaceTest() override { CleanUpWindowsZV(); }

    /// A palette with one group of one gadget, displayed.
    static ZVPalette* Show(unsigned short id, ZVKind kind = ZV_KIND_FIXED,
                           void (*callback)(ZVEvent*) = nullptr, TagItem* more = nullptr)
    {
        InitPaletteZV();
        InitGroupZV();
        AddGadgetZV(1, 0, 0, ZV_GAD_CUSTOM, ZV_SIZE_CUSTOM, "", ZV_ITEM_WIDTH, 100, ZV_ITEM_HEIGHT, 20);
        EndGroupZV(1, 0, 0, "", 0, 0);
        ZVPalette* const palette = ZVEnv->buildingPalette;
        EndPaletteZV(id, "palette", ZV_PAL_CALLBACK, callback);
        TagItem tags[] = {{ZV_PAL_KIND, kind}, {ZV_TAG_MORE, Tag_Word(more)}};
        return DisplayPaletteZV(tags) ? palette : nullptr;
    }
};
