// Names, sizes and dates as a file dialog shows and sorts them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The text without case and accents, as people look names up. Bytes that are no UTF-8 stay.
std::string Folded(std::string_view text);

/// Names in the order of their keys' bytes are in natural order: without case and accents, and numbers by
/// their value.
std::string Sort_Key_Of_Name(std::string_view name);

/// A name of a spec as people know it: with the colons and backslashes that a spec has other characters for,
/// and without line ends and the like.
std::string Shown_Name(std::string_view name);

std::string Size_Text(int64_t bytes);
std::string Date_Text(int64_t seconds);  ///< Of seconds since 1 January 1970, in local time.
