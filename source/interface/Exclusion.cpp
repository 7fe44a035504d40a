// Gadgets that exclude one another: when one turns on, the others turn off. They share one list of actions,
// in which a gadget's action on itself is nothing.
#include "interface/Dependency.h"
#include "interface/Records.h"

static constexpr unsigned long HighestId = 65535;

/// Makes the gadgets exclude one another that `idAt` names by 0 to `count` - 1.
template <typename IdAt> static void Exclude(unsigned long count, IdAt idAt)
{
    if (!ZVEnv || !ZVEnv->currentPalette) return;
    SharedTags* const list = New_Shared_Tags(count + 1);
    if (!list) return;
    list->Tags()[0] = {ZV_DEP_ON, 0};
    for (unsigned long i = 0; i < count; ++i)
        list->Tags()[i + 1] = {ZV_DEP_SET_OFF, idAt(i)};
    list->holders = 1;
    bool isShared = false;
    for (unsigned long i = 0; i < count; ++i) {
        ZVItem* const item = FindItemZV(static_cast<unsigned short>(idAt(i)));
        if (!item || !Append_Dependency(*item, list, isShared)) continue;
        item->flags |= ZV_ITEMF_EXCLUSIVE;
        isShared = true;
    }
    Release_Tags(list);
}

void SetItemExclusionRangeZV(unsigned long first, unsigned long last)
{
    last = last < HighestId ? last : HighestId;
    if (first > last) return;
    Exclude(last - first + 1, [first](unsigned long i) { return first + i; });
}

void Set_Item_Exclusion(unsigned long const* ids)
{
    unsigned long count = 0;
    while (ids && ids[count])
        ++count;
    if (count) Exclude(count, [ids](unsigned long i) { return ids[i]; });
}
