// The order in which the characters of a line stand when some of them run from right to left: the rules of
// Unicode, by FriBidi.
#pragma once

#include "Characters.h"

#include <cstddef>
#include <span>
#include <vector>

/// Neighbours that run the same way.
struct DirectionRun {
    std::size_t start, end;  ///< in the characters of the line
    bool isRightToLeft;
};

/// The parts of a line, from left to right. Throws std::bad_alloc without memory.
/// @param direction  of the line as a whole
std::vector<DirectionRun> Direction_Runs(std::span<uint32_t const> characters, HostDirection direction);
