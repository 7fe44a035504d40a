// Series of numbered files, under a name that holds the place of the number: shot[####].vpb.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

bool Is_Series(std::string const& path);

/// The files of a series that are there, by number.
std::vector<std::filesystem::path> Series_Files(std::filesystem::path const& series);
