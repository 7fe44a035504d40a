// Writing pictures: beside the file that they replace, whose place they take when they are whole.
#include "PictureWrite.h"

#include "PictureClip.h"
#include "PictureFile.h"
#include "PictureRead.h"

#include <ZVLibInternal.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// ---- files ------------------------------------------------------------------------------------------------

/// A new file under a name of its own, which goes again unless it takes its place.
class NewFile {
public:
    explicit NewFile(ZVClip const* clip) : target_(Native_Path(clip->FileName)), spec_(clip->FileName)
    {
        if (target_.empty() || !May_Replace()) return;
        std::size_t const name = spec_.find_last_of(":\\") + 1;
        spec_.insert(name, ".zv" + std::to_string(getpid()) + "-");
        path_ = Native_Path(spec_.c_str());
        auto const creator =
            static_cast<uint32_t>(clip->CreateFlags ? clip->CreateFlags : clip->Format->FileCreator);
        ZVFileInfo* const file = path_.empty()
                                     ? nullptr
                                     : CreateFileZV(spec_.c_str(), ZVFilePermReadWrite,
                                                    Written_Kind(clip).fileType, creator, ZVFileFlagNone);
        isThere_ = file != nullptr;
        CloseFileZV(file);
    }
    ~NewFile()
    {
        std::error_code ignored;
        if (isThere_) fs::remove(path_, ignored);
    }
    NewFile(NewFile const&) = delete;
    NewFile& operator=(NewFile const&) = delete;

    /// Native path to write to; null when there is no such file, with the error number set.
    char const* Path() const { return isThere_ ? path_.c_str() : nullptr; }

    bool Take_Place()
    {
        std::error_code error;
        fs::rename(path_, target_, error);
        if (error) SetError(ZV_ERR_IO);
        isThere_ = isThere_ && error;
        return !error;
    }

private:
    /// A link goes on to lead to the file, and a file that may not be written stays.
    bool May_Replace()
    {
        std::error_code error;
        if (!fs::exists(target_, error)) return true;
        ZVFileInfo* const file = OpenFileZV(spec_.c_str(), ZVFilePermReadWrite, ZVFileFlagNone);
        if (!file) return false;
        CloseFileZV(file);
        fs::path const real = fs::canonical(target_, error);
        if (!error) target_ = real.string();
        return true;
    }

    std::string target_;  ///< native path of the place
    std::string spec_;    ///< of the new file
    std::string path_;    ///< the same as a native path
    bool isThere_ = false;
};

// ---- pixels -----------------------------------------------------------------------------------------------

/// The picture as it is to be stored: in a type that OpenImageIO takes, and in the clip's alpha convention.
/// Null without memory; `bitmap` itself is lent where nothing changes.
class StoredPicture {
public:
    StoredPicture(ZVClip const* clip, ZVBitmap const* bitmap, ZVBitmapType type, ZVRectT<long> const* region)
        : pixels_(bitmap)
    {
        bool const isConverted =
            clip->AlphaType == ZV_ALPHA_LUMINANCE || clip->AlphaPremultiplied || clip->AlphaInvert;
        if (type == bitmap->Type && !isConverted) return;
        own_.reset(AllocBitmapZV(bitmap->Width, bitmap->Height, type, "stored picture"));
        pixels_ = own_.get();
        if (!own_) return;
        CopyBitmapZV(bitmap, own_.get(), 0, 0, -1, -1, 0, 0);
        if (isConverted) InterpretAlphaZV(clip, own_.get(), own_.get(), region);
    }

    ZVBitmap const* Get() const { return pixels_; }

private:
    PictureBitmap own_;
    ZVBitmap const* pixels_;
};

/// Bytes of a row of DPX pixels with three channels; rows end at whole words.
bool Fills_Words(long width, int depth)
{
    long const channelBytes = depth == 8 ? 1 : 2;
    return depth == 10 || width * 3 * channelBytes % 4 == 0;
}

OIIO::TypeDesc Stored_Type(PictureKind const& kind, int depth)
{
    if (depth == 32) return OIIO::TypeDesc::FLOAT;
    if (std::strcmp(kind.name, "openexr") == 0) return OIIO::TypeDesc::HALF;
    return depth == 8 ? OIIO::TypeDesc::UINT8 : OIIO::TypeDesc::UINT16;
}

void Set_Rate(OIIO::ImageSpec& spec, double rate)
{
    if (!(rate > 0) || !std::isfinite(rate)) return;
    // Rates of television are multiples of 1000/1001.
    long const nearest = std::lround(rate);
    bool const isWhole = std::fabs(rate - static_cast<double>(nearest)) < 1e-6;
    int const fraction[] = {static_cast<int>(std::lround(isWhole ? rate : rate * 1001)), isWhole ? 1 : 1001};
    spec.attribute("FramesPerSecond", OIIO::TypeRational, fraction);
    spec.attribute("dpx:FrameRate", static_cast<float>(rate));
    spec.attribute("dpx:TemporalFrameRate", static_cast<float>(rate));
}

