// The classic form of a resource file: a header, the bytes of all resources, and a map that names them. Works
// on memory alone.
#pragma once

#include "ZVBase.h"

#include <span>
#include <string>
#include <vector>

inline constexpr std::size_t ResourceHeaderSize = 16;
inline constexpr uint32_t ResourceDataStart = 256;  ///< behind the header and what is reserved for others
inline constexpr uint32_t LargestResourceOffset = 0xFFFFFF;

/// Where the two parts lie, from the start of the header.
struct ResourceHeader {
    uint32_t dataOffset;
    uint32_t mapOffset;
    uint32_t dataLength;
    uint32_t mapLength;
};

/// A resource as the map names it.
struct ResourceEntry {
    uint32_t type;
    int16_t id;
    uint8_t attributes;
    uint32_t offset;   ///< of its length, four bytes ahead of its bytes, in the data
    std::string name;  ///< at most 255 bytes
};

/// False when the parts do not lie within `length` bytes.
bool Parse_Resource_Header(std::span<uint8_t const, ResourceHeaderSize> bytes, int64_t length,
                           ResourceHeader& header);
void Build_Resource_Header(ResourceHeader const& header, std::span<uint8_t, ResourceHeaderSize> bytes);

/// Reads a map into entries, in its order. A name that lies outside it is no name. False when a list lies
/// outside it, or when the lists share their bytes.
ZV_API bool Parse_Resource_Map(std::span<uint8_t const> map, std::vector<ResourceEntry>& entries);

/// The map of some entries; those of one type come together where its first one stands. Empty when the
/// entries or their names are too many for a map. The header tells where the map lies, but for its length.
ZV_API std::vector<uint8_t> Build_Resource_Map(ResourceHeader header, std::span<ResourceEntry const> entries);
