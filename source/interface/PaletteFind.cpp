// Palettes among one another: walking their trees and finding them, also by pointers that may be stale.
#include "interface/PaletteTree.h"

#include <strings.h>

static ZVPalette* First_Palette(List const& list)
{
    return reinterpret_cast<ZVPalette*>(List_First(&list));
}

ZVPalette* Next_Below(ZVPalette* root, ZVPalette* palette)
{
    if (!palette) return root;
    if (ZVPalette* sub = First_Palette(palette->subPalettes)) return sub;
    for (; palette && palette != root; palette = palette->parent)
        if (Node* next = List_Next(&palette->node)) return reinterpret_cast<ZVPalette*>(next);
    return nullptr;
}

ZVPalette* Get_Next_Palette(ZVWindow* window, ZVPalette* palette)
{
    if (!palette) return window ? First_Palette(window->palettes) : nullptr;
    if (ZVPalette* sub = First_Palette(palette->subPalettes)) return sub;
    for (; palette; palette = palette->parent)
        if (Node* next = List_Next(&palette->node)) return reinterpret_cast<ZVPalette*>(next);
    return nullptr;
}

template <typename Matches> static ZVPalette* Find_Below(ZVPalette* root, Matches matches)
{
    for (ZVPalette* palette = root; palette; palette = Next_Below(root, palette))
        if (matches(palette)) return palette;
    return nullptr;
}

/// The first palette that `matches` in all windows, and on its way into one.
template <typename Matches> static ZVPalette* Find_Palette(Matches matches)
{
    if (!ZVEnv) return nullptr;
    for (ZVWindow& window : All_Windows())
        for (ZVPalette* palette = nullptr; (palette = Get_Next_Palette(&window, palette));)
            if (matches(palette)) return palette;
    return Find_Below(ZVEnv->displayedPalette, matches);
}

ZVPalette* FindPaletteZV(ZVPalette const* palette)
{
    return Find_Palette([palette](ZVPalette const* other) { return other == palette; });
}

ZVPalette* FindPaletteZV(unsigned short id)
{
    return Find_Palette([id](ZVPalette const* palette) { return palette->node.id == id; });
}

ZVPalette* FindPaletteZV(char const* name)
{
    if (!name) return nullptr;
    return Find_Palette([name](ZVPalette const* palette) {
        return palette->node.name && strcasecmp(palette->node.name, name) == 0;
    });
}

/// Of a palette in a window or under construction.
static bool Exists(ZVPalette const* palette, uint32_t serial)
{
    auto const isIt = [=](ZVPalette const* other) { return other == palette && other->serial == serial; };
    return palette && (Find_Palette(isIt) || Find_Below(Root_Of(ZVEnv->buildingPalette), isIt));
}

bool LivingPalette::Is_Known() const
{
    return Exists(palette_, serial_);
}

bool LivingPalette::Is_There() const
{
    return Is_Known() && !(palette_->flags & ZV_PALF_CLOSING);
}

CurrentPalette::CurrentPalette(ZVPalette* palette)
    : old_(ZVEnv->currentPalette), oldSerial_(old_ ? old_->serial : 0)
{
    ZVEnv->currentPalette = palette;
}

CurrentPalette::~CurrentPalette()
{
    ZVEnv->currentPalette = Exists(old_, oldSerial_) ? old_ : nullptr;
}

uint16_t Free_Palette_Id()
{
    for (uint16_t id = 64999; id > 0; --id) {
        auto const hasId = [id](ZVPalette const* palette) { return palette->node.id == id; };
        if (!Find_Palette(hasId) && !Find_Below(Root_Of(ZVEnv->buildingPalette), hasId)) return id;
    }
    return 0;
}
