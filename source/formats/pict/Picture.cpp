// Pictures in memory, for all who show them.
#include "PictPlayer.h"

#include "ZVLibInternal.h"
#include "clips/BitmapBlock.h"

#include <new>

namespace {

std::span<uint8_t const> Bytes_Of(void const* bytes, unsigned long size)
{
    return {static_cast<uint8_t const*>(bytes), bytes ? size : 0};
}

/// Calls `work`, and notes when memory runs out in it.
template <typename Work> bool With_Memory(Work&& work)
{
    try {
        return work();
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return false;
    }
}

}  // namespace

bool Inspect_Picture(void const* bytes, unsigned long size, ZVPictureInfo* info)
{
    return With_Memory([&] {
        PictPlayer player(Bytes_Of(bytes, size));
        if (!player.Is_Picture()) {
            SetError(ZV_ERR_CLIP);
            return false;
        }
        // Damage further on does not matter here: what is in front of it tells the depth.
        player.Play(nullptr, player.Frame());
        *info = {player.Frame().Width(), player.Frame().Height(), player.Depth()};
        return true;
    });
}

bool Draw_Picture(void const* bytes, unsigned long size, ZVBitmap* bitmap, ZVRectT<long> const& area)
{
    if (!bitmap || !bitmap->Pixels || bitmap->Type != ZV_BITMAP_RGBA8 || area.IsEmpty()) {
        SetError(ZV_ERR_CLIP);
        return false;
    }
    return With_Memory([&] {
        PictPlayer player(Bytes_Of(bytes, size));
        PictRect const target{area.x, area.y, area.x + area.width, area.y + area.height};
        if (player.Play(bitmap, target)) return true;
        if (!player.Is_Unreadable()) SetError(ZV_ERR_CLIP);
        return false;
    });
}

ZVBitmap* Decode_Picture(void const* bytes, unsigned long size)
{
    ZVPictureInfo info;
    if (!Inspect_Picture(bytes, size, &info)) return nullptr;
    BitmapBlock bitmap{AllocBitmapZV(info.width, info.height, ZV_BITMAP_RGBA8, "picture")};
    if (!bitmap || !Draw_Picture(bytes, size, bitmap.get(), {0, 0, info.width, info.height})) return nullptr;
    return bitmap.release();
}
