// Resource maps, read and built. Big-endian throughout.
//   header   0 offset of the data   4 offset of the map   8 length of the data   12 length of the map
//   map      0 the header again   16 of no meaning in a file   24 offset of the types   26 offset of the
//   names types    0 number of types less one, then for each
//            0 type   4 number of its resources less one   6 offset of the first one, from the types
//   resource 0 id   2 offset of its name or -1   4 attributes   5 offset in the data, three bytes   8 of no
//   meaning
#include "ResourceMap.h"

#include "foundation/BigEndian.h"

#include <algorithm>

namespace {

constexpr std::size_t MapHeaderSize = 28;
constexpr std::size_t TypeSize = 8;
constexpr std::size_t EntrySize = 12;
constexpr std::size_t NoName = 0xFFFF;
constexpr std::size_t LargestOffset = 0xFFFF;

std::span<uint8_t const> Part(std::span<uint8_t const> bytes, std::size_t offset, std::size_t size)
{
    return offset <= bytes.size() && size <= bytes.size() - offset ? bytes.subspan(offset, size)
                                                                   : std::span<uint8_t const>();
}

/// A number that stands less one, so that 0xFFFF is none.
std::size_t Load_Count(uint8_t const* bytes)
{
    return (Load_Big16(bytes) + 1u) & 0xFFFF;
}

std::string Read_Name(std::span<uint8_t const> map, std::size_t names, std::size_t offset)
{
    if (offset == NoName) return {};
    auto const length = Part(map, names + offset, 1);
    if (length.empty()) return {};
    auto const text = Part(map, names + offset + 1, length[0]);
    return {text.begin(), text.end()};
}

ResourceEntry Read_Entry(std::span<uint8_t const> map, uint32_t type, uint8_t const* bytes)
{
    return {.type = type,
            .id = static_cast<int16_t>(Load_Big16(bytes)),
            .attributes = bytes[4],
            .offset = Load_Big32(bytes + 4) & LargestResourceOffset,
            .name = Read_Name(map, Load_Big16(&map[26]), Load_Big16(bytes + 2))};
}

/// The types of some entries with how many there are of each, in the order of the first ones.
struct TypeCount {
    uint32_t type;
    std::size_t count;
};

std::vector<TypeCount> Count_Types(std::span<ResourceEntry const> entries)
{
    std::vector<TypeCount> types;
    for (ResourceEntry const& entry : entries) {
        auto found = std::ranges::find(types, entry.type, &TypeCount::type);
        if (found == types.end()) found = types.insert(found, {entry.type, 0});
        ++found->count;
    }
    return types;
}

void Write_Entry(ResourceEntry const& entry, std::size_t nameOffset, uint8_t* bytes)
{
    Store_Big16(bytes, static_cast<uint16_t>(entry.id));
    Store_Big16(bytes + 2, static_cast<uint32_t>(nameOffset));
    Store_Big32(bytes + 4, static_cast<uint32_t>(entry.attributes) << 24 | entry.offset);
}

}  // namespace

bool Parse_Resource_Header(std::span<uint8_t const, ResourceHeaderSize> bytes, int64_t length,
                           ResourceHeader& header)
{
    ResourceHeader const read = {Load_Big32(&bytes[0]), Load_Big32(&bytes[4]), Load_Big32(&bytes[8]),
                                 Load_Big32(&bytes[12])};
    auto const lies = [&](int64_t offset, int64_t size) {
        return offset >= static_cast<int64_t>(ResourceHeaderSize) && offset + size <= length;
    };
    if (!lies(read.dataOffset, read.dataLength) || !lies(read.mapOffset, read.mapLength)) return false;
    header = read;
    return true;
}

void Build_Resource_Header(ResourceHeader const& header, std::span<uint8_t, ResourceHeaderSize> bytes)
{
    Store_Big32(&bytes[0], header.dataOffset);
    Store_Big32(&bytes[4], header.mapOffset);
    Store_Big32(&bytes[8], header.dataLength);
    Store_Big32(&bytes[12], header.mapLength);
}

bool Parse_Resource_Map(std::span<uint8_t const> map, std::vector<ResourceEntry>& entries)
{
    entries.clear();
    if (map.size() < MapHeaderSize + 2) return false;
    std::size_t const types = Load_Big16(&map[24]);
    auto const counter = Part(map, types, 2);
    if (counter.empty()) return false;
    std::size_t const typeCount = Load_Count(counter.data());
    if (typeCount == 0) return true;
    auto const list = Part(map, types + 2, typeCount * TypeSize);
    if (list.empty()) return false;

    // Each resource has twelve bytes of its own. Lists that overlap could name far more of them than there
    // are.
    std::size_t free = map.size() - std::min(map.size(), MapHeaderSize + 2 + list.size());
    for (std::size_t i = 0; i < typeCount; ++i) {
        uint8_t const* const type = &list[i * TypeSize];
        std::size_t const size = Load_Count(type + 4) * EntrySize;
        auto const resources = Part(map, types + Load_Big16(type + 6), size);
        if (size == 0) continue;
        if (resources.empty() || size > free) return false;
        free -= size;
        for (std::size_t at = 0; at < size; at += EntrySize)
            entries.push_back(Read_Entry(map, Load_Big32(type), &resources[at]));
    }
    return true;
}

std::vector<uint8_t> Build_Resource_Map(ResourceHeader header, std::span<ResourceEntry const> entries)
{
    std::vector<TypeCount> const types = Count_Types(entries);
    std::size_t const resources = MapHeaderSize + 2 + types.size() * TypeSize;
    std::size_t const names = resources + entries.size() * EntrySize;
    if (names > LargestOffset) return {};
    std::vector<uint8_t> map(names);
    std::size_t at = resources;
    for (std::size_t i = 0; i < types.size(); ++i) {
        uint8_t* const type = &map[MapHeaderSize + 2 + i * TypeSize];
        Store_Big32(type, types[i].type);
        Store_Big16(type + 4, static_cast<uint32_t>(types[i].count - 1));
        Store_Big16(type + 6, static_cast<uint32_t>(at - MapHeaderSize));
        for (ResourceEntry const& entry : entries) {
            if (entry.type != types[i].type) continue;
            std::size_t const nameOffset = entry.name.empty() ? NoName : map.size() - names;
            if (!entry.name.empty() && nameOffset >= NoName) return {};
            Write_Entry(entry, nameOffset, &map[at]);
            at += EntrySize;
            if (entry.name.empty()) continue;
            map.push_back(static_cast<uint8_t>(entry.name.size()));
            map.insert(map.end(), entry.name.begin(), entry.name.end());
        }
    }
    header.mapLength = static_cast<uint32_t>(map.size());
    Build_Resource_Header(header, std::span(map).first<ResourceHeaderSize>());
    Store_Big16(&map[24], MapHeaderSize);
    Store_Big16(&map[26], static_cast<uint32_t>(names));
    Store_Big16(&map[28], static_cast<uint32_t>(types.size() - 1));
    return map;
}
