// Operations on files and directories by their specs: tests, deleting, moving, making and walking
// directories.

#include "MacFile.h"

#include "ZVLibInternal.h"

#include "MacFileCopy.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <ftw.h>
#include <memory>
#include <new>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int DescriptorsOfWalk = 32;

struct Entry {
    std::string name;  ///< as in a spec
    bool isDirectory;
};

/// The root of a file system can be emptied but not deleted, so nothing of it may go.
bool Is_Mount_Point(char const* path, struct stat const& info)
{
    struct stat parent;
    if (stat((std::string(path) + "/..").c_str(), &parent) != 0) return false;
    return parent.st_dev != info.st_dev || parent.st_ino == info.st_ino;
}

/// @return  an errno value, which ends the walk unless it is 0
int Delete_Entry(char const* path, struct stat const*, int, FTW*)
{
    return remove(path) == 0 ? 0 : errno;
}

/// Leaves alone what a link in the directory leads to, and what is mounted in it.
int Delete_Directory(MacPath& path)
{
    path.Strip_Closing_Slashes();
    struct stat info;
    if (lstat(path.Text(), &info) != 0) return errno;
    if (!S_ISDIR(info.st_mode)) return ENOTDIR;
    if (Is_Mount_Point(path.Text(), info)) return EBUSY;
    int const result = nftw(path.Text(), Delete_Entry, DescriptorsOfWalk, FTW_DEPTH | FTW_PHYS | FTW_MOUNT);
    return result < 0 ? errno : result;
}

int Make_Directory(MacPath const& path)
{
    if (mkdir(path.Text(), 0777) == 0) return 0;
    int const error = errno;
    return error == EEXIST && Mac_Is_Directory(path.Text()) ? 0 : error;
}

int Move_File(MacPath& from, MacPath& to)
{
    from.Strip_Closing_Slashes();
    to.Strip_Closing_Slashes();
    if (rename(from.Text(), to.Text()) == 0) return 0;
    return errno == EXDEV ? Mac_Move_Across(from.Text(), to.Text()) : errno;
}

bool Is_Directory_Entry(char const* directory, dirent const& entry)
{
    if (entry.d_type == DT_DIR) return true;
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return false;
    return Mac_Is_Directory((std::string(directory) + '/' + entry.d_name).c_str());
}

/// All entries, in the order that people expect to see them. Read in one go, so that the visitor may change
/// the directory and a walk into the depth keeps no descriptors open.
int Read_Directory(char const* path, std::vector<Entry>& entries)
{
    std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(path), &closedir);
    if (!directory) return errno;
    errno = 0;
    while (dirent const* entry = readdir(directory.get())) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            entries.push_back({Mac_Name_To_Spec(entry->d_name), Is_Directory_Entry(path, *entry)});
        errno = 0;
    }
    if (errno) return errno;
    std::sort(entries.begin(), entries.end(), [](Entry const& a, Entry const& b) {
        int const order = strcasecmp(a.name.c_str(), b.name.c_str());
        return order ? order < 0 : a.name < b.name;
    });
    return 0;
}

/// Runs an operation on the native path of a spec and stores the error number.
template <typename Operation> long On_Path(char const* spec, Operation operation)
{
    MacPath path;
    int error = path.Set(spec);
    try {
        if (error == 0) error = operation(path);
    } catch (std::bad_alloc const&) {
        error = ENOMEM;
    }
    Mac_Set_File_Error(error);
    return error == 0;
}

}  // namespace

long FileExistsZV(char const* spec)
{
    MacPath path;
    if (path.Set(spec) != 0) return 0;
    struct stat info;
    return stat(path.Text(), &info) == 0;
}

long DeleteFileZV(char const* spec)
{
    return On_Path(spec, [](MacPath const& path) { return unlink(path.Text()) == 0 ? 0 : errno; });
}

long RenameFileZV(char const* oldSpec, char const* newSpec)
{
    return On_Path(oldSpec, [&](MacPath& from) {
        MacPath to;
        int const error = to.Set(newSpec);
        return error ? error : Move_File(from, to);
    });
}

long CreateDirZV(char const* spec)
{
    return On_Path(spec, Make_Directory);
}

long DeleteDirZV(char const* spec)
{
    return On_Path(spec, Delete_Directory);
}

bool OS_Walk_Directory(char const* spec, bool (*visit)(char const* name, bool isDirectory, void* data),
                       void* data)
{
    std::vector<Entry> entries;
    long const read =
        On_Path(spec, [&](MacPath const& path) { return Read_Directory(path.Text(), entries); });
    if (!read) return false;
    for (Entry const& entry : entries)
        if (!visit(entry.name.c_str(), entry.isDirectory, data)) break;
    return true;
}
