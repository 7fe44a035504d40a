// The guess of a clip's alpha convention from a frame, when nobody has said.
#include "BitmapBlock.h"
#include "RowsOf.h"
#include "ZVLibInternal.h"
#include "pixels/BitmapVisit.h"

#include <array>
#include <cstring>

namespace {

// ---- from a frame in hand ---------------------------------------------------------------------------------

using Color = std::array<double, 3>;

template <typename Pixel> Color Color_Of(Pixel const& pixel)
{
    return {pixel.RedFloat(), pixel.GreenFloat(), pixel.BlueFloat()};
}

template <typename Pixel> bool Are_Same(Pixel const& a, Pixel const& b)
{
    if constexpr (Pixel::isFloat)
        return a.Red() == b.Red() && a.Green() == b.Green() && a.Blue() == b.Blue() && a.Alpha() == b.Alpha();
    else
        return std::memcmp(&a, &b, Pixel::packSize) == 0;
}

/// The pixels of one alpha: the first of them, how many there are, and how many of those are the first again.
template <typename Pixel> struct AlphaClass {
    Pixel const* first = nullptr;
    long count = 0;
    long sameCount = 0;

    void Take(Pixel const& pixel)
    {
        if (!first) first = &pixel;
        ++count;
        sameCount += Are_Same(pixel, *first);
    }

    bool Has_Main_Color() const { return sameCount > count / 2; }
};

/// Whether every pixel that is not opaque can be a colour mixed with the matte by its alpha, which reads
/// inverted or as it is.
template <typename Pixel>
bool Is_Premultiplied(Pixel const* pixels, long count, Color const& matte, bool isInverted)
{
    constexpr double tolerance = 0.001;
    for (Pixel const* pixel = pixels; pixel < pixels + count; ++pixel) {
        double const stored = pixel->AlphaFloat();
        if (stored == 1.0) continue;
        double const alpha = isInverted ? 1.0 - stored : stored, rest = isInverted ? stored : 1.0 - stored;
        Color const color = Color_Of(*pixel);
        for (std::size_t i = 0; i < color.size(); ++i) {
            double const mixed = matte[i] * rest;
            if (!(color[i] >= mixed - tolerance && color[i] <= alpha + tolerance + mixed)) return false;
        }
    }
    return true;
}

void Set_Alpha(ZVClip* clip, bool isInverted, Color const* matte)
{
    clip->AlphaType = ZV_ALPHA_CHANNEL;
    clip->AlphaInvert = isInverted;
    clip->AlphaPremultiplied = matte != nullptr;
    if (!matte) return;
    clip->MatteRed = (*matte)[0];
    clip->MatteGreen = (*matte)[1];
    clip->MatteBlue = (*matte)[2];
}

template <typename Buffer, typename Pixel> void GuessAlpha(Buffer const* bitmap, ZVClip* clip)
{
    Pixel const* const pixels = bitmap->GetIterator(0, 0);
    long const count = static_cast<long>(bitmap->Width) * bitmap->Height;
    auto const max = static_cast<typename Pixel::Channel>(Pixel::isFloat ? 1 : Pixel::max);
    AlphaClass<Pixel> clear, opaque;
    for (Pixel const* pixel = pixels; pixel < pixels + count; ++pixel) {
        auto const alpha = pixel->Alpha();
        if (alpha == 0)
            clear.Take(*pixel);
        else if (alpha == max)
            opaque.Take(*pixel);
    }

    if (clear.count == count && count > 0) {
        // A picture under a channel of zeros must have meant it to be seen.
        bool const isEmpty = clear.sameCount == count && Color_Of(*clear.first) == Color{};
        Set_Alpha(clip, !isEmpty, nullptr);
    } else if (opaque.count == count) {
        Set_Alpha(clip, false, nullptr);
    } else if (clear.Has_Main_Color() || opaque.Has_Main_Color()) {
        // What is transparent shares a colour: the likely matte. If only what reads as opaque does, the
        // channel is likely inverted.
        bool const isInverted = !clear.Has_Main_Color();
        Color const matte = Color_Of(isInverted ? *opaque.first : *clear.first);
        Set_Alpha(clip, isInverted, Is_Premultiplied(pixels, count, matte, isInverted) ? &matte : nullptr);
    } else {
        Set_Alpha(clip, false, nullptr);
    }
    clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
}

/// A file without alpha has nothing to interpret.
void Set_No_Alpha(ZVClip* clip)
{
    clip->AlphaInvert = 0;
    clip->AlphaPremultiplied = 0;
    clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
}

// ---- from the clip ----------------------------------------------------------------------------------------

/// Holds a clip open and in I/O, and leaves it as it was.
class ClipInUse {
public:
    explicit ClipInUse(ZVClip* clip) : clip_(clip)
    {
        TagItem* const noTags = nullptr;
        bool const wasOpen = clip->Flags & ZV_CLIP_OPEN;
        if (!wasOpen && !OpenClipZV(clip, noTags)) return;
        isOpener_ = !wasOpen;
        bool const wasInIO = clip->Flags & ZV_CLIP_IO;
        if (!wasInIO && !BeginClipIOZV(clip, noTags)) return;
        isStarter_ = !wasInIO;
        isReady_ = true;
    }
    ~ClipInUse()
    {
        if (isStarter_) EndClipIOZV(clip_, static_cast<TagItem*>(nullptr));
        if (isOpener_) CloseClipZV(clip_);
    }
    ClipInUse(ClipInUse const&) = delete;
    ClipInUse& operator=(ClipInUse const&) = delete;

