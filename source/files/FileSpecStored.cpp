// The stored form of a spec inside other files:
//   0 length of the rest, 4 bytes, even   4 path with its NUL   then an alias, if any, and a zero byte to
//   make it even
// The alias belongs to the system that wrote it. Records are written without one, and those that have one
// give no spec of their own.

#include "FileSpecSearch.h"

#include "FileSpecText.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

namespace {

constexpr std::size_t LongestPath = 509;
using StoredPath = std::array<char, LongestPath + 1>;

/// Enough of a record to hold the longest path, even behind some stray line ends.
constexpr int64_t HeadSize = 1024;

bool Is_Terminator(uint8_t byte)
{
    return byte == '\n' || byte == '\r' || byte == 0;
}

/// Takes the path as FGetStringZV would, but never beyond the record.
/// @return  bytes taken, with the terminator
std::size_t Parse_Path(std::span<uint8_t const> record, StoredPath& path)
{
    std::size_t taken = 0;
    std::size_t length = 0;
    while (taken < record.size() && length < LongestPath) {
        uint8_t const byte = record[taken++];
        if (!Is_Terminator(byte))
            path[length++] = static_cast<char>(byte);
        else if (length > 0)
            break;
    }
    path[length] = 0;
    return taken;
}

/// Reads a record's path and leaves the file behind the record. A length that the file does not hold ends at
/// the end of the file.
/// @return  false for a damaged record
bool Read_Record(ZVFileInfo* file, StoredPath& path, bool& hasAlias)
{
    int32_t length;
    if (!GetLongZV(file, &length)) return false;
    long const start = SeekFileZV(file, 0, 1);
    int64_t const rest = std::max<int64_t>(GetFileLengthZV(file) - start, 0);
    if (length < 0) {
        SetError(ZV_ERR_IO);
        return false;
    }
    std::array<uint8_t, HeadSize> head;
    auto const headSize = static_cast<std::size_t>(std::min<int64_t>({length, rest, HeadSize}));
    bool const isWhole = length <= rest && (headSize == 0 || ReadFileZV(file, head.data(), headSize));
    if (!isWhole || length > HeadSize) SeekFileZV(file, start + std::min<int64_t>(length, rest), 0);
    if (!isWhole) {
        SetError(ZV_ERR_IO);
        return false;
    }
    std::size_t const taken = Parse_Path(std::span(head).first(headSize), path);
    hasAlias = static_cast<int64_t>(taken) < length - 1;
    return true;
}

}  // namespace

long WriteFileSpecZV(ZVFileInfo* file, char const* spec)
{
    if (!file) return 0;
    FSSpec place;
    if (GetFSSpecZV(spec, &place) != 0) {
        SetError(ZV_ERR_NOT_FOUND);
        return 0;
    }
    char path[ZV_SPEC_SIZE];
    if (GetDOSPathZV(path, &place) != 0) return 0;
    std::size_t const length = std::strlen(path) + 1;
    // What cannot be read back is not written.
    if (length > LongestPath + 1) {
        SetError(ZV_ERR_NOT_FOUND);
        return 0;
    }
    std::size_t const even = length + length % 2;
    std::array<uint8_t, 4 + LongestPath + 2> record{0, 0, static_cast<uint8_t>(even >> 8),
                                                    static_cast<uint8_t>(even)};
    std::memcpy(&record[4], path, length);
    return WriteFileZV(file, record.data(), 4 + even);
}

char* ReadFileSpecZV(ZVFileInfo* file, TagItem* tags)
{
    SpecSearch search = Read_Search_Tags(tags);
    if (!file) return nullptr;
    StoredPath path;
    bool hasAlias = false;
    if (!Read_Record(file, path, hasAlias)) return nullptr;

    Name_Search(search, path.data());
    if (search.storedPathResult) std::strcpy(search.storedPathResult, path.data());
    if (!path[0]) {
        SetError(ZV_ERR_NOT_FOUND);
        return nullptr;
    }
    if (search.noCheck) return hasAlias ? nullptr : MakeFileSpecZV(path.data());
    return Finish_Search(search, hasAlias ? nullptr : Make_Tested_Spec(search));
}
