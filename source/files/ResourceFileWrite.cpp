// Resource files, created and changed.
#include "ResourceFile.h"

#include "AppleDouble.h"
#include "FileBytes.h"

#include "ZVFileSpec.h"
#include "ZVLibInternal.h"

#include "foundation/BigEndian.h"

#include <algorithm>
#include <bitset>
#include <new>

namespace {

constexpr std::size_t LongestName = 255;
constexpr std::size_t FinderInfoSize = 32;

/// A file is packed when this much more lies idle in it than half of what is in use.
constexpr int64_t IdleBytes = 1 << 16;

constexpr int FirstFreeID = 128;  // those below belong to the system
constexpr int IDCount = 32768;

/// The least resource file: the header, what is reserved behind it, and a map without entries.
std::vector<uint8_t> Empty_Fork()
{
    ResourceHeader header = {ResourceDataStart, ResourceDataStart, 0, 0};
    std::vector<uint8_t> const map = Build_Resource_Map(header, {});
    header.mapLength = static_cast<uint32_t>(map.size());
    std::vector<uint8_t> fork(ResourceDataStart);
    Build_Resource_Header(header, std::span(fork).first<ResourceHeaderSize>());
    fork.insert(fork.end(), map.begin(), map.end());
    return fork;
}

/// What a companion holds beside resources, with its bytes in the order of the entries.
struct CompanionParts {
    std::vector<AppleDoubleEntry> entries;
    std::vector<uint8_t> bytes;
};

CompanionParts New_Parts(uint32_t type, uint32_t creator)
{
    CompanionParts parts{{{AppleDoubleFinderInfo, 0, FinderInfoSize}}, std::vector<uint8_t>(FinderInfoSize)};
    Store_Big32(&parts.bytes[0], type);
    Store_Big32(&parts.bytes[4], creator);
    return parts;
}

/// False when there is no companion that makes sense.
bool Read_Parts(char const* spec, CompanionParts& parts)
{
    std::unique_ptr<ZVFileInfo, Released_By<CloseFileZV>> const file(
        OpenFileZV(spec, ZVFilePermReadWrite, ZVFileFlagNone));
    uint8_t start[AppleDoubleStart];
    int64_t const end = GetFileLengthZV(file.get());
    if (!file || !Read_Bytes(file.get(), end, 0, start, sizeof start)) return false;
    long const count = Count_AppleDouble_Entries(start);
    if (count < 1) return false;
    std::vector<uint8_t> list(static_cast<std::size_t>(count) * AppleDoubleEntrySize);
    if (!Read_Bytes(file.get(), end, AppleDoubleStart, list.data(), static_cast<int64_t>(list.size())) ||
        !Parse_AppleDouble_Entries(list, end, parts.entries))
        return false;
    std::erase_if(parts.entries,
                  [](AppleDoubleEntry const& entry) { return entry.id == AppleDoubleResources; });
    for (AppleDoubleEntry const& entry : parts.entries) {
        std::size_t const had = parts.bytes.size();
        // Entries that share their bytes would make the companion grow beyond what it holds.
        if (static_cast<int64_t>(had + entry.length) > end) return false;
        parts.bytes.resize(had + entry.length);
        if (entry.length > 0 && !Read_Bytes(file.get(), end, entry.offset, &parts.bytes[had], entry.length))
            return false;
    }
    return true;
}

/// A companion with those parts and an empty fork behind them.
std::vector<uint8_t> Build_Companion(CompanionParts const& parts)
{
    std::vector<uint8_t> const fork = Empty_Fork();
    std::vector<AppleDoubleEntry> entries = parts.entries;
    entries.push_back({AppleDoubleResources, 0, static_cast<uint32_t>(fork.size())});
    std::size_t offset = AppleDoubleStart + entries.size() * AppleDoubleEntrySize;
    for (AppleDoubleEntry& entry : entries) {
        entry.offset = static_cast<uint32_t>(offset);
        offset += entry.length;
    }
    std::vector<uint8_t> file = Build_AppleDouble_Header(entries);
    file.insert(file.end(), parts.bytes.begin(), parts.bytes.end());
    file.insert(file.end(), fork.begin(), fork.end());
    return file;
}

bool Write_New(char const* spec, uint32_t type, uint32_t creator, std::span<uint8_t const> bytes)
{
    std::unique_ptr<ZVFileInfo, Released_By<CloseFileZV>> const file(
        CreateFileZV(spec, ZVFilePermReadWrite, type, creator, ZVFileFlagNone));
    return file && (bytes.empty() || WriteFileZV(file.get(), bytes.data(), bytes.size()));
}

}  // namespace

