#include "CycleEntry.h"

#include "ZVEnvironment.h"
#include "ZVIcon.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

static constexpr double markedShade = 0.75;  // of the palette's background, towards which a marked text goes
static constexpr int32_t wheelNotch = 40;

CycleState* State_Of_Cycle(ZVItem const& item)
{
    bool const isCycle = item.kind == ZV_ITEM_GADGET && item.customFunc == CycleCustomFunc;
    return isCycle ? static_cast<CycleState*>(item.object) : nullptr;
}

long Chosen_Index(ZVItem const& cycle)
{
    return std::max(Find_IndexID(&cycle.entries, static_cast<uint32_t>(cycle.state)), 0L);
}

bool Is_Separator(Node const& entry)
{
    return entry.name && std::strcmp(entry.name, "_") == 0;
}

bool Is_Marked_Disabled(ZVItem const& cycle, long index)
{
    CycleState const* const state = State_Of_Cycle(cycle);
    if (!state || index < 0 || index >= markableEntries) return false;
    return state->DisabledMask[index / 32] >> (index % 32) & 1;
}

long Entry_From(ZVItem const& cycle, long index, long steps)
{
    long const last = List_Entries(&cycle.entries) - 1, onward = steps < 0 ? -1 : 1;
    auto const isPassedOver = [&](long entry) {
        return Is_Separator(*List_Entry(&cycle.entries, entry)) || Is_Marked_Disabled(cycle, entry);
    };
    long target = std::clamp(index + steps, 0L, std::max(last, 0L));
    while (target >= 0 && target <= last && isPassedOver(target))
        target += onward;
    return target < 0 || target > last ? index : target;
}

void EnableCycleGadEntry(ZVItem* item, unsigned long entryId, long enable)
{
    CycleState* const state = item ? State_Of_Cycle(*item) : nullptr;
    if (!state) return;
    if (entryId == 0) {
        std::fill(std::begin(state->DisabledMask), std::end(state->DisabledMask), enable ? 0U : ~0U);
    } else {
        long const index = Find_IndexID(&item->entries, entryId);
        if (index < 0 || index >= markableEntries) return;
        uint32_t const bit = uint32_t{1} << (index % 32);
        uint32_t& word = state->DisabledMask[index / 32];
        word = enable ? word & ~bit : word | bit;
    }
    UpdateGadgetZV(state->ListItem);
}

/// The number behind the backslash of an entry that stands for an icon; 0 for every other entry.
static unsigned long Icon_Id(Node const& entry)
{
    char const* const text = entry.name;
    if (!text || text[0] != '\\' || text[1] == 0) return 0;
    if (text[1 + std::strspn(text + 1, "0123456789")] != 0) return 0;
    return std::strtoul(text + 1, nullptr, 10);
}

bool Has_Icon(Node const& entry)
{
    return Icon_Id(entry) != 0;
}

long Entry_Width(Node const& entry)
{
    if (Is_Separator(entry)) return 0;
    if (!Has_Icon(entry)) return GetTextWidthZV(nullptr, entry.name);
    ZVBitmap const* const icon = FindIconZV(Icon_Id(entry));
    return icon ? icon->Width : 0;
}

NativeBitmap Entry_Picture(Node const& entry, EntryLook const& look)
{
    ZVBitmap const* const icon = FindIconZV(Icon_Id(entry));
    if (!icon) return nullptr;
    NativeBitmap picture(AllocNativeBitmapZV(icon->Width, icon->Height, 32));
    if (!picture) return picture;
    Bitmap const colored = look.cycle.hasImageColor ? Colored_Icon(*icon, look.cycle.imageColor) : nullptr;
    FillBitmapZV(picture.get(), GetColorZV(look.background));
    AlphaCopyBitmapZV(colored ? colored.get() : icon, picture.get(), look.background, 0, 0, icon->Width,
                      icon->Height, 0, 0);
    if (look.isDisabled) DisableBitmapZV(picture.get(), nullptr);
    return picture;
}

/// Half way from the text's colour to that of what is out of use.
static unsigned long Marked_Color()
{
    unsigned long const text = GetColorZV(ZV_PEN_TEXT), shade = ShadeColorZV(ZV_PEN_PALETTE, markedShade);
    unsigned long mean = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        auto const from = static_cast<long>(shade >> shift & 0xFF);
        auto const to = static_cast<long>(text >> shift & 0xFF);
        mean |= static_cast<unsigned long>(from + (to - from) / 2) << shift;
    }
    return mean;
}

void Set_Entry_Pens(ZVDrawInfo* draw, EntryLook const& look)
{
    bool const isMarked = Is_Marked_Disabled(look.cycle, look.index);
    SetPenZV(draw, isMarked ? Shown_Color(Marked_Color(), look.isDisabled) : look.text);
    SetBGPenZV(draw, look.background);
    if (isMarked) SetFontZV(draw, ZV_FONT_ITALIC);
}

long Wheel_Steps(int32_t delta, int32_t& rest)
{
    if ((delta < 0) != (rest < 0)) rest = 0;
    int32_t const turned = rest + delta;
    rest = turned % wheelNotch;
    return -(turned / wheelNotch);
}
