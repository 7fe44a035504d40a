// SetClipOptionsZV: what a user may say of a clip, and what follows from it for rates and frame count.
#include "ClipRecord.h"
#include "FormatMatch.h"

#include <cmath>

namespace {

struct SeenTags {
    bool rate = false;
    bool pullDown = false;
};

long Over(long value, uint8_t scale)
{
    switch (scale) {
    case 1: return value / 2;
    case 2: return value / 3;
    case 3: return value / 4;
    case 4: return value / 8;
    default: return value;
    }
}

/// The larger-picture fields keep the value as given, before its reduction.
void Set_Size(ZVClip const* clip, long value, long& size, long& fullSize)
{
    long const scaled = clip->ProxyScale != 5                           ? Over(value, clip->ProxyScale)
                        : clip->FullWidth != 0 && clip->FullHeight != 0 ? fullSize
                                                                        : value;
    size = scaled != 0 ? scaled : value;
    if (fullSize == 0) fullSize = value;
}

template <typename T> T const* Pointer(TagItem const& item)
{
    return reinterpret_cast<T const*>(item.data);
}

void Set_Matte(ZVClip* clip, double const* matte)
{
    if (!matte) return;
    clip->MatteRed = matte[0];
    clip->MatteGreen = matte[1];
    clip->MatteBlue = matte[2];
    clip->MatteAlpha = matte[3];
}

void Set_Double(double& field, double const* value)
{
    if (value) field = *value;
}

void Apply_Tag(ZVClip* clip, TagItem const& item, SeenTags& seen)
{
    auto const value = static_cast<long>(item.data);
    switch (item.tag) {
    case ZV_CLIP_FRAME_RATE:
        Set_Double(clip->FrameRate, Pointer<double>(item));
        seen.rate = true;
        break;
    case ZV_CLIP_FIELD_ORDER: clip->FieldOrder = static_cast<uint8_t>(value); break;
    case ZV_CLIP_PULLDOWN:
        clip->PullDown = static_cast<uint8_t>(value);
        seen.pullDown = true;
        break;
    case ZV_CLIP_ALPHA_TYPE: clip->AlphaType = static_cast<uint8_t>(value); break;
    case ZV_CLIP_ALPHA_INVERT: clip->AlphaInvert = value; break;
    case ZV_CLIP_ALPHA_PREMULTIPLIED: clip->AlphaPremultiplied = value; break;
    case ZV_CLIP_MATTE_COLOR: Set_Matte(clip, Pointer<double>(item)); break;
    case ZV_CLIP_PIXEL_ASPECT: Set_Double(clip->PixelAspect, Pointer<double>(item)); break;
    case ZV_CLIP_WIDTH: Set_Size(clip, value, clip->Width, clip->FullWidth); break;
    case ZV_CLIP_HEIGHT: Set_Size(clip, value, clip->Height, clip->FullHeight); break;
    case ZV_CLIP_FORMAT:
        if (auto const* text = Pointer<char>(item))
            Set_Clip_Format(clip, Find_Extension_Format(Pack_Extension(text)));
        break;
    case ZV_CLIP_USER1: clip->User1 = value; break;
    case ZV_CLIP_USER2: clip->User2 = value; break;
    case ZV_CLIP_USER3: clip->User3 = value; break;
    default: break;
    }
}

/// Film frames in so many video frames. A last, incomplete group of five that reaches into its mixed frames
/// has one less than video frames; in phases 4 and 5, which begin with a mixed one, it counts whole.
long Film_Frames(long videoFrames, uint8_t phase)
{
    long rest = videoFrames % 5;
    if ((phase == 1 && rest == 4) || (phase == 2 && rest > 2) || (phase == 3 && rest >= 2)) --rest;
    return videoFrames / 5 * 4 + rest;
}

void Enter_PullDown(ZVClip* clip, bool isRateGiven)
{
    // Written so that a rate of 0 counts as a wrong ratio.
    if (!(std::fabs(clip->FrameRate / clip->FileFrameRate - 0.8) <= 0.0001)) {
        if (isRateGiven) {
            clip->FileFrameRate = clip->FrameRate * 1.25;
        } else {
            clip->FileFrameRate = clip->BaseFrameRate;
            clip->FrameRate = clip->BaseFrameRate * 0.8;
        }
    }
    clip->Frames = Film_Frames(Get_ReadableFrames(clip), clip->PullDown);
}

void Leave_PullDown(ZVClip* clip, bool isRateGiven)
{
    if (std::fabs(clip->FileFrameRate - clip->FrameRate) > 0.0001) {
        if (!isRateGiven) clip->FrameRate = clip->BaseFrameRate;
        clip->FileFrameRate = clip->FrameRate;
    }
    clip->Frames = Get_ReadableFrames(clip);
}

/// Rate of the video behind a film rate: one near 30 that belongs to a preset of 29.97 is that.
double Video_Rate(ZVClip const* clip)
{
    double const rate = clip->FrameRate * 1.25;
    if (std::fabs(rate - 30.0) > 0.01) return rate;
    double presetRate, aspect;
    FieldOrder order;
    FindFootagePresetsZV(clip->Width, clip->Height, nullptr, nullptr, &presetRate, &aspect, &order);
    bool const fits = std::fabs(presetRate - 29.97) <= 0.01 &&
                      std::fabs(aspect - clip->PixelAspect) <= 0.01 && order == clip->FieldOrder;
    return fits ? presetRate : rate;
}

}  // namespace

void SetClipOptionsZV(ZVClip* clip, TagItem* tags)
{
    if (!clip || !ZVEnv) return;
    SeenTags seen;
    while (TagItem const* item = NextTagItem(&tags))
        Apply_Tag(clip, *item, seen);
    if (seen.pullDown && clip->PullDown)
        Enter_PullDown(clip, seen.rate);
    else if (seen.pullDown)
        Leave_PullDown(clip, seen.rate);
    else if (seen.rate)
        clip->FileFrameRate = clip->PullDown ? Video_Rate(clip) : clip->FrameRate;
}
