// How a movie is turned when it is shown: cameras store their pictures as the sensor lies, and tell in the
// track which way is up.
#pragma once

#include "MovieLibrary.h"

/// Quarter turns and mirrored pictures. Other matrices, which tilt or scale, leave the pictures as they are.
struct MovieTurn {
    bool swaps = false;     ///< rows are shown as columns
    bool mirrorsX = false;  ///< what is shown leftmost is the end of a stored row or column
    bool mirrorsY = false;  ///< likewise what is shown at the top

    bool Is_None() const { return !swaps && !mirrorsX && !mirrorsY; }
};

MovieTurn Turn_Of(AVStream const& stream);

/// Copies rows of pixels as they are shown. Width and height are those of the stored picture.
void Turn_Picture(MovieTurn const& turn, int width, int height, HostPixels layout, void const* stored,
                  std::size_t storedRowBytes, void* shown, std::size_t shownRowBytes);
