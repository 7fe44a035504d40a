// The pixels of a window's client area, 32 bits deep, which change their size with it.
#pragma once

#include "Surface.h"

#include <cstdint>
#include <functional>
#include <memory>

/// The size nearest to the one asked for that a window can have: at least 1 and at most 16384 each way.
HostRect Window_Client(HostRect const& client);

/// Memory for a window's pixels.
class PixelRoom {
public:
    virtual ~PixelRoom() = default;
    virtual uint32_t* Words() = 0;
};

/// Room for so many words; throws std::bad_alloc when there is none.
using PixelRoomMaker = std::function<std::unique_ptr<PixelRoom>(std::size_t words)>;

/// Memory of this process alone.
std::unique_ptr<PixelRoom> Make_Private_Room(std::size_t words);

class WindowPixels {
public:
    /// White, and all of it touched.
    WindowPixels(int width, int height, PixelRoomMaker makeRoom = Make_Private_Room);

    HostSurface& Surface() { return surface_; }
    HostSurface const& Surface() const { return surface_; }

    PixelRoom const& Room() const { return *room_; }
    int Room_Width() const { return static_cast<int>(roomWidth_); }    ///< Words from a row to the next one.
    int Room_Height() const { return static_cast<int>(roomHeight_); }  ///< Rows that there is room for.

    uint32_t* Row(int y) { return room_->Words() + static_cast<std::size_t>(y) * roomWidth_; }
    uint32_t const* Row(int y) const { return room_->Words() + static_cast<std::size_t>(y) * roomWidth_; }
    int Row_Bytes() const { return static_cast<int>(roomWidth_ * sizeof(uint32_t)); }

    /// What the surface held stays, white beside it; its clip is lifted, and all of it counts as touched.
    void Resize(int width, int height);

private:
    PixelRoomMaker makeRoom_;
    // There is room for somewhat larger windows, since an edge that is dragged brings many sizes in a row.
    std::unique_ptr<PixelRoom> room_;
    std::size_t roomWidth_ = 0, roomHeight_ = 0;
    HostSurface surface_;
};
