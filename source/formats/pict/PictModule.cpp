// See PictModule.h.
#include "PictModule.h"

#include "PictStill.h"
#include "PictWriter.h"

#include <new>
#include <utility>

namespace {

constexpr long OptionsSize = sizeof(ZVPICTOptions);
constexpr uint32_t PlainCodec = ZV_FourCC("raw ");
constexpr ZVPICTOptions UsualOptions{PlainCodec, 0, 0, 1023};
constexpr long LargestSide = 32767;
constexpr long AlphaDepth = 32;

bool Is_Colour(ZVBitmap const* bitmap)
{
    return bitmap->Type >= ZV_BITMAP_RGBA8 && bitmap->Type <= ZV_BITMAP_RGBAFLOAT;
}

BitmapBlock Like_RGBA8(ZVBitmap const* bitmap)
{
    return BitmapBlock{AllocBitmapZV(bitmap->Width, bitmap->Height, ZV_BITMAP_RGBA8, "picture")};
}

ZVPICTOptions Options_Of(ZVClip const* clip)
{
    ZVPICTOptions options = UsualOptions;
    ZVFormatParams const* const params = clip->VideoParams;
    if (params && params->Data && params->Size >= OptionsSize)
        std::memcpy(&options, params->Data, sizeof options);
    return options;
}

}  // namespace

bool Describe_Picture(std::span<uint8_t const> picture, ZVClip* clip)
{
    ZVPictureInfo info;
    if (!Inspect_Picture(picture.data(), picture.size(), &info)) return false;
    clip->Width = info.width;
    clip->Height = info.height;
    clip->BitDepth = 8;
    clip->AlphaType = info.depth == AlphaDepth ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE;
    clip->Media = ZV_MEDIA_VIDEO;
    return true;
}

long Draw_Frame(std::span<uint8_t const> picture, ZVBitmap* bitmap, ZVRectT<long> const* offset, long width,
                long height)
{
    ZVRectT<long> const area{offset ? -offset->x : 0, offset ? -offset->y : 0, width, height};
    if (bitmap->Type == ZV_BITMAP_RGBA8) return Draw_Picture(picture.data(), picture.size(), bitmap, area);
    if (!Is_Colour(bitmap)) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    BitmapBlock const drawn = Like_RGBA8(bitmap);
    if (!drawn || !Draw_Picture(picture.data(), picture.size(), drawn.get(), area)) return 0;
    CopyBitmapZV(drawn.get(), bitmap, 0, 0, -1, -1, 0, 0);
    return 1;
}

long Make_Picture(ZVClip const* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region,
                  long (*take)(std::span<uint8_t const> picture, void* data), void* data)
{
    if (!Is_Colour(bitmap) || bitmap->Width < 1 || bitmap->Width > LargestSide || bitmap->Height < 1 ||
        bitmap->Height > LargestSide) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    BitmapBlock shallow;
    if (bitmap->Type != ZV_BITMAP_RGBA8) {
        shallow = Like_RGBA8(bitmap);
        if (!shallow) return 0;
        CopyBitmapZV(bitmap, shallow.get(), 0, 0, -1, -1, 0, 0);
        bitmap = shallow.get();
    }
    ZVPICTOptions const options = Options_Of(clip);
    try {
        if (options.Codec != PlainCodec) {
            std::vector<uint8_t> picture;
            return Write_Still_Picture(clip, bitmap, region, options.Codec, options.Quality, picture)
                       ? take(picture, data)
                       : 0;
        }
        PictWriter writer(clip, bitmap);
        return writer.Write(region) ? take(writer.Bytes(), data) : 0;
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
}

bool Make_Picture_Options(ZVClip* clip)
{
    if (clip->VideoParams) return true;
    struct Block {
        ZVFormatParams params;
        ZVPICTOptions options;
    };
    auto* const block = static_cast<Block*>(AllocMemZV(sizeof(Block), ZV_MEM_CLEAR));
    if (!block) return false;
    block->options = UsualOptions;
    block->params = {&block->options, OptionsSize};
    clip->VideoParams = &block->params;
    return true;
}

void Picture_Options(ZVClip* clip, bool silent)
{
    bool const isNew = !clip->VideoParams;
    if (!Make_Picture_Options(clip) || silent || !Has_Interface()) return;
    ZVPICTOptions options = Options_Of(clip);
    ZVFormatParams* const params = clip->VideoParams;
    // A block of some other form is not one to write to.
    if (Ask_Picture_Settings(&options) && params->Data && params->Size >= OptionsSize)
        std::memcpy(params->Data, &options, sizeof options);
    else if (isNew)
        FreeMemZV(std::exchange(clip->VideoParams, nullptr));
}
