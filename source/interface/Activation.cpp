// Which document and which palette are active, and who is told of a change. A document and a floater can be
// active side by side.
#include "PaletteTree.h"

#include "ZVLibInternal.h"

/// Sends an event to the palette that has been active, if it is another one and still there.
static void Retire(uint16_t type, ZVPalette* old, ZVPalette const* successor)
{
    if (old && old != successor && FindPaletteZV(old)) Do_Event(type, Tag_Word(old));
}

/// A document takes the place of another one only. False when an event has closed it.
static bool Activate_Document(ZVPalette* palette, LivingPalette const& watch)
{
    Retire(ZV_EVENT_DOC_DEACTIVATE, ZVEnv->activeDocument, palette);
    Retire(ZV_EVENT_DEACTIVATE, ZVEnv->activePalette, palette);
    if (!watch.Is_Known()) return false;
    if (ZVEnv->activeDocument == palette) return true;
    ZVEnv->activeDocument = palette;
    Do_Event(ZV_EVENT_DOC_ACTIVATE, Tag_Word(palette));
    return watch.Is_Known();
}

void Do_WindowActivation(ZVWindow* window)
{
    ZVPalette* const palette = window->activePalette ? window->activePalette : ZVEnv->pendingPalette;
    if (!palette || palette->flags & ZV_PALF_NO_ACTIVATE) return;
    ZVEnv->pendingPalette = nullptr;

    LivingPalette const watch(palette);
    switch (palette->kind) {
    case ZV_KIND_DOCUMENT:
        if (!Activate_Document(palette, watch) || ZVEnv->activePalette == palette) return;
        break;
    case ZV_KIND_FLOATER:
    case ZV_KIND_FIXED:
        if (ZVEnv->activePalette == palette) return;
        Retire(ZV_EVENT_DEACTIVATE, ZVEnv->activePalette, palette);
        if (!watch.Is_Known()) return;
        break;
    default: return;  // dialogs, pop-ups and the windows behind the palettes take no part
    }
    ZVEnv->activePalette = palette;
    Do_Event(ZV_EVENT_ACTIVATE, Tag_Word(palette));
}
