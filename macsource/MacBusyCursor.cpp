// The busy cursor is drawn by measure, so that it needs no file and each frame fits the next.
#include "MacBusyCursor.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr int Size = 32;
constexpr double Middle = Size / 2.0, RingRadius = 11, DotRadius = 2.8;

/// The dark rim by which the dots stand out from any ground.
constexpr double RimRadius = DotRadius + 1.2, RimOpacity = 0.9;

/// Light of the dot that leads, and what is left of it in the last one behind.
constexpr double LeadLight = 1.0, TailLight = 0.22;

struct Dot {
    double x, y, light;
};

Dot Dot_At(int place, int frame)
{
    double const angle = 2 * std::numbers::pi * place / BusyFrames;
    int const behind = (frame - place + BusyFrames) % BusyFrames;
    double const light = LeadLight - (LeadLight - TailLight) * behind / (BusyFrames - 1);
    return {Middle + RingRadius * std::sin(angle), Middle - RingRadius * std::cos(angle), light};
}

/// What a disc covers of a pixel, its edge being smooth over the width of one.
double Coverage(double distance, double radius)
{
    return std::clamp(radius - distance + 0.5, 0.0, 1.0);
}

uint32_t Pixel_Of(Dot const& dot, double x, double y)
{
    double const distance = std::hypot(x - dot.x, y - dot.y);
    double const core = Coverage(distance, DotRadius);
    double const alpha = std::max(core, RimOpacity * Coverage(distance, RimRadius));
    if (alpha <= 0) return 0;
    auto const byte = [](double share) { return static_cast<uint32_t>(std::lround(share * 255)); };
    uint32_t const light = byte(dot.light * core / alpha);
    return byte(alpha) << 24 | light << 16 | light << 8 | light;
}

}  // namespace

HostCursorImage Busy_Cursor(int frame)
{
    HostCursorImage image{Size, Size, Size / 2, Size / 2, std::vector<uint32_t>(Size * Size)};
    for (int place = 0; place < BusyFrames; ++place) {
        Dot const dot = Dot_At(place, frame);
        for (int y = 0; y < Size; ++y) {
            for (int x = 0; x < Size; ++x) {
                uint32_t& pixel = image.pixels[static_cast<std::size_t>(y * Size + x)];
                pixel = std::max(pixel, Pixel_Of(dot, x + 0.5, y + 0.5));
            }
        }
    }
    return image;
}
