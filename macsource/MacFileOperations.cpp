// Operations on files and directories by their specs: tests, deleting, moving, and making directories.

#include "MacFile.h"

#include "ZVLibInternal.h"

#include "MacFileCopy.h"

#include <cerrno>
#include <cstdio>
#include <ftw.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int DescriptorsOfWalk = 32;

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
