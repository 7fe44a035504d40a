// What the desktop layer's file sources share: native paths of specs, and error numbers of failed system
// calls.
#pragma once

#include "ZVFileSpec.h"

#include <string>
#include <string_view>

/// The native path of a spec or classic path.
/// @return  0; EINVAL for null and for a text without a volume part, ENODEV for an unknown volume,
/// ENAMETOOLONG for
///          a text or path too long for the buffers
int Mac_Native_Path(char const* spec, std::string& path);

/// A native name as it stands in a spec, and back: colon and backslash, which separate there, are exchanged
/// for U+F03A and U+F05C.
std::string Mac_Name_To_Spec(std::string_view name);
std::string Mac_Name_From_Spec(std::string_view name);

bool Mac_Is_Directory(std::string const& path);  ///< Also through a link.

/// Takes slashes off the end of a path other than "/"; behind one, a link would stand for what it leads to.
void Mac_Strip_Closing_Slashes(std::string& path);

/// Stores the error number that stands for an errno value; 0 clears it.
void Mac_Set_File_Error(int error);
