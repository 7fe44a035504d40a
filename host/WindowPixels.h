// The pixels of a window's client area, 32 bits deep, which change their size with it.
#pragma once

#include "Surface.h"

#include <cstdint>
#include <vector>

/// The size nearest to the one asked for that a window can have: at least 1 and at most 16384 each way.
HostRect Window_Client(HostRect const& client);

class WindowPixels {
public:
    /// White, and all of it touched.
    WindowPixels(int width, int height);

    HostSurface& Surface() { return surface_; }
    HostSurface const& Surface() const { return surface_; }
    std::vector<uint32_t> const& Words() const { return words_; }

    /// What the surface held stays, white beside it; its clip is lifted, and all of it counts as touched.
    void Resize(int width, int height);

private:
    std::vector<uint32_t> words_;
    HostSurface surface_;
};
