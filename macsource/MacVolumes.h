// Volumes: the mounted file systems that specs name by themselves.
#pragma once

#include "ZVBase.h"

#include <string>
#include <string_view>
#include <vector>

inline constexpr std::string_view MAC_ROOT_VOLUME = "Root";  ///< name of the root file system

struct MacVolume {
    std::string name;  ///< native: the last part of `root`; empty for the root file system
    std::string root;  ///< mount point without a closing slash; empty for the root file system
};

/// The volumes of a table in the form of /proc/self/mounts: mounts below /media, /run/media and /mnt. Of
/// several mounts of one name the first counts. One whose name cannot begin a spec, or is that of the root
/// file system, is none.
ZV_API std::vector<MacVolume> Mac_Parse_Mounts(std::string_view table);

/// The volume whose name, written as in a spec, is asked for: exactly first, then without case.
/// @return  false when there is none
bool Mac_Find_Volume(std::string_view name, MacVolume& volume);

/// The volume that an absolute path lies on. Reads the mount table only for a path below the three
/// directories.
MacVolume Mac_Volume_Of_Path(std::string_view path);
