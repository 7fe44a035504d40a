// Options of modules: the blocks that a clip carries, and the last ones used, which its format keeps.
#include "ClipRecord.h"

#include <climits>
#include <new>

ZVFormatParams* Copy_Format_Params(ZVFormatParams const* params)
{
    if (!params) return nullptr;
    long const size = params->Data && params->Size > 0 ? params->Size : 0;
    if (size > LONG_MAX - static_cast<long>(sizeof(ZVFormatParams))) return nullptr;
    auto* block = Alloc_Zeroed<unsigned char>(static_cast<long>(sizeof(ZVFormatParams)) + size);
    if (!block) return nullptr;
    auto* copy = new (block) ZVFormatParams{block + sizeof(ZVFormatParams), size};
    if (size > 0) std::memcpy(copy->Data, params->Data, static_cast<std::size_t>(size));
    return copy;
}

/// Replaces the format's options by a copy of the clip's; keeps the old ones when the clip has none or there
/// is no memory.
static void Keep_As_Default(ZVFormatParams const* params, ZVFormatParams*& defaultParams)
{
    ZVFormatParams* copy = Copy_Format_Params(params);
    if (!copy) return;
    FreeMemZV(defaultParams);
    defaultParams = copy;
}

long ChangeClipFormatParamsZV(ZVClip* clip, ZVFormatDesc* desc, bool fetch)
{
    if (!clip) return 0;
    Set_Clip_Format(clip, desc);
    if (!desc || !fetch) return 1;
    if (!desc->DefaultVideoParams && desc->Options) {
        desc->Options(clip, true);
        Keep_As_Default(clip->VideoParams, desc->DefaultVideoParams);
    }
    if (!desc->DefaultAudioParams && desc->AudioOptions) {
        desc->AudioOptions(clip, true);
        Keep_As_Default(clip->AudioParams, desc->DefaultAudioParams);
    }
    return 1;
}

void ClipOptionsZV(ZVClip* clip)
{
    if (!clip || !clip->Format || !clip->Format->Options) return;
    if (!clip->VideoParams) clip->VideoParams = Copy_Format_Params(clip->Format->DefaultVideoParams);
    EnterThirdPartyModalDialogZV();
    clip->Format->Options(clip, false);
    ExitThirdPartyModalDialogZV();
    Keep_As_Default(clip->VideoParams, clip->Format->DefaultVideoParams);
}

void ClipAudioOptionsZV(ZVClip* clip)
{
    if (!clip || !clip->Format || !clip->Format->AudioOptions) return;
    if (!clip->AudioParams) clip->AudioParams = Copy_Format_Params(clip->Format->DefaultAudioParams);
    EnterThirdPartyModalDialogZV();
    clip->Format->AudioOptions(clip, false);
    ExitThirdPartyModalDialogZV();
    Keep_As_Default(clip->AudioParams, clip->Format->DefaultAudioParams);
}

void ClipConvertEndianOptionsZV(ZVClip* clip)
{
    if (!clip) return;
    if (clip->Format && clip->Format->ConvertEndianOptions) {
        clip->Format->ConvertEndianOptions(clip);
        return;
    }
    bool const isShared = clip->AudioParams == clip->VideoParams;
    if (clip->VideoParams && clip->VideoParams->Size > 1) {
        FreeMemZV(clip->VideoParams);
        clip->VideoParams = nullptr;
        if (isShared) clip->AudioParams = nullptr;
    }
    if (clip->AudioParams && clip->AudioParams->Size > 1) {
        FreeMemZV(clip->AudioParams);
        clip->AudioParams = nullptr;
    }
}

unsigned long GetCodecFccZV(ZVClip* clip)
{
    return clip && clip->Format && clip->Format->GetCodecFcc ? clip->Format->GetCodecFcc(clip) : 0;
}
