// Type and creator codes of native files.
#pragma once

#include "ZVFileSpec.h"

/// Stores the codes with an open file, as far as its file system can hold them. Blank codes are not stored.
void Mac_Write_Codes(int descriptor, ZVCreatorPair codes);

/// Whether a file has just these codes. One without stored codes has those of its extension, and blank ones
/// too.
bool Mac_Has_Codes(char const* path, ZVCreatorPair codes);

ZVCreatorPair Mac_Read_Codes(char const* path);  ///< Of a regular file; blank ones when they cannot be had.
uint16_t Mac_Read_Flags(char const* path);       ///< Finder flags; 0 when they cannot be had.

/// Both of these, by one call of the system.
struct MacFileMarks {
    ZVCreatorPair codes;
    uint16_t flags;
};
MacFileMarks Mac_Read_Marks(char const* path);
