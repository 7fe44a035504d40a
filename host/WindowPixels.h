// The pixels of a window's client area, 32 bits deep, which change their size with it.
#pragma once

#include "Surface.h"

#include <cstdint>
#include <memory>
#include <span>

/// The size nearest to the one asked for that a window can have: at least 1 and at most 16384 each way.
HostRect Window_Client(HostRect const& client);

class WindowPixels {
public:
    /// White, and all of it touched.
    WindowPixels(int width, int height);

    HostSurface& Surface() { return surface_; }
    HostSurface const& Surface() const { return surface_; }
    std::span<uint32_t const> Words() const
    {
        HostRect const all = surface_.Bounds();
        return {words_.get(), static_cast<std::size_t>(all.right) * static_cast<std::size_t>(all.bottom)};
    }

    /// What the surface held stays, white beside it; its clip is lifted, and all of it counts as touched.
    void Resize(int width, int height);

private:
    std::unique_ptr<uint32_t[]> words_;
    HostSurface surface_;
};
