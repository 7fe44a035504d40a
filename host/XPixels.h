// Pixels of windows that the X server reads where the library draws them: memory shared with the server.
// SDL's own window surfaces are made anew for each size of a window, and take one more copy.
#pragma once

#include "WindowPixels.h"

#include <memory>

struct SDL_Window;

class XPixels {
public:
    virtual ~XPixels() = default;  ///< All rooms are gone by then.

    /// Shared memory, or a private room where there is none to be had.
    virtual std::unique_ptr<PixelRoom> Make_Room(std::size_t words) = 0;

    /// Shows a region of a window's pixels, of which one is one of the window; the server has read them when
    /// this returns. False, with nothing shown, when they lie in a private room.
    virtual bool Show(SDL_Window* window, WindowPixels const& pixels, HostRegion const& region) = 0;
};

/// Null when the window's display is not X, has other pixels than the library's words 0xXXRRGGBB, or its
/// server cannot share memory with this process.
std::unique_ptr<XPixels> Make_X_Pixels(SDL_Window* window);
