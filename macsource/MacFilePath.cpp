// Specs to native paths and back. A spec's volume stands for a mount point, its backslashes for slashes; a
// colon or backslash inside a native name is kept apart from the separators by U+F03A and U+F05C. A native
// name that holds one of these two characters itself is the one thing that cannot be named.

#include "MacFile.h"

#include "MacVolumes.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sys/stat.h>

namespace {

constexpr std::string_view SpecColon = "\xEF\x80\xBA";      // U+F03A
constexpr std::string_view SpecBackslash = "\xEF\x81\x9C";  // U+F05C

constexpr long ResultMissing = -43;  // the directory is there, the object is not
constexpr long ResultNoDirectory = -120;
constexpr long ResultNoVolume = -35;
constexpr long ResultBad = -1;

bool Exists(char const* path)
{
    struct stat info;
    return stat(path, &info) == 0;
}

/// Takes the next character of a native name off the text of a spec.
std::string_view Take_Character(std::string_view& text)
{
    std::string_view native = text.substr(0, 1);
    std::size_t taken = 1;
    if (text.starts_with(SpecColon)) {
        native = ":";
        taken = SpecColon.size();
    } else if (text.starts_with(SpecBackslash)) {
        native = "\\";
        taken = SpecBackslash.size();
    }
    text.remove_prefix(taken);
    return native;
}

/// The directory that holds the object at an absolute path without closing slashes.
std::string Parent(std::string_view path)
{
    std::size_t const slash = path.rfind('/');
    return std::string(slash == 0 ? "/" : path.substr(0, slash));
}

/// Goes from a resolved directory down, or up, by the components of a path that does not exist.
void Append_As_Text(std::string& directory, std::string_view rest)
{
    while (!rest.empty()) {
        std::string_view const component = rest.substr(0, rest.find('/'));
        rest.remove_prefix(std::min(rest.size(), component.size() + 1));
        if (component.empty() || component == ".") continue;
        if (component == "..") {
            directory = Parent(directory);
            continue;
        }
        if (directory.back() != '/') directory += '/';
        directory += component;
    }
}

/// The directory without links, dots and doubled slashes. What does not exist of it is tidied as text.
std::string Resolve_Directory(std::string const& path)
{
    char resolved[PATH_MAX] = "/";
    std::string existing = path;
    while (existing.size() > 1 && !realpath(existing.c_str(), resolved))
        existing = Parent(existing);
    std::string directory = existing.size() > 1 ? resolved : "/";
    Append_As_Text(directory, std::string_view(path).substr(existing.size()));
    return directory;
}

/// The one spelling of an absolute path: its directory resolved, its own name kept, so that a link stays
/// itself.
std::string Resolve_Place(std::string_view path)
{
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    std::string_view const leaf = path.substr(path.rfind('/') + 1);
    if (leaf.empty() || leaf == "." || leaf == "..") return Resolve_Directory(std::string(path));
    std::string place = Resolve_Directory(Parent(path));
    if (place.back() != '/') place += '/';
    return place.append(leaf);
}

/// The spec of a resolved path.
std::string Spec_Of_Path(std::string const& path)
{
    MacVolume const volume = Mac_Volume_Of_Path(path);
    std::string spec = volume.name.empty() ? std::string(MAC_ROOT_VOLUME) : Mac_Name_To_Spec(volume.name);
    spec += ":\\";
    std::string rest = Mac_Name_To_Spec(std::string_view(path).substr(volume.root.size()));
    std::replace(rest.begin(), rest.end(), '/', '\\');
    return spec.append(rest, rest.starts_with('\\') ? 1 : 0);
}

long Write_Spec_Of_Place(char* buffer, std::string_view path)
{
    std::string const resolved = Resolve_Place(path);
    std::string spec = Spec_Of_Path(resolved);
    // A directory that does not exist yet is known by the slash it was given with.
    bool const isDirectory = path.ends_with('/') || Mac_Is_Directory(resolved.c_str());
    if (isDirectory && !spec.ends_with('\\')) spec += '\\';
    if (spec.size() >= static_cast<std::size_t>(ZV_SPEC_SIZE)) {
        SetError(ZV_ERR_NOT_FOUND);
        return ResultBad;
    }
    std::memcpy(buffer, spec.c_str(), spec.size() + 1);
    return 0;
}

bool Has_Directory(std::string_view path)
{
    char parent[PATH_MAX];
    std::size_t const length = std::max<std::size_t>(path.rfind('/'), 1);
    std::memcpy(parent, path.data(), length);
    parent[length] = 0;
    return Mac_Is_Directory(parent);
}

long Find_Place(char const* spec, FSSpec* out)
{
    MacPath path;
    switch (path.Set(spec)) {
    case 0: break;
    case ENAMETOOLONG: return ResultNoDirectory;
    default: return ResultNoVolume;
    }
    path.Strip_Closing_Slashes();
    static_assert(sizeof out->path >= PATH_MAX);
    std::memcpy(out->path, path.Text(), path.View().size() + 1);
    if (Exists(path.Text())) return 0;
    return Has_Directory(path.View()) ? ResultMissing : ResultNoDirectory;
}

}  // namespace

bool MacPath::Append(std::string_view native)
{
    if (native.size() >= sizeof text_ - length_) return false;
    std::memcpy(text_ + length_, native.data(), native.size());
    length_ += native.size();
    text_[length_] = 0;
    return true;
}

bool MacPath::Append_Spec(std::string_view rest)
{
    while (!rest.empty()) {
        bool const isSeparator = rest.front() == '\\';
        std::string_view const native = Take_Character(rest);
        if (!Append(isSeparator ? "/" : native)) return false;
    }
    return true;
}

int MacPath::Set(char const* spec)
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

    try {
        MacVolume volume;
        if (!Mac_Find_Volume({text, static_cast<std::size_t>(colon - text)}, volume)) return ENODEV;
        length_ = 0;
        if (!Append(volume.root)) return ENAMETOOLONG;
    } catch (std::bad_alloc const&) {
        return ENOMEM;
    }
    char const* rest = colon[1] == '\\' ? colon + 2 : colon + 1;
    return Append("/") && Append_Spec(rest) ? 0 : ENAMETOOLONG;
}

void MacPath::Strip_Closing_Slashes()
{
    while (length_ > 1 && text_[length_ - 1] == '/')
        --length_;
    text_[length_] = 0;
}

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
    while (!name.empty())
        text += Take_Character(name);
    return text;
}

bool Mac_Is_Directory(char const* path)
{
    struct stat info;
    return stat(path, &info) == 0 && S_ISDIR(info.st_mode);
}

bool OS_Native_Path(char const* spec, char* path, unsigned long size)
{
    MacPath native;
    if (native.Set(spec) != 0 || native.View().size() >= size) return false;
    std::memcpy(path, native.Text(), native.View().size() + 1);
    return true;
}

long GetDOSPathZV(char* buffer, FSSpec const* place)
{
    if (!buffer || !place || place->path[0] != '/') return ResultBad;
    std::string_view const path(place->path, strnlen(place->path, sizeof place->path));
    try {
        return Write_Spec_Of_Place(buffer, path);
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return ResultBad;
    }
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
