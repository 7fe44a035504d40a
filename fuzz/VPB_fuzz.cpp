// VPB pictures: the input is the file, opened as one and handed to the reader of pixels.
#include "ClipFuzz.h"

#include <algorithm>
#include <vector>

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    static ZVFormatDesc* const module = Fuzz_Module(ZV_FourCC("VPB "));
    static FuzzFile const file;
    file.Set(data, size);
    std::unique_ptr<ZVClip, decltype([](ZVClip* clip) { FreeClipZV(clip); })> const clip{NewClipZV()};
    clip->Format = module;
    clip->FileName = CopyFileSpecZV(file.Spec().c_str());
    bool const isOpen = module->Open(clip.get(), nullptr);
    if (isOpen && (clip->Width < 1 || clip->Height < 1)) std::abort();

    // A block of its own, so that a read beyond its end is seen.
    std::vector<uint8_t> bytes(data, data + size);
    long const pixels = isOpen ? clip->Width * clip->Height : 0;
    for (auto const& [width, height] : {std::pair{clip->Width, clip->Height}, {3L, 2L}}) {
        if (width < 1 || height < 1 || width * height > 1 << 16) continue;
        std::unique_ptr<ZVBitmap, decltype([](ZVBitmap* bitmap) { FreeBitmapZV(bitmap); })> const bitmap{
            AllocBitmapZV(width, height, ZV_BITMAP_RGBA8, nullptr)};
        ZVRectT<long> rect;
        long const isRead = module->GetFrame(clip.get(), bitmap.get(), 0, &rect, width, height, 0,
                                             bytes.data(), static_cast<long>(size));
        if (isRead && (!isOpen || 1024 + 2 * pixels > static_cast<long>(size))) std::abort();
    }
    module->Close(clip.get());
    if (clip->ModuleData) std::abort();
    return 0;
}
