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

/// In large pages where the system has them: to touch many small ones for the first time takes longer than to
/// fill them.
class PrivateRoom : public PixelRoom {
public:
    explicit PrivateRoom(std::size_t words)
    {
        std::size_t const bytes = Rounded_Up(words * sizeof(uint32_t), LargePage);
        words_.reset(static_cast<uint32_t*>(std::aligned_alloc(LargePage, bytes)));
        if (!words_) throw std::bad_alloc();
        madvise(words_.get(), bytes, MADV_HUGEPAGE);
    }
    uint32_t* Words() override { return words_.get(); }

private:
    struct Free {
        void operator()(uint32_t* words) const { std::free(words); }
    };
    std::unique_ptr<uint32_t[], Free> words_;
};

}  // namespace

HostRect Window_Client(HostRect const& client)
{
    return {client.left, client.top, client.left + std::clamp(client.Width(), 1, LargestWindow),
            client.top + std::clamp(client.Height(), 1, LargestWindow)};
}

std::unique_ptr<PixelRoom> Make_Private_Room(std::size_t words)
{
    return std::make_unique<PrivateRoom>(words);
}

WindowPixels::WindowPixels(int width, int height, PixelRoomMaker makeRoom)
    : makeRoom_(std::move(makeRoom)), surface_(nullptr, 0, 0, 32, 0)
{
    Resize(width, height);
}

void WindowPixels::Resize(int width, int height)
{
    HostRect const old = surface_.Bounds();
    auto const wideEnough = static_cast<std::size_t>(width), highEnough = static_cast<std::size_t>(height);
    std::unique_ptr<PixelRoom> former;
    if (wideEnough > roomWidth_ || highEnough > roomHeight_) {
        std::size_t const roomWidth = Rounded_Up(wideEnough, RoomStep);
        std::size_t const roomHeight = Rounded_Up(highEnough, RoomStep);
        former = std::exchange(room_, makeRoom_(roomWidth * roomHeight));
        roomWidth_ = roomWidth;
        roomHeight_ = roomHeight;
    }
    HostSurface surface(reinterpret_cast<unsigned char*>(Row(0)), width, height, 32, Row_Bytes());
    surface.Track_Touched();
    if (former) surface.Blit(surface_, old, 0, 0);
    surface.Fill({old.right, 0, width, height}, White);
    surface.Fill({0, old.bottom, width, height}, White);
    surface.Touch_All();
    surface_ = std::move(surface);
}
