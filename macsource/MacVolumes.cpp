// Volumes: the mounted file systems that specs name by themselves. The mount table is read whenever it is
// needed, since cards and drives come and go while an application runs.

#include "MacVolumes.h"

#include "MacFile.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <strings.h>

namespace {

constexpr std::array<std::string_view, 3> MountDirectories = {"/media/", "/run/media/", "/mnt/"};

bool Is_Below_Mount_Directory(std::string_view path)
{
    return std::any_of(MountDirectories.begin(), MountDirectories.end(), [&](std::string_view directory) {
        return path.size() > directory.size() && path.starts_with(directory);
    });
}

bool Equal_Without_Case(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

bool Is_Octal(char c)
{
    return c >= '0' && c <= '7';
}

/// Blanks, tabs, line ends and backslashes stand in the table as a backslash and three octal digits.
std::string Decode_Octal(std::string_view field)
{
    std::string text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && field.size() - i > 3 && Is_Octal(field[i + 1]) && Is_Octal(field[i + 2]) &&
            Is_Octal(field[i + 3])) {
            text += static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                      (field[i + 3] - '0'));
            i += 3;
        } else {
            text += field[i];
        }
    }
    return text;
}

/// The second field of a line: the mount point.
std::string Mount_Point(std::string_view line)
{
    std::size_t const start = line.find(' ');
    if (start == std::string_view::npos) return {};
    std::string_view const rest = line.substr(start + 1);
    return Decode_Octal(rest.substr(0, rest.find(' ')));
}

bool Is_Volume_Name(std::string_view name)
{
    // Specs are compared without case, so a mount named root would be taken for the root file system; a bar
    // ahead of the colon makes a text that no conversion touches.
    return !name.empty() && name.find('|') == std::string_view::npos &&
           !Equal_Without_Case(name, MAC_ROOT_VOLUME);
}

std::vector<MacVolume> Mounted_Volumes()
{
    auto close = [](std::FILE* file) { std::fclose(file); };
    std::unique_ptr<std::FILE, decltype(close)> file(std::fopen("/proc/self/mounts", "re"), close);
    if (!file) return {};
    std::string table;
    char piece[4096];
    while (std::size_t got = std::fread(piece, 1, sizeof piece, file.get()))
        table.append(piece, got);
    return Mac_Parse_Mounts(table);
}

}  // namespace

std::vector<MacVolume> Mac_Parse_Mounts(std::string_view table)
{
    std::vector<MacVolume> volumes;
    while (!table.empty()) {
        std::string_view const line = table.substr(0, table.find('\n'));
        table.remove_prefix(std::min(table.size(), line.size() + 1));
        std::string root = Mount_Point(line);
        if (!Is_Below_Mount_Directory(root)) continue;
        std::string name = root.substr(root.rfind('/') + 1);
        bool const taken = std::any_of(volumes.begin(), volumes.end(),
                                       [&](MacVolume const& volume) { return volume.name == name; });
        if (!taken && Is_Volume_Name(name)) volumes.push_back({std::move(name), std::move(root)});
    }
    return volumes;
}

bool Mac_Find_Volume(std::string_view name, MacVolume& volume)
{
    volume = {};
    if (name == MAC_ROOT_VOLUME) return true;
    std::string const native = Mac_Name_From_Spec(name);
    std::vector<MacVolume> volumes = Mounted_Volumes();
    auto found = std::find_if(volumes.begin(), volumes.end(),
                              [&](MacVolume const& one) { return one.name == native; });
    if (found == volumes.end()) {
        if (Equal_Without_Case(name, MAC_ROOT_VOLUME)) return true;
        found = std::find_if(volumes.begin(), volumes.end(),
                             [&](MacVolume const& one) { return Equal_Without_Case(one.name, native); });
    }
    if (found == volumes.end()) return false;
    volume = std::move(*found);
    return true;
}

MacVolume Mac_Volume_Of_Path(std::string_view path)
{
    MacVolume best;
    if (!Is_Below_Mount_Directory(path)) return best;
    for (MacVolume& volume : Mounted_Volumes()) {
        bool const holdsPath = path.starts_with(volume.root) &&
                               (path.size() == volume.root.size() || path[volume.root.size()] == '/');
        if (holdsPath && volume.root.size() > best.root.size()) best = std::move(volume);
    }
    return best;
}

void OS_List_Volumes(bool (*visit)(char const* name, void* data), void* data)
{
    if (!visit(std::string(MAC_ROOT_VOLUME).c_str(), data)) return;
    for (MacVolume const& volume : Mounted_Volumes())
        if (!visit(Mac_Name_To_Spec(volume.name).c_str(), data)) return;
}
