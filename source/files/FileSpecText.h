// What the files of this folder share for building spec texts.
#pragma once

#include "ZVFileSpec.h"

#include <string_view>

/// Copies a text into a buffer of ZV_SPEC_SIZE bytes. One that does not fit leaves the buffer empty and sets
/// error 12, as for any name too long to be found.
bool Copy_Spec_Text(char* buffer, std::string_view text);

/// The text behind the last colon or backslash, inside `spec`.
char const* File_Name(char const* spec);

/// A block for a spec of that many characters; null with error 1, else the error number is 0.
char* Allocate_Spec(std::size_t length);
