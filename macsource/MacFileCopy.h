// Moves files between file systems.
#pragma once

#include <string>

/// Copies a regular file with its attributes to a place on another file system, replacing what is there in
/// one step, and deletes the source. A failure before that step leaves both as they were.
/// @return  0 or an errno value
int Mac_Move_Across(std::string const& from, std::string const& to);
