// Showing and hiding palettes.
#include "interface/PaletteTree.h"

/// False when the palette is gone.
static bool Show_Groups(ZVPalette& palette, bool visible)
{
    LivingPalette const watch(&palette);
    for (ZVGroup& group : Groups_Of(palette)) {
        if (visible)
            Make_SysGroup(&group);
        else
            Destroy_SysGroup(&group);
        if (!watch.Is_Known()) return false;
    }
    for (ZVPalette& sub : Sub_Palettes_Of(palette))
        if (!(sub.flags & ZV_PALF_HIDDEN) && !Show_Groups(sub, visible)) return false;
    return true;
}

void Palette_Visible(ZVPalette& palette, bool visible)
{
    if (visible == !(palette.flags & ZV_PALF_HIDDEN)) return;
    // Items are drawn, and erased, only while their palette is not hidden.
    if (visible) palette.flags &= ~ZV_PALF_HIDDEN;
    if (!Show_Groups(palette, visible)) return;
    if (!visible) palette.flags |= ZV_PALF_HIDDEN;
    if (palette.window) Mac_Validate(palette.window, {palette.x, palette.y, palette.width, palette.height});
}

void PaletteVisibleZV(ZVPalette* palette, long visible)
{
    if (!Is_Palette(palette) || (visible != 0) == !(palette->flags & ZV_PALF_HIDDEN)) return;
    if (!palette->window || !Is_Shown(palette->parent)) {
        palette->flags ^= ZV_PALF_HIDDEN;
        return;
    }
    if (visible && !palette->parent && palette->window->activePalette != palette) {
        // It lies behind another one: to be seen it has to take its place.
        NewActivePalette(palette->window, palette, 0, 0, 1);
        return;
    }
    LivingPalette const watch(palette);
    Palette_Visible(*palette, visible);
    if (watch.Is_There() && palette->kind == ZV_KIND_FLOATER)
        Do_Event(visible ? ZV_EVENT_TAB_ACTIVATE : ZV_EVENT_TAB_DEACTIVATE, Tag_Word(palette));
}

long IsPaletteVisibleZV(ZVPalette const* palette)
{
    return Is_Palette(palette) && Is_Shown(palette);
}

void RenderTabs(ZVWindow* window)
{
    if (!window) return;
    for (ZVPalette const& palette : Palettes_Of(*window))
        for (ZVGroup const& group : Groups_Of(palette))
            if (group.flags & ZV_GRPF_TAB_BAR)
                for (ZVItem& item : Items_Of(group))
                    UpdateGadgetZV(&item);
}
