// Opening: a file by its name, a layer of another clip, and a closed clip again.
#include "ClipRecord.h"
#include "FormatMatch.h"
#include "foundation/HeapBlock.h"

#include <cmath>
#include <memory>

namespace {

constexpr double UnknownRate = -1.0;

using ClipHolder = std::unique_ptr<ZVClip, Released_By<FreeClipZV>>;

/// Frees the clip, then stores the number: nothing that freeing does hides the cause.
ZVClip* Fail(ClipHolder& clip, unsigned long error)
{
    clip.reset();
    SetError(error);
    return nullptr;
}

template <typename T> T Tag_Data(unsigned long tag, TagItem* tags, T otherwise)
{
    TagItem const* item = FindTagItem(tag, tags);
    if (!item) return otherwise;
    if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<T>(item->data);
    else
        return static_cast<T>(item->data);
}

/// Whatever the guess could not find out stays open, so only an exception fails.
bool Guess_Alpha(ZVClip* clip)
{
    try {
        GuessAlphaZV(clip);
        return true;
    } catch (...) {
        return false;
    }
}

void Set_No_Alpha(ZVClip* clip)
{
    clip->AlphaInvert = 0;
    clip->AlphaPremultiplied = 0;
}

void Take_Layer(ZVClip* clip, ZVClipLayer const* layer, long number)
{
    clip->Width = layer->Width;
    clip->Height = layer->Height;
    clip->BitDepth = layer->BitDepth;
    clip->AlphaType = layer->AlphaType;
    clip->FileAlphaType = layer->AlphaType;
    clip->Layer = number;
    if (layer->AlphaType != ZV_ALPHA_CHANNEL || layer->AlphaStated == ZV_ALPHA_STATED_NOTHING) return;
    clip->AlphaInvert = 0;
    clip->AlphaPremultiplied = layer->AlphaStated == ZV_ALPHA_STATED_PREMULTIPLIED;
    clip->MatteRed = clip->MatteGreen = clip->MatteBlue = 0.0;
    clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
}

ZVClip* Open_Layer(ClipHolder& clip, ZVClip const* source, long number, bool guessesAlpha)
{
    auto* const layer = source && number > 0 ? List_Entry(&source->Layers, number - 1) : nullptr;
    if (!layer) return Fail(clip, ZV_ERR_CLIP);
    if (!CloneClipZV(source, clip.get())) return Fail(clip, ZV_ERR_MEMORY);
    auto const* const record = reinterpret_cast<ZVClipLayer const*>(layer);
    Take_Layer(clip.get(), record, number);
    if (clip->FileAlphaType != ZV_ALPHA_CHANNEL) {
        Set_No_Alpha(clip.get());
        clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
    } else if (record->AlphaStated == ZV_ALPHA_STATED_NOTHING && guessesAlpha && !Guess_Alpha(clip.get())) {
        return Fail(clip, ZV_ERR_CLIP_EXCEPTION);
    }
    clip->Flags |= ZV_CLIP_OPEN;
    SetError(ZV_ERR_NONE);
    return clip.release();
}

/// Chooses the module by file and tags. False with the error number set.
bool Choose_Format(ZVClip* clip, TagItem* tags)
{
    if (!FileExistsZV(clip->FileName) && !isPondgateZV(clip->FileName)) {
        SetError(ZV_ERR_NOT_FOUND);
        return false;
    }
    auto const* const format = Tag_Data<char const*>(ZV_OPEN_FORMAT, tags, nullptr);
    ZVFormatDesc* desc =
        Match_Format(clip->FileName, format ? Pack_Extension(format) : Extension_Code(clip->FileName));
    if (desc) Set_Clip_Format(clip, desc);
    return desc != nullptr;
}

/// Lets the module and the sequence scan fill in the clip. False with the error number set.
bool Fill_In(ZVClip* clip, TagItem* tags)
{
    clip->FileFrameRate = UnknownRate;
    clip->PixelAspect = 0.0;
    if (auto const* rate = Tag_Data<double const*>(ZV_OPEN_FRAME_RATE, tags, nullptr))
        clip->FileFrameRate = *rate;
    SetError(ZV_ERR_CLIP);
    if (!clip->Format->Open || !clip->Format->Open(clip, tags)) {
        if (GetErrorZV() == ZV_ERR_NONE) SetError(ZV_ERR_CLIP_OPEN);
        return false;
    }
    clip->OpenModule = clip->Format;
    long const properties = GetImportPropertiesZV(clip->Format);
    bool const isPicture = (properties & ZV_FORMAT_READ) && !(properties & ZV_FORMAT_MULTIFRAME);
    if (isPicture && !SequenceCheckZV(clip, tags)) {
        if (GetErrorZV() == ZV_ERR_NONE) SetError(ZV_ERR_CLIP);
        return false;
    }
    return true;
}

/// Rate and aspect that the module did not know.
void Fill_In_Rates(ZVClip* clip)
{
    UsualRates const usual = Usual_Rates(*clip);
    if (Lacks_Aspect(*clip)) clip->PixelAspect = usual.aspect;
    if (Lacks_Rate(*clip)) clip->FileFrameRate = usual.rate;
    clip->FrameRate = clip->BaseFrameRate = clip->FileFrameRate;
}

/// False after an exception.
bool Settle_Alpha(ZVClip* clip, bool guesses)
{
    if (guesses && (clip->Flags & ZV_CLIP_ALPHA_KNOWN)) return true;
    if (clip->FileAlphaType == ZV_ALPHA_CHANNEL) return !guesses || Guess_Alpha(clip);
    Set_No_Alpha(clip);
    if (guesses) clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
    return true;
}

/// Puts the name of the first file in place of a sequence mask, since modules know of files alone. False with
/// error 1.
bool Name_First_File(ZVClip* clip)
{
    char name[ZV_SPEC_SIZE];
    if (std::strlen(clip->FileName) >= sizeof name) return true;
    std::strcpy(name, clip->FileName);
    if (!SequenceNumberToNameValidateZV(name, clip->SequenceNumbers ? clip->SequenceNumbers[0] : 0))
        return true;
    char* first = CopyFileSpecZV(name);
    if (!first) return false;
    FreeFileSpecZV(clip->FileName);
    clip->FileName = first;
    return true;
}

}  // namespace