ZVResourceFile::FilePtr ZVResourceFile::Create_Plain(char const* spec, uint32_t type, uint32_t creator)
{
    // Resources of a companion would count before those of the file.
    SpecText const companion = Companion_Spec(spec);
    if (FileExistsZV(companion.Text()) && !DeleteFileZV(companion.Text())) return nullptr;
    if (!Write_New(spec, type, creator, Empty_Fork())) return nullptr;
    return FilePtr(OpenFileZV(spec, ZVFilePermReadWrite, ZVFileFlagNone));
}

ZVResourceFile::FilePtr ZVResourceFile::Create_Companion(char const* spec, uint32_t type, uint32_t creator)
{
    if (!FileExistsZV(spec) && !Write_New(spec, type, creator, {})) return nullptr;
    SpecText const companion = Companion_Spec(spec);
    CompanionParts parts;
    if (!Read_Parts(companion.Text(), parts)) parts = New_Parts(type, creator);
    // The new companion takes the place of the old one in one step, so that its other parts are safe.
    SpecText const fresh(companion.View(), ".zvnew");
    if (!Write_New(fresh.Text(), ZV_BLANK_CODE, ZV_BLANK_CODE, Build_Companion(parts)) ||
        !RenameFileZV(fresh.Text(), companion.Text()))
        return nullptr;
    return FilePtr(OpenFileZV(companion.Text(), ZVFilePermReadWrite, ZVFileFlagNone));
}

