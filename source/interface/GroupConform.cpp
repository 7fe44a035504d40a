// Groups that agree in size.
#include "interface/Records.h"

#include <algorithm>

namespace {
/// One axis of a group.
struct GroupAxis {
    int32_t ZVGroup::*start, ZVGroup::*size, ZVGroup::*forced;
};
constexpr GroupAxis across{&ZVGroup::x, &ZVGroup::width, &ZVGroup::forcedWidth};
constexpr GroupAxis down{&ZVGroup::y, &ZVGroup::height, &ZVGroup::forcedHeight};
}  // namespace

/// Calls `visit` for the groups of a list of ids that there are.
template <typename Visit>
static void For_Groups(ZVPalette const& palette, unsigned long const* ids, Visit visit)
{
    for (; *ids; ++ids)
        if (ZVGroup* group = Find_Record<ZVGroup>(palette.groups, *ids)) visit(*group);
}

static void Conform(GroupAxis const& axis, unsigned long mode, unsigned long const* ids)
{
    ZVPalette* const palette = ZVEnv ? ZVEnv->currentPalette : nullptr;
    if (!palette || !ids || !*ids) return;
    for (ZVGroup& group : Groups_Of(*palette))
        SetUp_Gadgets(&group);
    Build_Groups(palette, -1, -1);

    if (mode == 1) {
        int32_t greatest = 0;
        For_Groups(*palette, ids, [&](ZVGroup& group) { greatest = std::max(greatest, group.*axis.size); });
        For_Groups(*palette, ids, [&](ZVGroup& group) { group.*axis.forced = greatest; });
    } else if (mode == 2) {
        ZVGroup* const target = Find_Record<ZVGroup>(palette->groups, *ids);
        int32_t low = INT32_MAX, high = INT32_MIN;
        For_Groups(*palette, ids + 1, [&](ZVGroup& group) {
            low = std::min(low, group.*axis.start);
            high = std::max(high, group.*axis.start + group.*axis.size);
        });
        if (target && high != INT32_MIN) target->*axis.forced = high - low;
    }
}

void Conform_Groups_Width(unsigned long mode, unsigned long const* ids)
{
    Conform(across, mode, ids);
}

void Conform_Groups_Height(unsigned long mode, unsigned long const* ids)
{
    Conform(down, mode, ids);
}
