// Palettes as such: starting and ending their declaration, and their names and flags.
#include "interface/PaletteTree.h"

ZVPalette* InitPaletteZV()
{
    if (!ZVEnv) return nullptr;
    SetError(ZV_ERR_NONE);
    auto* const palette = New_Record<ZVPalette>();
    if (!palette) return nullptr;
    NewList(&palette->groups);
    NewList(&palette->subPalettes);
    palette->position = ZV_Position(ZV_POS_CENTER, ZV_POS_CENTER);
    palette->forcedWidth = palette->forcedHeight = -1;
    palette->kind = ZV_KIND_FIXED;
    palette->serial = ++ZVEnv->paletteCount;
    palette->freeItemId = 32767;
    if (ZVPalette* parent = ZVEnv->buildingPalette) {
        palette->parent = parent;
        AddTail(&parent->subPalettes, &palette->node);
    }
    ZVEnv->buildingPalette = ZVEnv->currentPalette = palette;
    return palette;
}

static void Set_Palette_Name(ZVPalette& palette, char const* name)
{
    if (Replace_Text(palette.node.name, name)) palette.title = palette.node.name;
}

/// The tags that count when a declaration ends.
static void Take_End_Tags(ZVPalette& palette, TagItem* tags)
{
    while (TagItem const* tag = NextTagItem(&tags)) {
        switch (tag->tag) {
        case ZV_PAL_CURSOR: palette.cursor = static_cast<uint16_t>(tag->data); break;
        case ZV_PAL_CALLBACK: palette.callback = Tag_Pointer<void (*)(ZVEvent*)>(*tag); break;
        case ZV_PAL_KEY_SECTION: palette.keySection = Tag_Pointer<ZVKeySection*>(*tag); break;
        case ZV_PAL_PREF_NAME:
            if (tag->data) Replace_Text(palette.prefName, Tag_Pointer<char const*>(*tag));
            break;
        case ZV_PAL_TAB_PRIORITY: palette.tabPriority = Tag_Number(*tag); break;
        default: break;
        }
    }
}

bool EndPaletteZV(unsigned short id, char const* name, TagItem* tags)
{
    ZVPalette* const palette = ZVEnv ? ZVEnv->buildingPalette : nullptr;
    if (!palette) return false;
    palette->node.id = id ? id : Free_Palette_Id();
    Set_Palette_Name(*palette, name);
    if (TagItem* clone = Clone_Tags(tags)) {
        FreeMemZV(palette->tags);
        palette->tags = clone;
    }
    Take_End_Tags(*palette, tags);
    if (palette->parent) ZVEnv->buildingPalette = ZVEnv->currentPalette = palette->parent;
    return GetErrorZV() == ZV_ERR_NONE;
}

bool EndPaletteZV(unsigned short id, unsigned long nameId, TagItem* tags)
{
    return EndPaletteZV(id, Text_Of_Id(nameId), tags);
}

void SetCurrentPaletteZV(ZVPalette* palette)
{
    if (ZVEnv) ZVEnv->currentPalette = Is_Palette(palette) ? palette : nullptr;
}

void SetCurrentPaletteZV(unsigned short id)
{
    if (ZVPalette* palette = FindPaletteZV(id)) SetCurrentPaletteZV(palette);
}

unsigned short GetCurrentPaletteZV()
{
    return ZVEnv && ZVEnv->currentPalette ? static_cast<unsigned short>(ZVEnv->currentPalette->node.id) : 0;
}

void SetPaletteNameZV(ZVPalette* palette, char const* name)
{
    if (!Is_Palette(palette)) return;
    Set_Palette_Name(*palette, name);
    ZVWindow* const window = palette->window;
    if (!window) return;
    if (window->activePalette == palette && window->sysWindow && !window->name)
        Set_SysWindowName(window, Window_Title(*window));
    if (palette->kind == ZV_KIND_FLOATER) RenderTabs(window);
}

void SetPaletteNameZV(ZVPalette* palette, unsigned long nameId)
{
    SetPaletteNameZV(palette, Text_Of_Id(nameId));
}

void SetPaletteNameZV(unsigned short id, char const* name)
{
    SetPaletteNameZV(FindPaletteZV(id), name);
}

void SetPaletteNameZV(unsigned short id, unsigned long nameId)
{
    SetPaletteNameZV(FindPaletteZV(id), Text_Of_Id(nameId));
}

void Draw_Mark(ZVPalette* palette)
{
    static constexpr uint32_t markColor = 0xFFFFFF00;  // no pen, but a plain yellow
    ZVDrawInfo* const draw = DrawBeginZV(palette);
    SetPenZV(draw, palette->flags & ZV_PALF_HILITED ? markColor : uint32_t{ZV_PEN_PALETTE});
    DrawRectZV(draw, 1, 1, palette->width - 2, palette->height - 2);
    DrawEndZV(draw);
}

void HilitePaletteZV(ZVPalette* palette, long on)
{
    if (!Is_Palette(palette)) return;
    palette->flags &= ~ZV_PALF_HILITED;
    if (on) palette->flags |= ZV_PALF_HILITED;
    Draw_Mark(palette);
}

void SupressPaletteActivationZV(ZVPalette* palette, long on)
{
    if (!Is_Palette(palette)) return;
    palette->flags &= ~ZV_PALF_NO_ACTIVATE;
    if (on) palette->flags |= ZV_PALF_NO_ACTIVATE;
}

void SupressPaletteActivationZV(unsigned short id, long on)
{
    SupressPaletteActivationZV(FindPaletteZV(id), on);
}

void SetScrollPosZV(ZVPalette* palette, TagItem* tags)
{
    if (!Is_Palette(palette)) return;
    while (TagItem const* tag = NextTagItem(&tags))
        if (tag->tag >= ZV_SCROLL_H_MIN && tag->tag <= ZV_SCROLL_V_VALUE)
            palette->scroll[tag->tag - ZV_SCROLL_H_MIN] = Tag_Number(*tag);
    ZVWindow* const window = palette->window;
    if (window && window->sysWindow && window->activePalette == palette) Move_Sliders(window);
}