std::unique_ptr<ZVResourceFile> ZVResourceFile::Create(char const* spec, ResourcePlace place, uint32_t type,
                                                       uint32_t creator)
{
    if (!spec) return nullptr;
    try {
        bool const isCompanion = place == ResourcePlace::Companion;
        return Open_File(isCompanion ? Create_Companion(spec, type, creator)
                                     : Create_Plain(spec, type, creator),
                         isCompanion);
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
}

int16_t ZVResourceFile::Unique_ID(uint32_t type) const
{
    std::bitset<IDCount> taken;
    for (ResourceEntry const& entry : entries_)
        if (entry.type == type && entry.id >= 0) taken.set(static_cast<std::size_t>(entry.id));
    for (int id = FirstFreeID; id < IDCount; ++id)
        if (!taken[static_cast<std::size_t>(id)]) return static_cast<int16_t>(id);
    return 0;
}

/// Tells a companion's header where the fork lies.
bool ZVResourceFile::Store_Place()
{
    if (entryOffset_ == 0) return true;
    uint8_t bytes[8];
    Store_AppleDouble_Place(
        {AppleDoubleResources, static_cast<uint32_t>(base_), static_cast<uint32_t>(length_)}, bytes);
    return Write_Bytes(file_.get(), entryOffset_ + 4, bytes, sizeof bytes);
}

/// Only the last part of a companion can grow.
bool ZVResourceFile::Move_To_End()
{
    int64_t const end = GetFileLengthZV(file_.get());
    if (base_ + length_ == end) return true;
    if (end + length_ > UINT32_MAX) {
        SetError(ZV_ERR_DISK_FULL);
        return false;
    }
    if (!Copy_Bytes(file_.get(), base_, file_.get(), end, length_)) return false;
    base_ = end;
    return Store_Place();
}

bool ZVResourceFile::Begin_Change()
{
    if (file_->permission != ZVFilePermReadWrite) {
        SetError(ZV_ERR_LOCKED);
        return false;
    }
    if (isChanged_) return true;
    if (!Move_To_End()) return false;
    // From now on the data reach to the end: what is added lies behind the present map.
    header_.dataLength = static_cast<uint32_t>(length_ - header_.dataOffset);
    savedLength_ = length_;
    isChanged_ = true;
    return true;
}

/// Writes the bytes of a resource at the end of the data.
bool ZVResourceFile::Append(ResourceEntry& entry, std::span<uint8_t const> bytes)
{
    int64_t const offset = length_ - header_.dataOffset;
    int64_t const end = base_ + length_ + 4 + static_cast<int64_t>(bytes.size());
    if (offset > LargestResourceOffset || end > UINT32_MAX) {
        SetError(ZV_ERR_DISK_FULL);
        return false;
    }
    uint8_t size[4];
    Store_Big32(size, static_cast<uint32_t>(bytes.size()));
    if (!Write_Bytes(file_.get(), base_ + length_, size, sizeof size) ||
        (!bytes.empty() &&
         !Write_Bytes(file_.get(), base_ + length_ + 4, bytes.data(), static_cast<int64_t>(bytes.size()))))
        return false;
    entry.offset = static_cast<uint32_t>(offset);
    length_ = end - base_;
    header_.dataLength = static_cast<uint32_t>(length_ - header_.dataOffset);
    return true;
}

bool ZVResourceFile::Add(uint32_t type, int16_t id, std::string_view name, std::span<uint8_t const> bytes)
{
    try {
        if (!Begin_Change()) return false;
        // Bytes that nothing names any more may stand in the way of new ones.
        if (length_ - header_.dataOffset > LargestResourceOffset && !Pack()) return false;
        ResourceEntry entry = {type, id, 0, 0, std::string(name.substr(0, LongestName))};
        auto const present = std::ranges::find_if(
            entries_, [=](ResourceEntry const& other) { return other.type == type && other.id == id; });
        if (present != entries_.end()) {
            if (!Append(entry, bytes)) return false;
            *present = std::move(entry);
            return true;
        }
        entries_.reserve(entries_.size() + 1);
        if (!Append(entry, bytes)) return false;
        entries_.push_back(std::move(entry));
        return true;
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return false;
    }
}

void ZVResourceFile::Remove(ResourceEntry const& entry)
{
    if (Begin_Change()) entries_.erase(entries_.begin() + (&entry - entries_.data()));
}

/// Makes the fork start with a header, which is written in one piece.
bool ZVResourceFile::Turn_Header(ResourceHeader const& header)
{
    uint8_t bytes[ResourceHeaderSize];
    Build_Resource_Header(header, bytes);
    if (!Store_Place() || !Write_Bytes(file_.get(), base_, bytes, sizeof bytes)) return false;
    header_ = header;
    return true;
}

/// Writes the map of some entries, and tells the header where it lies.
bool ZVResourceFile::Write_Map(int64_t position, std::span<ResourceEntry const> entries,
                               ResourceHeader& header)
{
    header.mapOffset = static_cast<uint32_t>(position);
    std::vector<uint8_t> const map = Build_Resource_Map(header, entries);
    auto const size = static_cast<int64_t>(map.size());
    if (map.empty() || base_ + position + size > UINT32_MAX) {
        SetError(ZV_ERR_DISK_FULL);
        return false;
    }
    if (!Write_Bytes(file_.get(), base_ + position, map.data(), size)) return false;
    header.mapLength = static_cast<uint32_t>(size);
    length_ = std::max(length_, position + size);
    return true;
}

/// Writes the map behind everything else.
bool ZVResourceFile::Append_Map()
{
    ResourceHeader header = header_;
    return Write_Map(length_, entries_, header) && Turn_Header(header);
}

/// Copies all that is named to a place that holds nothing of it, and turns the header to the copy.
bool ZVResourceFile::Write_Packed(int64_t position)
{
    ResourceHeader header = {static_cast<uint32_t>(position), 0, 0, 0};
    std::vector<ResourceEntry> entries = entries_;
    int64_t at = position;
    for (ResourceEntry& entry : entries) {
        int64_t const size = Size(entry);
        if (size < 0) return false;
        if (at - position > LargestResourceOffset || base_ + at + 4 + size > UINT32_MAX) {
            SetError(ZV_ERR_DISK_FULL);
            return false;
        }
        if (!Copy_Bytes(file_.get(), base_ + header_.dataOffset + entry.offset, file_.get(), base_ + at,
                        size + 4))
            return false;
        entry.offset = static_cast<uint32_t>(at - position);
        at += size + 4;
    }
    header.dataLength = static_cast<uint32_t>(at - position);
    if (!Write_Map(at, entries, header) || !Turn_Header(header)) return false;
    entries_ = std::move(entries);
    return true;
}

bool ZVResourceFile::Cut_Off(int64_t length)
{
    length_ = length;
    return Store_Place() && File_Truncate(file_.get(), base_ + length);
}

/// Takes back what was written behind the last saved map. The error number stays that of the failure that led
/// here.
void ZVResourceFile::Forget_Changes()
{
    unsigned long const error = GetErrorZV();
    Cut_Off(savedLength_);
    SetError(error);
}

/// Takes out what nothing names: everything moves behind the end, then, where the front has room, to the
/// front. At each moment the header leads to one whole copy, so that the second move may fail.
bool ZVResourceFile::Pack()
{
    int64_t const behind = length_;
    if (!Write_Packed(behind)) return false;
    int64_t const size = length_ - behind;
    if (ResourceDataStart + size <= behind && Write_Packed(ResourceDataStart))
        Cut_Off(ResourceDataStart + size);
    savedLength_ = length_;
    return true;
}

bool ZVResourceFile::Save()
{
    if (!isChanged_) return true;
    try {
        int64_t used = 0;
        for (ResourceEntry const& entry : entries_) {
            int64_t const size = Size(entry);
            used += size < 0 ? 0 : size + 4;
        }
        bool const isIdle = length_ - ResourceDataStart - used > used / 2 + IdleBytes;
        if (!(isIdle ? Pack() : Append_Map())) return false;
        isChanged_ = false;
        SetError(ZV_ERR_NONE);
        return true;
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return false;
    }
}
