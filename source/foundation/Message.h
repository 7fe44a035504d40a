// Messages where no requester can be shown: on standard error.
#pragma once

#include <cstddef>

inline constexpr std::size_t MessageSize = 2048;  ///< of a formatted message, with its closing zero

/// Writes a text as one line, or nothing for an empty or null one.
void Write_Message(char const* text);

/// Writes each line of a text that is not empty.
void Write_Message_Lines(char const* text);
