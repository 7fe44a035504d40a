// The search for files by name, date and size: a walk through the directories, one file at a time.
#include "SpecText.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t LevelLimit = 50;

struct FoundEntry {
    std::string name;
    bool isDirectory;
};

/// A directory as it was when the search came to it.
struct Level {
    std::string directory;  ///< with a closing separator
    std::vector<FoundEntry> entries;
    std::size_t next = 0;
};

struct Limits {
    long long least = LLONG_MIN;
    long long most = LLONG_MAX;

    bool Hold(long long value) const { return least <= value && value <= most; }
};

long long Seconds_Of(uint8_t unit)
{
    switch (unit) {
    case ZV_DATE_DAYS: return 86400;
    case ZV_DATE_MONTHS: return 2628000;
    case ZV_DATE_YEARS: return 31536000;
    default: return 3600;
    }
}

long long Bytes_Of(uint8_t unit)
{
    switch (unit) {
    case ZV_SIZE_BYTES: return 1;
    case ZV_SIZE_KILOBYTES: return 1024;
    case ZV_SIZE_GIGABYTES: return 1024 * 1024 * 1024;
    default: return 1024 * 1024;
    }
}

/// The product, or the end of the range that it lies beyond.
long long Product(long amount, long long unit)
{
    long long product = 0;
    if (!__builtin_mul_overflow(amount, unit, &product)) return product;
    return amount < 0 ? LLONG_MIN : LLONG_MAX;
}

Limits Date_Limits(ZVSearchCriteria const& criteria)
{
    Limits limits;
    if (!criteria.UseDate) return limits;
    auto const now = std::chrono::system_clock::now().time_since_epoch();
    long long date = std::chrono::duration_cast<std::chrono::seconds>(now).count();
    if (__builtin_sub_overflow(date, Product(criteria.DateAmount, Seconds_Of(criteria.DateUnit)), &date))
        date = criteria.DateAmount < 0 ? LLONG_MAX : LLONG_MIN;
    (criteria.Before ? limits.most : limits.least) = date;
    return limits;
}

Limits Size_Limits(ZVSearchCriteria const& criteria)
{
    Limits limits;
    if (criteria.UseSize)
        (criteria.AtMost ? limits.most : limits.least) =
            Product(criteria.SizeAmount, Bytes_Of(criteria.SizeUnit));
    return limits;
}

char Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 'a' - 'A') : c;
}

bool Contains(std::string_view name, std::string_view pattern)
{
    auto const isSame = [](char a, char b) { return Lower(a) == Lower(b); };
    return pattern.empty() ||
           std::search(name.begin(), name.end(), pattern.begin(), pattern.end(), isSame) != name.end();
}

/// A text of the criteria, which fills its field or ends before.
template <std::size_t Size> std::string_view Text_Of(char const (&field)[Size])
{
    return {field, static_cast<std::size_t>(std::find(field, field + Size, '\0') - field)};
}

bool Take_Entry(OSDirectoryEntry const& entry, void* data)
{
    bool const isDirectory = entry.kind == OSEntryKind::Directory;
    bool const isFollowed = entry.kind == OSEntryKind::File || (isDirectory && !entry.isLink);
    if (isFollowed) static_cast<Level*>(data)->entries.push_back({entry.name, isDirectory});
    return true;
}

}  // namespace

struct ZVFileFind {
    Limits date;
    Limits size;
    std::vector<Level> levels;

    bool Enter(std::string directory)
    {
        if (!directory.ends_with('\\')) directory += '\\';
        Level level{std::move(directory), {}};
        if (!OS_List_Directory(level.directory.c_str(), false, Take_Entry, &level)) return false;
        levels.push_back(std::move(level));
        return true;
    }

    char* Next(ZVSearchCriteria const& criteria, long* time, long long* size);
    char* Test_File(std::string const& spec, long* time, long long* size) const;
};

/// The spec of a file that lies within the limits, or null.
char* ZVFileFind::Test_File(std::string const& spec, long* time, long long* bytes) const
{
    OSFileStatus status;
    if (!OS_Get_Status(spec.c_str(), &status) || !date.Hold(status.modified) || !size.Hold(status.size))
        return nullptr;
    if (time) *time = status.modified;
    if (bytes) *bytes = status.size;
    return MakeFileSpecZV(spec.c_str());
}

char* ZVFileFind::Next(ZVSearchCriteria const& criteria, long* time, long long* bytes)
{
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == level.entries.size()) {
            levels.pop_back();
            continue;
        }
        FoundEntry const& entry = level.entries[level.next++];
        std::string spec = level.directory + entry.name;
        if (entry.isDirectory && criteria.Recursive) {
            if (levels.size() == LevelLimit) return nullptr;
            Enter(std::move(spec));
        } else if (!entry.isDirectory && Contains(entry.name, Text_Of(criteria.Pattern))) {
            if (char* found = Test_File(spec, time, bytes)) return found;
        }
    }
    return nullptr;
}

ZVFileFind* InitFileFindZV(ZVSearchCriteria const* criteria)
{
    if (!criteria) return nullptr;
    try {
        auto find = std::make_unique<ZVFileFind>();
        find->date = Date_Limits(*criteria);
        find->size = Size_Limits(*criteria);
        return find->Enter(std::string(Text_Of(criteria->Directory))) ? find.release() : nullptr;
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
}

char* FindNextFileZV(ZVSearchCriteria const* criteria, ZVFileFind* find, long* time, long long* size)
{
    if (!criteria || !find) return nullptr;
    try {
        char* const spec = find->Next(*criteria, time, size);
        if (!spec) find->levels.clear();
        return spec;
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
}

void EndFileFindZV(ZVFileFind* find)
{
    delete find;
}
