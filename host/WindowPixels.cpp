#include "WindowPixels.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <sys/mman.h>
#include <utility>

namespace {

constexpr int LargestWindow = 16384;
constexpr uint32_t White = 0xFFFFFF;

constexpr std::size_t LargePage = std::size_t{2} << 20;
constexpr std::size_t RoomStep = 256;

constexpr std::size_t Rounded_Up(std::size_t value, std::size_t step)
{
    return (value + step - 1) / step * step;
}

/// Room for so many words, in large pages where the system has them: to touch many small ones for the first
/// time takes longer than to fill them.
uint32_t* Allocate_Room(std::size_t words)
{
    std::size_t const bytes = Rounded_Up(words * sizeof(uint32_t), LargePage);
    void* const room = std::aligned_alloc(LargePage, bytes);
    if (!room) throw std::bad_alloc();
    madvise(room, bytes, MADV_HUGEPAGE);
    return static_cast<uint32_t*>(room);
}

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

void WindowPixels::Free::operator()(uint32_t* words) const
{
    std::free(words);
}

void WindowPixels::Resize(int width, int height)
{
    HostRect const old = surface_.Bounds();
    auto const wideEnough = static_cast<std::size_t>(width), highEnough = static_cast<std::size_t>(height);
    std::unique_ptr<uint32_t[], Free> former;
    if (wideEnough > roomWidth_ || highEnough > roomHeight_) {
        roomWidth_ = Rounded_Up(wideEnough, RoomStep);
        roomHeight_ = Rounded_Up(highEnough, RoomStep);
        former = std::exchange(words_, {Allocate_Room(roomWidth_ * roomHeight_), {}});
    }
    HostSurface surface(reinterpret_cast<unsigned char*>(words_.get()), width, height, 32, Row_Bytes());
    surface.Track_Touched();
    if (former) surface.Blit(surface_, old, 0, 0);
    surface.Fill({old.right, 0, width, height}, White);
    surface.Fill({0, old.bottom, width, height}, White);
    surface.Touch_All();
    surface_ = std::move(surface);
}
