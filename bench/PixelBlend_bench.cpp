// Fills, compositing and disabling at 1920 x 1080. The yardstick of a fill is one memset of the same bytes,
// or one memcpy where bytes are read too; of compositing RGBA8, premultiplied OVER by pixman, and the told
// formula in a plain loop; of other sources one memcpy.
#include "BenchBitmaps.h"
#include "BenchTools.h"

#include <pixman.h>
#include <random>

namespace {

using namespace Bench;

constexpr auto pixels = static_cast<std::size_t>(width * height);

struct ImageDeleter {
    void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};

// ---- fills ------------------------------------------------------------------------------------------------

auto Make_Memset(ZVBitmapType type)
{
    return [bitmap = Make_Bitmap(type)] {
        std::memset(bitmap->Pixels, 0x55, static_cast<std::size_t>(bitmap->Size));
    };
}

auto Make_Copy(ZVBitmapType type)
{
    return Make_Memcpy(2 * width * height * GetPackSizeZV(type));
}

template <typename Work>
void Register_Memcpy(std::string const& name, double limit, ZVBitmapType type, Work work)
{
    Bench::Register(name, limit, [=] {
        return std::pair([work, bitmap = Make_Bitmap(type)] { work(bitmap.get()); }, Make_Copy(type));
    });
}

void Register_Fills()
{
    for (Type const& type : types) {
        Bench::Register(std::string("fill/all_") + type.name, 1.1, [=] {
            return std::pair([bitmap = Make_Bitmap(type.type)] { FillBitmapZV(bitmap.get(), 0x80FF8040); },
                             Make_Memset(type.type));
        });
        Register_Memcpy(std::string("fill/color_") + type.name, 1.1, type.type,
                        [](ZVBitmap* bitmap) { FillColorZV(bitmap, 0x80FF8040); });
        Register_Memcpy(std::string("fill/alpha_") + type.name, 1.1, type.type,
                        [](ZVBitmap* bitmap) { FillAlphaZV(bitmap, 200); });
        Register_Memcpy(std::string("disable/") + type.name, 0, type.type,
                        [](ZVBitmap* bitmap) { DisableBitmapZV(bitmap, nullptr); });
    }
}

// ---- compositing ------------------------------------------------------------------------------------------

/// How alpha runs across a picture.
struct Alpha {
    char const* name;
    uint32_t (*at)(long x, uint32_t random);
};
constexpr Alpha alphas[] = {{"random", [](long, uint32_t random) { return random & 0xFF; }},
                            // Clear and opaque runs with soft edges between them.
                            {"typical",
                             [](long x, uint32_t random) {
                                 return x % 400 < 8 ? random & 0xFF : x / 400 % 2 ? 255U : 0U;
                             }},
                            // The same picture over itself, half transparent.
                            {"faded", [](long, uint32_t) { return 128U; }}};

/// One picture as straight RGBA8 and premultiplied, and what it is blended over, for the library and for
/// pixman.
struct Scene {
    BitmapPtr source = Make_Bitmap(ZV_BITMAP_RGBA8);
    NativePtr target = Make_Native(32);
    std::vector<uint32_t> backdrop = std::vector<uint32_t>(pixels);
    std::vector<uint32_t> premultiplied = std::vector<uint32_t>(pixels);
    std::vector<uint32_t> pixmanTarget = std::vector<uint32_t>(pixels);
    std::shared_ptr<pixman_image_t> over, under;

    explicit Scene(Alpha const& alpha, bool isStill = false)
    {
        std::mt19937 random(1);
        auto const word = [&random] { return static_cast<uint32_t>(random()); };
        for (std::size_t i = 0; i < pixels; ++i) {
            uint32_t const a = alpha.at(static_cast<long>(i) % width, word());
            uint32_t const rgb = word() & 0xFFFFFF;
            backdrop[i] = isStill ? rgb : word();
            premultiplied[i] = a << 24;
            for (int shift = 0; shift <= 16; shift += 8) {
                uint32_t const value = rgb >> shift & 0xFF;
                source->Pixels[4 * i + static_cast<std::size_t>(16 - shift) / 8] =
                    static_cast<uint8_t>(value);
                premultiplied[i] |= value * a / 255 << shift;
            }
            source->Pixels[4 * i + 3] = static_cast<uint8_t>(a);
        }
        auto const image = [](pixman_format_code_t format, std::vector<uint32_t>& words) {
            return std::shared_ptr<pixman_image_t>(
                pixman_image_create_bits(format, width, height, words.data(), width * 4), ImageDeleter());
        };
        over = image(PIXMAN_a8r8g8b8, premultiplied);
        under = image(PIXMAN_x8r8g8b8, pixmanTarget);
    }

