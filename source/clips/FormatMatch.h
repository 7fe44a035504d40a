// Which module has a file.
#pragma once

#include "ZVLibInternal.h"

/// A caller's extension of four characters as a code; a shorter text is filled with zeros.
uint32_t Pack_Extension(char const* text);

/// Whether a pair of codes, in which blanks stand for anything, means a file of these codes.
bool Matches_Codes(ZVTypePair const& pair, unsigned long creator, unsigned long type);

/// The first module that lists the code among its ReadExtensions, or null.
ZVFormatDesc* Find_Extension_Format(uint32_t code);

/// The first module that claims the file, or null with error 15.
ZVFormatDesc* Match_Format(char const* spec, uint32_t extension);
