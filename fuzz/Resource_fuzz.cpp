// Resource files: the input is the file. Every resource is read, and the ones that can be are written to a
// map again, which must name the same.
#include "files/ResourceFile.h"

#include "ClipFuzz.h"

#include <vector>

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    Fuzz_Module(ZV_BLANK_CODE);
    // A block of its own, so that a read beyond the end is seen.
    std::vector<uint8_t> bytes(data, data + size);
    if (bytes.empty()) return 0;
    auto const file = ZVResourceFile::Open(OpenFileinMemoryZV(bytes.data(), bytes.size(), ZVFilePermRead));
    if (!file) return 0;
    std::vector<uint8_t> content;
    for (ResourceEntry const& entry : file->Entries()) {
        int64_t const length = file->Size(entry);
        if (length < 0) continue;
        if (length > static_cast<int64_t>(size)) std::abort();
        content.resize(static_cast<std::size_t>(length));
        if (length > 0 && !file->Read(entry, content.data())) std::abort();
        if (!file->Find_ID(entry.type, entry.id)) std::abort();
    }
    std::vector<uint8_t> const map = Build_Resource_Map({}, file->Entries());
    std::vector<ResourceEntry> entries;
    if (map.empty()) return 0;
    if (!Parse_Resource_Map(map, entries) || entries.size() != file->Entries().size()) std::abort();
    for (ResourceEntry const& entry : entries)
        if (!file->Find_Name(entry.type, entry.name)) std::abort();
    return 0;
}
