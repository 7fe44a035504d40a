// The header of an AppleDouble file, the companion ._name that holds what a file has beside its data. Works
// on memory alone.
#pragma once

#include "ZVBase.h"

#include <span>
#include <vector>

inline constexpr std::size_t AppleDoubleStart = 26;  ///< bytes ahead of the list of entries
inline constexpr std::size_t AppleDoubleEntrySize = 12;
inline constexpr uint32_t AppleDoubleResources = 2;
inline constexpr uint32_t AppleDoubleFinderInfo = 9;

/// A part of the file. In its entry of 12 bytes the id, offset and length stand in this order.
struct AppleDoubleEntry {
    uint32_t id;
    uint32_t offset;  ///< from the start of the file
    uint32_t length;
};

/// The number of entries that the first AppleDoubleStart bytes tell of; -1 for any other kind of file.
long Count_AppleDouble_Entries(std::span<uint8_t const, AppleDoubleStart> start);

/// Reads entries. False when one lies outside `length` bytes.
bool Parse_AppleDouble_Entries(std::span<uint8_t const> list, int64_t length,
                               std::vector<AppleDoubleEntry>& entries);

/// The start and the list of a file with these entries.
std::vector<uint8_t> Build_AppleDouble_Header(std::span<AppleDoubleEntry const> entries);

/// The offset and the length of an entry, as they stand behind its id.
void Store_AppleDouble_Place(AppleDoubleEntry const& entry, std::span<uint8_t, 8> bytes);
