// A bitmap saved as a JPEG file, through whichever module writes such files.
#include "BitmapBlock.h"
#include "ClipMemory.h"
#include "foundation/HeapBlock.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <span>

namespace {

using ClipBlock = std::unique_ptr<ZVClip, Released_By<FreeClipZV>>;

constexpr uint32_t jpegExtension = 0x6A706700;  // "jpg"

ZVFormatDesc* Find_Module()
{
    for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node)) {
        auto* const format = reinterpret_cast<ZVFormatDesc*>(node);
        std::span const extensions(format->ReadExtensions,
                                   static_cast<std::size_t>(std::max(format->ReadExtensionCount, 0L)));
        if (std::ranges::find(extensions, jpegExtension) != extensions.end()) return format;
    }
    return nullptr;
}

/// The options in one block, which the clip owns.
ZVFormatParams* Make_Options(long quality)
{
    struct Block {
        ZVFormatParams params;
        ZVPictureOptions options;
    };
    auto* const block = Alloc_Zeroed<Block>(1);
    if (!block) return nullptr;
    block->options.Quality = static_cast<int32_t>(quality);
    block->params = {&block->options, sizeof block->options};
    return &block->params;
}

/// Shows the busy cursor while it lives.
struct BusyCursor {
    BusyCursor() { BusyZV(); }
    ~BusyCursor() { NotBusyZV(); }
    BusyCursor(BusyCursor const&) = delete;
    BusyCursor& operator=(BusyCursor const&) = delete;
};

ClipBlock Make_Clip(ZVBitmap const& bitmap, char const* path, ZVFormatDesc* format, long quality)
{
    ClipBlock clip(NewClipZV());
    if (!clip) return nullptr;
    clip->FileName = CopyFileSpecZV(path);
    clip->VideoParams = Make_Options(quality);
    if (!clip->FileName || !clip->VideoParams) return nullptr;
    clip->Format = format;
    clip->BitDepth = 8;
    clip->Media = ZV_MEDIA_VIDEO;
    clip->Frames = 1;
    clip->Width = clip->FullWidth = bitmap.Width;
    clip->Height = clip->FullHeight = bitmap.Height;
    clip->Flags |= ZV_CLIP_WRITING;
    return clip;
}

}  // namespace

void WriteJPEGZV(ZVBitmap* bitmap, char const* path, long quality)
{
    if (!bitmap || !path || !ZVEnv) return;
    ZVFormatDesc* const format = Find_Module();
    if (!format) return;
    BusyCursor const busy;
    BitmapBlock expanded;
    if (bitmap->Type == ZV_BITMAP_MONO8) {
        expanded.reset(AllocBitmapZV(bitmap->Width, bitmap->Height, ZV_BITMAP_RGBA8, "grey"));
        if (!expanded) return;
        ConvertMonoToRGBA(static_cast<ZVBufferMono8 const*>(bitmap), expanded.get());
        bitmap = expanded.get();
    }
    ClipBlock const clip = Make_Clip(*bitmap, path, format, quality);
    if (!clip || !CreateClipZV(clip.get(), 0)) return;
    if (BeginClipIOZV(clip.get(), nullptr)) {
        AddFrameZV(clip.get(), bitmap, nullptr, nullptr, nullptr);
        EndClipIOZV(clip.get(), nullptr);
    }
    CloseClipZV(clip.get());
}
