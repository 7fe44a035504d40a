// How a clip is written.
#include "PictureClip.h"

#include <ZVLibInternal.h>

#include <algorithm>
#include <cstring>

PictureKind const& Written_Kind(ZVClip const* clip)
{
    PictureKind const* const kind =
        clip->FileName ? Kind_Of_Extension(Extension_Code(clip->FileName)) : nullptr;
    return kind ? *kind : All_Kinds().front();
}

bool Writes_Alpha(ZVClip const* clip, PictureKind const& kind)
{
    return clip->AlphaType == ZV_ALPHA_CHANNEL && kind.alpha != AlphaRule::None;
}

long Quality_Of(ZVClip const* clip)
{
    ZVFormatParams const* const params = clip->VideoParams;
    ZVPictureOptions options;
    if (!params || !params->Data || params->Size < static_cast<long>(sizeof options)) return NormalQuality;
    std::memcpy(&options, params->Data, sizeof options);
    return std::clamp<long>(options.Quality, 1, 100);
}

void Set_Alpha(ZVClip* clip, bool hasAlpha, bool isPremultiplied)
{
    clip->AlphaType = hasAlpha ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE;
    clip->AlphaInvert = 0;
    clip->AlphaPremultiplied = hasAlpha && isPremultiplied;
    clip->MatteRed = clip->MatteGreen = clip->MatteBlue = 0.0;
    clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
}
