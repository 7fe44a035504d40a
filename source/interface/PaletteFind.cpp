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

/// Among the palettes in windows and those under construction.
template <typename Matches> static bool Is_Any(Matches matches)
{
    return Find_Palette(matches) || (ZVEnv && Find_Below(Root_Of(ZVEnv->buildingPalette), matches));
}

bool Is_Palette(ZVPalette const* palette)
{
    return palette && Is_Any([=](ZVPalette const* other) { return other == palette; });
}

static bool Exists(ZVPalette const* palette, uint32_t serial)
{
    return palette &&
           Is_Any([=](ZVPalette const* other) { return other == palette && other->serial == serial; });
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
        if (!Is_Any(hasId)) return id;
    }
    return 0;
}
