// Directories, read and walked; and what the file system tells of what lies in them.
#include "MacFile.h"
#include "MacFileInfo.h"

#include "ZVLibInternal.h"
#include "ZVShellFolder.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <new>
#include <strings.h>
#include <sys/stat.h>
#include <vector>

namespace {

struct Entry {
    uint64_t key;      ///< the first characters in lower case, which settle most comparisons
    std::size_t name;  ///< native, by its place in `names`
    OSEntryKind kind;
    bool isLink;
    ZVCreatorPair codes = {ZV_BLANK_CODE, ZV_BLANK_CODE};
};

/// A directory, read in one go: a walk into the depth then keeps no descriptors open.
struct Listing {
    std::string names;  ///< each closed by a zero byte
    std::vector<Entry> entries;

    char const* Name(Entry const& entry) const { return names.data() + entry.name; }
};

uint64_t Sort_Key(char const* name)
{
    uint64_t key = 0;
    for (int i = 0; i < 8; ++i) {
        auto c = static_cast<unsigned char>(*name);
        if (c >= 'A' && c <= 'Z') c = static_cast<unsigned char>(c + 'a' - 'A');
        key = key << 8 | c;
        if (*name) ++name;
    }
    return key;
}

OSEntryKind Kind_Of_Mode(mode_t mode)
{
    if (S_ISREG(mode)) return OSEntryKind::File;
    return S_ISDIR(mode) ? OSEntryKind::Directory : OSEntryKind::Other;
}

/// The kind of an entry that the directory does not tell, or of what a link leads to.
OSEntryKind Look_Up_Kind(int directory, char const* name)
{
    struct stat info;
    return fstatat(directory, name, &info, 0) == 0 ? Kind_Of_Mode(info.st_mode) : OSEntryKind::Other;
}

OSEntryKind Kind_Of_Entry(int directory, dirent const& entry)
{
    switch (entry.d_type) {
    case DT_REG: return OSEntryKind::File;
    case DT_DIR: return OSEntryKind::Directory;
    case DT_LNK:
    case DT_UNKNOWN: return Look_Up_Kind(directory, entry.d_name);
    default: return OSEntryKind::Other;
    }
}

bool Is_Link(int directory, dirent const& entry)
{
    if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_LNK;
    struct stat info;
    return fstatat(directory, entry.d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(info.st_mode);
}

/// @return  0 or an errno value
int Read_Directory(char const* path, Listing& listing)
{
    std::unique_ptr<DIR, int (*)(DIR*)> const directory(opendir(path), &closedir);
    if (!directory) return errno;
    int const descriptor = dirfd(directory.get());
    for (;;) {
        errno = 0;
        dirent const* const entry = readdir(directory.get());
        if (!entry) break;
        if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
        listing.entries.push_back({Sort_Key(entry->d_name), listing.names.size(),
                                   Kind_Of_Entry(descriptor, *entry), Is_Link(descriptor, *entry)});
        listing.names.append(entry->d_name, std::strlen(entry->d_name) + 1);
    }
    if (errno) return errno;
    // The order in which people expect to see them.
    std::sort(listing.entries.begin(), listing.entries.end(), [&](Entry const& a, Entry const& b) {
        if (a.key != b.key) return a.key < b.key;
        int const order = strcasecmp(listing.Name(a), listing.Name(b));
        return order ? order < 0 : std::strcmp(listing.Name(a), listing.Name(b)) < 0;
    });
    return 0;
}

/// Files whose codes are being read, by several tasks at a time.
struct CodeReading {
    Listing& listing;
    std::string_view path;
};

/// A share of the files, as MPForkZV deals them out. 0 without memory.
long Read_Share_Of_Codes(long index, long count, void* data)
try {
    auto const& [listing, path] = *static_cast<CodeReading const*>(data);
    auto const entries = static_cast<long>(listing.entries.size());
    std::string full(path);
    if (!full.ends_with('/')) full += '/';
    std::size_t const directorySize = full.size();
    for (long i = entries * (index - 1) / count; i < entries * index / count; ++i) {
        Entry& entry = listing.entries[static_cast<std::size_t>(i)];
        if (entry.kind != OSEntryKind::File) continue;
        full.replace(directorySize, full.npos, listing.Name(entry));
        entry.codes = Mac_Read_Codes(full.c_str());
    }
    return 1;
} catch (std::bad_alloc const&) {
    return 0;
}

/// Reads the codes of all files. Each takes a call of the system, which makes up most of the time of a walk.
void Read_Codes(Listing& listing, std::string_view path)
{
    constexpr std::size_t worthTask = 32;  // files that take as long as a task takes to start
    CodeReading reading = {listing, path};
    if (!MPForkZV(Read_Share_Of_Codes, &reading, static_cast<long>(listing.entries.size() / worthTask)))
        throw std::bad_alloc();
}

/// Shows the entries to `visit`.
template <typename Visit> void Show_Entries(Listing const& listing, Visit visit)
{
    std::string spelled;
    for (Entry const& entry : listing.entries) {
        char const* name = listing.Name(entry);
        if (std::strpbrk(name, ":\\")) {
            spelled = Mac_Name_To_Spec(name);
            name = spelled.c_str();
        }
        if (!visit({name, entry.kind, entry.isLink, entry.codes.type, entry.codes.creator})) return;
    }
}

/// Reads a directory and shows it. False with the error number set when it cannot be read.
template <typename Visit> bool List_Directory(char const* spec, bool wantsCodes, Visit visit)
{
    try {
        MacPath path;
        Listing listing;
        int error = path.Set(spec);
        if (error == 0) error = Read_Directory(path.Text(), listing);
        Mac_Set_File_Error(error);
        if (error) return false;
        if (wantsCodes) Read_Codes(listing, path.View());
        Show_Entries(listing, visit);
        return true;
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return false;
    }
}

}  // namespace

bool OS_Walk_Directory(char const* spec, bool (*visit)(char const* name, bool isDirectory, void* data),
                       void* data)
{
    return List_Directory(spec, false, [=](OSDirectoryEntry const& entry) {
        return visit(entry.name, entry.kind == OSEntryKind::Directory, data);
    });
}

bool OS_List_Directory(char const* spec, bool wantsCodes, bool (*visit)(OSDirectoryEntry const&, void*),
                       void* data)
{
    return List_Directory(spec, wantsCodes,
                          [=](OSDirectoryEntry const& entry) { return visit(entry, data); });
}

namespace {

/// What a browser shows of an entry. False for one that is neither a file nor a directory.
/// @param path  of the entry
bool Look_At_Entry(int directory, dirent const& entry, char const* path, OSBrowsedEntry& shown)
{
    OSEntryKind const kind = Kind_Of_Entry(directory, entry);
    if (kind == OSEntryKind::Other) return false;
    MacFileMarks const marks = Mac_Read_Marks(path);
    shown.nativeName = shown.name = entry.d_name;
    shown.isDirectory = kind == OSEntryKind::Directory;
    shown.isHidden = entry.d_name[0] == '.' || marks.flags & ZV_FINDER_INVISIBLE;
    shown.type = shown.isDirectory ? ZV_BLANK_CODE : marks.codes.type;
    shown.creator = shown.isDirectory ? ZV_BLANK_CODE : marks.codes.creator;
    return true;
}

OSBrowseResult Result_Of(int error)
{
    switch (error) {
    case 0: return OSBrowseResult::Done;
    case ENOENT:
    case ENOTDIR: return OSBrowseResult::Missing;
    case EACCES:
    case EPERM: return OSBrowseResult::Denied;
    default: return OSBrowseResult::Failed;
    }
}

}  // namespace

OSBrowseResult OS_Browse_Directory(char const* path, bool (*visit)(OSBrowsedEntry const&, void*), void* data)
try {
    std::unique_ptr<DIR, int (*)(DIR*)> const directory(opendir(path), &closedir);
    if (!directory) return Result_Of(errno);
    std::string full = path;
    if (!full.ends_with('/')) full += '/';
    std::size_t const size = full.size();
    std::string spelled;
    for (;;) {
        errno = 0;
        dirent const* const entry = readdir(directory.get());
        if (!entry) return Result_Of(errno);
        if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
        full.replace(size, full.npos, entry->d_name);
        OSBrowsedEntry shown;
        if (!Look_At_Entry(dirfd(directory.get()), *entry, full.c_str(), shown)) continue;
        if (std::strpbrk(shown.name, ":\\")) {
            spelled = Mac_Name_To_Spec(shown.name);
            shown.name = spelled.c_str();
        }
        if (!visit(shown, data)) return OSBrowseResult::Done;
    }
} catch (std::bad_alloc const&) {
    return OSBrowseResult::Failed;
}

bool OS_Measure_File(char const* path, int64_t* size, int64_t* modified)
{
    struct stat info;
    if (stat(path, &info) != 0) return false;
    *size = info.st_size;
    *modified = info.st_mtime;
    return true;
}

bool OS_Get_Status(char const* spec, OSFileStatus* status)
{
    MacPath path;
    struct stat info;
    if (path.Set(spec) != 0 || stat(path.Text(), &info) != 0) return false;
    *status = {info.st_size, info.st_mtime, info.st_dev, info.st_ino, Mac_Read_Flags(path.Text())};
    return true;
}

bool OS_Resolve_Link(char const* spec, char* target)
{
    MacPath path;
    FSSpec place;
    static_assert(sizeof place.path >= PATH_MAX);
    return path.Set(spec) == 0 && realpath(path.Text(), place.path) && GetDOSPathZV(target, &place) == 0;
}
