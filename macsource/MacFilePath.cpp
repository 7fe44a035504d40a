// Specs to native paths and back. A spec's volume stands for a mount point, its backslashes for slashes; a
// colon or backslash inside a native name is kept apart from the separators by U+F03A and U+F05C. A native
// name that holds one of these two characters itself is the one thing that cannot be named.

#include "MacFile.h"

#include "MacVolumes.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <sys/stat.h>

namespace {

constexpr std::string_view SpecColon = "\xEF\x80\xBA";      // U+F03A
constexpr std::string_view SpecBackslash = "\xEF\x81\x9C";  // U+F05C

constexpr long ResultMissing = -43;  // the directory is there, the object is not
constexpr long ResultNoDirectory = -120;
constexpr long ResultNoVolume = -35;
constexpr long ResultBad = -1;

bool Exists(std::string const& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

/// The directory that holds the object at an absolute path without closing slashes.
std::string Parent(std::string const& path)
{
    std::size_t const slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

/// The directory without links, dots and doubled slashes. What does not exist of it is tidied as text.
std::string Resolve_Directory(std::string const& path)
{
    std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path.c_str(), nullptr), &std::free);
    if (resolved) return resolved.get();
    std::error_code error;
    std::filesystem::path tidied = std::filesystem::weakly_canonical(path, error);
    if (error) tidied = std::filesystem::path(path).lexically_normal();
    std::string text = tidied.string();
    Mac_Strip_Closing_Slashes(text);
    return text;
}

/// The one spelling of an absolute path: its directory resolved, its own name kept, so that a link stays
/// itself.
std::string Resolve_Place(std::string path)
{
    Mac_Strip_Closing_Slashes(path);
    std::string const leaf = path.substr(path.rfind('/') + 1);
    if (leaf.empty() || leaf == "." || leaf == "..") return Resolve_Directory(path);
    std::string place = Resolve_Directory(Parent(path));
    if (place.back() != '/') place += '/';
    return place + leaf;
}

/// The spec of a resolved path.
std::string Spec_Of_Path(std::string const& path)
{
    MacVolume const volume = Mac_Volume_Of_Path(path);
    std::string spec = volume.name.empty() ? std::string(MAC_ROOT_VOLUME) : Mac_Name_To_Spec(volume.name);
    spec += ":\\";
    std::string rest = Mac_Name_To_Spec(std::string_view(path).substr(volume.root.size()));
    std::replace(rest.begin(), rest.end(), '/', '\\');
    spec.append(rest, rest.starts_with('\\') ? 1 : 0);
    return spec;
}

bool Copy_Place(std::string const& path, FSSpec* place)
{
    if (path.size() >= sizeof place->path) return false;
    std::memcpy(place->path, path.c_str(), path.size() + 1);
    return true;
}

long Find_Place(char const* spec, FSSpec* out)
{
    std::string path;
    switch (Mac_Native_Path(spec, path)) {
    case 0: break;
    case ENAMETOOLONG: return ResultNoDirectory;
    default: return ResultNoVolume;
    }
    Mac_Strip_Closing_Slashes(path);
    if (!Copy_Place(path, out)) return ResultNoDirectory;
    if (Exists(path)) return 0;
    return Mac_Is_Directory(Parent(path)) ? ResultMissing : ResultNoDirectory;
}

}  // namespace

std::string Mac_Name_To_Spec(std::string_view name)
{
    std::string text;
    text.reserve(name.size());
    for (char c : name) {
        if (c == ':')
            text += SpecColon;
        else if (c == '\\')
            text += SpecBackslash;
        else
            text += c;
    }
    return text;
}

std::string Mac_Name_From_Spec(std::string_view name)
{
    std::string text;
    text.reserve(name.size());
    while (!name.empty()) {
        if (name.starts_with(SpecColon)) {
            text += ':';
            name.remove_prefix(SpecColon.size());
        } else if (name.starts_with(SpecBackslash)) {
            text += '\\';
            name.remove_prefix(SpecBackslash.size());
        } else {
            text += name.front();
            name.remove_prefix(1);
        }
    }
    return text;
}

bool Mac_Is_Directory(std::string const& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

void Mac_Strip_Closing_Slashes(std::string& path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
}

int Mac_Native_Path(char const* spec, std::string& path)
{
    if (!spec) return EINVAL;
    std::size_t const length = std::strlen(spec);
    if (length >= static_cast<std::size_t>(ZV_SPEC_SIZE)) return ENAMETOOLONG;

    // A classic path becomes a spec, which is one character longer.
    char text[ZV_SPEC_SIZE + 1];
    std::memcpy(text, spec, length + 1);
    if (!std::strstr(text, ":\\")) ConvertPathtoDOSZV(text);
    char const* colon = std::strpbrk(text, ":|");
    if (!colon || *colon == '|') return EINVAL;

    MacVolume volume;
    if (!Mac_Find_Volume(std::string_view(text, static_cast<std::size_t>(colon - text)), volume))
        return ENODEV;
    std::string rest = colon[1] == '\\' ? colon + 2 : colon + 1;
    std::replace(rest.begin(), rest.end(), '\\', '/');
    path = volume.root + '/' + Mac_Name_From_Spec(rest);
    return path.size() < PATH_MAX ? 0 : ENAMETOOLONG;
}

bool OS_Native_Path(char const* spec, char* path, unsigned long size)
{
    std::string native;
    if (Mac_Native_Path(spec, native) != 0 || native.size() >= size) return false;
    std::memcpy(path, native.c_str(), native.size() + 1);
    return true;
}

long GetDOSPathZV(char* buffer, FSSpec const* place)
{
    if (!buffer || !place || place->path[0] != '/') return ResultBad;
    std::string const path(place->path, strnlen(place->path, sizeof place->path));
    std::string const resolved = Resolve_Place(path);
    std::string spec = Spec_Of_Path(resolved);
    // A directory that does not exist yet is known by the slash it was given with.
    bool const isDirectory = path.ends_with('/') || Mac_Is_Directory(resolved);
    if (isDirectory && !spec.ends_with('\\')) spec += '\\';
    if (spec.size() >= static_cast<std::size_t>(ZV_SPEC_SIZE)) {
        SetError(ZV_ERR_NOT_FOUND);
        return ResultBad;
    }
    std::memcpy(buffer, spec.c_str(), spec.size() + 1);
    return 0;
}

long GetFSSpecZV(char const* spec, FSSpec* out)
{
    if (!spec || !out) return ResultBad;
    return Find_Place(spec, out);
}

long GetFSRefZV(char const* spec, FSRef* out)
{
    if (!spec || !out || !std::strchr(spec, ':')) return ResultBad;
    return Find_Place(spec, out);
}
