// Pictures of windows, and their files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct HostPicture {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;  ///< 0xFFRRGGBB, rows from top to bottom

    uint32_t At(int x, int y) const
    {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

/// Writes a PNG file over whatever is there.
bool Write_Png(HostPicture const& picture, std::string const& path);
