#include "interface/LayoutModel.h"

#include <algorithm>

namespace Model {

static bool In_Parent(int half)
{
    return half == 3 || half == 9 || half == 10;
}

static long Parent_Place(int half, long length, long size)
{
    return half == 9 ? 0 : half == 10 ? length - size : (length - size) / 2;
}

static long Distance(Gap const& gap, long standard, long free)
{
    return (gap.pixels >= 0 ? gap.pixels : standard) + gap.percent * free / 100;
}

// ---- items ------------------------------------------------------------------------------------------------

/// The room of the labels on one side of an item, up to the item `end`.
static long Labels(Group const& group, Item const& item, int side, int end, long standard, Pair const& free)
{
    int const axis = side / 2;
    long room = 0;
    for (int index : item.sides[static_cast<std::size_t>(side)]) {
        Item const& label = group.items[static_cast<std::size_t>(index)];
        if (index == end || label.out) break;
        room += Distance(label.gap, standard, free[axis]) + label.size[axis];
    }
    return room;
}

static void Place_Items(Group& group, Metrics const& metrics, Pair const& free)
{
    for (std::size_t own = 0; own < group.items.size(); ++own) {
        Item& item = group.items[own];
        auto const found = std::find_if(group.items.begin(), group.items.begin() + static_cast<long>(own),
                                        [&](Item const& other) { return other.id == item.reference; });
        bool const hasReference = found != group.items.begin() + static_cast<long>(own);
        for (int axis = 0; axis < 2; ++axis) {
            auto const a = static_cast<std::size_t>(axis);
            int const half = item.Half(axis);
            item.placed[a] = false;
            if (In_Parent(half)) continue;
            item.placed[a] = true;
            item.at[a] = item.offset[a];
            if (!hasReference || item.position == 0 || (half == 0 && !found->placed[a])) continue;
            Item const& beside = *found;
            long const before = beside.at[a], after = before + beside.size[a], size = item.size[a];
            long const gap = Distance(item.gap, metrics.itemGap, free[a]);
            int const toItem = static_cast<int>(own),
                      toBeside = static_cast<int>(found - group.items.begin());
            int const nearSide = 2 * axis, farSide = nearSide + 1;
            auto const room = [&](Item const& of, int side, int end) {
                return Labels(group, of, side, end, metrics.itemGap, free);
            };
            long place = before;
            if (half == 1) place -= room(item, farSide, toBeside);
            if (half == 2) place += room(item, nearSide, toBeside);
            if (!beside.out) {
                if (half == 1) place -= room(beside, nearSide, toItem) + gap + size;
                if (half == 2) place += room(beside, farSide, toItem) + gap + beside.size[a];
                if (half == 5) place += (beside.size[a] - size) / 2;
                if (half == 6) place = after - size;
                if (half == 7) place = before - size / 2;
                if (half == 8) place = after - size / 2;
            }
            item.at[a] += place;
        }
    }
}

/// Shifts the items to 0 on an axis; answers where the last one ends.
static long To_Origin(Group& group, std::size_t a)
{
    bool any = false;
    long low = 0, high = 0;
    for (Item const& item : group.items) {
        if (item.out || !item.placed[a]) continue;
        low = any ? std::min(low, item.at[a]) : item.at[a];
        high = any ? std::max(high, item.at[a] + item.size[a]) : item.at[a] + item.size[a];
        any = true;
    }
    for (Item& item : group.items)
        if (item.placed[a]) item.at[a] -= low;
    return high - low;
}

static void Measure_Group(Group& group, Metrics const& metrics)
{
    for (Item& item : group.items)
        item.size = item.base;
    Place_Items(group, metrics, {0, 0});
    for (std::size_t a = 0; a < 2; ++a) {
        group.natural[a] = group.out ? 0 : To_Origin(group, a);
        for (Item const& item : group.items)
            if (!group.out && !item.out && !item.placed[a])
                group.natural[a] = std::max(group.natural[a], item.size[a]);
    }
}

static bool Is_Flex(Item const& item)
{
    return item.gap.flex && !item.out;
}

static void Fill_Group(Group& group, Metrics const& metrics)
{
    Pair const inner{group.size[0] - group.margin[0] - group.margin[1],
                     group.size[1] - group.margin[2] - group.margin[3]};
    Pair const free{inner[0] - group.natural[0], inner[1] - group.natural[1]};
    for (std::size_t a = 0; a < 2; ++a) {
        long rest = free[a];
        for (Item const& item : group.items) {
            long const p = item.percent[a];
            if (p < 1) continue;
            long const wanted = rest * p / 100 + item.base[a];
            if (wanted < item.least[a]) rest -= (item.least[a] - wanted) * 100 / p;
        }
        for (Item& item : group.items)
            if (item.percent[a] >= 0)
                item.size[a] = std::max(rest * item.percent[a] / 100 + item.base[a], item.least[a]);
    }
    Place_Items(group, metrics, free);
    long const flexCount = std::count_if(group.items.begin(), group.items.end(), Is_Flex);
    for (std::size_t a = 0; a < 2; ++a) {
        long const end = To_Origin(group, a);
        int const half = group.content >> (8 * a) & 0xFF;
        long shift = half == 3 ? free[a] / 2 : half == 6 || half == 10 ? free[a] : 0;
        bool const spreads = std::any_of(group.items.begin(), group.items.end(), [a](Item const& item) {
            int const own = item.Half(static_cast<int>(a));
            return Is_Flex(item) && (own == 1 || own == 2);
        });
        if (spreads) shift = 0;
        for (Item& item : group.items) {
            int const own = item.Half(static_cast<int>(a));
            if (Is_Flex(item) && own == 2) shift += (inner[a] - end) / flexCount;
            item.at[a] = item.placed[a] ? item.at[a] + shift : Parent_Place(own, inner[a], item.size[a]);
        }
    }
}

// ---- groups -----------------------------------------------------------------------------------------------

namespace {
struct Box {
    bool any = false;
    Pair low{}, high{-1, -1};  ///< inclusive
    void Add(Pair const& at, Pair const& size)
    {
        for (std::size_t a = 0; a < 2; ++a) {
            long const end = at[a] + size[a] - 1;
            low[a] = any ? std::min(low[a], at[a]) : at[a];
            high[a] = any ? std::max(high[a], end) : end;
        }
        any = true;
    }
    Pair Size() const { return {high[0] - low[0] + 1, high[1] - low[1] + 1}; }
};
}  // namespace

static Group* Find_Group(Palette& palette, int id)
{
    for (Group& group : palette.groups)
        if (id && group.id == id) return &group;
    return nullptr;
}

static void Place_Group(Palette& palette, Group& group, Box& box, bool second, Pair const& free,
                        Metrics const& metrics)
{
    Group const* const beside = Find_Group(palette, group.reference);
    long gap = group.gap.pixels >= 0 ? group.gap.pixels : metrics.groupGap;
    if (second && group.gap.percent) {
        long const share = group.gap.percent * free[0] / 100;
        gap += group.gap.round ? free[0] - (100 / group.gap.percent - 1) * share : share;
    }
    for (std::size_t a = 0; a < 2; ++a) {
        long size = group.natural[a] + group.margin[2 * a] + group.margin[2 * a + 1];
        if (group.full[a] && box.any) size = box.Size()[a];
        if (second) {
            if (group.shares[a]) size += group.extra[a];
            size += free[a] * group.percent[a] / 100;
        }
        int const half = group.Half(static_cast<int>(a));
        long at = 0;
        if (group.position) {
            if (beside) at = beside->at[a];
            if (group.full[a] && (half == 0 || (!beside && half != 4))) at = box.low[a];
            if (half == 3) at = (box.high[a] - box.low[a] - size + 1) / 2 + box.low[a];
            if (half == 9 || (!beside && half == 4)) at = box.low[a];
            if (half == 10 || (!beside && half == 6)) at = box.high[a] - size + 1;
            if (beside && !beside->out) {
                if (half == 1) at -= gap + size;
                if (half == 2) at += beside->size[a] + gap;
                if (half == 5) at += (beside->size[a] - size) / 2;
                if (half == 6) at += beside->size[a] - size;
            }
        }
        if (second) {
            if (Group const* to = Find_Group(palette, group.align[2 * a])) {
                size += at - to->at[a];
                at = to->at[a];
            }
            if (Group const* to = Find_Group(palette, group.align[2 * a + 1]))
                size = to->at[a] + to->size[a] - at;
        }
        group.at[a] = at + group.offset[a];
        group.size[a] = size;
    }
    if (!group.out) box.Add(group.at, group.size);
}

static void Share(Palette& palette, std::size_t a, long origin, long natural, long free)
{
    std::size_t const other = 1 - a;
    for (Group& group : palette.groups) {
        group.extra[a] = 0;
        if (!group.shares[a] || group.out) continue;
        auto const covers = [&](Group const& by, long line) {
            return by.at[other] <= line && line < by.at[other] + by.size[other];
        };
        long edge = 0, count = 0;
        bool any = false;
        for (Group const& by : palette.groups) {
            bool const meets = &by == &group || covers(by, group.at[other]) ||
                               covers(by, group.at[other] + group.size[other] - 1);
            if (by.out || !meets) continue;
            long const end = by.at[a] + by.size[a];
            edge = any ? std::max(edge, end) : end;
            any = true;
            count += by.shares[a];
        }
        if (natural > edge - origin) group.extra[a] += (natural - (edge - origin)) / count;
        group.extra[a] += free / count;
    }
}

static void Lay_Out_Subs(Palette& palette, Pair const& inner, Metrics const& metrics)
{
    Pair reach{0, 0};
    for (Palette& sub : palette.subs) {
        Pair fill;
        for (std::size_t a = 0; a < 2; ++a)
            fill[a] = sub.forced[a] != -1 ? sub.forced[a] : inner[a];
        Lay_Out(sub, fill, metrics);
        Palette const* beside = nullptr;
        for (Palette const& other : palette.subs)
            if (sub.reference && other.id == sub.reference) beside = &other;
        for (std::size_t a = 0; a < 2; ++a) {
            int const half = sub.position >> (8 * a) & 0xFF;
            sub.at[a] = 0;
            if (In_Parent(half))
                sub.at[a] = Parent_Place(half, std::max(0L, inner[a]), sub.size[a]);
            else if (beside && half == 1)
                sub.at[a] = beside->at[a] - metrics.paletteGap - sub.size[a];
            else if (beside && half == 2)
                sub.at[a] = beside->at[a] + beside->size[a] + metrics.paletteGap;
            else if (beside)
                sub.at[a] = beside->at[a];
            reach[a] = std::max(reach[a], sub.at[a] + sub.size[a]);
        }
    }
    for (Palette& sub : palette.subs)
        for (std::size_t a = 0; a < 2; ++a) {
            int const half = sub.position >> (8 * a) & 0xFF;
            if (half == 3 || half == 10)
                sub.at[a] = Parent_Place(half, std::max(reach[a], inner[a]), sub.size[a]);
        }
}

void Lay_Out(Palette& palette, Pair fill, Metrics const& metrics)
{
    Pair inner{-1, -1};
    for (std::size_t a = 0; a < 2; ++a)
        if (fill[a] != -1) inner[a] = fill[a] - palette.margin[2 * a] - palette.margin[2 * a + 1];
    Pair forSubs;
    for (std::size_t a = 0; a < 2; ++a)
        forSubs[a] = fill[a] == -1 ? -1 : std::max(0L, inner[a]);
    Lay_Out_Subs(palette, forSubs, metrics);

    Box box;
    for (Palette const& sub : palette.subs)
        if (sub.size[0] > 0 && sub.size[1] > 0) box.Add(sub.at, sub.size);
    Box const subs = box;
    for (Group& group : palette.groups)
        Measure_Group(group, metrics);
    for (Group& group : palette.groups)
        Place_Group(palette, group, box, false, {0, 0}, metrics);
    Pair const natural = box.Size(), origin = box.low;
    Pair free{0, 0};
    for (std::size_t a = 0; a < 2; ++a) {
        if (fill[a] != -1) {
            free[a] = inner[a] - natural[a];
            box.low[a] = 0;
            box.high[a] = inner[a] - 1;
            box.any = true;
        }
        Share(palette, a, origin[a], natural[a], free[a]);
    }
    for (Group& group : palette.groups)
        Place_Group(palette, group, box, true, free, metrics);
    Box extent = subs;
    for (Group& group : palette.groups) {
        for (std::size_t a = 0; a < 2; ++a)
            group.at[a] -= box.low[a];
        if (!group.out) extent.Add(group.at, group.size);
        Fill_Group(group, metrics);
    }
    for (std::size_t a = 0; a < 2; ++a) {
        long const margins = palette.margin[2 * a] + palette.margin[2 * a + 1];
        palette.size[a] = margins + extent.high[a] + 1;
        palette.least[a] = margins + (palette.leastContent[a] >= 0 ? palette.leastContent[a] : natural[a]);
    }
}

}  // namespace Model
