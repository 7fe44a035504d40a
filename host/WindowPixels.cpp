#include "WindowPixels.h"

#include <algorithm>

namespace {

constexpr int LargestWindow = 16384;
constexpr uint32_t White = 0xFFFFFF;

}  // namespace

HostRect Window_Client(HostRect const& client)
{
    return {client.left, client.top, client.left + std::clamp(client.Width(), 1, LargestWindow),
            client.top + std::clamp(client.Height(), 1, LargestWindow)};
}

WindowPixels::WindowPixels(int width, int height) : surface_(nullptr, 0, 0, 32, 0)
{
    Resize(width, height);
}

void WindowPixels::Resize(int width, int height)
{
    auto words = std::make_unique_for_overwrite<uint32_t[]>(static_cast<std::size_t>(width) *
                                                            static_cast<std::size_t>(height));
    HostSurface surface(reinterpret_cast<unsigned char*>(words.get()), width, height, 32, width * 4);
    HostRect const old = surface_.Bounds();
    surface.Track_Touched();
    surface.Blit(surface_, old, 0, 0);
    surface.Fill({old.right, 0, width, height}, White);
    surface.Fill({0, old.bottom, width, height}, White);
    words_ = std::move(words);
    surface_ = std::move(surface);
}