OIIO::ImageSpec Spec_Of(ZVClip const* clip, PictureKind const& kind, ZVBitmap const& picture, int depth)
{
    bool const hasAlpha = Writes_Alpha(clip, kind);
    // Three channels do not always end at a whole word, and what lies between is no matter of agreement.
    bool const fillsUp = std::strcmp(kind.name, "dpx") == 0 && !Fills_Words(picture.Width, depth);
    OIIO::ImageSpec spec(picture.Width, picture.Height, hasAlpha || fillsUp ? 4 : 3,
                         Stored_Type(kind, depth));
    if (depth < 32) spec.attribute("oiio:BitsPerSample", depth);
    if (std::strcmp(kind.name, "dpx") == 0) spec.attribute("oiio:Endian", "big");  // as most programs do
    if (kind.alpha != AlphaRule::Premultiplied && !(hasAlpha && clip->AlphaPremultiplied))
        spec.attribute("oiio:UnassociatedAlpha", 1);
    if (clip->PixelAspect > 0) spec.attribute("PixelAspectRatio", static_cast<float>(clip->PixelAspect));
    Set_Rate(spec, clip->FileFrameRate > 0 ? clip->FileFrameRate : clip->FrameRate);
    if (std::strcmp(kind.name, "jpeg") == 0)
        spec.attribute("compression", "jpeg:" + std::to_string(Quality_Of(clip)));
    return spec;
}

/// A file that remembers whether all that it was given found room. Writers are not told: some of them do not
/// look, and that of JPEG ends the process.
class CheckedFile : public OIIO::Filesystem::IOFile {
public:
    explicit CheckedFile(char const* path) : IOFile(path, Write) {}

    /// By its own name, since plain files are written to without a call of what stands here.
    char const* proxytype() const override { return "checked file"; }

    std::size_t write(void const* buffer, std::size_t size) override
    {
        Check(IOFile::write(buffer, size), size);
        return size;
    }
    std::size_t pwrite(void const* buffer, std::size_t size, int64_t offset) override
    {
        Check(IOFile::pwrite(buffer, size, offset), size);
        return size;
    }

    /// Whether the file is whole; false with the error number set.
    bool Finish()
    {
        if (opened() && error_ == 0 && std::fflush(handle()) != 0) error_ = errno;
        if (opened() && error_ == 0) return true;
        SetError(error_ == ENOSPC || error_ == EDQUOT || error_ == EFBIG ? ZV_ERR_DISK_FULL : ZV_ERR_IO);
        return false;
    }

private:
    void Check(std::size_t count, std::size_t size)
    {
        if (count < size && error_ == 0) error_ = errno != 0 ? errno : EIO;
    }

    int error_ = 0;
};

bool Write_Pixels(PictureKind const& kind, char const* path, OIIO::ImageSpec const& spec,
                  ZVBitmap const& picture)
{
    CheckedFile file(path);
    std::unique_ptr<OIIO::ImageOutput> const output = OIIO::ImageOutput::create(kind.name);
    if (!output || !output->set_ioproxy(&file)) {
        OIIO::geterror();
        SetError(ZV_ERR_CLIP);
        return false;
    }
    bool isWritten = output->open(path, spec) && output->write_image(Channel_Type(picture), picture.Pixels,
                                                                     picture.PackSize, picture.RowBytes);
    isWritten = output->close() && isWritten;
    if (!file.Finish()) return false;
    if (!isWritten) SetError(ZV_ERR_CLIP);
    output->geterror();
    return isWritten;
}

}  // namespace

bool Write_Picture(ZVClip const* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region)
{
    PictureKind const& kind = Written_Kind(clip);
    int const depth = Stored_Depth(kind, GetBitsPerChannelZV(bitmap->Type));
    bool const isPicture = GetChannelsZV(bitmap->Type) == 4 && bitmap->Width > 0 && bitmap->Height > 0 &&
                           bitmap->Width <= LargestSide && bitmap->Height <= LargestSide;
    if (depth == 0 || !isPicture) {
        SetError(ZV_ERR_CLIP);
        return false;
    }
    // Floats keep what mixing with black would take from a few bits.
    bool const isFloat = kind.alpha == AlphaRule::Premultiplied;
    StoredPicture const stored(clip, bitmap, isFloat ? ZV_BITMAP_RGBAFLOAT : Plain_Type(depth), region);
    if (!stored.Get()) return false;
    NewFile file(clip);
    OIIO::ImageSpec const spec = Spec_Of(clip, kind, *stored.Get(), depth);
    return file.Path() && Write_Pixels(kind, file.Path(), spec, *stored.Get()) && file.Take_Place();
}
