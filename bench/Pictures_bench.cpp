// Pictures of 3840 x 2160 read through the module Pictures, from opening the file on, beside OpenImageIO's
// own calls into a buffer of the same type.
#include "BenchSession.h"
#include "BenchTools.h"

#include <OpenImageIO/imageio.h>

#include <ZVLibInternal.h>

#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

constexpr long width = 3840, height = 2160;

void Check(bool isDone)
{
    if (!isDone) throw std::runtime_error("a picture could not be read or written");
}

/// A picture as a renderer or a camera gives it, smooth with some grain, in a file of a given format.
void Write_Picture(std::string const& path, OIIO::TypeDesc type)
{
    std::vector<float> pixels(static_cast<std::size_t>(width * height * 4));
    std::mt19937 random(1);
    auto* pixel = pixels.data();
    for (long y = 0; y < height; ++y)
        for (long x = 0; x < width; ++x)
            for (long channel = 0; channel < 4; ++channel)
                *pixel++ =
                    static_cast<float>(x * (channel + 1) % width + y + random() % 8) / (width + height);
    OIIO::ImageSpec spec(width, height, 4, type);
    spec.attribute("oiio:UnassociatedAlpha", 1);
    auto const output = OIIO::ImageOutput::create(path);
    Check(output && output->open(path, spec) && output->write_image(OIIO::TypeDesc::FLOAT, pixels.data()) &&
          output->close());
}

class PictureWork {
public:
    PictureWork(std::string const& name, OIIO::TypeDesc stored, ZVBitmapType type)
        : path_(session_.Path(name))
    {
        Add_Library_Formats(nullptr);
        Write_Picture(path_, stored);
        clip_ = OpenClipZV(session_.Spec(name).c_str(), ZV_OPEN_SINGLE_FRAME, 1, 0);
        bitmap_ = AllocBitmapZV(width, height, type, nullptr);
        Check(clip_ && bitmap_ && GetBitmapTypeZV(clip_) == type);
    }
    ~PictureWork()
    {
        FreeBitmapZV(bitmap_);
        FreeClipZV(clip_);
    }
    PictureWork(PictureWork const&) = delete;
    PictureWork& operator=(PictureWork const&) = delete;

    void Read()
    {
        ZVRectT<long> whole{};
        AsyncParams async;
        Check(Plugin_GetFrame(clip_, bitmap_, 0, &whole, width, height, 0, async));
    }

    void Read_Plain()
    {
        OIIO::ImageSpec config;
        config["oiio:UnassociatedAlpha"] = 1;
        auto const input = OIIO::ImageInput::open(path_, &config);
        OIIO::TypeDesc const type =
            bitmap_->Type == ZV_BITMAP_RGBA8 ? OIIO::TypeDesc::UINT8 : OIIO::TypeDesc::FLOAT;
        Check(input && input->read_image(0, 0, 0, 4, type, bitmap_->Pixels));
    }

private:
    Bench::Session session_;
    std::string path_;
    ZVClip* clip_ = nullptr;
    ZVBitmap* bitmap_ = nullptr;
};

void Register_Picture(std::string const& name, OIIO::TypeDesc stored, ZVBitmapType type)
{
    Bench::Register(
        "pictures/" + name + "_read", 1.05,
        [=] {
            auto const work = std::make_shared<PictureWork>("4k." + name, stored, type);
            return std::pair([=] { work->Read(); }, [=] { work->Read_Plain(); });
        },
        21);
}

[[maybe_unused]] bool const isRegistered = [] {
    Register_Picture("png", OIIO::TypeDesc::UINT8, ZV_BITMAP_RGBA8);
    Register_Picture("exr", OIIO::TypeDesc::HALF, ZV_BITMAP_RGBAFLOAT);
    return true;
}();

}  // namespace
