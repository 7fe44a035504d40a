// The pixels of a window's client area, 32 bits deep, which change their size with it.
#pragma once

#include "Surface.h"

#include <cstdint>
#include <memory>

/// The size nearest to the one asked for that a window can have: at least 1 and at most 16384 each way.
HostRect Window_Client(HostRect const& client);

class WindowPixels {
public:
    /// White, and all of it touched.
    WindowPixels(int width, int height);

    HostSurface& Surface() { return surface_; }
    HostSurface const& Surface() const { return surface_; }

    uint32_t const* Row(int y) const { return words_.get() + static_cast<std::size_t>(y) * roomWidth_; }
    int Row_Bytes() const { return static_cast<int>(roomWidth_ * sizeof(uint32_t)); }

    /// What the surface held stays, white beside it; its clip is lifted, and all of it counts as touched.
    void Resize(int width, int height);

private:
    struct Free {
        void operator()(uint32_t* words) const;
    };

    // There is room for somewhat larger windows, since an edge that is dragged brings many sizes in a row.
    std::unique_ptr<uint32_t[], Free> words_;
    std::size_t roomWidth_ = 0, roomHeight_ = 0;
    HostSurface surface_;
};
