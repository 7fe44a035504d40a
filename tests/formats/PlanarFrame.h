// Frames as ffmpeg decodes them, in planes of brightness and colour differences, and the exact values of
// their channels, against which conversions are held.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

/// A frame's channels without rounding.
using Values = std::vector<double>;

/// How brightness and colour differences lie in a frame that ffmpeg writes as it was decoded.
struct PlanarFrame {
    long width, height;
    int across, down;  ///< pixels for each sample of colour
    int depth;
    bool hasAlpha, isFullRange;
    double red, blue;  ///< shares in the brightness

    PlanarFrame(long w, long h, std::string const& name, bool isFull, bool isHigh)
        : width(w), height(h), across(name.find("444") == name.npos ? 2 : 1),
          down(name.find("420") == name.npos ? 1 : 2), depth(8), hasAlpha(name.starts_with("yuva")),
          isFullRange(isFull || name.starts_with("yuvj")), red(isHigh ? 0.2126 : 0.299),
          blue(isHigh ? 0.0722 : 0.114)
    {
        if (name.ends_with("10le")) depth = 10;
        if (name.ends_with("12le")) depth = 12;
    }
    std::size_t Plane_Size(int plane) const
    {
        bool const isColour = plane == 1 || plane == 2;
        return static_cast<std::size_t>(
            isColour ? (width + across - 1) / across * ((height + down - 1) / down) : width * height);
    }
    std::size_t Frame_Bytes() const
    {
        std::size_t samples = 0;
        for (int plane = 0; plane < (hasAlpha ? 4 : 3); ++plane)
            samples += Plane_Size(plane);
        return samples * (depth > 8 ? 2 : 1);
    }
    /// A sample; beyond the borders those at the border go on.
    double Sample(uint8_t const* frame, int plane, long x, long y) const
    {
        bool const isColour = plane == 1 || plane == 2;
        long const columns = isColour ? (width + across - 1) / across : width;
        long const rows = isColour ? (height + down - 1) / down : height;
        std::size_t at = 0;
        for (int before = 0; before < plane; ++before)
            at += Plane_Size(before);
        at +=
            static_cast<std::size_t>(std::clamp(y, 0L, rows - 1) * columns + std::clamp(x, 0L, columns - 1));
        return depth > 8 ? frame[2 * at] | frame[2 * at + 1] << 8 : frame[at];
    }
    /// Colour in the middle between its pixels, blended linearly.
    double Colour(uint8_t const* frame, int plane, long x, long y) const
    {
        double const u = (static_cast<double>(x) + 0.5) / across - 0.5;
        double const v = (static_cast<double>(y) + 0.5) / down - 0.5;
        auto const left = static_cast<long>(std::floor(u)), top = static_cast<long>(std::floor(v));
        double const right = u - std::floor(u), low = v - std::floor(v);
        auto const row = [&](long line) {
            return Sample(frame, plane, left, line) * (1 - right) +
                   Sample(frame, plane, left + 1, line) * right;
        };
        return row(top) * (1 - low) + row(top + 1) * low;
    }
    Values To_RGBA(uint8_t const* frame, double largest) const
    {
        double const all = (1 << depth) - 1, unit = 1 << (depth - 8), grey = 128 * unit;
        Values values;
        for (long y = 0; y < height; ++y)
            for (long x = 0; x < width; ++x) {
                double const luma = Sample(frame, 0, x, y);
                double const bright = isFullRange ? luma / all : (luma - 16 * unit) / (219 * unit);
                double const span = isFullRange ? all : 224 * unit;
                double const r = bright + (Colour(frame, 2, x, y) - grey) / span * 2 * (1 - red);
                double const b = bright + (Colour(frame, 1, x, y) - grey) / span * 2 * (1 - blue);
                double const g = (bright - red * r - blue * b) / (1 - red - blue);
                double const a = hasAlpha ? Sample(frame, 3, x, y) / all : 1;
                for (double value : {r, g, b, a})
                    values.push_back(std::clamp(value, 0.0, 1.0) * largest);
            }
        return values;
    }
};

/// Whether all channels of a picture are the nearest numbers; in the very middle either one will do.
inline bool Are_Nearest(std::vector<uint8_t> const& pixels, Values const& values, bool isDeep)
{
    if (pixels.size() != values.size() * (isDeep ? 2 : 1)) return false;
    for (std::size_t i = 0; i < values.size(); ++i) {
        double const got = isDeep ? pixels[2 * i] | pixels[2 * i + 1] << 8 : pixels[i];
        if (std::fabs(got - values[i]) > 0.51) return false;
    }
    return true;
}