UsualRates Usual_Rates(ZVClip const& clip)
{
    UsualRates usual{true, clip.Width < 2048 ? 30.0 : 24.0, 1.0};
    double rate, aspect;
    usual.isPreset = FindFootagePresetsZV(clip.Width, clip.Height, nullptr, nullptr, &rate, &aspect, nullptr);
    if (usual.isPreset) usual = {true, rate, aspect};
    return usual;
}

bool Lacks_Rate(ZVClip const& clip)
{
    return clip.FileFrameRate == UnknownRate;
}

bool Lacks_Aspect(ZVClip const& clip)
{
    return std::fabs(clip.PixelAspect) <= 0.000005;
}

ZVClip* OpenClipZV(char const* spec, TagItem* tags)
{
    SetError(ZV_ERR_NONE);
    if (!spec) {
        SetError(ZV_ERR_NOT_FOUND);
        return nullptr;
    }
    ClipHolder clip(Alloc_Clip());
    if (!clip) return nullptr;
    long const layerNumber = Tag_Data<long>(ZV_OPEN_LAYER, tags, 0);
    bool const guessesAlpha = !FindTagItem(ZV_OPEN_NO_ALPHA_GUESS, tags);
    if (FindTagItem(ZV_OPEN_SOURCE_CLIP, tags) && FindTagItem(ZV_OPEN_LAYER, tags))
        return Open_Layer(clip, Tag_Data<ZVClip const*>(ZV_OPEN_SOURCE_CLIP, tags, nullptr), layerNumber,
                          guessesAlpha);
    clip->FileName = CopyFileSpecZV(spec);
    if (!clip->FileName) return Fail(clip, ZV_ERR_MEMORY);
    if (!Choose_Format(clip.get(), tags) || !Fill_In(clip.get(), tags)) return Fail(clip, GetErrorZV());
    clip->Frames = clip->RawFrames;
    clip->Layer = 0;
    if (layerNumber > 0)
        if (Node const* layer = List_Entry(&clip->Layers, layerNumber - 1))
            Take_Layer(clip.get(), reinterpret_cast<ZVClipLayer const*>(layer), layerNumber);
    Fill_In_Rates(clip.get());
    clip->Flags |= ZV_CLIP_OPEN;
    clip->FileAlphaType = clip->AlphaType;
    if (!Settle_Alpha(clip.get(), guessesAlpha)) return Fail(clip, ZV_ERR_CLIP_EXCEPTION);
    SetError(ZV_ERR_NONE);
    return clip.release();
}

long Open_Module(ZVClip* clip, TagItem* tags)
{
    ClipHolder saved(CloneClipZV(clip, nullptr));
    if (!saved) return 0;
    unsigned long const flags = clip->Flags;
    SetError(ZV_ERR_CLIP);
    long const isOpen = Name_First_File(clip) && clip->Format->Open && clip->Format->Open(clip, tags);
    unsigned long const error = GetErrorZV();
    if (isOpen) {
        clip->OpenModule = clip->Format;
        if ((flags & ZV_CLIP_WRITING) && saved->RawFrames == 0) saved->RawFrames = clip->RawFrames;
    }
    Restore_Clip(clip, saved.release());
    clip->Flags = flags;
    SetError(isOpen ? ZV_ERR_NONE : error ? error : ZV_ERR_CLIP);
    return isOpen ? 1 : 0;
}

long OpenClipZV(ZVClip* clip, TagItem* tags)
{
    SetError(ZV_ERR_NONE);
    if (!clip || !clip->Format) return 0;
    if (!clip->FileName) {
        SetError(ZV_ERR_NOT_FOUND);
        return 0;
    }
    if (clip->Flags & ZV_CLIP_OPEN) return 1;
    if (!Open_Module(clip, tags)) return 0;
    clip->Flags = (clip->Flags & ~static_cast<unsigned long>(ZV_CLIP_WRITING)) | ZV_CLIP_OPEN;
    return 1;
}
