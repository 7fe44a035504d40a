// Reading pictures.
#include "PictureRead.h"

#include "DeepPicture.h"

#include <vector>

namespace {

/// Channels that follow each other in the file and in the pixel.
struct ChannelRun {
    int first;  ///< in the file
    int count;
    int slot;  ///< in the pixel
};

std::vector<ChannelRun> Runs_Of(std::array<int, 4> const& slots)
{
    std::vector<ChannelRun> runs;
    for (int slot = 0; slot < 4; ++slot) {
        int const channel = slots[static_cast<std::size_t>(slot)];
        if (channel < 0) continue;
        if (!runs.empty() && runs.back().first + runs.back().count == channel &&
            runs.back().slot + runs.back().count == slot)
            ++runs.back().count;
        else
            runs.push_back({channel, 1, slot});
    }
    return runs;
}

/// Pixels whose first channel is grey and whose second one is alpha.
template <typename Channel> void Spread_Grey(ZVBitmap& bitmap, bool hasAlpha)
{
    auto* pixel = reinterpret_cast<Channel*>(bitmap.Pixels);
    for (long i = 0, pixels = long{bitmap.Width} * bitmap.Height; i < pixels; ++i, pixel += 4) {
        if (hasAlpha) pixel[3] = pixel[1];
        pixel[1] = pixel[2] = pixel[0];
    }
}

bool Read_Pixels(PictureFile& file, PictureLayer const& layer, ZVBitmap& bitmap)
{
    OIIO::ImageInput& input = file.Input();
    bool const isGrey = layer.IsGrey();
    // Grey with alpha is read in one go, as neighbours.
    std::array<int, 4> const slots =
        isGrey ? std::array<int, 4>{layer.channels[0], layer.channels[3], -1, -1} : layer.channels;
    OIIO::TypeDesc const type = Channel_Type(bitmap);
    for (ChannelRun const& run : Runs_Of(slots))
        if (!input.read_image(layer.part, 0, run.first, run.first + run.count, type,
                              bitmap.Pixels + static_cast<std::size_t>(run.slot) * type.size(),
                              bitmap.PackSize, bitmap.RowBytes))
            return false;
    if (isGrey) {
        switch (bitmap.Type) {
        case ZV_BITMAP_RGBA8: Spread_Grey<uint8_t>(bitmap, layer.HasAlpha()); break;
        case ZV_BITMAP_RGBA16: Spread_Grey<uint16_t>(bitmap, layer.HasAlpha()); break;
        default: Spread_Grey<float>(bitmap, layer.HasAlpha()); break;
        }
    }
    if (!layer.HasAlpha()) FillAlphaZV(&bitmap, 255);
    return true;
}

/// All pixels that the file has of the layer, in a bitmap of their size.
bool Read_Window(PictureFile& file, PictureLayer const& layer, ZVBitmap& bitmap)
{
    bool const isRead =
        file.Spec(layer).deep ? Flatten_Deep_Picture(file, layer, bitmap) : Read_Pixels(file, layer, bitmap);
    if (!isRead) {
        file.Input().geterror();
        SetError(ZV_ERR_CLIP);
    }
    return isRead;
}

bool Is_Like(ZVBitmap const& bitmap, long width, long height, ZVBitmapType type)
{
    return bitmap.Width == width && bitmap.Height == height && bitmap.Type == type;
}

}  // namespace

ZVBitmapType Plain_Type(long depth)
{
    return depth == 8 ? ZV_BITMAP_RGBA8 : depth == 32 ? ZV_BITMAP_RGBAFLOAT : ZV_BITMAP_RGBA16;
}

OIIO::TypeDesc Channel_Type(ZVBitmap const& bitmap)
{
    switch (bitmap.Type) {
    case ZV_BITMAP_RGBA8: return OIIO::TypeDesc::UINT8;
    case ZV_BITMAP_RGBA16: return OIIO::TypeDesc::UINT16;
    default: return OIIO::TypeDesc::FLOAT;
    }
}

bool Read_Picture(PictureFile& file, PictureLayer const& layer, ZVBitmap* bitmap)
{
    OIIO::ImageSpec const& spec = file.Spec(layer);
    ZVRectT<long> const frame = file.Frame(layer);
    ZVBitmapType const type = Plain_Type(file.Depth(layer));
    long const left = spec.x - frame.x, top = spec.y - frame.y;
    bool const isWhole = left == 0 && top == 0 && spec.width == frame.width && spec.height == frame.height;
    bool const isDirect = Is_Like(*bitmap, frame.width, frame.height, type);
    if (isWhole && isDirect) return Read_Window(file, layer, *bitmap);

    PictureBitmap const pixels(AllocBitmapZV(spec.width, spec.height, type, "pixels of a picture"));
    if (!pixels || !Read_Window(file, layer, *pixels)) return false;
    if (isWhole) {
        ScaleBitmapZV(pixels.get(), bitmap, nullptr, nullptr);
        return true;
    }
    PictureBitmap const placed(isDirect ? nullptr
                                        : AllocBitmapZV(frame.width, frame.height, type, "picture"));
    ZVBitmap* const target = isDirect ? bitmap : placed.get();
    if (!target) return false;
    FillBitmapZV(target, 0);
    CopyBitmapZV(pixels.get(), target, 0, 0, spec.width, spec.height, left, top);
    if (placed) ScaleBitmapZV(placed.get(), bitmap, nullptr, nullptr);
    return true;
}
