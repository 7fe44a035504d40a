// Copy, conversion and scaling at 1920 x 1080, and what fresh pixel memory costs. The yardstick of a copy is
// one memcpy with as many bytes read and written; of a scale, the nearest filter of pixman; of an allocation,
// the filling alone.
#include "BenchBitmaps.h"
#include "BenchTools.h"

#include <pixman.h>

namespace {

using namespace Bench;

struct ImageDeleter {
    void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};
using ImagePtr = std::shared_ptr<pixman_image_t>;

template <typename Source, typename Target>
void Register_Copy(std::string const& name, double limit, Source makeSource, Target makeTarget)
{
    Bench::Register("copy/" + name, limit, [=] {
        auto const source = makeSource();
        auto const target = makeTarget();
        auto const work = [=] { CopyBitmapZV(source.get(), target.get(), 0, 0, -1, -1, 0, 0); };
        return std::pair(work, Make_Memcpy(width * height * (source->PackSize + target->PackSize)));
    });
}

double Conversion_Limit(ZVBitmapType from, ZVBitmapType to)
{
    auto const isPacked = [](ZVBitmapType type) {
        return type == ZV_BITMAP_RGBA10 || type == ZV_BITMAP_RGBA12;
    };
    if (from == to) return 1.1;
    if (isPacked(from) || isPacked(to)) return 2.5;
    if (from == ZV_BITMAP_RGBAFLOAT) return to == ZV_BITMAP_RGBA8 ? 1.4 : 1.6;
    return 1.2;
}

void Register_Copies()
{
    auto const bitmap = [](ZVBitmapType type) { return [type] { return Make_Bitmap(type); }; };
    auto const native = [](long depth) { return [depth] { return Make_Native(depth); }; };
    for (Type const& from : types)
        for (Type const& to : types)
            Register_Copy(std::string(from.name) + "_to_" + to.name, Conversion_Limit(from.type, to.type),
                          bitmap(from.type), bitmap(to.type));
    for (long const depth : {16L, 24L, 32L}) {
        std::string const name = "native" + std::to_string(depth);
        for (Type const& type : types) {
            Register_Copy(std::string(type.name) + "_to_" + name, 0, bitmap(type.type), native(depth));
            Register_Copy(name + "_to_" + type.name, 0, native(depth), bitmap(type.type));
        }
        for (long const other : {16L, 24L, 32L})
            Register_Copy(name + "_to_native" + std::to_string(other), 0, native(depth), native(other));
    }
}

/// The same scale by pixman, between images over pixels of its own.
auto Make_Pixman_Scale(long toWidth, long toHeight)
{
    BitmapPtr const from = Make_Bitmap(ZV_BITMAP_RGBA8), to = Make_Bitmap(ZV_BITMAP_RGBA8, toWidth, toHeight);
    auto const image = [](BitmapPtr const& bitmap) {
        return ImagePtr(pixman_image_create_bits(PIXMAN_a8r8g8b8, bitmap->Width, bitmap->Height,
                                                 reinterpret_cast<uint32_t*>(bitmap->Pixels),
                                                 bitmap->RowBytes),
                        ImageDeleter());
    };
    ImagePtr const source = image(from), target = image(to);
    pixman_transform_t transform;
    pixman_transform_init_scale(&transform,
                                pixman_int_to_fixed(static_cast<int>(width)) / static_cast<int>(toWidth),
                                pixman_int_to_fixed(static_cast<int>(height)) / static_cast<int>(toHeight));
    pixman_image_set_transform(source.get(), &transform);
    pixman_image_set_filter(source.get(), PIXMAN_FILTER_NEAREST, nullptr, 0);
    return [=] {
        (void)from, (void)to;
        pixman_image_composite32(PIXMAN_OP_SRC, source.get(), nullptr, target.get(), 0, 0, 0, 0, 0, 0,
                                 static_cast<int>(toWidth), static_cast<int>(toHeight));
    };
}

void Register_Scale(long toWidth, long toHeight, double limit)
{
    std::string const name = "scale/to_" + std::to_string(toWidth) + "x" + std::to_string(toHeight);
    for (Type const& to : types) {
        bool const isSame = to.type == ZV_BITMAP_RGBA8;
        Bench::Register(isSame ? name : name + "_" + to.name, isSame ? limit : 0, [=] {
            BitmapPtr const source = Make_Bitmap(ZV_BITMAP_RGBA8),
                            target = Make_Bitmap(to.type, toWidth, toHeight);
            auto const work = [=] { ScaleBitmapZV(source.get(), target.get(), nullptr, nullptr); };
            return std::pair(work, Make_Pixman_Scale(toWidth, toHeight));
        });
    }
}

void Register_Allocation()
{
    constexpr std::size_t size = width * height * 4;
    Bench::Register("alloc/fill_and_free", 1.5, [] {
        auto const work = [] {
            ZVBitmap* const bitmap = AllocBitmapZV(width, height, ZV_BITMAP_RGBA8, nullptr);
            std::memset(bitmap->Pixels, 0x55, size);
            FreeBitmapZV(bitmap);
        };
        BitmapPtr const kept = Make_Bitmap(ZV_BITMAP_RGBA8);
        return std::pair(work, [=] { std::memset(kept->Pixels, 0x55, size); });
    });
}

[[maybe_unused]] bool const isRegistered = [] {
    Register_Copies();
    Register_Scale(960, 540, 0.95);
    Register_Scale(2880, 1620, 0.75);
    Register_Allocation();
    return true;
}();

}  // namespace