    bool Is_Ready() const { return isReady_; }

private:
    ZVClip* clip_;
    bool isOpener_ = false;
    bool isStarter_ = false;
    bool isReady_ = false;
};

/// Has a clip read its frames as they are in the file, and puts its settings back.
class RawReading {
public:
    explicit RawReading(ZVClip* clip)
        : clip_(clip), alphaType_(clip->AlphaType), alphaInvert_(clip->AlphaInvert),
          alphaPremultiplied_(clip->AlphaPremultiplied), pullDown_(clip->PullDown), flags_(clip->Flags),
          frameSkip_(clip->FrameSkip)
    {
        clip->AlphaType = ZV_ALPHA_CHANNEL;
        clip->AlphaInvert = 0;
        clip->AlphaPremultiplied = 0;
        clip->PullDown = 0;
        clip->Flags = (clip->Flags & ~static_cast<unsigned long>(ZV_CLIP_TIME_BLEND)) | ZV_CLIP_ALPHA_KNOWN;
        clip->FrameSkip = nullptr;  // a frame that is skipped counts as read
    }
    ~RawReading()
    {
        clip_->AlphaType = alphaType_;
        clip_->AlphaInvert = alphaInvert_;
        clip_->AlphaPremultiplied = alphaPremultiplied_;
        clip_->PullDown = pullDown_;
        clip_->Flags = flags_;
        clip_->FrameSkip = frameSkip_;
    }
    RawReading(RawReading const&) = delete;
    RawReading& operator=(RawReading const&) = delete;

private:
    ZVClip* clip_;
    uint8_t alphaType_;
    long alphaInvert_;
    long alphaPremultiplied_;
    uint8_t pullDown_;
    unsigned long flags_;
    uint8_t* frameSkip_;
};

bool Read_First_Frame(ZVClip* clip, ZVBitmap* bitmap)
{
    ClipInUse const use(clip);
    if (!use.Is_Ready()) return false;
    RawReading const raw(clip);
    ZVTimeValue const oneFrame{1.0, clip->FileFrameRate};
    // Frame 0 is at StartTime, which is 0 for most clips.
    return GetFrameZV(clip, bitmap, &clip->StartTime, clip->FileFrameRate > 0.0 ? &oneFrame : nullptr,
                      static_cast<TagItem*>(nullptr)) != 0;
}

}  // namespace

long GuessAlphaZV(ZVClip* clip, ZVBitmap const* bitmap)
{
    if (!clip || !bitmap) return 0;
    if (clip->FileAlphaType != ZV_ALPHA_CHANNEL) {
        Set_No_Alpha(clip);
        return 1;
    }
    if (!bitmap->Pixels) return 0;
    return Visit_RGBA(*bitmap, [clip]<typename Buffer>(Buffer const& buffer) {
        GuessAlpha<Buffer, typename Buffer::PixelType>(&buffer, clip);
    });
}

long GuessAlphaZV(ZVClip* clip)
{
    if (!clip) return 0;
    if (clip->FileAlphaType != ZV_ALPHA_CHANNEL) {
        Set_No_Alpha(clip);
        return 1;
    }
    BitmapBlock const bitmap(AllocBitmapZV(clip->Width, clip->Height, GetBitmapTypeZV(clip), "alpha guess"));
    if (!bitmap || !Read_First_Frame(clip, bitmap.get())) return 0;
    return GuessAlphaZV(clip, bitmap.get());
}
