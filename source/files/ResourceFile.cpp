// Resource files, opened and read. Changes are in ResourceFileWrite.cpp.
#include "ResourceFile.h"

#include "AppleDouble.h"
#include "FileBytes.h"
#include "SpecText.h"

#include "ZVLibInternal.h"

#include "foundation/BigEndian.h"

#include <algorithm>
#include <new>

ZVResourceFile::ZVResourceFile(FilePtr file) : file_(std::move(file)) {}

ZVResourceFile::~ZVResourceFile()
{
    if (isChanged_) Forget_Changes();
}

/// Looks for the resources of a companion. False when it is none, and when it holds no resources.
bool ZVResourceFile::Find_Fork()
{
    uint8_t start[AppleDoubleStart];
    int64_t const end = GetFileLengthZV(file_.get());
    if (!Read_Bytes(file_.get(), end, 0, start, sizeof start)) return false;
    long const count = Count_AppleDouble_Entries(start);
    if (count < 1) return false;
    std::vector<uint8_t> list(static_cast<std::size_t>(count) * AppleDoubleEntrySize);
    std::vector<AppleDoubleEntry> entries;
    if (!Read_Bytes(file_.get(), end, AppleDoubleStart, list.data(), static_cast<int64_t>(list.size())) ||
        !Parse_AppleDouble_Entries(list, end, entries))
        return false;
    auto const found = std::ranges::find(entries, AppleDoubleResources, &AppleDoubleEntry::id);
    if (found == entries.end() || found->length < ResourceHeaderSize) return false;
    entryOffset_ = static_cast<int64_t>(AppleDoubleStart + static_cast<std::size_t>(found - entries.begin()) *
                                                               AppleDoubleEntrySize);
    base_ = found->offset;
    length_ = found->length;
    return true;
}

bool ZVResourceFile::Read_Map()
{
    uint8_t bytes[ResourceHeaderSize];
    if (!Read_Bytes(file_.get(), base_ + length_, base_, bytes, sizeof bytes) ||
        !Parse_Resource_Header(bytes, length_, header_))
        return false;
    std::vector<uint8_t> map(header_.mapLength);
    return Read_Bytes(file_.get(), base_ + length_, base_ + header_.mapOffset, map.data(),
                      header_.mapLength) &&
           Parse_Resource_Map(map, entries_);
}

std::unique_ptr<ZVResourceFile> ZVResourceFile::Open_File(FilePtr file, bool isCompanion)
{
    if (!file) return nullptr;
    std::unique_ptr<ZVResourceFile> resources(new ZVResourceFile(std::move(file)));
    resources->length_ = GetFileLengthZV(resources->file_.get());
    if ((!isCompanion || resources->Find_Fork()) && resources->Read_Map()) {
        SetError(ZV_ERR_NONE);
        return resources;
    }
    SetError(ZV_ERR_IO);
    return nullptr;
}

std::unique_ptr<ZVResourceFile> ZVResourceFile::Open_Spec(char const* spec, ZVFilePermission permission)
{
    SpecText const companion = Companion_Spec(spec);
    if (FileExistsZV(companion.Text())) {
        auto resources = Open_File(FilePtr(OpenFileZV(companion.Text(), permission, ZVFileFlagNone)), true);
        if (resources) return resources;
    }
    return Open_File(FilePtr(OpenFileZV(spec, permission, ZVFileFlagNone)), false);
}

std::unique_ptr<ZVResourceFile> ZVResourceFile::Open(char const* spec, ZVFilePermission permission)
{
    if (!spec) return nullptr;
    try {
        return Open_Spec(spec, permission);
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
}

std::unique_ptr<ZVResourceFile> ZVResourceFile::Open(ZVFileInfo* file)
{
    try {
        return Open_File(FilePtr(file), false);
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
}

long ZVResourceFile::Count(uint32_t type) const
{
    return static_cast<long>(std::ranges::count(entries_, type, &ResourceEntry::type));
}

ResourceEntry const* ZVResourceFile::Find(uint32_t type, long index) const
{
    for (ResourceEntry const& entry : entries_)
        if (entry.type == type && --index == 0) return &entry;
    return nullptr;
}

ResourceEntry const* ZVResourceFile::Find_ID(uint32_t type, long id) const
{
    auto const found = std::ranges::find_if(
        entries_, [=](ResourceEntry const& entry) { return entry.type == type && entry.id == id; });
    return found == entries_.end() ? nullptr : &*found;
}

ResourceEntry const* ZVResourceFile::Find_Name(uint32_t type, std::string_view name) const
{
    auto const found = std::ranges::find_if(
        entries_, [=](ResourceEntry const& entry) { return entry.type == type && entry.name == name; });
    return found == entries_.end() ? nullptr : &*found;
}

int64_t ZVResourceFile::Size(ResourceEntry const& entry)
{
    uint8_t bytes[4];
    int64_t const end = base_ + header_.dataOffset + header_.dataLength;
    int64_t const at = base_ + header_.dataOffset + entry.offset;
    if (Read_Bytes(file_.get(), end, at, bytes, sizeof bytes)) {
        int64_t const size = Load_Big32(bytes);
        if (size <= end - at - 4) return size;
    }
    SetError(ZV_ERR_IO);
    return -1;
}

bool ZVResourceFile::Read(ResourceEntry const& entry, void* destination)
{
    int64_t const size = Size(entry);
    if (size < 0) return false;
    int64_t const at = base_ + header_.dataOffset + entry.offset + 4;
    return size == 0 || Read_Bytes(file_.get(), at + size, at, destination, size);
}
