// Pictures: the input is one, without what a file has in front of it; inspected, and drawn whole, scaled and
// shifted.
#include "ClipFuzz.h"

#include <vector>

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    Fuzz_Module(ZV_FourCC("PICT"));  // brings the library up
    // A block of its own, so that a read beyond its end is seen.
    std::vector<uint8_t> const bytes(data, data + size);
    ZVPictureInfo info;
    bool const isPicture = Inspect_Picture(bytes.data(), size, &info);
    if (isPicture && (info.width < 1 || info.height < 1)) std::abort();
    if (!isPicture) info = {1, 1, 0};

    struct {
        long width, height;
        ZVRectT<long> area;
    } const drawings[] = {{info.width, info.height, {0, 0, info.width, info.height}},
                          {40, 30, {-5, 3, 50, 20}},
                          {3, 2, {0, 0, 3, 2}},
                          {30, 30, {-100, -100, 1 << 20, 1 << 20}}};
    for (auto const& drawing : drawings) {
        if (drawing.width * drawing.height > 1 << 14) continue;
        std::unique_ptr<ZVBitmap, decltype([](ZVBitmap* bitmap) { FreeBitmapZV(bitmap); })> const bitmap{
            AllocBitmapZV(drawing.width, drawing.height, ZV_BITMAP_RGBA8, nullptr)};
        bool const isDrawn = Draw_Picture(bytes.data(), size, bitmap.get(), drawing.area);
        if (isDrawn && !isPicture) std::abort();
    }
    return 0;
}
