// The enumeration behind EnumFilesZV, for those in the library who ask for no types: reading them takes most
// of the time.
#pragma once

#include "ZVFileSearch.h"

/// EnumFilesZV for files of all types; the callback gets blanks as the type.
void Enum_Files_Of_Any_Type(char const* const* directories, ZVEnumFilesFunc callback, long data, long recurse,
                            long maxDirectories);
