// AppleDouble headers. Big-endian throughout.
//   0 magic   4 version   8 sixteen bytes without meaning   24 number of entries, then for each id, offset,
//   length
#include "AppleDouble.h"

#include "foundation/BigEndian.h"

namespace {

constexpr uint32_t Magic = 0x00051607;
constexpr uint32_t OldVersion = 0x00010000;
constexpr uint32_t Version = 0x00020000;

}  // namespace

long Count_AppleDouble_Entries(std::span<uint8_t const, AppleDoubleStart> start)
{
    uint32_t const version = Load_Big32(&start[4]);
    if (Load_Big32(&start[0]) != Magic || (version != Version && version != OldVersion)) return -1;
    return Load_Big16(&start[24]);
}

bool Parse_AppleDouble_Entries(std::span<uint8_t const> list, int64_t length,
                               std::vector<AppleDoubleEntry>& entries)
{
    entries.clear();
    for (std::size_t at = 0; at + AppleDoubleEntrySize <= list.size(); at += AppleDoubleEntrySize) {
        AppleDoubleEntry const entry = {Load_Big32(&list[at]), Load_Big32(&list[at + 4]),
                                        Load_Big32(&list[at + 8])};
        if (int64_t{entry.offset} + entry.length > length) return false;
        entries.push_back(entry);
    }
    return true;
}

std::vector<uint8_t> Build_AppleDouble_Header(std::span<AppleDoubleEntry const> entries)
{
    std::vector<uint8_t> header(AppleDoubleStart + entries.size() * AppleDoubleEntrySize);
    Store_Big32(&header[0], Magic);
    Store_Big32(&header[4], Version);
    Store_Big16(&header[24], static_cast<uint32_t>(entries.size()));
    uint8_t* at = &header[AppleDoubleStart];
    for (AppleDoubleEntry const& entry : entries) {
        Store_Big32(at, entry.id);
        Store_AppleDouble_Place(entry, std::span<uint8_t, 8>(at + 4, 8));
        at += AppleDoubleEntrySize;
    }
    return header;
}

void Store_AppleDouble_Place(AppleDoubleEntry const& entry, std::span<uint8_t, 8> bytes)
{
    Store_Big32(&bytes[0], entry.offset);
    Store_Big32(&bytes[4], entry.length);
}
