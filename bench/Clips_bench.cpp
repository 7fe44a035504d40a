// Field filters, weighted sums and alpha conventions at 1920 x 1080. The yardstick is one memcpy of half as
// many bytes as the operation reads and writes.
#include "BenchBitmaps.h"
#include "BenchTools.h"
#include "ZVLibInternal.h"

namespace {

using namespace Bench;

template <typename Buffer> using BufferPtr = std::shared_ptr<Buffer>;

/// A picture with all values and alphas in it.
template <typename Buffer> BufferPtr<Buffer> Make_Picture(ZVBitmapType type)
{
    BufferPtr<Buffer> const bitmap(static_cast<Buffer*>(AllocBitmapZV(width, height, type, nullptr)),
                                   Deleter());
    uint32_t random = 1;
    for (long i = 0; i < width * height; ++i) {
        double channels[4];
        for (double& channel : channels) {
            random = random * 1664525 + 1013904223;
            channel = (random >> 8) / 16777215.0;
        }
        bitmap->GetIterator(i % width, i / width)
            ->SetFloat(channels[0], channels[1], channels[2], channels[3]);
    }
    return bitmap;
}

template <typename Buffer, typename Work>
void Register_In_Place(std::string const& name, double limit, ZVBitmapType type, Work work,
                       long rows = height)
{
    Bench::Register(name, limit, [=] {
        auto const bitmap = Make_Picture<Buffer>(type);
        auto const original = Make_Picture<Buffer>(type);
        return std::tuple(
            [=] { work(bitmap.get()); }, Make_Memcpy(2 * width * rows * bitmap->PackSize),
            [=] { std::memcpy(bitmap->Pixels, original->Pixels, static_cast<std::size_t>(bitmap->Size)); });
    });
}

/// @param added  reads the destination too
template <typename Buffer, typename Work>
void Register_Pair(std::string const& name, double limit, ZVBitmapType type, bool isAdded, Work work)
{
    Bench::Register(name, limit, [=] {
        auto const source = Make_Picture<Buffer>(type), destination = Make_Picture<Buffer>(type);
        return std::pair([=] { work(source.get(), destination.get()); },
                         Make_Memcpy(width * height * source->PackSize * (isAdded ? 3 : 2)));
    });
}

std::shared_ptr<ZVClip> Make_Clip(uint8_t alphaType, bool isPremultiplied, double matte)
{
    auto clip = std::make_shared<ZVClip>();
    clip->FieldOrder = ZV_FIELDS_UPPER_FIRST;
    clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
    clip->AlphaType = alphaType;
    clip->AlphaPremultiplied = isPremultiplied;
    clip->AlphaInvert = 1;
    clip->MatteRed = clip->MatteGreen = clip->MatteBlue = matte;
    clip->Background = 0x102030;
    return clip;
}

template <typename Buffer> void Register_Type(char const* typeName, ZVBitmapType type, bool isLimited)
{
    using Pixel = typename Buffer::PixelType;
    using Channel = typename Buffer::ChannelType;
    std::string const suffix = std::string("_") + typeName;
    double const filterLimit = isLimited ? 1.8 : 0, limit = isLimited ? 2.5 : 0;

    Register_In_Place<Buffer>("fields/blend" + suffix, filterLimit, type,
                              Blend_Fields<Buffer, Pixel, Channel>);
    Register_In_Place<Buffer>("fields/lower" + suffix, filterLimit, type, Interpolate_Lower_Field,
                              height / 2);
    Register_In_Place<Buffer>("fields/upper" + suffix, filterLimit, type, Interpolate_Upper_Field,
                              height / 2);
    Register_Pair<Buffer>("opacity/copy" + suffix, limit, type, false,
                          [](Buffer* source, Buffer* destination) {
                              Copy_Opacity<Buffer, Pixel, Channel>(source, destination, 0.3);
                          });
    Register_Pair<Buffer>("opacity/merge" + suffix, limit, type, true,
                          [](Buffer* source, Buffer* destination) {
                              Merge_Opacity<Buffer, Pixel, Channel>(source, destination, 0.3);
                          });
    auto const clip = Make_Clip(ZV_ALPHA_CHANNEL, true, 0.0);
    Register_Pair<Buffer>(
        "opacity/copy_fields" + suffix, limit, type, false, [clip](Buffer* source, Buffer* destination) {
            Copy_Fields_With_Opacity<Buffer, Pixel, Channel>(source, destination, clip.get(), 0.3, 0.2);
        });
    Register_Pair<Buffer>(
        "opacity/merge_fields" + suffix, limit, type, true, [clip](Buffer* source, Buffer* destination) {
            Merge_Fields_With_Opacity<Buffer, Pixel, Channel>(source, destination, clip.get(), 0.3, 0.2);
        });

    struct Convention {
        char const* name;
        uint8_t alphaType;
        bool isPremultiplied;
        double matte;
    };
    for (Convention const& row :
         {Convention{"none", ZV_ALPHA_NONE, false, 0}, Convention{"luminance", ZV_ALPHA_LUMINANCE, false, 0},
          Convention{"inverted", ZV_ALPHA_CHANNEL, false, 0},
          Convention{"premultiplied", ZV_ALPHA_CHANNEL, true, 0},
          Convention{"premultiplied_odd_matte", ZV_ALPHA_CHANNEL, true, 0.3123}}) {
        auto const convention = Make_Clip(row.alphaType, row.isPremultiplied, row.matte);
        Register_In_Place<Buffer>(
            std::string("alpha/read_") + row.name + suffix, limit, type, [convention](Buffer* bitmap) {
                Interpret_Alpha<Buffer, Pixel>(bitmap, convention.get(), 0, 0, width, height);
            });
        Register_Pair<Buffer>(std::string("alpha/write_") + row.name + suffix, limit, type, false,
                              [convention](Buffer* source, Buffer* destination) {
                                  InterpretAlphaZV(convention.get(), source, destination, nullptr);
                              });
    }
    Register_In_Place<Buffer>("alpha/guess" + suffix, 0, type, [clip](Buffer* bitmap) {
        clip->FileAlphaType = ZV_ALPHA_CHANNEL;
        GuessAlphaZV(clip.get(), bitmap);
    });
}

[[maybe_unused]] bool const isRegistered = [] {
    Register_Type<ZVBufferRGBA8>("8", ZV_BITMAP_RGBA8, true);
    Register_Type<ZVBufferRGBA10>("10", ZV_BITMAP_RGBA10, false);
    Register_Type<ZVBufferRGBA12>("12", ZV_BITMAP_RGBA12, false);
    Register_Type<ZVBufferRGBA16>("16", ZV_BITMAP_RGBA16, true);
    Register_Type<ZVBufferRGBAFloat>("float", ZV_BITMAP_RGBAFLOAT, false);
    return true;
}();

}  // namespace