    void Reset()
    {
        std::memcpy(target->Pixels, backdrop.data(), pixels * 4);
        std::memcpy(pixmanTarget.data(), backdrop.data(), pixels * 4);
    }
};

void Blend_By_Pixman(Scene& scene)
{
    pixman_image_composite32(PIXMAN_OP_OVER, scene.over.get(), nullptr, scene.under.get(), 0, 0, 0, 0, 0, 0,
                             width, height);
}

/// The told formula, channel by channel.
void Blend_Plainly(Scene& scene)
{
    unsigned char const* rgba = scene.source->Pixels;
    unsigned char* bgrx = scene.target->Pixels;
    for (std::size_t i = 0; i < pixels; ++i, rgba += 4, bgrx += 4) {
        auto const alpha = static_cast<float>(rgba[3] / 255.0);
        for (int c = 0; c < 3; ++c) {
            float const back = static_cast<float>(bgrx[2 - c]) * (1.0F - alpha);
            double const over = alpha * 255.0 * (rgba[c] / 255.0);
            bgrx[2 - c] = static_cast<unsigned char>(static_cast<float>(back + over));
        }
    }
}

void Blend(Scene& scene)
{
    AlphaBlendBitmapZV(scene.source.get(), scene.target.get(), 0, 0, -1, -1, 0, 0, nullptr);
}

template <typename Work, typename Peer>
void Register_Scene(std::string const& name, double limit, Alpha const& alpha, bool isStill, Work work,
                    Peer peer)
{
    Bench::Register(name, limit, [=] {
        auto const scene = std::make_shared<Scene>(alpha, isStill);
        return std::tuple([=] { work(*scene); }, [=] { peer(*scene); }, [=] { scene->Reset(); });
    });
}

void Register_Blends()
{
    for (Alpha const& alpha : alphas) {
        bool const isStill = std::string_view(alpha.name) == "faded";
        std::string const name = alpha.name;
        Register_Scene("blend/" + name, 1.0, alpha, isStill, Blend, Blend_By_Pixman);
        Register_Scene("blend/" + name + "_plain", 0, alpha, isStill, Blend, Blend_Plainly);
        Register_Scene(
            "blend_over/" + name + "_black", 1.0, alpha, isStill,
            [](Scene& scene) {
                AlphaCopyBitmapZV(scene.source.get(), scene.target.get(), 0, 0, 0, -1, -1, 0, 0);
            },
            Blend_By_Pixman);
        Register_Scene(
            "blend_over/" + name + "_grey", 1.0, alpha, isStill,
            [](Scene& scene) {
                AlphaCopyBitmapZV(scene.source.get(), scene.target.get(), 0x808080, 0, 0, -1, -1, 0, 0);
            },
            Blend_By_Pixman);
    }
    for (Type const& type : types) {
        Bench::Register(std::string("blend/from_") + type.name, 0, [=] {
            auto const scene = std::make_shared<Scene>(alphas[0]);
            BitmapPtr const source = Make_Bitmap(type.type);
            return std::tuple(
                [=] { AlphaBlendBitmapZV(source.get(), scene->target.get(), 0, 0, -1, -1, 0, 0, nullptr); },
                Make_Copy(type.type), [=] { scene->Reset(); });
        });
    }
    for (long const depth : {16L, 24L}) {
        Bench::Register("blend/to_native" + std::to_string(depth), 0, [=] {
            auto const scene = std::make_shared<Scene>(alphas[0]);
            scene->target->Depth = static_cast<int32_t>(depth);
            scene->target->PackSize = static_cast<int32_t>(depth / 8);
            return std::tuple([=] { Blend(*scene); }, Make_Copy(ZV_BITMAP_RGBA8), [=] { scene->Reset(); });
        });
    }
}

[[maybe_unused]] bool const isRegistered = [] {
    Register_Fills();
    Register_Blends();
    return true;
}();

}  // namespace
