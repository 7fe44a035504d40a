// The rules of the layout once more, in the plainest words: what a palette declares goes in, rectangles come
// out. It shares nothing with the library but the metrics of the style.
#pragma once

#include <array>
#include <vector>

namespace Model {

using Pair = std::array<long, 2>;  ///< across, down

struct Gap {
    long pixels = -1;  ///< -1 is the default
    long percent = 0;
    bool flex = false, round = false;
};

struct Item {
    int id = 0;
    int position = 0, reference = 0;
    Pair base{}, least{}, offset{};
    Pair percent{-1, -1};  ///< of the free space; -1 for none
    Gap gap;
    bool out = false, label = false;
    std::array<std::vector<int>, 4> sides;  ///< indices of labels: before, after, above, below

    Pair at{}, size{};
    std::array<bool, 2> placed{};
    int Half(int axis) const { return position >> (8 * axis) & 0xFF; }
};

struct Group {
    int id = 0;
    int position = 0, reference = 0;
    std::array<bool, 2> full{}, shares{};
    Pair percent{}, offset{};
    std::array<int, 4> align{};  ///< left, right, top, bottom
    Gap gap;
    std::array<long, 4> margin{};  ///< left, right, top, bottom
    int content = 0x0404;
    bool out = false;
    std::vector<Item> items;

    Pair natural{}, at{}, size{}, extra{};
    int Half(int axis) const { return position >> (8 * axis) & 0xFF; }
};

struct Palette {
    int id = 0, position = 0x0303, reference = 0;
    std::array<long, 4> margin{};
    Pair forced{-1, -1}, leastContent{-1, -1};
    std::vector<Group> groups;
    std::vector<Palette> subs;

    Pair at{}, size{}, least{};
};

struct Metrics {
    long itemGap, groupGap, paletteGap;
};

/// Works out all rectangles for a size to fill; -1 is the natural one. Places are relative: of items to the
/// inside of their group, of groups and sub-palettes to the inside of their palette.
void Lay_Out(Palette& palette, Pair fill, Metrics const& metrics);

}  // namespace Model
