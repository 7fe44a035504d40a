// Places of the system: the directories of the program, the library, the user, the desktop and temporary
// files.
#include "ZVLibInternal.h"

#include <dlfcn.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct FreeText {
    void operator()(char* text) const { std::free(text); }
};

/// The path without links and dots; empty when there is no such place.
static std::string Real_Path(std::string const& path)
{
    std::unique_ptr<char, FreeText> const real{realpath(path.c_str(), nullptr)};
    return real ? std::string(real.get()) : std::string();
}

/// The path up to its last slash, that slash left out; empty for the root.
static std::string_view Parent(std::string_view path)
{
    std::size_t const slash = path.rfind('/');
    return slash == path.npos ? std::string_view() : path.substr(0, slash);
}

static bool Is_Dir(std::string const& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// Stores a directory with a closing slash.
static bool Store_Dir(std::string_view dir, char* path, unsigned long size)
{
    while (dir.ends_with('/'))
        dir.remove_suffix(1);
    if (dir.size() + 2 > size) return false;
    path[dir.copy(path, dir.size())] = '/';
    path[dir.size() + 1] = 0;
    return true;
}

bool OS_Get_Program_Dir(char* path, unsigned long size)
{
    std::string const program = Real_Path("/proc/self/exe");
    if (program.empty()) return false;
    std::string_view dir = Parent(program);
    // In a bundle the executable lies in Name.app/Contents/Platform.
    std::string_view const contents = Parent(dir);
    std::string_view const bundle = Parent(contents);
    if (contents.ends_with("/Contents") && bundle.ends_with(".app")) dir = Parent(bundle);
    return Store_Dir(dir, path, size);
}

bool OS_Get_Library_Dir(char* path, unsigned long size)
{
    Dl_info library{};
    if (!dladdr(reinterpret_cast<void const*>(&OS_Get_Library_Dir), &library) || !library.dli_fname)
        return false;
    std::string const file = Real_Path(library.dli_fname);
    return !file.empty() && Store_Dir(Parent(file), path, size);
}

bool OS_Get_Library_Data_Dir(char* path, unsigned long size)
{
    char library[PATH_MAX];
    if (OS_Get_Library_Dir(library, sizeof library)) {
        std::string const dir = Real_Path(std::string(library) + ZV_DATA_FROM_LIBRARY);
        if (Is_Dir(dir)) return Store_Dir(dir, path, size);
    }
    return Is_Dir(ZV_DATA_DIR) && Store_Dir(ZV_DATA_DIR, path, size);
}

bool OS_Get_User_Dir(char* path, unsigned long size)
{
    char const* home = std::getenv("HOME");
    if (home && *home == '/') return Store_Dir(home, path, size);

    long const wanted = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> texts(wanted > 0 ? static_cast<std::size_t>(wanted) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, texts.data(), texts.size(), &found) != 0 || !found) return false;
    return Store_Dir(entry.pw_dir, path, size);
}

bool OS_Get_Desktop_Dir(char* path, unsigned long size)
{
    char user[PATH_MAX];
    return OS_Get_User_Dir(user, sizeof user) && Store_Dir(std::string(user) + "Desktop", path, size);
}

bool OS_Get_Temp_Dir(char* path, unsigned long size)
{
    char const* named = std::getenv("TMPDIR");
    for (char const* dir : {named ? named : "", P_tmpdir})
        if (*dir == '/' && Is_Dir(dir) && access(dir, W_OK | X_OK) == 0) return Store_Dir(dir, path, size);
    return false;
}
