// The pop-up of a file dialog: which kinds of files it lists, and what it means to choose one.
#pragma once

#include "ZVLibInternal.h"

#include <string>
#include <vector>

/// The texts of the pop-up's entries, in their order; empty without a pop-up.
std::vector<std::string> File_Kind_Names(ZVFileRequest const& request);

/// The extension of the current kind, without a dot; empty when it has none.
std::string File_Kind_Extension(ZVFileRequest const& request);

/// The text that the pop-up's gadget draws as a line.
inline constexpr char const* KindSeparator = "_";
